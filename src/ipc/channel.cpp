#include "ipc/channel.h"

#include <cerrno>

#include "ofp/platform.h"
#include "ofp/result.h"

namespace ofp {
namespace {

// Where the agent daemon listens: length 16, family 37, port 1170 in network order, then the number
// 128 as the daemon's little-endian side keeps it.
constexpr uint8_t service_address[16] = {16, 37, 0x04, 0x92, 0x80, 0x00};

constexpr int32_t level_socket = 1;
constexpr int32_t option_send_timeout = 0x1005;
constexpr int32_t option_receive_timeout = 0x1006;
constexpr int32_t level_zone = 0x113;
constexpr int32_t option_zone = 16;

struct TimeValue {
    uint64_t seconds;
    uint64_t microseconds;
};

// Repeats a socket call for as long as signals interrupt it.
template <typename Call>
auto uninterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

uint64_t received(int64_t length) { return length > 0 ? static_cast<uint64_t>(length) : 0; }

bool set_option(int32_t socket, int32_t option, const TimeValue &value)
{
    return SOCK_SetOption(socket, level_socket, option, &value, sizeof value) == 0;
}

bool set_timeouts(int32_t socket, uint64_t seconds)
{
    const TimeValue value{seconds, 0};
    const bool sending = set_option(socket, option_send_timeout, value);
    const bool receiving = set_option(socket, option_receive_timeout, value); // tried either way
    return sending && receiving;
}

} // namespace

int32_t open_socket()
{
    constexpr int32_t family = 37, datagram = 2, protocol = 1;
    return SOCK_Socket(family, datagram, protocol);
}

bool connect_to_service(int32_t socket) { return OFP_util_Connect(socket, service_address) == 0; }

} // namespace ofp

OFP_API int32_t OFP_plgn_Connect(uint64_t timeout, uint64_t *result)
{
    *result = OFP_RC_FAILED;
    ofp::Channel channel(ofp::open_socket());
    if (!channel.is_open())
        return -1;
    if (timeout != 0 && !ofp::set_timeouts(channel.socket(), timeout))
        return -1;
    *result = OFP_RC_NO_REPLY;
    if (!ofp::connect_to_service(channel.socket()))
        return -1;
    *result = OFP_RC_OK;
    return channel.release();
}

OFP_API int32_t OFP_plgn_ConnectVfw(void)
{
    ofp::Channel channel(ofp::open_socket());
    if (!channel.is_open())
        return -1;
    if (ZONE_IsContainer(ZONE_GetCurrentZone()) != 1) {
        // Without the option the channel still reaches an agent, in the context of its own.
        const uint32_t container = ZONE_GetCurrentContainer();
        SOCK_SetOption(channel.socket(), ofp::level_zone, ofp::option_zone, &container,
                       sizeof container);
    }
    return ofp::connect_to_service(channel.socket()) ? channel.release() : -1;
}

OFP_API int32_t OFP_plgn_Close(int32_t socket) { return SOCK_Close(socket); }

OFP_API int32_t OFP_util_Connect(int32_t socket, const void *address)
{
    const int32_t result = ofp::uninterrupted(
        [=] { return SOCK_Connect(socket, address, sizeof ofp::service_address); });
    // An attempt that a signal interrupted may have succeeded.
    return result == -1 && errno == EISCONN ? 0 : result;
}

OFP_API uint32_t OFP_util_Send(int32_t socket, const void *buffer, uint64_t length)
{
    const int64_t sent = ofp::uninterrupted([=] { return SOCK_Send(socket, buffer, length, 0); });
    return sent == static_cast<int64_t>(length) ? OFP_RC_OK : OFP_RC_FAILED;
}

OFP_API uint64_t OFP_util_Recv(int32_t socket, uint64_t size, void *buffer)
{
    return ofp::received(ofp::uninterrupted([=] { return SOCK_Recv(socket, buffer, size, 0); }));
}

OFP_API uint64_t OFP_util_RecvFrom(int32_t socket, uint64_t size, uint32_t flags, void *buffer)
{
    return ofp::received(ofp::uninterrupted(
        [=] { return SOCK_RecvFrom(socket, buffer, size, static_cast<int32_t>(flags)); }));
}

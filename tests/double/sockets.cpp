// The socket section of ofp/platform.h.
#include <cerrno>

#include "double/platform.h"

using test::Bytes;
using test::Call;
using test::platform;

namespace {

uint64_t word(int64_t value) { return static_cast<uint64_t>(value); }

int64_t receive(const char *function, int32_t s, void *buffer, size_t size, int32_t flags)
{
    auto outcome = platform.enter({function, {word(s), size, word(flags)}}, {-1, EIO});
    if (!platform.check_socket(s))
        return -1;
    return outcome ? outcome->result : platform.receive(buffer, size);
}

} // namespace

int32_t SOCK_Socket(int32_t family, int32_t type, int32_t protocol)
{
    auto outcome =
        platform.enter({"SOCK_Socket", {word(family), word(type), word(protocol)}}, {-1, EMFILE});
    return outcome ? static_cast<int32_t>(outcome->result) : platform.open_socket();
}

int32_t SOCK_SetOption(int32_t s, int32_t level, int32_t option, const void *value, uint32_t length)
{
    Call call{"SOCK_SetOption", {word(s), word(level), word(option)}};
    call.bytes = test::bytes_of(value, length);
    auto outcome = platform.enter(call, {-1, EINVAL});
    if (!platform.check_socket(s))
        return -1;
    return outcome ? static_cast<int32_t>(outcome->result) : 0;
}

int32_t SOCK_Connect(int32_t s, const void *address, uint32_t length)
{
    auto outcome = platform.enter({"SOCK_Connect", {word(s)}, test::bytes_of(address, length)},
                                  {-1, ECONNREFUSED});
    if (!platform.check_socket(s))
        return -1;
    return outcome ? static_cast<int32_t>(outcome->result) : 0;
}

int64_t SOCK_Send(int32_t s, const void *buffer, size_t length, int32_t flags)
{
    Bytes datagram = test::bytes_of(buffer, length);
    auto outcome = platform.enter({"SOCK_Send", {word(s), word(flags)}, datagram}, {-1, EPIPE});
    if (!platform.check_socket(s))
        return -1;
    if (outcome)
        return outcome->result;
    platform.sent.push_back(datagram);
    if (platform.on_send)
        platform.on_send(datagram);
    return static_cast<int64_t>(length);
}

int64_t SOCK_Recv(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return receive("SOCK_Recv", s, buffer, size, flags);
}

int64_t SOCK_RecvFrom(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return receive("SOCK_RecvFrom", s, buffer, size, flags);
}

int32_t SOCK_Close(int32_t s)
{
    auto outcome = platform.enter({"SOCK_Close", {word(s)}}, {-1, EIO});
    if (!platform.check_socket(s))
        return -1;
    platform.close_socket(s); // also when it reports an error, as close does
    return outcome ? static_cast<int32_t>(outcome->result) : 0;
}

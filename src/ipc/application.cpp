#include "ofp/application.h"

#include <cstdlib>
#include <cstring>

#include "ipc/channel.h"
#include "ipc/event.h"
#include "ofp/codec.h"
#include "ofp/message.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace ofp {
namespace {

constexpr uint8_t no_app = 12;

constexpr bool is_app(uint32_t id) { return id >= 1 && id < no_app; }
constexpr bool is_event(uint32_t type) { return type >= 1 && type <= last_event; }

// How much of the receive buffer the last datagram has written: the rest is zero. It holds for the
// buffer that was received into; another one, which an application may have put there, is cleared
// whole.
struct Used {
    const uint8_t *buffer;
    uint64_t bytes;
};
constinit Used used = {nullptr, 0};

// Counts registrations that ended, so that a dispatch notices one that ends under it.
constinit uint32_t ended = 0;

bool ensure_buffer()
{
    if (g_pucRecvBuf != nullptr)
        return true;
    g_pucRecvBuf = static_cast<uint8_t *>(std::calloc(1, OFP_LARGE_DATAGRAM_SIZE));
    used = {g_pucRecvBuf, 0};
    return g_pucRecvBuf != nullptr;
}

uint64_t receive(int32_t socket)
{
    constexpr uint32_t dont_wait = 0x40;
    const bool known = used.buffer == g_pucRecvBuf;
    std::memset(g_pucRecvBuf, 0, known ? used.bytes : OFP_LARGE_DATAGRAM_SIZE);
    const uint64_t length =
        OFP_util_RecvFrom(socket, OFP_LARGE_DATAGRAM_SIZE, dont_wait, g_pucRecvBuf);
    used = {g_pucRecvBuf, length};
    return length;
}

int32_t open_event_socket()
{
    constexpr int32_t level_socket = 1, option_receive_buffer = 0x1002;
    const int32_t receive_buffer = 1048576; // bursts wait there while the application is busy
    Channel channel(open_socket());
    if (!channel.is_open())
        return -1;
    // A smaller one serves too.
    SOCK_SetOption(channel.socket(), level_socket, option_receive_buffer, &receive_buffer,
                   sizeof receive_buffer);
    return connect_to_service(channel.socket()) ? channel.release() : -1;
}

// Changes a subscription over a channel of its own; the event socket carries events alone.
uint32_t subscribe(uint32_t code, uint32_t type)
{
    uint64_t result;
    const Channel channel(OFP_plgn_Connect(0, &result));
    if (!channel.is_open())
        return OFP_RC_FAILED;
    const OfpAppInfo event = {.event = type, .app_id = g_ucOfpLibAppID};
    return OFP_set_SendBasicMsg(channel.socket(), code, OFP_TLV_AppEvent, sizeof event, &event);
}

uint32_t deliver(Bytes notification)
{
    OfpEventType event{};
    const uint64_t size = OFP_msg_GetTlvData(notification.data, notification.size,
                                             OFP_TLV_EventType, sizeof event, &event);
    if (size == 0)
        return OFP_RC_FAILED;
    if (!is_event(event.event))
        return OFP_RC_INVALID;
    if (size == notification.size)
        return OFP_RC_FAILED;
    if (g_pfOfpLibNotify == nullptr)
        return OFP_RC_OK;
    return decode_event(event.event, notification.from(notification.data + size), g_pfOfpLibNotify);
}

} // namespace
} // namespace ofp

constinit int32_t g_iOfpLibHandle = -1;
constinit uint8_t g_ucOfpLibAppID = ofp::no_app;
constinit OfpEventCallback g_pfOfpLibNotify = nullptr;
constinit uint8_t *g_pucRecvBuf = nullptr;
constinit uint32_t g_uiOfpMSGNum = 10;

OFP_API int32_t OFP_Init(uint32_t app_id)
{
    if (!ofp::is_app(app_id) || g_iOfpLibHandle >= 0 || g_ucOfpLibAppID != ofp::no_app)
        return -1;
    if (!ofp::ensure_buffer())
        return -1;
    ofp::Channel channel(ofp::open_event_socket());
    if (!channel.is_open())
        return -1;
    const OfpAppInfo app = {.app_id = static_cast<uint8_t>(app_id)};
    if (OFP_util_SendBasicMsg(channel.socket(), OFP_MSG_REGISTER_APP, OFP_TLV_AppInfo, sizeof app,
                              &app) != OFP_RC_OK)
        return -1;
    g_ucOfpLibAppID = app.app_id;
    g_iOfpLibHandle = channel.release();
    return g_iOfpLibHandle;
}

OFP_API void OFP_Fini(void)
{
    if (g_iOfpLibHandle >= 0) {
        g_ucOfpLibAppID = ofp::no_app;
        OFP_plgn_Close(g_iOfpLibHandle);
        g_iOfpLibHandle = -1;
        ++ofp::ended;
    }
    std::free(g_pucRecvBuf);
    g_pucRecvBuf = nullptr;
}

OFP_API uint32_t OFP_RegEvent(uint32_t type, OfpEventCallback callback)
{
    if (!ofp::is_app(g_ucOfpLibAppID))
        return OFP_RC_STATE;
    if (!ofp::is_event(type) || callback == nullptr)
        return OFP_RC_FAILED;
    const uint32_t result = ofp::subscribe(OFP_MSG_REGISTER_EVENT, type);
    if (result == OFP_RC_OK)
        g_pfOfpLibNotify = callback;
    return result;
}

OFP_API uint32_t OFP_DeRegEvent(uint32_t type)
{
    if (!ofp::is_app(g_ucOfpLibAppID))
        return OFP_RC_STATE;
    if (!ofp::is_event(type))
        return OFP_RC_FAILED;
    const uint32_t result = ofp::subscribe(OFP_MSG_DEREGISTER_EVENT, type);
    if (result == OFP_RC_OK)
        g_pfOfpLibNotify = nullptr;
    return result;
}

OFP_API uint32_t OFP_Dispatch(int32_t socket)
{
    if (!ofp::is_app(g_ucOfpLibAppID))
        return OFP_RC_STATE;
    if (!ofp::ensure_buffer())
        return OFP_RC_NO_RESOURCE;

    const uint32_t registration = ofp::ended;
    uint32_t result = OFP_RC_OK;
    for (uint32_t handled = 0; handled < g_uiOfpMSGNum; ++handled) {
        if (registration != ofp::ended || g_pucRecvBuf == nullptr)
            break; // the callback has ended the registration, and the socket with it
        const uint64_t length = ofp::receive(socket);
        if (length == 0)
            break;
        uint32_t code = 0;
        const uint64_t head = OFP_msg_GetMsgHead(g_pucRecvBuf, length, &code);
        if (head == 0 || code != OFP_MSG_EVENT)
            return OFP_RC_FAILED;
        result |= ofp::deliver({g_pucRecvBuf + head, length - head});
    }
    return result;
}

OFP_API uint8_t *ofp_lib_GetPktDataFromTLV(const uint8_t *value, uint16_t length)
{
    auto copy = static_cast<uint8_t *>(std::malloc(length));
    if (copy != nullptr)
        OFP_msg_GetByteSwapData(value, length, OFP_TLV_PktData, length, copy);
    return copy;
}

#include "ofp/application.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "double/memory.h"
#include "double/sweep.h"
#include "ofp.h"

using namespace test;

namespace {

constexpr uint32_t failed = OFP_RC_FAILED;

struct Event {
    uint32_t type;
    Bytes record;
    uint32_t value;
    bool operator==(const Event &) const = default;
};
std::vector<Event> events;
uint32_t answer;
std::function<void()> during; // what the callback does besides

uint32_t take(uint32_t type, void *record, uint32_t value)
{
    const size_t size = type == OFP_EVENT_CTRL_STATUS ? 4 : sizeof(OfpCtrlEvent);
    events.push_back({type, bytes_of(record, size), value});
    if (during)
        during();
    return answer;
}

Bytes event_type(uint32_t type)
{
    return tlv(190, {static_cast<uint8_t>(type >> 24), static_cast<uint8_t>(type >> 16),
                     static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)});
}
Bytes notification(uint32_t type, const Bytes &rest)
{
    return message(OFP_MSG_EVENT, {event_type(type)}) + rest;
}
Bytes status(uint32_t value)
{
    return notification(16, tlv(230, hex("000000") + Bytes{uint8_t(value)}));
}

class Application : public PlatformTest {
protected:
    Application()
    {
        events.clear();
        answer = 0;
        during = nullptr;
    }
    ~Application() override
    {
        OFP_Fini();
        g_pfOfpLibNotify = nullptr;
        g_uiOfpMSGNum = 10;
    }
    int32_t registered(uint32_t app = 3)
    {
        const int32_t socket = OFP_Init(app);
        EXPECT_GE(socket, 0);
        g_pfOfpLibNotify = take;
        platform.sent.clear();
        return socket;
    }
};

} // namespace

TEST_F(Application, NothingIsRegisteredAtFirst)
{
    EXPECT_EQ(g_iOfpLibHandle, -1);
    EXPECT_EQ(g_ucOfpLibAppID, 12);
    EXPECT_EQ(g_pfOfpLibNotify, nullptr);
    EXPECT_EQ(g_pucRecvBuf, nullptr);
    EXPECT_EQ(g_uiOfpMSGNum, 10u);
}

TEST_F(Application, InitRegistersOverALongLivedSocket)
{
    const int32_t socket = OFP_Init(11);
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_Connect SOCK_Send");
    EXPECT_EQ(platform.calls("SOCK_SetOption")[0].bytes, bytes_of(int32_t{1048576}));
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 50000008  00bf 0008 00000000 0b 000000"));
    EXPECT_EQ(g_iOfpLibHandle, socket);
    EXPECT_EQ(g_ucOfpLibAppID, 11);
    EXPECT_NE(g_pucRecvBuf, nullptr);
    EXPECT_EQ(OFP_Init(11), -1);
    EXPECT_EQ(g_iOfpLibHandle, socket);
}

TEST_F(Application, IdsOutside1To11AreRefusedUnseen)
{
    for (uint32_t id : {0u, 12u, 13u, 256u + 3u})
        EXPECT_EQ(OFP_Init(id), -1);
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(Application, AReceiveBufferOptionThatFailsDoesNotMatter)
{
    platform.next("SOCK_SetOption", {-1, EINVAL});
    EXPECT_GE(OFP_Init(1), 0);
}

TEST_F(Application, FailuresOfInitLeaveItUnregistered)
{
    expect_failures_handled({.prepare = [] {},
                             .run =
                                 [] {
                                     const int32_t socket = OFP_Init(1);
                                     const bool ok = socket >= 0;
                                     EXPECT_EQ(g_iOfpLibHandle, socket);
                                     EXPECT_EQ(g_ucOfpLibAppID, ok ? 1 : 12);
                                     OFP_Fini();
                                     return ok ? 0u : 1u;
                                 }},
                            {{"SOCK_Socket", 1},
                             {"SOCK_SetOption", 0},
                             {"SOCK_Connect", 1},
                             {"SOCK_Send", 1},
                             {"SOCK_Close", 0},
                             {"malloc", 1}});
}

TEST_F(Application, FiniClosesFreesAndKeepsTheCallback)
{
    registered();
    OFP_Fini();
    EXPECT_EQ(g_iOfpLibHandle, -1);
    EXPECT_EQ(g_ucOfpLibAppID, 12);
    EXPECT_EQ(g_pucRecvBuf, nullptr);
    EXPECT_EQ(g_pfOfpLibNotify, take);
    EXPECT_TRUE(platform.open_sockets().empty());
    EXPECT_TRUE(platform.sent.empty());
    OFP_Fini(); // twice is harmless
}

TEST_F(Application, RegEventChecksInOrder)
{
    EXPECT_EQ(OFP_RegEvent(0, nullptr), OFP_RC_STATE);
    EXPECT_EQ(OFP_DeRegEvent(64), OFP_RC_STATE);
    registered();
    for (uint32_t type : {0u, 64u})
        EXPECT_EQ(OFP_RegEvent(type, take), failed);
    EXPECT_EQ(OFP_RegEvent(1, nullptr), failed);
    EXPECT_EQ(OFP_DeRegEvent(0), failed);
    EXPECT_EQ(OFP_DeRegEvent(64), failed);
    EXPECT_TRUE(platform.sent.empty());
}

TEST_F(Application, RegEventSubscribesWithoutTimeOutAndSetsTheCallback)
{
    registered(3);
    g_pfOfpLibNotify = nullptr;
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_RegEvent(63, take), 0u);
    EXPECT_EQ(g_pfOfpLibNotify, take);
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 50000009  00c0 0008 0000003f 03 000000"));
    EXPECT_EQ(platform.calls("SOCK_SetOption").size(), 1u); // that of OFP_Init
    EXPECT_EQ(platform.open_sockets().size(), 1u);          // the event socket
}

TEST_F(Application, ARefusedSubscriptionKeepsTheCallback)
{
    registered();
    platform.reply(result_reply(0x77));
    EXPECT_EQ(OFP_DeRegEvent(2), 0x77u);
    EXPECT_EQ(g_pfOfpLibNotify, take);
    g_pfOfpLibNotify = nullptr;
    platform.reply(result_reply(0x77));
    EXPECT_EQ(OFP_RegEvent(2, take), 0x77u);
    EXPECT_EQ(g_pfOfpLibNotify, nullptr);
}

TEST_F(Application, FailuresOfSubscribing)
{
    for (bool subscribes : {true, false}) {
        expect_failures_handled({.prepare = [] { platform.reply(result_reply(0)); },
                                 .run =
                                     [subscribes] {
                                         g_ucOfpLibAppID =
                                             5; // as after OFP_Init, without its socket
                                         const uint32_t code =
                                             subscribes ? OFP_RegEvent(2, take) : OFP_DeRegEvent(2);
                                         g_ucOfpLibAppID = 12;
                                         return code;
                                     }},
                                {{"SOCK_Socket", failed},
                                 {"SOCK_Connect", failed},
                                 {"SOCK_Send", OFP_RC_SEND_FAILED},
                                 {"SOCK_Recv", OFP_RC_NO_REPLY},
                                 {"SOCK_Close", 0},
                                 {"STLV_Set", 0}});
    }
}

TEST_F(Application, DeRegEventSilencesEveryType)
{
    const int32_t socket = registered();
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_DeRegEvent(2), 0u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 5000000a  00c0 0008 00000002 03 000000"));
    platform.reply(status(1));
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(platform.unread(), 0u);
}

TEST_F(Application, DispatchNeedsARegistration)
{
    EXPECT_EQ(OFP_Dispatch(5), OFP_RC_STATE);
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(Application, AStatusEventReachesTheCallback)
{
    const int32_t socket = registered();
    platform.reply(status(9));
    platform.reply(notification(16, tlv(4, hex("0001 0000")))); // no status: 0
    answer = 4;
    EXPECT_EQ(OFP_Dispatch(socket), 4u);
    const Event nine{16, bytes_of(uint32_t{9}), 9}, none{16, bytes_of(uint32_t{0}), 0};
    EXPECT_EQ(events, std::vector<Event>({nine, none}));
    EXPECT_EQ(platform.calls("SOCK_RecvFrom")[0].arguments[2], 0x40u);
}

TEST_F(Application, OneCallTakesNoMoreThanTheLimit)
{
    const int32_t socket = registered();
    for (int i = 0; i < 15; ++i)
        platform.reply(status(1));
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_EQ(events.size(), 10u);
    EXPECT_EQ(platform.unread(), 5u);
    g_uiOfpMSGNum = 0;
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_EQ(platform.unread(), 5u);
}

TEST_F(Application, MalformedNotificationsAreORedAndTheLoopGoesOn)
{
    const int32_t socket = registered();
    platform.reply(notification(0, tlv(4, hex("00000000"))));
    platform.reply(notification(64, tlv(4, hex("00000000"))));
    platform.reply(message(OFP_MSG_EVENT));                   // no event type
    platform.reply(message(OFP_MSG_EVENT, {event_type(2)}));  // nothing behind it
    platform.reply(notification(3, tlv(4, hex("00000000")))); // no decoder
    platform.reply(status(1));
    EXPECT_EQ(OFP_Dispatch(socket), failed | OFP_RC_INVALID);
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(Application, AnotherMessageEndsTheCallAlone)
{
    const int32_t socket = registered();
    platform.reply(notification(0, tlv(4, hex("00000000"))));
    platform.reply(result_reply(0));
    platform.reply(status(1));
    EXPECT_EQ(OFP_Dispatch(socket), failed);
    EXPECT_EQ(platform.unread(), 1u);
    platform.reply(hex("00"));
    EXPECT_EQ(OFP_Dispatch(socket), failed);
}

TEST_F(Application, EveryDatagramFindsAZeroedBuffer)
{
    const int32_t socket = registered();
    platform.reply(notification(16, tlv(230, hex("00000001")) + tlv(99, Bytes(4000, 0xee))));
    platform.reply(status(2));
    std::vector<bool> zeroed;
    during = [] {};
    g_uiOfpMSGNum = 1;
    for (int i = 0; i < 3; ++i) {
        OFP_Dispatch(socket);
        const size_t length = i == 0 ? 8 + 8 + 8 + 4004 : i == 1 ? 24 : 0;
        zeroed.push_back(OFP_util_IsMemZero(g_pucRecvBuf + length, 49152 - length) == 1);
    }
    EXPECT_EQ(zeroed, std::vector<bool>({true, true, true}));
}

TEST_F(Application, ABufferPutInPlaceByTheApplicationIsClearedWhole)
{
    const int32_t socket = registered();
    uint8_t *const own = static_cast<uint8_t *>(memory::give(49152));
    std::memset(own, 0xaa, 49152);
    std::free(g_pucRecvBuf);
    g_pucRecvBuf = own;
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_EQ(OFP_util_IsMemZero(g_pucRecvBuf, 49152), 1);
}

TEST_F(Application, DispatchAllocatesAMissingBufferOrSaysSo)
{
    const int32_t socket = registered();
    std::free(g_pucRecvBuf);
    g_pucRecvBuf = nullptr;
    memory::fail_at(1);
    EXPECT_EQ(OFP_Dispatch(socket), OFP_RC_NO_RESOURCE);
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_NE(g_pucRecvBuf, nullptr);
}

TEST_F(Application, TheCallbackMayEndTheRegistration)
{
    const int32_t socket = registered();
    platform.reply(status(1));
    platform.reply(status(2));
    during = [] { OFP_Fini(); };
    answer = 8;
    EXPECT_EQ(OFP_Dispatch(socket), 8u);
    EXPECT_EQ(events.size(), 1u);
    EXPECT_EQ(platform.unread(), 1u);
}

TEST_F(Application, TheCallbackMayRegisterAnew)
{
    const int32_t socket = registered();
    platform.reply(status(1));
    platform.reply(status(2));
    during = [] {
        OFP_Fini();
        OFP_Init(4);
    };
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    EXPECT_EQ(events.size(), 1u);
    EXPECT_EQ(g_ucOfpLibAppID, 4);
}

TEST_F(Application, PacketDataIsCopiedAsItIs)
{
    const Bytes data = counting(7);
    uint8_t *copy = ofp_lib_GetPktDataFromTLV(data.data(), 7);
    EXPECT_EQ(bytes_of(copy, 7), data);
    std::free(copy);
    memory::fail_at(1);
    EXPECT_EQ(ofp_lib_GetPktDataFromTLV(data.data(), 7), nullptr);
}

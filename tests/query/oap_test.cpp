#include "query/query_case.h"

using namespace test;

namespace {

class OapQuery : public PlatformTest {};

const OfpContext key{.value_u64_0 = 0x0102030405060708,
                     .value_u32_8 = 0x090a0b0c,
                     .value_u32_12 = 0x0d0e0f10,
                     .value_u32_16 = 0x11121314,
                     .value_u16_20 = 0x1516,
                     .reserved_22 = {0x17, 0x18}};
const Bytes context_request = message(0x1000001d, {tlv(134, counting(24))});
const Bytes context_reply = message(0x2000001d, {tlv(139, counting(24))});

} // namespace

TEST_F(OapQuery, ClientNumberIsTaken)
{
    platform.reply(message(0x2000001e, {tlv(133, hex("00000102"))}));
    auto clients = preset<OfpOapClientNum>();
    EXPECT_EQ(OFP_get_OapClientNum(&clients), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000001e)}));
    EXPECT_EQ(clients.count, 0x102u);

    clients = preset<OfpOapClientNum>();
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_OapClientNum(&clients), uint32_t{OFP_RC_OK});
    EXPECT_EQ(clients.count, 0xeeeeeeeeu);
}

TEST_F(OapQuery, ClientNumberBehavesLikeAnyQuery)
{
    expect_single_exchange(
        {.answers = {{message(0x1000001e), {message(0x2000001e, {tlv(133, Bytes(4))})}}},
         .run =
             [] {
                 OfpOapClientNum clients{};
                 return OFP_get_OapClientNum(&clients);
             },
         .any_code = false});
}

TEST_F(OapQuery, ContextSendsTheCallersKeyAndHandsOverTheDatagram)
{
    platform.reply(context_reply);
    const Bytes before = bytes_of(key);
    Bytes buffer(100, 0xee);
    uint64_t length = 99;
    EXPECT_EQ(OFP_get_OapContext(&key, buffer.size(), buffer.data(), &length), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({context_request}));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 100u);
    EXPECT_EQ(length, context_reply.size());
    EXPECT_EQ(buffer, context_reply + Bytes(100 - context_reply.size(), 0xee));
    EXPECT_EQ(bytes_of(key), before);
}

TEST_F(OapQuery, ContextBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{context_request, {context_reply}}}, .run = [] {
                                uint8_t buffer[100];
                                uint64_t length;
                                return OFP_get_OapContext(&key, sizeof buffer, buffer, &length);
                            }});
}

#include "openflow/reply.h"

#include <gtest/gtest.h>

#include "openflow/build.h"

namespace {

using namespace openflow;

TEST(ErrorMessage, CarriesTypeCodeTransactionAndTheFirst64BytesOfTheOffender)
{
    const build::Message offender = build::flow_mod({.xid = 0x01020304});
    ASSERT_GT(offender.size(), 64U);
    const auto message = encode_error(offender, {OFPET_FLOW_MOD_FAILED, OFPFMFC_OVERLAP});
    const build::Message head = build::hex("04 01 00 4c  01 02 03 04  00 05 00 03");
    EXPECT_EQ(build::Message(message.begin(), message.begin() + 12), head);
    EXPECT_EQ(build::Message(message.begin() + 12, message.end()),
              build::Message(offender.begin(), offender.begin() + 64));
}

TEST(ErrorMessage, CarriesAShortOffenderWhole)
{
    const build::Message offender = build::hex("04 0e 00 08  00 00 00 07");
    EXPECT_EQ(encode_error(offender, {OFPET_BAD_REQUEST, OFPBRC_BAD_LEN}),
              build::hex("04 01 00 14  00 00 00 07  00 01 00 06  04 0e 00 08  00 00 00 07"));
}

TEST(ErrorMessage, HasTransactionZeroWhenTheOffenderHasNone)
{
    EXPECT_EQ(encode_error(build::hex("04 0e"), {OFPET_BAD_REQUEST, OFPBRC_BAD_LEN}),
              build::hex("04 01 00 0e  00 00 00 00  00 01 00 06  04 0e"));
}

TEST(BarrierReply, IsAHeaderWithTheTransaction)
{
    const auto message = encode_barrier_reply(0x0a0b0c0d);
    EXPECT_EQ(build::Message(message.begin(), message.end()),
              build::hex("04 15 00 08  0a 0b 0c 0d"));
}

} // namespace

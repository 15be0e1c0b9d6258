#include "query/query_case.h"

using namespace test;

namespace {

class ApplicationQuery : public PlatformTest {};

const Bytes request = message(0x1000002d, {tlv(191, hex("00000000 0b 000000"))}); // application 11

} // namespace

TEST_F(ApplicationQuery, InfoTakesTheCounters)
{
    const Bytes value = counting(88);
    platform.reply(message(0x20000027, {tlv(195, value)}));
    auto stats = preset<OfpAppPktStats>();
    EXPECT_EQ(OFP_get_AppInfo(11, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(bytes_of(stats.opaque_0), value.slice(0, 8)); // as they lie
    EXPECT_EQ(stats.value_u64_8[0], value.u64(8));
    EXPECT_EQ(stats.value_u64_8[8], value.u64(72));
    EXPECT_EQ(stats.value_u32_80, value.u32(80));
    EXPECT_EQ(stats.value_u32_84, value.u32(84));
}

TEST_F(ApplicationQuery, InfoIsUntouchedByAResultReply)
{
    platform.reply(result_reply(0));
    auto stats = preset<OfpAppPktStats>();
    EXPECT_EQ(OFP_get_AppInfo(11, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(stats), Bytes(88, 0xee));
}

TEST_F(ApplicationQuery, InfoBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{request, {message(0x20000027, {tlv(195, counting(88))})}}},
                            .run =
                                [] {
                                    OfpAppPktStats stats{};
                                    return OFP_get_AppInfo(11, &stats);
                                },
                            .any_code = false});
}

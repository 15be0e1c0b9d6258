#include "double/platform.h"
#include "ofp/flow_item.h"
#include "ofp/result.h"

using namespace test;

namespace {

class AclResource : public PlatformTest {
protected:
    uint8_t out[6] = {9, 9, 9, 9, 9, 9};
};

} // namespace

TEST_F(AclResource, PassesTheDriversSixBytesOn)
{
    EXPECT_EQ(OFP_util_GetAclResource(out), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(out, 6), hex("010203040506"));
    ASSERT_EQ(platform.calls().size(), 1u);
    const Call &call = platform.calls()[0];
    EXPECT_EQ(call.function, "CIOCTL");
    EXPECT_EQ(static_cast<int16_t>(call.arguments[0]), -32768);
    EXPECT_EQ(call.arguments[1], 0x700032u);
}

TEST_F(AclResource, IsAllZeroWhenTheDriverFails)
{
    platform.next("CIOCTL", {0x123});
    EXPECT_EQ(OFP_util_GetAclResource(out), 0x123u);
    EXPECT_EQ(bytes_of(out, 6), Bytes(6, 0));
}

TEST_F(AclResource, IsAllZeroWhenTheAnswerHasAnotherLength)
{
    for (uint32_t length : {0u, 5u, 7u}) {
        platform.device_answer_length = length;
        out[0] = 9;
        EXPECT_EQ(OFP_util_GetAclResource(out), uint32_t{OFP_RC_OK});
        EXPECT_EQ(bytes_of(out, 6), Bytes(6, 0)) << length;
    }
}

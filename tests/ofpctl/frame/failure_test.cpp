#include "frame/failure.h"

#include <csignal>

#include <gtest/gtest.h>

#include "daemon/result_codes.h"
#include "ofp/result.h"

namespace ofpctl {
namespace {

TEST(ResultCodes, OfTheLibraryAndTheAgentHaveNamesAndSentences)
{
    EXPECT_EQ(result_name(0x22300010), "OFP_RC_NO_REPLY");
    EXPECT_EQ(result_name(agent::NO_INSTANCE), "AGENT_NO_INSTANCE");
    EXPECT_EQ(result_sentence(agent::NO_INSTANCE), "the instance does not exist");
    EXPECT_EQ(result_number(0x1f), "0x0000001f");
}

TEST(ResultCodes, AnUnknownOneIsToldAsANumber)
{
    EXPECT_EQ(result_name(0x12345678), "");
    EXPECT_EQ(result_sentence(0x12345678), "the agent answered with code 0x12345678");
    EXPECT_EQ(failure_name({.code = 0x12345678, .message = {}}), "UNKNOWN");
}

TEST(ResultCodes, GiveTheExitStatus)
{
    EXPECT_EQ(status_of(static_cast<uint32_t>(OFP_RC_FAILED)), 1);
    EXPECT_EQ(status_of(static_cast<uint32_t>(OFP_RC_DAEMON_DOWN)), 3);
    EXPECT_EQ(status_of(static_cast<uint32_t>(OFP_RC_NO_REPLY)), 4);
    EXPECT_EQ(status_of(static_cast<uint32_t>(OFP_RC_NOT_FOUND)), 5);
    EXPECT_EQ(status_of(agent::NO_GROUP), 5);
    EXPECT_EQ(status_of(agent::OTHER_USER), 7);
}

TEST(Failure, AnInterruptHasTheStatusOfItsSignal)
{
    EXPECT_EQ(interrupted(SIGINT, "").status, 130);
    EXPECT_EQ(interrupted(SIGTERM, "").status, 143);
}

} // namespace
} // namespace ofpctl

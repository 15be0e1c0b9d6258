#include "frame/output.h"

#include <csignal>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace ofpctl {
namespace {

struct OutputTest : testing::Test {
    OutputTest() { EXPECT_EQ(pipe(ends), 0); }
    ~OutputTest() override
    {
        close(ends[0]);
        close(ends[1]);
    }
    OutputTest(const OutputTest &) = delete;
    OutputTest &operator=(const OutputTest &) = delete;

    std::string written()
    {
        char text[4096];
        const ssize_t count = read(ends[0], text, sizeof text);
        return count > 0 ? std::string(text, static_cast<std::size_t>(count)) : std::string();
    }

    int ends[2];
};

TEST_F(OutputTest, TextIsWrittenWhenItIsFinished)
{
    Output out(false, ends[1]);
    out.line("one");
    out.write("two");
    out.finish(nullptr);
    EXPECT_EQ(written(), "one\ntwo");
}

TEST_F(OutputTest, JsonWithoutDataIsADocument)
{
    Output out(true, ends[1]);
    out.finish(nullptr);
    EXPECT_EQ(written(), "{\"schema\":\"ofpctl/1\",\"ok\":true}\n");
}

TEST_F(OutputTest, AFailureHasCodeNameMessageAndStatus)
{
    Output out(true, ends[1]);
    const Failure failure{.status = 4, .code = 0x22300010, .message = "no answer"};
    out.finish(&failure);
    EXPECT_EQ(written(), "{\"schema\":\"ofpctl/1\",\"ok\":false,\"error\":{\"code\":\"0x22300010\","
                         "\"name\":\"OFP_RC_NO_REPLY\",\"message\":\"no answer\",\"status\":4}}\n");
}

TEST_F(OutputTest, AFailureWithoutResultCodeIsNamedByItsStatus)
{
    Output out(true, ends[1]);
    const Failure failure = usage_failure("what?");
    out.finish(&failure);
    EXPECT_EQ(written(), "{\"schema\":\"ofpctl/1\",\"ok\":false,\"error\":{\"code\":null,\"name\":"
                         "\"USAGE\",\"message\":\"what?\",\"status\":2}}\n");
}

TEST_F(OutputTest, AFailureAmidDataStillMakesADocument)
{
    Output out(true, ends[1]);
    out.document().begin_array("rules");
    out.document().begin_object();
    const Failure failure = interrupted(SIGINT, "interrupted");
    out.finish(&failure);
    EXPECT_EQ(written(), "{\"schema\":\"ofpctl/1\",\"rules\":[{}],\"ok\":false,\"error\":{\"code\":"
                         "null,\"name\":\"INTERRUPTED\",\"message\":\"interrupted\","
                         "\"status\":130}}\n");
}

TEST(FullOutput, IsAFailure)
{
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    Output out(false, full);
    out.line("lost");
    try {
        out.finish(nullptr);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, 1);
        EXPECT_EQ(failure.message, "standard output: No space left on device");
    }
    close(full);
}

TEST(FullOutput, FailsWhileItIsWrittenTo)
{
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    Output out(false, full);
    const std::string line(1000, 'x');
    EXPECT_THROW(
        {
            for (int i = 0; i < 1000; i++)
                out.line(line);
        },
        Failure);
    EXPECT_NO_THROW(out.finish(nullptr)) << "a broken output is reported once";
    close(full);
}

} // namespace
} // namespace ofpctl

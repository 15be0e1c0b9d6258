#include "frame/process.h"

#include <chrono>

#include <gtest/gtest.h>
#include <unistd.h>

namespace ofpctl {
namespace {

TEST(ProcessStart, IsKnownOfThisProcessAndNotOfOneThatCannotBe)
{
    EXPECT_GT(process_start(getpid()), 0U);
    EXPECT_EQ(process_start(getpid()), process_start(getpid()));
    EXPECT_EQ(process_start(0), 0U);
    EXPECT_LT(process_age_seconds(getpid()).value_or(UINT64_MAX), 3600U);
}

TEST(ProgramOutput, IsWhatTheProgramWrites)
{
    EXPECT_EQ(program_output({"/bin/echo", "a", "b"}, 10), "a b\n");
}

TEST(ProgramOutput, OfOneThatFailsOrIsNotThereIsNothing)
{
    EXPECT_EQ(program_output({"/bin/false"}, 10), std::nullopt);
    EXPECT_EQ(program_output({"/nonexistent"}, 10), std::nullopt);
}

TEST(ProgramOutput, EndsInTimeWhateverTheProgramDoes)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(program_output({"/bin/sleep", "60"}, 1), std::nullopt);
    EXPECT_EQ(program_output({"/bin/sh", "-c", "exec >&-; exec sleep 60"}, 1), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(ProgramOutput, IsCutShort)
{
    const auto text = program_output({"/usr/bin/head", "-c", "100000", "/dev/zero"}, 10);
    EXPECT_LE(text.value_or("").size(), 8192U);
}

} // namespace
} // namespace ofpctl

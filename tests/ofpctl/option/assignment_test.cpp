#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/failure.h"
#include "option/assignment.h"
#include "option/instance_option.h"

namespace ofpctl {
namespace {

using Words = std::vector<std::string>;

std::string refusal(const Words &words)
{
    try {
        parse_assignments(words, instance_settings());
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, status_usage);
        return failure.message;
    }
    return "taken";
}

TEST(Assignments, KeepTheirOrder)
{
    const Words words{"fail-open=standalone", "echo-interval=7"};
    const auto assignments = parse_assignments(words, instance_settings());
    ASSERT_EQ(assignments.size(), 2U);
    EXPECT_EQ(assignments[0].row->name, "fail-open");
    EXPECT_EQ(assignments[0].value, Value(uint64_t{1}));
    EXPECT_EQ(assignments[1].row->name, "echo-interval");
    EXPECT_EQ(assignments[1].value, Value(uint64_t{7}));
}

TEST(Assignments, TheValueMayHoldAnEqualsSign)
{
    const Words words{"description=a=b"};
    EXPECT_EQ(parse_assignments(words, instance_settings()).front().value,
              Value(std::string("a=b")));
}

TEST(Assignments, AWrongNameGetsTheNearest)
{
    EXPECT_EQ(refusal({"echo-intervall=5"}),
              "echo-intervall: no such setting; did you mean echo-interval?");
    EXPECT_EQ(refusal({"failopen=secure"}), "failopen: no such setting; did you mean fail-open?");
}

TEST(Assignments, AMissingValueIsShown)
{
    EXPECT_EQ(refusal({"echo-interval"}),
              "echo-interval: a value is missing: echo-interval=SECONDS");
    EXPECT_EQ(refusal({"fail-open"}),
              "fail-open: a value is missing: fail-open=secure, standalone");
}

TEST(Assignments, ANameStandsOnce)
{
    EXPECT_EQ(refusal({"echo-interval=5", "echo-interval=6"}), "echo-interval is set twice");
}

} // namespace
} // namespace ofpctl

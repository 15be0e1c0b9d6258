#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ofp/platform.h"

namespace {

using Names = std::vector<std::string>;

TEST(NameOrder, CountsAsPeopleDo)
{
    const Names sorted = {"",           "0",        "1",        "GE1/0/1", "GE1/0/2",  "GE1/0/10",
                          "GE1/0/10:1", "GE1/0/11", "GE1/1/1",  "GE2/0/1", "GE10/0/1", "GE10/0/1.7",
                          "Vlan7",      "XGE1",     "XGE1/0/1", "ge1"};
    for (size_t a = 0; a < sorted.size(); ++a) {
        for (size_t b = 0; b < sorted.size(); ++b) {
            int32_t order = IF_JudgeNameOrder(sorted[a].c_str(), sorted[b].c_str());
            EXPECT_EQ(order, a < b ? -1 : a > b ? 1 : 0) << sorted[a] << " " << sorted[b];
        }
    }
}

TEST(NameOrder, NumbersOfAnyLengthCompare)
{
    EXPECT_LT(IF_JudgeNameOrder("p99999999999999999999998", "p99999999999999999999999"), 0);
    EXPECT_GT(IF_JudgeNameOrder("p100000000000000000000000", "p99999999999999999999999"), 0);
    EXPECT_LT(IF_JudgeNameOrder("p18446744073709551615", "p18446744073709551616"), 0);
}

TEST(NameOrder, LeadingZerosCountForNothingButStillDiffer)
{
    EXPECT_LT(IF_JudgeNameOrder("p007", "p8"), 0);
    EXPECT_GT(IF_JudgeNameOrder("p010", "p9"), 0);
    EXPECT_NE(IF_JudgeNameOrder("p01", "p1"), 0);
    EXPECT_EQ(IF_JudgeNameOrder("p01", "p1"), -IF_JudgeNameOrder("p1", "p01"));
    EXPECT_LT(IF_JudgeNameOrder("p01/2", "p1/3"), 0);
    EXPECT_LT(IF_JudgeNameOrder("p1/2", "p01/3"), 0);
}

TEST(NameOrder, NullSortsAsEmpty)
{
    EXPECT_EQ(IF_JudgeNameOrder(nullptr, nullptr), 0);
    EXPECT_EQ(IF_JudgeNameOrder(nullptr, "a"), -1);
    EXPECT_EQ(IF_JudgeNameOrder("a", nullptr), 1);
}

TEST(NameOrder, IsAnOrder)
{
    std::mt19937 random(7);
    constexpr char letters[] = "0019a/";
    auto any_name = [&] {
        std::string name;
        for (size_t length = random() % 6; length > 0; --length) {
            name += letters[random() % 6];
        }
        return name;
    };
    Names names(150);
    std::generate(names.begin(), names.end(), any_name);
    auto before = [&](size_t a, size_t b) {
        return IF_JudgeNameOrder(names[a].c_str(), names[b].c_str()) < 0;
    };
    for (size_t a = 0; a < names.size(); ++a) {
        for (size_t b = 0; b < names.size(); ++b) {
            EXPECT_EQ(before(a, b) || before(b, a), names[a] != names[b]);
            EXPECT_FALSE(before(a, b) && before(b, a)) << names[a] << " " << names[b];
            for (size_t c = 0; before(a, b) && c < names.size(); ++c) {
                EXPECT_TRUE(!before(b, c) || before(a, c))
                    << names[a] << " " << names[b] << " " << names[c];
            }
        }
    }
}

} // namespace

#include "verbs/group_text.h"

#include <string>

#include <gtest/gtest.h>

namespace ofpctl {
namespace {

using Ports = std::vector<uint32_t>;

Group group_of(std::string_view line)
{
    auto parsed = parse_group(line);
    if (auto *group = std::get_if<Group>(&parsed))
        return *group;
    ADD_FAILURE() << line << ": " << to_string(std::get<TextError>(parsed));
    return {};
}

std::string error_of(std::string_view line)
{
    const auto parsed = parse_group(line);
    const auto *error = std::get_if<TextError>(&parsed);
    return error ? std::to_string(error->column) + ": " + to_string(*error) : "accepted";
}

TEST(GroupText, IsThatOfOvsOfctl)
{
    const Group group = group_of("group_id=7,type=all,bucket=output:1,bucket=output:2");
    EXPECT_EQ(group.id, 7U);
    EXPECT_EQ(group.type, GroupType::all);
    EXPECT_EQ(group.ports, (Ports{1, 2}));
}

TEST(GroupText, TakesTheLongerFormsOfABucket)
{
    const Group group = group_of("group_id=0x8, type=fast_failover, "
                                 "bucket=watch_port:3,actions=output:3, "
                                 "bucket=actions=output:FLOOD");
    EXPECT_EQ(group.id, 8U);
    EXPECT_EQ(group.type, GroupType::fast_failover);
    EXPECT_EQ(group.ports, (Ports{3, 0xfffffffb}));
}

TEST(GroupText, TypeMayStandAnywhereBeforeTheBuckets)
{
    EXPECT_EQ(group_of("type=ff,group_id=1,bucket=output:1").type, GroupType::fast_failover);
}

TEST(GroupText, HoldsAsManyBucketsAsADatagram)
{
    std::string line = "group_id=1,type=all";
    for (int i = 0; i < 254; i++)
        line += ",bucket=output:1";
    EXPECT_EQ(group_of(line).ports.size(), 254U);
    EXPECT_NE(error_of(line + ",bucket=output:1").find("at most 254 buckets"), std::string::npos);
}

TEST(GroupText, ErrorsNameThePlaceAndWhatWouldBeRight)
{
    EXPECT_EQ(error_of("group_id=7,tpe=all,bucket=output:1"),
              "12: 'tpe' is nothing that a group has; did you mean type?");
    EXPECT_EQ(error_of("group_id=7,type=select,bucket=output:1"),
              "17: 'select' is no group type of this switch; expected all or ff (fast failover)");
    EXPECT_EQ(error_of("group_id=7,type=al,bucket=output:1"),
              "17: 'al' is no group type there is; expected all or ff (fast failover)");
    EXPECT_EQ(error_of("type=all,bucket=output:1").substr(0, 23), "1: group_id is missing;");
    EXPECT_EQ(error_of("group_id=7,bucket=output:1"),
              "1: type is missing; add type=all or type=ff");
    EXPECT_EQ(error_of("group_id=7,type=all"),
              "1: the group has no bucket; add bucket=output:PORT");
    EXPECT_EQ(error_of("group_id=7,type=all,bucket="),
              "28: the bucket outputs to no port; expected output:PORT");
    EXPECT_EQ(error_of("group_id=7,type=all,bucket=weight:5,output:1"),
              "28: 'weight' is nothing that a bucket has; a bucket is output:PORT");
    EXPECT_EQ(error_of("group_id=7,type=all,bucket=output:1,output:2"),
              "37: a second output in one bucket; begin another one with bucket=");
    EXPECT_EQ(error_of("group_id=7,type=ff,bucket=watch_port:1,output:2"),
              "27: the bucket watches another port than it outputs to; here a bucket always "
              "watches its own port");
}

TEST(GroupText, PortsAreThoseABucketMayHave)
{
    EXPECT_NE(error_of("group_id=1,type=all,bucket=output:0"), "accepted");
    EXPECT_NE(error_of("group_id=1,type=all,bucket=output:TABLE"), "accepted");
    EXPECT_NE(error_of("group_id=1,type=all,bucket=output:ANY"), "accepted");
    EXPECT_NE(error_of("group_id=1,type=all,bucket=output:0xffffff01"), "accepted");
    EXPECT_EQ(error_of("group_id=1,type=all,bucket=output:0xffffff00"), "accepted");
}

TEST(GroupText, GroupIdsEndWhereReservedOnesBegin)
{
    EXPECT_EQ(group_of("group_id=0xffffff00,type=all,bucket=output:1").id, 0xffffff00U);
    EXPECT_NE(error_of("group_id=0xffffff01,type=all,bucket=output:1"), "accepted");
}

TEST(GroupText, NoLineBreaksTheParser)
{
    const std::string whole = "group_id=7,type=all,bucket=watch_port:1,actions=output:1";
    for (std::size_t end = 0; end <= whole.size(); end++) {
        parse_group(std::string_view(whole).substr(0, end));
        std::string changed = whole;
        for (const char c : {',', '=', ':', ' ', '\0', '\xff'}) {
            if (end < whole.size())
                changed[end] = c;
            const auto parsed = parse_group(changed);
            if (const auto *error = std::get_if<TextError>(&parsed)) {
                EXPECT_GE(error->column, 1U);
                EXPECT_LE(error->column + error->length, changed.size() + 2) << changed;
            }
        }
    }
}

} // namespace
} // namespace ofpctl

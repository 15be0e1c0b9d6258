#include <string_view>

#include <gtest/gtest.h>

#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

std::string actions_of(std::string_view text)
{
    const FlowItemPtr item = parsed("in_port=1,actions=" + std::string(text));
    return item ? format_actions(*item) : std::string();
}

TEST(FlowAction, OutputIsAPortOfItsOwnKind)
{
    EXPECT_EQ(actions_of("output:5"), "write_actions(output:5)");
    EXPECT_EQ(actions_of("output=5"), "write_actions(output:5)");
    EXPECT_EQ(actions_of("Output(5)"), "write_actions(output:5)");
    EXPECT_EQ(actions_of("5"), "write_actions(output:5)");
    EXPECT_EQ(actions_of("0x5"), "write_actions(output:5)");
    EXPECT_EQ(actions_of("output:4294967040"), "write_actions(output:4294967040)");
    EXPECT_EQ(actions_of("output:LOCAL,local,IN_PORT,normal,FLOOD,All"),
              "write_actions(LOCAL,LOCAL,IN_PORT,NORMAL,FLOOD,ALL)");
    EXPECT_EQ(actions_of("controller,CONTROLLER:0,controller(0),output:CONTROLLER"),
              "write_actions(CONTROLLER,CONTROLLER,CONTROLLER,CONTROLLER)");
    const FlowItemPtr item = parsed("actions=output:5,LOCAL,0xfffffffb");
    ASSERT_EQ(item->action_count, 3U);
    EXPECT_EQ(carried(*item).substr(carried(*item).find("action")),
              "action 00000000100000000200000005000000\n"   // number 5
              "action 000000001000000001000000feffffff\n"   // reserved LOCAL
              "action 000000001000000001000000fbffffff\n"); // reserved FLOOD
}

TEST(FlowAction, GroupIsAnId)
{
    EXPECT_EQ(actions_of("group:7"), "write_actions(group:7)");
    EXPECT_EQ(actions_of("group=0"), "write_actions(group:0)");
    EXPECT_EQ(actions_of("group:0xffffff00"), "write_actions(group:4294967040)");
}

// The subtype stands twice in the record: where the encoder reads it and where the sizing does.
TEST(FlowAction, ExperimenterActionsHaveTheValuesOfTheirSubtype)
{
    EXPECT_EQ(actions_of("exp(0):1:2"), "write_actions(exp(0):1:2)");
    EXPECT_EQ(actions_of("exp(1):0x10"), "write_actions(exp(1):16)");
    EXPECT_EQ(actions_of("exp(2)=4294967295"), "write_actions(exp(2):4294967295)");
    EXPECT_EQ(actions_of("EXP(3):0:1:2:a:B:c"), "write_actions(exp(3):00:01:02:0a:0b:0c)");
    const FlowItemPtr item = parsed("actions=exp(0):1:2,exp(3):0:1:2:3:4:5");
    EXPECT_EQ(carried(*item).substr(carried(*item).find("action")),
              "action ffff00001800000000000000000000000100000002000000\n"
              "action ffff00001800000003000000030000000001020304050000\n");
}

TEST(FlowAction, NothingIsDrop)
{
    for (const std::string_view text : {"drop", "", "DROP", "drop,", "write_actions()",
                                        "write_actions(drop)", " ", "write_actions( )"})
        EXPECT_EQ(actions_of(text), "drop") << text;
    EXPECT_EQ(parsed("actions=drop")->actions, nullptr);
}

TEST(FlowAction, WriteActionsIsWhatIsWrittenAnyway)
{
    EXPECT_EQ(actions_of("write_actions(output:1,group:2)"), "write_actions(output:1,group:2)");
    EXPECT_EQ(actions_of("Write_Actions( 1 , 2 )"), "write_actions(output:1,output:2)");
    EXPECT_EQ(actions_of("1 group:2"), "write_actions(output:1,group:2)");
    EXPECT_EQ(actions_of("write_actions(output(1),exp(0):1:2)"),
              "write_actions(output:1,exp(0):1:2)");
}

TEST(FlowAction, OthersArePrintedAsWhatCannotBeLoaded)
{
    OfpAction pop = {18, sizeof pop};
    OfpAction *list[] = {nullptr, &pop};
    Record record;
    record.item.action_count = 2;
    record.item.actions = list;
    EXPECT_EQ(format_actions(record.item), "write_actions(action(18))");
    EXPECT_EQ(refused("actions=" + format_actions(record.item)),
              "23+6 unknown action 'action'; expected output:PORT, group:ID, drop or "
              "exp(SUBTYPE):VALUE");
}

} // namespace
} // namespace flow_test

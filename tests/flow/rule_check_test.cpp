#include "flow/rule_check.h"

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

bool passes(const Rule &rule) { return ofp::check_rules(1, &rule.item, nullptr); }

bool output_passes(uint32_t kind, uint32_t port)
{
    Rule rule(1);
    rule.action(OFP_ACTION_OUTPUT, {kind, port});
    return passes(rule);
}

} // namespace

TEST(RuleCheck, PriorityZeroNeedsAMatch)
{
    Rule empty, with_match(1), with_priority;
    empty.item.priority = 0;
    EXPECT_FALSE(passes(empty));
    with_match.item.priority = 0;
    EXPECT_TRUE(passes(with_match));
    with_priority.item.priority = 1;
    EXPECT_TRUE(passes(with_priority));
}

TEST(RuleCheck, TheMatchIsChecked)
{
    Rule rule(1);
    rule.has({OFP_FIELD_VLAN_VID}).item.match.vlan_vid = 4096;
    EXPECT_FALSE(passes(rule));
}

TEST(RuleCheck, OutputTakesPortNumbersUpTo0xffffff00)
{
    for (uint32_t port : {1u, 2u, 0xffffff00u})
        EXPECT_TRUE(output_passes(OFP_PORT_NUMBER, port)) << port;
    for (uint32_t port : {0u, 0xffffff01u, 0xfffffff8u, 0xffffffffu})
        EXPECT_FALSE(output_passes(OFP_PORT_NUMBER, port)) << port;
}

TEST(RuleCheck, OutputTakesTheReservedPortsButTableAndAny)
{
    for (uint32_t port = 0xfffffff0; port < 0xfffffff8; ++port)
        EXPECT_FALSE(output_passes(OFP_PORT_RESERVED, port)) << std::hex << port;
    for (uint32_t port :
         {0xfffffff8u, 0xfffffffau, 0xfffffffbu, 0xfffffffcu, 0xfffffffdu, 0xfffffffeu})
        EXPECT_TRUE(output_passes(OFP_PORT_RESERVED, port)) << std::hex << port;
    EXPECT_FALSE(output_passes(OFP_PORT_RESERVED, 0xfffffff9));
    EXPECT_FALSE(output_passes(OFP_PORT_RESERVED, 0xffffffff));
    EXPECT_FALSE(output_passes(OFP_PORT_RESERVED, 1));
}

TEST(RuleCheck, OutputTakesNoOtherPortKind)
{
    for (uint32_t kind : {0u, 3u, 0xffffffffu})
        EXPECT_FALSE(output_passes(kind, 1)) << kind;
}

TEST(RuleCheck, GroupAndExperimenterActionsAreNotExamined)
{
    Rule rule(1);
    rule.group(0xffffffff).action(OFP_ACTION_EXPERIMENTER, {77, 77});
    EXPECT_TRUE(passes(rule));
}

TEST(RuleCheck, OtherActionTypesAreRefused)
{
    for (uint32_t type : {1u, 11u, 21u, 23u, 25u, 61440u, 65534u, 65536u}) {
        Rule rule(1);
        rule.output(1).action(type, {0, 0});
        EXPECT_FALSE(passes(rule)) << type;
    }
}

TEST(RuleCheck, ListsHoldWhatTheyCount)
{
    Rule null_action(1), no_actions(1), no_interfaces(1), null_item(1);
    null_action.output(1).action(nullptr);
    EXPECT_FALSE(passes(null_action));
    no_actions.item.action_count = 1;
    EXPECT_FALSE(passes(no_actions));
    no_interfaces.item.match.batch_if.count = 3;
    EXPECT_TRUE(passes(no_interfaces)) << "they do not take part";
    no_interfaces.has({OFP_FIELD_BATCH_IF});
    EXPECT_FALSE(passes(no_interfaces));
    null_item.experimenter(37, hex("01000000")).experimenter(nullptr);
    EXPECT_FALSE(passes(null_item));
}

TEST(RuleCheck, EndsAtTheFirstMalformedRule)
{
    Rules rules(4);
    rules[1].item.priority = 0;
    rules[1].item.match.fields = 0;
    rules[3].action(nullptr);
    std::vector<uint64_t> results(4, 5);
    EXPECT_FALSE(ofp::check_rules(4, rules.items(), results.data()));
    EXPECT_EQ(results, std::vector<uint64_t>({5, OFP_RC_INVALID, 5, 5}));
    EXPECT_FALSE(ofp::check_rules(4, rules.items(), nullptr));
    EXPECT_TRUE(ofp::check_rules(1, rules.items(), results.data()));
}

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "flow/flow_json.h"
#include "flow/json_tree.h"
#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

// The member "match" of a rule.
std::string match_json(std::string_view line)
{
    const FlowItemPtr item = parsed(std::string(line) + ",actions=drop");
    if (!item)
        return {};
    constexpr std::string_view head = R"({"table":200,"priority":32768,"match":)";
    constexpr std::string_view tail = R"(,"actions":[]})";
    const std::string json = flow_to_json(*item);
    EXPECT_TRUE(json.starts_with(head) && json.ends_with(tail)) << json;
    return json.substr(head.size(), json.size() - head.size() - tail.size());
}

std::string loaded(std::string_view json)
{
    FlowResult result = parse_flow_json(json, ParseMode::program);
    if (const auto *error = std::get_if<TextError>(&result))
        return to_string(*error);
    return format_flow(*std::get<Flow>(result).item);
}

TEST(FlowJson, OneMemberAFieldUnderItsStandardName)
{
    EXPECT_EQ(match_json("tcp,nw_src=10.0.0.0/8,tp_dst=80,in_port=3,nw_tos=40"),
              R"({"in_port":3,"eth_type":"0x0800","ipv4_src":"10.0.0.0/8","ip_proto":6,)"
              R"("ip_dscp":10,"tcp_dst":80})");
    EXPECT_EQ(match_json("icmp6,icmp_type=135,nd_sll=0:1:2:3:4:5,ipv6_label=5"),
              R"({"eth_type":"0x86dd","ipv6_flabel":"0x00005","ip_proto":58,"icmpv6_type":135,)"
              R"("ipv6_nd_sll":"00:01:02:03:04:05"})");
    EXPECT_EQ(match_json("in_port=LOCAL,vlan_vid=0x1000/0x1000,dl_vlan_pcp=3"),
              R"({"in_port":"LOCAL","vlan_vid":"0x1000/0x1000","vlan_pcp":3})");
    EXPECT_EQ(match_json("dl_vlan=5,cvlan=6"), R"({"vlan_vid":"0x1005","cvlan_vid":"0x1006"})");
    EXPECT_EQ(match_json("vrf=1,batch_if=3:4:5,ip_range=1:2"),
              R"({"ip_range":"0x1:0x2","batch_if":[3,4,5],"vrf":1})");
    EXPECT_EQ(match_json(""), "{}");
}

TEST(FlowJson, WideAndMaskedNumbersAreStrings)
{
    EXPECT_EQ(match_json("metadata=5,tun_id=0xffffffffffffffff"),
              R"({"tunnel_id":"0xffffffffffffffff","metadata":"0x5"})");
    EXPECT_EQ(match_json("udp,tp_src=0x10/0xfff0"),
              R"({"eth_type":"0x0800","ip_proto":17,"udp_src":"0x10/0xfff0"})");
}

TEST(FlowJson, ExperimenterItemsAreAListInOrder)
{
    EXPECT_EQ(match_json("flow_flag=5,string=\"a\\\"b\",flow_flag=6,exp(9)"),
              R"({"experimenter":[{"flow_flag":"0x5"},{"string":"a\"b"},{"flow_flag":"0x6"},)"
              R"j({"exp(9)":""}]})j");
    // JSON cannot hold any byte: such a text is data.
    EXPECT_EQ(match_json("string=\"\\xff\""), R"j({"experimenter":[{"exp(38)":"00000001ff"}]})j");
}

TEST(FlowJson, ActionsAreAListOfOneMemberEach)
{
    EXPECT_EQ(flow_to_json(*parsed("priority=1,actions=1,LOCAL,group:2,exp(0):1:2,exp(1):3,"
                                   "exp(3):0:1:2:3:4:5"),
                           201),
              R"({"table":201,"priority":1,"match":{},"actions":[{"output":1},{"output":"LOCAL"},)"
              R"j({"group":2},{"exp(0)":"1:2"},{"exp(1)":3},{"exp(3)":"00:01:02:03:04:05"}]})j");
}

TEST(FlowJson, LoadsNumbersStringsTruthsAndLists)
{
    EXPECT_EQ(loaded(R"({"match":{"tcp":true,"tp_dst":80,"nw_src":"10.0.0.0/8"},)"
                     R"("actions":[{"output":"LOCAL"},{"group":"7"}],"priority":"5"})"),
              "table=200,priority=5,tcp,nw_src=10.0.0.0/8,tp_dst=80,"
              "actions=write_actions(LOCAL,group:7)");
    EXPECT_EQ(loaded(R"({"match":{"batch_if":[1,2,"5-7"],"ip_range":[1,"0x2"]},"actions":[]})"),
              "table=200,priority=32768,ip_range=0x1:0x2,batch_if=1:2:5-7,actions=drop");
    EXPECT_EQ(loaded(R"j({"actions":[{"exp(0)":[1,2]}],"table":200})j"),
              "table=200,priority=32768,actions=write_actions(exp(0):1:2)");
    EXPECT_EQ(loaded(R"({"match":{"experimenter":[{"string":"a,\"b"}]},"actions":[]})"),
              R"(table=200,priority=32768,string="a,\"b",actions=drop)");
}

TEST(FlowJson, ActionsMayBeLeftOutWhenRulesAreSelected)
{
    EXPECT_TRUE(
        std::holds_alternative<Flow>(parse_flow_json(R"({"match":{}})", ParseMode::select)));
}

TEST(FlowJson, ErrorsStandAtTheMember)
{
    struct Row {
        std::string_view json;
        std::string_view told;
    };
    for (const auto &[json, told] : std::initializer_list<Row>{
             {R"({"match":{"tcp_dst":80},"actions":[]})", "11+9 tcp_dst needs tcp or tcp6"},
             {R"({"match":{"nw_scr":"1.2.3.4"},"actions":[]})",
              "11+8 unknown field 'nw_scr'; did you mean nw_src?"},
             {R"({"match":{"priority":1},"actions":[]})", "11+10 priority is no match field"},
             {R"({"match":{"nw_ttl":1},"actions":[]})",
              "11+8 the library has no match field nw_ttl; leave nw_ttl out"},
             {R"({"match":{"in_port":1.5},"actions":[]})",
              "11+9 '1.5' is no number for in_port; expected 0 to 4294967295, or hexadecimal "
              "after 0x"},
             {R"({"match":{"in_port":null},"actions":[]})", "11+9 in_port is no number or string"},
             {R"({"match":{"in_port":{}},"actions":[]})", "11+9 in_port is no number or string"},
             {R"({"match":{"ip":false},"actions":[]})", "11+4 ip cannot be false; leave it out"},
             {R"({"match":{"in_port":1,"in_port":2},"actions":[]})", "23+9 duplicate in_port"},
             {R"({"match":{"batch_if":[1,[]]},"actions":[]})",
              "11+10 batch_if is no number or string"},
             {R"({"match":{"experimenter":{}},"actions":[]})", "11+14 experimenter is no array"},
             {R"({"match":{"experimenter":[5]},"actions":[]})",
              "27+1 an experimenter match is no object of one member; write {\"NAME\": VALUE}"},
             {R"({"match":5,"actions":[]})", "2+7 match is no object"},
             {R"({"match":{}})",
              "1+1 the actions are missing; add actions=ACTION,... or actions=drop"},
             {R"({"match":{},"actions":{}})",
              "13+9 actions is no array; write [{\"output\": PORT}], or [] for drop"},
             {R"({"match":{},"actions":[{"output":1,"group":2}]})",
              "24+1 an action is no object of one member; write {\"output\": PORT} or "
              "{\"group\": ID}"},
             {R"({"match":{},"actions":[{"output":"1,2"}]})", "25+8 '1,2' is no output"},
             {R"({"match":{},"actions":[{"output":"TABLE"}]})",
              "25+8 the library refuses output to TABLE; expected a number, IN_PORT, NORMAL, "
              "FLOOD, ALL, CONTROLLER or LOCAL"},
             {R"({"match":{},"actions":[{"set_field":1}]})",
              "25+11 the library cannot send set_field; it writes output, group and exp in one "
              "write_actions"},
             {R"({"table":7,"actions":[]})",
              "2+7 the library programs table 200 only; write table=200"},
             {R"({"priority":65536,"actions":[]})",
              "2+10 65536 is too large for priority; expected 0 to 65535"},
             {R"({"actons":[]})", "2+8 unknown member 'actons'; did you mean actions?"},
             {R"([])", "1+1 a rule is no object; write {\"match\": {...}, \"actions\": [...]}"},
             {R"({"match":})",
              "10+1 this is no JSON: syntax error while parsing value - unexpected '}'; expected "
              "'[', '{', or a literal"},
             {R"([[[[[[[[[[[[[[[[[)", "17+1 nested too deeply"},
         })
        EXPECT_EQ(refused_json(json), told) << json;
    EXPECT_NE(refused_json("").find("this is no JSON"), std::string::npos);
    EXPECT_NE(refused_json("{} {}").find("this is no JSON"), std::string::npos);
}

TEST(FlowJson, NamesWithEscapesKeepTheErrorInTheText)
{
    const std::string json = R"({"match":{"\u0061\u0062\u0063":1},"actions":[]})";
    EXPECT_EQ(refused_json(json), "30+5 unknown field 'abc'");
}

TEST(FlowJson, DocumentsAreARuleAListOrAListing)
{
    for (const std::string_view document : {
             R"({"match":{"vrf":1},"actions":[]})",
             R"([{"match":{"vrf":1},"actions":[]}])",
             R"({"schema":"ofpctl/1","ok":true,"rules":[{"match":{"vrf":1},"actions":[]}]})",
             R"({"rules":[{"id":7,"rule":{"match":{"vrf":1},"actions":[]},"packets":"5"}]})",
         }) {
        FlowSet flows;
        EXPECT_TRUE(parse_flows_json(document, ParseMode::program, 10, flows).empty()) << document;
        ASSERT_EQ(flows.size(), 1U) << document;
        EXPECT_EQ(flows.items()[0].match.vrf, 1) << document;
        EXPECT_EQ(flows.source_line(0), 0U);
    }
}

TEST(FlowJson, ADocumentTellsOfAsManyErrorsAsAreAskedFor)
{
    FlowSet flows;
    const auto errors = parse_flows_json(R"([1,{"actions":[]},2,3])", ParseMode::program, 2, flows);
    ASSERT_EQ(errors.size(), 2U);
    EXPECT_EQ(errors[0].column, 2U);
    EXPECT_EQ(errors[1].column, 19U);
    EXPECT_EQ(flows.size(), 1U);
}

TEST(JsonTree, StringsAreEscaped)
{
    std::string out;
    append_json_string(out, "a\"\\\n\x7f");
    EXPECT_EQ(out, R"("a\"\\\u000a\u007f")");
}

} // namespace
} // namespace flow_test

// packet trace and send: the agent's own message, which the library does not know.
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "daemon/packet_message.h"
#include "flow/field_table.h"
#include "flow/flow_reader.h"
#include "flow/flow_text.h"
#include "flow/match_text.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/message.h"
#include "ofp.h"
#include "openflow/wire.h"
#include "verbs/nouns.h"
#include "verbs/packet_text.h"
#include "verbs/rule_store.h"

namespace ofpctl {

namespace {

using openflow::store;

constexpr uint64_t wait = 30; // seconds; --timeout may make it less

// ---- The packet

// What a packet cannot have, or an empty text.
std::string not_of_a_packet(const OfpFlowItem &item)
{
    const OfpFRMatch &match = item.match;
    if (item.action_count != 0)
        return "a packet has no actions";
    if (match.exp_match.count != 0)
        return "a packet has no experimenter items";
    for (const Field &field : all_fields()) {
        if ((match.fields & field_bit(field.bit)) == 0)
            continue;
        if (field.form == Form::words || field.form == Form::interfaces)
            return fmt::format("a packet has no {}", field.name);
        if (match.mask != nullptr && (match.mask->masked & field_bit(field.bit)) != 0)
            return fmt::format("{} has a mask; a packet has one value", field.name);
    }
    return {};
}

FlowItemPtr read_packet(const Context &context)
{
    const std::string &line = context.arguments.operands().front();
    FlowResult parsed = parse_flow(line, ParseMode::select);
    if (const auto *error = std::get_if<TextError>(&parsed)) {
        remark(render({.file = "argument 1", .line = 1, .what = *error, .text = line}));
        throw usage_failure("1 error in the packet; nothing was sent");
    }
    FlowItemPtr item = std::move(std::get<Flow>(parsed).item);
    const std::string wrong = not_of_a_packet(*item);
    if (!wrong.empty())
        throw usage_failure(wrong + "; nothing was sent");
    return item;
}

// ---- The exchange

void append_tlv(std::vector<uint8_t> &request, uint16_t type, std::span<const uint8_t> value)
{
    const std::size_t at = request.size();
    request.resize(at + 4);
    store<uint16_t>(&request[at], type);
    store<uint16_t>(&request[at + 2], static_cast<uint16_t>(value.size()));
    request.insert(request.end(), value.begin(), value.end());
}

std::vector<uint8_t> encode(const OfpFlowItem &packet, const agent::PacketQueryRecord &query)
{
    uint8_t head[4];
    store<uint32_t>(head, agent::MSG_PACKET);
    uint8_t record[sizeof query];
    store<uint16_t>(record, query.instance_id);
    record[2] = query.flags;
    record[3] = query.table_id;
    store<uint32_t>(record + 4, query.bytes);
    uint8_t match[OFP_DATAGRAM_SIZE];
    if (OFP_encodeoxm_CheckMatch(&packet.match) != 0)
        throw usage_failure("a value is out of its range; nothing was sent");
    OFP_encodeoxm_Fill(&packet.match, sizeof match, match);
    const uint16_t length = openflow::load16(match + 2); // its header included, pad bytes not

    std::vector<uint8_t> request;
    append_tlv(request, OFP_TLV_MsgHead, head);
    append_tlv(request, agent::TLV_PACKET_QUERY, record);
    append_tlv(request, agent::TLV_PACKET_FIELDS, std::span(match).subspan(4, length - 4U));
    return request;
}

class Channel {
public:
    Channel() { socket_ = OFP_plgn_Connect(wait, &code_); }
    ~Channel()
    {
        if (socket_ >= 0)
            OFP_plgn_Close(socket_);
    }
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    uint32_t exchange(std::span<const uint8_t> request, std::vector<uint8_t> &reply)
    {
        if (socket_ < 0)
            return static_cast<uint32_t>(code_);
        if (const uint32_t code = OFP_util_Send(socket_, request.data(), request.size()))
            return code;
        reply.resize(OFP_LARGE_DATAGRAM_SIZE);
        reply.resize(OFP_util_Recv(socket_, reply.size(), reply.data()));
        OfpErrCode result{};
        if (OFP_msg_DecapBasicMsg(reply.data(), reply.size(), OFP_MSG_RESULT, OFP_TLV_ErrCode,
                                  sizeof result, &result) != 0)
            return result.code;
        return reply.empty() ? static_cast<uint32_t>(OFP_RC_NO_REPLY) : 0;
    }

private:
    uint64_t code_ = 0;
    int32_t socket_;
};

PacketReply ask(const OfpFlowItem &packet, const agent::PacketQueryRecord &query)
{
    std::vector<uint8_t> datagram;
    require_success(Channel().exchange(encode(packet, query), datagram), "packet");
    auto reply = read_packet_reply(datagram);
    if (!reply)
        throw Failure{.message = "packet: the agent's answer cannot be read"};
    return std::move(*reply);
}

void follow_packet(Context &context, const agent::PacketQueryRecord &query)
{
    const FlowItemPtr packet = read_packet(context);
    require_agent();
    const PacketReply reply = ask(*packet, query);
    const auto rule_text = [&query](uint8_t table, uint32_t id) {
        const auto rule = find_rule(query.instance_id, table, id);
        return rule ? format_flow(*rule->item, table) : std::string();
    };
    print_packet(context.out, format_match(packet->match), reply, rule_text);
}

agent::PacketQueryRecord query_of(const Context &context)
{
    agent::PacketQueryRecord query{};
    query.instance_id = static_cast<uint16_t>(context.arguments.number("instance"));
    query.table_id = context.arguments.given("table")
                         ? static_cast<uint8_t>(context.arguments.number("table"))
                         : agent::PACKET_DEFAULT_TABLE;
    return query;
}

void trace_packet(Context &context) { follow_packet(context, query_of(context)); }

void send_packet(Context &context)
{
    agent::PacketQueryRecord query = query_of(context);
    query.flags = agent::PACKET_SEND;
    query.bytes = context.arguments.number("bytes");
    follow_packet(context, query);
}

// ---- The rows

constexpr OptionRow instance_option{
    .name = "instance",
    .kind = Kind::number,
    .value = "ID",
    .help = "the instance it enters; a client's rules are in the one with its id",
    .fallback = "4096",
    .least = 1,
    .most = UINT16_MAX};

constexpr OptionRow table_option{.name = "table",
                                 .kind = Kind::number,
                                 .value = "ID",
                                 .help = "the table it enters; else a client's table 200, or the "
                                         "instance's first one",
                                 .least = 0,
                                 .most = 254};

constexpr OptionRow trace_options[] = {instance_option, table_option};
constexpr OptionRow send_options[] = {instance_option,
                                      table_option,
                                      {.name = "bytes",
                                       .kind = Kind::number,
                                       .value = "N",
                                       .help = "its length",
                                       .fallback = "64",
                                       .least = 14,
                                       .most = 65535}};

constexpr Example trace_examples[] = {
    {"ofpctl packet trace in_port=1,tcp,nw_src=10.0.0.1,nw_dst=10.0.0.2,tp_dst=443",
     "Which rule such a packet meets, why no better one, and where it goes"},
    {"ofpctl packet trace in_port=1,arp --json", "The same as JSON"},
};
constexpr Example send_examples[] = {
    {"ofpctl packet send in_port=1,ip,nw_dst=10.0.0.2 --bytes 1500",
     "The rules, groups and buckets on its way count it"},
};

constexpr Verb rows[] = {
    {.name = "trace",
     .run = trace_packet,
     .help = "Shows what the switch would do with a packet.",
     .details = "A packet is written like a match without masks; what is not written is 0. It "
                "shows the tables it visits, in each the rule that matches, the better rule that "
                "nearly did and the fields that kept it from that, then the action set and the "
                "ports. Nothing is counted.",
     .operands = {"PACKET", Kind::text, 1, 1},
     .options = trace_options,
     .examples = trace_examples},
    {.name = "send",
     .run = send_packet,
     .help = "Sends a packet through the tables, which count it.",
     .details = "As trace, and the packet is counted. No packet leaves the agent.",
     .operands = {"PACKET", Kind::text, 1, 1},
     .options = send_options,
     .examples = send_examples},
};

} // namespace

const std::span<const Verb> packet_verbs = rows;

} // namespace ofpctl

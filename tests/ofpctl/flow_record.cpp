#include "flow_record.h"

#include <cstring>
#include <variant>

#include <gtest/gtest.h>

#include "flow/flow_json.h"

namespace flow_test {

using namespace ofpctl;

FlowItemPtr parsed(std::string_view line)
{
    FlowResult result = parse_flow(line, ParseMode::program);
    if (const auto *error = std::get_if<TextError>(&result)) {
        ADD_FAILURE() << line << "\ncolumn " << error->column << ": " << to_string(*error);
        return nullptr;
    }
    return std::move(std::get<Flow>(result).item);
}

std::string reprinted(std::string_view line)
{
    const FlowItemPtr item = parsed(line);
    if (!item)
        return {};
    std::string text = format_flow(*item);
    for (const std::string_view head : {"table=200,", "priority=32768,"}) {
        if (text.starts_with(head))
            text.erase(0, head.size());
    }
    constexpr std::string_view tail = ",actions=drop";
    return text.ends_with(tail) ? text.substr(0, text.size() - tail.size()) : text;
}

namespace {

std::string told(const FlowResult &result, std::string_view text)
{
    const auto *error = std::get_if<TextError>(&result);
    if (error == nullptr) {
        ADD_FAILURE() << text << " loads";
        return {};
    }
    return std::to_string(error->column) + "+" + std::to_string(error->length) + " " +
           to_string(*error);
}

} // namespace

std::string refused(std::string_view line, ParseMode mode)
{
    return told(parse_flow(line, mode), line);
}

std::string refused_json(std::string_view object)
{
    return told(parse_flow_json(object, ParseMode::program), object);
}

// ---- What an item carries ----

namespace {

std::string hex(const void *data, std::size_t size)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string out;
    for (std::size_t i = 0; i < size; ++i) {
        const uint8_t byte = static_cast<const uint8_t *>(data)[i];
        out += digits[byte >> 4];
        out += digits[byte & 15];
    }
    return out;
}

struct Member {
    unsigned bit;
    const void *value;
    std::size_t size;
    const void *mask;
};

template <class Value>
Member member(unsigned bit, const Value &value)
{
    return {bit, &value, sizeof value, nullptr};
}
template <class Value>
Member member(unsigned bit, const Value &value, const Value &mask)
{
    return {bit, &value, sizeof value, &mask};
}

std::vector<Member> members(const OfpFRMatch &m)
{
    const OfpMatchMask &k = *m.mask;
    return {
        member(0, m.in_port),
        member(1, m.in_phy_port),
        member(2, m.metadata, k.metadata),
        member(3, m.eth_dst, k.eth_dst),
        member(4, m.eth_src, k.eth_src),
        member(5, m.eth_type),
        member(6, m.vlan_vid, k.vlan_vid),
        member(7, m.vlan_pcp),
        member(8, m.ip_dscp),
        member(9, m.ip_ecn),
        member(10, m.ip_proto),
        member(11, m.ipv4_src, k.ipv4_src),
        member(12, m.ipv4_dst, k.ipv4_dst),
        member(13, m.tcp_src, k.tcp_src),
        member(14, m.tcp_dst, k.tcp_dst),
        member(15, m.udp_src, k.udp_src),
        member(16, m.udp_dst, k.udp_dst),
        member(17, m.sctp_src, k.sctp_src),
        member(18, m.sctp_dst, k.sctp_dst),
        member(19, m.icmpv4_type),
        member(20, m.icmpv4_code),
        member(21, m.arp_op),
        member(22, m.arp_spa, k.arp_spa),
        member(23, m.arp_tpa, k.arp_tpa),
        member(24, m.arp_sha, k.arp_sha),
        member(25, m.arp_tha, k.arp_tha),
        member(34, m.mpls_label),
        member(35, m.mpls_tc),
        member(36, m.mpls_bos),
        member(37, m.pbb_isid, k.pbb_isid),
        member(38, m.tunnel_id, k.tunnel_id),
        member(58, m.ip_range),
        member(60, m.vrf),
        member(61, m.fragment),
        member(62, m.out_port),
        member(63, m.cvlan_vid, k.cvlan_vid),
    };
}

std::vector<Member> ipv6_members(const OfpMatchIpv6 &v, const OfpMatchMask &k)
{
    return {
        member(26, v.ipv6_src, k.ipv6_src),
        member(27, v.ipv6_dst, k.ipv6_dst),
        {28, &v.ipv6_flabel, sizeof v.ipv6_flabel, &k.ipv6_flabel},
        {39, &v.ipv6_exthdr, sizeof v.ipv6_exthdr, &k.ipv6_exthdr},
        member(29, v.icmpv6_type),
        member(30, v.icmpv6_code),
        member(31, v.ipv6_nd_target),
        member(32, v.ipv6_nd_sll),
        member(33, v.ipv6_nd_tll),
    };
}

void list(std::string &out, const OfpFRMatch &match, const std::vector<Member> &members)
{
    for (const Member &member : members) {
        if ((match.fields & bit(member.bit)) == 0)
            continue;
        out += "field " + std::to_string(member.bit) + " " + hex(member.value, member.size);
        if ((match.mask->masked & bit(member.bit)) != 0)
            out += member.mask == nullptr ? "/none" : "/" + hex(member.mask, member.size);
        out += '\n';
    }
}

std::string action_text(const OfpAction *action)
{
    if (action == nullptr)
        return "none";
    // The second word of a group action does not travel.
    const std::size_t size = action->type == OFP_ACTION_GROUP ? 12 : action->size;
    return hex(action, size);
}

} // namespace

std::string carried(const OfpFlowItem &item)
{
    const OfpFRMatch &match = item.match;
    std::string out = "priority " + std::to_string(item.priority) + "\n";
    out += "fields " + hex(&match.fields, 8) + " reserved " + std::to_string(match.reserved) + "\n";
    list(out, match, members(match));
    if (match.ipv6 != nullptr)
        list(out, match, ipv6_members(*match.ipv6, *match.mask));
    if ((match.fields & bit(59)) != 0)
        out += "interfaces " + hex(match.batch_if.if_index, match.batch_if.count * 4U) + "\n";
    for (uint32_t i = 0; i < match.exp_match.count; ++i) {
        const OfpExpMatchItem &entry = *match.exp_match.items[i];
        out += "experimenter " + std::to_string(entry.type) + " " + hex(entry.data, entry.length) +
               "\n";
    }
    for (uint32_t i = 0; i < item.action_count; ++i)
        out += "action " + action_text(item.actions[i]) + "\n";
    return out;
}

// ---- Records ----

Record::Record()
{
    item.match.mask = &mask;
    item.match.ipv6 = &ipv6;
}

void Record::add_interface(uint32_t index)
{
    interfaces_.push_back(index);
    item.match.batch_if = {static_cast<uint32_t>(interfaces_.size()), interfaces_.data()};
    item.match.fields |= bit(59);
}

void Record::add_experimenter(uint32_t type, const std::string &data)
{
    blocks_.push_back(
        std::make_unique<uint64_t[]>((sizeof(OfpExpMatchItem) + data.size() + 7) / 8));
    auto *entry = reinterpret_cast<OfpExpMatchItem *>(blocks_.back().get());
    entry->type = type;
    entry->length = static_cast<uint16_t>(data.size());
    std::memcpy(entry->data, data.data(), data.size());
    experimenters_.push_back(entry);
    item.match.exp_match = {static_cast<uint32_t>(experimenters_.size()), experimenters_.data()};
}

template <class T>
T &Record::block()
{
    blocks_.push_back(std::make_unique<uint64_t[]>((sizeof(T) + 7) / 8));
    return *reinterpret_cast<T *>(blocks_.back().get());
}

void Record::add_action(OfpAction &action)
{
    actions_.push_back(&action);
    item.action_count = static_cast<uint32_t>(actions_.size());
    item.actions = actions_.data();
}

void Record::add_output(uint32_t port)
{
    auto &action = block<OfpActionOutput>();
    action = {{0, sizeof action}, port >= 0xfffffff8 ? 1U : 2U, port};
    add_action(action.header);
}

void Record::add_group(uint32_t group)
{
    auto &action = block<OfpActionGroup>();
    action = {{22, sizeof action}, group, 0};
    add_action(action.header);
}

void Record::add_experimenter_action(uint32_t subtype, uint32_t first, uint32_t second)
{
    auto &action = block<OfpActionExperimenter>();
    action = {{65535, sizeof action}, subtype, subtype, {{first, second}}};
    if (subtype == 3) {
        action.body.value[1] = 0;
        std::memcpy(action.body.mac + 4, &second, 2);
    } else if (subtype != 0) {
        action.body.value[1] = 0;
    }
    add_action(action.header);
}

} // namespace flow_test

// Whatever an item holds, the agent's decoder reads from the library's message, and accepts.
#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "ofpctl/flow_record.h"
#include "openflow/message.h"
#include "openflow/oxm.h"
#include "referee/messages.h"

namespace referee {
namespace {

// ---- What is asked: the entries and actions an item calls for, as bytes in network order ----

template <std::unsigned_integral T>
Bytes wire(T value)
{
    Bytes bytes(sizeof value);
    for (std::size_t i = 0; i < sizeof value; ++i)
        bytes[i] = static_cast<uint8_t>(uint64_t{value} >> 8 * (sizeof value - 1 - i));
    return bytes;
}
template <std::size_t Size>
Bytes wire(const uint8_t (&value)[Size])
{
    return {value, value + Size};
}
Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

struct Entry {
    uint16_t oxm_class;
    uint8_t field;
    Bytes value;
    Bytes mask;
    bool operator==(const Entry &) const = default;
};

constexpr uint16_t basic = 0x8000;
constexpr uint16_t experimenter = 0xffff;
const Bytes experimenter_id = {0, 0, 0x0f, 0xe2};
constexpr uint16_t vlan_present = 0x1000;

class Asked {
public:
    explicit Asked(const OfpFRMatch &match) : match_(match)
    {
        list_ethernet();
        list_ip();
        list_transport();
        list_arp();
        list_ipv6();
        list_labels();
        list_private();
        list_experimenters();
    }
    std::vector<Entry> entries;

private:
    bool has(unsigned field) const { return (match_.fields >> field & 1) != 0; }
    void entry(unsigned field, const Bytes &value, const Bytes &mask = {})
    {
        const bool masked = (match_.mask->masked >> field & 1) != 0;
        if (has(field))
            entries.push_back({field < 40 ? basic : experimenter, static_cast<uint8_t>(field),
                               value, masked ? mask : Bytes()});
    }
    template <class T>
    void masked(unsigned field, const T &value, const T &mask)
    {
        entry(field, wire(value), wire(mask));
    }
    void vlan(unsigned field, uint16_t value, uint16_t mask)
    {
        entry(field, wire(static_cast<uint16_t>(value | vlan_present)),
              wire(static_cast<uint16_t>(mask | vlan_present)));
    }
    void list_ethernet()
    {
        entry(0, wire(match_.in_port));
        entry(1, wire(match_.in_phy_port));
        masked(2, match_.metadata, match_.mask->metadata);
        masked(3, match_.eth_dst, match_.mask->eth_dst);
        masked(4, match_.eth_src, match_.mask->eth_src);
        entry(5, wire(match_.eth_type));
        vlan(6, match_.vlan_vid, match_.mask->vlan_vid);
        entry(7, wire(match_.vlan_pcp));
    }
    void list_ip()
    {
        entry(8, wire(match_.ip_dscp));
        entry(9, wire(match_.ip_ecn));
        entry(10, wire(match_.ip_proto));
        masked(11, match_.ipv4_src, match_.mask->ipv4_src);
        masked(12, match_.ipv4_dst, match_.mask->ipv4_dst);
    }
    void list_transport()
    {
        masked(13, match_.tcp_src, match_.mask->tcp_src);
        masked(14, match_.tcp_dst, match_.mask->tcp_dst);
        masked(15, match_.udp_src, match_.mask->udp_src);
        masked(16, match_.udp_dst, match_.mask->udp_dst);
        masked(17, match_.sctp_src, match_.mask->sctp_src);
        masked(18, match_.sctp_dst, match_.mask->sctp_dst);
        entry(19, wire(match_.icmpv4_type));
        entry(20, wire(match_.icmpv4_code));
    }
    void list_arp()
    {
        entry(21, wire(match_.arp_op));
        masked(22, match_.arp_spa, match_.mask->arp_spa);
        masked(23, match_.arp_tpa, match_.mask->arp_tpa);
        masked(24, match_.arp_sha, match_.mask->arp_sha);
        masked(25, match_.arp_tha, match_.mask->arp_tha);
    }
    void list_ipv6()
    {
        const OfpMatchIpv6 &ipv6 = *match_.ipv6;
        masked(26, ipv6.ipv6_src, match_.mask->ipv6_src);
        masked(27, ipv6.ipv6_dst, match_.mask->ipv6_dst);
        entry(28, wire(uint32_t{ipv6.ipv6_flabel}), wire(match_.mask->ipv6_flabel));
        entry(29, wire(ipv6.icmpv6_type));
        entry(30, wire(ipv6.icmpv6_code));
        entry(31, wire(ipv6.ipv6_nd_target));
        entry(32, wire(ipv6.ipv6_nd_sll));
        entry(33, wire(ipv6.ipv6_nd_tll));
    }
    void list_labels()
    {
        entry(34, wire(match_.mpls_label));
        entry(35, wire(match_.mpls_tc));
        entry(36, wire(match_.mpls_bos));
        masked(37, match_.pbb_isid, match_.mask->pbb_isid);
        masked(38, match_.tunnel_id, match_.mask->tunnel_id);
        entry(39, wire(uint16_t{match_.ipv6->ipv6_exthdr}), wire(match_.mask->ipv6_exthdr));
    }
    void list_private()
    {
        Bytes words;
        for (const uint32_t word : match_.ip_range)
            words = words + wire(word);
        entry(58, words);
        for (uint32_t first = 0; has(59) && first < match_.batch_if.count; first += 62) {
            Bytes interfaces = experimenter_id;
            for (uint32_t i = first; i < match_.batch_if.count && i < first + 62; ++i)
                interfaces = interfaces + wire(match_.batch_if.if_index[i]);
            entry(59, interfaces);
        }
        entry(60, wire(match_.vrf));
        entry(61, wire(match_.fragment));
        entry(62, wire(match_.out_port));
        vlan(63, match_.cvlan_vid, match_.mask->cvlan_vid);
    }
    void list_experimenters()
    {
        for (uint32_t i = 0; i < match_.exp_match.count; ++i) {
            const OfpExpMatchItem &item = *match_.exp_match.items[i];
            entries.push_back({experimenter,
                               static_cast<uint8_t>(item.type),
                               experimenter_id + payload(item),
                               {}});
        }
    }
    // Numbers change their order, the rest travels as it stands.
    static Bytes payload(const OfpExpMatchItem &item)
    {
        Bytes data(item.data, item.data + item.length);
        switch (item.type) {
        case 37: // flow flag
        case 38: // the kind before a string
        case 44: // reserve
        case 48: // egress port
        case 52: // service
            std::reverse(data.begin(), data.begin() + 4);
            break;
        case 54: // port ranges
        case 55:
        case 56:
        case 57:
            std::reverse(data.begin() + 2, data.end());
            [[fallthrough]];
        case 47: // inner VLAN
            std::reverse(data.begin(), data.begin() + 2);
            break;
        default:
            break;
        }
        return data;
    }

    const OfpFRMatch &match_;
};

Bytes action_asked(const OfpAction &action)
{
    const auto *const words = reinterpret_cast<const uint32_t *>(&action);
    if (action.type == OFP_ACTION_OUTPUT)
        return Bytes{0, 0, 0, 16} + wire(words[3]) + Bytes(8);
    if (action.type == OFP_ACTION_GROUP)
        return Bytes{0, 22, 0, 8} + wire(words[2]);
    const auto &own = reinterpret_cast<const OfpActionExperimenter &>(action);
    const bool wide = own.subtype == 0 || own.subtype == 3;
    const Bytes head = Bytes{0xff, 0xff, 0, static_cast<uint8_t>(wide ? 24 : 16)} +
                       experimenter_id + wire(uint32_t{own.subtype});
    if (own.subtype == 3)
        return head + wire(own.body.mac) + Bytes(6);
    const Bytes first = head + wire(own.body.value[0]);
    return wide ? first + wire(own.body.value[1]) + Bytes(4) : first;
}

// ---- What the agent's decoder reads ----

Bytes copied(openflow::Bytes bytes) { return {bytes.begin(), bytes.end()}; }

std::vector<Entry> entries_read(const openflow::Match &match)
{
    std::vector<Entry> entries;
    openflow::OxmWalk walk(match.entries);
    while (const auto oxm = walk.next()) {
        EXPECT_EQ(oxm->has_mask, !oxm->mask.empty());
        entries.push_back({oxm->oxm_class, oxm->field, copied(oxm->value), copied(oxm->mask)});
    }
    EXPECT_FALSE(walk.truncated());
    return entries;
}

std::vector<Bytes> actions_read(openflow::Bytes instructions)
{
    openflow::InstructionWalk walk(instructions);
    const auto instruction = walk.next();
    EXPECT_TRUE(instruction && instruction->type == openflow::OFPIT_WRITE_ACTIONS);
    EXPECT_FALSE(walk.next());
    EXPECT_FALSE(walk.truncated());
    std::vector<Bytes> actions;
    openflow::ActionWalk each(openflow::actions_of(*instruction));
    while (const auto action = each.next())
        actions.push_back(copied(action->bytes));
    EXPECT_FALSE(each.truncated());
    return actions;
}

// The library sends what it is given; a switch knows no RARP, and takes a field once.
std::string_view error_to_expect(const OfpFRMatch &match)
{
    const uint64_t arp_fields = uint64_t{0x1f} << OFP_FIELD_ARP_OP;
    if (match.eth_type == 0x8035 && (match.fields & arp_fields) != 0)
        return "OFPBMC_BAD_PREREQ";
    std::set<uint32_t> types;
    for (uint32_t i = 0; i < match.exp_match.count; ++i)
        types.insert(match.exp_match.items[i]->type);
    return types.size() == match.exp_match.count ? "" : "OFPBMC_DUP_FIELD";
}

void expect_what_was_asked(const OfpFlowItem &item)
{
    const Bytes message = flow_mod(item);
    const auto mod = openflow::parse_flow_mod(message);
    ASSERT_TRUE(mod) << openflow::error_name(mod.error());
    EXPECT_EQ(mod->header.length, message.size());
    EXPECT_EQ(mod->table_id, 200);
    EXPECT_EQ(mod->priority, item.priority);
    EXPECT_EQ(mod->flags, 0x001e);
    const auto match_error = openflow::check_match(mod->match);
    EXPECT_EQ(match_error ? openflow::error_name(*match_error) : "", error_to_expect(item.match));
    const auto action_error = openflow::check_instructions(mod->instructions, mod->table_id);
    EXPECT_FALSE(action_error) << openflow::error_name(*action_error);
    EXPECT_EQ(entries_read(mod->match), Asked(item.match).entries);
    std::vector<Bytes> actions;
    for (uint32_t i = 0; i < item.action_count; ++i)
        actions.push_back(action_asked(*item.actions[i]));
    EXPECT_EQ(actions_read(mod->instructions), actions);
}

TEST(RandomItems, AreReadByTheAgentAsTheyWereAsked)
{
    flow_test::Random random(12);
    uint64_t plain = 0;
    uint64_t masked = 0;
    for (int i = 0; i < 5000; ++i) {
        const auto record = flow_test::random_record(random);
        ASSERT_EQ(OFP_encodeoxm_CheckMatch(&record->item.match), 0U);
        plain |= record->item.match.fields & ~record->mask.masked;
        masked |= record->item.match.fields & record->mask.masked;
        expect_what_was_asked(record->item);
        if (HasFailure())
            FAIL() << i << ": " << ofpctl::format_flow(record->item);
    }
    // Every field took part, and each that takes a mask had one.
    EXPECT_EQ(plain, 0xfc0000ffffffffffU);
    EXPECT_EQ(masked, 0x800000e01fc7f85cU);
}

} // namespace
} // namespace referee

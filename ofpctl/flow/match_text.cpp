#include "flow/match_text.h"

#include <bit>

#include <fmt/format.h>

#include "flow/experimenter_text.h"
#include "flow/list_text.h"
#include "flow/number_text.h"

namespace ofpctl {
namespace {

constexpr uint64_t vlan_bits = 0x0fff;

struct SharedRow {
    Form form;
    uint8_t width;
    std::string_view needs;
    std::string_view otherwise;
};

// By SharedName.
constexpr std::array<SharedRow, shared_names> shared_rows = {{
    {Form::ipv4, 32, "ip, arp or rarp", "for IPv6 write ipv6_src"},
    {Form::ipv4, 32, "ip, arp or rarp", "for IPv6 write ipv6_dst"},
    {Form::decimal, 8, "ip, ipv6, arp or rarp", ""},
    {Form::decimal, 16, "tcp, udp or sctp", "for ICMP write icmp_type and icmp_code"},
    {Form::decimal, 16, "tcp, udp or sctp", "for ICMP write icmp_type and icmp_code"},
    {Form::decimal, 8, "icmp or icmp6", ""},
    {Form::decimal, 8, "icmp or icmp6", ""},
}};

// The field a shared name is in a packet of these protocols; -1 when it is none.
int meaning(SharedName name, const Layers &layers)
{
    const auto port = [&](int tcp, int udp, int sctp) {
        return layers.carries(proto_tcp)    ? tcp
               : layers.carries(proto_udp)  ? udp
               : layers.carries(proto_sctp) ? sctp
                                            : -1;
    };
    const bool icmp = layers.eth_type == eth_ipv4 && layers.ip_proto == proto_icmp;
    const bool icmp6 = layers.eth_type == eth_ipv6 && layers.ip_proto == proto_icmp6;
    const bool ip = layers.eth_type == eth_ipv4;
    switch (name) {
    case nw_src:
        return ip ? OFP_FIELD_IPV4_SRC : layers.is_arp() ? OFP_FIELD_ARP_SPA : -1;
    case nw_dst:
        return ip ? OFP_FIELD_IPV4_DST : layers.is_arp() ? OFP_FIELD_ARP_TPA : -1;
    case nw_proto:
        return layers.is_ip() ? OFP_FIELD_IP_PROTO : layers.is_arp() ? OFP_FIELD_ARP_OP : -1;
    case tp_src:
        return port(OFP_FIELD_TCP_SRC, OFP_FIELD_UDP_SRC, OFP_FIELD_SCTP_SRC);
    case tp_dst:
        return port(OFP_FIELD_TCP_DST, OFP_FIELD_UDP_DST, OFP_FIELD_SCTP_DST);
    case icmp_type:
        return icmp ? OFP_FIELD_ICMPV4_TYPE : icmp6 ? OFP_FIELD_ICMPV6_TYPE : -1;
    case icmp_code:
        return icmp ? OFP_FIELD_ICMPV4_CODE : icmp6 ? OFP_FIELD_ICMPV6_CODE : -1;
    }
    return -1;
}

// Several words of a line may say the protocol, as long as they agree.
bool is_protocol(const Field &field)
{
    return field.bit == OFP_FIELD_ETH_TYPE || field.bit == OFP_FIELD_IP_PROTO;
}

MaskedValue exact(uint64_t value, unsigned width) { return {{0, value}, ones(width)}; }

} // namespace

bool MatchReader::read(const Keyword &keyword, const OptionText &option)
{
    if (keyword.option == Option::protocol)
        return read_protocol(protocol(keyword.which), option);
    if (keyword.option == Option::any_experimenter)
        return parse_any_experimenter(option.name, option.value, draft_, problem_);
    if (!option.has_value || option.value.empty())
        return problem_.report(option.name, fmt::format("{} has no value", option.name),
                               fmt::format("write {}=VALUE", option.name));
    switch (keyword.option) {
    case Option::shared:
        return read_shared(static_cast<SharedName>(keyword.which), option);
    case Option::vlan_number:
        return read_vlan_number(*find_field(keyword.which), option);
    case Option::vlan_tci:
        return read_vlan_tci(option);
    case Option::dscp_byte:
        return read_dscp_byte(option);
    case Option::experimenter:
        return parse_experimenter(option.name, keyword.which, option.value, draft_, problem_);
    default:
        return read_field(*find_field(keyword.which), option);
    }
}

bool MatchReader::read_field(const Field &field, const OptionText &option)
{
    switch (field.form) {
    case Form::words:
        return read_words(option);
    case Form::interfaces:
        return read_interfaces(option);
    case Form::vlan:
        return read_vlan_vid(field, option);
    default:
        break;
    }
    MaskedValue value;
    return parse_value(option.name, option.value, field.form, field.width, value, problem_) &&
           put(field, option, value);
}

bool MatchReader::read_protocol(const Protocol &protocol, const OptionText &option)
{
    if (option.has_value)
        return problem_.report(option.value, fmt::format("{} takes no value", option.name),
                               fmt::format("write {}", option.name));
    if (!put(*find_field(OFP_FIELD_ETH_TYPE), option, exact(protocol.eth_type, 16)))
        return false;
    return protocol.ip_proto == 0 ||
           put(*find_field(OFP_FIELD_IP_PROTO), option, exact(protocol.ip_proto, 8));
}

bool MatchReader::read_shared(SharedName name, const OptionText &option)
{
    const SharedRow &row = shared_rows[name];
    Shared &shared = shared_[name];
    if ((shared_seen_ >> name & 1) != 0)
        return report_duplicate(option.name, shared.option.name);
    shared_seen_ |= uint32_t{1} << name;
    shared.option = option;
    return parse_value(option.name, option.value, row.form, row.width, shared.value, problem_);
}

// ---- VLAN: the library adds the present bit, so what it sends always means "with a tag" ----

bool MatchReader::read_vlan_number(const Field &field, const OptionText &option)
{
    if (option.value == "0xffff" || option.value == "65535")
        return problem_.report(option.value, "the library cannot match packets without a tag",
                               "expected 0 to 4095");
    MaskedValue value;
    if (!parse_value(option.name, option.value, Form::decimal, field.width, value, problem_))
        return false;
    if (value.mask && value.mask != ones(field.width))
        return problem_.report(option.value, fmt::format("{} takes no mask", option.name),
                               fmt::format("write {}=0x{:x}/0x{:x}", field.name,
                                           value.value.low | vlan_present,
                                           value.mask.low | vlan_present));
    return put(field, option, value);
}

bool MatchReader::read_vlan_vid(const Field &field, const OptionText &option)
{
    MaskedValue value;
    return parse_value(option.name, option.value, Form::decimal, 13, value, problem_) &&
           put_vlan(field, option, value);
}

// value and mask: the VLAN id with the present bit.
bool MatchReader::put_vlan(const Field &field, const OptionText &option, const MaskedValue &value)
{
    if (!value.mask)
        return put(field, option, value);
    const uint64_t vid = value.value.low & vlan_bits;
    const uint64_t mask = value.mask.low & vlan_bits;
    if ((value.value.low & value.mask.low & vlan_present) == 0)
        return problem_.report(
            option.value, "without the present bit 0x1000 this matches packets without a tag",
            mask == vlan_bits ? fmt::format("write {}=0x{:x}", field.name, vid | vlan_present)
                              : fmt::format("write {}=0x{:x}/0x{:x}", field.name,
                                            vid | vlan_present, mask | vlan_present));
    return set(field, option, {{0, vid & mask}, {0, mask}});
}

bool MatchReader::read_vlan_tci(const OptionText &option)
{
    MaskedValue tag;
    if (!parse_value(option.name, option.value, Form::decimal, 16, tag, problem_))
        return false;
    const MaskedValue vlan = {{0, tag.value.low & 0x1fff}, {0, tag.mask.low & 0x1fff}};
    const MaskedValue pcp = {{0, tag.value.low >> 13}, {0, tag.mask.low >> 13}};
    if (pcp.mask && pcp.mask != ones(3))
        return problem_.report(option.value, "the library matches all bits of the priority or none",
                               "expected a mask with all of 0xe000 or nothing of it");
    return put_vlan(*find_field(OFP_FIELD_VLAN_VID), option, vlan) &&
           (!pcp.mask || put(*find_field(OFP_FIELD_VLAN_PCP), option, pcp));
}

bool MatchReader::read_dscp_byte(const OptionText &option)
{
    MaskedValue byte;
    if (!parse_value(option.name, option.value, Form::decimal, 8, byte, problem_))
        return false;
    return put(*find_field(OFP_FIELD_IP_DSCP), option,
               {{0, byte.value.low >> 2}, {0, byte.mask.low >> 2}});
}

// ---- Lists ----

bool MatchReader::read_words(const OptionText &option)
{
    if (!claim(OFP_FIELD_IP_RANGE, option) ||
        !parse_words(option.name, option.value, draft_.match().ip_range, problem_))
        return false;
    draft_.match().fields |= field_bit(OFP_FIELD_IP_RANGE);
    return true;
}

bool MatchReader::read_interfaces(const OptionText &option)
{
    if (!claim(OFP_FIELD_BATCH_IF, option) ||
        !parse_interfaces(option.name, option.value, draft_.interfaces, problem_))
        return false;
    draft_.match().fields |= field_bit(OFP_FIELD_BATCH_IF);
    return true;
}

// ---- Into the draft ----

bool MatchReader::put(const Field &field, const OptionText &option, const MaskedValue &value)
{
    return value.mask ? set(field, option, value) : claim(field.bit, option);
}

// An empty mask is set like any other: in a VLAN id it leaves the present bit.
bool MatchReader::set(const Field &field, const OptionText &option, const MaskedValue &value)
{
    OfpFRMatch &match = draft_.match();
    const uint64_t bit = field_bit(field.bit);
    if (is_protocol(field) && (match.fields & bit) != 0)
        return field.access.value(match) == value.value || report_contradiction(field, option);
    if (!claim(field.bit, option))
        return false;
    if (value.mask != ones(field.width)) {
        if (!field.maskable())
            return report_mask(option);
        field.access.set_mask(match, value.mask);
        match.mask->masked |= bit;
    }
    field.access.set_value(match, value.value);
    match.fields |= bit;
    return true;
}

bool MatchReader::claim(unsigned bit, const OptionText &option)
{
    if ((claimed_ & field_bit(bit)) != 0)
        return report_duplicate(option.name, claimants_[bit]);
    claimed_ |= field_bit(bit);
    claimants_[bit] = option.name;
    return true;
}

bool MatchReader::report_duplicate(std::string_view name, std::string_view other)
{
    return problem_.report(name, fmt::format("duplicate {}", name),
                           name == other ? std::string()
                                         : fmt::format("{} is the same field", other));
}

bool MatchReader::report_contradiction(const Field &field, const OptionText &option)
{
    return problem_.report(option.name,
                           fmt::format("{} contradicts {}", option.name, claimants_[field.bit]),
                           "name one protocol for each layer");
}

bool MatchReader::report_mask(const OptionText &option)
{
    const auto slash = std::min(option.value.find('/'), option.value.size());
    return problem_.report(option.value.substr(slash), fmt::format("{} takes no mask", option.name),
                           fmt::format("write {}={}", option.name, option.value.substr(0, slash)));
}

// ---- The end of the line ----

bool MatchReader::finish()
{
    // A priority is only of a tag, whichever.
    const uint64_t fields = draft_.match().fields;
    if ((fields & field_bit(OFP_FIELD_VLAN_PCP)) != 0 &&
        (fields & field_bit(OFP_FIELD_VLAN_VID)) == 0) {
        const Field &vid = *find_field(OFP_FIELD_VLAN_VID);
        claimed_ &= ~field_bit(OFP_FIELD_VLAN_VID);
        if (!set(vid, {claimants_[OFP_FIELD_VLAN_PCP], {}}, {}))
            return false;
    }
    return settle_shared() && check_needs();
}

bool MatchReader::settle_shared()
{
    if ((shared_seen_ >> nw_proto & 1) != 0 && !settle(nw_proto, Layers(draft_.match())))
        return false;
    const Layers layers(draft_.match());
    for (uint32_t rest = shared_seen_ & ~(uint32_t{1} << nw_proto); rest != 0; rest &= rest - 1) {
        if (!settle(static_cast<SharedName>(std::countr_zero(rest)), layers))
            return false;
    }
    return true;
}

bool MatchReader::settle(SharedName name, const Layers &layers)
{
    const auto &[option, value] = shared_[name];
    if (!value.mask)
        return true;
    const int bit = meaning(name, layers);
    if (bit < 0) {
        const SharedRow &row = shared_rows[name];
        return problem_.report(option.name, fmt::format("{} needs {}", option.name, row.needs),
                               std::string(row.otherwise));
    }
    const Field &field = *find_field(static_cast<unsigned>(bit));
    const bool whole = value.mask == ones(shared_rows[name].width);
    return put(field, option, {value.value, whole ? ones(field.width) : value.mask});
}

bool MatchReader::check_needs()
{
    const Layers layers(draft_.match());
    for (uint64_t rest = draft_.match().fields; rest != 0; rest &= rest - 1) {
        const auto bit = static_cast<unsigned>(std::countr_zero(rest));
        const auto needs = find_field(bit)->needs;
        if (!is_met(needs, layers)) {
            return problem_.report(claimants_[bit],
                                   fmt::format("{} needs {}", claimants_[bit], describe(needs)));
        }
    }
    return true;
}

// ---- To text ----

namespace {

std::span<const uint32_t> interfaces_of(const OfpFRMatch &match)
{
    if (match.batch_if.if_index == nullptr)
        return {};
    return {match.batch_if.if_index, match.batch_if.count};
}

// The VLAN id with its present bit.
void append_vlan_vid(std::string &out, const OfpFRMatch &match, const Field &field)
{
    const uint64_t mask = effective_mask(match, field).low;
    append_hex(out, effective_value(match, field).low | vlan_present);
    if (mask == vlan_bits)
        return;
    out += '/';
    append_hex(out, mask | vlan_present);
}

// dl_vlan_pcp alone says that there is a tag.
bool is_implied(const OfpFRMatch &match, const Field &field)
{
    return field.bit == OFP_FIELD_VLAN_VID && !effective_mask(match, field) &&
           (match.fields & field_bit(OFP_FIELD_VLAN_PCP)) != 0;
}

void append_field(std::string &out, const OfpFRMatch &match, const Field &field)
{
    const bool bare_vlan = is_vlan(field) && effective_mask(match, field) == ones(field.width);
    if (bare_vlan)
        out += field.bit == OFP_FIELD_VLAN_VID ? "dl_vlan" : "cvlan";
    else
        out += field.name;
    out += '=';
    if (bare_vlan)
        append_decimal(out, effective_value(match, field).low);
    else if (field.form == Form::dscp)
        append_decimal(out, effective_value(match, field).low << 2);
    else
        append_field_value(out, match, field);
}

} // namespace

void append_field_value(std::string &out, const OfpFRMatch &match, const Field &field)
{
    if (field.form == Form::words)
        append_words(out, match.ip_range);
    else if (field.form == Form::interfaces)
        append_interfaces(out, interfaces_of(match));
    else if (is_vlan(field))
        append_vlan_vid(out, match, field);
    else
        append_value(out, field.form, field.width,
                     {effective_value(match, field), effective_mask(match, field)});
}

void append_match(std::string &out, const OfpFRMatch &match)
{
    const auto start = out.size();
    const Layers layers(match);
    const Protocol *word = find_protocol(layers.eth_type, layers.ip_proto);
    uint64_t said = 0;
    if (word != nullptr) {
        out += word->name;
        said = field_bit(OFP_FIELD_ETH_TYPE);
        said |= word->ip_proto != 0 ? field_bit(OFP_FIELD_IP_PROTO) : 0;
    }
    const auto next = [&] {
        if (out.size() > start)
            out += ',';
    };
    for (const Field &field : all_fields()) {
        if ((said & field_bit(field.bit)) != 0 || !takes_part(match, field) ||
            is_implied(match, field))
            continue;
        next();
        append_field(out, match, field);
    }
    for (const OfpExpMatchItem *item : experimenters(match)) {
        next();
        append_experimenter_name(out, *item);
        out += '=';
        append_experimenter_value(out, *item);
    }
}

std::span<OfpExpMatchItem *const> experimenters(const OfpFRMatch &match)
{
    if (match.exp_match.items == nullptr)
        return {};
    return {match.exp_match.items, match.exp_match.count};
}

} // namespace ofpctl

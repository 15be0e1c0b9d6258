#include "openflow/oxm.h"

#include <algorithm>

#include "openflow/oxm_fields.h"

namespace openflow {
namespace {

constexpr size_t OXM_HEADER_SIZE = 4;
constexpr size_t EXPERIMENTER_ID_SIZE = 4;
constexpr size_t FULL_BATCH_SIZE = EXPERIMENTER_ID_SIZE + BATCH_IF_PER_ENTRY * 4;
constexpr FieldRule CVLAN_VID = {"cvlan_vid", 2, 13, true, Prerequisite::None};

constexpr Error bad_match(BadMatchCode code) { return {OFPET_BAD_MATCH, code}; }

bool outside_mask(Bytes value, Bytes mask)
{
    uint8_t outside = 0;
    for (size_t i = 0; i < value.size(); i++) {
        outside = static_cast<uint8_t>(outside | (value[i] & ~mask[i]));
    }
    return outside != 0;
}

// Length, mask and width: what holds for a field whatever it means.
std::optional<Error> check_form(const FieldRule &rule, const Oxm &oxm)
{
    if (oxm.has_mask && !rule.maskable) {
        return bad_match(OFPBMC_BAD_MASK);
    }
    if (oxm.value.size() != rule.size || (oxm.has_mask && oxm.mask.size() != rule.size)) {
        return bad_match(OFPBMC_BAD_LEN);
    }
    if (exceeds_width(rule, oxm.value.data())) {
        return bad_match(OFPBMC_BAD_VALUE);
    }
    if (!oxm.has_mask) {
        return {};
    }
    if (exceeds_width(rule, oxm.mask.data())) {
        return bad_match(OFPBMC_BAD_MASK);
    }
    if (outside_mask(oxm.value, oxm.mask)) {
        return bad_match(OFPBMC_BAD_WILDCARDS);
    }
    return {};
}

bool is_input_port(uint32_t port)
{
    return (port >= 1 && port <= OFPP_MAX) || port == OFPP_LOCAL || port == OFPP_CONTROLLER;
}

// A VLAN id without the present bit says nothing, unless it says "no tag".
bool is_vlan_vid(uint16_t vid) { return vid == OFPVID_NONE || (vid & OFPVID_PRESENT) != 0; }

bool is_value(uint8_t field, Bytes value)
{
    switch (field) {
    case OFPXMT_IN_PORT:
    case OFPXMT_IN_PHY_PORT:
        return is_input_port(load32(value.data()));
    case OFPXMT_VLAN_VID:
        return is_vlan_vid(load16(value.data()));
    default:
        return true;
    }
}

bool asks_for_tag(const Oxm &vlan_vid)
{
    const uint16_t vid = load16(vlan_vid.value.data());
    return (vid & OFPVID_PRESENT) != 0;
}

} // namespace

std::optional<Oxm> OxmWalk::next()
{
    if (rest_.empty()) {
        return {};
    }
    if (rest_.size() < OXM_HEADER_SIZE || rest_.size() - OXM_HEADER_SIZE < rest_[3]) {
        truncated_ = true;
        rest_ = {};
        return {};
    }
    const size_t length = rest_[3];
    Oxm oxm;
    oxm.oxm_class = load16(rest_.data());
    oxm.field = rest_[2] >> 1;
    oxm.has_mask = (rest_[2] & 1) != 0;
    oxm.entry = rest_.first(OXM_HEADER_SIZE + length);
    oxm.value = oxm.entry.subspan(OXM_HEADER_SIZE);
    if (oxm.has_mask) { // an odd payload leaves value and mask of different length
        oxm.mask = oxm.value.subspan(length / 2);
        oxm.value = oxm.value.first(length / 2);
    }
    rest_ = rest_.subspan(oxm.entry.size());
    return oxm;
}

std::optional<Error> OxmChecker::check(const Oxm &oxm)
{
    std::optional<Error> error;
    if (oxm.oxm_class == OFPXMC_OPENFLOW_BASIC) {
        error = check_basic(oxm);
    } else if (oxm.oxm_class == OFPXMC_EXPERIMENTER) {
        error = check_private(oxm);
    } else {
        error = bad_match(OFPBMC_BAD_FIELD);
    }
    if (error) {
        return error;
    }
    error = check_duplicate(oxm);
    if (!error) {
        remember(oxm);
    }
    return error;
}

std::optional<Error> OxmChecker::check_basic(const Oxm &oxm)
{
    if (oxm.field >= BASIC_FIELDS.size()) {
        return bad_match(OFPBMC_BAD_FIELD);
    }
    if (auto error = check_form(BASIC_FIELDS[oxm.field], oxm)) {
        return error;
    }
    if (!is_value(oxm.field, oxm.value)) {
        return bad_match(OFPBMC_BAD_VALUE);
    }
    if (!prerequisite_holds(oxm.field)) {
        return bad_match(OFPBMC_BAD_PREREQ);
    }
    return {};
}

std::optional<Error> OxmChecker::check_private(const Oxm &oxm)
{
    const size_t size = oxm.value.size();
    const auto exactly = [&oxm](size_t expected) -> std::optional<Error> {
        if (oxm.has_mask) {
            return bad_match(OFPBMC_BAD_MASK);
        }
        return oxm.value.size() == expected ? std::nullopt
                                            : std::optional(bad_match(OFPBMC_BAD_LEN));
    };
    switch (oxm.field) {
    case PRIVATE_IP_RANGE:
        return exactly(80);
    case PRIVATE_VRF:
        return exactly(2);
    case PRIVATE_FRAGMENT:
        return exactly(1);
    case PRIVATE_OUT_PORT:
        return exactly(4);
    case PRIVATE_CVLAN_VID:
        if (auto error = check_form(CVLAN_VID, oxm)) {
            return error;
        }
        return is_vlan_vid(load16(oxm.value.data())) ? std::nullopt
                                                     : std::optional(bad_match(OFPBMC_BAD_VALUE));
    default:
        break;
    }
    if (oxm.field > EXPERIMENTER_ITEM_MAX) {
        return bad_match(OFPBMC_BAD_FIELD);
    }
    if (oxm.has_mask) {
        return bad_match(OFPBMC_BAD_MASK);
    }
    if (size < EXPERIMENTER_ID_SIZE) {
        return bad_match(OFPBMC_BAD_LEN);
    }
    if (load32(oxm.value.data()) != EXPERIMENTER_ID) {
        return bad_match(OFPBMC_BAD_FIELD);
    }
    // An interface list holds at least one index, and whole ones.
    const bool list = oxm.field == PRIVATE_BATCH_IF;
    if (list && (size == EXPERIMENTER_ID_SIZE || size % 4 != 0)) {
        return bad_match(OFPBMC_BAD_LEN);
    }
    return {};
}

std::optional<Error> OxmChecker::check_duplicate(const Oxm &oxm)
{
    bool seen = false;
    if (oxm.oxm_class == OFPXMC_OPENFLOW_BASIC) {
        seen = (basic_ >> oxm.field & 1) != 0;
    } else if (oxm.field == EXPERIMENTER_ITEM_MAX) {
        seen = item_64_;
    } else {
        seen = (experimenter_ >> oxm.field & 1) != 0;
        seen = seen && !(oxm.field == PRIVATE_BATCH_IF && batch_open_);
    }
    return seen ? std::optional(bad_match(OFPBMC_DUP_FIELD)) : std::nullopt;
}

bool OxmChecker::prerequisite_holds(uint8_t field) const
{
    const bool ip = eth_type_ == 0x0800 || eth_type_ == 0x86dd;
    switch (BASIC_FIELDS[field].needs) {
    case Prerequisite::None:
        return true;
    case Prerequisite::InPort:
        return (basic_ >> OFPXMT_IN_PORT & 1) != 0;
    case Prerequisite::VlanTag:
        return tagged_;
    case Prerequisite::Ip:
        return ip;
    case Prerequisite::Ipv4:
        return eth_type_ == 0x0800;
    case Prerequisite::Ipv6:
        return eth_type_ == 0x86dd;
    case Prerequisite::Arp:
        return eth_type_ == 0x0806;
    case Prerequisite::Mpls:
        return eth_type_ == 0x8847 || eth_type_ == 0x8848;
    case Prerequisite::Pbb:
        return eth_type_ == 0x88e7;
    case Prerequisite::Tcp:
        return ip_proto_ == 6;
    case Prerequisite::Udp:
        return ip_proto_ == 17;
    case Prerequisite::Sctp:
        return ip_proto_ == 132;
    case Prerequisite::Icmpv4:
        return ip_proto_ == 1;
    case Prerequisite::Icmpv6:
        return ip_proto_ == 58;
    case Prerequisite::NeighbourDiscovery:
        return icmpv6_type_ == 135 || icmpv6_type_ == 136;
    case Prerequisite::NeighbourSolicitation:
        return icmpv6_type_ == 135;
    case Prerequisite::NeighbourAdvertisement:
        return icmpv6_type_ == 136;
    }
    return false;
}

void OxmChecker::remember(const Oxm &oxm)
{
    batch_open_ = false;
    if (oxm.oxm_class == OFPXMC_EXPERIMENTER) {
        batch_open_ = oxm.field == PRIVATE_BATCH_IF && oxm.value.size() == FULL_BATCH_SIZE;
        if (oxm.field == EXPERIMENTER_ITEM_MAX) {
            item_64_ = true;
        } else {
            experimenter_ |= uint64_t{1} << oxm.field;
        }
        return;
    }
    basic_ |= uint64_t{1} << oxm.field;
    switch (oxm.field) {
    case OFPXMT_ETH_TYPE:
        eth_type_ = load16(oxm.value.data());
        break;
    case OFPXMT_VLAN_VID:
        tagged_ = asks_for_tag(oxm);
        break;
    case OFPXMT_IP_PROTO:
        ip_proto_ = oxm.value[0];
        break;
    case OFPXMT_ICMPV6_TYPE:
        icmpv6_type_ = oxm.value[0];
        break;
    default:
        break;
    }
}

Result<Match> parse_match(Bytes bytes)
{
    constexpr size_t header_size = 4;
    if (bytes.size() < header_size) {
        return bad_match(OFPBMC_BAD_LEN);
    }
    if (load16(bytes.data()) != OFPMT_OXM) {
        return bad_match(OFPBMC_BAD_TYPE);
    }
    const size_t length = load16(bytes.data() + 2);
    const size_t padded = (length + 7) / 8 * 8;
    if (length < header_size || padded > bytes.size()) {
        return bad_match(OFPBMC_BAD_LEN);
    }
    return Match{bytes.first(padded), bytes.first(length).subspan(header_size)};
}

std::optional<Error> check_match(const Match &match)
{
    OxmWalk walk(match.entries);
    OxmChecker checker;
    while (const auto oxm = walk.next()) {
        if (auto error = checker.check(*oxm)) {
            return error;
        }
    }
    return walk.truncated() ? std::optional(bad_match(OFPBMC_BAD_LEN)) : std::nullopt;
}

std::string_view oxm_name(uint16_t oxm_class, uint8_t field)
{
    constexpr std::array<std::string_view, 6> private_names = {"ip_range", "batch_if", "vrf",
                                                               "fragment", "out_port", "cvlan_vid"};
    if (oxm_class == OFPXMC_OPENFLOW_BASIC && field < BASIC_FIELDS.size()) {
        return BASIC_FIELDS[field].name;
    }
    if (oxm_class != OFPXMC_EXPERIMENTER || field > EXPERIMENTER_ITEM_MAX) {
        return {};
    }
    const bool item = field < PRIVATE_IP_RANGE || field == EXPERIMENTER_ITEM_MAX;
    return item ? "experimenter" : private_names[field - PRIVATE_IP_RANGE];
}

} // namespace openflow

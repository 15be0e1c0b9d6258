#include "openflow/oxm.h"

#include "openflow/oxm_fields.h"

namespace openflow {
namespace {

constexpr size_t OXM_HEADER_SIZE = 4;
constexpr size_t EXPERIMENTER_ID_SIZE = 4;
constexpr size_t FULL_BATCH_SIZE = EXPERIMENTER_ID_SIZE + BATCH_IF_PER_ENTRY * 4;
constexpr FieldRule CVLAN_VID = {"cvlan_vid", 2, 13, true, Prerequisite::None};

constexpr Error bad_match(BadMatchCode code) { return {OFPET_BAD_MATCH, code}; }

// No error.
constexpr uint16_t GOOD = 0xffff;

bool outside_mask(Bytes value, Bytes mask)
{
    uint8_t outside = 0;
    for (size_t i = 0; i < value.size(); i++) {
        outside = static_cast<uint8_t>(outside | (value[i] & ~mask[i]));
    }
    return outside != 0;
}

// Length, mask and width: what holds for a field whatever it means.
uint16_t check_form(const FieldRule &rule, const Oxm &oxm)
{
    if (oxm.has_mask && !rule.maskable) {
        return OFPBMC_BAD_MASK;
    }
    if (oxm.value.size() != rule.size || (oxm.has_mask && oxm.mask.size() != rule.size)) {
        return OFPBMC_BAD_LEN;
    }
    if (exceeds_width(rule, oxm.value.data())) {
        return OFPBMC_BAD_VALUE;
    }
    if (!oxm.has_mask) {
        return GOOD;
    }
    if (exceeds_width(rule, oxm.mask.data())) {
        return OFPBMC_BAD_MASK;
    }
    return outside_mask(oxm.value, oxm.mask) ? uint16_t{OFPBMC_BAD_WILDCARDS} : GOOD;
}

// An opaque field of fixed size.
uint16_t check_size(const Oxm &oxm, size_t size)
{
    if (oxm.has_mask) {
        return OFPBMC_BAD_MASK;
    }
    return oxm.value.size() == size ? GOOD : uint16_t{OFPBMC_BAD_LEN};
}

// An experimenter item, or an entry of an interface list: at least one index, and whole ones.
uint16_t check_item(const Oxm &oxm)
{
    const size_t size = oxm.value.size();
    if (oxm.field > EXPERIMENTER_ITEM_MAX) {
        return OFPBMC_BAD_FIELD;
    }
    if (oxm.has_mask) {
        return OFPBMC_BAD_MASK;
    }
    if (size < EXPERIMENTER_ID_SIZE) {
        return OFPBMC_BAD_LEN;
    }
    if (load32(oxm.value.data()) != EXPERIMENTER_ID) {
        return OFPBMC_BAD_FIELD;
    }
    const bool list = oxm.field == PRIVATE_BATCH_IF;
    return list && (size == EXPERIMENTER_ID_SIZE || size % 4 != 0) ? uint16_t{OFPBMC_BAD_LEN}
                                                                   : GOOD;
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

uint16_t check_private_form(const Oxm &oxm)
{
    switch (oxm.field) {
    case PRIVATE_IP_RANGE:
        return check_size(oxm, 80);
    case PRIVATE_VRF:
        return check_size(oxm, 2);
    case PRIVATE_FRAGMENT:
        return check_size(oxm, 1);
    case PRIVATE_OUT_PORT:
        return check_size(oxm, 4);
    case PRIVATE_CVLAN_VID: {
        const uint16_t code = check_form(CVLAN_VID, oxm);
        const bool bad = code == GOOD && !is_vlan_vid(load16(oxm.value.data()));
        return bad ? uint16_t{OFPBMC_BAD_VALUE} : code;
    }
    default:
        return check_item(oxm);
    }
}

template <class... Fulfilled>
constexpr uint32_t bits(Fulfilled... fulfilled)
{
    return ((uint32_t{1} << static_cast<uint32_t>(fulfilled)) | ... | 0);
}

uint32_t fulfilled_by_eth_type(uint16_t eth_type)
{
    switch (eth_type) {
    case 0x0800:
        return bits(Prerequisite::Ip, Prerequisite::Ipv4);
    case 0x0806:
        return bits(Prerequisite::Arp);
    case 0x86dd:
        return bits(Prerequisite::Ip, Prerequisite::Ipv6);
    case 0x8847:
    case 0x8848:
        return bits(Prerequisite::Mpls);
    case 0x88e7:
        return bits(Prerequisite::Pbb);
    default:
        return 0;
    }
}

uint32_t fulfilled_by_ip_proto(uint8_t ip_proto)
{
    switch (ip_proto) {
    case 1:
        return bits(Prerequisite::Icmpv4);
    case 6:
        return bits(Prerequisite::Tcp);
    case 17:
        return bits(Prerequisite::Udp);
    case 58:
        return bits(Prerequisite::Icmpv6);
    case 132:
        return bits(Prerequisite::Sctp);
    default:
        return 0;
    }
}

uint32_t fulfilled_by_icmpv6_type(uint8_t type)
{
    switch (type) {
    case 135:
        return bits(Prerequisite::NeighbourDiscovery, Prerequisite::NeighbourSolicitation);
    case 136:
        return bits(Prerequisite::NeighbourDiscovery, Prerequisite::NeighbourAdvertisement);
    default:
        return 0;
    }
}

uint32_t fulfilled_by(uint8_t field, Bytes value)
{
    switch (field) {
    case OFPXMT_IN_PORT:
        return bits(Prerequisite::InPort);
    case OFPXMT_ETH_TYPE:
        return fulfilled_by_eth_type(load16(value.data()));
    case OFPXMT_VLAN_VID:
        return (load16(value.data()) & OFPVID_PRESENT) != 0 ? bits(Prerequisite::VlanTag) : 0;
    case OFPXMT_IP_PROTO:
        return fulfilled_by_ip_proto(value[0]);
    case OFPXMT_ICMPV6_TYPE:
        return fulfilled_by_icmpv6_type(value[0]);
    default:
        return 0;
    }
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
    uint16_t code = OFPBMC_BAD_FIELD;
    if (oxm.oxm_class == OFPXMC_OPENFLOW_BASIC) {
        code = check_basic(oxm);
        batch_open_ = false;
    } else if (oxm.oxm_class == OFPXMC_EXPERIMENTER) {
        code = check_private(oxm);
    }
    return code == GOOD ? std::nullopt : std::optional(Error{OFPET_BAD_MATCH, code});
}

uint16_t OxmChecker::check_basic(const Oxm &oxm)
{
    if (oxm.field >= BASIC_FIELDS.size()) {
        return OFPBMC_BAD_FIELD;
    }
    const FieldRule &rule = BASIC_FIELDS[oxm.field];
    if (const uint16_t code = check_form(rule, oxm); code != GOOD) {
        return code;
    }
    if (!is_value(oxm.field, oxm.value)) {
        return OFPBMC_BAD_VALUE;
    }
    if ((holds_ & bits(rule.needs)) == 0) {
        return OFPBMC_BAD_PREREQ;
    }
    const uint64_t bit = uint64_t{1} << oxm.field;
    if ((basic_ & bit) != 0) {
        return OFPBMC_DUP_FIELD;
    }
    basic_ |= bit;
    holds_ |= fulfilled_by(oxm.field, oxm.value);
    return GOOD;
}

uint16_t OxmChecker::check_private(const Oxm &oxm)
{
    if (const uint16_t code = check_private_form(oxm); code != GOOD) {
        return code;
    }
    const bool last = oxm.field == EXPERIMENTER_ITEM_MAX;
    const uint64_t bit = last ? 0 : uint64_t{1} << oxm.field;
    const bool seen = last ? item_64_ : (experimenter_ & bit) != 0;
    const bool list = oxm.field == PRIVATE_BATCH_IF;
    if (seen && !(list && batch_open_)) {
        return OFPBMC_DUP_FIELD;
    }
    experimenter_ |= bit;
    item_64_ = item_64_ || last;
    batch_open_ = list && oxm.value.size() == FULL_BATCH_SIZE;
    return GOOD;
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

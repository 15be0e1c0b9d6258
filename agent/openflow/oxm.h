// The entries of an ofp_match, and what the standard demands of them.
#pragma once

#include <cstdint>
#include <optional>

#include "openflow/wire.h"

namespace openflow {

// Fields of class OFPXMC_OPENFLOW_BASIC.
enum OxmField : uint8_t {
    OFPXMT_IN_PORT = 0,
    OFPXMT_IN_PHY_PORT = 1,
    OFPXMT_METADATA = 2,
    OFPXMT_ETH_DST = 3,
    OFPXMT_ETH_SRC = 4,
    OFPXMT_ETH_TYPE = 5,
    OFPXMT_VLAN_VID = 6,
    OFPXMT_VLAN_PCP = 7,
    OFPXMT_IP_DSCP = 8,
    OFPXMT_IP_ECN = 9,
    OFPXMT_IP_PROTO = 10,
    OFPXMT_IPV4_SRC = 11,
    OFPXMT_IPV4_DST = 12,
    OFPXMT_TCP_SRC = 13,
    OFPXMT_TCP_DST = 14,
    OFPXMT_UDP_SRC = 15,
    OFPXMT_UDP_DST = 16,
    OFPXMT_SCTP_SRC = 17,
    OFPXMT_SCTP_DST = 18,
    OFPXMT_ICMPV4_TYPE = 19,
    OFPXMT_ICMPV4_CODE = 20,
    OFPXMT_ARP_OP = 21,
    OFPXMT_ARP_SPA = 22,
    OFPXMT_ARP_TPA = 23,
    OFPXMT_ARP_SHA = 24,
    OFPXMT_ARP_THA = 25,
    OFPXMT_IPV6_SRC = 26,
    OFPXMT_IPV6_DST = 27,
    OFPXMT_IPV6_FLABEL = 28,
    OFPXMT_ICMPV6_TYPE = 29,
    OFPXMT_ICMPV6_CODE = 30,
    OFPXMT_IPV6_ND_TARGET = 31,
    OFPXMT_IPV6_ND_SLL = 32,
    OFPXMT_IPV6_ND_TLL = 33,
    OFPXMT_MPLS_LABEL = 34,
    OFPXMT_MPLS_TC = 35,
    OFPXMT_MPLS_BOS = 36,
    OFPXMT_PBB_ISID = 37, // in 4 bytes: the library's form, not the standard's 3
    OFPXMT_TUNNEL_ID = 38,
    OFPXMT_IPV6_EXTHDR = 39,
};

// Fields of class OFPXMC_EXPERIMENTER. These six travel without an experimenter id, except batch
// interfaces; every other number up to EXPERIMENTER_ITEM_MAX is an item that begins with the id.
enum PrivateField : uint8_t {
    PRIVATE_IP_RANGE = 58,
    PRIVATE_BATCH_IF = 59, // a long list goes on in further entries right behind
    PRIVATE_VRF = 60,
    PRIVATE_FRAGMENT = 61,
    PRIVATE_OUT_PORT = 62,
    PRIVATE_CVLAN_VID = 63,
};
inline constexpr uint8_t EXPERIMENTER_ITEM_MAX = 64;
inline constexpr size_t BATCH_IF_PER_ENTRY = 62;

// One entry. value and mask point into the message; an experimenter id counts as value.
struct Oxm {
    uint16_t oxm_class = 0;
    uint8_t field = 0;
    bool has_mask = false;
    Bytes value;
    Bytes mask;  // empty unless has_mask, else as long as value
    Bytes entry; // header and payload
};

// Walks entries that may be cut short: next() ends the walk there and truncated() says so.
class OxmWalk {
public:
    explicit OxmWalk(Bytes entries) : rest_(entries) {}
    std::optional<Oxm> next();
    bool truncated() const { return truncated_; }

private:
    Bytes rest_;
    bool truncated_ = false;
};

// Checks entries in the order in which they stand: field, length, mask, value, prerequisites,
// duplicates.
class OxmChecker {
public:
    std::optional<Error> check(const Oxm &oxm);

private:
    uint16_t check_basic(const Oxm &oxm);
    uint16_t check_private(const Oxm &oxm);

    uint64_t basic_ = 0;        // fields seen
    uint64_t experimenter_ = 0; // fields seen, item 64 apart
    bool item_64_ = false;
    bool batch_open_ = false; // the entry before was a full batch-interface entry
    uint32_t holds_ = 1;      // prerequisites that the entries so far fulfil
};

// The ofp_match at the start of bytes: type, length, room. Its entries are not looked at.
struct Match {
    Bytes bytes;   // with the pad bytes, as it stands in the message
    Bytes entries; // the OXM entries
};
Result<Match> parse_match(Bytes bytes);

// Checks all entries; nothing means that the match is good.
std::optional<Error> check_match(const Match &match);

// "ipv4_src"; empty for a field nobody knows.
std::string_view oxm_name(uint16_t oxm_class, uint8_t field);

} // namespace openflow

// The message by which this agent is asked what it does with a packet: ofpctl sends it, the library
// does not know it. docs/protocol.md describes it. Numbers travel in network byte order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace agent {

// No family of the library's messages begins with 6.
inline constexpr uint32_t MSG_PACKET = 0x60000001;
inline constexpr uint32_t MSG_PACKET_REPLY = 0x60000002;

// TLV types, far above those of the library.
enum PacketTlv : uint16_t {
    TLV_PACKET_QUERY = 0x6001,
    TLV_PACKET_FIELDS = 0x6002, // OXM entries
    TLV_PACKET_RESULT = 0x6003,
    TLV_PACKET_VISIT = 0x6004,
    TLV_PACKET_NEAR_MISS = 0x6005,  // of the visit before it
    TLV_PACKET_DIFFERENCE = 0x6006, // of the near miss before it: an OXM entry, the packet's value
    TLV_PACKET_ACTIONS = 0x6007,    // OpenFlow actions
    TLV_PACKET_OUTPUT = 0x6008,
};

struct PacketQueryRecord {
    uint16_t instance_id;
    uint8_t flags;
    uint8_t table_id; // that it enters
    uint32_t bytes;   // length of the packet
};
inline constexpr uint8_t PACKET_SEND = 1;            // counts it
inline constexpr uint8_t PACKET_DEFAULT_TABLE = 255; // a client's table, else the first one

enum class PacketEnd : uint8_t {
    carried_out = 0, // the action set
    no_rule = 1,     // the last table visited had none
    no_table = 2,    // the last rule leads to a table that there is not
    cut = 3,         // followed through as many actions and buckets as one packet is
    permitted = 4,   // the last table visited had none, and the instance forwards such packets
};

struct PacketResultRecord {
    PacketEnd end;
    uint8_t missing_table;
    uint16_t reserved;
    uint32_t output_count; // of all outputs; the first of them are listed
};

struct PacketVisitRecord {
    uint32_t rule_id; // 0: none matched
    uint16_t priority;
    uint8_t table_id;
    uint8_t reserved;
};

struct PacketNearMissRecord {
    uint32_t rule_id;
    uint16_t priority;
    uint16_t fields; // that differ; the first of them are listed
};

struct PacketOutputRecord {
    uint32_t port;
    uint32_t group_id; // all ones: no group
    uint32_t bucket;
    uint32_t flags;
};
inline constexpr uint32_t PACKET_HELD_BACK = 1; // not sent: it came from this port

static_assert(sizeof(PacketQueryRecord) == 8 && sizeof(PacketResultRecord) == 8 &&
              sizeof(PacketVisitRecord) == 8 && sizeof(PacketNearMissRecord) == 8 &&
              sizeof(PacketOutputRecord) == 16);

} // namespace agent

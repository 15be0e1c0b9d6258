// What the agent answers of a packet.
#ifndef OFPCTL_VERBS_PACKET_REPLY_H
#define OFPCTL_VERBS_PACKET_REPLY_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "daemon/packet_message.h"

namespace ofpctl {

// A field that kept the packet from a rule, as text.
struct PacketDifference {
    std::string field;
    std::string wanted; // empty: not told
    std::string has;    // empty: a packet does not have it
};

struct PacketNearMiss {
    uint32_t rule = 0;
    uint16_t priority = 0;
    uint32_t fields = 0;
    std::vector<PacketDifference> differences;
};

struct PacketVisit {
    uint8_t table = 0;
    uint32_t rule = 0; // 0: none
    uint16_t priority = 0;
    std::optional<PacketNearMiss> better;
};

struct PacketReply {
    agent::PacketEnd end = agent::PacketEnd::carried_out;
    uint8_t missing_table = 0;
    uint32_t output_count = 0;
    std::vector<PacketVisit> visits;
    std::string actions;
    std::vector<agent::PacketOutputRecord> outputs;
};

// Nothing for a datagram that is no such answer.
std::optional<PacketReply> read_packet_reply(std::span<const uint8_t> datagram);

} // namespace ofpctl

#endif

// The way of a packet as a person and as a program reads it.
#ifndef OFPCTL_VERBS_PACKET_TEXT_H
#define OFPCTL_VERBS_PACKET_TEXT_H

#include <cstdint>
#include <functional>
#include <string>

#include "frame/output.h"
#include "verbs/packet_reply.h"

namespace ofpctl {

// A rule's line; empty when it is not known.
using RuleText = std::function<std::string(uint8_t table, uint32_t rule)>;

void print_packet(Output &out, const std::string &packet, const PacketReply &reply,
                  const RuleText &rule_text);

} // namespace ofpctl

#endif

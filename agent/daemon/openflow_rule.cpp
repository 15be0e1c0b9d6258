#include "daemon/openflow_rule.h"

#include <cstring>

#include "ofp.h"

namespace agent {

namespace {

OfpOpenflowHeader header_of(uint8_t type, size_t length)
{
    OfpOpenflowHeader header{};
    header.version = openflow::OFP_VERSION;
    header.type = type;
    header.length = __builtin_bswap16(static_cast<uint16_t>(length));
    return header;
}

uint8_t *put(uint8_t *out, const void *bytes, size_t length)
{
    if (length > 0) {
        std::memcpy(out, bytes, length);
    }
    return out + length;
}

} // namespace

size_t flow_mod_size(const RuleView &rule)
{
    return openflow::FLOW_MOD_SIZE + rule.match.size() + rule.instructions.size();
}

void write_flow_mod(uint8_t table, const RuleView &rule, uint8_t *out)
{
    OfpFlowMod message{};
    message.header = header_of(openflow::OFPT_FLOW_MOD, flow_mod_size(rule));
    message.cookie = rule.cookie;
    message.table_id = table;
    message.command = openflow::OFPFC_ADD;
    message.priority = rule.priority;
    message.buffer_id = openflow::OFP_NO_BUFFER;
    message.out_port = openflow::OFPP_ANY;
    message.out_group = openflow::OFPG_ANY;
    message.flags = rule.flags;
    OFP_bswap_OfpFlowMod(&message);
    out = put(out, &message, sizeof message);
    out = put(out, rule.match.data(), rule.match.size());
    put(out, rule.instructions.data(), rule.instructions.size());
}

size_t group_mod_size(const GroupView &group)
{
    return openflow::GROUP_MOD_SIZE + group.buckets.size();
}

void write_group_mod(const GroupView &group, uint8_t *out)
{
    OfpGroupMod message{};
    message.header = header_of(openflow::OFPT_GROUP_MOD, group_mod_size(group));
    message.command = openflow::OFPGC_ADD;
    message.type = group.type;
    message.group_id = group.id;
    OFP_bswap_OfpGroupMod(&message);
    out = put(out, &message, sizeof message);
    put(out, group.buckets.data(), group.buckets.size());
}

} // namespace agent

#include <cstring>

#include "flow/action.h"
#include "flow/exact_size.h"
#include "flow/openflow.h"
#include "flow/put.h"
#include "ofp/codec.h"
#include "ofp/flow.h"
#include "ofp/flow_item.h"
#include "ofp/message.h"

namespace ofp {
namespace {

constexpr uint16_t group_delete = 2;
constexpr uint16_t bucket_size = 32;

// A bucket outputs to its port and watches it.
void put_bucket(uint32_t port, uint8_t *out)
{
    OfpGroupBucket bucket = {.length = bucket_size, .watch_port = port, .watch_group = 0xffffffff};
    OFP_bswap_OfpGroupBucket(&bucket);
    std::memcpy(out, &bucket, sizeof bucket);
    put_output(port, out + sizeof bucket);
}

uint64_t put_datagram(uint32_t code, const uint8_t head[16], const uint8_t group[16],
                      uint32_t count, const uint32_t *ports, uint64_t room, uint8_t *buffer)
{
    uint64_t used =
        OFP_msg_EncapBasicMsg(buffer, room, code, OFP_TLV_ClientHead, sizeof(OfpClientHead), head);
    used += ofp_encode_GroupMod(group, count, ports, room - used, buffer + used);
    used += OFP_encode_TlvBarrier(0, room - used, buffer + used);
    return used;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API uint64_t OFP_encode_SetGroup(const uint8_t head[16], const uint8_t group[16],
                                     uint32_t count, const uint32_t *ports, uint64_t room,
                                     uint8_t *buffer)
{
    return put_datagram(OFP_MSG_SET_GROUP, head, group, count, ports, room, buffer);
}

OFP_API uint64_t OFP_encode_DelGroup(const uint8_t head[16], const uint8_t group[16], uint64_t room,
                                     uint8_t *buffer)
{
    return put_datagram(OFP_MSG_DEL_GROUP, head, group, 0, nullptr, room, buffer);
}

// The length of this TLV counts its header, unlike any other's: agents read it so.
OFP_API uint64_t ofp_encode_GroupMod(const uint8_t group[16], uint32_t count, const uint32_t *ports,
                                     uint64_t, uint8_t *out)
{
    OfpGroupMod mod;
    std::memcpy(&mod, group, sizeof mod);
    const uint32_t buckets = mod.command == group_delete ? 0 : count;
    const uint64_t length = sizeof mod + uint64_t{buckets} * bucket_size;
    OFP_bswap_OfpGroupMod(&mod);

    put(out, uint16_t{OFP_TLV_FlowEntry});
    put(out + 2, static_cast<uint16_t>(tlv_header_size + length));
    out += tlv_header_size;
    std::memcpy(out, &mod, sizeof mod);
    put_openflow_header(OFPT_GROUP_MOD, length, 0, out);
    out += sizeof mod;
    for (uint32_t i = 0; i < buckets; ++i)
        put_bucket(ports[i], out + uint64_t{i} * bucket_size);
    return tlv_header_size + length;
}

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "flow/action.h"
#include "flow/exact_size.h"
#include "flow/openflow.h"
#include "flow/oxm_match.h"
#include "ofp/codec.h"
#include "ofp/flow.h"
#include "ofp/message.h"
#include "ofp/platform.h"
#include "ofp/util.h"

namespace ofp {
namespace {

constexpr uint16_t write_actions = 3;

// What STLV_Set may be told.
constexpr uint64_t platform_room(uint64_t room) { return std::min<uint64_t>(room, UINT32_MAX); }

// Puts the TLV header before a value that stands after it already, in network order: a rule is
// encoded too often to be copied into its datagram.
uint64_t frame(uint32_t type, uint64_t length, uint64_t room, uint8_t *out)
{
    return STLV_Set(out, static_cast<uint32_t>(room), type, static_cast<uint32_t>(length), nullptr);
}

uint64_t put_message_head(uint32_t code, uint64_t room, uint8_t *out)
{
    put(out + tlv_header_size, code);
    return frame(OFP_TLV_MsgHead, sizeof code, room, out);
}

uint64_t put_client_head(const uint8_t head[16], uint64_t room, uint8_t *out)
{
    std::memcpy(out + tlv_header_size, head, sizeof(OfpClientHead));
    OFP_bswap_OfpClientHead(out + tlv_header_size);
    return frame(OFP_TLV_ClientHead, sizeof(OfpClientHead), room, out);
}

// What all messages of a datagram have in common, in network order.
struct Common {
    OfpFlowMod mod;
    uint8_t barrier[barrier_tlv_size];
    uint64_t barrier_size;
};

// Cookies, time-outs and flags are the same for every rule.
Common common_of(const OfpFlowRuleCtx &ctx)
{
    Common common = {
        .mod =
            {
                .table_id = ctx.table_id,
                .command = static_cast<uint8_t>(ctx.command),
                .buffer_id = 0xffffffff,
                .out_port = 0xffffffff,
                .out_group = 0xffffffff,
                .flags = swapped(uint16_t{0x001e}), // check overlap, reset counts, count neither
            },
    };
    common.barrier_size = OFP_encode_TlvBarrier(0, barrier_tlv_size, common.barrier);
    return common;
}

// The one instruction of a rule, also of a rule without actions. Returns the end.
uint8_t *put_instruction(const OfpFlowItem &item, uint8_t *out)
{
    uint8_t *end = out + instruction_header_size;
    for (uint32_t i = 0; i < item.action_count; ++i)
        end += put_action(*item.actions[i], end);
    const auto length = static_cast<uint16_t>(end - out);
    put(out, uint64_t{write_actions} << 48 | uint64_t{length} << 32);
    return end;
}

// Written in place, lengths last.
uint64_t put_flow_mod(const Common &common, uint32_t xid, const OfpFlowItem &item, uint64_t room,
                      uint8_t *out)
{
    uint8_t *mod = out + tlv_header_size;
    uint8_t *instruction = put_match(&item.match, mod + sizeof(OfpFlowMod));
    const auto length = static_cast<uint64_t>(put_instruction(item, instruction) - mod);

    std::memcpy(mod, &common.mod, sizeof common.mod);
    put_openflow_header(OFPT_FLOW_MOD, length, xid, mod);
    put(mod + offsetof(OfpFlowMod, priority), item.priority);
    return frame(OFP_TLV_FlowEntry, length, room, out);
}

uint64_t put_barrier(const Common &common, uint32_t xid, uint8_t *out)
{
    std::memcpy(out, common.barrier, sizeof common.barrier);
    put(out + tlv_header_size + offsetof(OfpOpenflowHeader, xid), xid);
    return common.barrier_size;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API uint64_t OFP_encode_FlowRule(const OfpFlowRuleCtx *ctx, const uint8_t head[16],
                                     uint32_t count, const OfpFlowItem *items, uint64_t room,
                                     uint8_t *buffer)
{
    room = platform_room(room);
    uint64_t used = put_message_head(OFP_MSG_FLOW_RULE, room, buffer);
    used += put_client_head(head, room - used, buffer + used);
    const Common common = common_of(*ctx);
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t xid = ctx->asynchronous == 1 ? ctx->xid : i;
        used += put_flow_mod(common, xid, items[i], room - used, buffer + used);
        used += put_barrier(common, xid, buffer + used);
    }
    return used;
}

OFP_API uint64_t OFP_encode_GetRuleMsgLen(uint32_t count, const OfpFlowItem *items)
{
    uint64_t size = batch_head_size;
    for (uint32_t i = 0; i < count; ++i) {
        const OfpFlowItem &item = items[i];
        size += tlv_header_size + sizeof(OfpFlowMod) + OFP_encodeoxm_GetOxmLen(&item.match) +
                instruction_header_size + barrier_tlv_size;
        for (uint32_t k = 0; k < item.action_count; ++k)
            size += counted_action_size(*item.actions[k]);
    }
    return size;
}

OFP_API uint64_t OFP_encode_TlvBarrier(uint32_t xid, uint64_t room, uint8_t *buffer)
{
    constexpr uint64_t length = sizeof(OfpOpenflowHeader);
    put_openflow_header(OFPT_BARRIER_REQUEST, length, xid, buffer + tlv_header_size);
    return frame(OFP_TLV_FlowEntry, length, platform_room(room), buffer);
}

OFP_API uint64_t OFP_encode_Instance(uint16_t instance_id, uint8_t count, const uint8_t *tables,
                                     uint64_t room, uint8_t *buffer)
{
    const OfpInstFilter filter = {.instance_id = instance_id, .filter_kind = 2};
    uint64_t used = OFP_msg_SetMsgHead(buffer, room, OFP_MSG_ADD_INSTANCE);
    used += OFP_util_EncapInstFilterTLV(&filter, room - used, buffer + used);
    for (uint32_t i = 0; i < count; ++i)
        used += OFP_msg_SetTlvData(buffer + used, room - used, OFP_TLV_FlowTable,
                                   sizeof(OfpFlowTable), tables + i * sizeof(OfpFlowTable));
    return used;
}

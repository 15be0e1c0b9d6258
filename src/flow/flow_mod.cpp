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

// Puts the TLV header before a message that stands after it already.
uint64_t frame(uint64_t length, uint64_t room, uint8_t *out)
{
    return STLV_Set(out, static_cast<uint32_t>(room), OFP_TLV_FlowEntry,
                    static_cast<uint32_t>(length), nullptr);
}

// The part before the match, in network order. Cookies, time-outs and flags are the same for every
// rule.
constexpr OfpFlowMod every_rule = {
    .buffer_id = 0xffffffff,
    .out_port = 0xffffffff,
    .out_group = 0xffffffff,
    .flags = swapped(uint16_t{0x001e}), // check overlap, reset counts, count neither
};

void put_fixed_part(const OfpFlowRuleCtx &ctx, uint32_t xid, uint16_t priority, uint64_t length,
                    uint8_t *out)
{
    std::memcpy(out, &every_rule, sizeof every_rule);
    put_openflow_header(OFPT_FLOW_MOD, length, xid, out);
    out[offsetof(OfpFlowMod, table_id)] = ctx.table_id;
    out[offsetof(OfpFlowMod, command)] = static_cast<uint8_t>(ctx.command);
    put(out + offsetof(OfpFlowMod, priority), priority);
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
uint64_t put_flow_mod(const OfpFlowRuleCtx &ctx, uint32_t xid, const OfpFlowItem &item,
                      uint64_t room, uint8_t *out)
{
    uint8_t *mod = out + tlv_header_size;
    uint8_t *instruction = put_match(&item.match, mod + sizeof(OfpFlowMod));
    const auto length = static_cast<uint64_t>(put_instruction(item, instruction) - mod);
    put_fixed_part(ctx, xid, item.priority, length, mod);
    return frame(length, room, out);
}

uint64_t put_barrier(uint32_t xid, uint64_t room, uint8_t *out)
{
    put_openflow_header(OFPT_BARRIER_REQUEST, sizeof(OfpOpenflowHeader), xid,
                        out + tlv_header_size);
    return frame(sizeof(OfpOpenflowHeader), room, out);
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API uint64_t OFP_encode_FlowRule(const OfpFlowRuleCtx *ctx, const uint8_t head[16],
                                     uint32_t count, const OfpFlowItem *items, uint64_t room,
                                     uint8_t *buffer)
{
    room = platform_room(room);
    uint64_t used = OFP_msg_SetMsgHead(buffer, room, OFP_MSG_FLOW_RULE);
    used += OFP_msg_SetTlvData(buffer + used, room - used, OFP_TLV_ClientHead,
                               sizeof(OfpClientHead), head);
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t xid = ctx->asynchronous == 1 ? ctx->xid : i;
        used += put_flow_mod(*ctx, xid, items[i], room - used, buffer + used);
        used += put_barrier(xid, room - used, buffer + used);
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
    return put_barrier(xid, platform_room(room), buffer);
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

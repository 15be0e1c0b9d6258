#include "query/controller.h"

#include <cstddef>
#include <cstring>

#include "ofp/message.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"

namespace ofp {
namespace {

static_assert(offsetof(OfpCtrlSummary, address) == 4);
static_assert(offsetof(OfpCtrlSummary, value_u32_20) == 20);
static_assert(offsetof(OfpCtrlSummary, port) == 24);
static_assert(offsetof(OfpCtrlSummary, flag) == 26);
static_assert(offsetof(OfpCtrlSummary, controller_id) == 28);
static_assert(offsetof(OfpCtrlSummary, text_29) == 29);
static_assert(offsetof(OfpCtrlSummary, text_61) == 61);

Exchange ask_for(uint32_t request, uint16_t instance_id, uint8_t controller_id)
{
    return ask(request, OFP_TLV_CtrlID,
               OfpCtrlID{.instance_id = instance_id, .controller_id = controller_id});
}

// The text up to its end, 31 characters at most; the rest of the destination stays zero.
void copy_text(char (&to)[32], const char (&from)[32])
{
    std::memcpy(to, from, strnlen(from, sizeof from - 1));
}

OfpCtrlSummary summary_of(const OfpCtrl &controller)
{
    constexpr uint16_t ipv4 = 2;
    constexpr uint32_t connected = 1;
    OfpCtrlSummary summary{};
    summary.address_type = controller.address_type;
    std::memcpy(summary.address, controller.address,
                controller.address_type == ipv4 ? sizeof controller.address[0]
                                                : sizeof controller.address);
    summary.value_u32_20 = controller.value_u32_36;
    summary.port = controller.port;
    summary.flag = controller.state == connected;
    summary.controller_id = controller.controller_id;
    copy_text(summary.text_29, controller.text_50);
    copy_text(summary.text_61, controller.text_152);
    return summary;
}

} // namespace

uint32_t read_controllers(uint16_t instance_id, OfpLink *list)
{
    return ask_for(OFP_MSG_GET_CTRL_INFO, instance_id, OFP_ALL_CONTROLLERS)
        .each([list](const Tlv &tlv) -> uint32_t {
            if (tlv.type != OFP_TLV_Ctrl)
                return OFP_RC_OK;
            return append_controller(summary_of(value_of<OfpCtrl>(tlv)), list);
        });
}

} // namespace ofp

OFP_API uint32_t OFP_get_CtrlInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                  uint8_t *buffer, uint64_t *length)
{
    return ofp::ask_for(OFP_MSG_GET_CTRL_INFO, instance_id, controller_id)
        .raw(size, buffer, length);
}

OFP_API uint32_t OFP_get_NextCtrl(uint16_t instance_id, uint8_t controller_id, OfpCtrl *next)
{
    return ofp::ask_for(OFP_MSG_GET_NEXT_CTRL, instance_id, controller_id)
        .typed(OFP_MSG_NEXT_CTRL, OFP_TLV_Ctrl, *next);
}

OFP_API uint32_t OFP_get_CtrlCfgInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                     uint8_t *buffer, uint64_t *length)
{
    return ofp::ask_for(OFP_MSG_GET_CTRL_CFG_INFO, instance_id, controller_id)
        .raw(size, buffer, length);
}

OFP_API uint32_t OFP_get_CtrlPktInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                     uint8_t *buffer, uint64_t *length)
{
    return ofp::ask_for(OFP_MSG_GET_CTRL_PKT_INFO, instance_id, controller_id)
        .raw(size, buffer, length);
}

OFP_API uint32_t OFP_get_AuxInfo(const OfpAuxID *key, uint64_t size, uint8_t *buffer,
                                 uint64_t *length)
{
    return ofp::ask(OFP_MSG_GET_AUX_INFO, OFP_TLV_AuxID, *key).raw(size, buffer, length);
}

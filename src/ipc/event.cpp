#include "ipc/event.h"

#include <algorithm>
#include <iterator>

#include "ipc/tlv_range.h"
#include "ofp/codec.h"
#include "ofp/result.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint16_t address_ipv4 = 2;

void take_controller(const Tlv &tlv, OfpCtrlEvent *event)
{
    OfpCtrl controller;
    OFP_msg_CtrlTlvInit(&controller);
    OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, sizeof controller, &controller);
    event->address_type = controller.address_type;
    const size_t words =
        controller.address_type == address_ipv4 ? 1 : std::size(controller.address);
    std::copy_n(controller.address, words, event->address);
    event->value = controller.event_value;
}

uint32_t decode_controller(uint32_t type, Bytes data, OfpEventCallback callback)
{
    OfpCtrlEvent event{};
    for (const Tlv &tlv : tlvs(data)) {
        if (tlv.type == OFP_TLV_InstanceID) {
            OfpInstanceID instance{};
            OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, sizeof instance, &instance);
            event.instance_id = instance.instance_id;
        } else if (tlv.type == OFP_TLV_Ctrl) {
            take_controller(tlv, &event);
        }
    }
    return callback(type, &event, 0);
}

uint32_t decode_controller_status(uint32_t type, Bytes data, OfpEventCallback callback)
{
    OfpCtrlStatusEventData status{}; // stays 0 when the notification tells none
    OFP_msg_GetTlvDataByType(data.data, data.size, OFP_TLV_CtrlStatusEventData, sizeof status,
                             &status);
    uint32_t record = status.status;
    return callback(type, &record, status.status);
}

using EventDecoder = uint32_t (*)(uint32_t type, Bytes data, OfpEventCallback callback);

constexpr auto event_decoders = by_number<EventDecoder, last_event>({
    {OFP_EVENT_CTRL_2, decode_controller},
    {OFP_EVENT_CTRL_4, decode_controller},
    {OFP_EVENT_CTRL_8, decode_controller},
    {OFP_EVENT_CTRL_STATUS, decode_controller_status},
});

} // namespace

uint32_t decode_event(uint32_t type, Bytes data, OfpEventCallback callback)
{
    const EventDecoder decode = event_decoders[type];
    if (decode == nullptr)
        return OFP_RC_OK;
    return decode(type, data, callback);
}

} // namespace ofp

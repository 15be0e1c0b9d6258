#include "daemon/controller_view.h"

#include <cstring>

#include "daemon/records.h"

namespace agent {

// No connection is made to any controller yet.
OfpCtrl controller_view(const Model &, uint16_t, uint8_t id, const Controller &controller)
{
    OfpCtrl record{};
    record.address_type = controller.address.type;
    std::memcpy(record.address, controller.address.bytes.data(), sizeof record.address);
    record.value_u32_36 = controller.role;
    record.port = controller.port;
    write_text(controller.vrf, record.text_50, sizeof record.text_50);
    record.controller_id = id;
    write_text(controller.tls_policy, record.text_152, sizeof record.text_152);
    record.event_value = id;
    return record;
}

OfpCtrlDebugInfo controller_counters(const Model &, uint16_t, uint8_t id)
{
    OfpCtrlDebugInfo record{};
    record.opaque_0 = id;
    return record;
}

uint32_t connected_controllers(const Model &, uint16_t) { return 0; }

} // namespace agent

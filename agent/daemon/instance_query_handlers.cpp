// Instances: whether one is active, and the summary of all.
#include <algorithm>

#include "daemon/controller_view.h"
#include "daemon/handler.h"
#include "daemon/page.h"

namespace agent {

namespace {

OfpSummary summary_of(uint16_t id, const InstanceConfig &instance, const Model &model)
{
    return {.value_u64_0 = model.configuration().datapath_id(id),
            .value_u32_8 = connected_controllers(model, id),
            .value_u32_12 = static_cast<uint32_t>(instance.bound_ports.size()),
            .value_u16_16 = id,
            .value_u16_18 = static_cast<uint16_t>(instance.tables.size()),
            .value_u16_20 = instance.active};
}

} // namespace

uint32_t instance_active(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    const InstanceConfig *const instance = model.instance(key.instance_id);
    if (!instance) {
        return NO_INSTANCE;
    }
    reply.record(OFP_MSG_INST_ACTIVE, OFP_TLV_InstActive,
                 OfpInstActive{.active = instance->active});
    return 0;
}

// How many, then as many datagrams as that takes.
uint32_t summary(const Request &request, Reply &reply, Model &model)
{
    if (const uint32_t code = at_end(request.body)) {
        return code;
    }
    uint32_t count = 0;
    for (auto id = model.next_instance(0); id; id = model.next_instance(*id)) {
        ++count;
    }
    reply.record(OFP_MSG_SUMMARY_COUNT, OFP_TLV_SummaryCount, OfpSummaryCount{.count = count});
    if (count == 0) {
        return 0;
    }
    reply.begin(OFP_MSG_SUMMARY);
    for (auto id = model.next_instance(0); id; id = model.next_instance(*id)) {
        const OfpSummary entry = summary_of(*id, *model.instance(*id), model);
        if (!add_if_room(reply, OFP_TLV_Summary, entry)) {
            reply.end();
            reply.begin(OFP_MSG_SUMMARY);
            reply.add(OFP_TLV_Summary, entry);
        }
    }
    reply.end();
    return 0;
}

} // namespace agent

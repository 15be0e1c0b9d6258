#include "daemon/controller_view.h"

#include <cstring>
#include <numeric>

#include "channel/controller_record.h"
#include "openflow/wire.h"

namespace agent {

namespace {

uint64_t sum(const MessageCounts &counts)
{
    return std::accumulate(counts.begin(), counts.end(), uint64_t{0});
}

} // namespace

OfpCtrl controller_view(const Model &model, uint16_t instance, uint8_t id,
                        const Controller &controller)
{
    return controller_record(id, controller, model.controllers.find(instance, id));
}

OfpCtrlDebugInfo controller_counters(const Model &model, uint16_t instance, uint8_t id)
{
    OfpCtrlDebugInfo record{};
    record.opaque_0 = id;
    const ControllerState *const state = model.controllers.find(instance, id);
    if (!state) {
        return record;
    }
    const MessageCounts &received = state->received;
    const MessageCounts &sent = state->sent;
    const uint64_t messages[] = {sum(received),
                                 sum(sent),
                                 sent[openflow::OFPT_PACKET_IN],
                                 received[openflow::OFPT_PACKET_OUT],
                                 received[openflow::OFPT_FLOW_MOD],
                                 received[openflow::OFPT_GROUP_MOD],
                                 received[openflow::OFPT_MULTIPART_REQUEST],
                                 sent[openflow::OFPT_MULTIPART_REPLY],
                                 received[openflow::OFPT_ECHO_REQUEST],
                                 sent[openflow::OFPT_ECHO_REQUEST],
                                 received[openflow::OFPT_ECHO_REPLY],
                                 received[openflow::OFPT_BARRIER_REQUEST],
                                 state->errors};
    const uint32_t connection[] = {static_cast<uint32_t>(state->state),
                                   static_cast<uint32_t>(state->role),
                                   state->attempts,
                                   state->connections,
                                   state->lost,
                                   monotonic_seconds() - state->since,
                                   0};
    static_assert(sizeof messages == sizeof record.value_u64_1 &&
                  sizeof connection == sizeof record.value_u32_105);
    std::memcpy(&record.value_u64_1, messages, sizeof messages);
    std::memcpy(&record.value_u32_105, connection, sizeof connection);
    return record;
}

uint32_t connected_controllers(const Model &model, uint16_t instance)
{
    const InstanceChannels *const channels = model.controllers.find(instance);
    return channels ? channels->connected() : 0;
}

} // namespace agent

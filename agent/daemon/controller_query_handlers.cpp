// Controllers and their auxiliary connections: as configured, their state, their counters.
#include <cstring>

#include "daemon/controller_view.h"
#include "daemon/handler.h"
#include "daemon/page.h"
#include "daemon/records.h"
#include "daemon/reply_codes.h"

namespace agent {

namespace {

uint32_t find_instance(uint16_t id, const Model &model, const InstanceConfig *&instance)
{
    instance = model.instance(id);
    return instance ? 0 : NO_INSTANCE;
}

uint32_t take_key(const Request &request, const Model &model, OfpCtrlID &key,
                  const InstanceConfig *&instance)
{
    const uint32_t code = take_only(request, OFP_TLV_CtrlID, key);
    return code ? code : find_instance(key.instance_id, model, instance);
}

// Calls add(id, controller) for the controller, or for each when the id stands for all of them,
// until it returns false: the datagram is full.
template <class Add>
uint32_t each_controller(const InstanceConfig &instance, uint8_t id, Add add)
{
    if (id == OFP_ALL_CONTROLLERS) {
        for (const auto &[each, controller] : instance.controllers) {
            if (!add(each, controller)) {
                break;
            }
        }
        return 0;
    }
    const auto found = instance.controllers.find(id);
    if (found == instance.controllers.end()) {
        return NO_CONTROLLER;
    }
    static_cast<void>(add(id, found->second)); // one always has room
    return 0;
}

// A message head and one record of each controller asked for.
template <class Make>
uint32_t answer_controllers(const Request &request, Reply &reply, const Model &model,
                            uint32_t message, uint16_t type, Make make)
{
    OfpCtrlID key;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_key(request, model, key, instance)) {
        return code;
    }
    reply.begin(message);
    const uint32_t code = each_controller(
        *instance, key.controller_id, [&](uint8_t id, const Controller &controller) {
            return add_if_room(reply, type, make(key.instance_id, id, controller));
        });
    reply.end();
    return code;
}

// An auxiliary connection; none is ever made.
OfpAux auxiliary_view(const Auxiliary &auxiliary)
{
    OfpAux record{};
    record.value_u16_0 = auxiliary.address.type;
    std::memcpy(record.opaque_2 + 2, auxiliary.address.bytes.data(),
                auxiliary.address.bytes.size());
    record.value_u32_36 = auxiliary.value_u32_20;
    auxiliary.vrf.copy(reinterpret_cast<char *>(record.opaque_44), sizeof record.opaque_44 - 1);
    record.value_u16_76 = auxiliary.port;
    return record;
}

// The key of an auxiliary connection before its state, which does not name it.
bool add_auxiliary(Reply &reply, const OfpAuxID &key, const Auxiliary &auxiliary)
{
    constexpr size_t TLV_HEADER = 4;
    if (reply.size() + 2 * TLV_HEADER + sizeof(OfpAuxID) + sizeof(OfpAux) > OFP_DATAGRAM_SIZE) {
        return false;
    }
    reply.add(OFP_TLV_AuxID, key);
    reply.add(OFP_TLV_Aux, auxiliary_view(auxiliary));
    return true;
}

} // namespace

uint32_t controller_info(const Request &request, Reply &reply, Model &model)
{
    return answer_controllers(request, reply, model, REPLY_CTRL_INFO, OFP_TLV_Ctrl,
                              [&](uint16_t instance, uint8_t id, const Controller &controller) {
                                  return controller_view(model, instance, id, controller);
                              });
}

uint32_t next_controller(const Request &request, Reply &reply, Model &model)
{
    OfpCtrlID key;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_key(request, model, key, instance)) {
        return code;
    }
    // Controller 0 is one, so that iteration begins with the id that stands for none of them.
    const auto next = key.controller_id >= OFP_ALL_CONTROLLERS
                          ? instance->controllers.begin()
                          : instance->controllers.upper_bound(key.controller_id);
    if (next == instance->controllers.end()) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_NEXT_CTRL, OFP_TLV_Ctrl,
                 controller_view(model, key.instance_id, next->first, next->second));
    return 0;
}

// Auxiliary connections follow, those of all controllers after the last controller.
uint32_t controller_config(const Request &request, Reply &reply, Model &model)
{
    OfpCtrlID key;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_key(request, model, key, instance)) {
        return code;
    }
    reply.begin(REPLY_CTRL_CFG_INFO);
    const uint32_t code = each_controller(
        *instance, key.controller_id, [&](uint8_t id, const Controller &controller) {
            return add_if_room(reply, OFP_TLV_CtrlCfg,
                               controller_record(key.instance_id, id, controller));
        });
    if (code != 0) {
        return code;
    }
    each_controller(*instance, key.controller_id, [&](uint8_t id, const Controller &controller) {
        for (const auto &[aux, auxiliary] : controller.auxiliaries) {
            if (!add_if_room(reply, OFP_TLV_AuxCfg,
                             auxiliary_record(key.instance_id, id, aux, auxiliary))) {
                return false;
            }
        }
        return true;
    });
    reply.end();
    return 0;
}

uint32_t controller_packets(const Request &request, Reply &reply, Model &model)
{
    return answer_controllers(request, reply, model, REPLY_CTRL_PKT_INFO, OFP_TLV_CtrlDebugInfo,
                              [&](uint16_t instance, uint8_t id, const Controller &) {
                                  return controller_counters(model, instance, id);
                              });
}

// Auxiliary id 0 stands for all of the controller, or of all controllers.
uint32_t auxiliary_info(const Request &request, Reply &reply, Model &model)
{
    OfpAuxID key;
    if (const uint32_t code = take_only(request, OFP_TLV_AuxID, key)) {
        return code;
    }
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = find_instance(key.instance_id, model, instance)) {
        return code;
    }
    bool found = key.aux_id == 0;
    reply.begin(REPLY_AUX_INFO);
    const uint32_t code = each_controller(
        *instance, key.controller_id, [&](uint8_t id, const Controller &controller) {
            for (const auto &[aux, auxiliary] : controller.auxiliaries) {
                if (key.aux_id != 0 && key.aux_id != aux) {
                    continue;
                }
                found = true;
                if (!add_auxiliary(reply, {key.instance_id, id, aux}, auxiliary)) {
                    return false;
                }
            }
            return true;
        });
    reply.end();
    return code != 0 || found ? code : NO_AUXILIARY;
}

} // namespace agent

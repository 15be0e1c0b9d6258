// Controllers of an instance and their connections.
#include "daemon/change.h"
#include "daemon/handler.h"
#include "daemon/records.h"

namespace agent {

namespace {

constexpr uint8_t ALL_CONTROLLERS = OFP_ALL_CONTROLLERS;

// Changes a controller that is there: change(Controller &) returns 0 or a result code.
template <class Change>
uint32_t change_controller(Model &model, uint16_t instance, uint8_t id, Change change)
{
    return change_instance(model, instance, [&](InstanceConfig &config) {
        const auto found = config.controllers.find(id);
        return found == config.controllers.end() ? NO_CONTROLLER : change(found->second);
    });
}

uint32_t change_tls_policy(const Request &request, Model &model, bool set)
{
    OfpCtrlSSL record;
    if (const uint32_t code = take_only(request, OFP_TLV_CtrlSSL, record)) {
        return code;
    }
    TlsPolicy policy;
    const uint32_t code = read_tls_policy(record, policy);
    return change_controller(model, policy.instance, policy.controller,
                             [&](Controller &controller) {
                                 controller.tls_policy = set ? policy.name : std::string();
                                 return set ? code : 0u;
                             });
}

} // namespace

// One that is there already keeps its auxiliary connections.
uint32_t set_controller(const Request &request, Reply &, Model &model)
{
    OfpCtrlCfg record;
    if (const uint32_t code = take_only(request, OFP_TLV_CtrlCfg, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        if (record.controller_id >= CONTROLLERS_PER_INSTANCE) {
            return BAD_CONTROLLER_ID;
        }
        return read_controller(record, instance.controllers[record.controller_id]);
    });
}

uint32_t unset_controller(const Request &request, Reply &, Model &model)
{
    OfpCtrlCfg record;
    if (const uint32_t code = take_only(request, OFP_TLV_CtrlCfg, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        if (record.controller_id == ALL_CONTROLLERS) {
            instance.controllers.clear();
            return 0u;
        }
        if (record.controller_id > ALL_CONTROLLERS) {
            return BAD_CONTROLLER_ID;
        }
        return instance.controllers.erase(record.controller_id) ? 0u : NO_CONTROLLER;
    });
}

uint32_t set_auxiliary(const Request &request, Reply &, Model &model)
{
    OfpAuxCfg record;
    if (const uint32_t code = take_only(request, OFP_TLV_AuxCfg, record)) {
        return code;
    }
    return change_controller(
        model, record.instance_id, record.controller_id, [&](Controller &controller) {
            return record.aux_id == 0
                       ? BAD_AUXILIARY_ID
                       : read_auxiliary(record, controller.auxiliaries[record.aux_id]);
        });
}

uint32_t unset_auxiliary(const Request &request, Reply &, Model &model)
{
    OfpAuxCfg record;
    if (const uint32_t code = take_only(request, OFP_TLV_AuxCfg, record)) {
        return code;
    }
    return change_controller(
        model, record.instance_id, record.controller_id, [&](Controller &controller) {
            return controller.auxiliaries.erase(record.aux_id) ? 0u : NO_AUXILIARY;
        });
}

uint32_t set_tls_policy(const Request &request, Reply &, Model &model)
{
    return change_tls_policy(request, model, true);
}

uint32_t unset_tls_policy(const Request &request, Reply &, Model &model)
{
    return change_tls_policy(request, model, false);
}

uint32_t set_excluded_controllers(const Request &request, Reply &, Model &model)
{
    OfpExcludeConnID record;
    if (const uint32_t code = take_only(request, OFP_TLV_ExcludeConnID, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        instance.excluded = {.controllers = record.value_u64_8, .value_u32_4 = record.value_u32_4};
        return 0u;
    });
}

// Its sender awaits no answer.
uint32_t reset_controller_counters(const Request &request, Reply &, Model &model)
{
    OfpCtrlID key;
    if (const uint32_t code = take_only(request, OFP_TLV_CtrlID, key)) {
        return code;
    }
    const InstanceConfig *const instance = model.instance(key.instance_id);
    if (!instance) {
        return NO_INSTANCE;
    }
    if (key.controller_id > ALL_CONTROLLERS) {
        return BAD_CONTROLLER_ID;
    }
    if (key.controller_id != ALL_CONTROLLERS &&
        !instance->controllers.contains(key.controller_id)) {
        return NO_CONTROLLER;
    }
    model.configuration().reset_counters(key.instance_id, key.controller_id);
    return 0;
}

} // namespace agent

// Ports: those of an instance, those that are shut down.
#include "daemon/change.h"
#include "daemon/handler.h"
#include "ofp/host.h"

namespace agent {

namespace {

uint32_t take_port(const Request &request, OfpPortInstanceCfg &record)
{
    if (const uint32_t code = take_only(request, OFP_TLV_PortInstanceCfg, record)) {
        return code;
    }
    return HOST_FindInterface(record.if_index) ? 0 : NO_PORT;
}

uint32_t change_shut_down(const Request &request, Model &model, bool shut_down)
{
    OfpPortShutdown record;
    if (const uint32_t code = take_only(request, OFP_TLV_PortShutdown, record)) {
        return code;
    }
    if (!HOST_FindInterface(record.if_index)) {
        return NO_PORT;
    }
    return change_global(model, [&](GlobalConfig &global) {
        if (shut_down) {
            global.shut_down_ports.insert(record.if_index);
        } else {
            global.shut_down_ports.erase(record.if_index);
        }
        return 0u;
    });
}

} // namespace

uint32_t bind_port(const Request &request, Reply &, Model &model)
{
    OfpPortInstanceCfg record;
    if (const uint32_t code = take_port(request, record)) {
        return code;
    }
    const auto owner = model.configuration().staged_instance_of_port(record.if_index);
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        instance.bound_ports[record.if_index] = record.value_u32_4;
        return owner && *owner != record.instance_id ? PORT_IN_USE : 0u;
    });
}

uint32_t unbind_port(const Request &request, Reply &, Model &model)
{
    OfpPortInstanceCfg record;
    if (const uint32_t code = take_port(request, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        return instance.bound_ports.erase(record.if_index) ? 0u : NOT_BOUND;
    });
}

uint32_t shut_down_port(const Request &request, Reply &, Model &model)
{
    return change_shut_down(request, model, true);
}

uint32_t start_port(const Request &request, Reply &, Model &model)
{
    return change_shut_down(request, model, false);
}

} // namespace agent

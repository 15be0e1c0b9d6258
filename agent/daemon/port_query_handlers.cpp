// Ports: those of an instance, those that are bound to any, and what the switch has for each.
#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "daemon/handler.h"
#include "daemon/page.h"
#include "daemon/records.h"
#include "daemon/reply_codes.h"
#include "ofp/host.h"

namespace agent {

namespace {

constexpr uint32_t NOT_SET = 0xffffffff;

// An interface that the switch's description does not have is called by its index.
std::string name_of(uint32_t if_index)
{
    const HostInterface *const interface = HOST_FindInterface(if_index);
    return interface ? interface->name : fmt::format("interface {}", if_index);
}

struct BoundPort {
    uint32_t if_index;
    uint32_t value;
    uint16_t instance;
};

// The next ports by index, at most so many, whatever their instance.
std::vector<BoundPort> next_ports(const Model &model, uint32_t after, size_t most)
{
    std::vector<BoundPort> ports;
    for (auto id = model.next_instance(0); id; id = model.next_instance(*id)) {
        const auto &bound = model.instance(*id)->bound_ports;
        size_t taken = 0;
        for (auto at = bound.upper_bound(after); at != bound.end() && taken < most; ++at) {
            ports.push_back({at->first, at->second, *id});
            ++taken;
        }
    }
    std::sort(ports.begin(), ports.end(),
              [](const BoundPort &a, const BoundPort &b) { return a.if_index < b.if_index; });
    ports.resize(std::min(ports.size(), most));
    return ports;
}

OfpAcPortInfo port_record(const BoundPort &port)
{
    OfpAcPortInfo record{};
    record.if_index = port.if_index;
    write_text(name_of(port.if_index), record.name, sizeof record.name);
    record.value_u32_52 = NOT_SET;
    // All ones would end the list there.
    record.value_u32_56 = port.value == NOT_SET ? 0 : port.value;
    record.value_u32_60 = port.instance;
    return record;
}

} // namespace

uint32_t instance_interfaces(const Request &request, Reply &reply, Model &model)
{
    OfpVerbIfReq key;
    if (const uint32_t code = take_only(request, OFP_TLV_VerbIfReq, key)) {
        return code;
    }
    const InstanceConfig *const instance = model.instance(key.instance_id);
    if (!instance) {
        return NO_INSTANCE;
    }
    reply.begin(REPLY_VERBOSE_IF);
    auto at = instance->bound_ports.upper_bound(key.if_index);
    for (; at != instance->bound_ports.end(); ++at) {
        OfpVerbIfRep record{};
        record.if_index = at->first;
        write_text(name_of(at->first), record.name, sizeof record.name);
        if (!add_if_room(reply, OFP_TLV_VerbIfRep, record)) {
            break;
        }
    }
    // The end, told at once, saves a question; without room for it the next answer is empty.
    if (at == instance->bound_ports.end()) {
        static_cast<void>(add_if_room(reply, OFP_TLV_VerbIfRep, OfpVerbIfRep{}));
    }
    reply.end();
    return 0;
}

uint32_t attachment_ports(const Request &request, Reply &reply, Model &model)
{
    constexpr size_t MOST = OFP_DATAGRAM_SIZE / sizeof(OfpAcPortInfo);
    OfpAcPortInfo key;
    if (const uint32_t code = take_only(request, OFP_TLV_AcPortInfo, key)) {
        return code;
    }
    reply.begin(REPLY_AC_PORT_INFO);
    const std::vector<BoundPort> ports = next_ports(model, key.if_index, MOST);
    auto at = ports.begin();
    while (at != ports.end() && add_if_room(reply, OFP_TLV_AcPortInfo, port_record(*at))) {
        ++at;
    }
    if (at == ports.end()) {
        static_cast<void>(add_if_room(reply, OFP_TLV_AcPortInfo, OfpAcPortInfo{}));
    }
    reply.end();
    return 0;
}

// One datagram is all that the query takes: of more interfaces than it holds, the first.
uint32_t interface_resources(const Request &request, Reply &reply, Model &)
{
    OfpReqResourcesIF key;
    if (const uint32_t code = take_only(request, OFP_TLV_ReqResourcesIF, key)) {
        return code;
    }
    const HostConfig *const host = HOST_GetConfig();
    if (!host) {
        return NOT_PRESENT;
    }
    bool found = false;
    reply.begin(REPLY_RESOURCES_IF);
    for (const HostInterface &interface : std::span(host->interfaces, host->interface_count)) {
        if (key.if_index != 0 && key.if_index != interface.index) {
            continue;
        }
        if (!add_if_room(reply, OFP_TLV_RepResourcesIF,
                         OfpRepResourcesIF{.if_index = interface.index})) {
            break;
        }
        found = true;
    }
    reply.end();
    return found ? 0 : NOT_PRESENT;
}

} // namespace agent

// What is configured for the whole switch, functions of the analysis layer, and requests of the
// moment.
#include <algorithm>

#include "daemon/change.h"
#include "daemon/handler.h"
#include "daemon/log.h"
#include "daemon/records.h"

namespace agent {

namespace {

constexpr size_t DEBUG_KEYS = 256; // sets of debugging switches that are kept

// A record whose 16-bit number is kept for the whole switch.
template <auto Wire, auto Kept, class Record>
uint32_t set_number(const Request &request, Model &model, uint16_t type, uint16_t most)
{
    Record record;
    if (const uint32_t code = take_only(request, type, record)) {
        return code;
    }
    return change_global(model, [&](GlobalConfig &global) {
        global.*Kept = record.*Wire;
        return record.*Wire > most ? BAD_VALUE : 0u;
    });
}

} // namespace

uint32_t set_ignore(const Request &request, Reply &, Model &model)
{
    return set_number<&OfpIgnore::value, &GlobalConfig::ignore, OfpIgnore>(
        request, model, OFP_TLV_Ignore, UINT16_MAX);
}

uint32_t set_ipv6_enhanced(const Request &request, Reply &, Model &model)
{
    return set_number<&OfpIpv6Enhanced::enable, &GlobalConfig::ipv6_enhanced, OfpIpv6Enhanced>(
        request, model, OFP_TLV_Ipv6Enhanced, 1);
}

uint32_t set_reserved_acl_resources(const Request &request, Reply &, Model &model)
{
    return set_number<&OfpResrvAclRes::value, &GlobalConfig::reserved_acl_resources,
                      OfpResrvAclRes>(request, model, OFP_TLV_ResrvAclRes, UINT16_MAX);
}

uint32_t refresh_ip_flow(const Request &request, Reply &, Model &model)
{
    return set_number<&OfpRefreshIpFlow::value, &GlobalConfig::refresh_ip_flow, OfpRefreshIpFlow>(
        request, model, OFP_TLV_RefreshIpFlow, UINT16_MAX);
}

uint32_t set_normal_forward_vlans(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    VlanSet vlans;
    if (const uint32_t code = take_vlans(rest, vlans)) {
        return code;
    }
    if (!rest.empty()) {
        return TRAILING_BYTES;
    }
    return change_global(model, [&](GlobalConfig &global) {
        global.normal_forward_vlans = vlans;
        return 0u;
    });
}

uint32_t set_oap_server(const Request &request, Reply &, Model &model)
{
    OfpOapServer record;
    if (const uint32_t code = take_only(request, OFP_TLV_OapServer, record)) {
        return code;
    }
    return change_global(model, [&](GlobalConfig &global) {
        return read_oap_server(record, global.oap_server.emplace());
    });
}

// There is one at most: whatever its name.
uint32_t unset_oap_server(const Request &request, Reply &, Model &model)
{
    OfpOapServer record;
    if (const uint32_t code = take_only(request, OFP_TLV_OapServer, record)) {
        return code;
    }
    return change_global(model, [&](GlobalConfig &global) {
        global.oap_server.reset();
        return 0u;
    });
}

uint32_t set_flow_monitor_action(const Request &request, Reply &, Model &model)
{
    OfpFlowMonitorAction record;
    if (const uint32_t code = take_only(request, OFP_TLV_FlowMonitorAction, record)) {
        return code;
    }
    return change_global(model, [&](GlobalConfig &global) {
        global.flow_monitor_action = {.value_u64_0 = record.value_u64_0,
                                      .value_u64_8 = record.value_u64_8,
                                      .value_u8_16 = record.value_u8_16,
                                      .value_u16_17 = record.value_u16_17};
        return 0u;
    });
}

// ---- Debugging

// Switches that are all off are not kept.
uint32_t set_debug(const Request &request, Reply &, Model &model)
{
    OfpGlbDebug record;
    if (const uint32_t code = take_only(request, OFP_TLV_GlbDebug, record)) {
        return code;
    }
    DebugSwitches switches;
    const DebugKey key = read_debug(record, switches);
    return change_global(model, [&](GlobalConfig &global) {
        if (switches == DebugSwitches{}) {
            global.debug.erase(key);
        } else {
            global.debug[key] = switches;
        }
        return global.debug.size() > DEBUG_KEYS ? TOO_MANY : 0u;
    });
}

uint32_t set_test_debug(const Request &request, Reply &, Model &model)
{
    OfpTDTestGlbDebug record;
    if (const uint32_t code = take_only(request, OFP_TLV_TDTestGlbDebug, record)) {
        return code;
    }
    return change_global(model, [&](GlobalConfig &global) {
        std::copy(std::begin(record.content), std::end(record.content), global.test_debug.begin());
        return 0u;
    });
}

// ---- The analysis layer

uint32_t enable_analysis(const Request &request, Reply &, Model &model)
{
    OfpEnableALAlFunction record;
    if (const uint32_t code = take_only(request, OFP_TLV_EnableALAlFunction, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        instance.analysis = {.functions = record.functions, .value_u16_2 = record.value_u16_2};
        return record.functions == 0 ? BAD_VALUE : 0u;
    });
}

uint32_t enable_payload(const Request &request, Reply &, Model &model)
{
    OfpEnablePayloadFunction record;
    if (const uint32_t code = take_only(request, OFP_TLV_EnablePayloadFunction, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        PayloadFunctions &payload = instance.payload.emplace();
        payload.functions = record.functions;
        payload.value_u16_2 = record.value_u16_2;
        payload.value_u32_4 = record.value_u32_4;
        payload.value_u32_8 = record.value_u32_8;
        std::copy(std::begin(record.opaque_16), std::end(record.opaque_16), payload.opaque.begin());
        return record.functions == 0 ? BAD_VALUE : 0u;
    });
}

// ---- Of the moment: checked, and then there is nothing to keep

// A memory switch has no port that a packet could leave by.
uint32_t analysis_packet_out(const Request &request, Reply &, Model &)
{
    OfpPacketOutAlAl record;
    if (const uint32_t code = take_only(request, OFP_TLV_PacketOutAlAl, record)) {
        return code;
    }
    return record.length > sizeof record.data ? BAD_VALUE : 0u;
}

uint32_t config_event(const Request &request, Reply &, Model &)
{
    OfpConfigEvent record;
    if (const uint32_t code = take_only(request, OFP_TLV_ConfigEvent, record)) {
        return code;
    }
    log::info("configuration event {:#x}", record.event);
    return 0;
}

// There is no cache. Its sender awaits no answer.
uint32_t reset_cache(const Request &request, Reply &, Model &)
{
    OfpCacheInfo record;
    return take_only(request, OFP_TLV_CacheInfo, record);
}

} // namespace agent

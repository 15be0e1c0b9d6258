// All of an instance: its own data, what is configured and what runs; and the switch's settings.
#include "daemon/handler.h"
#include "daemon/option_table.h"
#include "daemon/records.h"
#include "daemon/reply_codes.h"

namespace agent {

namespace {

uint32_t take_instance(const Request &request, const Model &model, uint16_t &id,
                       const InstanceConfig *&instance)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    id = key.instance_id;
    instance = model.instance(id);
    return instance ? 0 : NO_INSTANCE;
}

void add_filter(const OfpInstFilter &filter, Reply &reply)
{
    uint8_t tlvs[64];
    const uint64_t size = OFP_util_EncapInstFilterTLV(&filter, sizeof tlvs, tlvs);
    reply.add_tlvs({tlvs, size});
}

void add_vlans(const VlanSet &vlans, Reply &reply)
{
    const VlanMap map = vlan_map(vlans);
    reply.add_value(OFP_TLV_VlanBitmap, {map.bytes, map.size});
}

void add_option(uint16_t type, uint16_t id, const InstanceConfig &instance, Reply &reply)
{
    const Option *const option = option_of_type(type);
    alignas(8) uint8_t record[OPTION_RECORD_MAX];
    option->fill(id, instance, record);
    reply.add_value(type, {record, option->size});
}

// What both blocks tell in the same records.
void add_common(uint16_t id, const InstanceConfig &instance, Reply &reply)
{
    add_option(OFP_TLV_VlanLoosen, id, instance, reply);
    add_vlans(instance.in_band_vlans, reply);
    for (const uint16_t type :
         {OFP_TLV_MacLearning, OFP_TLV_ConnMode, OFP_TLV_FailOpen, OFP_TLV_MissRule,
          OFP_TLV_ForbiddenPort, OFP_TLV_QinqNetWkcfg, OFP_TLV_PermitPortType, OFP_TLV_TcpDscp,
          OFP_TLV_TcpNsr, OFP_TLV_DataPlaneMode, OFP_TLV_TTPMode, OFP_TLV_SmartGroup,
          OFP_TLV_FlowMonitorInterval, OFP_TLV_FlowMonitorThreShold}) {
        add_option(type, id, instance, reply);
    }
}

// What holds: a limit that nobody set is the switch's.
uint32_t effective_limit(const InstanceConfig &instance, const TableView &table)
{
    return instance.flow_entry_limit != 0 ? std::min(instance.flow_entry_limit, table.capacity)
                                          : table.capacity;
}

} // namespace

// The controllers are left to controller information, which the library asks for along with this:
// told here as well, each would stand in its list twice.
uint32_t verbose_global(const Request &request, Reply &reply, Model &model)
{
    uint16_t id = 0;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_instance(request, model, id, instance)) {
        return code;
    }
    OfpVerbInst data{};
    write_text(instance->description, reinterpret_cast<char *>(data.content), sizeof data.content);
    reply.begin(REPLY_VERBOSE_GLB);
    reply.add(OFP_TLV_InstActive, OfpInstActive{.active = instance->active});
    reply.add(OFP_TLV_VerbInst, data);
    reply.end();
    return 0;
}

uint32_t verbose_configured(const Request &request, Reply &reply, Model &model)
{
    uint16_t id = 0;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_instance(request, model, id, instance)) {
        return code;
    }
    reply.begin(REPLY_VERBOSE_CFG);
    add_filter(instance->filter, reply);
    for (const OfpFlowTable &table : instance->tables) {
        reply.add(OFP_TLV_FlowTable, table);
    }
    add_option(OFP_TLV_FlowEntryLimit, id, *instance, reply);
    if (instance->datapath_id) {
        reply.add(OFP_TLV_DataPathID, datapath_record(id, *instance->datapath_id));
    }
    add_common(id, *instance, reply);
    if (const auto &server = model.configuration().global().oap_server) {
        reply.add(OFP_TLV_OapServer, oap_server_record(*server));
    }
    add_option(OFP_TLV_DynMacAware, id, *instance, reply);
    if (instance->precedence) {
        reply.add(OFP_TLV_Precedence, precedence_record(id, *instance));
    }
    reply.add(OFP_TLV_ExcludeConnID, excluded_record(id, instance->excluded));
    reply.end();
    return 0;
}

// Of an inactive instance nothing runs: a reply that holds nothing.
uint32_t verbose_running(const Request &request, Reply &reply, Model &model)
{
    uint16_t id = 0;
    const InstanceConfig *instance = nullptr;
    if (const uint32_t code = take_instance(request, model, id, instance)) {
        return code;
    }
    reply.begin(REPLY_VERBOSE_RUN);
    if (instance->active) {
        add_filter(instance->filter, reply);
        uint32_t limit = 0;
        for (const OfpFlowTable &table : instance->tables) {
            const TableView view = model.flow_switch().table(id, table.table_id);
            limit = effective_limit(*instance, view);
            reply.add(OFP_TLV_FlowTableRun,
                      OfpFlowTableRun{table.table_id, {}, table.kind, view.rules});
        }
        reply.add(OFP_TLV_FlowEntryLimit, OfpFlowEntryLimit{limit, id, {}});
        reply.add(OFP_TLV_DataPathID, datapath_record(id, model.configuration().datapath_id(id)));
        add_common(id, *instance, reply);
    }
    reply.end();
    return 0;
}

uint32_t verbose_global_config(const Request &request, Reply &reply, Model &model)
{
    if (const uint32_t code = at_end(request.body)) {
        return code;
    }
    const GlobalConfig &global = model.configuration().global();
    reply.begin(REPLY_GLB_CFG_VERBOSE);
    add_vlans(global.normal_forward_vlans, reply);
    reply.add(OFP_TLV_Ignore, OfpIgnore{.value = global.ignore});
    reply.end();
    return 0;
}

} // namespace agent

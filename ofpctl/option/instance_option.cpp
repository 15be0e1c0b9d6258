#include "option/instance_option.h"

#include <cstring>
#include <string>
#include <type_traits>

#include "frame/rehearsal.h"
#include "ofp.h"
#include "option/member.h"

namespace ofpctl {

namespace {

using Configured = OfpVerboseConfigured;
using Running = OfpVerboseRunning;

uint64_t number(const Value &value) { return std::get<uint64_t>(value); }

// ---- Setting: one number of an instance

template <auto Set>
uint32_t set_pair(uint16_t instance, const Value &value)
{
    return Set(instance, static_cast<uint16_t>(number(value)));
}

template <auto Set>
uint32_t set_wide_pair(uint16_t instance, const Value &value)
{
    return Set(instance, static_cast<uint32_t>(number(value)));
}

template <auto Set, auto Member>
uint32_t set_record(uint16_t instance, const Value &value)
{
    using Record = OwnerOf<Member>;
    Record record{};
    record.*Member = static_cast<NumberOf<Member>>(number(value));
    record.instance_id = instance;
    return Set(&record);
}

// ---- Setting: what is more than a number

uint32_t set_description(uint16_t instance, const Value &value)
{
    return OFP_set_Description(instance, std::get<std::string>(value).c_str());
}

uint32_t set_flow_log(uint16_t instance, const Value &value)
{
    return OFP_set_FlowLogDisable(instance, number(value) == 0);
}

uint32_t set_tables(uint16_t instance, const Value &value)
{
    std::vector<OfpFlowTable> tables;
    for (const TableKind &table : std::get<std::vector<TableKind>>(value))
        tables.push_back({.table_id = table.table, .kind = table.kind});
    return OFP_set_FlowTable(instance, static_cast<uint32_t>(tables.size()), tables.data());
}

// Kinds of an instance filter that select VLANs.
constexpr uint16_t no_filter = 0;
constexpr uint16_t masked_filter = 1; // an id and a mask
constexpr uint16_t range_filter = 4;  // from one to another

uint16_t filter_kind(VlanFilter::Kind kind)
{
    switch (kind) {
    case VlanFilter::Kind::masked:
        return masked_filter;
    case VlanFilter::Kind::range:
        return range_filter;
    default:
        return no_filter;
    }
}

uint32_t set_vlan(uint16_t instance, const Value &value)
{
    const auto &vlan = std::get<VlanFilter>(value);
    OfpInstFilter filter{};
    filter.instance_id = instance;
    filter.filter_kind = filter_kind(vlan.kind);
    filter.param_a = vlan.a;
    filter.param_b = vlan.b;
    return OFP_set_VlanList(&filter, vlan.loose ? 1 : 0);
}

// The request would make an instance that does not exist.
uint32_t set_extension(uint16_t instance, const Value &value)
{
    constexpr uint16_t configure = 1;
    if (!rehearsing())
        require_instance(instance);
    return OFP_set_Instance(configure, instance, static_cast<uint32_t>(number(value)));
}

uint32_t set_management_vlans(uint16_t instance, const Value &value)
{
    const OfpVlanRangeList list = vlan_range_list(std::get<VlanSet>(value), instance);
    return OFP_set_InManageVlan(&list);
}

// ---- Reading

template <class Record, std::size_t Size>
Record record_in(const uint8_t (&bytes)[Size])
{
    static_assert(sizeof(Record) == Size);
    Record record;
    std::memcpy(&record, bytes, Size);
    return record;
}

template <auto Bytes, auto Member>
Value configured(const InstanceRecord &record)
{
    using Record = OwnerOf<Member>;
    return uint64_t{record_in<Record>(record.configured().*Bytes).*Member};
}

template <auto Bytes, auto Member>
Value running(const InstanceRecord &record)
{
    using Record = OwnerOf<Member>;
    return uint64_t{record_in<Record>(record.running().*Bytes).*Member};
}

Value description(const InstanceRecord &record)
{
    const uint8_t *content = record.instance().content;
    const std::string text(reinterpret_cast<const char *>(content), sizeof(OfpVerbInst));
    return text.substr(0, text.find('\0'));
}

template <class Record, class Block, std::size_t Size>
Value tables(const Block &block, const uint8_t (Block::*slots)[255][Size])
{
    std::vector<TableKind> all;
    for (std::size_t i = 0; i < block.table_count; i++) {
        const auto table = record_in<Record>((block.*slots)[i]);
        all.push_back({table.table_id, table.kind});
    }
    return all;
}

Value configured_tables(const InstanceRecord &record)
{
    return tables<OfpFlowTable, Configured, 8>(record.configured(), &Configured::flow_table);
}

Value running_tables(const InstanceRecord &record)
{
    return tables<OfpFlowTableRun, Running, 12>(record.running(), &Running::flow_table_run);
}

template <class Block>
Value vlan_of(const Block &block)
{
    const bool loose = record_in<OfpVlanLoosen>(block.vlan_loosen).enable != 0;
    switch (block.filter.filter_kind) {
    case masked_filter:
        return VlanFilter{VlanFilter::Kind::masked, block.filter.param_a, block.filter.param_b,
                          loose};
    case range_filter:
        return VlanFilter{VlanFilter::Kind::range, block.filter.param_a, block.filter.param_b,
                          loose};
    default:
        return VlanFilter{};
    }
}

Value configured_vlan(const InstanceRecord &record) { return vlan_of(record.configured()); }
Value running_vlan(const InstanceRecord &record) { return vlan_of(record.running()); }

Value configured_extension(const InstanceRecord &record)
{
    return uint64_t{record.configured().filter.ext};
}

Value running_extension(const InstanceRecord &record)
{
    return uint64_t{record.running().filter.ext};
}

Value configured_vlans(const InstanceRecord &record) { return record.configured_vlans(); }
Value running_vlans(const InstanceRecord &record) { return record.running_vlans(); }

// ---- The table

constexpr Choice fail_modes[] = {{"secure", 0}, {"standalone", 1}};
constexpr Choice connection_modes[] = {{"multiple", 0}, {"single", 1}};
constexpr Choice miss_modes[] = {{"drop", 0}, {"permit", 1}};

constexpr InstanceOption options[] = {
    {{"description", ValueForm::text, "TEXT", "what it is for", 0, 255},
     set_description,
     description},
    {{"datapath-id", ValueForm::hex, "ID",
      "the datapath id that controllers see, 0 for the default", 0, UINT64_MAX},
     set_record<OFP_set_DataPathID, &OfpDataPathID::datapath_id>,
     configured<&Configured::datapath_id, &OfpDataPathID::datapath_id>,
     running<&Running::datapath_id, &OfpDataPathID::datapath_id>},
    {{"precedence", ValueForm::number, "NUMBER", "its rank among instances", 0, UINT16_MAX},
     set_pair<OFP_set_Precedence>,
     configured<&Configured::precedence, &OfpPrecedence::precedence>},

    {{"connection-mode", ValueForm::word, "", "how many controllers it is connected to", 0, 0,
      connection_modes},
     set_record<OFP_set_ConnectionMode, &OfpConnMode::mode>,
     configured<&Configured::conn_mode, &OfpConnMode::mode>,
     running<&Running::conn_mode, &OfpConnMode::mode>},
    {{"fail-open", ValueForm::word, "", "what it does while no controller is connected", 0, 0,
      fail_modes},
     set_record<OFP_set_FailOpen, &OfpFailOpen::mode>,
     configured<&Configured::fail_open, &OfpFailOpen::mode>,
     running<&Running::fail_open, &OfpFailOpen::mode>},
    {{"echo-interval", ValueForm::number, "SECONDS", "time between echo requests", 1, 65535},
     set_record<OFP_set_EchoTime, &OfpEchoTime::interval>},
    {{"reconnect-interval", ValueForm::number, "SECONDS", "time between connection attempts", 1,
      65535},
     set_record<OFP_set_ReconnectTime, &OfpReconnectTime::interval>},
    {{"tcp-dscp", ValueForm::number, "DSCP", "DSCP of its connections", 0, 63},
     set_record<OFP_set_TcpDscp, &OfpTcpDscp::dscp>,
     configured<&Configured::tcp_dscp, &OfpTcpDscp::dscp>,
     running<&Running::tcp_dscp, &OfpTcpDscp::dscp>},
    {{"tcp-nsr", ValueForm::word, "", "non-stop routing of its connections", 0, 0, off_on},
     set_pair<OFP_set_TcpNsr>,
     configured<&Configured::tcp_nsr, &OfpTcpNsr::enable>,
     running<&Running::tcp_nsr, &OfpTcpNsr::enable>},
    {{"excluded-controllers", ValueForm::ids, "ID,...", "controllers that are left out, or none", 0,
      63},
     set_record<OFP_set_ExlucdeCtrlId, &OfpExcludeConnID::value_u64_8>,
     configured<&Configured::exclude_conn_id, &OfpExcludeConnID::value_u64_8>},

    {{"flow-tables", ValueForm::tables, "ID:KIND,...", "its flow tables, 0 to 254, or none"},
     set_tables,
     configured_tables,
     running_tables},
    {{"flow-entry-limit", ValueForm::number, "ENTRIES", "most flow entries, 0 for no limit", 0,
      UINT32_MAX},
     set_record<OFP_set_FlowEntryLimit, &OfpFlowEntryLimit::limit>,
     configured<&Configured::flow_entry_limit, &OfpFlowEntryLimit::limit>,
     running<&Running::flow_entry_limit, &OfpFlowEntryLimit::limit>},
    {{"table-miss", ValueForm::word, "", "what happens to packets that no entry matches", 0, 0,
      miss_modes},
     set_record<OFP_set_MissRule, &OfpMissRule::mode>,
     configured<&Configured::miss_rule, &OfpMissRule::mode>,
     running<&Running::miss_rule, &OfpMissRule::mode>},
    {{"flow-log", ValueForm::word, "", "log of flow entries", 0, 0, off_on}, set_flow_log},
    {{"packet-filter", ValueForm::hex, "BITS", "packets that are filtered", 0, UINT32_MAX},
     set_wide_pair<OFP_set_PacketFilter>},
    {{"flow-monitor-interval", ValueForm::number, "SECONDS", "time between looks at the flows", 0,
      UINT32_MAX},
     set_record<OFP_set_FlowMonitorInterval, &OfpFlowMonitorInterval::interval>,
     configured<&Configured::flow_monitor_interval, &OfpFlowMonitorInterval::interval>,
     running<&Running::flow_monitor_interval, &OfpFlowMonitorInterval::interval>},
    {{"flow-monitor-threshold", ValueForm::number, "NUMBER", "from which flows are reported", 0,
      UINT32_MAX},
     set_record<OFP_set_FlowMonitorThreShold, &OfpFlowMonitorThreShold::threshold>,
     configured<&Configured::flow_monitor_threshold, &OfpFlowMonitorThreShold::threshold>,
     running<&Running::flow_monitor_threshold, &OfpFlowMonitorThreShold::threshold>},

    {{"vlan", ValueForm::vlan_filter, "ID[/MASK][,loose]",
      "the VLANs it serves; also FIRST-LAST[,loose] or none"},
     set_vlan,
     configured_vlan,
     running_vlan,
     true},
    {{"extension", ValueForm::hex, "VALUE", "extension word of its filter; vlan makes it 0", 0,
      UINT32_MAX},
     set_extension,
     configured_extension,
     running_extension},
    {{"management-vlans", ValueForm::vlans, "VLANS", "in-band management VLANs, 1-10,20 or none"},
     set_management_vlans,
     configured_vlans,
     running_vlans,
     true},
    {{"qinq", ValueForm::word, "", "QinQ network", 0, 0, off_on},
     set_pair<OFP_set_QinQNetEnable>,
     configured<&Configured::qinq_net_wkcfg, &OfpQinqNetWkcfg::enable>,
     running<&Running::qinq_net_wkcfg, &OfpQinqNetWkcfg::enable>,
     true},
    {{"mac-learning", ValueForm::word, "", "learning of MAC addresses", 0, 0, off_on},
     set_pair<OFP_set_MacLearning>,
     configured<&Configured::mac_learning, &OfpMacLearning::enable>,
     running<&Running::mac_learning, &OfpMacLearning::enable>},
    {{"dynamic-mac", ValueForm::word, "", "awareness of dynamic MAC addresses", 0, 0, off_on},
     set_record<OFP_set_DynMac, &OfpDynMacAware::enable>,
     configured<&Configured::dyn_mac_aware, &OfpDynMacAware::enable>},

    {{"forbidden-ports", ValueForm::hex, "BITS", "kinds of ports that it must not use", 0,
      UINT32_MAX},
     set_wide_pair<OFP_set_ForbiddenPort>,
     configured<&Configured::forbidden_port, &OfpForbiddenPort::ports>,
     running<&Running::forbidden_port, &OfpForbiddenPort::ports>},
    {{"permitted-port-types", ValueForm::hex, "BITS", "types of ports that it may use", 0,
      UINT32_MAX},
     set_wide_pair<OFP_set_PermitPortType>,
     configured<&Configured::permit_port_type, &OfpPermitPortType::port_types>,
     running<&Running::permit_port_type, &OfpPermitPortType::port_types>},
    {{"loop-protection", ValueForm::word, "", "protection against loops", 0, 0, off_on},
     set_pair<OFP_set_LoopProtect>},

    {{"data-plane-mode", ValueForm::number, "MODE", "mode of the data plane", 0, UINT16_MAX},
     set_pair<OFP_set_DataPlaneMode>,
     configured<&Configured::data_plane_mode, &OfpDataPlaneMode::mode>,
     running<&Running::data_plane_mode, &OfpDataPlaneMode::mode>},
    {{"ttp-mode", ValueForm::word, "", "table type pattern mode", 0, 0, off_on},
     set_pair<OFP_set_TTPMode>,
     configured<&Configured::ttp_mode, &OfpTTPMode::mode>,
     running<&Running::ttp_mode, &OfpTTPMode::mode>},
    {{"smart-group", ValueForm::word, "", "smart groups", 0, 0, off_on},
     set_pair<OFP_set_SmartGroup>,
     configured<&Configured::smart_group, &OfpSmartGroup::enable>,
     running<&Running::smart_group, &OfpSmartGroup::enable>},
    {{"traps", ValueForm::hex, "BITS", "notifications that are sent", 0, UINT32_MAX},
     set_wide_pair<OFP_set_TrapEnable>},
    {{"analysis-functions", ValueForm::hex, "BITS", "functions of the analysis layer", 1,
      UINT32_MAX},
     set_record<OFP_set_EnableALAlFunction, &OfpEnableALAlFunction::functions>},
    {{"payload-functions", ValueForm::hex, "BITS", "functions on payload", 1, UINT32_MAX},
     set_record<OFP_set_EnablePayloadFunction, &OfpEnablePayloadFunction::functions>},
};

} // namespace

std::span<const InstanceOption> instance_options() { return options; }

SettingRows instance_settings()
{
    SettingRows rows;
    for (const InstanceOption &option : options)
        rows.push_back(&option.row);
    return rows;
}

} // namespace ofpctl

#include "option/global_option.h"

#include <string>

#include "ofp.h"

namespace ofpctl {

namespace {

uint16_t number16(const Value &value) { return static_cast<uint16_t>(std::get<uint64_t>(value)); }

template <auto Set>
uint32_t set_number(const Value &value)
{
    return Set(number16(value));
}

uint32_t set_forward_vlans(const Value &value)
{
    const OfpVlanRangeList list = vlan_range_list(std::get<VlanSet>(value), 0);
    return OFP_set_NormalForwardVlan(&list);
}

Value forward_vlans(const GlobalRecord &record) { return record.normal_forward_vlans(); }
Value ignored(const GlobalRecord &record) { return uint64_t{record.ignore()}; }

uint32_t set_reserved_acl(const Value &value)
{
    const OfpResrvAclRes reserved{.value = number16(value), .reserved_2 = {}};
    return OFP_set_ResvAclRes(&reserved);
}

constexpr uint16_t operation_set = 1;
constexpr uint16_t operation_remove = 0;

// No name, no server.
uint32_t set_oap_server(const Value &value)
{
    const auto &name = std::get<std::string>(value);
    OfpOapServer server{};
    name.copy(server.text_0, sizeof server.text_0 - 1);
    return OFP_set_OapServer(&server, name.empty() ? operation_remove : operation_set);
}

uint32_t set_monitor_action(const Value &value)
{
    const auto &numbers = std::get<std::vector<uint64_t>>(value);
    return OFP_set_FlowMonitorAction(numbers[0], numbers[1], static_cast<uint8_t>(numbers[2]),
                                     static_cast<uint16_t>(numbers[3]));
}

uint32_t set_config_event(const Value &value)
{
    return OFP_set_ProcConfigEvent(static_cast<uint32_t>(std::get<uint64_t>(value)));
}

constexpr uint64_t action_maxima[] = {UINT64_MAX, UINT64_MAX, UINT8_MAX, UINT16_MAX};

constexpr GlobalOption options[] = {
    {{"normal-forward-vlans", ValueForm::vlans, "VLANS",
      "VLANs that are forwarded as usual, 1-10,20 or none"},
     set_forward_vlans,
     forward_vlans,
     true},
    {{"ignore", ValueForm::number, "NUMBER", "what the agent ignores", 0, UINT16_MAX},
     set_number<OFP_set_Ignore>,
     ignored},
    {{"ipv6-enhanced", ValueForm::word, "", "enhanced IPv6 support", 0, 0, off_on},
     set_number<OFP_set_Ipv6Enhanced>},
    {{"reserved-acl", ValueForm::number, "NUMBER", "ACL resources kept for OpenFlow", 0,
      UINT16_MAX},
     set_reserved_acl},
    {{"refresh-ip-flow", ValueForm::number, "NUMBER", "refresh of the IP flows", 0, UINT16_MAX},
     set_number<OFP_set_RefreshIpFlow>},
    {{"oap-server", ValueForm::text, "NAME", "server of open applications; none without a name", 0,
      31},
     set_oap_server},
    {{.name = "flow-monitor-action",
      .form = ValueForm::numbers,
      .value = "U64:U64:U8:U16",
      .help = "what flow monitors do",
      .maxima = action_maxima},
     set_monitor_action},
    {{"config-event", ValueForm::number, "EVENT", "tells the agent of a configuration event", 0,
      UINT32_MAX},
     set_config_event},
};

} // namespace

std::span<const GlobalOption> global_options() { return options; }

SettingRows global_settings()
{
    SettingRows rows;
    for (const GlobalOption &option : options)
        rows.push_back(&option.row);
    return rows;
}

} // namespace ofpctl

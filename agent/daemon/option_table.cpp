#include "daemon/option_table.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace agent {

namespace {

template <class Member>
struct MemberOf;
template <class Struct, class Type>
struct MemberOf<Type Struct::*> {
    using Owner = Struct;
    using Value = Type;
};

// A number of a record that may lie at an odd place.
template <class Number>
uint64_t load(const Number &number)
{
    if constexpr (std::is_integral_v<Number>) {
        return number;
    } else {
        return std::bit_cast<uint32_t>(number);
    }
}

template <class Number>
Number as(uint64_t value)
{
    if constexpr (std::is_integral_v<Number>) {
        return static_cast<Number>(value);
    } else {
        return std::bit_cast<Number>(static_cast<uint32_t>(value));
    }
}

// The record's number and the instance's.
template <auto Wire, auto Kept>
constexpr Option option(uint32_t message, uint16_t type, uint64_t least, uint64_t most)
{
    using Record = typename MemberOf<decltype(Wire)>::Owner;
    using Number = typename MemberOf<decltype(Wire)>::Value;
    using Setting = typename MemberOf<decltype(Kept)>::Value;
    static_assert(sizeof(Record) <= OPTION_RECORD_MAX);
    static_assert(sizeof(Number) == sizeof(Setting));
    return {
        message,
        type,
        sizeof(Record),
        least,
        most,
        [](const void *record) { return static_cast<const Record *>(record)->instance_id; },
        [](const void *record) { return load(static_cast<const Record *>(record)->*Wire); },
        [](InstanceConfig &instance, uint64_t value) {
            instance.*Kept = static_cast<Setting>(value);
        },
        [](uint16_t id, const InstanceConfig &instance, void *record) {
            Record filled{};
            filled.instance_id = id;
            filled.*Wire = as<Number>(instance.*Kept);
            std::memcpy(record, &filled, sizeof filled);
        },
    };
}

using Config = InstanceConfig;

constexpr uint64_t ANY16 = UINT16_MAX;
constexpr uint64_t ANY32 = UINT32_MAX;
constexpr uint64_t LAST_DSCP = 63;

// clang-format off
constexpr Option OPTIONS[] = {
    option<&OfpEchoTime::interval, &Config::echo_interval>(
        OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, 1, 65535),
    option<&OfpReconnectTime::interval, &Config::reconnect_interval>(
        OFP_MSG_SET_RECONNECT_TIME, OFP_TLV_ReconnectTime, 1, 65535),
    option<&OfpConnMode::mode, &Config::connection_mode>(
        OFP_MSG_SET_CONNECTION_MODE, OFP_TLV_ConnMode, CONNECT_MULTIPLE, CONNECT_SINGLE),
    option<&OfpFailOpen::mode, &Config::fail_mode>(
        OFP_MSG_SET_FAIL_OPEN, OFP_TLV_FailOpen, FAIL_SECURE, FAIL_STANDALONE),
    option<&OfpTcpDscp::dscp, &Config::dscp>(
        OFP_MSG_SET_TCP_DSCP, OFP_TLV_TcpDscp, 0, LAST_DSCP),
    option<&OfpTcpNsr::enable, &Config::nonstop_routing>(
        OFP_MSG_SET_TCP_NSR, OFP_TLV_TcpNsr, 0, 1),

    option<&OfpFlowEntryLimit::limit, &Config::flow_entry_limit>(
        OFP_MSG_SET_FLOW_ENTRY_LIMIT, OFP_TLV_FlowEntryLimit, 0, ANY32),
    option<&OfpMissRule::mode, &Config::miss_mode>(
        OFP_MSG_SET_MISS_RULE, OFP_TLV_MissRule, MISS_DROP, MISS_PERMIT),
    option<&OfpFlowLogDisable::disable, &Config::flow_log_disabled>(
        OFP_MSG_SET_FLOW_LOG_DISABLE, OFP_TLV_FlowLogDisable, 0, 1),
    option<&OfpPacketFilter::filter, &Config::packet_filter>(
        OFP_MSG_SET_PACKET_FILTER, OFP_TLV_PacketFilter, 0, ANY32),
    option<&OfpFlowMonitorInterval::interval, &Config::flow_monitor_interval>(
        OFP_MSG_SET_FLOW_MONITOR_INTERVAL, OFP_TLV_FlowMonitorInterval, 0, ANY32),
    option<&OfpFlowMonitorThreShold::threshold, &Config::flow_monitor_threshold>(
        OFP_MSG_SET_FLOW_MONITOR_THRESHOLD, OFP_TLV_FlowMonitorThreShold, 0, ANY32),

    option<&OfpVlanLoosen::enable, &Config::vlan_loose>(
        0, OFP_TLV_VlanLoosen, 0, 1),
    option<&OfpQinqNetWkcfg::enable, &Config::qinq>(
        OFP_MSG_SET_QINQ_NET_ENABLE, OFP_TLV_QinqNetWkcfg, 0, 1),
    option<&OfpMacLearning::enable, &Config::mac_learning>(
        OFP_MSG_SET_MAC_LEARNING, OFP_TLV_MacLearning, 0, 1),
    option<&OfpDynMacAware::enable, &Config::dynamic_mac_aware>(
        OFP_MSG_SET_DYN_MAC, OFP_TLV_DynMacAware, 0, 1),

    option<&OfpForbiddenPort::ports, &Config::forbidden_ports>(
        OFP_MSG_SET_FORBIDDEN_PORT, OFP_TLV_ForbiddenPort, 0, ANY32),
    option<&OfpPermitPortType::port_types, &Config::permitted_port_types>(
        OFP_MSG_SET_PERMIT_PORT_TYPE, OFP_TLV_PermitPortType, 0, ANY32),
    option<&OfpLoopProtection::enable, &Config::loop_protection>(
        OFP_MSG_SET_LOOP_PROTECT, OFP_TLV_LoopProtection, 0, 1),

    option<&OfpDataPlaneMode::mode, &Config::data_plane_mode>(
        OFP_MSG_SET_DATA_PLANE_MODE, OFP_TLV_DataPlaneMode, 0, ANY16),
    option<&OfpTTPMode::mode, &Config::ttp_mode>(
        OFP_MSG_SET_TTP_MODE, OFP_TLV_TTPMode, 0, 1),
    option<&OfpSmartGroup::enable, &Config::smart_groups>(
        OFP_MSG_SET_SMART_GROUP, OFP_TLV_SmartGroup, 0, 1),
    option<&OfpTrapEnable::traps, &Config::traps>(
        OFP_MSG_SET_TRAP_ENABLE, OFP_TLV_TrapEnable, 0, ANY32),
};
// clang-format on

template <class Number>
const Option *find(Number Option::*member, Number number)
{
    const auto *const end = std::end(OPTIONS);
    const auto *const at = std::find_if(
        std::begin(OPTIONS), end, [=](const Option &option) { return option.*member == number; });
    return at == end ? nullptr : at;
}

} // namespace

std::span<const Option> options() { return OPTIONS; }

const Option *option_of_message(uint32_t message)
{
    return message == 0 ? nullptr : find(&Option::message, message);
}

const Option *option_of_type(uint16_t type) { return find(&Option::type, type); }

} // namespace agent

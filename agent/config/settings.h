// What can be configured: of an instance and of the whole switch. Plain structures; a member that
// nobody set has its initial value.
#pragma once

#include <array>
#include <bitset>
#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ofp.h"

namespace agent {

// Clients program rules; the rules of a client are those of the instance with its id.
inline constexpr uint16_t FIRST_CLIENT = 4096;
inline constexpr uint16_t LAST_CLIENT = 4099;
inline constexpr uint8_t CLIENT_TABLE = 200;
inline constexpr uint32_t CLIENT_TABLE_KIND = 2;

constexpr bool is_client(uint16_t id) { return id >= FIRST_CLIENT && id <= LAST_CLIENT; }

inline constexpr uint16_t FIRST_VLAN = 1;
inline constexpr uint16_t LAST_VLAN = 4094;

using VlanSet = std::bitset<LAST_VLAN + 1>; // by VLAN id; never holds 0

// ---- Controllers

inline constexpr uint8_t CONTROLLERS_PER_INSTANCE = 64; // ids 0 to 63

enum AddressType : uint16_t {
    ADDRESS_NONE = 0, // of an auxiliary connection: its controller's
    ADDRESS_IPV4 = 2,
    ADDRESS_IPV6 = 10,
};

struct Address {
    uint16_t type = ADDRESS_NONE;
    std::array<uint8_t, 16> bytes{}; // network order; IPv4 in the first four, the rest zero

    bool operator==(const Address &) const = default;
};

// An auxiliary connection of a controller.
struct Auxiliary {
    Address address;
    uint16_t port = 0;         // TCP port; 0: its controller's
    std::string vrf;           // at most 31 bytes; empty: none
    uint32_t value_u32_20 = 0; // kept as given, like the next
    uint32_t value_u32_24 = 0;

    bool operator==(const Auxiliary &) const = default;
};

struct Controller {
    Address address;
    uint16_t port = 0;
    uint32_t role = 0; // as OpenFlow 1.3 numbers them: 0 none asked for, 1 equal, 2 master, 3 slave
    std::string vrf;   // at most 31 bytes; empty: none
    std::string tls_policy;                   // at most 31 bytes; empty: plain TCP
    uint16_t value_u16_26 = 0;                // kept as given
    std::array<uint8_t, 63> opaque{};         // bytes 93 to 155 of its TLV, as they travelled
    std::map<uint8_t, Auxiliary> auxiliaries; // by id, 1 to 255

    bool operator==(const Controller &) const = default;
};

// Controllers that are left out, bit n for the one with id n.
struct ExcludedControllers {
    uint64_t controllers = 0;
    uint32_t value_u32_4 = 0; // kept as given

    bool operator==(const ExcludedControllers &) const = default;
};

// ---- Functions of the analysis layer: kept as given

struct AnalysisFunctions {
    uint32_t functions = 0; // bits
    uint16_t value_u16_2 = 0;

    bool operator==(const AnalysisFunctions &) const = default;
};

struct PayloadFunctions {
    uint32_t functions = 0; // bits
    uint16_t value_u16_2 = 0;
    uint32_t value_u32_4 = 0;
    uint32_t value_u32_8 = 0;
    std::array<uint8_t, 64> opaque{};

    bool operator==(const PayloadFunctions &) const = default;
};

// ---- An instance

enum FailMode : uint32_t { FAIL_SECURE = 0, FAIL_STANDALONE = 1 };
enum ConnectionMode : uint32_t { CONNECT_MULTIPLE = 0, CONNECT_SINGLE = 1 };
enum MissMode : uint32_t { MISS_DROP = 0, MISS_PERMIT = 1 };

struct InstanceConfig {
    OfpInstFilter filter{};           // which traffic; its id is the instance's
    bool declared = false;            // by a message of its own; else it came with its client
    std::vector<OfpFlowTable> tables; // ascending by id; of a client with its own table

    bool active = false;
    std::string description;             // at most 255 bytes
    std::optional<uint64_t> datapath_id; // unset: the switch's default, see Configuration
    std::optional<uint16_t> precedence;

    // Controllers and their connections
    std::map<uint8_t, Controller> controllers; // by id
    ExcludedControllers excluded;
    uint32_t connection_mode = CONNECT_MULTIPLE;
    uint32_t fail_mode = FAIL_SECURE;
    uint32_t echo_interval = 5;       // seconds
    uint32_t reconnect_interval = 60; // seconds
    uint32_t dscp = 10;
    uint16_t nonstop_routing = 0;

    // VLANs and MAC addresses
    uint16_t vlan_loose = 0;
    VlanSet in_band_vlans;
    uint16_t qinq = 0;
    uint16_t mac_learning = 1;
    uint16_t dynamic_mac_aware = 0;

    // Ports
    std::map<uint32_t, uint32_t> bound_ports; // by interface index; a value kept as given
    uint32_t forbidden_ports = 0;             // bits
    uint32_t permitted_port_types = 0;        // bits
    uint16_t loop_protection = 0;

    // Flow entries
    uint32_t flow_entry_limit = 0; // of each flow table; 0: no limit but the switch's
    uint32_t miss_mode = MISS_DROP;
    uint16_t flow_log_disabled = 0;
    uint32_t packet_filter = 0;
    uint32_t flow_monitor_interval = 300; // seconds
    uint32_t flow_monitor_threshold = 0;

    // The data plane
    uint16_t data_plane_mode = 0;
    uint16_t ttp_mode = 0;
    uint16_t smart_groups = 0;
    uint32_t traps = 0; // bits
    std::optional<AnalysisFunctions> analysis;
    std::optional<PayloadFunctions> payload;

    const OfpFlowTable *table(uint8_t id) const;
};

// ---- The whole switch

// A server of open applications: kept as given.
struct OapServer {
    std::string name; // at most 31 bytes
    uint32_t value_u32_32 = 0;
    uint16_t value_u16_36 = 0;
    uint16_t value_u16_38 = 0;

    bool operator==(const OapServer &) const = default;
};

// What a flow monitor does: kept as given.
struct FlowMonitorAction {
    uint64_t value_u64_0 = 0;
    uint64_t value_u64_8 = 0;
    uint8_t value_u8_16 = 0;
    uint16_t value_u16_17 = 0;

    bool operator==(const FlowMonitorAction &) const = default;
};

// Names a set of debugging switches: the first two numbers of its TLV.
struct DebugKey {
    uint16_t value_u16_0 = 0;
    uint16_t value_u16_2 = 0;

    auto operator<=>(const DebugKey &) const = default;
};
using DebugSwitches = std::array<uint8_t, 92>; // bytes 4 to 95 of the TLV, as they travelled

struct GlobalConfig {
    VlanSet normal_forward_vlans;
    uint16_t ignore = 0;
    std::optional<uint16_t> ipv6_enhanced;          // unset: as the agent was started
    std::optional<uint16_t> reserved_acl_resources; // unset: as the agent was started
    uint16_t refresh_ip_flow = 0;
    std::set<uint32_t> shut_down_ports; // by interface index
    std::optional<OapServer> oap_server;
    std::optional<FlowMonitorAction> flow_monitor_action;
    std::map<DebugKey, DebugSwitches> debug;
    std::array<uint8_t, 16> test_debug{}; // as it travelled
};

} // namespace agent

// What is configured as records of the wire, in host order, and back. The readers return 0 or the
// result code that says what is wrong; what they fill is then not to be used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "config/settings.h"
#include "daemon/request.h"
#include "daemon/result_codes.h"
#include "ofp.h"

namespace agent {

[[nodiscard]] uint32_t read_text(const char *field, size_t size, std::string &text);
void write_text(const std::string &text, char *field, size_t size);

[[nodiscard]] uint32_t read_controller(const OfpCtrlCfg &record, Controller &controller);
OfpCtrlCfg controller_record(uint16_t instance, uint8_t id, const Controller &controller);

[[nodiscard]] uint32_t read_auxiliary(const OfpAuxCfg &record, Auxiliary &auxiliary);
OfpAuxCfg auxiliary_record(uint16_t instance, uint8_t controller, uint8_t id,
                           const Auxiliary &auxiliary);

// The TLS policy of a controller: instance, controller, pad, then the policy's name.
struct TlsPolicy {
    uint16_t instance = 0;
    uint8_t controller = 0;
    std::string name;
};
[[nodiscard]] uint32_t read_tls_policy(const OfpCtrlSSL &record, TlsPolicy &policy);

[[nodiscard]] uint32_t read_oap_server(const OfpOapServer &record, OapServer &server);
OfpOapServer oap_server_record(const OapServer &server);

DebugKey read_debug(const OfpGlbDebug &record, DebugSwitches &switches);
OfpGlbDebug debug_record(const DebugKey &key, const DebugSwitches &switches);

OfpDataPathID datapath_record(uint16_t instance, uint64_t datapath_id);
OfpPrecedence precedence_record(uint16_t instance, const InstanceConfig &config);
OfpExcludeConnID excluded_record(uint16_t instance, const ExcludedControllers &excluded);

// Takes a map of VLAN ids off rest.
[[nodiscard]] uint32_t take_vlans(Bytes &rest, VlanSet &vlans);
// The value of a TLV 90 of this many bytes, in host order.
struct VlanMap {
    alignas(8) uint8_t bytes[sizeof(OfpVlanBitmap)];
    size_t size;
};
VlanMap vlan_map(const VlanSet &vlans);

} // namespace agent

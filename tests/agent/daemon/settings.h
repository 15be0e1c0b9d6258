// One request of every configuration message, such that each is accepted after those before it.
#pragma once

#include <cstdint>
#include <vector>

#include "agent/daemon/wire_text.h"

namespace agent::test {

inline constexpr uint16_t INSTANCE = 5;
inline constexpr uint32_t PORT = 1; // an interface of the switch that is built in

struct SettingRequest {
    uint32_t code;
    Datagram tlvs; // all that follows the message head

    Datagram datagram() const { return join({head(code), tlvs}); }
};

// What sets, ends of the moment included, and then what takes away again.
std::vector<SettingRequest> setting_requests();
std::vector<SettingRequest> unsetting_requests();

// Parts that tests vary.
Datagram instance_filter(uint16_t instance, uint32_t ext = 0);
Datagram instance_key(uint16_t instance = INSTANCE);
Datagram text(std::string_view characters, size_t size);

struct ControllerCfg {
    uint16_t instance = INSTANCE;
    uint16_t address_type = 2;
    Datagram address = hex("c0000201 000000000000000000000000"); // 192.0.2.1
    uint32_t role = 2;
    uint16_t port = 6653;
    uint8_t id = 3;
    Datagram vrf = text("mgmt", 32);
    Datagram tls_policy = text("strict", 32);
};
Datagram controller_cfg(const ControllerCfg &controller);

struct AuxiliaryCfg {
    uint16_t instance = INSTANCE;
    uint16_t address_type = 0;
    Datagram address = Datagram(16);
    uint8_t controller = 3;
    uint8_t id = 1;
};
Datagram auxiliary_cfg(const AuxiliaryCfg &auxiliary);

// TLV 90 of these VLAN ids, 512 bytes of bits.
Datagram vlan_map(std::initializer_list<uint32_t> vlans);

} // namespace agent::test

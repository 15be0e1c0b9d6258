#include "agent/daemon/settings.h"

#include <algorithm>
#include <cstring>

namespace agent::test {

namespace {

// Fields of a record; instances are 5.
SettingRequest row(uint32_t code, uint16_t type, std::string_view digits)
{
    return {code, tlv(type, hex(digits))};
}

// The TLS policy of controller 3: its first number travels as it lies in memory.
Datagram tls_policy()
{
    const uint16_t instance = INSTANCE;
    Datagram lying(sizeof instance);
    std::memcpy(lying.data(), &instance, sizeof instance);
    return tlv(219, join({lying, hex("03 00"), text("stricter", 32)}));
}

Datagram as_it_lies(uint32_t value)
{
    Datagram lying(sizeof value);
    std::memcpy(lying.data(), &value, sizeof value);
    return lying;
}

Datagram as_it_lies(uint16_t value)
{
    Datagram lying(sizeof value);
    std::memcpy(lying.data(), &value, sizeof value);
    return lying;
}

Datagram oap_server() { return tlv(131, join({text("oap", 32), hex("00000007 0008 0009")})); }

} // namespace

Datagram instance_filter(uint16_t instance, uint32_t ext)
{
    return tlv(124, join({be16(instance), hex("0000"), be32(ext)}));
}

Datagram instance_key(uint16_t instance) { return tlv(4, join({be16(instance), hex("0000")})); }

Datagram text(std::string_view characters, size_t size)
{
    Datagram field(size);
    std::copy(characters.begin(), characters.end(), field.begin());
    return field;
}

Datagram controller_cfg(const ControllerCfg &c)
{
    return tlv(7, join({be16(c.instance), be16(c.address_type), c.address, be32(c.role),
                        be16(c.port), hex("0000"), be8(c.id), c.vrf, c.tls_policy, hex("00 0000"),
                        hex("0002 0003"), // 93, 96, 98
                        text("as it travels", 16), hex("0004 0005"), Datagram(36, 0x5a)}));
}

Datagram auxiliary_cfg(const AuxiliaryCfg &a)
{
    return tlv(135,
               join({be16(a.instance), be16(a.address_type), a.address, hex("00000001 00000002"),
                     text("aux", 32), hex("0000"), be8(a.controller), be8(a.id)}));
}

Datagram vlan_map(std::initializer_list<uint32_t> vlans)
{
    Datagram bits(512);
    for (const uint32_t vlan : vlans) {
        bits[vlan / 8] = static_cast<uint8_t>(bits[vlan / 8] | 1u << vlan % 8);
    }
    return tlv(90, join({be32(512), be32(4094), bits}));
}

std::vector<SettingRequest> setting_requests()
{
    return {
        {1, instance_filter(INSTANCE, 0x11)},
        {3, join({tlv(3, join({Datagram(12), hex("0005 0001"), Datagram(256)})), // loose
                  tlv(124, hex("0005 0001 00000022")), tlv(125, hex("00000000 0064 0fff"))})},
        {5, controller_cfg({})},
        row(6, 8, "0000000f 0005 0000"),  // echo: every 15 seconds
        row(7, 9, "000003e8 0005 0000"),  // 1000 entries
        row(8, 10, "00000001 0005 0000"), // standalone
        {9, tlv(3, join({Datagram(12), hex("0005 0000"), text("access", 256)}))},
        row(11, 68, "0005 0001"), // aware of dynamic addresses
        {12, join({instance_key(), tlv(69, hex("0a000000 00000002")),
                   tlv(69, hex("14000000 00000001"))})},
        {14, tlv(71, join({hex("0001 0002 0003 0000"), Datagram(88, 0x77)}))},
        row(15, 80, "0000001e 0005 0000"), // reconnect: every 30 seconds
        row(16, 87, "0000000000abcdef 0005 000000000000"),
        {17, join({instance_key(), vlan_map({1, 10, 4094})})},
        row(18, 92, "0005 0000"),           // no learning
        row(19, 94, "00000001 0005 0000"),  // single
        row(20, 127, "00000001 0005 0000"), // permit
        row(21, 128, "00000006 0005 0000"), // forbidden ports
        row(22, 120, "0005 03 00"),
        {23, instance_key()},
        {24, tlv(160, join({as_it_lies(uint32_t{9}), as_it_lies(INSTANCE), hex("0000")}))},
        row(25, 164, "0001 0005"), // QinQ, the value first
        {26, tlv(154, join({hex("0005 0014"), as_it_lies(uint32_t{1})}))},
        row(27, 157, "0005 0001"), // no flow log
        row(28, 165, "0002 0000"),
        {30, auxiliary_cfg({})},
        {32, oap_server()},
        row(33, 142, "00000001 0000000c 0005 0000"), // port 1
        row(35, 152, "0001 0000 0000 0000"),
        row(36, 172, "00000003 0005 0000"),
        row(37, 176, "000102030405060708090a0b0c0d0e0f"),
        row(38, 177, "0005 0000 0000002e"), // DSCP 46
        row(39, 178, "0005 0001"),
        row(40, 179, "00000004"),
        row(41, 180, "0040 0000"),
        row(42, 182, "00000001"),  // port 1
        row(44, 183, "0005 0001"), // loop protection
        row(45, 184, "0005 0001 000000ff"),
        {46, tlv(186, join({hex("0005 0003 aabbcc"), Datagram(1021)}))},
        {47, vlan_map({2, 20, 200})},
        row(48, 188, "0005 0000 00000001 0000000000000008"), // without controller 3
        row(49, 199, "0005 0002"),
        {50, tlv(201, join({hex("0005 0001 00000002 00000003 000000f0"), Datagram(64, 0x33)}))},
        row(51, 204, "0003 0000"),
        row(52, 210, "0005 0000000f"),
        row(53, 211, "0005 0001"),
        {55, tls_policy()},
        {56, tlv(221, join({as_it_lies(uint16_t{1}), hex("0000")}))},
        row(57, 224, "0001 0005"),          // smart groups, the value first
        row(59, 233, "0005 0000 0000003c"), // every 60 seconds
        row(60, 234, "0005 0000 000003e8"),
        row(61, 235, "0000000000000001 0000000000000002 03 0004"),
    };
}

std::vector<SettingRequest> unsetting_requests()
{
    return {
        {10, instance_key()},     row(34, 142, "00000001 00000000 0005 0000"),
        row(43, 182, "00000001"), {54, tls_policy()},
        {29, auxiliary_cfg({})},  {4, controller_cfg({})},
        {31, oap_server()},       {2, instance_filter(INSTANCE)},
    };
}

} // namespace agent::test

#include "daemon/records.h"

#include <algorithm>
#include <cstring>

namespace agent {

namespace {

// A record as it travels, and back: the conversion is its own inverse.
template <class Record>
Record converted(Record record, uint16_t type)
{
    OFP_msg_ByteSwapData(type, &record);
    return record;
}

constexpr size_t CONTROLLER_OPAQUE = 93; // up to the record's end
static_assert(CONTROLLER_OPAQUE + sizeof(Controller::opaque) == sizeof(OfpCtrlCfg));

constexpr size_t DEBUG_KEY = 4;
static_assert(DEBUG_KEY + sizeof(DebugSwitches) == sizeof(OfpGlbDebug));

constexpr uint32_t LAST_ROLE = 3;

bool is_host(const Address &address)
{
    const auto &bytes = address.bytes;
    const bool is_zero =
        std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
    switch (address.type) {
    case ADDRESS_IPV4:
        return bytes[0] != 0 && bytes[0] < 224; // neither this network, nor many hosts
    case ADDRESS_IPV6:
        return !is_zero && bytes[0] != 0xff;
    default:
        return false;
    }
}

// Only the first word of an IPv4 address counts.
Address read_address(uint16_t type, const uint32_t (&words)[4])
{
    constexpr size_t IPV4_SIZE = 4;
    Address address{.type = type};
    std::memcpy(address.bytes.data(), words, type == ADDRESS_IPV4 ? IPV4_SIZE : sizeof words);
    return address;
}

void write_address(const Address &address, uint16_t &type, uint32_t (&words)[4])
{
    type = address.type;
    std::memcpy(words, address.bytes.data(), sizeof words);
}

} // namespace

uint32_t read_text(const char *field, size_t size, std::string &text)
{
    const void *const end = std::memchr(field, '\0', size);
    if (!end) {
        return BAD_TEXT;
    }
    text.assign(field, static_cast<const char *>(end));
    return 0;
}

void write_text(const std::string &text, char *field, size_t size)
{
    std::memset(field, 0, size);
    text.copy(field, size - 1);
}

uint32_t read_controller(const OfpCtrlCfg &record, Controller &controller)
{
    controller.address = read_address(record.address_type, record.address);
    controller.port = record.port;
    controller.role = record.value_u32_20;
    controller.value_u16_26 = record.value_u16_26;
    const OfpCtrlCfg wire = converted(record, OFP_TLV_CtrlCfg);
    std::memcpy(controller.opaque.data(),
                reinterpret_cast<const uint8_t *>(&wire) + CONTROLLER_OPAQUE,
                controller.opaque.size());
    if (!is_host(controller.address)) {
        return BAD_ADDRESS;
    }
    if (controller.port == 0 || controller.role > LAST_ROLE) {
        return BAD_VALUE;
    }
    const uint32_t code = read_text(record.text_29, sizeof record.text_29, controller.vrf);
    return code ? code : read_text(record.text_61, sizeof record.text_61, controller.tls_policy);
}

OfpCtrlCfg controller_record(uint16_t instance, uint8_t id, const Controller &controller)
{
    OfpCtrlCfg record{};
    record.instance_id = instance;
    record.controller_id = id;
    write_address(controller.address, record.address_type, record.address);
    record.value_u32_20 = controller.role;
    record.port = controller.port;
    record.value_u16_26 = controller.value_u16_26;
    write_text(controller.vrf, record.text_29, sizeof record.text_29);
    write_text(controller.tls_policy, record.text_61, sizeof record.text_61);
    OfpCtrlCfg wire = converted(record, OFP_TLV_CtrlCfg);
    std::memcpy(reinterpret_cast<uint8_t *>(&wire) + CONTROLLER_OPAQUE, controller.opaque.data(),
                controller.opaque.size());
    return converted(wire, OFP_TLV_CtrlCfg);
}

uint32_t read_auxiliary(const OfpAuxCfg &record, Auxiliary &auxiliary)
{
    auxiliary.address = read_address(record.address_type, record.address);
    auxiliary.port = record.port;
    auxiliary.value_u32_20 = record.value_u32_20;
    auxiliary.value_u32_24 = record.value_u32_24;
    if (auxiliary.address != Address{} && !is_host(auxiliary.address)) {
        return BAD_ADDRESS;
    }
    return read_text(record.text_28, sizeof record.text_28, auxiliary.vrf);
}

OfpAuxCfg auxiliary_record(uint16_t instance, uint8_t controller, uint8_t id,
                           const Auxiliary &auxiliary)
{
    OfpAuxCfg record{};
    record.instance_id = instance;
    record.controller_id = controller;
    record.aux_id = id;
    write_address(auxiliary.address, record.address_type, record.address);
    record.value_u32_20 = auxiliary.value_u32_20;
    record.value_u32_24 = auxiliary.value_u32_24;
    record.port = auxiliary.port;
    write_text(auxiliary.vrf, record.text_28, sizeof record.text_28);
    return record;
}

uint32_t read_tls_policy(const OfpCtrlSSL &record, TlsPolicy &policy)
{
    constexpr size_t CONTROLLER = 2;
    constexpr size_t NAME = 4;
    std::memcpy(&policy.instance, record.content, sizeof policy.instance); // as it lies
    policy.controller = record.content[CONTROLLER];
    return read_text(reinterpret_cast<const char *>(record.content) + NAME,
                     sizeof record.content - NAME, policy.name);
}

uint32_t read_oap_server(const OfpOapServer &record, OapServer &server)
{
    server.value_u32_32 = record.value_u32_32;
    server.value_u16_36 = record.value_u16_36;
    server.value_u16_38 = record.value_u16_38;
    return read_text(record.text_0, sizeof record.text_0, server.name);
}

OfpOapServer oap_server_record(const OapServer &server)
{
    OfpOapServer record{};
    write_text(server.name, record.text_0, sizeof record.text_0);
    record.value_u32_32 = server.value_u32_32;
    record.value_u16_36 = server.value_u16_36;
    record.value_u16_38 = server.value_u16_38;
    return record;
}

DebugKey read_debug(const OfpGlbDebug &record, DebugSwitches &switches)
{
    const OfpGlbDebug wire = converted(record, OFP_TLV_GlbDebug);
    std::memcpy(switches.data(), reinterpret_cast<const uint8_t *>(&wire) + DEBUG_KEY,
                switches.size());
    return {record.value_u16_0, record.value_u16_2};
}

OfpGlbDebug debug_record(const DebugKey &key, const DebugSwitches &switches)
{
    OfpGlbDebug record{};
    record.value_u16_0 = key.value_u16_0;
    record.value_u16_2 = key.value_u16_2;
    OfpGlbDebug wire = converted(record, OFP_TLV_GlbDebug);
    std::memcpy(reinterpret_cast<uint8_t *>(&wire) + DEBUG_KEY, switches.data(), switches.size());
    return converted(wire, OFP_TLV_GlbDebug);
}

OfpDataPathID datapath_record(uint16_t instance, uint64_t datapath_id)
{
    OfpDataPathID record{};
    record.datapath_id = datapath_id;
    record.instance_id = instance;
    return record;
}

OfpPrecedence precedence_record(uint16_t instance, const InstanceConfig &config)
{
    return {.instance_id = instance,
            .precedence = config.precedence.value_or(0),
            .present = config.precedence.has_value()};
}

OfpExcludeConnID excluded_record(uint16_t instance, const ExcludedControllers &excluded)
{
    OfpExcludeConnID record{};
    record.instance_id = instance;
    record.value_u32_4 = excluded.value_u32_4;
    record.value_u64_8 = excluded.controllers;
    return record;
}

// ---- VLAN maps

uint32_t take_vlans(Bytes &rest, VlanSet &vlans)
{
    constexpr size_t FIELDS = 8; // ahead of the bits
    constexpr uint32_t BITS_PER_BYTE = 8;
    Bytes value;
    if (const uint32_t code = take_value(rest, OFP_TLV_VlanBitmap, value)) {
        return code;
    }
    VlanMap map{};
    if (value.size() < FIELDS || value.size() > sizeof map.bytes) {
        return BAD_TLV_LENGTH;
    }
    std::memcpy(map.bytes, value.data(), value.size());
    OFP_msg_ByteSwapData(OFP_TLV_VlanBitmap, map.bytes);
    uint32_t bytes;
    std::memcpy(&bytes, map.bytes, sizeof bytes);
    if (bytes != value.size() - FIELDS) {
        return BAD_VLAN_MAP;
    }
    vlans.reset();
    for (uint32_t vlan = 0; vlan < bytes * BITS_PER_BYTE; ++vlan) {
        if (!Bitmap_Check(reinterpret_cast<const Bitmap *>(map.bytes), vlan)) {
            continue;
        }
        if (vlan < FIRST_VLAN || vlan > LAST_VLAN) {
            return BAD_VLAN;
        }
        vlans.set(vlan);
    }
    return 0;
}

VlanMap vlan_map(const VlanSet &vlans)
{
    constexpr size_t FIELDS = 8;
    VlanMap map{};
    Bitmap *const bitmap = Bitmap_CreateFromBuffer(LAST_VLAN, map.bytes, sizeof map.bytes);
    if (!bitmap) {
        return map; // the platform has no map of this size
    }
    for (uint32_t vlan = FIRST_VLAN; vlan <= LAST_VLAN; ++vlan) {
        if (vlans[vlan]) {
            Bitmap_Set(bitmap, vlan);
        }
    }
    uint32_t bytes;
    std::memcpy(&bytes, map.bytes, sizeof bytes);
    map.size = std::min(bytes + FIELDS, sizeof map.bytes);
    return map;
}

} // namespace agent

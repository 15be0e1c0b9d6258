#include "option/record_option.h"

#include <cstring>
#include <string>

#include "option/member.h"

namespace ofpctl {

namespace {

template <auto Member>
void put_number(OwnerOf<Member> &record, const Value &value)
{
    record.*Member = static_cast<NumberOf<Member>>(std::get<uint64_t>(value));
}

// The record is zero: the text ends where it ends.
template <auto Member>
void put_text(OwnerOf<Member> &record, const Value &value)
{
    std::get<std::string>(value).copy(record.*Member, sizeof(record.*Member) - 1);
}

template <class Record>
void put_address(Record &record, const Value &value)
{
    const auto &address = std::get<Address>(value);
    record.address_type = address.type;
    std::memcpy(record.address, address.bytes.data(), address.bytes.size());
}

constexpr uint16_t default_port = 6653; // that of OpenFlow

constexpr Choice roles[] = {{"none", 0}, {"equal", 1}, {"master", 2}, {"slave", 3}};

constexpr SettingRow address_row{"address", ValueForm::address, "ADDRESS", "IPv4 or IPv6 address"};
constexpr SettingRow port_row{"port", ValueForm::number, "PORT", "TCP port (default 6653)",
                              1,      UINT16_MAX};
constexpr SettingRow role_row{"role", ValueForm::word, "", "role that it is to have", 0, 0, roles};
constexpr SettingRow vrf_row{"vrf", ValueForm::text, "NAME", "VRF of the connection", 0, 31};

constexpr RecordOption<OfpCtrlCfg> of_controllers[] = {
    {address_row, put_address<OfpCtrlCfg>},
    {port_row, put_number<&OfpCtrlCfg::port>},
    {vrf_row, put_text<&OfpCtrlCfg::text_29>},
    {role_row, put_number<&OfpCtrlCfg::value_u32_20>},
    {{"tls-policy", ValueForm::text, "NAME", "TLS policy; plain TCP without one", 0, 31},
     put_text<&OfpCtrlCfg::text_61>},
};

constexpr RecordOption<OfpAuxCfg> of_auxiliaries[] = {
    {address_row, put_address<OfpAuxCfg>},
    {port_row, put_number<&OfpAuxCfg::port>},
    {vrf_row, put_text<&OfpAuxCfg::text_28>},
};

// Their meaning is the agent's; they are named for width and place in the record.
constexpr RecordOption<OfpGlbDebug> of_debugging[] = {
    {{"key0", ValueForm::number, "NUMBER", "first number of the key", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_0>},
    {{"key2", ValueForm::number, "NUMBER", "second number of the key", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_2>},
    {{"u16-4", ValueForm::hex, "VALUE", "16 bits at byte 4", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_4>},
    {{"u16-6", ValueForm::hex, "VALUE", "16 bits at byte 6", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_6>},
    {{"u32-8", ValueForm::hex, "VALUE", "32 bits at byte 8", 0, UINT32_MAX},
     put_number<&OfpGlbDebug::value_u32_8>},
    {{"u64-16", ValueForm::hex, "VALUE", "64 bits at byte 16", 0, UINT64_MAX},
     put_number<&OfpGlbDebug::value_u64_16>},
    {{"u16-28", ValueForm::hex, "VALUE", "16 bits at byte 28", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_28>},
    {{"u32-32", ValueForm::hex, "VALUE", "32 bits at byte 32", 0, UINT32_MAX},
     put_number<&OfpGlbDebug::value_u32_32>},
    {{"u32-36", ValueForm::hex, "VALUE", "32 bits at byte 36", 0, UINT32_MAX},
     put_number<&OfpGlbDebug::value_u32_36>},
    {{"u32-40", ValueForm::hex, "VALUE", "32 bits at byte 40", 0, UINT32_MAX},
     put_number<&OfpGlbDebug::value_u32_40>},
    {{"u16-48", ValueForm::hex, "VALUE", "16 bits at byte 48", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_48>},
    {{"u16-50", ValueForm::hex, "VALUE", "16 bits at byte 50", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_50>},
    {{"u16-68", ValueForm::hex, "VALUE", "16 bits at byte 68", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_68>},
    {{"u16-70", ValueForm::hex, "VALUE", "16 bits at byte 70", 0, UINT16_MAX},
     put_number<&OfpGlbDebug::value_u16_70>},
    {{"u32-88", ValueForm::hex, "VALUE", "32 bits at byte 88", 0, UINT32_MAX},
     put_number<&OfpGlbDebug::value_u32_88>},
};

template <class Record>
SettingRows rows_of(std::span<const RecordOption<Record>> options)
{
    SettingRows rows;
    for (const auto &option : options)
        rows.push_back(&option.row);
    return rows;
}

} // namespace

std::span<const RecordOption<OfpCtrlCfg>> controller_options() { return of_controllers; }
std::span<const RecordOption<OfpAuxCfg>> auxiliary_options() { return of_auxiliaries; }
std::span<const RecordOption<OfpGlbDebug>> debug_options() { return of_debugging; }

OfpCtrlCfg controller_record(uint16_t instance, uint8_t controller_id,
                             std::span<const Assignment> settings)
{
    OfpCtrlCfg record{};
    record.instance_id = instance;
    record.controller_id = controller_id;
    if (!settings.empty())
        record.port = default_port;
    for (const Assignment &setting : settings)
        option_of(controller_options(), *setting.row).put(record, setting.value);
    return record;
}

bool same_controller(const OfpCtrlCfg &controller, const OfpCtrlSummary &reported)
{
    return controller.address_type == reported.address_type &&
           std::memcmp(controller.address, reported.address, sizeof reported.address) == 0 &&
           controller.port == reported.port && controller.value_u32_20 == reported.value_u32_20 &&
           std::strncmp(controller.text_29, reported.text_29, sizeof reported.text_29) == 0 &&
           std::strncmp(controller.text_61, reported.text_61, sizeof reported.text_61) == 0;
}

std::string address_text(uint16_t type, const uint32_t (&address)[4])
{
    Address copy{type, {}};
    std::memcpy(copy.bytes.data(), address, copy.bytes.size());
    return format_value(address_row, copy);
}

std::string role_text(uint32_t role) { return format_value(role_row, uint64_t{role}); }

SettingRows controller_settings() { return rows_of(controller_options()); }
SettingRows auxiliary_settings() { return rows_of(auxiliary_options()); }
SettingRows debug_settings() { return rows_of(debug_options()); }

} // namespace ofpctl

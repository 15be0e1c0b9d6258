#include "wire/record_fields.h"

#include <algorithm>

#include "ofp/message.h"

namespace ofpctl {

namespace {

struct Named {
    uint32_t number;
    std::string_view name;
};

constexpr Named tlv_types[] = {
#define OFP_ROW(number, name) {number, #name},
    OFP_TLV_TYPES(OFP_ROW)
#undef OFP_ROW
};

constexpr Named messages[] = {
#define OFP_ROW(name, code) {code, #name},
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
};

std::string_view find(std::span<const Named> rows, uint32_t number)
{
    for (const Named &row : rows) {
        if (row.number == number)
            return row.name;
    }
    return {};
}

// Two types may share one record.
uint32_t described_type(uint32_t type)
{
    switch (type) {
    case OFP_TLV_InstTblReply:
        return OFP_TLV_InstTbl;
    case OFP_TLV_AppEvent:
        return OFP_TLV_AppInfo;
    default:
        return type;
    }
}

std::span<const FieldRow> rows_of(std::span<const FieldRow> rows, uint32_t type)
{
    const auto same = [=](const FieldRow &row) { return row.type == type; };
    const auto first = std::find_if(rows.begin(), rows.end(), same);
    return {first, std::find_if_not(first, rows.end(), same)};
}

} // namespace

std::span<const FieldRow> fields_of(uint32_t type)
{
    type = described_type(type);
    for (const std::span<const FieldRow> topic :
         {message_fields, instance_fields, controller_fields, connection_fields, port_fields,
          vlan_fields, debug_fields, resource_fields, table_fields, group_fields, meter_fields,
          stats_fields, rule_fields, event_fields}) {
        if (const auto rows = rows_of(topic, type); !rows.empty())
            return rows;
    }
    return {};
}

std::string_view tlv_name(uint32_t type) { return find(tlv_types, type); }

std::string_view message_name(uint32_t code) { return find(messages, code); }

} // namespace ofpctl

// Instances: creating, removing, existence, iteration, and what of them is more than one number.
#include "daemon/change.h"
#include "daemon/handler.h"
#include "daemon/option_table.h"
#include "daemon/records.h"

namespace agent {

namespace {

// What the kinds of a filter select by.
enum FilterKind : uint16_t {
    FILTER_NONE = 0,
    FILTER_VLAN_MASK = 1,  // a VLAN id under a mask
    FILTER_VLAN_RANGE = 4, // the VLANs from one to another
};

constexpr uint16_t WHOLE_MASK = 0xffff;
constexpr uint16_t LAST_MASK = 0x0fff;

bool is_vlan(uint16_t id) { return id >= FIRST_VLAN && id <= LAST_VLAN; }

uint32_t check_filter(const OfpInstFilter &filter)
{
    switch (filter.filter_kind) {
    case FILTER_VLAN_MASK:
        if (filter.param_b > LAST_MASK && filter.param_b != WHOLE_MASK) {
            return BAD_VALUE;
        }
        return is_vlan(filter.param_a) ? 0 : BAD_VLAN;
    case FILTER_VLAN_RANGE:
        if (!is_vlan(filter.param_a) || !is_vlan(filter.param_b)) {
            return BAD_VLAN;
        }
        return filter.param_a <= filter.param_b ? 0 : BAD_VALUE;
    default:
        return 0;
    }
}

uint32_t take_filter(Bytes &rest, OfpInstFilter &filter)
{
    constexpr uint64_t SIZES[] = {12, 24, 20, 12, 24, 20}; // of both TLVs, by filter kind
    Bytes peek = rest;
    Bytes first;
    if (const uint32_t code = take_value(peek, OFP_TLV_InstFilterInstance, first)) {
        return code;
    }
    if (first.size() != sizeof(OfpInstFilterInstance)) {
        return BAD_TLV_LENGTH;
    }
    const uint64_t size = OFP_util_DecapInstFilterTLV(rest.data(), rest.size(), &filter);
    if (size == 0 || size != SIZES[filter.filter_kind]) {
        return BAD_FILTER;
    }
    rest = rest.subspan(size);
    return check_filter(filter);
}

uint32_t take_only_filter(const Request &request, OfpInstFilter &filter)
{
    Bytes rest = request.body;
    const uint32_t code = take_filter(rest, filter);
    return code ? code : at_end(rest);
}

// The tables that end a request.
uint32_t take_tables(Bytes rest, std::vector<OfpFlowTable> &tables)
{
    while (!rest.empty()) {
        OfpFlowTable table;
        if (const uint32_t code = take(rest, OFP_TLV_FlowTable, table)) {
            return code == MISSING_TLV ? TRAILING_BYTES : code;
        }
        tables.push_back({.table_id = table.table_id, .reserved_1 = {}, .kind = table.kind});
    }
    return 0;
}

uint32_t set_active(const Request &request, Model &model, bool active)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    return change_instance(model, key.instance_id, [=](InstanceConfig &instance) {
        instance.active = active;
        return 0u;
    });
}

} // namespace

// ---- Creating and removing

uint32_t add_instance(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    OfpInstFilter filter{};
    if (const uint32_t code = take_filter(rest, filter)) {
        return code;
    }
    std::vector<OfpFlowTable> tables;
    const uint32_t code = take_tables(rest, tables);
    return code ? code : model.add_instance(filter, std::move(tables));
}

// A filter of no kind leaves one that was set before as it is, its extension apart.
uint32_t set_instance(const Request &request, Reply &, Model &model)
{
    OfpInstFilter filter{};
    if (const uint32_t code = take_only_filter(request, filter)) {
        return code;
    }
    const uint16_t id = filter.instance_id;
    if (id == 0 || id == UINT16_MAX) {
        return BAD_INSTANCE_ID;
    }
    const InstanceConfig *const known = model.configuration().staged(id);
    InstanceConfig next = known ? *known : new_instance(id);
    if (filter.filter_kind != FILTER_NONE) {
        next.filter = filter;
    }
    next.filter.ext = filter.ext;
    next.declared = true;
    model.configuration().stage(id, std::move(next));
    return 0;
}

// What is left of an instance whose client is there is the client's.
uint32_t unset_instance(const Request &request, Reply &, Model &model)
{
    OfpInstFilter filter{};
    if (const uint32_t code = take_only_filter(request, filter)) {
        return code;
    }
    const uint16_t id = filter.instance_id;
    if (!model.configuration().staged(id)) {
        return NO_INSTANCE;
    }
    if (model.is_admitted(id)) {
        model.configuration().stage(id, new_instance(id));
    } else {
        model.configuration().stage_removal(id);
    }
    return 0;
}

uint32_t activate_instance(const Request &request, Reply &, Model &model)
{
    return set_active(request, model, true);
}

uint32_t deactivate_instance(const Request &request, Reply &, Model &model)
{
    return set_active(request, model, false);
}

// ---- What it is

uint32_t set_option(const Request &request, Reply &, Model &model)
{
    const Option *const option = option_of_message(request.code);
    if (!option) {
        return NOT_SUPPORTED;
    }
    Bytes rest = request.body;
    Bytes value;
    if (const uint32_t code = take_value(rest, option->type, value)) {
        return code;
    }
    if (value.size() != option->size) {
        return BAD_TLV_LENGTH;
    }
    if (!rest.empty()) {
        return TRAILING_BYTES;
    }
    alignas(8) uint8_t record[OPTION_RECORD_MAX];
    std::memcpy(record, value.data(), value.size());
    OFP_msg_ByteSwapData(option->type, record);
    const uint64_t number = option->value_of(record);
    return change_instance(model, option->instance_of(record), [=](InstanceConfig &instance) {
        if (number < option->least || number > option->most) {
            return BAD_VALUE;
        }
        option->set(instance, number);
        return 0u;
    });
}

uint32_t set_description(const Request &request, Reply &, Model &model)
{
    OfpInstanceCfg record;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceCfg, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        return read_text(record.description, sizeof record.description, instance.description);
    });
}

// Id 0 gives back the switch's default.
uint32_t set_datapath_id(const Request &request, Reply &, Model &model)
{
    OfpDataPathID record;
    if (const uint32_t code = take_only(request, OFP_TLV_DataPathID, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        instance.datapath_id =
            record.datapath_id ? std::optional(record.datapath_id) : std::nullopt;
        return 0u;
    });
}

uint32_t set_precedence(const Request &request, Reply &, Model &model)
{
    OfpPrecedence record;
    if (const uint32_t code = take_only(request, OFP_TLV_Precedence, record)) {
        return code;
    }
    return change_instance(model, record.instance_id, [&](InstanceConfig &instance) {
        instance.precedence = record.present ? std::optional(record.precedence) : std::nullopt;
        return record.present > 1 ? BAD_VALUE : 0u;
    });
}

uint32_t set_flow_tables(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    OfpInstanceID key;
    if (const uint32_t code = take(rest, OFP_TLV_InstanceID, key)) {
        return code;
    }
    std::vector<OfpFlowTable> tables;
    if (const uint32_t code = take_tables(rest, tables)) {
        return code;
    }
    return change_instance(model, key.instance_id, [&](InstanceConfig &instance) {
        instance.tables = std::move(tables);
        return arrange_tables(key.instance_id, instance.tables);
    });
}

// ---- VLANs

uint32_t set_vlan_list(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    OfpInstanceCfg record;
    if (const uint32_t code = take(rest, OFP_TLV_InstanceCfg, record)) {
        return code;
    }
    OfpInstFilter filter{};
    if (const uint32_t code = take_filter(rest, filter)) {
        return code;
    }
    if (!rest.empty()) {
        return TRAILING_BYTES;
    }
    if (filter.instance_id != record.instance_id) {
        return OTHER_INSTANCE;
    }
    return change_instance(model, filter.instance_id, [&](InstanceConfig &instance) {
        instance.filter = filter;
        instance.vlan_loose = record.vlan_value;
        return record.vlan_value > 1 ? BAD_VALUE : 0u;
    });
}

uint32_t set_in_band_vlans(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    OfpInstanceID key;
    if (const uint32_t code = take(rest, OFP_TLV_InstanceID, key)) {
        return code;
    }
    VlanSet vlans;
    if (const uint32_t code = take_vlans(rest, vlans)) {
        return code;
    }
    if (!rest.empty()) {
        return TRAILING_BYTES;
    }
    return change_instance(model, key.instance_id, [&](InstanceConfig &instance) {
        instance.in_band_vlans = vlans;
        return 0u;
    });
}

// ---- Queries

uint32_t instance_exists(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    const bool exists = model.instance(key.instance_id) != nullptr;
    reply.record(OFP_MSG_INSTANCE_EXIST, OFP_TLV_InstanceIsExist,
                 OfpInstanceIsExist{.exists = exists});
    return 0;
}

uint32_t next_instance(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    const auto next = model.next_instance(key.instance_id);
    if (!next) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_NEXT_INSTANCE, OFP_TLV_InstanceID, OfpInstanceID{.instance_id = *next});
    return 0;
}

} // namespace agent

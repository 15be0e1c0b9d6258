// Flow tables: iteration, capacity and use.
#include <algorithm>

#include "daemon/handler.h"

namespace agent {

namespace {

constexpr uint8_t BEFORE_FIRST_TABLE = 255;

uint32_t take_table(const Request &request, const Model &model, OfpInstTbl &key)
{
    if (const uint32_t code = take_only(request, OFP_TLV_InstTbl, key)) {
        return code;
    }
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    return model.table(key.instance_id, key.table_id) ? 0 : NO_TABLE;
}

uint32_t kibibytes(size_t bytes)
{
    return static_cast<uint32_t>(std::min<size_t>((bytes + 1023) / 1024, UINT32_MAX));
}

OfpMibTableInfo mib_record(uint16_t instance, uint8_t table, const Model &model)
{
    const TableView view = model.flow_switch().table(instance, table);
    return {.instance_id = instance,
            .table_id = table,
            .max_rules = view.capacity,
            .rule_count = view.rules,
            .value_u32_11 = kibibytes(view.memory)};
}

// The table after the key's; past an instance's last, the first one of the next instance.
bool step(const Model &model, OfpInstTbl &key)
{
    const int after = key.table_id == BEFORE_FIRST_TABLE ? -1 : key.table_id;
    auto table = model.next_table(key.instance_id, after);
    auto instance = std::optional(key.instance_id);
    while (!table && (instance = model.next_instance(*instance))) {
        table = model.next_table(*instance, -1);
    }
    if (table) {
        key.instance_id = *instance;
        key.table_id = *table;
    }
    return table.has_value();
}

} // namespace

uint32_t next_table(const Request &request, Reply &reply, Model &model)
{
    OfpInstTbl key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstTbl, key)) {
        return code;
    }
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    const int after = key.table_id == BEFORE_FIRST_TABLE ? -1 : key.table_id;
    const auto next = model.next_table(key.instance_id, after);
    if (!next) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_NEXT_TABLE_ID, OFP_TLV_TableID, OfpTableID{.table_id = *next});
    return 0;
}

uint32_t table_info(const Request &request, Reply &reply, Model &model)
{
    OfpInstTbl key;
    if (const uint32_t code = take_table(request, model, key)) {
        return code;
    }
    const TableView view = model.flow_switch().table(key.instance_id, key.table_id);
    reply.record(OFP_MSG_TABLE_INFO, OFP_TLV_TableInfo,
                 OfpTableInfo{.max_rules = view.capacity,
                              .rule_count = view.rules,
                              .value_u32_8 = model.table(key.instance_id, key.table_id)->kind,
                              .value_u32_12 = kibibytes(view.memory),
                              .instance_id = key.instance_id,
                              .table_id = key.table_id});
    return 0;
}

uint32_t mib_table_info(const Request &request, Reply &reply, Model &model)
{
    OfpInstTbl key;
    if (const uint32_t code = take_table(request, model, key)) {
        return code;
    }
    reply.record(OFP_MSG_MIB_GET_TABLE_INFO, OFP_TLV_MibTableInfo,
                 mib_record(key.instance_id, key.table_id, model));
    return 0;
}

uint32_t next_mib_table_info(const Request &request, Reply &reply, Model &model)
{
    OfpInstTbl key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstTbl, key)) {
        return code;
    }
    if (!step(model, key)) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_MIB_GET_NEXT_TABLE_INFO, OFP_TLV_MibTableInfo,
                 mib_record(key.instance_id, key.table_id, model));
    return 0;
}

uint32_t cache_info(const Request &request, Reply &, Model &)
{
    OfpCacheInfo key;
    const uint32_t code = take_only(request, OFP_TLV_CacheInfo, key);
    return code ? code : NOT_PRESENT; // no packets, hence no cache of them
}

} // namespace agent

#include "daemon/model.h"

#include <algorithm>
#include <cstring>

namespace agent {

namespace {

bool by_id(const OfpFlowTable &a, const OfpFlowTable &b) { return a.table_id < b.table_id; }
bool same_id(const OfpFlowTable &a, const OfpFlowTable &b) { return a.table_id == b.table_id; }

bool same_layout(const std::vector<OfpFlowTable> &a, const std::vector<OfpFlowTable> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const OfpFlowTable &x, const OfpFlowTable &y) {
                          return x.table_id == y.table_id && x.kind == y.kind;
                      });
}

bool same_filter(const OfpInstFilter &a, const OfpInstFilter &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

uint32_t check_tables(uint16_t instance, const std::vector<OfpFlowTable> &tables)
{
    for (const OfpFlowTable &table : tables) {
        if (table.table_id == openflow::OFPTT_ALL ||
            (is_client(instance) && table.table_id == CLIENT_TABLE)) {
            return BAD_TABLE_ID;
        }
    }
    return 0;
}

} // namespace

uint32_t Model::add_instance(const OfpInstFilter &filter, std::vector<OfpFlowTable> tables)
{
    const uint16_t id = filter.instance_id;
    if (id == 0 || id == UINT16_MAX) {
        return BAD_INSTANCE_ID;
    }
    if (const uint32_t code = check_tables(id, tables)) {
        return code;
    }
    if (is_client(id)) {
        tables.push_back({.table_id = CLIENT_TABLE, .reserved_1 = {}, .kind = CLIENT_TABLE_KIND});
    }
    std::sort(tables.begin(), tables.end(), by_id);
    if (std::adjacent_find(tables.begin(), tables.end(), same_id) != tables.end()) {
        return DUPLICATE_TABLE;
    }
    const auto known = instances_.find(id);
    if (known != instances_.end() && known->second.declared) {
        return same_layout(known->second.tables, tables) &&
                       same_filter(known->second.filter, filter)
                   ? 0
                   : INSTANCE_DIFFERS;
    }
    instances_.insert_or_assign(id, Instance{filter, true, std::move(tables)});
    return 0;
}

void Model::admit_client(uint16_t client)
{
    if (instances_.contains(client)) {
        return;
    }
    Instance instance;
    instance.filter.instance_id = client;
    instance.tables.push_back(
        {.table_id = CLIENT_TABLE, .reserved_1 = {}, .kind = CLIENT_TABLE_KIND});
    instances_.emplace(client, std::move(instance));
}

const Instance *Model::instance(uint16_t id) const
{
    const auto found = instances_.find(id);
    return found == instances_.end() ? nullptr : &found->second;
}

std::optional<uint16_t> Model::next_instance(uint16_t after) const
{
    const auto next = instances_.upper_bound(after);
    return next == instances_.end() ? std::nullopt : std::optional(next->first);
}

const OfpFlowTable *Model::table(uint16_t instance_id, uint8_t id) const
{
    const Instance *const found = instance(instance_id);
    if (!found) {
        return nullptr;
    }
    const auto at = std::find_if(found->tables.begin(), found->tables.end(),
                                 [id](const OfpFlowTable &table) { return table.table_id == id; });
    return at == found->tables.end() ? nullptr : &*at;
}

std::optional<uint8_t> Model::next_table(uint16_t instance_id, int after) const
{
    const Instance *const found = instance(instance_id);
    if (!found) {
        return std::nullopt;
    }
    const auto at =
        std::find_if(found->tables.begin(), found->tables.end(),
                     [after](const OfpFlowTable &table) { return table.table_id > after; });
    return at == found->tables.end() ? std::nullopt : std::optional(at->table_id);
}

} // namespace agent

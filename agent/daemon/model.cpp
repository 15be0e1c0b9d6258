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

bool is_not_for(uint16_t instance, uint8_t table)
{
    return table == openflow::OFPTT_ALL || (is_client(instance) && table == CLIENT_TABLE);
}

size_t client_index(uint16_t client) { return size_t{client} - FIRST_CLIENT; }

// Deletes all rules of a client's table.
void empty_table(Switch &flow_switch, uint16_t client, uint8_t table)
{
    constexpr size_t TABLE = 24; // places in an ofp_flow_mod
    constexpr size_t COMMAND = 25;
    constexpr size_t BUFFER = 32; // buffer, port and group: none
    constexpr size_t FLAGS = 44;
    constexpr size_t MATCH = 48;
    constexpr size_t SIZE = 56;
    uint8_t message[SIZE] = {openflow::OFP_VERSION, openflow::OFPT_FLOW_MOD, 0, SIZE};
    message[TABLE] = table;
    message[COMMAND] = openflow::OFPFC_DELETE;
    std::fill(message + BUFFER, message + FLAGS, uint8_t{0xff});
    openflow::store<uint16_t>(message + MATCH, openflow::OFPMT_OXM);
    openflow::store<uint16_t>(message + MATCH + 2, 4);
    flow_switch.flow_mod(client, message);
}

} // namespace

uint32_t arrange_tables(uint16_t instance, std::vector<OfpFlowTable> &tables)
{
    for (const OfpFlowTable &table : tables) {
        if (is_not_for(instance, table.table_id)) {
            return BAD_TABLE_ID;
        }
    }
    if (is_client(instance)) {
        tables.push_back({.table_id = CLIENT_TABLE, .reserved_1 = {}, .kind = CLIENT_TABLE_KIND});
    }
    std::sort(tables.begin(), tables.end(), by_id);
    return std::adjacent_find(tables.begin(), tables.end(), same_id) == tables.end()
               ? 0
               : DUPLICATE_TABLE;
}

Model::Model(const SwitchLimits &limits) : flow_switch_(limits)
{
    configuration_.add_observer(*this);
}

Model::~Model() { configuration_.remove_observer(*this); }

uint32_t Model::add_instance(const OfpInstFilter &filter, std::vector<OfpFlowTable> tables)
{
    const uint16_t id = filter.instance_id;
    if (id == 0 || id == UINT16_MAX) {
        return BAD_INSTANCE_ID;
    }
    if (const uint32_t code = arrange_tables(id, tables)) {
        return code;
    }
    const InstanceConfig *const known = configuration_.staged(id);
    if (known && known->declared) {
        return same_layout(known->tables, tables) && same_filter(known->filter, filter)
                   ? 0
                   : INSTANCE_DIFFERS;
    }
    InstanceConfig instance = known ? *known : new_instance(id);
    instance.filter = filter;
    instance.declared = true;
    instance.tables = std::move(tables);
    configuration_.stage(id, std::move(instance));
    return 0;
}

void Model::admit_client(uint16_t client)
{
    configuration_.admit_client(client);
    admitted_.set(client_index(client));
}

bool Model::is_admitted(uint16_t client) const
{
    return is_client(client) && admitted_[client_index(client)];
}

// Rules go with their table. Those of an instance that is not a client's came from its controllers
// and go when it is no longer active.
void Model::instance_changed(uint16_t id, const InstanceConfig *before,
                             const InstanceConfig *after) noexcept
{
    if (!before) {
        return;
    }
    const bool ends = !is_client(id) && before->active && after && !after->active;
    for (const OfpFlowTable &table : before->tables) {
        if (ends || !after || !after->table(table.table_id)) {
            empty_table(flow_switch_, id, table.table_id);
        }
    }
}

const OfpFlowTable *Model::table(uint16_t instance_id, uint8_t id) const
{
    const InstanceConfig *const found = instance(instance_id);
    return found ? found->table(id) : nullptr;
}

std::optional<uint8_t> Model::next_table(uint16_t instance_id, int after) const
{
    const InstanceConfig *const found = instance(instance_id);
    if (!found) {
        return std::nullopt;
    }
    const auto at =
        std::find_if(found->tables.begin(), found->tables.end(),
                     [after](const OfpFlowTable &table) { return table.table_id > after; });
    return at == found->tables.end() ? std::nullopt : std::optional(at->table_id);
}

} // namespace agent

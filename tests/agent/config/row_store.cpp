#include "agent/config/row_store.h"

namespace agent::test {

namespace {

void apply(const StoredRow &row, std::map<std::string, StoredValue> &held)
{
    if (!std::holds_alternative<std::monostate>(row.value)) {
        held.insert_or_assign(row.key, row.value);
    } else if (row.key.ends_with('/')) {
        std::erase_if(held, [&](const auto &other) { return other.first.starts_with(row.key); });
    } else {
        held.erase(row.key);
    }
}

} // namespace

std::string RowStore::read(std::vector<StoredRow> &rows)
{
    for (const auto &[key, value] : rows_.held) {
        rows.push_back({key, value});
    }
    return {};
}

std::string RowStore::write(std::span<const StoredRow> rows)
{
    if (rows_.fails) {
        return "the disk is full";
    }
    ++rows_.writes;
    for (const StoredRow &row : rows) {
        apply(row, rows_.held);
    }
    return {};
}

std::string attach(Configuration &configuration, Rows &rows)
{
    return configuration.attach(std::make_unique<RowStore>(rows));
}

std::map<std::string, StoredValue> rows_of(const Configuration &configuration)
{
    std::vector<StoredRow> rows;
    add_changes(GlobalConfig{}, configuration.global(), rows);
    std::optional<uint16_t> id = 0;
    while ((id = configuration.next_instance(*id))) {
        add_changes(*id, nullptr, configuration.instance(*id), rows);
    }
    std::map<std::string, StoredValue> held;
    for (const StoredRow &row : rows) {
        apply(row, held);
    }
    return held;
}

} // namespace agent::test

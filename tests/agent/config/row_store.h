// A store in memory that can be told to fail, and what a configuration is as rows.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "config/configuration.h"
#include "config/schema.h"
#include "config/store.h"

namespace agent::test {

// What outlives the store that writes it.
struct Rows {
    std::map<std::string, StoredValue> held;
    size_t writes = 0;
    bool fails = false;
};

class RowStore : public Store {
public:
    explicit RowStore(Rows &rows) : rows_(rows) {}
    std::string read(std::vector<StoredRow> &rows) override;
    std::string write(std::span<const StoredRow> rows) override;

private:
    Rows &rows_;
};

// Empty, or why not.
std::string attach(Configuration &configuration, Rows &rows);

// All of a configuration, whatever was stored of it.
std::map<std::string, StoredValue> rows_of(const Configuration &configuration);

} // namespace agent::test

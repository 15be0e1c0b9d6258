// The configuration's file: rows of key and value in one SQLite database, each set of changes one
// transaction.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace agent {

using StoredBytes = std::vector<uint8_t>;
// Nothing, which removes the row, and for a key that ends with a slash all rows below it.
using StoredValue = std::variant<std::monostate, int64_t, std::string, StoredBytes>;

struct StoredRow {
    std::string key;
    StoredValue value;

    bool operator==(const StoredRow &) const = default;
};

class Store {
public:
    virtual ~Store() = default;

    // All rows, ascending by key. Empty, or why they cannot be read.
    virtual std::string read(std::vector<StoredRow> &rows) = 0;
    // Writes all of them or none. Empty, or why not.
    virtual std::string write(std::span<const StoredRow> rows) = 0;
};

// A file that is none: what it holds ends with the store.
inline constexpr const char *STORE_IN_MEMORY = ":memory:";

// Opens a file, or makes one. Null, and why_not says
// what is wrong, for one that cannot be opened, is damaged, is not such a store, was written by a
// later version or is in use; it is then left as it is.
std::unique_ptr<Store> open_store(const std::string &path, std::string &why_not);

} // namespace agent

// The configuration as rows of its store. A member of an instance is found under
// "instance/ID/MEMBER", one of the switch under "switch/MEMBER"; members of structures and elements
// of maps go one level deeper.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "config/configuration.h"
#include "config/settings.h"
#include "config/store.h"

namespace agent {

// The form of the rows; a store of another one is not read.
inline constexpr int SCHEMA_VERSION = 1;

// Adds the rows that lead from before to after. Null: not stored, to be removed.
void add_changes(uint16_t id, const InstanceConfig *before, const InstanceConfig *after,
                 std::vector<StoredRow> &rows);
void add_changes(const GlobalConfig &before, const GlobalConfig &after,
                 std::vector<StoredRow> &rows);

// Empty, or the row that cannot be and why.
std::string read_rows(std::span<const StoredRow> rows, Instances &instances, GlobalConfig &global);

} // namespace agent

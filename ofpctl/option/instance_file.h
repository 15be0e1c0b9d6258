// A whole instance as a file describes it.
#ifndef OFPCTL_OPTION_INSTANCE_FILE_H
#define OFPCTL_OPTION_INSTANCE_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ofp/wire.h"
#include "option/assignment.h"

namespace ofpctl {

struct PlannedController {
    uint8_t id;
    std::vector<Assignment> settings;
};

struct PlannedPort {
    uint32_t if_index;
    std::string name;
};

// What is not said stays as it is.
struct InstancePlan {
    uint16_t id = 0;
    std::optional<bool> active;
    std::vector<Assignment> options;
    std::optional<std::vector<PlannedController>> controllers; // all of them
    std::optional<std::vector<PlannedPort>> ports;             // all of them
};

struct FileError {
    std::size_t line;
    std::size_t column;
    std::string what;
};

// The plan, or everything that is wrong, in the order of the file.
std::variant<InstancePlan, std::vector<FileError>> read_instance_plan(std::string_view text);

} // namespace ofpctl

#endif

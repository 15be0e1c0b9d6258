// The options of an instance that are one number: a record of the wire holds the instance's id and
// the number, a member of the instance keeps it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "config/settings.h"
#include "ofp.h"

namespace agent {

struct Option {
    uint32_t message; // that sets it; 0: set along with something else
    uint16_t type;    // of its TLV
    uint16_t size;    // of its record
    uint64_t least;
    uint64_t most;

    // Of a record in host order.
    uint16_t (*instance_of)(const void *record);
    uint64_t (*value_of)(const void *record);

    void (*set)(InstanceConfig &instance, uint64_t value);
    // Fills a record in host order.
    void (*fill)(uint16_t id, const InstanceConfig &instance, void *record);
};

// The largest of their records.
inline constexpr size_t OPTION_RECORD_MAX = 16;

std::span<const Option> options();

// Null when no option is set by this message or travels in this TLV.
const Option *option_of_message(uint32_t message);
const Option *option_of_type(uint16_t type);

} // namespace agent

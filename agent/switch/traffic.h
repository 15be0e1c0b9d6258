// What passed a rule, a group or a bucket.
#pragma once

#include <cstdint>

namespace agent {

struct Traffic {
    uint64_t packets = 0;
    uint64_t bytes = 0;
};

} // namespace agent

// The transaction ids of asynchronous rules.
#pragma once

#include <cstdint>

namespace ofp {

// They stay in the upper half, apart from the indexes that synchronous batches use.
constexpr uint32_t transaction_after(uint32_t id) { return id == 0xffffffff ? 0x80000000 : id + 1; }

} // namespace ofp

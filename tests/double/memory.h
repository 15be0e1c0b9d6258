// Every malloc, calloc, realloc and free of the library, counted, and made to fail on demand.
// Allocations of the C++ runtime (containers of the tests) are not seen.
#pragma once

#include <cstddef>

namespace test::memory {

// The nth allocation from now on fails, once; 0: none does.
void fail_at(size_t nth);
// Whether the failure that was asked for has happened.
bool has_failed();

// Blocks that were allocated and not freed.
size_t outstanding();

// A block that the library is to free, as a platform call hands it over; never made to fail.
void *give(size_t size);

} // namespace test::memory

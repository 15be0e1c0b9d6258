/* OFP_TRACE: every datagram of the process as a packet of a pcapng file. */
#ifndef OFP_PLATFORM_HOST_TRACE_H
#define OFP_PLATFORM_HOST_TRACE_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace host {

enum class Direction : uint32_t { received = 1, sent = 2 }; /* as packet flags count them */

enum class Tracing { possible, off };

extern std::atomic<Tracing> trace_state;

/* False once it is known that nothing is to be recorded. */
inline bool tracing() { return trace_state.load(std::memory_order_relaxed) != Tracing::off; }

/* Appends one datagram of socket s; leaves errno alone. */
void trace(Direction direction, int32_t s, const void *datagram, size_t length);

} // namespace host

#endif

/* Errors in words: what HOST_LastError says, kept per thread. */
#ifndef OFP_PLATFORM_HOST_ERROR_H
#define OFP_PLATFORM_HOST_ERROR_H

#include <cstdint>

namespace host {

/* Keeps the sentence for HOST_LastError, sets errno, returns -1. Arguments may hold the sentence
 * that is being replaced. */
[[gnu::format(printf, 2, 3)]] int32_t fail(int code, const char *format, ...);

/* The same for calls that return a result code: returns code and leaves errno alone. */
[[gnu::format(printf, 2, 3)]] uint32_t refuse(uint32_t code, const char *format, ...);

} // namespace host

#endif

#include "error.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "ofp/host.h"

namespace host {

namespace {

constinit thread_local char last_error[1024];

void keep(const char *format, va_list arguments)
{
    char text[sizeof last_error];
    vsnprintf(text, sizeof text, format, arguments);
    memcpy(last_error, text, sizeof text);
}

} // namespace

int32_t fail(int code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    keep(format, arguments);
    va_end(arguments);
    errno = code;
    return -1;
}

uint32_t refuse(uint32_t code, const char *format, ...)
{
    int saved = errno;
    va_list arguments;
    va_start(arguments, format);
    keep(format, arguments);
    va_end(arguments);
    errno = saved;
    return code;
}

} // namespace host

const char *HOST_LastError(void) { return host::last_error; }

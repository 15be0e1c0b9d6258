#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "ofp/platform.h"

size_t scnprintf(char *buffer, size_t size, const char *format, ...)
{
    if (size == 0) {
        return 0;
    }
    va_list arguments;
    va_start(arguments, format);
    int length = vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    if (length < 0) {
        *buffer = '\0';
        return 0;
    }
    size_t wanted = static_cast<size_t>(length);
    return wanted < size ? wanted : size - 1;
}

size_t strlcpy(char *to, const char *from, size_t size)
{
    size_t length = strlen(from);
    if (size != 0) {
        size_t kept = length < size ? length : size - 1;
        memcpy(to, from, kept);
        to[kept] = '\0';
    }
    return length;
}

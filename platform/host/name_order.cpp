/* Names sort as people count: a run of digits is one number, whatever its leading zeros. */
#include <cstring>

#include "ofp/platform.h"

namespace {

bool digit(char c) { return c >= '0' && c <= '9'; }

int32_t sign(int64_t value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

size_t digits(const char *text)
{
    size_t count = 0;
    while (digit(text[count])) {
        ++count;
    }
    return count;
}

const char *skip_zeros(const char *text)
{
    while (text[0] == '0' && digit(text[1])) {
        ++text;
    }
    return text;
}

/* Compares the numbers at the start of both and moves past them. */
int32_t order_numbers(const char *&a, const char *&b)
{
    a = skip_zeros(a);
    b = skip_zeros(b);
    size_t length_a = digits(a);
    size_t length_b = digits(b);
    if (length_a != length_b) {
        return length_a < length_b ? -1 : 1;
    }
    int32_t order = sign(memcmp(a, b, length_a));
    a += length_a;
    b += length_b;
    return order;
}

int32_t natural_order(const char *a, const char *b)
{
    while (*a != '\0' && *b != '\0') {
        int32_t order = 0;
        if (digit(*a) && digit(*b)) {
            order = order_numbers(a, b);
        } else {
            order = sign(static_cast<unsigned char>(*a++) - static_cast<unsigned char>(*b++));
        }
        if (order != 0) {
            return order;
        }
    }
    return (*a != '\0') - (*b != '\0');
}

} // namespace

int32_t IF_JudgeNameOrder(const char *a, const char *b)
{
    a = a != nullptr ? a : "";
    b = b != nullptr ? b : "";
    int32_t order = natural_order(a, b);
    /* Names that count the same, as port1 and port01, still have one order. */
    return order != 0 ? order : sign(strcmp(a, b));
}

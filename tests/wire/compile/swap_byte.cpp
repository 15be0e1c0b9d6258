#include "wire/swap_members.h"

struct Sample {
    uint32_t port;
    uint8_t flags;
    struct {
        uint32_t id;
    } nested;
};

void convert(void *record) { ofp::swap_members<&Sample::flags>(record); }

// OpenFlow messages as the agent reads them, and the switch that programs them.
#include <cstdint>
#include <span>

#include "switch/switch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr uint16_t client = 4096;
    agent::Switch the_switch;
    const std::span<const uint8_t> bytes(data, size);
    for (size_t at = 0; size - at >= 8;) {
        size_t length = static_cast<size_t>(data[at + 2] << 8 | data[at + 3]);
        length = length < 8 || length > size - at ? size - at : length;
        if (data[at + 1] == 15) {
            the_switch.group_mod(client, bytes.subspan(at, length));
        } else {
            the_switch.flow_mod(client, bytes.subspan(at, length));
        }
        at += length;
    }
    the_switch.open_period(client, 1);
    the_switch.close_period(client, 1);
    return 0;
}

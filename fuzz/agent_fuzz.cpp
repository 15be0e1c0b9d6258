// Any datagram is answered or refused, and the agent goes on.
#include <cstdint>
#include <span>

#include "daemon/dispatch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    agent::Model model;
    agent::Outbox out;
    // Several datagrams in one input: 16-bit lengths, big-endian, between them.
    for (size_t at = 0; size - at >= 2;) {
        const size_t announced = static_cast<size_t>(data[at] << 8 | data[at + 1]);
        at += 2;
        const size_t length = announced < size - at ? announced : size - at;
        agent::answer_and_commit({data + at, length}, out, model);
        at += length;
    }
    return 0;
}

#include "flow/batch.h"

#include "flow/exact_size.h"
#include "flow/oxm_size.h"
#include "ofp/codec.h"
#include "ofp/flow.h"

namespace ofp {
namespace {

constexpr uint32_t most_rules = 12;
constexpr uint64_t most_bytes = OFP_LARGE_DATAGRAM_SIZE;
constexpr Batch refused = {};

// The agreed cut: by rule count and by a size that leaves out part of what travels.
uint32_t counted_rules(uint32_t count, const OfpFlowItem *items)
{
    uint64_t size = 0;
    uint32_t taken = 0;
    for (; taken < count && taken < most_rules; ++taken) {
        size += OFP_encode_GetRuleMsgLen(1, &items[taken]);
        if (size > most_bytes)
            break;
    }
    return taken;
}

} // namespace

// Rules that fit by their counted size may need more room together than a datagram has; the batch
// then ends before the first that does not fit. A rule that alone needs more refuses its batch.
Batch cut_batch(uint32_t count, const OfpFlowItem *items)
{
    const uint32_t counted = counted_rules(count, items);
    Batch batch = {.count = 0, .size = batch_head_size, .has_gaps = false};
    for (uint32_t i = 0; i < counted; ++i) {
        const uint64_t size = rule_size(items[i]);
        if (batch_head_size + size > most_bytes)
            return refused;
        if (batch.count != i || batch.size + size > most_bytes)
            continue;
        ++batch.count;
        batch.size += size;
        batch.has_gaps |= leaves_gaps(items[i].match);
    }
    return batch;
}

} // namespace ofp

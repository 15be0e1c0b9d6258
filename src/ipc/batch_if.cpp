#include <algorithm>
#include <cstring>

#include "ipc/tlv_range.h"
#include "ipc/writer.h"
#include "ofp/codec.h"

namespace ofp {
namespace {

constexpr uint32_t batch_size = sizeof(OfpBatchIf::if_index) / sizeof(uint32_t);

// The indexes that are present in a TLV, which says how many it holds but may be shorter.
uint64_t indexes_in(const Tlv &tlv, uint64_t count)
{
    const uint64_t whole = std::min<uint64_t>(tlv.length, sizeof(OfpBatchIf)) / sizeof(uint32_t);
    return std::min(count, whole != 0 ? whole - 1 : 0);
}

} // namespace
} // namespace ofp

OFP_API uint64_t OFP_msg_EncapMatchBatchIf(uint8_t *buffer, uint64_t space, const OfpFRMatch *match)
{
    uint32_t left = match->batch_if.count;
    const uint32_t *indexes = match->batch_if.if_index;
    if (left == 0)
        return 0;

    // One record for all TLVs: what a short last one does not use repeats the one before.
    OfpBatchIf batch{};
    ofp::Writer out(buffer, space);
    while (left > ofp::batch_size) {
        left -= ofp::batch_size;
        batch.count = ofp::batch_size;
        std::memcpy(batch.if_index, indexes, sizeof batch.if_index);
        // Agents expect the remainder to repeat the start of the last full batch, not to follow it.
        if (left > ofp::batch_size)
            indexes += ofp::batch_size;
        out.tlv(OFP_TLV_BatchIf, batch);
    }
    batch.count = left;
    std::memcpy(batch.if_index, indexes, left * sizeof *indexes);
    return out.tlv(OFP_TLV_BatchIf, batch).bytes().size;
}

OFP_API uint64_t OFP_msg_DecapMatchBatchIf(const uint8_t *buffer, uint64_t available,
                                           uint64_t capacity, uint32_t *indexes, uint64_t *stored)
{
    uint64_t consumed = 0;
    uint64_t bytes = 0;
    for (const ofp::Tlv &tlv : ofp::tlvs({buffer, available})) {
        OfpBatchIf batch{};
        if (tlv.type != OFP_TLV_BatchIf)
            break;
        OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, sizeof batch, &batch);
        if (batch.count == 0 || uint64_t{batch.count} * sizeof *indexes > capacity - bytes)
            break;
        const uint64_t size = ofp::indexes_in(tlv, batch.count) * sizeof *indexes;
        std::memcpy(reinterpret_cast<uint8_t *>(indexes) + bytes, batch.if_index, size);
        consumed = static_cast<uint64_t>(tlv.end() - buffer);
        bytes += size;
    }
    if (stored)
        *stored = bytes;
    return consumed;
}

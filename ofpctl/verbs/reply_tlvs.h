// The TLVs of a reply that the library hands over as it came.
#ifndef OFPCTL_VERBS_REPLY_TLVS_H
#define OFPCTL_VERBS_REPLY_TLVS_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "ofp.h"

namespace ofpctl {

struct ReplyTlv {
    uint16_t type;
    std::span<const uint8_t> value;

    // In host order; what the reply did not hold is zero.
    template <class Record>
    Record record() const
    {
        alignas(Record) uint8_t whole[sizeof(Record)] = {};
        std::copy_n(value.begin(), std::min(value.size(), sizeof whole), whole);
        OFP_bswap_ByteSwap(type, whole);
        Record record;
        std::memcpy(&record, whole, sizeof record);
        return record;
    }
};

// Calls visit(tlv) for each, the message head included, up to the first that is not whole.
template <class Visit>
void each_tlv(std::span<const uint8_t> datagram, Visit visit)
{
    while (!datagram.empty()) {
        uint16_t type = 0;
        uint16_t length = 0;
        void *value = nullptr;
        const uint32_t step = STLV_Get(datagram.data(), static_cast<uint32_t>(datagram.size()),
                                       &type, &length, &value);
        if (step == 0)
            return;
        visit(ReplyTlv{type, {static_cast<const uint8_t *>(value), length}});
        datagram = datagram.subspan(step);
    }
}

} // namespace ofpctl

#endif

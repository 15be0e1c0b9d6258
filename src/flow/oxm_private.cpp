#include <algorithm>

#include "flow/oxm.h"
#include "ofp/flow.h"

using namespace ofp;

namespace {

// One OXM: header, experimenter id, the interfaces of a chunk.
uint64_t put_chunk(const uint32_t *indexes, uint32_t count, uint64_t masked, uint8_t *out)
{
    const uint32_t length = (count + 1) * 4;
    OFP_encodeoxm_Header(oxm_experimenter, OFP_FIELD_BATCH_IF, static_cast<uint8_t>(length), masked,
                         out);
    put(out + 4, experimenter_id);
    for (uint32_t i = 0; i < count; ++i)
        put(out + 8 + i * 4, indexes[i]);
    return oxm_header_size + length;
}

} // namespace

OFP_API uint64_t OFP_encodeoxm_PrivIPRange(const Match *match, uint64_t, uint8_t *out)
{
    return priv<58, &Match::ip_range>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivBatchIf(const Match *match, uint64_t, uint8_t *out)
{
    const OfpBatchIfData &list = match->batch_if;
    if (!has_bit(match->fields, OFP_FIELD_BATCH_IF) || list.if_index == nullptr)
        return 0;
    uint64_t used = 0;
    for (uint64_t done = 0; done < list.count; done += oxm_chunk) {
        const uint64_t count = std::min<uint64_t>(list.count - done, oxm_chunk);
        used += put_chunk(list.if_index + done, static_cast<uint32_t>(count), match->mask->masked,
                          out + used);
    }
    return used;
}

OFP_API uint64_t OFP_encodeoxm_PrivVrf(const Match *match, uint64_t, uint8_t *out)
{
    return priv<60, &Match::vrf>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivFragment(const Match *match, uint64_t, uint8_t *out)
{
    return priv<61, &Match::fragment>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivOutPort(const Match *match, uint64_t, uint8_t *out)
{
    return priv<62, &Match::out_port>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivCVlanID(const Match *match, uint64_t, uint8_t *out)
{
    return priv<63, &Match::cvlan_vid, &Mask::cvlan_vid, present_vid>(match, out);
}

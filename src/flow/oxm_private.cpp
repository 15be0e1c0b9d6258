#include <algorithm>

#include "flow/oxm_fields.h"
#include "ofp/flow.h"

namespace ofp {
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

uint64_t put_batch_interfaces(const OfpBatchIfData &list, uint64_t masked, uint8_t *out)
{
    if (list.if_index == nullptr)
        return 0;
    uint64_t used = 0;
    for (uint64_t done = 0; done < list.count; done += oxm_chunk) {
        const uint64_t count = std::min<uint64_t>(list.count - done, oxm_chunk);
        used += put_chunk(list.if_index + done, static_cast<uint32_t>(count), masked, out + used);
    }
    return used;
}

} // namespace ofp

using namespace ofp;

OFP_API uint64_t OFP_encodeoxm_PrivIPRange(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_IP_RANGE>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivBatchIf(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_BATCH_IF>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivVrf(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_VRF>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivFragment(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_FRAGMENT>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivOutPort(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_OUT_PORT>(match, out);
}

OFP_API uint64_t OFP_encodeoxm_PrivCVlanID(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return encode<OFP_FIELD_CVLAN_VID>(match, out);
}

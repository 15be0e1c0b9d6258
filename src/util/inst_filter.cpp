#include "ofp/codec.h"
#include "ofp/util.h"

namespace ofp {
namespace {

constexpr uint16_t last_kind = 5;

// What of the filter the kind makes meaningful besides the instance.
bool has_pair(uint16_t kind) { return kind == 1 || kind == 4; }
bool has_one(uint16_t kind) { return kind == 2 || kind == 5; }

OfpInstFilterInstance instance_of(const OfpInstFilter &filter)
{
    return {filter.instance_id, filter.filter_kind, filter.ext};
}

void set_instance(OfpInstFilter *filter, const OfpInstFilterInstance &instance)
{
    *filter = {};
    filter->instance_id = instance.instance_id;
    filter->filter_kind = instance.filter_kind;
    filter->ext = instance.ext;
}

// The values in the order of the TLVs, without their headers; the union is sent as far as it is
// used.
struct Compact {
    OfpInstFilterInstance instance;
    union {
        OfpInstFilterController pair;
        OfpInstFilterFlags one;
    };
};
static_assert(sizeof(Compact) == 16);

uint64_t compact_size(uint16_t kind)
{
    if (has_pair(kind))
        return sizeof(OfpInstFilterInstance) + sizeof(OfpInstFilterController);
    if (has_one(kind))
        return sizeof(OfpInstFilterInstance) + sizeof(OfpInstFilterFlags);
    return sizeof(OfpInstFilterInstance);
}

} // namespace
} // namespace ofp

OFP_API uint64_t OFP_util_EncapInstFilterTLV(const OfpInstFilter *filter, uint64_t room,
                                             uint8_t *buffer)
{
    const OfpInstFilterInstance instance = ofp::instance_of(*filter);
    const uint64_t used =
        OFP_msg_SetTlvData(buffer, room, OFP_TLV_InstFilterInstance, sizeof instance, &instance);
    if (ofp::has_pair(filter->filter_kind)) {
        const OfpInstFilterController pair{0, filter->param_a, filter->param_b};
        return used + OFP_msg_SetTlvData(buffer + used, room - used, OFP_TLV_InstFilterController,
                                         sizeof pair, &pair);
    }
    if (ofp::has_one(filter->filter_kind)) {
        const OfpInstFilterFlags one{filter->param};
        return used + OFP_msg_SetTlvData(buffer + used, room - used, OFP_TLV_InstFilterFlags,
                                         sizeof one, &one);
    }
    return used;
}

OFP_API uint64_t OFP_util_DecapInstFilterTLV(const uint8_t *buffer, uint64_t length,
                                             OfpInstFilter *filter)
{
    OfpInstFilterInstance instance{};
    const uint64_t used =
        OFP_msg_GetTlvData(buffer, length, OFP_TLV_InstFilterInstance, sizeof instance, &instance);
    ofp::set_instance(filter, instance);
    if (filter->filter_kind > ofp::last_kind)
        return 0;
    if (ofp::has_pair(filter->filter_kind)) {
        OfpInstFilterController pair{};
        const uint64_t more = OFP_msg_GetTlvData(buffer + used, length - used,
                                                 OFP_TLV_InstFilterController, sizeof pair, &pair);
        filter->param_a = pair.param_a;
        filter->param_b = pair.param_b;
        return used + more;
    }
    if (ofp::has_one(filter->filter_kind)) {
        OfpInstFilterFlags one{};
        const uint64_t more = OFP_msg_GetTlvData(buffer + used, length - used,
                                                 OFP_TLV_InstFilterFlags, sizeof one, &one);
        filter->param = one.param;
        return used + more;
    }
    return used;
}

OFP_API uint64_t OFP_util_PatchInstFilterTLV(const OfpInstFilter *filter, uint64_t room,
                                             uint8_t *out)
{
    ofp::Compact compact{.instance = ofp::instance_of(*filter), .pair = {}};
    if (ofp::has_pair(filter->filter_kind))
        compact.pair = {0, filter->param_a, filter->param_b};
    else if (ofp::has_one(filter->filter_kind))
        compact.one = {filter->param};
    const uint64_t size = ofp::compact_size(filter->filter_kind);
    OFP_util_GetEffData(&compact, size, room, out);
    return size;
}

OFP_API uint64_t OFP_util_SplitInstFilterTLV(const uint8_t *compact, uint64_t length,
                                             OfpInstFilter *filter)
{
    ofp::Compact values{};
    OFP_util_GetEffData(compact, length, sizeof values, &values);
    ofp::set_instance(filter, values.instance);
    if (ofp::has_pair(filter->filter_kind)) {
        filter->param_a = values.pair.param_a;
        filter->param_b = values.pair.param_b;
    } else if (ofp::has_one(filter->filter_kind)) {
        filter->param = values.one.param;
    }
    return ofp::compact_size(filter->filter_kind);
}

OFP_API uint64_t OFP_util_PassbyTLV(const uint8_t *buffer, uint64_t length, uint16_t type)
{
    uint64_t passed = 0;
    while (uint64_t size = OFP_msg_GetTlvData(buffer + passed, length - passed, type, 0, nullptr))
        passed += size;
    return passed;
}

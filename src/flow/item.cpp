#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "ofp/flow_item.h"
#include "ofp/result.h"

namespace ofp {
namespace {

// Not cleared: each block is written whole. Copies are made for every asynchronous rule, and
// calloc would pass by the blocks that were freed last.
template <typename T>
T *allocate(size_t count = 1)
{
    return static_cast<T *>(std::malloc(count * sizeof(T)));
}

// A copy of one owned block, or null when there is none.
template <typename T>
T *settle(T *block, const T *source)
{
    if (source == nullptr) {
        std::free(block);
        return nullptr;
    }
    *block = *source;
    return block;
}

// The values from eth_dst through tunnel_id lie in one run.
void copy_values(const OfpFRMatch &src, OfpFRMatch *dst)
{
    dst->fields = src.fields;
    dst->in_port = src.in_port;
    dst->in_phy_port = src.in_phy_port;
    dst->out_port = src.out_port;
    dst->vrf = src.vrf;
    dst->metadata = src.metadata;
    dst->reserved = src.reserved;

    constexpr size_t first = offsetof(OfpFRMatch, eth_dst);
    constexpr size_t end = offsetof(OfpFRMatch, ipv6);
    std::memcpy(reinterpret_cast<uint8_t *>(dst) + first,
                reinterpret_cast<const uint8_t *>(&src) + first, end - first);
}

// A set-field record reaches at least as far as the pointer it owns.
size_t record_size(const OfpAction &action)
{
    const size_t least =
        action.type == OFP_ACTION_SET_FIELD ? sizeof(OfpActionSetField) : sizeof(OfpAction);
    return std::max<size_t>(action.size, least);
}

OfpActionSetField *as_set_field(OfpAction *action)
{
    return reinterpret_cast<OfpActionSetField *>(action);
}

// The copy holds the source's pointer; it gets a block of its own.
bool own_ipv6(OfpActionSetField *copy)
{
    const OfpMatchIpv6 *source = copy->ipv6;
    if (source == nullptr)
        return true;
    copy->ipv6 = allocate<OfpMatchIpv6>();
    if (copy->ipv6 == nullptr)
        return false;
    *copy->ipv6 = *source;
    return true;
}

constexpr bool made_by_library(uint32_t type)
{
    return type == 0 || type == 11 || type == 12 || (type >= 15 && type <= 27) ||
           (type >= 61440 && type <= 61445) || type == OFP_ACTION_EXPERIMENTER;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API OfpFlowItem *OFP_util_CopyFlowItem(const OfpFlowItem *src)
{
    auto *copy = allocate<OfpFlowItem>();
    if (copy == nullptr)
        return nullptr;
    *copy = {.priority = src->priority};
    if (OFP_util_CopyFRMatch(&src->match, &copy->match) != OFP_RC_OK ||
        OFP_util_CopyAction(src, copy) != OFP_RC_OK) {
        OFP_util_FreeFlowItem(copy);
        return nullptr;
    }
    return copy;
}

OFP_API uint32_t OFP_util_CopyFRMatch(const OfpFRMatch *src, OfpFRMatch *dst)
{
    auto *ipv6 = allocate<OfpMatchIpv6>();
    if (ipv6 == nullptr)
        return OFP_RC_NO_RESOURCE;
    auto *mask = allocate<OfpMatchMask>();
    if (mask == nullptr) {
        std::free(ipv6);
        return OFP_RC_NO_RESOURCE;
    }
    copy_values(*src, dst);
    dst->ipv6 = settle(ipv6, src->ipv6);
    dst->mask = settle(mask, src->mask);
    return OFP_util_CopyBatchIfData(&src->batch_if, &dst->batch_if);
}

OFP_API uint32_t OFP_util_CopyBatchIfData(const OfpBatchIfData *src, OfpBatchIfData *dst)
{
    *dst = {};
    if (src->count == 0 || src->if_index == nullptr)
        return OFP_RC_OK;
    const size_t size = size_t{src->count} * sizeof(uint32_t);
    auto *indexes = static_cast<uint32_t *>(std::malloc(size));
    if (indexes == nullptr)
        return OFP_RC_NO_RESOURCE;
    std::memcpy(indexes, src->if_index, size);
    *dst = {.count = src->count, .if_index = indexes};
    return OFP_RC_OK;
}

OFP_API uint32_t OFP_util_CopyAction(const OfpFlowItem *src, OfpFlowItem *dst)
{
    dst->action_count = 0;
    dst->actions = nullptr;
    if (src->action_count == 0 || src->actions == nullptr)
        return OFP_RC_OK;
    auto **copies = allocate<OfpAction *>(src->action_count);
    if (copies == nullptr)
        return OFP_RC_FAILED; // callers tell a missing array from a missing action by this code
    std::fill_n(copies, src->action_count, nullptr);
    for (uint32_t i = 0; i < src->action_count; ++i) {
        const uint32_t result = OFP_util_FillActions(src->actions[i], i, copies);
        if (result != OFP_RC_OK) {
            OFP_util_DestroyActionList(src->action_count, copies);
            return result;
        }
    }
    dst->action_count = src->action_count;
    dst->actions = copies;
    return OFP_RC_OK;
}

OFP_API uint32_t OFP_util_FillActions(const OfpAction *action, uint32_t index, OfpAction **array)
{
    if (action == nullptr)
        return OFP_RC_OK;
    const size_t size = record_size(*action);
    auto *copy = static_cast<OfpAction *>(std::malloc(size));
    if (copy == nullptr)
        return OFP_RC_NO_RESOURCE;
    std::memcpy(copy, action, size);
    if (action->type == OFP_ACTION_SET_FIELD && !own_ipv6(as_set_field(copy))) {
        std::free(copy);
        array[index] = nullptr;
        return OFP_RC_NO_RESOURCE;
    }
    array[index] = copy;
    return OFP_RC_OK;
}

OFP_API void OFP_util_DestroyAction(OfpAction *action)
{
    if (action == nullptr || !made_by_library(action->type))
        return;
    if (action->type == OFP_ACTION_SET_FIELD)
        std::free(as_set_field(action)->ipv6);
    std::free(action);
}

OFP_API void OFP_util_DestroyActionList(uint32_t count, OfpAction **array)
{
    if (array == nullptr)
        return;
    for (uint32_t i = 0; i < count; ++i) {
        OFP_util_DestroyAction(array[i]);
        array[i] = nullptr;
    }
    std::free(array);
}

OFP_API void OFP_util_FreeMatchIpv6Mask(OfpFRMatch *match)
{
    std::free(match->ipv6);
    std::free(match->mask);
    std::free(match->batch_if.if_index);
    match->ipv6 = nullptr;
    match->mask = nullptr;
    match->batch_if.if_index = nullptr;
}

OFP_API void OFP_util_FreeFlowItem(OfpFlowItem *item)
{
    if (item == nullptr)
        return;
    OFP_util_FreeMatchIpv6Mask(&item->match);
    OFP_util_DestroyActionList(item->action_count, item->actions);
    std::free(item);
}

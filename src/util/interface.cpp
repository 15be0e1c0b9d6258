#include "ofp/interface.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "ofp/platform.h"

namespace {

// Numbers of the platform's interface library.
constexpr uint32_t selection_mode = 2;
constexpr uint32_t selection_condition = 10;
constexpr uint32_t item_type = 18;

// In the order in which they are registered.
constexpr uint32_t openflow_types[] = {
    18, 19,  21, 39,  88,  123, 68,  69,  121, 56,  22,  23,  89,  25,  124, 70,
    71, 122, 67, 106, 107, 41,  111, 110, 49,  160, 143, 144, 167, 168, 175, 176,
};
static_assert(std::size(openflow_types) == 32);

constexpr uint32_t ttp_types[] = {
    18, 19, 21,  39, 88, 123, 68, 69,  121, 56,  22, 23,
    89, 25, 124, 70, 71, 122, 67, 106, 107, 110, 49,
};
static_assert(std::size(ttp_types) == 23);

uint32_t select(std::span<const uint32_t> types, void *selection)
{
    IF_Select_Init(selection_mode, selection);
    for (const uint32_t type : types)
        IF_SelectType_Set(type, selection);
    return IF_SelectCondition_Set(selection_condition, selection);
}

} // namespace

OFP_API uint32_t OFP_util_SetIfSelect(void *selection) { return select(openflow_types, selection); }

OFP_API uint32_t OFP_util_SetTTPIfSelect(void *selection) { return select(ttp_types, selection); }

OFP_API uint16_t OFP_util_IsOfpIfType(uint32_t if_index)
{
    uint32_t type = 0;
    if (if_index == 0 || IF_GetDataByIfIndex(if_index, item_type, &type) != 0)
        return 0;
    return std::ranges::find(openflow_types, type) != std::end(openflow_types);
}

#include <cstring>

#include "config.h"
#include "error.h"
#include "ofp/host.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace host {

namespace {

constexpr uint32_t type_limit = 256;

bool initialised(const HostIfSelection &selection)
{
    return (selection.mode == HOST_IF_MODE_ALL || selection.mode == HOST_IF_MODE_TYPES) &&
           (selection.condition == HOST_IF_CONDITION_NONE ||
            selection.condition == HOST_IF_CONDITION_PRESENT);
}

bool selects(const HostIfSelection &selection, const HostInterface &interface,
             const HostConfig &config)
{
    if (selection.mode == HOST_IF_MODE_TYPES &&
        (interface.type >= type_limit ||
         (selection.types[interface.type / 32] >> interface.type % 32 & 1u) == 0)) {
        return false;
    }
    return selection.condition == HOST_IF_CONDITION_NONE ||
           find_node(config, interface.node)->up != 0;
}

} // namespace

} // namespace host

using namespace host;

uint32_t IF_Select_Init(uint32_t mode, void *selection)
{
    if (selection == nullptr || (mode != HOST_IF_MODE_ALL && mode != HOST_IF_MODE_TYPES)) {
        return refuse(OFP_RC_INVALID, "interface selection: mode %u is not known", mode);
    }
    *static_cast<HostIfSelection *>(selection) = {.mode = mode, .condition = 0, .types = {}};
    return OFP_RC_OK;
}

uint32_t IF_SelectType_Set(uint32_t type, void *selection)
{
    auto *object = static_cast<HostIfSelection *>(selection);
    if (object == nullptr || object->mode != HOST_IF_MODE_TYPES || type >= type_limit) {
        return refuse(OFP_RC_INVALID, "interface selection: type %u cannot be added", type);
    }
    object->types[type / 32] |= 1u << type % 32;
    return OFP_RC_OK;
}

uint32_t IF_SelectCondition_Set(uint32_t condition, void *selection)
{
    auto *object = static_cast<HostIfSelection *>(selection);
    if (object == nullptr || !initialised(*object) ||
        (condition != HOST_IF_CONDITION_NONE && condition != HOST_IF_CONDITION_PRESENT)) {
        return refuse(OFP_RC_INVALID, "interface selection: condition %u is not known", condition);
    }
    object->condition = condition;
    return OFP_RC_OK;
}

uint32_t HOST_GetSelectedInterfaces(const HostIfSelection *selection, uint32_t *indexes,
                                    uint32_t capacity)
{
    const Description *d = description();
    if (d == nullptr) {
        return 0;
    }
    if (selection == nullptr || !initialised(*selection)) {
        return refuse(0, "interface selection: not initialised");
    }
    uint32_t count = 0;
    for (uint32_t position : d->by_name) {
        const HostInterface &interface = d->interfaces[position];
        if (!selects(*selection, interface, d->config)) {
            continue;
        }
        if (count < capacity) {
            indexes[count] = interface.index;
        }
        ++count;
    }
    return count;
}

uint32_t IF_GetDataByIfIndex(uint32_t index, uint32_t item, void *out)
{
    if (item != HOST_IF_ITEM_TYPE || out == nullptr) {
        return refuse(OFP_RC_INVALID, "interface item %u is not known", item);
    }
    const HostInterface *interface = HOST_FindInterface(index);
    if (interface == nullptr) {
        return OFP_RC_NOT_FOUND;
    }
    memcpy(out, &interface->type, sizeof interface->type);
    return OFP_RC_OK;
}

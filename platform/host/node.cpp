#include <cerrno>
#include <cstdlib>

#include "config.h"
#include "error.h"
#include "ofp/platform.h"

using namespace host;

uint16_t DEV_GetSystemMaster(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr ? config->master : no_node;
}

uint16_t DEV_GetSelf(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr ? config->self : no_node;
}

uint16_t DEV_IsController(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr && find_node(*config, config->self)->controller != 0 ? 1 : 0;
}

uint16_t *DEV_GetAllNodes(uint32_t *count)
{
    const HostConfig *config = HOST_GetConfig();
    *count = 0;
    if (config == nullptr) {
        return nullptr;
    }
    auto *nodes = static_cast<uint16_t *>(malloc(config->node_count * sizeof(uint16_t)));
    if (nodes == nullptr) {
        fail(ENOMEM, "node list: out of memory");
        return nullptr;
    }
    for (uint32_t i = 0; i < config->node_count; ++i) {
        nodes[i] = config->nodes[i].id;
    }
    *count = config->node_count;
    return nodes;
}

uint16_t IF_IsNodeUp(uint16_t node)
{
    const HostConfig *config = HOST_GetConfig();
    const HostNode *found = config != nullptr ? find_node(*config, node) : nullptr;
    return found != nullptr && found->up != 0 ? 1 : 0;
}

#include <algorithm>

#include "config.h"
#include "ofp/platform.h"

using namespace host;

uint32_t ZONE_GetCurrentZone(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr ? config->zone : 0;
}

uint16_t ZONE_IsContainer(uint32_t zone)
{
    const Description *d = description();
    return d != nullptr && std::ranges::count(d->containers, zone) != 0 ? 1 : 0;
}

uint32_t ZONE_GetCurrentContainer(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr ? config->container : 0;
}

uint16_t LIP_GetLocalLip(void)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr ? config->lip : no_node;
}

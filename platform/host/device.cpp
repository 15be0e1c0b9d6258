#include <cstring>

#include "config.h"
#include "error.h"
#include "ofp/platform.h"
#include "ofp/result.h"

using namespace host;

namespace {

constexpr int16_t any_node = INT16_MIN;
constexpr uint32_t get_acl_resource = 0x700032;

} // namespace

uint16_t VLAN_GetMinVlanID(void) { return 1; }

uint32_t MAC_GetBridgeAddress(uint8_t mac[6])
{
    const HostConfig *config = HOST_GetConfig();
    if (config == nullptr) {
        return OFP_RC_FAILED;
    }
    memcpy(mac, config->bridge_mac, sizeof config->bridge_mac);
    return OFP_RC_OK;
}

uint32_t CIOCTL(int16_t node, uint32_t command, const void * /*in*/, uint32_t /*in_length*/,
                void *out, uint32_t out_size, uint32_t *out_length)
{
    const HostConfig *config = HOST_GetConfig();
    if (config == nullptr) {
        return OFP_RC_FAILED;
    }
    if (node != any_node && find_node(*config, static_cast<uint16_t>(node)) == nullptr) {
        return refuse(OFP_RC_NOT_FOUND, "device command: node %d is not described", node);
    }
    if (command != get_acl_resource) {
        return refuse(OFP_RC_INVALID, "device command 0x%x is not known", command);
    }
    if (out == nullptr || out_length == nullptr || out_size < sizeof config->acl_resource) {
        return refuse(OFP_RC_INVALID, "device command 0x%x: answers %zu bytes, room for %u",
                      command, sizeof config->acl_resource, out_size);
    }
    memcpy(out, config->acl_resource, sizeof config->acl_resource);
    *out_length = sizeof config->acl_resource;
    return OFP_RC_OK;
}

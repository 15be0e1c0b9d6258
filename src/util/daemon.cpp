#include "util/daemon.h"

#include <unistd.h>

#include "ofp/platform.h"
#include "ofp/result.h"
#include "ofp/util.h"
#include "util/block.h"

namespace ofp {
namespace {

constexpr char service[] = "OFP";
constexpr uint32_t every_instance = 0xffffffff;

// Starts the service on the nodes that are wanted; none_wanted is the code when there are none.
template <typename Wanted>
[[nodiscard]] uint32_t start_on_nodes(uint32_t none_wanted, Wanted wanted)
{
    uint32_t count = 0;
    Block<uint16_t> nodes(DEV_GetAllNodes(&count));
    if (!nodes || count == 0)
        return OFP_RC_FAILED;
    auto chosen = Block<uint16_t>::zeroed(count);
    if (!chosen)
        return OFP_RC_FAILED;

    uint32_t chosen_count = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (wanted(nodes[i]))
            chosen[chosen_count++] = nodes[i];
    }
    if (chosen_count == 0)
        return none_wanted;
    return SERVICE_BatchStart(chosen.get(), chosen_count, service, 0, 0);
}

} // namespace

bool is_daemon_running_on(uint16_t node)
{
    uint32_t status = 0;
    return SERVICE_GetStatus(node, service, every_instance, &status) == 0 && status != 0;
}

} // namespace ofp

OFP_API uint16_t OFP_util_IsDaemonStart(void)
{
    return ofp::is_daemon_running_on(DEV_GetSystemMaster());
}

OFP_API uint32_t OFP_util_StartDaemon(void)
{
    if (OFP_util_IsDaemonStart())
        return OFP_RC_OK;
    const uint16_t master = DEV_GetSystemMaster();
    if (uint32_t code = SERVICE_Start(master, ofp::service, 0, 0))
        return code;
    return ofp::start_on_nodes(
        OFP_RC_OK, [master](uint16_t node) { return node != master && IF_IsNodeUp(node) != 0; });
}

OFP_API uint32_t OFP_util_StartDaemonByLip(uint16_t node)
{
    if (ofp::is_daemon_running_on(node))
        return OFP_RC_OK;
    return SERVICE_Start(node, ofp::service, 0, 0);
}

OFP_API uint32_t OFP_util_StartOtherInBlade(void)
{
    const uint16_t self = DEV_GetSelf();
    if (DEV_IsController() != 1)
        return OFP_RC_OK;
    // Nothing left to start is a failure: callers take it as "someone else does it".
    uint32_t code = ofp::start_on_nodes(OFP_RC_FAILED, [self](uint16_t node) {
        return node != self && IF_IsNodeUp(node) != 0 && !ofp::is_daemon_running_on(node);
    });
    while (code == OFP_RC_OK && !OFP_util_IsDaemonStart())
        sleep(1);
    return code;
}

OFP_API uint32_t OFP_util_IsPhase4Over(void) { return SERVICE_IsPhase4Over(DEV_GetSystemMaster()); }

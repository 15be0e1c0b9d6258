#include "frame/start_guard.h"

#include "frame/platform_call.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace ofpctl {

namespace {

bool allowed = false;

} // namespace

void allow_start() { allowed = true; }

} // namespace ofpctl

extern "C" __attribute__((visibility("default"))) uint32_t
SERVICE_Start(uint16_t node, const char *name, uint32_t argument1, uint32_t argument2)
{
    using namespace ofpctl;
    if (!allowed)
        return static_cast<uint32_t>(OFP_RC_DAEMON_DOWN);
    static const auto forward = platform_call<decltype(SERVICE_Start)>("SERVICE_Start");
    return forward(node, name, argument1, argument2);
}

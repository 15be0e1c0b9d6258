#include "frame/rehearsal.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/platform_call.h"
#include "ofp/platform.h"

namespace ofpctl {

namespace {

constexpr uint8_t result_reply[] = {
    0x00, 0x01, 0x00, 0x04, 0x20, 0x00, 0x00, 0x01, // message head: result
    0x00, 0x02, 0x00, 0x04, 0x00, 0x00, 0x00, 0x00, // result code 0
};

Rehearsal::Listener heard;

} // namespace

Rehearsal::Rehearsal(Listener listener) { heard = std::move(listener); }
Rehearsal::~Rehearsal() { heard = nullptr; }

bool rehearsing() { return static_cast<bool>(heard); }

int64_t rehearsed_reply(void *buffer, std::size_t size)
{
    const std::size_t length = std::min(size, sizeof result_reply);
    std::memcpy(buffer, result_reply, length);
    return static_cast<int64_t>(length);
}

} // namespace ofpctl

extern "C" __attribute__((visibility("default"))) int64_t SOCK_Send(int32_t s, const void *buffer,
                                                                    size_t length, int32_t flags)
{
    using namespace ofpctl;
    if (rehearsing()) {
        heard({static_cast<const uint8_t *>(buffer), length});
        return static_cast<int64_t>(length);
    }
    static const auto forward = platform_call<decltype(SOCK_Send)>("SOCK_Send");
    return forward(s, buffer, length, flags);
}

extern "C" __attribute__((visibility("default"))) uint32_t
SERVICE_GetStatus(uint16_t node, const char *name, uint32_t instance, uint32_t *status)
{
    using namespace ofpctl;
    if (rehearsing()) {
        *status = 1;
        return 0;
    }
    static const auto forward = platform_call<decltype(SERVICE_GetStatus)>("SERVICE_GetStatus");
    return forward(node, name, instance, status);
}

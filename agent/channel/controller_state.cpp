#include "channel/controller_state.h"

#include <algorithm>

namespace agent {

namespace {

constexpr uint8_t ALL_CONTROLLERS = 64;

void reset(ControllerState &state)
{
    state.received = {};
    state.sent = {};
    state.errors = 0;
}

} // namespace

uint32_t InstanceChannels::connected() const
{
    return static_cast<uint32_t>(
        std::count_if(controllers.begin(), controllers.end(),
                      [](const auto &controller) { return controller.second.connected(); }));
}

const InstanceChannels *ControllerStates::find(uint16_t instance) const
{
    const auto found = instances_.find(instance);
    return found == instances_.end() ? nullptr : &found->second;
}

const ControllerState *ControllerStates::find(uint16_t instance, uint8_t controller) const
{
    const InstanceChannels *const channels = find(instance);
    if (!channels) {
        return nullptr;
    }
    const auto found = channels->controllers.find(controller);
    return found == channels->controllers.end() ? nullptr : &found->second;
}

uint32_t ControllerStates::connected() const
{
    uint32_t sum = 0;
    for (const auto &instance : instances_) {
        sum += instance.second.connected();
    }
    return sum;
}

void ControllerStates::remove(uint16_t instance, uint8_t controller) noexcept
{
    const auto found = instances_.find(instance);
    if (found == instances_.end()) {
        return;
    }
    found->second.controllers.erase(controller);
    if (found->second.controllers.empty()) {
        instances_.erase(found);
    }
}

void ControllerStates::reset_counters(uint16_t instance, uint8_t controller) noexcept
{
    const auto found = instances_.find(instance);
    if (found == instances_.end()) {
        return;
    }
    for (auto &[id, state] : found->second.controllers) {
        if (controller == ALL_CONTROLLERS || controller == id) {
            reset(state);
        }
    }
}

const char *state_name(ChannelState state)
{
    constexpr const char *NAMES[] = {"held", "waiting", "connecting", "negotiating", "connected"};
    return NAMES[static_cast<size_t>(state)];
}

} // namespace agent

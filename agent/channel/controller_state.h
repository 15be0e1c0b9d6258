// What is known of the controllers' connections: plain figures, kept by those who hold the
// connections and read by whoever answers questions about them.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace agent {

enum class ChannelState : uint8_t {
    held,        // not to be connected; reason says why
    waiting,     // for the next attempt; reason says why the last one failed
    connecting,  // TCP
    negotiating, // hello
    connected,
};

// As OpenFlow 1.3 numbers them.
enum class Role : uint32_t { no_change = 0, equal = 1, master = 2, slave = 3 };

inline constexpr size_t MESSAGE_TYPES = 30; // OpenFlow 1.3's

// Messages by type; those of a type that the standard does not have are not counted.
using MessageCounts = std::array<uint64_t, MESSAGE_TYPES>;

struct ControllerState {
    ChannelState state = ChannelState::held;
    Role role = Role::equal;
    uint32_t since = 0;       // seconds of the monotonic clock at which the state began
    uint32_t attempts = 0;    // to connect, since it was configured
    uint32_t connections = 0; // of them with success
    uint32_t lost = 0;        // connections that ended against the agent's will
    std::string reason;       // empty while connected
    // Counted until they are reset.
    MessageCounts received{};
    MessageCounts sent{};
    uint64_t errors = 0; // sent or received

    bool connected() const { return state == ChannelState::connected; }
};

// What an instance does without its controllers.
enum class Outage : uint8_t {
    none,       // one is connected, or there are none
    secure,     // rules stay as they are
    standalone, // the switch forwards by itself
};

struct InstanceChannels {
    std::map<uint8_t, ControllerState> controllers; // those that are configured, by id
    uint64_t generation = 0;                        // of the last role request with one
    bool has_generation = false;
    Outage outage = Outage::none;

    uint32_t connected() const;
};

class ControllerStates {
public:
    // Null for an instance without controllers, or for one that is not configured.
    const InstanceChannels *find(uint16_t instance) const;
    const ControllerState *find(uint16_t instance, uint8_t controller) const;
    uint32_t connected() const; // of all instances

    // For those who hold the connections. at throws std::bad_alloc.
    InstanceChannels &at(uint16_t instance) { return instances_[instance]; }
    void remove(uint16_t instance, uint8_t controller) noexcept;
    void clear() noexcept { instances_.clear(); }
    void reset_counters(uint16_t instance, uint8_t controller) noexcept; // 64: all

private:
    std::map<uint16_t, InstanceChannels> instances_;
};

const char *state_name(ChannelState state);

} // namespace agent

#include "channel/channels.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

#include <fmt/core.h>
#include <netinet/in.h>

#include "channel/controller_record.h"
#include "channel/conversation.h"
#include "channel/link.h"
#include "daemon/log.h"
#include "events/notification.h"

namespace agent {

namespace {

using Controllers = std::map<uint8_t, Controller>;

const Controllers &controllers_of(const InstanceConfig *instance)
{
    static const Controllers none;
    return instance ? instance->controllers : none;
}

void set_address(LinkSettings &settings, const Controller &controller)
{
    const auto &bytes = controller.address.bytes;
    if (controller.address.type == ADDRESS_IPV4) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(controller.port);
        std::memcpy(&address.sin_addr, bytes.data(), sizeof address.sin_addr);
        std::memcpy(&settings.address, &address, sizeof address);
        settings.address_length = sizeof address;
    } else {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(controller.port);
        std::memcpy(&address.sin6_addr, bytes.data(), sizeof address.sin6_addr);
        std::memcpy(&settings.address, &address, sizeof address);
        settings.address_length = sizeof address;
    }
}

LinkSettings settings_of(const InstanceConfig &instance, const Controller &controller)
{
    LinkSettings settings;
    set_address(settings, controller);
    settings.echo_seconds = std::max<uint32_t>(instance.echo_interval, 1);
    settings.reconnect_seconds = std::max<uint32_t>(instance.reconnect_interval, 1);
    settings.dscp = instance.dscp & 0x3f;
    return settings;
}

bool same_peer(const LinkSettings &a, const LinkSettings &b)
{
    return a.dscp == b.dscp && std::memcmp(&a.address, &b.address, sizeof a.address) == 0;
}

bool same_times(const LinkSettings &a, const LinkSettings &b)
{
    return a.echo_seconds == b.echo_seconds && a.reconnect_seconds == b.reconnect_seconds;
}

// Why a controller is not to be connected whatever the others do; empty: it is.
std::string why_held(const InstanceConfig &instance, uint8_t id)
{
    const Controller &controller = instance.controllers.at(id);
    if (!instance.active) {
        return "the instance is not active";
    }
    if ((instance.excluded.controllers >> id & 1) != 0) {
        return "it is excluded";
    }
    if (!controller.tls_policy.empty()) {
        return "this agent has no TLS, which policy " + controller.tls_policy + " asks for";
    }
    if (controller.address.type != ADDRESS_IPV4 && controller.address.type != ADDRESS_IPV6) {
        return "it has no address";
    }
    return {};
}

} // namespace

// One controller: its connection and the conversation over it.
class Channels::Channel : private Link::Owner, private Conversation::Line {
public:
    Channel(Channels &channels, uint16_t instance, uint8_t id)
        : channels_(channels), instance_(instance), id_(id),
          record_(channels.model_.controllers.at(instance)), state_(record_.controllers[id]),
          conversation_(instance, id, record_, channels.model_, *this),
          link_(channels.base_, state_, *this)
    {}

    void hold(std::string reason)
    {
        const bool was_up = link_.is_up();
        if (!settings_ && state_.reason == reason) {
            return;
        }
        settings_.reset();
        link_.hold(std::move(reason));
        if (was_up) {
            end();
        }
    }

    void follow(const LinkSettings &settings, Role role, uint32_t delay)
    {
        role_ = role;
        const bool was_up = link_.is_up();
        if (!settings_ || !same_peer(*settings_, settings)) {
            logged_.clear();
            link_.start(settings, delay);
        } else if (!same_times(*settings_, settings)) {
            link_.adjust(settings);
        }
        settings_ = settings;
        if (was_up && !link_.is_up()) {
            end();
        }
    }

private:
    void link_came_up() override
    {
        logged_.clear();
        state_.role = role_;
        conversation_.begin();
        log::info("instance {}: controller {} is connected", instance_, id_);
        channels_.connection_changed(instance_, id_);
    }
    void link_went_down() override
    {
        logged_ = state_.reason;
        log::warning("instance {}: the connection to controller {} was lost: {}", instance_, id_,
                     state_.reason);
        end();
        channels_.attempt_failed(instance_, id_);
    }
    void link_failed() override
    {
        if (logged_ != state_.reason) { // once, however often it is tried
            logged_ = state_.reason;
            log::warning("instance {}: controller {} cannot be connected: {}", instance_, id_,
                         state_.reason);
        }
        channels_.attempt_failed(instance_, id_);
    }
    void received(Bytes message) override { conversation_.answer(message); }
    void send(Bytes message) override { link_.send(message); }

    void end()
    {
        state_.role = Role::equal;
        channels_.connection_changed(instance_, id_);
    }

    Channels &channels_;
    uint16_t instance_;
    uint8_t id_;
    InstanceChannels &record_;
    ControllerState &state_;
    Conversation conversation_;
    Link link_;
    std::optional<LinkSettings> settings_; // nothing: held
    Role role_ = Role::equal;              // at the beginning of a connection
    std::string logged_;                   // the reason that was logged last
};

Channels::Channels(event_base *base, Model &model) : base_(base), model_(model)
{
    Configuration &configuration = model_.configuration();
    for (auto id = configuration.next_instance(0); id; id = configuration.next_instance(*id)) {
        change(*id, nullptr, configuration.instance(*id));
    }
    configuration.add_observer(*this);
}

Channels::~Channels()
{
    model_.configuration().remove_observer(*this);
    instances_.clear();
    model_.controllers.clear();
}

// ---- Following the configuration

void Channels::instance_changed(uint16_t id, const InstanceConfig *before,
                                const InstanceConfig *after) noexcept
{
    try {
        change(id, before, after);
    } catch (const std::bad_alloc &) {
        log::error("instance {}: no memory to follow the configuration of its controllers", id);
    }
}

void Channels::counters_reset(uint16_t instance, uint8_t controller) noexcept
{
    model_.controllers.reset_counters(instance, controller);
}

void Channels::change(uint16_t instance, const InstanceConfig *before, const InstanceConfig *after)
{
    const Controllers &former = controllers_of(before);
    const Controllers &now = controllers_of(after);
    for (const auto &[id, controller] : former) {
        if (!now.contains(id)) {
            remove(instance, id, controller);
        }
    }
    for (const auto &[id, controller] : now) {
        if (!instances_[instance].contains(id)) {
            add(instance, id);
        }
    }
    follow(instance);
    for (const auto &[id, controller] : now) {
        const auto was = former.find(id);
        if (was == former.end() || was->second != controller) {
            tell(CONTROLLER_CONFIGURED, instance, id);
        }
    }
}

void Channels::add(uint16_t instance, uint8_t id)
{
    instances_[instance].emplace(id, std::make_unique<Channel>(*this, instance, id));
}

void Channels::remove(uint16_t instance, uint8_t id, const Controller &controller)
{
    const auto members = instances_.find(instance);
    if (members == instances_.end()) {
        return;
    }
    members->second.erase(id);
    if (members->second.empty()) {
        instances_.erase(members);
    }
    model_.controllers.remove(instance, id);
    notify_controller(model_.applications, CONTROLLER_REMOVED, instance,
                      controller_record(id, controller, nullptr));
    notify_controller_status(model_.applications, model_.controllers.connected());
}

// Connects, holds or adjusts every channel of the instance as its configuration asks.
void Channels::follow(uint16_t instance, uint32_t delay_seconds)
{
    const InstanceConfig *const config = model_.instance(instance);
    const auto members = instances_.find(instance);
    if (!config || members == instances_.end()) {
        chosen_.erase(instance);
        return;
    }
    const bool single = config->connection_mode == CONNECT_SINGLE;
    const uint8_t chosen = single ? choose(instance, *config) : 0;
    for (const auto &[id, channel] : members->second) {
        std::string reason = why_held(*config, id);
        if (reason.empty() && single && id != chosen) {
            reason = fmt::format("one at a time: controller {} has its turn", chosen);
        }
        const Controller &controller = config->controllers.at(id);
        if (reason.empty()) {
            channel->follow(settings_of(*config, controller),
                            controller.role == 0 ? Role::equal : Role{controller.role},
                            delay_seconds);
        } else {
            channel->hold(std::move(reason));
        }
    }
    note_outage(instance);
}

// Where one controller is to be connected at a time: the one that has its turn, else the first.
uint8_t Channels::choose(uint16_t instance, const InstanceConfig &config)
{
    const auto turn = chosen_.find(instance);
    if (turn != chosen_.end() && config.controllers.contains(turn->second) &&
        why_held(config, turn->second).empty()) {
        return turn->second;
    }
    for (const auto &member : config.controllers) {
        if (why_held(config, member.first).empty()) {
            return chosen_[instance] = member.first;
        }
    }
    return 0;
}

void Channels::attempt_failed(uint16_t instance, uint8_t id)
{
    const InstanceConfig *const config = model_.instance(instance);
    if (!config || config->connection_mode != CONNECT_SINGLE) {
        return;
    }
    // The next one has its turn; after the last one, the first once the time has passed.
    const auto may_connect = [config](const auto &member) {
        return why_held(*config, member.first).empty();
    };
    const Controllers &all = config->controllers;
    const auto next = std::find_if(all.upper_bound(id), all.end(), may_connect);
    if (next != all.end()) {
        chosen_[instance] = next->first;
        follow(instance);
    } else {
        chosen_.erase(instance);
        follow(instance, config->reconnect_interval);
    }
}

// ---- What becomes of them

void Channels::connection_changed(uint16_t instance, uint8_t id)
{
    note_outage(instance);
    tell(CONTROLLER_CONNECTION, instance, id);
}

void Channels::note_outage(uint16_t instance)
{
    const InstanceConfig *const config = model_.instance(instance);
    InstanceChannels &channels = model_.controllers.at(instance);
    Outage outage = Outage::none;
    if (config && config->active && channels.connected() == 0) {
        outage = config->fail_mode == FAIL_STANDALONE ? Outage::standalone : Outage::secure;
    }
    if (outage == channels.outage) {
        return;
    }
    channels.outage = outage;
    switch (outage) {
    case Outage::none:
        log::info("instance {}: under the control of its controllers", instance);
        break;
    case Outage::secure:
        log::info("instance {}: no controller is connected; its rules stay as they are", instance);
        break;
    case Outage::standalone:
        log::info("instance {}: no controller is connected; it forwards by itself", instance);
        break;
    }
}

void Channels::tell(uint32_t event, uint16_t instance, uint8_t id)
{
    const InstanceConfig *const config = model_.instance(instance);
    if (!config || !config->controllers.contains(id)) {
        return;
    }
    notify_controller(
        model_.applications, event, instance,
        controller_record(id, config->controllers.at(id), model_.controllers.find(instance, id)));
    notify_controller_status(model_.applications, model_.controllers.connected());
}

} // namespace agent

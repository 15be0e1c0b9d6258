// The connections to the controllers that are configured for active instances. They follow the
// configuration; what becomes of them is told to the applications and kept in the model.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "daemon/model.h"

struct event_base;

namespace agent {

class Channels : private ConfigurationObserver {
public:
    // Connects at once to those that are configured already. Base and model outlive it. Throws
    // std::bad_alloc.
    Channels(event_base *base, Model &model);
    ~Channels() override;
    Channels(const Channels &) = delete;
    Channels &operator=(const Channels &) = delete;

private:
    class Channel;
    using Members = std::map<uint8_t, std::unique_ptr<Channel>>;

    void instance_changed(uint16_t id, const InstanceConfig *before,
                          const InstanceConfig *after) noexcept override;
    void counters_reset(uint16_t instance, uint8_t controller) noexcept override;

    void change(uint16_t instance, const InstanceConfig *before, const InstanceConfig *after);
    void add(uint16_t instance, uint8_t id);
    void remove(uint16_t instance, uint8_t id, const Controller &controller);
    void follow(uint16_t instance, uint32_t delay_seconds = 0);
    void note_outage(uint16_t instance);
    uint8_t choose(uint16_t instance, const InstanceConfig &config);
    void tell(uint32_t event, uint16_t instance, uint8_t id);

    // Called by the channels.
    void connection_changed(uint16_t instance, uint8_t id);
    void attempt_failed(uint16_t instance, uint8_t id);

    event_base *base_;
    Model &model_;
    std::map<uint16_t, Members> instances_;
    std::map<uint16_t, uint8_t> chosen_; // the one to connect where only one may be
};

} // namespace agent

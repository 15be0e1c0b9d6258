// What a connected controller asks, and what it is answered.
#pragma once

#include <array>
#include <cstdint>

#include "channel/controller_state.h"
#include "daemon/model.h"
#include "daemon/program.h"
#include "openflow/wire.h"

namespace agent {

class Conversation {
public:
    class Line {
    public:
        virtual ~Line() = default;
        virtual void send(Bytes message) = 0;
    };

    // All outlive the conversation. The instance exists while it lasts.
    Conversation(uint16_t instance, uint8_t controller, InstanceChannels &channels, Model &model,
                 Line &line)
        : instance_(instance), controller_(controller), channels_(channels), model_(model),
          line_(line)
    {}

    // A new connection: what the last one had set is forgotten.
    void begin();

    // One whole message in network order, of the right version. Answered by any number of messages.
    void answer(Bytes message);

private:
    friend struct ControllerMessages;

    ControllerState &state() { return channels_.controllers[controller_]; }

    uint16_t instance_;
    uint8_t controller_;
    InstanceChannels &channels_;
    Model &model_;
    Line &line_;
    // Kept for those who ask for them: no packet passes that they could be applied to.
    uint16_t config_flags_ = 0;
    uint16_t miss_send_length_ = 0;
    std::array<uint32_t, 6> event_masks_{};
};

} // namespace agent

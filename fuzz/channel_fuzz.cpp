// Whatever a controller says is answered or refused, and the conversation goes on.
#include <cstdint>

#include "channel/conversation.h"

namespace {

constexpr uint16_t INSTANCE = 3;

struct Sink : agent::Conversation::Line {
    void send(agent::Bytes message) override
    {
        // An answer is a whole message of its own length.
        if (message.size() < 8 || openflow::load16(&message[2]) != message.size()) {
            __builtin_trap();
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    agent::Model model;
    agent::InstanceConfig config = agent::new_instance(INSTANCE);
    config.tables.push_back({.table_id = 0, .reserved_1 = {}, .kind = 1});
    model.configuration().stage(INSTANCE, config);
    if (!model.configuration().commit()) {
        return 0;
    }
    Sink sink;
    agent::Conversation conversation(INSTANCE, 0, model.controllers.at(INSTANCE), model, sink);
    conversation.begin();
    // Messages as the connection takes them off the stream: whole, and at least a header long.
    for (size_t at = 0; size - at >= 8;) {
        const size_t announced = openflow::load16(data + at + 2);
        const size_t length = announced < 8 ? 8 : announced < size - at ? announced : size - at;
        conversation.answer({data + at, length});
        at += length;
    }
    return 0;
}

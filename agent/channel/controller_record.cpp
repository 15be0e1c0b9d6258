#include "channel/controller_record.h"

#include <cstring>
#include <numeric>

#include "events/notification.h"

namespace agent {

namespace {

uint64_t sum(const MessageCounts &counts)
{
    return std::accumulate(counts.begin(), counts.end(), uint64_t{0});
}

template <size_t Size>
void copy_text(char (&to)[Size], const std::string &text)
{
    std::memcpy(to, text.data(), std::min(text.size(), Size - 1));
}

} // namespace

OfpCtrl controller_record(uint8_t id, const Controller &controller, const ControllerState *state)
{
    const bool connected = state && state->connected();
    OfpCtrl record{};
    record.address_type = controller.address.type;
    std::memcpy(record.address, controller.address.bytes.data(), sizeof record.address);
    record.value_u32_36 = connected ? static_cast<uint32_t>(state->role) : controller.role;
    record.state = connected;
    record.port = controller.port;
    copy_text(record.text_50, controller.vrf);
    record.controller_id = id;
    copy_text(record.text_152, controller.tls_policy);
    record.event_value = static_cast<uint16_t>((connected ? EVENT_VALUE_CONNECTED : 0) | id);
    if (state) {
        record.value_u64_0 = sum(state->received);
        record.value_u64_8 = sum(state->sent);
    }
    return record;
}

} // namespace agent

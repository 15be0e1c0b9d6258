// Events by name, as text and as JSON.
#ifndef OFPCTL_VERBS_EVENT_TEXT_H
#define OFPCTL_VERBS_EVENT_TEXT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "frame/json_writer.h"
#include "ofp.h"

namespace ofpctl {

constexpr uint8_t first_app = 1;
constexpr uint8_t last_app = 11;

// The types that the agent sends and the library decodes.
constexpr uint32_t event_types[] = {OFP_EVENT_CTRL_2, OFP_EVENT_CTRL_4, OFP_EVENT_CTRL_8,
                                    OFP_EVENT_CTRL_STATUS};

// "configured"; the number of a type that has no name.
std::string event_name(uint32_t type);
// The type with this name or number; 0 when there is none.
uint32_t event_type(std::string_view word);

// An event as it was delivered.
struct Event {
    std::chrono::system_clock::time_point when;
    uint32_t type = 0;
    OfpCtrlEvent controller{}; // of the controller events
    uint32_t status = 0;       // of the status event
};

// "2026-11-21 13:15:02.123 connection instance=1 controller=0 address=127.0.0.1 connected=yes"
std::string event_line(const Event &event);
// The members of the event's document.
void write_event(JsonWriter &json, const Event &event);

} // namespace ofpctl

#endif

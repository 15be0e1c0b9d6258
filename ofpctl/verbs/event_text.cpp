#include "verbs/event_text.h"

#include <charconv>
#include <ctime>

#include <arpa/inet.h>
#include <fmt/format.h>

namespace ofpctl {

namespace {

constexpr uint16_t address_ipv4 = 2;
constexpr uint16_t connected_bit = 0x0100;

struct Name {
    uint32_t type;
    std::string_view name;
};

constexpr Name names[] = {
    {OFP_EVENT_CTRL_2, "configured"},
    {OFP_EVENT_CTRL_4, "connection"},
    {OFP_EVENT_CTRL_8, "removed"},
    {OFP_EVENT_CTRL_STATUS, "status"},
};

std::string address_text(const OfpCtrlEvent &event)
{
    char text[INET6_ADDRSTRLEN] = "";
    const int family = event.address_type == address_ipv4 ? AF_INET : AF_INET6;
    inet_ntop(family, event.address, text, sizeof text);
    return text;
}

uint8_t controller_id(const OfpCtrlEvent &event) { return static_cast<uint8_t>(event.value); }
bool is_connected(const OfpCtrlEvent &event) { return (event.value & connected_bit) != 0; }

// Date and time of day, with a letter between them, and the fraction of the second.
std::string time_text(const std::tm &time, char between, int64_t fraction, int digits)
{
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}.{:0{}}", time.tm_year + 1900,
                       time.tm_mon + 1, time.tm_mday, between, time.tm_hour, time.tm_min,
                       time.tm_sec, fraction, digits);
}

int64_t microseconds(std::chrono::system_clock::time_point when)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(when.time_since_epoch()).count() %
           1'000'000;
}

std::string local_time(std::chrono::system_clock::time_point when)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm time{};
    localtime_r(&seconds, &time);
    return time_text(time, ' ', microseconds(when) / 1000, 3);
}

std::string universal_time(std::chrono::system_clock::time_point when)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm time{};
    gmtime_r(&seconds, &time);
    return time_text(time, 'T', microseconds(when), 6) + 'Z';
}

} // namespace

std::string event_name(uint32_t type)
{
    for (const Name &row : names) {
        if (row.type == type)
            return std::string(row.name);
    }
    return fmt::format("{}", type);
}

uint32_t event_type(std::string_view word)
{
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool is_number = error == std::errc() && end == word.data() + word.size();
    for (const Name &row : names) {
        if (row.name == word || (is_number && row.type == number))
            return row.type;
    }
    return 0;
}

std::string event_line(const Event &event)
{
    const std::string begin = fmt::format("{} {}", local_time(event.when), event_name(event.type));
    if (event.type == OFP_EVENT_CTRL_STATUS)
        return fmt::format("{} connected={}", begin, event.status);
    const OfpCtrlEvent &controller = event.controller;
    return fmt::format("{} instance={} controller={} address={} connected={}", begin,
                       controller.instance_id, controller_id(controller), address_text(controller),
                       is_connected(controller) ? "yes" : "no");
}

void write_event(JsonWriter &json, const Event &event)
{
    json.text("time", universal_time(event.when));
    json.text("event", event_name(event.type));
    json.number("type", event.type);
    if (event.type == OFP_EVENT_CTRL_STATUS) {
        json.number("connected", event.status);
        return;
    }
    const OfpCtrlEvent &controller = event.controller;
    json.number("instance", controller.instance_id);
    json.number("controller", controller_id(controller));
    json.text("address", address_text(controller));
    json.flag("connected", is_connected(controller));
}

} // namespace ofpctl

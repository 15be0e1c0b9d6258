// Registered applications: app list and show.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "verbs/event_text.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

// The record by the names that the agent's answer gives its members.
struct AppInfo {
    uint8_t id = 0;
    uint64_t subscriptions = 0; // bit n: event type n
    uint64_t sent = 0;
    uint64_t waiting = 0;
    uint64_t dropped = 0;
    uint32_t process = 0;
    uint32_t age_seconds = 0;
};

// Nothing for an id that nobody is registered under.
std::optional<AppInfo> read_app(uint8_t id)
{
    OfpAppPktStats stats{};
    const uint32_t code = OFP_get_AppInfo(id, &stats);
    if (code == agent::NO_APPLICATION)
        return std::nullopt;
    require_success(code, fmt::format("application {}", id));
    return AppInfo{.id = id,
                   .subscriptions = stats.value_u64_8[0],
                   .sent = stats.value_u64_8[1],
                   .waiting = stats.value_u64_8[2],
                   .dropped = stats.value_u64_8[3],
                   .process = stats.value_u32_80,
                   .age_seconds = stats.value_u32_84};
}

std::string subscribed(const AppInfo &app)
{
    std::string text;
    for (uint32_t type = 0; type < 64; type++) {
        if ((app.subscriptions >> type & 1) != 0)
            text += fmt::format("{}{}", text.empty() ? "" : ",", event_name(type));
    }
    return text.empty() ? "none" : text;
}

void write_json(JsonWriter &json, const AppInfo &app)
{
    json.number("app", app.id);
    json.number("process", app.process);
    json.number("age", app.age_seconds);
    json.begin_array("events");
    for (uint32_t type = 0; type < 64; type++) {
        if ((app.subscriptions >> type & 1) != 0)
            json.text({}, event_name(type));
    }
    json.end();
    json.wide("sent", app.sent);
    json.wide("waiting", app.waiting);
    json.wide("dropped", app.dropped);
}

void print_apps(Context &context)
{
    require_agent();
    Output &out = context.out;
    if (out.json())
        out.document().begin_array("apps");
    else
        out.line(fmt::format("{:>3} {:>8} {:>8} {:>10} {:>8} {:>8}  {}", "APP", "PROCESS", "AGE",
                             "SENT", "WAITING", "DROPPED", "EVENTS"));
    for (uint8_t id = first_app; id <= last_app; id++) {
        check_interrupt();
        const std::optional<AppInfo> app = read_app(id);
        if (!app)
            continue;
        if (out.json()) {
            out.document().begin_object();
            write_json(out.document(), *app);
            out.document().end();
        } else {
            out.line(fmt::format("{:>3} {:>8} {:>8} {:>10} {:>8} {:>8}  {}", app->id, app->process,
                                 fmt::format("{}s", app->age_seconds), app->sent, app->waiting,
                                 app->dropped, subscribed(*app)));
        }
    }
}

void print_app(Context &context)
{
    const auto id = static_cast<uint8_t>(
        require_number("ID", context.arguments.operands().front(), first_app, last_app));
    require_agent();
    const std::optional<AppInfo> app = read_app(id);
    if (!app)
        throw Failure{.status = status_missing,
                      .code = agent::NO_APPLICATION,
                      .message =
                          fmt::format("application {}: nobody is registered under this id", id)};
    if (context.out.json()) {
        write_json(context.out.document(), *app);
        return;
    }
    context.out.line(fmt::format("application     {}", app->id));
    context.out.line(fmt::format("process         {}", app->process));
    context.out.line(fmt::format("registered for  {}s", app->age_seconds));
    context.out.line(fmt::format("subscribed to   {}", subscribed(*app)));
    context.out.line(fmt::format("events sent     {}", app->sent));
    context.out.line(fmt::format("events waiting  {}", app->waiting));
    context.out.line(fmt::format("events dropped  {}", app->dropped));
}

void list_apps(Context &context) { watch(context, print_apps); }
void show_app(Context &context) { watch(context, print_app); }

constexpr OptionRow options[] = {watch_option, rounds_option};

constexpr Example list_examples[] = {
    {"ofpctl app list", "Lists who is registered and what became of their events"},
};
constexpr Example show_examples[] = {
    {"ofpctl app show 3", "The same of one application"},
};

constexpr Verb rows[] = {
    {.name = "list",
     .run = list_apps,
     .help = "Lists the registered applications and their events.",
     .details = "Waiting are events that an application has not read yet; the agent drops further "
                "ones when 8192 wait.",
     .options = options,
     .examples = list_examples},
    {.name = "show",
     .run = show_app,
     .help = "Shows one application.",
     .operands = {"ID", Kind::number, 1, 1, first_app, last_app},
     .options = options,
     .examples = show_examples},
};

} // namespace

const std::span<const Verb> app_verbs = rows;

} // namespace ofpctl

#include <cstdint>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/rule_store.h"
#include "verbs/smooth_marker.h"

namespace ofpctl {

namespace {

struct Period {
    uint16_t client;
    uint32_t id;
};

Period period_of(const Context &context)
{
    return {static_cast<uint16_t>(context.arguments.number("client")),
            context.arguments.number("id")};
}

std::string name_of(const Period &period)
{
    return fmt::format("smooth period {} of client {}", period.id, period.client);
}

void require_success_of(const Period &period, uint32_t code)
{
    require_success(code, name_of(period));
}

void start(Context &context)
{
    const Period period = period_of(context);
    const uint32_t mode = context.arguments.number("mode");
    require_agent();
    const SmoothMarker now = marker_of_running_agent(mode);
    const std::optional<SmoothMarker> noted = read_marker(period.client, period.id);
    if (noted && same_agent(*noted, now) && noted->mode != mode)
        throw Failure{.message =
                          fmt::format("{} is open with mode {}", name_of(period), noted->mode)};

    // Noted only once it is open: to end one that the agent does not know would remove every rule.
    require_success_of(period, OFP_SmoothStart(period.client, period.id, mode));
    write_marker(period.client, period.id, now);
    if (context.out.json()) {
        JsonWriter &json = context.out.document();
        json.number("client", period.client);
        json.number("id", period.id);
        json.number("mode", mode);
    } else {
        context.out.line(fmt::format("{} open", name_of(period)));
    }
}

SmoothMarker require_open(const Period &period)
{
    const std::optional<SmoothMarker> noted = read_marker(period.client, period.id);
    const std::string remedy =
        fmt::format("nothing was sent; begin with: ofpctl smooth start --client {} --id {}",
                    period.client, period.id);
    if (!noted)
        throw Failure{.status = status_missing,
                      .message = fmt::format("{} was not started; {}", name_of(period), remedy)};
    if (!same_agent(*noted, marker_of_running_agent(noted->mode)))
        throw Failure{.status = status_missing,
                      .message = fmt::format("{} was started with another agent process, {}, and "
                                             "ended with it; {}",
                                             name_of(period), noted->agent, remedy)};
    return *noted;
}

void end(Context &context)
{
    const Period period = period_of(context);
    require_agent();
    const SmoothMarker noted = require_open(period);
    // This process has to join the period before it may end it; for the agent nothing changes.
    require_success_of(period, OFP_SmoothStart(period.client, period.id, noted.mode));
    const uint32_t before = count_rules(period.client);
    // For the same reason the note goes first.
    remove_marker(period.client, period.id);
    require_success_of(period, OFP_SmoothEnd(period.client));
    const uint32_t after = count_rules(period.client);
    if (context.out.json()) {
        JsonWriter &json = context.out.document();
        json.number("client", period.client);
        json.number("id", period.id);
        json.number("rules_before", before);
        json.number("rules_after", after);
    } else {
        context.out.line(
            fmt::format("{} ended: {} rules before, {} after", name_of(period), before, after));
    }
}

constexpr OptionRow id_option{.name = "id",
                              .kind = Kind::number,
                              .value = "N",
                              .help = "the period; 0 is that of the other commands",
                              .fallback = "1",
                              .least = 1,
                              .most = UINT32_MAX - 1};

constexpr OptionRow start_options[] = {
    id_option,
    {.name = "mode",
     .kind = Kind::word,
     .value = "MODE",
     .help = "passed on to the agent",
     .fallback = "0",
     .words = "0|1"},
    client_option,
};
constexpr OptionRow end_options[] = {id_option, client_option};

constexpr Example start_examples[] = {
    {"ofpctl smooth start", "From here on every rule is to be programmed again"},
    {"ofpctl smooth start --id 7 --client 4097", "Another period, of another client"},
};
constexpr Example end_examples[] = {
    {"ofpctl smooth end", "Removes the rules not programmed since \"smooth start\""},
};

constexpr Verb rows[] = {
    {.name = "start",
     .run = start,
     .help = "Opens a smooth period: the client programs its rules again.",
     .details = "Rules stay as they are until the period ends; then those that were not programmed "
                "again are removed. Several periods may be open, each with its id. Opening an open "
                "one changes nothing.",
     .options = start_options,
     .examples = start_examples},
    {.name = "end",
     .run = end,
     .help = "Ends a smooth period: rules not programmed since it began are removed.",
     .details = "The period must have been opened with \"smooth start\" and the agent must not "
                "have been restarted since; otherwise nothing is sent and the exit status is 5.",
     .options = end_options,
     .examples = end_examples},
};

} // namespace

const std::span<const Verb> smooth_verbs = rows;

} // namespace ofpctl

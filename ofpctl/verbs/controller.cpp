#include <optional>
#include <vector>

#include <fmt/format.h>

#include "frame/context.h"
#include "frame/failure.h"
#include "ofp.h"
#include "option/assignment.h"
#include "option/record_option.h"
#include "verbs/change.h"
#include "verbs/controller_verbs.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

constexpr uint16_t operation_set = 1;
constexpr uint16_t operation_remove = 0;
constexpr uint32_t last_controller = 63;

struct Key {
    uint16_t instance;
    uint8_t controller;
    std::optional<uint8_t> auxiliary;
};

Key key_of(const Context &context)
{
    const Words &operands = context.arguments.operands();
    Key key{static_cast<uint16_t>(require_number("INSTANCE", operands[0], 1, UINT16_MAX)),
            static_cast<uint8_t>(require_number("CONTROLLER", operands[1], 0, last_controller)),
            std::nullopt};
    if (context.arguments.given("aux"))
        key.auxiliary = static_cast<uint8_t>(context.arguments.number("aux"));
    return key;
}

std::string name_of(const Key &key)
{
    std::string name = fmt::format("controller {} of instance {}", key.controller, key.instance);
    if (key.auxiliary)
        name = fmt::format("auxiliary connection {} to {}", *key.auxiliary, name);
    return name;
}

std::vector<Assignment> assignments_of(const Context &context, const Key &key)
{
    const auto words = std::span(context.arguments.operands()).subspan(2);
    return parse_assignments(words, key.auxiliary ? auxiliary_settings() : controller_settings());
}

OfpAuxCfg auxiliary_record(const Key &key, std::span<const Assignment> settings)
{
    OfpAuxCfg record{};
    record.instance_id = key.instance;
    record.controller_id = key.controller;
    record.aux_id = *key.auxiliary;
    for (const Assignment &setting : settings)
        option_of(auxiliary_options(), *setting.row).put(record, setting.value);
    return record;
}

uint32_t send(const Key &key, std::span<const Assignment> settings, uint16_t operation)
{
    if (key.auxiliary) {
        const OfpAuxCfg auxiliary = auxiliary_record(key, settings);
        return OFP_set_AuxCfg(&auxiliary, operation);
    }
    const OfpCtrlCfg controller = controller_record(key.instance, key.controller, settings);
    return OFP_set_CtrlCfg(&controller, operation);
}

void require_address(std::span<const Assignment> settings)
{
    for (const Assignment &setting : settings) {
        if (setting.row->form == ValueForm::address)
            return;
    }
    throw usage_failure("address is missing: address=ADDRESS");
}

void report(Context &context, const Key &key, std::string_view done)
{
    if (!context.out.json()) {
        context.out.line(fmt::format("{} {}{}", name_of(key), done, verified(context)));
        return;
    }
    context.out.document().number("instance", key.instance);
    context.out.document().number("controller", key.controller);
    if (key.auxiliary)
        context.out.document().number("auxiliary", *key.auxiliary);
}

void set_controller(Context &context)
{
    const Key key = key_of(context);
    const std::vector<Assignment> settings = assignments_of(context, key);
    if (!key.auxiliary)
        require_address(settings);
    const auto holds = [&] {
        return key.auxiliary ? reports(auxiliary_record(key, settings))
                             : reports(controller_record(key.instance, key.controller, settings));
    };
    if (act(context, {.doing = name_of(key),
                      .send = [&] { return send(key, settings, operation_set); },
                      .holds = holds}))
        report(context, key, "set");
}

void delete_controller(Context &context)
{
    const Key key = key_of(context);
    const auto holds = [&] {
        return key.auxiliary ? !has_auxiliary(key.instance, key.controller, *key.auxiliary)
                             : !has_controller(key.instance, key.controller);
    };
    if (act(context, {.doing = name_of(key),
                      .send = [&] { return send(key, {}, operation_remove); },
                      .holds = holds}))
        report(context, key, "deleted");
}

void reset_counters(Context &context)
{
    const Words &operands = context.arguments.operands();
    const auto instance =
        static_cast<uint16_t>(require_number("INSTANCE", operands[0], 1, UINT16_MAX));
    const bool all = operands[1] == "all";
    const auto controller = static_cast<uint8_t>(
        all ? OFP_ALL_CONTROLLERS : require_number("CONTROLLER", operands[1], 0, last_controller));
    const Key key{instance, controller, std::nullopt};
    const std::string name =
        all ? fmt::format("controllers of instance {}", instance) : name_of(key);
    if (!act(context, {.doing = name,
                       .send = [=] { return OFP_set_ResetCtrlStat(instance, controller); },
                       .holds = {}}))
        return;
    if (context.out.json())
        context.out.document().number("instance", instance);
    else
        context.out.line(fmt::format("{}: counters reset", name));
}

constexpr OptionRow options[] = {
    {.name = "aux",
     .kind = Kind::number,
     .value = "ID",
     .help = "an auxiliary connection of the controller",
     .least = 1,
     .most = 255},
    dry_run_option,
    verify_option,
};
constexpr OptionRow reset_options[] = {dry_run_option};

constexpr OptionRow show_options[] = {watch_option, rounds_option};

constexpr Example list_examples[] = {
    {"ofpctl controller list 1", "The controllers of instance 1"},
};
constexpr Example show_examples[] = {
    {"ofpctl controller show 1 0", "Controller 0, its auxiliary connections and its counters"},
};
constexpr Example set_examples[] = {
    {"ofpctl controller set 1 0 address=192.0.2.1 port=6653 role=master",
     "Controller 0 of instance 1"},
    {"ofpctl controller set --aux 1 1 0 address=192.0.2.1 port=6654",
     "An auxiliary connection to it"},
};
constexpr Example reset_examples[] = {
    {"ofpctl controller reset 1 all", "The counters of all controllers of instance 1 begin at 0"},
};
constexpr Example delete_examples[] = {
    {"ofpctl controller del --aux 1 1 0", "Removes its auxiliary connection"},
    {"ofpctl controller del 1 0", "Removes controller 0 of instance 1"},
};

constexpr Verb rows[] = {
    {.name = "set",
     .run = set_controller,
     .help = "Sets a controller of an instance, or an auxiliary connection to it.",
     .details = "Controller ids are 0 to 63. A controller is sent as a whole: what is not named "
                "is as if it had never been set. An "
                "auxiliary connection without address or port has its controller's; role and TLS "
                "policy are not its own.",
     .operands = {"INSTANCE CONTROLLER NAME=VALUE...", Kind::text, 3, any_number},
     .options = options,
     .examples = set_examples,
     .settings = controller_settings},
    {.name = "list",
     .run = list_controllers,
     .help = "Lists the controllers of an instance and whether they are connected.",
     .operands = {"INSTANCE", Kind::number, 1, 1, 1, UINT16_MAX},
     .options = show_options,
     .examples = list_examples},
    {.name = "show",
     .run = show_controller,
     .help = "Shows a controller with its auxiliary connections and counters.",
     .details = "The counters go by the names of the record's members: their meaning is the "
                "agent's.",
     .operands = {"INSTANCE CONTROLLER", Kind::text, 2, 2},
     .options = show_options,
     .examples = show_examples},
    {.name = "reset",
     .run = reset_counters,
     .help = "Sets the counters of a controller, or of all of an instance, back to zero.",
     .details = "The agent does not answer this request: what is told is that it was sent.",
     .operands = {"INSTANCE CONTROLLER|all", Kind::text, 2, 2},
     .options = reset_options,
     .examples = reset_examples},
    {.name = "del",
     .run = delete_controller,
     .help = "Deletes a controller of an instance, or an auxiliary connection to it.",
     .operands = {"INSTANCE CONTROLLER", Kind::text, 2, 2},
     .options = options,
     .examples = delete_examples},
};

} // namespace

const std::span<const Verb> controller_verbs = rows;

} // namespace ofpctl

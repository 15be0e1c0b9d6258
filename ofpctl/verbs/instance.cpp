#include "verbs/instance.h"

#include <optional>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "ofp.h"
#include "option/instance_option.h"
#include "verbs/change.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

uint16_t instance_operand(const Context &context)
{
    return static_cast<uint16_t>(
        require_number("ID", context.arguments.operands().front(), 1, UINT16_MAX));
}

std::string instance_name(uint16_t id) { return fmt::format("instance {}", id); }

Change instance_change(uint16_t id, const InstanceOption &option, const Value &value,
                       const InstanceRecord &record)
{
    Change change{.what = change_text(instance_name(id), option.row, value),
                  .row = &option.row,
                  .value = value,
                  .send = [id, &option, value] { return option.set(id, value); },
                  .read = {}};
    if (option.configured != nullptr)
        change.read = [&option, &record] { return option.configured(record); };
    return change;
}

namespace {

void print_done(Context &context, uint16_t id, std::string_view done)
{
    if (context.out.json())
        context.out.document().number("instance", id);
    else
        context.out.line(fmt::format("instance {} {}{}", id, done, verified(context)));
}

// send and holds take the id.
template <class Send, class Holds>
void change_instance(Context &context, std::string_view done, Send send, Holds holds)
{
    const uint16_t id = instance_operand(context);
    if (act(context, {.doing = instance_name(id),
                      .send = [=] { return send(id); },
                      .holds = [=] { return holds(id); }}))
        print_done(context, id, done);
}

bool exists(uint16_t id) { return OFP_get_IsInstanceExist(id) == 1; }

bool reads_active(uint16_t id)
{
    uint32_t active = 0;
    require_success(OFP_get_InstActive(id, &active), instance_name(id));
    return (active & UINT16_MAX) == 1;
}

void add_instance(Context &context)
{
    change_instance(
        context, "added", [](uint16_t id) { return OFP_AddInstance(id); }, exists);
}

void delete_instance(Context &context)
{
    constexpr uint16_t remove = 0;
    change_instance(
        context, "deleted", [](uint16_t id) { return OFP_set_Instance(remove, id, 0); },
        [](uint16_t id) { return !exists(id); });
}

void activate_instance(Context &context)
{
    constexpr uint16_t activate = 1;
    change_instance(
        context, "activated", [](uint16_t id) { return OFP_set_ActiveInst(id, activate); },
        reads_active);
}

void deactivate_instance(Context &context)
{
    constexpr uint16_t deactivate = 0;
    change_instance(
        context, "deactivated", [](uint16_t id) { return OFP_set_ActiveInst(id, deactivate); },
        [](uint16_t id) { return !reads_active(id); });
}

void set_instance(Context &context)
{
    const uint16_t id = instance_operand(context);
    const auto words = std::span(context.arguments.operands()).subspan(1);
    InstanceRecord record;
    Changes changes{.all = {}, .refresh = [&] { record.read(id); }};
    for (const Assignment &assignment : parse_assignments(words, instance_settings()))
        changes.all.push_back(instance_change(id, option_of(instance_options(), *assignment.row),
                                              assignment.value, record));
    if (context.out.json())
        context.out.document().number("instance", id);
    perform(context, changes);
}

// ---- list

std::optional<uint16_t> next_instance(uint16_t id)
{
    OfpInstanceID next{.instance_id = id, .reserved_2 = {}};
    const uint32_t code = OFP_get_NextInstance(id, &next);
    if (code == agent::NO_NEXT)
        return std::nullopt;
    require_success(code, "instances");
    // Ids ascend: an agent that goes back would be asked for ever.
    if (next.instance_id <= id)
        throw Failure{
            .message = fmt::format("the agent lists instance {} after {}", next.instance_id, id)};
    return next.instance_id;
}

void print_instance(Output &out, uint16_t id)
{
    const bool active = reads_active(id);
    if (!out.json()) {
        out.line(fmt::format("{:>8} {}", id, active ? "active" : "inactive"));
        return;
    }
    out.document().begin_object();
    out.document().number("instance", id);
    out.document().flag("active", active);
    out.document().end();
    out.settle();
}

void print_instances(Context &context)
{
    require_agent();
    Output &out = context.out;
    if (out.json())
        out.document().begin_array("instances");
    else
        out.line(fmt::format("{:>8} {}", "INSTANCE", "STATE"));
    for (std::optional<uint16_t> id = next_instance(0); id; id = next_instance(*id)) {
        check_interrupt();
        print_instance(out, *id);
    }
    if (out.json())
        out.document().end();
}

void list_instances(Context &context) { watch(context, print_instances); }

constexpr Operands one_id{"ID", Kind::number, 1, 1, 1, UINT16_MAX};
constexpr OptionRow action_options[] = {dry_run_option, verify_option};
constexpr OptionRow show_options[] = {watch_option, rounds_option};

constexpr Example add_examples[] = {
    {"ofpctl instance add 1", "Creates instance 1 with its default flow tables"},
};
constexpr Example set_examples[] = {
    {"ofpctl instance set 1 echo-interval=5 fail-open=secure", "Sets two options of instance 1"},
    {"ofpctl instance set --verify 1 datapath-id=0x1 flow-tables=10:2,11:2",
     "Sets two more and compares what the agent then reports"},
    {"ofpctl instance set --dry-run 1 management-vlans=1-10,20",
     "Shows the datagram that would be sent"},
};
constexpr Example list_examples[] = {
    {"ofpctl instance list", "The ids of all instances and whether they are active"},
};
constexpr Example show_examples[] = {
    {"ofpctl instance show 1", "What is configured of instance 1, and how it runs"},
};
constexpr Example apply_examples[] = {
    {"ofpctl instance apply edge.toml", "Makes the instance what the file says"},
    {"ofpctl instance apply --dry-run edge.toml",
     "Shows the difference and the datagrams that would be sent"},
};
constexpr Example activate_examples[] = {
    {"ofpctl instance activate 1", "Instance 1 goes to work with what is configured"},
};
constexpr Example deactivate_examples[] = {
    {"ofpctl instance deactivate 1", "Instance 1 keeps its configuration and rests"},
};
constexpr Example delete_examples[] = {
    {"ofpctl instance del 1", "Removes instance 1 and all that was configured of it"},
};

constexpr Verb rows[] = {
    {.name = "add",
     .run = add_instance,
     .help = "Creates an instance with its default flow tables.",
     .details = "The tables are 10, 11, 20, 21 and 30; instance 4101 has table 0 alone.",
     .operands = one_id,
     .options = action_options,
     .examples = add_examples},
    {.name = "set",
     .run = set_instance,
     .help = "Sets options of an instance.",
     .details = "Each is a request of its own: one that is refused does not undo the others.",
     .operands = {"ID NAME=VALUE...", Kind::text, 2, any_number},
     .options = action_options,
     .examples = set_examples,
     .settings = instance_settings},
    {.name = "apply",
     .run = apply_instance,
     .help = "Makes an instance what a file says.",
     .details = "The file is TOML or JSON: instance is its id, active is true or false, "
                "controller is a list of tables with id and the settings of \"controller set\", "
                "ports is a list of names; everything else is an option of \"instance set\". What "
                "the file does not say stays. The difference is printed first. When anything in "
                "the file is wrong, every error is told with its place and nothing is sent.",
     .operands = {"FILE", Kind::file, 1, 1},
     .options = action_options,
     .examples = apply_examples},
    {.name = "show",
     .run = show_instance,
     .help = "Shows what is configured of an instance and how it runs.",
     .operands = one_id,
     .options = show_options,
     .examples = show_examples},
    {.name = "list",
     .run = list_instances,
     .help = "Lists the instances.",
     .options = show_options,
     .examples = list_examples},
    {.name = "activate",
     .run = activate_instance,
     .help = "Activates an instance.",
     .operands = one_id,
     .options = action_options,
     .examples = activate_examples},
    {.name = "deactivate",
     .run = deactivate_instance,
     .help = "Deactivates an instance.",
     .operands = one_id,
     .options = action_options,
     .examples = deactivate_examples},
    {.name = "del",
     .run = delete_instance,
     .help = "Deletes an instance.",
     .operands = one_id,
     .options = action_options,
     .examples = delete_examples},
};

} // namespace

const std::span<const Verb> instance_verbs = rows;

} // namespace ofpctl

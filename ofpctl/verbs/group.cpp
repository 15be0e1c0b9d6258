#include <cstdint>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "flow/flow_reader.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/interrupt.h"
#include "frame/message.h"
#include "frame/words.h"
#include "verbs/flow_program.h"
#include "verbs/group_text.h"
#include "verbs/group_verbs.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

uint16_t client_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("client"));
}

std::vector<Group> read_groups(const Context &context)
{
    std::vector<Group> groups;
    std::size_t wrong = 0;
    const Words &operands = context.arguments.operands();
    for (std::size_t i = 0; i < operands.size(); i++) {
        auto parsed = parse_group(operands[i]);
        if (auto *group = std::get_if<Group>(&parsed)) {
            groups.push_back(std::move(*group));
            continue;
        }
        wrong++;
        remark(render({.file = fmt::format("argument {}", i + 1),
                       .line = 1,
                       .what = std::get<TextError>(parsed),
                       .text = operands[i]}));
    }
    if (wrong > 0)
        throw usage_failure(
            fmt::format("{} in the groups; nothing was sent", counted(wrong, "error")));
    return groups;
}

// What became of each group: the first failure ends the command, as the rest may build on it.
void print_done(Output &out, std::string_view what, const std::vector<uint32_t> &ids)
{
    if (!out.json()) {
        for (const uint32_t id : ids)
            out.line(fmt::format("group {} {}", id, what));
        return;
    }
    out.document().text("done", what);
    out.document().begin_array("groups");
    for (const uint32_t id : ids)
        out.document().number({}, id);
    out.document().end();
}

// A group is answered by a barrier alone or, refused, by something before it; the library keeps no
// more of it than that.
void require_taken(uint32_t code, uint32_t id, std::string_view usual)
{
    if (code == 0)
        return;
    Failure failure = call_failure(code, fmt::format("group {}", id));
    if (failure.status == status_failed)
        failure.message =
            fmt::format("group {}: refused; the agent's log has the reason. {}", id, usual);
    throw failure;
}

template <class Send>
void send_each(Context &context, std::string_view what, const std::vector<uint32_t> &ids, Send send)
{
    std::vector<uint32_t> done;
    if (!context.arguments.given("dry-run")) {
        require_agent();
        join_period(client_of(context));
    }
    try {
        for (std::size_t i = 0; i < ids.size(); i++) {
            check_interrupt();
            if (!context.arguments.given("dry-run"))
                send(i);
            done.push_back(ids[i]);
        }
    } catch (const Failure &) {
        print_done(context.out, what, done);
        throw;
    }
    print_done(context.out, context.arguments.given("dry-run") ? "would be sent" : what, done);
}

void add_groups(Context &context)
{
    const std::vector<Group> groups = read_groups(context);
    std::vector<uint32_t> ids;
    for (const Group &group : groups)
        ids.push_back(group.id);
    send_each(context, "added", ids, [&](std::size_t i) {
        const Group &group = groups[i];
        const uint32_t code =
            OFP_SetGroup(client_of(context), group.id, static_cast<uint32_t>(group.type),
                         static_cast<uint32_t>(group.ports.size()), group.ports.data());
        require_taken(code, group.id, "Most often the group exists already.");
    });
}

void delete_groups(Context &context)
{
    std::vector<uint32_t> ids;
    for (const std::string &operand : context.arguments.operands())
        ids.push_back(require_number("ID", operand, 0, last_group));
    send_each(context, "deleted", ids, [&](std::size_t i) {
        require_taken(OFP_DelGroup(client_of(context), ids[i]), ids[i], "");
    });
}

constexpr OptionRow options[] = {client_option, dry_run_option};

constexpr OptionRow show_options[] = {owner_option, watch_option, rounds_option};

constexpr Example list_examples[] = {
    {"ofpctl group list", "The groups of client 4096 and what they counted"},
};
constexpr Example show_examples[] = {
    {"ofpctl group show 7", "Group 7 as it would be added, its counters, the rules that use it"},
};
constexpr Example add_examples[] = {
    {"ofpctl group add 'group_id=7,type=all,bucket=output:1,bucket=output:2'",
     "A group that copies packets to ports 1 and 2"},
    {"ofpctl group add 'group_id=8,type=ff,bucket=output:3,bucket=output:4'",
     "Port 3 as long as it is up, then port 4"},
};
constexpr Example delete_examples[] = {
    {"ofpctl group del 7 8", "Deletes groups 7 and 8 and the rules that use them"},
};

constexpr Verb rows[] = {
    {.name = "add",
     .run = add_groups,
     .help = "Adds groups of output ports.",
     .details =
         "A group is group_id=ID,type=all|ff and a bucket=output:PORT for each port, at most "
         "254. A bucket watches its own port. The library passes on that a group was "
         "refused, not why.",
     .operands = {"GROUP...", Kind::text, 1, any_number},
     .options = options,
     .examples = add_examples},
    {.name = "list",
     .run = list_groups,
     .help = "Lists an instance's groups.",
     .options = show_options,
     .examples = list_examples},
    {.name = "show",
     .run = show_group,
     .help = "Shows a group.",
     .operands = {"ID", Kind::number, 1, 1, 0, last_group},
     .options = show_options,
     .examples = show_examples},
    {.name = "del",
     .run = delete_groups,
     .help = "Deletes groups.",
     .details = "To delete a group that does not exist is no error.",
     .operands = {"ID...", Kind::number, 1, any_number, 0, last_group},
     .options = options,
     .examples = delete_examples},
};

} // namespace

const std::span<const Verb> group_verbs = rows;

} // namespace ofpctl

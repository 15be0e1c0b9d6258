// flow add, mod, load and del.
#include <cstdint>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/words.h"
#include "verbs/flow_async.h"
#include "verbs/flow_input.h"
#include "verbs/flow_program.h"
#include "verbs/flow_report.h"
#include "verbs/flow_verbs.h"
#include "verbs/rule_store.h"

namespace ofpctl {

namespace {

uint16_t client_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("client"));
}

ReportedRules reported(const FlowInput &input)
{
    return {input.rules.items(), [&input](std::size_t index) { return input.where(index); }};
}

void print_dry_run(Context &context, const FlowInput &input)
{
    Output &out = context.out;
    const std::size_t datagrams = count_datagrams(input.rules.items());
    if (out.json()) {
        out.document().number("rules", static_cast<int64_t>(input.rules.size()));
        out.document().number("datagrams", static_cast<int64_t>(datagrams));
        return;
    }
    if (context.verbose()) {
        for (const OfpFlowItem &rule : input.rules.items())
            out.line(format_flow(rule));
    }
    out.line(fmt::format("would send {} in {}", counted(input.rules.size(), "rule"),
                         counted(datagrams, "datagram")));
}

// Tells what became of the rules that program, called with the client, has sent.
template <class Program>
void send(Context &context, const FlowInput &input, Program program)
{
    if (context.arguments.given("dry-run")) {
        print_dry_run(context, input);
        return;
    }
    const uint16_t client = client_of(context);
    require_agent();
    join_period(client);
    const Report report = program(client);
    print_results(context, reported(input), report);
    print_summary(context, report);
    require_accepted(reported(input), report);
}

void program(Context &context, Command command, const FlowInput &input)
{
    send(context, input,
         [&](uint16_t client) { return program_rules(client, command, input.rules.items()); });
}

// A deletion is answered, but not with what it removed: that shows in the number of rules.
void remove(Context &context, Command command, const FlowInput &input)
{
    const uint16_t client = client_of(context);
    require_agent();
    join_period(client);
    const uint32_t before = count_rules(client);
    const Report report = program_rules(client, command, input.rules.items());
    if (report.stopped) {
        print_results(context, reported(input), report);
        print_summary(context, report);
        throw *report.stopped;
    }
    const uint32_t after = count_rules(client);
    const uint32_t removed = before > after ? before - after : 0;
    if (context.out.json()) {
        context.out.document().number("removed", removed);
        context.out.document().number("left", after);
    } else {
        context.out.line(fmt::format("removed {}, left {}", removed, after));
    }
}

} // namespace

void flow_add(Context &context)
{
    program(context, Command::add, read_flow_operands(context, ParseMode::program));
}

void flow_modify(Context &context)
{
    program(context, Command::modify, read_flow_operands(context, ParseMode::program));
}

void flow_load(Context &context)
{
    if (!context.arguments.given("async")) {
        if (context.arguments.given("window"))
            throw usage_failure("--window goes with --async");
        program(context, Command::add, read_flow_files(context));
        return;
    }
    const uint32_t window = context.arguments.number("window");
    const FlowInput input = read_flow_files(context);
    send(context, input,
         [&](uint16_t client) { return add_rules_async(client, input.rules.items(), window); });
}

void flow_delete(Context &context)
{
    const bool strict = context.arguments.given("strict");
    const FlowInput input = read_flow_operands(context, ParseMode::select);
    if (context.arguments.given("dry-run"))
        print_dry_run(context, input);
    else
        remove(context, strict ? Command::remove_strict : Command::remove, input);
}

} // namespace ofpctl

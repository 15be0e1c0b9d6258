// flow diff and replace: a file against what the agent holds.
#include <cstdint>
#include <iterator>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "flow/flow_identity.h"
#include "flow/flow_json.h"
#include "flow/flow_text.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "verbs/flow_input.h"
#include "verbs/flow_program.h"
#include "verbs/flow_report.h"
#include "verbs/flow_verbs.h"
#include "verbs/rule_store.h"

namespace ofpctl {

namespace {

using RuleIndex = std::unordered_map<const OfpFlowItem *, std::size_t, RuleHash, RuleEqual>;

struct Difference {
    struct Change {
        std::size_t stored;
        std::size_t wanted;
    };
    std::vector<StoredRule> stored;
    std::vector<std::size_t> removed; // of stored
    std::vector<Change> changed;      // the same rule with other actions
    std::vector<std::size_t> added;   // of the input
    std::size_t unchanged = 0;

    bool none() const { return removed.empty() && changed.empty() && added.empty(); }
};

// A switch holds a rule once; which of two the file means only its author knows.
void require_distinct(const FlowInput &input)
{
    RuleIndex seen;
    const auto items = input.rules.items();
    for (std::size_t i = 0; i < items.size(); i++) {
        const auto [known, fresh] = seen.try_emplace(&items[i], i);
        if (!fresh)
            throw usage_failure(fmt::format("{}: the match and priority of {} again; one of the "
                                            "two has to go",
                                            input.where(i), input.where(known->second)));
    }
}

Difference compare(uint16_t client, const FlowInput &input)
{
    Difference difference;
    std::vector<StoredRule> &stored = difference.stored;
    each_rule(client, [&](StoredRule rule) { stored.push_back(std::move(rule)); });
    RuleIndex index;
    for (std::size_t i = 0; i < stored.size(); i++)
        index.try_emplace(stored[i].item.get(), i);

    std::vector<bool> kept(stored.size());
    const auto items = input.rules.items();
    for (std::size_t i = 0; i < items.size(); i++) {
        const auto found = index.find(&items[i]);
        if (found == index.end()) {
            difference.added.push_back(i);
            continue;
        }
        kept[found->second] = true;
        if (same_actions(*stored[found->second].item, items[i]))
            difference.unchanged++;
        else
            difference.changed.push_back({found->second, i});
    }
    for (std::size_t i = 0; i < stored.size(); i++) {
        if (!kept[i])
            difference.removed.push_back(i);
    }
    return difference;
}

uint16_t client_of(const Context &context)
{
    return static_cast<uint16_t>(context.arguments.number("client"));
}

Difference compare(const Context &context, const FlowInput &input)
{
    require_distinct(input);
    require_agent();
    return compare(client_of(context), input);
}

void print_text(Output &out, const Difference &difference, const FlowInput &input)
{
    const auto items = input.rules.items();
    for (const std::size_t i : difference.removed)
        out.line("-" + format_flow(*difference.stored[i].item));
    for (const auto &[stored, wanted] : difference.changed)
        out.line(fmt::format("~{} # was {}", format_flow(items[wanted]),
                             format_actions(*difference.stored[stored].item)));
    for (const std::size_t i : difference.added)
        out.line("+" + format_flow(items[i]));
}

void print_json(Output &out, const Difference &difference, const FlowInput &input)
{
    const auto items = input.rules.items();
    JsonWriter &json = out.document();
    json.flag("equal", difference.none());
    json.begin_array("removed");
    for (const std::size_t i : difference.removed) {
        json.raw({}, flow_to_json(*difference.stored[i].item));
        out.settle();
    }
    json.end();
    json.begin_array("changed");
    for (const auto &[stored, wanted] : difference.changed) {
        json.begin_object();
        json.raw("from", flow_to_json(*difference.stored[stored].item));
        json.raw("to", flow_to_json(items[wanted]));
        json.end();
        out.settle();
    }
    json.end();
    json.begin_array("added");
    for (const std::size_t i : difference.added) {
        json.raw({}, flow_to_json(items[i]));
        out.settle();
    }
    json.end();
}

void print(Output &out, const Difference &difference, const FlowInput &input)
{
    if (out.json())
        print_json(out, difference, input);
    else
        print_text(out, difference, input);
}

// ---- Replacing ----

// The records of several rules side by side, as the library takes them; what they point at stays
// with its owner.
struct Stage {
    Command command;
    std::vector<OfpFlowItem> rules;
    std::vector<std::string> places;
};

// Deletions come first: what is added may overlap what has to go.
std::vector<Stage> stages_of(const Difference &difference, const FlowInput &input)
{
    const auto items = input.rules.items();
    std::vector<Stage> stages{
        {Command::remove_strict, {}, {}}, {Command::modify, {}, {}}, {Command::add, {}, {}}};
    for (const std::size_t i : difference.removed) {
        stages[0].rules.push_back(*difference.stored[i].item);
        stages[0].places.push_back(fmt::format("rule {}", difference.stored[i].id));
    }
    for (const auto &[stored, wanted] : difference.changed) {
        stages[1].rules.push_back(items[wanted]);
        stages[1].places.push_back(input.where(wanted));
    }
    for (const std::size_t i : difference.added) {
        stages[2].rules.push_back(items[i]);
        stages[2].places.push_back(input.where(i));
    }
    return stages;
}

Report run_stages(uint16_t client, const std::vector<Stage> &stages)
{
    Report all;
    for (const Stage &stage : stages) {
        Report report{.results = std::vector<RuleResult>(stage.rules.size())};
        if (!all.stopped)
            report = program_rules(client, stage.command, stage.rules);
        all.results.insert(all.results.end(), report.results.begin(), report.results.end());
        if (!all.stopped)
            all.stopped = std::move(report.stopped);
    }
    return all;
}

void print_counts(Output &out, const Difference &difference)
{
    if (out.json()) {
        JsonWriter &json = out.document();
        json.number("unchanged", static_cast<int64_t>(difference.unchanged));
        json.number("to_remove", static_cast<int64_t>(difference.removed.size()));
        json.number("to_change", static_cast<int64_t>(difference.changed.size()));
        json.number("to_add", static_cast<int64_t>(difference.added.size()));
        return;
    }
    out.line(fmt::format("unchanged {}, to remove {}, to change {}, to add {}",
                         difference.unchanged, difference.removed.size(), difference.changed.size(),
                         difference.added.size()));
}

// Another process may have programmed the same client meanwhile.
void require_count(uint16_t client, std::size_t wanted)
{
    const uint32_t held = count_rules(client);
    if (held != wanted)
        throw Failure{.message = fmt::format("the table now holds {} rules instead of {}: somebody "
                                             "else changes it too",
                                             held, wanted)};
}

void send(Context &context, const std::vector<Stage> &stages, std::size_t wanted)
{
    std::vector<OfpFlowItem> rules;
    std::vector<std::string> places;
    for (const Stage &stage : stages) {
        rules.insert(rules.end(), stage.rules.begin(), stage.rules.end());
        places.insert(places.end(), stage.places.begin(), stage.places.end());
    }
    const ReportedRules reported{rules, [&](std::size_t index) { return places[index]; }};
    join_period(client_of(context));
    const Report report = run_stages(client_of(context), stages);
    print_results(context, reported, report);
    print_summary(context, report);
    require_accepted(reported, report);
    require_count(client_of(context), wanted);
}

} // namespace

void flow_diff(Context &context)
{
    const FlowInput input = read_flow_files(context);
    const Difference difference = compare(context, input);
    print(context.out, difference, input);
    if (!difference.none())
        context.status = status_failed;
}

void flow_replace(Context &context)
{
    const FlowInput input = read_flow_files(context);
    const Difference difference = compare(context, input);
    if (context.arguments.given("dry-run") || context.verbose())
        print(context.out, difference, input);
    print_counts(context.out, difference);
    if (!context.arguments.given("dry-run") && !difference.none())
        send(context, stages_of(difference, input), input.rules.size());
}

} // namespace ofpctl

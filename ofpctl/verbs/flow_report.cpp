#include "verbs/flow_report.h"

#include <algorithm>

#include <fmt/format.h>

#include "flow/flow_text.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

// Consecutive rules that are told of together.
struct Run {
    std::size_t first;
    std::size_t count;
};

bool joins(Outcome outcome)
{
    return outcome == Outcome::unanswered || outcome == Outcome::not_sent;
}

Run run_from(std::span<const RuleResult> results, std::size_t first, bool each)
{
    const Outcome outcome = results[first].outcome;
    Run run{first, 1};
    if (!each && joins(outcome)) {
        while (first + run.count < results.size() && results[first + run.count].outcome == outcome)
            run.count++;
    }
    return run;
}

void print_run(Output &out, const ReportedRules &rules, const RuleResult &result, const Run &run)
{
    std::string line = rules.where(run.first);
    if (run.count > 1)
        line += fmt::format(" to {} ({})", rules.where(run.first + run.count - 1),
                            counted(run.count, "rule"));
    line += fmt::format(": {}", outcome_name(result.outcome));
    if (result.outcome == Outcome::refused)
        line += fmt::format(": {}", refusal(result.code));
    if (run.count == 1) {
        line += "\n    ";
        append_flow(line, rules.items[run.first]);
    }
    out.line(line);
}

void print_run(JsonWriter &json, const ReportedRules &rules, const RuleResult &result,
               const Run &run)
{
    json.begin_object();
    json.text("rule", rules.where(run.first));
    json.number("count", static_cast<int64_t>(run.count));
    json.text("outcome", outcome_name(result.outcome));
    if (result.outcome == Outcome::refused) {
        json.text("code", result_number(result.code));
        json.text("name", result_name(result.code));
        json.text("message", refusal(result.code));
    }
    if (run.count == 1)
        json.text("text", format_flow(rules.items[run.first]));
    json.end();
}

template <class Print>
void each_run(Context &context, const Report &report, Print print)
{
    const bool each = context.verbose();
    for (std::size_t at = 0; at < report.results.size();) {
        const Run run = run_from(report.results, at, each);
        if (each || report.results[at].outcome != Outcome::accepted)
            print(report.results[at], run);
        at += run.count;
    }
}

} // namespace

void print_results(Context &context, const ReportedRules &rules, const Report &report)
{
    Output &out = context.out;
    if (!out.json()) {
        each_run(context, report, [&](const RuleResult &result, const Run &run) {
            print_run(out, rules, result, run);
        });
        return;
    }
    out.document().begin_array("results");
    each_run(context, report, [&](const RuleResult &result, const Run &run) {
        print_run(out.document(), rules, result, run);
        out.settle();
    });
    out.document().end();
}

void print_summary(Context &context, const Report &report)
{
    const std::size_t unanswered = report.count(Outcome::unanswered);
    if (context.out.json()) {
        JsonWriter &json = context.out.document();
        for (const auto &[key, outcome] :
             {std::pair{"accepted", Outcome::accepted}, std::pair{"refused", Outcome::refused},
              std::pair{"unanswered", Outcome::unanswered},
              std::pair{"not_sent", Outcome::not_sent}})
            json.number(key, static_cast<int64_t>(report.count(outcome)));
        return;
    }
    std::string line = fmt::format("accepted {}, refused {}, ", report.count(Outcome::accepted),
                                   report.count(Outcome::refused));
    if (unanswered > 0)
        line += fmt::format("unanswered {}, ", unanswered);
    context.out.line(fmt::format("{}not sent {}", line, report.count(Outcome::not_sent)));
}

void require_accepted(const ReportedRules &rules, const Report &report)
{
    if (report.stopped)
        throw *report.stopped;
    const std::size_t refused = report.count(Outcome::refused);
    if (refused == 0)
        return;
    const auto first =
        std::find_if(report.results.begin(), report.results.end(),
                     [](const RuleResult &result) { return result.outcome == Outcome::refused; });
    const auto index = static_cast<std::size_t>(first - report.results.begin());
    if (refused == 1 && report.results.size() == 1)
        throw Failure{.code = first->code,
                      .message =
                          fmt::format("{}: refused: {}", rules.where(index), refusal(first->code))};
    const bool all = refused == report.results.size();
    throw Failure{.status = all ? status_failed : status_partly,
                  .code = first->code,
                  .message = fmt::format("{} of {} rules {} refused, the first at {}", refused,
                                         report.results.size(), refused == 1 ? "was" : "were",
                                         rules.where(index))};
}

} // namespace ofpctl

#include "verbs/change.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/failure.h"
#include "frame/interrupt.h"
#include "frame/patience.h"
#include "frame/rehearsal.h"
#include "frame/words.h"
#include "wire/datagram.h"

namespace ofpctl {

namespace {

enum class Outcome { not_sent, done, refused, verified, not_reported, differs, no_result };

constexpr std::string_view outcome_words[] = {"not sent",     "done",    "refused",  "verified",
                                              "not reported", "differs", "no result"};

struct Report {
    Outcome outcome = Outcome::not_sent;
    uint32_t code = 0;       // refused
    std::string found;       // differs: what the agent reports
    bool result_came = true; // the answer was a result reply
};

std::string_view word(Outcome outcome) { return outcome_words[static_cast<std::size_t>(outcome)]; }

// ---- Dry run

class Show {
public:
    explicit Show(Output &out) : out_(out)
    {
        if (!out_.json())
            return;
        out_.document().flag("dry_run", true);
        out_.document().begin_array("datagrams");
    }

    void operator()(std::span<const uint8_t> datagram)
    {
        if (out_.json()) {
            out_.document().begin_object();
            write_datagram(out_.document(), datagram);
            out_.document().end();
        } else {
            out_.write((first_ ? "" : "\n") + datagram_text(datagram));
        }
        first_ = false;
    }

private:
    Output &out_;
    bool first_ = true;
};

void rehearse(Output &out, const std::vector<const Change *> &changes)
{
    Show show(out);
    const Rehearsal rehearsal([&](std::span<const uint8_t> datagram) { show(datagram); });
    for (const Change *change : changes) {
        if (const uint32_t code = change->send(); code != 0)
            throw Failure{.code = code,
                          .message = fmt::format("{}: {}", change->what, result_sentence(code))};
    }
}

// ---- Sending

// The agent answered no, and will answer what comes next.
bool is_refusal(const Failure &failure)
{
    return failure.status == status_failed || failure.status == status_missing;
}

std::optional<Failure> send_each(const std::vector<Change> &changes, std::vector<Report> &reports)
{
    std::optional<Failure> first;
    for (std::size_t i = 0; i < changes.size(); i++) {
        check_interrupt();
        const uint32_t code = changes[i].send();
        reports[i].outcome = code == 0 ? Outcome::done : Outcome::refused;
        reports[i].code = code;
        reports[i].result_came = result_arrived();
        if (code == 0)
            continue;
        Failure failure = call_failure(code, changes[i].what);
        const bool go_on = is_refusal(failure);
        if (!first)
            first = std::move(failure);
        if (!go_on)
            break;
    }
    return first;
}

// ---- Comparing

Report compared(const Change &change, Report report)
{
    if (report.outcome != Outcome::done)
        return report;
    if (change.holds) {
        report.outcome = change.holds() ? Outcome::verified : Outcome::differs;
        report.found = "otherwise";
    } else if (change.read) {
        const Value found = change.read();
        report.outcome = found == change.value ? Outcome::verified : Outcome::differs;
        report.found = format_value(*change.row, found);
    } else {
        report.outcome = report.result_came ? Outcome::not_reported : Outcome::no_result;
    }
    return report;
}

void compare_all(const Changes &changes, std::vector<Report> &reports)
{
    const bool readable =
        std::any_of(changes.all.begin(), changes.all.end(),
                    [](const Change &change) { return change.read || change.holds; });
    if (readable)
        changes.refresh();
    for (std::size_t i = 0; i < reports.size(); i++)
        reports[i] = compared(changes.all[i], std::move(reports[i]));
}

// ---- Reporting

std::size_t count(const std::vector<Report> &reports, Outcome outcome)
{
    return static_cast<std::size_t>(
        std::count_if(reports.begin(), reports.end(),
                      [=](const Report &report) { return report.outcome == outcome; }));
}

std::size_t failed(const std::vector<Report> &reports)
{
    return count(reports, Outcome::refused) + count(reports, Outcome::not_sent);
}

std::string report_line(const Change &change, const Report &report)
{
    switch (report.outcome) {
    case Outcome::done:
        return change.what;
    case Outcome::refused:
        return fmt::format("{}: refused: {}", change.what, result_sentence(report.code));
    case Outcome::verified:
        return fmt::format("{} (verified)", change.what);
    case Outcome::not_reported:
        return fmt::format("{} (the agent does not report it)", change.what);
    case Outcome::differs:
        return fmt::format("{}: the agent reports {}", change.what, report.found);
    case Outcome::no_result:
        return fmt::format("{}: the answer was no result", change.what);
    case Outcome::not_sent:
        break;
    }
    return fmt::format("{}: not sent", change.what);
}

void write_report(JsonWriter &json, const Change &change, const Report &report)
{
    json.begin_object();
    if (change.row != nullptr) {
        json.text("name", change.row->name);
        json.begin_object("set");
        write_value(json, *change.row, change.value);
        json.end();
    } else {
        json.text("action", change.what);
    }
    json.text("outcome", word(report.outcome));
    if (report.outcome == Outcome::refused) {
        json.text("code", result_number(report.code));
        json.text("reason", result_sentence(report.code));
    }
    if (report.outcome == Outcome::differs)
        json.text("reported", report.found);
    json.end();
}

bool went_well(const Report &report)
{
    return report.outcome == Outcome::done || report.outcome == Outcome::verified;
}

void print_lines(Output &out, const Changes &changes, const std::vector<Report> &reports)
{
    for (std::size_t i = 0; i < reports.size(); i++) {
        if (!changes.terse || !went_well(reports[i]))
            out.line(report_line(changes.all[i], reports[i]));
    }
    if (changes.terse)
        out.line(fmt::format("{} made", counted(reports.size() - failed(reports), "change")));
}

void print(Output &out, const Changes &changes, const std::vector<Report> &reports)
{
    if (!out.json()) {
        print_lines(out, changes, reports);
        return;
    }
    out.document().begin_array("changes");
    for (std::size_t i = 0; i < reports.size(); i++)
        write_report(out.document(), changes.all[i], reports[i]);
    out.document().end();
}

// One change that fails is that failure; of several the whole is told.
[[noreturn]] void fail(Failure first, const std::vector<Report> &reports)
{
    const std::size_t bad = failed(reports);
    if (bad == 0)
        first.message = fmt::format("set, but it cannot be read back: {}", first.message);
    if (bad > 0 && reports.size() > 1 && is_refusal(first)) {
        first.message = fmt::format("{} of {} changes {} refused; the first: {}", bad,
                                    reports.size(), bad == 1 ? "was" : "were", first.message);
        if (bad < reports.size())
            first.status = status_partly;
    }
    throw std::move(first);
}

void require_verified(const std::vector<Report> &reports)
{
    const std::size_t wrong = count(reports, Outcome::differs) + count(reports, Outcome::no_result);
    if (wrong > 0)
        throw Failure{.message = fmt::format("{} of {} not as set", wrong,
                                             counted(reports.size(), "change"))};
}

bool is_given(const Context &context, std::string_view option)
{
    return find_option(context.verb, option) != nullptr && context.arguments.given(option);
}

} // namespace

std::string change_text(const std::string &target, const SettingRow &row, const Value &value)
{
    return fmt::format("{}: {}={}", target, row.name, format_value(row, value));
}

void perform(Context &context, const Changes &changes)
{
    if (is_given(context, "dry-run")) {
        std::vector<const Change *> all;
        for (const Change &change : changes.all)
            all.push_back(&change);
        rehearse(context.out, all);
        return;
    }
    require_agent();
    std::vector<Report> reports(changes.all.size());
    std::optional<Failure> failure;
    try {
        failure = send_each(changes.all, reports);
        if (!failure && is_given(context, "verify"))
            compare_all(changes, reports);
    } catch (Failure &cut_short) {
        failure = std::move(cut_short);
    }
    print(context.out, changes, reports);
    if (failure)
        fail(std::move(*failure), reports);
    require_verified(reports);
}

bool act(Context &context, const Action &action)
{
    if (is_given(context, "dry-run")) {
        const Change change{.what = action.doing, .value = {}, .send = action.send};
        rehearse(context.out, {&change});
        return false;
    }
    require_agent();
    require_success(action.send(), action.doing);
    if (is_given(context, "verify") && !action.holds())
        throw Failure{.message =
                          fmt::format("{}: the agent did not refuse, but does not report it done",
                                      action.doing)};
    return true;
}

std::string_view verified(const Context &context)
{
    return is_given(context, "verify") ? " (verified)" : "";
}

} // namespace ofpctl

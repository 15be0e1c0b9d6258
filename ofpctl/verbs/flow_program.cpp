#include "verbs/flow_program.h"

#include <algorithm>

#include <fmt/format.h>

#include "flow/flow_text.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "frame/patience.h"
#include "frame/progress.h"

namespace ofpctl {

namespace {

// Rules in one call of the library: enough that opening a channel for each call costs nothing that
// shows, few enough that an interrupt is heeded at once.
constexpr std::size_t slice = 240;
constexpr std::size_t rules_in_datagram = 12;

constexpr uint32_t one_shot_period = 0;
constexpr uint32_t one_shot_mode = 0;
constexpr auto failed = static_cast<uint32_t>(OFP_RC_FAILED);
constexpr auto invalid = static_cast<uint32_t>(OFP_RC_INVALID);

std::string_view work_of(Command command)
{
    switch (command) {
    case Command::add:
        return "adding";
    case Command::modify:
        return "modifying";
    default:
        return "deleting";
    }
}

// The library's call; codes takes one a rule, of which a deletion has only that of the call.
uint32_t call(uint16_t client, Command command, std::span<const OfpFlowItem> rules,
              std::span<uint64_t> codes)
{
    const auto count = static_cast<uint32_t>(rules.size());
    switch (command) {
    case Command::add:
        return OFP_AddFlowRule(client, flow_table, count, rules.data(), codes.data());
    case Command::modify:
        return OFP_ModifyFlowRule(client, flow_table, count, rules.data(), codes.data());
    default:
        break;
    }
    const int16_t strict = command == Command::remove_strict ? 1 : 0;
    const uint32_t code = OFP_DelFlowRule(client, flow_table, count, rules.data(), strict);
    std::fill(codes.begin(), codes.end(), code);
    return code;
}

void note_answered(std::span<const uint64_t> codes, std::span<RuleResult> results)
{
    for (std::size_t i = 0; i < codes.size(); i++) {
        const auto code = static_cast<uint32_t>(codes[i]);
        results[i] = {code == 0 ? Outcome::accepted : Outcome::refused, code};
    }
}

// The call failed. A code of its own shows that a rule was answered, and answers come in order; of
// the rules behind the last such one, none of which has another code than "failed", it is not known
// whether they arrived.
void note_broken(std::span<const uint64_t> codes, std::span<RuleResult> results)
{
    const auto last =
        std::find_if(codes.rbegin(), codes.rend(), [](uint64_t code) { return code != failed; });
    const auto answered = static_cast<std::size_t>(std::distance(last, codes.rend()));
    note_answered(codes.first(answered), results);
    for (RuleResult &result : results.subspan(answered))
        result = {Outcome::unanswered, failed};
}

// Nothing was received, so the library refused a rule or had no channel: nothing arrived.
void note_unsent(std::span<const uint64_t> codes, std::span<RuleResult> results)
{
    for (std::size_t i = 0; i < codes.size(); i++) {
        if (codes[i] == invalid)
            results[i] = {Outcome::refused, invalid};
    }
}

bool program_slice(uint16_t client, Command command, std::span<const OfpFlowItem> rules,
                   std::span<RuleResult> results)
{
    uint64_t codes[slice];
    const std::span<uint64_t> used = std::span(codes).first(rules.size());
    forget_waits();
    if (call(client, command, rules, used) == 0) {
        note_answered(used, results);
        return true;
    }
    if (last_wait() == Wait::none)
        note_unsent(used, results);
    else
        note_broken(used, results);
    return false;
}

} // namespace

std::size_t Report::count(Outcome outcome) const
{
    return static_cast<std::size_t>(
        std::count_if(results.begin(), results.end(),
                      [=](const RuleResult &result) { return result.outcome == outcome; }));
}

void join_period(uint16_t client)
{
    require_success(OFP_SmoothStart(client, one_shot_period, one_shot_mode),
                    fmt::format("client {}", client));
}

Report program_rules(uint16_t client, Command command, std::span<const OfpFlowItem> rules)
{
    Report report{.results = std::vector<RuleResult>(rules.size())};
    const std::span<RuleResult> results = report.results;
    Progress progress(work_of(command), rules.size());
    const Unhurried finish_the_call;
    try {
        for (std::size_t at = 0; at < rules.size(); at += slice) {
            check_interrupt();
            require_same_agent();
            const std::size_t count = std::min(slice, rules.size() - at);
            if (!program_slice(client, command, rules.subspan(at, count),
                               results.subspan(at, count)))
                throw call_failure(failed, work_of(command));
            progress.at(at + count);
        }
    } catch (Failure &failure) {
        report.stopped = std::move(failure);
    }
    return report;
}

std::size_t count_datagrams(std::span<const OfpFlowItem> rules)
{
    std::size_t datagrams = 0;
    std::size_t taken = 0;
    uint64_t bytes = 0;
    for (const OfpFlowItem &rule : rules) {
        const uint64_t length = OFP_encode_GetRuleMsgLen(1, &rule);
        if (taken == 0 || taken == rules_in_datagram || bytes + length > OFP_LARGE_DATAGRAM_SIZE) {
            datagrams++;
            taken = 0;
            bytes = 0;
        }
        taken++;
        bytes += length;
    }
    return datagrams;
}

std::string refusal(uint32_t code)
{
    switch (code) {
    case static_cast<uint32_t>(OFP_RC_STATE):
        return "it overlaps a rule of the same priority";
    case static_cast<uint32_t>(OFP_RC_NO_RESOURCE):
        return "the table is full";
    case invalid:
        return "the switch does not take this match or action, or the group it names does not "
               "exist; the code does not tell which";
    case failed:
        return "the agent gave no reason that the code tells";
    default:
        return result_sentence(code);
    }
}

std::string_view outcome_name(Outcome outcome)
{
    switch (outcome) {
    case Outcome::accepted:
        return "accepted";
    case Outcome::refused:
        return "refused";
    case Outcome::unanswered:
        return "unanswered";
    default:
        return "not sent";
    }
}

} // namespace ofpctl

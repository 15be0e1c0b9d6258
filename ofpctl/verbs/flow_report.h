// Telling what became of the rules of a batch.
#ifndef OFPCTL_VERBS_FLOW_REPORT_H
#define OFPCTL_VERBS_FLOW_REPORT_H

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "frame/context.h"
#include "verbs/flow_program.h"

namespace ofpctl {

// The rules of a report, as it names them.
struct ReportedRules {
    std::span<const OfpFlowItem> items;
    std::function<std::string(std::size_t)> where; // "rules.txt:17"
};

// Prints every rule that was not accepted (with --verbose: every rule) in input order, neighbours
// that were not answered or not sent on one line.
void print_results(Context &context, const ReportedRules &rules, const Report &report);

// "accepted 9990, refused 10, not sent 0", and "unanswered" when there are such.
void print_summary(Context &context, const Report &report);

// Throws the failure that the report amounts to, if any.
void require_accepted(const ReportedRules &rules, const Report &report);

} // namespace ofpctl

#endif

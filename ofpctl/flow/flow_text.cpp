#include "flow/flow_text.h"

#include "flow/action_text.h"
#include "flow/flow_draft.h"
#include "flow/line_parser.h"
#include "flow/match_text.h"
#include "flow/number_text.h"

namespace ofpctl {
namespace {

void append_actions(std::string &out, const OfpFlowItem &item)
{
    const auto start = out.size();
    for (uint32_t i = 0; item.actions != nullptr && i < item.action_count; ++i) {
        if (item.actions[i] == nullptr)
            continue;
        out += out.size() == start ? "write_actions(" : ",";
        append_action(out, *item.actions[i]);
    }
    out += out.size() == start ? "drop" : ")";
}

} // namespace

std::string to_string(const TextError &error)
{
    return error.hint.empty() ? error.message : error.message + "; " + error.hint;
}

FlowResult parse_flow(std::string_view line, ParseMode mode)
{
    FlowDraft draft;
    Problem problem;
    if (!parse_line(line, mode, draft, problem))
        return to_error(line, std::move(problem));
    return Flow{draft.make(), draft.table};
}

void append_flow(std::string &out, const OfpFlowItem &item, uint8_t table)
{
    out += "table=";
    append_decimal(out, table);
    out += ",priority=";
    append_decimal(out, item.priority);
    out += ',';
    const auto match = out.size();
    append_match(out, item.match);
    out += out.size() == match ? "actions=" : ",actions=";
    append_actions(out, item);
}

std::string format_flow(const OfpFlowItem &item, uint8_t table)
{
    std::string out;
    append_flow(out, item, table);
    return out;
}

std::string format_match(const OfpFRMatch &match)
{
    std::string out;
    append_match(out, match);
    return out;
}

std::string format_actions(const OfpFlowItem &item)
{
    std::string out;
    append_actions(out, item);
    return out;
}

} // namespace ofpctl

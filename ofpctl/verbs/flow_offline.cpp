// flow check and format: they need no agent.
#include <cstdint>

#include <fmt/format.h>

#include "flow/flow_json.h"
#include "flow/flow_text.h"
#include "frame/context.h"
#include "frame/words.h"
#include "verbs/flow_input.h"
#include "verbs/flow_verbs.h"

namespace ofpctl {

void flow_check(Context &context)
{
    const FlowInput input = read_flow_files(context);
    if (context.out.json())
        context.out.document().number("rules", static_cast<int64_t>(input.rules.size()));
    else
        context.out.line(fmt::format("{}, well formed", counted(input.rules.size(), "rule")));
}

void flow_format(Context &context)
{
    const FlowInput input = read_flow_files(context);
    Output &out = context.out;
    if (out.json())
        out.document().begin_array("rules");
    for (const OfpFlowItem &rule : input.rules.items()) {
        if (out.json()) {
            out.document().raw({}, flow_to_json(rule));
            out.settle();
        } else {
            out.line(format_flow(rule));
        }
    }
}

} // namespace ofpctl

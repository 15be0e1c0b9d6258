// Flow rules from the command line, files and standard input.
#ifndef OFPCTL_VERBS_FLOW_INPUT_H
#define OFPCTL_VERBS_FLOW_INPUT_H

#include <cstddef>
#include <string>
#include <vector>

#include "flow/flow_set.h"
#include "flow/flow_text.h"
#include "frame/context.h"

namespace ofpctl {

class FlowInput {
public:
    FlowSet rules;

    // "rules.txt:17" or "argument 2".
    std::string where(std::size_t index) const;
    // The same, in its two parts; line 0 when there is none.
    const std::string &source(std::size_t index) const;
    std::size_t line(std::size_t index) const;

    void begin_source(std::string name);

private:
    struct Source {
        std::string name;
        std::size_t first; // index of its first rule
    };
    std::vector<Source> sources_;
};

// Operands that are rules; "-" among them is standard input. Files come from --file.
FlowInput read_flow_operands(Context &context, ParseMode mode);
// Operands that are files; "-" is standard input.
FlowInput read_flow_files(Context &context);

} // namespace ofpctl

#endif

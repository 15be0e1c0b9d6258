// One line of text into a draft: the options, their order and what must be there.
#pragma once

#include <string_view>

#include "flow/action_text.h"
#include "flow/flow_draft.h"
#include "flow/flow_text.h"
#include "flow/match_text.h"
#include "flow/problem.h"

namespace ofpctl {

// What a rule is made of, one option after the other, from whatever it is written in.
class RuleReader {
public:
    RuleReader(FlowDraft &draft, Problem &problem)
        : draft_(draft), problem_(problem), match_(draft, problem)
    {}

    bool read(const OptionText &option);       // any option but actions
    bool read_match(const OptionText &option); // one of the match only
    bool read_actions(std::string_view name, std::string_view text);
    // The same in steps, for actions that do not come as one text.
    void begin_actions() { has_actions_ = true; }
    bool add_actions(std::string_view text) { return parse_actions(text, draft_, problem_); }
    bool finish(std::string_view line, ParseMode mode);

private:
    bool read_table(const OptionText &option);
    bool read_priority(const OptionText &option);
    bool read_fixed(const Keyword &keyword, const OptionText &option);
    bool report_unknown(std::string_view name);

    FlowDraft &draft_;
    Problem &problem_;
    MatchReader match_;
    bool has_priority_ = false;
    bool has_actions_ = false;
};

// The draft is cleared first. On an error, problem.where is a part of line.
bool parse_line(std::string_view line, ParseMode mode, FlowDraft &draft, Problem &problem);

// The error as the caller of the library sees it.
TextError to_error(std::string_view line, Problem problem);

// The part of a line before its comment.
std::string_view without_comment(std::string_view line);

} // namespace ofpctl

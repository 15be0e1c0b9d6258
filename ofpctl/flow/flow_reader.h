// Flow rules from files: lines of text, JSON, or JSON lines, with errors that name file, line and
// column.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "flow/flow_set.h"
#include "flow/flow_text.h"
#include "flow/line_reader.h"

namespace ofpctl {

struct SourceError {
    std::string file;
    std::size_t line = 0; // 0: the file as a whole
    TextError what;
    std::string text; // the line
};

// "file:line:column: what is wrong, what would be right", the line, a caret below it.
std::string render(const SourceError &error);

enum class FlowFormat { automatic, text, json };

struct LoadOptions {
    ParseMode mode = ParseMode::program;
    FlowFormat format = FlowFormat::automatic; // automatic: JSON when it begins with { or [
    std::size_t most_errors = 20;              // reading stops there
};

// Appends every rule of the input to flows. Any error means the input must not be used.
std::vector<SourceError> load_flows(int descriptor, std::string_view name,
                                    const LoadOptions &options, FlowSet &flows);

} // namespace ofpctl

// One flow rule as a line of text in ovs-ofctl's form, both directions.
//
// What the library cannot put on the wire is refused here, with the reason: text that loads is a
// rule the library sends as written. docs/flow-text.md is the reference of the syntax.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "ofp/flow_item.h"

namespace ofpctl {

// The only table the library programs.
constexpr uint8_t flow_table = 200;

struct TextError {
    std::size_t column = 1; // 1-based byte of the line
    std::size_t length = 0; // bytes to underline; 0: only the place is known
    std::string message;    // what is wrong
    std::string hint;       // what would be right; may be empty
};

// "message; hint", or the message alone.
std::string to_string(const TextError &error);

// One block holds the item and all it points at, its experimenter items included.
struct FlowDeleter {
    void operator()(OfpFlowItem *item) const noexcept;
};
using FlowItemPtr = std::unique_ptr<OfpFlowItem, FlowDeleter>;

struct Flow {
    FlowItemPtr item;
    std::optional<uint8_t> table; // when the text names one
};

enum class ParseMode {
    program, // add and modify: the actions must be said
    select,  // delete and filters: they may be left out
};

using FlowResult = std::variant<Flow, TextError>;

// Throws std::bad_alloc, nothing else.
FlowResult parse_flow(std::string_view line, ParseMode mode);

// The canonical line; it loads again to the same item. A mask that covers the whole field is the
// field without mask, one that covers nothing is no field.
std::string format_flow(const OfpFlowItem &item, uint8_t table = flow_table);
void append_flow(std::string &out, const OfpFlowItem &item, uint8_t table = flow_table);

// The two halves of the line, without table and priority: "tcp,nw_dst=10.0.0.1" and
// "write_actions(output:1)".
std::string format_match(const OfpFRMatch &match);
std::string format_actions(const OfpFlowItem &item);

} // namespace ofpctl

// Experimenter match items as text: flow_flag=0x5, string="abc", exp(44)=00000007.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "flow/flow_draft.h"
#include "flow/problem.h"

namespace ofpctl {

// name=text, where name is that of the type.
bool parse_experimenter(std::string_view name, uint8_t type, std::string_view text,
                        FlowDraft &draft, Problem &problem);
// exp(type)=text, where name is "exp(type)" and text the data as it travels, in hexadecimal.
bool parse_any_experimenter(std::string_view name, std::string_view text, FlowDraft &draft,
                            Problem &problem);

// The same from data as it travels.
void add_wire_experimenter(uint32_t type, std::span<const uint8_t> data, FlowDraft &draft);

// The name that item has as text, and the value that follows it.
void append_experimenter_name(std::string &out, const OfpExpMatchItem &item);
void append_experimenter_value(std::string &out, const OfpExpMatchItem &item);

// The data as it travels, in hexadecimal.
void append_experimenter_data(std::string &out, const OfpExpMatchItem &item);
// The text of a string item; empty when the item is another.
std::optional<std::string_view> experimenter_string(const OfpExpMatchItem &item);

// Text between quotes, as a value of the form that ends at the closing quote.
void append_quoted(std::string &out, std::string_view text);

} // namespace ofpctl

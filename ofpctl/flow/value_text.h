// The value of one field as text, with its mask: 10.0.0.0/8, 0x50/0xf0, 00:11:22:33:44:55.
#pragma once

#include <string>
#include <string_view>

#include "flow/field_table.h"
#include "flow/problem.h"
#include "flow/wide.h"

namespace ofpctl {

struct MaskedValue {
    Wide value; // no bits outside the mask
    Wide mask;  // all ones: exact; none: anything
};

// The text forms that are a number or an address; vlan and dscp are numbers like any other here.
// name: as the user wrote it.
bool parse_value(std::string_view name, std::string_view text, Form form, unsigned width,
                 MaskedValue &out, Problem &problem);

// The mask is left away when it is all ones.
void append_value(std::string &out, Form form, unsigned width, const MaskedValue &value);

} // namespace ofpctl

// Whole records whose members only the agent gives a meaning, by the names of their members.
#ifndef OFPCTL_WIRE_RECORD_TEXT_H
#define OFPCTL_WIRE_RECORD_TEXT_H

#include <cstdint>
#include <string>

#include "frame/json_writer.h"

namespace ofpctl {

// Lines "name value" under each other, each after the indent. The record is in host order and that
// of the TLV. Reserved bytes are left out, bytes without a meaning as well while they are zero.
std::string record_lines(uint32_t type, const void *record, std::size_t indent);

// The same as members of the object that is open. Numbers of 64 bits are strings.
void write_record(JsonWriter &json, uint32_t type, const void *record);

} // namespace ofpctl

#endif

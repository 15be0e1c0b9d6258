// Datagrams as a person reads them: every byte in hexadecimal beside the member it belongs to.
#ifndef OFPCTL_WIRE_DATAGRAM_H
#define OFPCTL_WIRE_DATAGRAM_H

#include <cstdint>
#include <span>
#include <string>

#include "frame/json_writer.h"

namespace ofpctl {

// Lines of text. Whatever the bytes are, all of them are shown.
std::string datagram_text(std::span<const uint8_t> datagram);

// Members of the object that is open.
void write_datagram(JsonWriter &json, std::span<const uint8_t> datagram);

} // namespace ofpctl

#endif

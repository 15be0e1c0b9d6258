// A datagram taken apart: its TLVs and their members, with names and values.
#ifndef OFPCTL_WIRE_DECODE_H
#define OFPCTL_WIRE_DECODE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "wire/record_fields.h"

namespace ofpctl {

struct DecodedField {
    std::size_t offset; // in the datagram
    std::size_t size;
    std::string name;
    std::string value; // as text; empty when the bytes say it all
    std::optional<uint64_t> number;
};

struct DecodedTlv {
    std::size_t offset; // of its header
    uint16_t type;
    uint16_t length; // as the header has it
    std::string note;
    std::vector<DecodedField> fields; // cover the value
};

struct DecodedDatagram {
    std::optional<uint32_t> code;
    std::vector<DecodedTlv> tlvs;
    std::size_t taken = 0; // bytes of whole TLVs; what follows is none
};

DecodedDatagram decode_datagram(std::span<const uint8_t> datagram);

// A member of a record in host order: its number, and its value as text; none for plain bytes.
uint64_t member_number(const uint8_t *at, std::size_t width);
std::string member_text(const FieldRow &row, const uint8_t *at);

} // namespace ofpctl

#endif

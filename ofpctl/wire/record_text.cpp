#include "wire/record_text.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "wire/decode.h"
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

const uint8_t *place(const FieldRow &row, const void *record)
{
    return static_cast<const uint8_t *>(record) + row.offset;
}

bool is_shown(const FieldRow &row, const void *record)
{
    if (row.name.starts_with("reserved"))
        return false;
    const uint8_t *at = place(row, record);
    return row.shape != Shape::bytes ||
           std::any_of(at, at + row.count, [](uint8_t byte) { return byte != 0; });
}

std::string hex(const FieldRow &row, const void *record)
{
    std::string out;
    for (std::size_t i = 0; i < row.count; i++)
        out += fmt::format("{:02x}", place(row, record)[i]);
    return out;
}

void write_numbers(JsonWriter &json, const FieldRow &row, const uint8_t *at)
{
    const auto write = [&](std::string_view key, uint64_t number) {
        if (row.width == sizeof number)
            json.wide(key, number);
        else
            json.number(key, static_cast<int64_t>(number));
    };
    if (row.count == 1) {
        write(row.name, member_number(at, row.width));
        return;
    }
    json.begin_array(row.name);
    for (std::size_t i = 0; i < row.count; i++)
        write({}, member_number(at + i * row.width, row.width));
    json.end();
}

} // namespace

std::string record_lines(uint32_t type, const void *record, std::size_t indent)
{
    std::string out;
    for (const FieldRow &row : fields_of(type)) {
        if (!is_shown(row, record))
            continue;
        const std::string value =
            row.shape == Shape::bytes ? hex(row, record) : member_text(row, place(row, record));
        out += fmt::format("{:{}}{:<20} {}\n", "", indent, row.name, value);
    }
    return out;
}

void write_record(JsonWriter &json, uint32_t type, const void *record)
{
    for (const FieldRow &row : fields_of(type)) {
        if (!is_shown(row, record))
            continue;
        const uint8_t *at = place(row, record);
        if (row.shape == Shape::number)
            write_numbers(json, row, at);
        else if (row.shape == Shape::text)
            json.text(row.name, {reinterpret_cast<const char *>(at),
                                 strnlen(reinterpret_cast<const char *>(at), row.count)});
        else
            json.text(row.name, hex(row, record));
    }
}

} // namespace ofpctl

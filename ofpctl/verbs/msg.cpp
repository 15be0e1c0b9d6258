// msg decode: a datagram, given in hexadecimal, as a person reads it. No agent is asked.
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <istream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>

#include "flow/number_text.h"
#include "frame/context.h"
#include "frame/failure.h"
#include "verbs/nouns.h"
#include "wire/datagram.h"

namespace ofpctl {

namespace {

using Datagram = std::vector<uint8_t>;

constexpr std::size_t largest_datagram = 65535;

bool between_digits(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0 || c == ':'; }

// Pairs of digits with blanks and colons between. The place names the text in an error.
void append_bytes(Datagram &datagram, std::string_view text, const std::string &place)
{
    for (std::size_t at = 0; at < text.size();) {
        if (between_digits(text[at])) {
            at++;
            continue;
        }
        const int high = hex_digit(text[at]);
        const int low = at + 1 < text.size() ? hex_digit(text[at + 1]) : -1;
        if (high < 0 || low < 0)
            throw usage_failure(fmt::format("{}:{}: \"{}\" is no byte of two hexadecimal digits",
                                            place, at + 1, text.substr(at, 2)));
        datagram.push_back(static_cast<uint8_t>(high << 4 | low));
        at += 2;
        if (datagram.size() > largest_datagram)
            throw usage_failure(
                fmt::format("{}: a datagram has at most {} bytes", place, largest_datagram));
    }
}

// Datagrams with empty lines between.
std::vector<Datagram> read_lines(std::istream &lines, const std::string &name)
{
    std::vector<Datagram> all(1);
    std::string line;
    for (std::size_t number = 1; std::getline(lines, line); number++) {
        if (line.find_first_not_of(" \t\r") == line.npos)
            all.emplace_back();
        else
            append_bytes(all.back(), line, fmt::format("{}:{}", name, number));
    }
    if (lines.bad())
        throw usage_failure(fmt::format("{}: cannot be read", name));
    std::erase_if(all, [](const Datagram &datagram) { return datagram.empty(); });
    return all;
}

std::vector<Datagram> read_file(const std::string &name)
{
    if (name == "-")
        return read_lines(std::cin, "standard input");
    struct stat about {};
    if (stat(name.c_str(), &about) != 0)
        throw usage_failure(fmt::format("{}: {}", name, std::strerror(errno)));
    if (S_ISDIR(about.st_mode))
        throw usage_failure(fmt::format("{}: is a directory; a file is wanted", name));
    std::ifstream file(name);
    if (!file)
        throw usage_failure(fmt::format("{}: {}", name, std::strerror(errno)));
    return read_lines(file, name);
}

std::vector<Datagram> datagrams_of(const Context &context)
{
    const Words &operands = context.arguments.operands();
    const bool from_file = context.arguments.given("file");
    if (from_file == !operands.empty())
        throw usage_failure("a datagram is wanted: as arguments, or with --file FILE");
    if (from_file)
        return read_file(context.arguments.text("file"));
    Datagram datagram;
    for (std::size_t i = 0; i < operands.size(); i++)
        append_bytes(datagram, operands[i], fmt::format("argument {}", i + 1));
    return {datagram};
}

void decode(Context &context)
{
    const std::vector<Datagram> datagrams = datagrams_of(context);
    Output &out = context.out;
    if (out.json())
        out.document().begin_array("datagrams");
    for (const Datagram &datagram : datagrams) {
        if (out.json()) {
            out.document().begin_object();
            write_datagram(out.document(), datagram);
            out.document().end();
            out.settle();
        } else {
            out.write((&datagram == datagrams.data() ? "" : "\n") + datagram_text(datagram));
        }
    }
}

constexpr OptionRow options[] = {
    {.name = "file",
     .letter = 'f',
     .kind = Kind::file,
     .value = "FILE",
     .help = "datagrams from a file, empty lines between; - for standard input"},
};

constexpr Example examples[] = {
    {"ofpctl msg decode 00010004 00000006 00080008 0000000a 0001 0000",
     "The request that sets the echo interval of instance 1 to 10 seconds"},
};

constexpr Verb rows[] = {
    {.name = "decode",
     .run = decode,
     .help = "Decodes datagrams given in hexadecimal; needs no agent.",
     .details = "Every byte is shown beside what it belongs to. Blanks and colons between the "
                "bytes are skipped.",
     .operands = {"HEX...", Kind::text, 0, any_number},
     .options = options,
     .examples = examples},
};

} // namespace

const std::span<const Verb> msg_verbs = rows;

} // namespace ofpctl

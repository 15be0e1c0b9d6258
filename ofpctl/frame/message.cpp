#include "frame/message.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

namespace ofpctl {

namespace {

// A message that cannot be written has nowhere else to go.
void put(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

// Words of the command line come back in messages: they must neither move the terminal's cursor
// nor fill its screen.
std::string one_line(std::string_view text)
{
    constexpr std::size_t longest = 1000;
    std::string line(text.substr(0, longest));
    for (char &c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte == 0x7f)
            c = '?';
    }
    return text.size() > longest ? line + "..." : line;
}

} // namespace

bool terminal() { return isatty(STDERR_FILENO) == 1; }

bool colour()
{
    const char *forbidden = std::getenv("NO_COLOR");
    return terminal() && (!forbidden || !*forbidden);
}

void report(std::string_view text)
{
    put(fmt::format("{}ofpctl:{} {}\n", colour() ? "\033[31m" : "", colour() ? "\033[0m" : "",
                    one_line(text)));
}

void remark(std::string_view text) { put(fmt::format("{}\n", text)); }

} // namespace ofpctl

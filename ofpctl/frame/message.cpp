#include "frame/message.h"

#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>
#include <unistd.h>

namespace ofpctl {

namespace {

// A message that cannot be written has nowhere else to go.
void put(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

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
                    text));
}

void remark(std::string_view text) { put(fmt::format("{}\n", text)); }

} // namespace ofpctl

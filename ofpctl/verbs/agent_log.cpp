#include "verbs/agent_log.h"

#include <algorithm>
#include <fstream>

#include <fmt/format.h>

#include "ofp/host.h"

namespace ofpctl {

namespace {

constexpr std::size_t path_room = 4096;
constexpr std::streamoff tail = 4096; // a log may be long

} // namespace

std::string last_log_line(uint16_t node)
{
    char path[path_room];
    if (HOST_GetLogPath(node, path, sizeof path) != 0)
        return {};
    std::ifstream log(path, std::ios::ate);
    log.seekg(std::max<std::streamoff>(log.tellg() - tail, 0));
    std::string last;
    for (std::string line; std::getline(log, line);) {
        if (!line.empty())
            last = line;
    }
    return last.empty() ? last : fmt::format("; the last line of {} is: {}", path, last);
}

} // namespace ofpctl

#include "verbs/smooth_marker.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "frame/agent_link.h"
#include "frame/failure.h"
#include "frame/process.h"
#include "ofp.h"
#include "ofp/host.h"

namespace ofpctl {

namespace {

constexpr std::size_t path_room = 256;

std::string marker_path(uint32_t client, uint32_t id)
{
    char directory[path_room];
    if (HOST_GetRuntimeDir(directory, sizeof directory, 0) != 0)
        throw host_failure(errno);
    return fmt::format("{}/smooth-{}-{}", directory, client, id);
}

[[noreturn]] void fail(const std::string &path)
{
    throw Failure{.message = fmt::format("{}: {}", path, std::strerror(errno))};
}

} // namespace

SmoothMarker marker_of_running_agent(uint32_t mode)
{
    const int32_t pid = HOST_GetAgentPid(DEV_GetSystemMaster());
    if (pid < 0)
        throw host_failure(errno);
    const uint64_t start = process_start(pid);
    if (pid == 0 || start == 0)
        throw call_failure(static_cast<uint32_t>(OFP_RC_DAEMON_DOWN), "smooth period");
    return {.mode = mode, .agent = pid, .agent_start = start};
}

std::optional<SmoothMarker> read_marker(uint32_t client, uint32_t id)
{
    std::ifstream file(marker_path(client, id));
    SmoothMarker marker;
    file >> marker.agent >> marker.agent_start >> marker.mode;
    return file ? std::optional(marker) : std::nullopt;
}

void write_marker(uint32_t client, uint32_t id, const SmoothMarker &marker)
{
    // Complete or not there at all: written beside its place and moved.
    const std::string path = marker_path(client, id);
    const std::string fresh = fmt::format("{}.{}", path, getpid());
    const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0)
        fail(fresh);
    const std::string text =
        fmt::format("{} {} {}\n", marker.agent, marker.agent_start, marker.mode);
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (close(file) != 0 || !written || rename(fresh.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(fresh.c_str());
        errno = error;
        fail(path);
    }
}

void remove_marker(uint32_t client, uint32_t id)
{
    const std::string path = marker_path(client, id);
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        fail(path);
}

bool same_agent(const SmoothMarker &a, const SmoothMarker &b)
{
    return a.agent == b.agent && a.agent_start == b.agent_start;
}

} // namespace ofpctl

#include "frame/process.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ofpctl {

namespace {

constexpr int fields_before_start = 19; // after the name, which may hold spaces and ends with ")"

constexpr std::size_t most_output = 4096;

using Clock = std::chrono::steady_clock;

// Reads to the end, the limit or the deadline. False for the last.
bool read_before(int descriptor, std::string &text, Clock::time_point deadline)
{
    while (text.size() < most_output) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd ready{descriptor, POLLIN, 0};
        const int count = left.count() > 0 ? poll(&ready, 1, static_cast<int>(left.count())) : 0;
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        char chunk[256];
        const ssize_t got = read(descriptor, chunk, sizeof chunk);
        if (got <= 0)
            return true;
        text.append(chunk, static_cast<std::size_t>(got));
    }
    return true;
}

// Its wait status; nothing when it had to be killed.
std::optional<int> end_before(pid_t child, Clock::time_point deadline)
{
    constexpr std::chrono::milliseconds look_again{5};
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            kill(child, SIGKILL);
            while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
            }
            return std::nullopt;
        }
        std::this_thread::sleep_for(look_again);
    }
    return status;
}

bool spawn(std::vector<std::string> &command, int output, pid_t &child)
{
    std::vector<char *> words;
    for (std::string &word : command)
        words.push_back(word.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0)
        return false;
    const bool spawned =
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0 &&
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO) == 0 &&
        posix_spawn(&child, words[0], &actions, nullptr, words.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    return spawned;
}

} // namespace

std::optional<std::string> program_output(std::vector<std::string> command, int seconds)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    pid_t child = 0;
    const bool spawned = spawn(command, ends[1], child);
    close(ends[1]);
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(seconds);
    std::string text;
    const bool whole = spawned && read_before(ends[0], text, deadline);
    close(ends[0]);
    if (!spawned)
        return std::nullopt;
    const std::optional<int> status = end_before(child, deadline);
    const bool well = whole && status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0;
    return well ? std::optional(text) : std::nullopt;
}

uint64_t process_start(int32_t pid)
{
    std::ifstream file(fmt::format("/proc/{}/stat", pid));
    std::string line;
    std::getline(file, line);
    const std::size_t name_end = line.rfind(')');
    if (name_end == std::string::npos)
        return 0;
    std::istringstream fields(line.substr(name_end + 1));
    std::string skipped;
    for (int i = 0; i < fields_before_start; i++)
        fields >> skipped;
    uint64_t start = 0;
    fields >> start;
    return fields ? start : 0;
}

std::optional<uint64_t> process_age_seconds(int32_t pid)
{
    const uint64_t start = process_start(pid);
    std::ifstream file("/proc/uptime");
    double up = 0;
    file >> up;
    const long ticks = sysconf(_SC_CLK_TCK);
    if (start == 0 || !file || ticks <= 0)
        return std::nullopt;
    const double age = up - static_cast<double>(start) / static_cast<double>(ticks);
    return age > 0 ? static_cast<uint64_t>(age) : 0;
}

} // namespace ofpctl

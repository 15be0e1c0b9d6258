#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/interrupt.h"
#include "frame/patience.h"
#include "frame/process.h"
#include "frame/start_guard.h"
#include "ofp.h"
#include "ofp/host.h"
#include "verbs/agent_log.h"
#include "verbs/doctor.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

constexpr std::size_t path_room = 256;
constexpr std::chrono::milliseconds look_again{20};

uint16_t node_of(const Context &context)
{
    return context.arguments.given("node") ? static_cast<uint16_t>(context.arguments.number("node"))
                                           : DEV_GetSystemMaster();
}

int32_t agent_pid(uint16_t node)
{
    const int32_t pid = HOST_GetAgentPid(node);
    if (pid < 0)
        throw host_failure(errno);
    return pid;
}

template <class Get>
std::string path_from(Get get, uint16_t node)
{
    char path[path_room];
    if (get(node, path, sizeof path) != 0)
        throw host_failure(errno);
    return path;
}

void print(Output &out, uint16_t node, std::string_view key, int32_t pid, std::string_view text)
{
    if (!out.json()) {
        out.line(text);
        return;
    }
    JsonWriter &json = out.document();
    json.number("node", node);
    json.text("agent", key);
    json.number("pid", pid);
}

// The agent's own options travel in its environment: the service's start has no room for them.
void pass_options(const Context &context)
{
    std::string options;
    for (const std::string &option : context.arguments.operands()) {
        if (option.find_first_of(" \t\n") != std::string::npos)
            throw usage_failure(
                fmt::format("\"{}\": an option of the agent holds no space", option));
        options += options.empty() ? option : " " + option;
    }
    if (!options.empty())
        setenv("OFP_AGENT_OPTIONS", options.c_str(), 1);
    if (context.arguments.given("timeout"))
        setenv("OFP_START_TIMEOUT", context.arguments.text("timeout").c_str(), 1);
}

void start(Context &context)
{
    const uint16_t node = DEV_GetSystemMaster();
    if (const int32_t pid = agent_pid(node); pid != 0 && OFP_util_IsDaemonStart() == 1) {
        print(context.out, node, "already running", pid,
              fmt::format("the agent runs already (process {})", pid));
        return;
    }
    pass_options(context);
    allow_start();
    const uint32_t code = OFP_util_StartDaemon();
    if (code != 0) {
        const std::string_view why = HOST_LastError();
        // Where the reason is in the log, it is told at once.
        throw Failure{.code = code,
                      .message = fmt::format("{}{}", why.empty() ? result_sentence(code) : why,
                                             why.ends_with(".log") ? last_log_line(node) : "")};
    }
    const int32_t pid = agent_pid(node);
    print(context.out, node, "started", pid, fmt::format("agent started (process {})", pid));
}

void wait_for_end(const Context &context, uint16_t node, int32_t pid)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline =
        Clock::now() + std::chrono::seconds(context.arguments.number("timeout"));
    while (agent_pid(node) == pid) {
        check_interrupt("interrupted; the agent was told to stop");
        if (Clock::now() >= deadline)
            throw Failure{.status = status_no_reply,
                          .message =
                              fmt::format("the agent (process {}) was told to stop and "
                                          "still runs after {} seconds; its log is {}; "
                                          "kill -9 {} ends it",
                                          pid, patience(), path_from(HOST_GetLogPath, node), pid)};
        std::this_thread::sleep_for(look_again);
    }
}

void stop(Context &context)
{
    const uint16_t node = node_of(context);
    const int32_t pid = agent_pid(node);
    if (pid == 0) {
        print(context.out, node, "not running", 0, "the agent is not running");
        return;
    }
    if (kill(pid, SIGTERM) != 0 && errno != ESRCH)
        throw Failure{.status = errno == EPERM ? status_denied : status_failed,
                      .message = fmt::format("agent (process {}): {}", pid, std::strerror(errno))};
    wait_for_end(context, node, pid);
    print(context.out, node, "stopped", pid, fmt::format("agent stopped (process {})", pid));
}

std::string duration_text(uint64_t seconds)
{
    const uint64_t minutes = seconds / 60;
    const uint64_t hours = minutes / 60;
    if (hours >= 24)
        return fmt::format("{}d {}h", hours / 24, hours % 24);
    if (hours > 0)
        return fmt::format("{}h {}min", hours, minutes % 60);
    return minutes > 0 ? fmt::format("{}min {}s", minutes, seconds % 60)
                       : fmt::format("{}s", seconds);
}

void print_status_json(JsonWriter &json, uint16_t node, int32_t pid)
{
    json.number("node", node);
    json.flag("running", pid != 0);
    if (pid != 0) {
        json.number("pid", pid);
        if (const auto age = process_age_seconds(pid))
            json.wide("uptime", *age);
    }
    json.text("socket", path_from(HOST_GetSocketPath, node));
    json.text("log", path_from(HOST_GetLogPath, node));
}

void status(Context &context)
{
    const uint16_t node = node_of(context);
    const int32_t pid = agent_pid(node);
    Output &out = context.out;
    if (pid == 0)
        context.status = status_no_agent;
    if (out.json()) {
        print_status_json(out.document(), node, pid);
        return;
    }
    if (pid == 0) {
        out.line("not running");
    } else {
        out.line(fmt::format("running (process {})", pid));
        if (const auto age = process_age_seconds(pid))
            out.line(fmt::format("up      {}", duration_text(*age)));
    }
    out.line(fmt::format("node    {}", node));
    out.line(fmt::format("socket  {}", path_from(HOST_GetSocketPath, node)));
    out.line(fmt::format("log     {}", path_from(HOST_GetLogPath, node)));
}

constexpr OptionRow node_options[] = {
    {.name = "node",
     .kind = Kind::number,
     .value = "N",
     .help = "the node it runs on; the system master unless given",
     .least = 0,
     .most = UINT16_MAX},
};

constexpr Example start_examples[] = {
    {"ofpctl agent start", "Starts the agent on every node that is up"},
    {"ofpctl agent start -- --SmartGroup=1", "Starts it with a start-up option of its own"},
};
constexpr Example stop_examples[] = {
    {"ofpctl agent stop", "Stops it and waits until it is gone"},
};
constexpr Example status_examples[] = {
    {"ofpctl agent status", "Says whether it runs, since when and where it listens"},
};
constexpr Example doctor_examples[] = {
    {"ofpctl agent doctor", "Finds out why nothing works"},
};

constexpr Verb rows[] = {
    {.name = "start",
     .run = start,
     .help = "Starts the agent; what follows -- are options of the agent.",
     .operands = {"[-- AGENT_OPTION...]", Kind::text, 0, any_number},
     .examples = start_examples},
    {.name = "stop",
     .run = stop,
     .help = "Stops the agent and waits until it is gone.",
     .options = node_options,
     .examples = stop_examples},
    {.name = "status",
     .run = status,
     .help = "Says whether the agent runs. Status 3 if it does not.",
     .options = node_options,
     .examples = status_examples},
    {.name = "doctor",
     .run = agent_doctor,
     .help = "Examines all that the agent needs and says what to do. Status 1 on a problem.",
     .examples = doctor_examples},
};

} // namespace

const std::span<const Verb> agent_verbs = rows;

} // namespace ofpctl

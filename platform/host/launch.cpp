#include "launch.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "error.h"
#include "ofp/host.h"
#include "system.h"

namespace host {

namespace {

constexpr int ready_fd = 3;
constexpr int64_t grace = nanoseconds_per_second; /* for a killed agent to be gone */

/* ---- What to run ---- */

bool runnable(const std::string &file) { return access(file.c_str(), X_OK) == 0; }

std::string absolute(const char *path)
{
    char *resolved = realpath(path, nullptr);
    std::string text = resolved != nullptr ? resolved : path;
    free(resolved);
    return text;
}

/* ../bin/ofp-agent of the folder that holds this library: a build tree or an installation. */
std::string agent_beside_library()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void *>(&launch_agent), &info) == 0 ||
        info.dli_fname == nullptr) {
        return {};
    }
    std::string folder = absolute(info.dli_fname);
    folder.resize(folder.rfind('/') == std::string::npos ? 0 : folder.rfind('/'));
    return folder + "/../bin/ofp-agent";
}

/* Empty, with the error set, when there is none. */
std::string find_agent()
{
    if (const char *chosen = environment("OFP_AGENT")) {
        std::string file = absolute(chosen);
        if (!runnable(file)) {
            fail(errno, "OFP_AGENT=%s: %s", chosen, strerror(errno));
            return {};
        }
        return file;
    }
    std::string beside = agent_beside_library();
    if (runnable(beside)) {
        return beside;
    }
    const char *folders = environment("PATH");
    std::string path = folders != nullptr ? folders : "";
    for (size_t at = 0; at < path.size();) {
        size_t end = std::min(path.find(':', at), path.size());
        std::string file = path.substr(at, end - at) + "/ofp-agent";
        if (file[0] == '/' && file != "/ofp-agent" && runnable(file)) {
            return file;
        }
        at = end + 1;
    }
    fail(ENOENT, "no ofp-agent at %s nor in PATH; OFP_AGENT can name it", beside.c_str());
    return {};
}

struct Program {
    std::string file;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
};

bool is_variable(const char *entry, const char *name)
{
    size_t length = strlen(name);
    return strncmp(entry, name, length) == 0 && entry[length] == '=';
}

/* The agent has another working directory and is not the process to be traced. */
std::vector<std::string> agent_environment(const Path &directory)
{
    std::vector<std::string> result;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        if (!is_variable(*entry, "OFP_RUNTIME_DIR") && !is_variable(*entry, "OFP_HOST_CONFIG") &&
            !is_variable(*entry, "OFP_TRACE")) {
            result.emplace_back(*entry);
        }
    }
    result.push_back(std::string("OFP_RUNTIME_DIR=") + directory.text);
    if (const char *config = environment("OFP_HOST_CONFIG")) {
        result.push_back("OFP_HOST_CONFIG=" + absolute(config));
    }
    return result;
}

std::vector<char *> pointers(std::vector<std::string> &texts)
{
    std::vector<char *> result;
    result.reserve(texts.size() + 1);
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

/* ---- The child's part: between fork and exec only async-signal-safe calls ---- */

struct Plan {
    const char *file;
    char *const *arguments;
    char *const *environment;
    int null_device;
    int log;
    int report; /* pipe to the starter: process id, then text */
};

void say(int fd, const char *text)
{
    [[maybe_unused]] ssize_t ignored = write(fd, text, strlen(text));
}

void forget_signals()
{
    struct sigaction usual {};
    usual.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number) {
        sigaction(number, &usual, nullptr);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void become_agent(const Plan &plan)
{
    pid_t self = getpid();
    [[maybe_unused]] ssize_t ignored = write(plan.report, &self, sizeof self);
    forget_signals();
    if (dup2(plan.null_device, STDIN_FILENO) >= 0 && dup2(plan.log, STDOUT_FILENO) >= 0 &&
        dup2(plan.log, STDERR_FILENO) >= 0 && dup2(plan.report, ready_fd) >= 0 && chdir("/") == 0) {
        closefrom(ready_fd + 1);
        execve(plan.file, plan.arguments, plan.environment);
    }
    say(ready_fd, plan.file);
    say(ready_fd, ": ");
    say(ready_fd, strerrordesc_np(errno));
    _exit(127);
}

/* The agent becomes a child of init, so that it never is a zombie of the starter's. */
[[noreturn]] void become_launcher(const Plan &plan)
{
    setsid();
    pid_t child = fork();
    if (child == 0) {
        become_agent(plan);
    }
    _exit(child < 0 ? 1 : 0);
}

/* ---- The starter's part ---- */

/* A descriptor that no dup2 of the child's overwrites. */
Descriptor above(Descriptor fd)
{
    return Descriptor(fd ? fcntl(fd.get(), F_DUPFD_CLOEXEC, ready_fd + 1) : -1);
}

struct Report {
    pid_t process = 0;
    std::string text;
    bool timed_out = false;

    bool ready() const { return text.starts_with("ready\n"); }
};

/* Waits for data or end. False when the deadline came first. */
bool readable(int fd, int64_t deadline)
{
    for (;;) {
        int64_t left = deadline - monotonic_now();
        pollfd wanted{.fd = fd, .events = POLLIN, .revents = 0};
        int64_t milliseconds = left > 0 ? left / nanoseconds_per_millisecond + 1 : 0;
        int count = poll(&wanted, 1, static_cast<int>(milliseconds));
        if (count > 0) {
            return true;
        }
        if (count == 0 || errno != EINTR) {
            return false;
        }
    }
}

/* Bytes of the pipe: at most size; 0 at its end; -1 when the deadline came first. */
ssize_t read_before(int fd, void *buffer, size_t size, int64_t deadline)
{
    return readable(fd, deadline) ? read(fd, buffer, size) : -1;
}

Report hear(int fd, int64_t deadline)
{
    constexpr size_t longest = 512;
    Report report;
    char chunk[128];
    ssize_t count = read_before(fd, &report.process, sizeof report.process, deadline);
    report.timed_out = count < 0;
    if (count != sizeof report.process) {
        report.process = 0;
        return report;
    }
    while (report.text.size() < longest && report.text.find('\n') == std::string::npos) {
        count = read_before(fd, chunk, sizeof chunk, deadline);
        report.timed_out = count < 0;
        if (count <= 0) {
            break;
        }
        report.text.append(chunk, static_cast<size_t>(count));
    }
    return report;
}

/* What an agent that is not ready leaves in the error. */
int32_t explain(int fd, Report &report, const Path &log)
{
    char rest[128];
    if (report.timed_out && report.process > 0) {
        kill(report.process, SIGKILL);
        int64_t deadline = monotonic_now() + grace;
        while (read_before(fd, rest, sizeof rest, deadline) > 0) {
        }
    }
    report.text.resize(std::min(report.text.find('\n'), report.text.size()));
    if (!report.text.empty()) {
        return fail(ECANCELED, "the agent did not start: %s", report.text.c_str());
    }
    if (report.timed_out) {
        return fail(ETIMEDOUT, "the agent did not become ready in time and was stopped; see %s",
                    log.text);
    }
    return fail(ECANCELED, "the agent ended before it was ready; see %s", log.text);
}

int32_t run(const Plan &plan, Descriptor report_end, Descriptor heard_end, const Path &log,
            int64_t deadline)
{
    pid_t launcher = fork();
    if (launcher < 0) {
        return fail(errno, "cannot start the agent: %s", strerror(errno));
    }
    if (launcher == 0) {
        become_launcher(plan);
    }
    report_end.reset();
    /* It ends at once. The program may collect it first, or collect children by itself. */
    while (waitpid(launcher, nullptr, 0) < 0 && errno == EINTR) {
    }
    Report report = hear(heard_end.get(), deadline);
    return report.ready() ? 0 : explain(heard_end.get(), report, log);
}

/* Options of the agent's own, for whoever starts it by hand: OFP_AGENT_OPTIONS, between blanks. */
void append_options(std::vector<std::string> &arguments)
{
    const char *options = environment("OFP_AGENT_OPTIONS");
    std::string text = options != nullptr ? options : "";
    for (size_t at = text.find_first_not_of(' '); at != std::string::npos;
         at = text.find_first_not_of(' ', at)) {
        size_t end = std::min(text.find(' ', at), text.size());
        arguments.push_back(text.substr(at, end - at));
        at = end;
    }
}

} // namespace

int32_t launch_agent(uint16_t node, const Path &directory, const Path &log, int64_t deadline)
{
    Program program;
    program.file = find_agent();
    if (program.file.empty()) {
        return -1;
    }
    program.arguments = {program.file, "--node", std::to_string(node), "--ready-fd",
                         std::to_string(ready_fd)};
    append_options(program.arguments);
    program.environment = agent_environment(directory);
    std::vector<char *> arguments = pointers(program.arguments);
    std::vector<char *> variables = pointers(program.environment);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return fail(errno, "cannot start the agent: %s", strerror(errno));
    }
    Descriptor heard_end(ends[0]);
    Descriptor report_end = above(Descriptor(ends[1]));
    Descriptor null_device = above(Descriptor(open("/dev/null", O_RDWR | O_CLOEXEC)));
    Descriptor log_file =
        above(Descriptor(open(log.text, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)));
    if (!report_end || !null_device || !log_file) {
        return fail(errno, "cannot start the agent with the log %s: %s", log.text, strerror(errno));
    }
    Plan plan{program.file.c_str(), arguments.data(), variables.data(),
              null_device.get(),    log_file.get(),   report_end.get()};
    return run(plan, std::move(report_end), std::move(heard_end), log, deadline);
}

} // namespace host

using namespace host;

int32_t HOST_GetAgentProgram(char *path, size_t size)
{
    try {
        std::string file = find_agent();
        if (file.empty()) {
            return -1;
        }
        if (file.size() >= size) {
            return fail(ENAMETOOLONG, "%s: the path is too long", file.c_str());
        }
        memcpy(path, file.c_str(), file.size() + 1);
        return 0;
    } catch (const std::bad_alloc &) {
        return fail(ENOMEM, "cannot look for the agent: out of memory");
    }
}

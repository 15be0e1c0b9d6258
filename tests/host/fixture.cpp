#include "fixture.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host_test {

namespace {

constexpr unsigned child_limit = 40; /* seconds; then SIGALRM ends a child that hangs */

volatile sig_atomic_t storm_signals;

void count_signal(int) { storm_signals = storm_signals + 1; }

void kill_lock_holder(const std::string &file)
{
    int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct flock range {};
    range.l_type = F_WRLCK;
    if (fd >= 0 && fcntl(fd, F_GETLK, &range) == 0 && range.l_type != F_UNLCK &&
        range.l_pid != getpid()) {
        kill(range.l_pid, SIGKILL);
    }
    close(fd);
}

} // namespace

Milliseconds since(Clock::time_point start)
{
    return std::chrono::duration_cast<Milliseconds>(Clock::now() - start);
}

HostTest::HostTest()
{
    char name[] = "/tmp/ofp-host-test-XXXXXX";
    directory_ = mkdtemp(name);
    setenv("OFP_RUNTIME_DIR", directory_.c_str(), 1);
    setenv("OFP_AGENT", STAND_IN_AGENT, 1);
    for (const char *unset : {"OFP_HOST_CONFIG", "OFP_TRACE", "OFP_START_TIMEOUT", "OFP_STAND_IN",
                              "OFP_AGENT_OPTIONS", "XDG_RUNTIME_DIR"}) {
        unsetenv(unset);
    }
}

HostTest::~HostTest()
{
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator(directory_, ignored)) {
        if (entry.path().extension() == ".lock") {
            kill_lock_holder(entry.path());
        }
    }
    std::filesystem::remove_all(directory_, ignored);
}

void HostTest::write_file(const std::string &name, const std::string &text) const
{
    std::ofstream(path(name), std::ios::binary) << text;
}

void HostTest::describe(const std::string &text) const
{
    write_file("host.toml", text);
    setenv("OFP_HOST_CONFIG", path("host.toml").c_str(), 1);
}

std::string read_file(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

pid_t start_child(const std::function<void()> &body)
{
    fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        alarm(child_limit);
        body();
        fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
}

int wait_for(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

void in_child(const std::function<void()> &body)
{
    pid_t child = start_child(body);
    ASSERT_GT(child, 0);
    EXPECT_EQ(wait_for(child), 0) << "see the failures of the child process above";
}

BareAgent::BareAgent(const std::string &path, int backlog)
    : fd_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strlcpy(address.sun_path, path.c_str(), sizeof address.sun_path);
    EXPECT_EQ(bind(fd_, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(listen(fd_, backlog), 0);
}

BareAgent::~BareAgent() { close(fd_); }

int BareAgent::accept() const { return accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC); }

int set_time_out(int s, int option, int64_t milliseconds)
{
    int64_t value[2] = {milliseconds / 1000, milliseconds % 1000 * 1000};
    return SOCK_SetOption(s, 1, option, value, sizeof value);
}

int connect_client(int64_t time_out)
{
    int s = SOCK_Socket(37, 2, 1);
    if (time_out != 0) {
        EXPECT_EQ(set_time_out(s, 0x1005, time_out), 0);
        EXPECT_EQ(set_time_out(s, 0x1006, time_out), 0);
    }
    EXPECT_EQ(SOCK_Connect(s, service_address, sizeof service_address), 0) << strerror(errno);
    return s;
}

std::string ask(const std::string &request)
{
    char reply[8192];
    int s = connect_client(5000);
    EXPECT_EQ(SOCK_Send(s, request.data(), request.size(), 0),
              static_cast<int64_t>(request.size()));
    int64_t length = SOCK_Recv(s, reply, sizeof reply, 0);
    SOCK_Close(s);
    return length < 0 ? std::string("error: ") + strerror(errno)
                      : std::string(reply, static_cast<size_t>(length));
}

SignalStorm::SignalStorm()
{
    struct sigaction action {};
    action.sa_handler = count_signal;
    sigaction(SIGALRM, &action, nullptr);
    storm_signals = 0;
    itimerval every{.it_interval = {0, 1000}, .it_value = {0, 1000}};
    setitimer(ITIMER_REAL, &every, nullptr);
}

SignalStorm::~SignalStorm()
{
    itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    signal(SIGALRM, SIG_DFL);
}

int SignalStorm::count() { return storm_signals; }

} // namespace host_test

/* What the host port's tests share: a runtime directory of their own, child processes, a bare
 * agent. */
#ifndef OFP_TESTS_HOST_FIXTURE_H
#define OFP_TESTS_HOST_FIXTURE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "ofp/host.h"
#include "ofp/platform.h"

namespace host_test {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

Milliseconds since(Clock::time_point start);

/* The service's address, port 1170. */
constexpr uint8_t service_address[16] = {0x10, 0x25, 0x04, 0x92, 0x80};

/* A new runtime directory with the environment set to use it; agents in it end with the test. */
class HostTest : public ::testing::Test {
protected:
    HostTest();
    ~HostTest() override;

    std::string path(const std::string &name) const { return directory_ + "/" + name; }
    void write_file(const std::string &name, const std::string &text) const;
    /* Writes the text to host.toml, which then describes the switch. */
    void describe(const std::string &text) const;

    std::string directory_;
};

std::string read_file(const std::string &path);

/* Runs the body in a child process, so that what a process keeps, as the described switch, begins
 * anew. The child's failures are the test's. */
void in_child(const std::function<void()> &body);

/* The same without waiting; the exit status is 0 when nothing failed. */
pid_t start_child(const std::function<void()> &body);
int wait_for(pid_t child);

/* An agent's socket without an agent: bound to agent.sock, connections accepted by hand. */
class BareAgent {
public:
    explicit BareAgent(const std::string &path, int backlog = 8);
    ~BareAgent();
    BareAgent(const BareAgent &) = delete;
    BareAgent &operator=(const BareAgent &) = delete;

    int accept() const; /* a blocking descriptor, the caller's */

private:
    int fd_;
};

/* A connected client socket with both time-outs, in milliseconds, unless 0. */
int connect_client(int64_t time_out = 0);
int set_time_out(int s, int option, int64_t milliseconds);

/* One exchange with the stand-in agent. */
std::string ask(const std::string &request);

/* Sends this thread SIGALRM every millisecond, from its beginning to its end. */
class SignalStorm {
public:
    SignalStorm();
    ~SignalStorm();
    SignalStorm(const SignalStorm &) = delete;
    SignalStorm &operator=(const SignalStorm &) = delete;
    static int count();
};

} // namespace host_test

#endif

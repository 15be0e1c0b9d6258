// A runtime directory and, once somebody asks for it, an agent of the test's own.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "ofp.h"
#include "ofp/host.h"

namespace integration {

inline constexpr uint16_t CLIENT = 4096;
inline constexpr uint8_t TABLE = 200;

// The library keeps its smooth period for the life of the process: all tests share one.
inline constexpr uint32_t SMOOTH_ID = 7;
inline constexpr uint32_t SMOOTH_MODE = 0;

class AgentTest : public testing::Test {
protected:
    AgentTest();
    ~AgentTest() override;

    // The agent's process, 0 when none runs.
    pid_t agent() const { return HOST_GetAgentPid(0); }
    // Ends it and waits until it is gone.
    void stop_agent(int signal);
    // Runs the program itself with further arguments and waits until it is ready.
    void start_agent(const std::vector<std::string> &arguments);

    void smooth_start() { ASSERT_EQ(OFP_SmoothStart(CLIENT, SMOOTH_ID, SMOOTH_MODE), 0u); }

    // Ids of the client's rules, as the agent lists them.
    std::vector<uint32_t> rule_ids() const;

    std::string path(const char *name) const { return directory_ + '/' + name; }
    std::string log_text() const;

    std::string directory_;
};

// What a program wrote and how it ended.
struct Finished {
    int status = -1; // exit status; 128 + signal
    std::string output;
};
// Runs the agent's program and waits for its end.
Finished run_agent(const std::vector<std::string> &arguments);

// True as soon as the condition holds, false when it does not within the time.
template <class Condition>
bool within(std::chrono::milliseconds time, Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        timespec pause{0, 2'000'000};
        nanosleep(&pause, nullptr);
    }
    return true;
}

} // namespace integration

// The agent's process: how it starts, what it leaves, how it ends.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "integration/agent_test.h"
#include "integration/exchange.h"

namespace integration {
namespace {

using namespace std::chrono_literals;
using Lifecycle = AgentTest;

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

TEST_F(Lifecycle, EndsOnSigtermAndTakesItsSocketAlong)
{
    ASSERT_EQ(OFP_util_StartDaemon(), 0u);
    ASSERT_TRUE(std::filesystem::exists(path("agent.sock")));
    stop_agent(SIGTERM);
    EXPECT_FALSE(std::filesystem::exists(path("agent.sock")));
    EXPECT_EQ(OFP_util_IsDaemonStart(), 0);
    EXPECT_TRUE(contains(log_text(), "ends on signal 15")) << log_text();
    EXPECT_EQ(OFP_util_StartDaemon(), 0u);
    stop_agent(SIGINT);
    EXPECT_FALSE(std::filesystem::exists(path("agent.sock")));
}

TEST_F(Lifecycle, InTheForegroundLogsToStandardErrorAndEndsWithStatusZero)
{
    Finished finished;
    std::thread foreground([&finished] { finished = run_agent({"--foreground"}); });
    EXPECT_TRUE(within(10s, [] { return OFP_util_IsDaemonStart() == 1; }));
    EXPECT_EQ(OFP_AddInstance(0), 0x42300110u);
    stop_agent(SIGTERM);
    foreground.join();
    EXPECT_EQ(finished.status, 0);
    EXPECT_TRUE(contains(finished.output, "an instance id is")) << finished.output;
    EXPECT_TRUE(contains(finished.output, "1 datagrams, 1 refused")) << finished.output;
    EXPECT_FALSE(std::filesystem::exists(path("agent.log")));
}

TEST_F(Lifecycle, StartsBesideTheSocketOfAnAgentThatWasKilled)
{
    ASSERT_EQ(OFP_util_StartDaemon(), 0u);
    stop_agent(SIGKILL);
    ASSERT_TRUE(std::filesystem::exists(path("agent.sock"))); // stale
    EXPECT_EQ(OFP_util_IsDaemonStart(), 0);
    ASSERT_EQ(OFP_util_StartDaemon(), 0u);
    EXPECT_EQ(OFP_AddInstance(5), 0u);
}

TEST_F(Lifecycle, TwoStartsAtOnceYieldOneAgentAndSucceedBoth)
{
    pid_t children[4];
    for (pid_t &child : children) {
        child = fork();
        if (child == 0) {
            _exit(OFP_util_StartDaemon() == 0 && OFP_AddInstance(5) == 0 ? 0 : 1);
        }
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_GT(agent(), 0);
    const std::string log = log_text();
    EXPECT_EQ(log.find("serves node"), log.rfind("serves node")) << log;
}

TEST_F(Lifecycle, ASecondAgentSaysThatOneRuns)
{
    start_agent({});
    const pid_t first = agent();
    const Finished second = run_agent({});
    EXPECT_EQ(second.status, 1);
    EXPECT_TRUE(contains(second.output, "another agent")) << second.output;
    const Finished attached = run_agent({"--foreground"});
    EXPECT_EQ(attached.status, 1);
    EXPECT_TRUE(contains(attached.output, "another agent")) << attached.output;
    EXPECT_EQ(agent(), first);
    EXPECT_TRUE(std::filesystem::exists(path("agent.sock")));
}

TEST_F(Lifecycle, LeavesAFileInTheWayAloneAndSaysSo)
{
    std::filesystem::permissions(directory_, std::filesystem::perms::owner_all);
    std::ofstream(path("agent.sock")) << "mine";
    const Finished refused = run_agent({});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.output, "not a socket")) << refused.output;
    EXPECT_TRUE(std::filesystem::exists(path("agent.sock")));
    EXPECT_TRUE(within(5s, [this] { return agent() == 0; }));
}

TEST_F(Lifecycle, TellsItsVersionAndItsOptions)
{
    const Finished version = run_agent({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "ofp-agent 1.0.0\n");
    const Finished help = run_agent({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char *option : {"--node", "--ready-fd", "--foreground", "--log-level", "--log-file",
                               "--ACLMaxFlowEntry", "--Ipv6Enhanced"}) {
        EXPECT_TRUE(contains(help.output, option)) << option;
    }
}

TEST_F(Lifecycle, RefusesOptionsThatItDoesNotHave)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"--no-such-option"},  {"--ACLMaxFlowEntry=many"}, {"--ACLMaxFlowEntry=0"},
        {"--node", "east"},    {"--log-level", "loud"},    {"argument"},
        {"--QinQTable=70000"},
    };
    for (const auto &arguments : wrong) {
        const Finished refused = run_agent(arguments);
        EXPECT_EQ(refused.status, 2) << arguments[0];
        EXPECT_FALSE(refused.output.empty()) << arguments[0];
    }
    EXPECT_EQ(agent(), 0);
}

TEST_F(Lifecycle, SaysWhyItDoesNotStartToWhoWaitsForIt)
{
    setenv("OFP_AGENT_OPTIONS", "--ACLMaxFlowEntry=many", 1);
    EXPECT_NE(OFP_util_StartDaemon(), 0u);
    EXPECT_TRUE(contains(HOST_LastError(), "ACLMaxFlowEntry")) << HOST_LastError();
    unsetenv("OFP_AGENT_OPTIONS");
    const Finished refused = run_agent({"--node", "9"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.output, "no node 9")) << refused.output;
    EXPECT_EQ(OFP_util_StartDaemon(), 0u);
}

TEST_F(Lifecycle, TakesTheStartUpOptionsOfTheSwitch)
{
    start_agent({"--log-level", "debug", "--ACLMaxFlowEntry", "100", "--QinQTable=0x10"});
    EXPECT_TRUE(contains(log_text(), "at most 100 rules a table")) << log_text();
}

TEST_F(Lifecycle, OpensItsLogAgainOnSighup)
{
    start_agent({});
    std::filesystem::rename(path("agent.log"), path("agent.log.old"));
    kill(agent(), SIGHUP);
    EXPECT_TRUE(within(5s, [this] { return contains(log_text(), "opened again"); }));
    OFP_AddInstance(0);
    EXPECT_TRUE(within(5s, [this] { return contains(log_text(), "an instance id is"); }))
        << log_text();
}

TEST_F(Lifecycle, LogsWhatItRefusedAndWhyButNoFlood)
{
    start_agent({"--log-file", path("other.log")});
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(OFP_AddInstance(0), 0x42300110u);
    }
    std::ifstream file(path("other.log"));
    size_t lines = 0;
    for (std::string line; std::getline(file, line);) {
        lines += contains(line, "ADD_INSTANCE") && contains(line, "an instance id is 1 to 65534");
    }
    EXPECT_GE(lines, 20u);
    EXPECT_LT(lines, 100u);
}

TEST_F(Lifecycle, ServesOnlyTheUserItRunsAs)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs to become another user";
    }
    ASSERT_EQ(OFP_util_StartDaemon(), 0u);
    ASSERT_EQ(chmod(directory_.c_str(), 0711), 0);
    ASSERT_EQ(chmod(path("agent.sock").c_str(), 0666), 0);
    const pid_t child = fork();
    if (child == 0) {
        uint64_t code = 0;
        const bool other = setresuid(65534, 65534, 65534) == 0;
        Channel channel;
        const bool refused =
            channel.send({0, 1, 0, 4, 0x50, 0, 0, 7}) && result_of(channel.receive()) == 0x42300109;
        (void)code;
        _exit(other && refused && channel.receive().empty() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(contains(log_text(), "serves only the user")) << log_text();
}

} // namespace
} // namespace integration

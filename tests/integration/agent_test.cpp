#include "integration/agent_test.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace integration {

namespace {

using namespace std::chrono_literals;

pid_t spawn(const std::vector<std::string> &arguments, int output)
{
    std::vector<char *> argv{const_cast<char *>(OFP_AGENT_FILE)};
    for (const std::string &argument : arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    pid_t child = -1;
    posix_spawn(&child, OFP_AGENT_FILE, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

} // namespace

AgentTest::AgentTest()
{
    char name[] = "/tmp/ofp-integration-XXXXXX";
    directory_ = mkdtemp(name);
    setenv("OFP_RUNTIME_DIR", directory_.c_str(), 1);
    setenv("OFP_AGENT", OFP_AGENT_FILE, 1);
    unsetenv("OFP_HOST_CONFIG");
}

AgentTest::~AgentTest()
{
    if (agent() > 0) {
        stop_agent(SIGKILL);
    }
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

void AgentTest::stop_agent(int signal)
{
    const pid_t process = agent();
    ASSERT_GT(process, 0);
    ASSERT_EQ(kill(process, signal), 0);
    EXPECT_TRUE(within(10s, [this] { return agent() == 0; }));
}

void AgentTest::start_agent(const std::vector<std::string> &arguments)
{
    const Finished started = run_agent(arguments);
    ASSERT_EQ(started.status, 0) << started.output;
    ASSERT_GT(agent(), 0);
}

std::vector<uint32_t> AgentTest::rule_ids() const
{
    std::vector<uint32_t> ids;
    uint32_t id = 0;
    while (OFP_get_NextRuleID(CLIENT, TABLE, id, &id) == 0) {
        ids.push_back(id);
    }
    return ids;
}

std::string AgentTest::log_text() const
{
    std::ifstream file(path("agent.log"));
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

Finished run_agent(const std::vector<std::string> &arguments)
{
    Finished finished;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return finished;
    }
    const pid_t child = spawn(arguments, ends[1]);
    close(ends[1]);
    char piece[512];
    for (ssize_t got; (got = read(ends[0], piece, sizeof piece)) > 0;) {
        finished.output.append(piece, static_cast<size_t>(got));
    }
    close(ends[0]);
    int status = 0;
    if (child > 0 && waitpid(child, &status, 0) == child) {
        finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return finished;
}

} // namespace integration

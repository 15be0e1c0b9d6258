// Controllers that nobody here wrote: Open vSwitch's test controller and an application of os-ken.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "agent/channel/controller_peer.h"

extern char **environ;

namespace agent::test {
namespace {

class RealControllerTest : public ChannelTest {
protected:
    RealControllerTest()
    {
        char name[] = "/tmp/ofp-controller-XXXXXX";
        folder_ = mkdtemp(name);
    }
    ~RealControllerTest() override
    {
        end_program();
        std::filesystem::remove_all(folder_);
    }

    std::string path(const std::string &name) const { return folder_ + '/' + name; }

    void run_program(const std::vector<std::string> &words)
    {
        std::vector<char *> argv;
        for (const std::string &word : words) {
            argv.push_back(const_cast<char *>(word.c_str()));
        }
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, path("log").c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        ASSERT_EQ(posix_spawn(&program_, argv[0], &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }
    void end_program()
    {
        if (program_ > 0) {
            kill(program_, SIGKILL);
            waitpid(program_, nullptr, 0);
            program_ = 0;
        }
    }

    // A port that nobody listens on.
    uint16_t free_port() const { return ControllerPeer().port(); }

    void add(uint16_t port)
    {
        const ControllerPeer unused;
        add_controller(INSTANCE, 0, unused);
        configure(INSTANCE, [=](InstanceConfig &config) {
            config.controllers[0].port = port;
            config.description = "the lab";
        });
    }
    // Programs take their time to start, so that more than one attempt may be needed.
    bool connects()
    {
        return until([this] { return state().connected(); }) ||
               until([this] { return state().connected(); });
    }

    std::string folder_;
    pid_t program_ = 0;
};

constexpr char TEST_CONTROLLER[] = "/usr/bin/ovs-testcontroller";
constexpr char OSKEN_MANAGER[] = "/usr/bin/osken-manager";

TEST_F(RealControllerTest, TheTestControllerOfOpenVSwitchProgramsItsFlows)
{
    if (access(TEST_CONTROLLER, X_OK) != 0) {
        GTEST_SKIP() << "openvswitch-testcontroller is not installed";
    }
    std::ofstream(path("flows")) << "table=0,priority=5,in_port=3,actions=output:4\n"
                                    "table=0,priority=6,ip,nw_dst=10.0.0.0/8,actions=output:5\n"
                                    "table=9,priority=6,in_port=3,actions=output:5\n";
    const uint16_t port = free_port();
    const auto start = [&] {
        run_program({TEST_CONTROLLER, "-O", "OpenFlow13",
                     "ptcp:" + std::to_string(port) + ":127.0.0.1", "--with-flows", path("flows"),
                     "--unixctl=" + path("control")});
    };
    start();
    add(port);
    ASSERT_TRUE(connects());
    // Its table 9 is refused, as is what it sends to a table that cannot be.
    EXPECT_TRUE(until([this] { return model_.flow_switch().table(INSTANCE, 0).rules >= 2; }));
    EXPECT_TRUE(until([this] { return state().sent[1] >= 1; }));
    EXPECT_GE(state().received[5], 1u); // features request
    EXPECT_EQ(state().sent[6], state().received[5]);

    end_program();
    ASSERT_TRUE(until([this] { return !state().connected(); }));
    EXPECT_EQ(state().lost, 1u);
    start();
    ASSERT_TRUE(connects());
    EXPECT_EQ(state().connections, 2u);
    EXPECT_GE(model_.flow_switch().table(INSTANCE, 0).rules, 2u);
}

TEST_F(RealControllerTest, AnApplicationOfOsKenUnderstandsEveryAnswer)
{
    if (access(OSKEN_MANAGER, X_OK) != 0) {
        GTEST_SKIP() << "python3-os-ken is not installed";
    }
    setenv("ANSWERS", path("answers").c_str(), 1);
    const uint16_t port = free_port();
    run_program({OSKEN_MANAGER, "--ofp-listen-host", "127.0.0.1", "--ofp-tcp-listen-port",
                 std::to_string(port), OFP_OSKEN_CONTROLLER});
    add(port);
    ASSERT_TRUE(connects());
    const std::set<std::string> expected = {
        "features 0x102030405060708 tables 1",
        "role 2 generation 5",
        "config 0 128",
        "description memory switch, the lab",
        "table 0 rules 0",
        "masks [3, 0]",
        "ports known",
        "error 5 2", // table 77
        "barrier",
    };
    std::set<std::string> answers;
    EXPECT_TRUE(until([&] {
        std::ifstream file(path("answers"));
        for (std::string line; std::getline(file, line);) {
            answers.insert(line);
        }
        return answers.size() >= expected.size();
    }));
    EXPECT_EQ(answers, expected);
    EXPECT_EQ(model_.flow_switch().table(INSTANCE, 0).rules, 100u);
    EXPECT_EQ(model_.flow_switch().group_count(INSTANCE), 1u);
    EXPECT_EQ(state().role, Role::master);
}

} // namespace
} // namespace agent::test

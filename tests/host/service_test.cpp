#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fixture.h"
#include "ofp/result.h"

using namespace host_test;

namespace {

uint32_t status_of(uint16_t node)
{
    uint32_t status = 77;
    EXPECT_EQ(SERVICE_GetStatus(node, "OFP", UINT32_MAX, &status), 0u) << HOST_LastError();
    return status;
}

class Service : public HostTest {
protected:
    Service() { setenv("OFP_START_TIMEOUT", "8", 1); }

    /* Agents that got a lock so far. */
    long starts() const
    {
        std::string lines = read_file(path("started"));
        return std::count(lines.begin(), lines.end(), '\n');
    }
};

void expect_error(const char *part)
{
    EXPECT_NE(strstr(HOST_LastError(), part), nullptr) << "error is: " << HOST_LastError();
}

TEST_F(Service, DoesNotRunWhereNothingWasStarted)
{
    in_child([] {
        EXPECT_EQ(status_of(0), 0u);
        EXPECT_EQ(HOST_GetAgentPid(0), 0);
    });
}

TEST_F(Service, StartReturnsWhenTheAgentAnswers)
{
    in_child([this] {
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(status_of(0), 1u);
        EXPECT_EQ(ask("hello"), "hello");
        EXPECT_EQ(ask(""), "empty datagram");
        EXPECT_EQ(ask("pid"), std::to_string(HOST_GetAgentPid(0)));
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u);
        EXPECT_EQ(starts(), 1);
    });
}

TEST_F(Service, AgentBelongsToNobody)
{
    int leaked = open("/dev/null", O_RDONLY); // not close-on-exec
    in_child([this] {
        setenv("OFP_TRACE", path("trace.pcapng").c_str(), 1);
        describe("");
        ASSERT_EQ(chdir(directory_.c_str()), 0);
        setenv("OFP_HOST_CONFIG", "host.toml", 1);
        sigset_t blocked;
        sigfillset(&blocked);
        sigprocmask(SIG_BLOCK, &blocked, nullptr);
        signal(SIGHUP, SIG_IGN);
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_NE(ask("parent"), std::to_string(getpid()));
        EXPECT_NE(ask("session"), std::to_string(getsid(0)));
    });
    close(leaked);
    EXPECT_EQ(ask("folder"), "/");
    EXPECT_EQ(ask("signals"), "usual");
    EXPECT_EQ(ask("environment OFP_RUNTIME_DIR"), directory_);
    EXPECT_EQ(ask("environment OFP_HOST_CONFIG"), path("host.toml"));
    EXPECT_EQ(ask("environment OFP_TRACE"), "(unset)");
    /* Standard ones, lock, listener, this connection. */
    EXPECT_EQ(ask("descriptors"), "0 1 2 3 4 5 ");
}

TEST_F(Service, KilledAgentIsGoneAtOnce)
{
    in_child([this] {
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        int s = connect_client(5000);
        char buffer[8];
        ASSERT_EQ(SOCK_Send(s, "die", 3, 0), 3);
        EXPECT_EQ(SOCK_Recv(s, buffer, sizeof buffer, 0), -1);
        EXPECT_EQ(errno, ECONNRESET);
        SOCK_Close(s);
        /* Its socket goes a moment before its locks do. */
        auto start = Clock::now();
        while (status_of(0) != 0 && since(start) < Milliseconds(1000)) {
        }
        EXPECT_EQ(status_of(0), 0u);
        EXPECT_EQ(HOST_GetAgentPid(0), 0);
        EXPECT_EQ(access(path("agent.sock").c_str(), F_OK), 0) << "a stale socket is left";
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(ask("again"), "again");
    });
}

TEST_F(Service, StaleFilesAreNoAgent)
{
    {
        BareAgent dead(path("agent.sock"));
    }
    write_file("agent.lock", "12345\n");
    write_file("agent.start", "");
    in_child([] {
        EXPECT_EQ(status_of(0), 0u);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(ask("x"), "x");
    });
}

TEST_F(Service, RemovedAndReplacedLockFilesAreNoAgent)
{
    in_child([this] {
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        pid_t agent = HOST_GetAgentPid(0);
        EXPECT_EQ(status_of(0), 1u);
        ASSERT_EQ(rename(path("agent.lock").c_str(), path("kept").c_str()), 0);
        ASSERT_EQ(link(path("kept").c_str(), path("agent.lock").c_str()), 0);
        EXPECT_EQ(status_of(0), 1u);
        unlink(path("kept").c_str());
        unlink(path("agent.lock").c_str());
        EXPECT_EQ(status_of(0), 0u);
        write_file("agent.lock", "");
        EXPECT_EQ(status_of(0), 0u);
        kill(agent, SIGKILL);
    });
}

TEST_F(Service, ProgramsThatCloseWhatTheyDoNotKnowDoNotMatter)
{
    in_child([] {
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(status_of(0), 1u);
        constexpr int most = 30;
        for (int fd = 3; fd < most; ++fd) {
            close(fd);
        }
        EXPECT_EQ(status_of(0), 1u);
        for (int fd = 3; fd < most; ++fd) {
            close(fd);
        }
        while (open("/dev/null", O_RDONLY | O_CLOEXEC) < most) {
        }
        EXPECT_EQ(status_of(0), 1u);
        for (int fd = 3; fd <= most; ++fd) {
            EXPECT_GE(fcntl(fd, F_GETFD), 0) << fd;
        }
    });
}

TEST_F(Service, AskingLeavesTheStandardDescriptorsAlone)
{
    in_child([] {
        ASSERT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        int saved = fcntl(2, F_DUPFD_CLOEXEC, 100);
        close(0);
        close(2);
        uint32_t status = 0;
        setenv("OFP_RUNTIME_DIR", (std::string(getenv("OFP_RUNTIME_DIR")) + "/.").c_str(), 1);
        SERVICE_GetStatus(0, "OFP", 0, &status);
        bool free = fcntl(0, F_GETFD) == -1 && fcntl(2, F_GETFD) == -1;
        dup2(saved, 2);
        EXPECT_EQ(status, 1u);
        EXPECT_TRUE(free);
    });
}

TEST_F(Service, FileInTheSocketsPlaceIsNotRemoved)
{
    write_file("agent.sock", "precious");
    in_child([] {
        EXPECT_NE(SERVICE_Start(0, "OFP", 0, 0), 0u);
        expect_error("in the way, and not a socket");
    });
    EXPECT_EQ(read_file(path("agent.sock")), "precious");
}

TEST_F(Service, EightProcessesThatStartAtOnceGetOneAgent)
{
    in_child([this] {
        setenv("OFP_STAND_IN", "is slow", 1);
        std::vector<pid_t> children;
        for (int i = 0; i < 8; ++i) {
            children.push_back(start_child([] {
                EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
                EXPECT_EQ(status_of(0), 1u);
                EXPECT_EQ(ask("x"), "x");
            }));
        }
        for (pid_t child : children) {
            EXPECT_EQ(wait_for(child), 0);
        }
        EXPECT_EQ(starts(), 1);
    });
}

TEST_F(Service, RunsFromTheMomentThatItCanBeConnectedTo)
{
    in_child([] {
        setenv("OFP_STAND_IN", "is slow", 1);
        pid_t starter = start_child([] { EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u); });
        auto start = Clock::now();
        bool was_locked_only = false;
        while (status_of(0) == 0 && since(start) < Milliseconds(5000)) {
            was_locked_only = was_locked_only || HOST_GetAgentPid(0) > 0;
        }
        EXPECT_EQ(ask("x"), "x");
        EXPECT_TRUE(was_locked_only);
        EXPECT_EQ(wait_for(starter), 0);
    });
}

TEST_F(Service, AgentStartedByHandIsWaitedFor)
{
    in_child([this] {
        pid_t by_hand = fork();
        if (by_hand == 0) {
            setenv("OFP_STAND_IN", "is slow", 1);
            int null_device = open("/dev/null", O_WRONLY);
            dup2(null_device, 9);
            execl(STAND_IN_AGENT, STAND_IN_AGENT, "--node", "0", "--ready-fd", "9", nullptr);
            _exit(1);
        }
        while (HOST_GetAgentPid(0) == 0) {
            usleep(1000);
        }
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(ask("pid"), std::to_string(by_hand));
        EXPECT_EQ(starts(), 1);
        kill(by_hand, SIGKILL);
        wait_for(by_hand);
    });
}

TEST_F(Service, WhatTheAgentSaysReachesTheError)
{
    in_child([] {
        setenv("OFP_STAND_IN", "refuses", 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        EXPECT_STREQ(HOST_LastError(), "the agent did not start: the database is locked");
        EXPECT_EQ(status_of(0), 0u);
    });
}

TEST_F(Service, SilentEndNamesTheLog)
{
    in_child([this] {
        setenv("OFP_STAND_IN", "silent", 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error(("before it was ready; see " + path("agent.log")).c_str());
    });
}

TEST_F(Service, AgentThatHangsIsEndedAfterTheTimeOut)
{
    in_child([] {
        setenv("OFP_START_TIMEOUT", "0.4", 1);
        for (const char *way : {"hangs", "hangs with the lock"}) {
            setenv("OFP_STAND_IN", way, 1);
            auto start = Clock::now();
            EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
            EXPECT_GE(since(start), Milliseconds(390));
            EXPECT_LT(since(start), Milliseconds(1500));
            expect_error("did not become ready in time");
            EXPECT_EQ(HOST_GetAgentPid(0), 0) << way;
        }
        setenv("OFP_STAND_IN", "", 1);
        setenv("OFP_START_TIMEOUT", "8", 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
    });
}

TEST_F(Service, TimeOutThatIsNoNumberOfSecondsIsRefused)
{
    in_child([] {
        for (const char *wrong : {"ten", "0", "-1", "1s", "3601", "nan", "inf"}) {
            setenv("OFP_START_TIMEOUT", wrong, 1);
            EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
            expect_error("expected seconds, above 0 to 3600");
        }
    });
}

TEST_F(Service, ProgramThatIsMissingOrNoProgramIsNamed)
{
    write_file("script", "not a program");
    in_child([this] {
        setenv("OFP_AGENT", "/nowhere/ofp-agent", 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error("OFP_AGENT=/nowhere/ofp-agent: No such file or directory");
        setenv("OFP_AGENT", path("script").c_str(), 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error("Permission denied");
        ASSERT_EQ(chmod(path("script").c_str(), 0700), 0);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error("Exec format error");
    });
}

TEST_F(Service, OptionsOfTheEnvironmentReachTheAgent)
{
    in_child([] {
        setenv("OFP_AGENT_OPTIONS", "  --ACLTableNum=16  --TDEnable 1 ", 1);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(ask("arguments"), "--node|0|--ready-fd|3|--ACLTableNum=16|--TDEnable|1|");
    });
}

/* A program with its own copy of the library, without OFP_AGENT. */
class FindAgent : public HostTest {
protected:
    FindAgent()
    {
        std::filesystem::create_directories(path("lib"));
        std::filesystem::create_directories(path("bin"));
        std::filesystem::create_directories(path("path"));
        std::filesystem::copy(HOST_LIBRARY, path("lib/libofp-host.so.1"));
    }

    /* What a start says there. */
    std::string start() const
    {
        std::string command = "unset OFP_AGENT; LD_LIBRARY_PATH=" + path("lib") +
                              " PATH=relative:/nowhere:" + path("path") +
                              " " STAND_IN_AGENT " --start >" + path("said") + " 2>&1";
        EXPECT_NE(system(command.c_str()), -1);
        return read_file(path("said"));
    }
};

TEST_F(FindAgent, BesideTheLibraryThenInThePath)
{
    EXPECT_EQ(start(), "no ofp-agent at " + path("lib/../bin/ofp-agent") +
                           " nor in PATH; OFP_AGENT can name it\n"
                           "no ofp-agent at " +
                           path("lib/../bin/ofp-agent") + " nor in PATH; OFP_AGENT can name it\n");
    std::filesystem::create_symlink(STAND_IN_AGENT, path("path/ofp-agent"));
    EXPECT_EQ(start(), path("path/ofp-agent") + "\nstarted\n");
    std::filesystem::create_symlink(STAND_IN_AGENT, path("bin/ofp-agent"));
    EXPECT_EQ(start(), path("lib/../bin/ofp-agent") + "\nstarted\n");
}

TEST_F(Service, ClosedStandardDescriptorsDoNotMatter)
{
    in_child([] {
        int saved = fcntl(2, F_DUPFD_CLOEXEC, 100);
        close(0);
        close(1);
        close(2);
        uint32_t code = SERVICE_Start(0, "OFP", 0, 0);
        dup2(saved, 2);
        EXPECT_EQ(code, 0u) << HOST_LastError();
        EXPECT_EQ(ask("x"), "x");
    });
}

TEST_F(Service, IgnoredChildrenDoNotMatter)
{
    in_child([] {
        signal(SIGCHLD, SIG_IGN);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
    });
}

TEST_F(Service, OtherServicesAreNotKnown)
{
    in_child([] {
        uint32_t status = 5;
        EXPECT_EQ(SERVICE_GetStatus(0, "SNMP", 0, &status), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(status, 0u);
        EXPECT_EQ(SERVICE_Start(0, "SNMP", 0, 0), uint32_t{OFP_RC_INVALID});
        expect_error("service SNMP is not known");
        EXPECT_EQ(SERVICE_Start(0, nullptr, 0, 0), uint32_t{OFP_RC_INVALID});
    });
}

constexpr const char *three_nodes = R"(
[device]
master = 1
[[node]]
id = 1
[[node]]
id = 2
[[node]]
id = 9
up = false
)";

TEST_F(Service, EveryNodeHasItsOwnAgent)
{
    describe(three_nodes);
    in_child([this] {
        const uint16_t nodes[] = {1, 2};
        EXPECT_EQ(SERVICE_BatchStart(nodes, 2, "OFP", 0, 0), 0u) << HOST_LastError();
        EXPECT_EQ(status_of(1), 1u);
        EXPECT_EQ(status_of(2), 1u);
        EXPECT_EQ(status_of(9), 0u);
        EXPECT_NE(HOST_GetAgentPid(1), HOST_GetAgentPid(2));
        EXPECT_EQ(ask("pid"), std::to_string(HOST_GetAgentPid(1)));
        EXPECT_EQ(access(path("agent-2.sock").c_str(), F_OK), 0);
    });
}

TEST_F(Service, BatchTriesAllAndReportsTheFirstFailure)
{
    describe(three_nodes);
    in_child([] {
        const uint16_t nodes[] = {9, 2};
        EXPECT_EQ(SERVICE_BatchStart(nodes, 2, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(status_of(2), 1u);
        EXPECT_EQ(SERVICE_BatchStart(nullptr, 0, "OFP", 0, 0), 0u);
        EXPECT_EQ(SERVICE_BatchStart(nullptr, 1, "OFP", 0, 0), uint32_t{OFP_RC_INVALID});
    });
}

TEST_F(Service, NodesThatAreDownOrUnknownAreRefused)
{
    describe(three_nodes);
    in_child([] {
        uint32_t status = 5;
        EXPECT_EQ(SERVICE_Start(9, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error("node 9 is down");
        EXPECT_EQ(SERVICE_Start(3, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        expect_error("node 3 is not described in");
        EXPECT_EQ(SERVICE_GetStatus(3, "OFP", 0, &status), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(status, 0u);
        EXPECT_EQ(SERVICE_IsPhase4Over(1), 1u);
        EXPECT_EQ(SERVICE_IsPhase4Over(9), 0u);
        EXPECT_EQ(SERVICE_IsPhase4Over(3), 0u);
    });
}

} // namespace

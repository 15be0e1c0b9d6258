/* The agent's side: runtime directory, lock, listening. */
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fixture.h"
#include "ofp/result.h"

using namespace host_test;

namespace {

class RuntimeDir : public HostTest {};

class AgentSide : public HostTest {};

void expect_error(const std::string &part)
{
    EXPECT_NE(std::string(HOST_LastError()).find(part), std::string::npos)
        << "error is: " << HOST_LastError();
}

std::string runtime_dir(int32_t create)
{
    char text[200] = "untouched";
    return HOST_GetRuntimeDir(text, sizeof text, create) == 0 ? text : "";
}

TEST_F(RuntimeDir, IsTheNamedOneElseTheSessions)
{
    EXPECT_EQ(runtime_dir(0), directory_);
    setenv("XDG_RUNTIME_DIR", directory_.c_str(), 1);
    EXPECT_EQ(runtime_dir(0), directory_);
    unsetenv("OFP_RUNTIME_DIR");
    EXPECT_EQ(runtime_dir(0), path("ofp"));
    setenv("OFP_RUNTIME_DIR", "", 1);
    EXPECT_EQ(runtime_dir(0), path("ofp"));
    EXPECT_NE(access(path("ofp").c_str(), F_OK), 0);
    EXPECT_EQ(runtime_dir(1), path("ofp"));
    struct stat info {};
    ASSERT_EQ(stat(path("ofp").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777u, 0700u);
    EXPECT_EQ(runtime_dir(1), path("ofp"));
}

TEST_F(RuntimeDir, MustBeNamedAbsolutely)
{
    setenv("OFP_RUNTIME_DIR", "run/ofp", 1);
    EXPECT_EQ(runtime_dir(0), "");
    expect_error("OFP_RUNTIME_DIR=run/ofp: must be an absolute path");
}

TEST_F(RuntimeDir, OpenToOthersIsRefused)
{
    ASSERT_EQ(chmod(directory_.c_str(), 0750), 0);
    EXPECT_EQ(runtime_dir(0), "");
    expect_error("open to others (mode 0750), wants chmod 700");
    in_child([] { EXPECT_EQ(HOST_LockAgent(0), -1); });
}

TEST_F(RuntimeDir, OfAnotherUserIsRefused)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to give a directory away";
    }
    ASSERT_EQ(chown(directory_.c_str(), 12345, 12345), 0);
    EXPECT_EQ(runtime_dir(0), "");
    expect_error("belongs to user 12345, not to you (0)");
}

TEST_F(RuntimeDir, WithoutAParentOrInAFilesPlaceIsNotMade)
{
    setenv("OFP_RUNTIME_DIR", path("a/b").c_str(), 1);
    EXPECT_EQ(runtime_dir(1), "");
    expect_error("cannot create runtime directory " + path("a/b") + ": No such file or directory");
    write_file("file", "");
    setenv("OFP_RUNTIME_DIR", path("file").c_str(), 1);
    EXPECT_EQ(runtime_dir(1), "");
    expect_error("not a directory");
}

TEST_F(RuntimeDir, HasAPathPerNode)
{
    describe("[[node]]\nid = 4\n[[node]]\nid = 5\n");
    in_child([this] {
        char text[200];
        EXPECT_EQ(HOST_GetSocketPath(4, text, sizeof text), 0);
        EXPECT_EQ(text, path("agent.sock"));
        EXPECT_EQ(HOST_GetSocketPath(5, text, sizeof text), 0);
        EXPECT_EQ(text, path("agent-5.sock"));
        EXPECT_EQ(HOST_GetLogPath(5, text, sizeof text), 0);
        EXPECT_EQ(text, path("agent-5.log"));
        EXPECT_EQ(HOST_GetSocketPath(6, text, sizeof text), -1);
        expect_error("node 6 is not described in " + path("host.toml"));
        EXPECT_EQ(HOST_GetSocketPath(4, text, 10), -1);
        expect_error("does not fit the caller's 10 bytes");
    });
}

TEST_F(AgentSide, OneProcessAtATimeHoldsTheLock)
{
    in_child([] {
        int lock = HOST_LockAgent(0);
        ASSERT_GE(lock, 0) << HOST_LastError();
        EXPECT_EQ(HOST_GetAgentPid(0), getpid());
        EXPECT_EQ(HOST_LockAgent(0), -1);
        EXPECT_EQ(errno, EWOULDBLOCK);
        pid_t agent = getpid();
        in_child([=] {
            EXPECT_EQ(HOST_GetAgentPid(0), agent);
            EXPECT_EQ(HOST_LockAgent(0), -1);
            EXPECT_EQ(errno, EWOULDBLOCK);
            EXPECT_EQ(HOST_ListenAgent(0), -1);
            EXPECT_EQ(errno, EPERM);
        });
        close(lock);
        EXPECT_EQ(HOST_GetAgentPid(0), 0);
        int again = HOST_LockAgent(0);
        EXPECT_GE(again, 0);
    });
}

TEST_F(AgentSide, AskingAboutItsOwnLockDoesNotDropIt)
{
    in_child([] {
        uint32_t status = 0;
        ASSERT_GE(HOST_LockAgent(0), 0) << HOST_LastError();
        EXPECT_EQ(HOST_GetAgentPid(0), getpid());
        EXPECT_EQ(SERVICE_GetStatus(0, "OFP", 0, &status), 0u);
        EXPECT_EQ(status, 0u);
        int listener = HOST_ListenAgent(0);
        ASSERT_GE(listener, 0) << HOST_LastError();
        EXPECT_EQ(SERVICE_GetStatus(0, "OFP", 0, &status), 0u);
        EXPECT_EQ(status, 1u);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), 0u) << HOST_LastError();
        pid_t agent = getpid();
        in_child([=] {
            uint32_t seen = 0;
            EXPECT_EQ(HOST_GetAgentPid(0), agent);
            EXPECT_EQ(SERVICE_GetStatus(0, "OFP", 0, &seen), 0u);
            EXPECT_EQ(seen, 1u);
        });
    });
}

TEST_F(AgentSide, AskingBeforeTakingTheLockDoesNotDropItLater)
{
    write_file("agent.lock", "");
    in_child([this] {
        EXPECT_EQ(HOST_GetAgentPid(0), 0);
        ASSERT_GE(HOST_LockAgent(0), 0) << HOST_LastError();
        /* Elsewhere, so that what was looked at before is no longer needed. */
        ASSERT_EQ(mkdir(path("other").c_str(), 0700), 0);
        write_file("other/agent.lock", "");
        setenv("OFP_RUNTIME_DIR", path("other").c_str(), 1);
        EXPECT_EQ(HOST_GetAgentPid(0), 0);
        setenv("OFP_RUNTIME_DIR", directory_.c_str(), 1);
        pid_t agent = getpid();
        in_child([=] { EXPECT_EQ(HOST_GetAgentPid(0), agent); });
    });
}

TEST_F(AgentSide, ListenerIsPrivateAndReplacesAStaleSocket)
{
    {
        BareAgent dead(path("agent.sock"));
    }
    in_child([this] {
        ASSERT_GE(HOST_LockAgent(0), 0) << HOST_LastError();
        int listener = HOST_ListenAgent(0);
        ASSERT_GE(listener, 0) << HOST_LastError();
        struct stat info {};
        ASSERT_EQ(stat(path("agent.sock").c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777u, 0600u);
        EXPECT_EQ(fcntl(listener, F_GETFD), FD_CLOEXEC);
        EXPECT_NE(fcntl(listener, F_GETFL) & O_NONBLOCK, 0);

        int client = connect_client(1000);
        int accepted = accept4(listener, nullptr, nullptr, SOCK_NONBLOCK);
        ASSERT_GE(accepted, 0);
        char buffer[8];
        EXPECT_EQ(SOCK_Send(client, "", 0, 0), 0);
        EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 0);
        SOCK_Close(client);
        EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), HOST_HANGUP);
    });
}

TEST_F(AgentSide, DatagramsSentBeforeTheAcceptAreToldFromHangUpsToo)
{
    in_child([] {
        ASSERT_GE(HOST_LockAgent(0), 0) << HOST_LastError();
        int listener = HOST_ListenAgent(0);
        ASSERT_GE(listener, 0) << HOST_LastError();
        int client = connect_client(1000);
        EXPECT_EQ(SOCK_Send(client, "", 0, 0), 0);
        SOCK_Close(client);
        int accepted = accept4(listener, nullptr, nullptr, SOCK_NONBLOCK);
        char buffer[8];
        EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 0);
        EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), HOST_HANGUP);
    });
}

TEST_F(AgentSide, LockFileThatCannotBeOpenedIsAnError)
{
    ASSERT_EQ(mkdir(path("agent.lock").c_str(), 0700), 0);
    in_child([this] {
        EXPECT_EQ(HOST_LockAgent(0), -1);
        expect_error("lock file " + path("agent.lock") + ": Is a directory");
        EXPECT_NE(SERVICE_Start(0, "OFP", 0, 0), 0u);
    });
}

} // namespace

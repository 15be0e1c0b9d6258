#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "fixture.h"

using namespace host_test;

namespace {

constexpr int64_t limit = 5000; /* milliseconds: a hang becomes a failure */

/* A client and the accepted other end. */
struct Pair {
    explicit Pair(const HostTest &, const std::string &path, int64_t time_out = limit)
        : agent(path), client(connect_client(time_out)), accepted(agent.accept())
    {}
    ~Pair()
    {
        SOCK_Close(client);
        close(accepted);
    }

    BareAgent agent;
    int client;
    int accepted;
};

class Socket : public HostTest {
protected:
    std::string socket_path() const { return path("agent.sock"); }
};

timeval time_out_of(int s, int option)
{
    timeval value{};
    socklen_t length = sizeof value;
    EXPECT_EQ(getsockopt(s, SOL_SOCKET, option, &value, &length), 0);
    return value;
}

TEST_F(Socket, OnlyTheServicesOwnFamilyExists)
{
    EXPECT_EQ(SOCK_Socket(AF_INET, 2, 1), -1);
    EXPECT_EQ(errno, EAFNOSUPPORT);
    EXPECT_EQ(SOCK_Socket(37, 1, 1), -1);
    EXPECT_EQ(errno, ESOCKTNOSUPPORT);
    EXPECT_EQ(SOCK_Socket(37, 2, 0), -1);
    EXPECT_EQ(errno, EPROTONOSUPPORT);
    int s = SOCK_Socket(37, 2, 1);
    ASSERT_GE(s, 0);
    EXPECT_EQ(fcntl(s, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(SOCK_Close(s), 0);
    EXPECT_EQ(SOCK_Close(s), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(Socket, OptionNumbersBecomeTheHosts)
{
    int s = SOCK_Socket(37, 2, 1);
    int64_t send_time[2] = {30, 0};
    int64_t receive_time[2] = {0, 250'000};
    int32_t buffer = 65536;
    uint32_t container = 7;
    EXPECT_EQ(SOCK_SetOption(s, 1, 0x1005, send_time, 16), 0);
    EXPECT_EQ(SOCK_SetOption(s, 1, 0x1006, receive_time, 16), 0);
    EXPECT_EQ(SOCK_SetOption(s, 1, 0x1002, &buffer, 4), 0);
    EXPECT_EQ(SOCK_SetOption(s, 0x113, 16, &container, 4), 0);
    EXPECT_EQ(time_out_of(s, SO_SNDTIMEO).tv_sec, 30);
    EXPECT_NEAR(static_cast<double>(time_out_of(s, SO_RCVTIMEO).tv_usec), 250'000, 20'000);
    int size = 0;
    socklen_t length = sizeof size;
    EXPECT_EQ(getsockopt(s, SOL_SOCKET, SO_RCVBUF, &size, &length), 0);
    EXPECT_EQ(size, 2 * 65536); // the kernel doubles it
    SOCK_Close(s);
}

TEST_F(Socket, UnknownOptionsAndWrongSizesAreRefused)
{
    int s = SOCK_Socket(37, 2, 1);
    int64_t time[2] = {1, 0};
    for (auto [level, option] : {std::pair{1, 0x1001}, {1, 20}, {0x113, 17}, {2, 0x1005}}) {
        EXPECT_EQ(SOCK_SetOption(s, level, option, time, 16), -1);
        EXPECT_EQ(errno, ENOPROTOOPT) << level << " " << option;
    }
    for (uint32_t length : {0u, 4u, 8u, 15u, 17u}) {
        EXPECT_EQ(SOCK_SetOption(s, 1, 0x1006, time, length), -1);
        EXPECT_EQ(errno, EINVAL) << length;
    }
    EXPECT_EQ(SOCK_SetOption(s, 0x113, 16, time, 8), -1);
    EXPECT_EQ(SOCK_SetOption(s, 1, 0x1005, nullptr, 16), -1);
    int64_t wrong[2] = {1, 1'000'000};
    EXPECT_EQ(SOCK_SetOption(s, 1, 0x1005, wrong, 16), -1);
    SOCK_Close(s);
    EXPECT_EQ(SOCK_SetOption(-1, 0x113, 16, time, 4), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(Socket, AddressIsChecked)
{
    BareAgent agent(socket_path());
    int s = SOCK_Socket(37, 2, 1);
    struct Case {
        size_t byte;
        uint8_t value;
        int code;
    };
    for (auto [byte, value, code] : {Case{0, 15, EINVAL}, Case{1, 1, EAFNOSUPPORT},
                                     Case{2, 5, ECONNREFUSED}, Case{3, 0x93, ECONNREFUSED}}) {
        uint8_t address[16];
        memcpy(address, service_address, sizeof address);
        address[byte] = value;
        EXPECT_EQ(SOCK_Connect(s, address, sizeof address), -1);
        EXPECT_EQ(errno, code) << byte;
    }
    EXPECT_EQ(SOCK_Connect(s, service_address, 15), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), 0);
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, EISCONN);
    SOCK_Close(s);
}

TEST_F(Socket, ConnectWithoutAnAgentFailsAtOnce)
{
    int s = SOCK_Socket(37, 2, 1);
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, ENOENT);
    {
        BareAgent dead(socket_path());
    }
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, ECONNREFUSED);
    write_file("regular", "x");
    ASSERT_EQ(rename(path("regular").c_str(), socket_path().c_str()), 0);
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, ECONNREFUSED);
    EXPECT_LT(since(start), Milliseconds(500));
    SOCK_Close(s);
}

TEST_F(Socket, PathTooLongForAnAddressIsAnError)
{
    int s = SOCK_Socket(37, 2, 1);
    setenv("OFP_RUNTIME_DIR", ("/tmp/" + std::string(120, 'x')).c_str(), 1);
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    SOCK_Close(s);
}

TEST_F(Socket, DatagramsKeepTheirBoundaries)
{
    Pair p(*this, socket_path());
    char buffer[65536];
    std::string large(49152, 'L');
    EXPECT_EQ(SOCK_Send(p.client, "one", 3, 0), 3);
    EXPECT_EQ(SOCK_Send(p.client, large.data(), large.size(), 0), 49152);
    EXPECT_EQ(recv(p.accepted, buffer, sizeof buffer, 0), 3);
    EXPECT_EQ(recv(p.accepted, buffer, sizeof buffer, 0), 49152);

    EXPECT_EQ(send(p.accepted, "truncated", 9, 0), 9);
    EXPECT_EQ(send(p.accepted, "next", 4, 0), 4);
    EXPECT_EQ(SOCK_Recv(p.client, buffer, 4, 0), 4);
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0), 4);
    EXPECT_EQ(memcmp(buffer, "next", 4), 0);
}

TEST_F(Socket, EmptyDatagramFromTheAgentIsNotAHangUp)
{
    Pair p(*this, socket_path());
    char buffer[16];
    EXPECT_EQ(send(p.accepted, "", 0, 0), 0);
    EXPECT_EQ(send(p.accepted, "", 0, 0), 0);
    shutdown(p.accepted, SHUT_RDWR);
    EXPECT_EQ(SOCK_Recv(p.client, buffer, sizeof buffer, 0), 0);
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0x40), 0);
    EXPECT_EQ(SOCK_Recv(p.client, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, ECONNRESET);
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0x40), -1);
    EXPECT_EQ(errno, ECONNRESET);
}

TEST_F(Socket, EmptyDatagramToTheAgentIsNotAHangUp)
{
    BareAgent agent(socket_path());
    int client = connect_client(limit);
    EXPECT_EQ(SOCK_Send(client, "", 0, 0), 0);
    EXPECT_EQ(SOCK_Send(client, nullptr, 0, 0), 0);
    EXPECT_EQ(SOCK_Send(client, "x", 1, 0), 1);
    int accepted = agent.accept();
    int on = 1;
    ASSERT_EQ(setsockopt(accepted, SOL_SOCKET, SO_PASSCRED, &on, sizeof on), 0);
    char buffer[16];
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 0);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 0);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 1);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(SOCK_Send(client, "", 0, 0), 0);
    EXPECT_EQ(send(accepted, "unread", 6, 0), 6);
    SOCK_Close(client);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), 0);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), HOST_HANGUP);
    EXPECT_EQ(HOST_Receive(accepted, buffer, sizeof buffer), HOST_HANGUP);
    close(accepted);
}

TEST_F(Socket, DescriptorsThatAClientAttachesAreNotTaken)
{
    Pair p(*this, socket_path());
    int on = 1;
    ASSERT_EQ(setsockopt(p.accepted, SOL_SOCKET, SO_PASSCRED, &on, sizeof on), 0);
    char text[] = "x";
    iovec data{text, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(4 * sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(4 * sizeof(int));
    int fds[4] = {0, 1, 2, p.client};
    memcpy(CMSG_DATA(header), fds, sizeof fds);
    ASSERT_EQ(sendmsg(p.client, &message, 0), 1);
    int before = dup(0);
    close(before);
    char buffer[4];
    EXPECT_EQ(HOST_Receive(p.accepted, buffer, sizeof buffer), 1);
    int after = dup(0);
    close(after);
    EXPECT_EQ(before, after);
}

TEST_F(Socket, AnswersSentBeforeTheAgentDiedAreStillRead)
{
    Pair p(*this, socket_path());
    char buffer[16];
    EXPECT_EQ(SOCK_Send(p.client, "never read", 10, 0), 10);
    EXPECT_EQ(send(p.accepted, "answer", 6, 0), 6);
    close(p.accepted);
    p.accepted = -1;
    EXPECT_EQ(SOCK_Recv(p.client, buffer, sizeof buffer, 0), 6);
    EXPECT_EQ(SOCK_Recv(p.client, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, ECONNRESET);
}

TEST_F(Socket, SendToADeadAgentIsAnErrorAndNoSignal)
{
    Pair p(*this, socket_path());
    signal(SIGPIPE, SIG_DFL);
    close(p.accepted);
    p.accepted = -1;
    EXPECT_EQ(SOCK_Send(p.client, "x", 1, 0), -1);
    EXPECT_EQ(errno, EPIPE);
}

TEST_F(Socket, Flag0x40DoesNotWait)
{
    Pair p(*this, socket_path(), 0);
    char buffer[16];
    auto start = Clock::now();
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0x40), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_LT(since(start), Milliseconds(100));
    EXPECT_EQ(send(p.accepted, "event", 5, 0), 5);
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0x40), 5);
}

TEST_F(Socket, DescriptorWorksWithPollAndEpoll)
{
    Pair p(*this, socket_path());
    pollfd polled{p.client, POLLIN, 0};
    EXPECT_EQ(poll(&polled, 1, 0), 0);
    EXPECT_EQ(send(p.accepted, "event", 5, 0), 5);
    EXPECT_EQ(poll(&polled, 1, 1000), 1);
    EXPECT_EQ(polled.revents, POLLIN);

    char buffer[16];
    int queue = epoll_create1(EPOLL_CLOEXEC);
    epoll_event wanted{.events = EPOLLIN | EPOLLRDHUP, .data = {}};
    epoll_event event{};
    ASSERT_EQ(epoll_ctl(queue, EPOLL_CTL_ADD, p.client, &wanted), 0);
    EXPECT_EQ(epoll_wait(queue, &event, 1, 1000), 1);
    EXPECT_EQ(SOCK_RecvFrom(p.client, buffer, sizeof buffer, 0x40), 5);
    EXPECT_EQ(epoll_wait(queue, &event, 1, 0), 0);
    close(p.accepted);
    p.accepted = -1;
    EXPECT_EQ(epoll_wait(queue, &event, 1, 1000), 1);
    EXPECT_NE(event.events & EPOLLRDHUP, 0u);
    close(queue);
}

} // namespace

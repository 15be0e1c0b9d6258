/* Time-outs of the service's sockets, with and without signals. */
#include <cerrno>
#include <csignal>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

#include "fixture.h"

using namespace host_test;

namespace {

class TimeOut : public HostTest {
protected:
    TimeOut() : agent_(path("agent.sock"), 0) {}

    BareAgent agent_;
};

void expect_about(Milliseconds taken, int64_t wanted)
{
    EXPECT_GE(taken.count(), wanted - 10);
    EXPECT_LT(taken.count(), wanted + 250); // a busy machine; a stretched time-out never ends
}

/* Runs the body on a thread that gets no signals. */
std::thread quiet_thread(const std::function<void()> &body)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(body);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

/* Sends until the other end's queue is full. */
void fill(int s)
{
    char datagram[8192] = {};
    while (SOCK_Send(s, datagram, sizeof datagram, 0x40) > 0) {
    }
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(TimeOut, EndsAReceive)
{
    int s = connect_client(200);
    char buffer[4];
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Recv(s, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 200);
    SOCK_Close(s);
}

TEST_F(TimeOut, EndsASendToAnAgentThatDoesNotRead)
{
    int s = connect_client(200);
    fill(s);
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Send(s, "x", 1, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 200);
    SOCK_Close(s);
}

TEST_F(TimeOut, EndsAConnectToAnAgentThatDoesNotAccept)
{
    int first = connect_client();
    int s = SOCK_Socket(37, 2, 1);
    ASSERT_EQ(set_time_out(s, 0x1005, 200), 0);
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 200);
    SOCK_Close(s);
    SOCK_Close(first);
}

TEST_F(TimeOut, IsNotStretchedBySignalsWhileReceiving)
{
    int s = connect_client(400);
    char buffer[4];
    SignalStorm storm;
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Recv(s, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 400);
    start = Clock::now();
    EXPECT_EQ(SOCK_RecvFrom(s, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 400);
    EXPECT_GT(SignalStorm::count(), 20);
    SOCK_Close(s);
}

TEST_F(TimeOut, IsNotStretchedBySignalsWhileSending)
{
    int s = connect_client(400);
    fill(s);
    SignalStorm storm;
    auto start = Clock::now();
    EXPECT_EQ(SOCK_Send(s, "x", 1, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    expect_about(since(start), 400);
    EXPECT_GT(SignalStorm::count(), 10);
    SOCK_Close(s);
}

TEST_F(TimeOut, IsNotStretchedBySignalsWhileConnecting)
{
    int first = connect_client();
    int s = SOCK_Socket(37, 2, 1);
    ASSERT_EQ(set_time_out(s, 0x1005, 400), 0);
    {
        SignalStorm storm;
        auto start = Clock::now();
        EXPECT_EQ(SOCK_Connect(s, service_address, 16), -1);
        EXPECT_EQ(errno, EAGAIN);
        expect_about(since(start), 400);
        EXPECT_GT(SignalStorm::count(), 10);
    }
    /* The whole time-out is back for what follows. */
    timeval value{};
    socklen_t length = sizeof value;
    EXPECT_EQ(getsockopt(s, SOL_SOCKET, SO_SNDTIMEO, &value, &length), 0);
    EXPECT_NEAR(static_cast<double>(value.tv_usec), 400'000, 20'000);
    SOCK_Close(s);
    SOCK_Close(first);
}

TEST_F(TimeOut, DatagramThatComesAmongSignalsIsReceived)
{
    int s = connect_client(5000);
    int accepted = agent_.accept();
    std::thread sender = quiet_thread([=] {
        std::this_thread::sleep_for(Milliseconds(150));
        EXPECT_EQ(send(accepted, "late", 4, 0), 4);
    });
    char buffer[8];
    {
        SignalStorm storm;
        EXPECT_EQ(SOCK_Recv(s, buffer, sizeof buffer, 0), 4);
        EXPECT_GT(SignalStorm::count(), 10);
    }
    sender.join();
    close(accepted);
    SOCK_Close(s);
}

TEST_F(TimeOut, NoneMeansThatSignalsDoNotEndAReceive)
{
    int s = connect_client(0);
    int accepted = agent_.accept();
    std::thread sender = quiet_thread([=] {
        std::this_thread::sleep_for(Milliseconds(150));
        EXPECT_EQ(send(accepted, "late", 4, 0), 4);
    });
    char buffer[8];
    {
        SignalStorm storm;
        EXPECT_EQ(SOCK_Recv(s, buffer, sizeof buffer, 0), 4);
    }
    sender.join();
    close(accepted);
    SOCK_Close(s);
}

TEST_F(TimeOut, RoomThatComesAmongSignalsLetsTheSendGoOn)
{
    int s = connect_client(5000);
    int accepted = agent_.accept();
    fill(s);
    std::thread reader = quiet_thread([=] {
        char buffer[8192];
        std::this_thread::sleep_for(Milliseconds(150));
        while (recv(accepted, buffer, sizeof buffer, MSG_DONTWAIT) > 1) {
        }
    });
    {
        SignalStorm storm;
        EXPECT_EQ(SOCK_Send(s, "x", 1, 0), 1);
    }
    reader.join();
    close(accepted);
    SOCK_Close(s);
}

TEST_F(TimeOut, AcceptAmongSignalsLetsTheConnectGoOn)
{
    int first = connect_client();
    std::thread acceptor = quiet_thread([this] {
        std::this_thread::sleep_for(Milliseconds(150));
        close(agent_.accept());
    });
    int s = SOCK_Socket(37, 2, 1);
    ASSERT_EQ(set_time_out(s, 0x1005, 5000), 0);
    {
        SignalStorm storm;
        EXPECT_EQ(SOCK_Connect(s, service_address, 16), 0);
    }
    acceptor.join();
    SOCK_Close(s);
    SOCK_Close(first);
}

} // namespace

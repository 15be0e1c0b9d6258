/* OFP_TRACE: what is in the file, and what happens when it cannot be written. */
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fixture.h"

using namespace host_test;

namespace {

struct Packet {
    std::string data;
    uint32_t direction = 0; /* 1 received, 2 sent */
    std::string comment;
    uint64_t time = 0;
};

uint32_t word(const std::string &file, size_t at)
{
    uint32_t value = 0;
    memcpy(&value, file.data() + at, sizeof value);
    return value;
}

uint16_t half(const std::string &file, size_t at)
{
    uint16_t value = 0;
    memcpy(&value, file.data() + at, sizeof value);
    return value;
}

size_t padded(size_t length) { return (length + 3) / 4 * 4; }

Packet read_packet(const std::string &file, size_t at, size_t end)
{
    Packet packet;
    uint32_t length = word(file, at + 20);
    EXPECT_EQ(word(file, at + 8), 0u) << "interface";
    EXPECT_EQ(word(file, at + 24), length) << "original length";
    packet.time = uint64_t{word(file, at + 12)} << 32 | word(file, at + 16);
    packet.data = file.substr(at + 28, length);
    for (size_t option = at + 28 + padded(length); half(file, option) != 0 && option < end;) {
        uint16_t size = half(file, option + 2);
        if (half(file, option) == 2) {
            packet.direction = word(file, option + 4);
        } else if (half(file, option) == 1) {
            packet.comment = file.substr(option + 4, size);
        }
        option += 4 + padded(size);
    }
    return packet;
}

/* Reads the whole file as one section with one interface; every block must be whole. */
std::vector<Packet> read_trace(const std::string &path)
{
    std::string file = read_file(path);
    std::vector<Packet> packets;
    std::string types;
    for (size_t at = 0; at + 12 <= file.size();) {
        uint32_t length = word(file, at + 4);
        if (length < 12 || length % 4 != 0 || length > file.size() - at) {
            ADD_FAILURE() << "block of " << length << " bytes at " << at;
            break;
        }
        EXPECT_EQ(word(file, at + length - 4), length) << "closing length at " << at;
        uint32_t type = word(file, at);
        types += type == 0x0a0d0d0a ? 's' : type == 1 ? 'i' : type == 6 ? '.' : '?';
        if (type == 1) {
            EXPECT_EQ(half(file, at + 8), 147) << "link type";
        }
        if (type == 6) {
            packets.push_back(read_packet(file, at, at + length));
        }
        at += length;
    }
    EXPECT_EQ(types, file.empty() ? "" : "si" + std::string(packets.size(), '.'));
    return packets;
}

class Trace : public HostTest {
protected:
    Trace() : agent_(path("agent.sock")) { setenv("OFP_TRACE", path("trace.pcapng").c_str(), 1); }

    /* One request of the given text, answered with one of its own; in this process. */
    void exchange(const std::string &request, const std::string &reply) const
    {
        char buffer[70'000];
        int client = connect_client(2000);
        int accepted = agent_.accept();
        EXPECT_EQ(SOCK_Send(client, request.data(), request.size(), 0),
                  static_cast<int64_t>(request.size()));
        EXPECT_EQ(recv(accepted, buffer, sizeof buffer, 0), static_cast<ssize_t>(request.size()));
        EXPECT_EQ(send(accepted, reply.data(), reply.size(), 0),
                  static_cast<ssize_t>(reply.size()));
        EXPECT_EQ(SOCK_Recv(client, buffer, sizeof buffer, 0), static_cast<int64_t>(reply.size()));
        SOCK_Close(client);
        close(accepted);
    }

    BareAgent agent_;
};

TEST_F(Trace, RecordsEveryDatagramBothWays)
{
    in_child([this] {
        exchange("request", "the reply");
        exchange("", std::string(49152, 'x'));
        std::vector<Packet> packets = read_trace(path("trace.pcapng"));
        ASSERT_EQ(packets.size(), 4u);
        EXPECT_EQ(packets[0].data, "request");
        EXPECT_EQ(packets[0].direction, 2u);
        EXPECT_EQ(packets[1].data, "the reply");
        EXPECT_EQ(packets[1].direction, 1u);
        EXPECT_EQ(packets[2].data, "");
        EXPECT_EQ(packets[3].data, std::string(49152, 'x'));
        EXPECT_EQ(
            packets[0].comment.find("host_trace_tests[" + std::to_string(getpid()) + "] socket "),
            0u)
            << packets[0].comment;
        uint64_t now = static_cast<uint64_t>(time(nullptr)) * 1'000'000'000;
        EXPECT_NEAR(static_cast<double>(packets[0].time), static_cast<double>(now), 1e10);
        EXPECT_LE(packets[0].time, packets[1].time);
    });
    struct stat info {};
    ASSERT_EQ(stat(path("trace.pcapng").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777u, 0600u);
}

TEST_F(Trace, HasNothingOfPeeksAndFailures)
{
    in_child([this] {
        char buffer[8];
        int client = connect_client(2000);
        int accepted = agent_.accept();
        EXPECT_EQ(SOCK_RecvFrom(client, buffer, sizeof buffer, 0x40), -1);
        EXPECT_EQ(send(accepted, "0123456789", 10, 0), 10);
        EXPECT_EQ(SOCK_RecvFrom(client, buffer, sizeof buffer, MSG_PEEK), 8);
        EXPECT_EQ(SOCK_RecvFrom(client, buffer, sizeof buffer, MSG_TRUNC), 10);
        std::vector<Packet> packets = read_trace(path("trace.pcapng"));
        ASSERT_EQ(packets.size(), 1u);
        EXPECT_EQ(packets[0].data, "01234567");
    });
}

TEST_F(Trace, IsSharedBySeveralProcesses)
{
    constexpr int processes = 6;
    constexpr int datagrams = 40;
    std::vector<pid_t> children;
    for (int i = 0; i < processes; ++i) {
        children.push_back(start_child([] {
            int client = connect_client(10'000);
            for (int k = 0; k < datagrams; ++k) {
                std::string text(static_cast<size_t>(k * 7), 'd');
                EXPECT_EQ(SOCK_Send(client, text.data(), text.size(), 0),
                          static_cast<int64_t>(text.size()));
            }
            SOCK_Close(client);
        }));
    }
    for (pid_t child : children) {
        EXPECT_EQ(wait_for(child), 0);
    }
    EXPECT_EQ(read_trace(path("trace.pcapng")).size(), size_t{processes * datagrams});
}

TEST_F(Trace, MayBeAFilePerProcess)
{
    setenv("OFP_TRACE", path("100%%-%p.pcapng").c_str(), 1);
    in_child([this] {
        exchange("a", "b");
        EXPECT_EQ(read_trace(path("100%-" + std::to_string(getpid()) + ".pcapng")).size(), 2u);
        in_child([this] {
            exchange("c", "d");
            EXPECT_EQ(read_trace(path("100%-" + std::to_string(getpid()) + ".pcapng")).size(), 2u);
        });
    });
}

/* Runs two exchanges with standard error in a file; what was written there. */
std::string complaints(const std::string &file, const std::function<void()> &body)
{
    in_child([&] {
        int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(fd, STDERR_FILENO);
        body();
    });
    return read_file(file);
}

TEST_F(Trace, UnwritableFileIsReportedOnceAndTracingIsOff)
{
    setenv("OFP_TRACE", path("no/such.pcapng").c_str(), 1);
    std::string said = complaints(path("stderr"), [this] {
        exchange("a", "b");
        exchange("c", "d");
        mkdir(path("no").c_str(), 0700);
        exchange("e", "f");
    });
    EXPECT_EQ(said, "OFP_TRACE: " + path("no/such.pcapng") +
                        ": No such file or directory; nothing more is recorded\n");
    EXPECT_NE(access(path("no/such.pcapng").c_str(), F_OK), 0);
}

TEST_F(Trace, FilesThatAreNoTracesAreLeftAlone)
{
    write_file("trace.pcapng", "my thesis");
    std::string said = complaints(path("stderr"), [this] { exchange("a", "b"); });
    EXPECT_EQ(said, "OFP_TRACE: " + path("trace.pcapng") +
                        ": not a trace of this library; left as it is; nothing more is recorded\n");
    EXPECT_EQ(read_file(path("trace.pcapng")), "my thesis");

    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    setenv("OFP_TRACE", path("pipe").c_str(), 1);
    said = complaints(path("stderr"), [this] { exchange("a", "b"); });
    EXPECT_NE(said.find("not a regular file"), std::string::npos) << said;
}

TEST_F(Trace, FileThatCannotGrowStaysWhole)
{
    std::string said = complaints(path("stderr"), [this] {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{.rlim_cur = 3000, .rlim_max = 3000};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        exchange("fits", "too");
        exchange(std::string(5000, 'x'), "y");
        exchange("a", "b");
    });
    EXPECT_NE(said.find("nothing more is recorded"), std::string::npos) << said;
    EXPECT_EQ(read_trace(path("trace.pcapng")).size(), 2u);
}

TEST_F(Trace, FileHeldByAnotherIsGivenUpInBoundedTime)
{
    exchange("a", "b");
    int holder = open(path("trace.pcapng").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    auto start = Clock::now();
    std::string said = complaints(path("stderr"), [this] { exchange("c", "d"); });
    EXPECT_LT(since(start), Milliseconds(3000));
    EXPECT_NE(said.find("nothing more is recorded"), std::string::npos) << said;
    close(holder);
}

TEST_F(Trace, ErrorNumberSurvivesARecording)
{
    in_child([this] {
        setenv("OFP_TRACE", "/nowhere/x", 1);
        int fd = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(fd, STDERR_FILENO);
        errno = 4711;
        int client = connect_client(1000);
        int accepted = agent_.accept();
        errno = 4711;
        EXPECT_EQ(SOCK_Send(client, "x", 1, 0), 1);
        EXPECT_EQ(errno, 4711);
        close(accepted);
    });
}

TEST_F(Trace, AnalyserReadsIt)
{
    if (system("tshark --version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "tshark is not installed";
    }
    in_child([this] {
        exchange("request", "the reply");
        exchange("", "x");
    });
    std::string command = "HOME=" + directory_ + " tshark -r " + path("trace.pcapng") +
                          " -T fields -e frame.len -e frame.packet_flags_direction"
                          " -e frame.encap_type 2>" +
                          path("errors") + " >" + path("fields");
    EXPECT_EQ(system(command.c_str()), 0) << read_file(path("errors"));
    EXPECT_EQ(read_file(path("fields")), "7\t0x00000002\t45\n" // sent; 45 is USER0
                                         "9\t0x00000001\t45\n" // received
                                         "0\t0x00000002\t45\n"
                                         "1\t0x00000001\t45\n");
}

} // namespace

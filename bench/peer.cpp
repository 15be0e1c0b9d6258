#include "peer.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ofp/host.h"

namespace bench {

void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "benchmark: %s failed: %s (%s)\n", what, std::strerror(errno),
                 HOST_LastError());
    std::exit(1);
}

Directory::Directory()
{
    char name[] = "/tmp/ofp-bench-XXXXXX";
    check(mkdtemp(name) != nullptr, "a directory");
    path_ = name;
}

Directory::~Directory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void Directory::use() const { setenv("OFP_RUNTIME_DIR", path_.c_str(), 1); }

// ---- The echo peer

namespace {

uint32_t load16(const uint8_t *at) { return uint32_t{at[0]} << 8 | at[1]; }
uint32_t load32(const uint8_t *at) { return load16(at) << 16 | load16(at + 2); }

constexpr uint8_t barrier_request = 20;
constexpr uint8_t barrier_reply = 21;
constexpr std::size_t rule_size = 120; // flow-mod of a five-tuple rule with an output

void answer(int fd, const Bytes &reply) { send(fd, reply.data(), reply.size(), MSG_NOSIGNAL); }

void answer_rules(int fd, const uint8_t *datagram, std::size_t length)
{
    for (std::size_t at = 0; at + 4 <= length; at += 4 + load16(datagram + at + 2)) {
        const uint8_t *const message = datagram + at + 4;
        if (load16(datagram + at) == OFP_TLV_FlowEntry && message[1] == barrier_request) {
            uint8_t reply[8];
            std::memcpy(reply, message, sizeof reply);
            reply[1] = barrier_reply;
            send(fd, reply, sizeof reply, MSG_NOSIGNAL);
        }
    }
}

Bytes rule_info()
{
    Bytes reply = request(OFP_MSG_RULE_INFO, OFP_TLV_RuleIDInfo, OfpRuleIDInfo{});
    const OfpFRStatsInfo statistics = {};
    const uint8_t rule[rule_size] = {};
    const std::size_t head = reply.size();
    reply.resize(head + 8 + sizeof statistics + sizeof rule);
    const uint64_t size = OFP_msg_SetTlvData(&reply[head], reply.size() - head, OFP_TLV_FRStatsInfo,
                                             sizeof statistics, &statistics);
    OFP_msg_SetTlvData(&reply[head + size], reply.size() - head - size, OFP_TLV_FlowEntry,
                       sizeof rule, rule);
    return reply;
}

[[noreturn]] void serve(int listener)
{
    static uint8_t datagram[65'536];
    const Bytes next = request(OFP_MSG_NEXT_RULE_ID, OFP_TLV_RuleID, OfpRuleID{.rule_id = 7});
    const Bytes info = rule_info();
    const Bytes result = request(OFP_MSG_RESULT, OFP_TLV_ErrCode, OfpErrCode{});
    const Bytes barrier = {4, barrier_reply, 0, 8, 0, 0, 0, 0};
    for (;;) {
        pollfd ready{listener, POLLIN, 0};
        poll(&ready, 1, -1);
        const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        for (ssize_t got; (got = recv(fd, datagram, sizeof datagram, 0)) > 0;) {
            switch (load32(datagram + 4)) {
            case OFP_MSG_FLOW_RULE:
                answer_rules(fd, datagram, static_cast<std::size_t>(got));
                break;
            case OFP_MSG_SMOOTH_START:
                answer(fd, barrier);
                break;
            case OFP_MSG_GET_NEXT_RULE_ID:
                answer(fd, next);
                break;
            case OFP_MSG_GET_RULE_INFO:
                answer(fd, info);
                break;
            default:
                answer(fd, result);
            }
        }
        close(fd);
    }
}

} // namespace

EchoPeer::EchoPeer()
{
    use();
    int ends[2];
    check(pipe(ends) == 0, "a pipe");
    process_ = fork();
    if (process_ == 0) {
        const int lock = HOST_LockAgent(0);
        const int listener = lock < 0 ? -1 : HOST_ListenAgent(0);
        if (listener < 0 || write(ends[1], "r", 1) != 1)
            _exit(1);
        serve(listener);
    }
    close(ends[1]);
    char ready = 0;
    check(process_ > 0 && read(ends[0], &ready, 1) == 1, "the echo peer");
    close(ends[0]);
}

EchoPeer::~EchoPeer()
{
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

// ---- The agent

Agent::Agent(Store store)
{
    use();
    const std::filesystem::path program =
        std::filesystem::read_symlink("/proc/self/exe").replace_filename("ofp-agent");
    const std::string options = store == Store::memory ? " --store :memory:" : "";
    check(std::system((program.string() + options).c_str()) == 0, "the agent");
    process_ = HOST_GetAgentPid(0);
    check(process_ > 0, "the agent's process");
}

Agent::~Agent()
{
    use();
    kill(process_, SIGTERM);
    while (HOST_GetAgentPid(0) == process_)
        usleep(10'000);
}

double Agent::processor_time() const
{
    clockid_t clock;
    timespec now = {};
    check(clock_getcpuclockid(process_, &clock) == 0 && clock_gettime(clock, &now) == 0,
          "the agent's processor time");
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// ---- The bare exchange

namespace {

sockaddr_un agent_address()
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    check(HOST_GetSocketPath(0, address.sun_path, sizeof address.sun_path) == 0, "the path");
    return address;
}

int connected_socket(const sockaddr_un &address)
{
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    const timeval limit{30, 0};
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    check(connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0,
          "a connection");
    return fd;
}

void send_request(int fd, const Bytes &request)
{
    check(send(fd, request.data(), request.size(), MSG_NOSIGNAL) > 0, "a bare request");
}

void take_replies(int fd, std::size_t count)
{
    uint8_t reply[OFP_DATAGRAM_SIZE];
    for (std::size_t i = 0; i < count; ++i)
        check(recv(fd, reply, sizeof reply, 0) > 0, "a bare reply");
}

} // namespace

BareExchange::BareExchange() : address_(agent_address()) {}

void BareExchange::run(const Bytes &request, std::size_t replies) const
{
    const int fd = connected_socket(address_);
    send_request(fd, request);
    take_replies(fd, replies);
    close(fd);
}

BareStream::BareStream() : fd_(connected_socket(agent_address())) {}

BareStream::~BareStream() { close(fd_); }

void BareStream::run(const Bytes &request, std::size_t count) const
{
    for (std::size_t i = 0; i < count; ++i)
        send_request(fd_, request);
    take_replies(fd_, count);
}

} // namespace bench

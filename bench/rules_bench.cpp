// How fast rules are programmed, all on one core: by a bare exchange of prepared datagrams with a
// peer that answers without looking, by the library with that peer, and by the library with the
// agent.
//
//     rules_bench [RULES]      rules of each of five rounds, 60000 unless given
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ofp.h"
#include "ofp/host.h"

namespace {

constexpr uint16_t CLIENT = 4096;
constexpr uint8_t TABLE = 200;
constexpr uint32_t BATCH = 12; // rules that the library puts into one datagram
constexpr int ROUNDS = 5;

void check(bool holds, const char *what)
{
    if (!holds) {
        throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    }
}

// ---- The echo peer: a barrier reply to each barrier request, whatever the rules are

uint32_t be16(const uint8_t *at) { return uint32_t{at[0]} << 8 | at[1]; }

void echo_datagram(int fd, const uint8_t *datagram, size_t length)
{
    size_t answered = 0;
    for (size_t at = 0; at + 4 <= length; at += 4 + be16(datagram + at + 2)) {
        const uint8_t *const message = datagram + at + 4;
        if (be16(datagram + at) == OFP_TLV_FlowEntry && message[1] == 20) {
            uint8_t reply[8];
            std::memcpy(reply, message, sizeof reply);
            reply[1] = 21;
            send(fd, reply, sizeof reply, MSG_NOSIGNAL);
            ++answered;
        }
    }
    if (answered == 0) { // a smooth period
        const uint8_t reply[8] = {4, 21, 0, 8, 0, 0, 0, 0};
        send(fd, reply, sizeof reply, MSG_NOSIGNAL);
    }
}

[[noreturn]] void serve_echo(int listener)
{
    static uint8_t buffer[65'536];
    for (;;) {
        pollfd ready{listener, POLLIN, 0};
        poll(&ready, 1, -1);
        const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        for (ssize_t got; (got = recv(fd, buffer, sizeof buffer, 0)) > 0;) {
            echo_datagram(fd, buffer, static_cast<size_t>(got));
        }
        close(fd);
    }
}

// ---- Where the peers live

class Directory {
public:
    Directory()
    {
        char name[] = "/tmp/ofp-bench-XXXXXX";
        check(mkdtemp(name) != nullptr, "a directory");
        path_ = name;
    }
    ~Directory() { std::filesystem::remove_all(path_); }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    void use() const { setenv("OFP_RUNTIME_DIR", path_.c_str(), 1); }

private:
    std::string path_;
};

pid_t start_echo()
{
    int ends[2];
    check(pipe(ends) == 0, "pipe");
    const pid_t child = fork();
    if (child == 0) {
        const int lock = HOST_LockAgent(0);
        const int listener = lock < 0 ? -1 : HOST_ListenAgent(0);
        if (listener < 0 || write(ends[1], "r", 1) != 1) {
            _exit(1);
        }
        serve_echo(listener);
    }
    char ready = 0;
    check(child > 0 && read(ends[0], &ready, 1) == 1, "the echo peer");
    close(ends[0]);
    close(ends[1]);
    return child;
}

// ---- Rules

class Items {
public:
    explicit Items(uint32_t count) : items_(count), masks_(count)
    {
        output_ = {{OFP_ACTION_OUTPUT, sizeof output_}, OFP_PORT_NUMBER, 3};
        for (uint32_t i = 0; i < count; ++i) {
            OfpFlowItem &item = items_[i];
            item.priority = 100;
            item.match.fields =
                uint64_t{1} << OFP_FIELD_ETH_TYPE | uint64_t{1} << OFP_FIELD_IP_PROTO |
                uint64_t{1} << OFP_FIELD_IPV4_DST | uint64_t{1} << OFP_FIELD_TCP_DST;
            item.match.eth_type = 0x0800;
            item.match.ip_proto = 6;
            item.match.tcp_dst = 443;
            item.match.mask = &masks_[i];
            item.action_count = 1;
            item.actions = actions_;
        }
    }
    void renumber(uint32_t first)
    {
        for (OfpFlowItem &item : items_) {
            item.match.ipv4_dst = first++;
        }
    }
    const std::vector<OfpFlowItem> &get() const { return items_; }

private:
    std::vector<OfpFlowItem> items_;
    std::vector<OfpMatchMask> masks_;
    OfpActionOutput output_{};
    OfpAction *actions_[1] = {&output_.header};
};

// A call, and with it a connection, for every twelve rules.
void program(const Items &items)
{
    for (size_t first = 0; first < items.get().size(); first += BATCH) {
        uint64_t results[BATCH];
        std::fill_n(results, BATCH, 1);
        check(OFP_AddFlowRule(CLIENT, TABLE, BATCH, &items.get()[first], results) == 0, "rules");
        check(std::all_of(results, results + BATCH, [](uint64_t code) { return code == 0; }),
              "every rule");
    }
}

// The same system calls as the library's, and nothing else.
void exchange_bare(const std::vector<uint8_t> &datagram, uint32_t batches)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    check(HOST_GetSocketPath(0, address.sun_path, sizeof address.sun_path) == 0, "the path");
    for (uint32_t batch = 0; batch < batches; ++batch) {
        const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        const timeval limit{30, 0};
        setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        check(connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
                  send(fd, datagram.data(), datagram.size(), 0) > 0,
              "the bare exchange");
        uint8_t reply[8];
        for (uint32_t i = 0; i < BATCH; ++i) {
            check(recv(fd, reply, sizeof reply, 0) == sizeof reply, "a bare reply");
        }
        close(fd);
    }
}

std::vector<uint8_t> encode_batch(const Items &items)
{
    OfpFlowRuleCtx request{};
    request.table_id = TABLE;
    const uint8_t head[16] = {};
    std::vector<uint8_t> datagram(OFP_DATAGRAM_SIZE);
    datagram.resize(OFP_encode_FlowRule(&request, head, BATCH, items.get().data(), datagram.size(),
                                        datagram.data()));
    return datagram;
}

// ---- Measuring

double rate(uint32_t rules, const std::function<void()> &run)
{
    const auto begin = std::chrono::steady_clock::now();
    run();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    return rules / passed.count();
}

double median(std::vector<double> rates)
{
    std::sort(rates.begin(), rates.end());
    return rates[rates.size() / 2];
}

struct Rates {
    std::vector<double> bare, echo, agent;
};

Rates measure(uint32_t rules)
{
    Rates rates;
    const Directory echo_directory;
    const Directory agent_directory;
    echo_directory.use();
    const pid_t echo = start_echo();
    Items items(rules);
    const std::vector<uint8_t> datagram = encode_batch(items);
    for (int round = 0; round < ROUNDS; ++round) {
        items.renumber(static_cast<uint32_t>(round) * rules);
        echo_directory.use();
        check(OFP_SmoothStart(CLIENT, 1, 0) == 0, "the echo peer's smooth period");
        rates.bare.push_back(rate(rules, [&] { exchange_bare(datagram, rules / BATCH); }));
        rates.echo.push_back(rate(rules, [&] { program(items); }));
        agent_directory.use();
        check(OFP_SmoothStart(CLIENT, 1, 0) == 0, HOST_LastError());
        rates.agent.push_back(rate(rules, [&] { program(items); }));
    }
    const pid_t agent = HOST_GetAgentPid(0);
    kill(agent, SIGTERM);
    kill(echo, SIGKILL);
    waitpid(echo, nullptr, 0);
    while (HOST_GetAgentPid(0) > 0) {
        usleep(10'000);
    }
    return rates;
}

void pin_to_one_core()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &set);
    check(sched_setaffinity(0, sizeof set, &set) == 0, "one core");
}

} // namespace

int main(int argc, char **argv)
{
    try {
        uint32_t rules =
            argc > 1 ? static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10)) : 60'000;
        rules = std::max(rules / BATCH, 1u) * BATCH;
        pin_to_one_core();
        const Rates rates = measure(rules);
        const double echo = median(rates.echo);
        std::printf("%u rules in datagrams of %u, one core, median of %d rounds\n", rules, BATCH,
                    ROUNDS);
        const auto line = [echo](const char *what, double rules_per_second) {
            std::printf("%-28s %9.0f rules/s  %5.2f us/rule  %4.2f of library with echo peer\n",
                        what, rules_per_second, 1e6 / rules_per_second, rules_per_second / echo);
        };
        line("bare exchange, echo peer", median(rates.bare));
        line("library, echo peer", echo);
        line("library, ofp-agent", median(rates.agent));
        return 0;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "rules_bench: %s\n", failure.what());
        return 1;
    }
}

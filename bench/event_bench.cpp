// What an event costs the application: OFP_Dispatch of one against receiving its datagram.
#include <chrono>
#include <cstring>

#include <benchmark/benchmark.h>
#include <sys/socket.h>

#include "demand.h"
#include "peer.h"

namespace {

constexpr int burst = 100;

uint32_t delivered = 0;

uint32_t take(uint32_t, void *, uint32_t value)
{
    delivered += value;
    return 0;
}

bench::Bytes event()
{
    bench::Bytes datagram = bench::request(OFP_MSG_EVENT, OFP_TLV_EventType,
                                           OfpEventType{.event = OFP_EVENT_CTRL_STATUS});
    const OfpCtrlStatusEventData status = {.status = 1};
    const std::size_t size = datagram.size();
    datagram.resize(size + 4 + sizeof status);
    OFP_msg_SetTlvData(&datagram[size], 4 + sizeof status, OFP_TLV_CtrlStatusEventData,
                       sizeof status, &status);
    return datagram;
}

// Times the taking of bursts that wait in a socket already.
template <class Take>
void time_taking(benchmark::State &state, Take take_one)
{
    int ends[2];
    bench::check(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0, "a pair of sockets");
    const bench::Bytes datagram = event();
    for (auto _ : state) {
        for (int i = 0; i < burst; ++i)
            bench::check(send(ends[0], datagram.data(), datagram.size(), 0) > 0, "sending");
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < burst; ++i)
            take_one(ends[1]);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
    }
    close(ends[0]);
    close(ends[1]);
}

void dispatch(benchmark::State &state)
{
    delivered = 0;
    time_taking(state, [](int fd) { bench::check(OFP_Dispatch(fd) == 0, "an event"); });
    bench::check(delivered == burst * state.iterations(), "every event");
}

void receive(benchmark::State &state)
{
    static uint8_t buffer[OFP_LARGE_DATAGRAM_SIZE];
    time_taking(state, [](int fd) {
        bench::check(recv(fd, buffer, sizeof buffer, MSG_DONTWAIT) > 0, "a datagram");
    });
}

} // namespace

int main(int argc, char **argv)
{
    const bench::Agent agent;
    agent.use();
    bench::check(OFP_Init(1) >= 0 && OFP_RegEvent(OFP_EVENT_CTRL_STATUS, take) == 0,
                 "a registration");
    g_uiOfpMSGNum = 1; // one event a call
    benchmark::RegisterBenchmark("OFP_Dispatch", dispatch)->UseManualTime();
    benchmark::RegisterBenchmark("receive", receive)->UseManualTime();
    const int status = bench::run(argc, argv,
                                  {{"OFP_Dispatch of an event to receiving its datagram",
                                    {"OFP_Dispatch", "", burst},
                                    {"receive", "", burst},
                                    bench::Sense::at_most,
                                    1.2}});
    OFP_Fini();
    return status;
}

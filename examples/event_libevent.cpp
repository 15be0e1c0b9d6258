// Prints how many controllers are connected, inside a libevent loop.
//
//   event_libevent [APPLICATION]      1 to 11; 4 unless given
//
// The event socket is a descriptor like any other. When the agent goes away it becomes readable and
// stays so: a dispatch that delivers nothing says that it is over. A timer registers anew.
#include <cstdio>
#include <cstdlib>

#include <event2/event.h>
#include <ofp.h>

namespace {

struct Listener {
    uint32_t application = 4;
    event_base *base = nullptr;
    event *readable = nullptr;
    event *retry = nullptr;
};

unsigned delivered = 0;

uint32_t on_status(uint32_t, void *, uint32_t connected)
{
    ++delivered;
    std::printf("%u controllers are connected\n", connected);
    std::fflush(stdout);
    return 0;
}

void try_again(const Listener &listener)
{
    const timeval pause{1, 0};
    event_add(listener.retry, &pause);
}

void end_registration(Listener &listener)
{
    if (listener.readable) {
        event_free(listener.readable); // before its socket is closed
        listener.readable = nullptr;
    }
    OFP_Fini();
}

void on_readable(int socket, short, void *argument)
{
    auto &listener = *static_cast<Listener *>(argument);
    delivered = 0;
    const uint32_t result = OFP_Dispatch(socket);
    if (result != OFP_RC_OK)
        std::fprintf(stderr, "a notification could not be read: %#x\n", result);
    if (delivered == 0) {
        std::fprintf(stderr, "the agent went away\n");
        end_registration(listener);
        try_again(listener);
    }
}

void on_retry(int, short, void *argument)
{
    auto &listener = *static_cast<Listener *>(argument);
    const int socket = OFP_Init(listener.application);
    if (socket < 0 || OFP_RegEvent(OFP_EVENT_CTRL_STATUS, on_status) != OFP_RC_OK) {
        end_registration(listener);
        try_again(listener);
        return;
    }
    std::fprintf(stderr, "registered as application %u\n", listener.application);
    listener.readable =
        event_new(listener.base, socket, EV_READ | EV_PERSIST, on_readable, &listener);
    event_add(listener.readable, nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    Listener listener;
    if (argc > 1)
        listener.application = static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10));
    if (listener.application < 1 || listener.application > 11) {
        std::fprintf(stderr, "an application is 1 to 11\n");
        return 2;
    }
    listener.base = event_base_new();
    if (!listener.base)
        return 1;
    listener.retry = evtimer_new(listener.base, on_retry, &listener);
    on_retry(-1, 0, &listener);
    return event_base_dispatch(listener.base) == 0 ? 0 : 1;
}

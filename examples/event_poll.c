/* Prints what becomes of the controllers, with poll.
 *
 *   event_poll [APPLICATION]      1 to 11; 3 unless given
 *
 * When the agent goes away its socket hangs up: the registration ends with OFP_Fini, and a new one
 * is made once an agent can be reached again. What happened in between is not told; ask for the
 * state (OFP_get_CtrlInfo) where it matters. */
#include <ofp.h>

#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

static unsigned delivered;

static uint32_t on_event(uint32_t type, void *record, uint32_t value)
{
    ++delivered;
    if (type == OFP_EVENT_CTRL_STATUS) {
        printf("%u controllers are connected\n", value);
    } else {
        const OfpCtrlEvent *event = record;
        const unsigned controller = event->value & 0xffu;
        printf("instance %u, controller %u: %s\n", event->instance_id, controller,
               type == OFP_EVENT_CTRL_2   ? "configured"
               : type == OFP_EVENT_CTRL_8 ? "removed"
               : event->value & 0x100u    ? "connected"
                                          : "connection lost");
    }
    fflush(stdout);
    return 0; /* becomes part of the result of OFP_Dispatch */
}

/* The event socket, or -1 when no agent can be reached. */
static int register_application(uint32_t application)
{
    static const uint32_t types[] = {OFP_EVENT_CTRL_2, OFP_EVENT_CTRL_4, OFP_EVENT_CTRL_8,
                                     OFP_EVENT_CTRL_STATUS};
    int socket = OFP_Init(application);
    for (unsigned i = 0; socket >= 0 && i < sizeof types / sizeof types[0]; ++i) {
        if (OFP_RegEvent(types[i], on_event) != OFP_RC_OK) {
            OFP_Fini();
            socket = -1;
        }
    }
    return socket;
}

/* Dispatches until the agent hangs up. */
static void listen_to(int socket)
{
    struct pollfd ready = {.fd = socket, .events = POLLIN};
    for (;;) {
        if (poll(&ready, 1, -1) < 0)
            continue; /* a signal */
        delivered = 0;
        const uint32_t result = OFP_Dispatch(socket);
        if (result != OFP_RC_OK)
            fprintf(stderr, "a notification could not be read: %#x\n", result);
        if ((ready.revents & POLLHUP) && delivered == 0)
            return; /* and all it had sent was read */
    }
}

int main(int argc, char **argv)
{
    const uint32_t application = argc > 1 ? (uint32_t)strtoul(argv[1], NULL, 10) : 3;
    if (application < 1 || application > 11) {
        fprintf(stderr, "an application is 1 to 11\n");
        return 2;
    }
    for (;; sleep(1)) {
        const int socket = register_application(application);
        if (socket < 0)
            continue;
        fprintf(stderr, "registered as application %u\n", application);
        listen_to(socket);
        fprintf(stderr, "the agent went away\n");
        OFP_Fini();
    }
}

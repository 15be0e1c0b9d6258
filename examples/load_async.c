/* Adds rules without waiting for each one's answer.
 *
 *   load_async [RULES]      1000 unless given
 *
 * When the agent goes away the channel's socket hangs up and the rules that are pending are not
 * reported: OFP_AsyncFini drops them. Rules do not survive the agent, so that everything is
 * programmed again, in a smooth period that starts an agent if none runs. */
#include <ofp.h>

#include <poll.h>
#include <stdio.h>
#include <stdlib.h>

enum { CLIENT = 4097, TABLE = 200, PERIOD = 1, WINDOW = 1000, ATTEMPTS = 3 };

static unsigned accepted, refused;

static void on_result(uint32_t client, uint8_t table, const OfpFlowItem *rule, uint64_t result)
{
    (void)client;
    (void)table;
    if (result == OFP_RC_OK) {
        ++accepted;
    } else {
        ++refused;
        fprintf(stderr, "port %u: refused, %#llx\n", rule->match.in_port,
                (unsigned long long)result);
    }
}

/* The rule for an input port: its packets go to port 2. */
static uint32_t add_rule(uint32_t port)
{
    OfpMatchMask mask = {0};
    OfpActionOutput output = {{OFP_ACTION_OUTPUT, sizeof output}, OFP_PORT_NUMBER, 2};
    OfpAction *actions[] = {&output.header};
    OfpFlowItem rule = {.priority = 100, .action_count = 1, .actions = actions};
    rule.match.fields = 1ull << OFP_FIELD_IN_PORT;
    rule.match.in_port = port;
    rule.match.mask = &mask;
    return OFP_AsyncAddFlowRule(CLIENT, TABLE, &rule);
}

/* Takes results until at most so many rules are pending. 0 when the agent went away. */
static int settle(int socket, unsigned sent, unsigned pending)
{
    struct pollfd ready = {.fd = socket, .events = POLLIN};
    int idle =
        0; /* dispatches in a row that reported no rule: an error comes ahead of its result */
    while (sent - accepted - refused > pending) {
        if (poll(&ready, 1, 30000) <= 0)
            return 0; /* 30 seconds without an answer */
        const unsigned before = accepted + refused;
        OFP_AsyncDispatch(socket);
        idle = before == accepted + refused ? idle + 1 : 0;
        if ((ready.revents & POLLHUP) && idle > 1)
            return 0; /* all that the agent had sent was read */
    }
    return 1;
}

/* 0 when not all rules were answered. */
static int load(unsigned rules)
{
    accepted = refused = 0;
    if (OFP_SmoothStart(CLIENT, PERIOD, 0) != OFP_RC_OK)
        return 0;
    const int socket = OFP_AsyncInit(CLIENT, on_result);
    int whole = socket >= 0;
    unsigned sent = 0;
    while (whole && sent < rules) {
        whole = add_rule(sent + 1) == OFP_RC_OK;
        ++sent;
        if (whole && sent - accepted - refused >= WINDOW)
            whole = settle(socket, sent, WINDOW / 2);
    }
    whole = whole && settle(socket, sent, 0);
    OFP_AsyncFini(socket);
    return whole;
}

int main(int argc, char **argv)
{
    const unsigned rules = argc > 1 ? (unsigned)strtoul(argv[1], NULL, 10) : 1000;
    for (int attempt = 1; attempt <= ATTEMPTS; ++attempt) {
        if (load(rules)) {
            OFP_SmoothEnd(CLIENT); /* rules of an earlier run that are not among these go */
            printf("accepted %u, refused %u\n", accepted, refused);
            return refused == 0 ? 0 : 1;
        }
        fprintf(stderr, "the agent went away after %u answers\n", accepted + refused);
    }
    return 1;
}

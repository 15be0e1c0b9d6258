/* Adds rules and waits for the results.
 *
 *   load_sync [RULES]      100 unless given
 *
 * A call fails as a whole when the agent goes away. The next one starts an agent, but refuses rules
 * until a smooth period was opened again: rules do not survive the agent, and all are to be
 * programmed anew. */
#include <ofp.h>

#include <stdio.h>
#include <stdlib.h>

enum { CLIENT = 4096, TABLE = 200, PERIOD = 1, BATCH = 240, ATTEMPTS = 3 };

static OfpMatchMask mask; /* no field carries a mask */
static OfpActionOutput output = {{OFP_ACTION_OUTPUT, sizeof output}, OFP_PORT_NUMBER, 2};
static OfpAction *actions[] = {&output.header};

/* The rule for an input port: its packets go to port 2. */
static OfpFlowItem rule_for(uint32_t port)
{
    OfpFlowItem rule = {.priority = 100, .action_count = 1, .actions = actions};
    rule.match.fields = 1ull << OFP_FIELD_IN_PORT;
    rule.match.in_port = port;
    rule.match.mask = &mask;
    return rule;
}

/* Adds the rules for so many ports from first; how many were refused, or -1 when the call failed.
 */
static int add_batch(uint32_t first, uint32_t count)
{
    OfpFlowItem rules[BATCH];
    uint64_t results[BATCH];
    int refused = 0;
    for (uint32_t i = 0; i < count; ++i)
        rules[i] = rule_for(first + i);
    if (OFP_AddFlowRule(CLIENT, TABLE, count, rules, results) != OFP_RC_OK)
        return -1;
    for (uint32_t i = 0; i < count; ++i) {
        if (results[i] != OFP_RC_OK) {
            fprintf(stderr, "port %u: refused, %#llx\n", first + i, (unsigned long long)results[i]);
            ++refused;
        }
    }
    return refused;
}

/* How many were refused, or -1 when the agent went away. */
static int load(uint32_t total)
{
    int refused = 0;
    if (OFP_SmoothStart(CLIENT, PERIOD, 0) != OFP_RC_OK) /* starts the agent if none runs */
        return -1;
    for (uint32_t done = 0; done < total; done += BATCH) {
        const uint32_t left = total - done;
        const int now = add_batch(done + 1, left < BATCH ? left : BATCH);
        if (now < 0)
            return -1;
        refused += now;
    }
    OFP_SmoothEnd(CLIENT); /* rules of an earlier run that are not among these go */
    return refused;
}

int main(int argc, char **argv)
{
    const uint32_t total = argc > 1 ? (uint32_t)strtoul(argv[1], NULL, 10) : 100;
    for (int attempt = 1; attempt <= ATTEMPTS; ++attempt) {
        const int refused = load(total);
        if (refused >= 0) {
            printf("accepted %u, refused %d\n", total - (uint32_t)refused, refused);
            return refused == 0 ? 0 : 1;
        }
        fprintf(stderr, "the agent went away; programming everything again\n");
    }
    return 1;
}

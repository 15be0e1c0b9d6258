/* Lists the instances with their tables.
 *
 *   query
 *
 * A query never starts the agent: OFP_RC_DAEMON_DOWN says that none runs. OFP_RC_NO_REPLY says that
 * it went away while it was asked; the question changes nothing and may be asked again. Iterations
 * end with the code that the agent sends when there is no further entry. */
#include <ofp.h>

#include <stdio.h>

enum { ATTEMPTS = 2 };
static const uint32_t no_next = 0x42300130; /* of ofp-agent: docs/protocol.md */

static uint32_t list_tables(uint16_t instance)
{
    uint8_t table = 255; /* begins */
    uint32_t code;
    while ((code = OFP_get_NextTableID(instance, table, &table)) == OFP_RC_OK) {
        OfpTableInfo info = {0}; /* preset: a reply without data leaves it as it is */
        code = OFP_get_TableInfo(instance, table, &info);
        if (code != OFP_RC_OK)
            return code;
        printf("instance %u table %u: %u of %u rules\n", instance, table, info.rule_count,
               info.max_rules);
    }
    return code == no_next ? (uint32_t)OFP_RC_OK : code;
}

static uint32_t list_instances(void)
{
    OfpInstanceID instance = {0};
    uint32_t code;
    while ((code = OFP_get_NextInstance(instance.instance_id, &instance)) == OFP_RC_OK) {
        code = list_tables(instance.instance_id);
        if (code != OFP_RC_OK)
            return code;
    }
    return code == no_next ? (uint32_t)OFP_RC_OK : code;
}

int main(void)
{
    uint32_t code = OFP_RC_OK;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        code = list_instances();
        if (code != OFP_RC_NO_REPLY)
            break;
        fprintf(stderr, "the agent went away while it was asked\n");
    }
    if (code == OFP_RC_DAEMON_DOWN)
        fprintf(stderr, "the agent is not running\n");
    else if (code != OFP_RC_OK)
        fprintf(stderr, "the agent refused: %#x\n", code);
    return code == OFP_RC_OK ? 0 : 1;
}

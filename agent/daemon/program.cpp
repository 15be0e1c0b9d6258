#include "daemon/program.h"

namespace agent {

namespace {

uint32_t most_rules(uint16_t id, const Model &model)
{
    const InstanceConfig *const instance = model.instance(id);
    return instance && instance->flow_entry_limit != 0 ? instance->flow_entry_limit : UINT32_MAX;
}

} // namespace

Verdict apply_flow_mod(uint16_t instance, Bytes message, Model &model)
{
    if (message.size() >= openflow::FLOW_MOD_SIZE) {
        constexpr size_t TABLE_ID = 24;
        constexpr size_t COMMAND = 25;
        const uint8_t table = message[TABLE_ID];
        const bool all_tables =
            table == openflow::OFPTT_ALL && (message[COMMAND] == openflow::OFPFC_DELETE ||
                                             message[COMMAND] == openflow::OFPFC_DELETE_STRICT);
        if (!all_tables && !model.table(instance, table)) {
            return openflow::Error{openflow::OFPET_FLOW_MOD_FAILED, openflow::OFPFMFC_BAD_TABLE_ID};
        }
    }
    return model.flow_switch().flow_mod(instance, message, most_rules(instance, model));
}

Verdict apply_group_mod(uint16_t instance, Bytes message, Model &model)
{
    return model.flow_switch().group_mod(instance, message);
}

} // namespace agent

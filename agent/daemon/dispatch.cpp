#include "daemon/dispatch.h"

#include <array>
#include <new>

#include "daemon/handler.h"
#include "daemon/packet_message.h"

namespace agent {

namespace {

// Who writes the answer to a request that was carried out.
enum class Answer : uint8_t {
    handler, // the handler; a message without an answer has nothing written
    result,  // a result reply with code 0, once what it configured is stored
};

struct Route {
    uint32_t message;
    Handler *handler;
    Answer answer = Answer::handler;
};

constexpr Route ROUTES[] = {
    {OFP_MSG_ADD_INSTANCE, add_instance, Answer::result},
    {OFP_MSG_SET_INSTANCE, set_instance, Answer::result},
    {OFP_MSG_UNSET_INSTANCE, unset_instance, Answer::result},
    {OFP_MSG_ACTIVATE_INST, activate_instance, Answer::result},
    {OFP_MSG_DEACTIVATE_INST, deactivate_instance, Answer::result},
    {OFP_MSG_SET_DESCRIPTION, set_description, Answer::result},
    {OFP_MSG_SET_DATAPATH_ID, set_datapath_id, Answer::result},
    {OFP_MSG_SET_PRECEDENCE, set_precedence, Answer::result},
    {OFP_MSG_SET_FLOW_TABLE, set_flow_tables, Answer::result},
    {OFP_MSG_SET_VLAN_LIST, set_vlan_list, Answer::result},
    {OFP_MSG_SET_IN_MANAGE_VLAN, set_in_band_vlans, Answer::result},
    {OFP_MSG_GET_INSTANCE_EXIST, instance_exists},
    {OFP_MSG_GET_NEXT_INSTANCE, next_instance},

    {OFP_MSG_SET_ECHO_TIME, set_option, Answer::result},
    {OFP_MSG_SET_RECONNECT_TIME, set_option, Answer::result},
    {OFP_MSG_SET_CONNECTION_MODE, set_option, Answer::result},
    {OFP_MSG_SET_FAIL_OPEN, set_option, Answer::result},
    {OFP_MSG_SET_TCP_DSCP, set_option, Answer::result},
    {OFP_MSG_SET_TCP_NSR, set_option, Answer::result},
    {OFP_MSG_SET_FLOW_ENTRY_LIMIT, set_option, Answer::result},
    {OFP_MSG_SET_MISS_RULE, set_option, Answer::result},
    {OFP_MSG_SET_FLOW_LOG_DISABLE, set_option, Answer::result},
    {OFP_MSG_SET_PACKET_FILTER, set_option, Answer::result},
    {OFP_MSG_SET_FLOW_MONITOR_INTERVAL, set_option, Answer::result},
    {OFP_MSG_SET_FLOW_MONITOR_THRESHOLD, set_option, Answer::result},
    {OFP_MSG_SET_QINQ_NET_ENABLE, set_option, Answer::result},
    {OFP_MSG_SET_MAC_LEARNING, set_option, Answer::result},
    {OFP_MSG_SET_DYN_MAC, set_option, Answer::result},
    {OFP_MSG_SET_FORBIDDEN_PORT, set_option, Answer::result},
    {OFP_MSG_SET_PERMIT_PORT_TYPE, set_option, Answer::result},
    {OFP_MSG_SET_LOOP_PROTECT, set_option, Answer::result},
    {OFP_MSG_SET_DATA_PLANE_MODE, set_option, Answer::result},
    {OFP_MSG_SET_TTP_MODE, set_option, Answer::result},
    {OFP_MSG_SET_SMART_GROUP, set_option, Answer::result},
    {OFP_MSG_SET_TRAP_ENABLE, set_option, Answer::result},

    {OFP_MSG_SET_CTRL_CFG, set_controller, Answer::result},
    {OFP_MSG_UNSET_CTRL_CFG, unset_controller, Answer::result},
    {OFP_MSG_SET_AUX_CFG, set_auxiliary, Answer::result},
    {OFP_MSG_UNSET_AUX_CFG, unset_auxiliary, Answer::result},
    {OFP_MSG_SET_CTRL_SSL, set_tls_policy, Answer::result},
    {OFP_MSG_UNSET_CTRL_SSL, unset_tls_policy, Answer::result},
    {OFP_MSG_SET_EXCLUDE_CTRL_ID, set_excluded_controllers, Answer::result},
    {OFP_MSG_RESET_CTRL_STAT, reset_controller_counters},

    {OFP_MSG_BIND_PORT, bind_port, Answer::result},
    {OFP_MSG_UNBIND_PORT, unbind_port, Answer::result},
    {OFP_MSG_SHUTDOWN_PORT, shut_down_port, Answer::result},
    {OFP_MSG_START_PORT, start_port, Answer::result},

    {OFP_MSG_SET_IGNORE, set_ignore, Answer::result},
    {OFP_MSG_SET_IPV6_ENHANCED, set_ipv6_enhanced, Answer::result},
    {OFP_MSG_SET_RESV_ACL_RES, set_reserved_acl_resources, Answer::result},
    {OFP_MSG_REFRESH_IP_FLOW, refresh_ip_flow, Answer::result},
    {OFP_MSG_SET_NORMAL_FORWARD_VLAN, set_normal_forward_vlans, Answer::result},
    {OFP_MSG_SET_OAP_SERVER, set_oap_server, Answer::result},
    {OFP_MSG_UNSET_OAP_SERVER, unset_oap_server, Answer::result},
    {OFP_MSG_SET_FLOW_MONITOR_ACTION, set_flow_monitor_action, Answer::result},
    {OFP_MSG_SET_GLB_DEBUG, set_debug, Answer::result},
    {OFP_MSG_SET_TD_TEST_GLB_DEBUG, set_test_debug, Answer::result},
    {OFP_MSG_SET_ENABLE_ALAL_FUNCTION, enable_analysis, Answer::result},
    {OFP_MSG_SET_ENABLE_PAYLOAD_FUNCTION, enable_payload, Answer::result},
    {OFP_MSG_PROC_ALAL_PKT_OUT, analysis_packet_out, Answer::result},
    {OFP_MSG_PROC_CONFIG_EVENT, config_event, Answer::result},
    {OFP_MSG_RESET_CACHE, reset_cache},

    {OFP_MSG_SMOOTH_START, smooth_start},
    {OFP_MSG_SMOOTH_END, smooth_end},
    {OFP_MSG_FLOW_RULE, flow_rules},
    {OFP_MSG_SET_GROUP, set_group},
    {OFP_MSG_DEL_GROUP, delete_group},

    {OFP_MSG_REGISTER_APP, register_application},
    {OFP_MSG_REGISTER_EVENT, register_event, Answer::result},
    {OFP_MSG_DEREGISTER_EVENT, deregister_event, Answer::result},
    {OFP_MSG_GET_APP_INFO, application_info},
    {OFP_MSG_GET_OAP_CLIENT_NUM, oap_client_count},
    {OFP_MSG_GET_OAP_CONTEXT, oap_context},

    {OFP_MSG_GET_NEXT_TABLE_ID, next_table},
    {OFP_MSG_GET_TABLE_INFO, table_info},
    {OFP_MSG_MIB_GET_TABLE_INFO, mib_table_info},
    {OFP_MSG_MIB_GET_NEXT_TABLE_INFO, next_mib_table_info},
    {OFP_MSG_GET_CACHE_INFO, cache_info},

    {OFP_MSG_GET_NEXT_RULE_ID, next_rule},
    {OFP_MSG_GET_NEXT_NO_EFFECTIVE_RULE_ID, next_rule_not_in_effect},
    {OFP_MSG_GET_NEXT_RULE_ID_BY_MATCH, next_rule_by_match},
    {OFP_MSG_GET_RULE_STATS, rule_stats},
    {OFP_MSG_GET_RULE_INFO, rule_info},
    {OFP_MSG_GET_MISS_RULE_STATS, miss_rule_stats},
    {OFP_MSG_GET_MISS_RULE_INFO, miss_rule_info},

    {OFP_MSG_GET_GROUP_TABLE, group_table},
    {OFP_MSG_GET_NEXT_GROUP_ID, next_group},
    {OFP_MSG_GET_GROUP_SUMMARY, group_summary},

    {OFP_MSG_GET_GROUP_REF_RULE, group_references},
    {OFP_MSG_GET_NEXT_SMART_GROUP_ID, next_smart_group},

    {OFP_MSG_GET_METER_TABLE, meter_table},
    {OFP_MSG_GET_SPEC_METER_ENTRY, meter_entry},
    {OFP_MSG_GET_NEXT_METER_ENTRY, next_meter_entry},
    {OFP_MSG_GET_METER_REF_RULE, meter_references},

    {MSG_PACKET, packet},

    {OFP_MSG_GET_INST_ACTIVE, instance_active},
    {OFP_MSG_GET_SUMMARY, summary},
    {OFP_MSG_GET_VERBOSE_GLB, verbose_global},
    {OFP_MSG_GET_VERBOSE_CFG, verbose_configured},
    {OFP_MSG_GET_VERBOSE_RUN, verbose_running},
    {OFP_MSG_GET_VERBOSE_IF, instance_interfaces},
    {OFP_MSG_GET_GLB_CFG_VERBOSE, verbose_global_config},
    {OFP_MSG_GET_CTRL_INFO, controller_info},
    {OFP_MSG_GET_NEXT_CTRL, next_controller},
    {OFP_MSG_GET_CTRL_CFG_INFO, controller_config},
    {OFP_MSG_GET_CTRL_PKT_INFO, controller_packets},
    {OFP_MSG_GET_AUX_INFO, auxiliary_info},
    {OFP_MSG_GET_AC_PORT_INFO, attachment_ports},
    {OFP_MSG_GET_RESOURCES_IF, interface_resources},
    {OFP_MSG_GET_GLB_DBG_INFO, debug_info},
    {OFP_MSG_GET_GLB_DBG_INFO_PKT, debug_packets},
    {OFP_MSG_GET_ACL_RESV, acl_reserved},
    {OFP_MSG_GET_ACL_TABLE_NUM, acl_tables},
};

// Requests are numbered from 1 within their family, which the upper four bits name.
constexpr size_t FAMILY_SIZE = 64;
constexpr size_t SLOTS = 7 * FAMILY_SIZE;

constexpr size_t slot_of(uint32_t message)
{
    const uint32_t family = message >> 28;
    const uint32_t number = message & 0x0fffffff;
    return family < SLOTS / FAMILY_SIZE && number < FAMILY_SIZE ? family * FAMILY_SIZE + number
                                                                : SLOTS;
}

struct Entry {
    const char *name = nullptr;
    const Route *route = nullptr;
};

constexpr auto ENTRIES = [] {
    std::array<Entry, SLOTS + 1> entries{}; // the last stands for every other number
#define OFP_ROW(name, code) entries[slot_of(static_cast<uint32_t>(code))] = {#name, nullptr};
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
    entries[slot_of(MSG_PACKET)].name = "PACKET"; // this agent's own
    for (const Route &route : ROUTES) {
        entries[slot_of(route.message)].route = &route;
    }
    entries[SLOTS] = {};
    return entries;
}();

const Entry &entry_of(uint32_t message) { return ENTRIES[slot_of(message)]; }

bool configures(uint32_t message)
{
    const Route *const route = entry_of(message).route;
    return route && route->answer == Answer::result;
}

bool is_request(uint32_t message) { return message >> 28 != OFP_MSG_RESULT >> 28; }

uint32_t carry_out(const Request &request, Outbox &out, Model &model)
{
    const Entry &entry = entry_of(request.code);
    if (!entry.name || !is_request(request.code)) {
        return UNKNOWN_MESSAGE;
    }
    if (!entry.route) {
        return NOT_SUPPORTED;
    }
    Reply reply(out);
    if (entry.route->answer == Answer::result) {
        reply.reserve(1, 64);
    }
    const uint32_t code = entry.route->handler(request, reply, model);
    if (code == 0 && entry.route->answer == Answer::result) {
        reply.result(0);
    }
    return code;
}

} // namespace

Outcome refuse(Bytes datagram, uint32_t code, Outbox &out, Model &model) noexcept
{
    Request request;
    const bool readable = read_request(datagram, request) == 0;
    Outcome outcome{.message = readable ? request.code : 0, .code = code};
    ++model.counters.refused;
    const Outbox::Mark before = out.mark();
    try {
        Reply(out).result(code);
    } catch (const std::bad_alloc &) {
        out.rollback(before);
        outcome.hang_up = true;
    }
    return outcome;
}

Outcome answer(Bytes datagram, Outbox &out, Model &model, Sender sender) noexcept
{
    ++model.counters.datagrams;
    const Outbox::Mark before = out.mark();
    Request request;
    request.sender = sender;
    uint32_t code = read_request(datagram, request);
    try {
        code = code ? code : carry_out(request, out, model);
    } catch (const std::bad_alloc &) {
        out.rollback(before);
        ++model.counters.refused;
        return {.message = request.code, .code = OFP_RC_NO_RESOURCE, .hang_up = true};
    }
    if (code == 0) {
        return {.message = request.code,
                .awaits_commit = configures(request.code) && model.configuration().is_staged()};
    }
    out.rollback(before);
    return refuse(datagram, code, out, model);
}

Outcome answer_and_commit(Bytes datagram, Outbox &out, Model &model, Sender sender) noexcept
{
    const Outbox::Mark before = out.mark();
    const Outcome outcome = answer(datagram, out, model, sender);
    if (!outcome.awaits_commit || model.configuration().commit()) {
        return outcome;
    }
    out.rollback(before);
    return refuse(datagram, NOT_STORED, out, model);
}

const char *message_name(uint32_t code)
{
    const char *const name = entry_of(code).name;
    return name ? name : "unknown";
}

const char *result_text(uint32_t code)
{
    switch (code) {
#define OFP_ROW(name, value, text)                                                                 \
    case static_cast<uint32_t>(value):                                                             \
        return text;
        OFP_RESULT_CODES(OFP_ROW)
        OFP_AGENT_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
    }
    return "unknown result code";
}

} // namespace agent

// The handlers, one a message. A handler reads the request, changes or asks the model and writes
// its answer into reply. It returns 0 or the result code with which the request is refused; what it
// had written is then dropped and a result reply takes its place.
//
// A handler that changes something writes nothing after the change that could fail for want of
// memory: it reserves the room for its answer first.
#pragma once

#include <cstdint>

#include "daemon/model.h"
#include "daemon/reply.h"
#include "daemon/request.h"

namespace agent {

using Handler = uint32_t(const Request &request, Reply &reply, Model &model);

// Instances
Handler add_instance;
Handler instance_exists;
Handler next_instance;

// Flow programming
Handler smooth_start;
Handler smooth_end;
Handler flow_rules;
Handler set_group;
Handler delete_group;

// Applications
Handler register_application;
Handler register_event;
Handler deregister_event;
Handler application_info;
Handler oap_client_count;
Handler oap_context;

// Tables
Handler next_table;
Handler table_info;
Handler mib_table_info;
Handler next_mib_table_info;
Handler cache_info;

// Rules
Handler next_rule;
Handler next_rule_not_in_effect;
Handler next_rule_by_match;
Handler rule_stats;
Handler rule_info;
Handler miss_rule_stats;
Handler miss_rule_info;

// Groups
Handler group_table;
Handler next_group;
Handler group_summary;

// Packets
Handler packet;

} // namespace agent

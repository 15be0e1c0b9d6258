// The handlers, one a message. A handler reads the request, changes or asks the model and writes
// its answer into reply. It returns 0 or the result code with which the request is refused; what it
// had written is then dropped and a result reply takes its place.
//
// What is configured is staged, answered by Answer::result and stored before the answer leaves. A
// handler that changes something else writes nothing after the change that could fail for want of
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
Handler set_instance;
Handler unset_instance;
Handler activate_instance;
Handler deactivate_instance;
Handler set_option; // those that are one number
Handler set_description;
Handler set_datapath_id;
Handler set_precedence;
Handler set_flow_tables;
Handler set_vlan_list;
Handler set_in_band_vlans;
Handler instance_exists;
Handler next_instance;

// Controllers
Handler set_controller;
Handler unset_controller;
Handler set_auxiliary;
Handler unset_auxiliary;
Handler set_tls_policy;
Handler unset_tls_policy;
Handler set_excluded_controllers;
Handler reset_controller_counters;

// Ports
Handler bind_port;
Handler unbind_port;
Handler shut_down_port;
Handler start_port;

// The whole switch
Handler set_ignore;
Handler set_ipv6_enhanced;
Handler set_reserved_acl_resources;
Handler refresh_ip_flow;
Handler set_normal_forward_vlans;
Handler set_oap_server;
Handler unset_oap_server;
Handler set_flow_monitor_action;
Handler set_debug;
Handler set_test_debug;
Handler enable_analysis;
Handler enable_payload;
Handler analysis_packet_out;
Handler config_event;
Handler reset_cache;

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

Handler group_references;
Handler next_smart_group;

// Meters
Handler meter_table;
Handler meter_entry;
Handler next_meter_entry;
Handler meter_references;

// Packets
Handler packet;

// What is configured, and how it stands
Handler instance_active;
Handler summary;
Handler verbose_global;
Handler verbose_configured;
Handler verbose_running;
Handler verbose_global_config;
Handler controller_info;
Handler next_controller;
Handler controller_config;
Handler controller_packets;
Handler auxiliary_info;
Handler instance_interfaces;
Handler attachment_ports;
Handler interface_resources;
Handler debug_info;
Handler debug_packets;
Handler acl_reserved;
Handler acl_tables;

} // namespace agent

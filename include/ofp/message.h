/*
 * Message codes: the 32-bit value of the message head (TLV 1) that opens every datagram.
 *
 * 1 to 61 are configuration requests, 0x1000xxxx queries, 0x2000xxxx replies, 0x5000xxxx flow,
 * group, instance, smooth, application and event messages.
 */
#ifndef OFP_MESSAGE_H
#define OFP_MESSAGE_H

/* Row: name without its prefix, code. */
#define OFP_MESSAGE_CODES(X)                                                                       \
    /* configuration requests, answered by a result reply */                                       \
    X(SET_INSTANCE, 1)                                                                             \
    X(UNSET_INSTANCE, 2)                                                                           \
    X(SET_VLAN_LIST, 3)                                                                            \
    X(UNSET_CTRL_CFG, 4)                                                                           \
    X(SET_CTRL_CFG, 5)                                                                             \
    X(SET_ECHO_TIME, 6)                                                                            \
    X(SET_FLOW_ENTRY_LIMIT, 7)                                                                     \
    X(SET_FAIL_OPEN, 8)                                                                            \
    X(SET_DESCRIPTION, 9)                                                                          \
    X(DEACTIVATE_INST, 10)                                                                         \
    X(SET_DYN_MAC, 11)                                                                             \
    X(SET_FLOW_TABLE, 12)                                                                          \
    X(SET_GLB_DEBUG, 14)                                                                           \
    X(SET_RECONNECT_TIME, 15)                                                                      \
    X(SET_DATAPATH_ID, 16)                                                                         \
    X(SET_IN_MANAGE_VLAN, 17)                                                                      \
    X(SET_MAC_LEARNING, 18)                                                                        \
    X(SET_CONNECTION_MODE, 19)                                                                     \
    X(SET_MISS_RULE, 20)                                                                           \
    X(SET_FORBIDDEN_PORT, 21)                                                                      \
    X(RESET_CTRL_STAT, 22) /* not answered */                                                      \
    X(ACTIVATE_INST, 23)                                                                           \
    X(SET_PACKET_FILTER, 24)                                                                       \
    X(SET_QINQ_NET_ENABLE, 25)                                                                     \
    X(SET_PRECEDENCE, 26)                                                                          \
    X(SET_FLOW_LOG_DISABLE, 27)                                                                    \
    X(REFRESH_IP_FLOW, 28)                                                                         \
    X(UNSET_AUX_CFG, 29)                                                                           \
    X(SET_AUX_CFG, 30)                                                                             \
    X(UNSET_OAP_SERVER, 31)                                                                        \
    X(SET_OAP_SERVER, 32)                                                                          \
    X(BIND_PORT, 33)                                                                               \
    X(UNBIND_PORT, 34)                                                                             \
    X(RESET_CACHE, 35) /* not answered */                                                          \
    X(SET_PERMIT_PORT_TYPE, 36)                                                                    \
    X(SET_TD_TEST_GLB_DEBUG, 37)                                                                   \
    X(SET_TCP_DSCP, 38)                                                                            \
    X(SET_TCP_NSR, 39)                                                                             \
    X(PROC_CONFIG_EVENT, 40)                                                                       \
    X(SET_RESV_ACL_RES, 41)                                                                        \
    X(SHUTDOWN_PORT, 42)                                                                           \
    X(START_PORT, 43)                                                                              \
    X(SET_LOOP_PROTECT, 44)                                                                        \
    X(SET_ENABLE_ALAL_FUNCTION, 45)                                                                \
    X(PROC_ALAL_PKT_OUT, 46)                                                                       \
    X(SET_NORMAL_FORWARD_VLAN, 47)                                                                 \
    X(SET_EXCLUDE_CTRL_ID, 48)                                                                     \
    X(SET_DATA_PLANE_MODE, 49)                                                                     \
    X(SET_ENABLE_PAYLOAD_FUNCTION, 50)                                                             \
    X(SET_IGNORE, 51)                                                                              \
    X(SET_TRAP_ENABLE, 52)                                                                         \
    X(SET_TTP_MODE, 53)                                                                            \
    X(UNSET_CTRL_SSL, 54)                                                                          \
    X(SET_CTRL_SSL, 55)                                                                            \
    X(SET_IPV6_ENHANCED, 56)                                                                       \
    X(SET_SMART_GROUP, 57)                                                                         \
    X(SET_FLOW_MONITOR_INTERVAL, 59)                                                               \
    X(SET_FLOW_MONITOR_THRESHOLD, 60)                                                              \
    X(SET_FLOW_MONITOR_ACTION, 61)                                                                 \
    /* queries */                                                                                  \
    X(GET_INSTANCE_EXIST, 0x10000001)                                                              \
    X(GET_NEXT_INSTANCE, 0x10000003)                                                               \
    X(GET_CTRL_INFO, 0x10000004)                                                                   \
    X(GET_VERBOSE_GLB, 0x10000005)                                                                 \
    X(GET_VERBOSE_CFG, 0x10000006)                                                                 \
    X(GET_VERBOSE_RUN, 0x10000007)                                                                 \
    X(GET_VERBOSE_IF, 0x10000008)                                                                  \
    X(GET_NEXT_TABLE_ID, 0x10000009)                                                               \
    X(GET_TABLE_INFO, 0x1000000a)                                                                  \
    X(GET_NEXT_RULE_ID, 0x1000000b)                                                                \
    X(GET_RULE_STATS, 0x1000000c)                                                                  \
    X(GET_RULE_INFO, 0x1000000d)                                                                   \
    X(GET_MISS_RULE_STATS, 0x1000000e)                                                             \
    X(GET_MISS_RULE_INFO, 0x1000000f)                                                              \
    X(GET_INST_ACTIVE, 0x10000010)                                                                 \
    X(GET_GLB_DBG_INFO, 0x10000011)                                                                \
    X(GET_GLB_DBG_INFO_PKT, 0x10000012)                                                            \
    X(GET_GROUP_TABLE, 0x10000013)                                                                 \
    X(GET_NEXT_GROUP_ID, 0x10000014)                                                               \
    X(GET_GROUP_SUMMARY, 0x10000015)                                                               \
    X(GET_GROUP_REF_RULE, 0x10000016)                                                              \
    X(GET_SUMMARY, 0x10000017)                                                                     \
    X(GET_METER_TABLE, 0x10000018)                                                                 \
    X(GET_SPEC_METER_ENTRY, 0x10000019)                                                            \
    X(GET_NEXT_METER_ENTRY, 0x1000001a)                                                            \
    X(GET_METER_REF_RULE, 0x1000001b)                                                              \
    X(GET_AUX_INFO, 0x1000001c)                                                                    \
    X(GET_OAP_CONTEXT, 0x1000001d)                                                                 \
    X(GET_OAP_CLIENT_NUM, 0x1000001e)                                                              \
    X(GET_NEXT_CTRL, 0x1000001f)                                                                   \
    X(GET_CACHE_INFO, 0x10000020)                                                                  \
    X(GET_ACL_RESV, 0x10000021)                                                                    \
    X(GET_GLB_CFG_VERBOSE, 0x10000022)                                                             \
    X(GET_CTRL_CFG_INFO, 0x10000023)                                                               \
    X(GET_AC_PORT_INFO, 0x10000024)                                                                \
    X(GET_NEXT_NO_EFFECTIVE_RULE_ID, 0x10000025) /* answered with this code */                     \
    X(GET_NEXT_RULE_ID_BY_MATCH, 0x10000026)                                                       \
    X(GET_CTRL_PKT_INFO, 0x10000027)                                                               \
    X(GET_ACL_TABLE_NUM, 0x10000028)                                                               \
    X(MIB_GET_TABLE_INFO, 0x10000029)      /* answered with this code */                           \
    X(MIB_GET_NEXT_TABLE_INFO, 0x1000002a) /* answered with this code */                           \
    X(GET_NEXT_SMART_GROUP_ID, 0x1000002b)                                                         \
    X(GET_RESOURCES_IF, 0x1000002c)                                                                \
    X(GET_APP_INFO, 0x1000002d)                                                                    \
    /* replies */                                                                                  \
    X(RESULT, 0x20000001) /* TLV 2 holds the result code */                                        \
    X(INSTANCE_EXIST, 0x20000002)                                                                  \
    X(NEXT_INSTANCE, 0x20000003)                                                                   \
    X(NEXT_CTRL, 0x20000004)                                                                       \
    X(NEXT_TABLE_ID, 0x2000000a)                                                                   \
    X(TABLE_INFO, 0x2000000b)                                                                      \
    X(NEXT_RULE_ID, 0x2000000c)                                                                    \
    X(RULE_STATS, 0x2000000d)                                                                      \
    X(RULE_INFO, 0x2000000e)                                                                       \
    X(MISS_RULE_STATS, 0x2000000f)                                                                 \
    X(MISS_RULE_INFO, 0x20000010)                                                                  \
    X(INST_ACTIVE, 0x20000011)                                                                     \
    X(GLB_DBG_INFO, 0x20000012)                                                                    \
    X(GLB_DBG_INFO_PKT, 0x20000013)                                                                \
    X(GROUP_TABLE, 0x20000014)                                                                     \
    X(NEXT_GROUP_ID, 0x20000015)                                                                   \
    X(SUMMARY_COUNT, 0x20000018)                                                                   \
    X(SUMMARY, 0x20000019)                                                                         \
    X(METER_TABLE, 0x2000001a)                                                                     \
    X(OAP_CLIENT_NUM, 0x2000001e)                                                                  \
    X(CACHE_INFO, 0x20000020)                                                                      \
    X(APP_INFO, 0x20000027)                                                                        \
    /* flow programming, instances, applications */                                                \
    X(FLOW_RULE, 0x50000001)    /* answered by raw OpenFlow messages */                            \
    X(SET_GROUP, 0x50000003)    /* answered by raw OpenFlow messages */                            \
    X(DEL_GROUP, 0x50000004)    /* answered by raw OpenFlow messages */                            \
    X(SMOOTH_START, 0x50000005) /* answered by a barrier reply */                                  \
    X(SMOOTH_END, 0x50000006)   /* not answered */                                                 \
    X(ADD_INSTANCE, 0x50000007)                                                                    \
    X(REGISTER_APP, 0x50000008) /* not answered */                                                 \
    X(REGISTER_EVENT, 0x50000009)                                                                  \
    X(DEREGISTER_EVENT, 0x5000000a)                                                                \
    X(EVENT, 0x5000000b) /* agent daemon to application */

enum {
#define OFP_ROW(name, code) OFP_MSG_##name = (code),
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
};

#endif

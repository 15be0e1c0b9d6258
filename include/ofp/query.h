/*
 * Queries: what the agent daemon knows.
 *
 * A query never starts the agent daemon. It opens a channel with 30-second time-outs, sends one
 * request and takes the answer. Codes common to all: OFP_RC_DAEMON_DOWN when the daemon does not
 * run (no socket is opened), OFP_RC_FAILED when the channel could not be made or the answer is
 * malformed, OFP_RC_NO_REPLY, OFP_RC_NO_RESOURCE, else the code of the daemon's result reply. A
 * result reply with code 0 instead of data yields 0 and leaves the destination as it was: preset
 * it. A query that goes on from the last key of a reply ends with OFP_RC_FAILED when the agent
 * daemon's keys come round again, one that takes several datagrams when 16 in a row bring nothing.
 *
 * Calls that take a buffer and its size hand over the whole reply datagram, message head included;
 * *length takes the bytes received, and a result reply, also one with code 0, does not write it.
 * OFP_DATAGRAM_SIZE bytes hold every such reply.
 *
 * Queries share nothing and may run on several threads; the records and lists passed in belong to
 * the call while it lasts.
 */
#ifndef OFP_QUERY_H
#define OFP_QUERY_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/flow_item.h"
#include "ofp/platform.h"
#include "ofp/util.h"
#include "ofp/wire.h"

OFP_BEGIN_DECLS

/* ---- Lists ----
 * Circular and doubly linked: elements begin with a link, a head is a link alone, an empty head
 * points to itself. Elements are allocated by queries and belong to the caller, who initialises the
 * head before a query and finalises it afterwards. A list without a finaliser of its own is freed
 * with OFP_get_FiniMeterBandList. */

typedef struct OfpLink {
    struct OfpLink *previous; /* of a head: the last element */
    struct OfpLink *next;     /* of a head: the first element */
} OfpLink;

typedef struct OfpSummaryList {
    OfpLink link;
    uint32_t count;
    uint32_t reserved;
} OfpSummaryList;

typedef struct OfpSummaryElement {
    OfpLink link;
    OfpSummary summary;
} OfpSummaryElement;

typedef struct OfpMeterEntry {
    uint32_t meter_id;
    uint16_t flags; /* OpenFlow 1.3 meter flags */
    uint16_t reserved;
    OfpLink bands;
} OfpMeterEntry;

typedef struct OfpMeterBandElement {
    OfpLink link;
    uint64_t packet_count;
    uint64_t byte_count;
    uint32_t rate;       /* kb/s or packets/s */
    uint32_t burst_size; /* kb or packets */
    uint16_t type;       /* OpenFlow band type */
    uint8_t prec_level;  /* DSCP remark */
    uint8_t reserved[5];
} OfpMeterBandElement;

typedef struct OfpRuleRefElement {
    OfpLink link;
    uint32_t rule_id;
    uint8_t table_id;
    uint8_t reserved[3];
} OfpRuleRefElement;

#define OFP_RULE_REF_TABLES 255 /* list heads of a rule-reference array, by table id 0 to 254 */

/* Of a verbose record: a controller. Those that the instance itself reports stand before those of
 * the controller query. */
typedef struct OfpControllerElement {
    OfpLink link;
    uint8_t record[128]; /* OfpVerbCtrlRep, or OfpCtrlSummary from the controller query */
} OfpControllerElement;

/* What a verbose record keeps of a controller (TLV 6): its address, port, flag and id lie where
 * OfpVerbCtrlRep has them. */
typedef struct OfpCtrlSummary {
    uint16_t address_type; /* 2: IPv4 */
    uint8_t reserved_2[2];
    uint32_t address[4]; /* IPv4 in the first word, as it lies; the rest is then zero */
    uint32_t value_u32_20;
    uint16_t port; /* TCP port */
    uint16_t flag; /* 1 when the controller's state is 1, else 0 */
    uint8_t controller_id;
    char text_29[32]; /* terminated text */
    char text_61[32]; /* terminated text */
    uint8_t reserved_93[35];
} OfpCtrlSummary;
OFP_PIN_SIZE(OfpCtrlSummary, 128);

/* Of a verbose record: an interface. Sorted by name. */
typedef struct OfpInterfaceElement {
    OfpLink link;
    OfpVerbIfRep interface;
    uint8_t reserved[4];
} OfpInterfaceElement;

typedef struct OfpAcPortElement {
    OfpLink link;
    OfpAcPortInfo port;
} OfpAcPortElement;

typedef struct OfpResourceElement {
    OfpLink link;
    OfpRepResourcesIF resources;
} OfpResourceElement;

/* A summary list: empties the link and sets the count to 0; frees the elements and empties the link
 * (the count stays). */
OFP_API void OFP_get_InitSummary(OfpSummaryList *list);
OFP_API void OFP_get_FiniSummary(OfpSummaryList *list);

/* A band list, or any list head without calls of its own. */
OFP_API void OFP_get_InitMeterBandList(OfpLink *list);
OFP_API void OFP_get_FiniMeterBandList(OfpLink *list);

/* An array of OFP_RULE_REF_TABLES list heads. */
OFP_API void OFP_get_InitRuleRefAR(OfpLink *array);
OFP_API void OFP_get_FiniRuleRefAR(OfpLink *array);

/* ---- The verbose record of an instance ----
 * A member that holds a TLV value is a byte array of its size, named for its TLV; read it with the
 * structure of that name. */

typedef struct OfpVerboseRunning {
    OfpInstFilter filter;
    uint8_t table_count;             /* slots filled, counted in 8 bits */
    uint8_t flow_table_run[255][12]; /* OfpFlowTableRun */
    uint8_t flow_entry_limit[8];
    uint8_t datapath_id[16];
    uint8_t vlan_loosen[4];
    uint8_t mac_learning[4];
    OfpLink interfaces; /* of OfpInterfaceElement */
    Bitmap *vlans;      /* the caller's */
    uint8_t conn_mode[8];
    uint8_t fail_open[8];
    uint8_t miss_rule[8];
    uint8_t forbidden_port[8];
    uint8_t oap_server_run[44]; /* TLV 132 */
    uint8_t qinq_net_wkcfg[4];
    uint8_t tcp_dscp[8];
    uint8_t tcp_nsr[4];
    uint8_t permit_port_type[8];
    uint8_t data_plane_mode[4];
    uint8_t smart_group[4];
    uint8_t ttp_mode[4];
    uint8_t flow_monitor_interval[8];
    uint8_t flow_monitor_threshold[8];
} OfpVerboseRunning;

typedef struct OfpVerboseConfigured {
    OfpInstFilter filter;
    uint8_t table_count;        /* slots filled, counted in 8 bits */
    uint8_t flow_table[255][8]; /* OfpFlowTable */
    uint8_t flow_entry_limit[8];
    uint8_t datapath_id[16];
    uint8_t vlan_loosen[4];
    Bitmap *vlans; /* the caller's */
    uint8_t mac_learning[4];
    OfpLink interfaces; /* of OfpInterfaceElement */
    uint8_t conn_mode[8];
    uint8_t fail_open[8];
    uint8_t miss_rule[8];
    uint8_t forbidden_port[8];
    uint8_t oap_server[40];
    uint8_t dyn_mac_aware[4];
    uint8_t qinq_net_wkcfg[4];
    uint8_t tcp_dscp[8];
    uint8_t permit_port_type[8];
    uint8_t precedence[8];
    uint8_t tcp_nsr[4];
    uint8_t exclude_conn_id[16];
    uint8_t data_plane_mode[4];
    uint8_t smart_group[4];
    uint8_t ttp_mode[4];
    uint8_t flow_monitor_interval[8];
    uint8_t flow_monitor_threshold[8];
} OfpVerboseConfigured;

typedef struct OfpVerbose {
    uint8_t inst_active[4]; /* TLV 67: active when its first 16 bits are 1 */
    uint8_t instance[256];  /* OfpVerbInst */
    OfpLink controllers;    /* of OfpControllerElement */
    OfpVerboseRunning running;
    OfpVerboseConfigured configured;
} OfpVerbose;

/* Clears the record and empties its three lists. The bitmaps are the caller's to supply. */
OFP_API void OFP_get_InitVerbose(OfpVerbose *verbose);
/* Frees the elements of the three lists and empties them. */
OFP_API void OFP_get_FiniVerbose(OfpVerbose *verbose);

/* ---- Instances ---- */

/* 1 when the instance exists; 0 when it does not, and on every failure. Sends 0x10000001 with
 * TLV 4, takes TLV 5. */
OFP_API uint16_t OFP_get_IsInstanceExist(uint16_t instance_id);

/* The instance after instance_id. The answer is awaited even if the request could not be sent; its
 * code is returned. Sends 0x10000003 with TLV 4, takes TLV 4. */
OFP_API uint32_t OFP_get_NextInstance(uint16_t instance_id, OfpInstanceID *next);

/* Whether the instance is active: the low 16 bits of *active are 1. *active is 0 when the exchange
 * failed and untouched when no channel could be opened. Sends 0x10000010 with TLV 4, takes
 * TLV 67. */
OFP_API uint32_t OFP_get_InstActive(uint16_t instance_id, uint32_t *active);

/* ---- Controllers ---- */

#define OFP_ALL_CONTROLLERS 64 /* a controller id that stands for all of the instance */

/* An instance's controllers, their state included. Sends 0x10000004 with TLV 120; the reply holds
 * TLVs 6. */
OFP_API uint32_t OFP_get_CtrlInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                  uint8_t *buffer, uint64_t *length);
/* The controller after the given one. Sends 0x1000001f with TLV 120, takes TLV 6. */
OFP_API uint32_t OFP_get_NextCtrl(uint16_t instance_id, uint8_t controller_id, OfpCtrl *next);
/* Controllers as configured. Sends 0x10000023 with TLV 120. */
OFP_API uint32_t OFP_get_CtrlCfgInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                     uint8_t *buffer, uint64_t *length);
/* Packet counters of controllers. Sends 0x10000027 with TLV 120. */
OFP_API uint32_t OFP_get_CtrlPktInfo(uint16_t instance_id, uint8_t controller_id, uint64_t size,
                                     uint8_t *buffer, uint64_t *length);
/* Auxiliary connections. Sends 0x1000001c with TLV 136. */
OFP_API uint32_t OFP_get_AuxInfo(const OfpAuxID *key, uint64_t size, uint8_t *buffer,
                                 uint64_t *length);

/* ---- Applications ---- */

/* Packet counters of a registered application. Sends 0x1000002d with TLV 191, takes TLV 195. */
OFP_API uint32_t OFP_get_AppInfo(uint8_t app_id, OfpAppPktStats *stats);

/* How many OAP clients are connected. Sends 0x1000001e, takes TLV 133. */
OFP_API uint32_t OFP_get_OapClientNum(OfpOapClientNum *clients);
/* OAP contexts. Sends 0x1000001d with TLV 134. */
OFP_API uint32_t OFP_get_OapContext(const OfpContext *key, uint64_t size, uint8_t *buffer,
                                    uint64_t *length);

/* ---- All of an instance, device-wide settings, debugging ----
 * A map of VLANs is read into the caller's bitmap as far as that has room; without one it is left
 * out. */

typedef struct OfpGlbCfgVerbose {
    Bitmap *vlans; /* the caller's */
    OfpIgnore ignore;
} OfpGlbCfgVerbose;

/* The active flag, the instance data and the controllers that the instance reports. The reply may
 * have OFP_LARGE_DATAGRAM_SIZE bytes; OFP_RC_FAILED when there is no memory for it. When a
 * controller cannot be allocated the whole controller list is freed and emptied,
 * OFP_RC_NO_RESOURCE. Sends 0x10000005 with TLV 4, takes TLVs 67, 38 and 39. */
OFP_API uint32_t OFP_get_VerboseGlb(uint16_t instance_id, OfpVerbose *verbose);

/* The whole record: OFP_get_VerboseGlb and the controllers of OFP_get_CtrlInfo, both always, their
 * codes ORed; then what is configured and its interfaces; of an active instance also what runs and
 * its interfaces. The first code other than 0 ends the query; what was read stays. The 256th flow
 * table of a block lies on the members behind the 255 slots, the 257th in the first slot again. An
 * interface whose name equals the last one's is left out; when one cannot be allocated its list is
 * freed and emptied, OFP_RC_NO_RESOURCE. Sends 0x10000006, 0x10000007 (TLV 4) and 0x10000008
 * (TLV 41) besides. */
OFP_API uint32_t OFP_get_Verbose(uint16_t instance_id, OfpVerbose *verbose);

/* Device-wide settings. Sends 0x10000022, takes TLVs 90 and 204. */
OFP_API uint32_t OFP_get_GlbCfgVerbose(OfpGlbCfgVerbose *config);

/* Debugging switches; the record is the key as well. Sends 0x10000011 with TLV 71, takes TLV 71. */
OFP_API uint32_t OFP_get_GlbDbgInfo(OfpGlbDebug *debug);

/* Packets that debugging counted: the 64-bit values at 16 and 24 of TLV 72, and, unless value is
 * null, the 16 bits at 8. Written whenever the request was sent, zero without an answer. Sends
 * 0x10000012 with TLV 71, takes TLV 72. */
OFP_API uint32_t OFP_get_GlbDbgInfoPkt(uint16_t key0, uint16_t key1, uint64_t counters[2],
                                       uint16_t *value);

/* ---- Flow rules ----
 * A rule is named by instance, table and rule id; a client's rules are those of the instance with
 * the client's id. */

/* What the agent daemon holds of a rule, as the reply datagram, message head included. The buffer
 * must hold OFP_LARGE_DATAGRAM_SIZE bytes; *length takes the bytes received. Sends 0x1000000d with
 * TLV 56. */
OFP_API uint32_t OFP_get_RuleInfo(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                  uint8_t *buffer, uint64_t *length);
/* The table-miss rule; the buffer must hold OFP_DATAGRAM_SIZE bytes. Sends 0x1000000f. */
OFP_API uint32_t OFP_get_MissRuleInfo(uint16_t instance_id, uint8_t table_id, uint8_t *buffer,
                                      uint64_t *length);

/* A rule's counters. Sends 0x1000000c with TLV 56, takes TLV 33. */
OFP_API uint32_t OFP_get_RuleStats(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                   OfpFRStatsInfo *stats);
/* The table-miss rule's counters; *stats is cleared first. Sends 0x1000000e. */
OFP_API uint32_t OFP_get_MissRuleStats(uint16_t instance_id, uint8_t table_id,
                                       OfpFRStatsInfo *stats);

/* The rule id after rule_id. *next is 0 after a failed exchange and untouched when no channel could
 * be opened. Sends 0x1000000b with TLV 56, takes TLV 31. */
OFP_API uint32_t OFP_get_NextRuleID(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                    uint32_t *next);
/* The same over rules that are not in effect. Sends 0x10000025. */
OFP_API uint32_t OFP_get_NextNoEffectiveRuleID(uint16_t instance_id, uint8_t table_id,
                                               uint32_t rule_id, uint32_t *next);
/* The same over rules with the item's match; the next id replaces key->rule_id. Sends 0x10000026
 * with TLV 56 and the OXM match. */
OFP_API uint32_t OFP_get_NextRuleIDByMatch(const OfpFlowItem *item, OfpRuleIDInfo *key);

/* ---- Flow tables ---- */

/* A table's limits and use. Sends 0x1000000a with TLV 14, takes TLV 55. */
OFP_API uint32_t OFP_get_TableInfo(uint16_t instance_id, uint8_t table_id, OfpTableInfo *info);

/* The table for the management information base. Sends 0x10000029, takes TLV 209. */
OFP_API uint32_t OFP_get_MibGetTableInfo(uint16_t instance_id, uint8_t table_id,
                                         OfpMibTableInfo *info);
/* The table after the given one, whose key is replaced by that of *info once the request was sent.
 * Sends 0x1000002a. */
OFP_API uint32_t OFP_get_MibGetNextTableInfo(uint16_t *instance_id, uint8_t *table_id,
                                             OfpMibTableInfo *info);

/* Cache information for three key values. Sends 0x10000020 with TLV 152, takes TLV 153. */
OFP_API uint32_t OFP_get_CacheInfo(uint16_t key0, uint16_t key1, uint16_t key2,
                                   OfpCacheInfoRep *info);

/* The table id after table_id; 255 starts at the first. *next is 0 after a failed exchange. Sends
 * 0x10000009 with TLV 14, takes TLV 35. */
OFP_API uint32_t OFP_get_NextTableID(uint16_t instance_id, uint8_t table_id, uint8_t *next);

/* ---- Groups ---- */

/* The group table of an instance. Sends 0x10000013 with TLV 95, takes TLV 96. */
OFP_API uint32_t OFP_get_GroupTable(uint16_t instance_id, OfpGroupTable *table);

/* The group id after group_id. Any reply without it is OFP_RC_FAILED, also a result reply with
 * code 0. Sends 0x10000014 with TLV 97, takes TLV 97. */
OFP_API uint32_t OFP_get_NextGroupID(uint16_t instance_id, uint32_t group_id, uint32_t *next);

/* The smart group after the given one, whose id is replaced on success (by 0 when the reply held
 * none). Sends 0x1000002b with TLV 225, takes TLV 97. */
OFP_API uint32_t OFP_get_NextSmartGroupID(OfpSmartGroupID *group);

/* A group, its statistics and buckets; one of many buckets may take OFP_LARGE_DATAGRAM_SIZE bytes.
 * Sends 0x10000015 with TLV 97. */
OFP_API uint32_t OFP_get_GroupSummary(uint16_t instance_id, uint32_t group_id, uint64_t size,
                                      uint8_t *buffer, uint64_t *length);

/* One entry an instance, at the tail of the list. The count is not reset: a list that holds
 * entries already takes that many fewer. A datagram of another kind, or without any TLV, is
 * OFP_RC_FAILED; the entries before it stay. Sends 0x10000017, takes TLVs 111 and 112. */
OFP_API uint32_t OFP_get_Summary(OfpSummaryList *list);

/* ---- Meters ---- */

/* The meter table of an instance. Sends 0x10000018 with TLV 4, takes TLV 114. */
OFP_API uint32_t OFP_get_MeterTable(uint16_t instance_id, OfpMeterTable *table);

/* A meter; its bands go to the tail of entry->bands. A TLV that does not belong to a meter is
 * OFP_RC_FAILED; the bands before it stay. Sends 0x10000019 with TLV 115, takes TLVs 116 to 118 out
 * of as many datagrams as there are. */
OFP_API uint32_t OFP_get_SpecMeterEntry(uint16_t instance_id, uint32_t meter_id,
                                        OfpMeterEntry *entry);
/* The meter after the given one. Sends 0x1000001a. */
OFP_API uint32_t OFP_get_NextMeterEntry(uint16_t instance_id, uint32_t meter_id,
                                        OfpMeterEntry *entry);

/* ---- Rules that refer to a group or a meter ----
 * Sorted by rule id into the list of their table, equal ids in order of arrival. *total counts the
 * references of every reply but the last one, and is written on every path. What was read before a
 * failure stays. The query repeats itself from the last rule until a reply holds none. */

#define OFP_REF_RULE_END 255 /* the references ended: a success, like 0 */

/* Sends 0x10000016 with TLV 100, takes TLVs 101. */
OFP_API uint32_t OFP_get_GroupRefRule(uint16_t instance_id, uint32_t group_id, OfpLink *array,
                                      uint32_t *total);
/* Sends 0x1000001b with TLV 119. */
OFP_API uint32_t OFP_get_MeterRefRule(uint16_t instance_id, uint32_t meter_id, OfpLink *array,
                                      uint32_t *total);

/* ---- Resources and ports ---- */

/* ACL resources reserved. A reply without them is OFP_RC_FAILED, also a result reply with code 0.
 * Sends 0x10000021, takes TLV 181. */
OFP_API uint32_t OFP_get_AclResv(OfpShowAclResv *reserved);

/* How many ACL tables; 1 as long as the agent daemon has not said otherwise. A reply without the
 * number is OFP_RC_FAILED, also a result reply with code 0. Sends 0x10000028, takes TLV 203. */
OFP_API uint32_t OFP_get_AclTableNum(uint32_t *count);

/* The attachment ports into a list of OfpAcPortElement sorted by name, one with an equal name
 * before those that are there. No ports are a success. When one cannot be allocated the list is
 * freed and emptied, OFP_RC_NO_RESOURCE. Sends 0x10000024 with TLV 200, again from the last value
 * read until that has no index; takes TLVs 200. */
OFP_API uint32_t OFP_get_AcPortInfo(OfpLink *list);

/* Resources of interfaces, OfpResourceElement at the tail of the list. OFP_RC_FAILED when the list
 * is empty after all, also for want of memory, which frees and empties it. Sends 0x1000002c with
 * TLV 217, takes TLVs 216. */
OFP_API uint32_t OFP_get_ResourcesIf(uint32_t if_index, uint16_t value, OfpLink *list);

OFP_END_DECLS

#endif

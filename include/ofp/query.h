/*
 * Queries: what the agent daemon knows.
 *
 * A query never starts the agent daemon. It opens a channel with 30-second time-outs, sends one
 * request and takes the answer. Codes common to all: OFP_RC_DAEMON_DOWN when the daemon does not
 * run (no socket is opened), OFP_RC_FAILED when the channel could not be made or the answer is
 * malformed, OFP_RC_NO_REPLY, OFP_RC_NO_RESOURCE, else the code of the daemon's result reply. A
 * result reply with code 0 instead of data yields 0 and leaves the destination as it was: preset
 * it.
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
    OfpLink interfaces;
    Bitmap *vlans; /* the caller's */
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
    OfpLink interfaces;
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
    OfpLink controllers;    /* of links followed by 128 bytes */
    OfpVerboseRunning running;
    OfpVerboseConfigured configured;
} OfpVerbose;

/* Clears the record and empties its three lists. The bitmaps are the caller's to supply. */
OFP_API void OFP_get_InitVerbose(OfpVerbose *verbose);
/* Frees the elements of the three lists and empties them. */
OFP_API void OFP_get_FiniVerbose(OfpVerbose *verbose);

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

OFP_END_DECLS

#endif

/* OpenFlow instances. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_INSTANCE_H
#define OFP_WIRE_INSTANCE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 3: configuration of an instance: its VLANs or its description. */
typedef struct OfpInstanceCfg {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint32_t value_u32_8;
    uint16_t instance_id;
    uint16_t vlan_value;   /* second argument of OFP_set_VlanList */
    char description[256]; /* terminated text */
} OfpInstanceCfg;
OFP_PIN_SIZE(OfpInstanceCfg, 272);
OFP_API void OFP_bswap_InstanceCfg(void *value);

/* TLV 4: an instance. */
typedef struct OfpInstanceID {
    uint16_t instance_id;
    uint8_t reserved_2[2];
} OfpInstanceID;
OFP_PIN_SIZE(OfpInstanceID, 4);
OFP_API void OFP_bswap_InstanceID(void *value);

/* TLV 5: whether the instance exists. */
typedef struct OfpInstanceIsExist {
    uint16_t exists; /* 1 when it does */
    uint8_t reserved_2[2];
} OfpInstanceIsExist;
OFP_PIN_SIZE(OfpInstanceIsExist, 4);
OFP_API void OFP_bswap_InstanceIsExist(void *value);

/* TLV 9: most flow entries of an instance. */
typedef struct OfpFlowEntryLimit {
    uint32_t limit; /* entries */
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpFlowEntryLimit;
OFP_PIN_SIZE(OfpFlowEntryLimit, 8);
OFP_API void OFP_bswap_FlowEntryLimit(void *value);

/* TLV 37: device configuration. */
typedef struct OfpSetDevConf {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
    uint16_t value_u16_8;
    uint16_t value_u16_10;
} OfpSetDevConf;
OFP_PIN_SIZE(OfpSetDevConf, 12);
OFP_API void OFP_bswap_SetDevConf(void *value);

/* TLV 38: global data of an instance; byte content only. */
typedef struct OfpVerbInst {
    uint8_t content[256];
} OfpVerbInst;
OFP_PIN_SIZE(OfpVerbInst, 256);
OFP_API void OFP_bswap_VerbInst(void *value);

/* TLV 49: context of the device driver; byte content only. */
typedef struct OfpDrvContext {
    uint8_t content[4];
} OfpDrvContext;
OFP_PIN_SIZE(OfpDrvContext, 4);
OFP_API void OFP_bswap_DrvContext(void *value);

/* TLV 50: an active instance. */
typedef struct OfpActiveInst {
    uint64_t value_u64_0;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint16_t value_u16_16;
    uint16_t value_u16_18;
    uint32_t value_u32_20;
    uint32_t value_u32_24;
    uint16_t value_u16_28;
    uint8_t opaque_30[6];
    uint32_t value_u32_36;
} OfpActiveInst;
OFP_PIN_SIZE(OfpActiveInst, 40);
OFP_API void OFP_bswap_ActiveInst(void *value);

/* TLV 67: whether an instance is active. */
typedef struct OfpInstActive {
    uint16_t active; /* 1 when it is */
    uint8_t reserved_2[2];
} OfpInstActive;
OFP_PIN_SIZE(OfpInstActive, 4);
OFP_API void OFP_bswap_InstActive(void *value);

/* TLV 85: timer of an instance. */
typedef struct OfpInstTimer {
    uint32_t value_u32_0;
    uint32_t value_u32_4;
} OfpInstTimer;
OFP_PIN_SIZE(OfpInstTimer, 8);
OFP_API void OFP_bswap_InstTimer(void *value);

/* TLV 87: datapath id of an instance. */
typedef struct OfpDataPathID {
    uint64_t datapath_id;
    uint16_t instance_id;
    uint8_t reserved_10[6];
} OfpDataPathID;
OFP_PIN_SIZE(OfpDataPathID, 16);
OFP_API void OFP_bswap_DataPathID(void *value);

/* TLV 111: how many summary entries follow. */
typedef struct OfpSummaryCount {
    uint32_t count;
} OfpSummaryCount;
OFP_PIN_SIZE(OfpSummaryCount, 4);

/* TLV 112: one entry of the summary. */
typedef struct OfpSummary {
    uint64_t value_u64_0;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint16_t value_u16_16;
    uint16_t value_u16_18;
    uint16_t value_u16_20;
    uint8_t reserved_22[2];
} OfpSummary;
OFP_PIN_SIZE(OfpSummary, 24);
OFP_API void OFP_bswap_Summary(void *value);

/* TLV 124: instance filter: the instance; always the first of the filter. */
typedef struct OfpInstFilterInstance {
    uint16_t instance_id;
    uint16_t filter_kind; /* 0 to 5 */
    uint32_t ext;
} OfpInstFilterInstance;
OFP_PIN_SIZE(OfpInstFilterInstance, 8);

/* TLV 125: instance filter, kinds 1 and 4: two parameters. */
typedef struct OfpInstFilterController {
    uint32_t zero; /* always 0 */
    uint16_t param_a;
    uint16_t param_b;
} OfpInstFilterController;
OFP_PIN_SIZE(OfpInstFilterController, 8);

/* TLV 126: instance filter, kinds 2 and 5: one parameter. */
typedef struct OfpInstFilterFlags {
    uint32_t param;
} OfpInstFilterFlags;
OFP_PIN_SIZE(OfpInstFilterFlags, 4);

/* TLV 127: table-miss behaviour of an instance. */
typedef struct OfpMissRule {
    uint32_t mode;
    uint16_t instance_id;
    uint8_t reserved_6[2];
} OfpMissRule;
OFP_PIN_SIZE(OfpMissRule, 8);

/* TLV 130: an instance being deactivated. */
typedef struct OfpDeactiveInst {
    uint16_t instance_id;
    uint16_t value_u16_2;
} OfpDeactiveInst;
OFP_PIN_SIZE(OfpDeactiveInst, 4);
OFP_API void OFP_bswap_DeactiveInst(void *value);

/* TLV 134: key of an OAP context. */
typedef struct OfpContext {
    uint64_t value_u64_0;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint16_t value_u16_20;
    uint8_t reserved_22[2];
} OfpContext;
OFP_PIN_SIZE(OfpContext, 24);
OFP_API void ofp_bswap_Context(void *value);

/* TLV 139: an OAP context. */
typedef struct OfpContextInfo {
    uint64_t value_u64_0;
    uint32_t value_u32_8;
    uint32_t value_u32_12;
    uint32_t value_u32_16;
    uint16_t value_u16_20;
    uint8_t reserved_22[2];
} OfpContextInfo;
OFP_PIN_SIZE(OfpContextInfo, 24);

/* TLV 154: precedence of an instance. */
typedef struct OfpPrecedence {
    uint16_t instance_id;
    uint16_t precedence;
    uint32_t present; /* 1 when set; as it lies */
} OfpPrecedence;
OFP_PIN_SIZE(OfpPrecedence, 8);

/* TLV 177: DSCP of an instance's TCP connections. */
typedef struct OfpTcpDscp {
    uint16_t instance_id;
    uint8_t reserved_2[2];
    uint32_t dscp;
} OfpTcpDscp;
OFP_PIN_SIZE(OfpTcpDscp, 8);
OFP_API void OFP_bswap_TcpDscp(void *value);

/* TLV 178: non-stop routing of an instance's TCP connections. */
typedef struct OfpTcpNsr {
    uint16_t instance_id;
    uint16_t enable;
} OfpTcpNsr;
OFP_PIN_SIZE(OfpTcpNsr, 4);

/* TLV 199: data plane mode of an instance. */
typedef struct OfpDataPlaneMode {
    uint16_t instance_id;
    uint16_t mode;
} OfpDataPlaneMode;
OFP_PIN_SIZE(OfpDataPlaneMode, 4);
OFP_API void OFP_bswap_DataPlaneMode(void *value);

/* TLV 211: table type pattern mode of an instance. */
typedef struct OfpTTPMode {
    uint16_t instance_id;
    uint16_t mode;
} OfpTTPMode;
OFP_PIN_SIZE(OfpTTPMode, 4);
OFP_API void OFP_bswap_TTPMode(void *value);

OFP_END_DECLS

#endif

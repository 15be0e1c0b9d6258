/*
 * Utilities: the agent daemon's service, its start-up parameters, instance filters.
 *
 * Unless said otherwise the calls send nothing and may be used from any thread.
 */
#ifndef OFP_UTIL_H
#define OFP_UTIL_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* ---- The agent daemon's service ---- */

/* 1 when the service runs on the system master, else 0. */
OFP_API uint16_t OFP_util_IsDaemonStart(void);

/* Starts the service on the system master, then on every other node that is up. 0 when it runs
 * already; else the platform's code, or OFP_RC_FAILED when the nodes cannot be listed or memory is
 * short. */
OFP_API uint32_t OFP_util_StartDaemon(void);

/* Starts the service on one node unless it runs there. */
OFP_API uint32_t OFP_util_StartDaemonByLip(uint16_t node);

/* On a controller board: starts the service on the other nodes that are up and lack it, then waits,
 * without limit, until it runs on the system master. 0 on other boards; OFP_RC_FAILED when there
 * was nothing to start or the nodes cannot be listed; else the platform's code. */
OFP_API uint32_t OFP_util_StartOtherInBlade(void);

/* The platform's answer for the system master. */
OFP_API uint32_t OFP_util_IsPhase4Over(void);

/* ---- Start-up parameters ---- */

/* The agent daemon's start-up options. */
typedef struct OfpDaemonParam {
    uint32_t ACLTableNum;
    uint32_t MacIPTable;
    uint32_t MplsTable; /* all ones: not given */
    uint32_t ACLMaxFlowEntry;
    uint32_t Classification;
    uint16_t QinQTable;
    uint16_t ResvAclRes;
    uint32_t reserved_24; /* not an option */
    uint16_t TDEnable;
    uint16_t NormalFwdVlan;
    uint16_t ProSlow;
    uint16_t SmartGroup;
    uint16_t TTPEnable;
    uint16_t reserved_38;
    uint32_t EMTableNum; /* all ones: not given */
    uint16_t Ipv6Enhanced;
    uint16_t reserved_46;
} OfpDaemonParam;
OFP_PIN_SIZE(OfpDaemonParam, 48);

/* Parses the start-up options from the platform's two option sources. Fields whose option is
 * absent keep their value, MplsTable and EMTableNum become all ones. The platform's code. */
OFP_API uint32_t OFP_util_ParseArg(void *source1, void *source2, OfpDaemonParam *param);

/* Writes a configuration storage key: the format applied to id. Returns the characters written. */
OFP_API uint64_t OFP_util_GetDbmCfgKey(uint16_t id, const char *format, uint64_t size,
                                       char *buffer);

/* The default datapath id: id above the 48-bit bridge MAC address (zero when that is unknown). */
OFP_API uint64_t OFP_util_DefaultPathID(uint16_t id);

/* "1.0" to "1.3" for the OpenFlow wire versions 1 to 4, else null. Not to be freed. */
OFP_API const char *OFP_util_GetVersionDesc(uint32_t version);

/* 1 when text does NOT contain "connect-state", 0 when it does. */
OFP_API uint16_t OFP_util_FindSubModuleNameFlag(const char *text);

/* ---- Instance filters ---- */

/* Names an instance and narrows what of it a request concerns. */
typedef struct OfpInstFilter {
    uint16_t instance_id;
    uint16_t filter_kind; /* 0 to 5 */
    __extension__ union {
        __extension__ struct {
            uint16_t param_a; /* kinds 1 and 4 */
            uint16_t param_b;
        };
        uint32_t param; /* kinds 2 and 5 */
    };
    uint32_t ext;
} OfpInstFilter;
OFP_PIN_SIZE(OfpInstFilter, 12);

/* Writes TLV 124, then TLV 125 (kinds 1, 4) or 126 (kinds 2, 5). Returns the bytes written. */
OFP_API uint64_t OFP_util_EncapInstFilterTLV(const OfpInstFilter *filter, uint64_t room,
                                             uint8_t *buffer);

/* Clears the filter and reads it back. Returns the bytes consumed; 0 for a kind above 5, whose
 * values stay in the filter. */
OFP_API uint64_t OFP_util_DecapInstFilterTLV(const uint8_t *buffer, uint64_t length,
                                             OfpInstFilter *filter);

/* The same values without TLV headers, in host order: 16 bytes (kinds 1, 4), 12 (kinds 2, 5) or 8.
 * Both return that size, also when the buffer is shorter: what it lacks is not written, or read as
 * zero. */
OFP_API uint64_t OFP_util_PatchInstFilterTLV(const OfpInstFilter *filter, uint64_t room,
                                             uint8_t *out);
OFP_API uint64_t OFP_util_SplitInstFilterTLV(const uint8_t *compact, uint64_t length,
                                             OfpInstFilter *filter);

/* The bytes of the run of TLVs of one type at the start of a buffer. */
OFP_API uint64_t OFP_util_PassbyTLV(const uint8_t *buffer, uint64_t length, uint16_t type);

/* Copies the smaller of the two lengths and returns it. */
OFP_API uint64_t OFP_util_GetEffData(const void *src, uint64_t src_length, uint64_t dst_length,
                                     void *dst);

/* 1 when all bytes are zero (or there are none), else 0. */
OFP_API uint16_t OFP_util_IsMemZero(const uint8_t *bytes, uint64_t length);

OFP_END_DECLS

#endif

/*
 * Configuration of the agent daemon.
 *
 * A configuration call starts the agent daemon when it does not run, opens a channel with 30-second
 * time-outs, sends one datagram and returns the code of the result reply. Codes: OFP_RC_FAILED (no
 * channel), OFP_RC_SEND_FAILED, OFP_RC_NO_REPLY, else the agent daemon's; a reply that is no result
 * reply counts as success. Calls share nothing and may run on several threads.
 *
 * Records are in host order and are not changed, except where said. The comment of a call names its
 * message code and TLV, and what deviates from the above.
 */
#ifndef OFP_CONFIG_H
#define OFP_CONFIG_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/util.h"
#include "ofp/wire.h"

OFP_BEGIN_DECLS

/* ---- Instances ---- */

/* Creates an OpenFlow instance with its default flow tables: 10, 11, 20, 21 and 30, or table 0
 * alone for instance 4101. The id is sent as 16 bits. OFP_RC_NO_REPLY also when nobody listens.
 * Sends 0x50000007 with the instance filter and one TLV 69 a table. */
OFP_API uint32_t OFP_AddInstance(uint32_t instance_id);

/* Configures (operation 1: message 1) or removes (else: message 2) an instance; ext is the filter's
 * extension word. Operation 0 while the agent daemon is down is done already: 0, nothing is sent.
 * TLV 124. */
OFP_API uint32_t OFP_set_Instance(uint16_t operation, uint16_t instance_id, uint32_t ext);

/* Activates (operation 1: message 23) or deactivates (else: message 10) an instance. TLV 4. */
OFP_API uint32_t OFP_set_ActiveInst(uint16_t instance_id, uint16_t operation);

/* Describes an instance: text of at most 255 bytes, the rest is cut; null is as good as empty.
 * Message 9, TLV 3. */
OFP_API uint32_t OFP_set_Description(uint16_t instance_id, const char *text);

/* The datapath id of an instance. Message 16, TLV 87. */
OFP_API uint32_t OFP_set_DataPathID(const OfpDataPathID *datapath);

/* Message 26, TLV 154. */
OFP_API uint32_t OFP_set_Precedence(uint16_t instance_id, uint16_t precedence);

/* Message 49, TLV 199. */
OFP_API uint32_t OFP_set_DataPlaneMode(uint16_t instance_id, uint16_t mode);

/* Table type pattern mode. Message 53, TLV 211. */
OFP_API uint32_t OFP_set_TTPMode(uint16_t instance_id, uint16_t mode);

/* Message 57, TLV 224; the value travels ahead of the instance. */
OFP_API uint32_t OFP_set_SmartGroup(uint16_t instance_id, uint16_t enable);

/* ---- Controllers and connections ---- */

/* Sets (operation 1: message 5) or removes (else: message 4) a controller. TLV 7. */
OFP_API uint32_t OFP_set_CtrlCfg(const OfpCtrlCfg *controller, uint16_t operation);

/* Sets (operation 1: message 55) or removes (else: message 54) a controller's TLS policy. TLV 219,
 * which travels as it lies in memory. */
OFP_API uint32_t OFP_set_Ctrl_SSL(const OfpCtrlSSL *tls, uint16_t operation);

/* Sets (operation 1: message 30) or removes (else: message 29) an auxiliary connection. TLV 135. */
OFP_API uint32_t OFP_set_AuxCfg(const OfpAuxCfg *auxiliary, uint16_t operation);

/* The OAP server: sets (operation 1: message 32) or removes (else: message 31) it. TLV 131. */
OFP_API uint32_t OFP_set_OapServer(const OfpOapServer *server, uint16_t operation);

/* Clears the counters of a controller. Message 22, TLV 120. No reply is awaited: 0 or OFP_RC_FAILED
 * says whether the datagram left. */
OFP_API uint32_t OFP_set_ResetCtrlStat(uint16_t instance_id, uint8_t controller_id);

/* Message 48, TLV 188. The name is part of the ABI. */
OFP_API uint32_t OFP_set_ExlucdeCtrlId(const OfpExcludeConnID *excluded);

/* Interval of echo requests to the controllers. Message 6, TLV 8. */
OFP_API uint32_t OFP_set_EchoTime(const OfpEchoTime *time);

/* Interval between connection attempts. Message 15, TLV 80. */
OFP_API uint32_t OFP_set_ReconnectTime(const OfpReconnectTime *time);

/* Single or multiple controllers. Message 19, TLV 94. */
OFP_API uint32_t OFP_set_ConnectionMode(const OfpConnMode *mode);

/* Behaviour while no controller is connected. Message 8, TLV 10. */
OFP_API uint32_t OFP_set_FailOpen(const OfpFailOpen *mode);

/* DSCP of the connections. Message 38, TLV 177. */
OFP_API uint32_t OFP_set_TcpDscp(const OfpTcpDscp *dscp);

/* Non-stop routing of the connections. Message 39, TLV 178. */
OFP_API uint32_t OFP_set_TcpNsr(uint16_t instance_id, uint16_t enable);

/* ---- Flow tables and flow entries ---- */

/* The flow tables of an instance. tables is SORTED IN PLACE by table id once the channel is open:
 * ids and kinds change place, bytes 1 to 3 of each entry stay where they are. A datagram holds 681
 * tables; those behind them are sorted but not sent. OFP_RC_FAILED for no tables but a count.
 * Message 12, TLV 4, then one TLV 69 each. */
OFP_API uint32_t OFP_set_FlowTable(uint16_t instance_id, uint32_t count, OfpFlowTable *tables);

/* Most flow entries of an instance. Message 7, TLV 9. */
OFP_API uint32_t OFP_set_FlowEntryLimit(const OfpFlowEntryLimit *limit);

/* What the table-miss rule does. Message 20, TLV 127. */
OFP_API uint32_t OFP_set_MissRule(const OfpMissRule *rule);

/* Message 27, TLV 157. */
OFP_API uint32_t OFP_set_FlowLogDisable(uint16_t instance_id, uint16_t disable);

/* Message 28, TLV 165. */
OFP_API uint32_t OFP_set_RefreshIpFlow(uint16_t value);

/* Clears a cache. Message 35, TLV 152; no reply is awaited, as for OFP_set_ResetCtrlStat. */
OFP_API uint32_t OFP_set_ResetCache(uint16_t key);

/* ACL resources kept for OpenFlow. Message 41, TLV 180. */
OFP_API uint32_t OFP_set_ResvAclRes(const OfpResrvAclRes *reserved);

/* Message 24, TLV 160, which travels as it lies in memory. */
OFP_API uint32_t OFP_set_PacketFilter(uint16_t instance_id, uint32_t filter);

/* How often flows are monitored, from which threshold, and what is done. Messages 59, 60 and 61,
 * TLVs 233, 234 and 235. The middle name is part of the ABI. */
OFP_API uint32_t OFP_set_FlowMonitorInterval(const OfpFlowMonitorInterval *interval);
OFP_API uint32_t OFP_set_FlowMonitorThreShold(const OfpFlowMonitorThreShold *threshold);
OFP_API uint32_t OFP_set_FlowMonitorAction(uint64_t value0, uint64_t value8, uint8_t value16,
                                           uint16_t value17);

/* ---- VLANs and MAC addresses ---- */

/* Ranges of VLAN ids; the first count of the ten are in use. */
typedef struct OfpVlanRangeList {
    struct {
        uint16_t first;
        uint16_t last; /* inclusive */
    } range[10];
    uint32_t count; /* more than ten are read as ten */
    uint16_t instance_id;
    uint16_t reserved_46;
} OfpVlanRangeList;
OFP_PIN_SIZE(OfpVlanRangeList, 48);

/* The VLANs of an instance, as an instance filter. Message 3, TLV 3 and the filter's TLVs. */
OFP_API uint32_t OFP_set_VlanList(const OfpInstFilter *filter, uint16_t value);

/* In-band management VLANs of an instance. OFP_RC_FAILED for an id above 4095. Message 17, TLV 4
 * and TLV 90. */
OFP_API uint32_t OFP_set_InManageVlan(const OfpVlanRangeList *vlans);

/* VLANs that are forwarded as usual. OFP_RC_FAILED for an id above 4095. Message 47, TLV 90. */
OFP_API uint32_t OFP_set_NormalForwardVlan(const OfpVlanRangeList *vlans);

/* Message 25, TLV 164; the value travels ahead of the instance. */
OFP_API uint32_t OFP_set_QinQNetEnable(uint16_t instance_id, uint16_t enable);

/* Message 18, TLV 92. */
OFP_API uint32_t OFP_set_MacLearning(uint16_t instance_id, uint16_t enable);

/* Awareness of dynamic MAC addresses. Message 11, TLV 68. */
OFP_API uint32_t OFP_set_DynMac(const OfpDynMacAware *aware);

/* ---- Ports ---- */

/* Ports by kind that an instance must not use. Message 21, TLV 128. */
OFP_API uint32_t OFP_set_ForbiddenPort(uint16_t instance_id, uint32_t ports);

/* Port types that an instance may use. Message 36, TLV 172. */
OFP_API uint32_t OFP_set_PermitPortType(uint16_t instance_id, uint32_t port_types);

/* Binds a port to an instance or unbinds it: message_code 33 or 34. TLV 142. */
OFP_API uint32_t OFP_set_BindPort(uint32_t message_code, const OfpPortInstanceCfg *port);

/* The same from its parts; OFP_RC_PORT_NO_DAEMON when the agent daemon does not run, which it does
 * not start. TLV 142. */
OFP_API uint32_t OFP_set_PortBindInst(uint32_t message_code, uint16_t instance_id,
                                      uint32_t if_index);

/* Shuts a port down or starts it: message_code 42 or 43. TLV 182. */
OFP_API uint32_t OFP_set_PortShutdown(uint32_t message_code, uint32_t if_index);

/* Message 44, TLV 183. */
OFP_API uint32_t OFP_set_LoopProtect(uint16_t instance_id, uint16_t enable);

/* ---- Switch-wide options ---- */

/* Message 51, TLV 204. */
OFP_API uint32_t OFP_set_Ignore(uint16_t value);

/* Message 52, TLV 210. */
OFP_API uint32_t OFP_set_TrapEnable(uint16_t instance_id, uint32_t traps);

/* Message 56, TLV 221, which travels as it lies in memory. */
OFP_API uint32_t OFP_set_Ipv6Enhanced(uint16_t enable);

/* Functions of the analysis layer. Without any function set nothing is sent and 0 is returned.
 * Messages 45 (TLV 184) and 50 (TLV 201). */
OFP_API uint32_t OFP_set_EnableALAlFunction(const OfpEnableALAlFunction *functions);
OFP_API uint32_t OFP_set_EnablePayloadFunction(const OfpEnablePayloadFunction *functions);

/* Sends packet data to the analysis layer. length is at most 1024: of more the low 16 bits are
 * sent, with the first 1024 bytes of data. Message 46, TLV 186. */
OFP_API uint32_t OFP_set_ProcALALPktOut(uint16_t value, const uint8_t *data, uint64_t length);

/* Tells of a configuration event; 0 at once when the agent daemon is down. Message 40, TLV 179. */
OFP_API uint32_t OFP_set_ProcConfigEvent(uint32_t event);

/* ---- Debugging ----
 * The agent daemon is not started: OFP_RC_DAEMON_DOWN when it does not run, OFP_RC_FAILED or
 * OFP_RC_NO_REPLY when no channel can be opened. */

/* Message 14, TLV 71. */
OFP_API uint32_t OFP_set_GlbDebug(const OfpGlbDebug *debug);

/* Message 37, TLV 176, which travels as it lies in memory. */
OFP_API uint32_t OFP_set_TDTestGlbDebug(const OfpTDTestGlbDebug *debug);

OFP_END_DECLS

#endif

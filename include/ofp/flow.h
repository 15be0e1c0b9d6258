/*
 * Flow programming: smooth periods, flow rules and groups, and the encoders beneath them.
 *
 * A client (4096, 4097 or 4099) first opens a smooth period, by which it says that it programs its
 * rules (again); every other operation needs one. An operation starts the agent daemon when it does
 * not run, opens a channel, sends and waits. Numbers are in host byte order.
 *
 * The smooth state and an encode buffer belong to the process: one thread at a time.
 */
#ifndef OFP_FLOW_H
#define OFP_FLOW_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/flow_item.h"
#include "ofp/wire.h"

OFP_BEGIN_DECLS

/* ---- Smooth periods ---- */

/* Opens the smooth period, or confirms the open one, which must have the same id and mode. id is
 * anything but all ones, mode 0 or 1. 0 or OFP_RC_FAILED, after which the period is as before.
 * Sends 0x50000005 with TLV 121 and waits for a barrier reply. */
OFP_API uint32_t OFP_SmoothStart(uint16_t client_id, uint32_t smooth_id, uint32_t mode);

/* Announces the end of the smooth period; the agent daemon drops the client's rules that were not
 * programmed within it. The period stays open in this process. 0 or OFP_RC_FAILED. Sends 0x50000006
 * with TLV 121; no reply is awaited and a failed send is not reported. */
OFP_API uint32_t OFP_SmoothEnd(uint16_t client_id);

/* ---- Flow rules ----
 * table_id is 200. Rules travel in datagrams of at most 12, each as a flow-mod and a barrier
 * request. results, if not null, takes one code per rule: 0; OFP_RC_INVALID, OFP_RC_NO_RESOURCE,
 * OFP_RC_STATE (an overlapping rule) or OFP_RC_FAILED as the agent daemon refused it; OFP_RC_FAILED
 * also for a rule that was never answered.
 *
 * Returns 0 when every rule was answered, also when some were refused; OFP_RC_FAILED when an
 * argument is wrong, no smooth period is open, a rule is malformed (its result is OFP_RC_INVALID
 * and nothing was sent), a rule fits no datagram of 49152 bytes (it and the rules that would have
 * shared its datagram are not sent), memory is short, or the agent daemon went away or stopped
 * answering: results of rules already answered stand. Sends 0x50000001. */
OFP_API uint32_t OFP_AddFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                 const OfpFlowItem *items, uint64_t *results);
OFP_API uint32_t OFP_ModifyFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                    const OfpFlowItem *items, uint64_t *results);
/* strict 1 deletes the rules with exactly this match and priority, else all that the match covers.
 */
OFP_API uint32_t OFP_DelFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                 const OfpFlowItem *items, int16_t strict);

/* ---- Groups ----
 * A group is a list of output ports, one bucket each; type 0 (all) or 3 (fast failover, each bucket
 * watching its port). group_id is at most 0xFFFFFF00. 0, or OFP_RC_FAILED when refused, also for a
 * group of more than 254 ports, which no datagram holds. Sends 0x50000003 or 0x50000004. */
OFP_API uint32_t OFP_SetGroup(uint16_t client_id, uint32_t group_id, uint32_t group_type,
                              uint32_t bucket_count, const uint32_t *ports);
OFP_API uint32_t OFP_DelGroup(uint16_t client_id, uint32_t group_id);

/* ---- Message encoders ----
 * They return the bytes written and do not look at the room: size the buffer first. */

typedef struct OfpFlowRuleCtx {
    uint32_t command; /* OpenFlow flow-mod command, low byte */
    uint32_t xid;     /* read when asynchronous is 1 */
    uint16_t client_id;
    uint16_t asynchronous; /* 1: messages carry xid, else their index in the datagram */
    uint8_t table_id;
    uint8_t reserved_13[3];
} OfpFlowRuleCtx;
OFP_PIN_SIZE(OfpFlowRuleCtx, 16);

/* A flow-rule datagram: message head, TLV 121, and for each item TLV 122 with its flow-mod and TLV
 * 122 with a barrier request. head is an OfpClientHead in host order. */
OFP_API uint64_t OFP_encode_FlowRule(const OfpFlowRuleCtx *ctx, const uint8_t head[16],
                                     uint32_t count, const OfpFlowItem *items, uint64_t room,
                                     uint8_t *buffer);

/* The size by which batches are cut. It leaves out experimenter matches and counts pbb_isid,
 * tunnel_id and ipv6_exthdr as an older layout had them; agents see batches cut this way. */
OFP_API uint64_t OFP_encode_GetRuleMsgLen(uint32_t count, const OfpFlowItem *items);

/* A barrier request in its TLV: 12 bytes. */
OFP_API uint64_t OFP_encode_TlvBarrier(uint32_t xid, uint64_t room, uint8_t *buffer);

/* An instance datagram; tables is count records of 8 bytes (TLV 69). */
OFP_API uint64_t OFP_encode_Instance(uint16_t instance_id, uint8_t count, const uint8_t *tables,
                                     uint64_t room, uint8_t *buffer);

/* Group datagrams, and the group-mod TLV alone. group is an OpenFlow group-mod head in host order,
 * of which command, type and group id are used. The length of this one TLV counts its header. */
OFP_API uint64_t OFP_encode_SetGroup(const uint8_t head[16], const uint8_t group[16],
                                     uint32_t count, const uint32_t *ports, uint64_t room,
                                     uint8_t *buffer);
OFP_API uint64_t OFP_encode_DelGroup(const uint8_t head[16], const uint8_t group[16], uint64_t room,
                                     uint8_t *buffer);
OFP_API uint64_t ofp_encode_GroupMod(const uint8_t group[16], uint32_t count, const uint32_t *ports,
                                     uint64_t room, uint8_t *out);

/* ---- Match encoders ---- */

/* 0, or OFP_RC_FAILED for a match that cannot be sent: no mask block, IPv6 fields without their
 * block, a value or mask out of range, an interface count outside 1 to 10000, an experimenter count
 * without a list. */
OFP_API uint32_t OFP_encodeoxm_CheckMatch(const OfpFRMatch *match);

/* Writes an ofp_match of OXM type, zero-padded to 8 bytes. Returns its size with padding. */
OFP_API uint64_t OFP_encodeoxm_Fill(const OfpFRMatch *match, uint64_t room, uint8_t *out);

/* What batch cutting counts for a match, and for the batch interfaces alone (exact). */
OFP_API uint64_t OFP_encodeoxm_GetOxmLen(const OfpFRMatch *match);
OFP_API uint64_t OFP_encodeoxm_GetBatchIfOxmLen(uint32_t count);

/* An OXM header. With bit field of masked set it announces a mask and twice the length. */
OFP_API void OFP_encodeoxm_Header(uint32_t oxm_class, uint32_t field, uint8_t length,
                                  uint64_t masked, uint8_t *out);

/* One match field: writes nothing and returns 0 when its field bit is clear, else the OXM. Fields
 * that take no mask on the wire announce and skip one all the same when their mask bit is set. */
OFP_API uint64_t OFP_encodeoxm_InPort(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_InPhyPort(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_MetaData(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_EthDst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_EthSrc(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_EthType(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_VlanID(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_VlanPcp(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IpDscp(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IpEcn(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IpProto(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv4Src(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv4Dst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_TcpSrc(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_TcpDst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_UdpSrc(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_UdpDst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_SctpSrc(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_SctpDst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IcmpV4Type(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IcmpV4Code(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_ArpOp(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_ArpSpa(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_ArpTpa(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_ArpSha(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_ArpTha(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6Src(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6Dst(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6Flabel(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IcmpV6Type(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_IcmpV6Code(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6NdTarget(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6NdSll(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6NdTll(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_MplsLabel(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_MplsTc(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_MplsBos(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PbbIsid(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_TunnelId(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_Ipv6Ext(const OfpFRMatch *match, uint64_t room, uint8_t *out);

/* The private fields. Batch interfaces take one OXM per 62 interfaces. */
OFP_API uint64_t OFP_encodeoxm_PrivIPRange(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PrivBatchIf(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PrivVrf(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PrivFragment(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PrivOutPort(const OfpFRMatch *match, uint64_t room, uint8_t *out);
OFP_API uint64_t OFP_encodeoxm_PrivCVlanID(const OfpFRMatch *match, uint64_t room, uint8_t *out);

/* The payload of an experimenter match, by item type. Data is in host order. */
/* 37: u32 */
OFP_API uint64_t OFP_encodeoxm_FlowFlag(const uint8_t *data, uint16_t length, uint8_t *out);
/* 38: u32 kind, then text when kind is 1; any other kind does not advance */
OFP_API uint64_t OFP_encodeoxm_String(const uint8_t *data, uint16_t length, uint8_t *out);
/* 43 and 49: 6 bytes */
OFP_API uint64_t OFP_encodeoxm_BssID(const uint8_t *data, uint16_t length, uint8_t *out);
/* 44: u32 */
OFP_API uint64_t OFP_encodeoxm_Reserve(const uint8_t *data, uint16_t length, uint8_t *out);
/* 47: u16 */
OFP_API uint64_t OFP_encodeoxm_InnerVlan(const uint8_t *data, uint16_t length, uint8_t *out);
/* 48: u32 */
OFP_API uint64_t OFP_encodeoxm_EgressPort(const uint8_t *data, uint16_t length, uint8_t *out);
/* 50: 2 bytes */
OFP_API uint64_t OFP_encodeoxm_Eapol(const uint8_t *data, uint16_t length, uint8_t *out);
/* 52: u32 */
OFP_API uint64_t OFP_encodeoxm_Service(const uint8_t *data, uint16_t length, uint8_t *out);
/* 54 to 57: u16 low port, u16 high port */
OFP_API uint64_t OFP_encodeoxm_L4PortRang(const uint8_t *data, uint16_t length, uint8_t *out);

OFP_END_DECLS

#endif

#include "query/verbose_block.h"

#include <cstddef>

#include "ofp/codec.h"
#include "ofp/message.h"
#include "ofp/result.h"
#include "ofp/util.h"
#include "query/exchange.h"
#include "query/vlan_map.h"

namespace ofp {
namespace {

// A member that takes the value of a TLV.
template <typename Block>
struct Field {
    uint16_t type;
    uint16_t size;
    uint8_t *(*at)(Block *);
};

template <auto member, typename Block>
uint8_t *address_of(Block *block)
{
    return block->*member;
}

template <typename Block, size_t size>
using ByteMember = uint8_t (Block::*)[size];

template <auto member, typename Block, size_t size>
constexpr Field<Block> field_of(uint16_t type, ByteMember<Block, size>)
{
    return {type, size, address_of<member, Block>};
}

template <auto member>
constexpr auto field(uint16_t type)
{
    return field_of<member>(type, member);
}

using Configured = OfpVerboseConfigured;
constexpr Field<Configured> configured_fields[] = {
    field<&Configured::flow_entry_limit>(OFP_TLV_FlowEntryLimit),
    field<&Configured::datapath_id>(OFP_TLV_DataPathID),
    field<&Configured::vlan_loosen>(OFP_TLV_VlanLoosen),
    field<&Configured::mac_learning>(OFP_TLV_MacLearning),
    field<&Configured::conn_mode>(OFP_TLV_ConnMode),
    field<&Configured::fail_open>(OFP_TLV_FailOpen),
    field<&Configured::miss_rule>(OFP_TLV_MissRule),
    field<&Configured::forbidden_port>(OFP_TLV_ForbiddenPort),
    field<&Configured::oap_server>(OFP_TLV_OapServer),
    field<&Configured::dyn_mac_aware>(OFP_TLV_DynMacAware),
    field<&Configured::qinq_net_wkcfg>(OFP_TLV_QinqNetWkcfg),
    field<&Configured::tcp_dscp>(OFP_TLV_TcpDscp),
    field<&Configured::permit_port_type>(OFP_TLV_PermitPortType),
    field<&Configured::precedence>(OFP_TLV_Precedence),
    field<&Configured::tcp_nsr>(OFP_TLV_TcpNsr),
    field<&Configured::exclude_conn_id>(OFP_TLV_ExcludeConnID),
    field<&Configured::data_plane_mode>(OFP_TLV_DataPlaneMode),
    field<&Configured::smart_group>(OFP_TLV_SmartGroup),
    field<&Configured::ttp_mode>(OFP_TLV_TTPMode),
    field<&Configured::flow_monitor_interval>(OFP_TLV_FlowMonitorInterval),
    field<&Configured::flow_monitor_threshold>(OFP_TLV_FlowMonitorThreShold),
};

using Running = OfpVerboseRunning;
constexpr Field<Running> running_fields[] = {
    field<&Running::flow_entry_limit>(OFP_TLV_FlowEntryLimit),
    field<&Running::datapath_id>(OFP_TLV_DataPathID),
    field<&Running::vlan_loosen>(OFP_TLV_VlanLoosen),
    field<&Running::mac_learning>(OFP_TLV_MacLearning),
    field<&Running::conn_mode>(OFP_TLV_ConnMode),
    field<&Running::fail_open>(OFP_TLV_FailOpen),
    field<&Running::miss_rule>(OFP_TLV_MissRule),
    field<&Running::forbidden_port>(OFP_TLV_ForbiddenPort),
    field<&Running::oap_server_run>(OFP_TLV_OapServerRun),
    field<&Running::qinq_net_wkcfg>(OFP_TLV_QinqNetWkcfg),
    field<&Running::tcp_dscp>(OFP_TLV_TcpDscp),
    field<&Running::tcp_nsr>(OFP_TLV_TcpNsr),
    field<&Running::permit_port_type>(OFP_TLV_PermitPortType),
    field<&Running::data_plane_mode>(OFP_TLV_DataPlaneMode),
    field<&Running::smart_group>(OFP_TLV_SmartGroup),
    field<&Running::ttp_mode>(OFP_TLV_TTPMode),
    field<&Running::flow_monitor_interval>(OFP_TLV_FlowMonitorInterval),
    field<&Running::flow_monitor_threshold>(OFP_TLV_FlowMonitorThreShold),
};

// The flow tables of a block: where their slots begin, and how large one is. Slots are counted in
// 8 bits, and there is one fewer: the last lies on the members that follow, which must hold it.
struct Slots {
    uint16_t type;
    uint16_t size;
    size_t offset;

    uint8_t *at(void *block, uint8_t index) const
    {
        return static_cast<uint8_t *>(block) + offset + size_t{index} * size;
    }
};

constexpr Slots configured_slots = {OFP_TLV_FlowTable, sizeof(OfpFlowTable),
                                    offsetof(Configured, flow_table)};
static_assert(sizeof Configured::flow_table == 255 * sizeof(OfpFlowTable) &&
              offsetof(Configured, vlan_loosen) >=
                  configured_slots.offset + 256 * configured_slots.size);

constexpr Slots running_slots = {OFP_TLV_FlowTableRun, sizeof(OfpFlowTableRun),
                                 offsetof(Running, flow_table_run)};
static_assert(sizeof Running::flow_table_run == 255 * sizeof(OfpFlowTableRun) &&
              offsetof(Running, vlan_loosen) >= running_slots.offset + 256 * running_slots.size);

void copy_value(const Tlv &tlv, uint16_t size, uint8_t *to)
{
    OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, size, to);
}

template <typename Block, size_t count>
void copy_field(const Tlv &tlv, const Field<Block> (&fields)[count], Block *block)
{
    for (const Field<Block> &field : fields)
        if (field.type == tlv.type)
            return copy_value(tlv, field.size, field.at(block));
}

template <typename Block, size_t count>
void take_values(Bytes values, const Field<Block> (&fields)[count], const Slots &slots,
                 Block *block)
{
    uint8_t tables = 0;
    const uint64_t filter = OFP_util_DecapInstFilterTLV(values.data, values.size, &block->filter);
    for (const Tlv &tlv : tlvs(values.from(values.data + filter))) {
        if (tlv.type == slots.type)
            copy_value(tlv, slots.size, slots.at(block, tables++));
        else if (tlv.type == OFP_TLV_VlanBitmap)
            copy_vlan_map(tlv, block->vlans);
        else
            copy_field(tlv, fields, block);
    }
    block->table_count = tables;
}

template <typename Block, size_t count>
uint32_t read(uint32_t request, uint16_t instance_id, const Field<Block> (&fields)[count],
              const Slots &slots, Block *block)
{
    Reply reply;
    const uint32_t code =
        ask(request, OFP_TLV_InstanceID, OfpInstanceID{.instance_id = instance_id}).receive(&reply);
    if (code == 0 && reply.body().size != 0)
        take_values(reply.body(), fields, slots, block);
    return code;
}

} // namespace

uint32_t read_block(uint16_t instance_id, OfpVerboseConfigured *block)
{
    return read(OFP_MSG_GET_VERBOSE_CFG, instance_id, configured_fields, configured_slots, block);
}

uint32_t read_block(uint16_t instance_id, OfpVerboseRunning *block)
{
    return read(OFP_MSG_GET_VERBOSE_RUN, instance_id, running_fields, running_slots, block);
}

} // namespace ofp

#include <cstring>

#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/controller.h"
#include "query/exchange.h"
#include "query/interface_list.h"
#include "query/list.h"
#include "query/verbose_block.h"
#include "query/vlan_map.h"
#include "util/block.h"

namespace ofp {
namespace {

uint32_t take_global(const Tlv &tlv, OfpVerbose *verbose)
{
    uint32_t code = OFP_RC_OK;
    if (tlv.type == OFP_TLV_InstActive)
        read_value(tlv, &verbose->inst_active);
    else if (tlv.type == OFP_TLV_VerbInst)
        read_value(tlv, &verbose->instance);
    else if (tlv.type == OFP_TLV_VerbCtrlRep)
        code = append_controller(value_of<OfpVerbCtrlRep>(tlv), &verbose->controllers);
    if (code != 0)
        free_elements(&verbose->controllers);
    return code;
}

bool is_active(const OfpVerbose &verbose)
{
    OfpInstActive flag;
    std::memcpy(&flag, verbose.inst_active, sizeof flag);
    return flag.active == 1;
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_VerboseGlb(uint16_t instance_id, OfpVerbose *verbose)
{
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_VERBOSE_GLB, OFP_TLV_InstanceID,
                                   OfpInstanceID{.instance_id = instance_id});
    if (!query.ok())
        return query.code();
    const auto buffer = ofp::Block<uint8_t>::zeroed(OFP_LARGE_DATAGRAM_SIZE);
    if (!buffer)
        return OFP_RC_FAILED;
    uint64_t length = 0;
    uint32_t code = query.raw(OFP_LARGE_DATAGRAM_SIZE, buffer.get(), &length);
    if (code != 0)
        return code;
    for (const ofp::Tlv &tlv : ofp::tlvs(ofp::behind_head({buffer.get(), length}))) {
        code = ofp::take_global(tlv, verbose);
        if (code != 0)
            break;
    }
    return code;
}

OFP_API uint32_t OFP_get_Verbose(uint16_t instance_id, OfpVerbose *verbose)
{
    // Both always; callers know the two codes ORed.
    uint32_t code = OFP_get_VerboseGlb(instance_id, verbose);
    code |= ofp::read_controllers(instance_id, &verbose->controllers);
    if (code == 0)
        code = ofp::read_block(instance_id, &verbose->configured);
    if (code == 0)
        code = ofp::read_interfaces(instance_id, &verbose->configured.interfaces);
    if (code != 0 || !ofp::is_active(*verbose))
        return code;
    code = ofp::read_block(instance_id, &verbose->running);
    if (code == 0)
        code = ofp::read_interfaces(instance_id, &verbose->running.interfaces);
    return code;
}

OFP_API uint32_t OFP_get_GlbCfgVerbose(OfpGlbCfgVerbose *config)
{
    return ofp::ask(OFP_MSG_GET_GLB_CFG_VERBOSE).each([config](const ofp::Tlv &tlv) -> uint32_t {
        if (tlv.type == OFP_TLV_VlanBitmap)
            ofp::copy_vlan_map(tlv, config->vlans);
        else if (tlv.type == OFP_TLV_Ignore)
            config->ignore = ofp::value_of<OfpIgnore>(tlv);
        return OFP_RC_OK;
    });
}

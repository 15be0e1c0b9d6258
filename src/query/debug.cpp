#include "ofp/message.h"
#include "ofp/query.h"
#include "query/exchange.h"

OFP_API uint32_t OFP_get_GlbDbgInfo(OfpGlbDebug *debug)
{
    return ofp::ask(OFP_MSG_GET_GLB_DBG_INFO, OFP_TLV_GlbDebug, *debug)
        .typed(OFP_MSG_GLB_DBG_INFO, OFP_TLV_GlbDebug, *debug);
}

OFP_API uint32_t OFP_get_GlbDbgInfoPkt(uint16_t key0, uint16_t key1, uint64_t counters[2],
                                       uint16_t *value)
{
    const OfpGlbDebug key{.value_u16_0 = key0, .value_u16_2 = key1};
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_GLB_DBG_INFO_PKT, OFP_TLV_GlbDebug, key);
    if (!query.ok())
        return query.code();
    OfpGlbDebugPkt packets{};
    const uint32_t code = query.typed(OFP_MSG_GLB_DBG_INFO_PKT, OFP_TLV_GlbDebugPkt, packets);
    counters[0] = packets.value_u64_16; // also when nothing came
    counters[1] = packets.value_u64_24;
    if (value)
        *value = packets.value_u16_8;
    return code;
}

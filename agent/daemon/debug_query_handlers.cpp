// Debugging switches and counters, ACL resources.
#include "daemon/handler.h"
#include "daemon/records.h"
#include "daemon/reply_codes.h"

namespace agent {

uint32_t debug_info(const Request &request, Reply &reply, Model &model)
{
    OfpGlbDebug record;
    if (const uint32_t code = take_only(request, OFP_TLV_GlbDebug, record)) {
        return code;
    }
    DebugSwitches asked;
    const DebugKey key = read_debug(record, asked);
    const auto &debug = model.configuration().global().debug;
    const auto found = debug.find(key);
    reply.record(OFP_MSG_GLB_DBG_INFO, OFP_TLV_GlbDebug,
                 debug_record(key, found != debug.end() ? found->second : DebugSwitches{}));
    return 0;
}

// Debugging counts nothing here.
uint32_t debug_packets(const Request &request, Reply &reply, Model &)
{
    OfpGlbDebug record;
    if (const uint32_t code = take_only(request, OFP_TLV_GlbDebug, record)) {
        return code;
    }
    reply.record(OFP_MSG_GLB_DBG_INFO_PKT, OFP_TLV_GlbDebugPkt, OfpGlbDebugPkt{});
    return 0;
}

uint32_t acl_reserved(const Request &request, Reply &reply, Model &model)
{
    if (const uint32_t code = at_end(request.body)) {
        return code;
    }
    const auto &reserved = model.configuration().global().reserved_acl_resources;
    reply.record(
        REPLY_ACL_RESV, OFP_TLV_ShowAclResv,
        OfpShowAclResv{.value_u16_0 = reserved.value_or(model.start.reserved_acl_resources),
                       .value_u16_2 = 0}); // none of them is in use
    return 0;
}

uint32_t acl_tables(const Request &request, Reply &reply, Model &model)
{
    if (const uint32_t code = at_end(request.body)) {
        return code;
    }
    reply.record(REPLY_ACL_TABLE_NUM, OFP_TLV_GetAclTableNum,
                 OfpGetAclTableNum{.count = model.start.acl_tables});
    return 0;
}

} // namespace agent

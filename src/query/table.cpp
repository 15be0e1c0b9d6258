#include "ofp/message.h"
#include "ofp/query.h"
#include "query/exchange.h"

namespace ofp {
namespace {

OfpInstTbl table_key(uint16_t instance_id, uint8_t table_id)
{
    OfpInstTbl key;
    OFP_msg_InitInstTblTlv(&key);
    key.instance_id = instance_id;
    key.table_id = table_id;
    return key;
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_TableInfo(uint16_t instance_id, uint8_t table_id, OfpTableInfo *info)
{
    return ofp::ask(OFP_MSG_GET_TABLE_INFO, OFP_TLV_InstTbl, ofp::table_key(instance_id, table_id))
        .typed(OFP_MSG_TABLE_INFO, OFP_TLV_TableInfo, *info);
}

OFP_API uint32_t OFP_get_MibGetTableInfo(uint16_t instance_id, uint8_t table_id,
                                         OfpMibTableInfo *info)
{
    return ofp::ask(OFP_MSG_MIB_GET_TABLE_INFO, OFP_TLV_InstTbl,
                    ofp::table_key(instance_id, table_id))
        .typed(OFP_MSG_MIB_GET_TABLE_INFO, OFP_TLV_MibTableInfo, *info);
}

OFP_API uint32_t OFP_get_MibGetNextTableInfo(uint16_t *instance_id, uint8_t *table_id,
                                             OfpMibTableInfo *info)
{
    ofp::Exchange query = ofp::ask(OFP_MSG_MIB_GET_NEXT_TABLE_INFO, OFP_TLV_InstTbl,
                                   ofp::table_key(*instance_id, *table_id));
    if (!query.ok())
        return query.code();
    const uint32_t code = query.typed(OFP_MSG_MIB_GET_NEXT_TABLE_INFO, OFP_TLV_MibTableInfo, *info);
    *instance_id = info->instance_id; // also when nothing came: callers preset the record
    *table_id = info->table_id;
    return code;
}

OFP_API uint32_t OFP_get_CacheInfo(uint16_t key0, uint16_t key1, uint16_t key2,
                                   OfpCacheInfoRep *info)
{
    const OfpCacheInfo key{.value_u16_0 = key0, .value_u16_2 = key1, .value_u16_4 = key2};
    return ofp::ask(OFP_MSG_GET_CACHE_INFO, OFP_TLV_CacheInfo, key)
        .typed(OFP_MSG_CACHE_INFO, OFP_TLV_CacheInfoRep, *info);
}

OFP_API uint32_t OFP_get_NextTableID(uint16_t instance_id, uint8_t table_id, uint8_t *next)
{
    OfpTableID reply{};
    ofp::Exchange query =
        ofp::ask(OFP_MSG_GET_NEXT_TABLE_ID, OFP_TLV_InstTbl, ofp::table_key(instance_id, table_id));
    const uint32_t code = query.typed(OFP_MSG_NEXT_TABLE_ID, OFP_TLV_TableID, reply);
    if (query.opened())
        *next = reply.table_id;
    return code;
}

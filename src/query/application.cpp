#include "ofp/message.h"
#include "ofp/query.h"
#include "query/exchange.h"

OFP_API uint32_t OFP_get_AppInfo(uint8_t app_id, OfpAppPktStats *stats)
{
    return ofp::ask(OFP_MSG_GET_APP_INFO, OFP_TLV_AppInfo, OfpAppInfo{.app_id = app_id})
        .typed(OFP_MSG_APP_INFO, OFP_TLV_AppPktStats, *stats);
}

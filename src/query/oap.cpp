#include "ofp/message.h"
#include "ofp/query.h"
#include "query/exchange.h"

OFP_API uint32_t OFP_get_OapClientNum(OfpOapClientNum *clients)
{
    return ofp::ask(OFP_MSG_GET_OAP_CLIENT_NUM)
        .typed(OFP_MSG_OAP_CLIENT_NUM, OFP_TLV_OapClientNum, *clients);
}

OFP_API uint32_t OFP_get_OapContext(const OfpContext *key, uint64_t size, uint8_t *buffer,
                                    uint64_t *length)
{
    return ofp::ask(OFP_MSG_GET_OAP_CONTEXT, OFP_TLV_Context, *key).raw(size, buffer, length);
}

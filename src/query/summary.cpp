#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"
#include "query/progress.h"

namespace ofp {
namespace {

// Takes the entries of one datagram.
uint32_t take_entries(const Reply &reply, OfpSummaryList *list)
{
    const TlvRange values = tlvs(reply.body());
    if (reply.code() != OFP_MSG_SUMMARY || values.empty())
        return OFP_RC_FAILED;
    for (const Tlv &tlv : values) {
        if (tlv.type != OFP_TLV_Summary)
            continue;
        auto element = append<OfpSummaryElement>(&list->link);
        if (!element)
            return OFP_RC_NO_RESOURCE;
        read_value(tlv, &element->summary);
        ++list->count;
    }
    return OFP_RC_OK;
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_Summary(OfpSummaryList *list)
{
    OfpSummaryCount total{};
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_SUMMARY);
    uint32_t code = query.typed(OFP_MSG_SUMMARY_COUNT, OFP_TLV_SummaryCount, total);
    ofp::Patience patience;
    // The count is the list's own: what a caller left in it is not asked for again.
    while (code == 0 && list->count < total.count) {
        const uint32_t before = list->count;
        ofp::Reply reply;
        code = query.receive(&reply);
        if (code == 0)
            code = ofp::take_entries(reply, list);
        if (code == 0 && !patience.allows(list->count != before))
            code = OFP_RC_FAILED;
    }
    return code;
}

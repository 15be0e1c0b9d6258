#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"
#include "query/name_order.h"
#include "query/progress.h"

namespace ofp {
namespace {

constexpr uint32_t all_ones = 0xffffffff;
constexpr uint32_t not_set_60 = 65535;

// A port goes before those of its name.
uint32_t insert_port(const OfpAcPortInfo &port, OfpLink *list)
{
    auto element = make_element<OfpAcPortElement>();
    if (!element) {
        free_elements(list);
        return OFP_RC_NO_RESOURCE;
    }
    element->port = port;
    OfpLink *place = place_by_name(*element, list, [](const Name &there, const Name &name) {
        return !name.sorts_after(there);
    });
    insert_before(place ? place : list, &element->link); // null if the order contradicts itself
    return OFP_RC_OK;
}

// Takes one reply up to a value that names no port; *request becomes the last value read.
uint32_t read_page(OfpAcPortInfo *request, OfpAcPortInfo *last, OfpLink *list)
{
    Reply reply;
    const uint32_t code =
        ask(OFP_MSG_GET_AC_PORT_INFO, OFP_TLV_AcPortInfo, *request).receive(&reply);
    if (code != 0)
        return code;
    last->if_index = 0;
    last->value_u32_52 = all_ones;
    last->value_u32_60 = not_set_60;
    for (const Tlv &tlv : tlvs(reply.body())) {
        if (tlv.type != OFP_TLV_AcPortInfo)
            continue;
        read_value(tlv, last);
        if (last->if_index == 0 || last->value_u32_56 == all_ones)
            break;
        const uint32_t inserted = insert_port(*last, list);
        if (inserted != 0)
            return inserted;
    }
    *request = *last;
    return OFP_RC_OK;
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_AcPortInfo(OfpLink *list)
{
    // Only the numbers mean anything at the start; the name goes out as zeros.
    OfpAcPortInfo request{.if_index = 0,
                          .value_u32_52 = ofp::all_ones,
                          .value_u32_56 = ofp::all_ones,
                          .value_u32_60 = ofp::not_set_60};
    OfpAcPortInfo last{};
    ofp::Course course(request); // of whole values: the index may stay while the rest moves on
    do {
        const uint32_t code = ofp::read_page(&request, &last, list);
        if (code != 0)
            return code;
        if (request.if_index == 0)
            return OFP_RC_OK;
    } while (course.leads_on(request));
    return OFP_RC_FAILED;
}

#include "query/interface_list.h"

#include "ofp/message.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"
#include "query/name_order.h"
#include "query/progress.h"

namespace ofp {
namespace {

// An interface named like the last one of the list is left out.
uint32_t insert_interface(const OfpVerbIfRep &interface, OfpLink *list)
{
    auto element = make_element<OfpInterfaceElement>();
    if (!element) {
        free_elements(list);
        return OFP_RC_NO_RESOURCE;
    }
    element->interface = interface;
    OfpLink *place = place_by_name(*element, list, [](const Name &there, const Name &name) {
        return there.sorts_after(name);
    });
    if (place)
        insert_before(place, &element->link);
    else
        std::free(element);
    return OFP_RC_OK;
}

// Takes one reply; the request then holds the key to go on from, 0 when there is none.
uint32_t read_page(OfpVerbIfReq *request, OfpLink *list)
{
    Reply reply;
    const uint32_t code = ask(OFP_MSG_GET_VERBOSE_IF, OFP_TLV_VerbIfReq, *request).receive(&reply);
    if (code != 0)
        return code;
    request->if_index = 0;
    for (const Tlv &tlv : tlvs(reply.body())) {
        if (tlv.type != OFP_TLV_VerbIfRep)
            continue;
        const auto interface = value_of<OfpVerbIfRep>(tlv);
        request->if_index = interface.if_index;
        if (interface.if_index == 0)
            break;
        const uint32_t inserted = insert_interface(interface, list);
        if (inserted != 0)
            return inserted;
    }
    return OFP_RC_OK;
}

} // namespace

uint32_t read_interfaces(uint16_t instance_id, OfpLink *list)
{
    OfpVerbIfReq request{.if_index = 0, .instance_id = instance_id};
    Course course(request.if_index);
    do {
        const uint32_t code = read_page(&request, list);
        if (code != 0)
            return code;
        if (request.if_index == 0)
            return OFP_RC_OK;
    } while (course.leads_on(request.if_index));
    return OFP_RC_FAILED;
}

} // namespace ofp

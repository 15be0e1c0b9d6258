#include "query/list.h"

#include <cstring>

#include "ofp/result.h"

OFP_API void OFP_get_InitSummary(OfpSummaryList *list)
{
    ofp::clear_links(&list->link);
    list->count = 0;
}

// The count stays: callers read it after they have freed the list.
OFP_API void OFP_get_FiniSummary(OfpSummaryList *list) { ofp::free_elements(&list->link); }

OFP_API void OFP_get_InitMeterBandList(OfpLink *list) { ofp::clear_links(list); }

OFP_API void OFP_get_FiniMeterBandList(OfpLink *list) { ofp::free_elements(list); }

OFP_API void OFP_get_InitRuleRefAR(OfpLink *array)
{
    for (int table = 0; table < OFP_RULE_REF_TABLES; ++table)
        ofp::clear_links(&array[table]);
}

OFP_API void OFP_get_FiniRuleRefAR(OfpLink *array)
{
    for (int table = 0; table < OFP_RULE_REF_TABLES; ++table)
        ofp::free_elements(&array[table]);
}

namespace ofp {

void free_elements(OfpLink *list)
{
    for (OfpLink *element = list->next; element != list;) {
        OfpLink *next = element->next;
        std::free(element);
        element = next;
    }
    clear_links(list);
}

uint32_t append_record(const uint8_t record[128], OfpLink *list)
{
    auto element = append<OfpControllerElement>(list);
    if (!element)
        return OFP_RC_NO_RESOURCE;
    std::memcpy(element->record, record, sizeof element->record);
    return OFP_RC_OK;
}

} // namespace ofp

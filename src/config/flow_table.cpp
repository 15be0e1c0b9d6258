#include <algorithm>
#include <utility>

#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

namespace ofp {
namespace {

// More than a datagram holds of them; those behind the last that fits are left out.
constexpr uint32_t most_tables = OFP_DATAGRAM_SIZE / sizeof(OfpFlowTable);

void exchange(OfpFlowTable &a, OfpFlowTable &b)
{
    std::swap(a.table_id, b.table_id);
    std::swap(a.kind, b.kind);
}

// Leaves what exchanging each entry with every later one of a smaller id leaves: tables of one id
// travel in that order, so no other sort will do. Those that take part in finding the entry for a
// place are the first of the smallest id, the first of a greater one that lies before it, and so
// on. The first of an id never moves forward, so that looking for them takes time linear in the
// count, where two loops would hang on one that is far too large.
void sort_by_table_id(OfpFlowTable *tables, uint32_t count)
{
    uint32_t first[256] = {}; // of each id, behind the place
    for (uint32_t at = 0; at < count; ++at) {
        uint32_t last = at;
        uint32_t limit = count;
        for (uint32_t id = 0, own = tables[at].table_id; id < own; ++id) {
            uint32_t &found = first[id];
            found = std::max(found, at);
            while (found < count && tables[found].table_id != id)
                ++found;
            if (found >= limit)
                continue;
            exchange(tables[last], tables[found]);
            last = limit = found;
        }
    }
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_set_FlowTable(uint16_t instance_id, uint32_t count, OfpFlowTable *tables)
{
    if (count != 0 && tables == nullptr)
        return OFP_RC_FAILED;
    return ofp::configure_with(OFP_MSG_SET_FLOW_TABLE, [=](ofp::Writer &request) {
        request.tlv(OFP_TLV_InstanceID, OfpInstanceID{.instance_id = instance_id});
        ofp::sort_by_table_id(tables, count);
        for (uint32_t i = 0; i < std::min(count, ofp::most_tables); ++i)
            request.tlv(OFP_TLV_FlowTable, tables[i]);
    });
}

#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"
#include "query/progress.h"

namespace ofp {
namespace {

uint32_t append_band(const OfpMeterBand &band, OfpLink *bands)
{
    auto element = append<OfpMeterBandElement>(bands);
    if (!element)
        return OFP_RC_NO_RESOURCE;
    element->packet_count = band.packet_count;
    element->byte_count = band.byte_count;
    element->rate = band.rate;
    element->burst_size = band.burst_size;
    element->type = band.type;
    element->prec_level = band.prec_level;
    return OFP_RC_OK;
}

// Takes one value of a meter entry. A value that has no place in one ends the query.
uint32_t take_value(const Tlv &tlv, OfpMeterEntry *entry, OfpMsgFlag *flag)
{
    switch (tlv.type) {
    case OFP_TLV_MeterBase: {
        const auto base = value_of<OfpMeterBase>(tlv);
        entry->meter_id = base.meter_id;
        entry->flags = base.flags;
        return OFP_RC_OK;
    }
    case OFP_TLV_MeterBand:
        return append_band(value_of<OfpMeterBand>(tlv), &entry->bands);
    case OFP_TLV_MsgFlag:
        *flag = value_of<OfpMsgFlag>(tlv);
        return OFP_RC_OK;
    default:
        return OFP_RC_FAILED;
    }
}

// Takes the datagrams of one entry: all but the last say that another follows. A result reply is
// the last of all.
uint32_t read_entry(Exchange query, OfpMeterEntry *entry)
{
    OfpMsgFlag flag{.last = 1};
    Patience patience;
    do {
        Reply reply;
        if (query.receive(&reply) != 0 || reply.length == 0)
            return query.code();
        const OfpLink *tail = entry->bands.previous;
        for (const Tlv &tlv : tlvs(reply.body())) {
            const uint32_t code = take_value(tlv, entry, &flag);
            if (code != 0)
                return code;
        }
        if (flag.last == 0 && !patience.allows(entry->bands.previous != tail))
            return OFP_RC_FAILED;
    } while (flag.last == 0);
    return OFP_RC_OK;
}

Exchange ask_for(uint32_t request, uint16_t instance_id, uint32_t meter_id)
{
    return ask(request, OFP_TLV_MeterReq,
               OfpMeterReq{.meter_id = meter_id, .instance_id = instance_id});
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_MeterTable(uint16_t instance_id, OfpMeterTable *table)
{
    return ofp::ask(OFP_MSG_GET_METER_TABLE, OFP_TLV_InstanceID,
                    OfpInstanceID{.instance_id = instance_id})
        .typed(OFP_MSG_METER_TABLE, OFP_TLV_MeterTable, *table);
}

OFP_API uint32_t OFP_get_SpecMeterEntry(uint16_t instance_id, uint32_t meter_id,
                                        OfpMeterEntry *entry)
{
    return ofp::read_entry(ofp::ask_for(OFP_MSG_GET_SPEC_METER_ENTRY, instance_id, meter_id),
                           entry);
}

OFP_API uint32_t OFP_get_NextMeterEntry(uint16_t instance_id, uint32_t meter_id,
                                        OfpMeterEntry *entry)
{
    return ofp::read_entry(ofp::ask_for(OFP_MSG_GET_NEXT_METER_ENTRY, instance_id, meter_id),
                           entry);
}

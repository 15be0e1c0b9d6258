#include "flow/oxm_experimenter.h"

#include <span>

#include "flow/oxm.h"
#include "ofp/flow.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint32_t string_type = 38;
constexpr uint32_t string_text = 1; // the kind of a string that travels
constexpr uint16_t kind_size = 4;
constexpr uint64_t item_header_size = 8;

using ExperimenterEncoder = uint64_t (*)(const uint8_t *data, uint16_t length, uint8_t *out);

struct ExperimenterMatch {
    ExperimenterEncoder encode;
    uint8_t size; // of the payload; a string has its own
};

constexpr auto experimenter_matches = by_number<ExperimenterMatch, 64>({
    {37, {OFP_encodeoxm_FlowFlag, 4}},
    {string_type, {OFP_encodeoxm_String, 0}},
    {43, {OFP_encodeoxm_BssID, 6}},
    {44, {OFP_encodeoxm_Reserve, 4}},
    {47, {OFP_encodeoxm_InnerVlan, 2}},
    {48, {OFP_encodeoxm_EgressPort, 4}},
    {49, {OFP_encodeoxm_BssID, 6}},
    {50, {OFP_encodeoxm_Eapol, 2}},
    {52, {OFP_encodeoxm_Service, 4}},
    {54, {OFP_encodeoxm_L4PortRang, 4}},
    {55, {OFP_encodeoxm_L4PortRang, 4}},
    {56, {OFP_encodeoxm_L4PortRang, 4}},
    {57, {OFP_encodeoxm_L4PortRang, 4}},
});

std::span<const OfpExpMatchItem *const> items_of(const OfpExpMatchList &list)
{
    return {list.items, list.items != nullptr ? list.count : 0};
}

uint64_t put_payload(const OfpExpMatchItem &item, uint8_t *out)
{
    const ExperimenterMatch match = experimenter_matches[item.type];
    if (match.encode == nullptr)
        return 0;
    if (item.length >= match.size)
        return match.encode(item.data, item.length, out);
    uint8_t whole[8] = {}; // encoders read their full width
    std::memcpy(whole, item.data, item.length);
    return match.encode(whole, item.length, out);
}

// The header counts the item's declared length, also of an item that has no encoder.
uint64_t put_item(const OfpExpMatchItem &item, uint8_t *out)
{
    OFP_encodeoxm_Header(oxm_experimenter, item.type, static_cast<uint8_t>(item.length + 4), 0,
                         out);
    put(out + 4, experimenter_id);
    return item_header_size + put_payload(item, out + item_header_size);
}

uint64_t payload_size(const OfpExpMatchItem &item)
{
    if (item.type != string_type)
        return experimenter_matches[item.type].size;
    const bool travels = item.length >= kind_size && load<uint32_t>(item.data) == string_text;
    return travels ? item.length : 0;
}

} // namespace

uint64_t put_experimenter_items(const OfpExpMatchList &list, uint8_t *out)
{
    uint64_t used = 0;
    for (const OfpExpMatchItem *item : items_of(list))
        used += put_item(*item, out + used);
    return used;
}

uint64_t experimenter_items_size(const OfpExpMatchList &list)
{
    uint64_t size = 0;
    for (const OfpExpMatchItem *item : items_of(list))
        size += item_header_size + payload_size(*item);
    return size;
}

} // namespace ofp

using namespace ofp;

namespace {

template <typename T>
uint64_t number(const uint8_t *data, uint8_t *out)
{
    put(out, load<T>(data));
    return sizeof(T);
}

uint64_t bytes(const uint8_t *data, uint64_t count, uint8_t *out)
{
    std::memcpy(out, data, count);
    return count;
}

} // namespace

OFP_API uint64_t OFP_encodeoxm_FlowFlag(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint32_t>(data, out);
}

OFP_API uint64_t OFP_encodeoxm_String(const uint8_t *data, uint16_t length, uint8_t *out)
{
    if (length < kind_size)
        return 0;
    const uint32_t kind = load<uint32_t>(data);
    put(out, kind);
    if (kind != string_text)
        return 0;
    return kind_size + bytes(data + kind_size, length - uint64_t{kind_size}, out + kind_size);
}

OFP_API uint64_t OFP_encodeoxm_BssID(const uint8_t *data, uint16_t, uint8_t *out)
{
    return bytes(data, 6, out);
}

OFP_API uint64_t OFP_encodeoxm_Reserve(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint32_t>(data, out);
}

OFP_API uint64_t OFP_encodeoxm_InnerVlan(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint16_t>(data, out);
}

OFP_API uint64_t OFP_encodeoxm_EgressPort(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint32_t>(data, out);
}

OFP_API uint64_t OFP_encodeoxm_Eapol(const uint8_t *data, uint16_t, uint8_t *out)
{
    return bytes(data, 2, out);
}

OFP_API uint64_t OFP_encodeoxm_Service(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint32_t>(data, out);
}

OFP_API uint64_t OFP_encodeoxm_L4PortRang(const uint8_t *data, uint16_t, uint8_t *out)
{
    return number<uint16_t>(data, out) + number<uint16_t>(data + 2, out + 2);
}

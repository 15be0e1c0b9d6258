#include <bit>

#include "flow/oxm.h"
#include "flow/oxm_experimenter.h"
#include "ofp/flow.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

using FieldEncoder = uint64_t (*)(const OfpFRMatch *match, uint64_t room, uint8_t *out);

constexpr auto field_encoders = by_number<FieldEncoder, 63>({
    {0, OFP_encodeoxm_InPort},       {1, OFP_encodeoxm_InPhyPort},
    {2, OFP_encodeoxm_MetaData},     {3, OFP_encodeoxm_EthDst},
    {4, OFP_encodeoxm_EthSrc},       {5, OFP_encodeoxm_EthType},
    {6, OFP_encodeoxm_VlanID},       {7, OFP_encodeoxm_VlanPcp},
    {8, OFP_encodeoxm_IpDscp},       {9, OFP_encodeoxm_IpEcn},
    {10, OFP_encodeoxm_IpProto},     {11, OFP_encodeoxm_Ipv4Src},
    {12, OFP_encodeoxm_Ipv4Dst},     {13, OFP_encodeoxm_TcpSrc},
    {14, OFP_encodeoxm_TcpDst},      {15, OFP_encodeoxm_UdpSrc},
    {16, OFP_encodeoxm_UdpDst},      {17, OFP_encodeoxm_SctpSrc},
    {18, OFP_encodeoxm_SctpDst},     {19, OFP_encodeoxm_IcmpV4Type},
    {20, OFP_encodeoxm_IcmpV4Code},  {21, OFP_encodeoxm_ArpOp},
    {22, OFP_encodeoxm_ArpSpa},      {23, OFP_encodeoxm_ArpTpa},
    {24, OFP_encodeoxm_ArpSha},      {25, OFP_encodeoxm_ArpTha},
    {26, OFP_encodeoxm_Ipv6Src},     {27, OFP_encodeoxm_Ipv6Dst},
    {28, OFP_encodeoxm_Ipv6Flabel},  {29, OFP_encodeoxm_IcmpV6Type},
    {30, OFP_encodeoxm_IcmpV6Code},  {31, OFP_encodeoxm_Ipv6NdTarget},
    {32, OFP_encodeoxm_Ipv6NdSll},   {33, OFP_encodeoxm_Ipv6NdTll},
    {34, OFP_encodeoxm_MplsLabel},   {35, OFP_encodeoxm_MplsTc},
    {36, OFP_encodeoxm_MplsBos},     {37, OFP_encodeoxm_PbbIsid},
    {38, OFP_encodeoxm_TunnelId},    {39, OFP_encodeoxm_Ipv6Ext},

    {58, OFP_encodeoxm_PrivIPRange}, {59, OFP_encodeoxm_PrivBatchIf},
    {60, OFP_encodeoxm_PrivVrf},     {61, OFP_encodeoxm_PrivFragment},
    {62, OFP_encodeoxm_PrivOutPort}, {63, OFP_encodeoxm_PrivCVlanID},
});

uint64_t put_fields(const OfpFRMatch *match, uint64_t room, uint8_t *out)
{
    uint64_t used = 0;
    for (uint64_t left = match->fields & oxm_assigned; left != 0; left &= left - 1) {
        const auto bit = static_cast<unsigned>(std::countr_zero(left));
        used += field_encoders.slots[bit](match, room - used, out + used);
    }
    return used;
}

// At most 7 zero bytes.
void pad(uint8_t *out, uint64_t count)
{
    if (count & 4) {
        put(out, uint32_t{0});
        out += 4;
    }
    if (count & 2) {
        put(out, uint16_t{0});
        out += 2;
    }
    if (count & 1)
        *out = 0;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API void OFP_encodeoxm_Header(uint32_t oxm_class, uint32_t field, uint8_t length,
                                  uint64_t masked, uint8_t *out)
{
    put(out, oxm_header(oxm_class, field, length, field < 64 && has_bit(masked, field)));
}

OFP_API uint64_t OFP_encodeoxm_Fill(const OfpFRMatch *match, uint64_t room, uint8_t *out)
{
    uint64_t length = 4; // type and length
    length += put_fields(match, room - length, out + length);
    length += put_experimenter_items(match->exp_match, out + length);
    put(out, uint16_t{1}); // OXM
    put(out + 2, static_cast<uint16_t>(length));

    const uint64_t padded = (length + 7) / 8 * 8;
    pad(out + length, padded - length);
    return padded;
}

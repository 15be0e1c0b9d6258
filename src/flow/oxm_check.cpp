#include <bit>

#include "flow/oxm.h"
#include "ofp/flow.h"
#include "ofp/result.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint64_t ipv6_fields = 0x00000083'fc000000; // 26 to 33 and 39

// A value counts when its field takes part, a mask whenever its mask bit is set.
using FieldCheck = bool (*)(const Match &match, bool takes_part, bool masked);

template <auto Value, uint64_t Greatest, auto MaskValue = no_mask>
bool at_most(const Match &match, [[maybe_unused]] bool takes_part, [[maybe_unused]] bool masked)
{
    if (takes_part && detail::value_of(match, Value) > Greatest)
        return false;
    if constexpr (!std::is_null_pointer_v<decltype(MaskValue)>)
        return !masked || match.mask->*MaskValue <= Greatest;
    return true;
}

bool batch_count(const Match &match, bool takes_part, bool)
{
    return !takes_part || (match.batch_if.count >= 1 && match.batch_if.count <= 10000);
}

constexpr auto field_checks = by_number<FieldCheck, 63>({
    {6, at_most<&Match::vlan_vid, 4095, &Mask::vlan_vid>},
    {7, at_most<&Match::vlan_pcp, 7>},
    {8, at_most<&Match::ip_dscp, 63>},
    {9, at_most<&Match::ip_ecn, 3>},
    {28, at_most<&Ipv6::ipv6_flabel, 0xfffff, &Mask::ipv6_flabel>},
    {34, at_most<&Match::mpls_label, 0xfffff>},
    {35, at_most<&Match::mpls_tc, 7>},
    {36, at_most<&Match::mpls_bos, 1>},
    {37, at_most<&Match::pbb_isid, 0xffffff, &Mask::pbb_isid>},
    {39, at_most<&Ipv6::ipv6_exthdr, 511, &Mask::ipv6_exthdr>},
    {59, batch_count},
    {63, at_most<&Match::cvlan_vid, 4095, &Mask::cvlan_vid>},
});

bool fields_in_range(const Match &match)
{
    const uint64_t masked = match.mask->masked;
    for (uint64_t left = match.fields | masked; left != 0; left &= left - 1) {
        const auto bit = static_cast<unsigned>(std::countr_zero(left));
        const FieldCheck check = field_checks.slots[bit];
        if (check != nullptr && !check(match, has_bit(match.fields, bit), has_bit(masked, bit)))
            return false;
    }
    return true;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API uint32_t OFP_encodeoxm_CheckMatch(const OfpFRMatch *match)
{
    if (match->mask == nullptr)
        return OFP_RC_FAILED;
    if ((match->fields & ipv6_fields) != 0 && match->ipv6 == nullptr)
        return OFP_RC_FAILED;
    if (match->reserved != 0 || !fields_in_range(*match))
        return OFP_RC_FAILED;
    if (match->exp_match.count != 0 && match->exp_match.items == nullptr)
        return OFP_RC_FAILED;
    return OFP_RC_OK;
}

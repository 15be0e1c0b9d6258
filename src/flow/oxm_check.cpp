#include <bit>

#include "flow/oxm_fields.h"
#include "ofp/flow.h"
#include "ofp/result.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint64_t ipv6_fields = 0x00000083'fc000000; // 26 to 33 and 39

// A value counts when its field takes part, a mask whenever its mask bit is set.
using FieldCheck = bool (*)(const Match &match, bool takes_part, bool masked);

template <unsigned Bit, uint64_t Greatest>
bool at_most(const Match &match, bool takes_part, [[maybe_unused]] bool masked)
{
    constexpr auto form = field<Bit>;
    if (takes_part && value_of(match, form.value) > Greatest)
        return false;
    if constexpr (form.takes_mask)
        return !masked || match.mask->*form.mask <= Greatest;
    return true;
}

bool batch_count(const Match &match, bool takes_part, bool)
{
    return !takes_part || (match.batch_if.count >= 1 && match.batch_if.count <= 10000);
}

template <unsigned Bit, uint64_t Greatest>
constexpr DispatchRow<FieldCheck> limit = {Bit, at_most<Bit, Greatest>};

// clang-format off
constexpr DispatchRow<FieldCheck> checks[] = {
    limit<OFP_FIELD_VLAN_VID, 4095>,
    limit<OFP_FIELD_VLAN_PCP, 7>,
    limit<OFP_FIELD_IP_DSCP, 63>,
    limit<OFP_FIELD_IP_ECN, 3>,
    limit<OFP_FIELD_IPV6_FLABEL, 0xfffff>,
    limit<OFP_FIELD_MPLS_LABEL, 0xfffff>,
    limit<OFP_FIELD_MPLS_TC, 7>,
    limit<OFP_FIELD_MPLS_BOS, 1>,
    limit<OFP_FIELD_PBB_ISID, 0xffffff>,
    limit<OFP_FIELD_IPV6_EXTHDR, 511>,
    {OFP_FIELD_BATCH_IF, batch_count},
    limit<OFP_FIELD_CVLAN_VID, 4095>,
};
// clang-format on

constexpr auto field_checks = by_number<FieldCheck, 63>(checks);

consteval uint64_t checked_fields()
{
    uint64_t bits = 0;
    for (const auto &check : checks)
        bits |= uint64_t{1} << check.number;
    return bits;
}

bool fields_in_range(const Match &match)
{
    const uint64_t masked = match.mask->masked;
    for (uint64_t left = (match.fields | masked) & checked_fields(); left != 0; left &= left - 1) {
        const auto bit = static_cast<unsigned>(std::countr_zero(left));
        if (!field_checks.slots[bit](match, has_bit(match.fields, bit), has_bit(masked, bit)))
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

#include "flow/oxm_match.h"
#include "ofp/flow.h"

using namespace ofp;

OFP_API void OFP_encodeoxm_Header(uint32_t oxm_class, uint32_t field, uint8_t length,
                                  uint64_t masked, uint8_t *out)
{
    put(out, oxm_header(oxm_class, field, length, field < 64 && has_bit(masked, field)));
}

OFP_API uint64_t OFP_encodeoxm_Fill(const OfpFRMatch *match, uint64_t, uint8_t *out)
{
    return static_cast<uint64_t>(put_match(match, out) - out);
}

/*
 * Wire structures: every value that travels between the library and the agent daemon.
 *
 * A record is laid out in memory exactly as on the wire. Its numbers travel in network byte order,
 * its byte fields as they lie, and so does a number whose comment says "as it lies". The library
 * converts a copy when it sends, so that the caller's record keeps host order, and the caller's
 * whole record when it receives, whatever part of it was received.
 *
 * OFP_bswap_X (ofp_bswap_X where the ABI spells it so) converts an OfpX in place, at any address;
 * twice gives the original. A record without such a call is converted by OFP_bswap_ByteSwap alone.
 *
 * Members named reserved_N lie at byte N and are zero when sent. opaque_N are bytes, value_uW_N a
 * W-bit number, that only the agent daemon gives a meaning.
 */
#ifndef OFP_WIRE_H
#define OFP_WIRE_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/tlv.h"
#include "ofp/wire_action.h"
#include "ofp/wire_connection.h"
#include "ofp/wire_controller.h"
#include "ofp/wire_debug.h"
#include "ofp/wire_event.h"
#include "ofp/wire_experimenter.h"
#include "ofp/wire_flow.h"
#include "ofp/wire_group.h"
#include "ofp/wire_instance.h"
#include "ofp/wire_match.h"
#include "ofp/wire_message.h"
#include "ofp/wire_meter.h"
#include "ofp/wire_port.h"
#include "ofp/wire_resource.h"
#include "ofp/wire_rule.h"
#include "ofp/wire_stats.h"
#include "ofp/wire_table.h"
#include "ofp/wire_vlan.h"

OFP_BEGIN_DECLS

/* Converts the value of a TLV in place between host and network byte order; twice gives the
 * original. A type that has no conversion, or is not known, leaves the value as it is. The value
 * must be as long as the structure of its type. */
OFP_API void OFP_bswap_ByteSwap(uint32_t type, void *value);

OFP_END_DECLS

#endif

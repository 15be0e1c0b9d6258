/*
 * Wire structures: every value that travels between the library and the agent daemon, and the
 * conversion of each between host and network byte order.
 *
 * A record is laid out in memory exactly as on the wire. Its numbers travel in network byte order,
 * its byte fields as they lie; a number whose comment says "as it lies" is not converted either.
 * The library converts a copy when it sends, so that the caller's record keeps host order, and the
 * caller's whole record when it receives, whatever was received into it.
 *
 * reserved_N are the alignment bytes at byte N: zero when sent. opaque_N are bytes that only the
 * daemon knows, value_uW_N a W-bit number of that kind.
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

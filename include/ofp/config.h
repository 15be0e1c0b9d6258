/*
 * Configuration of the agent daemon.
 *
 * A configuration call starts the agent daemon when it does not run, opens a channel with 30-second
 * time-outs, sends one datagram and returns the code of the result reply. OFP_RC_FAILED: no
 * channel; OFP_RC_SEND_FAILED; OFP_RC_NO_REPLY; any other code is the agent daemon's.
 */
#ifndef OFP_CONFIG_H
#define OFP_CONFIG_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* Creates an OpenFlow instance with its default flow tables: 10, 11, 20, 21 and 30, or table 0
 * alone for instance 4101. The id is sent as 16 bits. OFP_RC_NO_REPLY also when nobody listens.
 * Sends 0x50000007 with the instance filter and one TLV 69 a table. */
OFP_API uint32_t OFP_AddInstance(uint32_t instance_id);

OFP_END_DECLS

#endif

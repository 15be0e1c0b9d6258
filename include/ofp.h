/*
 * libofp: the library through which a switch's processes talk to its OpenFlow agent daemon.
 *
 * The one header a program includes. In order of use: what calls return (result.h), what travels
 * (message.h, tlv.h, wire.h), the datagram and its channel (codec.h, channel.h), the daemon's
 * service (util.h), configuration (config.h), flow rules (flow_item.h, flow.h) and queries
 * (query.h).
 */
#ifndef OFP_H
#define OFP_H

#include "ofp/result.h"

#include "ofp/message.h"
#include "ofp/tlv.h"
#include "ofp/wire.h"

#include "ofp/channel.h"
#include "ofp/codec.h"

#include "ofp/interface.h"
#include "ofp/util.h"
#include "ofp/vlan.h"

#include "ofp/config.h"

#include "ofp/flow.h"
#include "ofp/flow_item.h"

#include "ofp/application.h"
#include "ofp/async.h"

#include "ofp/query.h"

#endif

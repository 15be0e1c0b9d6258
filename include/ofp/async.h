/*
 * The asynchronous flow-rule channel: rules are sent without waiting, and each rule's result comes
 * through a callback.
 *
 * Order of use: OFP_SmoothStart, OFP_AsyncInit, rules, OFP_AsyncDispatch whenever the channel's
 * socket is readable, OFP_AsyncFini. Read while you send: an agent keeps answers for a client that
 * does not, but not without end. One thread at a time. The callback may call anything, also
 * OFP_AsyncFini; the rule that it is told of is already off the list.
 */
#ifndef OFP_ASYNC_H
#define OFP_ASYNC_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/flow_item.h"

OFP_BEGIN_DECLS

/* Takes a rule's result: 0 or a code as in the results of OFP_AddFlowRule. item is the library's
 * copy and is freed when the callback returns. */
typedef void (*OfpAsyncCallback)(uint32_t client_id, uint8_t table_id, const OfpFlowItem *item,
                                 uint64_t result);

/* Opens the channel of a client (4096, 4097 or 4099). Its socket, or -1. A client that has a
 * channel gets its socket, and keeps its callback. Without a callback rules are sent and not
 * tracked. Starts the agent daemon when it does not run. */
OFP_API int32_t OFP_AsyncInit(uint16_t client_id, OfpAsyncCallback callback);

/* One rule each, checked and encoded as by their synchronous twins. 0 once it is sent;
 * OFP_RC_FAILED when it is not; OFP_RC_NO_RESOURCE when it is, but cannot be tracked. Send
 * 0x50000001. */
OFP_API uint32_t OFP_AsyncAddFlowRule(uint16_t client_id, uint8_t table_id,
                                      const OfpFlowItem *item);
OFP_API uint32_t OFP_AsyncModifyFlowRule(uint16_t client_id, uint8_t table_id,
                                         const OfpFlowItem *item);
OFP_API uint32_t OFP_AsyncDelFlowRule(uint16_t client_id, uint8_t table_id, const OfpFlowItem *item,
                                      int16_t strict);

/* Receives one datagram, waiting for it, and reports the rule that it ends. Anything unexpected is
 * ignored. */
OFP_API void OFP_AsyncDispatch(int32_t socket);

/* Closes the channel and drops its client's pending rules, unreported. */
OFP_API void OFP_AsyncFini(int32_t socket);

OFP_END_DECLS

#endif

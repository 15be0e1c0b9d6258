/*
 * The channel to the agent daemon: a connected local datagram socket. Every request opens its own,
 * sends one datagram, usually waits for one reply and closes it.
 *
 * Interrupted system calls are repeated. The calls are thread-safe on distinct sockets.
 */
#ifndef OFP_CHANNEL_H
#define OFP_CHANNEL_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* ---- Opening and closing ---- */

/* Opens a channel whose sends and receives give up after timeout seconds (0: never). Returns the
 * socket, or -1. *result is written on every path: 0, OFP_RC_FAILED (socket or options) or
 * OFP_RC_NO_REPLY (nobody listens). */
OFP_API int32_t OFP_plgn_Connect(uint64_t timeout, uint64_t *result);

/* Opens a channel in the current container's device context, without time-outs. The socket or -1.
 */
OFP_API int32_t OFP_plgn_ConnectVfw(void);

/* Closes a channel; the platform's answer. */
OFP_API int32_t OFP_plgn_Close(int32_t socket);

/* ---- Datagrams ---- */

/* Connects a socket to a 16-byte service address; an already connected one counts as success. 0 or
 * the platform's failure value. */
OFP_API int32_t OFP_util_Connect(int32_t socket, const void *address);

/* Sends one datagram. 0, or OFP_RC_FAILED when not all of it was taken. */
OFP_API uint32_t OFP_util_Send(int32_t socket, const void *buffer, uint64_t length);

/* Receives one datagram of at most size bytes. Its length; 0 on time-out, failure or hang-up. */
OFP_API uint64_t OFP_util_Recv(int32_t socket, uint64_t size, void *buffer);

/* The same with the platform's receive flags (0x40: do not wait). */
OFP_API uint64_t OFP_util_RecvFrom(int32_t socket, uint64_t size, uint32_t flags, void *buffer);

/* ---- Basic messages: a message head and one TLV ---- */

/* Sends one and awaits no reply. The result of OFP_util_Send; a value that does not fit sends an
 * empty datagram. */
OFP_API uint32_t OFP_util_SendBasicMsg(int32_t socket, uint32_t code, uint32_t type,
                                       uint64_t length, const void *value);

/* Sends one and returns the code of the result reply; OFP_RC_SEND_FAILED or OFP_RC_NO_REPLY when
 * it did not get that far. A reply that is no result reply counts as success. */
OFP_API uint32_t OFP_set_SendBasicMsg(int32_t socket, uint32_t code, uint32_t type, uint64_t length,
                                      const void *value);

OFP_END_DECLS

#endif

/*
 * Building datagrams and taking them apart.
 *
 * A datagram is a sequence of TLVs packed back to back: a 4-byte header (16-bit type, 16-bit value
 * length) and the value. The first is the message head, TLV 1, with the message code. Values are
 * kept in host order by callers and travel in network order: writing converts a copy, reading
 * converts the destination, whole, however much of it was received.
 *
 * Lengths are bytes. All calls work on the caller's buffers and are thread-safe.
 */
#ifndef OFP_CODEC_H
#define OFP_CODEC_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/flow_item.h"
#include "ofp/wire.h"

OFP_BEGIN_DECLS

#define OFP_DATAGRAM_SIZE       8192  /* requests and ordinary replies */
#define OFP_LARGE_DATAGRAM_SIZE 49152 /* events, rule information, large flow batches */

/* ---- Writing ---- the bytes written, 0 when they do not fit */

/* One TLV. length is at most 8192; above that nothing is written. */
OFP_API uint64_t OFP_msg_SetTlvData(uint8_t *buffer, uint64_t space, uint32_t type, uint64_t length,
                                    const void *value);

/* The message head. */
OFP_API uint64_t OFP_msg_SetMsgHead(uint8_t *buffer, uint64_t space, uint32_t code);

/* A message head and one TLV; nothing counts when either does not fit. */
OFP_API uint64_t OFP_msg_EncapBasicMsg(uint8_t *buffer, uint64_t space, uint32_t code,
                                       uint32_t type, uint64_t length, const void *value);

/* The batch interfaces of a match as TLVs 123 of up to 62 indexes; 0 for an empty list. Agents rely
 * on the last TLV of a list longer than 62 repeating the start of the chunk before it. */
OFP_API uint64_t OFP_msg_EncapMatchBatchIf(uint8_t *buffer, uint64_t space,
                                           const OfpFRMatch *match);

/* ---- Reading ---- the bytes consumed, 0 when what is asked for is not there */

/* The first TLV, if it is of the type: copies at most size bytes and converts the destination.
 * With a null destination only its size is returned. */
OFP_API uint64_t OFP_msg_GetTlvData(const uint8_t *buffer, uint64_t available, uint32_t type,
                                    uint64_t size, void *destination);

/* The first TLV of the type anywhere in a buffer of less than 65536 bytes. 0, or
 * OFP_RC_NOT_FOUND with the destination untouched. */
OFP_API uint32_t OFP_msg_GetTlvDataByType(const uint8_t *buffer, uint64_t available, uint32_t type,
                                          uint64_t size, void *destination);

/* The message head; code may be null. */
OFP_API uint64_t OFP_msg_GetMsgHead(const uint8_t *buffer, uint64_t available, uint32_t *code);

/* A message head with the expected code, then a TLV of the type. */
OFP_API uint64_t OFP_msg_DecapBasicMsg(const uint8_t *buffer, uint64_t available, uint32_t code,
                                       uint32_t type, uint64_t size, void *destination);

/* Consecutive TLVs 123 as one array of capacity bytes; *stored (may be null) takes its bytes. Ends
 * before a TLV that is empty or would not fit. */
OFP_API uint64_t OFP_msg_DecapMatchBatchIf(const uint8_t *buffer, uint64_t available,
                                           uint64_t capacity, uint32_t *indexes, uint64_t *stored);

/* ---- Values ---- */

/* Copies an already located value and converts the destination. Returns the bytes copied. */
OFP_API uint64_t OFP_msg_GetByteSwapData(const void *value, uint16_t length, uint16_t type,
                                         uint64_t size, void *destination);

/* Converts a record in place. */
OFP_API void OFP_msg_ByteSwapData(uint16_t type, void *value);

/* Records as they are before a caller fills them: a packet context (all zero but its first byte
 * 0x80 and the 32-bit field at 72 all ones), a table key (all zero but table id 255), a controller
 * (all zero). */
OFP_API void OFP_msg_InitPktContextTlv(OfpPktContext *context);
OFP_API void OFP_msg_InitInstTblTlv(OfpInstTbl *table);
OFP_API void OFP_msg_CtrlTlvInit(OfpCtrl *controller);

OFP_END_DECLS

#endif

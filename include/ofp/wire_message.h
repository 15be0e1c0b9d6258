/* The envelope of every datagram, and what belongs to no other topic. Conventions: ofp/wire.h. */
#ifndef OFP_WIRE_MESSAGE_H
#define OFP_WIRE_MESSAGE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* TLV 1: opens every datagram. */
typedef struct OfpMsgHead {
    uint32_t code; /* message code */
} OfpMsgHead;
OFP_PIN_SIZE(OfpMsgHead, 4);
OFP_API void OFP_bswap_MsgHead(void *value);

/* TLV 2: result of a request. */
typedef struct OfpErrCode {
    uint32_t code; /* OFP_RC_ or the daemon's own */
} OfpErrCode;
OFP_PIN_SIZE(OfpErrCode, 4);
OFP_API void OFP_bswap_ErrCode(void *value);

/* TLV 54: context of a packet. Prepared by OFP_msg_InitPktContextTlv. */
typedef struct OfpPktContext {
    uint8_t flags; /* 0x80 when prepared */
    uint8_t reserved_1[3];
    uint32_t value_u32_4;
    uint8_t opaque_8[64];
    uint32_t value_u32_72; /* all ones when prepared */
    uint8_t opaque_76[132];
    uint32_t value_u32_208;
    uint16_t value_u16_212;
    uint8_t opaque_214[6];
    uint32_t value_u32_220;
    uint8_t opaque_224[1024];
    uint32_t value_u32_1248;
    uint32_t value_u32_1252;
} OfpPktContext;
OFP_PIN_SIZE(OfpPktContext, 1256);
OFP_API void OFP_bswap_PktContext(void *value);

/* TLV 77: a slot of the chassis. */
typedef struct OfpSlotID {
    uint16_t slot_id;
    uint8_t reserved_2[2];
} OfpSlotID;
OFP_PIN_SIZE(OfpSlotID, 4);
OFP_API void OFP_bswap_SlotID(void *value);

/* TLV 78: multipart message. */
typedef struct OfpMultiPart {
    uint16_t value_u16_0;
    uint16_t value_u16_2;
} OfpMultiPart;
OFP_PIN_SIZE(OfpMultiPart, 4);
OFP_API void OFP_bswap_MultiPart(void *value);

/* TLV 93: a descriptor of the daemon. */
typedef struct OfpFd {
    uint32_t fd;
} OfpFd;
OFP_PIN_SIZE(OfpFd, 4);
OFP_API void OFP_bswap_Fd(void *value);

/* TLV 116: whether a sequence of reply datagrams ends here. */
typedef struct OfpMsgFlag {
    uint32_t last; /* 0: another datagram follows */
} OfpMsgFlag;
OFP_PIN_SIZE(OfpMsgFlag, 4);
OFP_API void OFP_bswap_MsgFlag(void *value);

/* TLV 169: a cookie. */
typedef struct OfpCookie {
    uint64_t cookie;
} OfpCookie;
OFP_PIN_SIZE(OfpCookie, 8);
OFP_API void ofp_bswap_Cookie(void *value);

/* TLV 186: packets an application sends out. */
typedef struct OfpPacketOutAlAl {
    uint16_t value_u16_0;
    uint16_t length; /* bytes of data in use, at most 1024 */
    uint8_t data[1024];
} OfpPacketOutAlAl;
OFP_PIN_SIZE(OfpPacketOutAlAl, 1028);
OFP_API void ofp_bswap_PacketOutAlAl(void *value);

/* TLV 197: nothing left to smooth. */
typedef struct OfpSmoothEmpty {
    uint32_t value_u32_0;
} OfpSmoothEmpty;
OFP_PIN_SIZE(OfpSmoothEmpty, 4);
OFP_API void OFP_bswap_SmoothEmpty(void *value);

/* TLV 218: known by its conversion only. */
typedef struct OfpReserved218 {
    uint32_t value_u32_0;
} OfpReserved218;
OFP_PIN_SIZE(OfpReserved218, 4);

OFP_END_DECLS

#endif

/*
 * Applications: registration with the agent daemon and events from it.
 *
 * Order of use: OFP_Init, OFP_RegEvent for each wanted type, OFP_Dispatch whenever the event socket
 * is readable, OFP_DeRegEvent, OFP_Fini. A process has one registration; one thread at a time uses
 * it. The callback runs on the thread that dispatches. It may call anything: after an OFP_Fini from
 * within it the running OFP_Dispatch handles no further datagram.
 */
#ifndef OFP_APPLICATION_H
#define OFP_APPLICATION_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

enum OfpEventKind {
    OFP_EVENT_CTRL_2 = 2, /* controller events: the record is an OfpCtrlEvent */
    OFP_EVENT_CTRL_4 = 4,
    OFP_EVENT_CTRL_8 = 8,
    OFP_EVENT_CTRL_STATUS = 16 /* the record is the 32-bit status, which is the value too */
};

typedef struct OfpCtrlEvent {
    uint16_t address_type; /* 2: IPv4 */
    uint16_t reserved_2;
    uint32_t address[4]; /* as it lies; IPv4 in the first word, the others 0 */
    uint16_t value;      /* of the controller */
    uint16_t zero;
    uint16_t instance_id;
    uint16_t reserved_26;
} OfpCtrlEvent;
OFP_PIN_SIZE(OfpCtrlEvent, 28);

/* Takes an event; record lives during the call. Its result goes into that of OFP_Dispatch. */
typedef uint32_t (*OfpEventCallback)(uint32_t type, void *record, uint32_t value);

/* The registration. Read them; only g_uiOfpMSGNum is an application's to change. */
extern OFP_DATA int32_t g_iOfpLibHandle;           /* event socket, -1: none */
extern OFP_DATA uint8_t g_ucOfpLibAppID;           /* 1 to 11, 12: none */
extern OFP_DATA OfpEventCallback g_pfOfpLibNotify; /* one callback for all event types */
extern OFP_DATA uint8_t *g_pucRecvBuf;             /* OFP_LARGE_DATAGRAM_SIZE bytes, or null */
extern OFP_DATA uint32_t g_uiOfpMSGNum;            /* most datagrams of one OFP_Dispatch: 10 */

/* Registers the process as application 1 to 11. The event socket, or -1, also when registered
 * already. Sends 0x50000008 with TLV 191; no reply is awaited. */
OFP_API int32_t OFP_Init(uint32_t app_id);

/* Closes the event socket and frees the receive buffer. The callback stays. Sends nothing. */
OFP_API void OFP_Fini(void);

/* Subscribes to events of a type, 1 to 63, and makes the callback that of all types. 0;
 * OFP_RC_STATE when unregistered; OFP_RC_FAILED for a bad argument or no channel; else as
 * OFP_set_SendBasicMsg, and the callback is as before. Waits without limit. Sends 0x50000009 with
 * TLV 192. */
OFP_API uint32_t OFP_RegEvent(uint32_t type, OfpEventCallback callback);

/* Ends a subscription and forgets the callback, so that no event of any type is delivered until the
 * next OFP_RegEvent. Codes as there. Sends 0x5000000a with TLV 192. */
OFP_API uint32_t OFP_DeRegEvent(uint32_t type);

/* Takes up to g_uiOfpMSGNum datagrams that are queued on the event socket, without waiting, and
 * hands their events to the callback. The codes of the datagrams, ORed: that of the callback,
 * OFP_RC_FAILED for a malformed one, OFP_RC_INVALID for an event type of 0 or above 63. A datagram
 * of another message ends the call with OFP_RC_FAILED alone. OFP_RC_STATE when unregistered,
 * OFP_RC_NO_RESOURCE without a receive buffer. */
OFP_API uint32_t OFP_Dispatch(int32_t socket);

/* A copy of packet data, freed by the caller; null when memory is short. */
OFP_API uint8_t *ofp_lib_GetPktDataFromTLV(const uint8_t *value, uint16_t length);

OFP_END_DECLS

#endif

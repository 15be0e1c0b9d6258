/*
 * What libofp takes from the platform it runs on: sockets, TLV buffers, bitmaps, device contexts,
 * services, nodes, interfaces and options. The library imports every function below as an ordinary
 * dynamic symbol; a switch's own libraries, libofp-host.so or a test double supplies them.
 *
 * Programs that only call the library do not need this header.
 */
#ifndef OFP_PLATFORM_H
#define OFP_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* ---- Sockets ----
 * The agent daemon listens on a local datagram socket of family 37. All calls return -1 and set
 * errno on failure. */

/* A socket of the given family, type and protocol; the library asks for 37, 2 and 1. */
int32_t SOCK_Socket(int32_t family, int32_t type, int32_t protocol);

/* Sets an option. Levels and numbers are the platform's own: level 1 option 0x1002 receive buffer
 * (32-bit bytes), 0x1005 and 0x1006 send and receive time-out (two 64-bit words, seconds and
 * microseconds), level 0x113 option 16 device context (32-bit). */
int32_t SOCK_SetOption(int32_t s, int32_t level, int32_t option, const void *value,
                       uint32_t length);

/* Connects to a 16-byte service address. */
int32_t SOCK_Connect(int32_t s, const void *address, uint32_t length);

/* Sends one datagram; the count sent. */
int64_t SOCK_Send(int32_t s, const void *buffer, size_t length, int32_t flags);

/* Receives one datagram; its length, truncated to size. */
int64_t SOCK_Recv(int32_t s, void *buffer, size_t size, int32_t flags);

/* The same without a source address; flag 0x40 returns at once when nothing is queued. */
int64_t SOCK_RecvFrom(int32_t s, void *buffer, size_t size, int32_t flags);

int32_t SOCK_Close(int32_t s);

/* ---- TLV buffers ---- */

/* Writes a 4-byte header and copies length bytes of value after it. A null value leaves the bytes
 * that already stand there. Returns header plus value bytes, 0 when they exceed space. */
uint32_t STLV_Set(void *buffer, uint32_t space, uint32_t type, uint32_t length, const void *value);

/* Reads the TLV at the start of buffer and points *value into it. Returns header plus value bytes;
 * 0 with *value null when no whole TLV is there. */
uint32_t STLV_Get(const void *buffer, uint32_t available, uint16_t *type, uint16_t *length,
                  void **value);

/* ---- Bitmaps ---- */

typedef struct Bitmap Bitmap;

typedef struct BitmapRange {
    uint32_t count; /* ranges in the record: 1 */
    uint32_t first;
    uint32_t last; /* inclusive */
} BitmapRange;

/* An empty map of the given bits laid into buffer; null when size bytes do not hold it. */
Bitmap *Bitmap_CreateFromBuffer(uint32_t bits, void *buffer, uint32_t size);
void Bitmap_Zero(Bitmap *map);
void Bitmap_Set(Bitmap *map, uint32_t bit);
void Bitmap_Clear(Bitmap *map, uint32_t bit);
uint16_t Bitmap_Check(const Bitmap *map, uint32_t bit); /* 1 when set, else 0 */
void Bitmap_SetRange(Bitmap *map, const BitmapRange *range);
void Bitmap_Copy(Bitmap *to, const Bitmap *from);
/* Host to network order and back: its own inverse. The object's first 32-bit field is the number of
 * bytes that hold bits. */
void Bitmap_H2N(Bitmap *map);

/* ---- Device contexts ---- */

uint32_t ZONE_GetCurrentZone(void);
uint16_t ZONE_IsContainer(uint32_t zone); /* 1 when the context is a container */
uint32_t ZONE_GetCurrentContainer(void);
uint16_t LIP_GetLocalLip(void); /* the node's local position id */

/* ---- Services and nodes ----
 * A node id is a board of the chassis. All calls but the node queries return 0 on success. */

uint32_t SERVICE_GetStatus(uint16_t node, const char *name, uint32_t instance, uint32_t *status);
uint32_t SERVICE_Start(uint16_t node, const char *name, uint32_t argument1, uint32_t argument2);
uint32_t SERVICE_BatchStart(const uint16_t *nodes, uint32_t count, const char *name,
                            uint32_t argument1, uint32_t argument2);
uint32_t SERVICE_IsPhase4Over(uint16_t node);
uint16_t DEV_GetSystemMaster(void);
uint16_t DEV_GetSelf(void);
uint16_t DEV_IsController(void);            /* 1 when the own node is a controller board */
uint16_t *DEV_GetAllNodes(uint32_t *count); /* malloc'ed, freed by the caller; null on failure */
uint16_t IF_IsNodeUp(uint16_t node);        /* non-zero when up */

/* ---- Interfaces ---- */

uint32_t IF_Select_Init(uint32_t mode, void *selection);
uint32_t IF_SelectType_Set(uint32_t type, void *selection);
uint32_t IF_SelectCondition_Set(uint32_t condition, void *selection);
/* Item 18 is the 32-bit interface type. 0 on success. */
uint32_t IF_GetDataByIfIndex(uint32_t index, uint32_t item, void *out);
int32_t IF_JudgeNameOrder(const char *a, const char *b); /* positive when a sorts after b */

/* ---- Addresses, options, device commands, text ---- */

uint16_t VLAN_GetMinVlanID(void);
uint32_t MAC_GetBridgeAddress(uint8_t mac[6]); /* 0 on success */

typedef struct OptEntry {
    const char *name;
    uint32_t kind; /* 0: 16-bit destination, 1: 32-bit destination */
    void *destination;
    uint32_t size; /* bytes of the destination */
} OptEntry;

/* Parses options from two sources into the destinations of a table. 0 on success. */
uint32_t OPT_ParseEx(void *source1, void *source2, const OptEntry *table, uint32_t count);

/* A command to a device driver. 0 on success; *out_length is what the driver answered. */
uint32_t CIOCTL(int16_t node, uint32_t command, const void *in, uint32_t in_length, void *out,
                uint32_t out_size, uint32_t *out_length);

/* Bounded formatting; the characters stored, the terminating zero not counted. */
size_t scnprintf(char *buffer, size_t size, const char *format, ...);
size_t strlcpy(char *to, const char *from, size_t size);

OFP_END_DECLS

#endif

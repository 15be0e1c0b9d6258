/*
 * VLAN ids, masks and bitmaps. Nothing is sent; the calls may be used from any thread.
 */
#ifndef OFP_VLAN_H
#define OFP_VLAN_H

#include <stdint.h>

#include "ofp/export.h"
#include "ofp/platform.h"
#include "ofp/wire_vlan.h"

OFP_BEGIN_DECLS

/* The smallest usable VLAN id, asked of the platform once, or again while it answers 0xFFFF. */
OFP_API uint16_t OFP_util_GetMinVlanID(void);

/* The largest usable VLAN id: 4094. */
OFP_API uint16_t OFP_util_GetMaxVlanID(void);

/* Clears the bitmap and sets the VLAN ids that a VLAN id with a mask stands for. Id 0xFFFF stands
 * for none; a mask of 0xFFFF or 0x0FFF for the id alone, usable or not; else all usable ids that
 * agree with the id on the mask's bits. The bitmap must have room for id 4095. */
OFP_API void OFP_util_GetBitmapFromVlanMask(const OfpVlanMask *vlan, Bitmap *bitmap);

/* 1 when all bytes are 0xFF (or there are none), else 0. */
OFP_API uint16_t OFP_util_IsAllBitMasked(const uint8_t *mask, uint64_t length);

OFP_END_DECLS

#endif

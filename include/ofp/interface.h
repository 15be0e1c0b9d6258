/*
 * Interfaces that OpenFlow may use, by their type. Nothing is sent; thread-safe on distinct
 * selection objects.
 */
#ifndef OFP_INTERFACE_H
#define OFP_INTERFACE_H

#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* Prepares a selection object of the platform to select the interfaces of the 32 OpenFlow types.
 * The platform's code. */
OFP_API uint32_t OFP_util_SetIfSelect(void *selection);

/* The same for the 23 types of the table type pattern mode. */
OFP_API uint32_t OFP_util_SetTTPIfSelect(void *selection);

/* 1 when the interface has one of the 32 OpenFlow types, else 0; 0 for index 0 and for an unknown
 * one. */
OFP_API uint16_t OFP_util_IsOfpIfType(uint32_t if_index);

OFP_END_DECLS

#endif

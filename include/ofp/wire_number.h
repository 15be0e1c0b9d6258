/*
 * Numbers of a wire record that lie where their alignment does not allow the integer type itself.
 *
 * Read and write them with memcpy, in C++ also with std::bit_cast.
 */
#ifndef OFP_WIRE_NUMBER_H
#define OFP_WIRE_NUMBER_H

#include <stdint.h>

#include "ofp/export.h"

/* A 32-bit number, in the byte order of the record around it. */
typedef struct OfpUnaligned32 {
    uint8_t bytes[4];
} OfpUnaligned32;
OFP_PIN_SIZE(OfpUnaligned32, 4);

/* A 64-bit number, likewise. */
typedef struct OfpUnaligned64 {
    uint8_t bytes[8];
} OfpUnaligned64;
OFP_PIN_SIZE(OfpUnaligned64, 8);

#endif

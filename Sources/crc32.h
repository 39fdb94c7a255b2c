// SPDX-License-Identifier: MIT

// The lookup table of the most-significant-bit-first (non-reflected) CRC-32 with the generator
// polynomial 0x04C11DB7, as CRC-32/MPEG-2 and CRC-32/BZIP2 use it. The client chooses the initial
// value and the final exclusive-or, and updates byte by byte:
//
//     crc = (crc << 8) ^ crc32_crc_table[(crc >> 24) ^ byte];
//
// The table is right before any client code runs, initialisers of static objects included, in
// shared and static builds. Threads may read it at the same time. Regenerating writes only entries
// that a client has changed, so a table that nobody has changed may be regenerated as well.

#ifndef TRAMMEL_CRC32_H
#define TRAMMEL_CRC32_H

#include "TrammelExport.h"

#include <cstdint>

/// The table, one entry for each byte. It is writable; gen_crc_table() undoes a client's changes.
extern TRAMMEL_API std::uint32_t crc32_crc_table[256];

/// Computes all 256 entries of crc32_crc_table anew: entry i is the remainder of i·2^32 by the
/// generator polynomial. Source: the definition (bitwise division).
TRAMMEL_API void gen_crc_table();

/// Fills the table when it is constructed, which the library does once when it is loaded.
class TRAMMEL_API CRCInit {
public:
    CRCInit();
};

#endif

// SPDX-License-Identifier: MIT

#include "crc32.h"

namespace {

constexpr std::uint32_t Entry(std::uint32_t index) {
    std::uint32_t c = index << 24;
    for (int bit = 0; bit < 8; ++bit) {
        c = (c & 0x80000000U) != 0 ? (c << 1) ^ 0x04C11DB7U : c << 1;
    }
    return c;
}

} // namespace

// Constant initialisation: the compiler computes the entries, so there is no moment at which
// another initialiser could see the table empty.
#define TRAMMEL_ENTRIES_4(i) Entry(i), Entry((i) + 1), Entry((i) + 2), Entry((i) + 3)
#define TRAMMEL_ENTRIES_16(i)                                                                      \
    TRAMMEL_ENTRIES_4(i), TRAMMEL_ENTRIES_4((i) + 4), TRAMMEL_ENTRIES_4((i) + 8),                  \
        TRAMMEL_ENTRIES_4((i) + 12)
#define TRAMMEL_ENTRIES_64(i)                                                                      \
    TRAMMEL_ENTRIES_16(i), TRAMMEL_ENTRIES_16((i) + 16), TRAMMEL_ENTRIES_16((i) + 32),             \
        TRAMMEL_ENTRIES_16((i) + 48)

std::uint32_t crc32_crc_table[256] = {TRAMMEL_ENTRIES_64(0U), TRAMMEL_ENTRIES_64(64U),
                                      TRAMMEL_ENTRIES_64(128U), TRAMMEL_ENTRIES_64(192U)};

void gen_crc_table() {
    for (std::uint32_t i = 0; i < 256; ++i) {
        if (crc32_crc_table[i] != Entry(i)) {
            crc32_crc_table[i] = Entry(i);
        }
    }
}

CRCInit::CRCInit() { gen_crc_table(); }

namespace {

CRCInit const anInstance;

} // namespace

// SPDX-License-Identifier: MIT

#include "crc32.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace {

typedef std::array<std::uint32_t, 256> Table;

Table Snapshot() {
    Table table = {};
    std::memcpy(table.data(), crc32_crc_table, sizeof crc32_crc_table);
    return table;
}

/// A client's initialiser sees this: it runs before main, in no particular order among the files.
Table const kSeenByAnInitialiser = Snapshot();

/// Restores the table whatever a test did to it.
class Crc32 : public testing::Test {
protected:
    void TearDown() override { gen_crc_table(); }
};

/// The remainder, bit after bit, of `message` followed by 32 zero bits: no table.
std::uint32_t BitwiseRemainder(std::uint32_t initial, std::string const& message) {
    std::uint32_t crc = initial;
    for (char const c : message) {
        for (int bit = 7; bit >= 0; --bit) {
            bool const in = ((static_cast<unsigned char>(c) >> bit) & 1) != 0;
            bool const out = (crc >> 31U) != 0;
            crc <<= 1U;
            if (in != out) {
                crc ^= 0x04C11DB7U;
            }
        }
    }
    return crc;
}

/// The client's byte-wise update.
std::uint32_t Update(std::uint32_t crc, std::string const& message) {
    for (char const c : message) {
        crc = (crc << 8U) ^ crc32_crc_table[(crc >> 24U) ^ static_cast<unsigned char>(c)];
    }
    return crc;
}

TEST_F(Crc32, IsAnArrayOf256UnsignedNumbersOf32Bits) {
    static_assert(std::is_same_v<decltype(crc32_crc_table), std::uint32_t[256]>);
    static_assert(std::is_empty_v<CRCInit>);
    static_assert(std::is_default_constructible_v<CRCInit>);
    EXPECT_EQ(sizeof crc32_crc_table, 1024u);
}

TEST_F(Crc32, NamedEntriesHaveTheirValues) {
    EXPECT_EQ(crc32_crc_table[0], 0x00000000U);
    EXPECT_EQ(crc32_crc_table[1], 0x04C11DB7U);
    EXPECT_EQ(crc32_crc_table[2], 0x09823B6EU);
    EXPECT_EQ(crc32_crc_table[3], 0x0D4326D9U);
    EXPECT_EQ(crc32_crc_table[128], 0x690CE0EEU);
    EXPECT_EQ(crc32_crc_table[255], 0xB1F740B4U);
}

TEST_F(Crc32, EveryEntryIsTheRemainderOfItsIndex) {
    for (unsigned i = 0; i < 256; ++i) {
        std::string const byte(1, static_cast<char>(i));
        EXPECT_EQ(crc32_crc_table[i], BitwiseRemainder(0, byte)) << i;
    }
}

TEST_F(Crc32, EntriesAreLinearInTheirIndex) {
    for (unsigned i = 0; i < 256; ++i) {
        for (unsigned j = 0; j < 256; ++j) {
            ASSERT_EQ(crc32_crc_table[i ^ j], crc32_crc_table[i] ^ crc32_crc_table[j]);
        }
    }
}

TEST_F(Crc32, IsRightBeforeAClientsInitialiserReadsIt) {
    for (unsigned i = 0; i < 256; ++i) {
        std::string const byte(1, static_cast<char>(i));
        EXPECT_EQ(kSeenByAnInitialiser[i], BitwiseRemainder(0, byte)) << i;
    }
}

TEST_F(Crc32, ServesTheKnownVariants) {
    std::string const digits = "123456789";
    EXPECT_EQ(Update(0xFFFFFFFFU, digits), 0x0376E6E7U) << "CRC-32/MPEG-2";
    EXPECT_EQ(~Update(0xFFFFFFFFU, digits), 0xFC891918U) << "CRC-32/BZIP2";
    EXPECT_EQ(~Update(0U, digits), 0x765E7680U) << "CRC-32/CKSUM";
    std::string message;
    for (int i = 0; i < 1000; ++i) {
        message += static_cast<char>(i * 7 + i / 3);
    }
    EXPECT_EQ(Update(0x12345678U, message), BitwiseRemainder(0x12345678U, message));
    EXPECT_EQ(Update(0x12345678U, ""), 0x12345678U);
}

TEST_F(Crc32, TheTableIsWritableAndRestored) {
    Table const right = Snapshot();
    for (std::uint32_t& entry : crc32_crc_table) {
        entry = 0xDEADBEEFU;
    }
    EXPECT_EQ(crc32_crc_table[7], 0xDEADBEEFU);
    gen_crc_table();
    EXPECT_EQ(Snapshot(), right);
    gen_crc_table();
    EXPECT_EQ(Snapshot(), right);

    std::memset(crc32_crc_table, 0, sizeof crc32_crc_table);
    CRCInit const filled;
    static_cast<void>(filled);
    EXPECT_EQ(Snapshot(), right);
}

} // namespace

// Prices, quantities, lists and arena memory as callers use them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/support/hex.h"
#include "zyn/zyn.h"

namespace {

constexpr double nullMarker = -99999999.0;

// The octets of a record's content, through a buffer of its own.
template <typename Record> std::string contentOf(AsnLen (*encode)(SBuf*, Record*), Record* record) {
    uint8_t block[256];
    SBuf b{block + sizeof block, block + sizeof block, block, block + sizeof block, block + sizeof block, 0, 1};
    const AsnLen length = encode(&b, record);
    return toHex(b.dataStart, length);
}

TEST(FixedReal, WhatGoesOnTheWire) {
    struct Row {
        double value;
        bool withDecimals;
        int32_t decimals;
        const char* octets;
        const char* reason;
    };
    const Row rows[] = {
        {nullMarker, false, 0, "09 00 02 01 FF", "the marker never travels: value 0, decimals -1"},
        {nullMarker, true, 2, "09 00 02 01 FF", "decimals are not looked at beside the marker"},
        {1.5, false, 0, "09 03 80 F9 C0", "no decimals element"},
        {1.5, true, -1, "09 03 80 F9 C0 02 01 FF", "decimals -1 alone make no null value"},
        {1.5, true, 2, "09 03 80 F9 C0 02 01 02", ""},
        {0.0, false, 0, "09 00", ""},
    };
    for (const Row& row : rows) {
        AsnFixedReal v;
        if (row.withDecimals) ZynFixedRealSetWithDecimals(&v, row.value, row.decimals);
        else ZynFixedRealSet(&v, row.value);
        EXPECT_EQ(contentOf(BEncAsnFixedRealContent, &v), row.octets) << row.reason;
        double out = 7;
        ZynFixedRealGet(&v, &out);
        EXPECT_EQ(out, row.value == nullMarker ? 0.0 : row.value);
    }
    AsnFixedReal near;
    ZynFixedRealSet(&near, nullMarker - 0.5);
    EXPECT_EQ(near.value, nullMarker - 0.5) << "only the exact marker is one";
    EXPECT_EQ(near.decimals, nullptr);
    ZynFixedRealSet(&near, NAN);
    EXPECT_TRUE(std::isnan(near.value));
}

TEST(LongInt, PassesThrough) {
    AsnLongInt v;
    ZynLongIntSet(&v, nullMarker); // has no null form
    double out = 0;
    ZynLongIntGet(&v, &out);
    EXPECT_EQ(out, nullMarker);
    ZynLongIntSet(&v, 1000);
    EXPECT_EQ(contentOf(BEncAsnLongIntContent, &v), "09 03 80 02 FA");
}

TEST(Lists, AppendInOrderAndCount) {
    ZynEncodeMemReset();
    AsnList* list = ZynListNew();
    EXPECT_EQ(ZynListCount(list), 0);
    EXPECT_EQ(contentOf(BEncZynPricePointListContent, list), "");
    for (int i = 0; i < 2; ++i) {
        auto* row = static_cast<ZynUserUpdateActivityStatusSetOfSeq*>(
            ZynListAppend(list, sizeof(ZynUserUpdateActivityStatusSetOfSeq)));
        row->userIdx = i + 1;
    }
    EXPECT_EQ(ZynListCount(list), 2);
    EXPECT_EQ(contentOf(BEncZynUserUpdateActivityStatusSetOfContent, list),
              "30 06 02 01 01 02 01 00 30 06 02 01 02 02 01 00");
    EXPECT_EQ(list->curr, nullptr) << "a whole walk leaves no cursor";
}

TEST(Memory, IsZeroAndAligned) {
    ZynEncodeMemReset();
    for (const uint32_t size : {1u, 7u, 8u, 100u, 5000u, 8192u, 20000u}) {
        auto* memory = static_cast<unsigned char*>(ZynEncodeMemAlloc(size));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % 8, 0u) << size;
        for (uint32_t i = 0; i < size; ++i) ASSERT_EQ(memory[i], 0) << size;
        std::memset(memory, 0xEE, size);
    }
    ZynEncodeMemReset();
    auto* again = static_cast<unsigned char*>(ZynEncodeMemAlloc(8192));
    for (uint32_t i = 0; i < 8192; ++i) ASSERT_EQ(again[i], 0);
}

} // namespace

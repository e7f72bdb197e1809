#include "Wire.h"

#include <gtest/gtest.h>

extern "C" unsigned long MessageSizeInC();
extern "C" uint32_t OpenInC();

namespace {

constexpr uint8_t aucBytes[] = {0x01, 0x82, 0x03, 0x84, 0x05, 0x86};
constexpr ByteView stBytes{aucBytes, 6};

TEST(WireTest, NumbersAreLittleEndianAndUnaligned) {
    EXPECT_EQ(Get(stBytes, {0, FieldType::U8}), 0x01U);
    EXPECT_EQ(Get(stBytes, {1, FieldType::U16}), 0x0382U);
    EXPECT_EQ(Get(stBytes, {1, FieldType::U32}), 0x05840382U);
    EXPECT_EQ(Get(stBytes, {0, FieldType::U16}, 3), 0x0584U);
}

TEST(WireTest, SignedTypesAreSignExtended) {
    EXPECT_EQ(Get(stBytes, {1, FieldType::U8}), 0x82U);
    EXPECT_EQ(Get(stBytes, {1, FieldType::I8}), 0xFFFFFF82U);
    EXPECT_EQ(GetSigned(stBytes, {1, FieldType::I8}), -126);
    EXPECT_EQ(GetSigned(stBytes, {2, FieldType::I16}), -31741);
    EXPECT_EQ(GetSigned(stBytes, {0, FieldType::I16}), -32255);
    EXPECT_EQ(GetSigned(stBytes, {2, FieldType::I32}), -2046458877);
}

TEST(WireTest, ReadsPastTheEndGiveZero) {
    EXPECT_EQ(Get(stBytes, {4, FieldType::U32}), 0x00008605U);
    EXPECT_EQ(Get(stBytes, {6, FieldType::U32}), 0U);
    EXPECT_EQ(Get(stBytes, {0, FieldType::U32}, 0xFFFFFFFF), 0x03820100U);
    EXPECT_EQ(Get({}, {0, FieldType::U32}), 0U);
    EXPECT_EQ(stBytes.At(5), 0x86);
    EXPECT_EQ(stBytes.At(6), 0);
}

TEST(WireTest, ViewsOfViewsStayInside) {
    EXPECT_EQ(stBytes.From(2).u32Length, 4U);
    EXPECT_EQ(stBytes.From(2, 3).u32Length, 3U);
    EXPECT_EQ(stBytes.From(2, 3).At(2), 0x05);
    EXPECT_EQ(stBytes.From(2, 3).At(3), 0);
    EXPECT_EQ(stBytes.From(6).u32Length, 0U);
    EXPECT_EQ(stBytes.From(0xFFFFFFFF).u32Length, 0U);
    EXPECT_EQ(stBytes.From(5, 0xFFFFFFFF).u32Length, 1U);
}

TEST(WireTest, NumbersAreWrittenInTheirWidth) {
    Record<8> stRecord;
    Put(stRecord.Span(), {1, FieldType::U32}, 0x11223344);
    Put(stRecord.Span(), {5, FieldType::U16}, 0xAABBCCDD);
    Put(stRecord.Span(), {7, FieldType::I8}, static_cast<uint32_t>(-2));
    const uint8_t aucExpected[] = {0, 0x44, 0x33, 0x22, 0x11, 0xDD, 0xCC, 0xFE};
    EXPECT_EQ(std::memcmp(stRecord.aucBytes, aucExpected, 8), 0);
}

TEST(WireTest, WritesPastTheEndAreDropped) {
    Record<4> stRecord;
    Put(stRecord.Span(), {2, FieldType::U32}, 0x11223344);
    Put(stRecord.Span(), {4, FieldType::U32}, 0x55667788);
    const uint8_t aucExpected[] = {0, 0, 0x44, 0x33};
    EXPECT_EQ(std::memcmp(stRecord.aucBytes, aucExpected, 4), 0);
}

TEST(WireTest, CopiesStopAtTheEnd) {
    Record<4> stRecord;
    PutBytes(stRecord.Span(), 2, stBytes);
    PutBytes(stRecord.Span(), 4, stBytes);
    PutBytes(stRecord.Span(), 0, {});
    const uint8_t aucExpected[] = {0, 0, 0x01, 0x82};
    EXPECT_EQ(std::memcmp(stRecord.aucBytes, aucExpected, 4), 0);
}

TEST(WireTest, NoMoreRecordsThanArePresent) {
    EXPECT_EQ(RecordsPresent(stBytes, 0, 2, 2), 2U);
    EXPECT_EQ(RecordsPresent(stBytes, 0, 2, 4), 3U);
    EXPECT_EQ(RecordsPresent(stBytes, 1, 2, 4), 2U);
    EXPECT_EQ(RecordsPresent(stBytes, 6, 2, 4), 0U);
    EXPECT_EQ(RecordsPresent(stBytes, 0, 2, uint32_t{0xFFFFFFFF}), 3U);
    EXPECT_EQ(RecordsPresent(stBytes, 0, 2, int32_t{-1}), 0U);
}

TEST(WireTest, BytesAreTheSameInNumberAndInValue) {
    constexpr uint8_t aucFirst[] = {1, 2, 3};
    constexpr uint8_t aucSecond[] = {1, 2, 4};
    const ByteView stFirst{aucFirst, 3};
    const ByteView stSecond{aucSecond, 3};
    EXPECT_TRUE(SameBytes(stFirst, {aucFirst, 3}));
    EXPECT_FALSE(SameBytes(stFirst, stSecond));
    EXPECT_TRUE(SameBytes(stFirst.From(0, 2), stSecond.From(0, 2)));
    EXPECT_FALSE(SameBytes(stFirst, stFirst.From(0, 2)));
    EXPECT_FALSE(SameBytes(stFirst.From(0, 2), stFirst));
    EXPECT_TRUE(SameBytes({}, {}));
    EXPECT_FALSE(SameBytes({}, stFirst));
}

TEST(WireTest, AMessageIsSeenWithItsWholeDataArea) {
    WiMAXMessage stMessage{};
    const uint8_t aucHeader[] = {0x13, 0x01, 0x07, 0x02, 0xAA, 0xBB};
    std::memcpy(&stMessage, aucHeader, sizeof aucHeader);
    stMessage.aucData[10239] = 0xCC;
    const Received stReceived = View(&stMessage);
    EXPECT_EQ(stReceived.u32Type, 0x0113U);
    EXPECT_EQ(stReceived.u32SubType, 0x0207U);
    EXPECT_EQ(stReceived.stPayload.u32Length, 10240U);
    EXPECT_EQ(stReceived.stPayload.At(1), 0xBB);
    EXPECT_EQ(stReceived.stPayload.At(10239), 0xCC);
    EXPECT_EQ(stReceived.stPayload.At(10240), 0x00);
    EXPECT_EQ(View(nullptr).u32Type, 0U);
    EXPECT_EQ(View(nullptr).stPayload.u32Length, 0U);
}

TEST(WireTest, AFieldWithoutATypeTakesNothing) {
    EXPECT_EQ(WidthOf(FieldType::None), 0U);
    EXPECT_EQ(Get(stBytes, {1, FieldType::None}), 0U);
    EXPECT_EQ(EndOf({5, FieldType::None}), 5U);
}

TEST(WireTest, TheHeaderServesACProgram) {
    EXPECT_EQ(MessageSizeInC(), 10244U);
    EXPECT_EQ(OpenInC(), 1U);
}

} // namespace

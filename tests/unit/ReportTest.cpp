#include "Report.h"

#include "TestConsole.h"

namespace {

class ReportTest : public ConsoleTest {};

constexpr uint8_t aucBytes[] = {0x0A, 0xFF, 0x80, 0xFF, 0xFF, 0xFF, 0x01, 0xFE};
constexpr ByteView stBytes{aucBytes, 8};

TEST_F(ReportTest, ConversionsPrintAsPrintfDoes) {
    const auto PrintedAs = [](const char *pcText, uint32_t u32Value) {
        return PrintedBy([&] { PutNumber(pcText, u32Value); });
    };
    EXPECT_EQ(PrintedAs("%d", 0), "0");
    EXPECT_EQ(PrintedAs("%d", 0xFFFFFFFF), "-1");
    EXPECT_EQ(PrintedAs("%d", 0x80000000), "-2147483648");
    EXPECT_EQ(PrintedAs("%u", 0xFFFFFFFF), "4294967295");
    EXPECT_EQ(PrintedAs("<%x>", 0xABC), "<abc>");
    EXPECT_EQ(PrintedAs("0x%X!", 0xABC), "0xABC!");
    EXPECT_EQ(PrintedAs("%02x", 5), "05");
    EXPECT_EQ(PrintedAs("%08X", 0xBEEF), "0000BEEF");
    EXPECT_EQ(PrintedAs("%5d", 42), "   42");
    EXPECT_EQ(PrintedAs("%5d", static_cast<uint32_t>(-42)), "  -42");
    EXPECT_EQ(PrintedAs("%05d", static_cast<uint32_t>(-42)), "-0042");
    EXPECT_EQ(PrintedAs("%2u", 12345), "12345");
}

TEST_F(ReportTest, ARowTakesItsConversionsFromFieldAfterField) {
    const ReportRow stRow{"\nID :%02X %02X %02X", {0, FieldType::U8}};
    EXPECT_EQ(PrintedBy([&] { PutRow(stBytes, stRow); }), "\nID :0A FF 80");
    EXPECT_EQ(PrintedBy([&] { PutRow(stBytes, stRow, 1); }), "\nID :FF 80 FF");
    EXPECT_EQ(PrintedBy([&] { PutRow(stBytes, stRow, 7); }), "\nID :FE 00 00");
}

TEST_F(ReportTest, SignedFieldsPrintSigned) {
    const ReportRow astRows[] = {{"\n%d dB", {2, FieldType::I32}},
                                 {"\n%d dB", {2, FieldType::I8}},
                                 {"\n%u", {2, FieldType::U8}},
                                 {" - plain 100% text"}};
    EXPECT_EQ(PrintedBy([&] { PutRows(stBytes, astRows); }),
              "\n-128 dB\n-128 dB\n128 - plain 100% text");
}

TEST_F(ReportTest, EveryByteByTheSameText) {
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", stBytes.From(0, 3)); }), " 0x0a 0xff 0x80");
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", {}); }), "");
}

TEST_F(ReportTest, AClosingLineIsAsLongAsItsBanner) {
    EXPECT_EQ(PrintedBy([] { PutClosingLine("\n~~~ AB ~~~"); }), "\n\n~~~~~~~~~~\n");
    EXPECT_EQ(PrintedBy([] { PutClosingLine("\n\n** A **"); }), "\n\n*******\n");
}

TEST_F(ReportTest, CodesWithoutANameHaveTheOtherOne) {
    const CodeName astNames[] = {{0, "ZERO"}, {255, "LAST"}};
    EXPECT_STREQ(NameOf(astNames, 255, nullptr), "LAST");
    EXPECT_STREQ(NameOf(astNames, 1, "OTHER"), "OTHER");
    EXPECT_EQ(NameOf(astNames, 1, nullptr), nullptr);
}

} // namespace

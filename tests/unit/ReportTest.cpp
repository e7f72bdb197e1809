#include "Report.h"

#include <string>

#include "Console.h"
#include "Output.h"
#include "TestConsole.h"

namespace {

class ReportTest : public ConsoleTest {
  protected:
    // A row of one number, and its bytes with a word behind them.
    static std::string RowOf(const ReportRow &stRow, uint32_t u32Value) {
        Record<8> stRecord;
        Put(stRecord.Span(), stRow.stField, u32Value);
        return PrintedBy([&] { PutRow(stRecord.View(), stRow); });
    }
};

constexpr uint8_t aucReportBytes[] = {0x0A, 0xFF, 0x80, 0xFF, 0xFF, 0xFF, 0x01, 0xFE};
constexpr ByteView stReportBytes{aucReportBytes, 8};

TEST_F(ReportTest, ConversionsPrintAsPrintfDoes) {
    const auto PrintedAs = [](const TextWith<1> &stText, uint32_t u32Value) {
        return PrintedBy([&] { PutNumber(stText, u32Value); });
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
    EXPECT_EQ(PrintedAs("%5u", 0), "    0");
    EXPECT_EQ(PrintedAs("%9d", 0x7FFFFFFF), "2147483647");
    EXPECT_EQ(PrintedAs("%09x", 0xFFFFFFFF), "0ffffffff");
    EXPECT_EQ(PrintedAs("%9X", 0xFFFFFFFF), " FFFFFFFF");
    EXPECT_EQ(PrintedAs("%x", 0), "0");
}

TEST_F(ReportTest, NumbersOfEveryLength) {
    const std::string strNines = "9999999999";
    uint32_t u32Power = 1;
    for (size_t i = 1; i <= 9; ++i, u32Power *= 10) {
        EXPECT_EQ(PrintedBy([&] { PutNumber("%u", u32Power); }), "1" + std::string(i - 1, '0'));
        EXPECT_EQ(PrintedBy([&] { PutNumber("%d", u32Power * 10 - 1); }), strNines.substr(0, i));
        EXPECT_EQ(PrintedBy([&] { PutNumber("%d", 1 - u32Power * 10); }),
                  "-" + strNines.substr(0, i));
    }
    for (uint32_t i = 1; i <= 8; ++i) {
        EXPECT_EQ(PrintedBy([&] { PutNumber("%x", 1U << (4 * i - 4)); }),
                  "1" + std::string(i - 1, '0'));
        EXPECT_EQ(PrintedBy([&] { PutNumber("%X", UINT32_MAX >> (32 - 4 * i)); }),
                  std::string(i, 'F'));
    }
}

TEST_F(ReportTest, TextsOfEveryLengthAroundTheNumbers) {
    const uint32_t au32Values[] = {7, 0xAB, 0xFFFFFFFF, 0, 12, 345, 6};
    EXPECT_EQ(
        PrintedBy([&] { PutNumbers("%d1%x12%d123%u1234%d12345%d123456%d1234567", au32Values); }),
        "71ab12-112301234121234534512345661234567");
    EXPECT_EQ(PrintedBy([] { PutNumber("12345678%d123456789", 5); }), "123456785123456789");
    EXPECT_EQ(PrintedBy([] {
                  PutNumber("1234567890123456%d12345678901234567890123456789012345678901", 5);
              }),
              "1234567890123456512345678901234567890123456789012345678901");
    EXPECT_EQ(PrintedBy([] {
                  PutNumber("0123456789abcdef%d0123456789abcdef", 12345);
                  PutNumber("0123456789abcdef0123456789abcdef%x0123456789abcdef0123456789abcdef",
                            0x12345);
                  PutText("|");
              }),
              "0123456789abcdef123450123456789abcdef"
              "0123456789abcdef0123456789abcdef123450123456789abcdef0123456789abcdef|");
}

TEST_F(ReportTest, LinesOfAnyLength) {
    for (const size_t uLength : {size_t{0}, size_t{1}, size_t{100}, uMostRoom - 1, uMostRoom,
                                 uMostRoom + 1, 3 * uMostRoom}) {
        const std::string strText(uLength, 'x');
        EXPECT_EQ(PrintedBy([&] { PutLine(strText); }), strText + "\n");
    }
}

TEST_F(ReportTest, TextsThatCannotBeTakenApart) {
    const auto IsText = [](const std::string &strText) {
        NumberText stText;
        return TakeApart(strText.c_str(), &stText);
    };
    EXPECT_TRUE(IsText("no number"));
    EXPECT_TRUE(IsText("%d%u%x%X%f%02x%9d"));
    EXPECT_FALSE(IsText("%d%d%d%d%d%d%d%d")); // eight
    EXPECT_FALSE(IsText("100%"));
    EXPECT_FALSE(IsText("100% sure"));
    EXPECT_FALSE(IsText("%%"));
    EXPECT_FALSE(IsText("%s"));
    EXPECT_FALSE(IsText("%ld"));
    EXPECT_FALSE(IsText("%-5d"));
    EXPECT_FALSE(IsText("%0d"));
    EXPECT_FALSE(IsText("%10d"));
    EXPECT_FALSE(IsText("%5f"));
    EXPECT_FALSE(IsText("%.3f"));
    EXPECT_TRUE(IsText(std::string(NumberText::MostText, 'a')));
    EXPECT_FALSE(IsText(std::string(NumberText::MostText + 1, 'a')));
}

TEST_F(ReportTest, TextsAreOfTheFormThatTheirNumbersHave) {
    const auto FormOfText = [](const char *pcText) {
        NumberText stText;
        EXPECT_TRUE(TakeApart(pcText, &stText));
        return stText.eForm;
    };
    EXPECT_EQ(FormOfText("no number"), TextForm::Plain);
    EXPECT_EQ(FormOfText("%d dB"), TextForm::Decimal);
    EXPECT_EQ(FormOfText("%u"), TextForm::Decimal);
    EXPECT_EQ(FormOfText("0x%x"), TextForm::Hex);
    EXPECT_EQ(FormOfText("0x%X"), TextForm::Hex);
    EXPECT_EQ(FormOfText("%02x"), TextForm::Pairs);
    EXPECT_EQ(FormOfText("%02X:%02X"), TextForm::Pairs);
    EXPECT_EQ(FormOfText("%02X:%2X"), TextForm::Other);
    EXPECT_EQ(FormOfText("%02X:%03X"), TextForm::Other);
    EXPECT_EQ(FormOfText("%02d"), TextForm::Other);
    EXPECT_EQ(FormOfText("%5d"), TextForm::Other);
    EXPECT_EQ(FormOfText("%f"), TextForm::Other);
    EXPECT_EQ(FormOfText("%d %d"), TextForm::Other);
}

TEST_F(ReportTest, DivisorsThatGiveExactDecimals) {
    for (const uint32_t u32Divisor : {2U, 4U, 5U, 8U, 10U, 16U, 512U, 65536U, 524288U, 1000000U}) {
        EXPECT_TRUE(HasExactDecimals(u32Divisor)) << u32Divisor;
    }
    for (const uint32_t u32Divisor : {0U, 1U, 3U, 12U, 1048576U, 2000000U}) {
        EXPECT_FALSE(HasExactDecimals(u32Divisor)) << u32Divisor;
    }
}

TEST_F(ReportTest, QuotientsHaveSixDecimals) {
    constexpr Field stSigned{0, FieldType::I32};
    constexpr Field stUnsigned{0, FieldType::U32};
    EXPECT_EQ(RowOf({"%f", stSigned, 8}, 0), "0.000000");
    EXPECT_EQ(RowOf({"%f", stSigned, 8}, 20001), "2500.125000");
    EXPECT_EQ(RowOf({"%f", stSigned, 8}, static_cast<uint32_t>(-1)), "-0.125000");
    EXPECT_EQ(RowOf({"%f", stSigned, 8}, 0x80000000), "-268435456.000000");
    EXPECT_EQ(RowOf({"%f", {0, FieldType::I16}, 8}, 0xFFFF), "-0.125000");
    EXPECT_EQ(RowOf({"%f", {0, FieldType::I8}, 8}, 0x80), "-16.000000");
    EXPECT_EQ(RowOf({"%f", stUnsigned, 8}, 0xFFFFFFFF), "536870911.875000");
    EXPECT_EQ(RowOf({"%f", stUnsigned, 1000000}, 8750001), "8.750001");
    EXPECT_EQ(RowOf({"%f", stUnsigned, 1000000}, 0xFFFFFFFF), "4294.967295");
    EXPECT_EQ(RowOf({"%f", stSigned, 65536}, 1), "0.000015");
    EXPECT_EQ(RowOf({"%f", stSigned, 65536}, static_cast<uint32_t>(-1)), "-0.000015");
    EXPECT_EQ(RowOf({"%f", stSigned, 65536}, 65535), "0.999985");
    EXPECT_EQ(RowOf({"%f", stSigned, 65536}, 0x7FFFFFFF), "32767.999985");
    EXPECT_EQ(RowOf({"%f", stUnsigned, 524288}, 0x7FFFF), "0.999998");
    // Ties go to the even decimal.
    EXPECT_EQ(RowOf({"%f", stSigned, 128}, 1), "0.007812");
    EXPECT_EQ(RowOf({"%f", stSigned, 128}, 3), "0.023438");
    EXPECT_EQ(RowOf({"%f", stSigned, 128}, static_cast<uint32_t>(-3)), "-0.023438");
}

TEST_F(ReportTest, WholePartsOfQuotients) {
    constexpr Field stSigned{0, FieldType::I32};
    constexpr Field stUnsigned{0, FieldType::U32};
    EXPECT_EQ(RowOf({"%d", stSigned, 4}, static_cast<uint32_t>(-7)), "-1");
    EXPECT_EQ(RowOf({"%d", stSigned, 4}, static_cast<uint32_t>(-3)), "0");
    EXPECT_EQ(RowOf({"%d", stSigned, 4}, 7), "1");
    EXPECT_EQ(RowOf({"%u", stUnsigned, 4}, 0xFFFFFFFF), "1073741823");
    EXPECT_EQ(RowOf({"%d", stSigned, 2}, 0x80000000), "-1073741824");
}

TEST_F(ReportTest, RealsHaveSixDecimals) {
    const auto Printed = [](double dValue) { return PrintedBy([=] { PutReal(dValue); }); };
    EXPECT_EQ(Printed(0.0), "0.000000");
    EXPECT_EQ(Printed(-0.0), "-0.000000");
    EXPECT_EQ(Printed(1.0), "1.000000");
    EXPECT_EQ(Printed(-0.25), "-0.250000");
    EXPECT_EQ(Printed(536870912.25), "536870912.250000");
    EXPECT_EQ(Printed(static_cast<double>(1.0F / 3.0F)), "0.333333");
    EXPECT_EQ(Printed(static_cast<double>(0.1F)), "0.100000");
    EXPECT_EQ(Printed(0.1), "0.100000");
    EXPECT_EQ(Printed(0.9999995), "1.000000"); // a little more than it says
    EXPECT_EQ(Printed(0.99999949), "0.999999");
    EXPECT_EQ(Printed(0.99999975), "1.000000");
    EXPECT_EQ(Printed(2.0 - 0x1p-43), "2.000000");
    EXPECT_EQ(Printed(0x1p-43), "0.000000");
    EXPECT_EQ(Printed(0x1p-44), "0.000000");
    EXPECT_EQ(Printed(0.0078125), "0.007812"); // ties go to the even decimal
    EXPECT_EQ(Printed(0.0234375), "0.023438");
    EXPECT_EQ(Printed(static_cast<double>(1.0F / 4294967295.0F)), "0.000000");
    EXPECT_EQ(Printed(4294967296.0), "4294967296.000000");
    EXPECT_EQ(Printed(9999999999.5), "9999999999.500000");
}

TEST_F(ReportTest, ElementsAsFarAsTheViewHasThem) {
    const auto Printed = [](ByteView stView, Field stFirst, uint32_t u32Count) {
        return PrintedBy([=] { PutElements(" %d", stView, stFirst, u32Count); });
    };
    constexpr Field stBytesField{1, FieldType::I8};
    constexpr Field stPairs{1, FieldType::U16};
    constexpr Field stWords{0, FieldType::I32};
    EXPECT_EQ(Printed(stReportBytes, stBytesField, 3), " -1 -128 -1");
    EXPECT_EQ(Printed(stReportBytes, stBytesField, UINT32_MAX), " -1 -128 -1 -1 -1 1 -2");
    EXPECT_EQ(Printed(stReportBytes, stPairs, 9), " 33023 65535 511");
    EXPECT_EQ(Printed(stReportBytes, stWords, 9), " -8323318 -33423361");
    EXPECT_EQ(Printed(stReportBytes.From(0, 7), stWords, 9), " -8323318");
    EXPECT_EQ(Printed(stReportBytes, stBytesField, 0), "");
    EXPECT_EQ(Printed({}, stBytesField, 4), "");
}

TEST_F(ReportTest, ElementsWithTextAroundThem) {
    constexpr Field stBytesField{1, FieldType::U8};
    EXPECT_EQ(PrintedBy([&] { PutElements("\nbyte 0x%x,", stReportBytes, stBytesField, 2); }),
              "\nbyte 0xff,\nbyte 0x80,");
    EXPECT_EQ(PrintedBy([&] {
                  PutElements("%X", stReportBytes, {2, FieldType::I16}, 2);
              }),
              "FFFFFF80FFFFFFFF");
    EXPECT_EQ(PrintedBy([&] {
                  PutElements("0123456789abcdef0123456789abcde:%u=0123456789abcde", stReportBytes,
                              stBytesField, 2);
              }),
              "0123456789abcdef0123456789abcde:255=0123456789abcde"
              "0123456789abcdef0123456789abcde:128=0123456789abcde");
}

TEST_F(ReportTest, ElementsThatFillMoreThanABuffer) {
    Record<20000> stRecord;
    std::string strExpected;
    for (uint32_t i = 0; i < 20000; ++i) {
        stRecord.Span().Set(i, static_cast<uint8_t>(i));
        strExpected += "<" + std::to_string(i % 256) + ">";
    }
    EXPECT_EQ(PrintedBy([&] {
                  PutElements("<%u>", stRecord.View(), {0, FieldType::U8}, 20000);
                  FlushOutput();
              }),
              strExpected);
}

TEST_F(ReportTest, TextsLongerThanABuffer) {
    std::string strLong;
    for (uint32_t i = 0; strLong.size() < 3 * OutputBuffer::Size; ++i) {
        strLong += std::to_string(i);
    }
    EXPECT_EQ(PrintedBy([&] {
                  PutText(strLong);
                  PutLine("");
                  FlushOutput();
              }),
              strLong + "\n");
}

TEST_F(ReportTest, ARowTakesItsConversionsFromFieldAfterField) {
    constexpr ReportRow stRow{"\nID :%02X %02X %02X", {0, FieldType::U8}};
    EXPECT_EQ(PrintedBy([&] { PutRow(stReportBytes, stRow); }), "\nID :0A FF 80");
    EXPECT_EQ(PrintedBy([&] { PutRow(stReportBytes, stRow, 1); }), "\nID :FF 80 FF");
    EXPECT_EQ(PrintedBy([&] { PutRow(stReportBytes, stRow, 7); }), "\nID :FE 00 00");
    constexpr ReportRow stWide{"%02x--%02X", {0, FieldType::U16}};
    EXPECT_EQ(PrintedBy([&] { PutRow(stReportBytes, stWide, 4); }), "ffff--FE01");
    constexpr ReportRow stBothCases{"%02x--%02X.", {2, FieldType::U8}};
    EXPECT_EQ(PrintedBy([&] { PutRow(stReportBytes, stBothCases); }), "80--FF.");
}

TEST_F(ReportTest, SignedFieldsPrintSigned) {
    constexpr ReportRow astRows[] = {{"\n%d dB", {2, FieldType::I32}},
                                     {"\n%d dB", {2, FieldType::I8}},
                                     {"\n%u", {2, FieldType::U8}},
                                     {" - plain text"}};
    EXPECT_EQ(PrintedBy([&] { PutRows(stReportBytes, astRows); }),
              "\n-128 dB\n-128 dB\n128 - plain text");
}

TEST_F(ReportTest, EveryByteByTheSameText) {
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", stReportBytes.From(0, 3)); }),
              " 0x0a 0xff 0x80");
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", {}); }), "");
}

TEST_F(ReportTest, AClosingLineIsAsLongAsItsBanner) {
    EXPECT_EQ(PrintedBy([] { PutClosingLine("\n~~~ AB ~~~"); }), "\n\n~~~~~~~~~~\n");
    EXPECT_EQ(PrintedBy([] { PutClosingLine("\n\n** A **"); }), "\n\n*******\n");
}

TEST_F(ReportTest, CodesWithoutANameHaveTheOtherOne) {
    const CodeName astNames[] = {{0, "ZERO"}, {255, "LAST"}};
    EXPECT_EQ(NameOf(astNames, 255, ""), "LAST");
    EXPECT_EQ(NameOf(astNames, 1, "OTHER"), "OTHER");
    EXPECT_EQ(NameOf(astNames, 1, ""), "");
}

} // namespace

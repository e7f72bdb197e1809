// The conversions against the C library's own: what is converted, to what, and
// which characters are left.
#include "Scan.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

struct StringSource {
    std::string strText;
    size_t uNext = 0;

    CharSource Source() {
        return {[](void *pvState) {
                    auto *pst = static_cast<StringSource *>(pvState);
                    return pst->uNext < pst->strText.size()
                               ? static_cast<unsigned char>(pst->strText[pst->uNext++])
                               : -1;
                },
                [](void *pvState, int iChar) {
                    if (iChar >= 0) {
                        --static_cast<StringSource *>(pvState)->uNext;
                    }
                },
                this};
    }
};

// What came of a conversion, as text so that a difference can be read.
std::string Outcome(int iConverted, const std::string &strValue, size_t uTaken) {
    return std::to_string(iConverted) + " " + (iConverted == 1 ? strValue : "-") + " taken " +
           std::to_string(uTaken);
}

int AsScanfCounts(ScanResult eResult) {
    switch (eResult) {
    case ScanResult::Converted:
        return 1;
    case ScanResult::NotConverted:
        return 0;
    case ScanResult::Ended:
        return EOF;
    }
    return 0;
}

std::string TextOf(int32_t iValue) { return std::to_string(iValue); }
std::string TextOf(uint32_t u32Value) { return std::to_string(u32Value); }
std::string TextOf(float fValue) {
    if (std::isnan(fValue)) {
        return "nan";
    }
    uint32_t u32Bits = 0;
    std::memcpy(&u32Bits, &fValue, sizeof u32Bits);
    return std::to_string(u32Bits);
}

template <typename Value> struct Conversion {
    const char *pcFormat;
    ScanResult (*pfnOurs)(const CharSource &stSource, Value *pValue);
};

constexpr Conversion<int32_t> stDecimal{"%d", ScanDecimal};
constexpr Conversion<uint32_t> stHexadecimal{"%x", ScanHexadecimal};
constexpr Conversion<float> stFloat{"%f", ScanFloat};

template <typename Value>
std::string Ours(const Conversion<Value> &stConversion, const std::string &strText) {
    StringSource stSource{strText};
    Value NewValue{};
    const int iConverted = AsScanfCounts(stConversion.pfnOurs(stSource.Source(), &NewValue));
    return Outcome(iConverted, TextOf(NewValue), stSource.uNext);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <typename Value>
std::string Theirs(const Conversion<Value> &stConversion, const std::string &strText) {
    std::string strCopy = strText;
    FILE *pstStream = fmemopen(strCopy.data(), strCopy.size(), "r");
    Value NewValue{};
    const int iConverted = fscanf(pstStream, stConversion.pcFormat, &NewValue);
    size_t uLeft = 0;
    while (fgetc(pstStream) != EOF) {
        ++uLeft;
    }
    (void)fclose(pstStream);
    return Outcome(iConverted, TextOf(NewValue), strText.size() - uLeft);
}
#pragma GCC diagnostic pop

std::string Quoted(const std::string &strText) {
    std::string strQuoted;
    for (const char cChar : strText) {
        char acHex[8];
        (void)snprintf(acHex, sizeof acHex, "\\x%02x", static_cast<unsigned char>(cChar));
        strQuoted += cChar > ' ' && cChar < 0x7F ? std::string(1, cChar) : acHex;
    }
    return strQuoted;
}

template <typename Value>
void Compare(const Conversion<Value> &stConversion, const std::string &strText) {
    EXPECT_EQ(Ours(stConversion, strText), Theirs(stConversion, strText))
        << stConversion.pcFormat << " of \"" << Quoted(strText) << '"';
}

// A random text of pieces that numbers are made of.
std::string RandomText(std::mt19937 *pstRandom) {
    static const char *const apcPieces[] = {"0",           "1",          "7",
                                            "9",           "12",         "2670",
                                            "99999999999", "4294967296", "18446744073709551615",
                                            "a",           "F",          "g",
                                            "x",           "0x",         "0X",
                                            "e",           "E",          "p",
                                            "e5",          "E-",         "e+",
                                            ".",           "..",         "-",
                                            "+",           " ",          "\n",
                                            "\t",          "i",          "in",
                                            "inf",         "INFINITY",   "infinit",
                                            "n",           "na",         "nan",
                                            "NaN",         "(",          ")",
                                            "_",           ",",          "e999",
                                            "e-999",       "0000000000", ".5",
                                            "5.",          "\x0b",       "\xff"};
    constexpr uint32_t u32Pieces = sizeof apcPieces / sizeof *apcPieces;
    std::string strText;
    for (uint64_t u64Count = 1 + (*pstRandom)() % 6; u64Count > 0; --u64Count) {
        strText += apcPieces[(*pstRandom)() % u32Pieces];
    }
    return strText;
}

template <typename Value> void CompareRandomTexts(const Conversion<Value> &stConversion) {
    std::mt19937 stRandom(20);
    for (int i = 0; i < 50000 && !testing::Test::HasFailure(); ++i) {
        Compare(stConversion, RandomText(&stRandom));
    }
}

TEST(ScanTest, DecimalNumbersAreTakenAsTheCLibraryTakesThem) { CompareRandomTexts(stDecimal); }

TEST(ScanTest, HexadecimalNumbersAreTakenAsTheCLibraryTakesThem) {
    CompareRandomTexts(stHexadecimal);
}

TEST(ScanTest, FloatingPointNumbersAreTakenAsTheCLibraryTakesThem) { CompareRandomTexts(stFloat); }

TEST(ScanTest, NumbersOfAnyLengthHaveTheValueOfAllTheirDigits) {
    const std::string strZeros(5000, '0');
    const std::string strDigits(5000, '7');
    // Halfway between 1 and the next float: one more digit, however far behind, decides.
    const std::string strHalfway = "1.000000059604644775390625";
    for (const std::string &strText :
         {strZeros + "2.5", "2." + strZeros + "5", "0." + strZeros + "25e5001",
          strDigits + "e-4990", "-" + strDigits + "." + strDigits + "e-4999", "1" + strZeros,
          "1e" + strDigits, "1e-" + strDigits, strHalfway, strHalfway + strZeros,
          strHalfway + strZeros + "1", "0x" + strZeros + "1.8", "0x1." + strZeros + "8",
          "0x1" + strZeros + "p-20000", "0x1.000001" + strZeros + "1", "0x" + strDigits + "p-19990",
          "0x0." + strZeros + "1p20004"}) {
        Compare(stFloat, strText);
    }
    EXPECT_EQ(Ours(stFloat, strHalfway), "1 1065353216 taken 26");
    EXPECT_EQ(Ours(stFloat, strHalfway + strZeros + "1"), "1 1065353217 taken 5027");
}

TEST(ScanTest, WhatADecimalNumberLeaves) {
    EXPECT_EQ(Ours(stDecimal, "12abc"), "1 12 taken 2");
    EXPECT_EQ(Ours(stDecimal, " \n-7 "), "1 -7 taken 4");
    EXPECT_EQ(Ours(stDecimal, "3576.5"), "1 3576 taken 4");
    EXPECT_EQ(Ours(stDecimal, "abc"), "0 - taken 0");
    EXPECT_EQ(Ours(stDecimal, "--1"), "0 - taken 1");
    EXPECT_EQ(Ours(stDecimal, "2147483648"), "1 -2147483648 taken 10");
    EXPECT_EQ(Ours(stDecimal, "99999999999999999999"), "1 -1 taken 20");
    EXPECT_EQ(Ours(stDecimal, "-99999999999999999999"), "1 0 taken 21");
    EXPECT_EQ(Ours(stDecimal, " \n"), "-1 - taken 2");
}

TEST(ScanTest, WhatAHexadecimalNumberLeaves) {
    EXPECT_EQ(Ours(stHexadecimal, "0x1Fg"), "1 31 taken 4");
    EXPECT_EQ(Ours(stHexadecimal, "ffffffff"), "1 4294967295 taken 8");
    EXPECT_EQ(Ours(stHexadecimal, "-1"), "1 4294967295 taken 2");
    EXPECT_EQ(Ours(stHexadecimal, "0xg"), "1 0 taken 2");
    EXPECT_EQ(Ours(stHexadecimal, "g"), "0 - taken 0");
}

TEST(ScanTest, WhatAFloatingPointNumberLeaves) {
    EXPECT_EQ(Ours(stFloat, "2.5MHz"), "1 1075838976 taken 3");
    EXPECT_EQ(Ours(stFloat, "."), "0 - taken 1");
    EXPECT_EQ(Ours(stFloat, "infinite"), "0 - taken 8");
    EXPECT_EQ(Ours(stFloat, "nx5"), "0 - taken 2");
    EXPECT_EQ(Ours(stFloat, "nan"), "1 nan taken 3");
    EXPECT_EQ(Ours(stFloat, "0x.g"), "1 0 taken 3");
    EXPECT_EQ(Ours(stFloat, "0xg"), "0 - taken 2");
    EXPECT_EQ(Ours(stFloat, "1e"), "1 1065353216 taken 2");
}

} // namespace

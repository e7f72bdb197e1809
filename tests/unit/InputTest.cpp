#include "Input.h"

#include <string>
#include <utility>

#include "Console.h"
#include "TestConsole.h"

namespace {

class InputTest : public ConsoleTest {
  protected:
    static int32_t OptionOf(std::string_view strTyped) {
        Type(strTyped);
        return ReadOption();
    }
    static std::pair<uint32_t, uint32_t> HexOf(std::string_view strTyped) {
        Type(strTyped);
        uint32_t u32Value = 0xDEADBEEF;
        const uint32_t u32Result = ReadHexNum(&u32Value);
        return {u32Result, u32Value};
    }
    static uint32_t FrequencyOf(std::string_view strTyped) {
        Type(strTyped);
        return AskFrequency("");
    }
};

TEST_F(InputTest, AnOptionIsTheNumberThatAWordBeginsWith) {
    EXPECT_EQ(OptionOf("12\n"), 12);
    EXPECT_EQ(OptionOf("12abc\n"), 12);
    EXPECT_EQ(OptionOf("  \t\n -1\n"), -1);
    EXPECT_EQ(OptionOf("+5\n"), 5);
    EXPECT_EQ(OptionOf("007\n"), 7);
    EXPECT_EQ(OptionOf("1.9\n"), 1);
}

TEST_F(InputTest, AnOptionThatIsNoNumberIsZero) {
    EXPECT_EQ(OptionOf("abc\n"), 0);
    EXPECT_EQ(OptionOf("-\n"), 0);
    EXPECT_EQ(OptionOf("0x10\n"), 0);
    EXPECT_EQ(OptionOf("\xFF\xFE\n"), 0);
}

TEST_F(InputTest, AnOptionTakesItsWholeWordAndNoMore) {
    Type("12abc 34\n");
    EXPECT_EQ(ReadOption(), 12);
    EXPECT_EQ(ReadOption(), 34);
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(InputTest, AWordWithAZeroByteEndsWithTheInput) {
    using namespace std::literals;
    Type("12\0ab"sv);
    EndInput();
    EXPECT_EQ(ReadOption(), 12);
    EXPECT_EQ(Unread(), "");
}

TEST_F(InputTest, AZeroByteEndsTheNumberButNotTheWord) {
    Type(std::string_view("12\0"
                          "34 5\n",
                          8));
    EXPECT_EQ(ReadOption(), 12);
    EXPECT_EQ(ReadOption(), 5);
    Type(std::string_view("\0"
                          "7 6\n",
                          5));
    EXPECT_EQ(ReadOption(), 0);
    EXPECT_EQ(ReadOption(), 6);
}

TEST_F(InputTest, WordsOfAnyLength) {
    const auto Long = [](char cFill, std::string_view strTail) {
        std::string strWord(100000, cFill);
        strWord += strTail;
        return strWord;
    };
    EXPECT_EQ(OptionOf(Long('x', "\n")), 0);
    Type("7");
    EXPECT_EQ(OptionOf(Long('x', "\n")), 7);
    EXPECT_EQ(OptionOf(Long('0', "8\n")), 8);
    EXPECT_EQ(HexOf(Long('0', "ab\n")), std::pair(1U, 0xABU));
    EXPECT_EQ(OptionOf("9\n"), 9);
}

TEST_F(InputTest, AHexadecimalNumberIsAWord) {
    EXPECT_EQ(HexOf("1a\n"), std::pair(1U, 0x1AU));
    EXPECT_EQ(HexOf("0xFFFFFFFF\n"), std::pair(1U, 0xFFFFFFFFU));
    EXPECT_EQ(HexOf("12g\n"), std::pair(1U, 0x12U));
    EXPECT_EQ(HexOf("BEEF rest\n"), std::pair(1U, 0xBEEFU));
    EXPECT_EQ(Unread(), " rest\n");
}

TEST_F(InputTest, WhatIsNoHexadecimalNumberChangesNothing) {
    EXPECT_EQ(HexOf("xyz\n"), std::pair(0U, 0xDEADBEEFU));
    EXPECT_EQ(HexOf("-\n"), std::pair(0U, 0xDEADBEEFU));
    EXPECT_EQ(OptionOf("3\n"), 3);
}

TEST_F(InputTest, AWordIsCutToItsRoom) {
    Type("abcdef gh\n");
    char acWord[4];
    ReadWord(acWord, sizeof acWord);
    EXPECT_STREQ(acWord, "abc");
    ReadWord(acWord, sizeof acWord);
    EXPECT_STREQ(acWord, "gh");
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(InputTest, WhatANumberDoesNotTakeIsLeftForTheNextReader) {
    Type("12abc\n");
    int32_t iValue = 0;
    EXPECT_TRUE(ReadInteger(&iValue));
    EXPECT_EQ(iValue, 12);
    EXPECT_FALSE(ReadInteger(&iValue));
    EXPECT_EQ(iValue, 12);
    uint32_t u32Value = 0;
    EXPECT_TRUE(ReadHexInteger(&u32Value));
    EXPECT_EQ(u32Value, 0xABCU);
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(InputTest, AWordThatIsNoNumberIsDroppedBeforeTheNextQuestion) {
    Type("abc5 6\n");
    int32_t iValue = 1;
    EXPECT_FALSE(ReadIntegerOrDropWord(&iValue));
    EXPECT_EQ(iValue, 1);
    EXPECT_TRUE(ReadIntegerOrDropWord(&iValue));
    EXPECT_EQ(iValue, 6);
}

TEST_F(InputTest, FrequenciesAreMultipliedInSinglePrecision) {
    EXPECT_EQ(FrequencyOf("2587.45\n"), 2587450U);
    EXPECT_EQ(FrequencyOf("3576.5\n"), 3576500U);
    EXPECT_EQ(FrequencyOf("2670\n"), 2670000U);
    EXPECT_EQ(FrequencyOf("0\n"), 0U);
    EXPECT_EQ(FrequencyOf("4294967\n"), 4294967040U); // the nearest that single precision has
}

TEST_F(InputTest, FrequenciesThatNoNumberOfKilohertzHolds) {
    for (const char *pcTyped : {"4294968\n", "1e30\n", "inf\n", "nan\n", "-1\n", "-inf\n"}) {
        EXPECT_EQ(FrequencyOf(pcTyped), 0U) << pcTyped;
    }
    EXPECT_EQ(FrequencyOf("-0\n"), 0U);
}

TEST_F(InputTest, AFrequencyThatIsNoNumberIsLeftForTheNextReader) {
    EXPECT_EQ(FrequencyOf("abc 5\n"), 0U);
    EXPECT_EQ(Unread(), "abc 5\n");
}

TEST_F(InputTest, PromptsAreShownBeforeTheReaderWaits) {
    Type("5\n6\n7\n");
    EXPECT_EQ(AskOption("\nA : "), 5);
    EXPECT_EQ(AskInteger("\nB : "), 6U);
    EXPECT_EQ(AskFrequency("\nC : "), 7000U);
    EXPECT_EQ(Printed(), "\nA : \nB : \nC : ");
}

TEST_F(InputTest, AnIntegerThatIsNoNumberIsZero) {
    Type("x\n");
    EXPECT_EQ(AskInteger(""), 0U);
}

TEST_F(InputTest, TheEndOfTheInputEndsTheClientWithStatusZero) {
    const auto StatusOf = [](auto Read) {
        try {
            Read();
        } catch (const ClientEnd &stEnd) {
            return stEnd.iExitStatus;
        }
        return -100;
    };
    Type(" \n");
    EndInput();
    int32_t iValue = 7;
    uint32_t u32Value = 7;
    float fValue = 7;
    char acWord[4] = "ab";
    EXPECT_EQ(StatusOf([] { ReadOption(); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadHexNum(&u32Value); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadWord(acWord, 4); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadInteger(&iValue); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadIntegerOrDropWord(&iValue); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadHexInteger(&u32Value); }), 0);
    EXPECT_EQ(StatusOf([&] { ReadFloat(&fValue); }), 0);
    EXPECT_EQ(iValue, 7);
    EXPECT_EQ(u32Value, 7U);
}

TEST_F(InputTest, TheEndOfTheInputEndsAWord) {
    Type("42");
    EndInput();
    EXPECT_EQ(ReadOption(), 42);
    EXPECT_THROW(ReadOption(), ClientEnd);
}

} // namespace

#include "Bytes.h"

#include <gtest/gtest.h>

namespace {

Bytes Parsed(std::string_view strText) {
    std::string strWrong;
    return ParseBytes(strText, &strWrong).value_or(Bytes{0xDE, 0xAD});
}

std::string Wrong(std::string_view strText) {
    std::string strWrong;
    return ParseBytes(strText, &strWrong) ? "understood" : strWrong;
}

std::string Formatted(const Bytes &aucBytes) {
    return FormatBytes(aucBytes.data(), aucBytes.size());
}

TEST(BytesTest, EveryFormIsRead) {
    EXPECT_EQ(Parsed("01 ff 0aFF"), (Bytes{0x01, 0xFF, 0x0A, 0xFF}));
    EXPECT_EQ(Parsed("00*3 ab*1"), (Bytes{0, 0, 0, 0xAB}));
    EXPECT_EQ(Parsed("\"a b\" \"c\"*2"), (Bytes{'a', ' ', 'b', 'c', 'c'}));
    EXPECT_EQ(Parsed("\"*/:\""), (Bytes{'*', '/', ':'}));
    EXPECT_EQ(Parsed("2670000:4 -1:2"), (Bytes{0xB0, 0xBD, 0x28, 0x00, 0xFF, 0xFF}));
    EXPECT_EQ(Parsed("19/3 | 05"), (Bytes{0x13, 0, 0x03, 0, 0x05}));
    EXPECT_EQ(Parsed("257/1"), (Bytes{0x01, 0x01, 0x01, 0x00}));
    EXPECT_EQ(Parsed(""), Bytes{});
    EXPECT_EQ(Parsed(" | "), Bytes{});
}

TEST(BytesTest, WhatIsWrongIsNamed) {
    EXPECT_EQ(Wrong("01 xx"), "xx");
    EXPECT_EQ(Wrong("012"), "012");
    EXPECT_EQ(Wrong("01*"), "01*");
    EXPECT_EQ(Wrong("1:9"), "1:9");
    EXPECT_EQ(Wrong("70000/1"), "70000/1");
    EXPECT_EQ(Wrong("\"open"), "\"open");
    EXPECT_EQ(Wrong("*4"), "*4");
}

TEST(BytesTest, FourEqualBytesInARowAreShortened) {
    EXPECT_EQ(Formatted({1, 0, 0, 0, 2, 0, 0, 0, 0}), "01 00 00 00 02 00*4");
    EXPECT_EQ(Formatted({}), "");
    const Bytes aucMessage{1, 1, 2, 0, 0xFF};
    EXPECT_EQ(FormatMessage(aucMessage.data(), 5), "257/2 | ff");
    EXPECT_EQ(FormatMessage(aucMessage.data(), 4), "257/2");
    EXPECT_EQ(FormatMessage(aucMessage.data(), 3), "01 01 02");
}

} // namespace

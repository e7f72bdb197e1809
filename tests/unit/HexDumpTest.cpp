#include "HexDump.h"

#include <array>
#include <numeric>

#include "Console.h"
#include "TestConsole.h"

namespace {

class HexDumpTest : public ConsoleTest {};

constexpr uint8_t aucHexDumpBytes[] = {0x00, 0x09, 0x0A, 0x0F, 0x10, 0x7F, 0x80,
                                       0x99, 0xA0, 0xFE, 0xFF, 0x5A, 0xC3};
constexpr ByteView stHexDumpBytes{aucHexDumpBytes, sizeof aucHexDumpBytes};

TEST_F(HexDumpTest, EveryByteByItsText) {
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", stHexDumpBytes); }),
              " 0x00 0x09 0x0a 0x0f 0x10 0x7f 0x80 0x99 0xa0 0xfe 0xff 0x5a 0xc3");
    EXPECT_EQ(PrintedBy([] { PutEachByte("0x%02X ", stHexDumpBytes.From(9)); }),
              "0xFE 0xFF 0x5A 0xC3 ");
    EXPECT_EQ(PrintedBy([] { PutEachByte("%02x", stHexDumpBytes.From(9)); }), "feff5ac3");
    EXPECT_EQ(PrintedBy([] { PutEachByte("<<<<<<<%02x>>>>>>>", stHexDumpBytes.From(11)); }),
              "<<<<<<<5a>>>>>>><<<<<<<c3>>>>>>>");
}

TEST_F(HexDumpTest, AllValues) {
    uint8_t aucAll[256];
    std::iota(std::begin(aucAll), std::end(aucAll), uint8_t{0});
    std::string strExpected;
    for (const char cHigh : std::string("0123456789abcdef")) {
        for (const char cLow : std::string("0123456789abcdef")) {
            strExpected += std::string(" 0x") + cHigh + cLow;
        }
    }
    EXPECT_EQ(PrintedBy([&] { PutEachByte(" 0x%02x", {aucAll, 256}); }), strExpected);
}

TEST_F(HexDumpTest, NothingPrintsNothing) {
    EXPECT_EQ(PrintedBy([] { PutEachByte(" 0x%02x", {}); }), "");
    EXPECT_EQ(PrintedBy([] { PutHexLines("\n %08x : ", 0, "%02x ", {}); }), "");
}

TEST_F(HexDumpTest, WhatStoodBeforeStays) {
    EXPECT_EQ(PrintedBy([] {
                  PutText("before:");
                  PutEachByte(" %02x", stHexDumpBytes.From(0, 2));
                  PutHexLines("\r\n  %08x : ", 8, "%02x ", stHexDumpBytes.From(2, 1));
              }),
              "before: 00 09\r\n  00000008 : 0a ");
}

TEST_F(HexDumpTest, ALineIsWrittenWithoutTheConsole) {
    char acLine[uMostHexLine];
    const char *pcEnd =
        WriteHexLine(acLine, "\r\n  %08x : ", 8, "%02x ", stHexDumpBytes.From(2, 1));
    EXPECT_EQ(std::string(acLine, static_cast<size_t>(pcEnd - acLine)), "\r\n  00000008 : 0a ");
}

TEST_F(HexDumpTest, ALineOfTheLongestTextsHasRoom) {
    std::array<char, uMostHexLine + 100> acLine{};
    acLine.fill('#');
    const char *pcEnd = WriteHexLine(acLine.data(), "<<<<%08x>>>>", 8, "<<<<<<<%02x>>>>>>>",
                                     {aucHexDumpBytes, u32BytesALine});
    EXPECT_EQ(std::string(acLine.data(), static_cast<size_t>(pcEnd - acLine.data())),
              "<<<<00000008>>>>"
              "<<<<<<<00>>>>>>><<<<<<<09>>>>>>><<<<<<<0a>>>>>>><<<<<<<0f>>>>>>>"
              "<<<<<<<10>>>>>>><<<<<<<7f>>>>>>><<<<<<<80>>>>>>><<<<<<<99>>>>>>>");
    EXPECT_EQ(std::string(acLine.data() + uMostHexLine, 100), std::string(100, '#'));
}

TEST_F(HexDumpTest, EightBytesALineBehindTheirAddress) {
    EXPECT_EQ(PrintedBy([] { PutHexLines("\n %08x : ", 0, "%02x ", stHexDumpBytes); }),
              "\n 00000000 : 00 09 0a 0f 10 7f 80 99 "
              "\n 00000008 : a0 fe ff 5a c3 ");
    EXPECT_EQ(PrintedBy([] {
                  PutHexLines("\n 0x%08X :", 0xABCDEF12, " %02x", stHexDumpBytes.From(0, 8));
              }),
              "\n 0xABCDEF12 : 00 09 0a 0f 10 7f 80 99");
}

TEST_F(HexDumpTest, AddressesWrapAround) {
    EXPECT_EQ(PrintedBy([] { PutHexLines("\n %08x:", 0xFFFFFFF8, "%02x", stHexDumpBytes); }),
              "\n fffffff8:00090a0f107f8099"
              "\n 00000000:a0feff5ac3");
}

} // namespace

// The OMA-DM tree, the vendor-specific region, authentication: what the modem keeps
// and gives back.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "ModemBench.h"

namespace {

struct Answered {
    int32_t iResult;
    WiMAXMessage stMessage;
    ByteView Payload() const { return {stMessage.aucData, WIMAX_DATA_SIZE}; }
};

// Sends a request that is answered inside the send.
Answered Ask(ModemBench &stBench, uint16_t u16Type, uint16_t u16SubType,
             const std::string &strPayload) {
    Answered stAnswered{};
    const std::vector<uint8_t> aucPayload = BytesOfHex(strPayload);
    Put(BytesOf(stAnswered.stMessage), MessageHeader::usType, u16Type);
    Put(BytesOf(stAnswered.stMessage), MessageHeader::usSubType, u16SubType);
    std::copy(aucPayload.begin(), aucPayload.end(), stAnswered.stMessage.aucData);
    stAnswered.iResult = stBench.TheModem().Send(reinterpret_cast<uint8_t *>(&stAnswered.stMessage),
                                                 static_cast<uint32_t>(aucPayload.size()) + 4);
    return stAnswered;
}

std::string Hex(const Answered &stAnswered, uint32_t u32Offset, uint32_t u32Count) {
    const ByteView stView = stAnswered.Payload().From(u32Offset, u32Count);
    return HexOf({stView.pucData, stView.pucData + stView.u32Length});
}

const std::string strValuePath = "08 01 00*6 01 26 00*6 01 27 00*6 00*56 03 00 00 00";

std::string Size(const std::string &strPath) { return strPath + " 00 00 00 00 00"; }

std::string Access(const std::string &strSize, const std::string &strPath,
                   const std::string &strValue) {
    return strSize + " 00 " + strPath + " " + strValue + " 00";
}

TEST(OMADMTree, TellsASizeAndKeepsAValue) {
    ModemBench stBench("");
    const Answered stSize = Ask(stBench, 33, 4, Size(strValuePath));
    EXPECT_EQ(stSize.iResult, 0);
    EXPECT_EQ(Hex(stSize, 85, 4), "04 00 00 00");
    EXPECT_EQ(Ask(stBench, 33, 2, Access("04 00 00 00", strValuePath, "05 00 00 00")).iResult, 0);
    const Answered stValue = Ask(stBench, 33, 3, Access("04 00 00 00", strValuePath, "00*4"));
    EXPECT_EQ(stValue.iResult, 0);
    EXPECT_EQ(Hex(stValue, 0, 4), "04 00 00 00");
    EXPECT_EQ(Hex(stValue, 89, 4), "05 00 00 00");
}

TEST(OMADMTree, RefusesSizesThatTheMessageDoesNotCarry) {
    ModemBench stBench("");
    // Sixteen bytes are claimed, four carried.
    EXPECT_EQ(Ask(stBench, 33, 2, Access("10 00 00 00", strValuePath, "00*4")).iResult, -10);
    EXPECT_EQ(Ask(stBench, 33, 3, Access("10 00 00 00", strValuePath, "00*4")).iResult, -10);
    EXPECT_EQ(Ask(stBench, 33, 3, Access("FF FF FF FF", strValuePath, "00*4")).iResult, -10);
    // Fewer than the node has.
    EXPECT_EQ(Ask(stBench, 33, 3, Access("02 00 00 00", strValuePath, "00*2")).iResult, -10);
}

TEST(OMADMTree, KnowsWhereArraysEnd) {
    ModemBench stBench("");
    const std::string strSecond = "04 01 00*6 08 03 00 00 01 00 00 00 00*64 02 00 00 00";
    const std::string strThird = "04 01 00*6 08 03 00 00 02 00 00 00 00*64 02 00 00 00";
    EXPECT_EQ(Hex(Ask(stBench, 33, 3, Access("04 00 00 00", strSecond, "00*4")), 89, 4),
              "01 01 02 03");
    EXPECT_EQ(Ask(stBench, 33, 4, Size(strThird)).iResult, -8);
    EXPECT_EQ(Ask(stBench, 33, 4, Size("00*80 0B 00 00 00")).iResult, -8);
    EXPECT_EQ(Ask(stBench, 33, 4, Size("00*80 FF FF FF FF")).iResult, -8);
}

TEST(OMADMTree, ReadOnlyNodesRefuseValues) {
    ModemBench stBench("");
    const std::string strAddress = "06 01 00*6 01 0A 00*6 06 0B 00*6 00*56 03 00 00 00";
    EXPECT_EQ(Ask(stBench, 33, 2, Access("06 00 00 00", strAddress, "00*6")).iResult, -9);
    EXPECT_EQ(Hex(Ask(stBench, 33, 3, Access("06 00 00 00", strAddress, "00*6")), 89, 6),
              "02 00 00 20 00 01");
}

TEST(OMADMTree, ChecksTheInterfaceVersion) {
    ModemBench stBench("[oma-dm]\nmajor-version = 3\nminor-version = 1\n");
    const Answered stSame = Ask(stBench, 33, 1, "03 00 00 00 00 00 00 00");
    EXPECT_EQ(stSame.iResult, 0);
    EXPECT_EQ(Hex(stSame, 0, 8), "03 00 00 00 01 00 00 00");
    EXPECT_EQ(Ask(stBench, 33, 1, "03 00 00 00 02 00 00 00").iResult, -11);
    EXPECT_EQ(Ask(stBench, 33, 1, "02 00 00 00 00 00 00 00").iResult, -11);
    EXPECT_EQ(Ask(stBench, 33, 1, "03 00 00 00").iResult, -4);
}

TEST(OMADMTree, ATreeUpdateReadsTheImage) {
    ModemBench stBench("");
    const std::string strName = testing::TempDir() + "tree.bin";
    std::vector<uint8_t> aucName(strName.begin(), strName.end());
    aucName.resize(128);
    EXPECT_EQ(Ask(stBench, 33, 2, Access("04 00 00 00", strValuePath, "05 00 00 00")).iResult, 0);
    (void)std::remove(strName.c_str());
    EXPECT_EQ(Ask(stBench, 33, 5, HexOf(aucName)).iResult, -12);
    std::string strImage(13544, '\0');
    strImage[0] = 1;
    std::memcpy(&strImage[4], "\xE8\x34\x00\x00", 4);
    std::ofstream(strName, std::ios::binary) << strImage.substr(1);
    EXPECT_EQ(Ask(stBench, 33, 5, HexOf(aucName)).iResult, -12);
    std::ofstream(strName, std::ios::binary) << strImage;
    EXPECT_EQ(Ask(stBench, 33, 5, HexOf(aucName)).iResult, 0);
    (void)std::remove(strName.c_str());
    // The value is what the tree was built with again.
    EXPECT_EQ(Hex(Ask(stBench, 33, 3, Access("04 00 00 00", strValuePath, "00*4")), 89, 4),
              "03 00 00 00");
}

TEST(VendorRegion, HoldsTheIMEIThatTheBlockHolds) {
    ModemBench stBench("[vendor-region]\nimei = \"490154203237518\"\n");
    EXPECT_EQ(stBench.Send(10, 1, "D9 00 08 00 00*9"), 0);
    EXPECT_EQ(stBench.Send(10, 4), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(),
              Told({"10/1: D9 00 08 00 94 10 45 02 23 73 15 F8", "10/4: 00 02 00 00"}));
    const Answered stBlock = Ask(stBench, 34, 4, "00*28");
    EXPECT_EQ(stBlock.iResult, 0);
    EXPECT_EQ(Hex(stBlock, 4, 24), "94 10 45 02 23 73 15 F8 34 39 30 31 35 34 32 30 33 32 33 37 "
                                   "35 31 38 00");
}

TEST(VendorRegion, WritesOnlyWhereTheHostMay) {
    ModemBench stBench("");
    // The lock with one byte, as the message's length has it, then with both.
    EXPECT_EQ(stBench.Send(10, 3, "E1 00 02 00 A5"), 0);
    EXPECT_EQ(stBench.Send(10, 3, "E1 00 02 00 A5 5A 00"), 0);
    EXPECT_EQ(stBench.Send(10, 3, "D9 00 02 00 A5 5A 00"), 0);
    EXPECT_EQ(stBench.Send(10, 3, "FF 01 02 00 A5 5A 00"), 0);
    EXPECT_EQ(stBench.Send(10, 1, "E1 00 02 00 00"), 0);
    EXPECT_EQ(stBench.Send(10, 1, "FF 01 FF FF 00"), 0);
    EXPECT_EQ(stBench.Send(10, 1, "00 02 01 00 00"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(),
              Told({"10/3: E1 00 02 00 A5 00", "10/3: E1 00 02 00 A5 5A", "10/3: D9 00 00 00",
                    "10/3: FF 01 00 00", "10/1: E1 00 02 00 A5 5A", "10/1: FF 01 01 00 00",
                    "10/1: 00 02 00 00"}));
}

TEST(VendorRegion, AStateFileKeepsWhatTheHostWrote) {
    const std::string strFile = testing::TempDir() + "vendor-state";
    (void)std::remove(strFile.c_str());
    const std::string strScenario = "[state]\nfile = \"" + strFile + "\"\n";
    {
        ModemBench stBench(strScenario);
        EXPECT_EQ(stBench.Send(10, 3, "E1 00 02 00 12 34 00"), 0);
    }
    ModemBench stBench(strScenario);
    EXPECT_EQ(stBench.Send(10, 1, "E1 00 02 00 00"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({"10/1: E1 00 02 00 12 34"}));
    (void)std::remove(strFile.c_str());
}

TEST(Authentication, ParametersAreKeptAndReadBack) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(4, 4, "00 D7 00 11*23 22*192 00 00"), 0);
    EXPECT_EQ(stBench.Send(4, 3, "00"), 0);
    stBench.RunUntil(1);
    const std::vector<std::string> astrTexts = stBench.Messages();
    ASSERT_EQ(astrTexts.size(), 1U);
    EXPECT_EQ(astrTexts[0].substr(0, 20), "4/5: 00 03 01 00 00 ");
    EXPECT_TRUE(astrTexts[0].ends_with(" 11*23 22*192")) << astrTexts[0];
    EXPECT_EQ(stBench.Send(4, 3, "02"), -6);
    EXPECT_EQ(stBench.Send(4, 4, "01 D7 00 00*217"), -6);
}

TEST(Authentication, TheSIMAnswersWithTheIMEI) {
    ModemBench stBench("[vendor-region]\nimei = \"490154203237518\"\n");
    EXPECT_EQ(stBench.Send(4, 3, "01"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({"4/5: 01 03 01 00 00 94 10 45 02 23 73 15 F8"}));
}

TEST(Authentication, EAPAsksForTheIdentityAndCompletes) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(4, 1), 0);
    EXPECT_EQ(stBench.Send(4, 7, "00 00"), 0);
    EXPECT_EQ(stBench.Send(4, 1), 0);
    EXPECT_EQ(stBench.Send(4, 8, "00 40 00 00*61"), 0);
    EXPECT_EQ(stBench.Send(4, 7, "FF FF"), -6);
    EXPECT_EQ(stBench.Send(4, 8, "00 41 00 00*61"), -6);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({"4/2: 00 00 00 00", "4/6: 05 00 01 01 00 05 01",
                                        "4/2: 01 00 00 00", "4/2: 02 00 00 00"}));
}

TEST(Authentication, EncryptionResultsHaveTheRightLength) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(4, 9, "11 00 00 00 00*4 00*32 AA"), 0);
    EXPECT_EQ(stBench.Send(4, 9, "75 00 00 00 01 00 00 00 00*32 AA"), 0);
    EXPECT_EQ(stBench.Send(4, 9, "76 00 00 00 01 00 00 00 00*32 AA"), 0);
    EXPECT_EQ(stBench.Send(4, 9, "FF FF FF FF 00*4 00*32 AA"), -6);
    EXPECT_EQ(stBench.Send(4, 9, "01 00 00 00 02 00 00 00 00*32 AA"), -6);
    stBench.RunUntil(1);
    const std::vector<std::string> astrTexts = stBench.Messages();
    ASSERT_EQ(astrTexts.size(), 3U);
    const auto Begins = [&](size_t i, const std::string &strBegin, size_t uLength) {
        const std::vector<uint8_t> aucAnswer = BytesOfHex(astrTexts[i].substr(6));
        EXPECT_EQ(HexOf({aucAnswer.begin(), aucAnswer.begin() + 8}), strBegin);
        EXPECT_EQ(aucAnswer.size(), uLength);
    };
    // The byte behind the result comes too.
    Begins(0, "20 00*7", 40 + 32 + 1);
    Begins(1, "80 00 00 00 01 00 00 00", 40 + 128 + 1);
    Begins(2, "00 01 00 00 01 00 00 00", 40 + 256 + 1);
}

} // namespace

// Loggers, log data, GPIO and LEDs, device memory.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// Payloads of the messages that begin with this, one behind the other from uSkip on.
std::vector<uint8_t> PayloadsOf(const std::vector<std::string> &astrMessages,
                                const std::string &strHead, size_t uSkip) {
    std::vector<uint8_t> aucAll;
    for (const std::string &strMessage : astrMessages) {
        if (strMessage.rfind(strHead, 0) == 0) {
            const std::vector<uint8_t> aucBytes = BytesOfHex(strMessage.substr(strHead.size()));
            aucAll.insert(aucAll.end(), aucBytes.begin() + static_cast<int64_t>(uSkip),
                          aucBytes.end());
        }
    }
    return aucAll;
}

std::string Part(const std::vector<uint8_t> &aucBytes, size_t uFrom, size_t uCount) {
    return HexOf({aucBytes.begin() + static_cast<int64_t>(uFrom),
                  aucBytes.begin() + static_cast<int64_t>(uFrom + uCount)});
}

TEST(Loggers, AreQuietUntilTheyAreStartedAndAfterTheyAreStopped) {
    ModemBench stBench(strLinkUp);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.Messages(), Told({}));
    EXPECT_EQ(stBench.Send(8, 8), 0);
    EXPECT_EQ(stBench.Send(8, 8), 0);
    stBench.RunUntil(6.05);
    EXPECT_EQ(stBench.Messages().size(), 1U);
    EXPECT_EQ(stBench.Send(9, 8), 0);
    EXPECT_EQ(stBench.Send(9, 8), 0);
    stBench.RunUntil(20);
    // What was left.
    EXPECT_EQ(stBench.Messages(), Told({"8/8: 08 00 26 00 00 00 26 00 00 00"}));
}

TEST(Loggers, ThereAreEightWithoutPayload) {
    ModemBench stBench(strLinkUp);
    for (const uint32_t u32Type : {8U, 9U}) {
        EXPECT_EQ(stBench.Send(u32Type, 0), -5);
        EXPECT_EQ(stBench.Send(u32Type, 9), -5);
        for (uint32_t u32Kind = 1; u32Kind <= 8; ++u32Kind) {
            EXPECT_EQ(stBench.Send(u32Type, u32Kind, "00"), -4);
            EXPECT_EQ(stBench.Send(u32Type, u32Kind), 0);
        }
    }
}

TEST(Loggers, ChannelQualityGoesOutEveryEightFrames) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(8, 8), 0);
    stBench.RunUntil(0.99);
    EXPECT_EQ(stBench.Send(9, 8), 0);
    // 24 times 28 dB, which is 38.
    const std::vector<std::string> astrMessages = stBench.Messages();
    ASSERT_EQ(astrMessages.size(), 1U);
    EXPECT_EQ(astrMessages[0].substr(0, 10), "8/8: 60 00");
    EXPECT_EQ(Part(PayloadsOf(astrMessages, "8/8:", 2), 0, 8), "26 00 00 00 26 00 00 00");
}

TEST(Loggers, PacketsLeavePaddingInTheirAllocations) {
    ModemBench stBench(strLinkUp + pcTwoFlows);
    EXPECT_EQ(stBench.Send(8, 4), 0);
    stBench.RunUntil(1.5);
    EXPECT_EQ(stBench.Send(9, 4), 0);
    const std::vector<uint8_t> aucLog = PayloadsOf(stBench.Messages(), "8/4:", 2);
    // Ten packets a second of 600 bytes: 610 with header and checksum, in 612 bytes. The 15th has
    // come, and its grant has not.
    ASSERT_EQ(aucLog.size(), 14U * 32);
    EXPECT_EQ(Part(aucLog, 0, 4), "62 02 64 02");
    EXPECT_EQ(Part(aucLog, 16, 12), "02 00 64 02 DD CC BB AA 00 00 00 00");
    // In the same frame.
    EXPECT_EQ(Part(aucLog, 12, 4), Part(aucLog, 28, 4));
}

TEST(Loggers, RangingCodesAreThoseThatTheStationAnswers) {
    ModemBench stBench(strStations + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(8, 1), 0);
    EXPECT_EQ(stBench.Send(8, 5), 0);
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 03 00 00 00 00*52"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(1.9);
    EXPECT_EQ(stBench.Send(9, 1), 0);
    const std::vector<std::string> astrMessages = stBench.Messages();
    const std::vector<uint8_t> aucLog = PayloadsOf(astrMessages, "8/1:", 2);
    ASSERT_EQ(aucLog.size(), 2U * 16);
    size_t uAnswers = 0;
    for (const std::string &strMessage : astrMessages) {
        const std::vector<uint8_t> aucRecord = strMessage.rfind("21/1:", 0) == 0
                                                   ? BytesOfHex(strMessage.substr(5))
                                                   : std::vector<uint8_t>();
        // A RNG-RSP that ends with the code's attributes: type 150, 4 bytes.
        const size_t uEnd = aucRecord.size();
        if (uEnd < 24 || aucRecord[5] != 5 || aucRecord[uEnd - 6] != 150) {
            continue;
        }
        const uint8_t *pucEntry = aucLog.data() + 16 * uAnswers++;
        EXPECT_EQ(aucRecord[uEnd - 1], pucEntry[0]);                                  // frame
        EXPECT_EQ(aucRecord[uEnd - 2], pucEntry[4]);                                  // code
        EXPECT_EQ(aucRecord[uEnd - 3] & 0x3F, pucEntry[8]);                           // sub-channel
        EXPECT_EQ(aucRecord[uEnd - 4] << 2 | aucRecord[uEnd - 3] >> 6, pucEntry[12]); // symbol
        EXPECT_LT(pucEntry[4], 64); // of the codes for initial ranging
    }
    EXPECT_EQ(uAnswers, 2U);
}

TEST(Loggers, ConnectionsAreThereFromTheStart) {
    ModemBench stBench(strLinkUp + "[[service-flow]]\ndirection = \"uplink\"\ntype = \"BE\"\n");
    EXPECT_EQ(stBench.Send(8, 7), 0);
    EXPECT_EQ(stBench.Send(9, 7), 0);
    const std::vector<uint8_t> aucLog = PayloadsOf(stBench.Messages(), "8/7:", 2);
    // Basic, primary and the flow's: VCID, CID, ARQ, direction.
    ASSERT_EQ(aucLog.size(), 3U * 8);
    EXPECT_EQ(Part(aucLog, 0, 2), "01 00");
    EXPECT_EQ(Part(aucLog, 4, 6), "00 00 00 00 02 00");
    EXPECT_EQ(Part(aucLog, 16, 8), "03 00 00 10 00 00 01 00");
    const uint32_t u32Basic = aucLog[2] | aucLog[3] << 8;
    const uint32_t u32Primary = aucLog[10] | aucLog[11] << 8;
    EXPECT_EQ(u32Primary, u32Basic + 511);
}

TEST(Loggers, PowerFollowsTheStationAndThePathLoss) {
    ModemBench stBench(strStations + "[signalling]\nranging-period = 1\n" + pcLinkUp +
                       "[[event]]\nat = 3.5\nkind = \"fade\"\n"
                       "station = \"00 12 0A 01 02 03\"\nby = 4\n");
    EXPECT_EQ(stBench.Send(8, 6), 0);
    stBench.RunUntil(6);
    EXPECT_EQ(stBench.Send(9, 6), 0);
    // The station is heard 4 dB weaker: 16 quarters more, at the ranging behind it.
    const std::vector<uint8_t> aucLog = PayloadsOf(stBench.Messages(), "8/6:", 2);
    ASSERT_EQ(aucLog.size(), 16U);
    EXPECT_EQ(Part(aucLog, 0, 12), "10 00*7 20 03 00 00");
}

TEST(Loggers, PowerStaysWithinItsLimitsForHours) {
    // 84 dB weaker than the station sends: 20 dBm, and 3 more are possible.
    ModemBench stBench(strStations + pcLinkUp +
                       "[handover]\nlook-period = 0\n"
                       "[[event]]\nat = 0\nkind = \"fade\"\n"
                       "station = \"00 12 0A 01 02 03\"\nby = 9\n"
                       "[signalling]\nranging-period = 0.1\n");
    EXPECT_EQ(stBench.Send(8, 5), 0);
    int32_t iHighest = -1000;
    int32_t iLowest = 1000;
    for (int iSecond = 1; iSecond <= 600; ++iSecond) {
        stBench.RunUntil(iSecond);
        uint8_t u8Power = 0;
        EXPECT_EQ(stBench.TheModem().ReadMemory(0x0F00001C, {&u8Power, 1}), 0);
        iHighest = std::max<int32_t>(iHighest, static_cast<int8_t>(u8Power));
        iLowest = std::min<int32_t>(iLowest, static_cast<int8_t>(u8Power));
    }
    // Quarters: 23 dBm at most, and 8 dB below the modem's own measurement at least.
    EXPECT_LE(iHighest, 92);
    EXPECT_GE(iLowest, 48);
    EXPECT_GT(iHighest, iLowest);
}

TEST(LogData, PHYBlocksSayHowTheStationIsReceived) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(31, 2), 0);
    stBench.RunUntil(2.01);
    EXPECT_EQ(stBench.Send(31, 3), 0);
    stBench.RunUntil(5);
    const std::vector<std::string> astrMessages = stBench.Messages();
    ASSERT_EQ(astrMessages.size(), 2U);
    const std::vector<uint8_t> aucBlock = BytesOfHex(astrMessages[1].substr(5));
    ASSERT_EQ(aucBlock.size(), 200U);
    EXPECT_EQ(Part(aucBlock, 0, 4), "01 00 00 00");  // the second block
    EXPECT_EQ(Part(aucBlock, 12, 4), "18 FF 70 00"); // -58 dBm, 28 dB, in quarters
}

TEST(LogData, ThereIsNothingToReceiveWithoutAStation) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(31, 2), 0);
    EXPECT_EQ(stBench.Send(31, 1), -5);
    EXPECT_EQ(stBench.Send(31, 2, "00"), -4);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(LogData, MACBlocksListTheManagementMessages) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(27, 2), 0);
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.RunUntil(1.01);
    EXPECT_EQ(stBench.Send(27, 3), 0);
    stBench.RunUntil(5);
    const std::vector<uint8_t> aucBlock = PayloadsOf(stBench.Messages(), "27/2:", 0);
    ASSERT_EQ(aucBlock.size(), 1500U);
    // Frame 200; DREG-REQ up in frame 0, DREG-CMD down in frame 1.
    EXPECT_EQ(Part(aucBlock, 0, 14), "00 00 00 00 C8 00*7 31 01");
    EXPECT_EQ(Part(aucBlock, 20, 6), "01 00 00 00 1D 00");
    EXPECT_EQ(Part(aucBlock, 32, 1468), "00*1468");
}

TEST(GPIO, BitsAreKept) {
    ModemBench stBench("[gpio]\nset = [16]\n");
    EXPECT_EQ(stBench.Send(22, 1, "03 00 00 00 01 00 00 00"), 0);
    for (const char *pcBit : {"02", "03", "10"}) {
        EXPECT_EQ(stBench.Send(22, 2, std::string(pcBit) + " 00 00 00 FF 00 00 00"), 0);
    }
    EXPECT_EQ(stBench.Send(22, 1, "10 00 00 00 00 00 00 00"), 0);
    EXPECT_EQ(stBench.Send(22, 2, "10 00 00 00 FF 00 00 00"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"22/2: 02 00 00 00 00 00 00 00", "22/2: 03 00 00 00 01 00 00 00",
                    "22/2: 10 00 00 00 01 00 00 00", "22/2: 10 00 00 00 00 00 00 00"}));
}

TEST(GPIO, BitsThatAreNotThereAreRefused) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(22, 1, "11 00 00 00 01 00 00 00"), -6);
    EXPECT_EQ(stBench.Send(22, 1, "00 00 00 00 02 00 00 00"), -6);
    EXPECT_EQ(stBench.Send(22, 2, "FF FF FF FF FF 00 00 00"), -6);
    EXPECT_EQ(stBench.Send(22, 2, "00*7"), -4);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(GPIO, LEDSettingsAreReadBack) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(22, 4), 0);
    // Red untouched, blue in state 7 and blinking in state 2, green reversed.
    EXPECT_EQ(stBench.Send(22, 3, "00 00 00 00 7F 7F 7F 02 40 02 7F 7F 7F 84 01 80"), 0);
    EXPECT_EQ(stBench.Send(22, 4), 0);
    EXPECT_EQ(stBench.Messages(), Told({"22/4: 01 01 02 02 40 A0 03 08 00 04 04 10",
                                        "22/3:", "22/4: 01 01 02 02 40 02 03 08 00 84 01 80"}));
    // The third place is the yellow LED's.
    EXPECT_EQ(stBench.Send(22, 3, "00 00 00 00 01 00 00 02 00 00 04 00 00 04 00 00"), -6);
    EXPECT_EQ(stBench.Send(22, 4), 0);
    EXPECT_EQ(stBench.Messages(), Told({"22/4: 01 01 02 02 40 02 03 08 00 84 01 80"}));
}

TEST(GPIO, SavedLEDSettingsOutliveARestart) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(22, 3, "01 00 00 00 01 11 22 7F 7F 7F 7F 7F 7F 7F 7F 7F"), 0);
    EXPECT_EQ(stBench.Send(22, 3, "00 00 00 00 7F 7F 7F 02 33 44 7F 7F 7F 7F 7F 7F"), 0);
    stBench.TheModem().Restart();
    EXPECT_EQ(stBench.Send(22, 4), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"22/3:", "22/3:", "22/4: 01 11 22 02 40 A0 03 08 00 04 04 10"}));
}

class DeviceMemory : public testing::Test {
  protected:
    // The bytes that were read, or the result.
    std::string Read(uint32_t u32Address, uint32_t u32Count) {
        std::vector<uint8_t> aucBytes(u32Count + 1, 0xEE);
        const int32_t iResult =
            m_stBench.TheModem().ReadMemory(u32Address, {aucBytes.data(), u32Count});
        EXPECT_EQ(aucBytes.back(), 0xEE);
        aucBytes.pop_back();
        return iResult == 0 ? HexOf(aucBytes) : std::to_string(iResult);
    }
    int32_t Write(uint32_t u32Address, const std::string &strBytes) {
        const std::vector<uint8_t> aucBytes = BytesOfHex(strBytes);
        return m_stBench.TheModem().WriteMemory(
            u32Address, {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())});
    }

    ModemBench m_stBench{strLinkUp + "[memory]\nchip-id = 0x12345678\nscratch-size = 16\n"};
};

TEST_F(DeviceMemory, RegistersSayWhatTheModemIsAndDoes) {
    EXPECT_EQ(Read(0x0F000000, 4), "78 56 34 12");
    EXPECT_EQ(Read(0x0F000002, 3), "34 12 02");
    m_stBench.RunUntil(1);
    // Frame 200, link state 4, preamble 3.
    EXPECT_EQ(Read(0x0F000010, 12), "C8 00 00 00 04 00 00 00 03 00 00 00");
    EXPECT_EQ(Write(0x0F000000, "00 00 00 00"), -7);
    EXPECT_EQ(Read(0x0F000000, 4), "78 56 34 12");
}

TEST(Registers, SayWhatTheStationInformationSays) {
    const auto Words = [](const std::string &strScenario) {
        ModemBench stBench(strScenario);
        std::vector<uint8_t> aucWords(12);
        EXPECT_EQ(stBench.TheModem().ReadMemory(0x0F000000, {aucWords.data(), 12}), 0);
        return HexOf(aucWords);
    };
    // Chip 20000, revision 102, firmware 3.1.12.
    EXPECT_EQ(Words(""), "00 00 02 00 02 01 00 00 0C 00 01 03");
    EXPECT_EQ(Words("[station-information]\nbaseband-chip = 66\nfirmware-version = [4, 2, 300]\n"),
              "42 00 00 00 02 01 00 00 2C 01 02 04");
    EXPECT_EQ(Words("[station-information]\nbaseband-chip = 66\n[memory]\nchip-id = 67\n"
                    "firmware = 1\n"),
              "43 00 00 00 02 01 00 00 01 00 00 00");
}

TEST_F(DeviceMemory, ScratchIsKeptUntilARestart) {
    EXPECT_EQ(Read(0x0F010000, 16), "00*16");
    EXPECT_EQ(Write(0x0F010003, "01 02 03 04"), 0);
    EXPECT_EQ(Read(0x0F010000, 8), "00 00 00 01 02 03 04 00");
    m_stBench.TheModem().Restart();
    EXPECT_EQ(Read(0x0F010000, 16), "00*16");
}

TEST_F(DeviceMemory, WhatIsNotWhollyInsideIsRefused) {
    EXPECT_NE(Read(0x0F00000D, 0xF3), "-7");
    EXPECT_EQ(Read(0x0F00000D, 0xF4), "-7");
    EXPECT_EQ(Read(0x0F00FFFF, 4), "-7");
    EXPECT_EQ(Read(0x0F01000D, 4), "-7");
    EXPECT_EQ(Write(0x0F01000D, "00*4"), -7);
    EXPECT_EQ(Write(0x0F01000C, "00*4"), 0);
    EXPECT_EQ(Read(0, 4), "-7");
    EXPECT_EQ(Read(0xFFFFFFFF, 4), "-7");
    EXPECT_EQ(Read(0x0F000000, 0), "");
    EXPECT_EQ(Read(0, 0), "-7");
}

} // namespace

// Antenna configuration, scans and selection.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// Nothing varies: antenna 1 is at -58 dBm and 28 dB, antenna 2 at -62 dBm and 24 dB.
const std::string strSteady = strLinkUp + "[antenna]\nvariation = 0\n";

// A scan without a choice; patterns 1, 2 and 3, or none.
const std::string strThreePatterns = " 03 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00*4";
const std::string strNoPattern = " 00 00 00 00 00*16";
const std::string strScan = "01 00 00 00";
const std::string strEndless = "01 00 00 80";
const std::string strAbort = "00*44";
const std::string strRest = " 00*12";

std::string ScanError(const std::string &strCode) { return "28/2: 00*696 " + strCode + " 00*3"; }

std::string ConfigAnswer(const std::string &strStatus) { return strStatus + " 00 00 00"; }

TEST(Antennas, TheConfigurationIsReadAndKept) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    const std::string strNew = "02 00 00 00 01 00 00 00 0F 00 00 00 00 00 00 00 FF*8 03 00 00 00"
                               " 01 00 00 00 00 00 00 00";
    EXPECT_EQ(stBench.Send(28, 1, strNew), 0);
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    EXPECT_EQ(
        stBench.Messages(),
        Told({"28/1: 03 00 00 00 01 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00 FF*4"
              " 07 00 00 00 00*8",
              "28/1: " + strNew,
              "28/1: 02 00 00 00 01 00 00 00 0F 00 00 00 00 00 00 00 FF*8 03 00 00 00 00*8"}));
}

TEST(Antennas, TheScenarioHasThePins) {
    ModemBench stBench("[antenna]\nrx-gpios = [9]\ntx-gpios = []\n");
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"28/1: 01 00 00 00 00 00 00 00 09 00 00 00 FF*16 00*8"}));
    for (const char *pcPins : {"rx-gpios = [1, 2, 3, 4, 5]", "tx-gpios = [1, 2]", "rx-gpios = [16]",
                               "rx-gpios = [3, 3]", "rx-gpios = [7]"}) {
        EXPECT_THROW(ModemBench("[antenna]\n" + std::string(pcPins) + "\n"), ScenarioError)
            << pcPins;
    }
}

TEST(Antennas, BadPinsAreRefusedAndTheConfigurationStays) {
    struct {
        const char *pcRecord;
        const char *pcStatus;
    } const astCases[] = {
        {"05 00 00 00 00*4 00*16 00*4 01 00 00 00", "01"},             // five receive pins
        {"FF FF FF FF 00*4 FF*16 FF*4 01 00 00 00", "01"},             // minus one
        {"00*4 02 00 00 00 FF*16 FF*4 01 00 00 00", "01"},             // two transmit pins
        {"01 00 00 00 00*4 10 00 00 00 FF*12 FF*4 01 00 00 00", "02"}, // pin 16
        {"02 00 00 00 00*4 03 00 00 00 03 00 00 00 FF*8 FF*4 01 00 00 00", "03"},
        {"01 00 00 00 01 00 00 00 03 00 00 00 FF*12 03 00 00 00 01 00 00 00", "03"},
    };
    ModemBench stBench("");
    for (const auto &stCase : astCases) {
        EXPECT_EQ(stBench.Send(28, 1, std::string(stCase.pcRecord) + " 00*4"), 0);
        EXPECT_EQ(stBench.Messages(), Told({"28/1: " + std::string(stCase.pcRecord) + " " +
                                            ConfigAnswer(stCase.pcStatus)}))
            << stCase.pcRecord;
    }
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"28/1: 03 00 00 00 01 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00 FF*4"
                    " 07 00 00 00 00*8"}));
}

TEST(Antennas, AScanTakesAFrameForEachPatternOfAnIteration) {
    ModemBench stBench(strSteady + "pattern-gains = [0, 0, 5, -10]\n");
    // Two iterations, one frame of traffic between two frames of the scan.
    EXPECT_EQ(
        stBench.Send(28, 2, strScan + " 02 00 00 00" + strThreePatterns + " 01 00 00 00" + strRest),
        0);
    stBench.RunUntil(1);
    // -58, -53, -68 twice; 28, 33, 18; 4 dB less on the second antenna.
    const std::string strAnt1 = " C6 FF FF FF CB FF FF FF BC FF FF FF";
    const std::string strCINR1 = " 1C 00 00 00 21 00 00 00 12 00 00 00";
    const std::string strAnt2 = " C2 FF FF FF C7 FF FF FF B8 FF FF FF";
    const std::string strCINR2 = " 18 00 00 00 1D 00 00 00 0E 00 00 00";
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.06 28/2: 01 00 00 00 06 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 00*4" +
                    strAnt1 + strAnt1 + " 00*104" + strCINR1 + strCINR1 + " 00*104" + strAnt2 +
                    strAnt2 + " 00*104" + strCINR2 + strCINR2 +
                    " 00*104 01 00 00 00 03 00 00 00 05 00 00 00 07 00 00 00 09 00 00 00"
                    " 0B 00 00 00 00*104 00*16 C6 FF FF FF 1C 00 00 00 C2 FF FF FF 18 00 00 00"
                    " 00*4"}));
}

TEST(Antennas, ALongScanReportsThirtyTwoFramesAtATime) {
    ModemBench stBench(strSteady);
    EXPECT_EQ(
        stBench.Send(28, 2, strScan + " 46 00 00 00" + strNoPattern + " 00 00 00 00" + strRest), 0);
    stBench.RunUntil(5);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 3U);
    EXPECT_EQ(astrTexts[0].substr(0, 25), "0.16 28/2: 02 00 00 00 20");
    EXPECT_EQ(astrTexts[1].substr(0, 25), "0.32 28/2: 02 00 00 00 20");
    EXPECT_EQ(astrTexts[2].substr(0, 25), "0.35 28/2: 01 00 00 00 06");
}

TEST(Antennas, AScanWithoutEndEndsWhenItIsAborted) {
    ModemBench stBench(strSteady);
    // Ten iterations of three patterns a report.
    EXPECT_EQ(stBench.Send(
                  28, 2, strEndless + " 0A 00 00 00" + strThreePatterns + " 00 00 00 00" + strRest),
              0);
    stBench.RunUntil(100);
    std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 666U);
    EXPECT_EQ(astrTexts[0].substr(0, 33), "0.15 28/2: 02 00 00 00 1E 00 00 0");
    EXPECT_EQ(astrTexts[665].substr(0, 34), "99.90 28/2: 02 00 00 00 1E 00 00 0");
    EXPECT_EQ(stBench.Send(28, 2, strAbort), 0);
    stBench.RunUntil(200);
    astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 1U);
    EXPECT_EQ(astrTexts[0].substr(0, 35), "100.00 28/2: 00 00 00 00 14 00 00 0");
}

TEST(Antennas, AScanWithoutEndAndIterationsReportsFullLists) {
    ModemBench stBench(strSteady);
    EXPECT_EQ(
        stBench.Send(28, 2, strEndless + " 00 00 00 00" + strNoPattern + " 00 00 00 00" + strRest),
        0);
    stBench.RunUntil(0.2);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 1U);
    EXPECT_EQ(astrTexts[0].substr(0, 25), "0.16 28/2: 02 00 00 00 20");
}

TEST(Antennas, ScansThatCannotBeAreRefused) {
    ModemBench stBench(strSteady);
    const std::string strOnce = " 01 00 00 00";
    const std::string strNow = " 00 00 00 00" + strRest;
    const auto Refused = [&](const std::string &strRequest) {
        EXPECT_EQ(stBench.Send(28, 2, strRequest), 0);
        return stBench.Messages();
    };
    EXPECT_EQ(Refused(strAbort), Told({ScanError("07")}));
    EXPECT_EQ(Refused("02 00 00 00" + strOnce + strNoPattern + strNow), Told({ScanError("05")}));
    EXPECT_EQ(Refused(strScan + " 00 00 00 00" + strNoPattern + strNow), Told({ScanError("05")}));
    EXPECT_EQ(Refused(strScan + strOnce + " 05 00 00 00 00*16" + strNow), Told({ScanError("01")}));
    // Pattern 8 needs a fourth pin.
    EXPECT_EQ(Refused(strScan + strOnce + " 01 00 00 00 08 00 00 00 00*12" + strNow),
              Told({ScanError("04")}));
    EXPECT_EQ(stBench.Send(28, 2, strScan + " FF 00 00 00" + strNoPattern + strNow), 0);
    EXPECT_EQ(Refused(strScan + strOnce + strNoPattern + strNow), Told({ScanError("06")}));
    // Nor do the pins change under a scan.
    EXPECT_EQ(stBench.Send(28, 1, "00*28 01 00 00 00 00*4"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"28/1: 00*28 01 00 00 00 06 00 00 00"}));

    ModemBench stUnsynchronised(pcFourStations);
    EXPECT_EQ(stUnsynchronised.Send(28, 2, strScan + strOnce + strNoPattern + strNow), 0);
    EXPECT_EQ(stUnsynchronised.Messages(), Told({ScanError("08")}));
}

TEST(Antennas, AScanEndsWithTheLink) {
    ModemBench stBench(strSteady +
                       "[recovery]\non = false\n[[event]]\nat = 0.1\nkind = \"link-loss\"\n");
    EXPECT_EQ(
        stBench.Send(28, 2, strScan + " FF 00 00 00" + strNoPattern + " 00 00 00 00" + strRest), 0);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.10 2/2: 18 00*44", "0.10 " + ScanError("08")}));
}

TEST(Antennas, EachFrameVariesAsTheSeedHasIt) {
    const auto Scanned = [](const std::string &strSeed) {
        ModemBench stBench("seed = " + strSeed + "\n" + pcFourStations + pcLinkUp);
        EXPECT_EQ(
            stBench.Send(28, 2, strScan + " 20 00 00 00" + strNoPattern + " 00 00 00 00" + strRest),
            0);
        stBench.RunUntil(1);
        return stBench.Messages();
    };
    EXPECT_EQ(Scanned("5"), Scanned("5"));
    EXPECT_NE(Scanned("5"), Scanned("6"));
}

TEST(Antennas, ASelectionIsTheCurrentPattern) {
    ModemBench stBench(strSteady + "pattern-gains = [0, 7]\n");
    EXPECT_EQ(stBench.Send(28, 5, "01 00 00 00 00*4 01 00 00 00 07 00 00 00 02 00 00 00 00*28"), 0);
    EXPECT_EQ(
        stBench.Send(28, 2, strScan + " 01 00 00 00" + strNoPattern + " 00 00 00 00" + strRest), 0);
    stBench.RunUntil(1);
    const std::string strAnt = " 00*124";
    EXPECT_EQ(stBench.Messages(),
              Told({"28/5: 00*4",
                    "28/2: 01 00 00 00 01 00 00 00 00*16 CD FF FF FF 00*124 23 00 00 00 00*124"
                    " C9 FF FF FF 00*124 1F 00 00 00 00*124 01 00 00 00 00*124"
                    " 01 00 00 00 07 00 00 00 02 00 00 00 00*4"
                    " CD FF FF FF 23 00 00 00 C9 FF FF FF 1F 00 00 00 00*4"}));
}

TEST(Antennas, BadSelectionsAreRefused) {
    ModemBench stBench("");
    struct {
        const char *pcRequest;
        const char *pcStatus;
    } const astCases[] = {
        {"01 00 00 00 00*4 00*8 08 00 00 00 00*4 00*24", "04"},         // a fourth pin
        {"00*4 01 00 00 00 00*16 01 00 00 00 05 00 00 00 00*16", "05"}, // automatic: 0 to 4
        {"00*4 01 00 00 00 00*16 00*4 00 00 00 00 00*16", "05"},        // otherwise 1 and 2
        {"00*4 01 00 00 00 00*16 00*4 03 00 00 00 00*16", "05"},
        {"00*4 01 00 00 00 00*16 00*4 02 00 00 00 00*16", "00"},
        {"00*4 01 00 00 00 00*16 01 00 00 00 00 00 00 00 00*16", "00"},
        {"00*4 00*4 FF*12 00*4 00*4 FF*4 00*16", "00"}, // neither is to be looked at
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(stBench.Send(28, 5, stCase.pcRequest), 0);
        EXPECT_EQ(stBench.Messages(), Told({"28/5: " + std::string(stCase.pcStatus) + " 00 00 00"}))
            << stCase.pcRequest;
    }
}

// Attribute 1631, byte by byte: averaging, margins, both levels, mode, antenna.
std::string SwitchInformation(ModemBench &stBench) {
    EXPECT_EQ(stBench.Send(24, 2, "5F 06 00*25"), 0);
    const std::vector<uint8_t> aucAnswer = BytesOfHex(stBench.Messages().at(0).substr(6));
    EXPECT_EQ(aucAnswer.size(), 58U);
    std::string strHex;
    for (size_t i = 26; i < aucAnswer.size(); ++i) {
        strHex += (strHex.empty() ? "" : " ") + HexOf({aucAnswer[i]});
    }
    return strHex;
}

const std::string strTxOnly = "00*4 01 00 00 00 00*16 ";

TEST(Antennas, TheTransmitAntennaIsTheOneThatWasSelected) {
    ModemBench stBench(strSteady + "pattern-gains = [0, 7]\n");
    const std::string strLevels = "60 FC FF FF 20 FC FF FF"; // -58 and -62 dBm
    EXPECT_EQ(SwitchInformation(stBench), "80 00 00 00 80 00 00 00 03 00 00 00 03 00 00 00 " +
                                              strLevels + " 01 00 00 00 01 00 00 00");
    // By hand: what was set for the automatic choice stays.
    EXPECT_EQ(stBench.Send(28, 5, strTxOnly + "00*4 02 00 00 00 FF*16"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"28/5: 00*4"}));
    EXPECT_EQ(SwitchInformation(stBench), "80 00 00 00 80 00 00 00 03 00 00 00 03 00 00 00 " +
                                              strLevels + " 00 00 00 00 02 00 00 00");
    // Automatically, the second one first: the first one is better by 4 dB, not by 5.
    EXPECT_EQ(stBench.Send(28, 5,
                           strTxOnly + "01 00 00 00 02 00 00 00 40 00 00 00 20 00 00 00"
                                       " 05 00 00 00 06 00 00 00"),
              0);
    EXPECT_EQ(stBench.Messages(), Told({"28/5: 00*4"}));
    EXPECT_EQ(SwitchInformation(stBench), "40 00 00 00 20 00 00 00 05 00 00 00 06 00 00 00 " +
                                              strLevels + " 01 00 00 00 02 00 00 00");
    // The receive pattern lifts both.
    EXPECT_EQ(stBench.Send(28, 5, "01 00 00 00 00*4 01 00 00 00 00*36"), 0);
    stBench.Messages();
    EXPECT_EQ(SwitchInformation(stBench).substr(48, 23), "D0 FC FF FF 90 FC FF FF");
}

// The levels of pins 4 to 7.
std::string PinsOf(ModemBench &stBench) {
    std::string strLevels;
    for (const char *pcPin : {"04", "05", "06", "07"}) {
        EXPECT_EQ(stBench.Send(22, 2, std::string(pcPin) + " 00 00 00 00*4"), 0);
        const std::vector<uint8_t> aucBit = BytesOfHex(stBench.Messages().at(0).substr(6));
        strLevels += aucBit.at(4) != 0 ? "1" : "0";
    }
    return strLevels;
}

TEST(Antennas, ThePinsShowWhatIsSelected) {
    ModemBench stBench(strSteady);
    EXPECT_EQ(PinsOf(stBench), "0000");
    // Pattern 0b111 and the second antenna.
    EXPECT_EQ(
        stBench.Send(28, 5, "01 00 00 00 01 00 00 00 07 00 00 00 00*12 00*4 02 00 00 00 00*16"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"28/5: 00*4"}));
    EXPECT_EQ(PinsOf(stBench), "1111");
    // A bit of the pattern is a receive pin in the order of the configuration: 5, 4.
    EXPECT_EQ(stBench.Send(28, 5, "01 00 00 00 01 00 00 00 00*16 00*4 01 00 00 00 00*16"), 0);
    EXPECT_EQ(stBench.Send(28, 1,
                           "02 00 00 00 00 00 00 00 05 00 00 00 04 00 00 00 FF*12"
                           " 01 00 00 00 00*4"),
              0);
    EXPECT_EQ(stBench.Send(28, 5, "01 00 00 00 00*4 01 00 00 00 00*36"), 0);
    stBench.Messages();
    EXPECT_EQ(PinsOf(stBench), "0100");
}

TEST(Antennas, PinsThatTheHostSetsSelect) {
    ModemBench stBench(strSteady + "pattern-gains = [0, 7, 0, -3]\n[gpio]\nset = [5]\n");
    const std::string strHead = "80 00 00 00 80 00 00 00 03 00 00 00 03 00 00 00 ";
    // Pattern 2 at the start, then 3: 3 dB less; -61 and -65 dBm.
    EXPECT_EQ(SwitchInformation(stBench),
              strHead + "60 FC FF FF 20 FC FF FF 01 00 00 00 01 00 00 00");
    EXPECT_EQ(stBench.Send(22, 1, "04 00 00 00 01 00 00 00"), 0);
    EXPECT_EQ(SwitchInformation(stBench),
              strHead + "30 FC FF FF F0 FB FF FF 01 00 00 00 01 00 00 00");
    // The transmit pin: the second antenna, by hand; then the first one.
    EXPECT_EQ(stBench.Send(22, 1, "07 00 00 00 01 00 00 00"), 0);
    EXPECT_EQ(SwitchInformation(stBench).substr(72), "00 00 00 00 02 00 00 00");
    EXPECT_EQ(stBench.Send(22, 1, "07 00 00 00 00 00 00 00"), 0);
    EXPECT_EQ(SwitchInformation(stBench).substr(72), "00 00 00 00 01 00 00 00");
    // A pin of nobody selects nothing.
    EXPECT_EQ(stBench.Send(22, 1, "08 00 00 00 01 00 00 00"), 0);
    EXPECT_EQ(SwitchInformation(stBench).substr(48),
              "30 FC FF FF F0 FB FF FF 00 00 00 00 01 00 00 00");
}

TEST(Antennas, TheAutomaticChoiceFollowsItsThresholds) {
    ModemBench stBench(strSteady);
    struct {
        const char *pcSetting;
        const char *pcThresholds;
        char cAntenna;
    } const astCases[] = {
        {"00", "64 00 00 00 64 00 00 00", '1'}, // the better one
        {"01", "03 00 00 00 03 00 00 00", '1'},
        {"01", "03 00 00 00 FB FF FF FF", '2'}, // better than 5 dB below the first one
        {"02", "03 00 00 00 03 00 00 00", '1'}, // 4 dB are more than 3
        {"02", "04 00 00 00 03 00 00 00", '2'},
        {"03", "03 00 00 00 03 00 00 00", '1'},
        {"03", "04 00 00 00 03 00 00 00", '2'},
        {"04", "03 00 00 00 03 00 00 00", '1'},
        {"04", "03 00 00 00 FB FF FF FF", '2'},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(stBench.Send(28, 5,
                               strTxOnly + "01 00 00 00 " + stCase.pcSetting + " 00 00 00 00*8 " +
                                   stCase.pcThresholds),
                  0);
        stBench.Messages();
        const std::string strInformation = SwitchInformation(stBench);
        EXPECT_EQ(strInformation[28 * 3 + 1], stCase.cAntenna)
            << stCase.pcSetting << " " << stCase.pcThresholds;
    }
    // Averaging of more than everything, thresholds that no signals differ by.
    for (const char *pcBad : {"01 02 00 00 00*12", "00*4 01 02 00 00 00*8", "00*8 65 00 00 00 00*4",
                              "00*12 9B FF FF FF"}) {
        EXPECT_EQ(stBench.Send(28, 5, strTxOnly + "01 00 00 00 00*4 " + pcBad), 0);
        EXPECT_EQ(stBench.Messages(), Told({"28/5: 05 00 00 00"})) << pcBad;
    }
}

// Transmit power in quarter dBm, as the register has it.
int32_t Power(ModemBench &stBench) {
    uint8_t aucPower[4] = {};
    EXPECT_EQ(stBench.TheModem().ReadMemory(0x0F00001C, {aucPower, 4}), 0);
    return static_cast<int8_t>(aucPower[0]);
}

TEST(Antennas, AWorseTransmitAntennaHasToSendLouder) {
    ModemBench stFirst(strSteady);
    ModemBench stSecond(strSteady);
    EXPECT_EQ(stSecond.Send(28, 5, strTxOnly + "00*4 02 00 00 00 00*16"), 0);
    EXPECT_EQ(Power(stFirst), 44); // 11 dBm for a loss of 101 dB
    EXPECT_EQ(Power(stSecond), 44);
    stFirst.RunUntil(2.5); // a periodic ranging
    stSecond.RunUntil(2.5);
    EXPECT_EQ(Power(stSecond) - Power(stFirst), 16);
}

TEST(Antennas, AConfigurationThatIsNeitherReadNorWrittenIsRefused) {
    ModemBench stBench(strSteady);
    EXPECT_EQ(stBench.Send(28, 1, "01 00 00 00 00*4 02 00*19 02 00 00 00 00*4"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"28/1: 01 00 00 00 00*4 02 00*19 02 00 00 00 05 00 00 00"}));
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"28/1: 03 00 00 00 01 00 00 00 04 00 00 00 05 00 00 00"
                                        " 06 00 00 00 FF FF FF FF 07 00 00 00 00*8"}));
}

TEST(Antennas, LengthsAreThoseOfTheRequests) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(28, 1, "00*35"), -4);
    EXPECT_EQ(stBench.Send(28, 2, "00*45"), -4);
    EXPECT_EQ(stBench.Send(28, 5, ""), -4);
    EXPECT_EQ(stBench.Send(28, 3, ""), -5);
}

} // namespace

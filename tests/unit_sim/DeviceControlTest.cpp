// Station information, MAC address, statistics, chipset control.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "ModemBench.h"
#include "StationRecords.h"
#include "TestScenarios.h"
#include "link/Link.h"

namespace {

TEST(StationInformation, ComesFromTheScenario) {
    ModemBench stBench("[station-information]\nfirmware-version = [1, 2, 3]\n"
                       "driver-version = \"D 7\"\nlibrary-version = [4, 5, 6]\n"
                       "baseband-chip = 0x1234\nrf-chip = 0xABCD\neeprom-version = [7, 8]\n"
                       "mac-address = \"02-03-04-05-06-07\"\ncalibration = 6\n");
    EXPECT_EQ(stBench.Send(7, 1), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"7/1: 01 00 00 00 02 00 00 00 03 00 00 00 44 20 37 00*125"
                    " 04 00 00 00 05 00 00 00 06 00 00 00 34 12 00 00 CD AB 00 00"
                    " 07 00 00 00 08 00 00 00 02 03 04 05 06 07 00 00 06"}));
}

TEST(StationInformation, HasTheEEPROMOfTheScenario) {
    ModemBench stBench("[eeprom]\nsize = 64\nvalid-sections = 0xFFF\n"
                       "[eeprom.versions]\nrf = 1\nphy = 2\nmac = 3\ncal = 4\nhw = 5\nmib = 6\n"
                       "security = 7\nomadm = 8\nmru = 9\nvsa = 10\n");
    EXPECT_EQ(stBench.Send(7, 2), 0);
    EXPECT_EQ(stBench.Send(7, 3), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"7/2: FF 0F 00 40", "7/3: 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00"
                                        " 05 00 00 00 06 00 00 00 07 00 00 00 08 00 00 00"
                                        " 09 00 00 00 00*16 0A 00 00 00"}));
}

TEST(StationInformation, UnknownReportsAndNonsenseInTheScenarioAreRefused) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(7, 0), -5);
    EXPECT_EQ(stBench.Send(7, 1, "00"), -4);
    const std::string strLong(129, 'x');
    for (const std::string &strKey :
         {std::string("firmware-version = [1, 2]"),
          std::string("mac-address = \"01 00 00 00 00 01\""),
          std::string("mac-address = \"02 00\""), std::string("calibration = 256"),
          "driver-version = \"" + strLong + "\""}) {
        EXPECT_THROW(ModemBench("[station-information]\n" + strKey + "\n"), ScenarioError)
            << strKey;
    }
}

TEST(MACAddress, IsWhatIsReportedFromThenOn) {
    ModemBench stBench("");
    const auto Reported = [&] {
        EXPECT_EQ(stBench.Send(7, 1), 0);
        return stBench.Messages().at(0);
    };
    EXPECT_EQ(stBench.Send(11, 1, "00 1A 2B 3C 4D 5E"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"11/1: 00*4"}));
    EXPECT_NE(Reported().find(" 00 1A 2B 3C 4D 5E 00 00 0E"), std::string::npos);
    // Not the address of one station: a group, nobody.
    EXPECT_EQ(stBench.Send(11, 1, "01 1A 2B 3C 4D 5F"), 0);
    EXPECT_EQ(stBench.Send(11, 1, "00*6"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"11/1: 01 00 00 00", "11/1: 01 00 00 00"}));
    EXPECT_NE(Reported().find(" 00 1A 2B 3C 4D 5E 00 00 0E"), std::string::npos);
    // It stands in the EEPROM: a reset does not change it.
    EXPECT_EQ(stBench.Send(16, 1), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({"16/1:"}));
    EXPECT_NE(Reported().find(" 00 1A 2B 3C 4D 5E 00 00 0E"), std::string::npos);
    EXPECT_EQ(stBench.Send(11, 1, "00*5"), -4);
}

// Statistics.

// Numbers of a report.
struct Report {
    std::vector<uint8_t> aucPayload;
    explicit Report(const std::string &strText)
        : aucPayload(BytesOfHex(strText.substr(strText.find(':') + 1))) {}
    uint32_t Word(uint32_t u32Offset) const {
        uint32_t u32Value = 0;
        for (uint32_t i = 0; i < 4; ++i) {
            u32Value |= static_cast<uint32_t>(aucPayload.at(u32Offset + i)) << (8 * i);
        }
        return u32Value;
    }
};

Report ReportOf(ModemBench &stBench) {
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    const std::vector<std::string> astrTexts = stBench.Messages();
    EXPECT_EQ(astrTexts.size(), 1U);
    return Report(astrTexts.at(0));
}

TEST(Statistics, AreReportedOnce) {
    // Two packets of 600 bytes a second up, 40 down; one of 2000 frames is in error.
    ModemBench stBench(strLinkUp + pcTwoFlows +
                       "[traffic]\nuplink-rate = 1200\ndownlink-rate = 24000\npacket-size = 600\n");
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    stBench.RunUntil(200);
    // 20000 frames; 10 in error, 2 of them in the header; 4000 packets, 2 of them
    // damaged; 2500 reports of the channel's quality; 200 bandwidth requests, one for each
    // packet up, which finds its queue empty; two connections; 11 dBm for a path loss of 101 dB.
    EXPECT_EQ(stBench.Messages(),
              Told({"17/1: B8 03 00 00 20 4E 00 00 0A 00 00 00 02 00 00 00 02 00 00 00"
                    " C4 09 00 00 C6 FF FF FF 1C 00 00 00 00*24 C8 00 00 00 02 00 00 00 00 20 00 "
                    "00 00 10 00*164 0B 00*9"
                    " 00 12 0A 01 02 03 00*279 15 00*418 6C 7B 27 00"}));
}

TEST(Statistics, AreEmptyWithoutAStation) {
    ModemBench stBench("");
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"17/1: B8 03 00 00 00*948"}));
}

TEST(Statistics, NameTheBurstProfileThatTheCountersCount) {
    // 28 dB and less, with the FEC code and the counter of attribute 1608 that grows.
    struct {
        const char *pcBy;
        uint32_t u32FEC;
        uint32_t u32Counter;
    } const astCases[] = {{"0", 21, 20},    {"4.1", 20, 19},  {"7.1", 19, 18},  {"9.1", 18, 17},
                          {"11.1", 17, 16}, {"14.1", 16, 15}, {"17.1", 15, 14}, {"20.1", 13, 10},
                          {"23.1", 13, 11}, {"25.1", 13, 12}, {"28.1", 13, 13}};
    for (const auto &stCase : astCases) {
        ModemBench stBench(strLinkUp + pcTwoFlows +
                           "[handover]\nlook-period = 0\n[[event]]\nat = 0\n"
                           "kind = \"fade\"\nstation = \"00120A010203\"\nby = " +
                           stCase.pcBy + "\n");
        stBench.RunUntil(10);
        EXPECT_EQ(ReportOf(stBench).aucPayload.at(529), stCase.u32FEC) << stCase.pcBy;
        EXPECT_EQ(stBench.Send(24, 2, "48 06 00*25"), 0);
        const std::string strText = stBench.Messages().at(0);
        const std::vector<uint8_t> aucMIB = BytesOfHex(strText.substr(strText.find(':') + 1));
        uint32_t u32Grown = 0;
        for (uint32_t i = 26; i < aucMIB.size(); i += 4) {
            const bool bGrown = aucMIB[i] != 0 || aucMIB[i + 1] != 0;
            u32Grown += bGrown ? 1 : 0;
            EXPECT_TRUE(!bGrown || (i - 26) / 4 % 21 == stCase.u32Counter)
                << stCase.pcBy << ": " << (i - 26) / 4 % 21;
        }
        EXPECT_EQ(u32Grown, 1U) << stCase.pcBy;
    }
}

TEST(Statistics, ErrorsGrowWithAWorseningLink) {
    ModemBench stBench(strLinkUp + pcTwoFlows +
                       "[[event]]\nat = 100\nkind = \"fade\"\n"
                       "station = \"00120A010203\"\nby = 26\n[handover]\n"
                       "look-period = 0\n");
    stBench.RunUntil(100);
    const Report stGood = ReportOf(stBench);
    stBench.RunUntil(200);
    const Report stBad = ReportOf(stBench);
    EXPECT_EQ(stGood.Word(8), 10U);
    // A CINR of 2 dB, 1 dB below that of the maps' profile: 26 % of 20000 frames are lost, and the
    // scenario's share of all.
    EXPECT_EQ(stBad.Word(8), 5220U);
    EXPECT_EQ(stBad.aucPayload.at(529), 13); // QPSK 1/2
    EXPECT_EQ(stBad.aucPayload.at(234), 23); // as loud as it can
    EXPECT_GT(stBad.Word(12), stGood.Word(12));
    EXPECT_GT(stBad.Word(16), stGood.Word(16));
}

TEST(Statistics, APeriodicReportIsReplacedAndStopped) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(17, 1, "64 00 00 00"), 0);
    stBench.RunUntil(1);
    const std::vector<std::string> astrFirst = stBench.TimedMessages();
    ASSERT_EQ(astrFirst.size(), 10U);
    EXPECT_EQ(astrFirst[0].substr(0, 9), "0.10 17/1");
    EXPECT_EQ(astrFirst[9].substr(0, 9), "1.00 17/1");
    EXPECT_EQ(Report(astrFirst[0]).Word(4), 20U);
    EXPECT_EQ(Report(astrFirst[9]).Word(4), 200U);
    EXPECT_EQ(stBench.Send(17, 1, "F4 01 00 00"), 0);
    stBench.RunUntil(2);
    const std::vector<std::string> astrSecond = stBench.TimedMessages();
    ASSERT_EQ(astrSecond.size(), 2U);
    EXPECT_EQ(astrSecond[0].substr(0, 9), "1.50 17/1");
    // Stopping yields one more report.
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    stBench.RunUntil(100);
    const std::vector<std::string> astrLast = stBench.TimedMessages();
    ASSERT_EQ(astrLast.size(), 1U);
    EXPECT_EQ(astrLast[0].substr(0, 9), "2.00 17/1");
}

TEST(Statistics, NoIntervalIsShorterThanAFrame) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(17, 1, "01 00 00 00"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages().size(), 200U);
}

TEST(Statistics, ListTheTransportConnections) {
    ModemBench stBench(strLinkUp);
    stBench.TheModem().OnTransportCIDs([] {
        std::vector<uint32_t> au32CIDs(50, 0x1234);
        au32CIDs[0] = 0x2001;
        return au32CIDs;
    });
    const Report stReport = ReportOf(stBench);
    // As many as the record has room for.
    EXPECT_EQ(stReport.Word(60), 42U);
    EXPECT_EQ(stReport.Word(64), 0x2001U);
    EXPECT_EQ(stReport.Word(64 + 41 * 4), 0x1234U);
    EXPECT_EQ(stReport.aucPayload.at(64 + 42 * 4), 0);
}

// Synchronised again with the first station.
void Resynchronise(ModemBench &stBench, double fTime) {
    stBench.RunUntil(fTime);
    EXPECT_EQ(stBench.Send(3, 1), 0);
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stBench.RunUntil(fTime + 0.5);
    stBench.Messages();
}

TEST(Statistics, GoOnOverAResynchronisationUnlessTheyAreToldOtherwise) {
    ModemBench stBench(strLinkUp);
    Resynchronise(stBench, 10);
    // 10 s, then from 10.3 s on.
    EXPECT_EQ(ReportOf(stBench).Word(4), 2040U);
    EXPECT_EQ(stBench.Send(17, 2, "01 00 00 00"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"17/2: 01 00 00 00"}));
    Resynchronise(stBench, 20);
    EXPECT_EQ(ReportOf(stBench).Word(4), 40U);
    EXPECT_EQ(stBench.Send(17, 2, "00*4"), 0);
    EXPECT_EQ(stBench.Send(17, 2, "02 00 00 00"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"17/2: 01 00 00 00", "17/2: 00 00 00 00"}));
    Resynchronise(stBench, 30);
    EXPECT_GT(ReportOf(stBench).Word(4), 1900U);
}

TEST(Statistics, AHandoverIsAResynchronisation) {
    ModemBench stBench(strLinkUp + "[statistics]\nreset-on-resync = true\n[[event]]\nat = 10\n"
                                   "kind = \"handover\"\nstation = \"00120A010204\"\n"
                                   "[handover]\nlook-period = 0\n");
    stBench.RunUntil(12.05);
    EXPECT_EQ(stBench.Messages().size(), 1U);
    const Report stReport = ReportOf(stBench);
    EXPECT_EQ(stReport.Word(4), 400U);
    EXPECT_EQ(stReport.aucPayload.at(249), 4);
}

TEST(Statistics, CountNoFramesInIdleMode) {
    ModemBench stBench(std::string(pcFourStations) +
                       "[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n");
    stBench.RunUntil(10);
    EXPECT_EQ(ReportOf(stBench).Word(4), 0U);
}

TEST(Statistics, NameTheStationOfIdleModeAndNoConnections) {
    ModemBench stBench(std::string(pcFourStations) + pcTwoFlows +
                       "[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n");
    stBench.RunUntil(10);
    const Report stIdle = ReportOf(stBench);
    EXPECT_EQ(stIdle.Word(24), 0xFFFFFFC6U); // -58 dBm
    EXPECT_EQ(stIdle.Word(28), 28U);
    EXPECT_EQ(HexOf({stIdle.aucPayload.begin() + 244, stIdle.aucPayload.begin() + 250}),
              "00 12 0A 01 02 03");
    EXPECT_EQ(stIdle.Word(948), 2587500U);
    EXPECT_EQ(stIdle.aucPayload.at(234), 0); // it does not send
    EXPECT_EQ(stIdle.Word(60), 0U);
    // The flows have connections again when the link is up.
    EXPECT_EQ(stBench.Send(19, 4), 0);
    stBench.RunUntil(11);
    stBench.Messages();
    EXPECT_EQ(ReportOf(stBench).Word(60), 2U);
}

TEST(Statistics, EndWithAReset) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(17, 1, "64 00 00 00"), 0);
    stBench.RunUntil(10.05);
    EXPECT_EQ(stBench.Send(16, 1), 0);
    stBench.Messages();
    stBench.RunUntil(11.55);
    EXPECT_EQ(stBench.Messages(), Told({"16/1:"}));
    // Synchronised again at 12.85 s; one second since.
    stBench.RunUntil(13.855);
    stBench.Messages();
    EXPECT_EQ(ReportOf(stBench).Word(4), 201U);
}

// Chipset.

// What the modem status request writes into its own buffer.
uint32_t StateOf(ModemBench &stBench) {
    std::vector<uint8_t> aucMessage(WIMAX_MESSAGE_SIZE);
    aucMessage[0] = 16;
    aucMessage[2] = 3;
    aucMessage[4] = 0x77;
    EXPECT_EQ(stBench.TheModem().Send(aucMessage.data(), 5), 0);
    return aucMessage[4];
}

TEST(ModemStatus, IsAnsweredAtOnceInEveryState) {
    ModemBench stActive(strLinkUp);
    EXPECT_EQ(StateOf(stActive), 0U);
    ModemBench stNothing("");
    EXPECT_EQ(StateOf(stNothing), 0U);
    ModemBench stIdle(std::string(pcFourStations) +
                      "[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n");
    EXPECT_EQ(StateOf(stIdle), 3U);
    ModemBench stShutdown("");
    EXPECT_EQ(stShutdown.Send(30, 1), 0);
    EXPECT_EQ(StateOf(stShutdown), 2U);
    stShutdown.RunUntil(1);
    EXPECT_EQ(StateOf(stShutdown), 2U);
    EXPECT_EQ(stActive.Messages(), Told({}));
    EXPECT_EQ(stActive.Send(16, 3, ""), -4);
}

TEST(ModemStatus, ACrashedModemSaysNothingElseUntilItIsReset) {
    ModemBench stBench(strLinkUp + "[recovery]\non = false\n[[event]]\nat = 1\nkind = \"crash\"\n"
                                   "[[event]]\nat = 2\nkind = \"dreg\"\naction = 3\n");
    stBench.RunUntil(3);
    EXPECT_EQ(StateOf(stBench), 1U);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    stBench.RunUntil(4);
    EXPECT_EQ(stBench.Messages(), Told({}));
    EXPECT_EQ(stBench.Send(16, 1), 0);
    EXPECT_EQ(StateOf(stBench), 4U);
    stBench.RunUntil(10);
    EXPECT_EQ(StateOf(stBench), 0U);
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"4.50 16/1:", "10.00 29/3: 00*4 3B 00*3 00*20 01 00 00 00 00*8"}));
}

TEST(ChipsetReset, TakesTheModemBackToItsStateAtStart) {
    ModemBench stBench(std::string(pcFourStations) + "[chipset]\nreset-time = 2\n");
    EXPECT_EQ(stBench.Send(29, 1, "20 07 00 00 00"), 0);
    EXPECT_EQ(
        stBench.Send(26, 1, "01 00 00 00 FF 01 00 08 05 20 04 00 01 01 00 00 00*32 00 00*4 00*147"),
        0);
    EXPECT_EQ(stBench.Send(28, 1, "00*28 01 00 00 00 00*4"), 0);
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages().size(), 4U);
    EXPECT_EQ(stBench.Send(16, 1), 0);
    // Nobody is there to answer.
    EXPECT_EQ(stBench.Send(2, 3), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    EXPECT_EQ(stBench.Send(26, 1, "01 00 00 00 00 00*43 01 00*4 00*147"), 0);
    EXPECT_EQ(stBench.Send(28, 1, "00*36"), 0);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"3.00 16/1:", "10.00 2/2: 0E 00*44",
                    "10.00 29/3: 00*4 3B 00*3 00*20 01 00 00 00 00*8", "10.00 26/2: 00*200",
                    ("10.00 28/1: 03 00 00 00 01 00 00 00 04 00 00 00 05 00 00 00 06 00 00 00"
                     " FF*4 07 00 00 00 00*8")}));
}

// "/f" and "/c"
const std::string strConfiguration = " 00 00 00 00 2F 63 00*126";
const std::string strFirmware = " 01 00 00 00 2F 66 00*126";
std::string Status(const std::string &strStatus, const std::string &strFile) {
    return "16/2: " + strStatus + " 00 00 00" + strFile;
}

TEST(Download, TakesItsTimeFileByFileAndStartsTheFirmware) {
    ModemBench stBench(strLinkUp + "[recovery]\non = false\n[download]\nrate = 1000\n"
                                   "configuration-size = 2000\nfirmware-size = 10000\n");
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    EXPECT_EQ(StateOf(stBench), 4U);
    stBench.RunUntil(5);
    EXPECT_EQ(StateOf(stBench), 0U);
    EXPECT_EQ(stBench.Send(16, 2, strFirmware), 0);
    stBench.RunUntil(14);
    EXPECT_EQ(StateOf(stBench), 4U);
    stBench.RunUntil(15.2);
    EXPECT_EQ(StateOf(stBench), 4U); // starts
    stBench.RunUntil(20);
    EXPECT_EQ(StateOf(stBench), 0U);
    EXPECT_EQ(stBench.TimedMessages(), Told({"2.00 " + Status("00", strConfiguration),
                                             "15.00 " + Status("00", strFirmware), "15.50 16/1:"}));
}

TEST(Download, TheFirmwareNeedsAGoodConfigurationBeforeIt) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(16, 2, strFirmware), 0);
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    // Not while the configuration is still on its way, which goes on.
    EXPECT_EQ(stBench.Send(16, 2, strFirmware), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({Status("01", strFirmware), Status("01", strFirmware),
                                        Status("00", strConfiguration)}));
    // After the firmware, a new configuration comes first again.
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Send(16, 2, strFirmware), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Send(16, 2, strFirmware), 0);
    EXPECT_EQ(stBench.Messages(), Told({Status("00", strConfiguration), Status("00", strFirmware),
                                        "16/1:", Status("01", strFirmware)}));
}

TEST(Download, NeitherConfigurationNorFirmwareIsNoFile) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(16, 2, "07 00 00 00 2F 00*127"), 0);
    EXPECT_EQ(stBench.Send(16, 2, "00*131"), -4);
    EXPECT_EQ(stBench.Messages(), Told({"16/2: 03 00 00 00 07 00 00 00 2F 00*127"}));
}

TEST(Download, AFileThatFailsIsTriedAgain) {
    ModemBench stBench("[download]\nrate = 10000\nconfiguration-size = 10000\n"
                       "configuration-failures = 2\nfailure-code = 9\nretry-after = 3\n");
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(StateOf(stBench), 4U);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 " + Status("09", strConfiguration),
                                             "5.00 " + Status("09", strConfiguration),
                                             "9.00 " + Status("00", strConfiguration)}));
}

TEST(Download, IsGivenUpAfterTheRetries) {
    ModemBench stBench("[download]\nconfiguration-size = 0\nconfiguration-failures = 100\n"
                       "retries = 2\n");
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.00 " + Status("05", strConfiguration),
                                             "2.00 " + Status("05", strConfiguration),
                                             "4.00 " + Status("05", strConfiguration)}));
    EXPECT_EQ(StateOf(stBench), 0U);
}

class DownloadFromTheHost : public testing::Test {
  protected:
    void SetUp() override {
        char acPattern[] = "/tmp/download.XXXXXX";
        ASSERT_NE(mkdtemp(acPattern), nullptr);
        m_strRoot = acPattern;
    }
    void TearDown() override {
        (void)std::remove((m_strRoot + "/c").c_str());
        (void)std::remove(m_strRoot.c_str());
    }
    void Write(size_t uSize) const { std::ofstream(m_strRoot + "/c") << std::string(uSize, 'x'); }
    std::string Scenario() const {
        return "[download]\nrequire-files = true\nrate = 100\nhost-directory = \"" + m_strRoot +
               "\"\n";
    }
    std::string m_strRoot;
};

TEST_F(DownloadFromTheHost, TakesAsLongAsTheFileIs) {
    Write(500);
    ModemBench stBench(Scenario());
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"5.00 " + Status("00", strConfiguration)}));
}

TEST_F(DownloadFromTheHost, WaitsForAFileThatIsNotThere) {
    ModemBench stBench(Scenario());
    EXPECT_EQ(stBench.Send(16, 2, strConfiguration), 0);
    stBench.RunUntil(1);
    Write(0);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.00 " + Status("02", strConfiguration),
                                             "2.00 " + Status("00", strConfiguration)}));
}

TEST_F(DownloadFromTheHost, ADirectoryIsNoFileAndAPathNeedsNoEnd) {
    ModemBench stBench(Scenario() + "retries = 0\n");
    EXPECT_EQ(stBench.Send(16, 2, "00*132"), 0);
    EXPECT_EQ(stBench.Send(16, 2, "00*4 61*128"), 0);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.Messages(),
              Told({"16/2: 02 00 00 00 00*132", "16/2: 02 00 00 00 00*4 61*128"}));
}

} // namespace

// MIB attributes: what can be read and written, and the ones that report on radio,
// link and traffic.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

std::string Word(uint32_t u32Value) {
    char acText[32];
    (void)std::snprintf(acText, sizeof acText, "%02X %02X %02X %02X", u32Value & 0xFF,
                        u32Value >> 8 & 0xFF, u32Value >> 16 & 0xFF, u32Value >> 24);
    return acText;
}

// A record: ID, keys, and the value behind its length.
std::string RecordOf(uint32_t u32ID, const std::string &strKeys = "00*9",
                     const std::string &strValue = "00") {
    const size_t uLength = strValue == "00" ? 0 : BytesOfHex(strValue).size();
    return Word(u32ID) + " " + strKeys + " 00*8 " + Word(static_cast<uint32_t>(uLength)) + " 00 " +
           strValue;
}

std::vector<uint8_t> ValueOf(ModemBench *pstBench, uint32_t u32ID,
                             const std::string &strKeys = "00*9") {
    EXPECT_EQ(pstBench->Send(24, 2, RecordOf(u32ID, strKeys)), 0);
    const std::vector<std::string> astrTexts = pstBench->Messages();
    EXPECT_EQ(astrTexts.size(), 1U);
    const std::vector<uint8_t> aucAnswer =
        BytesOfHex(astrTexts.empty() ? "00*26" : astrTexts[0].substr(astrTexts[0].find(':') + 1));
    EXPECT_EQ(aucAnswer.at(25), 0) << u32ID;
    return {aucAnswer.begin() + 26, aucAnswer.end()};
}

std::string HexOfValue(ModemBench *pstBench, uint32_t u32ID, const std::string &strKeys = "00*9") {
    return HexOf(ValueOf(pstBench, u32ID, strKeys));
}

uint32_t At(const std::vector<uint8_t> &aucValue, size_t uOffset) {
    return static_cast<uint32_t>(aucValue.at(uOffset) | aucValue.at(uOffset + 1) << 8 |
                                 aucValue.at(uOffset + 2) << 16) |
           static_cast<uint32_t>(aucValue.at(uOffset + 3)) << 24;
}

// The status that a get or a set of one attribute is answered with.
int StatusOf(ModemBench *pstBench, uint32_t u32SubType, const std::string &strRecord) {
    EXPECT_EQ(pstBench->Send(24, u32SubType, strRecord), 0);
    const std::vector<std::string> astrTexts = pstBench->Messages();
    EXPECT_EQ(astrTexts.size(), 1U);
    return static_cast<int8_t>(BytesOfHex(astrTexts.at(0).substr(5)).at(25));
}

std::string TemporaryFile(const char *pcName) {
    std::string strFile =
        (std::filesystem::temp_directory_path() / (pcName + std::to_string(::getpid()))).string();
    std::filesystem::remove(strFile);
    return strFile;
}

std::string TextOf(const std::string &strFile) {
    std::ifstream stFile(strFile);
    std::ostringstream stText;
    stText << stFile.rdbuf();
    return stText.str();
}

void EnterFirstStation(ModemBench *pstBench) {
    EXPECT_EQ(pstBench->Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    pstBench->RunUntil(0.5);
    EXPECT_EQ(pstBench->Send(2, 2, "00*4"), 0);
    pstBench->RunUntil(2);
    pstBench->Messages();
}

TEST(MIB, AValueThatIsWrittenIsReadBack) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(24, 2, RecordOf(3)), 0);
    EXPECT_EQ(stBench.Send(24, 1, RecordOf(3, "00*9", "34 12 00")), 0); // stated: 3 bytes
    EXPECT_EQ(stBench.Send(24, 1, "03 00*20 02 00*4 34 12 00"), 0);
    EXPECT_EQ(stBench.Send(24, 2, RecordOf(3)), 0);
    EXPECT_EQ(stBench.Messages(), Told({"24/2: 03 00*20 02 00*4 10 00", "24/1: 03 00*24 FD 00",
                                        "24/1: 03 00*26", "24/2: 03 00*20 02 00*4 34 12"}));
}

TEST(MIB, ASetStatesMoreThanItsMessageHasRoomFor) {
    ModemBench stBench("");
    WiMAXMessage stMessage{};
    const std::vector<uint8_t> aucBytes = BytesOfHex("18 00 01 00 BC 02 00*19 04 00*4 78 56 34 12");
    std::copy(aucBytes.begin(), aucBytes.end(), BytesOf(stMessage).pucData);
    EXPECT_EQ(stBench.TheModem().Send(BytesOf(stMessage).pucData, 31), 0);
    stBench.RunUntil(0.1);
    EXPECT_EQ(stBench.Messages(), Told({"24/1: BC 02 00*25"}));
    EXPECT_EQ(HexOfValue(&stBench, 700), "78 56 34 12");
    EXPECT_EQ(HexOfValue(&stBench, 701), "00 00 00 00");
}

TEST(MIB, SixBytesComeWithoutTheirNumber) {
    ModemBench stBench("");
    EXPECT_EQ(StatusOf(&stBench, 1, "90 01 00*24 01 02 03 04 05 06 00"), 0);
    EXPECT_EQ(HexOfValue(&stBench, 400), "01 02 03 04 05 06");
    EXPECT_EQ(StatusOf(&stBench, 1, "90 01 00*25"), -3);
}

TEST(MIB, TheThirtyTwoAutomatedWritesStay) {
    struct Write {
        uint32_t u32ID;
        uint32_t u32Key;
        const char *pcValue;
    };
    const Write astWrites[] = {
        {0, 0, "C7 00"},        {1, 0, "8F 01"},  {2, 0, "0F 00"},  {3, 0, "0F 00"},
        {4, 0, "02 00"},        {5, 0, "1F 4E"},  {6, 0, "C7 00"},  {7, 0, "27 00"},
        {8, 0, "C7 00"},        {9, 0, "1F 4E"},  {10, 0, "C7 00"}, {11, 0, "1D 00"},
        {12, 0, "1F 4E"},       {13, 0, "CF 07"}, {14, 0, "0F"},    {15, 0, "02 00 00 00"},
        {16, 0, "02 00 00 00"}, {17, 0, "E7 03"}, {18, 0, "63 00"}, {19, 0, "63 00"},
        {20, 0, "00"},          {21, 0, "01"},    {22, 0, "02"},    {20, 1, "00"},
        {21, 1, "01"},          {22, 1, "02"},    {20, 2, "00"},    {21, 2, "01"},
        {22, 2, "02"},          {20, 3, "00"},    {21, 3, "01"},    {22, 3, "02"}};
    ModemBench stBench("");
    for (const Write &stWrite : astWrites) {
        const std::string strBefore =
            HexOfValue(&stBench, stWrite.u32ID, "00 " + Word(stWrite.u32Key) + " 00*4");
        EXPECT_NE(strBefore, stWrite.pcValue);
        const size_t uSize = BytesOfHex(stWrite.pcValue).size();
        EXPECT_EQ(StatusOf(&stBench, 1,
                           Word(stWrite.u32ID) + " 00 " + Word(stWrite.u32Key) + " 00*12 " +
                               Word(static_cast<uint32_t>(uSize)) + " 00 " + stWrite.pcValue +
                               " 00"),
                  0);
    }
    for (const Write &stWrite : astWrites) {
        EXPECT_EQ(HexOfValue(&stBench, stWrite.u32ID, "00 " + Word(stWrite.u32Key) + " 00*4"),
                  stWrite.pcValue);
    }
}

TEST(MIB, EveryIDUpTo1699IsThereAndNoOther) {
    ModemBench stBench(strLinkUp);
    for (uint32_t u32ID = 0; u32ID < 1700; ++u32ID) {
        EXPECT_EQ(StatusOf(&stBench, 2, RecordOf(u32ID)), 0) << u32ID;
    }
    for (const uint32_t u32ID : {1700U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(StatusOf(&stBench, 2, RecordOf(u32ID)), -1);
        EXPECT_EQ(StatusOf(&stBench, 1, "" + Word(u32ID) + " 00*17 04 00*4 00*4"), -1);
    }
}

TEST(MIB, OnlyConfigurationAnd804CanBeWritten) {
    ModemBench stBench("");
    for (const uint32_t u32ID : {500U, 799U, 804U}) {
        EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(u32ID, "00*9", "07 00 00 00")), 0) << u32ID;
        EXPECT_EQ(HexOfValue(&stBench, u32ID), "07 00 00 00");
    }
    for (const uint32_t u32ID : {800U, 803U, 805U, 1399U, 1400U, 1608U, 1612U, 1699U}) {
        EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(u32ID, "00*9", "07 00 00 00")), -4) << u32ID;
    }
}

TEST(MIB, KeysMustFitTheAttribute) {
    struct Case {
        uint32_t u32ID;
        const char *pcKeys; // their number and both keys
        int iStatus;
    };
    const Case astCases[] = {
        {0, "01 00*8", -2},
        {0, "00 01 00*7", -2},
        {23, "01 03 00*7", 0},
        {23, "01 04 00*7", -2},
        {23, "02 00*8", -2},
        {893, "01 0F 00*7", 0},
        {932, "01 10 00*7", -2},
        {933, "01 00*8", -2},
        {1122, "02 00*8", -2},
        {1123, "02 0F 00 00 00 03 00 00 00", 0},
        {1139, "02 0F 00 00 00 04 00 00 00", -2},
        {1140, "01 01 00*7", 0},
        {1142, "02 01 00 00 00 01 00 00 00", 0},
        {1143, "02 00*8", -2},
        {1615, "01 09 00*7", 0},
        {1616, "01 0A 00*7", -2},
        // Lists of gets have a key for these.
        {1617, "01 4D 00*7", 0},
        {1699, "01 FF FF FF FF 00*4", 0},
    };
    ModemBench stBench("");
    for (const Case &stCase : astCases) {
        EXPECT_EQ(StatusOf(&stBench, 2, RecordOf(stCase.u32ID, stCase.pcKeys)), stCase.iStatus)
            << stCase.u32ID << " " << stCase.pcKeys;
    }
    // Keys lead to values of their own.
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(23, "01 02 00*7", "05 00 00 00")), 0);
    EXPECT_EQ(HexOfValue(&stBench, 23, "01 02 00*7"), "05 00 00 00");
    EXPECT_EQ(HexOfValue(&stBench, 23, "01 01 00*7"), "00 00 00 00");
}

TEST(MIB, ListsAreAnsweredRecordByRecord) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(24, 3,
                           "04 00 "
                           "01 00*20 02 00*4 22 11 " // good
                           "20 03 00*19 01 00*4 55 " // read only
                           "0E 00*20 00*4 00 "       // no value
                           "F4 01 00*19 04 00*4 04 03 02 01"),
              0);
    EXPECT_EQ(
        stBench.Send(24, 4, "03 00 " + RecordOf(1) + " " + RecordOf(1700) + " " + RecordOf(500)),
        0);
    EXPECT_EQ(stBench.Messages(),
              Told({"24/3: 04 00 01 00*26 20 03 00*23 FC 00 0E 00*24 FD 00 F4 01 00*25",
                    "24/4: 03 00 01 00*20 02 00*4 22 11 A4 06 00*23 FF 00"
                    " F4 01 00*19 04 00*4 04 03 02 01"}));
}

TEST(MIB, AListThatBreaksOffIsRefusedOrEndsThere) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(24, 4, "02 00 00*27"), -4);
    EXPECT_EQ(stBench.Send(24, 4, "01 00 00*28"), -4);
    EXPECT_EQ(stBench.Send(24, 3, "01 00 00*25"), -4);
    EXPECT_EQ(stBench.Send(24, 3, "02 00 01 00*20 FF FF FF FF 00 22 11"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"24/3: 01 00 01 00*24 FD 00"}));
    EXPECT_EQ(stBench.TheModem().Send(nullptr, 4), -3);
}

TEST(MIB, AnAnswerThatIsTooLongComesInSeveralMessages) {
    ModemBench stBench("");
    std::string strRequest = "7B 01";
    for (int i = 0; i < 379; ++i) {
        strRequest += " " + RecordOf(15);
    }
    EXPECT_EQ(stBench.Send(24, 4, strRequest), 0);
    const std::vector<std::string> astrTexts = stBench.Messages();
    ASSERT_EQ(astrTexts.size(), 2U);
    // 341 records of 30 bytes, then 38.
    EXPECT_EQ(astrTexts[0].substr(0, 14), "24/4: 55 01 0F");
    EXPECT_EQ(BytesOfHex(astrTexts[0].substr(5)).size(), 2U + 341 * 30);
    EXPECT_EQ(astrTexts[1].substr(0, 14), "24/4: 26 00 0F");
    EXPECT_EQ(BytesOfHex(astrTexts[1].substr(5)).size(), 2U + 38 * 30);
}

TEST(MIB, AFirmwareWithoutMIBsRefusesThemAll) {
    ModemBench stBench("[mib]\nsupported = false\n");
    EXPECT_EQ(stBench.Send(24, 1, RecordOf(500, "00*9", "07 00 00 00")), -27);
    EXPECT_EQ(stBench.Send(24, 2, RecordOf(1503)), -27);
    EXPECT_EQ(stBench.Send(24, 3, "00 00"), -27);
    EXPECT_EQ(stBench.Send(24, 4, "00 00"), -27);
    EXPECT_EQ(stBench.Messages(), std::vector<std::string>{});
}

TEST(MIB, TheScenarioGivesValues) {
    ModemBench stBench("[[attribute]]\nid = 21\nkey = 2\nvalue = \"09\"\n"
                       "[[attribute]]\nid = 1619\nvalue = \"01 02 03\"\n");
    EXPECT_EQ(HexOfValue(&stBench, 21, "00 02 00*7"), "09");
    EXPECT_EQ(HexOfValue(&stBench, 21), "00");
    EXPECT_EQ(HexOfValue(&stBench, 1619), "01 02 03");
    for (const char *pcMistake :
         {"id = 1700\nvalue = \"00\"\n", "id = 21\nkey = 4\nvalue = \"09\"\n",
          "id = 21\nvalue = \"09 00\"\n", "id = 1619\n",
          "id = 1\nsecond-key = 1\nvalue = \"0102\"\n"}) {
        EXPECT_THROW(ModemBench("[[attribute]]\n" + std::string(pcMistake)), ScenarioError)
            << pcMistake;
    }
}

TEST(MIB, ValuesSurviveARestartInTheStateFile) {
    const std::string strFile = TemporaryFile("mib-state-");
    const std::string strScenario = "[state]\nfile = \"" + strFile + "\"\n";
    {
        ModemBench stBench(strScenario);
        EXPECT_FALSE(std::filesystem::exists(strFile));
        EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(500, "00*9", "07 00 00 00")), 0);
        EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(23, "01 03 00*7", "01 02 03 04")), 0);
        // Writes to the EEPROM off: the value is there, but not for ever.
        EXPECT_EQ(stBench.Send(29, 1, "02 01 00*3"), 0);
        stBench.Messages();
        EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(501, "00*9", "07 00 00 00")), 0);
        EXPECT_EQ(HexOfValue(&stBench, 501), "07 00 00 00");
    }
    EXPECT_EQ(TextOf(strFile), "mib 23.3.0 01020304\nmib 500.0.0 07000000\n");
    {
        ModemBench stBench(strScenario);
        EXPECT_EQ(HexOfValue(&stBench, 500), "07 00 00 00");
        EXPECT_EQ(HexOfValue(&stBench, 23, "01 03 00*7"), "01 02 03 04");
        EXPECT_EQ(HexOfValue(&stBench, 501), "00 00 00 00");
    }
    std::filesystem::remove(strFile);
}

TEST(MIB, WithoutAStateFileARestartForgets) {
    ModemBench stBench("");
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(500, "00*9", "07 00 00 00")), 0);
    stBench.TheModem().Restart();
    EXPECT_EQ(HexOfValue(&stBench, 500), "00 00 00 00");
}

TEST(MIB, AValueThatCannotBeKeptIsRefused) {
    const std::string strDirectory = TemporaryFile("mib-gone-");
    std::filesystem::create_directory(strDirectory);
    ModemBench stBench("[state]\nfile = \"" + strDirectory + "/state\"\n");
    std::filesystem::remove(strDirectory);
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(500, "00*9", "07 00 00 00")), -5);
    EXPECT_EQ(HexOfValue(&stBench, 500), "00 00 00 00");
}

TEST(MIB, AStateFileWithMistakesIsReported) {
    const std::string strFile = TemporaryFile("mib-bad-");
    for (const char *pcText :
         {"mib 500.0.0\n", "mib 500.0.0 0\n", "mib 500.0.0 0G\n", "mib 500.0.0 00 00\n", "\n"}) {
        std::ofstream(strFile) << "mib 1.0.0 0000\n" << pcText;
        try {
            ModemBench stBench("[state]\nfile = \"" + strFile + "\"\n");
            ADD_FAILURE() << pcText;
        } catch (const ScenarioError &stError) {
            EXPECT_EQ(stError.what(), strFile + ":2: must be a section, a key and bytes");
        }
    }
    // Values of attributes that there are not, or of another size, are left alone.
    std::ofstream(strFile) << "mib 9999.0.0 0000\nmib 500.0.0 0000\nmib x 00\nelse where 00\n";
    ModemBench stBench("[state]\nfile = \"" + strFile + "\"\n");
    EXPECT_EQ(HexOfValue(&stBench, 500), "00 00 00 00");
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(501, "00*9", "07 00 00 00")), 0);
    EXPECT_EQ(TextOf(strFile), "else where 00\nmib 500.0.0 0000\nmib 501.0.0 07000000\n"
                               "mib 9999.0.0 0000\nmib x 00\n");
    std::filesystem::remove(strFile);
}

// Live attributes.

TEST(MIB, TheMRUTableIsFilledByNetworkEntryAndEmptiedByItsReset) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(24, 2, RecordOf(1612)), -76);
    EXPECT_EQ(stBench.Messages(), std::vector<std::string>{});
    EnterFirstStation(&stBench);
    EXPECT_EQ(HexOfValue(&stBench, 1612), "00 00 00 00 6C 7B 27 00*9 0A 00 00 00");
    EXPECT_EQ(stBench.Send(24, 4, "01 00 " + RecordOf(1612)), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"24/4: 01 00 4C 06 00*19 14 00*8 6C 7B 27 00*9 0A 00 00 00"}));
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(507)), 0);
    EXPECT_EQ(stBench.Send(24, 2, RecordOf(1612)), -76);
    EXPECT_EQ(stBench.Send(24, 4, "01 00 " + RecordOf(1612)), 0);
    EXPECT_EQ(stBench.Messages(), Told({"24/4: 01 00 4C 06 00*23 B4 00"}));
}

TEST(MIB, TheMRUTableHasTheLastFrequenciesOfEachBandwidth) {
    const std::string strFile = TemporaryFile("mru-");
    const std::string strScenario =
        "[state]\nfile = \"" + strFile + "\"\n" + std::string(pcFourStations);
    {
        ModemBench stBench(strScenario);
        EnterFirstStation(&stBench);
        EXPECT_EQ(stBench.Send(3, 1), 0);
        EXPECT_EQ(stBench.Send(2, 1, "40 AC 27 00 88 13 00 00 FF 00*55"), 0);
        stBench.RunUntil(3);
        EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
        stBench.RunUntil(5);
        stBench.Messages();
    }
    ModemBench stBench(strScenario);
    EXPECT_EQ(HexOfValue(&stBench, 1612), "00 00 00 00 40 AC 27 00*9 05 00 00 00"
                                          " 01 00 00 00 6C 7B 27 00*9 0A 00 00 00");
    std::filesystem::remove(strFile);
}

TEST(MIB, NeighboursAreTheOtherStationsOfTheNetwork) {
    ModemBench stBench(strLinkUp + "[[event]]\nkind = \"vanish\"\nat = 1\n"
                                   "station = \"00120A010204\"\n");
    EXPECT_EQ(HexOfValue(&stBench, 1494),
              "01 00 00 00 23 00 00 00 80 96 98 00 DC 50 00 00 04 02 01 0A 12 00 00 00"
              " E3 FE FF FF 10 00 00 00");
    EXPECT_EQ(HexOfValue(&stBench, 1575),
              // With a reuse of 1 the serving station is 13 dB above it: nothing that the list can
              // say. 370 m there, 27.7 samples there and back.
              "01 00*7 23 00 00 00 DC 50 00 00 80 96 98 00 00 12 0A 01 02 04 00*8"
              " 10 00 00 40 47 00 DD 00 00 00 1C 00 00 00 04 00 00 00 03 00 00 00");
    stBench.RunUntil(1.1);
    EXPECT_EQ(HexOfValue(&stBench, 1494), "00 00 00 00");
    ModemBench stWithoutLink(pcFourStations);
    EXPECT_EQ(HexOfValue(&stWithoutLink, 1575), "00 00 00 00");
}

TEST(MIB, NetworkEntryTimingIsWhatItTook) {
    ModemBench stBench(std::string(pcFourStations) + R"(
[link]
sync-time = 0.3
ranging-time = 0.25
sbc-time = 0.1
pkm-time = 0.4
registration-time = 0.2
satek-time = 0.1
[[service-flow]]
direction = "uplink"
type = "BE"
)");
    EXPECT_EQ(HexOfValue(&stBench, 1619), "00*36");
    EnterFirstStation(&stBench);
    // 0, 200, 100, 250, 100, 500, 200, 50, 1400 milliseconds.
    EXPECT_EQ(HexOfValue(&stBench, 1619),
              "00 00 00 00 C8 00 00 00 64 00 00 00 FA 00 00 00 64 00 00 00 F4 01 00 00 C8 00 00 00"
              " 32 00 00 00 78 05 00 00");
}

TEST(MIB, ZoneCountersGrowWithTheTraffic) {
    ModemBench stBench(strLinkUp + pcTwoFlows +
                       "[traffic]\ndownlink-rate = 60000\nuplink-rate = 6000\n");
    EXPECT_EQ(HexOfValue(&stBench, 1608), "00*2520");
    stBench.RunUntil(1);
    // 100 packets in the downlink; 10 in the uplink, the last of which still waits for its grant;
    // the CINR is 28: matrix B, 64QAM 5/6.
    const std::vector<uint8_t> aucBursts = ValueOf(&stBench, 1608);
    ASSERT_EQ(aucBursts.size(), 2520U);
    EXPECT_EQ(At(aucBursts, 2 * 252 + 84 + 20 * 4), 100U);
    std::vector<uint8_t> aucZones = ValueOf(&stBench, 1625);
    ASSERT_EQ(aucZones.size(), 6868U);
    EXPECT_EQ(At(aucZones, 16 + 2 * 528), 200U);            // frame
    EXPECT_EQ(At(aucZones, 16 + 2 * 528 + 4), 0x001C1C0DU); // CINR, reuse 1 last
    EXPECT_EQ(At(aucZones, 16 + 2 * 528 + 108 + 80), 100U); // bursts
    EXPECT_EQ(At(aucZones, 16 + 2 * 528 + 360 + 80), 100U); // PDUs
    // 22 dB are left in the uplink: 64QAM 3/4.
    EXPECT_EQ(At(aucZones, 5296), 182U); // that of 0.9 s, two frames later
    EXPECT_EQ(At(aucZones, 5296 + 188 + 76), 9U);
    EXPECT_EQ(At(aucZones, 5296 + 440 + 76), 9U);
    EXPECT_EQ(HexOfValue(&stBench, 1448), "64 00*15");
    EXPECT_EQ(HexOfValue(&stBench, 1479), "09 00*15");
    stBench.RunUntil(3);
    EXPECT_EQ(At(ValueOf(&stBench, 1608), 2 * 252 + 84 + 20 * 4), 300U);
    // In idle mode nothing flows.
    EXPECT_EQ(stBench.Send(19, 1), 0);
    stBench.RunUntil(9);
    stBench.Messages();
    EXPECT_EQ(At(ValueOf(&stBench, 1608), 2 * 252 + 84 + 20 * 4), 300U);
}

TEST(MIB, ASignalThatFadesMovesTheTrafficToAnotherScheme) {
    ModemBench stBench(strLinkUp + pcTwoFlows +
                       "[traffic]\ndownlink-rate = 60000\n[[event]]\nkind = \"fade\"\n"
                       "at = 2.5\nstation = \"00120A010203\"\nby = 25\n"
                       "[handover]\nlook-period = 0\n");
    stBench.RunUntil(4);
    const std::vector<uint8_t> aucBursts = ValueOf(&stBench, 1608);
    EXPECT_EQ(At(aucBursts, 2 * 252 + 84 + 20 * 4), 250U);
    EXPECT_EQ(At(aucBursts, 168 + 11 * 4), 150U); // 3 dB: zone 0, QPSK 1/2 twice
    EXPECT_EQ(HexOfValue(&stBench, 1482), "08 00*15");
    EXPECT_EQ(HexOfValue(&stBench, 1634), "64 00 00 00 03 00*11");
}

TEST(MIB, CountersCanBeClearedWhereTheOptionsOpenThem) {
    ModemBench stBench(strLinkUp + pcTwoFlows + "[traffic]\ndownlink-rate = 60000\n");
    stBench.RunUntil(2);
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(1608)), -4);
    EXPECT_EQ(stBench.Send(29, 1, "08 01 00*3"), 0);
    stBench.Messages();
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(1448)), -4);
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(1608)), 0);
    EXPECT_EQ(HexOfValue(&stBench, 1608), "00*2520");
    EXPECT_EQ(At(ValueOf(&stBench, 1448), 0), 200U);
    EXPECT_EQ(stBench.Send(29, 1, "08 02 00*3"), 0);
    stBench.Messages();
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(1448)), 0);
    EXPECT_EQ(HexOfValue(&stBench, 1448), "00*16");
}

TEST(MIB, SignalsAgreeWithTheRadio) {
    ModemBench stBench(strLinkUp + "[[event]]\nkind = \"fade\"\nat = 1\n"
                                   "station = \"00120A010203\"\nby = 26\n");
    EXPECT_EQ(HexOfValue(&stBench, 1467), "3A 00 00 00"); // -58 dBm
    EXPECT_EQ(HexOfValue(&stBench, 1468), "56 00 00 00"); // 28 dB below
    EXPECT_EQ(HexOfValue(&stBench, 1631),
              "80 00 00 00 80 00 00 00 03 00 00 00 03 00 00 00 60 FC FF FF 20 FC FF FF 01 00 00 00"
              " 01 00 00 00");
    // The serving station is good, a neighbour on its frequency is not better, none on
    // another one.
    EXPECT_EQ(HexOfValue(&stBench, 1633), "00 00 02");
    EXPECT_EQ(HexOfValue(&stBench, 1634), "01 00*15");
    EXPECT_EQ(HexOfValue(&stBench, 1649), "00*16");
    EXPECT_EQ(HexOfValue(&stBench, 1654), "00*32");
    stBench.RunUntil(1.1);
    EXPECT_EQ(HexOfValue(&stBench, 1467), "54 00 00 00");
    EXPECT_EQ(HexOfValue(&stBench, 1633), "01 01 02"); // too weak, and the other one better
    ModemBench stWithoutLink(pcFourStations);
    EXPECT_EQ(HexOfValue(&stWithoutLink, 1467), "00 00 00 00");
    EXPECT_EQ(HexOfValue(&stWithoutLink, 1633), "03 03 03");
}

TEST(MIB, TheChannelIsTheStationsUntilItIsWritten) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(HexOfValue(&stBench, 509), "00*16");
    // A synchronisation that names no frequency finds nothing.
    EXPECT_EQ(stBench.Send(2, 1, "00*4 00*4 FF 00*55"), 0);
    stBench.RunUntil(0.5);
    EXPECT_EQ(stBench.Messages().at(0).substr(0, 7), "2/1: 01");
    // 2600 MHz, 5 MHz, written; now it has a channel to take.
    EXPECT_EQ(StatusOf(&stBench, 1, RecordOf(509, "00*9", "40 AC 27 00 88 13 00 00 00*8")), 0);
    EXPECT_EQ(stBench.Send(2, 1, "00*4 00*4 FF 00*55"), 0);
    stBench.RunUntil(1);
    EXPECT_NE(stBench.Messages().at(0).find(" 2B 37 00 00 01 "), std::string::npos);
    // What was written stays, also on another channel.
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stBench.RunUntil(1.5);
    EXPECT_NE(stBench.Messages().at(0).find(" 12 0A 01 02 03 "), std::string::npos);
    EXPECT_EQ(HexOfValue(&stBench, 509), "40 AC 27 00 88 13 00*10");
    ModemBench stLinked(strLinkUp);
    EXPECT_EQ(HexOfValue(&stLinked, 509), "6C 7B 27 00 10 27 00*10");
}

TEST(MIB, MessagesThatTheClientNeverGotAreCounted) {
    const auto Drop = [](const char *pcType) {
        return "[[fault]]\nkind = \"drop\"\ntype = " + std::string(pcType) + "\n";
    };
    ModemBench stBench(strLinkUp + "[chipset]\nreset-time = 0\n" + Drop("2") + Drop("4") +
                       Drop("6") + Drop("7") + Drop("11") + Drop("17") + Drop("19") + Drop("30") +
                       "count = 1\n" + Drop("27"));
    EXPECT_EQ(HexOfValue(&stBench, 1654), "00*32");
    EXPECT_EQ(stBench.Send(7, 1), 0);
    EXPECT_EQ(stBench.Send(11, 1, "02 00*5"), 0);
    EXPECT_EQ(stBench.Send(6, 2, "11 00 07 00 09 00 00 00"), 0);
    stBench.RunUntil(0.2);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(stBench.Send(2, 3), 0);
    }
    EXPECT_EQ(stBench.Send(30, 5), 0);
    EXPECT_EQ(stBench.Send(30, 5), 0); // this one gets through
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    }
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(stBench.Send(19, 2), 0);
    }
    EXPECT_EQ(stBench.Send(4, 1), 0);
    EXPECT_EQ(stBench.Send(27, 2), 0);
    stBench.RunUntil(2.5); // two blocks
    EXPECT_EQ(stBench.Messages(), Told({"30/5: 01 00 00 00"}));
    EXPECT_EQ(HexOfValue(&stBench, 1654), "02 00 00 00 01 00 00 00 03 00 00 00 01 00 00 00"
                                          " 04 00 00 00 05 00 00 00 01 00 00 00 02 00 00 00");
    // A reset begins anew.
    EXPECT_EQ(stBench.Send(16, 1), 0);
    stBench.RunUntil(2.6);
    stBench.Messages();
    EXPECT_EQ(HexOfValue(&stBench, 1654), "00*32");
}

TEST(MIB, MessagesThatNobodyTakesAreLostBeyondTheQueue) {
    ModemBench stBench(strLinkUp);
    uint8_t aucStatus[WIMAX_MESSAGE_SIZE] = {2, 0, 3, 0};
    for (uint32_t i = 0; i < 65536 + 10; ++i) {
        ASSERT_EQ(stBench.TheModem().Send(aucStatus, 4), 0);
        stBench.TheModem().AdvanceTo(i);
    }
    stBench.TheModem().AdvanceTo(i64Second);
    uint32_t u32Taken = 0;
    for (MessageBytes aucMessage; stBench.TheModem().TakeMessage(&aucMessage);) {
        ++u32Taken;
    }
    EXPECT_EQ(u32Taken, 65536U);
    EXPECT_EQ(HexOfValue(&stBench, 1654), "00*8 0A 00*23");
}

TEST(MIB, OtherStatisticsGrowWithTheTrafficToo) {
    ModemBench stBench(strLinkUp + pcTwoFlows);
    const auto Sum = [&] {
        uint64_t u64Sum = 0;
        for (const uint32_t u32ID : {801U, 900U, 1000U, 1110U, 1130U, 1450U, 1690U}) {
            u64Sum += At(ValueOf(&stBench, u32ID), 0);
        }
        return u64Sum;
    };
    EXPECT_EQ(Sum(), 0U);
    stBench.RunUntil(10);
    const uint64_t u64Before = Sum();
    EXPECT_GT(u64Before, 0U);
    stBench.RunUntil(20);
    EXPECT_GT(Sum(), u64Before);
}

} // namespace

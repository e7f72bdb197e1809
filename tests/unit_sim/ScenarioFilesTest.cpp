// What the shipped scenarios show: each has a test of its name here, which holds what the file says
// at its top. Messages stand with their second and the first bytes; those of the trace are left
// out.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "ModemBench.h"

namespace {

using Lines = std::vector<std::string>;

const std::filesystem::path stScenarios = SCENARIO_DIRECTORY;

class Shown {
  public:
    explicit Shown(const std::string &strFile)
        : m_stModem(Scenario::FromFile(stScenarios / strFile)) {}

    // A request, type and subtype and payload in hexadecimal.
    int32_t Send(uint32_t u32Type, uint32_t u32SubType, const std::string &strPayload) {
        std::vector<uint8_t> aucMessage{static_cast<uint8_t>(u32Type), 0,
                                        static_cast<uint8_t>(u32SubType), 0};
        const std::vector<uint8_t> aucPayload = BytesOfHex(strPayload);
        aucMessage.insert(aucMessage.end(), aucPayload.begin(), aucPayload.end());
        return m_stModem.Send(aucMessage.data(), static_cast<uint32_t>(aucMessage.size()));
    }

    // What comes until then, each with so many bytes.
    Lines Until(double fSecond, size_t uBytes) {
        const auto iEnd = static_cast<ModemTime>(fSecond * 1e6);
        Lines astrLines;
        for (auto iDue = m_stModem.NextDue(); iDue && *iDue <= iEnd; iDue = m_stModem.NextDue()) {
            m_stModem.AdvanceTo(*iDue);
            for (MessageBytes aucMessage; m_stModem.TakeMessage(&aucMessage);) {
                Note(aucMessage, uBytes, &astrLines);
            }
        }
        m_stModem.AdvanceTo(iEnd);
        return astrLines;
    }
    uint32_t Traced() const { return m_u32Traced; }
    WholeModem &TheModem() { return m_stModem; }

  private:
    void Note(const MessageBytes &aucMessage, size_t uBytes, Lines *pastrLines) {
        const ByteView stBytes{aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
        const uint32_t u32Type = Get(stBytes, MessageHeader::usType);
        if (u32Type == TYPE_MAC_MGMT) {
            ++m_u32Traced;
            return;
        }
        std::array<char, 48> acHead{};
        std::snprintf(acHead.data(), acHead.size(),
                      "%.2f %u/%u:", static_cast<double>(m_stModem.Now()) / 1e6, u32Type,
                      Get(stBytes, MessageHeader::usSubType));
        std::string strLine = acHead.data();
        for (size_t i = MessageHeader::Size;
             i < std::min(aucMessage.size(), MessageHeader::Size + uBytes); ++i) {
            std::snprintf(acHead.data(), acHead.size(), " %02X", aucMessage[i]);
            strLine += acHead.data();
        }
        pastrLines->push_back(strLine);
    }

    WholeModem m_stModem;
    uint32_t m_u32Traced = 0;
};

// Nothing happens by itself for ten minutes.
void ExpectSilence(const std::string &strFile) {
    EXPECT_EQ(Shown(strFile).Until(600, 4), Lines{}) << strFile;
}

TEST(ScenarioFiles, Cells) {
    ExpectSilence("cells.toml");
    // Below the first one: 43 dBm less the loss over 40 m.
    Shown stShown("cells.toml");
    const auto &astStations = stShown.TheModem().Air().Stations();
    ASSERT_EQ(astStations.size(), 3U);
    EXPECT_NEAR(stShown.TheModem().Air().Measure(astStations[0], 0).fRSSI, 43 - 77.91, 0.01);
}

TEST(ScenarioFiles, Default) { ExpectSilence("default.toml"); }

TEST(ScenarioFiles, Quick) {
    ExpectSilence("quick.toml");
    EXPECT_TRUE(Shown("quick.toml").TheModem().HowTimePasses().bStepped);
}

TEST(ScenarioFiles, NoDevice) {
    EXPECT_FALSE(Shown("no-device.toml").TheModem().OpensAt(1000));
    ExpectSilence("no-device.toml");
}

TEST(ScenarioFiles, LateDevice) {
    Shown stShown("late-device.toml");
    EXPECT_FALSE(stShown.TheModem().OpensAt(2));
    EXPECT_TRUE(stShown.TheModem().OpensAt(3));
    EXPECT_EQ(stShown.TheModem().TheLink().State(), LinkState::LinkUp);
    ExpectSilence("late-device.toml");
}

TEST(ScenarioFiles, WeakSignal) {
    ExpectSilence("weak-signal.toml");
    Shown stShown("weak-signal.toml");
    EXPECT_EQ(stShown.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    EXPECT_EQ(stShown.Until(1, 1), Lines{"0.34 2/1: 00"});
    EXPECT_EQ(stShown.Send(2, 2, "00*4"), 0);
    EXPECT_EQ(stShown.Until(30, 1), (Lines{"1.02 2/2: 0C", "1.27 2/2: 04"}));
    stShown.Until(40, 1);
    EXPECT_EQ(stShown.Send(2, 2, "00*4"), 0);
    EXPECT_EQ(stShown.Until(60, 1), (Lines{"40.02 2/2: 0C", "41.07 2/2: 00"}));
    // The other one.
    EXPECT_EQ(stShown.Send(3, 1, ""), 0);
    EXPECT_EQ(stShown.Send(2, 1, "40 AC 27 00 10 27 00 00 FF 00*55"), 0);
    stShown.Until(61, 1);
    const Lines astrOther = stShown.Until(200, 1);
    EXPECT_TRUE(astrOther.empty() || astrOther.front().ends_with("2/1: 01"));
}

TEST(ScenarioFiles, ShutdownMode) {
    EXPECT_EQ(
        Shown("shutdown-mode.toml").Until(600, 4),
        (Lines{"10.02 30/3: 02 00 00 00", "20.02 30/3: 02 00 00 00", "30.02 30/3: 02 00 00 00",
               "40.02 30/3: 02 00 00 00", "50.02 30/3: 02 00 00 00", "60.02 30/4:"}));
    Shown stShown("shutdown-mode.toml");
    EXPECT_EQ(stShown.Send(36, 1, ""), 0);
    EXPECT_EQ(stShown.Until(9, 4), Lines{"0.02 36/2:"});
    EXPECT_EQ(stShown.Until(10.02, 0), (Lines{"10.02 30/3:", "10.02 36/3:"}));
}

TEST(ScenarioFiles, Unreliable) {
    EXPECT_EQ(Shown("unreliable.toml").Until(600, 4), Lines{"300.02 12/2:"});
    Shown stShown("unreliable.toml");
    // The first status answer never arrives; every search answer is two seconds late.
    EXPECT_EQ(stShown.Send(2, 3, ""), 0);
    EXPECT_EQ(stShown.Until(1, 1), Lines{});
}

TEST(ScenarioFiles, Hostile) {
    const Lines astrLines = Shown("hostile.toml").Until(700, 0);
    ASSERT_FALSE(astrLines.empty());
    const std::set<std::string> astrUnasked{"0/0:", "65535/65535:", "1/1:", "19/1:"};
    for (const std::string &strLine : astrLines) {
        const std::string strKind = strLine.substr(strLine.find(' ') + 1);
        if (strKind == "12/2:") {
            EXPECT_GE(std::stod(strLine), 600);
        } else {
            EXPECT_TRUE(astrUnasked.contains(strKind)) << strLine;
            EXPECT_LE(std::stod(strLine), 10) << strLine;
        }
    }
}

TEST(ScenarioFiles, CityDrive) {
    EXPECT_EQ(Shown("city-drive.toml").Until(421, 10),
              (Lines{"79.58 23/1: 01 01 00 12 0A 00 02 01 00 12",
                     "100.32 19/1: 00 10 00 00 00 12 0A 00 02 01",
                     "241.32 19/1: 00 00 00 00 00 12 0A 00 03 01",
                     "300.02 2/2: 08 00 00 00 00 00 00 00 00 00",
                     "300.32 19/1: 00 10 00 00 00 12 0A 00 03 01",
                     "331.32 19/1: 00 00 00 00 00 12 0A 00 03 01",
                     "360.02 2/2: 18 00 00 00 00 00 00 00 00 00",
                     "362.33 2/1: 00 00 00 00 00 00 00 12 0A 00",
                     "362.33 2/2: 0C 00 00 00 00 00 00 00 00 00",
                     "363.37 2/2: 00 01 00 00 00 00 12 0A 00 03", "420.02 30/2:"}));
}

// The same with other buildings.
TEST(ScenarioFiles, CityDriveGoesToItsEndWithAnySeed) {
    const std::filesystem::path stPath = stScenarios / "city-drive.toml";
    std::ifstream stFile(stPath);
    std::stringstream stText;
    stText << stFile.rdbuf();
    for (const char *pcSeed : {"2", "3"}) {
        WholeModem stModem(
            Scenario::FromText("seed = " + std::string(pcSeed) + "\n" + stText.str(), stPath));
        Lines astrHappened;
        for (auto iDue = stModem.NextDue(); iDue && *iDue <= 421 * i64Second;
             iDue = stModem.NextDue()) {
            stModem.AdvanceTo(*iDue);
            for (MessageBytes aucMessage; stModem.TakeMessage(&aucMessage);) {
                astrHappened.push_back(std::to_string(aucMessage[0]) + "/" +
                                       std::to_string(aucMessage[2]));
            }
        }
        EXPECT_EQ(astrHappened, (Lines{"23/1", "19/1", "19/1", "2/2", "19/1", "19/1", "2/2", "2/1",
                                       "2/2", "2/2", "30/2"}))
            << pcSeed;
    }
}

TEST(ScenarioFiles, Tour) {
    Shown stShown("tour.toml");
    EXPECT_EQ(stShown.Until(60, 3),
              (Lines{"5.03 26/2: 01 00 00", "7.02 26/2: 01 00 00", "10.03 6/1: 0B 01 00",
                     "11.03 6/3: 0E 01 00", "12.03 6/2: 11 01 00", "15.02 4/6: 05 00 01",
                     "16.02 13/6: 01 00 00", "17.02 25/1:", "20.07 23/1: 00 00 00",
                     "22.11 23/1: 01 01 00", "23.57 23/1: 01 01 00", "40.08 23/1: 01 01 00",
                     "50.02 2/2: 08 00 00", "50.32 19/1: 00 10 00", "53.33 19/1: 00 00 00"}));
    EXPECT_EQ(stShown.Until(100, 1),
              (Lines{"60.02 8/1: 70", "60.02 8/3: B0", "60.02 8/5: 30", "60.02 8/6: D0",
                     "60.02 8/7: A8", "60.02 8/8: 54", "60.02 2/2: 09", "60.52 27/2: 00",
                     "60.52 17/1: B8", "61.34 2/1: 00", "61.34 2/2: 0C", "62.37 2/2: 00",
                     "64.27 31/2: 00", "70.02 2/2: 08", "70.32 19/1: 00", "75.37 2/2: 16",
                     "86.69 2/1: 00", "86.69 2/2: 0C", "87.72 2/2: 00"}));
    // Losses and ways back; every minute the second client's logs.
    const Lines astrLosses = stShown.Until(180, 1);
    Lines astrReasons;
    std::copy_if(astrLosses.begin(), astrLosses.end(), std::back_inserter(astrReasons),
                 [](const std::string &strLine) {
                     return strLine.find(" 2/2:") != std::string::npos &&
                            !strLine.ends_with(" 0C") && !strLine.ends_with("7 2/2: 00");
                 });
    EXPECT_EQ(astrReasons,
              (Lines{"100.02 2/2: 18", "110.02 2/2: 01", "120.02 2/2: 02", "130.02 2/2: 19",
                     "140.02 2/2: 14", "150.02 2/2: 15", "160.02 2/2: FF"}));
    EXPECT_EQ(stShown.Until(183, 0),
              (Lines{"180.02 8/1:", "180.02 8/3:", "180.02 8/5:", "180.02 8/7:", "180.02 8/8:",
                     "180.52 27/2:", "180.52 17/1:"}));
    EXPECT_EQ(stShown.Until(230, 1),
              (Lines{"185.02 36/3:", "190.02 30/2:", "191.04 2/2: 0F", "191.54 30/1: 00",
                     "196.54 30/3: 03", "201.54 30/3: 03", "206.54 30/3: 03", "210.02 30/4:"}));
    EXPECT_EQ(stShown.Until(300, 2),
              (Lines{"235.52 16/1:", "236.84 2/1: 00 00", "236.84 2/2: 0C 00", "237.87 2/2: 00 01",
                     "239.43 23/1: 01 01", "290.02 12/2:"}));
    EXPECT_GE(stShown.Traced(), 500U);
}

// Every indication, and every reason of a link that ends by itself.
TEST(ScenarioFiles, TheTourShowsEverythingOnce) {
    std::set<std::string> astrSeen;
    for (const std::string &strLine : Shown("tour.toml").Until(300, 1)) {
        std::string strKind = strLine.substr(strLine.find(' ') + 1);
        astrSeen.insert(strKind.starts_with("2/2") ? strKind
                                                   : strKind.substr(0, strKind.find(':')));
    }
    for (const char *pcKind :
         {"2/1",     "4/6",     "6/1",     "6/2",     "6/3",     "8/1",     "8/3",     "8/5",
          "8/6",     "8/7",     "8/8",     "12/2",    "13/6",    "16/1",    "17/1",    "19/1",
          "23/1",    "25/1",    "26/2",    "27/2",    "30/2",    "30/3",    "30/4",    "31/2",
          "36/3",    "2/2: 00", "2/2: 01", "2/2: 02", "2/2: 08", "2/2: 09", "2/2: 0C", "2/2: 0F",
          "2/2: 14", "2/2: 15", "2/2: 16", "2/2: 18", "2/2: 19", "2/2: FF"}) {
        EXPECT_TRUE(astrSeen.contains(pcKind)) << pcKind;
    }
}

std::vector<std::filesystem::path> Files() {
    std::vector<std::filesystem::path> astPaths;
    for (const auto &stEntry : std::filesystem::directory_iterator(stScenarios)) {
        if (stEntry.path().extension() == ".toml") {
            astPaths.push_back(stEntry.path());
        }
    }
    return astPaths;
}

TEST(ScenarioFiles, EachHasATestOfItsName) {
    std::set<std::string> astrTests;
    const testing::UnitTest &stAll = *testing::UnitTest::GetInstance();
    const testing::TestSuite &stSuite = *stAll.current_test_suite();
    for (int i = 0; i < stSuite.total_test_count(); ++i) {
        astrTests.insert(stSuite.GetTestInfo(i)->name());
    }
    for (const std::filesystem::path &stPath : Files()) {
        // city-drive becomes CityDrive.
        std::string strName;
        bool bUpper = true;
        for (const char cChar : stPath.stem().string()) {
            if (cChar != '-') {
                strName += bUpper ? static_cast<char>(std::toupper(cChar)) : cChar;
            }
            bUpper = cChar == '-';
        }
        EXPECT_TRUE(astrTests.contains(strName)) << stPath;
    }
}

TEST(ScenarioFiles, EveryKindOfEventIsUsed) {
    std::string strAll;
    for (const std::filesystem::path &stPath : Files()) {
        std::ifstream stFile(stPath);
        std::stringstream stText;
        stText << stFile.rdbuf();
        strAll += stText.str();
    }
    const std::vector<std::string> astrKinds = Shown("cells.toml").TheModem().TheEvents().Kinds();
    EXPECT_GE(astrKinds.size(), 22U);
    for (const std::string &strKind : astrKinds) {
        EXPECT_NE(strAll.find("\nkind = \"" + strKind + "\""), std::string::npos) << strKind;
    }
    // And the ways to say when.
    for (const char *pcWord :
         {"\nwhen = \"message ", "\nwhen = \"idle\"", "\nevery = ", "\ntimes = ", "\ninclude = "}) {
        EXPECT_NE(strAll.find(pcWord), std::string::npos) << pcWord;
    }
}

} // namespace

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "ModemBench.h"
#include "TestScenarios.h"
#include "scenario/Warnings.h"

namespace {

// What is said about a scenario; empty when nothing is wrong with it.
std::string ReasonAgainst(const std::string &strScenario) {
    try {
        const WholeModem stModem(Scenario::FromText(strScenario, "bad.toml"));
        return "";
    } catch (const ScenarioError &stError) {
        return stError.what();
    }
}

const std::string strStation = "[[station]]\nbsid = \"00120A010203\"\nfrequency = 2587500\n"
                               "bandwidth = 10000\npreamble = 3\nrssi = -58\ncinr = 28\n";

std::vector<std::filesystem::path> ShippedScenarios() {
    std::vector<std::filesystem::path> astPaths;
    for (const auto &stEntry : std::filesystem::directory_iterator(SCENARIO_DIRECTORY)) {
        if (stEntry.path().extension() == ".toml") {
            astPaths.push_back(stEntry.path());
        }
    }
    return astPaths;
}

TEST(Scenario, EveryShippedOneIsGood) {
    for (const auto &stPath : ShippedScenarios()) {
        EXPECT_NO_THROW(WholeModem(Scenario::FromFile(stPath))) << stPath;
    }
    EXPECT_GE(ShippedScenarios().size(), 11U);
}

TEST(Scenario, TheBuiltInOneHasStationsOnBothBandsOfThreeAccessProviders) {
    WholeModem stModem(Scenario::BuiltIn());
    std::vector<uint32_t> au32NAPs;
    int iLow = 0;
    int iHigh = 0;
    int iTooWeak = 0;
    for (const Station &stStation : stModem.Air().Stations()) {
        EXPECT_TRUE(stModem.Air().Receivable(stStation, 0));
        ++(stStation.u32Frequency < 3000000 ? iLow : iHigh);
        iTooWeak += stModem.Air().StrongEnoughToEnter(stStation, 0) ? 0 : 1;
        if (std::find(au32NAPs.begin(), au32NAPs.end(), stStation.NAPID()) == au32NAPs.end()) {
            au32NAPs.push_back(stStation.NAPID());
        }
    }
    EXPECT_EQ(au32NAPs, (std::vector<uint32_t>{0x00120A, 0x002B37, 0x00F044}));
    EXPECT_GE(iLow, 4);
    EXPECT_GE(iHigh, 4);
    EXPECT_EQ(iTooWeak, 2);
}

TEST(Scenario, MistakesAreReportedWithTheirLine) {
    const struct {
        std::string strText;
        std::string strReason;
    } astCases[] = {
        {"sede = 1\n", "bad.toml:1: \"sede\" is not known here"},
        {"[\n", "bad.toml:1: Error while parsing key: expected bare key starting character or "
                "string delimiter, saw '\\n'"},
        {"[device]\npresent = true\nabsent = true\n", "bad.toml:3: \"absent\" is not known here"},
        {"\n\n[planet]\nname = \"x\"\n", "bad.toml:3: \"planet\" is not known here"},
        {strStation + "colour = 1\n", "bad.toml:8: \"colour\" is not known here"},
        {"seed = \"one\"\n",
         "bad.toml:1: \"seed\" must be a whole number from 0 to 9223372036854775807"},
        {"seed = -1\n",
         "bad.toml:1: \"seed\" must be a whole number from 0 to 9223372036854775807"},
        {"time-scale = 0\n", "bad.toml:1: \"time-scale\" must be a number from 0.001 to 1000000"},
        {"time-scale = nan\n", "bad.toml:1: \"time-scale\" must be a number from 0.001 to 1000000"},
        {"[device]\npresent = 1\n", "bad.toml:2: \"present\" must be true or false"},
        {"device = 1\n", "bad.toml:1: \"device\" must be a section, [device]"},
        {"[station]\nbsid = \"00\"\n",
         "bad.toml:1: \"station\" must be a section that may stand several times, [[station]]"},
        {"[[station]]\nfrequency = 1\n", "bad.toml:1: \"bsid\" is missing"},
        {"[[station]]\nbsid = \"00 11\"\n",
         "bad.toml:2: \"bsid\" must be six bytes, each of two hexadecimal digits"},
        {"[[station]]\nbsid = \"00120A0102033\"\n",
         "bad.toml:2: \"bsid\" must be whole bytes, each of two hexadecimal digits"},
        {"[[station]]\nbsid = \"00120A01020304\"\n",
         "bad.toml:2: \"bsid\" must be at most 6 bytes"},
        {"[[station]]\nbsid = \"00120A010203\"\nfrequency = 2587.5\n",
         "bad.toml:3: \"frequency\" must be a whole number from 1 to 4294967295"},
        {strStation + strStation, "bad.toml:9: \"bsid\" is used twice"},
        {strStation + "nsps = [4]\n", "bad.toml:8: \"nsps\" names 4, which no [[nsp]] has"},
        {strStation + "nsps = 4\n",
         "bad.toml:8: \"nsps\" must be a list of whole numbers from 0 to 4294967295"},
        {strStation + "entry = \"maybe\"\n",
         "bad.toml:8: \"entry\" must be one of \"accepted\", \"ranging-failure\", "
         "\"sbc-failure\", \"pkm-failure\", \"registration-failure\", \"satek-failure\""},
        {"[[nsp]]\nid = 1\nname = \"a\"\n[[nsp]]\nid = 1\nname = \"b\"\n",
         "bad.toml:5: \"id\" is used twice"},
        {"[[nsp]]\nid = 1\nname = \"" + std::string(129, 'x') + "\"\n",
         "bad.toml:3: \"name\" must be at most 128 bytes long"},
        {"[start]\nstate = \"idle\"\n", "bad.toml:1: \"station\" is missing: this state needs one"},
        {strStation + "[start]\nstation = \"00120A010203\"\n",
         "bad.toml:9: \"station\" has no meaning in this state"},
        {strStation + "[start]\nstate = \"idle\"\nstation = \"00120A010204\"\n",
         "bad.toml:10: \"station\" is the BS ID of no station"},
        {"[[event]]\nkind = \"paging\"\n", "bad.toml:1: \"at\" is missing"},
        {"[[event]]\nat = 1\nkind = \"vanish\"\n", "bad.toml:1: \"station\" is missing"},
        {"[[event]]\nat = 1\nkind = \"message\"\nbytes = \"010203\"\n",
         "bad.toml:4: \"bytes\" must hold at least the four bytes of type and subtype"},
        {"[[event]]\nat = 1\nkind = \"message\"\nbytes = \"0102030\"\n",
         "bad.toml:4: \"bytes\" must be whole bytes, each of two hexadecimal digits"},
        {"[[fault]]\nkind = \"fail\"\n", "bad.toml:1: \"code\" is missing"},
        {"[[fault]]\nkind = \"drop\"\nseconds = 2\n", "bad.toml:3: \"seconds\" is not known here"},
        {"[[fault]]\nkind = \"drop\"\nprobability = 1.5\n",
         "bad.toml:3: \"probability\" must be a number from 0 to 1"},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(ReasonAgainst(stCase.strText), stCase.strReason);
    }
}

TEST(Scenario, TextThatIsNoTOMLIsReportedWithItsLine) {
    EXPECT_EQ(ReasonAgainst("seed = 1\nseed\n").substr(0, 12), "bad.toml:2: ");
    EXPECT_EQ(ReasonAgainst("\n\nseed = [1,\n").substr(0, 9), "bad.toml:");
}

TEST(Scenario, WhatIsSaidIsOneLineThatATerminalShows) {
    EXPECT_EQ(ReasonAgainst("\"a\\nb\" = 1\n"), "bad.toml:1: \"a\\nb\" is not known here");
    EXPECT_EQ(ReasonAgainst("\"\\u001B[31mred\\u007F\\u009B\" = 1\n"),
              "bad.toml:1: \"\\x1B[31mred\\x7F\\xC2\\x9B\" is not known here");
    EXPECT_EQ(ReasonAgainst("\"gr\xC3\xBC\xC3\x9F\" = 1\n"),
              "bad.toml:1: \"gr\xC3\xBC\xC3\x9F\" is not known here");
    EXPECT_STREQ(ScenarioError("a\nb\xFF", 7, "no\r\xE2\x82").what(),
                 "a\\nb\\xFF:7: no\\x0D\\xE2\\x82");
    EXPECT_EQ(ReasonAgainst(std::string(100000, 'k') + " = 1\n"),
              "bad.toml:1: \"" + std::string(1000, 'k') + "...");
}

// Whatever stands in a file, its reader reports it or takes it: no assertion of its own ends it.
TEST(Scenario, AnyTextIsTakenOrRefused) {
    const std::string strBits = "[]\n\"'=.,{}# a1-+:T_\\\r\t\xFF\xC3";
    Random stRandom(1, "texts");
    uint32_t u32Refused = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string strText;
        for (uint32_t u32Left = stRandom.Below(8); u32Left != 0; --u32Left) {
            strText += strBits[stRandom.Below(static_cast<uint32_t>(strBits.size()))];
        }
        try {
            (void)Scenario::FromText(strText, "any.toml");
        } catch (const ScenarioError &stError) {
            ++u32Refused;
            EXPECT_EQ(std::string(stError.what()).substr(0, 9), "any.toml:");
            EXPECT_EQ(std::string(stError.what()).find('\n'), std::string::npos);
        }
    }
    EXPECT_GT(u32Refused, 10000U);
}

// What is said about a file; empty when nothing is wrong with it.
std::string ReasonAgainstFile(const std::string &strPath) {
    try {
        Scenario::FromFile(strPath);
        return "";
    } catch (const ScenarioError &stError) {
        return stError.what();
    }
}

TEST(Scenario, AFileThatCannotBeReadIsReported) {
    EXPECT_EQ(ReasonAgainstFile("/nonexistent/scenario.toml"),
              "/nonexistent/scenario.toml: cannot be read: No such file or directory");
    EXPECT_EQ(ReasonAgainstFile("/"), "/: cannot be read: it is not a regular file");
    EXPECT_EQ(ReasonAgainstFile("/dev/zero"),
              "/dev/zero: cannot be read: it is not a regular file");
}

TEST(Scenario, APipeIsRefusedWithoutWaitingForItsWriter) {
    const std::string strPath = testing::TempDir() + "scenario-pipe-" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(strPath.c_str(), 0600), 0);
    EXPECT_EQ(ReasonAgainstFile(strPath), strPath + ": cannot be read: it is not a regular file");
    std::filesystem::remove(strPath);
}

TEST(Scenario, AFileMayHaveFourMegabytesAndNoMore) {
    const std::string strPath = testing::TempDir() + "scenario-long-" + std::to_string(getpid());
    std::ofstream(strPath) << "#" << std::string(4194302, ' ') << "\n";
    EXPECT_EQ(ReasonAgainstFile(strPath), "");
    std::filesystem::resize_file(strPath, 4194305);
    EXPECT_EQ(ReasonAgainstFile(strPath), strPath + ": is longer than 4194304 bytes");
    std::filesystem::remove(strPath);
}

// A directory of scenario files.
class Including : public testing::Test {
  protected:
    Including() : m_stTop(testing::TempDir() + "including-" + std::to_string(getpid())) {
        std::filesystem::create_directories(m_stTop / "below");
    }
    ~Including() override { std::filesystem::remove_all(m_stTop); }
    void Write(const std::string &strName, const std::string &strText) const {
        std::ofstream(m_stTop / strName) << strText;
    }
    std::string Path(const std::string &strName) const { return (m_stTop / strName).string(); }
    // What is said about a file, without the directory; empty when nothing is wrong with it.
    std::string Reason(const std::string &strName) const {
        std::string strReason;
        try {
            const WholeModem stModem(Scenario::FromFile(Path(strName)));
        } catch (const ScenarioError &stError) {
            strReason = stError.what();
        }
        for (size_t uAt = 0; (uAt = strReason.find(Path(""))) != std::string::npos;) {
            strReason.erase(uAt, Path("").size());
        }
        return strReason;
    }

  private:
    std::filesystem::path m_stTop;
};

TEST_F(Including, TablesBecomeOneAndTheFileThatIncludesCounts) {
    Write("below/town.toml",
          "seed = 3\n[search]\nrssi-threshold = -80\ncinr-threshold = 1\n" + strStation);
    Write("all.toml", "include = \"below/town.toml\"\nseed = 4\n[search]\ncinr-threshold = 2\n"
                      "[[station]]\nbsid = \"00120A010204\"\nfrequency = 2600000\n"
                      "bandwidth = 10000\npreamble = 4\nrssi = -60\ncinr = 20\n");
    WholeModem stModem(Scenario::FromFile(Path("all.toml")));
    EXPECT_EQ(stModem.Seed(), 4U);
    EXPECT_EQ(stModem.Settings("search").Number("rssi-threshold", -200, 0), -80);
    EXPECT_EQ(stModem.Settings("search").Number("cinr-threshold", -200, 10), 2);
    ASSERT_EQ(stModem.Air().Stations().size(), 2U);
    EXPECT_EQ(stModem.Air().Stations()[0].u32Preamble, 3U);
    EXPECT_EQ(stModem.Air().Stations()[1].u32Preamble, 4U);
}

TEST_F(Including, AListIsReadInItsOrder) {
    Write("one.toml", "seed = 1\n");
    Write("two.toml", "include = \"one.toml\"\nseed = 2\n");
    Write("all.toml", "include = [\"two.toml\", \"one.toml\"]\n");
    EXPECT_EQ(WholeModem(Scenario::FromFile(Path("all.toml"))).Seed(), 1U);
}

TEST_F(Including, MistakesAreReportedWithTheirOwnFile) {
    Write("town.toml", "\n[search]\nspeed = 1\n");
    Write("all.toml", "include = \"town.toml\"\n");
    EXPECT_EQ(Reason("all.toml"), "town.toml:3: \"speed\" is not known here");
    Write("all.toml", "\ninclude = \"nowhere.toml\"\n");
    EXPECT_EQ(Reason("all.toml"), "all.toml:2: \"include\" names \"nowhere.toml\", which cannot be "
                                  "read: No such file or directory");
    Write("all.toml", "include = 4\n");
    EXPECT_EQ(Reason("all.toml"),
              "all.toml:1: \"include\" must be a file in quotes, or a list of such");
    Write("all.toml", "[search]\ninclude = \"town.toml\"\n");
    EXPECT_EQ(Reason("all.toml"), "all.toml:2: \"include\" is not known here");
}

TEST_F(Including, ACircleIsRefusedAndSoAreEverMoreFiles) {
    Write("one.toml", "include = \"two.toml\"\n");
    Write("two.toml", "include = \"below/../one.toml\"\n");
    EXPECT_EQ(Reason("one.toml"), "two.toml:1: \"include\" names a file that includes this one");
    Write("empty.toml", "");
    std::string strMany = "include = [";
    for (int i = 0; i < 33; ++i) {
        strMany += "\"empty.toml\",\n";
    }
    Write("many.toml", strMany + "]\n");
    EXPECT_EQ(Reason("many.toml"), "many.toml:33: \"include\" names more than 32 files in all");
}

// What is said that nobody can mean.
std::vector<std::string> Warnings(const std::string &strText) {
    return WarningsAbout(Scenario::FromText(strText, "odd.toml"));
}

using Texts = std::vector<std::string>;

TEST(Warning, ShippedScenariosHaveNone) {
    for (const auto &stPath : ShippedScenarios()) {
        EXPECT_EQ(WarningsAbout(Scenario::FromFile(stPath)), Texts{}) << stPath;
    }
    EXPECT_EQ(WarningsAbout(Scenario::BuiltIn()), Texts{});
}

TEST(Warning, UnitsThatWereMixedUp) {
    EXPECT_EQ(Warnings("[[station]]\nbsid = \"00120A010203\"\nfrequency = 2587\nbandwidth = 3\n"
                       "preamble = 3\nrssi = -58\ncinr = 28\n"),
              (Texts{"odd.toml:3: \"frequency\" is 2587 kHz: is that the unit that is meant?",
                     "odd.toml:4: \"bandwidth\" is 3 kHz, which no profile has"}));
}

TEST(Warning, ALinkToAStationThatIsOffTheAir) {
    EXPECT_EQ(Warnings(strStation + "on-air = false\n[start]\nstate = \"link-up\"\n"
                                    "station = \"00 12 0A 01 02 03\"\n"),
              Texts{"odd.toml:11: \"station\" is not on the air"});
}

TEST(Warning, AnAttributeTwice) {
    const std::string strAttribute = "[[attribute]]\nid = 20\nkey = 1\nvalue = \"01\"\n";
    EXPECT_EQ(Warnings(strAttribute + "[[attribute]]\nid = 20\nvalue = \"01\"\n" + strAttribute),
              Texts{"odd.toml:9: \"id\" has its value from another [[attribute]] already"});
}

TEST(Warning, FlowsBeyondTheCapacity) {
    const std::string strFlow = "[[service-flow]]\ndirection = \"uplink\"\ntype = \"UGS\"\n"
                                "max-rate = 60000\n";
    EXPECT_EQ(Warnings("[service-flows]\nuplink-capacity = 100000\n" + strFlow + strFlow),
              Texts{"odd.toml:8: \"direction\" has no capacity left for this flow"});
}

TEST(Warning, AStateFileInADirectoryThatIsMissing) {
    EXPECT_EQ(Warnings("[state]\nfile = \"/nonexistent/state\"\n"),
              Texts{"odd.toml:2: \"file\" is in a directory that is not there"});
}

TEST(Warning, APlaceThatNobodyHas) {
    EXPECT_EQ(Warnings(strStation + "[radio]\nshadowing = 6\nfading = \"vehicular\"\n"
                                    "[[way-point]]\nat = 0\nx = 1\ny = 1\n"
                                    "[[way-point]]\nat = 1\nx = 2\ny = 1\n"),
              (Texts{"odd.toml:9: \"shadowing\" says nothing: no station has a place",
                     "odd.toml:10: \"fading\" says nothing: no station has a place",
                     "odd.toml:12: \"at\" leads nowhere: no station has a place"}));
}

TEST(Warning, EventsThatCannotDoAnything) {
    EXPECT_EQ(Warnings("[[event]]\nat = 1\nkind = \"flow-deleted\"\nsfid = 3\n"),
              Texts{"odd.toml:4: \"sfid\" is 3, and the network sets up no flow"});
    const std::string strHandover = "[[event]]\nat = 1\nkind = \"handover\"\n"
                                    "station = \"00:12:0A:01:02:03\"\n";
    EXPECT_EQ(Warnings(strStation + "[start]\nstate = \"link-up\"\nstation = \"00120A010203\"\n" +
                       strHandover),
              Texts{"odd.toml:14: \"station\" serves the modem already"});
    EXPECT_EQ(Warnings(strStation + strHandover), Texts{});
}

TEST(Scenario, OpensFailAsItSays) {
    const WholeModem stLate(Scenario::FromText("[device]\nfailed-opens = 2\n", ""));
    EXPECT_FALSE(stLate.OpensAt(1));
    EXPECT_FALSE(stLate.OpensAt(2));
    EXPECT_TRUE(stLate.OpensAt(3));
    const WholeModem stAbsent(Scenario::FromText("[device]\npresent = false\n", ""));
    EXPECT_FALSE(stAbsent.OpensAt(1000));
}

// The air.

TEST(Radio, SignalsVarySlowlyWithinTheirBounds) {
    const std::string strVarying = strStation + "variation = 5\nvariation-period = 4\n";
    WholeModem stModem(Scenario::FromText(strVarying, ""));
    const Station &stStation = stModem.Air().Stations().front();
    double fLeast = 0;
    double fMost = -200;
    double fBefore = stModem.Air().Measure(stStation, 0).fRSSI;
    for (ModemTime iTime = 0; iTime < 400 * i64Second; iTime += i64Second / 10) {
        const Measurement stMeasurement = stModem.Air().Measure(stStation, iTime);
        EXPECT_LT(std::abs(stMeasurement.fRSSI - fBefore), 0.5);
        EXPECT_EQ(stMeasurement.fCINR - stMeasurement.fRSSI, 86);
        fBefore = stMeasurement.fRSSI;
        fLeast = std::min(fLeast, fBefore);
        fMost = std::max(fMost, fBefore);
    }
    EXPECT_GE(fLeast, -63);
    EXPECT_LE(fMost, -53);
    EXPECT_GT(fMost - fLeast, 6);
}

TEST(Radio, TheSameSeedGivesTheSameValuesAndAnotherOneOthers) {
    const std::string strVarying = strStation + "variation = 5\n";
    WholeModem stFirst(Scenario::FromText("seed = 1\n" + strVarying, ""));
    WholeModem stAgain(Scenario::FromText("seed = 1\n" + strVarying, ""));
    WholeModem stOther(Scenario::FromText("seed = 2\n" + strVarying, ""));
    const auto RSSI = [](Modem &stModem) {
        return stModem.Air().Measure(stModem.Air().Stations().front(), 3 * i64Second).fRSSI;
    };
    EXPECT_EQ(RSSI(stFirst), RSSI(stAgain));
    EXPECT_NE(RSSI(stFirst), RSSI(stOther));
}

TEST(Radio, ChanceIsSpreadAndKeptApartByPurpose) {
    Random stFirst(1, "a");
    Random stSecond(1, "b");
    EXPECT_NE(stFirst.Next(), stSecond.Next());
    int aiCounts[6] = {};
    for (int i = 0; i < 6000; ++i) {
        ++aiCounts[stFirst.Below(6)];
    }
    for (const int iCount : aiCounts) {
        EXPECT_NEAR(iCount, 1000, 150);
    }
    EXPECT_EQ(stFirst.Below(0), 0U);
    // Sequences stay what they are, so that scenarios do.
    EXPECT_EQ(Random(20, "radio").Next(), UINT64_C(0x31BBC94806581EF5));
}

} // namespace

// Modems in files: what is saved, and what lives again.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "ModemBench.h"
#include "SteeredDevice.h"
#include "TestScenarios.h"
#include "library/SavedModem.h"
#include "time/Random.h"

namespace {

using Texts = std::vector<std::string>;

const std::string strStepped = "[clock]\nkind = \"stepped\"\n[device]\nanswer-delay = 0\n";
const std::string strEmptyModem = "[clock]\nkind = \"stepped\"\n";

std::string ReadAll(const std::string &strPath) {
    std::ifstream stFile(strPath, std::ios::binary);
    std::ostringstream stText;
    stText << stFile.rdbuf();
    return stText.str();
}

void WriteAll(const std::string &strPath, const std::string &strText) {
    std::ofstream(strPath, std::ios::binary) << strText;
}

class Saving : public testing::Test {
  protected:
    Saving() : m_strRoom(testing::TempDir() + "saving-" + std::to_string(getpid()) + "/") {
        std::filesystem::remove_all(m_strRoom);
        std::filesystem::create_directories(m_strRoom);
    }
    ~Saving() override { std::filesystem::remove_all(m_strRoom); }
    std::string Path(const std::string &strName) const { return m_strRoom + strName; }
    std::string Save(SteeredDevice &stDevice, const std::string &strName = "saved") const {
        EXPECT_EQ(stDevice.Say("save " + Path(strName)), "ok");
        return ReadAll(Path(strName));
    }

    std::string m_strRoom;
};

// The file.

TEST_F(Saving, AFileHasTheScenarioTheJournalAndAnEnd) {
    const std::string strScenario = strStepped + "[half-mini-card]\nexchanges = 0 # \\ \xC3\xBC\n";
    SteeredDevice stDevice(strScenario, "a scenario");
    stDevice.Listen();
    uint8_t aucByte[1] = {0x5A};
    EXPECT_EQ(stDevice.TheDevice()->WriteMemory(0x0F010000, {aucByte, 1}), 0);
    EXPECT_EQ(stDevice.TheDevice()->ReadMemory(0x0F010000, {aucByte, 1}), 0);
    EXPECT_EQ(stDevice.TheDevice()->ReadMemory(0, {aucByte, 1}), -7);
    EXPECT_EQ(stDevice.Send("24 00 01 00"), 0);
    EXPECT_EQ(stDevice.Send("24 00 09 00"), -5);
    EXPECT_EQ(stDevice.Say("advance 2"), "ok 2.006000");
    EXPECT_EQ(stDevice.Say("state").substr(0, 4), "ok {");
    EXPECT_EQ(stDevice.Say("seed"), "ok 1");
    EXPECT_EQ(stDevice.Say("seed 5"), "ok 5");
    EXPECT_EQ(stDevice.Say("seed -5").substr(0, 6), "error ");
    EXPECT_EQ(stDevice.Say("message  bytes=\"03 00 02 00\" at=3"), "ok");
    stDevice.Listen(false);
    // FNV-1a over 4 and the bytes of 36/2, from 14695981039346656037 on.
    EXPECT_EQ(Save(stDevice), "qor020-journal 1\n"
                              "scenario a scenario\n"
                              "|[clock]\n"
                              "|kind = \"stepped\"\n"
                              "|[device]\n"
                              "|answer-delay = 0\n"
                              "|[half-mini-card]\n"
                              "|exchanges = 0 # \\5C \\C3\\BC\n"
                              "|\n"
                              "journal\n"
                              "callback on\n"
                              "write 251723776 5A\n"
                              "read 251723776 1\n"
                              "call\n"
                              "send 0 24000100\n"
                              "send -5 24000900\n"
                              "live 2006000\n"
                              "command seed 5\n"
                              "live 2006000\n"
                              "command message  bytes=\"03 00 02 00\" at=3\n"
                              "callback off\n"
                              "end 1 313A285B4F76FDD5\n");
}

TEST_F(Saving, AFileIsForItsOwnerAloneAndReplacesAnotherOne) {
    SteeredDevice stDevice(strEmptyModem);
    WriteAll(Path("saved"), "old");
    std::filesystem::permissions(Path("saved"), std::filesystem::perms::all);
    EXPECT_EQ(Save(stDevice).substr(0, 17), "qor020-journal 1\n");
    struct stat stStatus {};
    ASSERT_EQ(lstat(Path("saved").c_str(), &stStatus), 0);
    EXPECT_EQ(stStatus.st_mode, S_IFREG | 0600U);
    size_t uFiles = 0;
    for (const auto &stEntry : std::filesystem::directory_iterator(m_strRoom)) {
        uFiles += stEntry.exists() ? 1 : 0;
    }
    EXPECT_EQ(uFiles, 1U);
}

TEST_F(Saving, WhereNoFileCanBeWrittenThatIsSaid) {
    SteeredDevice stDevice(strEmptyModem);
    EXPECT_EQ(stDevice.Say("save " + m_strRoom), "error " + m_strRoom +
                                                     " cannot be written: something else than a "
                                                     "file stands there");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(stDevice.Say("save " + Path("pipe")), "error " + Path("pipe") +
                                                        " cannot be written: something else than a "
                                                        "file stands there");
    EXPECT_EQ(stDevice.Say("save " + Path("no/saved")),
              "error " + Path("no/saved") + " cannot be written: No such file or directory");
    EXPECT_EQ(stDevice.Say("save"),
              "error something is missing behind the command (help tells what)");
    EXPECT_EQ(stDevice.Say("save \"\""), "error a file has a name");
    EXPECT_EQ(stDevice.Say("save a b"), "error nothing is known of \"b\" here");
    EXPECT_EQ(stDevice.Say("save a b=1"), "error \"b\" is not known here");
}

TEST_F(Saving, TheRealClockIsNotSaved) {
    SteeredDevice stDevice("time-scale = 0.001\n");
    const std::string strAnswer =
        "error the clock is the real one: only a modem with the stepped one can be saved";
    EXPECT_EQ(stDevice.Say("save " + Path("saved")), strAnswer);
    EXPECT_EQ(stDevice.Say("load " + Path("saved")), strAnswer);
    EXPECT_FALSE(std::filesystem::exists(Path("saved")));
}

TEST_F(Saving, WhatHasBeenAskedTooMuchIsNotSaved) {
    SteeredDevice stDevice(strEmptyModem);
    std::vector<uint8_t> aucMuch(0x10000, 1);
    const ByteView stMuch{aucMuch.data(), 0x10000};
    for (int i = 0; i < 255; ++i) {
        ASSERT_EQ(stDevice.TheDevice()->WriteMemory(0x0F010000, stMuch), 0);
    }
    EXPECT_EQ(stDevice.Say("save " + Path("saved")), "ok");
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(stDevice.TheDevice()->WriteMemory(0x0F010000, stMuch), 0);
        EXPECT_EQ(stDevice.Say("save " + Path("other")),
                  "error the modem has been asked too much to be saved: more than 33554432 bytes");
    }
    // Another modem has not been asked so much.
    SteeredDevice stSmall(strEmptyModem);
    EXPECT_EQ(stSmall.Say("save " + Path("small")), "ok");
    EXPECT_EQ(stDevice.Say("load " + Path("small")), "ok 0.000000");
    EXPECT_EQ(stDevice.Say("save " + Path("other")), "ok");
}

// Another one that lives again.

// What comes of a session's second part: calls from a client and from its callback, commands.
class Session {
  public:
    explicit Session(uint64_t u64Seed) : m_stRandom(u64Seed, "session") {}

    void Go(SteeredDevice &stDevice, int iSteps) {
        for (int i = 0; i < iSteps; ++i) {
            const std::string &strStep =
                astrSteps[m_stRandom.Below(static_cast<uint32_t>(astrSteps.size()))];
            if (strStep.front() >= '0' && strStep.front() <= '9') {
                m_strResults += std::to_string(stDevice.Send(strStep)) + " ";
            } else if (strStep == "callback") {
                stDevice.Listen(false);
                stDevice.Listen();
            } else if (strStep == "memory") {
                uint8_t aucFrame[4];
                stDevice.TheDevice()->ReadMemory(0x0F000010, {aucFrame, 4});
                stDevice.TheDevice()->WriteMemory(0x0F010000, {aucFrame, 4});
                m_strResults += HexOf({aucFrame, aucFrame + 4}) + " ";
            } else {
                m_strResults += stDevice.Say(strStep) + " ";
            }
        }
    }
    const std::string &Results() const { return m_strResults; }

  private:
    const Texts astrSteps{
        "02 00 01 00 6C 7B 27 00 10 27 00 00 FF 00*55", // synchronisation
        "02 00 02 00 00*4",                             // entry
        "02 00 03 00",                                  // its status
        "03 00 01 00",                                  // synchronisation down
        "13 00 01 00",                                  // idle mode
        "13 00 04 00",                                  // and out of it
        "15 00 01 00",                                  // trace
        "15 00 02 00",
        "08 00 03 00",             // loggers
        "11 00 01 00 E8 03 00 00", // statistics
        "18 00 02 00 DF 05 00*27", // the list of service flows
        "24 00 01 00",             // half mini card
        "24 00 09 00",             // nothing
        "memory",
        "callback",
        "advance 0.7",
        "until 2/2 limit=3",
        "until idle limit=2",
        "state",
        "stations",
        "fade station=00120A000101 by=3 over=2",
        "fade station=00120A000101 by=-3",
        "fault drop probability=0.1 count=3",
        "fault off all",
        "fault on all",
        "seed 12",
        "message bytes=03000200 when=link-up",
        "link-loss reason=phy-sync-error",
        "paging",
    };
    Random m_stRandom;
    std::string m_strResults;
};

class LongSaving : public Saving, public testing::WithParamInterface<const char *> {};

TEST_P(LongSaving, ALoadedModemGoesOnAsTheSavedOneDoes) {
    const std::string strScenario =
        ReadAll(std::string(SCENARIO_DIRECTORY "/../../tests/repeat/") + GetParam() + ".toml");
    for (uint64_t u64Seed = 1; u64Seed <= 4; ++u64Seed) {
        SteeredDevice stFirst(strScenario);
        stFirst.SendFromCallback(50, "02 00 03 00");
        stFirst.Listen();
        Session stSession(u64Seed);
        stSession.Go(stFirst, 120);
        const std::string strSaved = Save(stFirst);
        const std::string strState = stFirst.Say("state");
        EXPECT_GT(stFirst.Heard().size(), 20U);
        Session stSame = stSession;
        stSession.Go(stFirst, 120);
        const Texts astrFirst = stFirst.Heard();

        SteeredDevice stOther(strEmptyModem);
        stOther.SendFromCallback(50, "02 00 03 00");
        stOther.Listen();
        EXPECT_EQ(stOther.Say("load " + Path("saved")).substr(0, 3), "ok ");
        EXPECT_EQ(stOther.Heard(), Texts{});
        EXPECT_EQ(stOther.Say("state"), strState);
        EXPECT_EQ(Save(stOther, "again"), strSaved);
        // The callback counts on from where the first one's was.
        stOther.CountOn(stFirst, astrFirst.size());
        stSame.Go(stOther, 120);
        EXPECT_EQ(stSame.Results(), stSession.Results());
        EXPECT_EQ(stOther.Heard(), astrFirst);
        EXPECT_EQ(Save(stOther, "again"), Save(stFirst));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, LongSaving, testing::Values("answered", "watched", "faulty"),
                         [](const auto &stInfo) { return std::string(stInfo.param); });

TEST_F(Saving, LoadingGoesBackInTheSameSession) {
    SteeredDevice stDevice(strStepped + strLinkUp);
    stDevice.Listen();
    stDevice.Say("advance 1");
    Save(stDevice);
    stDevice.Say("link-loss reason=phy-sync-error");
    EXPECT_EQ(stDevice.Heard().size(), 1U);
    EXPECT_NE(stDevice.Say("state").find("\"state\":\"unsynchronised\""), std::string::npos);
    EXPECT_EQ(stDevice.Say("load " + Path("saved")), "ok 1.001000");
    EXPECT_NE(stDevice.Say("state").find("\"state\":\"link-up\""), std::string::npos);
    EXPECT_EQ(stDevice.Heard(), Texts{});
    EXPECT_EQ(stDevice.Say("advance 1"), "ok 2.001000");
}

TEST_F(Saving, MessagesThatWaitForACallbackWaitAgain) {
    SteeredDevice stFirst(strStepped);
    stFirst.Say("message bytes=03000200");
    Save(stFirst);
    SteeredDevice stOther(strEmptyModem);
    EXPECT_EQ(stOther.Say("load " + Path("saved")), "ok 0.000000");
    stOther.Listen();
    EXPECT_EQ(stOther.Heard(), Texts{"03 00 02 00"});
    SteeredDevice stListening(strEmptyModem);
    stListening.Listen();
    EXPECT_EQ(stListening.Say("load " + Path("saved")), "ok 0.000000");
    EXPECT_EQ(stListening.Heard(), Texts{"03 00 02 00"});
    const std::string strAgain = Save(stListening, "again");
    EXPECT_EQ(stOther.Say("load " + Path("again")), "ok 0.000000");
    EXPECT_EQ(stOther.Heard(), Texts{});
    EXPECT_EQ(Save(stOther, "again"), strAgain);
}

// From inside the callback, with messages left that have not been delivered.
TEST_F(Saving, CallsFromTheCallbackComeWhereTheyCame) {
    SteeredDevice stFirst(strStepped + "[half-mini-card]\nexchanges = 0\n");
    stFirst.SendFromCallback(3, "24 00 01 00");
    for (int i = 0; i < 5; ++i) {
        stFirst.Say("message bytes=03000200");
    }
    stFirst.Listen();
    stFirst.Say("advance 1");
    EXPECT_EQ(stFirst.Heard(), (Texts{"03 00 02 00", "03 00 02 00", "03 00 02 00", "03 00 02 00",
                                      "03 00 02 00", "24 00 02 00", "24 00 02 00"}));
    const std::string strSaved = Save(stFirst);
    EXPECT_NE(strSaved.find("callback on\ntook 3\nsend 0 24000100\n"), std::string::npos);
    SteeredDevice stOther(strEmptyModem);
    stOther.Listen();
    EXPECT_EQ(stOther.Say("load " + Path("saved")), stFirst.Say("advance 0"));
    EXPECT_EQ(Save(stOther, "again"), strSaved);
}

// Files besides the scenario.

TEST_F(Saving, AScenarioWithItsFilesIsSavedWhole) {
    WriteAll(Path("main.toml"), "include = \"base.toml\"\n" + strStepped);
    WriteAll(Path("base.toml"), "[route]\nfile = \"route.csv\"\n[[generator]]\ndirection = "
                                "\"downlink\"\npattern = \"file\"\nfile = \"packets.txt\"\n" +
                                    strLinkUp + pcTwoFlows);
    WriteAll(Path("route.csv"), "0,0,0\n10,100,0\n");
    WriteAll(Path("packets.txt"), "0.5 100\n1.5 200\n");
    SteeredDevice stFirst(ReadAll(Path("main.toml")), Path("main.toml"));
    stFirst.Say("advance 1");
    const std::string strSaved = Save(stFirst);
    EXPECT_NE(strSaved.find("read " + Path("route.csv") + "\n|0,0,0\n|10,100,0\n|\n"),
              std::string::npos);
    stFirst.Say("advance 1");
    for (const char *pcName : {"main.toml", "base.toml", "route.csv", "packets.txt"}) {
        std::filesystem::remove(Path(pcName));
    }
    SteeredDevice stOther(strEmptyModem);
    EXPECT_EQ(stOther.Say("load " + Path("saved")), "ok 1.000000");
    EXPECT_EQ(Save(stOther, "again"), strSaved);
    stOther.Say("advance 1");
    EXPECT_EQ(stOther.Say("state"), stFirst.Say("state"));
}

TEST_F(Saving, LoadingWritesNoStateFileAndReadsNone) {
    const std::string strState = Path("state");
    WriteAll(strState, "mib 500.0.0 07000000\n");
    SteeredDevice stFirst(strStepped + "[state]\nfile = \"" + strState + "\"\n");
    EXPECT_EQ(stFirst.Send("0A 00 03 00 E1 00 02 00 12 34 00"), 0);
    EXPECT_NE(ReadAll(strState), "mib 500.0.0 07000000\n");
    const std::string strSaved = Save(stFirst);
    EXPECT_NE(strSaved.find("\nread " + strState + "\n|mib 500.0.0 07000000\n|\nwrite " + strState +
                            "\n|done\njournal\n"),
              std::string::npos);
    WriteAll(strState, "mib 501.0.0 09000000\n");
    SteeredDevice stOther(strEmptyModem);
    EXPECT_EQ(stOther.Say("load " + Path("saved")).substr(0, 3), "ok ");
    EXPECT_EQ(ReadAll(strState), "mib 501.0.0 09000000\n");
    EXPECT_EQ(Save(stOther, "again"), strSaved);
    // From now on it keeps what the other one would.
    EXPECT_EQ(stOther.Send("0A 00 03 00 E1 00 02 00 56 78 00"), 0);
    const std::string strKept = ReadAll(strState);
    EXPECT_EQ(strKept.substr(0, 21), "mib 500.0.0 07000000\n");
    WriteAll(strState, "");
    EXPECT_EQ(stFirst.Send("0A 00 03 00 E1 00 02 00 56 78 00"), 0);
    EXPECT_EQ(ReadAll(strState), strKept);
}

// A write that failed then has failed again, though nothing stands in its way now.
TEST_F(Saving, WhatCouldNotBeKeptIsNotKeptAgain) {
    std::filesystem::create_directories(Path("room"));
    SteeredDevice stFirst(strStepped + "[state]\nfile = \"" + Path("room/state") + "\"\n");
    std::filesystem::remove(Path("room"));
    EXPECT_EQ(stFirst.Send("0A 00 03 00 E1 00 02 00 12 34 00"), 0);
    const std::string strSaved = Save(stFirst);
    EXPECT_NE(strSaved.find("\nread " + Path("room/state") + "\nwrite " + Path("room/state") +
                            "\njournal\n"),
              std::string::npos);
    std::filesystem::create_directories(Path("room"));
    SteeredDevice stOther(strEmptyModem);
    EXPECT_EQ(stOther.Say("load " + Path("saved")).substr(0, 3), "ok ");
    EXPECT_EQ(Save(stOther, "again"), strSaved);
    EXPECT_TRUE(std::filesystem::is_empty(Path("room")));
}

// Those that requests name.
TEST_F(Saving, FilesOfDownloadsAreAsTheyWere) {
    WriteAll(Path("c"), std::string(50000, 'x'));
    const std::string strScenario = "[clock]\nkind = \"stepped\"\n[download]\nrequire-files = "
                                    "true\nhost-directory = \"" +
                                    m_strRoom + "\"\n";
    const std::string strDownload = "10 00 02 00 00*4 2F 63 00*126"; // of /c
    SteeredDevice stFirst(strScenario);
    stFirst.Listen();
    EXPECT_EQ(stFirst.Send(strDownload), 0);
    const std::string strSaved = Save(stFirst);
    EXPECT_NE(strSaved.find("\nsize " + m_strRoom + "/c\n|50000\njournal\n"), std::string::npos)
        << strSaved;
    std::filesystem::remove(Path("c"));
    SteeredDevice stOther(strEmptyModem);
    stOther.Listen();
    EXPECT_EQ(stOther.Say("load " + Path("saved")), stFirst.Say("advance 0"));
    EXPECT_EQ(stOther.Say("until idle"), stFirst.Say("until idle"));
    EXPECT_EQ(stOther.Heard(), stFirst.Heard());
}

// What is no saved modem.

class Refused : public Saving {
  protected:
    Refused() : m_stDevice(strStepped) {
        m_stDevice.Listen();
        m_stDevice.Send("24 00 01 00");
        m_stDevice.Say("advance 1");
        m_strGood = Save(m_stDevice, "good");
        m_strState = m_stDevice.Say("state");
    }
    // What is said of the text, behind the path.
    std::string Answer(const std::string &strText) {
        WriteAll(Path("bad"), strText);
        const std::string strAnswer = m_stDevice.Say("load " + Path("bad"));
        EXPECT_EQ(m_stDevice.Say("state"), m_strState);
        const std::string strBefore = "error " + Path("bad") + ":";
        return strAnswer.starts_with(strBefore) ? strAnswer.substr(strBefore.size()) : strAnswer;
    }
    // The good one with other lines in its journal.
    std::string With(const std::string &strJournal) const {
        return m_strGood.substr(0, m_strGood.find("journal\ncallback")) + "journal\n" + strJournal;
    }

    SteeredDevice m_stDevice;
    std::string m_strGood;
    std::string m_strState;
};

TEST_F(Refused, ATextThatIsNoSavedModemHasItsLineSaid) {
    const std::string strLines = "line of nothing\n";
    const struct {
        std::string strText;
        std::string strAnswer;
    } astCases[] = {
        {"", "1: is no saved modem, or one of another version"},
        {"\n", "1: is no saved modem, or one of another version"},
        {"qor020-journal 2\n", "1: is no saved modem, or one of another version"},
        {std::string("\0\0\0", 3), "1: is no saved modem, or one of another version"},
        {"qor020-journal 1", "1: the rest is missing"},
        {"qor020-journal 1\n", "2: the rest is missing"},
        {"qor020-journal 1\njournal\n", "2: must be the scenario"},
        {"qor020-journal 1\nscenario x\n|[", "3: the rest is missing"},
        {"qor020-journal 1\nscenario x\n|a\\5\njournal\n",
         "3: a backslash has no two digits behind it"},
        {"qor020-journal 1\nscenario x\njournal\nend 0 0\n",
         "3: the scenario does not have the stepped clock"},
        {With(""), "9: the rest is missing"},
        {With("dance\n"), "9: is nothing that a modem is asked"},
        {With("|\n"), "9: is nothing that a modem is asked"},
        {With("callback\n"), "9: must be on or off"},
        {With("send 0\nend"), "10: the rest is missing"},
        {With("send x 00\n"), "9: a number is missing, or is none that can stand there"},
        {With("send 0 0\n"), "9: must end with whole bytes"},
        {With("send 0 " + std::string(20490, '0') + "\n"), "9: is longer than a message"},
        {With("read 1 16777217\n"), "9: a number is missing, or is none that can stand there"},
        {With("read 1\n"), "9: a number is missing, or is none that can stand there"},
        {With("write 1 0G\n"), "9: must end with whole bytes"},
        {With("took 1\n"), "9: there are not that many messages"},
        {With("took 18446744073709551616\n"),
         "9: a number is missing, or is none that can stand there"},
        {With("live -1\n"), "9: a number is missing, or is none that can stand there"},
        {With("live 5\nlive 4\n"), "10: a number is missing, or is none that can stand there"},
        {With("live 9223372036854775807\n"),
         "9: a number is missing, or is none that can stand there"},
        {With("command \n"), "9: there is no command in this line"},
        {With("command seed\n"), "9: \"seed\" changes nothing in a modem"},
        {With("command state\n"), "9: \"state\" changes nothing in a modem"},
        {With("command load /tmp/x\n"), "9: \"load\" changes nothing in a modem"},
        {With("command seed x\n"),
         "9: \"seed\" must be a whole number from 0 to 9223372036854775807"},
        {With("command dance\n"), "9: there is no command \"dance\" (help tells all)"},
        {With("end 0 CBF29CE484222325\n" + strLines), "9: has something behind its end"},
        {With("end 1 CBF29CE484222325\n"),
         "9: this modem does something else here: another version of it was saved"},
        {With("call\nsend -4 24000100\nend 0 CBF29CE484222325\n"),
         "10: this modem does something else here: another version of it was saved"},
        {With("live 07\nend 0 CBF29CE484222325\n"),
         "9: this modem does something else here: another version of it was saved"},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(Answer(stCase.strText), stCase.strAnswer) << stCase.strText;
    }
    WriteAll(Path("bad"), With("end 0 CBF29CE484222325\n"));
    EXPECT_EQ(m_stDevice.Say("load " + Path("bad")), "ok 0.000000");
}

TEST_F(Refused, AMistakeInTheScenarioIsSaidOfTheScenario) {
    EXPECT_EQ(Answer("qor020-journal 1\nscenario my.toml\n|sede = 1\njournal\nend 0 0\n"),
              "error my.toml:1: \"sede\" is not known here");
    EXPECT_EQ(Answer("qor020-journal 1\nscenario my.toml\n|include = \"x.toml\"\njournal\n"),
              "error my.toml:1: \"include\" names \"x.toml\", which cannot be read: No such file "
              "or directory");
}

TEST_F(Refused, AnyPartOfAFileIsRefused) {
    for (size_t uLength = 0; uLength < m_strGood.size(); ++uLength) {
        const std::string strAnswer = Answer(m_strGood.substr(0, uLength));
        EXPECT_NE(strAnswer.substr(0, 2), "ok") << uLength;
    }
    EXPECT_EQ(Answer(m_strGood), "ok 1.002000");
}

// Whatever byte is another one: either that is found, or nothing comes of it.
TEST_F(Refused, AnyDamageIsFoundOrMeansNothing) {
    for (size_t i = 0; i < m_strGood.size(); ++i) {
        std::string strDamaged = m_strGood;
        strDamaged[i] = static_cast<char>(strDamaged[i] ^ 1);
        WriteAll(Path("bad"), strDamaged);
        const std::string strAnswer = m_stDevice.Say("load " + Path("bad"));
        if (strAnswer.starts_with("ok")) {
            EXPECT_EQ(Save(m_stDevice), strDamaged) << i;
            EXPECT_EQ(m_stDevice.Say("load " + Path("good")), "ok 1.002000");
        }
        EXPECT_EQ(m_stDevice.Say("state"), m_strState) << i;
    }
}

TEST_F(Refused, WhatIsNoFileOrTooLongIsNotRead) {
    EXPECT_EQ(m_stDevice.Say("load " + m_strRoom),
              "error " + m_strRoom + ": cannot be read: it is not a regular file");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(m_stDevice.Say("load " + Path("pipe")),
              "error " + Path("pipe") + ": cannot be read: it is not a regular file");
    EXPECT_EQ(m_stDevice.Say("load /dev/zero"),
              "error /dev/zero: cannot be read: it is not a regular file");
    EXPECT_EQ(m_stDevice.Say("load " + Path("nothing")),
              "error " + Path("nothing") + ": is not there");
    WriteAll(Path("long"), "");
    std::filesystem::resize_file(Path("long"), 33554433);
    EXPECT_EQ(m_stDevice.Say("load " + Path("long")),
              "error " + Path("long") + ": is longer than 33554432 bytes");
    WriteAll(Path("long"), "qor020-journal 1\nscenario x\n" + std::string(1000000, '\n'));
    EXPECT_EQ(m_stDevice.Say("load " + Path("long")),
              "error " + Path("long") + ":1000003: the rest is missing");
    EXPECT_EQ(m_stDevice.Say("state"), m_strState);
}

// A file with an endless life in it: who closes the device need not wait for it.
TEST_F(Refused, ALoadEndsWithItsDevice) {
    int iLooks = 0;
    try {
        (void)LiveAgain("qor020-journal 1\nscenario x\n" + QuotedLines(strStepped + strLinkUp) +
                            "journal\nlive 999999999999999999\nend 0 0\n",
                        "endless", [&] { return ++iLooks < 1000; });
        FAIL();
    } catch (const ScenarioError &stError) {
        EXPECT_STREQ(stError.what(), "endless:59: is not needed any more");
    }
}

} // namespace

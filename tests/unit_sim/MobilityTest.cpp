// Sleep mode and handover.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// A definition: PSC ID, type, direction, windows and flags as in the client's default;
// no CIDs.
std::string Definition(const std::string &strID, const std::string &strActivity,
                       const std::string &strType = "01", const std::string &strTTWF = "01") {
    return " " + strID + " " + strType + " 00 08 05 20 04 00 " + strTTWF + " 01 00 00 00*32 " +
           strActivity + " 00 00 00 00";
}

std::string OneClass(const std::string &strDefinition) {
    return "01 00 00 00" + strDefinition + " 00*147";
}

const std::string strNone = "26/2: 00*200";

TEST(SleepMode, ADefinitionGetsItsIDAndIsKept) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "00"))), 0);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "00"))), 0);
    // The same class again, with another type.
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("00", "00", "02"))), 0);
    EXPECT_EQ(stBench.Messages(), Told({"26/2: " + OneClass(Definition("00", "00")),
                                        "26/2: " + OneClass(Definition("01", "00")),
                                        "26/2: " + OneClass(Definition("00", "00", "02"))}));
}

TEST(SleepMode, ThereAreThreeClassesTheModemsOwnIncluded) {
    const std::string strThree = "03 00 00 00" + Definition("FF", "00") + Definition("FF", "00") +
                                 Definition("FF", "00") + " 00*49";
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(26, 1, strThree), 0);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "00"))), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"26/2: 03 00 00 00" + Definition("00", "00") + Definition("01", "00") +
                        Definition("02", "00") + " 00*49",
                    strNone}));

    ModemBench stWithDefault(std::string(pcFourStations) + "[sleep]\ndefault-psc = true\n");
    EXPECT_EQ(stWithDefault.Send(26, 1, strThree), 0);
    EXPECT_EQ(stWithDefault.Messages(), Told({"26/2: 02 00 00 00" + Definition("01", "00") +
                                              Definition("02", "00") + " 00*98"}));
}

TEST(SleepMode, AnActiveClassIsSleepModeUntilItIsDeactivated) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    stBench.Pass();
    EXPECT_EQ(stBench.Send(2, 3), 0);
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("00", "02"))), 0);
    stBench.Pass();
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("00", "02"))), 0);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("00", "01"))), 0);
    stBench.Pass();
    const std::vector<std::string> astrTexts = stBench.Messages();
    ASSERT_EQ(astrTexts.size(), 6U);
    EXPECT_EQ(astrTexts[0], Told({"26/2: " + OneClass(Definition("00", "03"))})[0]);
    EXPECT_EQ(astrTexts[1].substr(0, 7), "2/2: 0B");
    EXPECT_EQ(astrTexts[2], Told({"26/2: " + OneClass(Definition("00", "02"))})[0]);
    EXPECT_EQ(astrTexts[3].substr(0, 7), "2/2: 11");
    EXPECT_EQ(astrTexts[4], Told({strNone})[0]);
    EXPECT_EQ(astrTexts[5], Told({"26/2: " + OneClass(Definition("00", "01"))})[0]);
}

TEST(SleepMode, WithoutALinkAClassIsDefinedButNotActivated) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("00", "01"))), 0);
    EXPECT_EQ(stBench.Messages(), Told({"26/2: " + OneClass(Definition("00", "00")), strNone}));
}

TEST(SleepMode, NonsenseIsNotDefined) {
    ModemBench stBench(strLinkUp);
    for (const char *pcDefinition :
         {"FF 00 00 08 05 20 04 00 01 01 00 00 00*32 00 00*4", // no type
          "FF 04 00 08 05 20 04 00 01 01 00 00 00*32 00 00*4", // type 4
          "FF 01 03 08 05 20 04 00 01 01 00 00 00*32 00 00*4", // direction 3
          "FF 01 00 00 05 20 04 00 01 01 00 00 00*32 00 00*4", // no sleep window
          "FF 01 00 08 08 20 04 00 01 01 00 00 00*32 00 00*4", // exponent of 4 bits
          "FF 01 00 08 05 00 04 00 01 01 00 00 00*32 00 00*4", // never listens
          "FF 01 00 08 05 20 00 04 01 01 00 00 00*32 00 00*4", // base of 11 bits
          "FF 01 00 08 05 20 04 00 02 01 00 00 00*32 00 00*4", // flags
          "FF 01 00 08 05 20 04 00 01 02 00 00 00*32 00 00*4",
          "FF 03 00 08 05 20 00 00 01 01 00 00 00*32 00 00*4",    // sleeps once, not at all
          "05 01 00 08 05 20 04 00 01 01 00 00 00*32 00 00*4",    // of no class
          "FF 01 00 08 05 20 04 00 01 01 00 00 00*32 04 00*4"}) { // activity 4
        EXPECT_EQ(stBench.Send(26, 1, OneClass(std::string(" ") + pcDefinition)), 0);
        EXPECT_EQ(stBench.Messages(), Told({strNone})) << pcDefinition;
    }
}

TEST(SleepMode, CountsBeyondTheRecordAreRefused) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(26, 1, "04 00 00 00 00*196"), -6);
    EXPECT_EQ(stBench.Send(26, 1, "FF FF FF FF 00*196"), -6);
    EXPECT_EQ(stBench.Send(26, 1,
                           "01 00 00 00 FF 01 00 08 05 20 04 00 01 01 00 00 00*32 00"
                           " 11 00 00 00 00*147"),
              -6);
    EXPECT_EQ(stBench.Send(26, 1, "00*199"), -4);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(SleepMode, WaitingTrafficEndsItInTheNextListeningWindow) {
    // Sleeps 40 ms, listens 160 ms, sleeps 80 ms, listens, sleeps 160 ms ...
    ModemBench stBench(strLinkUp + "[[event]]\nat = 0.25\nkind = \"traffic-waits\"\n");
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.01 26/2: " + OneClass(Definition("00", "03")),
                                             "0.28 26/2: " + OneClass(Definition("00", "02"))}));
}

TEST(SleepMode, WaitingTrafficLeavesAClassWithoutTheFlagAlone) {
    ModemBench stBench(strLinkUp + "[[event]]\nat = 0.25\nkind = \"traffic-waits\"\n");
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03", "01", "00"))), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages().size(), 1U);
}

TEST(SleepMode, TheLastWindowRepeatsForever) {
    // After half an hour: the windows have long reached 128 frames, and the cycle 160.
    ModemBench stBench(strLinkUp + "[[event]]\nat = 1800.01\nkind = \"traffic-waits\"\n"
                                   "[handover]\nlook-period = 0\n[link]\nsupervision = 1000\n"
                                   "[signalling]\nranging-period = 1000\nreport-period = 1000\n");
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    stBench.RunUntil(1810);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 2U);
    // Windows of 8, 16, 32, 64 frames and what is listened between them end at 248
    // frames; 360002 frames are 2248 cycles and 74 frames later: 54 short of 128.
    EXPECT_EQ(astrTexts[1].substr(0, 7), "1800.28");
}

TEST(SleepMode, AClassOfTheThirdTypeSleepsOnce) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03", "03"))), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.01 26/2: " + OneClass(Definition("00", "03", "03")),
                    "0.64 26/2: " + OneClass(Definition("00", "02", "03"))}));
}

TEST(SleepMode, SteadyTrafficDoesNotLetTheModemSleep) {
    ModemBench stBench(strLinkUp + "[traffic]\nkeeps-awake = true\n");
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.01 26/2: " + OneClass(Definition("00", "03")),
                                             "0.04 26/2: " + OneClass(Definition("00", "02"))}));
}

// From the first station to the second one, 13.25 dB stronger after the fade.
const std::string strFade =
    "[[event]]\nat = 10\nkind = \"fade\"\nstation = \"00120A010203\"\nby = 26.5\n";
const std::string strEvent = "[[event]]\nat = 10\nkind = \"handover\"\n";

TEST(Handover, HappensWhenANeighbourIsBetterByTheHysteresis) {
    ModemBench stBench(strLinkUp + strFade);
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 2U);
    // Seen half a second after it has become better at the latest, better for a
    // second, 50 ms for the handover itself.
    EXPECT_EQ(astrTexts[0],
              Told({"11.05 23/1: 01 00 00 12 0A 01 02 04 00 12 0A 01 02 03 00 00 00 00 32 00 00 00"
                    " 23 00 00 00 03 00 00 00 00 00 00 00"})[0]);
    EXPECT_EQ(astrTexts[1].substr(0, 39), "60.00 2/2: 11 01 00 00 00 00 12 0A 01 0");
    EXPECT_NE(astrTexts[1].find("00 12 0A 01 02 04"), std::string::npos);
}

TEST(Handover, DoesNotHappenWithinTheHysteresis) {
    ModemBench stBench(strLinkUp + strFade + "[handover]\nhysteresis = 14\n");
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Handover, DoesNotHappenForAMoment) {
    ModemBench stBench(strLinkUp + strFade +
                       "[[event]]\nat = 10.9\nkind = \"fade\"\nstation = \"00120A010203\"\n"
                       "by = -26.5\n");
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Handover, StaysWithinTheAccessNetwork) {
    // The third station, of another network, would be 13.5 dB better.
    ModemBench stBench(strLinkUp + strFade +
                       "[[event]]\nat = 1\nkind = \"vanish\"\nstation = \"00120A010204\"\n");
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Handover, CanBeLeftToEvents) {
    ModemBench stBench(strLinkUp + strFade + "[handover]\nlook-period = 0\n");
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Handover, FailsAtAStationThatIsTooWeakAndIsTriedAgainLater) {
    const std::string strFailed =
        " 23/1: 00 00 00 12 0A 01 02 03 00 12 0A 01 02 04 04 00 00 00 6E 00 00 00"
        " 03 00 00 00 23 00 00 00 03 00 00 00 A1 B2 C3";
    ModemBench stBench(strLinkUp + strFade + "[radio]\nentry-rssi = -60\n");
    stBench.RunUntil(30);
    // Four attempts, 50 ms and three times 20 ms; ten seconds of peace, then better for
    // another second.
    EXPECT_EQ(stBench.TimedMessages(), Told({"11.11" + strFailed, "22.61" + strFailed}));
}

TEST(Handover, FailsAtAStationThatDoesNotLetTheModemIn) {
    std::string strScenario = strLinkUp + strFade;
    strScenario.replace(strScenario.find("variation = 0"), 13, "entry = \"pkm-failure\"");
    ModemBench stBench(strScenario);
    stBench.RunUntil(15);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"11.05 23/1: 00 00 00 12 0A 01 02 03 00 12 0A 01 02 04 00 00 00 00 32 00 00 00"
                    " 03 00 00 00 23 00 00 00 03 00 00 00 A1 B2 C3"}));
}

TEST(Handover, IsBroughtAboutByAnEvent) {
    // Into another network and subnet, with two ranging failures on the way.
    std::string strScenario = strLinkUp + strEvent +
                              "station = \"002B37000001\"\n"
                              "ranging-failures = 2\n";
    strScenario.replace(strScenario.find("nsp-support = false"), 19, "ip-subnet = 9");
    ModemBench stBench(strScenario);
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"10.09 23/1: 01 01 00 2B 37 00 00 01 00 12 0A 01 02 03 02 00 00 00 5A 00 00 00"
                    " 40 00 00 00 03 00 00 00 00 00 00 00"}));
}

TEST(Handover, FailsByAnEvent) {
    ModemBench stBench(strLinkUp + strEvent + "station = \"00120A010204\"\nfails = true\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"10.05 23/1: 00 00 00 12 0A 01 02 03 00 12 0A 01 02 04 00 00 00 00 32 00 00 00"
                    " 03 00 00 00 23 00 00 00 03 00 00 00 A1 B2 C3"}));
}

TEST(Handover, NeedsALinkAndAnotherStation) {
    ModemBench stSynchronised(std::string(pcFourStations) +
                              "[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n" +
                              strEvent + "station = \"00120A010204\"\n");
    stSynchronised.RunUntil(20);
    EXPECT_EQ(stSynchronised.Messages(), Told({}));

    ModemBench stSame(strLinkUp + strEvent + "station = \"00120A010203\"\n");
    stSame.RunUntil(20);
    EXPECT_EQ(stSame.Messages(), Told({}));
}

TEST(Handover, IsGivenUpWhenTheLinkGoes) {
    ModemBench stBench(strLinkUp + strEvent + "station = \"00120A010204\"\n" +
                       "[recovery]\non = false\n[handover]\ntime = 2\n"
                       "[[event]]\nat = 11\nkind = \"link-loss\"\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"11.00 2/2: 18 00*44"}));
}

TEST(Handover, EndsSleepMode) {
    // The way back to the stronger station would be the next handover.
    ModemBench stBench(strLinkUp + strEvent +
                       "station = \"00120A010204\"\n[handover]\nlook-period = 0\n");
    EXPECT_EQ(stBench.Send(26, 1, OneClass(Definition("FF", "03"))), 0);
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 4U);
    EXPECT_EQ(astrTexts[1], Told({"10.05 26/2: " + OneClass(Definition("00", "02"))})[0]);
    EXPECT_EQ(astrTexts[2].substr(0, 14), "10.05 23/1: 01");
    EXPECT_EQ(astrTexts[3].substr(0, 13), "20.00 2/2: 11");
}

TEST(Handover, RangingFailsAsOftenAsTheScenarioHasIt) {
    const std::string strScenario = strLinkUp + strFade + "[handover]\nranging-failure = 1\n";
    ModemBench stBench(strScenario);
    stBench.RunUntil(15);
    const std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 1U);
    EXPECT_EQ(astrTexts[0].substr(0, 14), "11.11 23/1: 00");
}

} // namespace

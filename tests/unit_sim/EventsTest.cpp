// When events happen: at their moment, when something comes about, and again.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

const std::string strNoDelay = "[device]\nanswer-delay = 0\n";

std::string Event(const std::string &strKeys) { return "[[event]]\n" + strKeys + "\n"; }

// An event that shows itself as the message 3/2 with this byte.
std::string Shown(const std::string &strByte, const std::string &strKeys) {
    return Event("kind = \"message\"\nbytes = \"03000200" + strByte + "\"\n" + strKeys);
}

// What the events of a scenario show until a second: "SECOND BYTE".
std::vector<std::string> ShownUntil(const std::string &strScenario, ModemTime iUntil) {
    WholeModem stModem(Scenario::FromText(strScenario, "events.toml"));
    std::vector<std::string> astrShown;
    while (const std::optional<ModemTime> iDue = stModem.NextDue()) {
        if (*iDue > iUntil * i64Second) {
            break;
        }
        stModem.AdvanceTo(*iDue);
        for (MessageBytes aucMessage; stModem.TakeMessage(&aucMessage);) {
            if (aucMessage.size() == 5 && aucMessage[0] == 3) {
                astrShown.push_back(std::to_string(stModem.Now()) + " " +
                                    HexOf({aucMessage.begin() + 4, aucMessage.end()}));
            }
        }
    }
    return astrShown;
}

std::string ReasonAgainst(const std::string &strScenario) {
    try {
        const WholeModem stModem(Scenario::FromText(strScenario, "bad.toml"));
        return "";
    } catch (const ScenarioError &stError) {
        return stError.what();
    }
}

using Texts = std::vector<std::string>;

TEST(Events, HappenAgainAndAgain) {
    EXPECT_EQ(ShownUntil(strNoDelay + Shown("01", "at = 1\nevery = 2"), 6),
              (Texts{"1000000 01", "3000000 01", "5000000 01"}));
    EXPECT_EQ(ShownUntil(strNoDelay + Shown("01", "at = 1\nevery = 0.5\ntimes = 3"), 100),
              (Texts{"1000000 01", "1500000 01", "2000000 01"}));
    EXPECT_EQ(ShownUntil(strNoDelay + Shown("01", "at = 1\nevery = 0.5\ntimes = 1"), 100),
              (Texts{"1000000 01"}));
}

TEST(Events, HappenWhenTheLinkGetsIntoAState) {
    const std::string strLoss = Event("at = 3\nkind = \"link-loss\"");
    const std::string strLink = strNoDelay + pcFourStations + pcLinkUp + strLoss;
    EXPECT_EQ(ShownUntil(strLink + Shown("01", "when = \"unsynchronised\""), 100),
              (Texts{"3000000 01"}));
    EXPECT_EQ(ShownUntil(strLink + Shown("01", "when = \"link-up\"\nafter = 2"), 100),
              (Texts{"2000000 01"}));
    EXPECT_EQ(ShownUntil(strLink + Shown("01", "when = \"idle\""), 100), Texts{});
}

TEST(Events, HappenWhenAMessageGoesToTheClient) {
    const std::string strThrice = Shown("01", "at = 1\nevery = 1\ntimes = 3");
    EXPECT_EQ(ShownUntil(strNoDelay + strThrice +
                             Event("kind = \"message\"\nbytes = \"0300070002\"\n"
                                   "when = \"message 3/2\""),
                         100),
              (Texts{"1000000 01", "1000000 02", "2000000 01", "3000000 01"}));
    EXPECT_EQ(ShownUntil(strNoDelay + strThrice +
                             Event("kind = \"message\"\nbytes = \"0300070002\"\n"
                                   "when = \"message 3/2\"\nafter = 0.25\ntimes = 2"),
                         100),
              (Texts{"1000000 01", "1250000 02", "2000000 01", "2250000 02", "3000000 01"}));
    EXPECT_EQ(ShownUntil(strNoDelay + Shown("01", "at = 1") +
                             Event("kind = \"message\"\nbytes = \"0300070002\"\n"
                                   "when = \"message 3/2\"\nafter = 1\nevery = 2\ntimes = 2"),
                         100),
              (Texts{"1000000 01", "2000000 02", "4000000 02"}));
}

// What brings itself about, without end, lets time go on.
TEST(Events, AnEventThatIsItsOwnConditionTakesTime) {
    EXPECT_EQ(ShownUntil(strNoDelay + Shown("01", "at = 1") +
                             Shown("02", "when = \"message 3/2\"\ntimes = 0"),
                         2)
                  .size(),
              1001U);
}

TEST(Events, ConditionsAndRepetitionsAreChecked) {
    const struct {
        std::string strKeys;
        std::string strReason;
    } astCases[] = {
        {"kind = \"paging\"\nwhen = \"happy\"",
         R"(bad.toml:3: "when" must be a state of the link or a message, "message 2/2")"},
        {"kind = \"paging\"\nwhen = \"message 2\"",
         R"(bad.toml:3: "when" must be a state of the link or a message, "message 2/2")"},
        {"kind = \"paging\"\nwhen = \"message 2/2/2\"",
         R"(bad.toml:3: "when" must be a state of the link or a message, "message 2/2")"},
        {"kind = \"paging\"\nwhen = \"message 2/70000\"",
         R"(bad.toml:3: "when" must be a state of the link or a message, "message 2/2")"},
        {"kind = \"paging\"\nat = 1\nwhen = \"idle\"",
         R"(bad.toml:3: "at" has no meaning beside "when")"},
        {"kind = \"paging\"\nat = 1\nafter = 1", "bad.toml:4: \"after\" is not known here"},
        {"kind = \"paging\"\nat = 1\ntimes = 1", "bad.toml:4: \"times\" is not known here"},
        {"kind = \"paging\"\nat = 1\nevery = 0",
         "bad.toml:4: \"every\" must be a number from 0.001 to 1000000000"},
        {"kind = \"paging\"\nwhen = \"idle\"\ntimes = 0\nafter = 0",
         "bad.toml:5: \"after\" must be a number from 0.001 to 1000000000"},
        {"kind = \"paging\"\nevery = 1", "bad.toml:1: \"at\" is missing"},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(ReasonAgainst(Event(stCase.strKeys)), stCase.strReason);
    }
}

} // namespace

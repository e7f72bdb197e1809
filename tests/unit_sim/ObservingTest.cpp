// Whoever watches changes nothing: the same life with trace, loggers, log data and
// statistics switched all the time, and without.
#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

const std::string strSyncUp = "6C 7B 27 00 10 27 00 00 03 00 00 00 00*52";

// A life with chance in it: levels that vary, digests that fail, answers late and repeated, an
// inactivity timer that is at its end when nobody asks for anything but to watch.
const std::string strScenario = std::string("seed = 11\n") + pcFourStations + R"(
variation = 3
[[service-flow]]
direction = "uplink"
type = "BE"
[[service-flow]]
direction = "downlink"
type = "BE"
[[generator]]
direction = "uplink"
pattern = "poisson"
rate = 3000
packet-size = 200
[signalling]
cmac-failures = 0.3
descriptor-period = 0.3
neighbour-period = 0.4
map-period = 0.05
ranging-period = 0.7
report-period = 1.1
[idle]
inactivity-timer = 4
[[fault]]
kind = "repeat"
probability = 0.4
[[fault]]
kind = "delay"
seconds = 0.5
probability = 0.3
[[event]]
at = 22
kind = "paging"
[[event]]
at = 30
kind = "link-loss"
)";

bool Watches(const std::string &strTimed) {
    const std::string strMessage = strTimed.substr(strTimed.find(' ') + 1);
    constexpr std::array apcTypes{"21/", "8/", "27/", "31/", "17/"};
    return std::any_of(apcTypes.begin(), apcTypes.end(),
                       [&](const char *pcType) { return strMessage.rfind(pcType, 0) == 0; });
}

// What the client hears of its own doing, and what the station hears of the modem.
std::vector<std::string> Live(bool bWatched) {
    ModemBench stBench(strScenario);
    std::vector<std::string> astrHeard;
    Signalling &stSignalling = stBench.TheModem().TheSignalling();
    stSignalling.OnMessage([&](const ManagementMessage &stMessage) {
        // Broadcasts are put together for observers alone.
        if (stMessage.u32CID < 0xFF00) {
            astrHeard.push_back(std::to_string(stMessage.u32Frame) + " " +
                                std::to_string(stMessage.u32Code) + ": " +
                                HexOf(stMessage.aucBody));
        }
    });
    stSignalling.OnRanging([&](RangingKind, const RangingSignal &stSignal) {
        astrHeard.push_back(std::to_string(stSignal.u32Frame) + " code " +
                            std::to_string(stSignal.u32Code) + " " +
                            std::to_string(stSignal.u32SubChannel));
    });
    stSignalling.OnPower([&](const PowerChange &stChange) {
        astrHeard.push_back(std::to_string(stChange.u32Frame) + " power " +
                            std::to_string(stChange.iPower));
    });
    Traffic &stTraffic = stBench.TheModem().UserTraffic();
    stTraffic.OnRequest([&](const RangingSignal &stSignal) {
        astrHeard.push_back(std::to_string(stSignal.u32Frame) + " asks " +
                            std::to_string(stSignal.u32Code));
    });
    stTraffic.OnBurst([&](const UserBurst &stBurst) {
        astrHeard.push_back(std::to_string(stBurst.u32Frame) + (stBurst.bUplink ? " up" : " down") +
                            std::to_string(stBurst.astPDUs.size()));
    });
    struct Call {
        int iTenth;
        uint32_t u32Type;
        uint32_t u32SubType;
        std::string strPayload;
    };
    const std::vector<Call> astCalls{{1, 2, 1, strSyncUp},   {10, 2, 2, "00*4"},
                                     {60, 2, 3, ""},         {250, 30, 5, ""},
                                     {330, 2, 1, strSyncUp}, {340, 2, 2, "00*4"}};
    uint32_t u32Turn = 0;
    for (int iTenth = 1; iTenth < 400; ++iTenth) {
        stBench.RunUntil(iTenth / 10.0);
        for (const Call &stCall : astCalls) {
            if (stCall.iTenth == iTenth) {
                EXPECT_EQ(stBench.Send(stCall.u32Type, stCall.u32SubType, stCall.strPayload), 0);
            }
        }
        if (bWatched && iTenth % 3 == 0) {
            ++u32Turn;
            EXPECT_EQ(stBench.Send(21, 1 + u32Turn % 2), 0);
            EXPECT_EQ(stBench.Send(8 + u32Turn / 8 % 2, 1 + u32Turn % 8), 0);
            EXPECT_EQ(stBench.Send(u32Turn % 2 == 0 ? 27 : 31, 2 + u32Turn / 3 % 2), 0);
            EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
        }
        for (const std::string &strTimed : stBench.TimedMessages()) {
            if (!Watches(strTimed)) {
                astrHeard.push_back(strTimed);
            }
        }
    }
    // What has been counted until now does not depend on who has asked before; the answer
    // may come late, and twice.
    stBench.RunUntil(42);
    (void)stBench.Messages();
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    stBench.RunUntil(43);
    for (const std::string &strMessage : stBench.Messages()) {
        if (strMessage.rfind("17/1:", 0) == 0 && astrHeard.back() != strMessage) {
            astrHeard.push_back(strMessage);
        }
    }
    return astrHeard;
}

TEST(Observing, ChangesNeitherAnswersNorTimersNorChance) {
    const std::vector<std::string> astrAlone = Live(false);
    const std::vector<std::string> astrWatched = Live(true);
    EXPECT_GT(astrAlone.size(), 500U);
    EXPECT_EQ(astrAlone, astrWatched);
}

TEST(Observing, KeepsNobodyFromIdleMode) {
    ModemBench stBench(std::string(pcFourStations) + pcLinkUp + "[idle]\ninactivity-timer = 4\n");
    for (int iSecond = 1; iSecond < 6; ++iSecond) {
        stBench.RunUntil(iSecond - 0.5);
        EXPECT_EQ(stBench.Send(21, 1), 0);
        EXPECT_EQ(stBench.Send(8, 1), 0);
        EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    }
    (void)stBench.Messages();
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages()[0].substr(0, 8), "2/2: 0A ");
}

// Every period may be that of the frames: the dialogues of the link go on all the same.
TEST(Observing, TheShortestPeriodsHoldNoDialogueUp) {
    for (const bool bWatched : {false, true}) {
        ModemBench stBench(std::string(pcFourStations) +
                           "[signalling]\nmap-period = 0.005\ndescriptor-period = 0.005\n"
                           "neighbour-period = 0.005\nranging-period = 0.005\n"
                           "report-period = 0.005\n[trace]\non = " +
                           (bWatched ? "true\n" : "false\n"));
        std::vector<uint32_t>
            au32Frames; // of the key request, sent when the link is about to be up
        stBench.TheModem().TheSignalling().OnMessage([&](const ManagementMessage &stMessage) {
            if (stMessage.u32Code == MessageCode::PKMREQ ||
                stMessage.u32Code == MessageCode::DREGREQ) {
                au32Frames.push_back(stMessage.u32Frame);
            }
        });
        EXPECT_EQ(stBench.Send(2, 1, strSyncUp), 0);
        stBench.RunUntil(0.5);
        EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
        stBench.RunUntil(5);
        // Start, two transfers, SA-TEK and the keys, all before the link was up at 1.55.
        ASSERT_EQ(au32Frames.size(), 5U);
        EXPECT_LE(au32Frames.back(), 310U);
        EXPECT_EQ(stBench.Send(19, 1), 0);
        stBench.RunUntil(6);
        ASSERT_EQ(au32Frames.size(), 6U);
        EXPECT_LE(au32Frames.back(), 1010U);
    }
}

} // namespace

// The radio model: what is received of stations that have places, and what follows from it.
// Expected levels are worked out by hand from the formulas in docs/simulator/radio.md.
#include <cmath>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "ModemBench.h"
#include "air/Decibels.h"
#include "air/PhysicalLayer.h"
#include "air/Propagation.h"

namespace {

constexpr uint32_t u32Frequency = 2587500;

// A station at x metres on the usual channel.
std::string StationAt(int iNumber, int iX, int iPreamble, const std::string &strMore = "") {
    return "[[station]]\nbsid = \"00 12 0A 00 00 0" + std::to_string(iNumber) +
           "\"\nfrequency = 2587500\nbandwidth = 10000\npreamble = " + std::to_string(iPreamble) +
           "\nx = " + std::to_string(iX) + "\ny = 0\n" + strMore;
}

Measurement MeasuredIn(const std::string &strScenario, ModemTime iNow = 0) {
    WholeModem stModem(Scenario::FromText(strScenario, ""));
    return stModem.Air().Measure(stModem.Air().Stations().front(), iNow);
}

std::string ErrorOf(const std::string &strScenario) {
    try {
        WholeModem stModem(Scenario::FromText(strScenario, "x.toml"));
    } catch (const ScenarioError &stError) {
        return stError.what();
    }
    return "";
}

TEST(Decibels, AreTheirOwnInverse) {
    EXPECT_EQ(Decibels(1), 0);
    EXPECT_NEAR(Decibels(2), 3.010299956639812, 1e-14);
    EXPECT_NEAR(Decibels(1e-17), -170, 1e-12);
    EXPECT_EQ(Decibels(0), -400);
    EXPECT_EQ(Decibels(-1), -400);
    EXPECT_EQ(RatioOf(0), 1);
    EXPECT_NEAR(RatioOf(10), 10, 1e-13);
    EXPECT_NEAR(RatioOf(-97) / 1.9952623149688795e-10, 1, 1e-13);
    for (int i = 0; i < 600; ++i) {
        const double fLevel = -150 + 0.37 * i;
        EXPECT_NEAR(Decibels(RatioOf(fLevel)), fLevel, 1e-11);
    }
}

TEST(Propagation, TheLossGrowsAsTheRecommendationHasIt) {
    EXPECT_NEAR(PathLoss(1000, 2000000), 128.12, 0.005);
    EXPECT_NEAR(PathLoss(100, 2000000), 90.52, 0.005);
    EXPECT_NEAR(PathLoss(300, u32Frequency), 110.81, 0.005);
    // Never less than in free space, and never nearer than ten metres.
    EXPECT_NEAR(PathLoss(10, 2000000), 58.47, 0.005);
    EXPECT_EQ(PathLoss(0, 2000000), PathLoss(10, 2000000));
}

TEST(Propagation, ALossTellsTheDistance) {
    for (const double fMetres : {10.0, 35.0, 300.0, 1000.0, 25000.0}) {
        EXPECT_NEAR(DistanceOfLoss(PathLoss(fMetres, u32Frequency), u32Frequency), fMetres,
                    fMetres * 1e-9);
    }
    EXPECT_EQ(DistanceOfLoss(-100, u32Frequency), 10);
}

TEST(Propagation, NoiseIsThatOfTheBandwidth) {
    EXPECT_NEAR(NoiseLevel(10000, 7), -97, 1e-9);
    EXPECT_NEAR(NoiseLevel(5000, 7), -100.0103, 1e-4);
    EXPECT_NEAR(NoiseLevel(7000, 5), -100.549, 1e-3);
}

TEST(Propagation, ShadowsAreNormalAndStayWhereTheyAre) {
    double fSum = 0;
    double fSquares = 0;
    constexpr int iSide = 60;
    for (int i = 0; i < iSide; ++i) {
        for (int k = 0; k < iSide; ++k) {
            const double fShadow = Shadow(7, {i * 73.0, k * 91.0}, 50);
            fSum += fShadow;
            fSquares += fShadow * fShadow;
        }
    }
    EXPECT_NEAR(fSum / iSide / iSide, 0, 0.08);
    EXPECT_NEAR(fSquares / iSide / iSide, 1, 0.1);
    EXPECT_EQ(Shadow(7, {10, 20}, 50), Shadow(7, {10, 20}, 50));
    EXPECT_NE(Shadow(7, {10, 20}, 50), Shadow(8, {10, 20}, 50));
    EXPECT_NEAR(Shadow(7, {10, 20}, 50), Shadow(7, {10.5, 20}, 50), 0.1);
}

TEST(Propagation, FadingKeepsTheMeanPowerAndMovesWithTheWay) {
    for (const Fading eFading : {Fading::Pedestrian, Fading::Vehicular}) {
        double fPower = 0;
        constexpr int iLooks = 4000;
        for (int i = 0; i < iLooks; ++i) {
            fPower += RatioOf(FadingAt(eFading, 3, i * 0.31, u32Frequency));
        }
        EXPECT_NEAR(fPower / iLooks, 1, 0.06);
        // Half a wave is 58 mm.
        EXPECT_NEAR(FadingAt(eFading, 3, 5, u32Frequency),
                    FadingAt(eFading, 3, 5.0001, u32Frequency), 0.1);
    }
    EXPECT_EQ(FadingAt(Fading::None, 3, 5, u32Frequency), 0);
}

TEST(Radio, APlaceGivesTheLevelAndNoiseTheRest) {
    const Measurement stMeasurement = MeasuredIn(StationAt(1, 300, 3));
    EXPECT_NEAR(stMeasurement.fRSSI, 43 - 110.81, 0.005);
    EXPECT_NEAR(stMeasurement.fCINR, 43 - 110.81 + 97, 0.005);
    // In steps of 1/256 dB.
    EXPECT_EQ(stMeasurement.fRSSI * 256, std::round(stMeasurement.fRSSI * 256));
    EXPECT_NEAR(MeasuredIn(StationAt(1, 300, 3, "power = 30\n")).fRSSI, 30 - 110.81, 0.005);
    EXPECT_NEAR(MeasuredIn("[radio]\nnoise-figure = 10\n" + StationAt(1, 300, 3)).fCINR,
                43 - 110.81 + 94, 0.005);
}

TEST(Radio, APlainLevelIsWhatIsReceivedAndNoiseIsThatOfTheBandwidth) {
    const std::string strPlain = "[[station]]\nbsid = \"00 12 0A 00 00 01\"\nfrequency = 2587500\n"
                                 "bandwidth = 10000\npreamble = 3\nrssi = -70\n";
    EXPECT_EQ(MeasuredIn(strPlain).fRSSI, -70);
    EXPECT_NEAR(MeasuredIn(strPlain).fCINR, 27, 0.005);
    EXPECT_EQ(MeasuredIn(strPlain + "cinr = 12.5\n").fCINR, 12.5);
}

// Levels go on rising, the CINR does not, with either reuse and with any antenna.
TEST(Radio, NoCINRIsAboveWhatAReceiverCanTell) {
    EXPECT_NEAR(MeasuredIn(StationAt(1, 160, 3)).fCINR, 39.46, 0.01);
    const Measurement stNear = MeasuredIn(StationAt(1, 30, 3));
    EXPECT_GT(stNear.fRSSI, -40);
    EXPECT_EQ(stNear.fCINR, 40);
    const std::string strStrong = "[[station]]\nbsid = \"00 12 0A 00 00 01\"\nfrequency = "
                                  "2587500\nbandwidth = 10000\npreamble = 3\nrssi = -30\n";
    WholeModem stModem(Scenario::FromText(strStrong + "cinr = 38\n", ""));
    Radio &stAir = stModem.Air();
    const Station &stStation = stAir.Stations().front();
    EXPECT_EQ(stAir.Measure(stStation, 0).fCINR, 38);
    EXPECT_EQ(stAir.Measure(stStation, 0, 1.5).fCINR, 39.5);
    EXPECT_EQ(stAir.Measure(stStation, 0, 3).fCINR, 40);
    EXPECT_EQ(stAir.Measure(stStation, 0, 3).fRSSI, -27);
    EXPECT_EQ(stAir.ReuseOneCINR(stStation, 0), 38);
    Radio::Fade(stAir.Stations().front(), -10, 0, 0);
    EXPECT_EQ(stAir.ReuseOneCINR(stStation, 0), 40);
    EXPECT_EQ(stAir.Measure(stStation, 0).fRSSI, -20);
}

// 300 m from one station and 600 m from another on the same channel, which is received
// 37.6 * log10(2) = 11.32 dB weaker: -79.13 dBm beside noise of -97 dBm.
TEST(Radio, ReuseOneSeesTheOtherCellsAndReuseThreeTheSegment) {
    const auto Levels = [](const std::string &strScenario) {
        WholeModem stModem(Scenario::FromText(strScenario, ""));
        const Radio &stAir = stModem.Air();
        const Station &stStation = stAir.Stations().front();
        return std::array{stAir.ReuseOneCINR(stStation, 0), stAir.Measure(stStation, 0).fCINR};
    };
    const auto afOther = Levels(StationAt(1, 300, 3) + StationAt(2, -600, 35));
    EXPECT_NEAR(afOther[0], 11.25, 0.01);
    EXPECT_NEAR(afOther[1], 29.19, 0.01);
    const auto afSame = Levels(StationAt(1, 300, 3) + StationAt(2, -600, 4));
    EXPECT_NEAR(afSame[0], 11.25, 0.01);
    EXPECT_NEAR(afSame[1], 11.25, 0.01);
    const auto afSilent = Levels(StationAt(1, 300, 3) + StationAt(2, -600, 4, "on-air = false\n"));
    EXPECT_NEAR(afSilent[0], 29.19, 0.01);
    // Half of the other's channel of 10 MHz lies in this one.
    const std::string strBeside = "[[station]]\nbsid = \"00 12 0A 00 00 02\"\nfrequency = 2592500\n"
                                  "bandwidth = 10000\npreamble = 4\nx = -600\ny = 0\n";
    const auto afBeside = Levels(StationAt(1, 300, 3) + strBeside);
    EXPECT_NEAR(afBeside[0], 14.21, 0.02);
}

TEST(Radio, PreamblesStandForTheirSegments) {
    const auto SegmentOf = [](uint32_t u32Preamble) {
        Station stStation{};
        stStation.u32Preamble = u32Preamble;
        return stStation.Segment();
    };
    const std::array<std::array<uint32_t, 2>, 9> aau32Cases{
        {{0, 0}, {31, 0}, {32, 1}, {63, 1}, {64, 2}, {95, 2}, {96, 0}, {97, 1}, {113, 2}}};
    for (const auto &[u32Preamble, u32Segment] : aau32Cases) {
        EXPECT_EQ(SegmentOf(u32Preamble), u32Segment) << u32Preamble;
    }
}

TEST(Radio, TheDeviationIsThatOfTheLastSecond) {
    // Nothing moves.
    WholeModem stStill(Scenario::FromText(StationAt(1, 300, 3), ""));
    EXPECT_EQ(stStill.Air().Deviations(stStill.Air().Stations().front(), 0).fRSSI, 0);
    // 20 dB a second: even steps of 1 dB over 20 looks deviate by 5.77 dB.
    WholeModem stFading(Scenario::FromText(StationAt(1, 300, 3), ""));
    Station &stStation = stFading.Air().Stations().front();
    Radio::Fade(stStation, 40, 0, 2 * i64Second);
    const Deviation stDeviation = stFading.Air().Deviations(stStation, i64Second);
    EXPECT_NEAR(stDeviation.fRSSI, 5.77, 0.01);
    EXPECT_NEAR(stDeviation.fCINR, 5.77, 0.01);
}

TEST(Radio, TheModemFollowsItsWayPoints) {
    const std::string strRoute = "[[way-point]]\nat = 10\nx = 100\ny = 0\n"
                                 "[[way-point]]\nat = 20\nx = 100\ny = 200\n";
    WholeModem stModem(Scenario::FromText(strRoute + StationAt(1, 300, 3), ""));
    Route &stRoute = stModem.Air().TheRoute();
    const auto IsAt = [&](double fSecond, double fX, double fY) {
        const Place stPlace = stRoute.At(static_cast<ModemTime>(fSecond * 1e6));
        EXPECT_EQ(stPlace.fX, fX) << fSecond;
        EXPECT_EQ(stPlace.fY, fY) << fSecond;
    };
    IsAt(0, 100, 0);
    IsAt(10, 100, 0);
    IsAt(15, 100, 100);
    IsAt(20, 100, 200);
    IsAt(500, 100, 200);
    EXPECT_EQ(stRoute.Travelled(15 * i64Second), 100);
    EXPECT_EQ(stRoute.Travelled(500 * i64Second), 200);
    // Told to go elsewhere, it forgets the rest.
    stRoute.Go({0, 100}, 15 * i64Second, 4 * i64Second);
    IsAt(12.5, 100, 50);
    IsAt(17, 50, 100);
    IsAt(20, 0, 100);
    stRoute.Go({7, 8}, 30 * i64Second, 0);
    IsAt(30, 7, 8);
}

TEST(Radio, AnEventMovesTheModem) {
    ModemBench stBench(StationAt(1, 300, 3) +
                       "[[event]]\nkind = \"move\"\nat = 1\nx = 290\ny = 0\nover = 2\n");
    stBench.RunUntil(2);
    const Radio &stAir = stBench.TheModem().Air();
    EXPECT_EQ(stAir.Distance(stAir.Stations().front(), 2 * i64Second), 155);
    EXPECT_EQ(stAir.Distance(stAir.Stations().front(), 3 * i64Second), 10);
}

class RouteFile : public testing::Test {
  protected:
    RouteFile() { std::filesystem::create_directories(m_stDirectory); }
    ~RouteFile() override { std::filesystem::remove_all(m_stDirectory); }
    void Write(const std::string &strName, const std::string &strText) const {
        std::ofstream(m_stDirectory / strName, std::ios::binary) << strText;
    }
    std::string Path(const std::string &strName) const { return m_stDirectory / strName; }
    // What is wrong with the route of these bytes.
    std::string ErrorOf(const std::string &strRoute) const {
        Write("drive.csv", strRoute);
        try {
            WholeModem stModem(Scenario::FromFile(Path("drive.toml")));
        } catch (const ScenarioError &stError) {
            std::string strError = stError.what();
            return strError.replace(0, m_stDirectory.native().size(), "");
        }
        return "";
    }

    const std::filesystem::path m_stDirectory =
        std::filesystem::temp_directory_path() /
        ("route." + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(RouteFile, IsReadFromTheScenariosDirectory) {
    Write("drive.toml", StationAt(1, 300, 3) + "[route]\nfile = \"drive.csv\"\n");
    Write("drive.csv", "# second,x,y\n0,0,0\r\n\n 10, 100.5,-50\n20,200,0");
    WholeModem stModem(Scenario::FromFile(Path("drive.toml")));
    EXPECT_EQ(stModem.Air().TheRoute().At(5 * i64Second).fX, 50.25);
    EXPECT_EQ(stModem.Air().TheRoute().At(5 * i64Second).fY, -25);
    EXPECT_EQ(stModem.Air().TheRoute().At(20 * i64Second).fX, 200);
}

TEST_F(RouteFile, MistakesAreReportedWithTheirLine) {
    Write("drive.toml", StationAt(1, 300, 3) + "[route]\nfile = \"drive.csv\"\n");
    const std::string strRow = " must be a second, and x and y in metres: \"12.5,100,-40\"";
    EXPECT_EQ(ErrorOf("0,0,0\n1,2\n"), "/drive.csv:2:" + strRow);
    EXPECT_EQ(ErrorOf("0,0,0,0\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("0;0;0\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("second,x,y\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("-1,0,0\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("1,nan,0\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("1,1e10,0\n"), "/drive.csv:1:" + strRow);
    EXPECT_EQ(ErrorOf("1,0,0\n1,1,1\n"), "/drive.csv:2: must be later than the line before");
    EXPECT_EQ(ErrorOf("# nothing\n"), "/drive.csv: has no way point");
    std::filesystem::remove(Path("drive.csv"));
    Write("drive.toml", "[route]\nfile = \"missing.csv\"\n");
    EXPECT_EQ(ErrorOf(""), "/missing.csv: is not there");
}

TEST(Radio, MistakesAreReportedWithTheirLine) {
    EXPECT_EQ(ErrorOf(StationAt(1, 3, 3, "rssi = -70\n")),
              "x.toml:8: \"rssi\" has no meaning beside a place");
    EXPECT_EQ(ErrorOf(StationAt(1, 3, 3, "cinr = 7\n")),
              "x.toml:8: \"cinr\" has no meaning beside a place");
    EXPECT_EQ(ErrorOf("[[station]]\nbsid = \"000000000001\"\nfrequency = 1\nbandwidth = 1\n"
                      "preamble = 1\nx = 1\n"),
              "x.toml:1: \"y\" is missing");
    EXPECT_EQ(ErrorOf("[radio]\nfading = \"urban\"\n"),
              "x.toml:2: \"fading\" must be one of \"none\", \"pedestrian\", \"vehicular\"");
    EXPECT_EQ(ErrorOf("[radio]\nshadow-square = 0\n"),
              "x.toml:2: \"shadow-square\" must be a number from 1 to 1000000");
    EXPECT_EQ(ErrorOf("[[way-point]]\nat = 5\nx = 0\ny = 0\n[[way-point]]\nat = 5\nx = 1\ny = 0\n"),
              "x.toml:6: \"at\" must be later than that of the way point before");
    EXPECT_EQ(ErrorOf("[route]\nfile = \"a.csv\"\n[[way-point]]\nat = 5\nx = 0\ny = 0\n"),
              "x.toml:2: \"file\" has no meaning beside [[way-point]]");
    EXPECT_EQ(ErrorOf("[[event]]\nkind = \"move\"\nat = 1\nx = 1\n"), "x.toml:1: \"y\" is missing");
}

// A tenth of the bursts fail at their profile's CINR; 2 dB are ten times the odds; a second attempt
// has 3.01 dB more, a fourth one 6.02.
TEST(PhysicalLayer, AttemptsFailByOneModel) {
    const BurstProfile &stProfile = ProfileAt(14);
    EXPECT_NEAR(FailureRate(stProfile, 14), 0.1, 1e-12);
    EXPECT_NEAR(FailureRate(stProfile, 16), 0.01099, 1e-5);
    EXPECT_NEAR(FailureRate(stProfile, 12), 0.52632, 1e-5);
    EXPECT_NEAR(FailureRate(stProfile, 14, 2), 0.00346, 1e-5);
    EXPECT_NEAR(FailureRate(stProfile, 14, 4), 0.000108, 1e-6);
}

// 2.4 km there and back take 16.01 us, 179.3 samples at 11.2 MHz: the first answer to a code takes
// the modem there to within 32 samples, the second one to within 4.
TEST(Ranging, TimingIsTheTimeThereAndBack) {
    EXPECT_NEAR(RoundTrip(2400, 10000), 179.3, 0.1);
    ModemBench stBench("[radio]\nentry-rssi = -110\nsensitivity = -110\n" +
                       StationAt(1, 2400, 3, "power = 60\n"));
    std::vector<int32_t> aiTimings;
    stBench.TheModem().TheSignalling().OnMessage([&](const ManagementMessage &stMessage) {
        const std::vector<uint8_t> &aucBody = stMessage.aucBody;
        if (stMessage.u32Code == MessageCode::RNGRSP && aucBody.at(1) == 1) {
            aiTimings.push_back(static_cast<int32_t>(uint32_t{aucBody.at(3)} << 24 |
                                                     uint32_t{aucBody.at(4)} << 16 |
                                                     uint32_t{aucBody.at(5)} << 8 | aucBody.at(6)));
        }
    });
    stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55");
    stBench.RunUntil(1);
    stBench.Send(2, 2, "00*4");
    stBench.RunUntil(2);
    ASSERT_GE(aiTimings.size(), 2U);
    EXPECT_NEAR(aiTimings[0], 179, 32);
    EXPECT_NEAR(aiTimings[0] + aiTimings[1], 179, 4);
}

} // namespace

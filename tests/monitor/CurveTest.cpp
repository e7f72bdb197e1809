#include <gtest/gtest.h>

#include "Curve.h"

namespace {

TEST(Curve, KeepsAllPointsOfAShortSession) {
    Curve stCurve;
    for (uint32_t i = 0; i < 2047; ++i) {
        stCurve.Add({i, 1.0 * i, i});
    }
    ASSERT_EQ(stCurve.Points().size(), 2047U);
    EXPECT_EQ(stCurve.Points()[17].u32Number, 17U);
}

TEST(Curve, KeepsPeaksInOrderWhateverItsLength) {
    Curve stCurve;
    for (uint32_t i = 0; i < 1000000; ++i) {
        stCurve.Add({i, i == 1000 ? 50.0 : i == 777777 ? -50.0 : 0.0, i});
        ASSERT_LT(stCurve.Points().size(), 2048U);
    }
    bool bHighest = false;
    bool bLowest = false;
    int64_t i64Last = -1;
    for (const Point &stPoint : stCurve.Points()) {
        EXPECT_LT(i64Last, stPoint.i64Time);
        i64Last = stPoint.i64Time;
        bHighest = bHighest || (stPoint.i64Time == 1000 && stPoint.dValue == 50);
        bLowest = bLowest || (stPoint.i64Time == 777777 && stPoint.dValue == -50);
    }
    EXPECT_TRUE(bHighest);
    EXPECT_TRUE(bLowest);
}

TEST(Frequency, CountsEachSecond) {
    Frequency stFrequency;
    for (const int64_t i64Time : {0, 999999999, 1000000000}) {
        stFrequency.Add(i64Time);
    }
    const auto astPoints = stFrequency.Points();
    ASSERT_EQ(astPoints.size(), 2U);
    EXPECT_EQ(astPoints[0].dValue, 2);
    EXPECT_EQ(astPoints[1].i64Time, 1000000000);
    EXPECT_EQ(astPoints[1].dValue, 1);
}

TEST(Frequency, TakesLongerSpansForLongSessions) {
    Frequency stFrequency;
    for (int64_t i = 0; i < 10000; ++i) {
        stFrequency.Add(i * 1000000000);
        stFrequency.Add(i * 1000000000);
    }
    const auto astPoints = stFrequency.Points();
    ASSERT_EQ(astPoints.size(), 1250U); // of eight seconds
    for (const Point &stPoint : astPoints) {
        EXPECT_EQ(stPoint.dValue, 2);
    }
}

TEST(Frequency, TakesTimesBeforeTheStartAndOfAnySize) {
    Frequency stFrequency;
    stFrequency.Add(-5);
    stFrequency.Add(INT64_MAX);
    EXPECT_LE(stFrequency.Points().size(), 2048U);
}

} // namespace

// Values over time, of any number of which so many are kept that a picture of them stays the same.
#ifndef MONITOR_CURVE_H
#define MONITOR_CURVE_H

#include <cstdint>
#include <string>
#include <vector>

struct Point {
    int64_t i64Time = 0;
    double dValue = 0;
    uint32_t u32Number = 0; // of the event that it comes from
};

class Curve {
  public:
    static constexpr size_t uMostPoints = 2048;

    // Of four neighbours the least and the most are kept when there are too many.
    void Add(const Point &stPoint);
    const std::vector<Point> &Points() const { return m_astPoints; }

  private:
    std::vector<Point> m_astPoints;
};

// How many there were in each span of time: seconds, and when these are too many, longer spans.
class Frequency {
  public:
    static constexpr int64_t i64Second = 1'000'000'000;

    void Add(int64_t i64Time); // since the start of the session
    // At the beginning of each span, how many a second.
    std::vector<Point> Points() const;

  private:
    int64_t m_i64Span = i64Second;
    std::vector<uint64_t> m_au64Counts;
};

#endif

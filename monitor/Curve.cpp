#include "Curve.h"

#include <algorithm>

void Curve::Add(const Point &stPoint) {
    m_astPoints.push_back(stPoint);
    if (m_astPoints.size() < uMostPoints) {
        return;
    }
    constexpr size_t uNeighbours = 4;
    const auto IsLess = [](const Point &stFirst, const Point &stSecond) {
        return stFirst.dValue < stSecond.dValue;
    };
    size_t uKept = 0;
    for (size_t i = 0; i < uMostPoints; i += uNeighbours) {
        const auto pstBegin = m_astPoints.begin() + static_cast<std::ptrdiff_t>(i);
        const auto [pstLeast, pstMost] =
            std::minmax_element(pstBegin, pstBegin + uNeighbours, IsLess);
        const Point stFirst = *std::min(pstLeast, pstMost);
        const Point stSecond = *std::max(pstLeast, pstMost);
        m_astPoints[uKept++] = stFirst;
        m_astPoints[uKept++] = stSecond;
    }
    m_astPoints.resize(uKept);
}

void Frequency::Add(int64_t i64Time) {
    while (std::max(i64Time, int64_t{0}) / m_i64Span >= int64_t{Curve::uMostPoints}) {
        for (size_t i = 0; i < m_au64Counts.size(); ++i) {
            const uint64_t u64Count = m_au64Counts[i];
            m_au64Counts[i] = 0;
            m_au64Counts[i / 2] += u64Count;
        }
        m_au64Counts.resize((m_au64Counts.size() + 1) / 2);
        m_i64Span *= 2;
    }
    const auto uPlace = static_cast<size_t>(std::max(i64Time, int64_t{0}) / m_i64Span);
    m_au64Counts.resize(std::max(m_au64Counts.size(), uPlace + 1));
    ++m_au64Counts[uPlace];
}

std::vector<Point> Frequency::Points() const {
    std::vector<Point> astPoints;
    const double dSeconds = static_cast<double>(m_i64Span) / static_cast<double>(i64Second);
    for (size_t i = 0; i < m_au64Counts.size(); ++i) {
        astPoints.push_back({static_cast<int64_t>(i) * m_i64Span,
                             static_cast<double>(m_au64Counts[i]) / dSeconds, 0});
    }
    return astPoints;
}

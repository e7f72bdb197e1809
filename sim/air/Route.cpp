#include "air/Route.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "scenario/TextFile.h"

namespace {

constexpr double fFarthest = 1e9; // metres
constexpr double fMostSeconds = 1e9;

// Three numbers with commas between them, nothing else.
struct Row {
    double fSecond;
    Place stPlace;
};
std::optional<Row> RowIn(std::string_view strLine) {
    double afValues[3] = {};
    const char *pcAt = strLine.data();
    const char *const pcEnd = pcAt + strLine.size();
    for (double &fValue : afValues) {
        const bool bFirst = &fValue == &afValues[0];
        if (!bFirst && (pcAt == pcEnd || *pcAt++ != ',')) {
            return std::nullopt;
        }
        while (pcAt != pcEnd && *pcAt == ' ') {
            ++pcAt;
        }
        const auto Read = std::from_chars(pcAt, pcEnd, fValue);
        if (Read.ec != std::errc()) {
            return std::nullopt;
        }
        pcAt = Read.ptr;
    }
    const auto IsWithin = [](double fValue) { return fValue >= -fFarthest && fValue <= fFarthest; };
    const bool bGood = pcAt == pcEnd && afValues[0] >= 0 && afValues[0] <= fMostSeconds &&
                       IsWithin(afValues[1]) && IsWithin(afValues[2]);
    return bGood ? std::optional<Row>({afValues[0], {afValues[1], afValues[2]}}) : std::nullopt;
}

} // namespace

double DistanceBetween(const Place &stOne, const Place &stOther) {
    const double fX = stOne.fX - stOther.fX;
    const double fY = stOne.fY - stOther.fY;
    return std::sqrt(fX * fX + fY * fY);
}

Place PlaceIn(const Section &stSection) {
    return {stSection.Number("x", -fFarthest, fFarthest),
            stSection.Number("y", -fFarthest, fFarthest)};
}

Route::Route(const Section &stRoot) {
    const Section stRoute = stRoot.Table("route");
    const std::vector<Section> astWayPoints = stRoot.Tables("way-point");
    if (stRoute.Has("file")) {
        if (!astWayPoints.empty()) {
            stRoute.Refuse("file", "has no meaning beside [[way-point]]");
        }
        ReadFile(stRoute);
    }
    for (const Section &stWayPoint : astWayPoints) {
        const ModemTime iAt = stWayPoint.Seconds("at", 0, fMostSeconds);
        if (!m_astPoints.empty() && iAt <= m_astPoints.back().iAt) {
            stWayPoint.Refuse("at", "must be later than that of the way point before");
        }
        Add(iAt, PlaceIn(stWayPoint));
    }
    if (m_astPoints.empty()) {
        Add(0, {0, 0});
    }
}

void Route::Add(ModemTime iAt, const Place &stPlace) {
    const double fTravelled =
        m_astPoints.empty()
            ? 0
            : m_astPoints.back().fTravelled + DistanceBetween(m_astPoints.back().stPlace, stPlace);
    m_astPoints.push_back({iAt, stPlace, fTravelled});
}

// Lines of time, x and y. Empty ones and those that begin with "#" say nothing.
void Route::ReadFile(const Section &stRoute) {
    const std::string strPath = stRoute.Path("file");
    const std::optional<std::string> strText = stRoute.TheFiles().Read(strPath);
    if (!strText) {
        throw ScenarioError(strPath, ScenarioError::u32WholeFile, "is not there");
    }
    uint32_t u32Line = 0;
    for (size_t uAt = 0; uAt < strText->size();) {
        const size_t uEnd = std::min(strText->find('\n', uAt), strText->size());
        std::string_view strLine(strText->data() + uAt, uEnd - uAt);
        uAt = uEnd + 1;
        ++u32Line;
        if (strLine.ends_with('\r')) {
            strLine.remove_suffix(1);
        }
        if (strLine.empty() || strLine.front() == '#') {
            continue;
        }
        const std::optional<Row> stRow = RowIn(strLine);
        if (!stRow) {
            throw ScenarioError(strPath, u32Line,
                                "must be a second, and x and y in metres: \"12.5,100,-40\"");
        }
        const auto iAt =
            static_cast<ModemTime>(std::llround(stRow->fSecond * static_cast<double>(i64Second)));
        if (!m_astPoints.empty() && iAt <= m_astPoints.back().iAt) {
            throw ScenarioError(strPath, u32Line, "must be later than the line before");
        }
        Add(iAt, stRow->stPlace);
    }
    if (m_astPoints.empty()) {
        throw ScenarioError(strPath, ScenarioError::u32WholeFile, "has no way point");
    }
}

Route::Progress Route::ProgressAt(ModemTime iNow) const {
    const auto pstNext =
        std::upper_bound(m_astPoints.begin(), m_astPoints.end(), iNow,
                         [](ModemTime iAt, const Point &stPoint) { return iAt < stPoint.iAt; });
    if (pstNext == m_astPoints.begin()) {
        return {&*pstNext, &*pstNext, 0};
    }
    const auto pstFrom = pstNext - 1;
    if (pstNext == m_astPoints.end()) {
        return {&*pstFrom, &*pstFrom, 0};
    }
    return {&*pstFrom, &*pstNext,
            static_cast<double>(iNow - pstFrom->iAt) /
                static_cast<double>(pstNext->iAt - pstFrom->iAt)};
}

Place Route::At(ModemTime iNow) const {
    const Progress stProgress = ProgressAt(iNow);
    const Place &stFrom = stProgress.pstFrom->stPlace;
    const Place &stTo = stProgress.pstTo->stPlace;
    return {stFrom.fX + (stTo.fX - stFrom.fX) * stProgress.fPart,
            stFrom.fY + (stTo.fY - stFrom.fY) * stProgress.fPart};
}

double Route::Travelled(ModemTime iNow) const {
    const Progress stProgress = ProgressAt(iNow);
    const double fFrom = stProgress.pstFrom->fTravelled;
    return fFrom + (stProgress.pstTo->fTravelled - fFrom) * stProgress.fPart;
}

void Route::Go(const Place &stTo, ModemTime iNow, ModemTime iDuration) {
    const Place stHere = At(iNow);
    std::erase_if(m_astPoints, [&](const Point &stPoint) { return stPoint.iAt >= iNow; });
    Add(iNow, stHere);
    if (iDuration == 0) {
        // At once: the way there is none that anything could fade along.
        m_astPoints.back().stPlace = stTo;
    } else {
        Add(iNow + iDuration, stTo);
    }
}

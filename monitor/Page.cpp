#include "Page.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "JSON.h"
#include "Names.h"
#include "PageParts.h"

namespace {

// What the objects of the table take together, at most.
constexpr size_t uMostBytes = size_t{8} * 1024 * 1024;
constexpr size_t uMostCurves = 96;
constexpr size_t uMostChanges = 4096;

enum Chart : uint32_t { RSSI, CINR, Power, Counters, Bursts, Errors, Traffic, Answers };

struct ChartRow {
    const char *pcTitle;
    const char *pcUnit;
};
constexpr ChartRow astCharts[] = {
    {"RSSI", "dBm"},
    {"CINR", "dB"},
    {"Transmit power", "dBm"},
    {"Counters", "per second"},
    {"Bursts and PDUs", "per second"},
    {"Errors", "per second"},
    {"Messages", "per second"},
    {"Answer times", "ms"},
};

enum class Drawn : uint8_t {
    Station, // as a value of the station that the record names
    Value,
    Rate, // how fast it grows
    State,
};

// Where the charts get their values from.
struct SourceRow {
    std::string_view strMessage;
    std::string_view strField;
    Drawn eDrawn;
    Chart eChart = {};
};
constexpr SourceRow astSources[] = {
    {"sync_status", "status", Drawn::State},
    {"sync_status", "rssi_mean", Drawn::Station, RSSI},
    {"sync_status", "cinr_mean", Drawn::Station, CINR},
    {"network_entry_status", "status", Drawn::State},
    {"network_entry_status", "mean_rssi", Drawn::Station, RSSI},
    {"network_entry_status", "cinr_mean", Drawn::Station, CINR},
    {"station_list", "signal_strength", Drawn::Station, RSSI},
    {"station_list", "cinr", Drawn::Station, CINR},
    {"wake_up_stations", "signal_strength", Drawn::Station, RSSI},
    {"wake_up_stations", "cinr", Drawn::Station, CINR},
    {"statistics", "rssi", Drawn::Station, RSSI},
    {"statistics", "cinr", Drawn::Station, CINR},
    {"statistics", "tx_power", Drawn::Value, Power},
    {"statistics", "frames_received", Drawn::Rate, Counters},
    {"statistics", "frames_in_error", Drawn::Rate, Errors},
    {"statistics", "crc_errors", Drawn::Rate, Errors},
    {"statistics", "hcs_errors", Drawn::Rate, Errors},
    {"statistics", "cqich_transmitted", Drawn::Rate, Counters},
    {"statistics", "bandwidth_requests", Drawn::Rate, Counters},
};

// Counters of MIB values, all together, by what stands in the names that filters have for them.
struct SumRow {
    std::string_view strPath;
    Chart eChart;
    std::string_view strCurve;
};
constexpr SumRow astSums[] = {
    {".zone_statistics.dl_zones.bursts_", Bursts, "downlink bursts"},
    {".zone_statistics.dl_zones.pdus_", Bursts, "downlink PDUs"},
    {".zone_statistics.ul_zones.bursts_", Bursts, "uplink bursts"},
    {".zone_statistics.ul_zones.pdus_", Bursts, "uplink PDUs"},
    {".zone_bursts.zones.", Bursts, "bursts by zone"},
    {".submap_errors.counters", Errors, "submap_errors"},
};

// What page.js knows of a row; it has the same numbers.
namespace RowFlag {
constexpr uint32_t Received = 1;
constexpr uint32_t Failed = 2;
constexpr uint32_t Message = 4; // a message of the modem, no result
constexpr uint32_t Request = 8;
constexpr uint32_t Air = 16;
constexpr uint32_t FromStation = 32; // over the air, from the modem to the base station
} // namespace RowFlag

uint32_t FlagsOf(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    uint32_t u32Flags = IsSent(stEvent) ? 0 : RowFlag::Received;
    u32Flags |= HasFailed(stEvent) ? RowFlag::Failed : 0;
    u32Flags |= stEvent.eKind == EventKind::Message ? RowFlag::Message : 0;
    u32Flags |= stEvent.eKind == EventKind::Send ? RowFlag::Request : 0;
    ManagementMessage stManagement;
    if (stEvent.eKind == EventKind::Message &&
        ManagementMessageOf(stEvent.stBytes, &stManagement)) {
        u32Flags |= RowFlag::Air | (stManagement.bFromStation ? RowFlag::FromStation : 0);
    }
    return u32Flags;
}

// The bytes of a script element that end it, or begin a comment in it, are written as JSON allows.
void PutInScript(Writer &stWriter, std::string_view strText) {
    while (!strText.empty()) {
        const size_t uPlace = std::min(strText.find('<'), strText.size());
        stWriter.Put(strText.substr(0, uPlace));
        if (uPlace == strText.size()) {
            return;
        }
        stWriter.Put("\\u003c");
        strText.remove_prefix(uPlace + 1);
    }
}

void PutText(Writer &stWriter, std::string_view strText) {
    std::string strJSON;
    {
        Writer stText(&strJSON);
        PutJSONText(stText, strText);
        stText.Flush();
    }
    PutInScript(stWriter, strJSON);
}

int64_t Microseconds(int64_t i64Nanoseconds) {
    constexpr int64_t i64Microsecond = 1000;
    return i64Nanoseconds / i64Microsecond;
}

// One value of every element: a browser reads a few long arrays faster than many short ones.
template <class List, class PutOne>
void PutColumn(Writer &stWriter, std::string_view strName, const List &astList,
               const PutOne &fnPut) {
    stWriter.Put('"');
    stWriter.Put(strName);
    stWriter.Put("\":[");
    for (const auto &stElement : astList) {
        stWriter.Put(&stElement == astList.data() ? "" : ",");
        fnPut(stElement);
    }
    stWriter.Put(']');
}

// The same for what grows: each number is what it has more than the one before it.
template <class List, class Value>
void PutGrowing(Writer &stWriter, std::string_view strName, const List &astList,
                const Value &fnValue) {
    int64_t i64Last = 0;
    PutColumn(stWriter, strName, astList, [&](const auto &stElement) {
        const auto i64Value = static_cast<int64_t>(fnValue(stElement));
        stWriter.PutNumber(i64Value - i64Last);
        i64Last = i64Value;
    });
}

void PutDouble(Writer &stWriter, double dValue) {
    char acText[32];
    constexpr int iDigits = 6;
    stWriter.Put({acText, std::to_chars(acText, acText + sizeof acText, dValue,
                                        std::chars_format::general, iDigits)
                              .ptr});
}

std::string AddressText(ByteView stBytes) {
    std::string strText;
    Writer stWriter(&strText);
    stWriter.PutHex(stBytes, ":");
    stWriter.Flush();
    return strText;
}

bool IsZero(ByteView stBytes) {
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        if (stBytes.At(i) != 0) {
            return false;
        }
    }
    return true;
}

double ValueOf(const FoundField &stFound) {
    return static_cast<double>(NumberOf(stFound)) / stFound.pstRow->u32Divisor;
}

} // namespace

void Page::Add(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    if (m_u64Events++ == 0) {
        m_i64Start = stEvent.i64Time;
    }
    if (stEvent.eKind == EventKind::MessageDone) {
        return; // says nothing but how long the client took
    }
    AddRow(stEntry);
    if (stEvent.eKind == EventKind::Send || stEvent.eKind == EventKind::Message) {
        m_astFrequencies[IsSent(stEvent) ? 0 : 1].Add(stEvent.i64Time - m_i64Start);
    }
    if (stEntry.u32Answers != 0) {
        constexpr double dMillisecond = 1e6;
        AddPoint(Answers, std::string(stEntry.pstSubject->stName.Plain()),
                 {stEvent.i64Time - m_i64Start,
                  static_cast<double>(stEntry.i64Latency) / dMillisecond, stEvent.u32Number});
    }
    if (stEvent.eKind == EventKind::Message && stEntry.pstMessage != nullptr) {
        AddMeasurements(stEntry);
        if (stEntry.pstMessage->u16Type == TYPE_MIB) {
            AddSums(stEntry);
        }
    }
}

void Page::AddRow(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    const auto [pstFound, bNew] =
        m_auKinds.try_emplace({stEvent.eKind, stEntry.pstSubject}, m_astKinds.size());
    if (bNew) {
        m_astKinds.emplace_back();
    }
    Kind &stKind = m_astKinds[pstFound->second];
    const uint64_t u64Place = stKind.u64Entries++;
    ++m_u64Rows;
    if (u64Place % stKind.u64Step != 0) {
        return;
    }
    Row stRow;
    stRow.uKind = pstFound->second;
    stRow.u64Place = u64Place;
    stRow.u32Number = stEvent.u32Number;
    stRow.i64Time = stEvent.i64Time - m_i64Start;
    stRow.strName = stEntry.pstSubject != nullptr ? stEntry.pstSubject->stName.Plain()
                    : stEntry.stCodes             ? "unknown_message"
                                                  : NameOf(stEvent.eKind);
    stRow.u32Flags = FlagsOf(stEntry);
    stRow.u32BelongsTo = stEntry.u32Answers != 0 ? stEntry.u32Answers : stEvent.u32BelongsTo;
    stRow.i64Took =
        stEntry.u32Answers != 0 ? stEntry.i64Latency : static_cast<int64_t>(stEvent.u64Duration);
    PutJSONEntry(m_stText, false, stEntry);
    m_stText.Flush();
    stRow.strObject = m_strText; // takes no more room than it needs
    m_strText.clear();
    const size_t uBytes = stRow.strObject.size() + sizeof(Row);
    stKind.uBytes += uBytes;
    m_uBytes += uBytes;
    m_astRows.push_back(std::move(stRow));
    if (m_uBytes > uMostBytes) {
        Thin();
    }
}

// What there is most of loses every second one, until there is room again.
void Page::Thin() {
    while (m_uBytes > uMostBytes / 4 * 3) {
        const auto pstMost = std::max_element(
            m_astKinds.begin(), m_astKinds.end(),
            [](const Kind &stOne, const Kind &stOther) { return stOne.uBytes < stOther.uBytes; });
        const auto uKind = static_cast<size_t>(pstMost - m_astKinds.begin());
        const size_t uBefore = m_astRows.size();
        pstMost->u64Step *= 2;
        pstMost->uBytes = 0;
        m_uBytes = 0;
        std::erase_if(m_astRows, [&](const Row &stRow) {
            return stRow.uKind == uKind && stRow.u64Place % pstMost->u64Step != 0;
        });
        for (const Row &stRow : m_astRows) {
            const size_t uBytes = stRow.strObject.size() + sizeof(Row);
            m_uBytes += uBytes;
            pstMost->uBytes += stRow.uKind == uKind ? uBytes : 0;
        }
        if (m_astRows.size() == uBefore) {
            return; // one of each kind
        }
    }
}

void Page::AddPoint(uint32_t u32Chart, const std::string &strCurve, const Point &stPoint) {
    const CurveName stName{u32Chart, strCurve};
    if (m_stCurves.size() < uMostCurves || m_stCurves.contains(stName)) {
        m_stCurves[stName].Add(stPoint);
    }
}

void Page::AddRate(uint32_t u32Chart, std::string_view strName, uint64_t u64Value,
                   const Event &stEvent) {
    const auto [pstLast, bFirst] = m_stCounters.try_emplace(strName);
    const int64_t i64Span = stEvent.i64Time - pstLast->second.i64Time;
    // A counter that went back was cleared.
    if (!bFirst && i64Span > 0 && u64Value >= pstLast->second.u64Value) {
        constexpr double dSecond = 1e9;
        const auto dGrown = static_cast<double>(u64Value - pstLast->second.u64Value);
        AddPoint(u32Chart, std::string(strName),
                 {stEvent.i64Time - m_i64Start, dGrown * dSecond / static_cast<double>(i64Span),
                  stEvent.u32Number});
    }
    pstLast->second = {stEvent.i64Time, u64Value};
}

void Page::AddSums(const Entry &stEntry) {
    std::array<std::optional<uint64_t>, std::size(astSums)> au64Sums;
    bool bWhole = true;
    WalkMessage(*stEntry.pstMessage, stEntry.stPayload, [&](const FoundField &stFound) {
        if (stFound.eWhat == Found::ListBegin) {
            bWhole = bWhole && stFound.u32Count == stFound.u32Announced;
        }
        if (stFound.eWhat != Found::Field || stFound.astPath.empty()) {
            return;
        }
        bWhole = bWhole && (IsRun(*stFound.pstRow) ||
                            stFound.stBytes.u32Length == WidthOf(stFound.pstRow->stField.eType));
        const FilterName stName =
            FilterNameOf(*stEntry.pstMessage, stFound.astPath, *stFound.pstRow);
        for (size_t i = 0; i < std::size(astSums); ++i) {
            if (stName.View().find(astSums[i].strPath) != std::string_view::npos) {
                au64Sums[i] = au64Sums[i].value_or(0) + stFound.u32Value;
            }
        }
    });
    for (size_t i = 0; i < std::size(astSums); ++i) {
        if (bWhole && au64Sums[i]) {
            AddRate(astSums[i].eChart, astSums[i].strCurve, *au64Sums[i], *stEntry.pstEvent);
        }
    }
}

void Page::AddChange(const Change &stChange) {
    if (!m_astChanges.empty() && m_astChanges.back().u32State == stChange.u32State) {
        return;
    }
    m_astChanges.push_back(stChange);
    if (m_astChanges.size() == uMostChanges) {
        for (size_t i = 0; i < uMostChanges / 2; ++i) {
            m_astChanges[i] = m_astChanges[2 * i];
        }
        m_astChanges.resize(uMostChanges / 2);
    }
}

void Page::AddMeasurements(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    const std::string_view strMessage = stEntry.pstMessage->stName.Plain();
    const auto IsOfMessage = [&](const SourceRow &stRow) { return stRow.strMessage == strMessage; };
    if (std::ranges::none_of(astSources, IsOfMessage)) {
        return;
    }
    const int64_t i64Time = stEvent.i64Time - m_i64Start;
    // Values of one station; its address may stand behind them.
    std::vector<std::pair<Chart, double>> astLevels;
    std::string strStation;
    const auto EndStation = [&] {
        for (const auto &[eChart, dValue] : astLevels) {
            if (!strStation.empty()) {
                AddPoint(eChart, strStation, {i64Time, dValue, stEvent.u32Number});
            }
        }
        astLevels.clear();
        strStation.clear();
    };
    WalkMessage(*stEntry.pstMessage, stEntry.stPayload, [&](const FoundField &stFound) {
        if (stFound.eWhat == Found::RecordEnd) {
            EndStation();
        }
        if (stFound.eWhat != Found::Field) {
            return;
        }
        const std::string_view strField = stFound.pstRow->stName.Plain();
        if (strField == "bsid" && !IsZero(stFound.stBytes)) {
            strStation = AddressText(stFound.stBytes);
        }
        for (const SourceRow &stRow : astSources) {
            if (!IsOfMessage(stRow) || stRow.strField != strField) {
                continue;
            }
            switch (stRow.eDrawn) {
            case Drawn::Station:
                astLevels.emplace_back(stRow.eChart, ValueOf(stFound));
                break;
            case Drawn::Value:
                AddPoint(stRow.eChart, std::string(strField),
                         {i64Time, ValueOf(stFound), stEvent.u32Number});
                break;
            case Drawn::Rate:
                AddRate(stRow.eChart, strField, stFound.u32Value, stEvent);
                break;
            case Drawn::State:
                AddChange({i64Time, stFound.u32Value, CodeNameOf(stFound), stEvent.u32Number});
                break;
            }
        }
    });
    EndStation();
}

void Page::PutRows(Writer &stWriter) const {
    std::map<std::string_view, size_t> auNames;
    for (const Row &stRow : m_astRows) {
        auNames.try_emplace(stRow.strName, auNames.size());
    }
    std::vector<std::string_view> astrNames(auNames.size());
    for (const auto &[strName, uName] : auNames) {
        astrNames[uName] = strName;
    }
    stWriter.Put(",\"names\":[");
    for (size_t i = 0; i < astrNames.size(); ++i) {
        stWriter.Put(i == 0 ? "" : ",");
        PutText(stWriter, astrNames[i]);
    }
    stWriter.Put("],\"rows\":{");
    PutGrowing(stWriter, "number", m_astRows, [](const Row &stRow) { return stRow.u32Number; });
    stWriter.Put(',');
    PutGrowing(stWriter, "time", m_astRows,
               [](const Row &stRow) { return Microseconds(stRow.i64Time); });
    stWriter.Put(',');
    PutColumn(stWriter, "name", m_astRows,
              [&](const Row &stRow) { stWriter.PutNumber(auNames.at(stRow.strName)); });
    stWriter.Put(',');
    PutColumn(stWriter, "flags", m_astRows,
              [&](const Row &stRow) { stWriter.PutNumber(stRow.u32Flags); });
    stWriter.Put(',');
    PutColumn(stWriter, "link", m_astRows,
              [&](const Row &stRow) { stWriter.PutNumber(stRow.u32BelongsTo); });
    stWriter.Put(',');
    PutColumn(stWriter, "took", m_astRows,
              [&](const Row &stRow) { stWriter.PutNumber(Microseconds(stRow.i64Took)); });
    stWriter.Put('}');
}

void Page::PutCharts(Writer &stWriter) const {
    const auto PutCurve = [&](bool bFirst, std::string_view strName,
                              const std::vector<Point> &astPoints) {
        stWriter.Put(bFirst ? "{\"name\":" : ",{\"name\":");
        PutText(stWriter, strName);
        stWriter.Put(',');
        PutGrowing(stWriter, "time", astPoints,
                   [](const Point &stPoint) { return Microseconds(stPoint.i64Time); });
        stWriter.Put(',');
        PutColumn(stWriter, "value", astPoints,
                  [&](const Point &stPoint) { PutDouble(stWriter, stPoint.dValue); });
        stWriter.Put(',');
        PutGrowing(stWriter, "number", astPoints,
                   [](const Point &stPoint) { return stPoint.u32Number; });
        stWriter.Put('}');
    };
    stWriter.Put(",\"charts\":[");
    for (uint32_t i = 0; i < std::size(astCharts); ++i) {
        stWriter.Put(i == 0 ? R"({"title":")" : R"(,{"title":")");
        stWriter.Put(astCharts[i].pcTitle);
        stWriter.Put(R"(","unit":")");
        stWriter.Put(astCharts[i].pcUnit);
        stWriter.Put(R"(","curves":[)");
        if (i == Traffic) {
            PutCurve(true, "sent", m_astFrequencies[0].Points());
            PutCurve(false, "received", m_astFrequencies[1].Points());
        }
        bool bFirst = true;
        for (const auto &[stName, stCurve] : m_stCurves) {
            if (stName.first == i) {
                PutCurve(bFirst, stName.second, stCurve.Points());
                bFirst = false;
            }
        }
        stWriter.Put("]}");
    }
    stWriter.Put("],\"states\":[");
    for (const Change &stChange : m_astChanges) {
        stWriter.Put(&stChange == m_astChanges.data() ? "[" : ",[");
        stWriter.PutNumber(Microseconds(stChange.i64Time));
        stWriter.Put(',');
        PutText(stWriter, stChange.strState.empty() ? "state " + std::to_string(stChange.u32State)
                                                    : std::string(stChange.strState));
        stWriter.Put(',');
        stWriter.PutNumber(stChange.u32Number);
        stWriter.Put(']');
    }
    stWriter.Put(']');
}

void Page::Put(Writer &stWriter, std::string_view strTitle) const {
    stWriter.Put(strPageHead);
    stWriter.Put(R"(<script type="application/json" id="data">{"title":)");
    PutText(stWriter, strTitle);
    stWriter.Put(",\"start\":");
    stWriter.PutNumber(Microseconds(m_i64Start));
    stWriter.Put(",\"events\":");
    stWriter.PutNumber(m_u64Events);
    stWriter.Put(",\"all\":");
    stWriter.PutNumber(m_u64Rows);
    PutRows(stWriter);
    PutCharts(stWriter);
    stWriter.Put("}</script>\n<script type=\"application/json\" id=\"objects\">");
    for (const Row &stRow : m_astRows) {
        PutInScript(stWriter, stRow.strObject);
    }
    stWriter.Put("</script>\n");
    stWriter.Put(strPageTail);
}

#include "library/StateReport.h"

#include <array>
#include <cstdio>
#include <numeric>

#include "modem/LinkStateNames.h"

namespace {

// What is written between braces or brackets, one after the other.
class Row {
  public:
    Row &Add(const char *pcKey, const std::string &strValue) {
        return Add(std::string("\"") + pcKey + "\":" + strValue);
    }
    Row &Add(const std::string &strItem) {
        m_strText += (m_strText.empty() ? "" : ",") + strItem;
        return *this;
    }
    std::string AsObject() const { return "{" + m_strText + "}"; }
    std::string AsList() const { return "[" + m_strText + "]"; }

  private:
    std::string m_strText;
};

// None of the texts holds a quote or a control byte.
std::string Quoted(const std::string &strText) { return "\"" + strText + "\""; }

std::string Whole(uint64_t u64Value) { return std::to_string(u64Value); }

std::string Decimal(double fValue, int iDigits) {
    std::array<char, 64> acText{};
    (void)std::snprintf(acText.data(), acText.size(), "%.*f", iDigits, fValue);
    return acText.data();
}

std::string Milliseconds(ModemTime iTime) {
    return Decimal(static_cast<double>(iTime) / static_cast<double>(i64Millisecond), 3);
}

std::string Truth(bool bValue) { return bValue ? "true" : "false"; }

std::string NameOf(const Station *pstStation) {
    if (pstStation == nullptr) {
        return "null";
    }
    std::string strName;
    for (const uint8_t u8Byte : pstStation->aucBSID) {
        std::array<char, 4> acByte{};
        (void)std::snprintf(acByte.data(), acByte.size(), "%02X", u8Byte);
        strName += (strName.empty() ? "" : ":") + std::string(acByte.data());
    }
    return Quoted(strName);
}

std::string StationRow(WholeModem &stModem, const Station &stStation) {
    const Measurement stMeasurement = stModem.Air().Measure(stStation, stModem.Now());
    return Row()
        .Add("bsid", NameOf(&stStation))
        .Add("frequency", Whole(stStation.u32Frequency))
        .Add("bandwidth", Whole(stStation.u32Bandwidth))
        .Add("preamble", Whole(stStation.u32Preamble))
        .Add("on-air", Truth(stStation.bOnAir))
        .Add("heard", Truth(stModem.Air().Receivable(stStation, stModem.Now())))
        .Add("rssi", Decimal(stMeasurement.fRSSI, 1))
        .Add("cinr", Decimal(stMeasurement.fCINR, 1))
        .Add("serving", Truth(stModem.Attached().pstServing == &stStation))
        .AsObject();
}

std::string LinkRow(WholeModem &stModem) {
    return Row()
        .Add("state", Quoted(NameOf(stModem.Attached().eState)))
        .Add("serving", NameOf(stModem.Attached().pstServing))
        .AsObject();
}

std::string PlaceRow(WholeModem &stModem) {
    const Route &stRoute = stModem.Air().TheRoute();
    const Place stPlace = stRoute.At(stModem.Now());
    return Row()
        .Add("x", Decimal(stPlace.fX, 1))
        .Add("y", Decimal(stPlace.fY, 1))
        .Add("travelled", Decimal(stRoute.Travelled(stModem.Now()), 1))
        .AsObject();
}

std::string FlowRows(WholeModem &stModem) {
    Row stFlows;
    for (const Connection &stConnection : stModem.TheSignalling().Connections()) {
        if (stConnection.u32SFID != 0) {
            const FlowReport stReport = stModem.UserTraffic().ReportOf(stConnection.u32SFID);
            stFlows.Add(Row()
                            .Add("sfid", Whole(stConnection.u32SFID))
                            .Add("cid", Whole(stConnection.u32CID))
                            .Add("direction", stConnection.bUplink ? "\"uplink\"" : "\"downlink\"")
                            .Add("scheduling-type", Whole(stConnection.u32SchedulingType))
                            .Add("packets", Whole(stReport.u64Packets))
                            .Add("bytes", Whole(stReport.u64Bytes))
                            .Add("grants", Whole(stReport.u64Grants))
                            .Add("queued", Whole(stReport.u32Queued))
                            .Add("lost", Whole(stReport.u64Lost))
                            .Add("late", Whole(stReport.u64Late))
                            .Add("latency", Milliseconds(stReport.iLongest))
                            .Add("jitter", Milliseconds(stReport.iLongest - stReport.iShortest))
                            .AsObject());
        }
    }
    return stFlows.AsList();
}

std::string CounterRow(WholeModem &stModem) {
    const TrafficTotals stTotals = stModem.UserTraffic().Totals();
    const auto &au32Lost = stModem.LostMessages();
    const uint64_t u64Lost =
        std::accumulate(au32Lost.begin(), au32Lost.end(), uint64_t{0},
                        [](uint64_t u64Sum, const auto &stLost) { return u64Sum + stLost.second; });
    return Row()
        .Add("downlink-bytes", Whole(stTotals.stDownlink.u64Bytes))
        .Add("downlink-packets", Whole(stTotals.stDownlink.u64Packets))
        .Add("uplink-bytes", Whole(stTotals.stUplink.u64Bytes))
        .Add("uplink-packets", Whole(stTotals.stUplink.u64Packets))
        .Add("packets-lost", Whole(stTotals.stDownlink.u64Lost + stTotals.stUplink.u64Lost))
        .Add("bandwidth-requests", Whole(stTotals.u64Requests))
        .Add("messages-waiting", Whole(stModem.Waiting()))
        .Add("messages-lost", Whole(u64Lost))
        .AsObject();
}

std::string FaultRows(WholeModem &stModem) {
    Row stFaults;
    for (const FaultReport &stFault : stModem.TheFaults().Reports()) {
        stFaults.Add(Row()
                         .Add("number", Whole(stFault.u32Number))
                         .Add("kind", Quoted(stFault.pcKind))
                         .Add("on", Truth(stFault.bOn))
                         .Add("hits", Whole(stFault.u64Hits))
                         .AsObject());
    }
    return stFaults.AsList();
}

} // namespace

std::string StationReport(WholeModem &stModem) {
    Row stStations;
    for (const Station &stStation : stModem.Air().Stations()) {
        stStations.Add(StationRow(stModem, stStation));
    }
    return stStations.AsList();
}

std::string StateReport(WholeModem &stModem) {
    const ClockSettings &stClock = stModem.HowTimePasses();
    Row stState;
    stState
        .Add("time",
             Decimal(static_cast<double>(stModem.Now()) / static_cast<double>(i64Second), 6))
        .Add("clock", stClock.bStepped ? "\"stepped\"" : "\"real\"")
        .Add("seed", Whole(stModem.Seed()))
        .Add("link", LinkRow(stModem));
    if (stModem.Air().HasPlaces()) {
        stState.Add("place", PlaceRow(stModem));
    }
    stState.Add("stations", StationReport(stModem))
        .Add("flows", FlowRows(stModem))
        .Add("counters", CounterRow(stModem))
        .Add("faults", FaultRows(stModem));
    return stState.AsObject();
}

#include "air/Radio.h"

#include <algorithm>
#include <cmath>

#include "LinkRecords.h"
#include "air/Decibels.h"
#include "time/Random.h"

namespace {

constexpr std::array astEntryOutcomes{
    ScenarioWord{"accepted", LinkReason::LinkUpAchieved},
    ScenarioWord{"ranging-failure", LinkReason::RangingFailure},
    ScenarioWord{"sbc-failure", LinkReason::SBCFailure},
    ScenarioWord{"pkm-failure", LinkReason::PKMFailure},
    ScenarioWord{"registration-failure", LinkReason::RegistrationFailure},
    ScenarioWord{"satek-failure", LinkReason::SATEKFailure},
};

constexpr std::array astFadings{
    ScenarioWord{"none", static_cast<uint32_t>(Fading::None)},
    ScenarioWord{"pedestrian", static_cast<uint32_t>(Fading::Pedestrian)},
    ScenarioWord{"vehicular", static_cast<uint32_t>(Fading::Vehicular)},
};

constexpr int32_t iUsualPower = 43; // dBm
// Others move, too: the echoes change where the modem stands still.
constexpr double fLeastSpeed = 0.5; // metres a second

// Deviations are of so many looks, evenly over the window.
constexpr ModemTime iWindow = i64Second;
constexpr int32_t iLooks = 20;

// What is computed comes in steps of 1/256 dB.
double InSteps(double fLevel) {
    constexpr double fSteps = 256;
    return std::round(fLevel * fSteps) / fSteps;
}

// The loss of a fade at a moment, in dB.
double LossAt(const Station &stStation, ModemTime iNow) {
    if (iNow >= stStation.iFadeEnd) {
        return stStation.fLossAfter;
    }
    if (iNow <= stStation.iFadeStart) {
        return stStation.fLossBefore;
    }
    const double fPart = static_cast<double>(iNow - stStation.iFadeStart) /
                         static_cast<double>(stStation.iFadeEnd - stStation.iFadeStart);
    return stStation.fLossBefore + (stStation.fLossAfter - stStation.fLossBefore) * fPart;
}

std::vector<NSP> ReadNSPs(const Section &stRoot) {
    std::vector<NSP> astNSPs;
    for (const Section &stSection : stRoot.Tables("nsp")) {
        NSP stNSP{static_cast<uint32_t>(stSection.Integer("id", 0, UINT32_MAX)),
                  stSection.Text("name")};
        if (stNSP.strName.size() > NSPDiscovery::NSPEntry::NameSize) {
            stSection.Refuse("name", "must be at most 128 bytes long");
        }
        for (const NSP &stOther : astNSPs) {
            if (stOther.u32ID == stNSP.u32ID) {
                stSection.Refuse("id", "is used twice");
            }
        }
        astNSPs.push_back(std::move(stNSP));
    }
    return astNSPs;
}

} // namespace

uint32_t Station::NAPID() const {
    return static_cast<uint32_t>(aucBSID[0]) << 16 | static_cast<uint32_t>(aucBSID[1]) << 8 |
           aucBSID[2];
}

uint32_t Station::Segment() const {
    constexpr uint32_t u32OfEach = 32;
    constexpr uint32_t u32Segments = 3;
    // The preambles behind the three groups are dealt out in turn.
    return u32Preamble < u32OfEach * u32Segments ? u32Preamble / u32OfEach
                                                 : u32Preamble % u32Segments;
}

uint32_t Rounded(double fValue) { return static_cast<uint32_t>(std::lround(fValue)); }

Radio::Radio(const Section &stRoot, uint64_t u64Seed) : m_stRoute(stRoot) {
    SetSeed(u64Seed);
    const Section stRadio = stRoot.Table("radio");
    m_fSensitivity = stRadio.Number("sensitivity", -200, 100, -97);
    m_fEntryRSSI = stRadio.Number("entry-rssi", -200, 100, -88);
    m_fEntryCINR = stRadio.Number("entry-cinr", -100, 100, 3);
    m_fNoiseFigure = stRadio.Number("noise-figure", 0, 100, 7);
    m_fShadowing = stRadio.Number("shadowing", 0, 100, 0);
    m_fShadowSquare = stRadio.Number("shadow-square", 1, 1e6, 50);
    m_eFading = static_cast<Fading>(
        stRadio.Choice("fading", astFadings, static_cast<uint32_t>(Fading::None)));
    const Section stHandover = stRoot.Table("handover");
    m_stThresholds = {stHandover.Number("hysteresis", 0, 200, 6),
                      stHandover.Seconds("time-to-trigger", 0, 1000, 1),
                      stHandover.Number("scan-cinr", -100, 100, 8)};
    const std::vector<NSP> astNSPs = ReadNSPs(stRoot);
    for (const Section &stSection : stRoot.Tables("station")) {
        m_astStations.push_back(Read(stSection, astNSPs));
    }
    FindInterferers();
}

// Stations whose channels lie over each other.
void Radio::FindInterferers() {
    const auto Edge = [](const Station &stStation, int32_t iSide) {
        return int64_t{2} * stStation.u32Frequency + iSide * int64_t{stStation.u32Bandwidth};
    };
    for (const Station &stStation : m_astStations) {
        std::vector<Interferer> astInterferers;
        for (const Station &stOther : m_astStations) {
            const int64_t iOverlap = std::min(Edge(stStation, 1), Edge(stOther, 1)) -
                                     std::max(Edge(stStation, -1), Edge(stOther, -1));
            if (&stOther != &stStation && iOverlap > 0) {
                astInterferers.push_back(
                    {&stOther, static_cast<double>(iOverlap) / (2.0 * stOther.u32Bandwidth),
                     stOther.Segment() == stStation.Segment()});
            }
        }
        m_aastInterferers.push_back(std::move(astInterferers));
    }
}

std::optional<BSIDBytes> Radio::BSIDOf(const Section &stSection, const char *pcKey) {
    if (!stSection.Has(pcKey)) {
        return std::nullopt;
    }
    BSIDBytes aucBSID{};
    const std::vector<uint8_t> aucBytes = stSection.Bytes(pcKey, aucBSID.size());
    if (aucBytes.size() != aucBSID.size()) {
        stSection.Refuse(pcKey, "must be six bytes, each of two hexadecimal digits");
    }
    std::copy(aucBytes.begin(), aucBytes.end(), aucBSID.begin());
    return aucBSID;
}

Station Radio::Read(const Section &stSection, const std::vector<NSP> &astNSPs) const {
    const std::optional<BSIDBytes> aucBSID = BSIDOf(stSection, "bsid");
    if (!aucBSID) {
        stSection.Refuse("bsid", "is missing");
    }
    Station stStation{
        .aucBSID = *aucBSID,
        .u32Frequency = static_cast<uint32_t>(stSection.Integer("frequency", 1, UINT32_MAX)),
        .u32Bandwidth = static_cast<uint32_t>(stSection.Integer("bandwidth", 1, UINT32_MAX)),
        .u32Preamble = static_cast<uint32_t>(stSection.Integer("preamble", 0, 113)),
        .stPlace = {},
        .fRSSI = 0,
        .fFloor = 0,
        .iPower = static_cast<int32_t>(stSection.Integer("power", -30, 100, iUsualPower)),
        .fVariation = stSection.Number("variation", 0, 100, 0),
        .iVariationPeriod = stSection.Seconds("variation-period", 0.001, 1e6, 10),
        .u32DCDChangeCount =
            static_cast<uint32_t>(stSection.Integer("dcd-change-count", 0, UINT32_MAX, 1)),
        .u32NSPChangeCount =
            static_cast<uint32_t>(stSection.Integer("nsp-change-count", 0, UINT32_MAX, 1)),
        .u32CellID = static_cast<uint32_t>(stSection.Integer("cell-id", 0, UINT8_MAX, 0)),
        .u32PagingGroup =
            static_cast<uint32_t>(stSection.Integer("paging-group", 0, UINT16_MAX, 1)),
        .u32IPSubnet = static_cast<uint32_t>(stSection.Integer("ip-subnet", 0, UINT32_MAX, 0)),
        .bCompressedMap = stSection.Flag("compressed-map", false),
        .bNSPSupport = stSection.Flag("nsp-support", true),
        .u32EntryFailure = stSection.Choice("entry", astEntryOutcomes, LinkReason::LinkUpAchieved),
        .astNSPs = {},
        .aucVendorData = stSection.Bytes("vendor-data", 255),
        .bOnAir = stSection.Flag("on-air", true)};
    ReadLevel(stSection, &stStation);
    for (const int64_t iID : stSection.Integers("nsps", 0, UINT32_MAX)) {
        const auto pstNSP = std::find_if(astNSPs.begin(), astNSPs.end(),
                                         [&](const NSP &stNSP) { return stNSP.u32ID == iID; });
        if (pstNSP == astNSPs.end()) {
            stSection.Refuse("nsps", "names " + std::to_string(iID) + ", which no [[nsp]] has");
        }
        stStation.astNSPs.push_back(*pstNSP);
    }
    if (stStation.astNSPs.size() > NSPDiscovery::MaxNSPs) {
        stSection.Refuse("nsps", "must be at most 10");
    }
    for (const Station &stOther : m_astStations) {
        if (stOther.aucBSID == stStation.aucBSID) {
            stSection.Refuse("bsid", "is used twice");
        }
    }
    return stStation;
}

// A station has a place, or a level that it is received with. What its CINR is less than by noise
// alone comes from cells that nobody sees.
void Radio::ReadLevel(const Section &stSection, Station *pstStation) const {
    pstStation->fFloor = InSteps(NoiseLevel(pstStation->u32Bandwidth, m_fNoiseFigure));
    if (stSection.Has("x") || stSection.Has("y")) {
        pstStation->stPlace = PlaceIn(stSection);
        for (const char *pcKey : {"rssi", "cinr"}) {
            if (stSection.Has(pcKey)) {
                stSection.Refuse(pcKey, "has no meaning beside a place");
            }
        }
        return;
    }
    pstStation->fRSSI = stSection.Number("rssi", -200, 100);
    if (stSection.Has("cinr")) {
        pstStation->fFloor = pstStation->fRSSI - stSection.Number("cinr", -100, 100);
    }
}

Station *Radio::StationOf(const Section &stSection, const char *pcKey) {
    const std::optional<BSIDBytes> aucBSID = BSIDOf(stSection, pcKey);
    if (!aucBSID) {
        return nullptr;
    }
    for (Station &stStation : m_astStations) {
        if (stStation.aucBSID == *aucBSID) {
            return &stStation;
        }
    }
    stSection.Refuse(pcKey, "is the BS ID of no station");
}

void Radio::SetSeed(uint64_t u64Seed) { m_u64Seed = SeedFor(u64Seed, "radio"); }

uint64_t Radio::SeedOf(const Station &stStation) const {
    const auto *pcBSID = reinterpret_cast<const char *>(stStation.aucBSID.data());
    return SeedFor(m_u64Seed, {pcBSID, stStation.aucBSID.size()});
}

double Radio::RSSI(const Station &stStation, ModemTime iNow) const {
    const uint64_t u64Seed = SeedOf(stStation);
    const double fPosition =
        static_cast<double>(iNow) / static_cast<double>(stStation.iVariationPeriod);
    const double fChange =
        stStation.fVariation * SmoothNoise(u64Seed, fPosition) - LossAt(stStation, iNow);
    if (!stStation.stPlace) {
        return stStation.fRSSI + fChange;
    }
    const Place stHere = m_stRoute.At(iNow);
    double fLevel = stStation.iPower -
                    PathLoss(DistanceBetween(*stStation.stPlace, stHere), stStation.u32Frequency);
    if (m_fShadowing != 0) {
        fLevel += m_fShadowing * Shadow(SeedFor(u64Seed, "shadow"), stHere, m_fShadowSquare);
    }
    if (m_eFading != Fading::None) {
        const double fMetres = m_stRoute.Travelled(iNow) + fLeastSpeed * static_cast<double>(iNow) /
                                                               static_cast<double>(i64Second);
        fLevel += FadingAt(m_eFading, SeedFor(u64Seed, "fading"), fMetres, stStation.u32Frequency);
    }
    return InSteps(fLevel + fChange);
}

double Radio::CINR(const Station &stStation, double fRSSI, ModemTime iNow,
                   bool bAllSegments) const {
    const auto uStation = static_cast<size_t>(
        std::find_if(m_astStations.begin(), m_astStations.end(),
                     [&](const Station &stOne) { return &stOne == &stStation; }) -
        m_astStations.begin());
    double fInterference = 0;
    for (const Interferer &stInterferer : m_aastInterferers[uStation]) {
        if (stInterferer.pstStation->bOnAir && (bAllSegments || stInterferer.bSameSegment)) {
            fInterference += stInterferer.fShare * RatioOf(RSSI(*stInterferer.pstStation, iNow));
        }
    }
    // Without any, levels are exactly those of the scenario.
    return fInterference == 0
               ? fRSSI - stStation.fFloor
               : InSteps(fRSSI - Decibels(RatioOf(stStation.fFloor) + fInterference));
}

Measurement Radio::Measure(const Station &stStation, ModemTime iNow, double fGain) const {
    const double fRSSI = RSSI(stStation, iNow);
    return {fRSSI + fGain, std::min(CINR(stStation, fRSSI, iNow, false) + fGain, fMostCINR)};
}

double Radio::ReuseOneCINR(const Station &stStation, ModemTime iNow) const {
    return std::min(CINR(stStation, RSSI(stStation, iNow), iNow, true), fMostCINR);
}

bool Radio::HasPlaces() const {
    return std::any_of(m_astStations.begin(), m_astStations.end(),
                       [](const Station &stStation) { return stStation.stPlace.has_value(); });
}

Deviation Radio::Deviations(const Station &stStation, ModemTime iNow) const {
    double fSum = 0;
    double fSquares = 0;
    double fSumOfCINR = 0;
    double fSquaresOfCINR = 0;
    const Measurement stLast = Measure(stStation, iNow);
    for (int32_t i = 1; i < iLooks; ++i) {
        const Measurement stOne = Measure(stStation, iNow - i * (iWindow / iLooks));
        const double fRSSI = stOne.fRSSI - stLast.fRSSI;
        const double fCINR = stOne.fCINR - stLast.fCINR;
        fSum += fRSSI;
        fSquares += fRSSI * fRSSI;
        fSumOfCINR += fCINR;
        fSquaresOfCINR += fCINR * fCINR;
    }
    const auto Of = [](double fOfValues, double fOfSquares) {
        return InSteps(std::sqrt(
            std::max(0.0, fOfSquares / iLooks - fOfValues * fOfValues / iLooks / iLooks)));
    };
    return {Of(fSum, fSquares), Of(fSumOfCINR, fSquaresOfCINR)};
}

double Radio::Distance(const Station &stStation, ModemTime iNow) const {
    return stStation.stPlace
               ? DistanceBetween(*stStation.stPlace, m_stRoute.At(iNow))
               : DistanceOfLoss(stStation.iPower - stStation.fRSSI + LossAt(stStation, iNow),
                                stStation.u32Frequency);
}

bool Radio::Receivable(const Station &stStation, ModemTime iNow) const {
    return stStation.bOnAir && Measure(stStation, iNow).fRSSI >= m_fSensitivity;
}

bool Radio::StrongEnoughToEnter(const Station &stStation, ModemTime iNow) const {
    const Measurement stMeasurement = Measure(stStation, iNow);
    return stStation.bOnAir && stMeasurement.fRSSI >= m_fEntryRSSI &&
           stMeasurement.fCINR >= m_fEntryCINR;
}

Station *Radio::Strongest(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble,
                          ModemTime iNow) {
    Station *pstStrongest = nullptr;
    for (Station &stStation : m_astStations) {
        const bool bPreamble =
            u32Preamble == SyncUpRequest::AnyPreamble || u32Preamble == stStation.u32Preamble;
        if (stStation.u32Frequency == u32Frequency && stStation.u32Bandwidth == u32Bandwidth &&
            bPreamble && Receivable(stStation, iNow) &&
            (pstStrongest == nullptr ||
             Measure(stStation, iNow).fRSSI > Measure(*pstStrongest, iNow).fRSSI)) {
            pstStrongest = &stStation;
        }
    }
    return pstStrongest;
}

Station *Radio::StrongestOfNetwork(const Station &stStation, double fAbove, ModemTime iNow,
                                   const std::function<bool(const Station &)> &pfnLeaveOut) {
    Station *pstStrongest = nullptr;
    double fMost = fAbove;
    for (Station &stOther : m_astStations) {
        if (&stOther == &stStation || stOther.NAPID() != stStation.NAPID() ||
            (pfnLeaveOut && pfnLeaveOut(stOther)) || !Receivable(stOther, iNow)) {
            continue;
        }
        const double fRSSI = Measure(stOther, iNow).fRSSI;
        if (fRSSI > fMost) {
            fMost = fRSSI;
            pstStrongest = &stOther;
        }
    }
    return pstStrongest;
}

void Radio::Fade(Station &stStation, double fLoss, ModemTime iNow, ModemTime iDuration) {
    stStation.fLossBefore = LossAt(stStation, iNow);
    stStation.fLossAfter = stStation.fLossBefore + fLoss;
    stStation.iFadeStart = iNow;
    stStation.iFadeEnd = iNow + iDuration;
}

void Radio::PutStation(ByteSpan stRecord, const Station &stStation, ModemTime iNow) const {
    const Measurement stMeasurement = Measure(stStation, iNow);
    Put(stRecord, BaseStation::u8CompressedMap, stStation.bCompressedMap ? 1 : 0);
    PutBytes(stRecord, BaseStation::aucBSID.u16Offset, {stStation.aucBSID.data(), u32BSIDSize});
    Put(stRecord, BaseStation::u32PreambleIndex, stStation.u32Preamble);
    Put(stRecord, BaseStation::u32CenterFrequency, stStation.u32Frequency);
    Put(stRecord, BaseStation::u32Bandwidth, stStation.u32Bandwidth);
    Put(stRecord, BaseStation::s32SignalStrength, Rounded(stMeasurement.fRSSI));
    Put(stRecord, BaseStation::s32CINR, Rounded(stMeasurement.fCINR));
    Put(stRecord, BaseStation::u32DCDChangeCount, stStation.u32DCDChangeCount);
    Put(stRecord, BaseStation::u32NSPChangeCount, stStation.u32NSPChangeCount);
}

#include "air/Radio.h"

#include <algorithm>
#include <cmath>

#include "LinkRecords.h"
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

// The loss of a fade at a moment, in dB.
double LossAt(const Station &stStation, ModemTime iNow) {
    if (iNow >= stStation.iFadeEnd) {
        return stStation.fLossAfter;
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

uint32_t Rounded(double fValue) { return static_cast<uint32_t>(std::lround(fValue)); }

Radio::Radio(const Section &stRoot, uint64_t u64Seed) : m_u64Seed(SeedFor(u64Seed, "radio")) {
    const Section stRadio = stRoot.Table("radio");
    m_fSensitivity = stRadio.Number("sensitivity", -200, 100, -97);
    m_fEntryRSSI = stRadio.Number("entry-rssi", -200, 100, -88);
    m_fEntryCINR = stRadio.Number("entry-cinr", -100, 100, 3);
    const Section stHandover = stRoot.Table("handover");
    m_stMargin = {stHandover.Number("hysteresis", 0, 200, 6),
                  stHandover.Seconds("time-to-trigger", 0, 1000, 1)};
    const std::vector<NSP> astNSPs = ReadNSPs(stRoot);
    for (const Section &stSection : stRoot.Tables("station")) {
        m_astStations.push_back(Read(stSection, astNSPs));
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
        .fRSSI = stSection.Number("rssi", -200, 100),
        .fCINR = stSection.Number("cinr", -100, 100),
        .fVariation = stSection.Number("variation", 0, 100, 0),
        .iVariationPeriod = stSection.Seconds("variation-period", 0.001, 1e6, 10),
        .u32DCDChangeCount =
            static_cast<uint32_t>(stSection.Integer("dcd-change-count", 0, UINT32_MAX, 1)),
        .u32NSPChangeCount =
            static_cast<uint32_t>(stSection.Integer("nsp-change-count", 0, UINT32_MAX, 1)),
        .u32CellID = static_cast<uint32_t>(stSection.Integer("cell-id", 0, UINT8_MAX, 0)),
        .u32IPSubnet = static_cast<uint32_t>(stSection.Integer("ip-subnet", 0, UINT32_MAX, 0)),
        .bCompressedMap = stSection.Flag("compressed-map", false),
        .bNSPSupport = stSection.Flag("nsp-support", true),
        .u32EntryFailure = stSection.Choice("entry", astEntryOutcomes, LinkReason::LinkUpAchieved),
        .astNSPs = {},
        .aucVendorData = stSection.Bytes("vendor-data", 255),
        .bOnAir = stSection.Flag("on-air", true)};
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

Measurement Radio::Measure(const Station &stStation, ModemTime iNow) const {
    const auto *pcBSID = reinterpret_cast<const char *>(stStation.aucBSID.data());
    const uint64_t u64Seed = SeedFor(m_u64Seed, {pcBSID, stStation.aucBSID.size()});
    const double fPosition =
        static_cast<double>(iNow) / static_cast<double>(stStation.iVariationPeriod);
    const double fChange =
        stStation.fVariation * SmoothNoise(u64Seed, fPosition) - LossAt(stStation, iNow);
    return {stStation.fRSSI + fChange, stStation.fVariation / 2, stStation.fCINR + fChange,
            stStation.fVariation / 2};
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

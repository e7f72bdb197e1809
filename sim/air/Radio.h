// The base stations around the modem and how they are received: the one model that all levels,
// delays, powers, burst profiles, error rates and decisions follow from.
#ifndef RADIO_H
#define RADIO_H

#include <array>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Wire.h"
#include "air/Propagation.h"
#include "air/Route.h"
#include "scenario/Scenario.h"
#include "time/ModemTime.h"

using BSIDBytes = std::array<uint8_t, 6>;

struct NSP {
    uint32_t u32ID;
    std::string strName;
};

struct Station {
    BSIDBytes aucBSID;
    uint32_t u32Frequency; // kHz
    uint32_t u32Bandwidth; // kHz
    uint32_t u32Preamble;
    std::optional<Place> stPlace; // else it is received with a level of its own
    double fRSSI;                 // dBm: that level
    // Noise, and interference of cells that the scenario does not have, in dBm.
    double fFloor;
    int32_t iPower;    // dBm, that it sends with
    double fVariation; // dB to either side
    ModemTime iVariationPeriod;
    uint32_t u32DCDChangeCount;
    uint32_t u32NSPChangeCount;
    uint32_t u32CellID;
    uint32_t u32PagingGroup;
    uint32_t u32IPSubnet; // a link that moves to another one needs a new address
    bool bCompressedMap;
    bool bNSPSupport;         // announces its network service providers
    uint32_t u32EntryFailure; // LinkReason, LinkUpAchieved where it lets the modem in
    std::vector<NSP> astNSPs;
    std::vector<uint8_t> aucVendorData;
    bool bOnAir;

    // A fade under way: from one loss to another between two moments.
    double fLossBefore = 0; // dB
    double fLossAfter = 0;
    ModemTime iFadeStart = 0;
    ModemTime iFadeEnd = 0;

    uint32_t NAPID() const;
    // The third of the subchannels that its preamble stands for.
    uint32_t Segment() const;
};

// What the modem measures of a station.
struct Measurement {
    double fRSSI; // dBm
    double fCINR; // dB, where stations use a segment each
};
// How much that has varied lately: standard deviations in dB.
struct Deviation {
    double fRSSI;
    double fCINR;
};

// No CINR is higher, however strong a station is: what its transmitter's error vector (the standard
// allows -31 dB with 64-QAM, good ones have some 10 dB less), the receiver's phase noise and its
// steps add grows with the signal.
inline constexpr double fMostCINR = 40; // dB

// Levels and powers in messages are often quarters of a dB.
constexpr double fQuarters = 4;

// To the nearest whole number, as the messages carry it.
uint32_t Rounded(double fValue);

// When a link looks for another station: stations announce it, the modem acts and reports by it.
struct HandoverThresholds {
    // So much better than the serving station a neighbour has to be, and for so long, to be worth
    // a handover.
    double fHysteresis; // dB
    ModemTime iTimeToTrigger;
    double fScanCINR; // dB: below, the serving station is one to look around from
};

class Radio {
  public:
    // Reads [radio], [route], [[way-point]], [[nsp]] and [[station]], and the thresholds of
    // [handover].
    Radio(const Section &stRoot, uint64_t u64Seed);

    // The stations, in the order of the scenario. They stay where they are.
    std::deque<Station> &Stations() { return m_astStations; }
    const std::deque<Station> &Stations() const { return m_astStations; }
    // The station that a key of a section names; null without the key.
    Station *StationOf(const Section &stSection, const char *pcKey);

    // With an antenna of so many dB more than the usual one.
    Measurement Measure(const Station &stStation, ModemTime iNow, double fGain = 0) const;
    // Over the second before iNow.
    Deviation Deviations(const Station &stStation, ModemTime iNow) const;
    // The CINR of what all stations of a frequency send on the same subchannels, as preambles
    // are measured with a reuse of 1.
    double ReuseOneCINR(const Station &stStation, ModemTime iNow) const;
    // To the station, in metres. Of one without a place: as far as its level comes.
    double Distance(const Station &stStation, ModemTime iNow) const;
    // What lies between what the station sends and what is received of it, in dB.
    double LossTo(const Station &stStation, ModemTime iNow) const {
        return stStation.iPower - Measure(stStation, iNow).fRSSI;
    }
    Route &TheRoute() { return m_stRoute; }
    // Whether it means anything to somebody.
    bool HasPlaces() const;
    // From now on levels vary as those of another seed do.
    void SetSeed(uint64_t u64Seed);
    // On the air and strong enough to be noticed.
    bool Receivable(const Station &stStation, ModemTime iNow) const;
    bool StrongEnoughToEnter(const Station &stStation, ModemTime iNow) const;
    // The strongest receivable station of the same network access provider that is received with
    // more than fAbove dBm; one that pfnLeaveOut names is none. Null when there is none.
    Station *StrongestOfNetwork(const Station &stStation, double fAbove, ModemTime iNow,
                                const std::function<bool(const Station &)> &pfnLeaveOut = {});
    // The strongest receivable station there; u32Preamble may be
    // SyncUpRequest::AnyPreamble. Null when there is none.
    Station *Strongest(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble,
                       ModemTime iNow);

    const HandoverThresholds &Thresholds() const { return m_stThresholds; }

    // Weakens a station by fLoss dB more (stronger when negative) in the course of
    // iDuration.
    static void Fade(Station &stStation, double fLoss, ModemTime iNow, ModemTime iDuration);

    // Of the modem's transmit antenna, against one of 0 dB: the louder the modem has to
    // send for the same effect, the less it is.
    double TransmitGain() const { return m_fTransmitGain; }
    void SetTransmitGain(double fGain) { m_fTransmitGain = fGain; }

    // Its record, as search answers and wake-up indications carry it.
    void PutStation(ByteSpan stRecord, const Station &stStation, ModemTime iNow) const;

  private:
    // What another station does to a station's channel.
    struct Interferer {
        const Station *pstStation;
        double fShare; // of its power that falls into the channel
        bool bSameSegment;
    };

    Station Read(const Section &stSection, const std::vector<NSP> &astNSPs) const;
    void ReadLevel(const Section &stSection, Station *pstStation) const;
    void FindInterferers();
    uint64_t SeedOf(const Station &stStation) const;
    double RSSI(const Station &stStation, ModemTime iNow) const;
    // Of a signal that nothing is too strong for.
    double CINR(const Station &stStation, double fRSSI, ModemTime iNow, bool bAllSegments) const;
    static std::optional<BSIDBytes> BSIDOf(const Section &stSection, const char *pcKey);

    uint64_t m_u64Seed = 0;
    double m_fSensitivity;
    double m_fEntryRSSI;
    double m_fEntryCINR;
    double m_fNoiseFigure;
    double m_fShadowing;
    double m_fShadowSquare;
    Fading m_eFading;
    HandoverThresholds m_stThresholds{};
    double m_fTransmitGain = 0; // dB
    Route m_stRoute;
    std::deque<Station> m_astStations;
    std::vector<std::vector<Interferer>> m_aastInterferers; // of each station
};

#endif

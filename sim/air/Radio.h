// The base stations around the modem and how they are received.
#ifndef RADIO_H
#define RADIO_H

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "Wire.h"
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
    double fRSSI;      // dBm
    double fCINR;      // dB
    double fVariation; // dB to either side
    ModemTime iVariationPeriod;
    uint32_t u32DCDChangeCount;
    uint32_t u32NSPChangeCount;
    uint32_t u32CellID;
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
};

// What the modem measures of a station.
struct Measurement {
    double fRSSI; // dBm
    double fRSSIDeviation;
    double fCINR; // dB
    double fCINRDeviation;
};

// Levels and powers in messages are often quarters of a dB.
constexpr double fQuarters = 4;

// To the nearest whole number, as the messages carry it.
uint32_t Rounded(double fValue);

// So much better than the serving station a neighbour has to be, and for so long, to be worth a
// handover: stations announce it, the modem acts and reports by it.
struct HandoverMargin {
    double fHysteresis; // dB
    ModemTime iTimeToTrigger;
};

class Radio {
  public:
    // Reads [radio], [[nsp]] and [[station]], and the margin of [handover].
    Radio(const Section &stRoot, uint64_t u64Seed);

    // The stations, in the order of the scenario. They stay where they are.
    std::deque<Station> &Stations() { return m_astStations; }
    const std::deque<Station> &Stations() const { return m_astStations; }
    // The station that a key of a section names; null without the key.
    Station *StationOf(const Section &stSection, const char *pcKey);

    Measurement Measure(const Station &stStation, ModemTime iNow) const;
    // On the air and strong enough to be noticed.
    bool Receivable(const Station &stStation, ModemTime iNow) const;
    bool StrongEnoughToEnter(const Station &stStation, ModemTime iNow) const;
    // The strongest receivable station there; u32Preamble may be
    // SyncUpRequest::AnyPreamble. Null when there is none.
    Station *Strongest(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble,
                       ModemTime iNow);

    const HandoverMargin &Margin() const { return m_stMargin; }

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
    Station Read(const Section &stSection, const std::vector<NSP> &astNSPs) const;
    static std::optional<BSIDBytes> BSIDOf(const Section &stSection, const char *pcKey);

    uint64_t m_u64Seed;
    double m_fSensitivity;
    double m_fEntryRSSI;
    double m_fEntryCINR;
    HandoverMargin m_stMargin{};
    double m_fTransmitGain = 0; // dB
    std::deque<Station> m_astStations;
};

#endif

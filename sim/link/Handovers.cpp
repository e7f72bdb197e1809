// Handover: the link, while it is up, moves to a station of the same access network
// that has been better for long enough, or to the one that an event names.
#include <algorithm>
#include <map>

#include "MobilityRecords.h"
#include "air/Signalling.h"
#include "link/Excursion.h"
#include "link/Link.h"
#include "link/LinkSubsystems.h"

namespace {

constexpr uint32_t u32ScanFrames = 4;

class Handovers : public Subsystem {
  public:
    explicit Handovers(Modem &stModem);
    void Start() override;

  private:
    // How an attempt goes that an event has asked for.
    struct Plan {
        uint32_t u32RangingFailures = 0;
        bool bFails = false;
        bool bOrdered = false; // by the station
    };

    void FollowLink();
    void Look();
    // The strongest station that is better than the serving one by the hysteresis.
    Station *Better() const;
    void Begin(Station &stTarget, Plan stPlan);
    void Range();
    bool RangingSucceeds();
    void Finish(bool bSuccess);

    Modem &m_stModem;
    Link &m_stLink;
    ModemTime m_iLookPeriod;  // 0: only events bring handovers about
    ModemTime m_iTime;        // of a handover without ranging failures
    ModemTime m_iRangingTime; // of each further attempt
    ModemTime m_iRetryAfter;  // a station where it failed is left alone so long
    uint32_t m_u32MostAttempts;
    double m_fRangingFailure; // probability for each attempt

    Random &m_stRandom;
    Excursion m_stScan; // of a station that may be better
    Timer m_stLook;
    Timer m_stStep; // of the handover under way
    Station *m_pstCandidate = nullptr;
    ModemTime m_iCandidateSince = 0;
    Station *m_pstTarget = nullptr;
    Plan m_stPlan;
    ModemTime m_iBegan = 0;
    uint32_t m_u32Failures = 0;
    std::map<const Station *, ModemTime> m_aiBarredUntil;
};

Handovers::Handovers(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stRandom(stModem.RandomFor("handover")),
      m_stScan(stModem, Absence::Neighbour), m_stLook(stModem.Clock()), m_stStep(stModem.Clock()) {
    const Section stSettings = stModem.Settings("handover");
    m_iLookPeriod = stSettings.Seconds("look-period", 0, 1000, 0.5);
    m_iTime = stSettings.Seconds("time", 0, 1000, 0.05);
    m_iRangingTime = stSettings.Seconds("ranging-time", 0, 1000, 0.02);
    m_iRetryAfter = stSettings.Seconds("retry-after", 0, 1e6, 10);
    m_u32MostAttempts = static_cast<uint32_t>(stSettings.Integer("ranging-attempts", 1, 1000, 4));
    m_fRangingFailure = stSettings.Number("ranging-failure", 0, 1, 0);
    stModem.OnEvent("handover", [this](const Section &stSection) {
        Station *pstTarget = m_stModem.Air().StationOf(stSection, "station");
        if (pstTarget == nullptr) {
            stSection.Refuse("station", "is missing");
        }
        const Plan stPlan{
            static_cast<uint32_t>(stSection.Integer("ranging-failures", 0, UINT32_MAX, 0)),
            stSection.Flag("fails", false), stSection.Flag("ordered", false)};
        return [this, pstTarget, stPlan] {
            const bool bPossible = m_stLink.State() == LinkState::LinkUp &&
                                   m_pstTarget == nullptr && pstTarget != m_stLink.Serving();
            if (bPossible) {
                Begin(*pstTarget, stPlan);
            }
        };
    });
    m_stLink.Observe([this](const LinkChange &stChange) {
        if (stChange.eBefore != stChange.eAfter) {
            FollowLink();
        }
    });
}

void Handovers::Start() {
    m_aiBarredUntil.clear();
    FollowLink();
}

void Handovers::FollowLink() {
    m_stStep.Stop();
    m_stLook.Stop();
    m_pstTarget = nullptr;
    m_stModem.ThePresence().Return(Absence::Handover);
    m_stScan.Stop();
    m_pstCandidate = nullptr;
    if (m_stLink.State() == LinkState::LinkUp && m_iLookPeriod != 0) {
        m_stLook.Start(m_iLookPeriod, [this] { Look(); });
    }
}

void Handovers::Look() {
    m_stLook.Start(m_iLookPeriod, [this] { Look(); });
    if (m_pstTarget != nullptr) {
        return;
    }
    Station *pstBetter = Better();
    if (pstBetter != m_pstCandidate) {
        m_pstCandidate = pstBetter;
        m_iCandidateSince = m_stModem.Now();
        if (pstBetter != nullptr) {
            m_stScan.Visit(*pstBetter, u32ScanFrames);
        }
    }
    const ModemTime iTrigger = m_stModem.Air().Thresholds().iTimeToTrigger;
    if (pstBetter != nullptr && m_stModem.Now() - m_iCandidateSince >= iTrigger) {
        Begin(*pstBetter, {});
    }
}

Station *Handovers::Better() const {
    const ModemTime iNow = m_stModem.Now();
    const Station *pstServing = m_stLink.Serving();
    Radio &stAir = m_stModem.Air();
    const double fLeast = stAir.Measure(*pstServing, iNow).fRSSI + stAir.Thresholds().fHysteresis;
    return stAir.StrongestOfNetwork(*pstServing, fLeast, iNow, [&](const Station &stStation) {
        const auto pstBarred = m_aiBarredUntil.find(&stStation);
        return pstBarred != m_aiBarredUntil.end() && iNow < pstBarred->second;
    });
}

void Handovers::Begin(Station &stTarget, Plan stPlan) {
    m_pstTarget = &stTarget;
    m_pstCandidate = nullptr;
    m_stPlan = stPlan;
    m_iBegan = m_stModem.Now();
    m_u32Failures = 0;
    m_stScan.Stop();
    m_stModem.ThePresence().Leave(Absence::Handover, [](uint64_t) { return true; });
    m_stModem.TheSignalling().HandoverBegins(stTarget, stPlan.bOrdered);
    m_stStep.Start(m_iTime, [this] { Range(); });
}

bool Handovers::RangingSucceeds() {
    const bool bUnlucky = m_stRandom.Chance(m_fRangingFailure);
    return m_u32Failures >= m_stPlan.u32RangingFailures && !bUnlucky &&
           m_pstTarget->u32EntryFailure != LinkReason::RangingFailure &&
           m_stModem.Air().StrongEnoughToEnter(*m_pstTarget, m_stModem.Now());
}

void Handovers::Range() {
    if (RangingSucceeds()) {
        Finish(!m_stPlan.bFails && m_pstTarget->u32EntryFailure == LinkReason::LinkUpAchieved);
    } else if (++m_u32Failures == m_u32MostAttempts) {
        Finish(false);
    } else {
        m_stModem.TheSignalling().HandoverRangingRepeated();
        m_stStep.Start(m_iRangingTime, [this] { Range(); });
    }
}

// Reports the station that the modem is with now, and behind it the one that it came
// from: after a failure it is back from the target.
void Handovers::Finish(bool bSuccess) {
    Station &stTarget = *m_pstTarget;
    const Station &stServing = *m_stLink.Serving();
    const Station &stCurrent = bSuccess ? stTarget : stServing;
    const Station &stLast = bSuccess ? stServing : stTarget;
    const auto u32Vendor = static_cast<uint32_t>(stCurrent.aucVendorData.size());
    const ModemTime iLatency = m_stModem.Now() - m_iBegan;
    Record<Handover::au8VendorSpecificData + UINT8_MAX> stIndication;
    const ByteSpan stTo = stIndication.Span();
    Put(stTo, Handover::u8HOSuccess, bSuccess ? 1 : 0);
    Put(stTo, Handover::u8IPRefreshNeeded,
        bSuccess && stTarget.u32IPSubnet != stServing.u32IPSubnet ? 1 : 0);
    PutBytes(stTo, Handover::au8CurrentBSID.u16Offset, {stCurrent.aucBSID.data(), u32BSIDSize});
    PutBytes(stTo, Handover::au8LastBSID.u16Offset, {stLast.aucBSID.data(), u32BSIDSize});
    Put(stTo, Handover::u32NumRangingFailures, m_u32Failures);
    Put(stTo, Handover::u32HOLatency, static_cast<uint32_t>(iLatency / i64Millisecond));
    Put(stTo, Handover::u32CurrentPreambleID, stCurrent.u32Preamble);
    Put(stTo, Handover::u32LastPreambleID, stLast.u32Preamble);
    Put(stTo, Handover::u32VendorSpecificDataLength, u32Vendor);
    PutBytes(stTo, Handover::au8VendorSpecificData, {stCurrent.aucVendorData.data(), u32Vendor});

    m_pstTarget = nullptr;
    m_stModem.TheSignalling().HandoverEnds(bSuccess);
    m_stModem.ThePresence().Return(Absence::Handover);
    if (bSuccess) {
        m_stLink.MoveTo(stTarget);
    } else {
        m_aiBarredUntil[&stTarget] = m_stModem.Now() + m_iRetryAfter;
    }
    m_stModem.TellOnceSaid(
        TYPE_HANDOVER, SUBTYPE_HANDOVER_IND,
        stIndication.View().From(0, Handover::au8VendorSpecificData + u32Vendor));
}

} // namespace

std::unique_ptr<Subsystem> MakeHandovers(Modem &stModem) {
    return std::make_unique<Handovers>(stModem);
}

#include "link/Link.h"

#include <algorithm>

#include "air/Signalling.h"
#include "scenario/Options.h"

namespace {

using enum LinkState;

// The stages of network entry: why they fail, and how long they take.
struct StageRow {
    uint32_t u32Failure;
    const char *pcKey;
    double fDefault; // seconds
};

constexpr std::array<StageRow, u32EntryStages> astStages{{
    {LinkReason::RangingFailure, "ranging-time", 0.25},
    {LinkReason::SBCFailure, "sbc-time", 0.1},
    {LinkReason::PKMFailure, "pkm-time", 0.4},
    {LinkReason::RegistrationFailure, "registration-time", 0.2},
    {LinkReason::SATEKFailure, "satek-time", 0.1},
}};

constexpr std::array astStatesAtStart{
    ScenarioWord{"unsynchronised", static_cast<uint32_t>(Unsynchronised)},
    ScenarioWord{"synchronised", static_cast<uint32_t>(Synchronised)},
    ScenarioWord{"link-up", static_cast<uint32_t>(LinkUp)},
    ScenarioWord{"idle", static_cast<uint32_t>(Idle)},
    ScenarioWord{"shutdown", static_cast<uint32_t>(Shutdown)},
};

constexpr std::array astLossReasons{
    ScenarioWord{"phy-sync-error", LinkReason::PhySyncError},
    ScenarioWord{"mac-sync-error", LinkReason::MacSyncError},
    ScenarioWord{"bs-out-of-reach", LinkReason::BSOutOfReach},
    ScenarioWord{"ip-retention-timer-expired", LinkReason::IPRetentionTimerExpired},
    ScenarioWord{"mac-version-switch", LinkReason::MacVersionSwitch},
    ScenarioWord{"shutdown-resync-received", LinkReason::ShutdownResyncReceived},
    ScenarioWord{"idle-mode-failure", LinkReason::IdleModeFailureCodeReceived},
    ScenarioWord{"invalid-reason", LinkReason::InvalidReasonCode},
};

// Where a station's deregistration command takes the modem, by action code.
constexpr uint32_t u32DREGLeaveChannel = 0;
constexpr uint32_t u32DREGReturnToNormal = 3;
constexpr uint32_t u32DREGGoIdle = 5;

} // namespace

Link::Link(Modem &stModem)
    : m_stModem(stModem), m_stAt(stModem.Attached()), m_stStep(stModem.Clock()),
      m_stSupervision(stModem.Clock()) {
    const Section stSettings = stModem.Settings("link");
    m_iSyncTime = stSettings.Seconds("sync-time", 0, 1000, 0.3);
    m_iSupervision = stSettings.Seconds("supervision", 0.01, 1000, 1);
    for (uint32_t i = 0; i < u32EntryStages; ++i) {
        m_aiStageTimes[i] = stSettings.Seconds(astStages[i].pcKey, 0, 1000, astStages[i].fDefault);
    }
    const Section stStart = stModem.Settings("start");
    m_eStateAtStart = static_cast<LinkState>(
        stStart.Choice("state", astStatesAtStart, static_cast<uint32_t>(Unsynchronised)));
    m_pstStationAtStart = stModem.Air().StationOf(stStart, "station");
    const bool bWithStation = m_eStateAtStart != Unsynchronised && m_eStateAtStart != Shutdown;
    if (bWithStation != (m_pstStationAtStart != nullptr)) {
        stStart.Refuse("station", bWithStation ? "is missing: this state needs one"
                                               : "has no meaning in this state");
    }
    RegisterRequests();
    RegisterEvents();
}

void Link::RegisterRequests() {
    const auto OnHost = [this](uint32_t u32Type, uint32_t u32SubType,
                               Modem::RequestHandler pfnHandle) {
        m_stModem.On(u32Type, u32SubType,
                     [this, pfnHandle = std::move(pfnHandle)](const Request &stRequest) {
                         if (m_pfnHostActs) {
                             m_pfnHostActs();
                         }
                         return pfnHandle(stRequest);
                     });
    };
    OnHost(TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_UP,
           [this](const Request &stRequest) { return SyncUp(stRequest); });
    OnHost(TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY,
           [this](const Request &) { return Enter(std::nullopt); });
    OnHost(TYPE_NETWORK_ENTRY, SUBTYPE_NSP_NETWORK_ENTRY, [this](const Request &stRequest) {
        if (Get(stRequest.stPayload, NSPNetworkEntryRequest::u32NSPIDPresent) == 0) {
            return Enter(std::nullopt);
        }
        return Enter(Get(stRequest.stPayload, NSPNetworkEntryRequest::u32NSPID));
    });
    m_stModem.On(TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY_STATUS, [this](const Request &) {
        TellEntryStatus(StatusReason());
        return 0;
    });
    OnHost(TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DOWN, [this](const Request &) { return SyncDown(); });
    OnHost(TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DEREG, [this](const Request &) { return Deregister(); });
}

void Link::RegisterEvents() {
    Modem &stModem = m_stModem;
    stModem.OnEvent("fade", [&stModem](const Section &stSection) {
        Station *pstStation = stModem.Air().StationOf(stSection, "station");
        if (pstStation == nullptr) {
            stSection.Refuse("station", "is missing");
        }
        const double fLoss = stSection.Number("by", -200, 200);
        const ModemTime iDuration = stSection.Seconds("over", 0, 1e6, 0);
        return [&stModem, pstStation, fLoss, iDuration] {
            Radio::Fade(*pstStation, fLoss, stModem.Now(), iDuration);
        };
    });
    stModem.OnEvent("move", [&stModem](const Section &stSection) {
        const Place stTo = PlaceIn(stSection);
        const ModemTime iDuration = stSection.Seconds("over", 0, 1e6, 0);
        return [&stModem, stTo, iDuration] {
            stModem.Air().TheRoute().Go(stTo, stModem.Now(), iDuration);
        };
    });
    for (const bool bOnAir : {false, true}) {
        stModem.OnEvent(bOnAir ? "appear" : "vanish", [&stModem, bOnAir](const Section &stSection) {
            Station *pstStation = stModem.Air().StationOf(stSection, "station");
            if (pstStation == nullptr) {
                stSection.Refuse("station", "is missing");
            }
            return [pstStation, bOnAir] { pstStation->bOnAir = bOnAir; };
        });
    }
    stModem.OnEvent("link-loss", [this](const Section &stSection) {
        const uint32_t u32Reason =
            stSection.Choice("reason", astLossReasons, LinkReason::BSOutOfReach);
        return [this, u32Reason] {
            if (Registered() || m_stAt.eState == Entering) {
                Lose(u32Reason);
            }
        };
    });
    stModem.OnEvent("dreg", [this](const Section &stSection) {
        const auto u32Action = static_cast<uint32_t>(stSection.Integer("action", 0, UINT32_MAX, 0));
        return [this, u32Action] { ReceiveDREG(u32Action); };
    });
    stModem.OnEvent("reset", [this](const Section &) {
        return [this] {
            if (Registered() || m_stAt.eState == Entering) {
                Lose(LinkReason::ResetReceived);
            }
        };
    });
}

void Link::Start() {
    m_bSleeping = false;
    m_u32Reports = 0;
    // After a reset the way to a station has to be gone again.
    const bool bWayToGo = m_bStarted && m_pstStationAtStart != nullptr;
    m_bStarted = true;
    m_stAt.pstServing = bWayToGo ? nullptr : m_pstStationAtStart;
    SetState(bWayToGo ? Unsynchronised : m_eStateAtStart);
}

void Link::SetState(LinkState eState) {
    const LinkChange stChange{m_stAt.eState, eState, m_u32StagesDone};
    const bool bWasRegistered = Registered();
    m_stStep.Stop();
    m_stAt.eState = eState;
    if (Registered() && !bWasRegistered) {
        m_iUpSince = m_stModem.Now();
    }
    if (!Registered()) {
        m_bSleeping = false;
    }
    if (IsAnyOf({Unsynchronised, Synchronising, Shutdown})) {
        m_stAt.pstServing = nullptr;
    }
    m_stModem.UserTraffic().SetFlowing(eState == LinkUp);
    if (m_stAt.pstServing == nullptr || eState == Entering) {
        m_stSupervision.Stop();
    } else if (!m_stSupervision.Running()) {
        m_stSupervision.Start(m_iSupervision, [this] { Supervise(); });
    }
    if (stChange.eBefore != stChange.eAfter) {
        TellObservers(stChange);
    }
}

// The air first: whoever hears of the change finds it there.
void Link::TellObservers(const LinkChange &stChange) {
    m_stModem.TheSignalling().Follow(stChange);
    for (const Observer &pfnObserver : m_apfnObservers) {
        pfnObserver(stChange);
    }
}

void Link::MoveTo(Station &stStation) {
    m_stAt.pstServing = &stStation;
    for (const std::function<void()> &pfnMoved : m_apfnMoved) {
        pfnMoved();
    }
}

void Link::Leave(uint32_t u32Reason, LinkState eState, uint32_t u32DREGAction) {
    m_stModem.TheSignalling().Leaving(u32Reason, u32DREGAction);
    ReportEntryStatus(u32Reason, u32DREGAction);
    SetState(eState);
}

void Link::Lose(uint32_t u32Reason) {
    Station *pstStation = m_stAt.pstServing;
    Leave(u32Reason, Unsynchronised);
    if (m_pfnLost) {
        m_pfnLost(*pstStation);
    }
}

// Looks whether the serving station can still be received.
void Link::Supervise() {
    if (m_stAt.eState == Idle && m_pfnIdleLook) {
        m_pfnIdleLook();
    }
    if (m_stModem.Air().Receivable(*m_stAt.pstServing, m_stModem.Now())) {
        m_stSupervision.Start(m_iSupervision, [this] { Supervise(); });
    } else if (m_stAt.eState == Synchronised) {
        SetState(Unsynchronised);
        TellSyncStatus(LinkReason::PhySyncError);
    } else if (m_stAt.eState == LinkUp) {
        Lose(LinkReason::BSOutOfReach);
    } else if (Registered()) {
        Lose(LinkReason::IdleModeFailureCodeReceived);
    }
}

int32_t Link::SyncUp(const Request &stRequest) {
    if (m_stAt.eState == Shutdown) {
        WakeUpCompletely();
    }
    uint32_t u32Frequency = Get(stRequest.stPayload, SyncUpRequest::u32CenterFrequency);
    uint32_t u32Bandwidth = Get(stRequest.stPayload, SyncUpRequest::u32Bandwidth);
    if (u32Frequency == 0) {
        const Channel stChannel = m_stModem.ConfiguredChannel();
        u32Frequency = stChannel.u32Frequency;
        u32Bandwidth = stChannel.u32Bandwidth;
    }
    const uint32_t u32Preamble = Get(stRequest.stPayload, SyncUpRequest::u32PreambleID);
    if (!IsAnyOf({Unsynchronised, Synchronising, Synchronised})) {
        TellSyncStatus(StatusReason());
        return 0;
    }
    const bool bThereAlready = m_stAt.eState == Synchronised &&
                               m_stAt.pstServing->u32Frequency == u32Frequency &&
                               m_stAt.pstServing->u32Bandwidth == u32Bandwidth &&
                               (u32Preamble == SyncUpRequest::AnyPreamble ||
                                u32Preamble == m_stAt.pstServing->u32Preamble);
    if (bThereAlready) {
        TellSyncStatus(LinkReason::WaitForNetworkEntryCommand);
        return 0;
    }
    if (m_stAt.eState == Synchronising) {
        TellSyncStatus(LinkReason::HostInitiatedSyncDown);
    }
    Synchronise(u32Frequency, u32Bandwidth, u32Preamble);
    return 0;
}

void Link::SynchroniseTo(const Station &stStation) {
    Synchronise(stStation.u32Frequency, stStation.u32Bandwidth, stStation.u32Preamble);
}

void Link::Synchronise(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble) {
    SetState(Synchronising);
    m_stStep.StartAnswer(m_iSyncTime, [this, u32Frequency, u32Bandwidth, u32Preamble] {
        FinishSync(u32Frequency, u32Bandwidth, u32Preamble);
    });
}

void Link::FinishSync(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble) {
    Station *pstFound =
        m_stModem.Air().Strongest(u32Frequency, u32Bandwidth, u32Preamble, m_stModem.Now());
    if (pstFound == nullptr) {
        SetState(Unsynchronised);
        TellSyncStatus(LinkReason::PhySyncError);
        return;
    }
    m_stAt.pstServing = pstFound;
    SetState(Synchronised);
    ReportSyncStatus(LinkReason::LinkUpAchieved);
}

int32_t Link::Enter(std::optional<uint32_t> u32NSPID) {
    if (m_stAt.eState == Shutdown) {
        WakeUpCompletely();
    }
    if (m_stAt.eState != Synchronised) {
        TellEntryStatus(StatusReason());
        return 0;
    }
    m_u32WantedNSP = u32NSPID;
    m_u32StagesDone = 0;
    m_aiEntryTimes[0] = m_stModem.Now();
    TellEntryStatus(LinkReason::NetworkEntryInProgress);
    SetState(Entering);
    NextStage();
    return 0;
}

void Link::NextStage() {
    m_stStep.StartAnswer(m_aiStageTimes[m_u32StagesDone], [this] { FinishStage(); });
}

// The outcome of the stage that fails with u32Failure.
uint32_t Link::StageResult(uint32_t u32Failure) const {
    const ModemTime iNow = m_stModem.Now();
    const auto ServesWanted = [this](const NSP &stNSP) { return stNSP.u32ID == *m_u32WantedNSP; };
    bool bFails = m_stAt.pstServing->u32EntryFailure == u32Failure;
    if (u32Failure == LinkReason::RangingFailure) {
        bFails = bFails || !m_stModem.Air().StrongEnoughToEnter(*m_stAt.pstServing, iNow);
    } else if (u32Failure == LinkReason::PKMFailure && m_u32WantedNSP) {
        // Nobody there vouches for a subscriber of this provider.
        bFails = bFails || std::none_of(m_stAt.pstServing->astNSPs.begin(),
                                        m_stAt.pstServing->astNSPs.end(), ServesWanted);
    }
    return bFails ? u32Failure : LinkReason::LinkUpAchieved;
}

void Link::FinishStage() {
    if (!m_stModem.Air().Receivable(*m_stAt.pstServing, m_stModem.Now())) {
        Lose(LinkReason::BSOutOfReach);
        return;
    }
    const uint32_t u32Result = StageResult(astStages[m_u32StagesDone].u32Failure);
    if (u32Result != LinkReason::LinkUpAchieved) {
        Leave(u32Result, Synchronised);
        return;
    }
    ++m_u32StagesDone;
    m_aiEntryTimes[m_u32StagesDone] = m_stModem.Now();
    TellObservers({Entering, Entering, m_u32StagesDone});
    if (m_u32StagesDone < u32EntryStages) {
        NextStage();
        return;
    }
    SetState(LinkUp);
    ReportEntryStatus(LinkReason::LinkUpAchieved);
}

int32_t Link::SyncDown() {
    if (Registered() || m_stAt.eState == Entering) {
        Leave(LinkReason::LinkDownHostInitiated, Synchronised);
    }
    if (IsAnyOf({Synchronising, Synchronised})) {
        SetState(Unsynchronised);
        ReportSyncStatus(LinkReason::HostInitiatedSyncDown);
    } else {
        TellSyncStatus(StatusReason());
    }
    return 0;
}

int32_t Link::Deregister() {
    if (Registered() || m_stAt.eState == Entering) {
        Leave(LinkReason::LinkDownHostInitiated, Synchronised);
    } else {
        TellEntryStatus(StatusReason());
    }
    return 0;
}

void Link::ReceiveDREG(uint32_t u32Action) {
    if (!Registered()) {
        return;
    }
    if (u32Action == u32DREGReturnToNormal || u32Action == u32DREGGoIdle) {
        m_stModem.TheSignalling().DREGReceived(u32Action);
        ReportEntryStatus(LinkReason::DREGReceived, u32Action);
        if (u32Action == u32DREGGoIdle && m_stAt.eState == LinkUp) {
            GoIdle();
        }
        return;
    }
    Leave(LinkReason::DREGReceived,
          u32Action == u32DREGLeaveChannel ? Unsynchronised : Synchronised, u32Action);
}

void Link::WakeUpCompletely() {
    m_stModem.Tell(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_COMPLETE_WAKE_UP_IND);
    SetState(Unsynchronised);
}

uint32_t Link::StatusReason() const {
    switch (m_stAt.eState) {
    case Unsynchronised:
    case Synchronising:
        return LinkReason::WaitForPhySyncCommand;
    case Synchronised:
        return LinkReason::WaitForNetworkEntryCommand;
    case Entering:
        return LinkReason::NetworkEntryInProgress;
    case LinkUp:
    case EnteringIdle:
        return m_bSleeping ? LinkReason::InSleepMode : LinkReason::LinkStatusNormal;
    case Idle:
    case LeavingIdle:
        return LinkReason::InIdleMode;
    case ShuttingDown:
    case Shutdown:
        break;
    }
    return LinkReason::ShutdownReceivedCommand;
}

std::vector<uint8_t> Link::SyncStatusOf(uint32_t u32Reason) const {
    Record<SyncStatus::Size> stAnswer;
    Put(stAnswer.Span(), SyncStatus::u32Status, u32Reason);
    if (m_stAt.pstServing != nullptr) {
        const Measurement stMeasurement =
            m_stModem.Air().Measure(*m_stAt.pstServing, m_stModem.Now());
        const Deviation stDeviation =
            m_stModem.Air().Deviations(*m_stAt.pstServing, m_stModem.Now());
        const ByteSpan stTo = stAnswer.Span();
        Put(stTo, SyncStatus::u8CompressedMap, m_stAt.pstServing->bCompressedMap ? 1 : 0);
        PutBytes(stTo, SyncStatus::aucBSID.u16Offset,
                 {m_stAt.pstServing->aucBSID.data(), u32BSIDSize});
        Put(stTo, SyncStatus::u32PreambleID, m_stAt.pstServing->u32Preamble);
        Put(stTo, SyncStatus::s32CINRMean, Rounded(stMeasurement.fCINR));
        Put(stTo, SyncStatus::s32CINRDeviation, Rounded(stDeviation.fCINR));
        Put(stTo, SyncStatus::s32RSSIMean, Rounded(stMeasurement.fRSSI));
        Put(stTo, SyncStatus::s32RSSIDeviation, Rounded(stDeviation.fRSSI));
        Put(stTo, SyncStatus::u32CenterFrequency, m_stAt.pstServing->u32Frequency);
        Put(stTo, SyncStatus::u32Bandwidth, m_stAt.pstServing->u32Bandwidth);
        Put(stTo, SyncStatus::u32DCDChangeCount, m_stAt.pstServing->u32DCDChangeCount);
        Put(stTo, SyncStatus::u32NSPChangeCount, m_stAt.pstServing->u32NSPChangeCount);
    }
    return {std::begin(stAnswer.aucBytes), std::end(stAnswer.aucBytes)};
}

void Link::PutBaseInformation(ByteSpan stTo) const {
    constexpr uint32_t u32kHzPerMHz = 1000;
    const Measurement stMeasurement = m_stModem.Air().Measure(*m_stAt.pstServing, m_stModem.Now());
    const Deviation stDeviation = m_stModem.Air().Deviations(*m_stAt.pstServing, m_stModem.Now());
    const ModemTime iUp = Registered() ? m_stModem.Now() - m_iUpSince : 0;
    PutBytes(stTo, BaseInformation::aucBSID.u16Offset,
             {m_stAt.pstServing->aucBSID.data(), u32BSIDSize});
    Put(stTo, BaseInformation::u8ULCellID, m_stAt.pstServing->u32CellID);
    Put(stTo, BaseInformation::u8PreambleIndex, m_stAt.pstServing->u32Preamble);
    Put(stTo, BaseInformation::s16CINRMean, Rounded(stMeasurement.fCINR));
    Put(stTo, BaseInformation::s16CINRDeviation, Rounded(stDeviation.fCINR));
    Put(stTo, BaseInformation::u32Duration, static_cast<uint32_t>(iUp / i64Second));
    Put(stTo, BaseInformation::u32MeanRSSI, Rounded(stMeasurement.fRSSI));
    Put(stTo, BaseInformation::u32RSSIDeviation, Rounded(stDeviation.fRSSI));
    Put(stTo, BaseInformation::u32ULCenterFrequency,
        m_stAt.pstServing->u32Frequency / u32kHzPerMHz);
    Put(stTo, BaseInformation::u32DLCenterFrequency,
        m_stAt.pstServing->u32Frequency / u32kHzPerMHz);
}

std::vector<uint8_t> Link::EntryStatusOf(uint32_t u32Reason, uint32_t u32DREGAction) const {
    Record<NetworkEntryStatus::aucVendorData + UINT8_MAX> stAnswer;
    const ByteSpan stTo = stAnswer.Span();
    uint32_t u32Length = NetworkEntryStatus::aucVendorData;
    Put(stTo, NetworkEntryStatus::u8Status, u32Reason);
    Put(stTo, NetworkEntryStatus::u32DREGActionCode, u32DREGAction);
    const bool bWithStation =
        m_stAt.pstServing != nullptr &&
        (u32Reason == LinkReason::LinkUpAchieved || u32Reason == LinkReason::LinkStatusNormal ||
         u32Reason == LinkReason::InIdleMode || u32Reason == LinkReason::InSleepMode ||
         u32Reason == LinkReason::WaitForNetworkEntryCommand);
    if (bWithStation) {
        const auto u32Vendor = static_cast<uint32_t>(m_stAt.pstServing->aucVendorData.size());
        Put(stTo, NetworkEntryStatus::u32BaseInformationPresent, 1);
        PutBaseInformation(stTo.From(NetworkEntryStatus::stBaseInformation, BaseInformation::Size));
        Put(stTo, NetworkEntryStatus::s32VendorDataLength, u32Vendor);
        PutBytes(stTo, NetworkEntryStatus::aucVendorData,
                 {m_stAt.pstServing->aucVendorData.data(), u32Vendor});
        u32Length += u32Vendor;
    }
    return {stAnswer.aucBytes, stAnswer.aucBytes + u32Length};
}

void Link::TellSyncStatus(uint32_t u32Reason) {
    Tell(SUBTYPE_SYNC_STATUS_RESP, SyncStatusOf(u32Reason), m_u32Reports != 0);
}

void Link::TellEntryStatus(uint32_t u32Reason) {
    Tell(SUBTYPE_NETWORK_ENTRY_STATUS_RESP, EntryStatusOf(u32Reason, 0), m_u32Reports != 0);
}

void Link::ReportSyncStatus(uint32_t u32Reason) {
    Tell(SUBTYPE_SYNC_STATUS_RESP, SyncStatusOf(u32Reason), true);
}

void Link::ReportEntryStatus(uint32_t u32Reason, uint32_t u32DREGAction) {
    Tell(SUBTYPE_NETWORK_ENTRY_STATUS_RESP, EntryStatusOf(u32Reason, u32DREGAction), true);
}

void Link::Tell(uint32_t u32SubType, const std::vector<uint8_t> &aucStatus, bool bOnceSaid) {
    const auto Send = [this, u32SubType, aucStatus] {
        m_stModem.Tell(TYPE_NETWORK_ENTRY, u32SubType,
                       {aucStatus.data(), static_cast<uint32_t>(aucStatus.size())});
    };
    if (!bOnceSaid) {
        Send();
        return;
    }
    ++m_u32Reports;
    m_stModem.TheSignalling().OnceSaid([this, Send] {
        --m_u32Reports;
        Send();
    });
}

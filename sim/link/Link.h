// The link's life: synchronisation, network entry, the link itself, and how it
// ends. Idle mode and shutdown move through the same states, from files of their
// own.
#ifndef LINK_H
#define LINK_H

#include <array>
#include <functional>
#include <vector>

#include "LinkRecords.h"
#include "air/Attachment.h"
#include "modem/Modem.h"

class Link : public Subsystem {
  public:
    using Observer = std::function<void(const LinkChange &stChange)>;

    explicit Link(Modem &stModem);
    void Start() override;

    LinkState State() const { return m_stAt.eState; }
    bool IsAnyOf(std::initializer_list<LinkState> aeStates) const {
        return m_stAt.IsAnyOf(aeStates);
    }
    // The link is up, in idle mode or on its way into or out of it.
    bool Registered() const { return m_stAt.Registered(); }
    // The station that the modem is synchronised to or registered with, else null.
    const Station *Serving() const { return m_stAt.pstServing; }
    // Moments of the last successful network entry: its start, then each stage's end.
    const std::array<ModemTime, u32EntryStages + 1> &EntryTimes() const { return m_aiEntryTimes; }
    ModemTime UpSince() const { return m_iUpSince; }
    void Observe(Observer pfnObserver) { m_apfnObservers.push_back(std::move(pfnObserver)); }

    // Called when the link, still up, has moved to another station.
    void OnMove(std::function<void()> pfnMoved) { m_apfnMoved.push_back(std::move(pfnMoved)); }

    // Ends whatever is under way in the old state and tells the observers.
    void SetState(LinkState eState);
    // Takes the link, which is up, to another station.
    void MoveTo(Station &stStation);
    // Reports the reason as the network entry status, then changes the state.
    void Leave(uint32_t u32Reason, LinkState eState, uint32_t u32DREGAction = 0);
    // Leaves for nowhere what was not given up.
    void Lose(uint32_t u32Reason);
    // The reason that a network entry status request is answered with.
    uint32_t StatusReason() const;
    // Answers with the network entry status.
    void TellEntryStatus(uint32_t u32Reason);
    // Answers with the sync status, with the details of the serving station.
    void TellSyncStatus(uint32_t u32Reason);
    // Out of shutdown, with the indication.
    void WakeUpCompletely();
    // While set, the link status is sleep mode.
    void SetSleeping(bool bSleeping) { m_bSleeping = bSleeping; }
    // Handles the registered link of a station that asks for idle mode.
    void OnIdleOrder(std::function<void()> pfnOrder) { m_pfnIdleOrder = std::move(pfnOrder); }
    void GoIdle() {
        if (m_pfnIdleOrder) {
            m_pfnIdleOrder();
        }
    }
    // Called in idle mode before the link is looked after: time to look at other stations.
    void OnIdleLook(std::function<void()> pfnLook) { m_pfnIdleLook = std::move(pfnLook); }
    // In idle mode: from now on listens to another station.
    void ListenTo(Station &stStation) { m_stAt.pstServing = &stStation; }
    // Called when the network has been lost, with the station that it was lost at.
    void OnLoss(std::function<void(Station &)> pfnLost) { m_pfnLost = std::move(pfnLost); }
    // Called when the host moves the link: what the modem does for itself ends.
    void OnHostActs(std::function<void()> pfnActs) { m_pfnHostActs = std::move(pfnActs); }
    // What the modem does for itself: synchronises to a station, enters the network.
    void SynchroniseTo(const Station &stStation);
    int32_t Enter(std::optional<uint32_t> u32NSPID);
    // What the scenario starts with; the station is null when it starts without one.
    LinkState StateAtStart() const { return m_eStateAtStart; }
    Station *StationAtStart() const { return m_pstStationAtStart; }

  private:
    int32_t SyncUp(const Request &stRequest);
    int32_t SyncDown();
    int32_t Deregister();
    void Synchronise(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble);
    void FinishSync(uint32_t u32Frequency, uint32_t u32Bandwidth, uint32_t u32Preamble);
    void NextStage();
    void FinishStage();
    uint32_t StageResult(uint32_t u32Failure) const;
    void Supervise();
    // The same for what has happened on the air, once it has.
    void ReportSyncStatus(uint32_t u32Reason);
    void ReportEntryStatus(uint32_t u32Reason, uint32_t u32DREGAction = 0);
    std::vector<uint8_t> SyncStatusOf(uint32_t u32Reason) const;
    std::vector<uint8_t> EntryStatusOf(uint32_t u32Reason, uint32_t u32DREGAction) const;
    void Tell(uint32_t u32SubType, const std::vector<uint8_t> &aucStatus, bool bOnceSaid);
    void PutBaseInformation(ByteSpan stTo) const;
    void ReceiveDREG(uint32_t u32Action);
    void RegisterRequests();
    void RegisterEvents();
    void TellObservers(const LinkChange &stChange);

    Modem &m_stModem;
    Attachment &m_stAt;
    ModemTime m_iSyncTime;
    ModemTime m_iSupervision;
    std::array<ModemTime, u32EntryStages> m_aiStageTimes{};
    LinkState m_eStateAtStart;
    Station *m_pstStationAtStart;
    std::vector<Observer> m_apfnObservers;
    std::vector<std::function<void()>> m_apfnMoved;
    std::function<void()> m_pfnIdleOrder;
    std::function<void()> m_pfnIdleLook;
    std::function<void(Station &)> m_pfnLost;
    std::function<void()> m_pfnHostActs;

    bool m_bStarted = false; // once already: what follows are resets
    bool m_bSleeping = false;
    uint32_t m_u32Reports = 0; // that wait for the air; answers stay behind them
    std::optional<uint32_t> m_u32WantedNSP;
    uint32_t m_u32StagesDone = 0;
    std::array<ModemTime, u32EntryStages + 1> m_aiEntryTimes{};
    ModemTime m_iUpSince = 0;
    Timer m_stStep;        // the synchronisation or entry stage under way
    Timer m_stSupervision; // the next look at the serving station
};

#endif

// What the parts of the modem hang on: what they answer to, what they work with, and the
// way to the client. It knows the floors below; of those above it knows the names alone.
#ifndef MODEM_H
#define MODEM_H

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "Wire.h"
#include "air/Attachment.h"
#include "air/Presence.h"
#include "air/Radio.h"
#include "air/Signalling.h"
#include "air/Traffic.h"
#include "modem/Events.h"
#include "modem/LibraryError.h"
#include "modem/Pins.h"
#include "modem/Subsystem.h"
#include "scenario/Options.h"
#include "scenario/Scenario.h"
#include "scenario/StateFile.h"
#include "time/Random.h"
#include "time/Scheduler.h"

class Link;
class MIBStore;
class VendorRegionStore;

// The station's MAC address, first byte first.
using StationAddress = MACAddressBytes;

// A message with its header.
using MessageBytes = std::vector<uint8_t>;

// A request as its handler sees it.
struct Request {
    uint32_t u32Type;
    uint32_t u32SubType;
    ByteView stPayload; // of a length that the catalogue allows
    // The payload of the sender's own buffer, for the requests that are answered at
    // once; empty for all others.
    ByteSpan stReply;
};

// In kHz; 0: none.
struct Channel {
    uint32_t u32Frequency;
    uint32_t u32Bandwidth;
};

// How modem time passes: with the real clock, so many times faster, or in steps.
struct ClockSettings {
    bool bStepped;
    double fTimeScale;   // of the real clock
    ModemTime iCallTime; // that each call of the client takes, of the stepped clock
    bool bJumps;         // a call goes on until all requests have their answers
};

class Modem {
  public:
    // Returns the result of the send: 0, or a negative LibraryError.
    using RequestHandler = std::function<int32_t(const Request &)>;
    using Notice = std::function<void()>;
    using MemoryReader = std::function<int32_t(uint32_t u32Address, ByteSpan stTo)>;
    using MemoryWriter = std::function<int32_t(uint32_t u32Address, ByteView stFrom)>;

    static constexpr uint32_t u32AnySubType = UINT32_MAX;

    // Throws ScenarioError.
    explicit Modem(Scenario stScenario);
    Modem(const Modem &) = delete;
    Modem &operator=(const Modem &) = delete;
    virtual ~Modem() = default;

    // ---- For the device that the modem sits in ----

    // Handles a request of u32Length bytes, header included. The buffer of a request
    // that is answered at once must be a whole record.
    int32_t Send(uint8_t *pucMessage, uint32_t u32Length);
    int32_t ReadMemory(uint32_t u32Address, ByteSpan stTo);
    int32_t WriteMemory(uint32_t u32Address, ByteView stFrom);
    // Lets modem time pass until iNow.
    void AdvanceTo(ModemTime iNow) { m_stScheduler.AdvanceTo(iNow); }
    std::optional<ModemTime> NextDue() const { return m_stScheduler.NextDue(); }
    std::optional<ModemTime> NextAwaited() const { return m_stScheduler.NextAwaited(); }
    // The next message for the client; false when there is none.
    bool TakeMessage(MessageBytes *paucMessage);
    // How many messages wait to be taken.
    size_t Waiting() const { return m_astOutbox.size(); }
    const ClockSettings &HowTimePasses() const { return m_stClockSettings; }
    void SetTimeScale(double fTimeScale) { m_stClockSettings.fTimeScale = fTimeScale; }
    // From now on all chance is that of another seed. What the modem was made with stays.
    virtual void SetSeed(uint64_t u64Seed);
    // From now on, until a message of this kind is there to be taken: says so.
    void ListenFor(uint32_t u32Type, uint32_t u32SubType);
    bool Heard() const { return m_bHeard; }
    // False when the scenario has no device, or has the first opens fail and
    // u32Attempt (counted from 1) is one of them.
    bool OpensAt(uint32_t u32Attempt) const;
    // The driver has gone; the device has to be opened again.
    bool Unloaded() const { return m_bUnloaded; }
    // Whether the request sent last keeps its sender until it has been answered.
    bool HoldsSender() const { return m_bHoldsSender; }
    // No answer of a request is on its way to the client, and none waits to be taken.
    bool AllTold() const { return m_u32Untold == 0; }

    // ---- For the subsystems: what they answer to ----

    // Requests whose answers come later, as messages.
    void On(uint32_t u32Type, uint32_t u32SubType, RequestHandler pfnHandle);
    // Requests that are answered in the sender's buffer, through Request::stReply.
    void OnAnsweredAtOnce(uint32_t u32Type, uint32_t u32SubType, RequestHandler pfnHandle);
    // A kind of [[event]].
    void OnEvent(const char *pcKind, Events::Reader pfnRead) {
        m_stEvents.Know(pcKind, std::move(pfnRead));
    }
    // Called for every request that the modem accepts, before its handler, but for those of
    // trace, loggers, log data and statistics, which watch and change nothing else.
    void OnAnyRequest(Notice pfnNotice) { m_apfnNotices.push_back(std::move(pfnNotice)); }
    void OnMemory(MemoryReader pfnRead, MemoryWriter pfnWrite);
    // Says who knows the transport connections.
    void OnTransportCIDs(std::function<std::vector<uint32_t>()> pfnCIDs) {
        m_pfnTransportCIDs = std::move(pfnCIDs);
    }

    // Says who knows the channel that a synchronisation takes when it names none.
    void OnConfiguredChannel(std::function<Channel()> pfnChannel) {
        m_pfnConfiguredChannel = std::move(pfnChannel);
    }

    // ---- For the subsystems: what they work with ----

    Scheduler &Clock() { return m_stScheduler; }
    ModemTime Now() const { return m_stScheduler.Now(); }
    // A section of the scenario.
    Section Settings(std::string_view strName) const { return m_stScenario.Root().Table(strName); }
    // The scenario outside all sections, for those that may stand several times.
    Section Root() const { return m_stScenario.Root(); }
    Files &TheFiles() const { return Root().TheFiles(); }
    const Scenario &TheScenario() const { return m_stScenario; }
    uint64_t Seed() const { return m_stChance.Seed(); }
    Random &RandomFor(const std::string &strPurpose) { return m_stChance.For(strPurpose); }
    Radio &Air() { return m_stRadio; }
    Presence &ThePresence() { return m_stPresence; }
    Traffic &UserTraffic() { return m_stTraffic; }
    Attachment &Attached() { return m_stAttachment; }
    Events &TheEvents() { return m_stEvents; }
    Options &TheOptions() { return m_stOptions; }
    Signalling &TheSignalling() { return m_stSignalling; }
    Link &TheLink() { return *m_pstLink; }
    MIBStore &TheMIBs() { return *m_pstMIBs; }
    StateFile &TheStateFile() { return m_stStateFile; }
    VendorRegionStore &TheVendorRegion() { return *m_pstVendorRegion; }
    StationAddress &Address() { return m_stAddress; }
    Pins &ThePins() { return m_stPins; }
    // How long parts of the last way into the network took, for those who report it.
    struct EntryHistory {
        ModemTime iSearch = 0;
        ModemTime iProvisioning = 0; // of the service flows
    };
    EntryHistory &History() { return m_stHistory; }
    // How many messages of each type the client never got, since the last restart.
    const std::map<uint32_t, uint32_t> &LostMessages() const { return m_au32Lost; }
    // The identifiers of the transport connections that there are now.
    std::vector<uint32_t> TransportCIDs() const {
        return m_pfnTransportCIDs ? m_pfnTransportCIDs() : std::vector<uint32_t>{};
    }

    Channel ConfiguredChannel() const {
        return m_pfnConfiguredChannel ? m_pfnConfiguredChannel() : Channel{};
    }

    // For a request's handler: the send returns when the client has had the answer.
    void HoldSender() { m_bHoldsSender = true; }
    // Handles a request that no client has sent. What it brings about is the modem's own business,
    // and nobody waits for it.
    void SendByItself(const MessageBytes &aucRequest);
    // Sends a message to the client, after the time that the modem takes for any
    // answer. Messages keep their order.
    void Tell(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload = {});
    // The same of what happens on the air: when all that belongs to it has been said there.
    void TellOnceSaid(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload);
    // The same with a message that has its header already.
    void TellBytes(MessageBytes aucMessage);
    // The firmware stands still until the next restart: only chipset control is heard
    // and answered.
    void Halt() { m_bHalted = true; }
    // Takes all parts back to their state at start.
    virtual void Restart() = 0;
    // The driver goes: no request and no message gets through any more.
    void Unload();

  protected:
    // The parts above that others ask for by name.
    void Know(Link &stLink, MIBStore &stMIBs, VendorRegionStore &stVendorRegion);
    // To be called when every part has read its own: the events, and what nobody has read.
    void ReadEvents();
    // The parts that hang on nothing, and the modem itself, back to their state at start.
    void RestartOwn();
    // The code that a send of this request has to fail with.
    virtual std::optional<int32_t> SendFailure(uint32_t u32Type, uint32_t u32SubType) = 0;
    // Takes a message on its way to the client: to Queue, or to Lose.
    virtual void PassOn(MessageBytes aucMessage) = 0;
    void Queue(MessageBytes aucMessage);
    void Lose(const MessageBytes &aucMessage);

  private:
    struct Row {
        uint32_t u32Type;
        uint32_t u32SubType;
        SizeRule stSize;
        bool bAnsweredAtOnce;
        RequestHandler pfnHandle;
    };

    static ClockSettings ReadClock(const Section &stRoot);
    // As Send; whether somebody waits for the answer is up to bAwaited.
    int32_t Handle(uint8_t *pucMessage, uint32_t u32Length, bool bAwaited);
    const Row *RowOf(uint32_t u32Type, uint32_t u32SubType) const;

    Scenario m_stScenario;
    Chance m_stChance;
    ClockSettings m_stClockSettings;
    bool m_bPresent;
    uint32_t m_u32FailedOpens;
    ModemTime m_iAnswerDelay;
    bool m_bUnloaded = false;
    bool m_bHoldsSender = false;
    uint32_t m_u32Untold = 0; // answers on their way
    MessageKind m_stListened{};
    bool m_bHeard = true;
    EntryHistory m_stHistory;
    bool m_bHalted = false;
    Scheduler m_stScheduler;
    Events m_stEvents{m_stScheduler};
    StateFile m_stStateFile;
    Radio m_stRadio;
    Presence m_stPresence;
    Traffic m_stTraffic;
    Pins m_stPins;
    StationAddress m_stAddress{0x02, 0x00, 0x00, 0x20, 0x00, 0x01};
    Options m_stOptions;
    Attachment m_stAttachment;
    Signalling m_stSignalling;
    std::vector<Row> m_astRows;
    std::vector<Notice> m_apfnNotices;
    MemoryReader m_pfnReadMemory;
    MemoryWriter m_pfnWriteMemory;
    std::function<std::vector<uint32_t>()> m_pfnTransportCIDs;
    std::function<Channel()> m_pfnConfiguredChannel;
    struct Outgoing {
        MessageBytes aucMessage;
        bool bAnswer;
    };
    std::deque<Outgoing> m_astOutbox;
    std::map<uint32_t, uint32_t> m_au32Lost; // by type
    Link *m_pstLink = nullptr;
    MIBStore *m_pstMIBs = nullptr;
    VendorRegionStore *m_pstVendorRegion = nullptr;
};

#endif

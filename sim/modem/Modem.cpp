#include "modem/Modem.h"

#include <algorithm>
#include <array>

namespace {

// A client that never takes its messages loses the newest ones beyond this many.
constexpr size_t uMostMessages = 65536;

// The sizes that a request may have: any, when nothing is known of it.
SizeRule SizeOf(uint32_t u32Type, uint32_t u32SubType) {
    const MessageRow *pstRequest = FindSent(u32Type, u32SubType);
    return pstRequest != nullptr ? pstRequest->stSize : AtLeast(0);
}

// Requests that watch what happens: they change nothing else.
constexpr std::array<uint32_t, 6> au32WatchingTypes{TYPE_MAC_MGMT,    TYPE_START_LOGGER,
                                                    TYPE_STOP_LOGGER, TYPE_MAC_LOGGING,
                                                    TYPE_PHY_LOGGING, TYPE_STATISTICS};

bool Watches(uint32_t u32Type) {
    return std::find(au32WatchingTypes.begin(), au32WatchingTypes.end(), u32Type) !=
           au32WatchingTypes.end();
}

} // namespace

Modem::Modem(Scenario stScenario)
    : m_stScenario(std::move(stScenario)),
      m_stChance(static_cast<uint64_t>(Root().Integer("seed", 0, INT64_MAX, 1))),
      m_stClockSettings(ReadClock(Root())), m_bPresent(Settings("device").Flag("present", true)),
      m_u32FailedOpens(
          static_cast<uint32_t>(Settings("device").Integer("failed-opens", 0, UINT32_MAX, 0))),
      m_iAnswerDelay(Settings("device").Seconds("answer-delay", 0, 1000, 0.02)),
      m_stStateFile(Root()), m_stRadio(Root(), Seed()),
      m_stTraffic(Root(), m_stChance, m_stScheduler, m_stPresence), m_stOptions(Root()),
      m_stSignalling(Root(), m_stChance, m_stScheduler, m_stRadio, m_stAttachment, m_stTraffic,
                     m_stPresence, m_stOptions, m_stAddress) {}

void Modem::Know(Link &stLink, MIBStore &stMIBs, VendorRegionStore &stVendorRegion) {
    m_pstLink = &stLink;
    m_pstMIBs = &stMIBs;
    m_pstVendorRegion = &stVendorRegion;
}

void Modem::ReadEvents() {
    for (const Section &stSection : Root().Tables("event")) {
        m_stEvents.Plan(m_stEvents.Read(stSection, Events::Unsaid::Refused));
    }
    m_stScenario.RefuseUnread();
}

ClockSettings Modem::ReadClock(const Section &stRoot) {
    static constexpr std::array astKinds{ScenarioWord{"real", 0}, ScenarioWord{"stepped", 1}};
    const Section stClock = stRoot.Table("clock");
    ClockSettings stSettings{stClock.Choice("kind", astKinds, 0) != 0, 1, 0, false};
    // Only the keys of its kind have a meaning.
    if (stSettings.bStepped) {
        stSettings.iCallTime = stClock.Seconds("call-time", 0, 1000, 0.001);
        stSettings.bJumps = stClock.Flag("jump", false);
    } else {
        stSettings.fTimeScale = stRoot.Number("time-scale", 0.001, 1e6, 1);
    }
    return stSettings;
}

void Modem::SetSeed(uint64_t u64Seed) {
    m_stChance.SetSeed(u64Seed);
    m_stRadio.SetSeed(u64Seed);
}

bool Modem::OpensAt(uint32_t u32Attempt) const {
    return m_bPresent && u32Attempt > m_u32FailedOpens;
}

void Modem::On(uint32_t u32Type, uint32_t u32SubType, RequestHandler pfnHandle) {
    m_astRows.push_back(
        {u32Type, u32SubType, SizeOf(u32Type, u32SubType), false, std::move(pfnHandle)});
}

void Modem::OnAnsweredAtOnce(uint32_t u32Type, uint32_t u32SubType, RequestHandler pfnHandle) {
    m_astRows.push_back(
        {u32Type, u32SubType, SizeOf(u32Type, u32SubType), true, std::move(pfnHandle)});
}

void Modem::OnMemory(MemoryReader pfnRead, MemoryWriter pfnWrite) {
    m_pfnReadMemory = std::move(pfnRead);
    m_pfnWriteMemory = std::move(pfnWrite);
}

const Modem::Row *Modem::RowOf(uint32_t u32Type, uint32_t u32SubType) const {
    for (const Row &stRow : m_astRows) {
        if (stRow.u32Type == u32Type &&
            (stRow.u32SubType == u32SubType || stRow.u32SubType == u32AnySubType)) {
            return &stRow;
        }
    }
    return nullptr;
}

int32_t Modem::Send(uint8_t *pucMessage, uint32_t u32Length) {
    m_bHoldsSender = false;
    return Handle(pucMessage, u32Length, true);
}

void Modem::SendByItself(const MessageBytes &aucRequest) {
    // A handler may want to answer in the sender's record.
    std::vector<uint8_t> aucRecord(WIMAX_MESSAGE_SIZE);
    std::copy(aucRequest.begin(), aucRequest.end(), aucRecord.begin());
    (void)Handle(aucRecord.data(), static_cast<uint32_t>(aucRequest.size()), false);
}

int32_t Modem::Handle(uint8_t *pucMessage, uint32_t u32Length, bool bAwaited) {
    if (m_bUnloaded) {
        return LibraryError::NotOpen;
    }
    if (pucMessage == nullptr) {
        return LibraryError::NullBuffer;
    }
    if (u32Length < MessageHeader::Size || u32Length > WIMAX_MESSAGE_SIZE) {
        return LibraryError::BadLength;
    }
    const ByteView stMessage{pucMessage, u32Length};
    Request stRequest{Get(stMessage, MessageHeader::usType),
                      Get(stMessage, MessageHeader::usSubType),
                      stMessage.From(MessageHeader::Size),
                      {}};
    const Row *pstRow = RowOf(stRequest.u32Type, stRequest.u32SubType);
    if (pstRow == nullptr) {
        return LibraryError::UnknownRequest;
    }
    if (stRequest.stPayload.u32Length < pstRow->stSize.u32Least ||
        stRequest.stPayload.u32Length > pstRow->stSize.u32Most) {
        return LibraryError::BadLength;
    }
    if (const std::optional<int32_t> iCode = SendFailure(stRequest.u32Type, stRequest.u32SubType)) {
        return *iCode;
    }
    if (m_bHalted && stRequest.u32Type != TYPE_CHIPSET) {
        return 0; // taken over by the driver, and lost
    }
    if (!Watches(stRequest.u32Type)) {
        for (const Notice &pfnNotice : m_apfnNotices) {
            pfnNotice();
        }
    }
    if (pstRow->bAnsweredAtOnce) {
        stRequest.stReply = {pucMessage + MessageHeader::Size, WIMAX_DATA_SIZE};
    }
    std::optional<Scheduler::Asking> stAsking;
    if (bAwaited) {
        stAsking.emplace(m_stScheduler);
    }
    return pstRow->pfnHandle(stRequest);
}

int32_t Modem::ReadMemory(uint32_t u32Address, ByteSpan stTo) {
    if (m_bUnloaded) {
        return LibraryError::NotOpen;
    }
    return m_pfnReadMemory ? m_pfnReadMemory(u32Address, stTo) : LibraryError::BadAddress;
}

int32_t Modem::WriteMemory(uint32_t u32Address, ByteView stFrom) {
    if (m_bUnloaded) {
        return LibraryError::NotOpen;
    }
    return m_pfnWriteMemory ? m_pfnWriteMemory(u32Address, stFrom) : LibraryError::BadAddress;
}

void Modem::Tell(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload) {
    if (m_bHalted && u32Type != TYPE_CHIPSET) {
        return;
    }
    MessageBytes aucMessage(MessageHeader::Size +
                            std::min(stPayload.u32Length, uint32_t{WIMAX_DATA_SIZE}));
    const ByteSpan stSpan{aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
    Put(stSpan, MessageHeader::usType, u32Type);
    Put(stSpan, MessageHeader::usSubType, u32SubType);
    PutBytes(stSpan, MessageHeader::Size, stPayload);
    TellBytes(std::move(aucMessage));
}

void Modem::TellOnceSaid(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload) {
    const MessageBytes aucPayload(stPayload.pucData, stPayload.pucData + stPayload.u32Length);
    m_stSignalling.OnceSaid([this, u32Type, u32SubType, aucPayload] {
        Tell(u32Type, u32SubType, {aucPayload.data(), static_cast<uint32_t>(aucPayload.size())});
    });
}

void Modem::TellBytes(MessageBytes aucMessage) {
    const uint32_t u32Answers = m_stScheduler.Answering() ? 1 : 0;
    m_u32Untold += u32Answers;
    m_stScheduler.After(m_iAnswerDelay,
                        [this, u32Answers, aucLater = std::move(aucMessage)]() mutable {
                            PassOn(std::move(aucLater));
                            m_u32Untold -= u32Answers;
                        });
}

void Modem::Queue(MessageBytes aucMessage) {
    if (m_bUnloaded || m_astOutbox.size() >= uMostMessages) {
        Lose(aucMessage);
    } else {
        const ByteView stBytes{aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
        const MessageKind stKind{Get(stBytes, MessageHeader::usType),
                                 Get(stBytes, MessageHeader::usSubType)};
        m_bHeard = m_bHeard || stKind == m_stListened;
        m_stEvents.Reached(stKind);
        const bool bAnswer = m_stScheduler.Answering();
        m_u32Untold += bAnswer ? 1 : 0;
        m_astOutbox.push_back({std::move(aucMessage), bAnswer});
    }
}

void Modem::ListenFor(uint32_t u32Type, uint32_t u32SubType) {
    m_stListened = {u32Type, u32SubType};
    m_bHeard = false;
}

void Modem::Lose(const MessageBytes &aucMessage) {
    const ByteView stBytes{aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
    ++m_au32Lost[Get(stBytes, MessageHeader::usType)];
}

bool Modem::TakeMessage(MessageBytes *paucMessage) {
    if (m_astOutbox.empty()) {
        return false;
    }
    m_u32Untold -= m_astOutbox.front().bAnswer ? 1 : 0;
    *paucMessage = std::move(m_astOutbox.front().aucMessage);
    m_astOutbox.pop_front();
    return true;
}

void Modem::RestartOwn() {
    m_bHalted = false;
    m_au32Lost.clear();
    m_stTraffic.Reset();
    m_stPins.Start();
}

void Modem::Unload() {
    // The indication itself still goes out, behind everything told before it.
    Tell(TYPE_DEVICE_UNLOAD, SUBTYPE_DEVICE_UNLOADED_IND);
    m_stScheduler.After(m_iAnswerDelay, [this] { m_bUnloaded = true; });
}

#include "library/JournaledModem.h"

#include "scenario/Hex.h"

namespace {

std::string Hex(ByteView stBytes) { return ToHex({stBytes.pucData, stBytes.u32Length}); }

} // namespace

void JournaledModem::Note(const std::string &strEntry) {
    if (m_pstJournal != nullptr) {
        m_pstJournal->Note(strEntry);
    }
}

void JournaledModem::NoteWaiting() {
    if (m_pstJournal != nullptr && m_bListening && m_pstModem->Waiting() != 0) {
        m_pstJournal->NoteWaiting();
    }
}

void JournaledModem::PassCallTime() {
    NoteWaiting();
    m_pstModem->AdvanceTo(m_pstModem->Now() + m_pstModem->HowTimePasses().iCallTime);
}

int32_t JournaledModem::Send(uint8_t *pucMessage, uint32_t u32Length) {
    if (m_pstJournal == nullptr) {
        return m_pstModem->Send(pucMessage, u32Length);
    }
    // The bytes of one that is too long to be a message may not be there.
    if (pucMessage == nullptr || u32Length > WIMAX_MESSAGE_SIZE) {
        Note("call");
        return m_pstModem->Send(pucMessage, u32Length);
    }
    const std::string strBytes = Hex({pucMessage, u32Length}); // an answer may stand there later
    const int32_t iResult = m_pstModem->Send(pucMessage, u32Length);
    Note("send " + std::to_string(iResult) + " " + strBytes);
    return iResult;
}

int32_t JournaledModem::ReadMemory(uint32_t u32Address, ByteSpan stTo) {
    const int32_t iResult = m_pstModem->ReadMemory(u32Address, stTo);
    Note(iResult == 0 ? "read " + std::to_string(u32Address) + " " + std::to_string(stTo.u32Length)
                      : "call");
    return iResult;
}

int32_t JournaledModem::WriteMemory(uint32_t u32Address, ByteView stFrom) {
    const int32_t iResult = m_pstModem->WriteMemory(u32Address, stFrom);
    if (m_pstJournal != nullptr) {
        Note(iResult == 0 ? "write " + std::to_string(u32Address) + " " + Hex(stFrom) : "call");
    }
    return iResult;
}

void JournaledModem::SetListening(bool bListening) {
    m_bListening = bListening;
    Note(bListening ? "callback on" : "callback off");
}

void JournaledModem::CarryOut(const std::string &strCommand,
                              const std::function<void(WholeModem &)> &pfnDo) {
    NoteWaiting();
    pfnDo(*m_pstModem);
    Note("command " + strCommand);
    m_pstModem->AdvanceTo(m_pstModem->Now()); // what has to happen at once
}

bool JournaledModem::Take(MessageBytes *paucMessage) {
    const bool bTaken = m_pstModem->TakeMessage(paucMessage);
    if (bTaken && m_pstJournal != nullptr) {
        m_pstJournal->NoteTaken(*paucMessage);
    }
    return bTaken;
}

void JournaledModem::TakeAll() {
    for (MessageBytes aucMessage; m_bListening && Take(&aucMessage);) {
    }
}

void JournaledModem::ChangeListener(bool bListening) {
    if (bListening != m_bListening) {
        NoteWaiting();
        m_bListening = bListening;
        Note(bListening ? "listener on" : "listener off");
    }
}

void JournaledModem::LiveTo(ModemTime iNow) {
    NoteWaiting();
    m_pstModem->AdvanceTo(iNow);
    if (m_pstJournal != nullptr) {
        m_pstJournal->NoteLife(m_pstModem->Now());
    }
}

std::optional<std::string> JournaledModem::JournalText() const {
    return m_pstJournal != nullptr ? m_pstJournal->Text(m_pstModem->TheScenario()) : std::nullopt;
}

// A modem and the journal of what it is asked, which is kept for those who may want to save it.
#ifndef JOURNALED_MODEM_H
#define JOURNALED_MODEM_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "library/Journal.h"
#include "library/WholeModem.h"

class JournaledModem {
  public:
    // Without a journal none is kept.
    explicit JournaledModem(std::unique_ptr<WholeModem> pstModem,
                            std::unique_ptr<Journal> pstJournal = nullptr)
        : m_pstModem(std::move(pstModem)), m_pstJournal(std::move(pstJournal)) {}

    // For those who look.
    const WholeModem *operator->() const { return m_pstModem.get(); }
    // Whoever asks it anything here goes past the journal.
    WholeModem &Itself() { return *m_pstModem; }

    // ---- The client's calls: first the time that one takes, all at once, then what it asks ----

    void PassCallTime();
    int32_t Send(uint8_t *pucMessage, uint32_t u32Length);
    int32_t ReadMemory(uint32_t u32Address, ByteSpan stTo);
    int32_t WriteMemory(uint32_t u32Address, ByteView stFrom);
    void SetListening(bool bListening);

    // ---- At no time of their own ----

    // What a command of whoever steers it does.
    void CarryOut(const std::string &strCommand, const std::function<void(WholeModem &)> &pfnDo);
    // The next message for the client.
    bool Take(MessageBytes *paucMessage);
    // Takes all that there are, if somebody listens.
    void TakeAll();
    // Another client's callback, or none, has the messages.
    void ChangeListener(bool bListening);

    // Lives until then. Everything that is due at a moment is one step.
    void LiveTo(ModemTime iNow);

    // The journal's text; nothing when it is too long, or none is kept.
    std::optional<std::string> JournalText() const;
    Journal *TheJournal() { return m_pstJournal.get(); }

  private:
    void Note(const std::string &strEntry);
    // Says how many messages have been taken, if some are left that others would have taken.
    void NoteWaiting();

    std::unique_ptr<WholeModem> m_pstModem;
    std::unique_ptr<Journal> m_pstJournal;
    bool m_bListening = false;
};

#endif

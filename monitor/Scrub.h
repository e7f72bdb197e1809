// A copy of a recording that can be given away: what the catalogue guards, what nothing describes,
// and the identities and keys in traced management messages are replaced, and so are the names of
// directories and of the host. Lengths, times and results stay.
#ifndef MONITOR_SCRUB_H
#define MONITOR_SCRUB_H

#include <vector>

#include "Pseudonyms.h"
#include "Session.h"
#include "Writer.h"

class Scrubber {
  public:
    explicit Scrubber(Pseudonyms stPseudonyms) : m_stPseudonyms(stPseudonyms) {}

    // The event as it may be told; its bytes are good until the next call.
    Event Scrubbed(const Event &stEvent);

  private:
    void ScrubMessage(const MessageRow *pstMessage, ByteSpan stMessage, uint32_t u32Received);
    void ScrubDescribed(const MessageRow &stMessage, ByteSpan stPayload, uint32_t u32Received,
                        uint32_t u32ElsewhereFrom);
    void ScrubMemory(const Event &stEvent);
    void ScrubOrigins();

    Pseudonyms m_stPseudonyms;
    std::vector<uint8_t> m_aucBytes;
};

// Writes scrubbed events, and the head of the file in front of the first one.
class ScrubbedFile {
  public:
    explicit ScrubbedFile(Writer *pstWriter) : m_pstWriter(pstWriter) {}

    void Add(const Event &stScrubbed);

  private:
    void PutPacket(const Packet &stPacket);

    Writer *m_pstWriter;
    bool m_bHasHead = false;
};

#endif

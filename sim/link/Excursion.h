// Time that the modem spends away from its station to look at others. With the link up it asks for
// that time, leaves when the station has it begin, and reports what it has seen.
#ifndef EXCURSION_H
#define EXCURSION_H

#include <vector>

#include "air/Presence.h"
#include "modem/Modem.h"

class Excursion {
  public:
    Excursion(Modem &stModem, Absence eKind)
        : m_stModem(stModem), m_eKind(eKind), m_stReturn(stModem.Clock()) {}

    // To whatever there is, for as long as it takes: about iTime.
    void Begin(ModemTime iTime);
    // To a neighbour, for so many frames. It ends by itself.
    void Visit(const Station &stNeighbour, uint32_t u32Frames);
    // Back, having seen these.
    void End(const std::vector<const Station *> &apstSeen);
    // Back, without a word.
    void Stop();

  private:
    // Asks; runs pfnThen when the station has answered, unless the modem is back by then.
    void Ask(ModemTime iTime, const Station *pstNeighbour, const std::function<void()> &pfnThen);
    void LeaveFrom(uint64_t u64Frame);

    Modem &m_stModem;
    Absence m_eKind;
    bool m_bAsked = false;
    uint32_t m_u32Number = 0; // of the one under way
    Timer m_stReturn;
};

#endif

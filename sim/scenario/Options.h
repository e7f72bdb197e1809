// The WiMAX options: eight numbered words, five of them in use. The scenario says what
// they are at the start; the client may set them.
#ifndef OPTIONS_H
#define OPTIONS_H

#include <array>

#include "LinkRecords.h"
#include "scenario/Scenario.h"

class Options {
  public:
    enum Bit : uint32_t {
        PayloadBitmap = 0,
        EEPROMWritesOff = 1,
        WritableMIBs = 3,
        EAPSecurityLevel = 4,
        PagingCycle = 5 // seconds
    };
    struct Row {
        Bit eBit;
        const char *pcKey;
        uint32_t u32Most;
        uint32_t u32Default;
    };
    static constexpr std::array astRows{
        Row{PayloadBitmap, "payload-bitmap", 15, 0},
        Row{EEPROMWritesOff, "eeprom-writes-off", 1, 0},
        Row{WritableMIBs, "writable-mibs", 3, 0},
        Row{EAPSecurityLevel, "eap-security-level", 2, 0},
        Row{PagingCycle, "paging-cycle", 15, 1},
    };
    using Values = std::array<uint32_t, WiMAXOptions::Count>; // by bit

    // Reads [options].
    explicit Options(const Section &stRoot);
    // Back to the state at start.
    void Start() { m_au32Values = m_au32AtStart; }
    uint32_t Value(Bit eBit) const { return m_au32Values[eBit]; }
    const Values &All() const { return m_au32Values; }
    void Set(const Values &au32Values) { m_au32Values = au32Values; }

  private:
    Values m_au32AtStart{};
    Values m_au32Values{};
};

#endif

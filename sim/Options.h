// The WiMAX options: eight numbered words, five of them in use.
#ifndef OPTIONS_H
#define OPTIONS_H

#include <array>

#include "LinkRecords.h"
#include "Modem.h"

class Options : public Subsystem {
  public:
    enum Bit : uint32_t {
        PayloadBitmap = 0,
        EEPROMWritesOff = 1,
        WritableMIBs = 3,
        EAPSecurityLevel = 4,
        PagingCycle = 5 // seconds
    };

    explicit Options(Modem &stModem);
    void Start() override { m_au32Values = m_au32AtStart; }
    uint32_t Value(Bit eBit) const { return m_au32Values[eBit]; }

  private:
    int32_t Set(const Request &stRequest);
    int32_t SetAll(const Request &stRequest);
    int32_t GetAll(const Request &stRequest);
    void Answer(uint32_t u32SubType, uint32_t u32Status, uint32_t u32Specifier);

    Modem &m_stModem;
    std::array<uint32_t, WiMAXOptions::Count> m_au32AtStart{};
    std::array<uint32_t, WiMAXOptions::Count> m_au32Values{};
};

#endif

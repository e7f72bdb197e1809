// The vendor-specific region: bytes that the maker of the modem laid down, and a
// part that the host may write.
#ifndef VENDOR_REGION_H
#define VENDOR_REGION_H

#include <array>
#include <vector>

#include "VendorRecords.h"
#include "modem/Modem.h"

class VendorRegionStore : public Subsystem {
  public:
    explicit VendorRegionStore(Modem &stModem);
    void Start() override;

    // Fifteen digits.
    const std::string &IMEI() const { return m_strIMEI; }
    // As the region holds it: two digits a byte, the lower half first, the last half F.
    ByteView PackedIMEI() const;

  private:
    static constexpr const char *pcStateSection = "vendor-region";
    static constexpr const char *pcStateKey = "bytes";

    int32_t Read(const Request &stRequest);
    int32_t Write(const Request &stRequest);
    int32_t TellSize();
    void Tell(uint32_t u32SubType, uint32_t u32Offset, uint32_t u32Size);

    Modem &m_stModem;
    std::string m_strIMEI;
    std::vector<uint8_t> m_aucAtStart;
    std::vector<uint8_t> m_aucBytes;
};

#endif

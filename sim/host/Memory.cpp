// Device memory: registers that say what the modem is and what it does, which can only
// be read, and a scratch area, which can be written, too.
#include <algorithm>

#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "host/Identity.h"
#include "link/Link.h"

namespace {

constexpr uint32_t u32Registers = 0x0F000000;
constexpr uint32_t u32Scratch = 0x0F010000;
constexpr uint32_t u32RegistersSize = 0x100;

namespace Register {
constexpr Field u32ChipID{0x00, FieldType::U32};
constexpr Field u32Revision{0x04, FieldType::U32};
constexpr Field u32Firmware{0x08, FieldType::U32};
constexpr Field u32ScratchSize{0x0C, FieldType::U32};
constexpr Field u32Frame{0x10, FieldType::U32};
constexpr Field u32LinkState{0x14, FieldType::U32};
constexpr Field u32Preamble{0x18, FieldType::U32}; // of the serving station, else all ones
constexpr Field s32Power{0x1C, FieldType::I32};    // quarter dBm
} // namespace Register

class Memory : public Subsystem {
  public:
    explicit Memory(Modem &stModem);
    void Start() override { std::fill(m_aucScratch.begin(), m_aucScratch.end(), uint8_t{0}); }

  private:
    int32_t Read(uint32_t u32Address, ByteSpan stTo);
    int32_t Write(uint32_t u32Address, ByteView stFrom);
    Record<u32RegistersSize> RegistersNow() const;

    Modem &m_stModem;
    uint32_t m_u32ChipID;
    uint32_t m_u32Revision;
    uint32_t m_u32Firmware;
    std::vector<uint8_t> m_aucScratch;
};

bool Inside(uint32_t u32Address, uint32_t u32Length, uint32_t u32Start, size_t uSize) {
    return u32Address >= u32Start && u32Address - u32Start <= uSize &&
           u32Length <= uSize - (u32Address - u32Start);
}

// Major, minor, build in 8, 8 and 16 bits.
int64_t FirmwareWord(const Section &stIdentity) {
    std::vector<int64_t> aiVersion =
        stIdentity.Integers(Identity::pcFirmwareVersion, 0, UINT32_MAX);
    if (aiVersion.size() != Identity::au32FirmwareVersion.size()) {
        aiVersion.assign(Identity::au32FirmwareVersion.begin(),
                         Identity::au32FirmwareVersion.end());
    }
    return (aiVersion[0] & 0xFF) << 24 | (aiVersion[1] & 0xFF) << 16 | (aiVersion[2] & 0xFFFF);
}

Memory::Memory(Modem &stModem) : m_stModem(stModem) {
    const Section stSettings = stModem.Settings("memory");
    const auto ReadWord = [&](const char *pcKey, int64_t iDefault) {
        return static_cast<uint32_t>(stSettings.Integer(pcKey, 0, UINT32_MAX, iDefault));
    };
    const Section stIdentity = stModem.Settings(Identity::pcSection);
    m_u32ChipID = ReadWord("chip-id", stIdentity.Integer(Identity::pcBasebandChip, 0, UINT32_MAX,
                                                         Identity::u32BasebandChip));
    m_u32Revision = ReadWord("revision", 0x00000102);
    m_u32Firmware = ReadWord("firmware", FirmwareWord(stIdentity));
    m_aucScratch.resize(
        static_cast<size_t>(stSettings.Integer("scratch-size", 0, 0x1000000, 0x10000)));
    stModem.OnMemory(
        [this](uint32_t u32Address, ByteSpan stTo) { return Read(u32Address, stTo); },
        [this](uint32_t u32Address, ByteView stFrom) { return Write(u32Address, stFrom); });
}

Record<u32RegistersSize> Memory::RegistersNow() const {
    const Link &stLink = m_stModem.TheLink();
    const Signalling &stSignalling = m_stModem.TheSignalling();
    const Station *pstServing = stLink.Serving();
    Record<u32RegistersSize> stRegisters;
    const ByteSpan stTo = stRegisters.Span();
    Put(stTo, Register::u32ChipID, m_u32ChipID);
    Put(stTo, Register::u32Revision, m_u32Revision);
    Put(stTo, Register::u32Firmware, m_u32Firmware);
    Put(stTo, Register::u32ScratchSize, static_cast<uint32_t>(m_aucScratch.size()));
    Put(stTo, Register::u32Frame, stSignalling.Frame());
    Put(stTo, Register::u32LinkState, static_cast<uint32_t>(stLink.State()));
    Put(stTo, Register::u32Preamble, pstServing != nullptr ? pstServing->u32Preamble : UINT32_MAX);
    Put(stTo, Register::s32Power, static_cast<uint32_t>(stSignalling.Power()));
    return stRegisters;
}

int32_t Memory::Read(uint32_t u32Address, ByteSpan stTo) {
    if (Inside(u32Address, stTo.u32Length, u32Registers, u32RegistersSize)) {
        PutBytes(stTo, 0, RegistersNow().View().From(u32Address - u32Registers, stTo.u32Length));
        return 0;
    }
    if (Inside(u32Address, stTo.u32Length, u32Scratch, m_aucScratch.size())) {
        PutBytes(stTo, 0, {m_aucScratch.data() + (u32Address - u32Scratch), stTo.u32Length});
        return 0;
    }
    return LibraryError::BadAddress;
}

int32_t Memory::Write(uint32_t u32Address, ByteView stFrom) {
    if (!Inside(u32Address, stFrom.u32Length, u32Scratch, m_aucScratch.size())) {
        return LibraryError::BadAddress;
    }
    std::copy_n(stFrom.pucData, stFrom.u32Length, m_aucScratch.begin() + (u32Address - u32Scratch));
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeMemory(Modem &stModem) { return std::make_unique<Memory>(stModem); }

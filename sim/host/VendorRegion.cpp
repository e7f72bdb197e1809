#include "host/VendorRegion.h"

#include <algorithm>
#include <string>

#include "scenario/StateFile.h"

namespace {

constexpr uint32_t u32RegionSize = 512;
constexpr size_t uIMEIDigits = 15;
constexpr const char *pcDefaultIMEI = "490154203237518";

struct Range {
    uint32_t u32First;
    uint32_t u32End;
};

// Where the host may write; all else stays as it was made.
constexpr Range astWritable[] = {
    {VendorRegion::ATRLock.u16Offset,
     uint32_t{VendorRegion::ATRLock.u16Offset} + VendorRegion::ATRLock.u16Size},
    {256, u32RegionSize}, // free for the host
};

bool IsWritable(uint32_t u32Offset) {
    return std::any_of(std::begin(astWritable), std::end(astWritable), [=](Range stRange) {
        return u32Offset >= stRange.u32First && u32Offset < stRange.u32End;
    });
}

void PackDigits(const std::string &strDigits, uint8_t *pucTo) {
    for (size_t i = 0; i < strDigits.size(); i += 2) {
        const auto u8Low = static_cast<uint8_t>(strDigits[i] - '0');
        const uint8_t u8High =
            i + 1 < strDigits.size() ? static_cast<uint8_t>(strDigits[i + 1] - '0') : 0xF;
        pucTo[i / 2] = static_cast<uint8_t>(u8High << 4 | u8Low);
    }
}

} // namespace

VendorRegionStore::VendorRegionStore(Modem &stModem) : m_stModem(stModem) {
    const Section stSettings = stModem.Settings("vendor-region");
    m_strIMEI = stSettings.Text("imei", pcDefaultIMEI);
    if (m_strIMEI.size() != uIMEIDigits ||
        m_strIMEI.find_first_not_of("0123456789") != std::string::npos) {
        stSettings.Refuse("imei", "must be 15 digits");
    }
    // What the maker laid down means nothing to the host, but is always the same.
    Random stRandom = stModem.RandomFor("vendor region");
    m_aucAtStart.resize(u32RegionSize);
    for (uint32_t i = 0; i < u32RegionSize; ++i) {
        const auto u8Made = static_cast<uint8_t>(stRandom.Next());
        m_aucAtStart[i] = IsWritable(i) ? uint8_t{0} : u8Made;
    }
    PackDigits(m_strIMEI, &m_aucAtStart[VendorRegion::IMEI.u16Offset]);

    stModem.On(TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_READ,
               [this](const Request &stRequest) { return Read(stRequest); });
    stModem.On(TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_WRITE,
               [this](const Request &stRequest) { return Write(stRequest); });
    stModem.On(TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_SIZE,
               [this](const Request & /*stRequest*/) { return TellSize(); });
}

void VendorRegionStore::Start() {
    m_aucBytes = m_aucAtStart;
    const StateFile::Values &stKept = m_stModem.TheStateFile().Kept(pcStateSection);
    const auto Found = stKept.find(pcStateKey);
    if (Found == stKept.end()) {
        return;
    }
    for (uint32_t i = 0; i < u32RegionSize && i < Found->second.size(); ++i) {
        if (IsWritable(i)) {
            m_aucBytes[i] = Found->second[i];
        }
    }
}

ByteView VendorRegionStore::PackedIMEI() const {
    return ByteView{m_aucBytes.data(), u32RegionSize}.From(VendorRegion::IMEI.u16Offset,
                                                           VendorRegion::IMEI.u16Size);
}

int32_t VendorRegionStore::Read(const Request &stRequest) {
    Tell(SUBTYPE_VSA_READ, Get(stRequest.stPayload, VendorParameter::u16Offset),
         Get(stRequest.stPayload, VendorParameter::u16DataSize));
    return 0;
}

// Writes as many bytes as were stated and sent. Nothing is written when a byte of
// the range cannot be; the indication then has no data.
int32_t VendorRegionStore::Write(const Request &stRequest) {
    const uint32_t u32Offset = Get(stRequest.stPayload, VendorParameter::u16Offset);
    const uint32_t u32Size = Get(stRequest.stPayload, VendorParameter::u16DataSize);
    for (uint32_t i = 0; i < u32Size; ++i) {
        if (!IsWritable(u32Offset + i)) {
            Tell(SUBTYPE_VSA_WRITE, u32Offset, 0);
            return 0;
        }
    }
    const ByteView stData = stRequest.stPayload.From(VendorParameter::aucData, u32Size);
    std::vector<uint8_t> aucNew = m_aucBytes;
    PutBytes({aucNew.data(), u32RegionSize}, u32Offset, stData);
    if (!m_stModem.TheStateFile().Keep(pcStateSection, pcStateKey, aucNew)) {
        Tell(SUBTYPE_VSA_WRITE, u32Offset, 0);
        return 0;
    }
    m_aucBytes = std::move(aucNew);
    Tell(SUBTYPE_VSA_WRITE, u32Offset, u32Size);
    return 0;
}

int32_t VendorRegionStore::TellSize() {
    Record<VendorRegionSize::Size> stAnswer;
    Put(stAnswer.Span(), VendorRegionSize::u32Bytes, u32RegionSize);
    m_stModem.Tell(TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_SIZE, stAnswer.View());
    return 0;
}

// The indication of a range, as far as it lies in the region.
void VendorRegionStore::Tell(uint32_t u32SubType, uint32_t u32Offset, uint32_t u32Size) {
    const ByteView stData = ByteView{m_aucBytes.data(), u32RegionSize}.From(u32Offset, u32Size);
    Record<VendorParameter::aucData + u32RegionSize> stAnswer;
    Put(stAnswer.Span(), VendorParameter::u16Offset, u32Offset);
    Put(stAnswer.Span(), VendorParameter::u16DataSize, stData.u32Length);
    PutBytes(stAnswer.Span(), VendorParameter::aucData, stData);
    m_stModem.Tell(TYPE_VENDOR_SPECIFIC, u32SubType,
                   stAnswer.View().From(0, VendorParameter::aucData + stData.u32Length));
}

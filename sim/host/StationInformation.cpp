// Who the modem is: versions, MAC address, what its EEPROM holds. The MAC address
// that is set stays over a reset, as all that the EEPROM holds.
#include <algorithm>
#include <array>
#include <span>

#include "LinkRecords.h"
#include "StationRecords.h"
#include "host/HostSubsystems.h"
#include "host/Identity.h"
#include "modem/Modem.h"

namespace {

constexpr uint32_t u32WordSize = 4;

// Status of a new MAC address.
enum AddressStatus : uint32_t {
    AddressSet = 0,
    NoStationAddress = 1, // that of a group, or none
    AddressNotKept = 2,   // the state file cannot be written
};

// A number of the scenario that stands in an answer as it is.
struct NumberRow {
    const char *pcKey;
    Field stField;
    uint32_t u32Most;
    uint32_t u32Default;
};

constexpr NumberRow astIdentityNumbers[] = {
    {Identity::pcBasebandChip, SSInformation::u32BasebandChipVersion, UINT32_MAX,
     Identity::u32BasebandChip},
    {"rf-chip", SSInformation::u32RFChipVersion, UINT32_MAX, 0x1A1},
    {"calibration", SSInformation::u8Calibration, UINT8_MAX, 14},
};

constexpr NumberRow astSummaryNumbers[] = {
    {"valid-sections", EEPROMSummary::u16ValidMask, UINT16_MAX, 0x7FF},
    {"size", EEPROMSummary::u8SizeInKB, UINT8_MAX, 32},
};

constexpr NumberRow astSectionVersions[] = {
    {"rf", EEPROMVersions::u32RF, UINT32_MAX, 3},
    {"phy", EEPROMVersions::u32PHY, UINT32_MAX, 2},
    {"mac", EEPROMVersions::u32MAC, UINT32_MAX, 2},
    {"cal", EEPROMVersions::u32CAL, UINT32_MAX, 5},
    {"hw", EEPROMVersions::u32HW, UINT32_MAX, 1},
    {"mib", EEPROMVersions::u32MIB, UINT32_MAX, 4},
    {"security", EEPROMVersions::u32Security, UINT32_MAX, 1},
    {"omadm", EEPROMVersions::u32OMADM, UINT32_MAX, 1},
    {"mru", EEPROMVersions::u32MRU, UINT32_MAX, 1},
    {"vsa", EEPROMVersions::u32VSA, UINT32_MAX, 1},
};

// A version of several numbers, one word each.
struct VersionRow {
    const char *pcKey;
    Field stFirst;
    std::array<uint32_t, 3> au32Default;
    uint32_t u32Count;
};

constexpr VersionRow astVersions[] = {
    {Identity::pcFirmwareVersion, SSInformation::au32FirmwareVersion, Identity::au32FirmwareVersion,
     3},
    {"library-version", SSInformation::au32LibraryVersion, {2, 0, 20}, 3},
    {"eeprom-version", SSInformation::au32EEPROMVersion, {1, 4, 0}, 2},
};

void ReadNumbers(const Section &stSettings, std::span<const NumberRow> astRows, ByteSpan stTo) {
    for (const NumberRow &stRow : astRows) {
        Put(stTo, stRow.stField,
            static_cast<uint32_t>(
                stSettings.Integer(stRow.pcKey, 0, stRow.u32Most, stRow.u32Default)));
    }
}

void ReadVersions(const Section &stSettings, ByteSpan stTo) {
    for (const VersionRow &stRow : astVersions) {
        std::vector<int64_t> aiNumbers = stSettings.Integers(stRow.pcKey, 0, UINT32_MAX);
        if (!stSettings.Has(stRow.pcKey)) {
            aiNumbers.assign(stRow.au32Default.begin(), stRow.au32Default.begin() + stRow.u32Count);
        }
        if (aiNumbers.size() != stRow.u32Count) {
            stSettings.Refuse(stRow.pcKey,
                              "must be " + std::to_string(stRow.u32Count) + " numbers");
        }
        for (uint32_t i = 0; i < stRow.u32Count; ++i) {
            Put(stTo, stRow.stFirst, static_cast<uint32_t>(aiNumbers[i]), i * u32WordSize);
        }
    }
}

// Refuses an address that no station may have of its own.
bool Unicast(ByteView stAddress) {
    constexpr uint8_t u8Group = 1;
    uint8_t u8Any = 0;
    for (uint32_t i = 0; i < MACAddressRecord::Size; ++i) {
        u8Any |= stAddress.At(i);
    }
    return u8Any != 0 && (stAddress.At(0) & u8Group) == 0;
}

class StationInformation : public Subsystem {
  public:
    explicit StationInformation(Modem &stModem);

  private:
    static constexpr const char *pcStateSection = "station-information";
    static constexpr const char *pcStateKey = "mac-address";

    void ReadIdentity();
    void Adopt(ByteView stAddress);
    int32_t TellIdentity();
    int32_t SetMACAddress(ByteView stAddress);

    Modem &m_stModem;
    Record<SSInformation::Size> m_stIdentity;
    Record<EEPROMSummary::Size> m_stSummary;
    Record<EEPROMVersions::Size> m_stVersions;
};

StationInformation::StationInformation(Modem &stModem) : m_stModem(stModem) {
    ReadIdentity();
    const Section stEEPROM = stModem.Settings("eeprom");
    ReadNumbers(stEEPROM, astSummaryNumbers, m_stSummary.Span());
    ReadNumbers(stEEPROM.Table("versions"), astSectionVersions, m_stVersions.Span());
    const auto Answer = [&](uint32_t u32SubType, ByteView stRecord) {
        stModem.On(TYPE_SS_INFO, u32SubType, [&stModem, u32SubType, stRecord](const Request &) {
            stModem.Tell(TYPE_SS_INFO, u32SubType, stRecord);
            return 0;
        });
    };
    stModem.On(TYPE_SS_INFO, SUBTYPE_SS_INFO, [this](const Request &) { return TellIdentity(); });
    Answer(SUBTYPE_SS_EEPROM_INFO, m_stSummary.View());
    Answer(SUBTYPE_SS_EEPROM_DETAILED_INFO, m_stVersions.View());
    stModem.On(TYPE_MAC_ADDRESS, SUBTYPE_SET_MAC_ADDRESS,
               [this](const Request &stRequest) { return SetMACAddress(stRequest.stPayload); });
}

void StationInformation::ReadIdentity() {
    const Section stSettings = m_stModem.Settings("station-information");
    const ByteSpan stTo = m_stIdentity.Span();
    ReadVersions(stSettings, stTo);
    ReadNumbers(stSettings, astIdentityNumbers, stTo);
    const std::string strDriver = stSettings.Text("driver-version", "2.0.20 simulated");
    if (strDriver.size() > SSInformation::DriverVersionSize) {
        stSettings.Refuse("driver-version", "must be at most 128 bytes long");
    }
    PutBytes(stTo, SSInformation::acDriverVersion,
             {reinterpret_cast<const uint8_t *>(strDriver.data()),
              static_cast<uint32_t>(strDriver.size())});
    if (stSettings.Has("mac-address")) {
        const std::vector<uint8_t> aucAddress =
            stSettings.Bytes("mac-address", MACAddressRecord::Size);
        const ByteView stAddress{aucAddress.data(), static_cast<uint32_t>(aucAddress.size())};
        if (stAddress.u32Length != MACAddressRecord::Size || !Unicast(stAddress)) {
            stSettings.Refuse("mac-address", "must be six bytes, the address of a single station");
        }
        Adopt(stAddress);
    }
    const StateFile::Values &astKept = m_stModem.TheStateFile().Kept(pcStateSection);
    const auto pstKept = astKept.find(pcStateKey);
    if (pstKept != astKept.end() && pstKept->second.size() == MACAddressRecord::Size) {
        Adopt({pstKept->second.data(), MACAddressRecord::Size});
    }
}

void StationInformation::Adopt(ByteView stAddress) {
    std::copy_n(stAddress.pucData, MACAddressRecord::Size, m_stModem.Address().begin());
}

int32_t StationInformation::TellIdentity() {
    PutBytes(m_stIdentity.Span(), SSInformation::aucMACAddress.u16Offset,
             {m_stModem.Address().data(), MACAddressRecord::Size});
    m_stModem.Tell(TYPE_SS_INFO, SUBTYPE_SS_INFO, m_stIdentity.View());
    return 0;
}

int32_t StationInformation::SetMACAddress(ByteView stAddress) {
    uint32_t u32Status = Unicast(stAddress) ? AddressSet : NoStationAddress;
    if (u32Status == AddressSet) {
        const std::vector<uint8_t> aucAddress(stAddress.pucData,
                                              stAddress.pucData + MACAddressRecord::Size);
        if (m_stModem.TheStateFile().Keep(pcStateSection, pcStateKey, aucAddress)) {
            Adopt(stAddress);
        } else {
            u32Status = AddressNotKept;
        }
    }
    Record<StatusWord::Size> stAnswer;
    Put(stAnswer.Span(), StatusWord::u32Value, u32Status);
    m_stModem.Tell(TYPE_MAC_ADDRESS, SUBTYPE_SET_MAC_ADDRESS, stAnswer.View());
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeStationInformation(Modem &stModem) {
    return std::make_unique<StationInformation>(stModem);
}

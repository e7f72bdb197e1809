#include "StationInformation.h"

#include <iterator>
#include <string_view>

#include "Console.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"
#include "StationRecords.h"

namespace {

constexpr const char *apcStationInformationMenuLines[] = {
    "\n 1. SS INFO REQUEST",
    "\n 2. SS EEPROM INFO REQUEST",
    "\n 3. SS EEPROM DETAILED INFO REQUEST",
};

constexpr Menu stStationInformationMenu = {"\n******** SS INFO MENU ********",
                                           apcStationInformationMenuLines,
                                           "\n\n**************************************"};

constexpr const char *pcInformationClosing = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

constexpr ReportRow astVersionRows[] = {
    {"\nLibrary Version : %02d.%02d.%02d", SSInformation::au32LibraryVersion},
    {"\nBaseband Chip Version : %x", SSInformation::u32BasebandChipVersion},
    {"\nRF Chip Version : %x", SSInformation::u32RFChipVersion},
    {"\nMAC ADDRESS : %02x-%02x-%02x-%02x-%02x-%02x", SSInformation::aucMACAddress},
};

constexpr CodeName astCalibration[] = {
    {SSInformation::NotCalibrated, "NOT CALIBRATED"},
    {SSInformation::CalibrationNotKnown, "CALIBRATION STATUS NOT KNOWN"},
};

// The first line whose bands are all calibrated is shown. So bands 0 and 1, or 0
// and 2, show as band 0, and a status that is not known as all three.
struct BandLine {
    uint32_t u32Bands;
    std::string_view strBands;
};

constexpr BandLine astBandLines[] = {
    {SSInformation::Band0 | SSInformation::Band1 | SSInformation::Band2,
     "Band 0 & Band 1 & Band 2"},
    {SSInformation::Band1 | SSInformation::Band2, "Band 1 & Band 2"},
    {SSInformation::Band0, "Band 0"},
    {SSInformation::Band1, "Band 1"},
    {SSInformation::Band2, "Band 2"},
    {0, "Band UnKnown"},
};

// In the order of the mask's bits.
constexpr TextWith<1> astSectionLines[] = {
    "\nBit - 0\t\t\t: [%d]", "\nCompatibility\t\t: [%d]", "\nRF\t\t\t: [%d]",
    "\nPHY\t\t\t: [%d]",     "\nMAC\t\t\t: [%d]",         "\nCALIBRATION\t\t: [%d]",
    "\nHARDWARE\t\t: [%d]",  "\nMIB\t\t\t: [%d]",         "\nSECURITY\t\t: [%d]",
    "\nOMA-DM\t\t\t: [%d]",  "\nMRU\t\t\t: [%d]\n\n",
};
static_assert(std::size(astSectionLines) == EEPROMSummary::Sections);

constexpr ReportRow astSectionVersionRows[] = {
    {"\nRF SECTION VERSION        :   %d", EEPROMVersions::u32RF},
    {"\nPHY SECTION VERSION       :   %d", EEPROMVersions::u32PHY},
    {"\nMAC SECTION VERSION       :   %d", EEPROMVersions::u32MAC},
    {"\nCAL SECTION VERSION       :   %d", EEPROMVersions::u32CAL},
    {"\nHW SECTION VERSION        :   %d", EEPROMVersions::u32HW},
    {"\nMIB SECTION VERSION       :   %d", EEPROMVersions::u32MIB},
    {"\nSECURITY SECTION VERSION  :   %d", EEPROMVersions::u32Security},
    {"\nOMADM SECTION VERSION     :   %d", EEPROMVersions::u32OMADM},
    {"\nMRU SECTION VERSION       :   %d", EEPROMVersions::u32MRU},
    {"\nVSA SECTION VERSION       :   %d\n", EEPROMVersions::u32VSA},
};

std::string_view BandsOf(uint32_t u32Calibration) {
    const BandLine *pstLine = astBandLines;
    while ((u32Calibration & pstLine->u32Bands) != pstLine->u32Bands) {
        ++pstLine; // the last line has no bands and always fits
    }
    return pstLine->strBands;
}

void PutInformation(ByteView stPayload) {
    using namespace SSInformation;
    PutLine("\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~");
    PutRow(stPayload, {"\nFirmware Version : %d.%d.%d", au32FirmwareVersion});
    PutText("\nDriver Version : ");
    PutString(stPayload.From(acDriverVersion, DriverVersionSize));
    PutRows(stPayload, astVersionRows);
    const uint32_t u32Calibration = Get(stPayload, u8Calibration);
    PutText("\nCalibration Status: ");
    PutText(NameOf(astCalibration, u32Calibration, "CALIBRATED"));
    PutText("\nCalibrated Band Information: ");
    PutLine(BandsOf(u32Calibration));
    PutRow(stPayload, {"EEPROM Version : %x.%x\n", au32EEPROMVersion});
    PutLine(pcInformationClosing);
}

void PutEEPROMSummary(ByteView stPayload) {
    using namespace EEPROMSummary;
    PutLine("\n~~~~~~~~~~~~~~~ EEPROM SS INFO RESPONSE ~~~~~~~~~~~~~~");
    PutRow(stPayload, {"\nEEPROM Size\t\t: %d KB\n", u8SizeInKB});
    PutRow(stPayload, {"\nEEPROM Valid Info : 0x%x\n", u16ValidMask});
    for (uint32_t i = 0; i < Sections; ++i) {
        PutNumber(astSectionLines[i], Get(stPayload, u16ValidMask) >> i & 1);
    }
    PutLine(pcInformationClosing);
}

void PutSectionVersions(ByteView stPayload) {
    PutLine("\n~~~~~~~~~~~~~~~ SS EEPROM DETAILED INFO RESPONSE ~~~~~~~~~~~~~~");
    PutRows(stPayload, astSectionVersionRows);
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
}

} // namespace

uint32_t GetSSInfoRequest() {
    const int32_t iChoice = AskMenu(stStationInformationMenu);
    const bool bListed = iChoice >= 1 && iChoice <= std::ssize(apcStationInformationMenuLines);
    // The lines of the menu are in the order of the subtypes.
    const uint32_t u32SubType = bListed ? static_cast<uint32_t>(iChoice) : 0;
    return static_cast<uint8_t>(SendRequest(TYPE_SS_INFO, u32SubType));
}

uint32_t SSInfoResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    if (stReceived.u32Type != TYPE_SS_INFO) {
        return 0;
    }
    switch (stReceived.u32SubType) {
    case SUBTYPE_SS_INFO:
        PutInformation(stReceived.stPayload);
        break;
    case SUBTYPE_SS_EEPROM_INFO:
        PutEEPROMSummary(stReceived.stPayload);
        break;
    case SUBTYPE_SS_EEPROM_DETAILED_INFO:
        PutSectionVersions(stReceived.stPayload);
        break;
    default:
        break;
    }
    return 0;
}

#include "DeviceConfiguration.h"

#include <cstdio>

#include "Console.h"
#include "DeviceRecords.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "NetworkSearch.h"
#include "Report.h"
#include "StationRecords.h"
#include "Statistics.h"

namespace {

constexpr const char *apcDeviceConfigurationMenuLines[] = {
    "\n 1. STATISTICS RESET CONTROL REQUEST",
    "\n 2. SET CINR AND RSSI FOR NETWORK SEARCH",
};

constexpr Menu stDeviceConfigurationMenu = {
    "\n*********** DEVICE CONFIGURATION REQUESTS ***********", apcDeviceConfigurationMenuLines,
    "\n\n*****************************************************"};

struct StatusText {
    uint32_t u32Status;
    TextWith<1> stText;
};

constexpr StatusText astIPFilterTexts[] = {
    {IPFilterStatus::Success, "\nIP Filtering Status received as : IP_FILTER_STATUS_SUCCESS(%d)"},
    {IPFilterStatus::NotSupported,
     "\nIP Filtering Status received as : IP_FILTER_STATUS_NOT_SUPPORTED(%d)"},
    {IPFilterStatus::Invalid, "\nIP Filtering Status received as : IP_FILTER_STATUS_INVALID(%d)"},
};

void PutIPFilterStatus(uint32_t u32Status) {
    for (const StatusText &stText : astIPFilterTexts) {
        if (stText.u32Status == u32Status) {
            PutNumber(stText.stText, u32Status);
            return;
        }
    }
    PutNumber("\nIP Filtering Status received as %d", u32Status);
}

// Reads one word and takes the octets from it. A sign counts as one of the two
// characters of an octet, and a negative octet is sent as its low byte.
bool ReadMACAddress(ByteSpan stOctets) {
    char acWord[20];
    ReadWord(acWord, sizeof acWord);
    uint32_t au32Octets[MACAddressRecord::Size] = {};
    // Two characters never make more than 255. NOLINTBEGIN(cert-err34-c)
    const int iConverted =
        std::sscanf(acWord, "%02x-%02x-%02x-%02x-%02x-%02x", &au32Octets[0], &au32Octets[1],
                    &au32Octets[2], &au32Octets[3], &au32Octets[4], &au32Octets[5]);
    // NOLINTEND(cert-err34-c)
    for (uint32_t i = 0; i < MACAddressRecord::Size; ++i) {
        Put(stOctets, MACAddressRecord::aucOctets, au32Octets[i], i);
    }
    return iConverted == static_cast<int>(MACAddressRecord::Size);
}

} // namespace

uint32_t DeviceConfigRequest() {
    switch (AskMenu(stDeviceConfigurationMenu)) {
    case 1:
        return static_cast<uint32_t>(StatisticsResetControlRequest());
    case 2:
        return static_cast<uint32_t>(SetCinrRssiForNetworkSearchRequest());
    default:
        PutText("\nSORRY!! INVALID OPTION SELECTED!!");
        return UINT32_MAX;
    }
}

uint32_t SetMACAddress() {
    PutLine("\n******** MAC ADDRESS ********");
    PutText("\n Enter the MAC Address (xx-xx-xx-xx-xx-xx) : ");
    Record<MACAddressRecord::Size> stRequest;
    if (!ReadMACAddress(stRequest.Span())) {
        PutText("\n Error : Please enter a valid MAC Address.");
        return 0;
    }
    return static_cast<uint8_t>(
        SendRequest(TYPE_MAC_ADDRESS, SUBTYPE_SET_MAC_ADDRESS, stRequest.View()));
}

uint32_t DeviceConfigResp(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_CINR_RSSI_THRESHOLD:
        return static_cast<uint8_t>(SetCinrRssiForNetworkSearchResponse(pstMessage));
    case SUBTYPE_IP_FILTER_STATUS_IND:
        PutIPFilterStatus(Get(stReceived.stPayload, IPFilterStatus::u32Status));
        return 1;
    default:
        return 1;
    }
}

uint32_t MACSetResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    if (stReceived.u32SubType != SUBTYPE_SET_MAC_ADDRESS) {
        return 0;
    }
    PutLine("\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~");
    PutText("\nSTATUS : ");
    if (Get(stReceived.stPayload, StatusWord::u32Value) == 0) {
        PutText(" SUCCESS");
    } else {
        PutRow(stReceived.stPayload, {"\nFAILURE, ERROR CODE : %d", StatusWord::u32Value});
    }
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 0;
}

uint32_t DeviceUnloadIndication(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    if (stReceived.u32Type != TYPE_DEVICE_UNLOAD) {
        PutLine("\nINVALID MESSAGE TYPE!");
        return 0;
    }
    PutLine("\n~~~~~~ DEVICE RESET_UNLOAD MESSAGE RECEIVED ~~~~~~");
    PutLine(stReceived.u32SubType == SUBTYPE_DEVICE_UNLOADED_IND ? "\nDEVICE IS UNLOADED"
                                                                 : "\nUNKNOWN SUB-TYPE MESSAGE!");
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

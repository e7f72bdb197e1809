#include "ConnectionManagement.h"

#include <iterator>

#include "Console.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "NetworkSearch.h"
#include "WiMAXOptions.h"

namespace {

constexpr const char *apcConnectionManagementMenuLines[] = {
    "\n 1. NETWORK SEARCH REQUEST",
    "\n 2. SYNC UP REQUEST",
    "\n 3. NETWORK ENTRY REQUEST",
    "\n 4. NETWORK ENTRY STATUS REQUEST",
    "\n 5. SYNC DOWN REQUEST",
    "\n 6. SYNC DEREG REQUEST",
    "\n 7. SHUTDOWN REQUEST",
    "\n 8. SHUTDOWN MODE STATUS REQUEST",
    "\n 9. NETWORK SEARCH ABORT REQUEST",
    "\n 10. NETWORK SEARCH QUERY RESULTS REQUEST",
    "\n 11. MS INITIATED SHUTDOWN REQUEST",
    "\n 12. SET WIMAX OPTIONS ",
    "\n 13. NSP based network entry request",
    "\n 14. LOW POWER SCAN MODE",
};

constexpr Menu stConnectionManagementMenu = {"\n******** CONNECTION MGMT MENU ********",
                                             apcConnectionManagementMenuLines,
                                             "\n\n**************************************"};

constexpr const char *apcScanModeLines[] = {
    "\n Scan modes available:",         "\n 1. LOW_POW_NON_MIMO_SCAN_ANT1",
    "\n 2. LOW_POW_NON_MIMO_SCAN_ANT2", "\n 3. LOW_POW_MIMO_SCAN_ANT1",
    "\n 4. LOW_POW_MIMO_SCAN_ANT2",
};

constexpr Menu stScanModeMenu = {"\n Low power scan mode", apcScanModeLines,
                                 "\n 5. DEFAULT_SCAN_MODE"};

uint32_t SearchNetwork() {
    const int32_t iResult = NetworkSearchOptions();
    if (iResult < 0) {
        PutFormat("ERROR Code returned is: [%d]\n", iResult);
    }
    return 1;
}

uint32_t SyncUp() {
    using namespace SyncUpRequest;
    Record<Size> stRequest;
    Put(stRequest.Span(), u32CenterFrequency,
        AskFrequency("\nEnter the Center Frequency : [E.g: 3576.5/2670] "));
    PutLine("\n\nDo you want to enter the preamble ID\n");
    PutLine("\n1 - Enter the preamble ID, 0 - Don't enter the preamble ID ");
    Put(stRequest.Span(), u32PreambleID,
        ReadOption() == 1 ? AskInteger("\nEnter the preamble ID :") : AnyPreamble);
    Put(stRequest.Span(), u32Bandwidth,
        AskInteger("\nEnter the Bandwidth to Sync: [E.g: 10000/7000] "));
    return LowByte(SendRequest(TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_UP, stRequest.View()));
}

uint32_t EnterNetwork() {
    const Record<NetworkEntryRequest::Size> stRequest;
    return LowByte(SendRequest(TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY, stRequest.View()));
}

uint32_t EnterNetworkByNSP() {
    using namespace NSPNetworkEntryRequest;
    Record<Size> stRequest;
    if (AskOption("\nDo you want to enter the NSP ID For network entry (1-Yes and 0-No) : ") == 1) {
        Put(stRequest.Span(), u32NSPIDPresent, 1);
        Put(stRequest.Span(), u32NSPID, AskUnsigned("\nEnter the NSP ID  : "));
    }
    return LowByte(SendRequest(TYPE_NETWORK_ENTRY, SUBTYPE_NSP_NETWORK_ENTRY, stRequest.View()));
}

// A shutdown that was accepted is followed by the question whether it happened.
uint32_t ShutDown() {
    const int32_t iResult = SendRequest(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN);
    if (iResult < 0) {
        PutFormat("\n\n Error Code Received as: [%d]", iResult);
        return 0;
    }
    return LowByte(SendRequest(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_MODE_STATUS));
}

uint32_t SetLowPowerScanMode() {
    using namespace LowPowerScanRequest;
    constexpr int32_t iModes = LastMode - FirstMode + 1;
    const int32_t iChoice = AskMenu(stScanModeMenu);
    if (iChoice < 1 || iChoice > iModes) {
        PutLine("\n Invalid Option ");
        return 1;
    }
    Record<Size> stRequest;
    Put(stRequest.Span(), u8Mode, FirstMode + static_cast<uint32_t>(iChoice) - 1);
    return LowByte(SendRequest(TYPE_NETWORK_SEARCH, SUBTYPE_LOW_POWER_SCAN, stRequest.View()));
}

uint32_t SetWiMAXOptions() {
    FillSetWiMAXOptions();
    return 1;
}

template <uint32_t u32Type, uint32_t u32SubType> uint32_t SendPlain() {
    return LowByte(SendRequest(u32Type, u32SubType));
}

// What each menu line does, in the order of the lines.
constexpr uint32_t (*apfnActions[])() = {
    SearchNetwork,
    SyncUp,
    EnterNetwork,
    SendPlain<TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY_STATUS>,
    SendPlain<TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DOWN>,
    SendPlain<TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DEREG>,
    ShutDown,
    SendPlain<TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_MODE_STATUS>,
    SendPlain<TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH_ABORT>,
    SendPlain<TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH_QUERY>,
    SendPlain<TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DOWN>, // the same message as SYNC DOWN REQUEST
    SetWiMAXOptions,
    EnterNetworkByNSP,
    SetLowPowerScanMode,
};
static_assert(std::size(apfnActions) == std::size(apcConnectionManagementMenuLines));

} // namespace

uint32_t ConnectionManagement() {
    const int32_t iChoice = AskMenu(stConnectionManagementMenu);
    if (iChoice < 1 || iChoice > std::ssize(apfnActions)) {
        return 1;
    }
    return apfnActions[iChoice - 1]();
}

uint32_t SendHalfMiniCardStatusRequest() {
    const int32_t iResult = SendRequest(TYPE_HALF_MINI_CARD, SUBTYPE_HALF_MINI_CARD_STATUS);
    if (iResult != 0) {
        PutFormat("\nHALF MINI Card status request returned # %d\n", iResult);
    }
    return 1;
}

uint32_t FillDiscreteFrequencyInfo(ByteSpan stList) {
    using namespace DiscreteFrequencyList;
    constexpr const char *pcWrongValue = "\n******** WRONG VALUE ENTERED ********";
    PutLine("\n******** ENTER NUMBER OF DISCRETE FREQS ********");
    const int32_t iCount = ReadOption();
    if (iCount < 0 || iCount > static_cast<int32_t>(MaxFrequencies)) {
        PutLine(pcWrongValue);
        return 0;
    }
    Put(stList, u32NumFrequencies, static_cast<uint32_t>(iCount));
    PutFormat("\n*******ENTER THE %d NUMBER OF CENTER FREQS******", iCount);
    for (int32_t i = 1; i <= iCount; ++i) {
        PutFormat("\n*******ENTER THE %d CENTER FREQs (KHZ)******\n", i);
        const int32_t iFrequency = ReadOption();
        if (iFrequency < 0) {
            PutLine(pcWrongValue);
            PutBytes(stList, 0, Record<Size>{}.View());
            return 0;
        }
        Put(stList, au32Frequencies, static_cast<uint32_t>(iFrequency),
            static_cast<uint32_t>(i - 1) * WidthOf(au32Frequencies.eType));
    }
    return 1;
}

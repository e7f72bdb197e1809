#include "AntennaSwitching.h"
#include "Authentication.h"
#include "ChipsetControl.h"
#include "Client.h"
#include "ConnectionManagement.h"
#include "Console.h"
#include "DeviceConfiguration.h"
#include "Dispatcher.h"
#include "GPIO.h"
#include "IdleMode.h"
#include "Input.h"
#include "Loggers.h"
#include "Logging.h"
#include "MACManagement.h"
#include "MIBRequests.h"
#include "Menu.h"
#include "Message.h"
#include "OMADM.h"
#include "RegisterTest.h"
#include "ServiceFlows.h"
#include "SleepMode.h"
#include "StationInformation.h"
#include "Statistics.h"
#include "VendorSpecificMessageApp.h"
#include "VendorSpecificParameters.h"

namespace {

// The extended entries are listed behind the last entry, but looked up from
// another base: 21 and 22 are shown and refused.
constexpr int32_t iLastListed = 20;
constexpr int32_t iExtendedBase = 13;

void CloseOnly() { CloseWiMAXDevice(); }

void OpenAgain() {
    g_hDevice = OpenWiMAXDevice();
    if (g_hDevice == WIMAX_NO_DEVICE) {
        PutText("\n Error : Device not ready!!!");
        return;
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): shown as %p shows it, never followed
    PutFormat("\n Success , handle : %p", reinterpret_cast<void *>(uintptr_t{g_hDevice}));
    RegisterCallback(g_hDevice, TVLCallback, 0);
}

// What becomes of gbInsideSubMenu once the choice has been handled.
enum class Afterwards : uint8_t { Cleared, Kept };

// A choice; one without a text is not listed.
struct MainMenuEntry {
    int32_t iChoice;
    const char *pcText;
    void (*pfnHandle)();
    Afterwards eFlag = Afterwards::Cleared;
};

constexpr MainMenuEntry astMainMenu[] = {
    {1, "\n 1. CONNECTION MANAGEMENT REQUESTS", [] { ConnectionManagement(); }},
    {2, "\n 2. SS INFO REQUESTS", [] { GetSSInfoRequest(); }},
    {3, "\n 3. CHIPSET CONTROL REQUESTS", [] { ChipsetControl(); }, Afterwards::Kept},
    {4, "\n 4. STATISTICS REQUEST", [] { GetStatisticsRequest(); }},
    {5, "\n 5. MAC MANAGEMENT MESSAGE REQUESTS", [] { MACMgmtMessageRequest(); }},
    {6, "\n 6. SERVICE FLOW MSG REQUESTS", [] { ServiceFlowRequest(); }},
    {7, "\n 7. RDM-WRM TEST REQUESTS", [] { TestRDMWRM(); }},
    {8, "\n 8. GPIO MSG REQUESTS", [] { GPIOMsgs(); }},
    {9, "\n 9. LOGGER MSG REQUESTS", [] { LoggerRequests(); }},
    {10, "\n10. VENDOR SPECIFIC PARAM REQUEST", [] { VendorSpecificParamRequest(); }},
    {11, "\n11. MIB REQUEST", [] { MIBRequest(); }},
    {12, "\n12. SET MAC ADDRESS", [] { SetMACAddress(); }},
    {13, "\n13. DEVICE CONFIG", [] { DeviceConfigRequest(); }},
    {14, "\n14. EAP REQUESTS", [] { EAPRequests(); }},
    {15, "\n15. Sleep Mode PSC Definition", [] { SendSleepPSCDefinitionMsg(); }},
    {16, "\n16. IDLE MODE REQUESTS", [] { SendIdleModeMsg(); }},
    {17, "\n17. Antenna Switching & Selection", [] { AntennaSwitchingSelectionMenu(); }},
    {18, "\n18. CONTROL MAC LOGGING", [] { ControlMACLogging(); }},
    {19, "\n19. CONTROL PHY LOGGING", [] { ControlPHYLogging(); }},
    {iLastListed, "\n20. OMA DM/Security Parameters Check", OMADMRequest},
    {24, nullptr, [] { SendHalfMiniCardStatusRequest(); }},
    {100, nullptr, CloseOnly},
    {200, nullptr, OpenAgain},
};

int32_t AskMainMenu() {
    PutLine("\n******** MAIN MENU ********");
    for (const MainMenuEntry &stEntry : astMainMenu) {
        if (stEntry.pcText != nullptr) {
            PutText(stEntry.pcText);
        }
    }
    DisplayExMenu(iLastListed);
    PutText("\n-1. EXIT FROM APPLICATION");
    PutLine("\n\n****************************");
    return AskOption(pcMenuPrompt);
}

void HandleChoice(int32_t iChoice) {
    for (const MainMenuEntry &stEntry : astMainMenu) {
        if (stEntry.iChoice == iChoice) {
            stEntry.pfnHandle();
            if (stEntry.eFlag == Afterwards::Cleared) {
                gbInsideSubMenu = 0;
            }
            return;
        }
    }
    if (ProcessExChoice(iExtendedBase, iChoice) == 0) {
        PutText("\nSORRY!! INVALID OPTION!!");
    }
}

} // namespace

void RunMainMenu() {
    for (;;) {
        const int32_t iChoice = AskMainMenu();
        if (iChoice != 0) {
            gbInsideSubMenu = 1;
        }
        if (iChoice == iLeaveMenu) {
            return;
        }
        HandleChoice(iChoice);
    }
}

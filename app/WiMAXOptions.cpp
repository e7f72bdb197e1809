#include "WiMAXOptions.h"

#include <string_view>

#include "Console.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

std::atomic<uint32_t> g_SetWimaxOptionsFlag{0};

namespace {

constexpr const char *apcWiMAXOptionsMenuLines[] = {
    "\n 1. SET WIMAX OPTIONS",
    "\n 2. SET WIMAX OPTIONS ALL",
    "\n 3. GET WIMAX OPTIONS ALL",
    "\n-1. RETURN TO MAIN MENU",
};

constexpr Menu stWiMAXOptionsMenu = {"\n******** WIMAX OPTIONS MENU ********",
                                     apcWiMAXOptionsMenuLines,
                                     "\n\n**************************************"};

// The option's number is its bit in the specifier.
enum Option : uint32_t {
    PayloadBitmap = 0,
    EEPROMWrites = 1,
    MIBWrites = 3,
    SecurityLevel = 4,
    PagingCycle = 5
};

// An option's line up to its status, which stands in a column.
constexpr std::string_view astrOptionTexts[WiMAXOptions::Count] = {
    "\n bit[0] Bit Mapped payload        Status: ", "\n bit[1] MIB EEPROM Writes on/off  Status: ",
    "\n bit[2] Not used                  Status: ", "\n bit[3] MCS/HARQ MIB Writes on/off Status: ",
    "\n bit[4] EAP Security level        Status: ", "\n bit[5] Idle mode paging value    Status: ",
    "\n bit[6] Not used                  Status: ", "\n bit[7] Not used                  Status: ",
};

constexpr const char *pcBitmapLine = "\n1. Setting Bit(0) to set/reset payload bitmap for Bit(0).";
constexpr const char *pcPagingLine = "\n2. Setting Idle Mode Paging Cycle.";
constexpr const char *pcEEPROMLine = "\n3. Setting EEPROM Writes to Baseband.";
constexpr const char *pcSecurityLine = "\n5. Setting EAP Security Level Support.";
constexpr const char *pcOptionPrompt = "\nEnter the Option: ";

constexpr const char *apcSingleLines[] = {
    "\nSetting WiMAX options",
    pcBitmapLine,
    pcPagingLine,
    pcEEPROMLine,
    "\n4. Setting MCS Per Zone MIB/HARQ MIBs Writable.",
    pcSecurityLine,
    "\n ",
};

constexpr const char *apcAllLines[] = {
    "\nSetting WiMAX options All",
    pcBitmapLine,
    pcPagingLine,
    pcEEPROMLine,
    "\n4. Setting MCS Per Zone MIB Writable.",
    pcSecurityLine,
    "\n6. EXIT setting options.",
    "\n ",
};

constexpr const char *apcBitmapLines[] = {
    "\nSelect payload bitmap for Bit(0)",
    "\n1. Sync up after Resync ",
    "\n2. Full BSID decoding for network search ",
    "\n3. Full BSID decoding for sync up ",
    "\n4. CINR/RSSI reporting ",
};

constexpr const char *apcSecurityLines[] = {
    "\n\tSecurity level Low (00) - 0",
    "\n\tSecurity level Moderate(01)  - 1",
    "\n\tSecurity level High(10) - 2",
};

constexpr const char *pcPagingPrompt =
    "\nEnter the IdleMode Paging Cycle: [Valid values 0 - 15 secs]";
constexpr const char *pcMCSPrompt = "\nSet the MIB Write Flag: [Valid values 1 (Enable MCS MIB "
                                    "Writable) - 0(Disable MCS MIB From Writable) ]";
constexpr const char *pcHARQPrompt = "\nSet the HARQ MIB Write Flag: [Valid values 1 (Enable HARQ "
                                     "MIB Writable) - 0(Disable HARQ MIB From Writable) ]";

constexpr uint32_t u32MostPagingCycle = 15; // seconds
constexpr uint32_t u32MostFlag = 1;

// Asks until the answer, taken as unsigned, is u32Most or less.
uint32_t AskUpTo(uint32_t u32Most, const char *pcPrompt, const char *pcPromptAgain) {
    PutLine(pcPrompt);
    auto u32Value = static_cast<uint32_t>(ReadOption());
    while (u32Value > u32Most) {
        PutLine(pcPromptAgain);
        u32Value = static_cast<uint32_t>(ReadOption());
    }
    return u32Value;
}

uint32_t AskPayloadBitmap(uint32_t u32Bitmap, const char *pcExitLine) {
    constexpr int32_t iLastBitLine = 4;
    constexpr int32_t iExitLine = 5;
    for (;;) {
        PutTexts(apcBitmapLines);
        PutLine(pcExitLine);
        PutLine("\nEnter the option: ");
        const int32_t iChoice = ReadOption();
        if (iChoice == iExitLine) {
            return u32Bitmap;
        }
        if (iChoice < 1 || iChoice > iLastBitLine) {
            PutText("\nInvalid Option");
            continue;
        }
        const uint32_t u32Bit = 1U << (iChoice - 1);
        switch (AskOption("\nENABLE(1)/DISABLE(0): ")) {
        case 0:
            u32Bitmap &= ~u32Bit;
            break;
        case 1:
            u32Bitmap |= u32Bit;
            break;
        default:
            PutText("\nInvalid option");
            break;
        }
    }
}

uint32_t AskEEPROMFlag() {
    return AskUpTo(u32MostFlag,
                   "\nSet the EEPROM flag: [Valid values 0 (Enable EEPROM Writes) - 1(Disable "
                   "EEPROM Writes) ]",
                   "\nSet the EEPROM flag: [Valid values 0(Enable EEPROM Writes) - 1(Disable "
                   "EEPROM Writes)]");
}

uint32_t AskMIBWriteFlags() {
    const uint32_t u32MCS = AskUpTo(u32MostFlag, pcMCSPrompt, pcMCSPrompt);
    return u32MCS | AskUpTo(u32MostFlag, pcHARQPrompt, pcHARQPrompt) << 1;
}

bool AskSecuritySupport() {
    return AskUpTo(u32MostFlag,
                   "\nEnter the value for Bit 4(Security Level support): [Valid values 1/0]",
                   "\nEnter the value for Bit 3: [Valid values 1/0]") == 1;
}

// What setting one option came to: its bit in the specifier (0: not selected)
// and its value.
struct Setting {
    uint32_t u32Specifier;
    Option eOption;
    uint32_t u32Value;
};

constexpr uint32_t SpecifierOf(Option eOption) { return 1U << eOption; }

// Asks for the option behind a menu line (1 to 5). u32Bitmap is the payload
// bitmap so far.
Setting AskSetting(int32_t iLine, uint32_t u32Bitmap, const char *pcBitmapExitLine) {
    switch (iLine) {
    case 1:
        return {SpecifierOf(PayloadBitmap), PayloadBitmap,
                AskPayloadBitmap(u32Bitmap, pcBitmapExitLine)};
    case 2:
        return {SpecifierOf(PagingCycle), PagingCycle,
                AskUpTo(u32MostPagingCycle, pcPagingPrompt, pcPagingPrompt)};
    case 3:
        return {SpecifierOf(EEPROMWrites), EEPROMWrites, AskEEPROMFlag()};
    case 4:
        return {SpecifierOf(MIBWrites), MIBWrites, AskMIBWriteFlags()};
    default: {
        const uint32_t u32Specifier = AskSecuritySupport() ? SpecifierOf(SecurityLevel) : 0;
        PutTexts(apcSecurityLines);
        return {u32Specifier, SecurityLevel, AskUnsigned("\nEnter your choice : ")};
    }
    }
}

bool IsOptionLine(int32_t iLine) { return iLine >= 1 && iLine <= 5; }

int32_t SetOneOption() {
    using namespace WiMAXOption;
    PutTexts(apcSingleLines);
    const int32_t iLine = AskOption(pcOptionPrompt);
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_SET, Size);
    g_SetWimaxOptionsFlag = 1;
    // A line that is none goes out as it stands: no option, value 0.
    if (IsOptionLine(iLine)) {
        const Setting stSetting = AskSetting(iLine, 0, "\n5. EXIT from setting/resetting payload");
        Put(PayloadOf(stMessage), u8Specifier, stSetting.u32Specifier);
        Put(PayloadOf(stMessage), u32Value, stSetting.u32Value);
    }
    return SendMessage(&stMessage, u32Length);
}

int32_t SetAllOptions() {
    using namespace WiMAXOptions;
    constexpr int32_t iExitLine = 6;
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_SET_ALL, Size);
    const ByteSpan stPayload = PayloadOf(stMessage);
    for (;;) {
        PutTexts(apcAllLines);
        const int32_t iLine = AskOption(pcOptionPrompt);
        if (iLine == iExitLine) {
            PutRow(stPayload, {"\nOption specifier set: %d\n", u8Specifier});
            return SendMessage(&stMessage, u32Length);
        }
        if (!IsOptionLine(iLine)) {
            PutText("\nEnter correct option");
            continue;
        }
        const Setting stSetting =
            AskSetting(iLine, Get(stPayload, au32Values), "\n5. EXIT and return to previous menu");
        Put(stPayload, u8Specifier, Get(stPayload, u8Specifier) | stSetting.u32Specifier);
        Put(stPayload, au32Values, stSetting.u32Value,
            stSetting.eOption * WidthOf(au32Values.eType));
    }
}

int32_t GetAllOptions() {
    const Record<WiMAXOptions::Size> stRequest;
    PutLine(" \n Sending GET ALL WIMAX OPTIONS request");
    return SendRequest(TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_GET_ALL, stRequest.View());
}

uint32_t PutAllOptions(ByteView stPayload, std::string_view strBanner,
                       std::string_view strHeading) {
    using namespace WiMAXOptions;
    static constexpr TextWith<1> stPayloadText = "  Payload: %d";
    PutLine(strBanner);
    if (Get(stPayload, u32Status) != 0) {
        PutRow(stPayload, {"\n Response status as %d, Status not equal to zero", u32Status});
        return 0;
    }
    const uint32_t u32Specifier = Get(stPayload, u8Specifier);
    const uint32_t au32Specifier[] = {u32Specifier, u32Specifier};
    PutNumbers("\n Received for wimax option specifier : [%d(%x)]", au32Specifier);
    PutLine(strHeading);
    for (uint32_t i = 0; i < Count; ++i) {
        PutText(astrOptionTexts[i]);
        PutText((u32Specifier >> i & 1) != 0 ? "SET" : "RESET");
        PutNumber(stPayloadText, Get(stPayload, au32Values, i * WidthOf(au32Values.eType)));
    }
    PutText("\n");
    return 1;
}

void PutOneOption(ByteView stPayload) {
    uint32_t u32Asked = 1;
    if (g_SetWimaxOptionsFlag.compare_exchange_strong(u32Asked, 0)) {
        PutLine("\n~~~~~~ SET WIMAX RESPONSE RECEIVED ~~~~~~");
        PutRow(stPayload, {"\n Response received as : [%d]\n", WiMAXOption::u32Value});
    }
}

} // namespace

int32_t FillSetWiMAXOptions() {
    switch (AskMenu(stWiMAXOptionsMenu)) {
    case 1:
        return SetOneOption();
    case 2:
        return SetAllOptions();
    case 3:
        return GetAllOptions();
    default:
        return 0;
    }
}

uint32_t ProcessWiMAXOptionsResp(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        PutLine("\nINVALID WIMAX MESSAGE!!");
        return 0;
    }
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_OPTION_SET:
        PutOneOption(stReceived.stPayload);
        return 1;
    case SUBTYPE_OPTION_SET_ALL:
        return PutAllOptions(stReceived.stPayload, "\n~~~~~~ SETALL WIMAX RESPONSE RECEIVED ~~~~~~",
                             "\n Wimax options payload per option ");
    case SUBTYPE_OPTION_GET_ALL:
        return PutAllOptions(stReceived.stPayload, "\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~",
                             "\n Wimax options payload per option");
    default:
        return 1;
    }
}

#include "GPIO.h"

#include "Console.h"
#include "DiagnosticRecords.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr const char *apcGPIOMenuLines[] = {
    "\n 1. GPIO SET REQUEST",
    "\n 2. GPIO UN-SET REQUEST",
    "\n 3. GPIO STATUS REQUEST",
    "\n 4. GPIO SET LED BEHAVIOR SETTINGS",
    "\n 5. GPIO GET LED BEHAVIOR SETTINGS",
};

constexpr Menu stGPIOMenu = {"\n*********** GPIO MENU ***********", apcGPIOMenuLines,
                             "\n\n************************************"};

// What each of the first three choices sends.
struct BitRequest {
    int32_t iChoice;
    uint32_t u32SubType;
    uint32_t u32Value;
};

constexpr BitRequest astBitRequests[] = {
    {1, SUBTYPE_GPIO_SET, GPIOBit::Set},
    {2, SUBTYPE_GPIO_SET, GPIOBit::Cleared},
    {3, SUBTYPE_GPIO_STATUS, GPIOBit::Asked},
};

constexpr const char *apcPolarityLines[] = {
    "\n***************LED information***************",
    "\nPlease select polarity of GPIO",
    "\n1. Normal polarity (1 ON, 0 OFF)",
    "\n2. Reverse polarity(0 ON, 1 OFF)",
};

constexpr const char *apcLEDLines[] = {
    "\n 1. RED_LED",   "\n 2. BLUE_LED",          "\n 3. YELLOW_LED",
    "\n 4. GREEN_LED", "\n -1. Return from menu", "\n*******************************************",
};

struct LED {
    const char *pcQuestion;
    const char *pcName;
};

constexpr LED astLEDs[LEDEntry::Count] = {
    {"\nEnter the settings for RED_LED", "RED LED"},
    {"\nEnter the settings for BLUE_LED", "BLUE LED"},
    {"\nEnter the settings for YELLOW_LED", "YELLOW LED"},
    {"\nEnter the settings for GREEN_LED", "GREEN LED"},
};

constexpr const char *apcSaveLines[] = {
    "\n 1. Save LED state information to CFG file",
    "\n 2. Continue without saving LED state information to CFG file",
    "\n************************************************",
};

constexpr const char *pcGPIOOptionPrompt = "\n Enter option : ";
constexpr const char *pcStateRule = "\n********************************************";

// A state of the driver: its bit is the one of its number, counted from 0, in
// the mask that the state belongs to.
struct DriverState {
    const char *pcText;
    Field stMask;
};

constexpr DriverState astDriverStates[] = {
    {"\n1. Driver Initialization", LEDEntry::ucLedOnState},
    {"\n2. Firmware Download", LEDEntry::ucLedBlinkState},
    {"\n3. Firmware Download Done", LEDEntry::ucLedOnState},
    {"\n4. On No-NetworkEntry", LEDEntry::ucLedOnState},
    {"\n5. Transmit/Receive", LEDEntry::ucLedBlinkState},
    {"\n6. On Idlemode Enter", LEDEntry::ucLedBlinkState},
    {"\n7. On Idlemode Continue", LEDEntry::ucLedOnState},
    {"\n8. On Idlemode Exit", LEDEntry::ucLedBlinkState},
};
constexpr int32_t iDriverStates = std::size(astDriverStates);

int32_t AskDriverState(const char *pcName) {
    PutText("\nEnter drives state for ");
    PutText(pcName);
    PutText(" type");
    PutText(pcStateRule);
    for (const DriverState &stState : astDriverStates) {
        PutText(stState.pcText);
    }
    PutText("\n-1. Return to LED settings menu");
    PutText(pcStateRule);
    return AskOption(pcGPIOOptionPrompt);
}

int32_t AskLED() {
    PutLine("\n********* LED State information ***********");
    PutTexts(apcLEDLines);
    return AskOption(pcGPIOOptionPrompt);
}

void AskLEDs(ByteSpan stEntries) {
    PutTexts(apcPolarityLines);
    const bool bReversePolarity = AskOption("\nEnter the option : ") == 2;
    for (int32_t iLED = AskLED(); iLED != iLeaveMenu; iLED = AskLED()) {
        if (iLED < 1 || iLED > static_cast<int32_t>(LEDEntry::Count)) {
            continue;
        }
        const auto u32LED = static_cast<uint32_t>(iLED);
        const LED &stLED = astLEDs[u32LED - 1];
        PutText(stLED.pcQuestion);
        SetDriverStateInformation(u32LED, bReversePolarity,
                                  stEntries.From((u32LED - 1) * LEDEntry::Size, LEDEntry::Size),
                                  stLED.pcName);
    }
}

uint32_t AskSaveFlag() {
    PutLine("\n********* Save LED State information ***********");
    PutTexts(apcSaveLines);
    return AskOption(pcGPIOOptionPrompt) == 1 ? 1 : 0;
}

void PutBitState(ByteView stPayload) {
    PutRow(stPayload, {"\n Bit %d : ", GPIOBit::u32Position});
    PutText(Get(stPayload, GPIOBit::u32Value) != 0 ? "SET" : "UNSET");
}

// A row that begins with the entry's index.
struct LEDEntryRow {
    TextWith<2> stText;
    Field stField;
};

constexpr LEDEntryRow astLEDEntryRows[] = {
    {"StateInfo[%d].ucLedType = %x\n", LEDEntry::ucLedType},
    {"StateInfo[%d].ucLedOnState = %x\n", LEDEntry::ucLedOnState},
    {"StateInfo[%d].ucLedBlinkState = %x\n", LEDEntry::ucLedBlinkState},
};

void PutLEDState(ByteView stPayload) {
    for (uint32_t i = 0; i < LEDEntry::Count; ++i) {
        for (const LEDEntryRow &stRow : astLEDEntryRows) {
            const uint32_t au32Numbers[] = {
                i, Get(stPayload, stRow.stField, LEDState::astEntries + i * LEDEntry::Size)};
            PutNumbers(stRow.stText, au32Numbers);
        }
    }
    PutText("GET Information updated to driver");
}

} // namespace

uint32_t GPIOMsgs() {
    const int32_t iChoice = AskMenu(stGPIOMenu);
    switch (iChoice) {
    case 1:
    case 2:
    case 3:
        return SendGPIOMsg(iChoice);
    case 4:
        return SetLEDStateInformaton();
    case 5:
        return GetLEDStateInformation();
    default:
        PutLine("SORRY!! INVALID GPIO OPTION SELECTED!!");
        return 1;
    }
}

uint32_t SendGPIOMsg(int32_t iChoice) {
    const int32_t iBit = AskOption("\nPlease enter the bit place value (0-16) : ");
    if (iBit < 0 || iBit > static_cast<int32_t>(GPIOBit::LastPosition)) {
        PutText("\nInvalid bit place value. Valid range is 0-16.");
        return 0;
    }
    for (const BitRequest &stRequest : astBitRequests) {
        if (stRequest.iChoice == iChoice) {
            Record<GPIOBit::Size> stBit;
            Put(stBit.Span(), GPIOBit::u32Position, static_cast<uint32_t>(iBit));
            Put(stBit.Span(), GPIOBit::u32Value, stRequest.u32Value);
            return static_cast<uint8_t>(SendRequest(TYPE_GPIO, stRequest.u32SubType, stBit.View()));
        }
    }
    return 0;
}

uint32_t SetLEDStateInformaton() {
    Record<LEDBehaviour::Size> stBehaviour;
    const ByteSpan stEntries = stBehaviour.Span().From(LEDBehaviour::astEntries);
    std::memset(stEntries.pucData, LEDEntry::Untouched, stEntries.u32Length);
    AskLEDs(stEntries);
    Put(stBehaviour.Span(), LEDBehaviour::u32Save, AskSaveFlag());
    return static_cast<uint8_t>(SendRequest(TYPE_GPIO, SUBTYPE_SET_LED_STATE, stBehaviour.View()));
}

int32_t SetDriverStateInformation(uint32_t u32LED, bool bReversePolarity, ByteSpan stEntry,
                                  const char *pcName) {
    Put(stEntry, LEDEntry::ucLedType, u32LED | (bReversePolarity ? LEDEntry::ReversePolarity : 0));
    Put(stEntry, LEDEntry::ucLedOnState, 0);
    Put(stEntry, LEDEntry::ucLedBlinkState, 0);
    for (int32_t iState = AskDriverState(pcName); iState != iLeaveMenu;
         iState = AskDriverState(pcName)) {
        if (iState < 1 || iState > iDriverStates) {
            continue;
        }
        const Field stMask = astDriverStates[iState - 1].stMask;
        const uint32_t u32Bit = 1U << (iState - 1);
        const uint32_t u32Others = Get(stEntry, stMask) & ~u32Bit;
        const bool bSet = AskOption("\nEnter 1 to set and 0 to unset ") != 0;
        Put(stEntry, stMask, bSet ? u32Others | u32Bit : u32Others);
    }
    return iLeaveMenu;
}

uint32_t GetLEDStateInformation() {
    return static_cast<uint8_t>(SendRequest(TYPE_GPIO, SUBTYPE_GET_LED_STATE));
}

uint32_t GPIOIndication(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 1;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~ GPIO INDICATION ~~~~~~");
    switch (stReceived.u32SubType) {
    case SUBTYPE_GPIO_STATUS:
        PutBitState(stReceived.stPayload);
        break;
    case SUBTYPE_SET_LED_STATE:
        PutText("SET Information updated");
        break;
    case SUBTYPE_GET_LED_STATE:
        PutLEDState(stReceived.stPayload);
        break;
    default:
        break;
    }
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

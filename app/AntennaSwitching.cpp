#include "AntennaSwitching.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "AntennaRecords.h"
#include "Console.h"
#include "GPIOPins.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr const char *pcMenuClosing = "\n\n************************************";
constexpr const char *pcInvalidOption = "\nSORRY! INVALID OPTION SELECTED!";

constexpr const char *apcAntennaSwitchingMenuLines[] = {
    "\n 1. Antenna Config Request",
    "\n 2. Antenna Scanning Request",
    "\n 3. Antenna Selection Request",
};

constexpr Menu stAntennaSwitchingMenu = {
    "\n\n*********** Antenna Switching Selection Menu ***********", apcAntennaSwitchingMenuLines,
    pcMenuClosing};

// A menu without a banner.
constexpr const char *apcConfigLines[] = {
    "\n 1. Get GPIO Configuration from Firmware",
    "\n 2. Set GPIO Configuration to Firmware",
};

// Asks until the answer is in the range.
uint32_t AskWithin(const char *pcPrompt, int32_t iLeast, int32_t iMost) {
    int32_t iValue = AskOption(pcPrompt);
    while (iValue < iLeast || iValue > iMost) {
        iValue = AskOption("\n Invalid Input .. Pls re-enter: ");
    }
    return static_cast<uint32_t>(iValue);
}

// The receive or the transmit pins of a configuration.
struct PinGroup {
    Field stCount;
    Field stPins;
    uint32_t u32Most;
    const char *pcCountPrompt;
    TextWith<2> stPinPrompt;
};

constexpr PinGroup astPinGroups[] = {
    {AntennaConfig::u32NumRxGPIOs, AntennaConfig::au32RxGPIO, AntennaConfig::MaxRxGPIOs,
     "\nEnter the Number of Rx GPIOs [Max: 4]: ", "\nEnter the Rx GPIO Number %d out of %d: "},
    {AntennaConfig::u32NumTxGPIOs, AntennaConfig::u32TxGPIO, AntennaConfig::MaxTxGPIOs,
     "\nEnter the Number of Tx GPIOs [Max: 1]: ", "\nEnter the Tx GPIO Number %d out of %d: "},
};

// Asks until the pin may be used beside the receive pins entered so far.
uint32_t AskPin(ByteView stConfig, const TextWith<2> &stPrompt, uint32_t u32Number,
                uint32_t u32Count) {
    const uint32_t au32Numbers[] = {u32Number, u32Count};
    uint32_t u32Pin = 0;
    do {
        PutNumbers(stPrompt, au32Numbers);
        u32Pin = static_cast<uint32_t>(ReadOption());
    } while (isValidGPIO_val(stConfig, u32Pin) == 0);
    return u32Pin;
}

// A negative count is stored as it is and asks for no pin.
void AskPins(ByteSpan stConfig, const PinGroup &stGroup) {
    const uint32_t u32Width = WidthOf(stGroup.stPins.eType);
    const uint32_t u32Count = AskWithin(stGroup.pcCountPrompt, std::numeric_limits<int32_t>::min(),
                                        static_cast<int32_t>(stGroup.u32Most));
    Put(stConfig, stGroup.stCount, u32Count);
    for (uint32_t i = 0; i < stGroup.u32Most; ++i) {
        Put(stConfig, stGroup.stPins, AntennaConfig::UnusedPin, i * u32Width);
    }
    for (int32_t i = 0; i < static_cast<int32_t>(u32Count); ++i) {
        const auto u32Index = static_cast<uint32_t>(i);
        const uint32_t u32Pin = AskPin(stConfig, stGroup.stPinPrompt, u32Index + 1, u32Count);
        Put(stConfig, stGroup.stPins, u32Pin, u32Index * u32Width);
    }
}

void AskConfig(ByteSpan stConfig) {
    for (const PinGroup &stGroup : astPinGroups) {
        AskPins(stConfig, stGroup);
    }
    Put(stConfig, AntennaConfig::u32SetConfig, AntennaConfig::Write);
}

void AskScan(ByteSpan stRequest) {
    using namespace AntennaScanRequest;
    Put(stRequest, u32Iterations, AskUnsigned("\nEnter the Iterations for scanning : "));
    Put(stRequest, u32NumGPIOPatterns, AskUnsigned("\nEnter the number of GPIO patterns : "));
    PutLine("\nEnter the GPIO Pattern Info : ");
    // The fourth pattern is announced, but never asked for.
    for (uint32_t i = 0; i < MaxGPIOPatterns - 1; ++i) {
        const uint32_t au32Numbers[] = {i + 1, MaxGPIOPatterns};
        PutNumbers("\n\tEntering GPIO pattern %d of %d :: ", au32Numbers);
        Put(stRequest, au32GPIOPattern, AskUnsigned(""), i * WidthOf(au32GPIOPattern.eType));
    }
    PutLine("\nEnter the Scan Duration Interleaving Interval: ");
    Put(stRequest, u32ScanInterleaveInterval, AskUnsigned(""));
}

constexpr Question astSelectionChoices[] = {
    {"\nEnter the Rx Antenna Selction Choice : ", AntennaSelection::u32RxSelectionValid},
    {"\nEnter the Tx Antenna Selction Choice : ", AntennaSelection::u32TxSelectionValid},
};

constexpr const char *apcAutomaticSettings[] = {
    "\n 0: Initial selection is based on the better of the two antennas based on RSSI metric.\n ",
    "\n 1: Initial selection is RX1 \n ",
    "\n 2: Initial selection is RX2 \n ",
    "\n 3: Initial selection is RX1 if RX1 RSSI is better than RX2 RSSI by the s32HysThreshAnt1 "
    "amount, else RX2 \n ",
    "\n 4: Initial selection is RX2 if RX2 RSSI is better than RX1 RSSI by the s32HysThreshAnt2 "
    "amount, else RX1 \n ",
};

constexpr const char *apcFixedSettings[] = {
    "\n 1: select antenna returning RX1 \n ",
    "\n 2: select antenna returning RX2 \n ",
};

constexpr Question astAutomaticQuestions[] = {
    {"\nEnter the IIR Averaging Parameter for Antenna 1 : ", AntennaSelection::u32IIRAvgAnt1},
    {"\nEnter the Switching Threshold Parameter for Antenna 1 (dB) : ",
     AntennaSelection::s32HysThreshAnt1},
    {"\nEnter the IIR Averaging Parameter for Antenna 2 : ", AntennaSelection::u32IIRAvgAnt2},
    {"\nEnter the Switching Threshold Parameter for Antenna 2 (dB) : ",
     AntennaSelection::s32HysThreshAnt2},
};

void AskRxSettings(ByteSpan stRequest) {
    using namespace AntennaSelection;
    PutLine("\nEnter the Rx Antenna Setting Info : ");
    for (uint32_t i = 0; i < RxSettings; ++i) {
        const uint32_t au32Numbers[] = {i + 1, RxSettings};
        PutNumbers("\n\tEntering %d of %d :: ", au32Numbers);
        Put(stRequest, au32RxAntennaSetting, AskUnsigned(""),
            i * WidthOf(au32RxAntennaSetting.eType));
    }
}

void AskTxSettings(ByteSpan stRequest) {
    using namespace AntennaSelection;
    PutText("\nEnter the Tx Auto Selction Choice :");
    PutText("\nValues [0 - Disable Auto Tx Selection");
    const bool bAutomatic = AskWithin("\n        1 - Auto Tx Selection ] : ", 0, 1) == 1;
    Put(stRequest, u32TxAutoSelection, bAutomatic ? 1 : 0);
    PutText("\nEnter the Tx Antenna Setting Info:");
    if (!bAutomatic) {
        PutTexts(apcFixedSettings);
        Put(stRequest, u32TxAntennaSetting, AskUnsigned(""));
        return;
    }
    PutTexts(apcAutomaticSettings);
    Put(stRequest, u32TxAntennaSetting, AskUnsigned(""));
    AskFields(stRequest, astAutomaticQuestions);
}

constexpr ReportRow stRxTotal = {"\nTotal Number of Rx GPIO's to be used: %d",
                                 AntennaConfig::u32NumRxGPIOs};
constexpr ReportRow stTxTotal = {"\nTotal Number of Tx GPIO's to be used: %d",
                                 AntennaConfig::u32NumTxGPIOs};

// The pins of a configuration that was read: as many as the count says and the
// record has room for.
void PutPins(ByteView stPayload, const ReportRow &stTotal, std::string_view strHeading,
             Field stPins, uint32_t u32Most) {
    PutRow(stPayload, stTotal);
    PutText(strHeading);
    PutElements(" %d", stPayload, stPins, std::min(Get(stPayload, stTotal.stField), u32Most));
}

void PutConfigResponse(ByteView stPayload) {
    using namespace AntennaConfig;
    const bool bSuccess = Get(stPayload, u32Status) == 0;
    PutText("\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!");
    if (Get(stPayload, u32SetConfig) != Read) {
        if (bSuccess) {
            PutText("\n\nSetting the GPIO configuration from Host is Successfull !!");
        } else {
            PutRow(stPayload, {"Error code returned: %d", u32Status});
        }
    } else if (bSuccess) {
        PutPins(stPayload, stRxTotal, "\nList of Rx GPIO's are : ", au32RxGPIO, MaxRxGPIOs);
        PutPins(stPayload, stTxTotal, "\nList of Tx GPIO's are : ", u32TxGPIO, MaxTxGPIOs);
    } else {
        PutText("\n\tFailed in Getting the configuration from Firmware !!! ");
        PutRow(stPayload, {"\n\tError Status Received :: %d", u32Status});
    }
}

// A value of every scanned frame behind one title.
struct FrameRow {
    std::string_view strTitle;
    ElementText stValue;
    Field stFirst;
};

constexpr FrameRow astFrameRows[] = {
    {"\nRSSI Measurement of Antenna 1: ", " %d", AntennaScan::as32RSSIAnt1},
    {"\nCINR Measurement of Antenna 1: ", " %d", AntennaScan::as32CINRAnt1},
    {"\nRSSI Measurement of Antenna 2: ", " %d", AntennaScan::as32RSSIAnt2},
    {"\nCINR Measurement of Antenna 2: ", " %d", AntennaScan::as32CINRAnt2},
    {"\nActual Framer Numbers Scanned: ", " %u", AntennaScan::au32FrameNumber},
};

constexpr ReportRow astScanRows[] = {
    {"\nAcual Frames Scanned : %d", AntennaScan::u32FramesScanned},
    {"\nRx GPIO Pattern Infomation:  %u %u %u", AntennaScan::au32RxGPIOPattern},
};

constexpr ReportRow astCurrentRows[] = {
    {"\nCurrent GPIO Pattern:  %d %d %d %d", AntennaScan::au32CurrentGPIOPattern},
    {"\nCurrent RSSI of Antenna 1: %d", AntennaScan::s32CurrentRSSIAnt1},
    {"\nCurrent CINR of Antenna 1: %d", AntennaScan::s32CurrentCINRAnt1},
    {"\nCurrent RSSI of Antenna 2: %d", AntennaScan::s32CurrentRSSIAnt2},
    {"\nCurrent CINR of Antenna 2: %d", AntennaScan::s32CurrentCINRAnt2},
};

void PutScanningResponse(ByteView stPayload) {
    using namespace AntennaScan;
    PutText("\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!");
    if (Get(stPayload, u32ScanError) != 0) {
        PutRow(stPayload, {"\n\tError in Antenna Scanning Response :: %d", u32ScanError});
        return;
    }
    PutRow(stPayload, {"\nScanning Status : %d", u32ScanStatus});
    if (Get(stPayload, u32ScanStatus) == 0) {
        PutLine("\n **************** Scan Aborted*****************");
        return;
    }
    PutRows(stPayload, astScanRows);
    const uint32_t u32Frames = std::min(Get(stPayload, u32FramesScanned), MaxFrames);
    for (const FrameRow &stRow : astFrameRows) {
        PutText(stRow.strTitle);
        PutElements(stRow.stValue, stPayload, stRow.stFirst, u32Frames);
    }
    PutRows(stPayload, astCurrentRows);
}

void PutSelectionResponse(ByteView stPayload) {
    PutText("\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!");
    if (Get(stPayload, StatusWord::u32Value) != 0) {
        PutRow(stPayload,
               {"\n\tFailed in Setting Rx/Tx Antennas: Error Received : %d", StatusWord::u32Value});
    } else {
        PutText("\n\tSuccesfully set the Rx/Tx Antennas !!");
    }
}

} // namespace

int32_t AntennaSwitchingSelectionMenu() {
    switch (AskMenu(stAntennaSwitchingMenu)) {
    case 1:
        return SendAntennaConfigRequest();
    case 2:
        return SendAntennaScanningRequest();
    case 3:
        return SendAntennaSelectionRequest();
    default:
        PutLine(pcInvalidOption);
        return 0;
    }
}

int32_t SendAntennaConfigRequest() {
    constexpr int32_t iSet = 2;
    PutTexts(apcConfigLines);
    PutLine(pcMenuClosing);
    const int32_t iChoice = AskOption(pcMenuPrompt);
    if (iChoice < 1 || iChoice > iSet) {
        PutLine(pcInvalidOption);
        return 0;
    }
    Record<AntennaConfig::Size> stConfig;
    if (iChoice == iSet) {
        AskConfig(stConfig.Span());
    }
    return SendRequest(TYPE_ANTENNA, SUBTYPE_ANTENNA_CONFIG, stConfig.View());
}

int32_t SendAntennaScanningRequest() {
    using namespace AntennaScanRequest;
    constexpr uint32_t au32Choices[] = {Abort, Scan, InfiniteScan};
    Record<Size> stRequest;
    const uint32_t u32Choice =
        au32Choices[AskWithin("\nEnter the Scan Choice : Values [0 - Abort Ongoing Scan or 1 - "
                              "Send Scan 2-Infinite Scanning]: ",
                              0, 2)];
    Put(stRequest.Span(), u32ScanChoice, u32Choice);
    if (u32Choice != Abort) {
        AskScan(stRequest.Span());
    }
    return SendRequest(TYPE_ANTENNA, SUBTYPE_ANTENNA_SCANNING, stRequest.View());
}

int32_t SendAntennaSelectionRequest() {
    Record<AntennaSelection::Size> stRequest;
    for (const Question &stQuestion : astSelectionChoices) {
        PutText(stQuestion.pcPrompt);
        Put(stRequest.Span(), stQuestion.stField,
            AskWithin("\nValues [0 - Invalid 1 - Valid ] : ", 0, 1));
    }
    AskRxSettings(stRequest.Span());
    AskTxSettings(stRequest.Span());
    return SendRequest(TYPE_ANTENNA, SUBTYPE_ANTENNA_SELECTION, stRequest.View());
}

uint32_t AntennaSwitchingAndSelectionResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 1;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~~~~~~~~~~ ANTENNA_SWITCHING_SELECTION MESSAGE RECEIVED ~~~~~~~~~~~~~~~");
    switch (stReceived.u32SubType) {
    case SUBTYPE_ANTENNA_CONFIG:
        PutConfigResponse(stReceived.stPayload);
        break;
    case SUBTYPE_ANTENNA_SCANNING:
        PutScanningResponse(stReceived.stPayload);
        break;
    case SUBTYPE_ANTENNA_SELECTION:
        PutSelectionResponse(stReceived.stPayload);
        break;
    default:
        break;
    }
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

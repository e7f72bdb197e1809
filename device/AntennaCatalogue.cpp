#include "AntennaRecords.h"
#include "Layouts.h"
#include "LinkRecords.h"

namespace {

constexpr uint16_t u16Patterns = 4;

constexpr CodeRow astConfigCommands[] = {CODE(AntennaConfig, Read), CODE(AntennaConfig, Write)};

constexpr FieldRow astAntennaConfig[] = {
    FIELD(AntennaConfig, u32NumRxGPIOs, "number of receive pins (0 to 4)"),
    FIELD(AntennaConfig, u32NumTxGPIOs, "number of transmit pins (0 or 1)"),
    FIELD(AntennaConfig, au32RxGPIO, "receive pins, all ones where unused",
          .u16Count = AntennaConfig::MaxRxGPIOs, .eShown = Shown::Hexadecimal),
    FIELD(AntennaConfig, u32TxGPIO, "transmit pin, all ones when unused",
          .eShown = Shown::Hexadecimal),
    FIELD(AntennaConfig, u32SetConfig, "0 read the configuration, 1 write it",
          .astCodes = astConfigCommands),
    FIELD(AntennaConfig, u32Status, "in the answer: 0 = done, else an error code"),
};

constexpr CodeRow astScanChoices[] = {
    CODE(AntennaScanRequest, Abort),
    CODE(AntennaScanRequest, Scan),
    CODE(AntennaScanRequest, InfiniteScan),
};

constexpr FieldRow astAntennaScanRequest[] = {
    FIELD(AntennaScanRequest, u32ScanChoice,
          "0 abort the scan that is going on, 1 scan, 0x80000001 scan without end",
          .astCodes = astScanChoices),
    FIELD(AntennaScanRequest, u32Iterations, "iterations"),
    FIELD(AntennaScanRequest, u32NumGPIOPatterns, "number of GPIO patterns"),
    FIELD(AntennaScanRequest, au32GPIOPattern, "patterns, of which the dialogue asks for three",
          .u16Count = AntennaScanRequest::MaxGPIOPatterns, .eShown = Shown::Hexadecimal),
    FIELD(AntennaScanRequest, u32ScanInterleaveInterval, "interleaving interval"),
    RESERVED(32, 12),
};

constexpr FieldRow astAntennaScan[] = {
    FIELD(AntennaScan, u32ScanStatus, "0 = aborted"),
    FIELD(AntennaScan, u32FramesScanned, "number of frames scanned"),
    FIELD(AntennaScan, au32RxGPIOPattern, "receive patterns, of which three are shown",
          .u16Count = u16Patterns, .eShown = Shown::Hexadecimal),
    FIELD(AntennaScan, as32RSSIAnt1, "RSSI of antenna 1, frame by frame",
          .u16Count = AntennaScan::MaxFrames, .stCounter = AntennaScan::u32FramesScanned),
    FIELD(AntennaScan, as32CINRAnt1, "CINR of antenna 1, frame by frame",
          .u16Count = AntennaScan::MaxFrames, .stCounter = AntennaScan::u32FramesScanned),
    FIELD(AntennaScan, as32RSSIAnt2, "RSSI of antenna 2, frame by frame",
          .u16Count = AntennaScan::MaxFrames, .stCounter = AntennaScan::u32FramesScanned),
    FIELD(AntennaScan, as32CINRAnt2, "CINR of antenna 2, frame by frame",
          .u16Count = AntennaScan::MaxFrames, .stCounter = AntennaScan::u32FramesScanned),
    FIELD(AntennaScan, au32FrameNumber, "frame numbers", .u16Count = AntennaScan::MaxFrames,
          .stCounter = AntennaScan::u32FramesScanned),
    FIELD(AntennaScan, au32CurrentGPIOPattern, "current pattern", .u16Count = u16Patterns,
          .eShown = Shown::Hexadecimal),
    FIELD(AntennaScan, s32CurrentRSSIAnt1, "current RSSI of antenna 1"),
    FIELD(AntennaScan, s32CurrentCINRAnt1, "current CINR of antenna 1"),
    FIELD(AntennaScan, s32CurrentRSSIAnt2, "current RSSI of antenna 2"),
    FIELD(AntennaScan, s32CurrentCINRAnt2, "current CINR of antenna 2"),
    FIELD(AntennaScan, u32ScanError, "0 = the results are valid, else an error code"),
};

constexpr FieldRow astAntennaSelection[] = {
    FIELD(AntennaSelection, u32RxSelectionValid, "1 = the receive settings count"),
    FIELD(AntennaSelection, u32TxSelectionValid, "1 = the transmit settings count"),
    FIELD(AntennaSelection, au32RxAntennaSetting, "receive antenna settings",
          .u16Count = AntennaSelection::RxSettings),
    RESERVED(20, 4),
    FIELD(AntennaSelection, u32TxAutoSelection, "1 = the modem selects the transmit antenna"),
    FIELD(AntennaSelection, u32TxAntennaSetting, "transmit antenna setting"),
    FIELD(AntennaSelection, u32IIRAvgAnt1, "averaging parameter of antenna 1"),
    FIELD(AntennaSelection, u32IIRAvgAnt2, "averaging parameter of antenna 2"),
    FIELD(AntennaSelection, s32HysThreshAnt1, "switching threshold of antenna 1", .pcUnit = "dB"),
    FIELD(AntennaSelection, s32HysThreshAnt2, "switching threshold of antenna 2", .pcUnit = "dB"),
};

constexpr FieldRow astSelectionStatus[] = {
    NAMED("u32Status", StatusWord::u32Value, "0 = selected"),
};

} // namespace

constexpr Layout stAntennaConfig = LAYOUT(AntennaConfig, astAntennaConfig);
constexpr Layout stAntennaScanRequest = LAYOUT(AntennaScanRequest, astAntennaScanRequest);
constexpr Layout stAntennaScan = LAYOUT(AntennaScan, astAntennaScan);
constexpr Layout stAntennaSelection = LAYOUT(AntennaSelection, astAntennaSelection);
constexpr Layout stAntennaSelectionStatus = {"AntennaSelectionStatus", astSelectionStatus,
                                             StatusWord::Size};

// Payloads of antenna configuration, scanning and selection (type 28). Offsets
// in bytes from the start of the payload.
#ifndef ANTENNA_RECORDS_H
#define ANTENNA_RECORDS_H

#include "Wire.h"

// Subtype 1, request and answer. It begins as every list of GPIO pins does:
// their number at 0, the pins from 8 on.
namespace AntennaConfig {
inline constexpr uint32_t MaxRxGPIOs = 4;
inline constexpr uint32_t MaxTxGPIOs = 1;
inline constexpr Field NumRxGPIOs{0, FieldType::U32};
inline constexpr Field NumTxGPIOs{4, FieldType::U32};
inline constexpr Field RxGPIOs{8, FieldType::U32};
inline constexpr Field TxGPIO{24, FieldType::U32};
inline constexpr Field SetConfig{28, FieldType::U32};
inline constexpr Field Status{32, FieldType::U32}; // of the answer
inline constexpr uint32_t Size = 36;
static_assert(EndOf(RxGPIOs) + (MaxRxGPIOs - 1) * 4 == TxGPIO.u16Offset);
static_assert(EndOf(Status) == Size);

inline constexpr uint32_t Read = 0; // values of SetConfig
inline constexpr uint32_t Write = 1;
inline constexpr uint32_t UnusedPin = 0xFFFFFFFF;
} // namespace AntennaConfig

// Subtype 2, request.
namespace AntennaScanRequest {
inline constexpr uint32_t MaxGPIOPatterns = 4;
inline constexpr Field ScanChoice{0, FieldType::U32};
inline constexpr Field Iterations{4, FieldType::U32};
inline constexpr Field NumGPIOPatterns{8, FieldType::U32};
inline constexpr Field GPIOPatterns{12, FieldType::U32};
inline constexpr Field InterleaveInterval{28, FieldType::U32};
inline constexpr uint32_t Size = 44; // 12 reserved bytes at the end
static_assert(EndOf(GPIOPatterns) + (MaxGPIOPatterns - 1) * 4 == InterleaveInterval.u16Offset);
static_assert(EndOf(InterleaveInterval) + 12 == Size);

inline constexpr uint32_t Abort = 0;
inline constexpr uint32_t Scan = 1;
inline constexpr uint32_t InfiniteScan = 0x80000001; // bit 31: without end
} // namespace AntennaScanRequest

// Subtype 2, answer.
namespace AntennaScan {
inline constexpr uint32_t MaxFrames = 32;
inline constexpr Field Status{0, FieldType::U32}; // 0 = aborted
inline constexpr Field FramesScanned{4, FieldType::U32};
inline constexpr Field RxGPIOPattern{8, FieldType::U32}; // four words
// One word a frame each.
inline constexpr Field RSSIAnt1{24, FieldType::I32};
inline constexpr Field CINRAnt1{152, FieldType::I32};
inline constexpr Field RSSIAnt2{280, FieldType::I32};
inline constexpr Field CINRAnt2{408, FieldType::I32};
inline constexpr Field FrameNumber{536, FieldType::U32};
inline constexpr Field CurrentGPIOPattern{664, FieldType::U32}; // four words
inline constexpr Field CurrentRSSIAnt1{680, FieldType::I32};
inline constexpr Field CurrentCINRAnt1{684, FieldType::I32};
inline constexpr Field CurrentRSSIAnt2{688, FieldType::I32};
inline constexpr Field CurrentCINRAnt2{692, FieldType::I32};
inline constexpr Field Error{696, FieldType::U32};
inline constexpr uint32_t Size = 700;
static_assert(EndOf(RxGPIOPattern) + 3 * 4 == RSSIAnt1.u16Offset);
static_assert(RSSIAnt1.u16Offset + MaxFrames * 4 == CINRAnt1.u16Offset);
static_assert(CINRAnt1.u16Offset + MaxFrames * 4 == RSSIAnt2.u16Offset);
static_assert(RSSIAnt2.u16Offset + MaxFrames * 4 == CINRAnt2.u16Offset);
static_assert(CINRAnt2.u16Offset + MaxFrames * 4 == FrameNumber.u16Offset);
static_assert(FrameNumber.u16Offset + MaxFrames * 4 == CurrentGPIOPattern.u16Offset);
static_assert(EndOf(CurrentGPIOPattern) + 3 * 4 == CurrentRSSIAnt1.u16Offset);
static_assert(EndOf(CurrentCINRAnt2) == Error.u16Offset);
static_assert(EndOf(Error) == Size);
} // namespace AntennaScan

// Subtype 5, request; the answer is one status word.
namespace AntennaSelection {
inline constexpr uint32_t RxSettings = 3;
inline constexpr Field RxSelectionValid{0, FieldType::U32};
inline constexpr Field TxSelectionValid{4, FieldType::U32};
inline constexpr Field RxAntennaSetting{8, FieldType::U32};
inline constexpr Field TxAutoSelection{24, FieldType::U32};
inline constexpr Field TxAntennaSetting{28, FieldType::U32};
inline constexpr Field IIRAvgAnt1{32, FieldType::U32};
inline constexpr Field IIRAvgAnt2{36, FieldType::U32};
inline constexpr Field HysThreshAnt1{40, FieldType::I32}; // dB
inline constexpr Field HysThreshAnt2{44, FieldType::I32}; // dB
inline constexpr uint32_t Size = 48;
static_assert(EndOf(RxAntennaSetting) + (RxSettings - 1) * 4 + 4 == TxAutoSelection.u16Offset);
static_assert(EndOf(HysThreshAnt2) == Size);
} // namespace AntennaSelection

#endif

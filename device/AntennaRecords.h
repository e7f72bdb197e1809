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
inline constexpr Field u32NumRxGPIOs{0, FieldType::U32};
inline constexpr Field u32NumTxGPIOs{4, FieldType::U32};
inline constexpr Field au32RxGPIO{8, FieldType::U32};
inline constexpr Field u32TxGPIO{24, FieldType::U32};
inline constexpr Field u32SetConfig{28, FieldType::U32};
inline constexpr Field u32Status{32, FieldType::U32}; // of the answer
inline constexpr uint32_t Size = 36;
static_assert(EndOf(au32RxGPIO) + (MaxRxGPIOs - 1) * 4 == u32TxGPIO.u16Offset);
static_assert(EndOf(u32Status) == Size);

inline constexpr uint32_t Read = 0; // values of u32SetConfig
inline constexpr uint32_t Write = 1;
inline constexpr uint32_t UnusedPin = 0xFFFFFFFF;
} // namespace AntennaConfig

// Subtype 2, request.
namespace AntennaScanRequest {
inline constexpr uint32_t MaxGPIOPatterns = 4;
inline constexpr Field u32ScanChoice{0, FieldType::U32};
inline constexpr Field u32Iterations{4, FieldType::U32};
inline constexpr Field u32NumGPIOPatterns{8, FieldType::U32};
inline constexpr Field au32GPIOPattern{12, FieldType::U32};
inline constexpr Field u32ScanInterleaveInterval{28, FieldType::U32};
inline constexpr uint32_t Size = 44; // 12 reserved bytes at the end
static_assert(EndOf(au32GPIOPattern) + (MaxGPIOPatterns - 1) * 4 ==
              u32ScanInterleaveInterval.u16Offset);
static_assert(EndOf(u32ScanInterleaveInterval) + 12 == Size);

inline constexpr uint32_t Abort = 0;
inline constexpr uint32_t Scan = 1;
inline constexpr uint32_t InfiniteScan = 0x80000001; // bit 31: without end
} // namespace AntennaScanRequest

// Subtype 2, answer.
namespace AntennaScan {
inline constexpr uint32_t MaxFrames = 32;
inline constexpr Field u32ScanStatus{0, FieldType::U32}; // 0 = aborted
inline constexpr Field u32FramesScanned{4, FieldType::U32};
inline constexpr Field au32RxGPIOPattern{8, FieldType::U32}; // four words
// One word a frame each.
inline constexpr Field as32RSSIAnt1{24, FieldType::I32};
inline constexpr Field as32CINRAnt1{152, FieldType::I32};
inline constexpr Field as32RSSIAnt2{280, FieldType::I32};
inline constexpr Field as32CINRAnt2{408, FieldType::I32};
inline constexpr Field au32FrameNumber{536, FieldType::U32};
inline constexpr Field au32CurrentGPIOPattern{664, FieldType::U32}; // four words
inline constexpr Field s32CurrentRSSIAnt1{680, FieldType::I32};
inline constexpr Field s32CurrentCINRAnt1{684, FieldType::I32};
inline constexpr Field s32CurrentRSSIAnt2{688, FieldType::I32};
inline constexpr Field s32CurrentCINRAnt2{692, FieldType::I32};
inline constexpr Field u32ScanError{696, FieldType::U32};
inline constexpr uint32_t Size = 700;
static_assert(EndOf(au32RxGPIOPattern) + 3 * 4 == as32RSSIAnt1.u16Offset);
static_assert(as32RSSIAnt1.u16Offset + MaxFrames * 4 == as32CINRAnt1.u16Offset);
static_assert(as32CINRAnt1.u16Offset + MaxFrames * 4 == as32RSSIAnt2.u16Offset);
static_assert(as32RSSIAnt2.u16Offset + MaxFrames * 4 == as32CINRAnt2.u16Offset);
static_assert(as32CINRAnt2.u16Offset + MaxFrames * 4 == au32FrameNumber.u16Offset);
static_assert(au32FrameNumber.u16Offset + MaxFrames * 4 == au32CurrentGPIOPattern.u16Offset);
static_assert(EndOf(au32CurrentGPIOPattern) + 3 * 4 == s32CurrentRSSIAnt1.u16Offset);
static_assert(EndOf(s32CurrentCINRAnt2) == u32ScanError.u16Offset);
static_assert(EndOf(u32ScanError) == Size);
} // namespace AntennaScan

// Subtype 5, request; the answer is one status word.
namespace AntennaSelection {
inline constexpr uint32_t RxSettings = 3;
inline constexpr Field u32RxSelectionValid{0, FieldType::U32};
inline constexpr Field u32TxSelectionValid{4, FieldType::U32};
inline constexpr Field au32RxAntennaSetting{8, FieldType::U32};
inline constexpr Field u32TxAutoSelection{24, FieldType::U32};
inline constexpr Field u32TxAntennaSetting{28, FieldType::U32};
inline constexpr Field u32IIRAvgAnt1{32, FieldType::U32};
inline constexpr Field u32IIRAvgAnt2{36, FieldType::U32};
inline constexpr Field s32HysThreshAnt1{40, FieldType::I32}; // dB
inline constexpr Field s32HysThreshAnt2{44, FieldType::I32}; // dB
inline constexpr uint32_t Size = 48;
static_assert(EndOf(au32RxAntennaSetting) + (RxSettings - 1) * 4 + 4 ==
              u32TxAutoSelection.u16Offset);
static_assert(EndOf(s32HysThreshAnt2) == Size);
} // namespace AntennaSelection

#endif

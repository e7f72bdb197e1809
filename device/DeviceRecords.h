// Payloads of the device configuration. Offsets in bytes from the start of the
// payload.
#ifndef DEVICE_RECORDS_H
#define DEVICE_RECORDS_H

#include "Wire.h"

// Type 13, subtype 6, indication.
namespace IPFilterStatus {
inline constexpr Field Status{0, FieldType::U32}; // 1 = success, 4 = not supported
inline constexpr uint32_t Size = 4;
} // namespace IPFilterStatus

#endif

// Payloads of EAP and authentication (type 4). Offsets in bytes from the start
// of the payload.
#ifndef AUTHENTICATION_RECORDS_H
#define AUTHENTICATION_RECORDS_H

#include "Wire.h"

namespace AuthMethod {
inline constexpr uint32_t EAPAKA = 0;
inline constexpr uint32_t EAPSIM = 1;
} // namespace AuthMethod

inline constexpr uint32_t u32PseudonymSize = 23;
inline constexpr uint32_t u32SQNMSSize = 192;

// Subtype 3.
namespace AuthParamRead {
inline constexpr Field Method{0, FieldType::U8};
inline constexpr uint32_t Size = 1;
} // namespace AuthParamRead

// Subtype 4: EAP-AKA parameters. Two zero bytes end the record.
namespace AuthParamWrite {
inline constexpr Field Method{0, FieldType::U8};
inline constexpr Field DataLength{1, FieldType::U8};
inline constexpr uint32_t Data = 3;
inline constexpr uint32_t DataSize = u32PseudonymSize + u32SQNMSSize;
inline constexpr uint32_t Pseudonym = Data;
inline constexpr uint32_t SQNMS = Pseudonym + u32PseudonymSize;
inline constexpr uint32_t Tail = Data + DataSize;
inline constexpr uint32_t TailSize = 2;
inline constexpr uint32_t Size = 220;
static_assert(DataSize == 215 && Tail + TailSize == Size);
} // namespace AuthParamWrite

// Subtype 5.
namespace AuthParamIndication {
inline constexpr Field Method{0, FieldType::U8};
inline constexpr uint32_t RequestType = 1;
inline constexpr uint32_t Acknowledgement = 2;
// EAP-AKA
inline constexpr uint32_t WNID = 5;
inline constexpr uint32_t KID = 21;
inline constexpr uint32_t OPc = 37;
inline constexpr uint32_t NonK = 53;
inline constexpr uint32_t NonOPc = 69;
inline constexpr uint32_t KeySize = 16;   // of each of these five
inline constexpr uint32_t Constants = 85; // C1 to C5 and R1 to R5
inline constexpr uint32_t ConstantsSize = 100;
inline constexpr uint32_t Pseudonym = 185;
inline constexpr uint32_t SQNMS = 208;
inline constexpr uint32_t Size = 400;
static_assert(NonOPc + KeySize == Constants && Constants + ConstantsSize == Pseudonym);
static_assert(Pseudonym + u32PseudonymSize == SQNMS && SQNMS + u32SQNMSSize == Size);
// EAP-SIM
inline constexpr uint32_t IMEI = 5;
inline constexpr uint32_t IMEISize = 8;
} // namespace AuthParamIndication

// Subtypes 6 (indication) and 7 (request).
namespace EAPTransfer {
inline constexpr Field Length{0, FieldType::U16};
inline constexpr uint32_t Data = 2;
inline constexpr uint32_t EmptySize = 2;
} // namespace EAPTransfer

// Subtype 8. The size is the length that is sent: it leaves the last three
// bytes of the key material out.
namespace EAPComplete {
inline constexpr Field KeyLength{1, FieldType::U16};
inline constexpr uint32_t Key = 3;
inline constexpr uint32_t KeySize = 64;
inline constexpr uint32_t Size = 64;
} // namespace EAPComplete

// Subtype 9 (request) and 10 (answer). The request's size is the length that is
// sent: it has room for one data byte.
namespace EncryptionTest {
inline constexpr Field DataLength{0, FieldType::U32};
inline constexpr Field Padding{4, FieldType::U32};
inline constexpr uint32_t Key = 8;
inline constexpr uint32_t MaxKeySize = 32;
inline constexpr uint32_t Data = 40;
inline constexpr uint32_t MaxDataSize = WIMAX_DATA_SIZE - Data;
inline constexpr uint32_t RequestSize = 41;
static_assert(EndOf(Padding) == Key && Key + MaxKeySize == Data);

inline constexpr uint32_t NoPadding = 0;
inline constexpr uint32_t PaddingPKCS1 = 1;
} // namespace EncryptionTest

#endif

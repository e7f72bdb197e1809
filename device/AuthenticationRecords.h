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
inline constexpr Field u8Method{0, FieldType::U8};
inline constexpr uint32_t Size = 1;
} // namespace AuthParamRead

// Subtype 4: EAP-AKA parameters. Two zero bytes end the record.
namespace AuthParamWrite {
inline constexpr Field u8Method{0, FieldType::U8};
inline constexpr Field u8DataLength{1, FieldType::U8};
inline constexpr uint32_t aucData = 3;
inline constexpr uint32_t DataSize = u32PseudonymSize + u32SQNMSSize;
inline constexpr uint32_t aucPseudonym = aucData;
inline constexpr uint32_t aucSQNMS = aucPseudonym + u32PseudonymSize;
inline constexpr uint32_t aucTail = aucData + DataSize;
inline constexpr uint32_t TailSize = 2;
inline constexpr uint32_t Size = 220;
static_assert(DataSize == 215 && aucTail + TailSize == Size);
} // namespace AuthParamWrite

// Subtype 5.
namespace AuthParamIndication {
inline constexpr Field u8Method{0, FieldType::U8};
inline constexpr uint32_t u8RequestType = 1;
inline constexpr uint32_t u8Acknowledgement = 2;
// EAP-AKA
inline constexpr uint32_t aucWNID = 5;
inline constexpr uint32_t aucKID = 21;
inline constexpr uint32_t aucOPc = 37;
inline constexpr uint32_t aucNonK = 53;
inline constexpr uint32_t aucNonOPc = 69;
inline constexpr uint32_t KeySize = 16;      // of each of these five
inline constexpr uint32_t aucConstants = 85; // C1 to C5 and R1 to R5
inline constexpr uint32_t ConstantsSize = 100;
inline constexpr uint32_t aucPseudonym = 185;
inline constexpr uint32_t aucSQNMS = 208;
inline constexpr uint32_t Size = 400;
static_assert(aucNonOPc + KeySize == aucConstants && aucConstants + ConstantsSize == aucPseudonym);
static_assert(aucPseudonym + u32PseudonymSize == aucSQNMS && aucSQNMS + u32SQNMSSize == Size);
// EAP-SIM
inline constexpr uint32_t aucIMEI = 5;
inline constexpr uint32_t IMEISize = 8;
} // namespace AuthParamIndication

// Subtypes 6 (indication) and 7 (request).
namespace EAPTransfer {
inline constexpr Field u16Length{0, FieldType::U16};
inline constexpr uint32_t aucData = 2;
inline constexpr uint32_t EmptySize = 2;
} // namespace EAPTransfer

// Subtype 8. The size is the length that is sent: it leaves the last three
// bytes of the key material out.
namespace EAPComplete {
inline constexpr Field u16KeyLength{1, FieldType::U16};
inline constexpr uint32_t aucKey = 3;
inline constexpr uint32_t KeySize = 64;
inline constexpr uint32_t Size = 64;
} // namespace EAPComplete

// Subtype 9 (request) and 10 (answer). The request's size is the length that is
// sent: it has room for one data byte.
namespace EncryptionTest {
inline constexpr Field u32DataLength{0, FieldType::U32};
inline constexpr Field u32Padding{4, FieldType::U32};
inline constexpr uint32_t u8AESkey = 8;
inline constexpr uint32_t MaxKeySize = 32;
inline constexpr uint32_t u8Data = 40;
inline constexpr uint32_t MaxDataSize = WIMAX_DATA_SIZE - u8Data;
inline constexpr uint32_t RequestSize = 41;
static_assert(EndOf(u32Padding) == u8AESkey && u8AESkey + MaxKeySize == u8Data);

inline constexpr uint32_t NoPadding = 0;
inline constexpr uint32_t PaddingPKCS1 = 1;
} // namespace EncryptionTest

#endif

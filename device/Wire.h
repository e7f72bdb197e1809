// Reading and writing the numbers in a message: little-endian, byte by byte,
// unaligned, and never outside the bytes that are there.
#ifndef WIRE_H
#define WIRE_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "WiMAXDevice.h"

enum class FieldType : uint8_t { None, U8, I8, U16, I16, U32, I32 };

// One number of a record: where it starts (bytes) and how wide it is.
struct Field {
    uint16_t u16Offset = 0;
    FieldType eType = FieldType::None;
};

constexpr uint32_t WidthOf(FieldType eType) {
    switch (eType) {
    case FieldType::None:
        return 0;
    case FieldType::U8:
    case FieldType::I8:
        return 1;
    case FieldType::U16:
    case FieldType::I16:
        return 2;
    case FieldType::U32:
    case FieldType::I32:
        return 4;
    }
    return 0;
}

// Offset of the first byte behind a field.
constexpr uint32_t EndOf(Field stField) { return stField.u16Offset + WidthOf(stField.eType); }

// Bytes to be read. Reads past the end give zero.
struct ByteView {
    const uint8_t *pucData = nullptr;
    uint32_t u32Length = 0;

    constexpr uint8_t At(uint32_t u32Offset) const {
        return u32Offset < u32Length ? pucData[u32Offset] : uint8_t{0};
    }
    // The bytes from u32Offset on, at most u32Count of them.
    constexpr ByteView From(uint32_t u32Offset, uint32_t u32Count = UINT32_MAX) const {
        if (u32Offset >= u32Length) {
            return {};
        }
        return {pucData + u32Offset, std::min(u32Count, u32Length - u32Offset)};
    }
};

// The text that the bytes begin with: up to a zero byte, or all of them.
inline std::string_view TextOf(ByteView stBytes) {
    if (stBytes.u32Length == 0) {
        return {};
    }
    const auto *pcText = reinterpret_cast<const char *>(stBytes.pucData);
    const void *pcEnd = std::memchr(pcText, '\0', stBytes.u32Length);
    return {pcText, pcEnd != nullptr
                        ? static_cast<size_t>(static_cast<const char *>(pcEnd) - pcText)
                        : stBytes.u32Length};
}

// Bytes being filled in. Writes past the end are dropped.
struct ByteSpan {
    uint8_t *pucData = nullptr;
    uint32_t u32Length = 0;

    constexpr void Set(uint32_t u32Offset, uint8_t u8Value) const {
        if (u32Offset < u32Length) {
            pucData[u32Offset] = u8Value;
        }
    }
    constexpr ByteSpan From(uint32_t u32Offset, uint32_t u32Count = UINT32_MAX) const {
        if (u32Offset >= u32Length) {
            return {};
        }
        return {pucData + u32Offset, std::min(u32Count, u32Length - u32Offset)};
    }
    constexpr operator ByteView() const { return {pucData, u32Length}; }
};

// The bits of a number and the one that is its sign, in a word that begins with
// it, for every type.
struct FieldBits {
    uint32_t u32Mask;
    uint32_t u32Sign;
};

inline constexpr FieldBits astFieldBits[] = {{0, 0},         {0xFF, 0},        {0xFF, 0x80},
                                             {0xFFFF, 0},    {0xFFFF, 0x8000}, {0xFFFFFFFF, 0},
                                             {0xFFFFFFFF, 0}};

// The word at u32Offset, as far as the bytes reach.
constexpr uint32_t GetWord(ByteView stView, uint32_t u32Offset) {
    uint32_t u32Word = 0;
    if (stView.u32Length >= 4 && u32Offset <= stView.u32Length - 4) {
        const uint8_t *puc = stView.pucData + u32Offset;
        u32Word = puc[0] | static_cast<uint32_t>(puc[1]) << 8 |
                  static_cast<uint32_t>(puc[2]) << 16 | static_cast<uint32_t>(puc[3]) << 24;
    } else {
        for (uint32_t i = 0; i < 4; ++i) {
            u32Word |= static_cast<uint32_t>(stView.At(u32Offset + i)) << (8 * i);
        }
    }
    return u32Word;
}

// The number at u32Base + the field's offset, sign-extended to 32 bits for the
// signed types.
constexpr uint32_t Get(ByteView stView, Field stField, uint32_t u32Base = 0) {
    const FieldBits stBits = astFieldBits[static_cast<uint8_t>(stField.eType)];
    const uint32_t u32Value = GetWord(stView, u32Base + stField.u16Offset) & stBits.u32Mask;
    return (u32Value ^ stBits.u32Sign) - stBits.u32Sign;
}

constexpr int32_t GetSigned(ByteView stView, Field stField, uint32_t u32Base = 0) {
    return static_cast<int32_t>(Get(stView, stField, u32Base));
}

// Stores the low bytes of u32Value that the field has room for.
constexpr void Put(ByteSpan stSpan, Field stField, uint32_t u32Value, uint32_t u32Base = 0) {
    for (uint32_t i = 0; i < WidthOf(stField.eType); ++i) {
        stSpan.Set(u32Base + stField.u16Offset + i, static_cast<uint8_t>(u32Value >> (8 * i)));
    }
}

// Copies what fits of stFrom to u32Offset.
inline void PutBytes(ByteSpan stSpan, uint32_t u32Offset, ByteView stFrom) {
    const ByteSpan stTo = stSpan.From(u32Offset);
    const uint32_t u32Count = std::min(stTo.u32Length, stFrom.u32Length);
    if (u32Count != 0) {
        std::memcpy(stTo.pucData, stFrom.pucData, u32Count);
    }
}

inline bool SameBytes(ByteView stFirst, ByteView stSecond) {
    return std::equal(stFirst.pucData, stFirst.pucData + stFirst.u32Length, stSecond.pucData,
                      stSecond.pucData + stSecond.u32Length);
}

// A record of u32Size bytes, all zero, that a request is built in.
template <uint32_t u32Size> struct Record {
    uint8_t aucBytes[u32Size] = {};

    ByteSpan Span() { return {aucBytes, u32Size}; }
    ByteView View() const { return {aucBytes, u32Size}; }
};

// How many whole records of u32RecordSize bytes the payload holds from
// u32Offset on, never more than were announced. Hand over a signed count as
// int32_t and an unsigned one as uint32_t: a negative count is none.
constexpr uint32_t RecordsPresent(ByteView stView, uint32_t u32Offset, uint32_t u32RecordSize,
                                  int64_t iAnnounced) {
    const int64_t iFitting = stView.From(u32Offset).u32Length / u32RecordSize;
    return static_cast<uint32_t>(std::clamp<int64_t>(iAnnounced, 0, iFitting));
}

namespace MessageHeader {
inline constexpr Field usType{0, FieldType::U16};
inline constexpr Field usSubType{2, FieldType::U16};
inline constexpr uint32_t Size = WIMAX_HEADER_SIZE;
} // namespace MessageHeader

inline ByteSpan BytesOf(WiMAXMessage &stMessage) {
    return {reinterpret_cast<uint8_t *>(&stMessage), WIMAX_MESSAGE_SIZE};
}

inline ByteSpan PayloadOf(WiMAXMessage &stMessage) { return {stMessage.aucData, WIMAX_DATA_SIZE}; }

// A received message: its codes, and its payload: the whole data area.
struct Received {
    uint32_t u32Type = 0;
    uint32_t u32SubType = 0;
    ByteView stPayload;
};

// A null message is empty and of type 0.
inline Received View(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return {};
    }
    const ByteView stBytes{reinterpret_cast<const uint8_t *>(pstMessage), WIMAX_MESSAGE_SIZE};
    return {Get(stBytes, MessageHeader::usType), Get(stBytes, MessageHeader::usSubType),
            stBytes.From(MessageHeader::Size)};
}

#endif

#include "Pseudonyms.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <sys/random.h>

#include "Catalogue.h"

namespace {

struct HashState {
    uint64_t u64A;
    uint64_t u64B;
    uint64_t u64C;
    uint64_t u64D;

    void Mix(int iRounds) {
        for (int i = 0; i < iRounds; ++i) {
            u64A += u64B;
            u64C += u64D;
            u64B = std::rotl(u64B, 13) ^ u64A;
            u64D = std::rotl(u64D, 16) ^ u64C;
            u64A = std::rotl(u64A, 32);
            u64C += u64B;
            u64A += u64D;
            u64B = std::rotl(u64B, 17) ^ u64C;
            u64D = std::rotl(u64D, 21) ^ u64A;
            u64C = std::rotl(u64C, 32);
        }
    }
    void Take(uint64_t u64Word) {
        u64D ^= u64Word;
        Mix(2);
        u64A ^= u64Word;
    }
};

bool IsText(ByteView stValue) {
    return std::all_of(stValue.pucData, stValue.pucData + stValue.u32Length,
                       [](uint8_t u8Byte) { return u8Byte >= ' ' && u8Byte <= '~'; });
}

bool IsAll(ByteView stValue, uint8_t u8Byte) {
    return std::all_of(stValue.pucData, stValue.pucData + stValue.u32Length,
                       [=](uint8_t u8Own) { return u8Own == u8Byte; });
}

// Another character of its kind. What holds names and addresses together stays.
uint8_t AnotherLike(uint8_t u8Char, uint8_t u8Random) {
    constexpr std::string_view strJoints = "@.-_:/\\ ";
    const char cChar = static_cast<char>(u8Char);
    if (IsDigit(cChar)) {
        return static_cast<uint8_t>('0' + u8Random % 10);
    }
    if (strJoints.find(cChar) != std::string_view::npos) {
        return u8Char;
    }
    return static_cast<uint8_t>((IsUpper(cChar) ? 'A' : 'a') + u8Random % 26);
}

} // namespace

uint64_t KeyedHash(const PseudonymKey &au64Key, ByteView stBytes) {
    HashState stState{0x736f6d6570736575 ^ au64Key[0], 0x646f72616e646f6d ^ au64Key[1],
                      0x6c7967656e657261 ^ au64Key[0], 0x7465646279746573 ^ au64Key[1]};
    const auto WordAt = [&](uint32_t u32At) {
        return GetWord(stBytes, u32At) | uint64_t{GetWord(stBytes, u32At + 4)} << 32;
    };
    const uint32_t u32Whole = stBytes.u32Length / 8 * 8;
    for (uint32_t i = 0; i < u32Whole; i += 8) {
        stState.Take(WordAt(i));
    }
    stState.Take(WordAt(u32Whole) | uint64_t{stBytes.u32Length} << 56);
    stState.u64C ^= 0xFF;
    stState.Mix(4);
    return stState.u64A ^ stState.u64B ^ stState.u64C ^ stState.u64D;
}

Pseudonyms::Pseudonyms() : m_au64Key() {
    if (getrandom(m_au64Key.data(), sizeof m_au64Key, 0) != sizeof m_au64Key) {
        throw std::runtime_error("no random numbers");
    }
}

void Pseudonyms::Replace(ByteSpan stValue) const {
    constexpr uint32_t u32AddressSize = 6;
    if (IsAll(stValue, 0) || IsAll(stValue, 0xFF)) {
        return;
    }
    if (stValue.u32Length == u32AddressSize && !IsText(stValue)) {
        ReplaceAll(stValue, Kind::Address);
        return;
    }
    while (stValue.pucData[stValue.u32Length - 1] == 0) {
        --stValue.u32Length;
    }
    ReplaceAll(stValue, IsText(stValue) ? Kind::Text : Kind::Bytes);
}

void Pseudonyms::ReplaceText(ByteSpan stText) const { ReplaceAll(stText, Kind::Text); }

void Pseudonyms::ReplaceAll(ByteSpan stValue, Kind eKind) const {
    const uint64_t u64Value = KeyedHash(m_au64Key, stValue);
    uint64_t u64Random = 0;
    for (uint32_t i = 0; i < stValue.u32Length; ++i) {
        if (i % sizeof u64Random == 0) {
            Record<12> stPlace;
            Put(stPlace.Span(), {0, FieldType::U32}, static_cast<uint32_t>(u64Value));
            Put(stPlace.Span(), {4, FieldType::U32}, static_cast<uint32_t>(u64Value >> 32));
            Put(stPlace.Span(), {8, FieldType::U32}, i);
            u64Random = KeyedHash(m_au64Key, stPlace.View());
        }
        const auto u8Random = static_cast<uint8_t>(u64Random >> (i % sizeof u64Random * 8));
        uint8_t &u8Byte = stValue.pucData[i];
        u8Byte = eKind == Kind::Text ? AnotherLike(u8Byte, u8Random) : u8Random;
    }
    if (eKind == Kind::Address) {
        constexpr uint8_t u8Group = 1;
        constexpr uint8_t u8Local = 2;
        stValue.pucData[0] = static_cast<uint8_t>((stValue.pucData[0] & ~u8Group) | u8Local);
    } else if (eKind == Kind::Bytes) {
        // Zeroes at the end are no part of a value.
        uint8_t &u8Last = stValue.pucData[stValue.u32Length - 1];
        u8Last = u8Last == 0 ? 1 : u8Last;
    }
}

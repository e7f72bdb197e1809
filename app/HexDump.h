// Bytes in hexadecimal, for every report and log that dumps them.
#ifndef HEX_DUMP_H
#define HEX_DUMP_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "Wire.h"

// The text of one number: a literal such as " 0x%02x", with one conversion %0Nx
// or %0NX, taken apart when the program is compiled. Anything else, and a text
// that comes to more than Size characters, does not compile.
template <uint8_t u8Digits> struct HexText {
    static constexpr size_t Size = 16;

    char acText[Size] = {}; // with room for the digits
    uint8_t u8Length = 0;
    uint8_t u8FirstDigit = 0;
    bool bUpperCase = false;

    template <size_t uSize> consteval HexText(const char (&acFormat)[uSize]) {
        bool bConverted = false;
        for (size_t i = 0; i + 1 < uSize; ++i) {
            if (acFormat[i] != '%') {
                acText[u8Length++] = acFormat[i];
                continue;
            }
            const char cKind = i + 4 < uSize ? acFormat[i + 3] : '\0';
            if (bConverted || (cKind != 'x' && cKind != 'X') || acFormat[i + 1] != '0' ||
                acFormat[i + 2] != '0' + u8Digits) {
                throw "no text of one number with that many digits";
            }
            bConverted = true;
            bUpperCase = cKind == 'X';
            u8FirstDigit = u8Length;
            u8Length += u8Digits;
            i += 3;
        }
        if (!bConverted || u8Length > Size) {
            throw "no number, or a text that is too long";
        }
    }
};

using HexByte = HexText<2>;
using HexAddress = HexText<8>;

// The two digits of every byte, one after the other.
extern const std::array<char, 512> acLowerPairs;
extern const std::array<char, 512> acUpperPairs;
inline const char *HexPairs(bool bUpperCase) {
    return bUpperCase ? acUpperPairs.data() : acLowerPairs.data();
}
// Writes each byte by the same text, at most HexByte::Size characters each and
// never more than as many behind the last one's end; returns where that is.
char *WriteEachByte(char *pcTo, const HexByte &stByte, ByteView stBytes);
// A line of a dump: eight bytes behind the address of the first one.
inline constexpr uint32_t u32BytesALine = 8;
inline constexpr size_t uMostHexLine = HexAddress::Size + (u32BytesALine + 1) * HexByte::Size;
// Writes the line of stBytes, eight of them at most; the same room.
char *WriteHexLine(char *pcTo, const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                   ByteView stBytes);

// To the console: each byte; all of them in lines, u32Address being that of
// byte 0.
void PutEachByte(const HexByte &stByte, ByteView stBytes);
void PutHexLines(const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                 ByteView stBytes);

#endif

#include "HexDump.h"

#include <algorithm>
#include <cstring>

#include "Console.h"

namespace {

constexpr std::array<char, 512> PairsOf(const char *pcDigits) {
    std::array<char, 512> acPairs{};
    for (size_t i = 0; i < acPairs.size(); i += 2) {
        acPairs[i] = pcDigits[i / 32];
        acPairs[i + 1] = pcDigits[i / 2 % 16];
    }
    return acPairs;
}

} // namespace

constinit const std::array<char, 512> acLowerPairs = PairsOf("0123456789abcdef");
constinit const std::array<char, 512> acUpperPairs = PairsOf("0123456789ABCDEF");

char *WriteEachByte(char *pcTo, const HexByte &stByte, ByteView stBytes) {
    const char *pcPairs = HexPairs(stByte.bUpperCase);
    const uint32_t u32FirstDigit = stByte.u8FirstDigit;
    const uint32_t u32Length = stByte.u8Length;
    char acText[HexByte::Size];
    std::memcpy(acText, stByte.acText, sizeof acText);
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        // Every text is copied at its full size, which takes one instruction; the
        // next one overwrites what is too much.
        std::memcpy(pcTo, acText, sizeof acText);
        std::memcpy(pcTo + u32FirstDigit, pcPairs + size_t{2} * stBytes.pucData[i], 2);
        pcTo += u32Length;
    }
    return pcTo;
}

char *WriteHexLine(char *pcTo, const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                   ByteView stBytes) {
    const char *pcPairs = HexPairs(stLine.bUpperCase);
    std::memcpy(pcTo, stLine.acText, HexAddress::Size);
    for (uint32_t i = 0; i < 4; ++i) {
        std::memcpy(pcTo + stLine.u8FirstDigit + size_t{2} * i,
                    pcPairs + size_t{2} * (u32Address >> (24 - 8 * i) & 0xFF), 2);
    }
    return WriteEachByte(pcTo + stLine.u8Length, stByte, stBytes);
}

void PutEachByte(const HexByte &stByte, ByteView stBytes) {
    constexpr uint32_t u32Piece = 1024;
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32Piece) {
        const ByteView stPiece = stBytes.From(i, u32Piece);
        char *pcRoom = OutputRoom((stPiece.u32Length + 1) * HexByte::Size);
        EndOutputAt(WriteEachByte(pcRoom, stByte, stPiece));
    }
}

void PutHexLines(const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                 ByteView stBytes) {
    constexpr uint32_t u32Piece = 128 * u32BytesALine;
    for (uint32_t i = 0; i < stBytes.u32Length;) {
        const uint32_t u32End = std::min(stBytes.u32Length, i + u32Piece);
        char *pcTo = OutputRoom(u32Piece / u32BytesALine * uMostHexLine);
        for (; i < u32End; i += u32BytesALine) {
            pcTo =
                WriteHexLine(pcTo, stLine, u32Address + i, stByte, stBytes.From(i, u32BytesALine));
        }
        EndOutputAt(pcTo);
    }
}

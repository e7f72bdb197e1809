#include "HexDump.h"

#include <cstring>

#include "Console.h"

namespace {

template <typename Text> const char *DigitsOf(const Text &stText) {
    return stText.bUpperCase ? "0123456789ABCDEF" : "0123456789abcdef";
}

} // namespace

char *WriteEachByte(char *pcTo, const HexByte &stByte, ByteView stBytes) {
    const char *pcDigits = DigitsOf(stByte);
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        const uint8_t u8Value = stBytes.pucData[i];
        // Every text is copied at its full size, which takes one instruction; the
        // next one overwrites what is too much.
        std::memcpy(pcTo, stByte.acText, HexByte::Size);
        pcTo[stByte.u8FirstDigit] = pcDigits[u8Value >> 4];
        pcTo[stByte.u8FirstDigit + 1] = pcDigits[u8Value & 0xF];
        pcTo += stByte.u8Length;
    }
    return pcTo;
}

char *WriteHexLine(char *pcTo, const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                   ByteView stBytes) {
    const char *pcDigits = DigitsOf(stLine);
    std::memcpy(pcTo, stLine.acText, HexAddress::Size);
    for (uint32_t i = 8; i-- > 0; u32Address >>= 4) {
        pcTo[stLine.u8FirstDigit + i] = pcDigits[u32Address & 0xF];
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
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32BytesALine) {
        char *pcRoom = OutputRoom(uMostHexLine);
        EndOutputAt(
            WriteHexLine(pcRoom, stLine, u32Address + i, stByte, stBytes.From(i, u32BytesALine)));
    }
}

#include "HexDump.h"

#include <cstring>

#include "Console.h"

namespace {

constexpr uint32_t u32BytesALine = 8;

template <typename Text> const char *DigitsOf(const Text &stText) {
    return stText.bUpperCase ? "0123456789ABCDEF" : "0123456789abcdef";
}

void AppendAddress(std::string &strOutput, HexAddress stText, uint32_t u32Address) {
    const char *pcDigits = DigitsOf(stText);
    for (uint32_t i = 8; i-- > 0; u32Address >>= 4) {
        stText.acText[stText.u8FirstDigit + i] = pcDigits[u32Address & 0xF];
    }
    strOutput.append(stText.acText, stText.u8Length);
}

} // namespace

void AppendEachByte(std::string &strOutput, const HexByte &stByte, ByteView stBytes) {
    const char *pcDigits = DigitsOf(stByte);
    const size_t uStart = strOutput.size();
    const size_t uEnd = uStart + size_t{stBytes.u32Length} * stByte.u8Length;
    // Every text is copied at its full size, which takes one instruction; the
    // next one overwrites what is too much.
    strOutput.resize(uEnd + HexByte::Size);
    char *pcTo = strOutput.data() + uStart;
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        const uint8_t u8Value = stBytes.pucData[i];
        std::memcpy(pcTo, stByte.acText, HexByte::Size);
        pcTo[stByte.u8FirstDigit] = pcDigits[u8Value >> 4];
        pcTo[stByte.u8FirstDigit + 1] = pcDigits[u8Value & 0xF];
        pcTo += stByte.u8Length;
    }
    strOutput.resize(uEnd);
}

void AppendHexLines(std::string &strOutput, const HexAddress &stLine, uint32_t u32Address,
                    const HexByte &stByte, ByteView stBytes) {
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32BytesALine) {
        AppendAddress(strOutput, stLine, u32Address + i);
        AppendEachByte(strOutput, stByte, stBytes.From(i, u32BytesALine));
    }
}

void PutEachByte(const HexByte &stByte, ByteView stBytes) {
    AppendEachByte(PendingOutput(), stByte, stBytes);
}

void PutHexLines(const HexAddress &stLine, uint32_t u32Address, const HexByte &stByte,
                 ByteView stBytes) {
    AppendHexLines(PendingOutput(), stLine, u32Address, stByte, stBytes);
}

#include "scenario/Hex.h"

namespace {

constexpr std::string_view strDigits = "0123456789ABCDEF";

} // namespace

std::string ToHex(std::span<const uint8_t> aucBytes) {
    std::string strHex;
    strHex.reserve(2 * aucBytes.size());
    for (const uint8_t u8Byte : aucBytes) {
        strHex += strDigits[u8Byte / 16];
        strHex += strDigits[u8Byte % 16];
    }
    return strHex;
}

std::optional<std::vector<uint8_t>> FromHex(std::string_view strText) {
    std::vector<uint8_t> aucBytes;
    for (size_t i = 0; i + 1 < strText.size(); i += 2) {
        const size_t uHigh = strDigits.find(strText[i]);
        const size_t uLow = strDigits.find(strText[i + 1]);
        if (uHigh == std::string_view::npos || uLow == std::string_view::npos) {
            return std::nullopt;
        }
        aucBytes.push_back(static_cast<uint8_t>(uHigh * 16 + uLow));
    }
    return strText.size() % 2 == 0 ? std::optional(std::move(aucBytes)) : std::nullopt;
}

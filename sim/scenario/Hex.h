// Bytes as capital hexadecimal digits, as files of the modem's own have them.
#ifndef HEX_H
#define HEX_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

std::string ToHex(std::span<const uint8_t> aucBytes);
// Nothing when the text is not whole bytes.
std::optional<std::vector<uint8_t>> FromHex(std::string_view strText);

#endif

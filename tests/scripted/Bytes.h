// Bytes as text: how the scripted library's commands and its record write them;
// and as a message for the callback.
#ifndef SCRIPTED_BYTES_H
#define SCRIPTED_BYTES_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "WiMAXDevice.h"

using Bytes = std::vector<uint8_t>;

// Reads words such as `01 02`, `00*12` (repeated), `"text"`, `2670000:4` (a
// number in that many bytes, little-endian), `2/1` (a header: type and
// subtype); a `|` separates nothing but the eye. Returns nothing, and the word
// in *pstrWrong, when it does not understand a word.
std::optional<Bytes> ParseBytes(std::string_view strText, std::string *pstrWrong);

// Writes bytes in hexadecimal, four or more equal ones in a row as `00*12`.
std::string FormatBytes(const uint8_t *pucBytes, size_t uCount);
// Writes a message as `2/1 | f8 92`: its header, then its payload if it has one.
std::string FormatMessage(const uint8_t *pucBytes, size_t uCount);

// A whole record that begins with the bytes and is zero behind them: what a
// library hands to the callback. On the heap, where memory checkers see what is
// read past its end.
std::unique_ptr<WiMAXMessage> RecordOf(const Bytes &aucMessage);

#endif

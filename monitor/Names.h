// The names of message types, and what is in a text of any bytes.
#ifndef MONITOR_NAMES_H
#define MONITOR_NAMES_H

#include <optional>
#include <string_view>

#include "Catalogue.h"

// Empty when the type has none.
std::string_view NameOfType(uint32_t u32Type);
// By its name, or the number that the text is (decimal, or hexadecimal behind 0x).
std::optional<uint16_t> TypeOf(std::string_view strText);
std::optional<uint32_t> NumberOf(std::string_view strText);

bool SameLetters(std::string_view strFirst, std::string_view strSecond);

// How many bytes the first character has in UTF-8; 0 when it is none.
uint32_t CharacterLength(std::string_view strText);

// The field's code by name; empty when it has none.
inline std::string_view CodeNameOf(const FoundField &stFound) {
    return stFound.pstRow->astCodes.empty() ? std::string_view()
                                            : NameOf(*stFound.pstRow, stFound.u32Value);
}
// Whether it is shown as a number: only short values of no fixed width are.
bool IsNumber(const FoundField &stFound);
// The number, with its sign if its type has one.
int64_t NumberOf(const FoundField &stFound);
// The name that a field or record goes by among those beside it.
std::string_view PlainNameOf(const FoundField &stFound);

#endif

// The negative results of the library's functions.
#ifndef LIBRARY_ERROR_H
#define LIBRARY_ERROR_H

#include <cstdint>

namespace LibraryError {
inline constexpr int32_t NotOpen = -1;
inline constexpr int32_t BadHandle = -2;
inline constexpr int32_t NullBuffer = -3;
inline constexpr int32_t BadLength = -4;      // of the message, or for this request
inline constexpr int32_t UnknownRequest = -5; // no such type or subtype
inline constexpr int32_t BadValue = -6;       // a count beyond the request, no such flow or method
inline constexpr int32_t BadAddress = -7;     // no device memory there
inline constexpr int32_t NoSuchNode = -8;     // of the OMA-DM tree
inline constexpr int32_t ReadOnly = -9;       // a node that cannot be written
inline constexpr int32_t Overflow = -10;     // a value size that is not the node's or the message's
inline constexpr int32_t WrongVersion = -11; // of the OMA-DM interface
inline constexpr int32_t BadFile = -12;      // missing, or no tree image
inline constexpr int32_t NotKept = -13;      // the state file cannot be written
inline constexpr int32_t NoMIBSupport = -27;
inline constexpr int32_t MRUTableEmpty = -76;
} // namespace LibraryError

#endif

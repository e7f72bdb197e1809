// Values in the place of others: of the same length and kind, equal for equal values, and no way
// back without the key, which nobody keeps.
#ifndef MONITOR_PSEUDONYMS_H
#define MONITOR_PSEUDONYMS_H

#include <array>
#include <cstdint>

#include "Wire.h"

using PseudonymKey = std::array<uint64_t, 2>;

// SipHash-2-4.
uint64_t KeyedHash(const PseudonymKey &au64Key, ByteView stBytes);

class Pseudonyms {
  public:
    // With a key of its own, or a known one.
    Pseudonyms();
    explicit Pseudonyms(const PseudonymKey &au64Key) : m_au64Key(au64Key) {}

    // Puts something else in the place of a value. Zeroes at its end stay, and so do values of
    // nothing but zeroes or ones, which say nothing. Six bytes become an address that a station
    // may have; letters and digits become others.
    void Replace(ByteSpan stValue) const;
    // The same for what is a text whatever is in it: there will be letters in the place of what is
    // neither letter nor digit nor joins them.
    void ReplaceText(ByteSpan stText) const;

  private:
    enum class Kind : uint8_t { Bytes, Address, Text };
    void ReplaceAll(ByteSpan stValue, Kind eKind) const;

    PseudonymKey m_au64Key;
};

#endif

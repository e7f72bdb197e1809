// Number conversions that take characters exactly as the C library's scanf
// does: what is taken, what stays, and what value comes out.
#ifndef SCAN_H
#define SCAN_H

#include <cstdint>

// Where characters come from. pfnNext returns -1 at the end; pfnPushBack gives
// the character returned last back (giving back -1 is allowed and does nothing).
struct CharSource {
    int (*pfnNext)(void *pvState);
    void (*pfnPushBack)(void *pvState, int iChar);
    void *pvState;
};

enum class ScanResult : uint8_t {
    Converted,
    NotConverted, // the character that did not fit is given back, as scanf does
    Ended         // nothing but white space was left
};

bool IsSpace(int iChar);
// Takes white space; returns the first other character (taken too), or -1.
int SkipSpace(const CharSource &stSource);

// "%d": numbers beyond 64 bits saturate, then the low 32 bits count.
ScanResult ScanDecimal(const CharSource &stSource, int32_t *piValue);
// "%x": the same, unsigned; a sign and a leading 0x are allowed.
ScanResult ScanHexadecimal(const CharSource &stSource, uint32_t *pu32Value);
// "%f"
ScanResult ScanFloat(const CharSource &stSource, float *pfValue);

#endif

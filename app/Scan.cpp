#include "Scan.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

int Next(const CharSource &stSource) { return stSource.pfnNext(stSource.pvState); }

void PushBack(const CharSource &stSource, int iChar) {
    stSource.pfnPushBack(stSource.pvState, iChar);
}

int ToLower(int iChar) { return iChar >= 'A' && iChar <= 'Z' ? iChar - 'A' + 'a' : iChar; }

// The value of a digit, or 16 for any other character.
uint32_t DigitOf(int iChar) {
    if (iChar >= '0' && iChar <= '9') {
        return static_cast<uint32_t>(iChar - '0');
    }
    const int iLower = ToLower(iChar);
    return iLower >= 'a' && iLower <= 'f' ? static_cast<uint32_t>(iLower - 'a' + 10) : 16;
}

struct Digits {
    uint64_t u64Magnitude = 0;
    bool bNegative = false;
    bool bOverflow = false;
};

ScanResult ScanDigits(const CharSource &stSource, uint32_t u32Base, Digits *pstDigits) {
    int iChar = SkipSpace(stSource);
    if (iChar < 0) {
        return ScanResult::Ended;
    }
    if (iChar == '-' || iChar == '+') {
        pstDigits->bNegative = iChar == '-';
        iChar = Next(stSource);
    }
    bool bAnyDigit = false;
    if (u32Base == 16 && iChar == '0') {
        bAnyDigit = true;
        iChar = Next(stSource);
        if (ToLower(iChar) == 'x') {
            iChar = Next(stSource);
        }
    }
    while (DigitOf(iChar) < u32Base) {
        const uint64_t u64Room = (std::numeric_limits<uint64_t>::max() - DigitOf(iChar)) / u32Base;
        pstDigits->bOverflow = pstDigits->bOverflow || pstDigits->u64Magnitude > u64Room;
        pstDigits->u64Magnitude = pstDigits->u64Magnitude * u32Base + DigitOf(iChar);
        bAnyDigit = true;
        iChar = Next(stSource);
    }
    PushBack(stSource, iChar);
    return bAnyDigit ? ScanResult::Converted : ScanResult::NotConverted;
}

// A floating-point number while its characters come, however many: so many
// digits that no further one changes a float, and where the point stands.
struct FloatNumber {
    // The longest number between two floats has 113 digits.
    static constexpr uint32_t MostDigits = 120;
    static constexpr int64_t MostExponent = 1000000;

    const CharSource &stSource;
    int iChar;
    bool bNegative = false;
    bool bHexadecimal = false;
    char acDigits[MostDigits] = {};
    uint32_t u32Digits = 0;
    bool bMore = false;    // a digit that is left out is not zero
    int64_t iScale = 0;    // the digits count this power of their base
    int64_t iExponent = 0; // typed, of 10 or of 2

    void Take() { iChar = Next(stSource); }
    // Takes the letters of pcWord, in either case, as far as they are there.
    bool TakeWord(const char *pcWord) {
        for (; *pcWord != '\0'; ++pcWord) {
            if (ToLower(iChar) != *pcWord) {
                return false;
            }
            Take();
        }
        return true;
    }
    bool IsSign() const { return iChar == '-' || iChar == '+'; }
    bool TakeSign() {
        const bool bMinus = iChar == '-';
        if (IsSign()) {
            Take();
        }
        return bMinus;
    }
    void TakeDigit(bool bBehindPoint) {
        const bool bLeft = u32Digits == MostDigits;
        if (bLeft) {
            bMore = bMore || iChar != '0';
        } else if (u32Digits != 0 || iChar != '0') {
            acDigits[u32Digits++] = static_cast<char>(iChar);
        }
        iScale += (bLeft ? 1 : 0) - (bBehindPoint ? 1 : 0);
        Take();
    }
    void TakeExponent() {
        const bool bMinus = TakeSign();
        for (; DigitOf(iChar) < 10; Take()) {
            iExponent = std::min(iExponent * 10 + DigitOf(iChar), MostExponent);
        }
        iExponent = bMinus ? -iExponent : iExponent;
    }

    float Value() const {
        char acText[MostDigits + 40];
        const int64_t iPower =
            std::clamp(iExponent + iScale * (bHexadecimal ? 4 : 1), -MostExponent, MostExponent);
        (void)std::snprintf(acText, sizeof acText, "%s%s%.*s%s%c%" PRId64, bNegative ? "-" : "",
                            bHexadecimal ? "0x" : "", static_cast<int>(u32Digits), acDigits,
                            bMore ? ".1" : (u32Digits == 0 ? "0" : ""), bHexadecimal ? 'p' : 'e',
                            iPower);
        return std::strtof(acText, nullptr);
    }
};

// Takes mantissa and exponent; false when there is no number.
bool TakeFloatDigits(FloatNumber &stNumber) {
    bool bAnyDigit = false;
    if (stNumber.iChar == '0') {
        stNumber.Take();
        bAnyDigit = true;
        if (ToLower(stNumber.iChar) == 'x') {
            stNumber.Take();
            stNumber.bHexadecimal = true;
            bAnyDigit = false;
        }
    }
    const uint32_t u32Base = stNumber.bHexadecimal ? 16 : 10;
    bool bPoint = false;
    for (;;) {
        if (DigitOf(stNumber.iChar) < u32Base) {
            bAnyDigit = true;
            stNumber.TakeDigit(bPoint);
        } else if (!bPoint && stNumber.iChar == '.') {
            bPoint = true;
            stNumber.Take();
        } else {
            break;
        }
    }
    if (bAnyDigit && ToLower(stNumber.iChar) == (stNumber.bHexadecimal ? 'p' : 'e')) {
        stNumber.Take();
        stNumber.TakeExponent();
    }
    return bAnyDigit || (stNumber.bHexadecimal && bPoint); // "0x." is a zero to the C library
}

// Takes "nan", "inf" or "infinity"; false when the word breaks off.
bool TakeFloatWord(FloatNumber &stNumber, float *pfValue) {
    if (ToLower(stNumber.iChar) == 'n') {
        *pfValue = std::numeric_limits<float>::quiet_NaN();
        return stNumber.TakeWord("nan");
    }
    *pfValue = std::numeric_limits<float>::infinity();
    return stNumber.TakeWord("inf") &&
           (ToLower(stNumber.iChar) != 'i' || stNumber.TakeWord("inity"));
}

} // namespace

bool IsSpace(int iChar) { return iChar == ' ' || (iChar >= '\t' && iChar <= '\r'); }

int SkipSpace(const CharSource &stSource) {
    int iChar = Next(stSource);
    while (IsSpace(iChar)) {
        iChar = Next(stSource);
    }
    return iChar;
}

ScanResult ScanDecimal(const CharSource &stSource, int32_t *piValue) {
    Digits stDigits;
    const ScanResult eResult = ScanDigits(stSource, 10, &stDigits);
    if (eResult == ScanResult::Converted) {
        const uint64_t u64Most = static_cast<uint64_t>(std::numeric_limits<int64_t>::max()) +
                                 (stDigits.bNegative ? 1 : 0);
        const uint64_t u64Magnitude =
            stDigits.bOverflow || stDigits.u64Magnitude > u64Most ? u64Most : stDigits.u64Magnitude;
        *piValue = static_cast<int32_t>(
            static_cast<uint32_t>(stDigits.bNegative ? 0 - u64Magnitude : u64Magnitude));
    }
    return eResult;
}

ScanResult ScanHexadecimal(const CharSource &stSource, uint32_t *pu32Value) {
    Digits stDigits;
    const ScanResult eResult = ScanDigits(stSource, 16, &stDigits);
    if (eResult == ScanResult::Converted) {
        uint64_t u64Value = stDigits.bNegative ? 0 - stDigits.u64Magnitude : stDigits.u64Magnitude;
        if (stDigits.bOverflow) {
            u64Value = std::numeric_limits<uint64_t>::max();
        }
        *pu32Value = static_cast<uint32_t>(u64Value);
    }
    return eResult;
}

ScanResult ScanFloat(const CharSource &stSource, float *pfValue) {
    FloatNumber stNumber{stSource, SkipSpace(stSource)};
    if (stNumber.iChar < 0) {
        return ScanResult::Ended;
    }
    stNumber.bNegative = stNumber.TakeSign();
    const int iFirst = ToLower(stNumber.iChar);
    if (iFirst == 'n' || iFirst == 'i') {
        float fValue = 0;
        // The C library does not give the character back that breaks such a word.
        if (!TakeFloatWord(stNumber, &fValue)) {
            return ScanResult::NotConverted;
        }
        PushBack(stSource, stNumber.iChar);
        *pfValue = stNumber.bNegative ? -fValue : fValue;
        return ScanResult::Converted;
    }
    const bool bNumber = TakeFloatDigits(stNumber);
    PushBack(stSource, stNumber.iChar);
    if (!bNumber) {
        return ScanResult::NotConverted;
    }
    *pfValue = stNumber.Value();
    return ScanResult::Converted;
}

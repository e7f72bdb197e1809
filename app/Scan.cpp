#include "Scan.h"

#include <cstdlib>
#include <limits>
#include <string>

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

// Collects the characters of a floating-point number.
struct FloatText {
    const CharSource &stSource;
    int iChar;
    std::string strText;

    void Take() {
        strText += static_cast<char>(iChar);
        iChar = Next(stSource);
    }
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
};

// Takes mantissa and exponent; false when there is no number.
bool TakeFloatDigits(FloatText &stText) {
    uint32_t u32Base = 10;
    char cExponent = 'e';
    bool bAnyDigit = false;
    if (stText.iChar == '0') {
        stText.Take();
        bAnyDigit = true;
        if (ToLower(stText.iChar) == 'x') {
            stText.Take();
            u32Base = 16;
            cExponent = 'p';
            bAnyDigit = false;
        }
    }
    bool bPoint = false;
    bool bExponent = false;
    for (;;) {
        if (DigitOf(stText.iChar) < (bExponent ? 10 : u32Base)) {
            bAnyDigit = true;
            stText.Take();
        } else if (!bPoint && !bExponent && stText.iChar == '.') {
            bPoint = true;
            stText.Take();
        } else if (bAnyDigit && !bExponent && ToLower(stText.iChar) == cExponent) {
            bExponent = true;
            stText.Take();
            if (stText.IsSign()) {
                stText.Take();
            }
        } else {
            return bAnyDigit || (u32Base == 16 && bPoint); // "0x." is a zero to the C library
        }
    }
}

// Takes "nan", "inf" or "infinity"; false when the word breaks off.
bool TakeFloatWord(FloatText &stText) {
    if (ToLower(stText.iChar) == 'n') {
        return stText.TakeWord("nan");
    }
    return stText.TakeWord("inf") && (ToLower(stText.iChar) != 'i' || stText.TakeWord("inity"));
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
    FloatText stText{stSource, SkipSpace(stSource), {}};
    if (stText.iChar < 0) {
        return ScanResult::Ended;
    }
    if (stText.IsSign()) {
        stText.Take();
    }
    const int iFirst = ToLower(stText.iChar);
    if (iFirst == 'n' || iFirst == 'i') {
        // The C library does not give the character back that breaks such a word.
        if (!TakeFloatWord(stText)) {
            return ScanResult::NotConverted;
        }
        PushBack(stSource, stText.iChar);
    } else {
        const bool bNumber = TakeFloatDigits(stText);
        PushBack(stSource, stText.iChar);
        if (!bNumber) {
            return ScanResult::NotConverted;
        }
    }
    *pfValue = std::strtof(stText.strText.c_str(), nullptr);
    return ScanResult::Converted;
}

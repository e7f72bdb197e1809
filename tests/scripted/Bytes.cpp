#include "Bytes.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

constexpr size_t uShortestRun = 4;
constexpr uint64_t u64MostRepeats = 1U << 20;

template <typename Number> bool ReadNumber(std::string_view strText, Number *pValue, int iBase) {
    const char *pcEnd = strText.data() + strText.size();
    const auto stResult = std::from_chars(strText.data(), pcEnd, *pValue, iBase);
    return stResult.ec == std::errc() && stResult.ptr == pcEnd && !strText.empty();
}

void AppendNumber(Bytes *pBytes, uint64_t u64Value, uint32_t u32Width) {
    for (uint32_t i = 0; i < u32Width; ++i) {
        pBytes->push_back(static_cast<uint8_t>(u64Value >> (8 * i)));
    }
}

bool ReadHeader(std::string_view strWord, size_t uSlash, Bytes *pBytes) {
    uint16_t u16Type = 0;
    uint16_t u16SubType = 0;
    if (!ReadNumber(strWord.substr(0, uSlash), &u16Type, 10) ||
        !ReadNumber(strWord.substr(uSlash + 1), &u16SubType, 10)) {
        return false;
    }
    AppendNumber(pBytes, u16Type, 2);
    AppendNumber(pBytes, u16SubType, 2);
    return true;
}

bool ReadSizedNumber(std::string_view strWord, size_t uColon, Bytes *pBytes) {
    int64_t i64Value = 0;
    uint32_t u32Width = 0;
    if (!ReadNumber(strWord.substr(0, uColon), &i64Value, 10) ||
        !ReadNumber(strWord.substr(uColon + 1), &u32Width, 10) || u32Width < 1 || u32Width > 8) {
        return false;
    }
    AppendNumber(pBytes, static_cast<uint64_t>(i64Value), u32Width);
    return true;
}

bool ReadHex(std::string_view strWord, Bytes *pBytes) {
    if (strWord.size() % 2 != 0) {
        return false;
    }
    for (size_t i = 0; i < strWord.size(); i += 2) {
        uint8_t u8Value = 0;
        if (!ReadNumber(strWord.substr(i, 2), &u8Value, 16)) {
            return false;
        }
        pBytes->push_back(u8Value);
    }
    return true;
}

// One word without its repeat count.
bool ReadItem(std::string_view strWord, Bytes *pBytes) {
    if (strWord.front() == '"') {
        const std::string_view strInside = strWord.substr(1, strWord.size() - 2);
        pBytes->insert(pBytes->end(), strInside.begin(), strInside.end());
        return true;
    }
    if (const size_t uSlash = strWord.find('/'); uSlash != std::string_view::npos) {
        return ReadHeader(strWord, uSlash, pBytes);
    }
    if (const size_t uColon = strWord.find(':'); uColon != std::string_view::npos) {
        return ReadSizedNumber(strWord, uColon, pBytes);
    }
    return ReadHex(strWord, pBytes);
}

// Takes the next word, a text in quotation marks with all its blanks.
std::string_view TakeWord(std::string_view *pstrText) {
    size_t uEnd = 0;
    if (pstrText->front() == '"') {
        uEnd = pstrText->find('"', 1);
        uEnd = uEnd == std::string_view::npos ? pstrText->size() : uEnd;
    }
    uEnd = std::min(pstrText->find(' ', uEnd), pstrText->size());
    const std::string_view strWord = pstrText->substr(0, uEnd);
    pstrText->remove_prefix(uEnd);
    return strWord;
}

bool ReadWord(std::string_view strWord, Bytes *pBytes) {
    uint64_t u64Repeats = 1;
    const size_t uStar = strWord.rfind('*');
    const bool bRepeated =
        uStar != std::string_view::npos && (strWord.front() != '"' || uStar > strWord.rfind('"'));
    if (bRepeated) {
        if (!ReadNumber(strWord.substr(uStar + 1), &u64Repeats, 10) ||
            u64Repeats > u64MostRepeats) {
            return false;
        }
        strWord = strWord.substr(0, uStar);
    }
    const bool bText = !strWord.empty() && strWord.front() == '"';
    if (strWord.empty() || (bText && (strWord.size() < 2 || strWord.back() != '"'))) {
        return false;
    }
    Bytes Item;
    if (!ReadItem(strWord, &Item)) {
        return false;
    }
    for (uint64_t i = 0; i < u64Repeats; ++i) {
        pBytes->insert(pBytes->end(), Item.begin(), Item.end());
    }
    return true;
}

} // namespace

std::optional<Bytes> ParseBytes(std::string_view strText, std::string *pstrWrong) {
    Bytes Result;
    for (;;) {
        while (!strText.empty() && strText.front() == ' ') {
            strText.remove_prefix(1);
        }
        if (strText.empty()) {
            return Result;
        }
        const std::string_view strWord = TakeWord(&strText);
        if (strWord != "|" && !ReadWord(strWord, &Result)) {
            *pstrWrong = strWord;
            return std::nullopt;
        }
    }
}

std::string FormatBytes(const uint8_t *pucBytes, size_t uCount) {
    std::string strText;
    for (size_t i = 0; i < uCount;) {
        size_t uRun = 1;
        while (i + uRun < uCount && pucBytes[i + uRun] == pucBytes[i]) {
            ++uRun;
        }
        char acText[40];
        if (uRun >= uShortestRun) {
            (void)snprintf(acText, sizeof acText, "%s%02x*%zu", i > 0 ? " " : "", pucBytes[i],
                           uRun);
        } else {
            uRun = 1;
            (void)snprintf(acText, sizeof acText, "%s%02x", i > 0 ? " " : "", pucBytes[i]);
        }
        strText += acText;
        i += uRun;
    }
    return strText;
}

std::string FormatMessage(const uint8_t *pucBytes, size_t uCount) {
    constexpr size_t uHeader = 4;
    if (uCount < uHeader) {
        return FormatBytes(pucBytes, uCount);
    }
    std::string strText = std::to_string(pucBytes[0] + pucBytes[1] * 256) + "/" +
                          std::to_string(pucBytes[2] + pucBytes[3] * 256);
    if (uCount > uHeader) {
        strText += " | " + FormatBytes(pucBytes + uHeader, uCount - uHeader);
    }
    return strText;
}

std::unique_ptr<WiMAXMessage> RecordOf(const Bytes &aucMessage) {
    auto pstRecord = std::make_unique<WiMAXMessage>();
    std::copy_n(aucMessage.data(), std::min(aucMessage.size(), sizeof *pstRecord),
                reinterpret_cast<uint8_t *>(pstRecord.get()));
    return pstRecord;
}

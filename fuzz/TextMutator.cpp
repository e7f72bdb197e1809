// Changes texts that are read in lines and words.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Dice.h"
#include "Vocabulary.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *pucBytes, size_t uCount, size_t uMost);

namespace {

using Lines = std::vector<std::string>;

Lines ReadLines(const uint8_t *pucBytes, size_t uCount) {
    Lines astrLines(1);
    for (size_t i = 0; i < uCount; ++i) {
        astrLines.back() += static_cast<char>(pucBytes[i]);
        if (pucBytes[i] == '\n') {
            astrLines.emplace_back();
        }
    }
    return astrLines;
}

size_t WriteLines(const Lines &astrLines, uint8_t *pucBytes, size_t uMost) {
    size_t uCount = 0;
    for (const std::string &strLine : astrLines) {
        if (uCount + strLine.size() <= uMost) {
            std::copy(strLine.begin(), strLine.end(), pucBytes + uCount);
            uCount += strLine.size();
        }
    }
    return uCount;
}

// A number or a word of the line becomes another number.
void MutateNumber(std::string *pstrLine, Dice &stDice) {
    constexpr std::string_view strInside = "0123456789.-_abcdefghijklmnopqrstuvwxyz";
    const size_t uBegin = pstrLine->find_first_of(strInside, stDice.Roll(pstrLine->size() + 1));
    if (uBegin == std::string::npos) {
        return;
    }
    const size_t uEnd = std::min(pstrLine->find_first_not_of(strInside, uBegin), pstrLine->size());
    const uint32_t u32Number = stDice.Of(Numbers());
    std::string strNumber = stDice.OneIn(4) ? std::to_string(static_cast<int32_t>(u32Number))
                                            : std::to_string(u32Number);
    strNumber += stDice.OneIn(8) ? ".5" : "";
    pstrLine->replace(uBegin, uEnd - uBegin, strNumber);
}

void MutateLines(Lines *pastrLines, Dice &stDice) {
    const size_t uPlace = stDice.Roll(pastrLines->size());
    const auto Place = pastrLines->begin() + static_cast<ptrdiff_t>(uPlace);
    const size_t uOther = stDice.Roll(pastrLines->size());
    switch (stDice.Roll(6)) {
    case 0:
        if (pastrLines->size() > 1) {
            pastrLines->erase(Place);
        }
        break;
    case 1:
        pastrLines->insert(Place, std::string((*pastrLines)[uOther]));
        break;
    case 2:
        std::swap(*Place, (*pastrLines)[uOther]);
        break;
    default:
        MutateNumber(&*Place, stDice);
    }
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *pucBytes, size_t uCount, size_t uMost,
                                          unsigned uSeed) {
    Dice stDice(uSeed);
    if (stDice.OneIn(3)) {
        return LLVMFuzzerMutate(pucBytes, uCount, uMost);
    }
    Lines astrLines = ReadLines(pucBytes, uCount);
    for (uint32_t i = stDice.Roll(3); i < 3; ++i) {
        MutateLines(&astrLines, stDice);
    }
    return WriteLines(astrLines, pucBytes, uMost);
}

// Some lines of the other text in the midst of the one.
extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t *pucFirst, size_t uFirst,
                                            const uint8_t *pucSecond, size_t uSecond,
                                            uint8_t *pucBytes, size_t uMost, unsigned uSeed) {
    Dice stDice(uSeed);
    Lines astrLines = ReadLines(pucFirst, uFirst);
    const Lines astrOther = ReadLines(pucSecond, uSecond);
    const auto uFrom = static_cast<ptrdiff_t>(stDice.Roll(astrOther.size()));
    const auto uLines =
        static_cast<ptrdiff_t>(stDice.Roll(astrOther.size() - static_cast<size_t>(uFrom))) + 1;
    astrLines.insert(astrLines.begin() + static_cast<ptrdiff_t>(stDice.Roll(astrLines.size() + 1)),
                     astrOther.begin() + uFrom, astrOther.begin() + uFrom + uLines);
    return WriteLines(astrLines, pucBytes, uMost);
}

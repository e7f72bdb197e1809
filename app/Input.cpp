#include "Input.h"

#include "Console.h"
#include "Scan.h"

namespace {

const CharSource stInput{[](void *) { return NextInputChar(); },
                         [](void *, int iChar) { PushBackInputChar(iChar); }, nullptr};

// One word of the input as a source of its own. A zero byte ends what can be
// converted of it, as it ends a C string.
struct TypedWord {
    int iGivenBack = -1;
    bool bEnded = false;

    int Next() {
        if (iGivenBack >= 0) {
            const int iChar = iGivenBack;
            iGivenBack = -1;
            return iChar;
        }
        if (bEnded) {
            return -1;
        }
        const int iChar = NextInputChar();
        if (iChar <= 0 || IsSpace(iChar)) {
            bEnded = iChar != 0;
            if (iChar == 0) {
                DropRest();
            } else {
                PushBackInputChar(iChar);
            }
            return -1;
        }
        return iChar;
    }
    void DropRest() {
        while (!bEnded) {
            const int iChar = NextInputChar();
            if (iChar < 0 || IsSpace(iChar)) {
                PushBackInputChar(iChar);
                bEnded = true;
            }
        }
    }
};

CharSource SourceOf(TypedWord &stWord) {
    return {[](void *pvState) { return static_cast<TypedWord *>(pvState)->Next(); },
            [](void *pvState, int iChar) { static_cast<TypedWord *>(pvState)->iGivenBack = iChar; },
            &stWord};
}

// Shows what was printed and goes to the next word.
TypedWord BeginWord() {
    FlushOutput();
    const int iFirst = SkipSpace(stInput);
    if (iFirst < 0) {
        throw ClientEnd{0};
    }
    return {iFirst, false};
}

bool Done(ScanResult eResult) {
    if (eResult == ScanResult::Ended) {
        throw ClientEnd{0};
    }
    return eResult == ScanResult::Converted;
}

} // namespace

int32_t ReadOption() {
    TypedWord stWord = BeginWord();
    int32_t iValue = 0;
    ScanDecimal(SourceOf(stWord), &iValue);
    stWord.DropRest();
    return iValue;
}

uint32_t ReadHexNum(uint32_t *pu32Value) {
    TypedWord stWord = BeginWord();
    const ScanResult eResult = ScanHexadecimal(SourceOf(stWord), pu32Value);
    stWord.DropRest();
    return eResult == ScanResult::Converted ? 1 : 0;
}

void ReadWord(char *pcWord, uint32_t u32Size) {
    TypedWord stWord = BeginWord();
    uint32_t u32Length = 0;
    for (int iChar = stWord.Next(); iChar >= 0; iChar = stWord.Next()) {
        if (u32Length + 1 < u32Size) {
            pcWord[u32Length++] = static_cast<char>(iChar);
        }
    }
    pcWord[u32Length] = '\0';
}

uint32_t ReadHexBytes(uint8_t *pucBytes, uint32_t u32Count) {
    TypedWord stWord = BeginWord();
    uint32_t u32Read = 0;
    uint32_t u32Value = 0;
    while (u32Read < u32Count &&
           ScanHexadecimal(SourceOf(stWord), &u32Value) == ScanResult::Converted) {
        pucBytes[u32Read++] = static_cast<uint8_t>(u32Value);
        if (stWord.Next() != '-') {
            break;
        }
    }
    stWord.DropRest();
    return u32Read;
}

bool ReadInteger(int32_t *piValue) {
    FlushOutput();
    return Done(ScanDecimal(stInput, piValue));
}

bool ReadHexInteger(uint32_t *pu32Value) {
    FlushOutput();
    return Done(ScanHexadecimal(stInput, pu32Value));
}

bool ReadFloat(float *pfValue) {
    FlushOutput();
    return Done(ScanFloat(stInput, pfValue));
}

bool ReadIntegerOrDropWord(int32_t *piValue) {
    if (ReadInteger(piValue)) {
        return true;
    }
    TypedWord{}.DropRest();
    return false;
}

int32_t AskOption(const char *pcPrompt) {
    PutText(pcPrompt);
    return ReadOption();
}

uint32_t AskUnsigned(const char *pcPrompt) { return static_cast<uint32_t>(AskOption(pcPrompt)); }

void AskFields(ByteSpan stRecord, std::span<const Question> astQuestions) {
    for (const Question &stQuestion : astQuestions) {
        Put(stRecord, stQuestion.stField, AskUnsigned(stQuestion.pcPrompt));
    }
}

uint32_t AskInteger(const char *pcPrompt, uint32_t u32Before) {
    PutText(pcPrompt);
    auto iValue = static_cast<int32_t>(u32Before);
    ReadInteger(&iValue);
    return static_cast<uint32_t>(iValue);
}

uint32_t AskFrequency(const char *pcPrompt) {
    PutText(pcPrompt);
    float fMHz = 0;
    ReadFloat(&fMHz);
    const volatile float fkHz = fMHz * 1000.0F; // volatile: no excess precision on any host
    constexpr float fLimit = 4294967296.0F;
    return fkHz >= 0 && fkHz < fLimit ? static_cast<uint32_t>(fkHz) : 0;
}

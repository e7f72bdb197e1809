#include "AirScrub.h"

#include <algorithm>
#include <span>

namespace {

// What is done with a value, by its tag.
enum class Treatment : uint8_t {
    Keep,
    Replace,
    ReplaceHalf, // an address and the mask behind it
    Inside,      // it holds values with tags, too
};

struct TagRow;

// Values with tags; those without a row are treated alike.
struct TagList {
    std::span<const TagRow> astRows;
    Treatment eOthers = Treatment::Keep;
};

struct TagRow {
    uint8_t u8First;
    uint8_t u8Last;
    Treatment eTreatment;
    const TagList *pstInside = nullptr;
};

constexpr TagRow One(uint8_t u8Tag, Treatment eTreatment, const TagList *pstInside = nullptr) {
    return {u8Tag, u8Tag, eTreatment, pstInside};
}

// Digests, by which a key can be tested, and what a vendor adds but for who that is.
constexpr TagRow astVendorRows[] = {One(144, Treatment::Keep)};
constexpr TagList stVendor = {astVendorRows, Treatment::Replace};
constexpr TagRow stVendorRow = One(143, Treatment::Inside, &stVendor);
constexpr TagRow stShortDigest = One(140, Treatment::Replace);
constexpr TagRow stCMACDigest = One(141, Treatment::Replace);
constexpr TagRow stHMACDigest = One(149, Treatment::Replace);

constexpr TagRow astDigestRows[] = {stShortDigest, stCMACDigest, stVendorRow, stHMACDigest};
constexpr TagList stDigests = {astDigestRows};

constexpr TagRow astRangingRequestRows[] = {
    One(2, Treatment::Replace), // the station's address
    stShortDigest,
    stCMACDigest,
    stVendorRow,
    stHMACDigest,
};
constexpr TagList stRangingRequest = {astRangingRequestRows};

constexpr TagRow astRegistrationRows[] = {
    One(18, Treatment::Replace), // the station's address
    stShortDigest,
    stCMACDigest,
    stVendorRow,
    stHMACDigest,
};
constexpr TagList stRegistration = {astRegistrationRows};

constexpr TagRow astRangingAnswerRows[] = {
    One(8, Treatment::Replace), // the station's address
    One(30, Treatment::Inside, &stRegistration),
    stShortDigest,
    stCMACDigest,
    stVendorRow,
    stHMACDigest,
};
constexpr TagList stRangingAnswer = {astRangingAnswerRows};

// Of key management what is known to be public stays, and nothing else: lifetimes, sequence
// numbers, associations, suites, error codes.
constexpr TagRow astKeyParameterRows[] = {{9, 10, Treatment::Keep}};
constexpr TagList stKeyParameters = {astKeyParameterRows, Treatment::Replace};
constexpr TagRow astKeyRows[] = {
    {9, 10, Treatment::Keep},
    One(12, Treatment::Keep),
    One(13, Treatment::Inside, &stKeyParameters),
    One(16, Treatment::Keep),
    {19, 25, Treatment::Keep},
    One(27, Treatment::Keep),
    {30, 32, Treatment::Keep},
};
constexpr TagList stKeys = {astKeyRows, Treatment::Replace};

// A rule tells the addresses that a subscriber talks to.
constexpr TagRow astRuleRows[] = {{4, 5, Treatment::ReplaceHalf}, {8, 9, Treatment::ReplaceHalf}};
constexpr TagList stRule = {astRuleRows};
constexpr TagRow astConvergenceRows[] = {
    One(3, Treatment::Inside, &stRule), One(6, Treatment::Replace), // headers that are suppressed
};
constexpr TagList stConvergence = {astConvergenceRows};
constexpr TagRow astFlowRows[] = {{100, 107, Treatment::Inside, &stConvergence}, stVendorRow};
constexpr TagList stFlow = {astFlowRows};
constexpr TagRow astServiceRows[] = {
    stShortDigest, stCMACDigest, stVendorRow, {145, 146, Treatment::Inside, &stFlow}, stHMACDigest,
};
constexpr TagList stService = {astServiceRows};

// The messages that consist of such values, behind a head of so many bytes.
struct AirMessage {
    uint8_t u8Code;
    uint32_t u32Head;
    const TagList *pstTags;
};

constexpr AirMessage astMessages[] = {
    {4, 1, &stRangingRequest}, // RNG-REQ
    {5, 1, &stRangingAnswer},  // RNG-RSP
    {6, 0, &stRegistration},   // REG-REQ
    {7, 1, &stRegistration},   // REG-RSP
    {9, 2, &stKeys},           // PKM-REQ
    {10, 2, &stKeys},          // PKM-RSP
    {11, 2, &stService},       // DSA-REQ
    {12, 3, &stService},       // DSA-RSP
    {13, 3, &stService},       // DSA-ACK
    {14, 2, &stService},       // DSC-REQ
    {15, 3, &stService},       // DSC-RSP
    {16, 3, &stService},       // DSC-ACK
    {17, 6, &stService},       // DSD-REQ
    {18, 7, &stService},       // DSD-RSP
    {25, 0, &stDigests},       // RES-CMD
    {26, 0, &stDigests},       // SBC-REQ
    {27, 0, &stDigests},       // SBC-RSP
    {29, 1, &stDigests},       // DREG-CMD
    {49, 1, &stDigests},       // DREG-REQ
};

constexpr uint8_t u8Paging = 61;
constexpr uint8_t u8FirstMobility = 50;
constexpr uint8_t u8LastMobility = 66;

Treatment TreatmentOf(const TagList &stList, uint8_t u8Tag, const TagList **ppstInside) {
    for (const TagRow &stRow : stList.astRows) {
        if (u8Tag >= stRow.u8First && u8Tag <= stRow.u8Last) {
            *ppstInside = stRow.pstInside;
            return stRow.eTreatment;
        }
    }
    return stList.eOthers;
}

// The value that begins a list: behind its tag and length. False when the list breaks off there.
bool TakeValue(ByteSpan *pstList, uint8_t *pu8Tag, ByteSpan *pstValue) {
    constexpr uint8_t u8Long = 0x80;
    const ByteView stList = *pstList;
    uint32_t u32Head = 2;
    uint32_t u32Length = stList.At(1);
    if (u32Length >= u8Long) {
        const uint32_t u32LengthBytes = u32Length - u8Long;
        u32Length = 0;
        for (uint32_t i = 0; i < u32LengthBytes; ++i) {
            u32Length = u32Length << 8 | stList.At(u32Head + i);
        }
        if (u32LengthBytes > 2) {
            return false;
        }
        u32Head += u32LengthBytes;
    }
    if (u32Head > stList.u32Length || u32Length > stList.u32Length - u32Head) {
        return false;
    }
    *pu8Tag = stList.At(0);
    *pstValue = pstList->From(u32Head, u32Length);
    *pstList = pstList->From(u32Head + u32Length);
    return true;
}

// As deep as the tables are.
// NOLINTNEXTLINE(misc-no-recursion)
void ScrubValues(const Pseudonyms &stPseudonyms, const TagList &stTags, ByteSpan stList) {
    uint8_t u8Tag = 0;
    ByteSpan stValue;
    while (TakeValue(&stList, &u8Tag, &stValue)) {
        const TagList *pstInside = nullptr;
        switch (TreatmentOf(stTags, u8Tag, &pstInside)) {
        case Treatment::Keep:
            break;
        case Treatment::Replace:
            stPseudonyms.Replace(stValue);
            break;
        case Treatment::ReplaceHalf:
            stPseudonyms.Replace(stValue.From(0, (stValue.u32Length + 1) / 2));
            break;
        case Treatment::Inside:
            ScrubValues(stPseudonyms, *pstInside, stValue);
            break;
        }
    }
    // What cannot be read may be anything.
    stPseudonyms.Replace(stList);
}

// Hashes of the addresses of the stations that are called.
void ScrubPaging(const Pseudonyms &stPseudonyms, ByteSpan stBody) {
    constexpr uint32_t u32HashSize = 3;
    constexpr uint32_t u32Called = 4; // the hash, and what the station has to do
    const ByteView stView = stBody;
    const uint32_t u32Groups = static_cast<uint32_t>(stView.At(0)) << 8 | stView.At(1);
    const uint32_t u32Stations = 2 + u32Groups * 2;
    const uint32_t u32Count = stView.At(u32Stations);
    for (uint32_t i = 0; i < u32Count; ++i) {
        stPseudonyms.Replace(stBody.From(u32Stations + 1 + i * u32Called, u32HashSize));
    }
}

// Mobility messages have layouts of their own, but end with the digest as all others do.
void ScrubLastDigest(const Pseudonyms &stPseudonyms, ByteSpan stBody) {
    constexpr uint8_t u8CMACTag = 141;
    for (const uint32_t u32Length : {13U, 19U}) {
        const uint32_t u32Tag = stBody.u32Length - u32Length - 2;
        if (stBody.u32Length >= u32Length + 2 && stBody.pucData[u32Tag] == u8CMACTag &&
            stBody.pucData[u32Tag + 1] == u32Length) {
            stPseudonyms.Replace(stBody.From(u32Tag + 2));
            return;
        }
    }
}

} // namespace

void ScrubManagementMessage(const Pseudonyms &stPseudonyms, uint8_t u8Code, ByteSpan stBody) {
    const auto *pstMessage = std::ranges::find(astMessages, u8Code, &AirMessage::u8Code);
    if (pstMessage != std::end(astMessages)) {
        ScrubValues(stPseudonyms, *pstMessage->pstTags, stBody.From(pstMessage->u32Head));
    } else if (u8Code >= u8FirstMobility && u8Code <= u8LastMobility) {
        if (u8Code == u8Paging) {
            ScrubPaging(stPseudonyms, stBody);
        }
        ScrubLastDigest(stPseudonyms, stBody);
    }
}

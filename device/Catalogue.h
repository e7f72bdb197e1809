// Every message of the modem's interface, described once: its name, direction
// and size, and its fields by name, unit and meaning. Where a field lies stands
// in *Records.h alone; a row here takes name and place from there by one word.
//
//     constexpr FieldRow astSyncStatus[] = {
//         FIELD(SyncStatus, u32Status, "link reason", .astCodes = astLinkReasons),
//         RESERVED(5, 1),
//         FIELD(SyncStatus, aucBSID, "BS ID", .u16Count = 6, .eShown = Shown::Address),
//         FIELD(SyncStatus, s32CINRMean, "CINR mean", .pcUnit = "dB"),
//
// Whoever shows, compares, changes or hides what a message holds goes through
// it like this:
//
//     const MessageRow *pstMessage = FindReceived(TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_STATUS_RESP);
//     WalkMessage(*pstMessage, stPayload, [](const FoundField &stFound) { ... });
//
// and whoever writes a description of the messages goes through Messages(), the
// layouts that their rows point to, and the rows of these.
#ifndef CATALOGUE_H
#define CATALOGUE_H

#include <cstdint>
#include <span>
#include <string_view>

#include "Wire.h"

// A name as the records spell it, and the same without its prefix of width and
// in lower case, as filters and JSON spell it: s32CINRMean and cinr_mean.
struct CatalogueName {
    const char *pcOwn = "";
    char acPlain[48] = {};

    constexpr CatalogueName() = default;
    consteval CatalogueName(const char *pcName);
    std::string_view Plain() const { return acPlain; }
};

// How a field is shown. Numbers are signed when their type is.
enum class Shown : uint8_t {
    Number,      // decimal, in fractions of a unit or by the name of a code, if there are
    Hexadecimal, // a number: a mask, a code of others, an address
    Bytes,       // these and the following are one field of u16Count bytes
    Address,     // bytes between colons: a BS ID, a MAC address
    Text,        // ends at a zero byte or with its bytes
    Value,       // a little-endian number when it has 1, 2 or 4 bytes, else bytes
};

// What a recording must not tell when it is given away.
enum class Guard : uint8_t {
    Public,
    Identity, // says who somebody is: an identity, a MAC address, an IMEI
    Secret,   // keys, key material, security parameters
};

struct CodeRow {
    uint32_t u32Code;
    CatalogueName stName;
};

struct Layout;

// What a run of bytes is by the number that says so: a record, or bytes that are
// to be guarded.
struct CaseRow {
    uint32_t u32Code;
    const Layout *pstLayout;
    Guard eGuard = Guard::Public;
};

// One field, array, run of bytes, nested record or list of records.
struct FieldRow {
    CatalogueName stName = {};  // empty: reserved
    Field stField = {};         // place in the record; the width of an element
    const char *pcMeaning = ""; // in a few words
    // How many elements (or bytes) there is room for; 0: as many as are counted or,
    // without a counter, as fit. Only the last field of a record has no fixed room.
    uint16_t u16Count = 1;
    Field stCounter = {};      // the field of the same record that says how many there are
    bool bCountsBytes = false; // the counter counts the bytes of records
    Shown eShown = Shown::Number;
    const char *pcUnit = "";
    uint32_t u32Divisor = 1; // the number is in this fraction of the unit
    std::span<const CodeRow> astCodes = {};
    Guard eGuard = Guard::Public;
    const Layout *pstRecord = nullptr; // of a nested record or each record of a list
    // The bytes are one of these cases, by the number in stSelector, or just bytes.
    std::span<const CaseRow> astCases = {};
    Field stSelector = {};
};

struct Layout {
    CatalogueName stName;
    std::span<const FieldRow> astRows;
    uint32_t u32Size; // the least one, when the last field has no fixed room
};

enum class Direction : uint8_t {
    Request,       // sent by the client
    WriteBack,     // written into the request's own buffer before the send returns
    Answer,        // sent by the modem, because it was asked
    Indication,    // sent by the modem of its own accord, too
    RegisterRead,  // a call of rdm: no message, its "payload" is a RegisterCall
    RegisterWrite, // a call of wrm
};

// The bytes of a payload that a message may have.
struct SizeRule {
    uint32_t u32Least;
    uint32_t u32Most;
    bool bAsCounted = false; // no more than its counts say
};
constexpr SizeRule Exactly(uint32_t u32Size) { return {u32Size, u32Size}; }
constexpr SizeRule AtLeast(uint32_t u32Size) { return {u32Size, WIMAX_DATA_SIZE}; }
constexpr SizeRule AsCounted(uint32_t u32Least) { return {u32Least, WIMAX_DATA_SIZE, true}; }

// The subtype of a message whose subtype says nothing.
inline constexpr uint16_t AnySubType = 0xFFFF;

struct MessageRow {
    uint16_t u16Type;
    uint16_t u16SubType;
    Direction eDirection;
    CatalogueName stName; // unique over all directions
    const char *pcMeaning;
    SizeRule stSize;
    const Layout *pstLayout;       // stEmpty without a payload
    uint16_t u16AnswerSubType = 0; // of a request: the message of its type that answers it
};

extern const Layout stEmpty;

// A register call as bytes: what is read stands behind its address and count, too.
namespace RegisterCall {
inline constexpr Field u32Address{0, FieldType::U32};
inline constexpr Field u32Count{4, FieldType::U32};
inline constexpr uint32_t aucValue = 8;
} // namespace RegisterCall

// All messages, by type, way and subtype.
std::span<const MessageRow> Messages();
// The message that the client sent, that the library wrote back, that the modem
// sent; null when the interface has none of that kind.
const MessageRow *FindSent(uint32_t u32Type, uint32_t u32SubType);
const MessageRow *FindWrittenBack(uint32_t u32Type, uint32_t u32SubType);
const MessageRow *FindReceived(uint32_t u32Type, uint32_t u32SubType);
const MessageRow &RegisterRead();
const MessageRow &RegisterWrite();

constexpr bool IsSigned(FieldType eType) {
    return eType == FieldType::I8 || eType == FieldType::I16 || eType == FieldType::I32;
}
inline bool IsReserved(const FieldRow &stRow) { return stRow.stName.acPlain[0] == '\0'; }
inline bool IsRun(const FieldRow &stRow) { return stRow.eShown >= Shown::Bytes; }
// More than one element, or a number of them that a counter gives.
inline bool IsList(const FieldRow &stRow) {
    return !IsRun(stRow) && (stRow.u16Count != 1 || stRow.stCounter.eType != FieldType::None);
}
// The name of a code; empty when the row has none for it.
std::string_view NameOf(const FieldRow &stRow, uint32_t u32Code);
// Bytes of one element: 1 for runs of bytes.
uint32_t ElementSize(const FieldRow &stRow);

// How many bytes a record takes, as its own counts say: more than the view when
// it breaks off.
uint32_t SizeOf(const Layout &stLayout, ByteView stRecord);
// Whether a payload has a size that the message may have.
bool HasRightSize(const MessageRow &stMessage, ByteView stPayload);

// One record on the way to a field: the row that it stands in, its layout (of a
// value by cases: the case), and its number in a list.
struct PathStep {
    const FieldRow *pstRow;
    const Layout *pstLayout;
    uint32_t u32Index;
    // A case goes by the name of its layout.
    const CatalogueName &Name() const {
        return pstRow->astCases.empty() ? pstRow->stName : pstLayout->stName;
    }
};

enum class Found : uint8_t {
    Field,     // a number, a run of bytes, or a reserved range
    ListBegin, // around the elements of every list, an empty one too
    ListEnd,
    RecordBegin, // around the fields of every nested record
    RecordEnd,
};

// What a walk comes to. Nothing of it lives longer than the call.
struct FoundField {
    Found eWhat;
    const FieldRow *pstRow;
    std::span<const PathStep> astPath; // the records around it, the outermost first
    uint32_t u32Index;                 // of the element in its list
    uint32_t u32Count;                 // elements of the list that are there
    uint32_t u32Announced;             // elements or bytes that there should be
    uint32_t u32Offset;                // in the payload
    ByteView stBytes;                  // what is there of it: less than its width when cut off
    uint32_t u32Value; // of a number or a short Shown::Value, sign-extended; what is cut off is 0
    Guard eGuard;
};

// How much of a message a walk shows.
enum class Walk : uint8_t {
    Described,  // named fields, and of lists and runs what their counts say
    Everything, // reserved ranges, places beyond the counts and what lies behind it all, too
};

using Visit = void (*)(void *pvContext, const FoundField &stFound);

// Calls pfnVisit with everything that the payload holds, in the order of the
// rows. Never looks outside the payload: hand over what was received of it, or
// the whole data area. What lies outside is left out.
void WalkMessageWith(const MessageRow &stMessage, ByteView stPayload, Walk eWalk, Visit pfnVisit,
                     void *pvContext);

template <class Visitor>
void WalkMessage(const MessageRow &stMessage, ByteView stPayload, Visitor &&fnVisit,
                 Walk eWalk = Walk::Described) {
    WalkMessageWith(
        stMessage, stPayload, eWalk,
        [](void *pvContext, const FoundField &stFound) {
            (*static_cast<std::remove_reference_t<Visitor> *>(pvContext))(stFound);
        },
        const_cast<void *>(static_cast<const void *>(&fnVisit)));
}

// A name for filters: qor020.sync_status.cinr_mean.
struct FilterName {
    char acText[192] = {};
    uint32_t u32Length = 0;

    std::string_view View() const { return {acText, u32Length}; }
};
FilterName FilterNameOf(const MessageRow &stMessage, std::span<const PathStep> astPath,
                        const FieldRow &stRow);

// ---- For the tables ----

constexpr Field PlaceOf(Field stField) { return stField; }
constexpr Field PlaceOf(uint32_t u32Offset) {
    return {static_cast<uint16_t>(u32Offset), FieldType::U8};
}
constexpr Field AsSigned(Field stField) {
    return {stField.u16Offset, WidthOf(stField.eType) == 4   ? FieldType::I32
                               : WidthOf(stField.eType) == 2 ? FieldType::I16
                                                             : FieldType::I8};
}

#define FIELD(RECORD, NAME, MEANING, ...)                                                          \
    FieldRow {                                                                                     \
        .stName = #NAME, .stField = PlaceOf(RECORD::NAME),                                         \
        .pcMeaning = MEANING __VA_OPT__(, ) __VA_ARGS__                                            \
    }
// The same of a number that the client prints with a sign, whatever its record says.
#define SIGNED_FIELD(RECORD, NAME, MEANING, ...)                                                   \
    FieldRow {                                                                                     \
        .stName = #NAME, .stField = AsSigned(PlaceOf(RECORD::NAME)),                               \
        .pcMeaning = MEANING __VA_OPT__(, ) __VA_ARGS__                                            \
    }
// The same under a name of its own.
#define NAMED(NAME, PLACE, MEANING, ...)                                                           \
    FieldRow {                                                                                     \
        .stName = NAME, .stField = PlaceOf(PLACE), .pcMeaning = MEANING __VA_OPT__(, ) __VA_ARGS__ \
    }
#define RESERVED(OFFSET, SIZE)                                                                     \
    FieldRow { .stField = PlaceOf(OFFSET), .u16Count = (SIZE), .eShown = Shown::Bytes }
// A layout of the record of that name, whose size stands there.
#define LAYOUT(RECORD, ROWS)                                                                       \
    Layout { #RECORD, (ROWS), RECORD::Size }
#define CODE(RECORD, NAME)                                                                         \
    CodeRow { RECORD::NAME, #NAME }

// ---- Names ----

constexpr bool IsUpper(char cChar) { return cChar >= 'A' && cChar <= 'Z'; }
constexpr bool IsLower(char cChar) { return cChar >= 'a' && cChar <= 'z'; }
constexpr bool IsDigit(char cChar) { return cChar >= '0' && cChar <= '9'; }

// How long the prefix of width is: everything before the first capital, unless
// that is a word.
constexpr uint32_t PrefixLength(std::string_view strName) {
    constexpr std::string_view astrPrefixes[] = {"u8",  "s8",  "u16",  "s16",  "u32",  "s32",
                                                 "au8", "as8", "au16", "as16", "au32", "as32",
                                                 "auc", "ac",  "uc",   "us",   "st",   "ast"};
    uint32_t u32Length = 0;
    while (u32Length < strName.size() && !IsUpper(strName[u32Length])) {
        ++u32Length;
    }
    for (const std::string_view strPrefix : astrPrefixes) {
        if (strName.substr(0, u32Length) == strPrefix) {
            return u32Length;
        }
    }
    return 0;
}

// Where a new word begins: at a capital behind a small letter or a digit, and
// at the last capital of a row of them (HOSuccess) unless that ends in a plural
// (NSPs) or would leave one letter alone (OPc).
constexpr bool BeginsWord(std::string_view strName, uint32_t u32Place) {
    if (u32Place == 0 || !IsUpper(strName[u32Place])) {
        return false;
    }
    if (!IsUpper(strName[u32Place - 1])) {
        return true;
    }
    const auto At = [&](uint32_t i) { return i < strName.size() ? strName[i] : '\0'; };
    const bool bPlural = At(u32Place + 1) == 's' && !IsLower(At(u32Place + 2));
    return IsLower(At(u32Place + 1)) && !bPlural && u32Place >= 2 && IsUpper(strName[u32Place - 2]);
}

consteval CatalogueName::CatalogueName(const char *pcName) : pcOwn(pcName) {
    std::string_view strName = pcName;
    strName.remove_prefix(PrefixLength(strName));
    uint32_t u32Length = 0;
    for (uint32_t i = 0; i < strName.size(); ++i) {
        if (BeginsWord(strName, i)) {
            acPlain[u32Length++] = '_';
        }
        acPlain[u32Length++] =
            IsUpper(strName[i]) ? static_cast<char>(strName[i] - 'A' + 'a') : strName[i];
    }
    if (u32Length >= sizeof acPlain) {
        throw "a name too long";
    }
}

#endif

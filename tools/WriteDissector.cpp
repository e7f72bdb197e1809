// Writes the dissector for Wireshark from the catalogue and what is written by hand:
//
//     WriteDissector [--check] DIRECTORY
//     WriteDissector --names
//
// DIRECTORY/qor020.lua gets the messages and layouts as tables, and behind them interface.lua and
// management.lua, which read them. With --check nothing is written; a file that would change is an
// error. --names lists the name for filters of everything that a message can hold.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Catalogue.h"

namespace {

constexpr std::string_view strOpening =
    "-- Shows recorded sessions of the modem in Wireshark and tshark: docs/wireshark.md.\n"
    "-- Written by tools/WriteDissector.cpp from the catalogue of messages, interface.lua and\n"
    "-- management.lua: change those, and build the target `dissector`.\n\n";
constexpr const char *apcParts[] = {"interface.lua", "management.lua"};
constexpr const char *pcDissector = "qor020.lua";

std::string Quoted(std::string_view strText) {
    std::string strQuoted = "\"";
    for (const char cChar : strText) {
        strQuoted += cChar == '"' || cChar == '\\' ? "\\" : "";
        strQuoted += cChar;
    }
    return strQuoted + "\"";
}

// The words of a name: s32CINRMean is "CINR Mean".
std::string LabelOf(const CatalogueName &stName) {
    std::string_view strName = stName.pcOwn;
    strName.remove_prefix(PrefixLength(strName));
    std::string strLabel;
    for (uint32_t i = 0; i < strName.size(); ++i) {
        strLabel += BeginsWord(strName, i) ? " " : "";
        strLabel += strName[i];
    }
    if (!strLabel.empty() && IsLower(strLabel.front())) {
        strLabel.front() = static_cast<char>(strLabel.front() - 'a' + 'A');
    }
    return strLabel;
}

std::string Named(const CatalogueName &stName, std::string_view strMeaning) {
    return "name = " + Quoted(stName.Plain()) + ", label = " + Quoted(LabelOf(stName)) +
           ", meaning = " + Quoted(strMeaning);
}

std::string_view NumberKindOf(FieldType eType) {
    constexpr std::string_view astrKinds[] = {"", "U8", "I8", "U16", "I16", "U32", "I32"};
    return astrKinds[static_cast<size_t>(eType)];
}

std::string_view KindOf(const FieldRow &stRow) {
    if (stRow.pstRecord != nullptr) {
        return "record";
    }
    switch (stRow.eShown) {
    case Shown::Bytes:
        return "bytes";
    case Shown::Address:
        return "address";
    case Shown::Text:
        return "text";
    case Shown::Value:
        return "value";
    case Shown::Number:
    case Shown::Hexadecimal:
        break;
    }
    return NumberKindOf(stRow.stField.eType);
}

std::string PlaceText(Field stField) {
    return "{at = " + std::to_string(stField.u16Offset) +
           ", kind = " + Quoted(NumberKindOf(stField.eType)) + "}";
}

std::string CodesText(const FieldRow &stRow) {
    std::string strCodes;
    for (const CodeRow &stCode : stRow.astCodes) {
        const std::string strCode = IsSigned(stRow.stField.eType)
                                        ? std::to_string(static_cast<int32_t>(stCode.u32Code))
                                        : std::to_string(stCode.u32Code);
        strCodes += strCodes.empty() ? "" : ", ";
        strCodes += "[" + strCode + "] = " + Quoted(stCode.stName.Plain());
    }
    return "{" + strCodes + "}";
}

// What is referred to by a name.
struct Description {
    std::vector<const Layout *> apstLayouts; // those inside another before it
    std::set<std::string_view> astrLayouts;
    std::map<const CodeRow *, std::string> astrCodes; // by the first of them
    std::string strCodes;

    void TakeCodes(const FieldRow &stRow) {
        if (!stRow.astCodes.empty() && !astrCodes.contains(stRow.astCodes.data())) {
            const std::string strName = "CODES[" + std::to_string(astrCodes.size() + 1) + "]";
            astrCodes[stRow.astCodes.data()] = strName;
            strCodes += strName + " = " + CodesText(stRow) + "\n";
        }
    }

    // Records lie in records. NOLINTNEXTLINE(misc-no-recursion)
    void Take(const Layout &stLayout) {
        for (const FieldRow &stRow : stLayout.astRows) {
            TakeCodes(stRow);
            if (stRow.pstRecord != nullptr) {
                Take(*stRow.pstRecord);
            }
            for (const CaseRow &stCase : stRow.astCases) {
                if (stCase.pstLayout != nullptr) {
                    Take(*stCase.pstLayout);
                }
            }
        }
        if (astrLayouts.insert(stLayout.stName.pcOwn).second) {
            apstLayouts.push_back(&stLayout);
        }
    }
};

std::string CasesText(const FieldRow &stRow) {
    std::string strCases;
    for (const CaseRow &stCase : stRow.astCases) {
        if (stCase.pstLayout != nullptr) {
            strCases += strCases.empty() ? "" : ", ";
            strCases += "[" + std::to_string(stCase.u32Code) + "] = LAYOUTS." +
                        stCase.pstLayout->stName.pcOwn;
        }
    }
    return strCases.empty()
               ? ""
               : ", cases = {" + strCases + "}, selector = " + PlaceText(stRow.stSelector);
}

std::string RowText(const Description &stDescription, const FieldRow &stRow) {
    std::string strRow = "    {at = " + std::to_string(stRow.stField.u16Offset) +
                         ", kind = " + Quoted(KindOf(stRow)) + ", " +
                         Named(stRow.stName, stRow.pcMeaning);
    const auto Add = [&](bool bIs, std::string_view strName, const std::string &strValue) {
        if (bIs) {
            strRow.append(", ").append(strName).append(" = ").append(strValue);
        }
    };
    Add(stRow.u16Count != 1, "count", std::to_string(stRow.u16Count));
    Add(IsList(stRow), "list", "true");
    Add(stRow.stCounter.eType != FieldType::None, "counter", PlaceText(stRow.stCounter));
    Add(stRow.bCountsBytes, "counts_bytes", "true");
    Add(stRow.eShown == Shown::Hexadecimal, "hexadecimal", "true");
    Add(*stRow.pcUnit != '\0', "unit", Quoted(stRow.pcUnit));
    Add(stRow.u32Divisor != 1, "divisor", std::to_string(stRow.u32Divisor));
    if (!stRow.astCodes.empty()) {
        Add(true, "codes", stDescription.astrCodes.at(stRow.astCodes.data()));
    }
    if (stRow.pstRecord != nullptr) {
        Add(true, "record", std::string("LAYOUTS.") + stRow.pstRecord->stName.pcOwn);
    }
    return strRow + CasesText(stRow) + "},\n";
}

std::string LayoutText(const Description &stDescription, const Layout &stLayout) {
    std::string strText = std::string("LAYOUTS.") + stLayout.stName.pcOwn + " = {\n    " +
                          Named(stLayout.stName, "") +
                          ", size = " + std::to_string(stLayout.u32Size) + ",\n";
    for (const FieldRow &stRow : stLayout.astRows) {
        strText += IsReserved(stRow) ? "" : RowText(stDescription, stRow);
    }
    return strText + "}\n";
}

std::string_view WayOf(Direction eDirection) {
    constexpr std::string_view astrWays[] = {"sent",     "written_back", "received",
                                             "received", "read",         "write"};
    return astrWays[static_cast<size_t>(eDirection)];
}

std::string MessageText(const MessageRow &stMessage) {
    std::string strText = "    {type = " + std::to_string(stMessage.u16Type);
    if (stMessage.u16SubType != AnySubType) {
        strText += ", subtype = " + std::to_string(stMessage.u16SubType);
    }
    strText += ", way = " + Quoted(WayOf(stMessage.eDirection)) + ", " +
               Named(stMessage.stName, stMessage.pcMeaning) + ", layout = LAYOUTS." +
               stMessage.pstLayout->stName.pcOwn +
               ", least = " + std::to_string(stMessage.stSize.u32Least) +
               ", most = " + std::to_string(stMessage.stSize.u32Most);
    if (stMessage.stSize.bAsCounted) {
        strText += ", as_counted = true";
    }
    if (stMessage.u16AnswerSubType != 0) {
        strText += ", answer = " + std::to_string(stMessage.u16AnswerSubType);
    }
    return strText + "},\n";
}

std::vector<const MessageRow *> AllMessages() {
    std::vector<const MessageRow *> apstMessages;
    for (const MessageRow &stMessage : Messages()) {
        apstMessages.push_back(&stMessage);
    }
    apstMessages.push_back(&RegisterRead());
    apstMessages.push_back(&RegisterWrite());
    return apstMessages;
}

std::string Tables() {
    Description stDescription;
    std::string strMessages;
    for (const MessageRow *pstMessage : AllMessages()) {
        stDescription.Take(*pstMessage->pstLayout);
        strMessages += MessageText(*pstMessage);
    }
    std::string strTables =
        "local CODES = {}\n" + stDescription.strCodes + "\nlocal LAYOUTS = {}\n";
    for (const Layout *pstLayout : stDescription.apstLayouts) {
        strTables += LayoutText(stDescription, *pstLayout);
    }
    return strTables + "\nlocal MESSAGES = {\n" + strMessages + "}\n";
}

std::string ContentOf(const std::filesystem::path &File) {
    std::ifstream Stream(File);
    return {std::istreambuf_iterator<char>(Stream), {}};
}

int Fail(const std::filesystem::path &File, const char *pcWhat) {
    (void)std::fprintf(stderr, "%s: %s\n", File.c_str(), pcWhat);
    return 1;
}

// The names of what a layout holds, for a walk that comes to everything. Records lie in records.
// NOLINTBEGIN(misc-no-recursion)
struct NameList {
    const MessageRow &stMessage;
    std::vector<PathStep> astPath;

    void Print(const FieldRow &stRow) const {
        const FilterName stName = FilterNameOf(stMessage, astPath, stRow);
        (void)std::printf("%.*s\n", static_cast<int>(stName.View().size()), stName.View().data());
    }

    void Enter(const FieldRow &stRow, const Layout &stLayout) {
        astPath.push_back({&stRow, &stLayout, 0});
        PrintAll(stLayout);
        astPath.pop_back();
    }

    void PrintAll(const Layout &stLayout) {
        for (const FieldRow &stRow : stLayout.astRows) {
            if (IsReserved(stRow)) {
                continue;
            }
            Print(stRow);
            if (stRow.pstRecord != nullptr) {
                Enter(stRow, *stRow.pstRecord);
            }
            for (const CaseRow &stCase : stRow.astCases) {
                if (stCase.pstLayout != nullptr) {
                    Enter(stRow, *stCase.pstLayout);
                }
            }
        }
    }
};
// NOLINTEND(misc-no-recursion)

int PrintNames() {
    for (const MessageRow *pstMessage : AllMessages()) {
        NameList{*pstMessage, {}}.PrintAll(*pstMessage->pstLayout);
    }
    return 0;
}

int WriteDissector(const std::filesystem::path &Directory, bool bCheck) {
    std::string strDissector = std::string(strOpening) + Tables();
    for (const char *pcPart : apcParts) {
        const std::string strPart = ContentOf(Directory / pcPart);
        if (strPart.empty()) {
            return Fail(Directory / pcPart, "cannot be read");
        }
        strDissector += "\n" + strPart;
    }
    const std::filesystem::path File = Directory / pcDissector;
    if (strDissector == ContentOf(File)) {
        return 0;
    }
    if (bCheck) {
        return Fail(File, "differs from what it is written from");
    }
    return std::ofstream(File) << strDissector ? 0 : Fail(File, "cannot be written");
}

} // namespace

int main(int iCount, char **ppcArguments) {
    const std::string_view strFirst = iCount >= 2 ? ppcArguments[1] : "";
    if (iCount == 2 && strFirst == "--names") {
        return PrintNames();
    }
    const bool bCheck = iCount == 3 && strFirst == "--check";
    if (iCount != 2 && !bCheck) {
        (void)std::fprintf(stderr, "usage: %s [--check] DIRECTORY\n       %s --names\n",
                           ppcArguments[0], ppcArguments[0]);
        return 2;
    }
    return WriteDissector(ppcArguments[iCount - 1], bCheck);
}

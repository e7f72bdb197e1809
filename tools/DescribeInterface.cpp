// Writes the tables of the pages about the modem's interface from the catalogue:
//
//     DescribeInterface [--check] DIRECTORY
//
// In every page there, what stands between the line `<!-- layout NAME... -->` (or
// `<!-- messages TYPE... -->`) and the line `<!-- end -->` is replaced. With
// --check nothing is written; a page that would change is an error, as is a
// layout or a message that no page has a table of.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "Catalogue.h"

namespace {

constexpr std::string_view strOpening = "<!-- ";
constexpr std::string_view strClosing = "-->";
constexpr std::string_view strEnd = "<!-- end -->";

// What the pages are written from, and what of it they have had so far.
struct Description {
    std::set<const Layout *> astLayouts;
    std::set<const Layout *> astDone;
    std::set<const MessageRow *> astMessagesDone;
};

// Records lie in records. NOLINTNEXTLINE(misc-no-recursion)
void Collect(const Layout &stLayout, std::set<const Layout *> *pastLayouts) {
    pastLayouts->insert(&stLayout);
    for (const FieldRow &stRow : stLayout.astRows) {
        if (stRow.pstRecord != nullptr) {
            Collect(*stRow.pstRecord, pastLayouts);
        }
        for (const CaseRow &stCase : stRow.astCases) {
            if (stCase.pstLayout != nullptr) {
                Collect(*stCase.pstLayout, pastLayouts);
            }
        }
    }
}

bool HasFields(const Layout &stLayout) {
    return std::ranges::any_of(stLayout.astRows,
                               [](const FieldRow &stRow) { return !IsReserved(stRow); });
}

Description WholeInterface() {
    Description stDescription;
    for (const MessageRow &stMessage : Messages()) {
        Collect(*stMessage.pstLayout, &stDescription.astLayouts);
    }
    Collect(*RegisterRead().pstLayout, &stDescription.astLayouts);
    std::erase_if(stDescription.astLayouts,
                  [](const Layout *pstLayout) { return !HasFields(*pstLayout); });
    return stDescription;
}

std::string WidthText(const FieldRow &stRow) {
    std::string strSize = std::to_string(ElementSize(stRow));
    if (IsRun(stRow)) {
        return stRow.u16Count != 0 ? std::to_string(stRow.u16Count) : "n";
    }
    if (stRow.u16Count == 0) {
        return "n x " + strSize;
    }
    if (stRow.u16Count != 1) {
        strSize = std::to_string(stRow.u16Count) + " x " + strSize;
    }
    return strSize +
           (stRow.pstRecord == nullptr && IsSigned(stRow.stField.eType) ? ", signed" : "");
}

// The name of the field that lies there.
std::string_view NameAt(const Layout &stLayout, Field stField) {
    for (const FieldRow &stRow : stLayout.astRows) {
        if (stRow.stField.u16Offset == stField.u16Offset && !IsReserved(stRow)) {
            return stRow.stName.pcOwn;
        }
    }
    return {};
}

std::string UnitText(const FieldRow &stRow) {
    const std::string strUnit = stRow.pcUnit;
    if (stRow.u32Divisor != 1) {
        return ", 1/" + std::to_string(stRow.u32Divisor) + (strUnit.empty() ? "" : " " + strUnit);
    }
    return strUnit.empty() ? "" : ", " + strUnit;
}

std::string MeaningText(const Layout &stLayout, const FieldRow &stRow) {
    if (IsReserved(stRow)) {
        return "reserved";
    }
    std::string strText = stRow.pcMeaning + UnitText(stRow);
    if (stRow.pstRecord != nullptr) {
        strText += std::string(": `") + stRow.pstRecord->stName.pcOwn + "`";
    }
    if (stRow.stCounter.eType != FieldType::None) {
        strText += "; as many " + std::string(IsRun(stRow) || stRow.bCountsBytes ? "bytes " : "") +
                   "as `" + std::string(NameAt(stLayout, stRow.stCounter)) + "` says";
    }
    constexpr const char *apcGuards[] = {"", " (identity)", " (secret)"};
    return strText + apcGuards[static_cast<uint8_t>(stRow.eGuard)];
}

// One layout, or several with their names before their fields.
std::string LayoutTable(const std::vector<const Layout *> &apstLayouts) {
    const bool bSeveral = apstLayouts.size() > 1;
    std::string strTable = bSeveral
                               ? "| Layout | Offset | Name | Width | |\n|---|---|---|---|---|\n"
                               : "| Offset | Name | Width | |\n|---|---|---|---|\n";
    for (const Layout *pstLayout : apstLayouts) {
        std::string strFirst = bSeveral ? "| `" + std::string(pstLayout->stName.pcOwn) + "` " : "";
        for (const FieldRow &stRow : pstLayout->astRows) {
            strTable += strFirst + "| " + std::to_string(stRow.stField.u16Offset) + " | " +
                        (IsReserved(stRow) ? "" : "`" + std::string(stRow.stName.pcOwn) + "` ") +
                        "| " + WidthText(stRow) + " | " + MeaningText(*pstLayout, stRow) + " |\n";
            strFirst = bSeveral ? "| " : "";
        }
    }
    return strTable;
}

std::string SizeText(const SizeRule &stSize) {
    return stSize.u32Least == stSize.u32Most
               ? std::to_string(stSize.u32Least)
               : (stSize.u32Least == 0 ? "any" : std::to_string(stSize.u32Least) + " and more");
}

std::string MessageLine(const MessageRow &stMessage) {
    constexpr const char *apcDirections[] = {"request", "written back", "answer", "indication"};
    const std::string strSubType =
        stMessage.u16SubType == AnySubType ? "any" : std::to_string(stMessage.u16SubType);
    return "| " + std::to_string(stMessage.u16Type) + " | " + strSubType + " | " +
           apcDirections[static_cast<uint8_t>(stMessage.eDirection)] + " | `" +
           stMessage.stName.pcOwn + "` | " + SizeText(stMessage.stSize) + " | " +
           (HasFields(*stMessage.pstLayout)
                ? "`" + std::string(stMessage.pstLayout->stName.pcOwn) + "` "
                : "") +
           "| " + stMessage.pcMeaning + " |\n";
}

std::string LayoutTableFor(std::istringstream &stNames, Description *pstDescription) {
    std::vector<const Layout *> apstLayouts;
    for (std::string strName; stNames >> strName && strName != strClosing;) {
        const auto Place =
            std::ranges::find_if(pstDescription->astLayouts, [&](const Layout *pstLayout) {
                return strName == pstLayout->stName.pcOwn;
            });
        if (Place == pstDescription->astLayouts.end()) {
            return {};
        }
        pstDescription->astDone.insert(*Place);
        apstLayouts.push_back(*Place);
    }
    return LayoutTable(apstLayouts);
}

std::string MessageTableFor(std::istringstream &stTypes, Description *pstDescription) {
    std::string strTable = "| Type | Subtype | | Name | Payload | Layout | |\n"
                           "|---|---|---|---|---|---|---|\n";
    for (uint32_t u32Type = 0; stTypes >> u32Type;) {
        for (const MessageRow &stMessage : Messages()) {
            if (stMessage.u16Type == u32Type) {
                pstDescription->astMessagesDone.insert(&stMessage);
                strTable += MessageLine(stMessage);
            }
        }
    }
    return strTable;
}

// The table that the words of a marker ask for; empty when they ask for none.
std::string TableFor(const std::string &strMarker, Description *pstDescription) {
    std::istringstream stWords(strMarker);
    std::string strKind;
    stWords >> strKind;
    return strKind == "layout"     ? LayoutTableFor(stWords, pstDescription)
           : strKind == "messages" ? MessageTableFor(stWords, pstDescription)
                                   : std::string();
}

// The page with its tables as they ought to be; says what it does not understand.
std::string Rewritten(const std::filesystem::path &Page, const std::string &strOld,
                      Description *pstDescription, bool *pbWrong) {
    std::istringstream stLines(strOld);
    std::string strNew;
    bool bInTable = false;
    for (std::string strLine; std::getline(stLines, strLine);) {
        bInTable = bInTable && strLine != strEnd;
        if (bInTable) {
            continue;
        }
        strNew += strLine + "\n";
        if (strLine.starts_with(strOpening) && strLine != strEnd) {
            const std::string strTable =
                TableFor(strLine.substr(strOpening.size()), pstDescription);
            if (strTable.empty()) {
                std::cerr << Page.string() << ": no such table: " << strLine << "\n";
                *pbWrong = true;
            }
            strNew += strTable;
            bInTable = true;
        }
    }
    return strNew;
}

std::string ContentOf(const std::filesystem::path &Page) {
    std::ifstream File(Page);
    return {std::istreambuf_iterator<char>(File), {}};
}

void DescribePage(const std::filesystem::path &Page, bool bCheck, Description *pstDescription,
                  bool *pbWrong) {
    const std::string strOld = ContentOf(Page);
    const std::string strNew = Rewritten(Page, strOld, pstDescription, pbWrong);
    if (strNew == strOld) {
        return;
    }
    if (bCheck) {
        std::cerr << Page.string() << ": differs from the catalogue\n";
        *pbWrong = true;
    } else if (!(std::ofstream(Page) << strNew)) {
        std::cerr << Page.string() << ": cannot be written\n";
        *pbWrong = true;
    }
}

void ReportMissing(const Description &stDescription, bool *pbWrong) {
    for (const Layout *pstLayout : stDescription.astLayouts) {
        if (!stDescription.astDone.contains(pstLayout)) {
            std::cerr << "no page has the layout " << pstLayout->stName.pcOwn << "\n";
            *pbWrong = true;
        }
    }
    for (const MessageRow &stMessage : Messages()) {
        if (!stDescription.astMessagesDone.contains(&stMessage)) {
            std::cerr << "no page has the message " << stMessage.stName.pcOwn << "\n";
            *pbWrong = true;
        }
    }
}

} // namespace

int main(int iCount, char **ppcArguments) {
    const bool bCheck = iCount == 3 && std::string_view(ppcArguments[1]) == "--check";
    if (iCount != 2 && !bCheck) {
        std::cerr << "usage: " << ppcArguments[0] << " [--check] DIRECTORY\n";
        return 2;
    }
    Description stDescription = WholeInterface();
    bool bWrong = false;
    for (const auto &Entry : std::filesystem::directory_iterator(ppcArguments[iCount - 1])) {
        if (Entry.path().extension() == ".md") {
            DescribePage(Entry.path(), bCheck, &stDescription, &bWrong);
        }
    }
    ReportMissing(stDescription, &bWrong);
    return bWrong ? 1 : 0;
}

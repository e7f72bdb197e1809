#include "Screen.h"

namespace {

// What stands in the outermost object, and the rows of its lists.
constexpr int iPartDepth = 1;
constexpr int iRowDepth = 3;

} // namespace

std::string ScreenOf(std::string_view strState) {
    std::string strScreen;
    int iDepth = 0;
    bool bText = false;
    char cBefore = 0;
    for (const char cChar : strState) {
        if (cChar == '"') {
            bText = !bText;
            continue;
        }
        if (bText) {
            strScreen += cChar;
            continue;
        }
        if (cChar == '{' || cChar == '[') {
            ++iDepth;
            strScreen += cChar == '{' && iDepth == iRowDepth ? "\n  " : "";
        } else if (cChar == '}' || cChar == ']') {
            --iDepth;
        } else if (cChar == ':') {
            strScreen += iDepth == iPartDepth ? ": " : " ";
        } else if (cChar == ',' && iDepth == iPartDepth) {
            strScreen += '\n';
        } else if (cChar == ',') {
            strScreen += cBefore == '}' ? "" : "  ";
        } else {
            strScreen += cChar;
        }
        cBefore = cChar;
    }
    return strScreen + "\n";
}

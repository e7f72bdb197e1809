// Bytes as tests write them, in any text; and any bytes written as text are the
// same when they are read again.
#include <cstdlib>

#include "Bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    std::string strWrong;
    const std::string_view strText(reinterpret_cast<const char *>(pucBytes), uCount);
    // Repeats of repeats are a matter of patience.
    if (strText.find('*') == std::string_view::npos || uCount < 64) {
        ParseBytes(strText, &strWrong);
    }
    const Bytes aucBytes(pucBytes, pucBytes + uCount);
    for (const std::string &strWritten :
         {FormatBytes(pucBytes, uCount), FormatMessage(pucBytes, uCount)}) {
        if (ParseBytes(strWritten, &strWrong) != aucBytes) {
            std::abort();
        }
    }
    return 0;
}

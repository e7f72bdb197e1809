#include "MIBRequests.h"

#include "Console.h"
#include "Message.h"

namespace {

constexpr int32_t iMRUTableEmpty = -76;

} // namespace

int32_t SendMIBGetRequest(ByteView stRecord) {
    const int32_t iResult =
        SendRequest(TYPE_MIB, SUBTYPE_MIB_GET, stRecord.From(0, MIBRecord::Size));
    if (iResult == iMRUTableEmpty &&
        Get(stRecord, MIBRecord::AttributeID) == MIBAttribute::MRUTable) {
        PutText("MRU TABLE is EMPTY");
    } else if (iResult < 0) {
        PutFormat("Error Code Returned : [%d]\n", iResult);
    }
    return 0;
}

#include "EEPROMTest.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include "Authentication.h"
#include "Console.h"
#include "HexDump.h"
#include "Message.h"
#include "VendorSpecificMessageApp.h"
#include "VendorSpecificParameters.h"

FILE *gpEEPROMLogFile = nullptr;

namespace {

constexpr const char *pcLogFile = "EEPROMTestLog.txt";
constexpr const char *pcRoundRule =
    "\r\n==================================================================================";

// Two data bytes; the request for them, and the write, go out with one.
constexpr uint32_t u32ATRLockSize = VendorRegion::ATRLock.u16Size;
using ATRLockRecord = Record<VendorParameter::Data + u32ATRLockSize>;

ATRLockRecord BuildATRLockRecord() {
    ATRLockRecord stRecord;
    Put(stRecord.Span(), VendorParameter::Offset, VendorRegion::ATRLock.u16Offset);
    Put(stRecord.Span(), VendorParameter::DataSize, u32ATRLockSize);
    return stRecord;
}

void SendATRLock(uint32_t u32SubType, const ATRLockRecord &stRecord) {
    SendRequest(TYPE_VENDOR_SPECIFIC, u32SubType, stRecord.View().From(0, VendorParameter::Size));
}

// 0 to 254, drawn from the C library's generator.
void PutRandomBytes(ByteSpan stBytes) {
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        // NOLINTNEXTLINE(cert-msc50-cpp): a test pattern, no secret
        stBytes.Set(i, static_cast<uint8_t>(std::rand() % 255));
    }
}

// Flushed each time, so that a kill loses nothing. A log that cannot be written
// does not stop the test.
void WriteLog(std::string_view strText) {
    (void)std::fwrite(strText.data(), 1, strText.size(), gpEEPROMLogFile);
    (void)std::fflush(gpEEPROMLogFile);
}

void DumpView(const char *pcTitle, ByteView stBytes) {
    EEPROMTestLog_Dump(pcTitle, stBytes.pucData, static_cast<int32_t>(stBytes.u32Length));
}

// How one of the three items is logged.
struct Item {
    const char *pcHeading;
    const char *pcMismatch;
    const char *pcWrittenTitle;
    const char *pcReadTitle;
};

constexpr Item stPseudonymItem = {"\r\n\r\n PSEUDONYM ID : ", "MISMATCH !!!",
                                  "PSEUDONYM ID - Written", "PSEUDONYM ID - Read"};
constexpr Item stSQNMSItem = {"\r\n\r\n SQNMS ID : ", "MISMATCH !!!\r\n", "SQNMS ID - Written",
                              "SQNMS ID - Read"};
constexpr Item stATRLockItem = {"\r\n\r\n ATR LOCK : ", "MISMATCH !!!\r\n", "ATR LOCK - Written",
                                "ATR LOCK - Read"};

// stShown is what a mismatch shows as written.
void Compare(const Item &stItem, ByteView stWritten, ByteView stRead, ByteView stShown) {
    EEPROMTestLog("%s", stItem.pcHeading);
    if (SameBytes(stWritten, stRead)) {
        EEPROMTestLog("MATCH");
        return;
    }
    EEPROMTestLog("%s", stItem.pcMismatch);
    DumpView(stItem.pcWrittenTitle, stShown);
    DumpView(stItem.pcReadTitle, stRead);
}

void RunRound(uint64_t u64Round) {
    using namespace AuthParamWrite;
    Record<Size> stWrite;
    Put(stWrite.Span(), Method, AuthMethod::EAPAKA);
    Put(stWrite.Span(), DataLength, DataSize);
    PutRandomBytes(stWrite.Span().From(Data, DataSize));
    SendRequest(TYPE_AUTHENTICATION, SUBTYPE_AUTH_PARAM_WRITE, stWrite.View());

    ATRLockRecord stLock = BuildATRLockRecord();
    PutRandomBytes(stLock.Span().From(VendorParameter::Data));
    SendATRLock(SUBTYPE_VSA_WRITE, stLock);

    Record<AuthParamRead::Size> stRead;
    Put(stRead.Span(), AuthParamRead::Method, AuthMethod::EAPAKA);
    SendRequest(TYPE_AUTHENTICATION, SUBTYPE_AUTH_PARAM_READ, stRead.View());

    EEPROMTestLog("\r\n\r\n\r\n\t\t Test - %" PRIu64, u64Round);
    EEPROMTestLog("%s", pcRoundRule);
    const ByteView stPseudonym = stWrite.View().From(Pseudonym, u32PseudonymSize);
    Compare(stPseudonymItem, stPseudonym, gaucRespSEC_SNYMID_ID.Load().View(), stPseudonym);
    const ByteView stSQNMS = stWrite.View().From(SQNMS, u32SQNMSSize);
    Compare(stSQNMSItem, stSQNMS, gaucRespSEC_SQNMS_ID.Load().View(), stSQNMS);

    SendATRLock(SUBTYPE_VSA_READ, BuildATRLockRecord());
    // Shown as written are the two bytes that end the authentication data.
    Compare(stATRLockItem, stLock.View().From(VendorParameter::Data), gaucRespATRLock.Load().View(),
            stWrite.View().From(Tail, TailSize));
}

// Closes the log also when the client ends in the middle of the test.
struct OpenLog {
    OpenLog() { Init_EEPROMTestLog(pcLogFile); }
    ~OpenLog() { Close_EEPROMTestLog(); }
    OpenLog(const OpenLog &) = delete;
    OpenLog &operator=(const OpenLog &) = delete;
};

} // namespace

int32_t EEPROMTest() {
    // NOLINTNEXTLINE(cert-msc51-cpp): a test pattern, no secret
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    const OpenLog stLog;
    for (uint64_t u64Round = 1; MyKbHit() == 0; ++u64Round) {
        RunRound(u64Round);
        FlushOutput();
        EndIfSignalled();
    }
    return 0;
}

void Init_EEPROMTestLog(const char *pcPath) {
    if (pcPath != nullptr) {
        gpEEPROMLogFile = std::fopen(pcPath, "a+");
    }
}

void Close_EEPROMTestLog() {
    if (gpEEPROMLogFile != nullptr) {
        (void)std::fclose(gpEEPROMLogFile);
        gpEEPROMLogFile = nullptr;
    }
}

void EEPROMTestLog(const char *pcFormat, ...) {
    if (gpEEPROMLogFile == nullptr) {
        return;
    }
    char acText[2048] = {};
    va_list stArguments;
    va_start(stArguments, pcFormat);
    (void)std::vsnprintf(acText, sizeof acText, pcFormat, stArguments);
    va_end(stArguments);
    WriteLog(acText);
    PutText(acText);
}

int32_t EEPROMTestLog_Dump(const char *pcTitle, const uint8_t *pucData, int32_t iLength) {
    if (gpEEPROMLogFile == nullptr || pucData == nullptr || iLength <= 0) {
        return 0;
    }
    WriteLog(std::string("\r\n================= ") + pcTitle + " =================\r\n");
    std::string strLines;
    AppendHexLines(strLines, "\r\n  %08x : ", 0, "%02x ",
                   {pucData, static_cast<uint32_t>(iLength)});
    WriteLog(strLines);
    WriteLog("\r\n================================================\r\n");
    return 0;
}

#include "EEPROMTest.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "Authentication.h"
#include "Console.h"
#include "Descriptors.h"
#include "HexDump.h"
#include "Message.h"
#include "Scan.h"
#include "VendorSpecificMessageApp.h"
#include "VendorSpecificParameters.h"

FILE *gpEEPROMLogFile = nullptr;

namespace {

constexpr const char *pcLogFile = "EEPROMTestLog.txt";
constexpr const char *pcRoundRule =
    "\r\n==================================================================================";

// Two data bytes; the request for them, and the write, go out with one.
constexpr uint32_t u32ATRLockSize = VendorRegion::ATRLock.u16Size;
using ATRLockRecord = Record<VendorParameter::aucData + u32ATRLockSize>;

ATRLockRecord BuildATRLockRecord() {
    ATRLockRecord stRecord;
    Put(stRecord.Span(), VendorParameter::u16Offset, VendorRegion::ATRLock.u16Offset);
    Put(stRecord.Span(), VendorParameter::u16DataSize, u32ATRLockSize);
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

// What the log has lost: a full disk, say. It is said once, and what comes next
// begins a new line.
bool gbLogTorn = false;
bool gbLossSaid = false;

void SayLogLoss(const char *pcWhat) {
    char acLine[160];
    const int iLength =
        std::snprintf(acLine, sizeof acLine, "%s: %s: %s", pcLogFile, std::strerror(errno), pcWhat);
    Complain({acLine, static_cast<size_t>(std::max(iLength, 0))});
}

bool WriteLogPiece(std::string_view strText) {
    return std::fwrite(strText.data(), 1, strText.size(), gpEEPROMLogFile) == strText.size();
}

// The stream has no buffer, so that a kill loses nothing. A log that cannot be
// written does not stop the test.
void WriteLog(std::string_view strText) {
    if ((!gbLogTorn || WriteLogPiece("\r\n")) && WriteLogPiece(strText)) {
        gbLogTorn = false;
        return;
    }
    gbLogTorn = true;
    if (!gbLossSaid) {
        gbLossSaid = true;
        SayLogLoss("a part of the log is lost");
    }
    std::clearerr(gpEEPROMLogFile);
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
    Put(stWrite.Span(), u8Method, AuthMethod::EAPAKA);
    Put(stWrite.Span(), u8DataLength, DataSize);
    PutRandomBytes(stWrite.Span().From(aucData, DataSize));
    SendRequest(TYPE_AUTHENTICATION, SUBTYPE_AUTH_PARAM_WRITE, stWrite.View());

    ATRLockRecord stLock = BuildATRLockRecord();
    PutRandomBytes(stLock.Span().From(VendorParameter::aucData));
    SendATRLock(SUBTYPE_VSA_WRITE, stLock);

    Record<AuthParamRead::Size> stRead;
    Put(stRead.Span(), AuthParamRead::u8Method, AuthMethod::EAPAKA);
    SendRequest(TYPE_AUTHENTICATION, SUBTYPE_AUTH_PARAM_READ, stRead.View());

    EEPROMTestLog("\r\n\r\n\r\n\t\t Test - %" PRIu64, u64Round);
    EEPROMTestLog("%s", pcRoundRule);
    const ByteView stPseudonym = stWrite.View().From(aucPseudonym, u32PseudonymSize);
    Compare(stPseudonymItem, stPseudonym, gaucRespSEC_SNYMID_ID.Load().View(), stPseudonym);
    const ByteView stSQNMS = stWrite.View().From(aucSQNMS, u32SQNMSSize);
    Compare(stSQNMSItem, stSQNMS, gaucRespSEC_SQNMS_ID.Load().View(), stSQNMS);

    SendATRLock(SUBTYPE_VSA_READ, BuildATRLockRecord());
    // Shown as written are the two bytes that end the authentication data.
    Compare(stATRLockItem, stLock.View().From(VendorParameter::aucData),
            gaucRespATRLock.Load().View(), stWrite.View().From(aucTail, TailSize));
}

// Closes the log also when the client ends in the middle of the test.
struct OpenLog {
    OpenLog() {
        Init_EEPROMTestLog(pcLogFile);
        if (gpEEPROMLogFile == nullptr) {
            SayLogLoss("nothing is logged");
        }
    }
    ~OpenLog() { Close_EEPROMTestLog(); }
    OpenLog(const OpenLog &) = delete;
    OpenLog &operator=(const OpenLog &) = delete;
};

// Blanks behind the choice, as far as its line goes, are no key.
struct KeyWatch {
    bool bOnChoiceLine = PushedBackInputChar() != '\n' && IsSpace(PushedBackInputChar());

    bool IsPressed() {
        while (bOnChoiceLine) {
            const int iChar = TakeInputChar();
            if (iChar == iNoInputChar) {
                return false;
            }
            bOnChoiceLine = iChar != '\n';
            if (!IsSpace(iChar)) {
                PushBackInputChar(iChar);
                return true;
            }
        }
        return MyKbHit() != 0;
    }
};

} // namespace

int32_t EEPROMTest() {
    // NOLINTNEXTLINE(cert-msc51-cpp): a test pattern, no secret
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    const OpenLog stLog;
    KeyWatch stKeys;
    for (uint64_t u64Round = 1; !stKeys.IsPressed(); ++u64Round) {
        RunRound(u64Round);
        FlushOutput();
        LookAtOutput();
        EndIfTold();
    }
    return 0;
}

void Init_EEPROMTestLog(const char *pcPath) {
    if (pcPath != nullptr) {
        gpEEPROMLogFile = std::fopen(pcPath, "a+");
    }
    if (gpEEPROMLogFile != nullptr) {
        (void)std::setvbuf(gpEEPROMLogFile, nullptr, _IONBF, 0);
        gbLogTorn = false;
        gbLossSaid = false;
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
    WriteLog("\r\n================= ");
    WriteLog(pcTitle);
    WriteLog(" =================\r\n");
    const ByteView stBytes{pucData, static_cast<uint32_t>(iLength)};
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32BytesALine) {
        char acLine[uMostHexLine];
        const char *pcEnd =
            WriteHexLine(acLine, "\r\n  %08x : ", i, "%02x ", stBytes.From(i, u32BytesALine));
        WriteLog({acLine, static_cast<size_t>(pcEnd - acLine)});
    }
    WriteLog("\r\n================================================\r\n");
    return 0;
}

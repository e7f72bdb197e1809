#include "OMADM.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string_view>

#include "Console.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"
#include "SecurityParameters.h"

namespace {

// The interface version that this application is written for.
constexpr uint32_t u32MajorVersion = 3;
constexpr uint32_t u32MinorVersion = 0;

constexpr const char *pcTreeFile = "./OMADMTreeData.bin";
constexpr uint32_t u32TreeImageVersion = 1;

// How many bytes more than it carries an overflow test claims to carry.
constexpr uint32_t u32Excess = 12;

constexpr const char *pcNoSize = "\nError in getting the param size !!!";
constexpr const char *pcGetFailed =
    "\nGetting the parameter is NOT successful. Return Value : [%d]\n";
constexpr const char *pcErrorReceived = "\nError Received as: [%d]\n";
constexpr const char *pcNotChecked = "\nOut of bound array read is not checked !!!";

constexpr const char *apcOMADMMenuLines[] = {
    "\n 1. OMA DM Get Version info",         "\n 2. OMA DM Few Tests Menu",
    "\n 3. Security Parameter GET REQUEST",  "\n 4. Security Parameter SET REQUEST",
    "\n 5. Security Parameter Size REQUEST", "\n 6. IMEI Read request",
    "\n 7. OMADM tree update API test",      "\n-1. GO TO MAIN MENU",
};

constexpr Menu stOMADMMenu = {"\n\n*********** OMA DM/Security Request ***********",
                              apcOMADMMenuLines, "\n\n******************************"};

void GetNetworkParameters() {
    OMADMGetNetworkParameterNode();
    OMADMGetNetworkParameterNode2();
}

struct TestEntry {
    const char *pcText;
    void (*pfnRun)();
};

constexpr TestEntry astTests[] = {
    {"\n 1. Run Non Array Value Test ", OMADMGetSetNonArrayValueTest},
    {"\n 2. Run Non Array Value with Array value in the path Test",
     OMADMSetGetNonArrayValueWithArrayValueInpath},
    {"\n 3. Run Get Network parameters ", GetNetworkParameters},
    {"\n 4. Run Write Overflow protection Test", OMADMWriteOverflowProtectionTest},
    {"\n 5. Run read overflow protection Test", OMADMReadOverflowProtectionTest},
    {"\n 6. Run MAC address read test", OMADMGetMACAddress},
};

constexpr OMADMNode astNonArrayPath[] = {{8, 1, 0}, {1, 38, 0}, {1, 39, 0}};
constexpr OMADMNode astBehindArrayPath[] = {{7, 1, 0},  {1, 18, 0}, {1, 19, 0}, {2, 20, 0},
                                            {1, 22, 0}, {3, 23, 4}, {1, 24, 0}};
constexpr OMADMNode astNetworkPath[] = {{7, 1, 0}, {1, 18, 0}, {1, 19, 0}};
constexpr OMADMNode astOperatorPath[] = {{7, 1, 0}, {1, 18, 0}, {1, 29, 0}, {3, 30, 0}};
constexpr OMADMNode astFirstElementPath[] = {{4, 1, 0}, {8, 3, 0}};
constexpr OMADMNode astSecondElementPath[] = {{4, 1, 0}, {8, 3, 1}};
constexpr OMADMNode astMACAddressPath[] = {{6, 1, 0}, {1, 10, 0}, {6, 11, 0}};
constexpr OMADMNode astOverflowPath[] = {{3, 1, 0}};
constexpr OMADMNode astPastTheEndPath[] = {{4, 1, 5}, {3, 3, 0}};

void PutPath(ByteSpan stRecord, uint32_t u32Offset, Field stCount, OMADMNodes astPath) {
    using namespace OMADMElement;
    astPath = astPath.first(std::min<size_t>(astPath.size(), OMADMPath::MaxElements));
    for (const OMADMNode &stNode : astPath) {
        Put(stRecord, u8Class, stNode.u8Class, u32Offset);
        Put(stRecord, u8Number, stNode.u8Number, u32Offset);
        Put(stRecord, u32Index, stNode.u32Index, u32Offset);
        u32Offset += Size;
    }
    Put(stRecord, stCount, static_cast<uint32_t>(astPath.size()));
}

// Bytes in lines of eight, each line with its own beginning.
void PutDump(ByteView stBytes, const char *pcLineBegin) {
    constexpr uint32_t u32LineSize = 8;
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32LineSize) {
        PutText(pcLineBegin);
        PutEachByte(" 0x%02x", stBytes.From(i, u32LineSize));
    }
}

// A node and the size of its value; 0 when that is unknown or no message holds
// such a value.
struct SizedNode {
    OMADMNodes astPath;
    uint32_t u32Size;
};

SizedNode AskSize(OMADMNodes astPath, const char *pcFailure = pcNoSize) {
    uint32_t u32Size = GetOMADMParameterSize(astPath);
    if (u32Size == 0 || u32Size > OMADMParameter::MaxValueSize) {
        PutText(pcFailure);
        u32Size = 0;
    }
    return {astPath, u32Size};
}

// Reads or writes the node. The message carries as many value bytes as the node
// has, stValue (never longer) and zeroes; u32ClaimedMore are claimed on top. The answer is left in
// *pstMessage.
int32_t AccessNode(WiMAXMessage *pstMessage, uint32_t u32SubType, const SizedNode &stNode,
                   ByteView stValue = {}, uint32_t u32ClaimedMore = 0) {
    using namespace OMADMParameter;
    const uint32_t u32Length =
        FillWiMAXMsg(pstMessage, TYPE_OMADM, u32SubType, Size + stNode.u32Size);
    const ByteSpan stPayload = PayloadOf(*pstMessage);
    Put(stPayload, u32ValueSize, stNode.u32Size + u32ClaimedMore);
    PutPath(stPayload, astPath, u32NumElements, stNode.astPath);
    PutBytes(stPayload, aucValue, stValue);
    return SendMessage(pstMessage, u32Length);
}

// A test that writes a value and reads it back: the value (cut to the node's
// size, or filled up with zeroes), and what is printed when it came back and
// when it did not.
struct SetAndReadTest {
    OMADMNodes astPath;
    uint8_t aucValue[4];
    const char *pcSame;
    const char *pcDifferent;
};

void Run(const SetAndReadTest &stTest) {
    using namespace OMADMParameter;
    const SizedNode stNode = AskSize(stTest.astPath);
    if (stNode.u32Size == 0) {
        return;
    }
    Record<MaxValueSize> stValue;
    PutBytes(stValue.Span(), 0, {stTest.aucValue, sizeof stTest.aucValue});
    const ByteView stWritten = stValue.View().From(0, stNode.u32Size);
    WiMAXMessage stMessage;
    int32_t iResult = AccessNode(&stMessage, SUBTYPE_OMADM_SET, stNode, stWritten);
    if (iResult != 0) {
        PutFormat("\nSetting the parameter size was NOT successful. Return Value  %d", iResult);
        return;
    }
    PutText("\nSetting the parameter Successful ");
    iResult = AccessNode(&stMessage, SUBTYPE_OMADM_GET, stNode);
    if (iResult < 0) {
        PutFormat(pcErrorReceived, iResult);
    }
    const ByteView stRead = ByteView(PayloadOf(stMessage)).From(aucValue, stNode.u32Size);
    PutText(SameBytes(stRead, stWritten) ? stTest.pcSame : stTest.pcDifferent);
    PutDump(stRead, "\n : ");
}

// A test that only reads. Its line follows an error too.
void ReadNode(OMADMNodes astPath, const char *pcDone) {
    const SizedNode stNode = AskSize(astPath);
    if (stNode.u32Size == 0) {
        return;
    }
    WiMAXMessage stMessage;
    const int32_t iResult = AccessNode(&stMessage, SUBTYPE_OMADM_GET, stNode);
    if (iResult < 0) {
        PutFormat(pcErrorReceived, iResult);
    }
    PutText(pcDone);
}

using File = std::unique_ptr<FILE, int (*)(FILE *)>;

// Returns false when the file was not written; says why.
bool WriteTreeImage() {
    using namespace OMADMTreeImage;
    const auto pstImage = std::make_unique<Record<Size>>();
    Put(pstImage->Span(), u32Version, u32TreeImageVersion);
    Put(pstImage->Span(), u32Length, Size);
    const File pstFile(std::fopen(pcTreeFile, "w+"), std::fclose);
    if (pstFile == nullptr) {
        PutText("\nCould not creat file");
        return false;
    }
    if (std::fwrite(pstImage->aucBytes, 1, Size, pstFile.get()) != Size ||
        std::fflush(pstFile.get()) != 0) {
        PutText("\nCould not write to file");
        return false;
    }
    return true;
}

} // namespace

uint32_t GetOMADMParameterSize(OMADMNodes astPath) {
    using namespace OMADMSizeQuery;
    Record<Size> stQuery;
    PutPath(stQuery.Span(), OMADMSizeQuery::astPath, u32NumElements, astPath);
    WiMAXMessage stMessage;
    const int32_t iResult =
        SendForAnswer(&stMessage, TYPE_OMADM, SUBTYPE_OMADM_SIZE, stQuery.View());
    if (iResult != 0) {
        PutFormat("\nError Code Returned: [%d]\n", iResult);
        return static_cast<uint32_t>(iResult);
    }
    PutRow(PayloadOf(stMessage), {"\n Parameter size get returned [%d]\n", u32NodeSize});
    return Get(PayloadOf(stMessage), u32NodeSize);
}

int32_t GetOmaParam(OMADMNodes astPath, std::vector<uint8_t> *paucResult) {
    using namespace OMADMParameter;
    const SizedNode stNode = AskSize(astPath);
    if (stNode.u32Size == 0) {
        return 0;
    }
    WiMAXMessage stMessage;
    const int32_t iResult = AccessNode(&stMessage, SUBTYPE_OMADM_GET, stNode);
    if (iResult != 0) {
        PutFormat(pcGetFailed, iResult);
        return iResult;
    }
    const uint32_t u32RecordSize = aucValue + stNode.u32Size;
    paucResult->assign(stMessage.aucData, stMessage.aucData + u32RecordSize);
    paucResult->resize(Size + stNode.u32Size + u32Excess);
    return iResult;
}

int32_t SetOmaParam(ByteView stRecord) {
    using namespace OMADMParameter;
    const uint32_t u32Carried = std::min(Get(stRecord, u32ValueSize), MaxValueSize);
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_OMADM, SUBTYPE_OMADM_SET, Size + u32Carried);
    const ByteSpan stPayload = PayloadOf(stMessage);
    Put(stPayload, u32ValueSize, u32Carried);
    PutBytes(stPayload, astPath, stRecord.From(astPath, OMADMPath::Size));
    Put(stPayload, u32NumElements, Get(stRecord, u32NumElements));
    PutBytes(stPayload, aucValue, stRecord.From(aucValue, u32Carried));
    const int32_t iResult = SendMessage(&stMessage, u32Length);
    if (iResult != 0) {
        PutFormat(pcGetFailed, iResult);
    }
    return iResult;
}

int32_t SendOMADMGetRequest(ByteView stRecord) {
    Record<OMADMParameter::Size> stRequest;
    PutBytes(stRequest.Span(), 0, stRecord);
    return SendRequest(TYPE_OMADM, SUBTYPE_OMADM_GET, stRequest.View());
}

int32_t OMADMGetVersion() {
    using namespace OMADMVersion;
    Record<Size> stVersion;
    Put(stVersion.Span(), u32Major, u32MajorVersion);
    Put(stVersion.Span(), u32Minor, u32MinorVersion);
    PutRow(stVersion.View(),
           {"\n Application is using Major Ver %d and Minor Ver %d of OMA-DM API\n", u32Major});
    WiMAXMessage stMessage;
    const int32_t iResult =
        SendForAnswer(&stMessage, TYPE_OMADM, SUBTYPE_OMADM_VERSION, stVersion.View());
    if (iResult == 0) {
        PutText("Version compatibility check Successful!!");
        return iResult;
    }
    PutRow(
        PayloadOf(stMessage),
        {"\n Library is compatible with Major Ver %d and Minor Ver %d of OMA-DM API\n", u32Major});
    PutText("OMA-DM APIs are NOT compatible with the version library and Application");
    return iResult;
}

void GetIMEIData() {
    using namespace IMEIBlock;
    PutText("\n--------------IMEI data Read---------------------- ");
    const Record<Size> stRequest;
    WiMAXMessage stMessage;
    const int32_t iResult =
        SendForAnswer(&stMessage, TYPE_SECURITY, SUBTYPE_IMEI_DATA, stRequest.View());
    if (iResult != 0) {
        PutFormat("IMEI Read request returned %d\n", iResult);
        PutText("IMEI Read FAILED");
        return;
    }
    PutText("IMEI Read SUCCESS");
    PutText("\n--------------IMEI data START---------------------- ");
    PutDump(ByteView(PayloadOf(stMessage)).From(aucData, DataSize), "\n  : ");
    PutText("\n--------------IMEI data END---------------------- ");
}

void UpdateOMADMTree() {
    using namespace OMADMTreeUpdate;
    if (!WriteTreeImage()) {
        return;
    }
    Record<Size> stRequest;
    constexpr std::string_view strName = pcTreeFile;
    std::copy(strName.begin(), strName.end(), stRequest.aucBytes + acFileName);
    static_assert(strName.size() < Size);
    const int32_t iResult = SendRequest(TYPE_OMADM, SUBTYPE_OMADM_TREE_UPDATE, stRequest.View());
    if (iResult != 0) {
        PutFormat("\nError code returned is %d", iResult);
    } else {
        PutText("\nOMADM tree update is successful!!");
    }
}

void OMADMGetSetNonArrayValueTest() {
    Run({astNonArrayPath,
         {5, 0, 0, 0},
         "\nValues are same",
         "\nValues are different. Check now!!"});
}

void OMADMSetGetNonArrayValueWithArrayValueInpath() {
    Run({astBehindArrayPath, {0xA5, 0xA5, 0x5A, 0x5A}, "\nValues read back successfully ", ""});
}

void OMADMGetNetworkParameterNode() {
    ReadNode(astNetworkPath, "\nSUCCESSFULLY received Network Parameters");
}

void OMADMGetNetworkParameterNode2() {
    const OMADMNodes astPaths[] = {astOperatorPath, astOperatorPath, astFirstElementPath,
                                   astSecondElementPath, astNetworkPath};
    for (const OMADMNodes &astPath : astPaths) {
        std::vector<uint8_t> aucResult;
        GetOmaParam(astPath, &aucResult);
    }
}

void OMADMGetMACAddress() {
    ReadNode(astMACAddressPath, "\nSUCCESSFULLY received MAC address Parameters");
}

void OMADMReadOverflowProtectionTest() {
    const SizedNode stNode = AskSize(astOverflowPath);
    if (stNode.u32Size == 0) {
        return;
    }
    WiMAXMessage stMessage;
    const int32_t iResult = AccessNode(&stMessage, SUBTYPE_OMADM_GET, stNode, {}, u32Excess);
    if (iResult != 0) {
        PutFormat(pcGetFailed, iResult);
    } else {
        PutText(pcNotChecked);
    }
}

void OMADMWriteOverflowProtectionTest() {
    const SizedNode stNode = AskSize(astOverflowPath, "\nError in getting the param size");
    if (stNode.u32Size == 0) {
        return;
    }
    WiMAXMessage stMessage;
    const int32_t iResult = AccessNode(&stMessage, SUBTYPE_OMADM_SET, stNode, {}, u32Excess);
    if (iResult != 0) {
        PutFormat("\nGetting the parameter size was NOT successful. Return Value  %d", iResult);
    } else {
        PutText("\nOut of bound array read is not checked");
    }
}

void OMADMOutOfBoundArrayAccessTest() {
    const SizedNode stNode = AskSize(astPastTheEndPath);
    if (stNode.u32Size == 0) {
        return;
    }
    WiMAXMessage stMessage;
    if (AccessNode(&stMessage, SUBTYPE_OMADM_GET, stNode) == 0) {
        PutText(pcNotChecked);
    }
}

void OMADM_TestMenu() {
    for (;;) {
        PutLine("\n******** OMA-DM Testing Menu ********");
        for (const TestEntry &stTest : astTests) {
            PutText(stTest.pcText);
        }
        PutText("\n-1. Return to previous menu");
        const int32_t iChoice = AskOption(pcMenuPrompt);
        if (iChoice == iLeaveMenu) {
            return;
        }
        if (iChoice >= 1 && iChoice <= std::ssize(astTests)) {
            astTests[iChoice - 1].pfnRun();
        }
    }
}

void OMADMRequest() {
    int32_t iResult = 0; // of the last request: reported after every choice
    for (;;) {
        const int32_t iChoice = AskMenu(stOMADMMenu);
        switch (iChoice) {
        case iLeaveMenu:
            return;
        case 1:
            iResult = OMADMGetVersion();
            break;
        case 2:
            OMADM_TestMenu();
            break;
        case 3:
            iResult = SecGetRequest();
            break;
        case 4:
            iResult = SecSetRequest();
            break;
        case 5:
            iResult = SecGetParamSize();
            break;
        case 6:
            GetIMEIData();
            break;
        case 7:
            UpdateOMADMTree();
            break;
        default:
            PutText("\nSORRY! INVALID OPTION SELECTED!");
            break;
        }
        if (iResult != 0) {
            PutFormat("\n Error : %d", iResult);
        }
    }
}

#include "MIBRequests.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>
#include <vector>

#include "Console.h"
#include "Input.h"
#include "MIBTable.h"
#include "Menu.h"
#include "Message.h"

namespace {

constexpr int32_t iMRUTableEmpty = -76;
constexpr int32_t iAutomatedTest = 999; // typed in place of an ID
constexpr int32_t iGetEveryMIB = 5;     // not listed
constexpr uint32_t u32EveryMIB = 100;
constexpr uint32_t u32MaxMessages = 5;
constexpr uint32_t u32AddressSize = 6;

constexpr const char *pcNoMIBSupport = "\n BINARY DOES NOT SUPPORT MIBS";

constexpr const char *apcMIBRequestsMenuLines[] = {
    "\n 1. MIB GET REQUEST",          "\n 2. MIB SET REQUEST", "\n 3. Multiple MIB GET REQUEST",
    "\n 4. Multiple MIB SET REQUEST", "\n-1. GO TO MAIN MENU",
};

constexpr Menu stMIBRequestsMenu = {"\n\n*********** MIB Request ***********",
                                    apcMIBRequestsMenuLines, "\n\n******************************"};

// What the listed choices do, in their order.
constexpr int32_t (*apfnActions[])() = {
    MIBGetRequest,
    MIBSetRequest,
    MultipleMIBGetRequest,
    MultipleMIBSetRequest,
};

constexpr const char *apcGetIDLines[] = {
    "\nEnter the MIB ID ",
    "\n[",
    "\n  Proprietary Std MIBs 0 - 499",
    "\n  Proprietary Config MIBs 500 - 799",
    "\n  Standard Stats MIBs 800 - 1399",
    "\n  Proprietary Stats MIBs 1400 - 1699",
    "\n]",
};

// The IDs from iFirst to iLast take so many keys.
struct KeyRange {
    int32_t iFirst;
    int32_t iLast;
    uint32_t u32Keys;
};

constexpr KeyRange astSetKeys[] = {{23, 25, 1}};

// The two get dialogues agree on these, and each has one range of its own.
constexpr KeyRange astGetKeys[] = {
    {23, 25, 1}, {893, 932, 1}, {1100, 1122, 1}, {1123, 1139, 2}, {1140, 1141, 1}, {1142, 1142, 2},
};
constexpr KeyRange stSingleGetKeys = {1615, 1616, 1};
constexpr KeyRange stMultipleGetKeys = {1616, std::numeric_limits<int32_t>::max(), 1};

bool Covers(const KeyRange &stRange, int32_t iID) {
    return iID >= stRange.iFirst && iID <= stRange.iLast;
}

uint32_t KeysOf(int32_t iID, std::span<const KeyRange> astRanges, KeyRange stFurther = {0, -1, 0}) {
    for (const KeyRange &stRange : astRanges) {
        if (Covers(stRange, iID)) {
            return stRange.u32Keys;
        }
    }
    return Covers(stFurther, iID) ? stFurther.u32Keys : 0;
}

// Asks for so many keys (two at most) and stores them with their count.
void AskKeys(ByteSpan stRecord, uint32_t u32Keys) {
    constexpr Question astQuestions[] = {
        {"\n Enter the key value: ", MIBRecord::u32Key1},
        {"\n Enter the 2nd key value: ", MIBRecord::u32Key2},
    };
    Put(stRecord, MIBRecord::u8KeyCount, u32Keys);
    AskFields(stRecord, std::span(astQuestions).first(u32Keys));
}

// The record of a get request: the ID and its keys.
void AskGetRecord(ByteSpan stRecord, KeyRange stFurtherKeys) {
    PutTexts(apcGetIDLines);
    const int32_t iID = ReadOption();
    Put(stRecord, MIBRecord::u32AttributeID, static_cast<uint32_t>(iID));
    AskKeys(stRecord, KeysOf(iID, astGetKeys, stFurtherKeys));
}

uint32_t AskDataBytes() { return AskInteger("\nEnter the number of data bytes : "); }

// The multiple form states the length of a 6-byte value, the single one does not.
enum class AddressLength : uint8_t { Stated, LeftZero };

// The record of a set request for an ID below 500 with u32Bytes value bytes:
// the ID, its key and its value.
void AskStdRecord(ByteSpan stRecord, int32_t iID, uint32_t u32Bytes, AddressLength eAddress) {
    using namespace MIBRecord;
    Put(stRecord, u32AttributeID, static_cast<uint32_t>(iID));
    AskKeys(stRecord, KeysOf(iID, astSetKeys));
    if (u32Bytes == u32AddressSize) {
        Put(stRecord, u32DataLength, eAddress == AddressLength::Stated ? u32Bytes : 0);
        PutText("\nEnter the data (xx-xx-xx-xx-xx-xx): ");
        Record<u32AddressSize> stAddress;
        ReadHexBytes(stAddress.aucBytes, u32AddressSize);
        PutBytes(stRecord, aucValue, stAddress.View());
        return;
    }
    Put(stRecord, u32DataLength, u32Bytes);
    Put(stRecord, u32Bytes == WidthOf(u16ShortValue.eType) ? u16ShortValue : u32LongValue,
        AskInteger("\nEnter the data : "));
}

// The record of a set request for a configuration ID: the ID and a 4-byte value.
void AskConfigRecord(ByteSpan stRecord, int32_t iID) {
    using namespace MIBRecord;
    Put(stRecord, u32AttributeID, static_cast<uint32_t>(iID));
    Put(stRecord, u32DataLength, WidthOf(u32LongValue.eType));
    Put(stRecord, u32LongValue, AskUnsigned("\n Enter the value : "));
}

int32_t SetStdMIB(int32_t iID) {
    const uint32_t u32Bytes = AskDataBytes();
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_MIB, SUBTYPE_MIB_SET, u32Bytes + MIBRecord::Size);
    AskStdRecord(PayloadOf(stMessage), iID, u32Bytes, AddressLength::LeftZero);
    return SendMessage(&stMessage, u32Length);
}

int32_t ResetMRUTable(WiMAXMessage *pstMessage, uint32_t u32Length) {
    const int32_t iResult = SendMessage(pstMessage, u32Length);
    PutText(iResult == 0 ? "\n MRU Reset is SUCCESSFUL\n" : "\n MRU Reset is NOT SUCCESSFUL\n");
    return iResult;
}

void AskCenterFrequencyAndBandwidth(ByteSpan stRecord) {
    using namespace MIBCenterFrequency;
    const ByteSpan stValue = stRecord.From(MIBRecord::aucValue);
    Put(stRecord, MIBRecord::u32DataLength, Size);
    Put(stValue, u32CenterFrequency, AskUnsigned("\n Enter Center Frequency : "));
    Put(stValue, u32Bandwidth, AskUnsigned("\n Enter bandwidth        : "));
}

int32_t SetConfigMIB(int32_t iID) {
    WiMAXMessage stMessage;
    const uint32_t u32Length = FillWiMAXMsg(&stMessage, TYPE_MIB, SUBTYPE_MIB_SET, MIBRecord::Size);
    const ByteSpan stRecord = PayloadOf(stMessage);
    Put(stRecord, MIBRecord::u32AttributeID, static_cast<uint32_t>(iID));
    switch (iID) {
    case MIBAttribute::MRUReset:
        return ResetMRUTable(&stMessage, u32Length);
    case MIBAttribute::CenterFrequencyAndBandwidth:
        AskCenterFrequencyAndBandwidth(stRecord);
        return SendMessage(&stMessage, u32Length + MIBCenterFrequency::Size);
    default:
        // The length stays that of one value byte.
        AskConfigRecord(stRecord, iID);
        return SendMessage(&stMessage, u32Length);
    }
}

// Keys are sent with a key count of 0: the modem takes the automated writes so.
void SendAutomatedWrites() {
    using namespace MIBRecord;
    for (const MIBParam &stParam : MIBParams2Write) {
        Record<Size + sizeof stParam.aucValue> stRecord;
        Put(stRecord.Span(), u32AttributeID, stParam.u32AttributeID);
        Put(stRecord.Span(), u32Key1, stParam.u32Key);
        Put(stRecord.Span(), u32DataLength, stParam.u32Size);
        PutBytes(stRecord.Span(), aucValue, {stParam.aucValue, stParam.u32Size});
        SendRequest(TYPE_MIB, SUBTYPE_MIB_SET, stRecord.View().From(0, stParam.u32Size + Size));
    }
}

// Reads the attributes from 0 on, without keys.
void GetEveryMIB() {
    Record<MIBRecord::Size> stRecord;
    for (uint32_t u32ID = 0; u32ID < u32EveryMIB; ++u32ID) {
        Put(stRecord.Span(), MIBRecord::u32AttributeID, u32ID);
        SendMIBGetRequest(stRecord.View());
    }
}

// A message of several records.
struct MIBMessage {
    WiMAXMessage stMessage = {};
    uint32_t u32Used = MIBRecordList::astRecords; // payload bytes
    uint32_t u32Records = 0;
};

enum class OnNoMIBSupport : uint8_t { GoOn, Stop };

// What a multiple dialogue has filled and not yet sent.
struct MIBMessages {
    uint32_t u32SubType;
    OnNoMIBSupport eOnNoMIBSupport;
    std::vector<MIBMessage> astMessages = {};
    bool bOpen = false; // the last one takes further records
};

// The most that one record can take of a message.
constexpr uint32_t u32MaxRecord = WIMAX_DATA_SIZE - MIBRecordList::astRecords;

bool HasRoomFor(const MIBMessage &stMessage, uint32_t u32Length) {
    return stMessage.u32Used + u32Length <= WIMAX_DATA_SIZE;
}

// Sends the messages in order and forgets them. Returns 0, or -27 when the
// library refused one so and the dialogue stops at that: the rest stays unsent.
int32_t SendMessages(MIBMessages &stMessages) {
    std::vector<MIBMessage> astMessages;
    astMessages.swap(stMessages.astMessages);
    stMessages.bOpen = false;
    for (MIBMessage &stMessage : astMessages) {
        gbInsideSubMenu = 0;
        const int32_t iResult =
            SendMessage(&stMessage.stMessage, stMessage.u32Used + MessageHeader::Size);
        if (iResult == iNoMIBSupport && stMessages.eOnNoMIBSupport == OnNoMIBSupport::Stop) {
            PutText(pcNoMIBSupport);
            return iResult;
        }
    }
    return 0;
}

void OpenMessage(MIBMessages &stMessages) {
    const ByteSpan stBytes = BytesOf(stMessages.astMessages.emplace_back().stMessage);
    Put(stBytes, MessageHeader::usType, TYPE_MIB);
    Put(stBytes, MessageHeader::usSubType, stMessages.u32SubType);
    stMessages.bOpen = true;
}

// Adds a record that takes u32Length bytes of a message, stRecord the first of
// them and zeroes the rest. Sends the full table's messages before it opens
// another one; returns the result of that, else 0.
int32_t AddRecord(MIBMessages &stMessages, ByteView stRecord, uint32_t u32Length) {
    if (!stMessages.bOpen || !HasRoomFor(stMessages.astMessages.back(), u32Length)) {
        if (stMessages.astMessages.size() == u32MaxMessages) {
            const int32_t iResult = SendMessages(stMessages);
            if (iResult != 0) {
                return iResult;
            }
        }
        OpenMessage(stMessages);
    }
    MIBMessage &stMessage = stMessages.astMessages.back();
    const ByteSpan stPayload = PayloadOf(stMessage.stMessage);
    PutBytes(stPayload, stMessage.u32Used, stRecord.From(0, u32Length));
    stMessage.u32Used += u32Length;
    Put(stPayload, MIBRecordList::u16Count, ++stMessage.u32Records);
    stMessages.bOpen = HasRoomFor(stMessage, MIBRecord::Size);
    return 0;
}

// Asks for one attribute of a multiple set and adds its record.
void AskSetRecord(MIBMessages &stMessages) {
    Record<MIBRecord::Size + u32AddressSize> stRecord;
    const int32_t iID = validateuiID(
        AskOption("\nStd Config MIBs : 0 - 499\nConfig MIBs : 500 - 799\nEnter the MIB ID : "));
    if (IsConfigMIB(iID)) {
        AskConfigRecord(stRecord.Span(), iID);
    } else {
        AskStdRecord(stRecord.Span(), iID, AskDataBytes(), AddressLength::Stated);
    }
    // A record has its value bytes as stated, none for a negative number of
    // them, and at most what one message holds.
    const int32_t iBytes = GetSigned(stRecord.View(), MIBRecord::u32DataLength);
    AddRecord(stMessages, stRecord.View(),
              MIBRecord::aucValue + static_cast<uint32_t>(std::clamp<int32_t>(
                                        iBytes, 0, u32MaxRecord - MIBRecord::aucValue)));
}

void PutProgress(int32_t iItem, int32_t iItems) {
    PutFormat("\nEntering %d out of %d.\n", iItem, iItems);
}

} // namespace

int32_t SendMIBGetRequest(ByteView stRecord) {
    const int32_t iResult =
        SendRequest(TYPE_MIB, SUBTYPE_MIB_GET, stRecord.From(0, MIBRecord::Size));
    if (iResult == iMRUTableEmpty &&
        Get(stRecord, MIBRecord::u32AttributeID) == MIBAttribute::MRUTable) {
        PutText("MRU TABLE is EMPTY");
    } else if (iResult < 0) {
        PutFormat("Error Code Returned : [%d]\n", iResult);
    }
    return 0;
}

int32_t MIBGetRequest() {
    Record<MIBRecord::Size> stRecord;
    AskGetRecord(stRecord.Span(), stSingleGetKeys);
    if (SendMIBGetRequest(stRecord.View()) == iNoMIBSupport) {
        PutText(pcNoMIBSupport);
    }
    return 0;
}

int32_t MIBSetRequest() {
    const int32_t iID = AskOption("\nStd Config MIBs : 0 - 499\nConfig MIBs : 500 - 799\n999 : "
                                  "Automated Test\nEnter the MIB ID : ");
    if (iID < static_cast<int32_t>(MIBAttribute::FirstConfig)) {
        return SetStdMIB(iID);
    }
    if (IsConfigMIB(iID)) {
        return SetConfigMIB(iID);
    }
    if (iID == iAutomatedTest) {
        SendAutomatedWrites();
    } else {
        PutText("\n MIB entered is out of range\n");
    }
    return 0;
}

int32_t MultipleMIBGetRequest() {
    MIBMessages stMessages{SUBTYPE_MULTIPLE_MIB_GET, OnNoMIBSupport::Stop};
    const int32_t iItems = AskOption("\nEnter the number of MIB Objects for Get Request ");
    for (int32_t i = 0; i < iItems; ++i) {
        Record<MIBRecord::Size> stRecord;
        PutProgress(i + 1, iItems);
        AskGetRecord(stRecord.Span(), stMultipleGetKeys);
        const int32_t iResult = AddRecord(stMessages, stRecord.View(), MIBRecord::Size);
        if (iResult != 0) {
            return iResult;
        }
    }
    return SendMessages(stMessages);
}

int32_t MultipleMIBSetRequest() {
    MIBMessages stMessages{SUBTYPE_MULTIPLE_MIB_SET, OnNoMIBSupport::GoOn};
    const int32_t iItems = AskOption("Enter the number of MIB Objects to SET : ");
    for (int32_t i = 0; i < iItems; ++i) {
        PutProgress(i + 1, iItems);
        AskSetRecord(stMessages);
    }
    if (stMessages.astMessages.empty()) {
        // The first message is sent even when there is none.
        gbInsideSubMenu = 0;
        SendMessage(nullptr, MessageHeader::Size);
    }
    return SendMessages(stMessages);
}

int32_t MIBRequest() {
    int32_t iResult = 0; // of the last dialogue: reported after every choice
    for (;;) {
        const int32_t iChoice = AskMenu(stMIBRequestsMenu);
        if (iChoice == iLeaveMenu) {
            return 0;
        }
        if (iChoice >= 1 && iChoice <= std::ssize(apfnActions)) {
            iResult = apfnActions[iChoice - 1]();
        } else {
            if (iChoice == iGetEveryMIB) {
                GetEveryMIB();
            }
            PutText("\nSORRY! INVALID OPTION SELECTED!");
        }
        if (iResult != 0) {
            PutFormat("\n Error : %d", iResult);
        }
        if (iResult == iNoMIBSupport) {
            PutText(pcNoMIBSupport);
        }
    }
}

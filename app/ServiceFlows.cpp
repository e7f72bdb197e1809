#include "ServiceFlows.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>

#include "ClassifierRules.h"
#include "Console.h"
#include "Input.h"
#include "MIBRequests.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"
#include "SFIDTable.h"

int32_t giGlobalTID = 0;
uint8_t SFID_ADD_INDICATION[u32KeptAddIndications * ServiceFlowRecord::Size];

namespace {

constexpr const char *apcServiceFlowsMenuLines[] = {
    "\n 1. SF ADD REQUEST",
    "\n 2. SF CHANGE REQUEST",
    "\n 3. SF DELETE REQUEST",
    "\n 4. ERTPS GRANT CHANGE REQUEST",
};

constexpr Menu stServiceFlowsMenu = {"\n***** SERVICE FLOW MENU *****", apcServiceFlowsMenuLines,
                                     "\n\n****************************"};

constexpr const char *apcQoSLines[] = {
    "\n0-Active and Admitted sets to null",
    "\n1-Provisioned",
    "\n2-Apply Admitted set",
    "\n3-Apply Provisioned and Admission Sets",
    "\n4-Apply to Active Set",
    "\n5-Apply Provisioned and Active sets",
    "\n6-Admitted and Active",
    "\n7-Provisioned, Admitted and Active",
};

struct DefaultValue {
    Field stField;
    uint32_t u32Value;
};

constexpr DefaultValue astSetDefaults[] = {
    {SFParamSet::u8QoSParamSetType, ServiceFlowRecord::Provisioned},
    {SFParamSet::u8SchedulingType, SFParamSet::BE},
    {SFParamSet::u8Param112, 0x31},
    {SFParamSet::u8CSSpecification, 1},
    {SFParamSet::u8Param129, 1},
    {SFParamSet::u8Param117, 0xFF},
};

// What the set of an add request has besides.
constexpr DefaultValue astAddDefaults[] = {
    {SFParamSet::u8NumClassifierRules, 1},
    {SFParamSet::u8RetransmissionPolicy, 16},
    {SFParamSet::u16Reserved26, 0xFFFF},
    {SFParamSet::u8SetPresent, 1},
};

// A number that a scheduling type asks for.
struct TrafficParam {
    const char *pcPrompt;
    Field stField;
};

constexpr TrafficParam stMaxRate = {"\nMAX Sustained Traffic Rate : ",
                                    SFParamSet::u32MaxSustainedTrafficRate};
constexpr TrafficParam stMinRate = {"\nMin Reserved Traffic Rate : ",
                                    SFParamSet::u32MinReservedTrafficRate};
constexpr TrafficParam stLatency = {"\nMaximum Latency : ", SFParamSet::u32MaximumLatency};
constexpr TrafficParam stJitter = {"\nTolerated Jitter : ", SFParamSet::u32ToleratedJitter};
constexpr TrafficParam stPriority = {"\nTraffic Priority: ", SFParamSet::u8TrafficPriority};

constexpr TrafficParam astBEParams[] = {stMaxRate, stPriority};
constexpr TrafficParam astRTPSParams[] = {stMaxRate, stMinRate, stLatency, stPriority};
constexpr TrafficParam astNRTPSParams[] = {stMaxRate, stMinRate, stPriority};
constexpr TrafficParam astERTPSParams[] = {stMaxRate, stMinRate, stLatency, stJitter};
constexpr TrafficParam astUGSParams[] = {stLatency, stMaxRate, stJitter};

struct SchedulingType {
    uint32_t u32Code;
    const char *pcName;
    std::span<const TrafficParam> astParams;
};

// In the order of their numbers in the menus.
constexpr SchedulingType astSchedulingTypes[] = {
    {SFParamSet::BE, "BE", astBEParams},          {SFParamSet::RTPS, "RTPS", astRTPSParams},
    {SFParamSet::NRTPS, "NRTPS", astNRTPSParams}, {SFParamSet::ERTPS, "ERTPS", astERTPSParams},
    {SFParamSet::UGS, "UGS", astUGSParams},
};

bool AskYes(const char *pcQuestion) { return AskOption(pcQuestion) != 0; }

// Every number is accepted: its low three bits select the sets, and its low
// byte is sent.
uint32_t AskQoSBits(uint32_t u32Default) {
    PutLine("\nQOS Paramset");
    PutTexts(apcQoSLines);
    return AskInteger("\nEnter the valid QOS Param : ", u32Default);
}

uint32_t AskDirection() {
    for (;;) {
        const uint32_t u32Direction = AskUnsigned("\nDirection  [0-Downlink , 1-Uplink] : ");
        if (u32Direction == ServiceFlowRecord::Downlink ||
            u32Direction == ServiceFlowRecord::Uplink) {
            return u32Direction;
        }
        PutText("\nERROR : Invalid input");
    }
}

void WrapTID() {
    constexpr int32_t iTIDLimit = 32767; // the first number that no request takes
    if (giGlobalTID == iTIDLimit) {
        giGlobalTID = 0;
    }
}

uint32_t NextTID() { return static_cast<uint32_t>(giGlobalTID++); }

uint32_t AskTID() {
    return AskYes("\nWould you like to enter Transaction ID (1-Yes and 0-No)")
               ? AskUnsigned("\nPlz enter Transaction ID (u16TID) : ")
               : NextTID();
}

void EnterTrafficPriority(const SelectedSets &stSets) {
    Put(stSets, SFParamSet::u8TrafficPriority, AskUnsigned("\nTraffic Priority : "));
}

// The value stands when what is typed is no number.
void EnterCSSpecification(const SelectedSets &stSets) {
    PutText("\nCS Specification: ");
    uint32_t u32Value = 0;
    if (ReadHexInteger(&u32Value)) {
        Put(stSets, SFParamSet::u8CSSpecification, u32Value);
    }
}

void AskRetransmissionPolicy(const SelectedSets &stSets) {
    if (AskYes("\nWould you like to enter the Retransmission policy (1-Yes and 0-No)")) {
        Put(stSets, SFParamSet::u8RetransmissionPolicy,
            AskUnsigned("\nPlz enter the Retransmission policy (0-255) : "));
    }
}

const SchedulingType &AskSchedulingType(const char *pcPrompt) {
    for (;;) {
        const uint32_t u32Type = AskUnsigned(pcPrompt);
        if (u32Type < std::size(astSchedulingTypes)) {
            return astSchedulingTypes[u32Type];
        }
        PutText("\nERROR : Invalid input");
    }
}

// The type, and the numbers that it asks for. One that is no number leaves its
// field as it was.
const SchedulingType &EnterSchedulingType(const SelectedSets &stSets, const char *pcPrompt) {
    const SchedulingType &stType = AskSchedulingType(pcPrompt);
    Put(stSets, SFParamSet::u8SchedulingType, stType.u32Code);
    for (const TrafficParam &stParam : stType.astParams) {
        PutText(stParam.pcPrompt);
        int32_t iValue = 0;
        if (ReadInteger(&iValue)) {
            Put(stSets, stParam.stField, static_cast<uint32_t>(iValue));
        }
    }
    return stType;
}

// The type again, with its name as that of the service class.
void EnterServiceClass(const SelectedSets &stSets) {
    const SchedulingType &stType = EnterSchedulingType(
        stSets, "\nService Class Name [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, 4-UGS] : ");
    const auto u32Length = static_cast<uint32_t>(std::strlen(stType.pcName) + 1);
    Put(stSets, SFParamSet::u8ServiceClassNameLength, u32Length);
    PutBytes(stSets, SFParamSet::au8ServiceClassName.u16Offset,
             {reinterpret_cast<const uint8_t *>(stType.pcName), u32Length});
}

// The modem answers with its list of active flows, which fills the table. An
// answer that comes later than the request looks is too late.
void QueryActiveSFIDs() {
    ClearSFIDTable();
    Record<MIBRecord::Size> stQuery;
    Put(stQuery.Span(), MIBRecord::u32AttributeID, MIBAttribute::ActiveSFIDs);
    SendMIBGetRequest(stQuery.View());
}

bool IsAnySFIDActive() {
    return std::any_of(SFID_VALIDITY_TABLE, SFID_VALIDITY_TABLE + u32VisibleSFIDs,
                       [](const std::atomic<uint32_t> &u32Slot) { return u32Slot != 0; });
}

// Returns the SFID that the chosen slot held.
uint32_t AskSFID() {
    for (;;) {
        const uint32_t u32Index = AskUnsigned("\nEnter SFID INDEX [0-15] : ");
        if (u32Index >= u32VisibleSFIDs) {
            PutText("\nERROR : Invalid SFID, should be within 0 to 15");
            continue;
        }
        const uint32_t u32SFID = SFID_VALIDITY_TABLE[u32Index];
        if (u32SFID != 0) {
            return u32SFID;
        }
        PutNumber("\nERROR : %d is not an active SFID", u32Index);
    }
}

int32_t AddClassifierRule(const SelectedSets &stSets, uint32_t u32Rules) {
    if (u32Rules + 1 > SFParamSet::MaxClassifierRules) {
        PutLine("Limit of num of classifier rules are reached");
        return -1;
    }
    EnterClassifierRuleParams(stSets.stRecord, u32Rules, stSets.u32QoSBits, false);
    PutInRule(stSets, u32Rules, ClassifierRule::u8ClassifierAction, ClassifierRule::AddRule);
    return 0;
}

// Asks for the number of a rule, from 1. Returns its index, or -1 when there is
// no such rule.
int32_t AskRuleIndex(const char *pcPrompt, uint32_t u32Rules) {
    const int32_t iNumber = AskOption(pcPrompt);
    if (iNumber < 1 || iNumber > static_cast<int32_t>(u32Rules)) {
        PutText("\nwrong Option");
        return -1;
    }
    return iNumber - 1;
}

int32_t ReplaceClassifierRule(const SelectedSets &stSets, uint32_t u32Rules) {
    const int32_t iRule =
        AskRuleIndex("\n Please Enter classifer rule Number to be changed(1~3):", u32Rules);
    if (iRule < 0) {
        return -1;
    }
    const auto u32Rule = static_cast<uint32_t>(iRule);
    EnterClassifierRuleParams(stSets.stRecord, u32Rule, stSets.u32QoSBits, false);
    PutInRule(stSets, u32Rule, ClassifierRule::u8ClassifierAction, ClassifierRule::ReplaceRule);
    return 0;
}

int32_t DeleteClassifierRule(const SelectedSets &stSets, uint32_t u32Rules) {
    const int32_t iRule =
        AskRuleIndex("\n Please Enter classifer rule Number to be changed", u32Rules);
    if (iRule < 0) {
        return -1;
    }
    PutInRule(stSets, static_cast<uint32_t>(iRule), ClassifierRule::u8ClassifierAction,
              ClassifierRule::DeleteRule);
    return 0;
}

// The header and what every selected set of a change request says of its flow.
void EnterChangedFlow(const SelectedSets &stSets, uint32_t u32SFID) {
    const ByteSpan stRecord = stSets.stRecord;
    Put(stRecord, ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::ChangeRequest);
    Put(stRecord, ServiceFlowRecord::u8Direction,
        AskUnsigned("\nEnter direction of service flow (0 - DL, 1 - UL) : "));
    const uint32_t u32CID = AskUnsigned("\nEnter u16CID assigned by BS during SF Addition : ");
    Put(stRecord, ServiceFlowRecord::u16CID, u32CID);
    Put(stSets, SFParamSet::u8SetPresent, 1);
    Put(stSets, SFParamSet::u32SFID, u32SFID);
    Put(stSets, SFParamSet::u8QoSParamSetType, stSets.u32QoSBits);
    Put(stSets, SFParamSet::u16CID, u32CID);
    WrapTID();
    Put(stRecord, ServiceFlowRecord::u16TID, AskTID());
}

// The parameters that a change request may leave alone.
void EnterChangedParams(const SelectedSets &stSets) {
    if (AskYes("\nWould you like to enter Traffic Priority (1-Yes and 0-No)")) {
        EnterTrafficPriority(stSets);
    }
    if (AskYes("\nWould you like to change CS Specification (1-Yes and 0-No)")) {
        EnterCSSpecification(stSets);
    }
    AskRetransmissionPolicy(stSets);
    if (AskYes("\nWould you like to change Service Class Name (1-Yes and 0-No)")) {
        EnterServiceClass(stSets);
    }
    if (AskYes("\nWould you like to enter Paging Preference (1-Yes and 0-No)")) {
        EnterPagingPreference(stSets);
    }
}

// A number of a grant change, asked for until it is not negative.
uint32_t AskNotNegative(const char *pcPrompt, const char *pcPromptAgain) {
    int32_t iValue = AskOption(pcPrompt);
    while (iValue < 0) {
        iValue = AskOption(pcPromptAgain);
    }
    return static_cast<uint32_t>(iValue);
}

constexpr const char *pcResponseClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

// Prints a confirmation code that refuses the request. Returns false when it
// does not.
bool PutRefusal(ByteView stRecord) {
    if (Get(stRecord, ServiceFlowRecord::u8ConfirmationCode) == 0) {
        return false;
    }
    PutLine("\nConfirmation code received as non-zero");
    PutRow(stRecord,
           {"\nConfirmation code received : %d \n", ServiceFlowRecord::u8ConfirmationCode});
    return true;
}

constexpr ReportRow astFlowRows[] = {
    {"\nService flow Identifier(u32SFID)          : %d\n", SFParamSet::u32SFID},
    {"\nConnection Identifier(u16CID)             : %d\n", SFParamSet::u16CID},
};

// The most advanced set that is present identifies the flow.
void PutAddedFlow(ByteView stRecord) {
    for (const ServiceFlowRecord::SetOfBit &stSet : ServiceFlowRecord::Sets) {
        if (Get(stRecord, SFParamSet::u8SetPresent, stSet.u32Offset) != 0) {
            PutRows(stRecord, astFlowRows, stSet.u32Offset);
            break;
        }
    }
    PutRow(stRecord,
           {"\nDirection of Service Flow                 : %d\n", ServiceFlowRecord::u8Direction});
}

// The report behind its banner. Returns false after a refusal.
bool PutAddIndication(ByteView stRecord) {
    PutLine("\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.");
    if (PutRefusal(stRecord)) {
        return false;
    }
    PutRow(stRecord, {"\nService flow added with confirmation code : %d\n",
                      ServiceFlowRecord::u8ConfirmationCode});
    PutAddedFlow(stRecord);
    return true;
}

bool PutChangeIndication(ByteView stRecord) {
    PutText("\nSF CHANGE INDICATION RESPONSE MESSAGE RECEIVED.");
    if (PutRefusal(stRecord)) {
        return false;
    }
    PutRow(stRecord, {"\nService flow changed with confirmation code %d",
                      ServiceFlowRecord::u8ConfirmationCode});
    return true;
}

bool PutDeleteIndication(ByteView stRecord) {
    RemoveSFID(Get(stRecord, SFParamSet::u32SFID, ServiceFlowRecord::stProvisionedSet));
    PutText("\nSF DELETE INDICATION RESPONSE MESSAGE RECEIVED.");
    return true;
}

} // namespace

void SetSFParamDefaults(ByteSpan stSet) {
    if (stSet.pucData == nullptr) {
        return;
    }
    for (const DefaultValue &stDefault : astSetDefaults) {
        Put(stSet, stDefault.stField, stDefault.u32Value);
    }
}

void SetSFDefaultValues(ByteSpan stRecord) {
    if (stRecord.pucData == nullptr) {
        return;
    }
    PutBytes(stRecord, 0, Record<ServiceFlowRecord::Size>{}.View());
    for (const ServiceFlowRecord::SetOfBit &stSet : ServiceFlowRecord::Sets) {
        SetSFParamDefaults(stRecord.From(stSet.u32Offset, SFParamSet::Size));
    }
}

int32_t SendDSARequest() {
    using namespace ServiceFlowRecord;
    Record<Size> stRequest;
    const ByteSpan stRecord = stRequest.Span();
    const SelectedSets stSet{stRecord, Provisioned};
    Put(stRecord, u8MsgCode, AddRequest);
    WrapTID();
    SetSFParamDefaults(stRecord.From(stProvisionedSet, SFParamSet::Size));
    for (const DefaultValue &stDefault : astAddDefaults) {
        Put(stSet, stDefault.stField, stDefault.u32Value);
    }
    PutInRule(stSet, 0, ClassifierRule::u8Param1, 0xFF);

    Put(stSet, SFParamSet::u8QoSParamSetType, AskQoSBits(Provisioned));
    Put(stRecord, u8Direction, AskDirection());
    EnterTrafficPriority(stSet);
    EnterCSSpecification(stSet);
    Put(stRecord, u16TID, AskTID());
    AskRetransmissionPolicy(stSet);
    EnterSchedulingType(
        stSet, "\nService Flow scheduling type [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, 4-UGS] : ");
    EnterAddedClassifierRule(stSet, 0);
    return SendRequest(TYPE_SERVICE_FLOW, SUBTYPE_DSA, stRequest.View().From(0, ShortSize));
}

int32_t EnterClassifierAction(ByteSpan stRecord, uint32_t u32QoSBits) {
    const SelectedSets stSets{stRecord, u32QoSBits};
    const uint32_t u32Rules =
        Get(stRecord, SFParamSet::u8NumClassifierRules, ServiceFlowRecord::stActiveSet);
    if (!AskYes("\nWould you like to enter Classifier Rule  (1-Yes and 0-No)")) {
        for (uint32_t i = 0; i < u32Rules; ++i) {
            PutInRule(stSets, i, ClassifierRule::u8ClassifierAction, ClassifierRule::ReplaceRule);
        }
        return 0;
    }
    // The bits of the answer decide: 3 replaces, 6 deletes, 4 is refused.
    const uint32_t u32Action =
        AskUnsigned("\nPlease Enter classfier action(0 - Add 1 - Replace and 2- Delete)");
    if (u32Action == ClassifierRule::AddRule) {
        return AddClassifierRule(stSets, u32Rules);
    }
    if ((u32Action & ClassifierRule::ReplaceRule) != 0) {
        return ReplaceClassifierRule(stSets, u32Rules);
    }
    if ((u32Action & ClassifierRule::DeleteRule) != 0) {
        return DeleteClassifierRule(stSets, u32Rules);
    }
    PutLine("Invalid Option");
    return -1;
}

int32_t SendDSCRequest() {
    QueryActiveSFIDs();
    if (!IsAnySFIDActive()) {
        PutText("\nERROR : No valid SFIDs to be changed..");
        return 1;
    }
    DisplaySFIDTable();
    const uint32_t u32SFID = AskSFID();
    Record<ServiceFlowRecord::Size> stRequest;
    const SelectedSets stSets{stRequest.Span(), AskQoSBits(0)};
    EnterChangedFlow(stSets, u32SFID);
    EnterChangedParams(stSets);
    if (EnterClassifierAction(stSets.stRecord, stSets.u32QoSBits) != 0) {
        return -1;
    }
    return SendRequest(TYPE_SERVICE_FLOW, SUBTYPE_DSC, stRequest.View());
}

int32_t SendDSDRequest() {
    using namespace DeleteFlowRequest;
    QueryActiveSFIDs();
    if (!IsAnySFIDActive()) {
        PutText("\nERROR : No valid SFIDs to be deleted..");
        return 1;
    }
    DisplaySFIDTable();
    Record<Size> stRequest;
    Put(stRequest.Span(), u8MsgCode, ServiceFlowRecord::DeleteRequest);
    WrapTID();
    Put(stRequest.Span(), u16TID, NextTID());
    const uint32_t u32Chosen = AskSFID();
    PutNumber("\nSending SF ID :%d....", u32Chosen);
    Put(stRequest.Span(), u32SFID, u32Chosen);
    return SendRequest(TYPE_SERVICE_FLOW, SUBTYPE_DSD, stRequest.View());
}

int32_t SendeRTPSChangeRequest() {
    using namespace GrantChangeRequest;
    Record<Size> stRequest;
    Put(stRequest.Span(), u16VCID, AskUnsigned("\nEnter VCID : "));
    Put(stRequest.Span(), u32PayloadBytesPerUGI,
        AskNotNegative("\nEnter Number of Payload Bytes Per Unsolicited Grant Interval :",
                       "\nRe-Enter Number of Payload Bytes Per Unsolicited Grant Interval :"));
    Put(stRequest.Span(), u32SDUsPerUGI,
        AskNotNegative("\nEnter Number of SDUs Per Unsolicited Grant Interval :",
                       "\nRe-Enter Number of SDUs Per Unsolicited Grant Interval :"));
    return SendRequest(TYPE_SERVICE_FLOW, SUBTYPE_ERTPS_CHANGE, stRequest.View());
}

int32_t ServiceFlowRequest() {
    switch (AskMenu(stServiceFlowsMenu)) {
    case 1:
        return SendDSARequest();
    case 2:
        return SendDSCRequest();
    case 3:
        return SendDSDRequest();
    case 4:
        return SendeRTPSChangeRequest();
    default:
        return 0;
    }
}

uint32_t ServiceFlowResponse(const WiMAXMessage *pstMessage, uint32_t /*u32Length*/) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~ SERVICE FLOW RESPONSE MESSAGE ~~~~~~");
    bool bComplete = true;
    switch (stReceived.u32SubType) {
    case SUBTYPE_DSA:
        bComplete = PutAddIndication(stReceived.stPayload);
        break;
    case SUBTYPE_DSD:
        bComplete = PutDeleteIndication(stReceived.stPayload);
        break;
    case SUBTYPE_DSC:
        bComplete = PutChangeIndication(stReceived.stPayload);
        break;
    default:
        PutText("\nINVALID SF RESPONSE MESSAGE RECEIVED!!");
        return 1;
    }
    PutLine(pcResponseClosing);
    return bComplete ? 1 : 0;
}

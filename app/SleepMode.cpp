#include "SleepMode.h"

#include <algorithm>

#include "Console.h"
#include "Input.h"
#include "Message.h"
#include "MobilityRecords.h"
#include "Report.h"

namespace {

struct FieldValue {
    Field stField;
    uint32_t u32Value;
};

// What is sent for a user who enters nothing: one new definition.
constexpr FieldValue astDefaultDefinition[] = {
    {PSCDefinition::u8Activity, PSCDefinition::ActivityDefinition},
    {PSCDefinition::u8PSCID, PSCDefinition::NewPSCID},
    {PSCDefinition::u8PSCType, 1},
    {PSCDefinition::u8Direction, 0},
    {PSCDefinition::u32NumOfCIDs, 0},
    {PSCDefinition::u8ListenWindow, 32},
    {PSCDefinition::u8InitialSleepWindow, 8},
    {PSCDefinition::u16FinalSleepWindowBase, 4},
    {PSCDefinition::u8FinalSleepWindowExp, 5},
    {PSCDefinition::u8TTWF, 1},
    {PSCDefinition::u8TIR, 1},
};

constexpr Question astQuestionsBeforeCIDs[] = {
    {"\nENTER THE ACTIVITY: 0 - Defn, 1- Activation, 2- DeActivation, 3 - DefnAndActivation:  ",
     PSCDefinition::u8Activity},
    {"\nENTER THE PSCID: [If it is new definition, PSCID should be 0xFF ]", PSCDefinition::u8PSCID},
    {"\nENTER THE PSCTYPE: ", PSCDefinition::u8PSCType},
    {"\nENTER THE DIRECTION: 0 - Not Specified, 1 - DL, 2 - UL: ", PSCDefinition::u8Direction},
};

constexpr Question astQuestionsAfterCIDs[] = {
    {"\nENTER THE ListenWindow: [1 Byte Value] ", PSCDefinition::u8ListenWindow},
    {"\nENTER THE InitialSleepWindow: [1 Byte Value] ", PSCDefinition::u8InitialSleepWindow},
    {"\nENTER THE FinalSleepWindowBase: [10 Bit Value] ", PSCDefinition::u16FinalSleepWindowBase},
    {"\nENTER THE FinalSleepWindowExp: [3 Bit Value] ", PSCDefinition::u8FinalSleepWindowExp},
    {"\nENTER THE TTWF: [Valid values : 0/1] ", PSCDefinition::u8TTWF},
    {"\nENTER THE TIR: [Valid values : 0/1] ", PSCDefinition::u8TIR},
};

// A typed count, kept to what the record has room for. A negative one is sent as
// it is and asks for nothing.
int32_t AskCount(const char *pcPrompt, uint32_t u32Most) {
    return std::min(AskOption(pcPrompt), static_cast<int32_t>(u32Most));
}

void AskCIDs(ByteSpan stDefinition) {
    using namespace PSCDefinition;
    const int32_t iCount = AskCount("\nENTER THE NUMBER OF CIDs (Max 16): ", MaxCIDs);
    Put(stDefinition, u32NumOfCIDs, static_cast<uint32_t>(iCount));
    for (int32_t i = 0; i < iCount; ++i) {
        Put(stDefinition, au16CID, AskUnsigned("\nENTER THE VALUE OF CID: [2 Byte Value] "),
            static_cast<uint32_t>(i) * WidthOf(au16CID.eType));
    }
}

ByteSpan DefinitionAt(ByteSpan stRequest, uint32_t u32Index) {
    return stRequest.From(SleepMode::astPSCDefinition + u32Index * PSCDefinition::Size,
                          PSCDefinition::Size);
}

void AskDefinitions(ByteSpan stRequest) {
    const int32_t iCount =
        AskCount("\n NUMBER OF DEFINITIONS TO BE DEFINED: [Max: 3, if DEF PSC is "
                 "disable else Max: 2] ",
                 SleepMode::MaxDefinitions);
    Put(stRequest, SleepMode::numOfDefinitions, static_cast<uint32_t>(iCount));
    for (int32_t i = 0; i < iCount; ++i) {
        const ByteSpan stDefinition = DefinitionAt(stRequest, static_cast<uint32_t>(i));
        AskFields(stDefinition, astQuestionsBeforeCIDs);
        AskCIDs(stDefinition);
        AskFields(stDefinition, astQuestionsAfterCIDs);
    }
}

void PutDefaults(ByteSpan stRequest) {
    Put(stRequest, SleepMode::numOfDefinitions, 1);
    for (const FieldValue &stValue : astDefaultDefinition) {
        Put(DefinitionAt(stRequest, 0), stValue.stField, stValue.u32Value);
    }
}

} // namespace

int32_t SendSleepPSCDefinitionMsg() {
    Record<SleepMode::Size> stRequest;
    PutLine("\nDO YOU WANT TO ENTER THE SLEEP MODE VALUES MANUALLY");
    PutLine("1-Yes- Fields needs to be filled for sleep mode request");
    PutLine("0-No - Default values are sent sleep mode request");
    if (ReadOption() == 0) {
        PutDefaults(stRequest.Span());
    } else {
        AskDefinitions(stRequest.Span());
    }
    return SendRequest(TYPE_SLEEP_MODE, SUBTYPE_SLEEP_PSC_DEFINITION, stRequest.View());
}

uint32_t SleepModeIndication(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        PutText("\nINVALID WIMAX MESSAGE!!");
        return 0;
    }
    const Received stReceived = View(pstMessage);
    if (stReceived.u32SubType != SUBTYPE_SLEEP_MODE_IND) {
        PutLine("\nUNKNOWN SLEEP MODE INDICATION TYPE!!");
        return 0;
    }
    PutLine("\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~");
    PutRow(stReceived.stPayload, {"\n APP: numOfDefinitions %d", SleepMode::numOfDefinitions});
    PutRow(stReceived.stPayload,
           {"\n APP: u16FinalSleepWindowBase %d \n", PSCDefinition::u16FinalSleepWindowBase},
           SleepMode::astPSCDefinition);
    return 1;
}

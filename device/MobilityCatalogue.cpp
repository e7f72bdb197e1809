#include "Layouts.h"
#include "LinkRecords.h"
#include "MobilityRecords.h"

namespace {

constexpr CodeRow astActivities[] = {
    CODE(PSCDefinition, ActivityDefinition),
    CODE(PSCDefinition, ActivityActivation),
    CODE(PSCDefinition, ActivityDeactivation),
    CODE(PSCDefinition, ActivityDefinitionAndActivation),
};

constexpr FieldRow astPSCDefinition[] = {
    FIELD(PSCDefinition, u8PSCID, "class ID, 255 asks for a new one"),
    FIELD(PSCDefinition, u8PSCType, "class type"),
    FIELD(PSCDefinition, u8Direction, "direction: 0 not specified, 1 downlink, 2 uplink"),
    FIELD(PSCDefinition, u8InitialSleepWindow, "initial sleep window"),
    FIELD(PSCDefinition, u8FinalSleepWindowExp, "exponent of the final sleep window (3 bits)"),
    FIELD(PSCDefinition, u8ListenWindow, "listen window"),
    FIELD(PSCDefinition, u16FinalSleepWindowBase, "base of the final sleep window (10 bits)"),
    FIELD(PSCDefinition, u8TTWF, "traffic triggered wakening flag"),
    FIELD(PSCDefinition, u8TIR, "TIR flag"),
    RESERVED(10, 2),
    FIELD(PSCDefinition, au16CID, "connection IDs", .u16Count = PSCDefinition::MaxCIDs,
          .stCounter = PSCDefinition::u32NumOfCIDs, .eShown = Shown::Hexadecimal),
    FIELD(PSCDefinition, u8Activity,
          "activity: 0 define, 1 activate, 2 deactivate, 3 define and activate",
          .astCodes = astActivities),
    FIELD(PSCDefinition, u32NumOfCIDs, "number of connection IDs"),
};
constexpr Layout stPSCDefinition = LAYOUT(PSCDefinition, astPSCDefinition);

constexpr FieldRow astSleepMode[] = {
    FIELD(SleepMode, numOfDefinitions, "number of definitions, 1 to 3"),
    FIELD(SleepMode, astPSCDefinition, "definitions", .u16Count = SleepMode::MaxDefinitions,
          .stCounter = SleepMode::numOfDefinitions, .pstRecord = &stPSCDefinition),
    RESERVED(151, 49),
};

constexpr FieldRow astHandover[] = {
    FIELD(Handover, u8HOSuccess, "not 0: the handover succeeded"),
    FIELD(Handover, u8IPRefreshNeeded, "not 0: the host has to refresh its IP configuration"),
    FIELD(Handover, au8CurrentBSID, "current BS ID", .u16Count = u32BSIDSize,
          .eShown = Shown::Address),
    FIELD(Handover, au8LastBSID, "last BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(Handover, u32NumRangingFailures, "ranging failures"),
    FIELD(Handover, u32HOLatency, "latency"),
    FIELD(Handover, u32CurrentPreambleID, "current preamble ID"),
    FIELD(Handover, u32LastPreambleID, "last preamble ID"),
    FIELD(Handover, u32VendorSpecificDataLength,
          "n, the number of vendor-specific bytes (1 to 255)"),
    FIELD(Handover, au8VendorSpecificData, "vendor-specific data", .u16Count = 0,
          .stCounter = Handover::u32VendorSpecificDataLength, .eShown = Shown::Bytes),
};

} // namespace

constexpr Layout stSleepMode = LAYOUT(SleepMode, astSleepMode);
constexpr Layout stHandover = {"Handover", astHandover, Handover::au8VendorSpecificData};

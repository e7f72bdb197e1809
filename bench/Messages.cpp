#include "Messages.h"

#include <deque>
#include <initializer_list>
#include <string>

#include "AntennaRecords.h"
#include "AuthenticationRecords.h"
#include "DiagnosticRecords.h"
#include "LinkRecords.h"
#include "MIBRecord.h"
#include "MobilityRecords.h"
#include "SecurityRecords.h"
#include "ServiceFlowRecord.h"
#include "StationRecords.h"
#include "VendorRecords.h"

// The formats come from tables, so the compiler cannot look at them.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

struct Value {
    Field stField;
    uint32_t u32Value;
    uint32_t u32Base = 0;
};

struct TextValue {
    uint32_t u32Offset;
    const char *pcText; // with a zero byte behind it
};

struct Content {
    std::vector<Value> astValues = {};
    std::vector<TextValue> astTexts = {};
};

constexpr Field Byte{0, FieldType::U8};
constexpr Field ByteAt(uint32_t u32Offset) {
    return {static_cast<uint16_t>(u32Offset), FieldType::U8};
}

// Bytes of all values; numbers of a usual size where a row prints a word; then
// what the message says.
BenchMessage Message(const char *pcName, uint32_t u32Type, uint32_t u32SubType, uint32_t u32Size,
                     const Content &stContent, std::vector<PlainBlock> astPlain) {
    BenchMessage stBench{pcName, {}, WIMAX_HEADER_SIZE + u32Size, std::move(astPlain)};
    Put(BytesOf(stBench.stMessage), MessageHeader::usType, u32Type);
    Put(BytesOf(stBench.stMessage), MessageHeader::usSubType, u32SubType);
    const ByteSpan stPayload = PayloadOf(stBench.stMessage).From(0, u32Size);
    for (uint32_t i = 0; i < u32Size; ++i) {
        stPayload.Set(i, static_cast<uint8_t>(i * 37 + 11));
    }
    uint32_t u32Number = 100;
    for (const PlainBlock &stBlock : stBench.astPlain) {
        VisitRows(stPayload, stBlock, [&](const PlainRow &stRow, ByteView stRecord, uint32_t) {
            if (WidthOf(stRow.stField.eType) < 2 || stRecord.pucData == nullptr) {
                return;
            }
            const auto u32Base = static_cast<uint32_t>(stRecord.pucData - stPayload.pucData);
            for (uint32_t i = 0; i < std::max(stRow.u32Conversions, stRow.stExtra.u32Repeat); ++i) {
                u32Number += 37;
                Put(stPayload, stRow.stField, u32Number,
                    u32Base + i * WidthOf(stRow.stField.eType));
            }
        });
    }
    for (const Value &stValue : stContent.astValues) {
        Put(stPayload, stValue.stField, stValue.u32Value, stValue.u32Base);
    }
    for (const TextValue &stText : stContent.astTexts) {
        const std::string strText = stText.pcText;
        PutBytes(stPayload, stText.u32Offset,
                 {reinterpret_cast<const uint8_t *>(strText.c_str()),
                  static_cast<uint32_t>(strText.size() + 1)});
    }
    return stBench;
}

// A text that lives as long as the program.
const char *Kept(std::string strText) {
    static std::deque<std::string> gstrTexts;
    return gstrTexts.emplace_back(std::move(strText)).c_str();
}

const char *Closing(size_t uLength) {
    return Kept(std::string("\n\n").append(uLength, '~') + "\n");
}

const char *Tildes(size_t uLength) { return Kept(std::string("\n").append(uLength, '~') + "\n"); }

constexpr PlainExtra stSame{.eNumbers = Numbers::Same};

constexpr PlainExtra Each(uint32_t u32Count) { return {.u32Repeat = u32Count}; }

// The bytes of vendor-specific data behind their heading.
std::vector<PlainRow> VendorRows(const char *pcHeading, uint32_t u32Offset, uint32_t u32Bytes) {
    return {{pcHeading}, {"0x%02x ", ByteAt(u32Offset), Each(u32Bytes)}, {"\n"}};
}

void Append(std::vector<PlainRow> &astRows, const std::vector<PlainRow> &astMore) {
    astRows.insert(astRows.end(), astMore.begin(), astMore.end());
}

// A dump with an address in every line.
void AppendDump(std::vector<PlainBlock> &astBlocks, const char *pcTitle, uint32_t u32Offset,
                uint32_t u32Size) {
    astBlocks.push_back(
        {{{Kept(std::string("\n================= ").append(pcTitle) + " =================\n")}}});
    astBlocks.push_back(
        {{{"\n %08x : ", {}, {.eNumbers = Numbers::Address}}, {"%02x ", Byte, Each(8)}},
         u32Offset,
         u32Size,
         8});
    astBlocks.push_back({{{"\n================================================\n"}}});
}

void AddSearch(std::vector<BenchMessage> &astMessages) {
    constexpr uint32_t u32Stations = 8;
    const auto NAPID = [](ByteView stRecord) {
        const uint32_t u32First = BaseStation::aucBSID.u16Offset;
        return static_cast<double>(stRecord.At(u32First) << 16 | stRecord.At(u32First + 1) << 8 |
                                   stRecord.At(u32First + 2));
    };
    Content stContent{
        {{StationList::u32NumStations, u32Stations}, {StationList::u32SearchStatus, 1}}};
    for (uint32_t i = 0; i < u32Stations; ++i) {
        stContent.astValues.push_back(
            {BaseStation::u8CompressedMap, 0, StationList::astStations + i * BaseStation::Size});
    }
    astMessages.push_back(
        Message("1.1 search, 8 stations", TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH,
                StationList::astStations + u32Stations * BaseStation::Size, stContent,
                {{{{"\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~\n"},
                   {"\n%d BASE STATIONS FOUND.\n", StationList::u32NumStations},
                   {"SEARCH IS COMPLETE!!"}}},
                 {{{"\nBASE STATION : %d\n-------------------\n",
                    {1, FieldType::None},
                    {.eNumbers = Numbers::Index}},
                   {"\nBS ID  :%02X %02X %02X %02X %02X %02X", BaseStation::aucBSID},
                   {" - NORMAL MAP"},
                   {"\nNAPID  :%d", {}, {.pfnValue = NAPID}},
                   {"\nPreamble Index ID  :%d", BaseStation::u32PreambleIndex},
                   {"\nCenter Frequency : %d kHz", BaseStation::u32CenterFrequency},
                   {"\nBandwidth : %d kHz", BaseStation::u32Bandwidth},
                   {"\nRelative Signal Strength : %d dBm", BaseStation::s32SignalStrength},
                   {"\nCINR : %d dB", BaseStation::s32CINR},
                   {"\nDCD change count : %d ", BaseStation::u32DCDChangeCount},
                   {"\nNSP change count : %d ", BaseStation::u32NSPChangeCount}},
                  StationList::astStations,
                  u32Stations * BaseStation::Size,
                  BaseStation::Size},
                 {{{Closing(54)}}}}));

    using namespace NSPDiscovery;
    constexpr uint32_t u32NSPs = 2;
    astMessages.push_back(Message(
        "1.4 discovery, 2 NSPs", TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_DISCOVERY_RESP, Size,
        {{{u8Status, Success}, {u32Complete, 1}, {s32NumNSPs, u32NSPs}},
         {{astNSPs + NSPEntry::aucName, "First Provider"},
          {astNSPs + NSPEntry::Size + NSPEntry::aucName, "Second Provider"}}},
        {{{{"\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------"},
           {"\nNSP discovery complete : %d", u32Complete},
           {"\nBSINFO Response status is :"},
           {"NSP_DISCOVERY_SUCCESS"},
           {"\nBS ID  :%02X %02X %02X %02X %02X %02X", aucBSID},
           {"\nDCD change count : %d", u32DCDChangeCount},
           {"\nNSP change count : %d", u32NSPChangeCount},
           {"\nNumber of NSP entries: %d", s32NumNSPs},
           {"\nPID : %d", u32PID},
           {"\nCF  : %d", u32CF},
           {"\nBandwidth  : %d", u32Bandwidth},
           {"\nRSSI  : %d", u32RSSI},
           {"\nCINR  : %d", u32CINR}}},
         {{{"\nNSPLIST Entry %u of total 2", {1, FieldType::None}, {.eNumbers = Numbers::Index}},
           {"\nNSP Name is : "},
           {"%s", ByteAt(NSPEntry::aucName)},
           {"\nNSP ID is : %d", NSPEntry::u32ID}},
          astNSPs,
          u32NSPs * NSPEntry::Size,
          NSPEntry::Size}}));

    astMessages.push_back(
        Message("1.6 low power scan", TYPE_NETWORK_SEARCH, SUBTYPE_LOW_POWER_SCAN,
                LowPowerScanAnswer::Size, {{{LowPowerScanAnswer::u32Result, 1}}},
                {{{{"\n~~~~~~~~~~ LOW POWER SCANMODE RESPONSE RECEIVED ~~~~~~\n"},
                   {"\n Low power scan mode set for mode %d", LowPowerScanAnswer::u8Mode},
                   {"\n u32Rsvd1 %u", LowPowerScanAnswer::u32Rsvd1},
                   {"\n u32Rsvd2 %u", LowPowerScanAnswer::u32Rsvd2},
                   {"\n u32Rsvd3 %u", LowPowerScanAnswer::u32Rsvd3},
                   {Closing(54)}}}}));
}

void AddLink(std::vector<BenchMessage> &astMessages) {
    astMessages.push_back(
        Message("2.1 sync status", TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_STATUS_RESP, SyncStatus::Size,
                {{{SyncStatus::u32Status, 0}, {SyncStatus::u8CompressedMap, 1}}},
                {{{{"\n~~~~~~~~~~ SYNC STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"},
                   {"\n SYNC STATUS  : "},
                   {"PHY_SYNC ACHIEVED"},
                   {" - COMPRESSED MAP"},
                   {"\n BS ID  :%02X %02X %02X %02X %02X %02X", SyncStatus::aucBSID},
                   {"\n PREAMBLE ID  : %d", SyncStatus::u32PreambleID},
                   {"\n CINR MEAN : %d dB", SyncStatus::s32CINRMean},
                   {"\n CINR DEVIATION: %d dB", SyncStatus::s32CINRDeviation},
                   {"\n RSSI MEAN: %d dBm", SyncStatus::s32RSSIMean},
                   {"\n RSSI DEVIATION: %d dBm", SyncStatus::s32RSSIDeviation},
                   {"\n CENTER FREQUENCY: %d kHz", SyncStatus::u32CenterFrequency},
                   {"\n BANDWIDTH : %d kHz", SyncStatus::u32Bandwidth},
                   {"\n DCD change count : %d ", SyncStatus::u32DCDChangeCount},
                   {"\n NSP Change count : %d ", SyncStatus::u32NSPChangeCount},
                   {Closing(51)}}}}));

    constexpr uint32_t u32Vendor = 16;
    const uint32_t u32Base = NetworkEntryStatus::stBaseInformation;
    astMessages.push_back(Message(
        "2.2 network entry status", TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY_STATUS_RESP,
        NetworkEntryStatus::aucVendorData + u32Vendor,
        {{{NetworkEntryStatus::u8Status, LinkReason::LinkUpAchieved},
          {NetworkEntryStatus::u32BaseInformationPresent, 1},
          {NetworkEntryStatus::s32VendorDataLength, u32Vendor}}},
        {{{{"\n~~~~~~~~~~~ NETWORK ENTRY STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"},
           {"\n NETENTRY STATUS  : "},
           {"LINKUP_ACHIEVED"}}},
         {{{"\n BASE ID :%02X %02X %02X %02X %02X %02X", BaseInformation::aucBSID},
           {"\n PREAMBLE INDEX : %d", BaseInformation::u8PreambleIndex},
           {"\n UL CELL ID : %d", BaseInformation::u8ULCellID},
           {"\n CINR DEVIATION : %d dB", BaseInformation::s16CINRDeviation},
           {"\n CINR MEAN : %d dB", BaseInformation::s16CINRMean},
           {"\n DURATION : %d", BaseInformation::u32Duration},
           {"\n MEAN RSSI REPORT : %d", BaseInformation::u32MeanRSSI},
           {"\n STANDARD DEVIATION RSSI REPORT : 0x%X", BaseInformation::u32RSSIDeviation},
           {"\n UL CENTER FREQUENCY : %d MHz", BaseInformation::u32ULCenterFrequency},
           {"\n DL CENTER FREQUENCY : %d MHz", BaseInformation::u32DLCenterFrequency}},
          u32Base,
          BaseInformation::Size},
         {VendorRows("\nVENDOR SPECIFIC DATA \n", NetworkEntryStatus::aucVendorData, u32Vendor)},
         {{{Closing(61)}}}}));
}

void AddAuthentication(std::vector<BenchMessage> &astMessages) {
    constexpr const char *pcEAP = "\n~~~~~~ EAP RESPONSE MESSAGE ~~~~~~\n";
    constexpr const char *pcHead = "\n~~~~~~ AUTHENTICATION RESPONSE MESSAGE ~~~~~~\n";
    const char *pcClosing = Closing(42);
    using namespace AuthParamIndication;
    std::vector<PlainBlock> astBlocks{
        {{{pcEAP}, {pcHead}, {"\nAUTH PARAM INDICATION MESSAGE RECEIVED."}}}};
    AppendDump(astBlocks, "AUTH REQUEST TYPE", u8RequestType, 1);
    AppendDump(astBlocks, "AUTH ACK/NAK", u8Acknowledgement, 1);
    astBlocks.push_back({{{"\nAUTH METHOD TYPE : AUTH_METHOD_EAP_AKA\n"}}});
    AppendDump(astBlocks, "WNID", aucWNID, KeySize);
    AppendDump(astBlocks, "K ID", aucKID, KeySize);
    AppendDump(astBlocks, "OPc", aucOPc, KeySize);
    AppendDump(astBlocks, "NonK", aucNonK, KeySize);
    AppendDump(astBlocks, "NonOPc", aucNonOPc, KeySize);
    AppendDump(astBlocks, "C1_5_R1_5", aucConstants, ConstantsSize);
    AppendDump(astBlocks, "PseudonymID", aucPseudonym, u32PseudonymSize);
    AppendDump(astBlocks, "SQNMS", aucSQNMS, u32SQNMSSize);
    astBlocks.push_back({{{"\n"}, {pcClosing}, {pcClosing}}});
    astMessages.push_back(Message("4.5 authentication parameters", TYPE_AUTHENTICATION,
                                  SUBTYPE_AUTH_PARAM_IND, Size, {{{u8Method, AuthMethod::EAPAKA}}},
                                  astBlocks));

    constexpr uint32_t u32Transfer = 64;
    astBlocks = {{{{pcEAP}, {"\nAUTH EAP TRANSFER INDICATION RECEIVED."}}}};
    AppendDump(astBlocks, "AUTH TRANSFER INDICATION BUFFER", EAPTransfer::aucData, u32Transfer);
    astBlocks.push_back({{{pcHead}, {pcClosing}, {pcClosing}}});
    astMessages.push_back(Message("4.6 EAP transfer, 64 bytes", TYPE_AUTHENTICATION,
                                  SUBTYPE_EAP_TRANSFER_IND, EAPTransfer::aucData + u32Transfer,
                                  {{{EAPTransfer::u16Length, u32Transfer}}}, astBlocks));

    astMessages.push_back(
        Message("4.10 encryption result", TYPE_AUTHENTICATION, SUBTYPE_ENCRYPTION_RESULT_RESP,
                EncryptionTest::u8Data + 17, {{{EncryptionTest::u32DataLength, 16}}},
                {{{{pcEAP},
                   {"\nEAP ENCRYPT PRIVATE RESPONSE RECEIVED"},
                   {"\nPadding algorithm used u32Padding = %d ", EncryptionTest::u32Padding},
                   {"\nEncrypted data \n"},
                   {"%d \t", ByteAt(EncryptionTest::u8Data + 16)},
                   {pcHead},
                   {pcClosing},
                   {pcClosing}}}}));
}

void AddServiceFlows(std::vector<BenchMessage> &astMessages) {
    using namespace ServiceFlowRecord;
    constexpr const char *pcHead = "\n~~~~~~ SERVICE FLOW RESPONSE MESSAGE ~~~~~~\n";
    const char *pcClosing = Closing(42);
    const Content stContent{{{u8ConfirmationCode, 0},
                             {u8Direction, Downlink},
                             {SFParamSet::u8SetPresent, 0, stProvisionedSet},
                             {SFParamSet::u8SetPresent, 0, stAdmittedSet},
                             {SFParamSet::u8SetPresent, 1, stActiveSet}}};
    astMessages.push_back(Message(
        "6.1 flow added", TYPE_SERVICE_FLOW, SUBTYPE_DSA, Size, stContent,
        {{{{pcHead},
           {"\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"},
           {"\nService flow added with confirmation code : %d\n", u8ConfirmationCode}}},
         {{{"\nService flow Identifier(u32SFID)          : %d\n", SFParamSet::u32SFID},
           {"\nConnection Identifier(u16CID)             : %d\n", SFParamSet::u16CID}},
          stActiveSet,
          SFParamSet::Size},
         {{{"\nDirection of Service Flow                 : %d\n", u8Direction}, {pcClosing}}}}));
    astMessages.push_back(Message(
        "6.2 flow deleted", TYPE_SERVICE_FLOW, SUBTYPE_DSD, Size, stContent,
        {{{{pcHead}, {"\nSF DELETE INDICATION RESPONSE MESSAGE RECEIVED."}, {pcClosing}}}}));
    astMessages.push_back(
        Message("6.3 flow changed", TYPE_SERVICE_FLOW, SUBTYPE_DSC, Size, stContent,
                {{{{pcHead},
                   {"\nSF CHANGE INDICATION RESPONSE MESSAGE RECEIVED."},
                   {"\nService flow changed with confirmation code %d", u8ConfirmationCode},
                   {pcClosing}}}}));
}

template <uint32_t u32Bit> double MaskBit(ByteView stPayload) {
    return Get(stPayload, EEPROMSummary::u16ValidMask) >> u32Bit & 1;
}

void AddStation(std::vector<BenchMessage> &astMessages) {
    using namespace SSInformation;
    const char *pcClosing = Tildes(46);
    astMessages.push_back(Message(
        "7.1 station information", TYPE_SS_INFO, SUBTYPE_SS_INFO, Size,
        {{{u8Calibration, Band0 | Band1 | Band2}}, {{acDriverVersion, "4.2.17 of the driver"}}},
        {{{{"\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~\n"},
           {"\nFirmware Version : %d.%d.%d", au32FirmwareVersion},
           {"\nDriver Version : "},
           {"%s", ByteAt(acDriverVersion)},
           {"\nLibrary Version : %02d.%02d.%02d", au32LibraryVersion},
           {"\nBaseband Chip Version : %x", u32BasebandChipVersion},
           {"\nRF Chip Version : %x", u32RFChipVersion},
           {"\nMAC ADDRESS : %02x-%02x-%02x-%02x-%02x-%02x", aucMACAddress},
           {"\nCalibration Status: "},
           {"CALIBRATED"},
           {"\nCalibrated Band Information: "},
           {"Band 0 & Band 1 & Band 2\n"},
           {"EEPROM Version : %x.%x\n", au32EEPROMVersion},
           {pcClosing}}}}));
    astMessages.push_back(Message("7.2 EEPROM summary", TYPE_SS_INFO, SUBTYPE_SS_EEPROM_INFO,
                                  EEPROMSummary::Size, {{{EEPROMSummary::u16ValidMask, 0x7FE}}},
                                  {{{{"\n~~~~~~~~~~~~~~~ EEPROM SS INFO RESPONSE ~~~~~~~~~~~~~~\n"},
                                     {"\nEEPROM Size\t\t: %d KB\n", EEPROMSummary::u8SizeInKB},
                                     {"\nEEPROM Valid Info : 0x%x\n", EEPROMSummary::u16ValidMask},
                                     {"\nBit - 0\t\t\t: [%d]", {}, {.pfnValue = MaskBit<0>}},
                                     {"\nCompatibility\t\t: [%d]", {}, {.pfnValue = MaskBit<1>}},
                                     {"\nRF\t\t\t: [%d]", {}, {.pfnValue = MaskBit<2>}},
                                     {"\nPHY\t\t\t: [%d]", {}, {.pfnValue = MaskBit<3>}},
                                     {"\nMAC\t\t\t: [%d]", {}, {.pfnValue = MaskBit<4>}},
                                     {"\nCALIBRATION\t\t: [%d]", {}, {.pfnValue = MaskBit<5>}},
                                     {"\nHARDWARE\t\t: [%d]", {}, {.pfnValue = MaskBit<6>}},
                                     {"\nMIB\t\t\t: [%d]", {}, {.pfnValue = MaskBit<7>}},
                                     {"\nSECURITY\t\t: [%d]", {}, {.pfnValue = MaskBit<8>}},
                                     {"\nOMA-DM\t\t\t: [%d]", {}, {.pfnValue = MaskBit<9>}},
                                     {"\nMRU\t\t\t: [%d]\n\n", {}, {.pfnValue = MaskBit<10>}},
                                     {pcClosing}}}}));
    astMessages.push_back(
        Message("7.3 EEPROM versions", TYPE_SS_INFO, SUBTYPE_SS_EEPROM_DETAILED_INFO,
                EEPROMVersions::Size, {},
                {{{{"\n~~~~~~~~~~~~~~~ SS EEPROM DETAILED INFO RESPONSE ~~~~~~~~~~~~~~\n"},
                   {"\nRF SECTION VERSION        :   %d", EEPROMVersions::u32RF},
                   {"\nPHY SECTION VERSION       :   %d", EEPROMVersions::u32PHY},
                   {"\nMAC SECTION VERSION       :   %d", EEPROMVersions::u32MAC},
                   {"\nCAL SECTION VERSION       :   %d", EEPROMVersions::u32CAL},
                   {"\nHW SECTION VERSION        :   %d", EEPROMVersions::u32HW},
                   {"\nMIB SECTION VERSION       :   %d", EEPROMVersions::u32MIB},
                   {"\nSECURITY SECTION VERSION  :   %d", EEPROMVersions::u32Security},
                   {"\nOMADM SECTION VERSION     :   %d", EEPROMVersions::u32OMADM},
                   {"\nMRU SECTION VERSION       :   %d", EEPROMVersions::u32MRU},
                   {"\nVSA SECTION VERSION       :   %d\n", EEPROMVersions::u32VSA},
                   {Tildes(63)}}}}));
}

// A log of type 8: eight entries.
void AddLog(std::vector<BenchMessage> &astMessages, const char *pcName, uint32_t u32Kind,
            const char *pcHeading, uint32_t u32EntrySize, std::vector<PlainRow> astRows) {
    constexpr uint32_t u32Entries = 8;
    const uint32_t u32Size = u32Entries * u32EntrySize;
    astMessages.push_back(
        Message(pcName, TYPE_START_LOGGER, u32Kind, LogRecord::aucData + u32Size,
                {{{LogRecord::s16Length, u32Size}}},
                {{{{"\n~~~~~~ LOGGER INDICATION RECEIVED ~~~~~~\n"}, {pcHeading}}},
                 {std::move(astRows), LogRecord::aucData, u32Size, u32EntrySize},
                 {{{Tildes(40)}}}}));
}

void AddLogs(std::vector<BenchMessage> &astMessages) {
    AddLog(astMessages, "8.1 ranging log, 8 entries", SUBTYPE_LOG_INITIAL_RANGING,
           "\nINITIAL RANGING LOG\n*******************\n", RangingLogEntry::Size,
           {{"\nCODE : 0x%X", RangingLogEntry::u32Code},
            {"\nFRAME NUMBER : 0x%X", RangingLogEntry::u32FrameNumber},
            {"\nSUB-CHANNEL : 0x%X", RangingLogEntry::u32SubChannel},
            {"\nSYMBOL : 0x%X\n", RangingLogEntry::u32Symbol}});
    AddLog(astMessages, "8.4 bandwidth log, 8 entries", SUBTYPE_LOG_BANDWIDTH,
           "\nBW LOG\n************\n", BandwidthLogEntry::Size,
           {{"\nALLOCATION RECEIVED : %d", BandwidthLogEntry::u16AllocationReceived},
            {"\nPDU LENGTH : %d", BandwidthLogEntry::u16PDULength},
            {"\nCID : %d", BandwidthLogEntry::u16CID},
            {"\nVCID : %d", BandwidthLogEntry::u16VCID},
            {"\nSCH TYPE : %d", BandwidthLogEntry::u8SchedulingType},
            {"\nBW REQ : %d", BandwidthLogEntry::u8BandwidthRequest},
            {"\nQUEUE DEPTH : %d", BandwidthLogEntry::u16QueueDepth},
            {"\nFRAME NUMBER : %d\n", BandwidthLogEntry::u32FrameNumber}});
    AddLog(astMessages, "8.5 power log, 8 entries", SUBTYPE_LOG_CLOSED_LOOP_POWER,
           "\nCLOSED LOOP POWER ADJDUSTMENT LOG\n*********************************\n",
           PowerLogEntry::Size,
           {{"\nPOWER ADJUSTMENT : %f dBm", PowerLogEntry::s32Adjustment, {.u32Divisor = 4}},
            {"\nFRAME OFFSET : %d", PowerLogEntry::u32FrameOffset},
            {"\nFRAME NUMBER : %d", PowerLogEntry::u32FrameNumber},
            {"\nPOWER : %d\n", PowerLogEntry::u32Power}});
    AddLog(astMessages, "8.7 connection log, 8 entries", SUBTYPE_LOG_CID,
           "\nCID LOG\n************\n", CIDLogEntry::Size,
           {{"\nCID : %d", CIDLogEntry::u16CID},
            {"\nVCID : %d", CIDLogEntry::u16VCID},
            {"\nDIR : %d", CIDLogEntry::u16Direction},
            {"\nARQ : %d\n", CIDLogEntry::u16ARQ}});
    AddLog(astMessages, "8.8 CQICH log, 8 entries", SUBTYPE_LOG_CQICH,
           "\nCQICH LOG\n************\n", CQICHLogEntry::Size,
           {{"\nCQICH : %d\n", CQICHLogEntry::u32Value}});
    astMessages.push_back(Message("31 PHY log, 200 bytes", TYPE_PHY_LOGGING, 1, u32PHYLogSize, {},
                                  {{{{" 0x%02x", Byte, Each(u32PHYLogSize)}, {"\n"}}}}));
}

void AddVendorRegion(std::vector<BenchMessage> &astMessages) {
    using namespace VendorParameter;
    constexpr uint32_t u32Bytes = 32;
    const char *pcClosing = Tildes(59);
    const Content stContent{{{u16Offset, 0}, {u16DataSize, u32Bytes}}};
    const auto Rows = [&](const char *pcBanner) {
        return std::vector<PlainRow>{{pcBanner},
                                     {"\n Data (%d bytes) :\n", u16DataSize},
                                     {" 0x%02X", ByteAt(aucData), Each(u32Bytes)},
                                     {"\n"},
                                     {pcClosing}};
    };
    astMessages.push_back(Message(
        "10.1 region read, 32 bytes", TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_READ, aucData + u32Bytes,
        stContent, {{Rows("\n~~~~~~~~~~~~~~ VSRO READ INDICATION RECEIVED ~~~~~~~~~~~~~~\n")}}));
    astMessages.push_back(Message("10.3 region written, 32 bytes", TYPE_VENDOR_SPECIFIC,
                                  SUBTYPE_VSA_WRITE, aucData + u32Bytes, stContent,
                                  {{Rows("\n~~~~~~ VSRW WRITE INDICATION RECEIVED ~~~~~~\n")}}));
    astMessages.push_back(Message(
        "10.4 region size", TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_SIZE, VendorRegionSize::Size, {},
        {{{{"\n~~~~~~ VSRegion SIZE INDICATION RECEIVED ~~~~~~\n"},
           {"\nVendor Specific Region Size : %d\n", VendorRegionSize::u32Bytes},
           {pcClosing}}}}));
}

void AddDevice(std::vector<BenchMessage> &astMessages) {
    const Content stZero{{{StatusWord::u32Value, 0}}};
    astMessages.push_back(Message("11.1 MAC address set", TYPE_MAC_ADDRESS, SUBTYPE_SET_MAC_ADDRESS,
                                  StatusWord::Size, stZero,
                                  {{{{"\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"},
                                     {"\nSTATUS : "},
                                     {" SUCCESS"},
                                     {Tildes(54)}}}}));
    astMessages.push_back(Message("12.2 device unloaded", TYPE_DEVICE_UNLOAD,
                                  SUBTYPE_DEVICE_UNLOADED_IND, 0, {},
                                  {{{{"\n~~~~~~ DEVICE RESET_UNLOAD MESSAGE RECEIVED ~~~~~~\n"},
                                     {"\nDEVICE IS UNLOADED\n"},
                                     {Tildes(50)}}}}));
    astMessages.push_back(Message("13.5 search thresholds", TYPE_DEVICE_CONFIG,
                                  SUBTYPE_CINR_RSSI_THRESHOLD, CinrRssiThreshold::Size, {},
                                  {{{{"\n~~~~~~ SET CINR RSSI RESPONSE RECEIVED ~~~~~~\n"},
                                     {"CINR Value Set : %d\n", CinrRssiThreshold::s32CINR},
                                     {"RSSI Value Set : %d\n", CinrRssiThreshold::s32RSSI},
                                     {Closing(45)}}}}));
    astMessages.push_back(
        Message("13.6 IP filter status", TYPE_DEVICE_CONFIG, SUBTYPE_IP_FILTER_STATUS_IND,
                StatusWord::Size, {{{StatusWord::u32Value, 1}}},
                {{{{"\nIP Filtering Status received as : IP_FILTER_STATUS_SUCCESS(%d)",
                    StatusWord::u32Value}}}}));
    astMessages.push_back(Message("16.1 reset", TYPE_CHIPSET, SUBTYPE_CHIPSET_RESET, 0, {},
                                  {{{{"\n~~~~~~~~~~ RESET INDICATION RECEIVED ~~~~~~~~~~\n"}}}}));
    astMessages.push_back(Message(
        "16.2 download status", TYPE_CHIPSET, SUBTYPE_FIRMWARE_DOWNLOAD,
        DownloadStatus::acPath + 64,
        {{{DownloadStatus::u32Status, 0}, {DownloadStatus::u32FileType, DownloadFile::Firmware}},
         {{DownloadStatus::acPath, "./firmware/baseband.bin"}}},
        {{{{"\n~~~~~~~~~~ FIRMWARE DOWNLOAD STATUS RECEIVED ~~~~~~~~~~\n"},
           {"\n Firmware Download Status : %d", DownloadStatus::u32Status},
           {"\n Firmware File : "},
           {"%s", ByteAt(DownloadStatus::acPath)},
           {Closing(55)}}}}));
}

void AddStatistics(std::vector<BenchMessage> &astMessages) {
    using namespace Statistics;
    constexpr uint32_t u32Connections = 6;
    const auto ErrorRate = [](ByteView stRecord) {
        return static_cast<double>(static_cast<float>(Get(stRecord, u32FramesInError)) /
                                   static_cast<float>(Get(stRecord, u32FramesReceived)));
    };
    astMessages.push_back(
        Message("17.1 statistics", TYPE_STATISTICS, SUBTYPE_STATISTICS, Size,
                {{{s32NumConnections, u32Connections}}},
                {{{{"\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"},
                   {"\nNum frames recvd\t: %d", u32FramesReceived},
                   {"\nSize of Stats Struct\t: %d", u32RecordSize},
                   {"\nCenterFrequency in KHz \t: %d", u32CenterFrequency},
                   {"\nCUR CINR\t\t: %d (0x%x)", u32CINR, stSame},
                   {"\nCUR RSSI\t\t: %d (0x%x)", u32RSSI, stSame},
                   {"\nNum Of CqichTxmtd\t: %d (0x%x)", u32CQICHTransmitted, stSame},
                   {"\nNum Of CRC Errors\t: %d (0x%x)", u32CRCErrors, stSame},
                   {"\nFrames in Error\t\t: %d (0x%x)", u32FramesInError, stSame},
                   {"\nNum Of Hcs Errors\t: %d (0x%x)", u32HCSErrors, stSame},
                   {"\n\nFrame Error Rate\t: %f", {}, {.pfnValue = ErrorRate}},
                   {"\nDownlink burst data FEC\t: %d (0x%x)", u8BurstFEC, stSame},
                   {"\nTx Power\t\t: %d (0x%x)", s8TxPower, stSame},
                   {"\nBaseID\t\t\t: %02x %02x %02x %02x %02x %02x", aucBSID},
                   {"\nNumber of BRTH \t:0x%x", u32BandwidthRequests},
                   {"\nNumber of Connections \t:%d", s32NumConnections},
                   {"\nTransport CID \t:0x%x", au32TransportCIDs, Each(u32Connections)},
                   {Closing(49)}}}}));
}

void AddIdleMode(std::vector<BenchMessage> &astMessages) {
    using namespace IdleIndication;
    constexpr uint32_t u32Vendor = 8;
    const char *pcClosing = Closing(41);
    std::vector<PlainRow> astRows{
        {"\n~~~~~~~~~~ IDLE MODE INDICATION ~~~~~~~~~~\n"},
        {"\n MODEM IS GOING INTO IDLE MODE.\n"},
        {"\n PLANNED IDLE MODE TIMEOUT : %d", u32State},
        {"\n PREAMBLE ID  : %d", u32PreambleID},
        {"\n CINR MEAN : %d dB", u32CINRMean},
        {"\n RSSI MEAN: %d dB", s32RSSIMean, {.u32Divisor = 4}},
        {"\n BS ID  :  %02X %02X %02X %02X %02X %02X", aucBSID},
    };
    Append(astRows, VendorRows("\n Vendor specific data \n", aucVendorData, u32Vendor));
    astRows.emplace_back(pcClosing);
    astMessages.push_back(
        Message("19.1 idle mode", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE, aucVendorData + u32Vendor,
                {{{u32State, 720}, {s32VendorDataLength, u32Vendor}}}, {{astRows}}));
    astMessages.push_back(Message("19.2 idle mode status", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_STATUS,
                                  StatusWord::Size, {},
                                  {{{{"\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n\n"},
                                     {"IDLE MODE STATUS : %d \n", StatusWord::u32Value},
                                     {pcClosing}}}}));
    astMessages.push_back(
        Message("19.3 inactivity timer", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_INACTIVITY_TIMER,
                StatusWord::Size, {},
                {{{{"\n~~~~~~~~~~ IDLE MODE INACTIVITY TIMER RESPONSE ~~~~~~~~~~\n\n"},
                   {"IDLE MODE INACTIVITY TIMER RETURN STATUS : %d \n", StatusWord::u32Value},
                   {pcClosing}}}}));
    astMessages.push_back(Message("19.4 wake-up", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_WAKE_UP,
                                  StatusWord::Size, {},
                                  {{{{"\n~~~~~~~~~~ IDLE MODE WAKEUP RESPONSE ~~~~~~~~~~\n\n"},
                                     {"IDLE MODE WAKEUP RESPONSE RECEIVED AS SUCCESS\n"},
                                     {Closing(47)}}}}));
}

void AddTrace(std::vector<BenchMessage> &astMessages) {
    using namespace TraceRecord;
    constexpr uint32_t u32Body = 100;
    astMessages.push_back(Message("21.1 trace record, body of 100 bytes", TYPE_MAC_MGMT,
                                  SUBTYPE_MAC_MGMT_TRACE_IND, aucBody + u32Body,
                                  {{{u8Direction, MSToBS}, {u32Code, 5}, {s32BodyLength, u32Body}}},
                                  {{{{"\n~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~\n"},
                                     {"\nFRAME NUMBER : 0x%X", u32FrameNumber},
                                     {"\nMESSAGE DIRECTION : MS to BS"},
                                     {"\nMESSAGE : (CODE : %d) ", TraceRecord::u32Code},
                                     {"Ranging Response"},
                                     {" "},
                                     {"\nData (%d) bytes :\n", s32BodyLength},
                                     {" 0x%02x", ByteAt(aucBody), Each(u32Body)},
                                     {"\n"},
                                     {"\nCID  :  0x%X", u32CID},
                                     {"\nCMAC OK  :  %d", u8CMACResult},
                                     {Closing(41)}}}}));
    astMessages.push_back(Message("21.3 trace state", TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_STATUS,
                                  TraceState::Size, {{{TraceState::u32State, TraceState::Enabled}}},
                                  {{{{"\n~~~~~~~~~~MAC MGMT MESSAGE STATUS TO HOST~~~~~~~~~~\n"},
                                     {"\nMAC MGMT MESSAGES TO HOST IS ENABLED\n"},
                                     {Tildes(51)}}}}));
}

void AddGPIO(std::vector<BenchMessage> &astMessages) {
    constexpr const char *pcHead = "\n~~~~~~ GPIO INDICATION ~~~~~~\n";
    const char *pcClosing = Tildes(27);
    constexpr PlainExtra stEntry{.eNumbers = Numbers::BehindIndex};
    astMessages.push_back(Message(
        "22.2 GPIO bit", TYPE_GPIO, SUBTYPE_GPIO_STATUS, GPIOBit::Size, {{{GPIOBit::u32Value, 1}}},
        {{{{pcHead}, {"\n Bit %d : ", GPIOBit::u32Position}, {"SET"}, {pcClosing}}}}));
    astMessages.push_back(
        Message("22.4 LED state", TYPE_GPIO, SUBTYPE_GET_LED_STATE, LEDState::Size, {},
                {{{{pcHead}}},
                 {{{"StateInfo[%d].ucLedType = %x\n", LEDEntry::ucLedType, stEntry},
                   {"StateInfo[%d].ucLedOnState = %x\n", LEDEntry::ucLedOnState, stEntry},
                   {"StateInfo[%d].ucLedBlinkState = %x\n", LEDEntry::ucLedBlinkState, stEntry}},
                  LEDState::astEntries,
                  LEDState::Size,
                  LEDEntry::Size},
                 {{{"GET Information updated to driver"}, {pcClosing}}}}));
}

void AddMobility(std::vector<BenchMessage> &astMessages) {
    using namespace Handover;
    constexpr uint32_t u32Vendor = 8;
    std::vector<PlainRow> astRows{
        {"\n~~~~~~ HANDOVER RESPONSE MESSAGE ~~~~~~\n"},
        {"\nHANDOFF SUCCESS!!\n"},
        {"\nLast Preamble ID: %d\n", u32LastPreambleID},
        {"\nCurrent Preamble ID: %d\n", u32CurrentPreambleID},
        {"\nHand over latency: %d\n", u32HOLatency},
        {"\nNumber of Ranging Failures: %d\n", u32NumRangingFailures},
        {"\nCurrent BSID: %02x %02x %02x %02x %02x %02x", au8CurrentBSID},
        {"\nLast BSID: %02x %02x %02x %02x %02x %02x", au8LastBSID},
        {"\nIP Refresh needs to be done\n"},
        {"\nVENDOR SPECIFIC DATA LENGTH : %d\n", u32VendorSpecificDataLength},
    };
    Append(astRows, VendorRows("\nVENDOR SPECIFIC DATA\n", au8VendorSpecificData, u32Vendor));
    astRows.emplace_back(Tildes(39));
    astMessages.push_back(Message(
        "23.1 handover", TYPE_HANDOVER, SUBTYPE_HANDOVER_IND, au8VendorSpecificData + u32Vendor,
        {{{u8HOSuccess, 1}, {u8IPRefreshNeeded, 1}, {u32VendorSpecificDataLength, u32Vendor}}},
        {{astRows}}));
    astMessages.push_back(Message(
        "26.2 sleep mode", TYPE_SLEEP_MODE, SUBTYPE_SLEEP_MODE_IND,
        SleepMode::astPSCDefinition + PSCDefinition::Size, {},
        {{{{"\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"},
           {"\n APP: numOfDefinitions %d", SleepMode::numOfDefinitions}}},
         {{{"\n APP: u16FinalSleepWindowBase %d \n", PSCDefinition::u16FinalSleepWindowBase}},
          SleepMode::astPSCDefinition}}));
}

void AddMIB(std::vector<BenchMessage> &astMessages) {
    using namespace MIBRecord;
    constexpr const char *pcHead = "\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n";
    constexpr const char *pcGet = "\nGet Response received";
    const char *pcClosing = Tildes(52);
    const std::vector<PlainRow> astValueRows{{"\n MIB OID - %d : ", u32AttributeID},
                                             {" 0x%02x", ByteAt(MIBRecord::aucValue), Each(4)},
                                             {" UINT eq : %d", u32LongValue},
                                             {"\n"}};
    constexpr uint32_t u32RecordSize = MIBRecord::aucValue + 4;
    astMessages.push_back(Message("24.2 MIB value", TYPE_MIB, SUBTYPE_MIB_GET, u32RecordSize,
                                  {{{u32AttributeID, 1007}, {s8Status, 0}, {u32DataLength, 4}}},
                                  {{{{pcHead}, {pcGet}}}, {astValueRows}, {{{pcClosing}}}}));

    constexpr uint32_t u32Records = 8;
    Content stContent{{{MIBRecordList::u16Count, u32Records}}};
    for (uint32_t i = 0; i < u32Records; ++i) {
        const uint32_t u32Base = MIBRecordList::astRecords + i * u32RecordSize;
        stContent.astValues.push_back({s8Status, 0, u32Base});
        stContent.astValues.push_back({u32DataLength, 4, u32Base});
    }
    const uint32_t u32RecordsSize = u32Records * u32RecordSize;
    astMessages.push_back(
        Message("24.4 MIB values, 8 of them", TYPE_MIB, SUBTYPE_MULTIPLE_MIB_GET,
                MIBRecordList::astRecords + u32RecordsSize, stContent,
                {{{{pcHead}, {pcGet}}},
                 {astValueRows, MIBRecordList::astRecords, u32RecordsSize, u32RecordSize},
                 {{{pcClosing}}}}));

    constexpr uint32_t u32Neighbours = 4;
    constexpr uint32_t u32NeighboursSize = u32Neighbours * MIBMeasuredNeighbour::Size;
    constexpr uint32_t u32ListSize = MIBNeighbourList::astEntries + u32NeighboursSize;
    using namespace MIBMeasuredNeighbour;
    astMessages.push_back(Message(
        "24.2 MIB, 4 measured neighbours", TYPE_MIB, SUBTYPE_MIB_GET,
        MIBRecord::aucValue + u32ListSize,
        {{{u32AttributeID, MIBAttribute::MeasuredNeighbours},
          {s8Status, 0},
          {u32DataLength, u32ListSize},
          {MIBNeighbourList::u32Count, u32Neighbours, MIBRecord::aucValue}}},
        {{{{pcHead}, {pcGet}, {"\n MIB OID - %d : ", u32AttributeID}}},
         {{{"\nNumber of Neighbours %d\n", MIBNeighbourList::u32Count}}, MIBRecord::aucValue},
         {{{"\n~~~~~~~ Neighbour %d ~~~~~~~ \n", {}, {.eNumbers = Numbers::Index}},
           {"\tFrequency (MHz) : %f\n", u32Frequency, {.u32Divisor = 8}},
           {"\tPreambleId      : %d\n", u32PreambleID},
           {"\tBandwidth (MHz) : %f\n", u32Bandwidth, {.u32Divisor = 1000000}},
           {"\tBSId            : %02x %02x %02x %02x %02x %02x\n", aucBSID},
           {"\tRSSI (dBm)      : %f\n", u32RSSI, {.u32Divisor = 65536}},
           {"\tR1CINR          : %f\n", u32R1CINR, {.u32Divisor = 65536}},
           {"\tR3CINR          : %f\n", u32R3CINR, {.u32Divisor = 65536}},
           {"\tToF             : %f\n", u32ToF, {.u32Divisor = 16}},
           {"\tRTD             : %d\n", u32RTD},
           {"\tMeasDur         : %d\n", u32MeasDur},
           {"\tFlags(Hex)      : %x\n", u32Flags}},
          MIBRecord::aucValue + MIBNeighbourList::astEntries,
          u32NeighboursSize,
          MIBMeasuredNeighbour::Size}}));
}

void AddAntennas(std::vector<BenchMessage> &astMessages) {
    constexpr const char *pcHead =
        "\n~~~~~~~~~~~~~~~ ANTENNA_SWITCHING_SELECTION MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n";
    const char *pcClosing = Tildes(52);
    {
        using namespace AntennaConfig;
        astMessages.push_back(
            Message("28.1 antenna pins", TYPE_ANTENNA, SUBTYPE_ANTENNA_CONFIG, Size,
                    {{{u32SetConfig, 0}, {u32Status, 0}, {u32NumRxGPIOs, 4}, {u32NumTxGPIOs, 1}}},
                    {{{{pcHead},
                       {"\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"},
                       {"\nTotal Number of Rx GPIO's to be used: %d", u32NumRxGPIOs},
                       {"\nList of Rx GPIO's are : "},
                       {" %d", au32RxGPIO, Each(4)},
                       {"\nTotal Number of Tx GPIO's to be used: %d", u32NumTxGPIOs},
                       {"\nList of Tx GPIO's are : "},
                       {" %d", u32TxGPIO},
                       {pcClosing}}}}));
    }
    using namespace AntennaScan;
    constexpr uint32_t u32Frames = 16;
    astMessages.push_back(
        Message("28.2 antenna scan, 16 frames", TYPE_ANTENNA, SUBTYPE_ANTENNA_SCANNING, Size,
                {{{u32ScanStatus, 1}, {u32ScanError, 0}, {u32FramesScanned, u32Frames}}},
                {{{{pcHead},
                   {"\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"},
                   {"\nScanning Status : %d", u32ScanStatus},
                   {"\nAcual Frames Scanned : %d", u32FramesScanned},
                   {"\nRx GPIO Pattern Infomation:  %u %u %u", au32RxGPIOPattern},
                   {"\nRSSI Measurement of Antenna 1: "},
                   {" %d", as32RSSIAnt1, Each(u32Frames)},
                   {"\nCINR Measurement of Antenna 1: "},
                   {" %d", as32CINRAnt1, Each(u32Frames)},
                   {"\nRSSI Measurement of Antenna 2: "},
                   {" %d", as32RSSIAnt2, Each(u32Frames)},
                   {"\nCINR Measurement of Antenna 2: "},
                   {" %d", as32CINRAnt2, Each(u32Frames)},
                   {"\nActual Framer Numbers Scanned: "},
                   {" %u", au32FrameNumber, Each(u32Frames)},
                   {"\nCurrent GPIO Pattern:  %d %d %d %d", au32CurrentGPIOPattern},
                   {"\nCurrent RSSI of Antenna 1: %d", s32CurrentRSSIAnt1},
                   {"\nCurrent CINR of Antenna 1: %d", s32CurrentCINRAnt1},
                   {"\nCurrent RSSI of Antenna 2: %d", s32CurrentRSSIAnt2},
                   {"\nCurrent CINR of Antenna 2: %d", s32CurrentCINRAnt2},
                   {pcClosing}}}}));
    astMessages.push_back(Message("28.5 antenna selection", TYPE_ANTENNA, SUBTYPE_ANTENNA_SELECTION,
                                  StatusWord::Size, {{{StatusWord::u32Value, 0}}},
                                  {{{{pcHead},
                                     {"\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!"},
                                     {"\n\tSuccesfully set the Rx/Tx Antennas !!"},
                                     {pcClosing}}}}));
}

void AddOptions(std::vector<BenchMessage> &astMessages) {
    using namespace WiMAXOptions;
    constexpr uint32_t u32Specifier = 0x3B;
    const auto PutOption = [](FILE *pstFile, const char *pcFormat, ByteView stRecord,
                              uint32_t u32Index) {
        constexpr const char *apcNames[Count] = {
            "Bit Mapped payload", "MIB EEPROM Writes on/off",
            "Not used",           "MCS/HARQ MIB Writes on/off",
            "EAP Security level", "Idle mode paging value",
            "Not used",           "Not used",
        };
        fprintf(pstFile, pcFormat, u32Index, apcNames[u32Index],
                (u32Specifier >> u32Index & 1) != 0 ? "SET" : "RESET",
                Get(stRecord, {0, FieldType::U32}));
    };
    astMessages.push_back(
        Message("29.3 options", TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_GET_ALL, Size,
                {{{u32Status, 0}, {u8Specifier, u32Specifier}}},
                {{{{"\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"},
                   {"\n Received for wimax option specifier : [%d(%x)]", u8Specifier, stSame},
                   {"\n Wimax options payload per option\n"}}},
                 {{{"\n bit[%u] %-25s Status: %s  Payload: %d", {}, {.pfnPut = PutOption}}},
                  au32Values.u16Offset,
                  Count * 4,
                  4},
                 {{{"\n"}}}}));
}

void AddShutdown(std::vector<BenchMessage> &astMessages) {
    const Content stZero{{{StatusWord::u32Value, 0}}};
    astMessages.push_back(Message("30.1 shutdown", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN,
                                  StatusWord::Size, stZero,
                                  {{{{"\n\n~~~~~~~~~~ SHUTDOWN RESPONSE RECEIVED ~~~~~~~~~~\n"},
                                     {"\n\tBASEBAND IS IN SHUTDOWN STATE"},
                                     {Closing(48)}}}}));
    astMessages.push_back(
        Message("30.2 shutdown by firmware", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_FROM_FIRMWARE_IND, 0,
                {}, {{{{"\n\n~~~~~~~~~~ SHUTDOWN REQUEST FROM FIRMWARE RECEIVED ~~~~~~~~~~\n"}}}}));
    constexpr uint32_t u32Stations = 4;
    Content stContent{{{StationList::u32NumStations, u32Stations}}};
    for (uint32_t i = 0; i < u32Stations; ++i) {
        stContent.astValues.push_back(
            {BaseStation::u8CompressedMap, 0, StationList::astStations + i * BaseStation::Size});
    }
    astMessages.push_back(Message(
        "30.3 periodic wake-up, 4 stations", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_PERIODIC_WAKE_UP_IND,
        StationList::astStations + u32Stations * BaseStation::Size, stContent,
        {{{{"\n\n~~~~~~~~~~ PERIODIC WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n"},
           {"\n%d BASE STATIONS FOUND.\n", StationList::u32NumStations}}},
         {{{"\nBASE STATION : %d\n-------------------\n",
            {1, FieldType::None},
            {.eNumbers = Numbers::Index}},
           {"\nBS ID  :%02X %02X %02X %02X %02X %02X %02X", BaseStation::aucWakeUpBSID},
           {" - NORMAL MAP"},
           {"\nPreamble Index ID  :%d", BaseStation::u32PreambleIndex},
           {"\nCenter Frequency : %d kHz", BaseStation::u32CenterFrequency},
           {"\nBandwidth : %d kHz", BaseStation::u32Bandwidth},
           {"\nRelative Signal Strength : %d dBm", BaseStation::s32SignalStrength},
           {"\nCINR : %d dB", BaseStation::s32CINR},
           {"\nDcdChangeCount : %d", BaseStation::u32DCDChangeCount},
           {"\nNspChangeCount : %d\n\n", BaseStation::u32NSPChangeCount}},
          StationList::astStations,
          u32Stations * BaseStation::Size,
          BaseStation::Size}}));
    astMessages.push_back(
        Message("30.5 shutdown status", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_MODE_STATUS,
                StatusWord::Size, stZero,
                {{{{"\n~~~~~~~~~~ SHUTDOWN MODE STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"},
                   {"\nBASEBAND IS IN SHUTDOWN MODE"},
                   {Closing(60)}}}}));
    astMessages.push_back(Message("36.3 half mini card wake-up", TYPE_HALF_MINI_CARD,
                                  SUBTYPE_HALF_MINI_CARD_WAKE_UP_IND, 0, {},
                                  {{{{"\n~~~~~~~~~~~ HALF MINI CARD WAKEUP RECEIVED~~~~~~~~~~~~\n"},
                                     {"\nModem came out of HMC Shutdown"},
                                     {Closing(54)}}}}));
}

void AddSecurity(std::vector<BenchMessage> &astMessages) {
    using namespace SecurityRecord;
    constexpr const char *pcHead = "\n~~~~~~~~~~~~~~~ Security RESPONSE RECEIVED ~~~~~~~~~~~~~~~\n";
    constexpr uint32_t u32Bytes = 32;
    const char *pcClosing = Tildes(52);
    const Content stContent{{{s8Status, 0}, {u32DataLength, u32Bytes}}};
    constexpr uint32_t u32Size = SecurityRecord::aucValue + u32Bytes;
    astMessages.push_back(Message("34.1 parameter set", TYPE_SECURITY, SUBTYPE_SECURITY_SET,
                                  u32Size, stContent,
                                  {{{{pcHead},
                                     {"\nGet Response received"},
                                     {"\nSecurity Parmater Set is Successful !!!"},
                                     {pcClosing}}}}));
    astMessages.push_back(Message("34.2 parameter, 32 bytes", TYPE_SECURITY, SUBTYPE_SECURITY_GET,
                                  u32Size, stContent,
                                  {{{{pcHead},
                                     {"\nGet Response received"},
                                     {"\n Security OID - %d : ", u32ParameterID},
                                     {" 0x%02x", ByteAt(SecurityRecord::aucValue), Each(u32Bytes)},
                                     {"\n"},
                                     {pcClosing}}}}));
    astMessages.push_back(Message("34.3 parameter size", TYPE_SECURITY, SUBTYPE_SECURITY_SIZE,
                                  u32Size, stContent,
                                  {{{{pcHead},
                                     {"\n Security Param ID - [%d], Size : [%d]\n", u32ParameterID},
                                     {pcClosing}}}}));
}

} // namespace

std::vector<BenchMessage> BenchMessages() {
    std::vector<BenchMessage> astMessages;
    AddTrace(astMessages);
    AddSearch(astMessages);
    AddLink(astMessages);
    AddAuthentication(astMessages);
    AddServiceFlows(astMessages);
    AddStation(astMessages);
    AddLogs(astMessages);
    AddVendorRegion(astMessages);
    AddDevice(astMessages);
    AddStatistics(astMessages);
    AddIdleMode(astMessages);
    AddGPIO(astMessages);
    AddMobility(astMessages);
    AddMIB(astMessages);
    AddAntennas(astMessages);
    AddOptions(astMessages);
    AddShutdown(astMessages);
    AddSecurity(astMessages);
    return astMessages;
}

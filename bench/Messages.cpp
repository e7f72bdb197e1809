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
    Put(BytesOf(stBench.stMessage), MessageHeader::Type, u32Type);
    Put(BytesOf(stBench.stMessage), MessageHeader::SubType, u32SubType);
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
        const uint32_t u32First = BaseStation::BSID.u16Offset;
        return static_cast<double>(stRecord.At(u32First) << 16 | stRecord.At(u32First + 1) << 8 |
                                   stRecord.At(u32First + 2));
    };
    Content stContent{{{StationList::NumStations, u32Stations}, {StationList::SearchStatus, 1}}};
    for (uint32_t i = 0; i < u32Stations; ++i) {
        stContent.astValues.push_back(
            {BaseStation::CompressedMap, 0, StationList::Stations + i * BaseStation::Size});
    }
    astMessages.push_back(
        Message("1.1 search, 8 stations", TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH,
                StationList::Stations + u32Stations * BaseStation::Size, stContent,
                {{{{"\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~\n"},
                   {"\n%d BASE STATIONS FOUND.\n", StationList::NumStations},
                   {"SEARCH IS COMPLETE!!"}}},
                 {{{"\nBASE STATION : %d\n-------------------\n",
                    {1, FieldType::None},
                    {.eNumbers = Numbers::Index}},
                   {"\nBS ID  :%02X %02X %02X %02X %02X %02X", BaseStation::BSID},
                   {" - NORMAL MAP"},
                   {"\nNAPID  :%d", {}, {.pfnValue = NAPID}},
                   {"\nPreamble Index ID  :%d", BaseStation::PreambleIndex},
                   {"\nCenter Frequency : %d kHz", BaseStation::CenterFrequency},
                   {"\nBandwidth : %d kHz", BaseStation::Bandwidth},
                   {"\nRelative Signal Strength : %d dBm", BaseStation::SignalStrength},
                   {"\nCINR : %d dB", BaseStation::CINR},
                   {"\nDCD change count : %d ", BaseStation::DCDChangeCount},
                   {"\nNSP change count : %d ", BaseStation::NSPChangeCount}},
                  StationList::Stations,
                  u32Stations * BaseStation::Size,
                  BaseStation::Size},
                 {{{Closing(54)}}}}));

    using namespace NSPDiscovery;
    constexpr uint32_t u32NSPs = 2;
    astMessages.push_back(Message(
        "1.4 discovery, 2 NSPs", TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_DISCOVERY_RESP, Size,
        {{{Status, Success}, {Complete, 1}, {NumNSPs, u32NSPs}},
         {{NSPs + NSPEntry::Name, "First Provider"},
          {NSPs + NSPEntry::Size + NSPEntry::Name, "Second Provider"}}},
        {{{{"\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------"},
           {"\nNSP discovery complete : %d", Complete},
           {"\nBSINFO Response status is :"},
           {"NSP_DISCOVERY_SUCCESS"},
           {"\nBS ID  :%02X %02X %02X %02X %02X %02X", BSID},
           {"\nDCD change count : %d", DCDChangeCount},
           {"\nNSP change count : %d", NSPChangeCount},
           {"\nNumber of NSP entries: %d", NumNSPs},
           {"\nPID : %d", PreambleIndex},
           {"\nCF  : %d", CenterFrequency},
           {"\nBandwidth  : %d", Bandwidth},
           {"\nRSSI  : %d", RSSI},
           {"\nCINR  : %d", CINR}}},
         {{{"\nNSPLIST Entry %u of total 2", {1, FieldType::None}, {.eNumbers = Numbers::Index}},
           {"\nNSP Name is : "},
           {"%s", ByteAt(NSPEntry::Name)},
           {"\nNSP ID is : %d", NSPEntry::ID}},
          NSPs,
          u32NSPs * NSPEntry::Size,
          NSPEntry::Size}}));

    astMessages.push_back(
        Message("1.6 low power scan", TYPE_NETWORK_SEARCH, SUBTYPE_LOW_POWER_SCAN,
                LowPowerScanAnswer::Size, {{{LowPowerScanAnswer::Result, 1}}},
                {{{{"\n~~~~~~~~~~ LOW POWER SCANMODE RESPONSE RECEIVED ~~~~~~\n"},
                   {"\n Low power scan mode set for mode %d", LowPowerScanAnswer::Mode},
                   {"\n u32Rsvd1 %u", LowPowerScanAnswer::Reserved1},
                   {"\n u32Rsvd2 %u", LowPowerScanAnswer::Reserved2},
                   {"\n u32Rsvd3 %u", LowPowerScanAnswer::Reserved3},
                   {Closing(54)}}}}));
}

void AddLink(std::vector<BenchMessage> &astMessages) {
    astMessages.push_back(Message("2.1 sync status", TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_STATUS_RESP,
                                  SyncStatus::Size,
                                  {{{SyncStatus::Status, 0}, {SyncStatus::CompressedMap, 1}}},
                                  {{{{"\n~~~~~~~~~~ SYNC STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"},
                                     {"\n SYNC STATUS  : "},
                                     {"PHY_SYNC ACHIEVED"},
                                     {" - COMPRESSED MAP"},
                                     {"\n BS ID  :%02X %02X %02X %02X %02X %02X", SyncStatus::BSID},
                                     {"\n PREAMBLE ID  : %d", SyncStatus::PreambleID},
                                     {"\n CINR MEAN : %d dB", SyncStatus::CINRMean},
                                     {"\n CINR DEVIATION: %d dB", SyncStatus::CINRDeviation},
                                     {"\n RSSI MEAN: %d dBm", SyncStatus::RSSIMean},
                                     {"\n RSSI DEVIATION: %d dBm", SyncStatus::RSSIDeviation},
                                     {"\n CENTER FREQUENCY: %d kHz", SyncStatus::CenterFrequency},
                                     {"\n BANDWIDTH : %d kHz", SyncStatus::Bandwidth},
                                     {"\n DCD change count : %d ", SyncStatus::DCDChangeCount},
                                     {"\n NSP Change count : %d ", SyncStatus::NSPChangeCount},
                                     {Closing(51)}}}}));

    constexpr uint32_t u32Vendor = 16;
    const uint32_t u32Base = NetworkEntryStatus::BaseInformationOffset;
    astMessages.push_back(Message(
        "2.2 network entry status", TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY_STATUS_RESP,
        NetworkEntryStatus::VendorData + u32Vendor,
        {{{NetworkEntryStatus::Status, LinkReason::LinkUpAchieved},
          {NetworkEntryStatus::BaseInformationPresent, 1},
          {NetworkEntryStatus::VendorDataLength, u32Vendor}}},
        {{{{"\n~~~~~~~~~~~ NETWORK ENTRY STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"},
           {"\n NETENTRY STATUS  : "},
           {"LINKUP_ACHIEVED"}}},
         {{{"\n BASE ID :%02X %02X %02X %02X %02X %02X", BaseInformation::BSID},
           {"\n PREAMBLE INDEX : %d", BaseInformation::PreambleIndex},
           {"\n UL CELL ID : %d", BaseInformation::ULCellID},
           {"\n CINR DEVIATION : %d dB", BaseInformation::CINRDeviation},
           {"\n CINR MEAN : %d dB", BaseInformation::CINRMean},
           {"\n DURATION : %d", BaseInformation::Duration},
           {"\n MEAN RSSI REPORT : %d", BaseInformation::MeanRSSI},
           {"\n STANDARD DEVIATION RSSI REPORT : 0x%X", BaseInformation::RSSIDeviation},
           {"\n UL CENTER FREQUENCY : %d MHz", BaseInformation::ULCenterFrequency},
           {"\n DL CENTER FREQUENCY : %d MHz", BaseInformation::DLCenterFrequency}},
          u32Base,
          BaseInformation::Size},
         {VendorRows("\nVENDOR SPECIFIC DATA \n", NetworkEntryStatus::VendorData, u32Vendor)},
         {{{Closing(61)}}}}));
}

void AddAuthentication(std::vector<BenchMessage> &astMessages) {
    constexpr const char *pcEAP = "\n~~~~~~ EAP RESPONSE MESSAGE ~~~~~~\n";
    constexpr const char *pcHead = "\n~~~~~~ AUTHENTICATION RESPONSE MESSAGE ~~~~~~\n";
    const char *pcClosing = Closing(42);
    using namespace AuthParamIndication;
    std::vector<PlainBlock> astBlocks{
        {{{pcEAP}, {pcHead}, {"\nAUTH PARAM INDICATION MESSAGE RECEIVED."}}}};
    AppendDump(astBlocks, "AUTH REQUEST TYPE", RequestType, 1);
    AppendDump(astBlocks, "AUTH ACK/NAK", Acknowledgement, 1);
    astBlocks.push_back({{{"\nAUTH METHOD TYPE : AUTH_METHOD_EAP_AKA\n"}}});
    AppendDump(astBlocks, "WNID", WNID, KeySize);
    AppendDump(astBlocks, "K ID", KID, KeySize);
    AppendDump(astBlocks, "OPc", OPc, KeySize);
    AppendDump(astBlocks, "NonK", NonK, KeySize);
    AppendDump(astBlocks, "NonOPc", NonOPc, KeySize);
    AppendDump(astBlocks, "C1_5_R1_5", Constants, ConstantsSize);
    AppendDump(astBlocks, "PseudonymID", Pseudonym, u32PseudonymSize);
    AppendDump(astBlocks, "SQNMS", SQNMS, u32SQNMSSize);
    astBlocks.push_back({{{"\n"}, {pcClosing}, {pcClosing}}});
    astMessages.push_back(Message("4.5 authentication parameters", TYPE_AUTHENTICATION,
                                  SUBTYPE_AUTH_PARAM_IND, Size, {{{Method, AuthMethod::EAPAKA}}},
                                  astBlocks));

    constexpr uint32_t u32Transfer = 64;
    astBlocks = {{{{pcEAP}, {"\nAUTH EAP TRANSFER INDICATION RECEIVED."}}}};
    AppendDump(astBlocks, "AUTH TRANSFER INDICATION BUFFER", EAPTransfer::Data, u32Transfer);
    astBlocks.push_back({{{pcHead}, {pcClosing}, {pcClosing}}});
    astMessages.push_back(Message("4.6 EAP transfer, 64 bytes", TYPE_AUTHENTICATION,
                                  SUBTYPE_EAP_TRANSFER_IND, EAPTransfer::Data + u32Transfer,
                                  {{{EAPTransfer::Length, u32Transfer}}}, astBlocks));

    astMessages.push_back(
        Message("4.10 encryption result", TYPE_AUTHENTICATION, SUBTYPE_ENCRYPTION_RESULT_RESP,
                EncryptionTest::Data + 17, {{{EncryptionTest::DataLength, 16}}},
                {{{{pcEAP},
                   {"\nEAP ENCRYPT PRIVATE RESPONSE RECEIVED"},
                   {"\nPadding algorithm used u32Padding = %d ", EncryptionTest::Padding},
                   {"\nEncrypted data \n"},
                   {"%d \t", ByteAt(EncryptionTest::Data + 16)},
                   {pcHead},
                   {pcClosing},
                   {pcClosing}}}}));
}

void AddServiceFlows(std::vector<BenchMessage> &astMessages) {
    using namespace ServiceFlowRecord;
    constexpr const char *pcHead = "\n~~~~~~ SERVICE FLOW RESPONSE MESSAGE ~~~~~~\n";
    const char *pcClosing = Closing(42);
    const Content stContent{{{ConfirmationCode, 0},
                             {Direction, Downlink},
                             {SFParamSet::SetPresent, 0, ProvisionedSet},
                             {SFParamSet::SetPresent, 0, AdmittedSet},
                             {SFParamSet::SetPresent, 1, ActiveSet}}};
    astMessages.push_back(Message(
        "6.1 flow added", TYPE_SERVICE_FLOW, SUBTYPE_DSA, Size, stContent,
        {{{{pcHead},
           {"\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"},
           {"\nService flow added with confirmation code : %d\n", ConfirmationCode}}},
         {{{"\nService flow Identifier(u32SFID)          : %d\n", SFParamSet::SFID},
           {"\nConnection Identifier(u16CID)             : %d\n", SFParamSet::CID}},
          ActiveSet,
          SFParamSet::Size},
         {{{"\nDirection of Service Flow                 : %d\n", Direction}, {pcClosing}}}}));
    astMessages.push_back(Message(
        "6.2 flow deleted", TYPE_SERVICE_FLOW, SUBTYPE_DSD, Size, stContent,
        {{{{pcHead}, {"\nSF DELETE INDICATION RESPONSE MESSAGE RECEIVED."}, {pcClosing}}}}));
    astMessages.push_back(
        Message("6.3 flow changed", TYPE_SERVICE_FLOW, SUBTYPE_DSC, Size, stContent,
                {{{{pcHead},
                   {"\nSF CHANGE INDICATION RESPONSE MESSAGE RECEIVED."},
                   {"\nService flow changed with confirmation code %d", ConfirmationCode},
                   {pcClosing}}}}));
}

template <uint32_t u32Bit> double MaskBit(ByteView stPayload) {
    return Get(stPayload, EEPROMSummary::ValidMask) >> u32Bit & 1;
}

void AddStation(std::vector<BenchMessage> &astMessages) {
    using namespace SSInformation;
    const char *pcClosing = Tildes(46);
    astMessages.push_back(
        Message("7.1 station information", TYPE_SS_INFO, SUBTYPE_SS_INFO, Size,
                {{{Calibration, Band0 | Band1 | Band2}}, {{DriverVersion, "4.2.17 of the driver"}}},
                {{{{"\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~\n"},
                   {"\nFirmware Version : %d.%d.%d", FirmwareVersion},
                   {"\nDriver Version : "},
                   {"%s", ByteAt(DriverVersion)},
                   {"\nLibrary Version : %02d.%02d.%02d", LibraryVersion},
                   {"\nBaseband Chip Version : %x", BasebandChipVersion},
                   {"\nRF Chip Version : %x", RFChipVersion},
                   {"\nMAC ADDRESS : %02x-%02x-%02x-%02x-%02x-%02x", MACAddress},
                   {"\nCalibration Status: "},
                   {"CALIBRATED"},
                   {"\nCalibrated Band Information: "},
                   {"Band 0 & Band 1 & Band 2\n"},
                   {"EEPROM Version : %x.%x\n", EEPROMVersion},
                   {pcClosing}}}}));
    astMessages.push_back(Message("7.2 EEPROM summary", TYPE_SS_INFO, SUBTYPE_SS_EEPROM_INFO,
                                  EEPROMSummary::Size, {{{EEPROMSummary::ValidMask, 0x7FE}}},
                                  {{{{"\n~~~~~~~~~~~~~~~ EEPROM SS INFO RESPONSE ~~~~~~~~~~~~~~\n"},
                                     {"\nEEPROM Size\t\t: %d KB\n", EEPROMSummary::SizeInKB},
                                     {"\nEEPROM Valid Info : 0x%x\n", EEPROMSummary::ValidMask},
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
                   {"\nRF SECTION VERSION        :   %d", EEPROMVersions::RF},
                   {"\nPHY SECTION VERSION       :   %d", EEPROMVersions::PHY},
                   {"\nMAC SECTION VERSION       :   %d", EEPROMVersions::MAC},
                   {"\nCAL SECTION VERSION       :   %d", EEPROMVersions::CAL},
                   {"\nHW SECTION VERSION        :   %d", EEPROMVersions::HW},
                   {"\nMIB SECTION VERSION       :   %d", EEPROMVersions::MIB},
                   {"\nSECURITY SECTION VERSION  :   %d", EEPROMVersions::Security},
                   {"\nOMADM SECTION VERSION     :   %d", EEPROMVersions::OMADM},
                   {"\nMRU SECTION VERSION       :   %d", EEPROMVersions::MRU},
                   {"\nVSA SECTION VERSION       :   %d\n", EEPROMVersions::VSA},
                   {Tildes(63)}}}}));
}

// A log of type 8: eight entries.
void AddLog(std::vector<BenchMessage> &astMessages, const char *pcName, uint32_t u32Kind,
            const char *pcHeading, uint32_t u32EntrySize, std::vector<PlainRow> astRows) {
    constexpr uint32_t u32Entries = 8;
    const uint32_t u32Size = u32Entries * u32EntrySize;
    astMessages.push_back(
        Message(pcName, TYPE_START_LOGGER, u32Kind, LogRecord::Data + u32Size,
                {{{LogRecord::Length, u32Size}}},
                {{{{"\n~~~~~~ LOGGER INDICATION RECEIVED ~~~~~~\n"}, {pcHeading}}},
                 {std::move(astRows), LogRecord::Data, u32Size, u32EntrySize},
                 {{{Tildes(40)}}}}));
}

void AddLogs(std::vector<BenchMessage> &astMessages) {
    AddLog(astMessages, "8.1 ranging log, 8 entries", SUBTYPE_LOG_INITIAL_RANGING,
           "\nINITIAL RANGING LOG\n*******************\n", RangingLogEntry::Size,
           {{"\nCODE : 0x%X", RangingLogEntry::Code},
            {"\nFRAME NUMBER : 0x%X", RangingLogEntry::FrameNumber},
            {"\nSUB-CHANNEL : 0x%X", RangingLogEntry::SubChannel},
            {"\nSYMBOL : 0x%X\n", RangingLogEntry::Symbol}});
    AddLog(astMessages, "8.4 bandwidth log, 8 entries", SUBTYPE_LOG_BANDWIDTH,
           "\nBW LOG\n************\n", BandwidthLogEntry::Size,
           {{"\nALLOCATION RECEIVED : %d", BandwidthLogEntry::AllocationReceived},
            {"\nPDU LENGTH : %d", BandwidthLogEntry::PDULength},
            {"\nCID : %d", BandwidthLogEntry::CID},
            {"\nVCID : %d", BandwidthLogEntry::VCID},
            {"\nSCH TYPE : %d", BandwidthLogEntry::SchedulingType},
            {"\nBW REQ : %d", BandwidthLogEntry::BandwidthRequest},
            {"\nQUEUE DEPTH : %d", BandwidthLogEntry::QueueDepth},
            {"\nFRAME NUMBER : %d\n", BandwidthLogEntry::FrameNumber}});
    AddLog(astMessages, "8.5 power log, 8 entries", SUBTYPE_LOG_CLOSED_LOOP_POWER,
           "\nCLOSED LOOP POWER ADJDUSTMENT LOG\n*********************************\n",
           PowerLogEntry::Size,
           {{"\nPOWER ADJUSTMENT : %f dBm", PowerLogEntry::Adjustment, {.u32Divisor = 4}},
            {"\nFRAME OFFSET : %d", PowerLogEntry::FrameOffset},
            {"\nFRAME NUMBER : %d", PowerLogEntry::FrameNumber},
            {"\nPOWER : %d\n", PowerLogEntry::Power}});
    AddLog(astMessages, "8.7 connection log, 8 entries", SUBTYPE_LOG_CID,
           "\nCID LOG\n************\n", CIDLogEntry::Size,
           {{"\nCID : %d", CIDLogEntry::CID},
            {"\nVCID : %d", CIDLogEntry::VCID},
            {"\nDIR : %d", CIDLogEntry::Direction},
            {"\nARQ : %d\n", CIDLogEntry::ARQ}});
    AddLog(astMessages, "8.8 CQICH log, 8 entries", SUBTYPE_LOG_CQICH,
           "\nCQICH LOG\n************\n", CQICHLogEntry::Size,
           {{"\nCQICH : %d\n", CQICHLogEntry::Value}});
    astMessages.push_back(Message("31 PHY log, 200 bytes", TYPE_PHY_LOGGING, 1, u32PHYLogSize, {},
                                  {{{{" 0x%02x", Byte, Each(u32PHYLogSize)}, {"\n"}}}}));
}

void AddVendorRegion(std::vector<BenchMessage> &astMessages) {
    using namespace VendorParameter;
    constexpr uint32_t u32Bytes = 32;
    const char *pcClosing = Tildes(59);
    const Content stContent{{{Offset, 0}, {DataSize, u32Bytes}}};
    const auto Rows = [&](const char *pcBanner) {
        return std::vector<PlainRow>{{pcBanner},
                                     {"\n Data (%d bytes) :\n", DataSize},
                                     {" 0x%02X", ByteAt(Data), Each(u32Bytes)},
                                     {"\n"},
                                     {pcClosing}};
    };
    astMessages.push_back(Message(
        "10.1 region read, 32 bytes", TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_READ, Data + u32Bytes,
        stContent, {{Rows("\n~~~~~~~~~~~~~~ VSRO READ INDICATION RECEIVED ~~~~~~~~~~~~~~\n")}}));
    astMessages.push_back(Message("10.3 region written, 32 bytes", TYPE_VENDOR_SPECIFIC,
                                  SUBTYPE_VSA_WRITE, Data + u32Bytes, stContent,
                                  {{Rows("\n~~~~~~ VSRW WRITE INDICATION RECEIVED ~~~~~~\n")}}));
    astMessages.push_back(Message(
        "10.4 region size", TYPE_VENDOR_SPECIFIC, SUBTYPE_VSA_SIZE, VendorRegionSize::Size, {},
        {{{{"\n~~~~~~ VSRegion SIZE INDICATION RECEIVED ~~~~~~\n"},
           {"\nVendor Specific Region Size : %d\n", VendorRegionSize::Bytes},
           {pcClosing}}}}));
}

void AddDevice(std::vector<BenchMessage> &astMessages) {
    const Content stZero{{{StatusWord::Value, 0}}};
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
                                     {"CINR Value Set : %d\n", CinrRssiThreshold::CINR},
                                     {"RSSI Value Set : %d\n", CinrRssiThreshold::RSSI},
                                     {Closing(45)}}}}));
    astMessages.push_back(
        Message("13.6 IP filter status", TYPE_DEVICE_CONFIG, SUBTYPE_IP_FILTER_STATUS_IND,
                StatusWord::Size, {{{StatusWord::Value, 1}}},
                {{{{"\nIP Filtering Status received as : IP_FILTER_STATUS_SUCCESS(%d)",
                    StatusWord::Value}}}}));
    astMessages.push_back(Message("16.1 reset", TYPE_CHIPSET, SUBTYPE_CHIPSET_RESET, 0, {},
                                  {{{{"\n~~~~~~~~~~ RESET INDICATION RECEIVED ~~~~~~~~~~\n"}}}}));
    astMessages.push_back(Message(
        "16.2 download status", TYPE_CHIPSET, SUBTYPE_FIRMWARE_DOWNLOAD, DownloadStatus::Path + 64,
        {{{DownloadStatus::Status, 0}, {DownloadStatus::FileType, DownloadFile::Firmware}},
         {{DownloadStatus::Path, "./firmware/baseband.bin"}}},
        {{{{"\n~~~~~~~~~~ FIRMWARE DOWNLOAD STATUS RECEIVED ~~~~~~~~~~\n"},
           {"\n Firmware Download Status : %d", DownloadStatus::Status},
           {"\n Firmware File : "},
           {"%s", ByteAt(DownloadStatus::Path)},
           {Closing(55)}}}}));
}

void AddStatistics(std::vector<BenchMessage> &astMessages) {
    using namespace Statistics;
    constexpr uint32_t u32Connections = 6;
    const auto ErrorRate = [](ByteView stRecord) {
        return static_cast<double>(static_cast<float>(Get(stRecord, FramesInError)) /
                                   static_cast<float>(Get(stRecord, FramesReceived)));
    };
    astMessages.push_back(
        Message("17.1 statistics", TYPE_STATISTICS, SUBTYPE_STATISTICS, Size,
                {{{NumConnections, u32Connections}}},
                {{{{"\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"},
                   {"\nNum frames recvd\t: %d", FramesReceived},
                   {"\nSize of Stats Struct\t: %d", RecordSize},
                   {"\nCenterFrequency in KHz \t: %d", CenterFrequency},
                   {"\nCUR CINR\t\t: %d (0x%x)", CINR, stSame},
                   {"\nCUR RSSI\t\t: %d (0x%x)", RSSI, stSame},
                   {"\nNum Of CqichTxmtd\t: %d (0x%x)", CQICHTransmitted, stSame},
                   {"\nNum Of CRC Errors\t: %d (0x%x)", CRCErrors, stSame},
                   {"\nFrames in Error\t\t: %d (0x%x)", FramesInError, stSame},
                   {"\nNum Of Hcs Errors\t: %d (0x%x)", HCSErrors, stSame},
                   {"\n\nFrame Error Rate\t: %f", {}, {.pfnValue = ErrorRate}},
                   {"\nDownlink burst data FEC\t: %d (0x%x)", BurstFEC, stSame},
                   {"\nTx Power\t\t: %d (0x%x)", TxPower, stSame},
                   {"\nBaseID\t\t\t: %02x %02x %02x %02x %02x %02x", BSID},
                   {"\nNumber of BRTH \t:0x%x", BandwidthRequests},
                   {"\nNumber of Connections \t:%d", NumConnections},
                   {"\nTransport CID \t:0x%x", TransportCIDs, Each(u32Connections)},
                   {Closing(49)}}}}));
}

void AddIdleMode(std::vector<BenchMessage> &astMessages) {
    using namespace IdleIndication;
    constexpr uint32_t u32Vendor = 8;
    const char *pcClosing = Closing(41);
    std::vector<PlainRow> astRows{
        {"\n~~~~~~~~~~ IDLE MODE INDICATION ~~~~~~~~~~\n"},
        {"\n MODEM IS GOING INTO IDLE MODE.\n"},
        {"\n PLANNED IDLE MODE TIMEOUT : %d", State},
        {"\n PREAMBLE ID  : %d", PreambleID},
        {"\n CINR MEAN : %d dB", CINRMean},
        {"\n RSSI MEAN: %d dB", RSSIMean, {.u32Divisor = 4}},
        {"\n BS ID  :  %02X %02X %02X %02X %02X %02X", BSID},
    };
    Append(astRows, VendorRows("\n Vendor specific data \n", VendorData, u32Vendor));
    astRows.emplace_back(pcClosing);
    astMessages.push_back(Message("19.1 idle mode", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE,
                                  VendorData + u32Vendor,
                                  {{{State, 720}, {VendorDataLength, u32Vendor}}}, {{astRows}}));
    astMessages.push_back(Message("19.2 idle mode status", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_STATUS,
                                  StatusWord::Size, {},
                                  {{{{"\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n\n"},
                                     {"IDLE MODE STATUS : %d \n", StatusWord::Value},
                                     {pcClosing}}}}));
    astMessages.push_back(
        Message("19.3 inactivity timer", TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_INACTIVITY_TIMER,
                StatusWord::Size, {},
                {{{{"\n~~~~~~~~~~ IDLE MODE INACTIVITY TIMER RESPONSE ~~~~~~~~~~\n\n"},
                   {"IDLE MODE INACTIVITY TIMER RETURN STATUS : %d \n", StatusWord::Value},
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
                                  SUBTYPE_MAC_MGMT_TRACE_IND, Body + u32Body,
                                  {{{Direction, MSToBS}, {Code, 5}, {BodyLength, u32Body}}},
                                  {{{{"\n~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~\n"},
                                     {"\nFRAME NUMBER : 0x%X", FrameNumber},
                                     {"\nMESSAGE DIRECTION : MS to BS"},
                                     {"\nMESSAGE : (CODE : %d) ", TraceRecord::Code},
                                     {"Ranging Response"},
                                     {" "},
                                     {"\nData (%d) bytes :\n", BodyLength},
                                     {" 0x%02x", ByteAt(Body), Each(u32Body)},
                                     {"\n"},
                                     {"\nCID  :  0x%X", CID},
                                     {"\nCMAC OK  :  %d", CMACResult},
                                     {Closing(41)}}}}));
    astMessages.push_back(Message("21.3 trace state", TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_STATUS,
                                  TraceState::Size, {{{TraceState::State, TraceState::Enabled}}},
                                  {{{{"\n~~~~~~~~~~MAC MGMT MESSAGE STATUS TO HOST~~~~~~~~~~\n"},
                                     {"\nMAC MGMT MESSAGES TO HOST IS ENABLED\n"},
                                     {Tildes(51)}}}}));
}

void AddGPIO(std::vector<BenchMessage> &astMessages) {
    constexpr const char *pcHead = "\n~~~~~~ GPIO INDICATION ~~~~~~\n";
    const char *pcClosing = Tildes(27);
    constexpr PlainExtra stEntry{.eNumbers = Numbers::BehindIndex};
    astMessages.push_back(Message(
        "22.2 GPIO bit", TYPE_GPIO, SUBTYPE_GPIO_STATUS, GPIOBit::Size, {{{GPIOBit::Value, 1}}},
        {{{{pcHead}, {"\n Bit %d : ", GPIOBit::Position}, {"SET"}, {pcClosing}}}}));
    astMessages.push_back(
        Message("22.4 LED state", TYPE_GPIO, SUBTYPE_GET_LED_STATE, LEDState::Size, {},
                {{{{pcHead}}},
                 {{{"StateInfo[%d].ucLedType = %x\n", LEDEntry::Type, stEntry},
                   {"StateInfo[%d].ucLedOnState = %x\n", LEDEntry::OnState, stEntry},
                   {"StateInfo[%d].ucLedBlinkState = %x\n", LEDEntry::BlinkState, stEntry}},
                  LEDState::Entries,
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
        {"\nLast Preamble ID: %d\n", LastPreambleID},
        {"\nCurrent Preamble ID: %d\n", CurrentPreambleID},
        {"\nHand over latency: %d\n", Latency},
        {"\nNumber of Ranging Failures: %d\n", NumRangingFailures},
        {"\nCurrent BSID: %02x %02x %02x %02x %02x %02x", CurrentBSID},
        {"\nLast BSID: %02x %02x %02x %02x %02x %02x", LastBSID},
        {"\nIP Refresh needs to be done\n"},
        {"\nVENDOR SPECIFIC DATA LENGTH : %d\n", VendorDataLength},
    };
    Append(astRows, VendorRows("\nVENDOR SPECIFIC DATA\n", VendorData, u32Vendor));
    astRows.emplace_back(Tildes(39));
    astMessages.push_back(Message(
        "23.1 handover", TYPE_HANDOVER, SUBTYPE_HANDOVER_IND, VendorData + u32Vendor,
        {{{Success, 1}, {IPRefreshNeeded, 1}, {VendorDataLength, u32Vendor}}}, {{astRows}}));
    astMessages.push_back(
        Message("26.2 sleep mode", TYPE_SLEEP_MODE, SUBTYPE_SLEEP_MODE_IND,
                SleepMode::Definitions + PSCDefinition::Size, {},
                {{{{"\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"},
                   {"\n APP: numOfDefinitions %d", SleepMode::NumDefinitions}}},
                 {{{"\n APP: u16FinalSleepWindowBase %d \n", PSCDefinition::FinalSleepWindowBase}},
                  SleepMode::Definitions}}));
}

void AddMIB(std::vector<BenchMessage> &astMessages) {
    using namespace MIBRecord;
    constexpr const char *pcHead = "\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n";
    constexpr const char *pcGet = "\nGet Response received";
    const char *pcClosing = Tildes(52);
    const std::vector<PlainRow> astValueRows{{"\n MIB OID - %d : ", AttributeID},
                                             {" 0x%02x", ByteAt(MIBRecord::Value), Each(4)},
                                             {" UINT eq : %d", LongValue},
                                             {"\n"}};
    constexpr uint32_t u32RecordSize = MIBRecord::Value + 4;
    astMessages.push_back(Message("24.2 MIB value", TYPE_MIB, SUBTYPE_MIB_GET, u32RecordSize,
                                  {{{AttributeID, 1007}, {Status, 0}, {DataLength, 4}}},
                                  {{{{pcHead}, {pcGet}}}, {astValueRows}, {{{pcClosing}}}}));

    constexpr uint32_t u32Records = 8;
    Content stContent{{{MIBRecordList::Count, u32Records}}};
    for (uint32_t i = 0; i < u32Records; ++i) {
        const uint32_t u32Base = MIBRecordList::Records + i * u32RecordSize;
        stContent.astValues.push_back({Status, 0, u32Base});
        stContent.astValues.push_back({DataLength, 4, u32Base});
    }
    const uint32_t u32RecordsSize = u32Records * u32RecordSize;
    astMessages.push_back(
        Message("24.4 MIB values, 8 of them", TYPE_MIB, SUBTYPE_MULTIPLE_MIB_GET,
                MIBRecordList::Records + u32RecordsSize, stContent,
                {{{{pcHead}, {pcGet}}},
                 {astValueRows, MIBRecordList::Records, u32RecordsSize, u32RecordSize},
                 {{{pcClosing}}}}));

    constexpr uint32_t u32Neighbours = 4;
    constexpr uint32_t u32NeighboursSize = u32Neighbours * MIBMeasuredNeighbour::Size;
    constexpr uint32_t u32ListSize = MIBNeighbourList::Entries + u32NeighboursSize;
    using namespace MIBMeasuredNeighbour;
    astMessages.push_back(
        Message("24.2 MIB, 4 measured neighbours", TYPE_MIB, SUBTYPE_MIB_GET,
                MIBRecord::Value + u32ListSize,
                {{{AttributeID, MIBAttribute::MeasuredNeighbours},
                  {Status, 0},
                  {DataLength, u32ListSize},
                  {MIBNeighbourList::Count, u32Neighbours, MIBRecord::Value}}},
                {{{{pcHead}, {pcGet}, {"\n MIB OID - %d : ", AttributeID}}},
                 {{{"\nNumber of Neighbours %d\n", MIBNeighbourList::Count}}, MIBRecord::Value},
                 {{{"\n~~~~~~~ Neighbour %d ~~~~~~~ \n", {}, {.eNumbers = Numbers::Index}},
                   {"\tFrequency (MHz) : %f\n", Frequency, {.u32Divisor = 8}},
                   {"\tPreambleId      : %d\n", PreambleID},
                   {"\tBandwidth (MHz) : %f\n", Bandwidth, {.u32Divisor = 1000000}},
                   {"\tBSId            : %02x %02x %02x %02x %02x %02x\n", BSID},
                   {"\tRSSI (dBm)      : %f\n", RSSI, {.u32Divisor = 65536}},
                   {"\tR1CINR          : %f\n", R1CINR, {.u32Divisor = 65536}},
                   {"\tR3CINR          : %f\n", R3CINR, {.u32Divisor = 65536}},
                   {"\tToF             : %f\n", ToF, {.u32Divisor = 16}},
                   {"\tRTD             : %d\n", RTD},
                   {"\tMeasDur         : %d\n", MeasDur},
                   {"\tFlags(Hex)      : %x\n", Flags}},
                  MIBRecord::Value + MIBNeighbourList::Entries,
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
                    {{{SetConfig, 0}, {Status, 0}, {NumRxGPIOs, 4}, {NumTxGPIOs, 1}}},
                    {{{{pcHead},
                       {"\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"},
                       {"\nTotal Number of Rx GPIO's to be used: %d", NumRxGPIOs},
                       {"\nList of Rx GPIO's are : "},
                       {" %d", RxGPIOs, Each(4)},
                       {"\nTotal Number of Tx GPIO's to be used: %d", NumTxGPIOs},
                       {"\nList of Tx GPIO's are : "},
                       {" %d", TxGPIO},
                       {pcClosing}}}}));
    }
    using namespace AntennaScan;
    constexpr uint32_t u32Frames = 16;
    astMessages.push_back(Message("28.2 antenna scan, 16 frames", TYPE_ANTENNA,
                                  SUBTYPE_ANTENNA_SCANNING, Size,
                                  {{{Status, 1}, {Error, 0}, {FramesScanned, u32Frames}}},
                                  {{{{pcHead},
                                     {"\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"},
                                     {"\nScanning Status : %d", Status},
                                     {"\nAcual Frames Scanned : %d", FramesScanned},
                                     {"\nRx GPIO Pattern Infomation:  %u %u %u", RxGPIOPattern},
                                     {"\nRSSI Measurement of Antenna 1: "},
                                     {" %d", RSSIAnt1, Each(u32Frames)},
                                     {"\nCINR Measurement of Antenna 1: "},
                                     {" %d", CINRAnt1, Each(u32Frames)},
                                     {"\nRSSI Measurement of Antenna 2: "},
                                     {" %d", RSSIAnt2, Each(u32Frames)},
                                     {"\nCINR Measurement of Antenna 2: "},
                                     {" %d", CINRAnt2, Each(u32Frames)},
                                     {"\nActual Framer Numbers Scanned: "},
                                     {" %u", FrameNumber, Each(u32Frames)},
                                     {"\nCurrent GPIO Pattern:  %d %d %d %d", CurrentGPIOPattern},
                                     {"\nCurrent RSSI of Antenna 1: %d", CurrentRSSIAnt1},
                                     {"\nCurrent CINR of Antenna 1: %d", CurrentCINRAnt1},
                                     {"\nCurrent RSSI of Antenna 2: %d", CurrentRSSIAnt2},
                                     {"\nCurrent CINR of Antenna 2: %d", CurrentCINRAnt2},
                                     {pcClosing}}}}));
    astMessages.push_back(Message("28.5 antenna selection", TYPE_ANTENNA, SUBTYPE_ANTENNA_SELECTION,
                                  StatusWord::Size, {{{StatusWord::Value, 0}}},
                                  {{{{pcHead},
                                     {"\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!"},
                                     {"\n\tSuccesfully set the Rx/Tx Antennas !!"},
                                     {pcClosing}}}}));
}

void AddOptions(std::vector<BenchMessage> &astMessages) {
    using namespace WiMAXOptions;
    constexpr const char *apcOptions[Count] = {
        "\n bit[0] Bit Mapped payload        Status: SET  Payload: %d",
        "\n bit[1] MIB EEPROM Writes on/off  Status: SET  Payload: %d",
        "\n bit[2] Not used                  Status: RESET  Payload: %d",
        "\n bit[3] MCS/HARQ MIB Writes on/offStatus: SET  Payload: %d",
        "\n bit[4] EAP Security level        Status: SET  Payload: %d",
        "\n bit[5] Idle mode paging value    Status: SET  Payload: %d",
        "\n bit[6] Not used                  Status: RESET  Payload: %d",
        "\n bit[7] Not used                  Status: RESET  Payload: %d",
    };
    std::vector<PlainRow> astRows{
        {"\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"},
        {"\n Received for wimax option specifier : [%d(%x)]", Specifier, stSame},
        {"\n Wimax options payload per option\n"},
    };
    for (uint32_t i = 0; i < Count; ++i) {
        const auto u16Offset = static_cast<uint16_t>(Values.u16Offset + 4 * i);
        astRows.push_back({apcOptions[i], {u16Offset, FieldType::U32}});
    }
    astRows.emplace_back("\n");
    astMessages.push_back(Message("29.3 options", TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_GET_ALL, Size,
                                  {{{Status, 0}, {Specifier, 0x3B}}}, {{astRows}}));
}

void AddShutdown(std::vector<BenchMessage> &astMessages) {
    const Content stZero{{{StatusWord::Value, 0}}};
    astMessages.push_back(Message("30.1 shutdown", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN,
                                  StatusWord::Size, stZero,
                                  {{{{"\n\n~~~~~~~~~~ SHUTDOWN RESPONSE RECEIVED ~~~~~~~~~~\n"},
                                     {"\n\tBASEBAND IS IN SHUTDOWN STATE"},
                                     {Closing(48)}}}}));
    astMessages.push_back(
        Message("30.2 shutdown by firmware", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_FROM_FIRMWARE_IND, 0,
                {}, {{{{"\n\n~~~~~~~~~~ SHUTDOWN REQUEST FROM FIRMWARE RECEIVED ~~~~~~~~~~\n"}}}}));
    constexpr uint32_t u32Stations = 4;
    Content stContent{{{StationList::NumStations, u32Stations}}};
    for (uint32_t i = 0; i < u32Stations; ++i) {
        stContent.astValues.push_back(
            {BaseStation::CompressedMap, 0, StationList::Stations + i * BaseStation::Size});
    }
    astMessages.push_back(Message(
        "30.3 periodic wake-up, 4 stations", TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_PERIODIC_WAKE_UP_IND,
        StationList::Stations + u32Stations * BaseStation::Size, stContent,
        {{{{"\n\n~~~~~~~~~~ PERIODIC WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n"},
           {"\n%d BASE STATIONS FOUND.\n", StationList::NumStations}}},
         {{{"\nBASE STATION : %d\n-------------------\n",
            {1, FieldType::None},
            {.eNumbers = Numbers::Index}},
           {"\nBS ID  :%02X %02X %02X %02X %02X %02X %02X", BaseStation::WakeUpBSID},
           {" - NORMAL MAP"},
           {"\nPreamble Index ID  :%d", BaseStation::PreambleIndex},
           {"\nCenter Frequency : %d kHz", BaseStation::CenterFrequency},
           {"\nBandwidth : %d kHz", BaseStation::Bandwidth},
           {"\nRelative Signal Strength : %d dBm", BaseStation::SignalStrength},
           {"\nCINR : %d dB", BaseStation::CINR},
           {"\nDcdChangeCount : %d", BaseStation::DCDChangeCount},
           {"\nNspChangeCount : %d\n\n", BaseStation::NSPChangeCount}},
          StationList::Stations,
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
    const Content stContent{{{Status, 0}, {DataLength, u32Bytes}}};
    constexpr uint32_t u32Size = SecurityRecord::Value + u32Bytes;
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
                                     {"\n Security OID - %d : ", ParameterID},
                                     {" 0x%02x", ByteAt(SecurityRecord::Value), Each(u32Bytes)},
                                     {"\n"},
                                     {pcClosing}}}}));
    astMessages.push_back(Message(
        "34.3 parameter size", TYPE_SECURITY, SUBTYPE_SECURITY_SIZE, u32Size, stContent,
        {{{{pcHead}, {"\n Security Param ID - [%d], Size : [%d]\n", ParameterID}, {pcClosing}}}}));
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

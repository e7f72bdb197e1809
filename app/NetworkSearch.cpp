#include "NetworkSearch.h"

#include <algorithm>
#include <span>

#include "Console.h"
#include "Input.h"
#include "LinkRecords.h"
#include "LinkStatus.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr const char *apcNetworkSearchMenuLines[] = {
    "\n 1. SEARCH FOR ALL 2.5GHz and 2.6GHz BAND RANGE",
    "\n 2. SEARCH FOR ALL 3.5GHZ BAND RANGE",
    "\n 3. SEARCH FOR FRQUENCY BAND",
    "\n 4. NSP SEARCH based on NAPID",
    "\n-1. RETURN TO MAIN MENU",
};

constexpr Menu stNetworkSearchMenu = {"\n******** NETWORK SEARCH MENU ********",
                                      apcNetworkSearchMenuLines,
                                      "\n\n**************************************"};

// kHz
constexpr uint32_t au32AllBandwidths[] = {10000, 8750, 7000, 5000};

constexpr uint32_t au32Plan2500And2600[] = {
    2520000, 2530000, 2540000, 2627000, 2575000, 2587500, 2600000, 2580000, 2585000, 2590000,
    2650000, 2662500, 2660000, 2670000, 2562500, 2553000, 2587500, 2563000, 2573000, 2583000,
};

constexpr uint32_t au32Plan3500[] = {
    3413500, 3420500, 3427500, 3441500, 3448500, 3455500, 3462500, 3469500,
    3476500, 3490500, 3500000, 3513500, 3520500, 3527500, 3541500, 3548500,
    3555500, 3562500, 3569500, 3576500, 3586500, 3590500,
};

// The two wordings of the bandwidth dialogue.
struct BandwidthPrompts {
    const char *pcCount;
    TextWith<1> stBandwidth;
};

constexpr BandwidthPrompts st2500Prompts = {"\n ENTER NUM OF BW'S (Max 4) : ",
                                            "\n ENTER BANDWIDTH %d IN MHz : [E.g. 5/10/7]"};
constexpr BandwidthPrompts st3500Prompts = {"\n ENTER NUM OF BW'S (Max 4) [E.g. 5/10/7]: ",
                                            "\n ENTER BANDWIDTH %d IN MHz [E.g. 5/10/7]: "};

constexpr const char *pcDashes =
    "\n -------------------------------------------------------------------------------- ";

constexpr const char *apcDiscreteFrequencies[] = {
    "\n SUPPORTED DISCRETE FREQ's IN MHz : ",
    pcDashes,
    "\n 2520.0, 2530.0, 2540.0, 2553.0, 2562.5, 2563.0, 2573.0, 2575.0, 2583.0, 2587.5,",
    "\n 2587.5, 2580.0, 2585.0, 2590.0, 2600.0, 2627.0, 2662.5, 2650.0, 2660.0, 2670.0,",
    "\n 3413.5, 3427.5, 3441.5, 3448.5, 3455.5, 3462.5, 3469.5, 3476.5, 3490.5, 3500.0,",
    "\n 3513.5, 3520.5, 3527.5, 3541.5, 3548.5, 3555.5, 3562.5, 3569.5, 3576.5, 3586.5 3590.5 ",
    pcDashes,
};

// A count as typed, kept to what the request has room for.
uint32_t Capped(int32_t iCount, uint32_t u32Most) {
    return static_cast<uint32_t>(std::clamp(iCount, 0, static_cast<int32_t>(u32Most)));
}

// Stores element i of an array of u32 fields.
void PutElement(ByteSpan stSpan, Field stFirst, uint32_t u32Index, uint32_t u32Value) {
    Put(stSpan, stFirst, u32Value, u32Index * WidthOf(stFirst.eType));
}

void PutElements(ByteSpan stSpan, Field stCount, Field stFirst,
                 std::span<const uint32_t> au32Values) {
    Put(stSpan, stCount, static_cast<uint32_t>(au32Values.size()));
    for (uint32_t i = 0; i < au32Values.size(); ++i) {
        PutElement(stSpan, stFirst, i, au32Values[i]);
    }
}

uint32_t AskDuration() {
    int32_t iDuration = -1;
    PutText("\n\nEnter the Duration for the search:[>=0 in sec] ");
    while (!ReadIntegerOrDropWord(&iDuration) || iDuration < 0) {
        PutText("\nPlease enter the duration: ");
    }
    return static_cast<uint32_t>(iDuration);
}

uint32_t AskReportType() {
    PutText("\nENTER OPTION FOR REPORT TYPE: ");
    PutText("\n 1. SEARCH FOR BS by BS LIST ");
    PutText("\n 2. SEARCH REQUEST FOR CONSOLIDATED LIST");
    return AskUnsigned(pcMenuPrompt);
}

void AskBandwidths(ByteSpan stRequest, const BandwidthPrompts &stPrompts) {
    using namespace SearchRequest;
    const uint32_t u32Count = Capped(AskOption(stPrompts.pcCount), MaxBandwidths);
    Put(stRequest, u32NumBandwidths, u32Count);
    for (uint32_t i = 0; i < u32Count; ++i) {
        PutNumber(stPrompts.stBandwidth, i);
        PutElement(stRequest, au32Bandwidths, i, AskInteger("") * 1000);
    }
}

void AskBand(ByteSpan stRequest, const BandwidthPrompts &stPrompts,
             std::span<const uint32_t> au32Plan) {
    using namespace SearchRequest;
    PutLine("\n\nDO YOU WANT TO ENTER THE NUM OF BW'S TO BE SCANED : (1-Yes and 0-No)\n");
    PutLine("\n1 - User Defined BWs, 0 - Pre-defined All BWs ");
    if (ReadOption() == 1) {
        AskBandwidths(stRequest, stPrompts);
    } else {
        PutLine("\n\n\nSCANNING FOR 10/8.75/7/5 MHz BANDWIDTHs ...\n\n");
        PutElements(stRequest, u32NumBandwidths, au32Bandwidths, au32AllBandwidths);
    }
    PutElements(stRequest, u32NumFrequencies, au32Frequencies, au32Plan);
}

void AskDiscreteFrequencies(ByteSpan stRequest) {
    using namespace SearchRequest;
    const uint32_t u32Count =
        Capped(AskOption("\n ENTER NUMDER OF DISCRETE FREQ (Max 25) : "), MaxFrequencies);
    Put(stRequest, u32NumFrequencies, u32Count);
    PutTexts(apcDiscreteFrequencies);
    for (uint32_t i = 0; i < u32Count; ++i) {
        PutNumber("\n ENTER DISCRETE FREQ %d IN MHz : ", i);
        PutElement(stRequest, au32Frequencies, i, AskFrequency(""));
    }
}

void AskFrequencyBand(ByteSpan stRequest) {
    using namespace SearchRequest;
    Put(stRequest, u32FrequencyStart,
        AskFrequency("\n ENTER CENTER FREQ START IN MHz [E.g. 2530.0, 2652.5, 3576.5]: "));
    Put(stRequest, u32FrequencyEnd,
        AskFrequency("\n ENTER CENTER FREQ END IN MHz [E.g. 2540.0, 2662.5, 3586.5]: "));
    Put(stRequest, u32FrequencyStep, AskInteger("\n ENTER CENTER FREQ STEP in KHz [E.g. 500]: "));
    if (AskOption("\nDO YOU WANT TO ENTER THE NUM OF BW'S TO BE SCANED : (1-Yes and 0-No)") == 1) {
        AskBandwidths(stRequest, st3500Prompts);
    }
    if (AskOption("\nDO YOU WANT TO ENTER THE DISCRETE FREQ (1-Yes and 0-No)") == 1) {
        AskDiscreteFrequencies(stRequest);
    }
}

int32_t SearchByFrequency(int32_t iChoice) {
    using namespace SearchRequest;
    Record<Size> stRequest;
    Put(stRequest.Span(), u32Duration, AskDuration());
    Put(stRequest.Span(), u32ReportType, AskReportType());
    if (iChoice == 1) {
        AskBand(stRequest.Span(), st2500Prompts, au32Plan2500And2600);
    } else if (iChoice == 2) {
        AskBand(stRequest.Span(), st3500Prompts, au32Plan3500);
    } else {
        AskFrequencyBand(stRequest.Span());
    }
    return SendRequest(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH, stRequest.View());
}

// A value that a word replaces, whatever the word is.
uint32_t AskWordInstead(const char *pcPrompt, uint32_t /*u32Before*/) {
    return AskUnsigned(pcPrompt);
}

// One value of an NSP search that stands until the user replaces it.
struct Default {
    Field stField;
    NumberText stQuestion; // shows the default, in a number or not, and asks whether to change it
    const char *pcValue;
    uint32_t (*pfnAsk)(const char *pcPrompt, uint32_t u32Before);
};

constexpr Default stDurationDefault = {
    NSPSearchRequest::u32Duration,
    "\nSearch duration is Infinite (0)\n"
    " If you want to change the Search duration enter 1  else enter 0:",
    "\n Enter the the search duration is Sec :", AskInteger};
constexpr Default stNAPIDDefault = {
    NSPSearchRequest::u32NAPID,
    "\nNAPID is %d : \n If you want to change the NAPID enter 1 else enter 0:",
    "\n Enter the NAPID :", AskInteger};
constexpr Default stNSPChangeCountDefault = {
    NSPSearchRequest::u32NSPChangeCount,
    "\nNSP change count is %d : \n"
    " If you want to change the NSP change count enter 1  else enter 0:",
    "\n Enter NSP change count :", AskWordInstead};
constexpr Default stStationCountDefault = {
    NSPSearchRequest::u32NumStations,
    "\nNumber of BS info to be entered for NSP search is %d : \n"
    " If you want to change the BS count enter 1  else enter 0:",
    "\n Number of BS info to be entered is :", AskWordInstead};

// One value of a station entry; the texts that name the value also name the
// entry's index.
struct StationDefault {
    Field stField;
    TextWith<2> stDefault;
    const char *pcChange;
    TextWith<1> stValue;
};

constexpr const char *pcChangeStation =
    "\n\t If you want to change the count enter 1  else enter 0:";

constexpr StationDefault astStationDefaults[] = {
    {NSPSearchRequest::StationEntry::u32BW, "\n\t stPhyInfo[%d].u32BW = %d (in KHz)",
     pcChangeStation, "\n\t stPhyInfo[%d].u32BW in KHz is:"},
    {NSPSearchRequest::StationEntry::u32CF, "\n\t stPhyInfo[%d].u32CF = %d KHz",
     "\n\t If you want to change the count enter 1 else enter 0:",
     "\n\t stPhyInfo[%d].u32CF is (in KHz) :"},
    {NSPSearchRequest::StationEntry::u32DCDChangeCount, "\n\t stPhyInfo[%d].u32DCDChangeCount = %d",
     pcChangeStation, "\n\t stPhyInfo[%d].u32DCDChangeCount is  :"},
    {NSPSearchRequest::StationEntry::u32Pid, "\n\t stPhyInfo[%d].u32Pid = %d ", pcChangeStation,
     "\n\t stPhyInfo[%d].u32Pid is  :"},
};

// Stores the default, and what the user types instead of it.
uint32_t AskDefault(ByteSpan stRequest, const Default &stDefault, uint32_t u32Value) {
    PutNumbersOf(stDefault.stQuestion, &u32Value);
    if (ReadOption() == 1) {
        u32Value = stDefault.pfnAsk(stDefault.pcValue, u32Value);
    }
    Put(stRequest, stDefault.stField, u32Value);
    return u32Value;
}

void AskStationEntry(ByteSpan stEntry, uint32_t u32Index) {
    for (const StationDefault &stDefault : astStationDefaults) {
        const uint32_t u32Value = Get(stEntry, stDefault.stField);
        const uint32_t au32Numbers[] = {u32Index, u32Value};
        PutNumbers(stDefault.stDefault, au32Numbers);
        if (AskOption(stDefault.pcChange) == 1) {
            PutNumber(stDefault.stValue, u32Index);
            Put(stEntry, stDefault.stField, AskInteger("", u32Value));
        }
    }
}

int32_t SearchByNSP() {
    using namespace NSPSearchRequest;
    Record<Size> stRequest;
    const ByteSpan stSpan = stRequest.Span();
    const auto stDiscovery = g_BSNSPLIST.Load();
    const auto stStations = g_BSINFO.Load();

    AskDefault(stSpan, stDurationDefault, 0);
    AskDefault(stSpan, stNAPIDDefault, g_u32NAPID);
    AskDefault(stSpan, stNSPChangeCountDefault,
               Get(stDiscovery.View(), NSPDiscovery::u32NSPChangeCount));
    const uint32_t u32Asked = AskDefault(stSpan, stStationCountDefault, g_u32NumberOfBaseStations);
    const uint32_t u32Stations = Capped(static_cast<int32_t>(u32Asked), u32MaxBaseStations);
    Put(stSpan, u32NumStations, u32Stations);
    for (uint32_t i = 0; i < u32Stations; ++i) {
        PutFormat("\n Contents for %u Base station of total %u:", i + 1, u32Stations);
        const ByteView stStation = stStations.View().From(i * BaseStation::Size, BaseStation::Size);
        const ByteSpan stEntry =
            stSpan.From(stPhyInfo + i * StationEntry::Size, StationEntry::Size);
        Put(stEntry, StationEntry::u32CF, Get(stStation, BaseStation::u32CenterFrequency));
        Put(stEntry, StationEntry::u32BW, Get(stStation, BaseStation::u32Bandwidth));
        Put(stEntry, StationEntry::u32Pid, Get(stStation, BaseStation::u32PreambleIndex));
        Put(stEntry, StationEntry::u32DCDChangeCount,
            Get(stDiscovery.View(), NSPDiscovery::u32DCDChangeCount));
        AskStationEntry(stEntry, i);
    }
    return SendRequest(TYPE_NETWORK_SEARCH, SUBTYPE_NSP_SEARCH, stRequest.View());
}

} // namespace

int32_t NetworkSearchOptions() {
    const int32_t iChoice = AskMenu(stNetworkSearchMenu);
    if (iChoice >= 1 && iChoice <= 3) {
        return SearchByFrequency(iChoice);
    }
    return iChoice == 4 ? SearchByNSP() : -1;
}

int32_t SetCinrRssiForNetworkSearchRequest() {
    using namespace CinrRssiThreshold;
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_DEVICE_CONFIG, SUBTYPE_CINR_RSSI_THRESHOLD, Size);
    Put(PayloadOf(stMessage), s32CINR,
        AskUnsigned("\n Enter CINR value you want to set for network search : "));
    Put(PayloadOf(stMessage), s32RSSI,
        AskUnsigned("\n Enter RSSI value you want to set for network search : "));
    return SendMessage(&stMessage, u32Length);
}

uint32_t SetCinrRssiForNetworkSearchResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage != nullptr) {
        constexpr const char *pcBanner = "\n~~~~~~ SET CINR RSSI RESPONSE RECEIVED ~~~~~~";
        const ByteView stPayload = View(pstMessage).stPayload;
        PutLine(pcBanner);
        PutRow(stPayload, {"CINR Value Set : %d\n", CinrRssiThreshold::s32CINR});
        PutRow(stPayload, {"RSSI Value Set : %d\n", CinrRssiThreshold::s32RSSI});
        PutLine("\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    }
    return 1;
}

#include "LinkStatus.h"

#include <chrono>
#include <thread>

#include <unistd.h>

#include "Message.h"
#include "TestConsole.h"

namespace {

// Two stations as a search reports them: one with a normal and one with a
// compressed map, the second with negative numbers in every signed place.
const std::string strFirstStation =
    "00 a0 00 12 c1 00 00 01 12:4 2587500:4 10000:4 -67:4 21:4 3:4 4:4 ";
const std::string strSecondStation =
    "01 b0 ff fe fd 04 05 06 113:4 3590500:4 7000:4 -91:4 -2:4 255:4 -1:4 ";

template <uint32_t u32Size>
Bytes Kept(const SharedBytes<u32Size> &stTable, uint32_t u32From, uint32_t u32Count) {
    const Record<u32Size> stCopy = stTable.Load();
    return {stCopy.aucBytes + u32From, stCopy.aucBytes + u32From + u32Count};
}

bool Contains(const std::string &strText, const std::string &strPart) {
    return strText.find(strPart) != std::string::npos;
}

bool BeginsWith(const std::string &strText, const std::string &strBegin) {
    return strText.compare(0, strBegin.size(), strBegin) == 0;
}

bool EndsWith(const std::string &strText, const std::string &strEnd) {
    return strText.size() >= strEnd.size() &&
           strText.compare(strText.size() - strEnd.size(), strEnd.size(), strEnd) == 0;
}

class LinkStatusTest : public ConsoleTest {
  protected:
    static std::string SearchReport(const std::string &strPayload) {
        return Report(NetEntrySearchResponse, "1/1 | " + strPayload);
    }
    static std::string DiscoveryReport(const std::string &strPayload) {
        return Report(NetEntrySearchResponse, "1/4 | " + strPayload);
    }
    static std::string SyncReport(const std::string &strPayload) {
        return Report(NetEntryExitResponse, "2/1 | " + strPayload);
    }
    static std::string EntryReport(const std::string &strPayload) {
        return Report(NetEntryExitResponse, "2/2 | " + strPayload);
    }
};

// Network search.

TEST_F(LinkStatusTest, ASearchReportsAndKeepsEveryStation) {
    EXPECT_EQ(SearchReport("2:4 1:4 " + strFirstStation + strSecondStation),
              "\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\n2 BASE STATIONS FOUND.\n"
              "SEARCH IS COMPLETE!!"
              "\nBASE STATION : 1\n-------------------\n"
              "\nBS ID  :00 12 C1 00 00 01 - NORMAL MAP"
              "\nNAPID  :4801"
              "\nPreamble Index ID  :12"
              "\nCenter Frequency : 2587500 kHz"
              "\nBandwidth : 10000 kHz"
              "\nRelative Signal Strength : -67 dBm"
              "\nCINR : 21 dB"
              "\nDCD change count : 3 "
              "\nNSP change count : 4 "
              "\nBASE STATION : 2\n-------------------\n"
              "\nBS ID  :FF FE FD 04 05 06 - COMPRESSED MAP"
              "\nNAPID  :16776957"
              "\nPreamble Index ID  :113"
              "\nCenter Frequency : 3590500 kHz"
              "\nBandwidth : 7000 kHz"
              "\nRelative Signal Strength : -91 dBm"
              "\nCINR : -2 dB"
              "\nDCD change count : 255 "
              "\nNSP change count : -1 "
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(g_u32NumberOfBaseStations, 2U);
    EXPECT_EQ(g_u32NAPID, 16776957U);
    EXPECT_EQ(Kept(g_BSINFO, 0, 72), Message(strFirstStation + strSecondStation));
}

TEST_F(LinkStatusTest, ASearchWithoutAStationForgetsTheNumberAndNothingElse) {
    SearchReport("1:4 1:4 " + strFirstStation);
    EXPECT_EQ(SearchReport("0:4 0:4"),
              "\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\n0 BASE STATIONS FOUND.\n"
              "SEARCH IS IN PROGRESS!!"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(g_u32NumberOfBaseStations, 0U);
    EXPECT_EQ(g_u32NAPID, 4801U);
    EXPECT_EQ(Kept(g_BSINFO, 0, 36), Message(strFirstStation));
}

TEST_F(LinkStatusTest, TheStatusOfASearchHasThreeTexts) {
    const std::string strBegin = "\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~\n"
                                 "\n0 BASE STATIONS FOUND.\n";
    const std::string strEnd = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(SearchReport("0:4 0:4"), strBegin + "SEARCH IS IN PROGRESS!!" + strEnd);
    EXPECT_EQ(SearchReport("0:4 1:4"), strBegin + "SEARCH IS COMPLETE!!" + strEnd);
    EXPECT_EQ(SearchReport("0:4 2:4"), strBegin + "SEARCH TIMED OUT!!" + strEnd);
    EXPECT_EQ(SearchReport("0:4 -1:4"), strBegin + "SEARCH TIMED OUT!!" + strEnd);
    EXPECT_EQ(SearchReport("0:4 256:4"), strBegin + "SEARCH TIMED OUT!!" + strEnd);
}

TEST_F(LinkStatusTest, AnyFlagButZeroIsACompressedMap) {
    EXPECT_TRUE(Contains(SearchReport("1:4 1:4 80 00*35"), "00 - COMPRESSED MAP\nNAPID"));
    EXPECT_TRUE(Contains(SearchReport("1:4 1:4 00 ff*35"), "FF - NORMAL MAP\nNAPID"));
}

TEST_F(LinkStatusTest, NumbersOfAStationAreSignedButTheNAPID) {
    EXPECT_TRUE(EndsWith(SearchReport("1:4 1:4 00 ff*7 -12:4 -2587500:4 -10000:4 -67:4 -2:4 "
                                      "-3:4 -4:4"),
                         "\nBS ID  :FF FF FF FF FF FF - NORMAL MAP"
                         "\nNAPID  :16777215"
                         "\nPreamble Index ID  :-12"
                         "\nCenter Frequency : -2587500 kHz"
                         "\nBandwidth : -10000 kHz"
                         "\nRelative Signal Strength : -67 dBm"
                         "\nCINR : -2 dB"
                         "\nDCD change count : -3 "
                         "\nNSP change count : -4 "
                         "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"));
}

TEST_F(LinkStatusTest, MoreStationsThanTheTableHoldsAreAnnouncedButNeitherShownNorKept) {
    std::string strStations;
    for (int i = 1; i <= 25; ++i) {
        strStations +=
            "00*4 0" + std::to_string(i % 10) + " 00*3 " + std::to_string(i) + ":4 00*24 ";
    }
    const std::string strReport = SearchReport("25:4 1:4 " + strStations);
    EXPECT_TRUE(Contains(strReport, "\n25 BASE STATIONS FOUND.\n"));
    EXPECT_TRUE(Contains(strReport, "\nBASE STATION : 20\n"));
    EXPECT_FALSE(Contains(strReport, "\nBASE STATION : 21\n"));
    EXPECT_TRUE(EndsWith(strReport,
                         "\nPreamble Index ID  :20"
                         "\nCenter Frequency : 0 kHz"
                         "\nBandwidth : 0 kHz"
                         "\nRelative Signal Strength : 0 dBm"
                         "\nCINR : 0 dB"
                         "\nDCD change count : 0 "
                         "\nNSP change count : 0 "
                         "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"));
    EXPECT_EQ(g_u32NumberOfBaseStations, 20U);
    EXPECT_EQ(g_u32NAPID, 0U);
    EXPECT_EQ(Kept(g_BSINFO, 19 * 36, 36), Message("00*4 00 00*3 20:4 00*24"));
}

TEST_F(LinkStatusTest, TwentyStationsFit) {
    const std::string strReport = SearchReport("20:4 1:4 " + Times(strFirstStation, 20));
    EXPECT_TRUE(Contains(strReport, "\nBASE STATION : 20\n"));
    EXPECT_EQ(g_u32NumberOfBaseStations, 20U);
    EXPECT_EQ(Kept(g_BSINFO, 19 * 36, 36), Message(strFirstStation));
}

TEST_F(LinkStatusTest, AWildNumberOfStationsIsPrintedAsItIs) {
    const std::string strReport = SearchReport("-1:4 1:4 " + strFirstStation);
    EXPECT_TRUE(Contains(strReport, "\n-1 BASE STATIONS FOUND.\n"));
    EXPECT_TRUE(Contains(strReport, "\nBASE STATION : 20\n"));
    EXPECT_FALSE(Contains(strReport, "\nBASE STATION : 21\n"));
    EXPECT_EQ(g_u32NumberOfBaseStations, 20U);
}

// NSP discovery.

const std::string strDiscoveryHead = "00 1:4 00*2 00 12 c1 00 00 01 3:4 4:4 ";
const std::string strDiscoveryTail = "12:4 2587500:4 10000:4 -67:4 21:4";

TEST_F(LinkStatusTest, ADiscoveryReportsItsStationAndEveryNSP) {
    const std::string strPayload = strDiscoveryHead + "2:4 " +
                                   "700:4 5:4 \"Alpha\" 00*123 " + // the whole name
                                   "-1:4 4:4 \"Bravo\" 00*123 " +  // the first four bytes
                                   "00*1088 " + strDiscoveryTail;
    EXPECT_EQ(DiscoveryReport(strPayload),
              "\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------"
              "\nNSP discovery complete : 1"
              "\nBSINFO Response status is :NSP_DISCOVERY_SUCCESS"
              "\nBS ID  :00 12 C1 00 00 01"
              "\nDCD change count : 3"
              "\nNSP change count : 4"
              "\nNumber of NSP entries: 2"
              "\nPID : 12"
              "\nCF  : 2587500"
              "\nBandwidth  : 10000"
              "\nRSSI  : -67"
              "\nCINR  : 21"
              "\nNSPLIST Entry 1 of total 2"
              "\nNSP Name is : Alpha"
              "\nNSP ID is : 700"
              "\nNSPLIST Entry 2 of total 2"
              "\nNSP Name is : Brav"
              "\nNSP ID is : -1");
    EXPECT_EQ(Message(strPayload).size(), 1405U);
    EXPECT_EQ(Kept(g_BSNSPLIST, 0, 1405), Message(strPayload));
}

TEST_F(LinkStatusTest, NumbersOfADiscoveryAreSigned) {
    EXPECT_EQ(DiscoveryReport("00 -1:4 00*2 ff fe fd fc fb fa -3:4 -4:4 0:4 00*1360 "
                              "-12:4 -2587500:4 -10000:4 -67:4 -21:4"),
              "\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------"
              "\nNSP discovery complete : -1"
              "\nBSINFO Response status is :NSP_DISCOVERY_SUCCESS"
              "\nBS ID  :FF FE FD FC FB FA"
              "\nDCD change count : -3"
              "\nNSP change count : -4"
              "\nNumber of NSP entries: 0"
              "\nPID : -12"
              "\nCF  : -2587500"
              "\nBandwidth  : -10000"
              "\nRSSI  : -67"
              "\nCINR  : -21");
}

TEST_F(LinkStatusTest, ADiscoveryThatDidNotSucceedSaysWhyAndKeepsNothing) {
    const std::string strKept = strDiscoveryHead + "0:4 00*1360 " + strDiscoveryTail;
    DiscoveryReport(strKept);
    const std::string strBegin = "\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------"
                                 "\nNSP discovery complete : 2"
                                 "\nBSINFO Response status is :";
    const std::string strRest = " 2:4 ff*1400";
    EXPECT_EQ(DiscoveryReport("01" + strRest), strBegin + "NSP_DISCOVERY_NOT_NEEDED");
    EXPECT_EQ(DiscoveryReport("02" + strRest), strBegin + "NSP_16G_NOT_SUPPORTED");
    EXPECT_EQ(DiscoveryReport("03" + strRest), strBegin + "NSP_SEARCH_FAILURE");
    EXPECT_EQ(DiscoveryReport("04" + strRest), strBegin + "NSP_DISCOVERY_ABORT");
    EXPECT_EQ(DiscoveryReport("05" + strRest), strBegin + "NSP_DISCOVERY_SCAN_DURATION_TIMEOUT");
    EXPECT_EQ(DiscoveryReport("06" + strRest), strBegin);
    EXPECT_EQ(DiscoveryReport("ff" + strRest), strBegin);
    EXPECT_EQ(Kept(g_BSNSPLIST, 0, 1405), Message(strKept));
}

TEST_F(LinkStatusTest, ANameOfAnNSPEndsWithItsFieldOrWithAZero) {
    const std::string strName = "\"" + std::string(128, 'n') + "\"";
    const auto PrintedName = [&](const std::string &strEntry) {
        const std::string strReport =
            DiscoveryReport(strDiscoveryHead + "1:4 " + strEntry + " 00*1224 " + strDiscoveryTail);
        const size_t uBegin = strReport.find("\nNSP Name is : ") + 15;
        return strReport.substr(uBegin, strReport.find("\nNSP ID is : 9") - uBegin);
    };
    EXPECT_EQ(PrintedName("9:4 128:4 " + strName), std::string(128, 'n'));
    EXPECT_EQ(PrintedName("9:4 129:4 " + strName), std::string(128, 'n'));
    EXPECT_EQ(PrintedName("9:4 -1:4 " + strName), std::string(128, 'n'));
    EXPECT_EQ(PrintedName("9:4 0:4 " + strName), "");
    EXPECT_EQ(PrintedName("9:4 128:4 \"ab\" 00 \"cd\" 00*123 "), "ab");
}

TEST_F(LinkStatusTest, MoreNSPsThanThereIsRoomForAreAnnouncedButNotShown) {
    const std::string strReport =
        DiscoveryReport(strDiscoveryHead + "12:4 " + Times("7:4 1:4 \"x\" 00*127 ", 10) +
                        strDiscoveryTail + " ff*500");
    EXPECT_TRUE(Contains(strReport, "\nNumber of NSP entries: 12\n"));
    EXPECT_TRUE(EndsWith(strReport, "\nNSPLIST Entry 10 of total 12"
                                    "\nNSP Name is : x"
                                    "\nNSP ID is : 7"));
}

TEST_F(LinkStatusTest, ANegativeNumberOfNSPsIsNone) {
    const std::string strReport =
        DiscoveryReport(strDiscoveryHead + "-2:4 " + "ff*1360 " + strDiscoveryTail);
    EXPECT_TRUE(Contains(strReport, "\nNumber of NSP entries: -2\n"));
    EXPECT_TRUE(EndsWith(strReport, "\nCINR  : 21"));
}

// Low power scan.

TEST_F(LinkStatusTest, ALowPowerScanModeIsConfirmed) {
    EXPECT_EQ(Report(NetEntrySearchResponse, "1/6 | 1:4 66 17:4 -1:4 3000000000:4"),
              "\n~~~~~~~~~~ LOW POWER SCANMODE RESPONSE RECEIVED ~~~~~~\n"
              "\n Low power scan mode set for mode 102"
              "\n u32Rsvd1 17"
              "\n u32Rsvd2 4294967295"
              "\n u32Rsvd3 3000000000"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(LinkStatusTest, AnyResultButOneIsAFailedLowPowerScanMode) {
    const std::string strFailed = "\n~~~~~~~~~~ LOW POWER SCANMODE RESPONSE RECEIVED ~~~~~~\n"
                                  "\n Setting low power scan mode failed\n"
                                  "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(Report(NetEntrySearchResponse, "1/6 | 0:4 66 00*12"), strFailed);
    EXPECT_EQ(Report(NetEntrySearchResponse, "1/6 | 2:4 66 00*12"), strFailed);
    EXPECT_EQ(Report(NetEntrySearchResponse, "1/6 | 257:4 66 00*12"), strFailed);
    EXPECT_EQ(Report(NetEntrySearchResponse, "1/6"), strFailed);
}

// Synchronisation.

const std::string strSyncDetails = "01 02 03 04 05 06 12:4 21:4 2:4 -67:4 3:4 "
                                   "2587500:4 10000:4 7:4 8:4";
const std::string strSyncDetailsPrinted =
    "\n BS ID  :01 02 03 04 05 06"
    "\n PREAMBLE ID  : 12"
    "\n CINR MEAN : 21 dB"
    "\n CINR DEVIATION: 2 dB"
    "\n RSSI MEAN: -67 dBm"
    "\n RSSI DEVIATION: 3 dBm"
    "\n CENTER FREQUENCY: 2587500 kHz"
    "\n BANDWIDTH : 10000 kHz"
    "\n DCD change count : 7 "
    "\n NSP Change count : 8 "
    "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
const std::string strSyncBanner = "\n~~~~~~~~~~ SYNC STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"
                                  "\n SYNC STATUS  : ";

TEST_F(LinkStatusTest, ASyncThatWasAchievedHasDetails) {
    EXPECT_EQ(SyncReport("0:4 00 ee " + strSyncDetails),
              strSyncBanner + "PHY_SYNC ACHIEVED - NORMAL MAP" + strSyncDetailsPrinted);
    EXPECT_EQ(SyncReport("0:4 01 ee " + strSyncDetails),
              strSyncBanner + "PHY_SYNC ACHIEVED - COMPRESSED MAP" + strSyncDetailsPrinted);
}

TEST_F(LinkStatusTest, NumbersOfASyncAreSigned) {
    EXPECT_EQ(SyncReport("0:4 00 ee ff fe fd fc fb fa -12:4 -21:4 -2:4 -67:4 -3:4 "
                         "-2587500:4 -10000:4 -7:4 -8:4"),
              strSyncBanner + "PHY_SYNC ACHIEVED - NORMAL MAP"
                              "\n BS ID  :FF FE FD FC FB FA"
                              "\n PREAMBLE ID  : -12"
                              "\n CINR MEAN : -21 dB"
                              "\n CINR DEVIATION: -2 dB"
                              "\n RSSI MEAN: -67 dBm"
                              "\n RSSI DEVIATION: -3 dBm"
                              "\n CENTER FREQUENCY: -2587500 kHz"
                              "\n BANDWIDTH : -10000 kHz"
                              "\n DCD change count : -7 "
                              "\n NSP Change count : -8 "
                              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(LinkStatusTest, ASyncThatWaitsForNetworkEntryHasDetailsToo) {
    EXPECT_EQ(SyncReport("13:4 00 ee " + strSyncDetails),
              strSyncBanner + "WAIT_FOR_NETWORK_ENTRY_CMD - NORMAL MAP" + strSyncDetailsPrinted);
}

TEST_F(LinkStatusTest, AnyOtherSyncStatusIsAReasonWithoutDetails) {
    const std::string strClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(SyncReport("1:4 00 ee " + strSyncDetails),
              strSyncBanner + "PHY_SYNC_ERROR" + strClosing);
    EXPECT_EQ(SyncReport("14:4 00 ee " + strSyncDetails),
              strSyncBanner + "WAIT_FOR_PHY_SYNC_CMD" + strClosing);
    EXPECT_EQ(SyncReport("18:4 00 ee " + strSyncDetails),
              strSyncBanner + "UNKNOWN ERROR, (0x12)" + strClosing);
    EXPECT_EQ(SyncReport("269:4 00 ee " + strSyncDetails),
              strSyncBanner + "UNKNOWN ERROR, (0x10D)" + strClosing);
    EXPECT_EQ(SyncReport("-1:4 00 ee " + strSyncDetails),
              strSyncBanner + "UNKNOWN ERROR, (0xFFFFFFFF)" + strClosing);
}

// Network entry.

const std::string strEntryBanner =
    "\n~~~~~~~~~~~ NETWORK ENTRY STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"
    "\n NETENTRY STATUS  : ";
const std::string strEntryClosing =
    "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

TEST_F(LinkStatusTest, EveryReasonHasItsName) {
    const char *const apcNames[] = {
        "LINKUP_ACHIEVED",
        "PHY_SYNC_ERROR",
        "MAC_SYNC_ERROR",
        "HOST_INITIATED_SYNC_DOWN",
        "RANGING_FAILURE",
        "SBC_FAILURE",
        "PKM_FAILURE",
        "REGISTRATION_FAILURE",
        "DREG_RECEIVED",
        "RESET_RECEIVED",
        "IN_IDLE_MODE",
        "IN_SLEEP_MODE",
        "NETWORK_ENTRY_IN_PROGRESS",
        "WAIT_FOR_NETWORK_ENTRY_CMD",
        "WAIT_FOR_PHY_SYNC_CMD",
        "SHUTDOWN_RECEIVED_CMD",
        "SATEK_FAILURE",
        "LINK_STATUS_NORMAL",
        "UNKNOWN ERROR, (0x12)",
        "LINK_DOWN_HOST_INITIATED",
        "MAC_VERSION_SWITCH",
        "SHUTDOWN_RESYNC_RECEIVED",
        "IDLE_MODE_FAILURE_CODE_RECEIVED",
        "LOCATION_UPDATE_WITH_POWER_DOWN_SUCCESS_RECEIVED",
        "BS_OUT_OF_REACH",
        "IP_RETENTION_TIMER_EXPIRED",
        "UNKNOWN ERROR, (0x1A)",
    };
    for (uint32_t i = 0; i < std::size(apcNames); ++i) {
        EXPECT_EQ(PrintedBy([&] { DisplayLinkStatus(i); }), apcNames[i]);
        if (i != 8) {
            EXPECT_EQ(EntryReport(std::to_string(i) + ":1 00*44"),
                      strEntryBanner + apcNames[i] + strEntryClosing);
        }
    }
    EXPECT_EQ(EntryReport("ff 00*44"),
              strEntryBanner + "INVALID_REASON_CODE_RECEIVED" + strEntryClosing);
    EXPECT_EQ(EntryReport("fe 00*44"), strEntryBanner + "UNKNOWN ERROR, (0xFE)" + strEntryClosing);
}

TEST_F(LinkStatusTest, ReasonsBeyondAByteAreUnknown) {
    EXPECT_EQ(PrintedBy([] { DisplayLinkStatus(255); }), "INVALID_REASON_CODE_RECEIVED");
    EXPECT_EQ(PrintedBy([] { DisplayLinkStatus(256); }), "UNKNOWN ERROR, (0x100)");
    EXPECT_EQ(PrintedBy([] { DisplayLinkStatus(0xFFFFFFFF); }), "UNKNOWN ERROR, (0xFFFFFFFF)");
}

// The numbers are negative where they are signed.
const std::string strBaseInformation =
    "01 02 03 04 05 06 07 08 -3:2 -300:2 9:4 -70:4 3000000000:4 2590:4 2600:4 ";
const std::string strBaseInformationPrinted = "\n BASE ID :01 02 03 04 05 06"
                                              "\n PREAMBLE INDEX : 8"
                                              "\n UL CELL ID : 7"
                                              "\n CINR DEVIATION : -300 dB"
                                              "\n CINR MEAN : -3 dB"
                                              "\n DURATION : 9"
                                              "\n MEAN RSSI REPORT : -70"
                                              "\n STANDARD DEVIATION RSSI REPORT : 0xB2D05E00"
                                              "\n UL CENTER FREQUENCY : 2590 MHz"
                                              "\n DL CENTER FREQUENCY : 2600 MHz";

TEST_F(LinkStatusTest, ALinkUpHasTheBaseInformationAndVendorData) {
    EXPECT_EQ(EntryReport("00 1:4 " + strBaseInformation + "5:4 3:4 0a b0 ff"),
              strEntryBanner + "LINKUP_ACHIEVED" + strBaseInformationPrinted +
                  "\nVENDOR SPECIFIC DATA \n0x0a 0xb0 0xff \n" + strEntryClosing);
}

TEST_F(LinkStatusTest, NumbersOfTheBaseInformationAreSignedButTheBytes) {
    EXPECT_EQ(EntryReport("00 1:4 ff fe fd fc fb fa f9 f8 -3:2 -300:2 -9:4 -70:4 -1:4 "
                          "-2590:4 -2600:4 5:4 0:4"),
              strEntryBanner +
                  "LINKUP_ACHIEVED"
                  "\n BASE ID :FF FE FD FC FB FA"
                  "\n PREAMBLE INDEX : 248"
                  "\n UL CELL ID : 249"
                  "\n CINR DEVIATION : -300 dB"
                  "\n CINR MEAN : -3 dB"
                  "\n DURATION : -9"
                  "\n MEAN RSSI REPORT : -70"
                  "\n STANDARD DEVIATION RSSI REPORT : 0xFFFFFFFF"
                  "\n UL CENTER FREQUENCY : -2590 MHz"
                  "\n DL CENTER FREQUENCY : -2600 MHz" +
                  strEntryClosing);
}

TEST_F(LinkStatusTest, BaseInformationIsPrintedWhenItIsPresent) {
    EXPECT_EQ(EntryReport("0c 256:4 " + strBaseInformation + "5:4 0:4"),
              strEntryBanner + "NETWORK_ENTRY_IN_PROGRESS" + strBaseInformationPrinted +
                  strEntryClosing);
    EXPECT_EQ(EntryReport("00 0:4 " + strBaseInformation + "5:4 0:4"),
              strEntryBanner + "LINKUP_ACHIEVED" + strEntryClosing);
}

TEST_F(LinkStatusTest, ADeregistrationHasItsActionCode) {
    EXPECT_EQ(EntryReport("08 0:4 00*32 3:4 0:4"),
              strEntryBanner + "DREG_RECEIVEDDREG-RECEIVED Action Code is: 3\n" + strEntryClosing);
    EXPECT_EQ(EntryReport("08 1:4 " + strBaseInformation + "-1:4 1:4 7f"),
              strEntryBanner + "DREG_RECEIVEDDREG-RECEIVED Action Code is: -1\n" +
                  strBaseInformationPrinted + "\nVENDOR SPECIFIC DATA \n0x7f \n" + strEntryClosing);
}

TEST_F(LinkStatusTest, OnlyOneToTwoHundredAndFiftyFiveBytesAreVendorData) {
    const std::string strHead = "00 0:4 00*32 0:4 ";
    const std::string strNone = strEntryBanner + "LINKUP_ACHIEVED" + strEntryClosing;
    EXPECT_EQ(EntryReport(strHead + "0:4 11*300"), strNone);
    EXPECT_EQ(EntryReport(strHead + "256:4 11*300"), strNone);
    EXPECT_EQ(EntryReport(strHead + "-1:4 11*300"), strNone);
    EXPECT_EQ(EntryReport(strHead + "-256:4 11*300"), strNone);
    EXPECT_EQ(EntryReport(strHead + "255:4 11*300"),
              strEntryBanner + "LINKUP_ACHIEVED\nVENDOR SPECIFIC DATA \n" + Times("0x11 ", 255) +
                  "\n" + strEntryClosing);
}

TEST_F(LinkStatusTest, BaseInformationThatIsNullPrintsNothing) {
    EXPECT_EQ(PrintedBy([] { DisplayBaseInfo({}); }), "");
}

// Shutdown.

TEST_F(LinkStatusTest, AShutdownResponseSaysWhetherItHappened) {
    EXPECT_EQ(Report(ShutDownResponse, "30/1 | 0:4"),
              "\n\n~~~~~~~~~~ SHUTDOWN RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\n\tBASEBAND IS IN SHUTDOWN STATE"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(ShutDownResponse, "30/1 | 256:4"),
              "\n\n~~~~~~~~~~ SHUTDOWN RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\n\tBASEBAND IS NOT IN SHUTDOWN STATE"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(LinkStatusTest, IndicationsAroundAShutdownAreOneLineEach) {
    EXPECT_EQ(Report(ShutDownResponse, "30/2"),
              "\n\n~~~~~~~~~~ SHUTDOWN REQUEST FROM FIRMWARE RECEIVED ~~~~~~~~~~\n");
    EXPECT_EQ(Report(ShutDownResponse, "30/4"),
              "\n\n~~~~~~~~~~ COMPLETE WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n");
}

TEST_F(LinkStatusTest, TheShutdownModeStatusSaysWhetherTheModemIsShutDown) {
    EXPECT_EQ(Report(ShutDownResponse, "30/5 | 0:4"),
              "\n~~~~~~~~~~ SHUTDOWN MODE STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\nBASEBAND IS IN SHUTDOWN MODE"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(ShutDownResponse, "30/5 | 1:4"),
              "\n~~~~~~~~~~ SHUTDOWN MODE STATUS RESPONSE RECEIVED ~~~~~~~~~~\n"
              "\nBASEBAND IS NOT IN SHUTDOWN MODE"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

const std::string strWakeUpBanner =
    "\n\n~~~~~~~~~~ PERIODIC WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n";

TEST_F(LinkStatusTest, APeriodicWakeUpListsStationsAndKeepsNone) {
    SearchReport("1:4 1:4 " + strFirstStation);
    EXPECT_EQ(Report(ShutDownResponse, "30/3 | 2:4 ee*4 " + strSecondStation + strFirstStation),
              strWakeUpBanner + "\n2 BASE STATIONS FOUND.\n"
                                "\nBASE STATION : 1\n-------------------\n"
                                "\nBS ID  :B0 FF FE FD 04 05 06 - COMPRESSED MAP"
                                "\nPreamble Index ID  :113"
                                "\nCenter Frequency : 3590500 kHz"
                                "\nBandwidth : 7000 kHz"
                                "\nRelative Signal Strength : -91 dBm"
                                "\nCINR : -2 dB"
                                "\nDcdChangeCount : 255"
                                "\nNspChangeCount : -1\n\n"
                                "\nBASE STATION : 2\n-------------------\n"
                                "\nBS ID  :A0 00 12 C1 00 00 01 - NORMAL MAP"
                                "\nPreamble Index ID  :12"
                                "\nCenter Frequency : 2587500 kHz"
                                "\nBandwidth : 10000 kHz"
                                "\nRelative Signal Strength : -67 dBm"
                                "\nCINR : 21 dB"
                                "\nDcdChangeCount : 3"
                                "\nNspChangeCount : 4\n\n");
    EXPECT_EQ(g_u32NumberOfBaseStations, 1U);
    EXPECT_EQ(g_u32NAPID, 4801U);
    EXPECT_EQ(Kept(g_BSINFO, 0, 36), Message(strFirstStation));
}

TEST_F(LinkStatusTest, APeriodicWakeUpListsEveryStationThatTheDataAreaHolds) {
    const std::string strReport =
        Report(ShutDownResponse, "30/3 | -1:4 0:4 " + Times(strFirstStation + " ", 284) + "ff*8");
    EXPECT_TRUE(BeginsWith(strReport, strWakeUpBanner + "\n-1 BASE STATIONS FOUND.\n"));
    EXPECT_TRUE(Contains(strReport, "\nBASE STATION : 284\n"));
    EXPECT_FALSE(Contains(strReport, "\nBASE STATION : 285\n"));
    EXPECT_EQ(Report(ShutDownResponse, "30/3"), strWakeUpBanner + "\n0 BASE STATIONS FOUND.\n");
}

TEST_F(LinkStatusTest, NumbersOfAPeriodicWakeUpAreSigned) {
    EXPECT_TRUE(EndsWith(Report(ShutDownResponse,
                                "30/3 | 1:4 0:4 00 fa fb fc fd fe ff ef -12:4 -2587500:4 -10000:4 "
                                "-67:4 -2:4 -3:4 -4:4"),
                         "\nBS ID  :FA FB FC FD FE FF EF - NORMAL MAP"
                         "\nPreamble Index ID  :-12"
                         "\nCenter Frequency : -2587500 kHz"
                         "\nBandwidth : -10000 kHz"
                         "\nRelative Signal Strength : -67 dBm"
                         "\nCINR : -2 dB"
                         "\nDcdChangeCount : -3"
                         "\nNspChangeCount : -4\n\n"));
}

// Half mini card.

TEST_F(LinkStatusTest, AHalfMiniCardResponseIsAnsweredASecondLater) {
    gbInsideSubMenu = 1;
    FakeDevice::SetSendResult(-5);
    const auto Begin = std::chrono::steady_clock::now();
    auto SentAt = Begin;
    FakeDevice::OnSend([&](size_t, auto) { SentAt = std::chrono::steady_clock::now(); });
    EXPECT_EQ(Report(ProcessHalfMiniCardResponse, "36/2"),
              "\n~~~~~~~~~~ HALF MINI CARD RESPONSE RECEIVED~~~~~~~~~~\n"
              "\nApplication will send HMC Status message after interval of 1 second"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_GE(SentAt - Begin, std::chrono::seconds(1));
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"36/1"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 4}}));
    EXPECT_EQ(gbInsideSubMenu, 0);
}

TEST_F(LinkStatusTest, AHalfMiniCardResponseIsSeenBeforeThePauseAndClosedBehindTheSend) {
    const std::string strBegin =
        "\n~~~~~~~~~~ HALF MINI CARD RESPONSE RECEIVED~~~~~~~~~~\n"
        "\nApplication will send HMC Status message after interval of 1 second";
    // What has reached the output so far.
    const auto Seen = [] {
        std::string strSeen(1000, '\0');
        strSeen.resize(static_cast<size_t>(pread(STDOUT_FILENO, strSeen.data(), 1000, 0)));
        return strSeen;
    };
    std::string strSeenAtSend;
    auto SentAt = std::chrono::steady_clock::time_point::max();
    FakeDevice::OnSend([&](size_t, auto) {
        strSeenAtSend = Seen();
        SentAt = std::chrono::steady_clock::now();
    });
    std::thread Library([] { FakeDevice::Deliver(Message("36/2")); });
    const auto Limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Seen() != strBegin && std::chrono::steady_clock::now() < Limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto SeenAt = std::chrono::steady_clock::now();
    Library.join();
    EXPECT_GE(SentAt - SeenAt, std::chrono::milliseconds(100));
    EXPECT_EQ(strSeenAtSend, strBegin);
    EXPECT_EQ(Printed(), strBegin + "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(LinkStatusTest, AHalfMiniCardWakeUpIsReported) {
    EXPECT_EQ(Report(ProcessHalfMiniCardResponse, "36/3"),
              "\n~~~~~~~~~~~ HALF MINI CARD WAKEUP RECEIVED~~~~~~~~~~~~\n"
              "\nModem came out of HMC Shutdown"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(LinkStatusTest, HalfMiniCardMessagesHaveTheResultZero) {
    for (const char *pcMessage : {"36/2", "36/3", "36/4"}) {
        Report(
            [](const WiMAXMessage *pstMessage) {
                const uint32_t u32Result = ProcessHalfMiniCardResponse(pstMessage);
                EXPECT_EQ(u32Result, 0U);
                return u32Result;
            },
            pcMessage);
    }
}

// What is not understood.

TEST_F(LinkStatusTest, NullMessagesPrintNothing) {
    EXPECT_EQ(PrintedBy([] {
                  NetEntrySearchResponse(nullptr);
                  NetEntryExitResponse(nullptr);
                  ShutDownResponse(nullptr);
                  ProcessHalfMiniCardResponse(nullptr);
              }),
              "");
}

TEST_F(LinkStatusTest, UnknownSubtypesPrintNothing) {
    for (const char *pcMessage : {"1/0 | 01*50", "1/2 | 01*50", "1/3 | 01*50", "1/5 | 01*50",
                                  "1/7 | 01*50", "1/257 | 01*50"}) {
        EXPECT_EQ(Report(NetEntrySearchResponse, pcMessage), "");
    }
    for (const char *pcMessage : {"2/0 | 01*50", "2/3 | 01*50", "2/4 | 01*50", "2/258 | 01*50"}) {
        EXPECT_EQ(Report(NetEntryExitResponse, pcMessage), "");
    }
    for (const char *pcMessage : {"30/0 | 01*50", "30/6 | 01*50", "30/261 | 01*50"}) {
        EXPECT_EQ(Report(ShutDownResponse, pcMessage), "");
    }
    for (const char *pcMessage : {"36/0", "36/1", "36/4", "36/258"}) {
        EXPECT_EQ(Report(ProcessHalfMiniCardResponse, pcMessage), "");
    }
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

} // namespace

#include "MIBIndication.h"

#include <random>

#include <fcntl.h>
#include <unistd.h>

#include "SFIDTable.h"
#include "TestConsole.h"

namespace {

const std::string strMIBIndicationOpening =
    "\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n";
const std::string strMIBIndicationClosing =
    "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

// A record as text: no keys, the stated data length, the status, the value.
std::string RecordText(uint32_t u32ID, uint32_t u32Length, const std::string &strStatus,
                       const std::string &strValue) {
    return std::to_string(u32ID) + ":4 00 00*16 " + std::to_string(u32Length) + ":4 " + strStatus +
           " " + strValue + " ";
}

// A get answer with status 0.
std::string GetText(uint32_t u32ID, uint32_t u32Length, const std::string &strValue) {
    return "24/2 | " + RecordText(u32ID, u32Length, "00", strValue);
}

std::string GetOpening(const std::string &strID) {
    return strMIBIndicationOpening + "\nGet Response received\n MIB OID - " + strID + " : ";
}

class MIBIndicationTest : public ConsoleTest {
  protected:
    static std::string Shown(const std::string &strMessage) {
        return Report(MIBIndication, strMessage);
    }
    static uint32_t ResultOf(const std::string &strMessage) {
        return MIBIndication(RecordOf(Message(strMessage)).get());
    }
    static uint32_t CountOf(const std::string &strText, const std::string &strPart) {
        uint32_t u32Count = 0;
        for (size_t u = strText.find(strPart); u != std::string::npos;
             u = strText.find(strPart, u + 1)) {
            ++u32Count;
        }
        return u32Count;
    }
};

TEST_F(MIBIndicationTest, ANullMessagePrintsNothing) {
    EXPECT_EQ(PrintedBy([] { MIBIndication(nullptr); }), "");
}

TEST_F(MIBIndicationTest, AnUnknownSubtypeIsFramedOnly) {
    EXPECT_EQ(Shown("24/5 | 01*60"), strMIBIndicationOpening + strMIBIndicationClosing);
    EXPECT_EQ(Shown("24/0"), strMIBIndicationOpening + strMIBIndicationClosing);
    EXPECT_EQ(ResultOf("24/5 | 01*60"), 1U);
}

TEST_F(MIBIndicationTest, ASetIsReportedByItsStatus) {
    EXPECT_EQ(Shown("24/1 | " + RecordText(510, 4, "00", "01 02 03 04")),
              strMIBIndicationOpening + "\nGet Response received\nMIB Set is Successful !!!" +
                  strMIBIndicationClosing);
    EXPECT_EQ(Shown("24/1 | " + RecordText(510, 0, "fb", "00")),
              strMIBIndicationOpening +
                  "\nGet Response received Error Code while MIB Set: (-5) \n" +
                  strMIBIndicationClosing);
    EXPECT_EQ(Shown("24/1 | " + RecordText(510, 0, "07", "00")),
              strMIBIndicationOpening + "\nGet Response received Error Code while MIB Set: (7) \n" +
                  strMIBIndicationClosing);
    EXPECT_EQ(ResultOf("24/1 | " + RecordText(510, 4, "00", "01 02 03 04")), 1U);
}

TEST_F(MIBIndicationTest, FourBytesAreShownAsANumberToo) {
    EXPECT_EQ(Shown(GetText(510, 4, "78 56 34 12")),
              GetOpening("510") + " 0x78 0x56 0x34 0x12 UINT eq : 305419896\n" +
                  strMIBIndicationClosing);
    EXPECT_EQ(Shown(GetText(510, 4, "-2:4")),
              GetOpening("510") + " 0xfe 0xff 0xff 0xff UINT eq : -2\n" + strMIBIndicationClosing);
    EXPECT_EQ(ResultOf(GetText(510, 4, "-2:4")), 1U);
}

TEST_F(MIBIndicationTest, OtherValuesAreShownAsBytes) {
    EXPECT_EQ(Shown(GetText(3, 2, "0f 00")),
              GetOpening("3") + " 0x0f 0x00\n" + strMIBIndicationClosing);
    EXPECT_EQ(Shown(GetText(3, 6, "01 02 03 a4 b5 c6")),
              GetOpening("3") + " 0x01 0x02 0x03 0xa4 0xb5 0xc6\n" + strMIBIndicationClosing);
    EXPECT_EQ(Shown(GetText(3, 0, "ff")), GetOpening("3") + "\n" + strMIBIndicationClosing);
    EXPECT_EQ(Shown(GetText(4294967295, 1, "aa")),
              GetOpening("-1") + " 0xaa\n" + strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, TheRestOfALongerPayloadIsNotPartOfTheValue) {
    EXPECT_EQ(Shown(GetText(3, 2, "0f 00 ee ee ee")),
              GetOpening("3") + " 0x0f 0x00\n" + strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, AGetThatFailedHasItsStatusInTheWordingOfASet) {
    EXPECT_EQ(Shown("24/2 | " + RecordText(510, 4, "ff", "01 02 03 04")),
              GetOpening("510") + " Error Code while MIB Set: (-1) \n" + strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, AFailedGetOfASpecialAttributeIsNotDecoded) {
    const std::string strMessage = "24/2 | " + RecordText(1608, 2520, "80", "00*2520");
    EXPECT_EQ(Shown(strMessage), GetOpening("1608") + " Error Code while MIB Set: (-128) \n" +
                                     strMIBIndicationClosing);
    EXPECT_EQ(ResultOf(strMessage), 1U);
}

TEST_F(MIBIndicationTest, ValuesEndWithThePayload) {
    EXPECT_EQ(Shown(GetText(3, 4294967295, "01 02 00*10211 03")),
              GetOpening("3") + " 0x01 0x02" + Times(" 0x00", 10211) + " 0x03\n" +
                  strMIBIndicationClosing);
    // The stated length decides whether the bytes are a number.
    EXPECT_EQ(Shown(GetText(3, 5, "01 02 03 04 05")),
              GetOpening("3") + " 0x01 0x02 0x03 0x04 0x05\n" + strMIBIndicationClosing);
    EXPECT_EQ(Shown("24/2 | 3:4"), GetOpening("3") + "\n" + strMIBIndicationClosing);
    EXPECT_EQ(Shown("24/2"), GetOpening("0") + "\n" + strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, AMultipleSetShowsTheRecordsThatFailed) {
    EXPECT_EQ(Shown("24/3 | 4:2 " + RecordText(1, 2, "00", "01 02") + RecordText(2, 0, "fe", "00") +
                    RecordText(804, 4, "00", "01 02 03 04") +
                    RecordText(501, 4, "05", "01 02 03 04")),
              strMIBIndicationOpening +
                  "\nMultiple MIB Set Response receved"
                  "\n MIB OID - 2 : Error Code - (-2) \n"
                  "\n MIB OID - 501 : Error Code - (5) \n" +
                  strMIBIndicationClosing);
    EXPECT_EQ(ResultOf("24/3 | 00 00"), 1U);
}

TEST_F(MIBIndicationTest, AMultipleGetShowsEveryRecord) {
    EXPECT_EQ(Shown("24/4 | 4:2 " + RecordText(1, 2, "00", "01 02") +
                    RecordText(1400, 4, "00", "ff 00 00 00") +
                    RecordText(9, 4, "f0", "01 02 03 04") + RecordText(7, 1, "00", "aa")),
              strMIBIndicationOpening +
                  "\nGet Response received"
                  "\n MIB OID - 1 :  0x01 0x02\n"
                  "\n MIB OID - 1400 :  0xff 0x00 0x00 0x00 UINT eq : 255\n"
                  "\n MIB OID - 9 :  Error Code - (-16) \n"
                  "\n MIB OID - 7 :  0xaa\n" +
                  strMIBIndicationClosing);
    EXPECT_EQ(ResultOf("24/4 | 00 00"), 1U);
}

TEST_F(MIBIndicationTest, ARecordWithoutAValueTakesTwentySevenBytes) {
    EXPECT_EQ(Shown("24/4 | 2:2 " + RecordText(20, 0, "00", "99") + RecordText(21, 1, "00", "07")),
              strMIBIndicationOpening +
                  "\nGet Response received\n MIB OID - 20 : \n\n MIB OID - 21 :  0x07\n" +
                  strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, SpecialAttributesOfAMultipleGetAreShownAsBytes) {
    EXPECT_EQ(Shown("24/4 | 1:2 " + RecordText(1467, 4, "00", "05 00 00 00")),
              strMIBIndicationOpening +
                  "\nGet Response received\n MIB OID - 1467 :  0x05 0x00 0x00 0x00 UINT eq : 5\n" +
                  strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, RecordsEndWithThePayload) {
    const std::string strHead = strMIBIndicationOpening + "\nGet Response received";
    // More announced than there are: all that have at least their status in the payload.
    EXPECT_EQ(Shown("24/4 | ff ff " + RecordText(1, 1, "00", "07")),
              strHead + "\n MIB OID - 1 :  0x07\n" + Times("\n MIB OID - 0 : \n", 378) +
                  strMIBIndicationClosing);
    EXPECT_EQ(CountOf(Shown("24/4 | ff ff " + RecordText(1, 10186, "00", "07")), "MIB OID"), 2U);
    EXPECT_EQ(CountOf(Shown("24/4 | ff ff " + RecordText(1, 10187, "00", "07")), "MIB OID"), 1U);
    // A record that ends with its status.
    EXPECT_EQ(
        Shown("24/4 | 2:2 " + RecordText(1, 10186, "fc", "00*10186") + RecordText(2, 0, "fb", "")),
        strHead +
            "\n MIB OID - 1 :  Error Code - (-4) \n"
            "\n MIB OID - 2 :  Error Code - (-5) \n" +
            strMIBIndicationClosing);
    // A value that claims to be longer than everything.
    EXPECT_EQ(
        Shown("24/4 | 2:2 " + RecordText(1, 4294967295, "00", "07") + RecordText(2, 0, "00", "00")),
        strHead + "\n MIB OID - 1 :  0x07 0x02" + Times(" 0x00", 10210) + "\n" +
            strMIBIndicationClosing);
}

TEST_F(MIBIndicationTest, ActiveSFIDsAreListedAndKept) {
    ClearSFIDTable();
    EXPECT_EQ(Shown(GetText(1503, 276, "2:4 4097:4 aa*132 -3:4 bb*132")),
              GetOpening("1503") + "\nList of active SFIDs :\n    SFID   : 4097\n    SFID   : -3");
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 4097U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 4294967293U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[2], 0U);
    EXPECT_EQ(ResultOf(GetText(1503, 4, "0:4")), 0U);
    ClearSFIDTable();
}

TEST_F(MIBIndicationTest, ActiveSFIDsEndWithThePayload) {
    ClearSFIDTable();
    EXPECT_EQ(Shown(GetText(1503, 140, "4294967295:4 5:4 00*132 6:4")),
              GetOpening("1503") + "\nList of active SFIDs :\n    SFID   : 5\n    SFID   : 6" +
                  Times("\n    SFID   : 0", 73));
    EXPECT_EQ(CountOf(Shown(GetText(1503, 140, "65536:4")), "SFID   : "), 75U);
    ClearSFIDTable();
}

TEST_F(MIBIndicationTest, NetworkEntryTiming) {
    EXPECT_EQ(Shown(GetText(1619, 36, "100:4 101:4 102:4 103:4 104:4 105:4 106:4 107:4 -1:4")),
              GetOpening("1619") +
                  "\n\n~~~~~~~~~~Network entry timing statistics START~~~~~~~~~~~\n"
                  "u32AuthPhaseTime: [105]\n"
                  "u32PhySyncTime: [101]\n"
                  "u32MacSyncTime: [102]\n"
                  "u32NwEntryTime: [-1]\n"
                  "u32NwSearchTime: [100]\n"
                  "u32ProvSfTime: [107]\n"
                  "u32RangingTime: [103]\n"
                  "u32RegNegTime: [106]\n"
                  "u32SbcTime: [104]\n"
                  "\n\n~~~~~~~~~~Network entry timing statistics END ~~~~~~~~~~~\n");
}

TEST_F(MIBIndicationTest, NetworkEntryTimesAreSigned) {
    EXPECT_EQ(
        Shown(GetText(1619, 36, "-100:4 -101:4 -102:4 -103:4 -104:4 -105:4 -106:4 -107:4 -1:4")),
        GetOpening("1619") + "\n\n~~~~~~~~~~Network entry timing statistics START~~~~~~~~~~~\n"
                             "u32AuthPhaseTime: [-105]\n"
                             "u32PhySyncTime: [-101]\n"
                             "u32MacSyncTime: [-102]\n"
                             "u32NwEntryTime: [-1]\n"
                             "u32NwSearchTime: [-100]\n"
                             "u32ProvSfTime: [-107]\n"
                             "u32RangingTime: [-103]\n"
                             "u32RegNegTime: [-106]\n"
                             "u32SbcTime: [-104]\n"
                             "\n\n~~~~~~~~~~Network entry timing statistics END ~~~~~~~~~~~\n");
}

TEST_F(MIBIndicationTest, TheMRUTableHasTheIndexesOfItsEntries) {
    EXPECT_EQ(Shown(GetText(1612, 40,
                            "7:4 2600000:4 2610000:4 0:4 10:4 "
                            "-3:4 -3500000:4 -1:4 3520000:4 -5:4")),
              GetOpening("1612") + "\n\n Total MRU Entries : [2]\n"
                                   "\n MRU Index : [7]\n"
                                   "\n Freq 0 of Index [7] - [2600000]\n"
                                   "\n Freq 1 of Index [7] - [2610000]\n"
                                   "\n Freq 2 of Index [7] - [0]\n"
                                   "\n Bandwidth of Index [7] - [10] MHz\n"
                                   "\n MRU Index : [-3]\n"
                                   "\n Freq 0 of Index [-3] - [-3500000]\n"
                                   "\n Freq 1 of Index [-3] - [-1]\n"
                                   "\n Freq 2 of Index [-3] - [3520000]\n"
                                   "\n Bandwidth of Index [-3] - [-5] MHz\n");
    EXPECT_EQ(Shown(GetText(1612, 19, "00*19")),
              GetOpening("1612") + "\n\n Total MRU Entries : [0]\n");
}

TEST_F(MIBIndicationTest, TheMRUTableEndsWithThePayload) {
    const std::string strShown = Shown(GetText(1612, 4294967295, "00*39"));
    EXPECT_EQ(CountOf(strShown, "MRU Index"), 510U);
    EXPECT_NE(strShown.find("Total MRU Entries : [214748364]"), std::string::npos);
}

TEST_F(MIBIndicationTest, AMinusSignStandsBeforeEveryNegatedValue) {
    EXPECT_EQ(Shown(GetText(1467, 4, "85:4")), GetOpening("1467") + " UINT eq : -85");
    EXPECT_EQ(Shown(GetText(1468, 4, "-85:4")), GetOpening("1468") + " UINT eq : --85");
    EXPECT_EQ(Shown(GetText(1468, 4, "85000:4")), GetOpening("1468") + " UINT eq : -85000");
    EXPECT_EQ(ResultOf(GetText(1468, 4, "85:4")), 0U);
}

TEST_F(MIBIndicationTest, NeighboursInWholeNumbers) {
    EXPECT_EQ(Shown(GetText(1494, 60,
                            "2:4 "
                            "33:4 10000000:4 20800:4 f6 e5 d4 c3 b2 a1 ee ee -301:4 25:4 "
                            "-114:4 8750000:4 4294967295:4 06 05 04 03 02 01 00 00 7:4 -3:4")),
              GetOpening("1494") + "Number of Neighbours 2\n"
                                   "~~~~~~ Neighbour 0 ~~~~~~~~ \n"
                                   "    Preamble         : 33\n"
                                   "    ChannelBandwidth : 10 Mhz\n"
                                   "    Centerfreq       : 2600 MHz\n"
                                   "    Bsid             : a1 b2 c3 d4 e5 f6\n"
                                   "    RSSI             : -75 dBm\n"
                                   "    CINR             : 25 dB\n"
                                   "~~~~~~ Neighbour 1 ~~~~~~~~ \n"
                                   "    Preamble         : -114\n"
                                   "    ChannelBandwidth : 8 Mhz\n"
                                   "    Centerfreq       : 536870911 MHz\n"
                                   "    Bsid             : 01 02 03 04 05 06\n"
                                   "    RSSI             : 1 dBm\n"
                                   "    CINR             : -3 dB\n");
}

TEST_F(MIBIndicationTest, MeasuredNeighboursAreUnsigned) {
    EXPECT_EQ(Shown(GetText(1575, 108,
                            "2:4 "
                            "ee*4 -33:4 20700:4 8750000:4 a1 b2 c3 d4 0a ff ee ee "
                            "98304:4 65536:4 -1:4 20:4 -7:4 -200:4 4660:4 "
                            "ee*4 0:4 20801:4 5000000:4 00*6 ee ee "
                            "0:4 1:4 5242880:4 -1:4 1:4 2:4 -1:4")),
              GetOpening("1575") + "\nNumber of Neighbours 2\n"
                                   "\n~~~~~~~ Neighbour 0 ~~~~~~~ \n"
                                   "\tFrequency (MHz) : 2587.500000\n"
                                   "\tPreambleId      : -33\n"
                                   "\tBandwidth (MHz) : 8.750000\n"
                                   "\tBSId            : a1 b2 c3 d4 0a ff\n"
                                   "\tRSSI (dBm)      : 65535.999985\n"
                                   "\tR1CINR          : 1.500000\n"
                                   "\tR3CINR          : 1.000000\n"
                                   "\tToF             : 1.250000\n"
                                   "\tRTD             : -7\n"
                                   "\tMeasDur         : -200\n"
                                   "\tFlags(Hex)      : 1234\n"
                                   "\n~~~~~~~ Neighbour 1 ~~~~~~~ \n"
                                   "\tFrequency (MHz) : 2600.125000\n"
                                   "\tPreambleId      : 0\n"
                                   "\tBandwidth (MHz) : 5.000000\n"
                                   "\tBSId            : 00 00 00 00 00 00\n"
                                   "\tRSSI (dBm)      : 80.000000\n"
                                   "\tR1CINR          : 0.000000\n"
                                   "\tR3CINR          : 0.000015\n"
                                   "\tToF             : 268435455.937500\n"
                                   "\tRTD             : 1\n"
                                   "\tMeasDur         : 2\n"
                                   "\tFlags(Hex)      : ffffffff\n");
}

TEST_F(MIBIndicationTest, NeighboursEndWithThePayload) {
    EXPECT_EQ(CountOf(Shown(GetText(1494, 60, "65536:4 00*83")), "~ Neighbour "), 364U);
    EXPECT_EQ(CountOf(Shown(GetText(1575, 60, "-1:4 00*103")), "~ Neighbour "), 196U);
    EXPECT_NE(Shown(GetText(1494, 4, "-2:4")).find("Number of Neighbours -2\n"), std::string::npos);
    EXPECT_NE(Shown(GetText(1575, 4, "-2:4")).find("Number of Neighbours -2\n"), std::string::npos);
    EXPECT_EQ(Shown(GetText(1494, 0, "")), GetOpening("1494") + "Number of Neighbours 0\n");
}

TEST_F(MIBIndicationTest, AntennaSwitchInformation) {
    EXPECT_EQ(Shown(GetText(1631, 32, "256:4 -1:4 -3:4 -4:4 -1201:4 8:4 -2:4 -1:4")),
              GetOpening("1631") +
                  "\n\t~~~~~ TX Antenna Switch Information ~~~~~\n"
                  "\tFiltering Coefficient for Antenna1(Q23.9 format) : 0.500000\n"
                  "\tFiltering Coefficient for Antenna2(Q23.9 format) : 8388607.998047\n"
                  "\tSwitching margin for Antenna1                    : -3\n"
                  "\tSwitching margin for Antenna2                    : -4\n"
                  "\tSmooth RSSI for Antenna1(Q1.27.4 format)         : -75.062500\n"
                  "\tSmooth RSSI for Antenna2(Q1.27.4 format)         : 0.500000\n"
                  "\tAntenna Selection mode                           : -2\n"
                  "\tCurrent TX Antenna                               : -1\n");
}

TEST_F(MIBIndicationTest, TriggerStatus) {
    const std::string strBanner = "\n\n~~~~~~~~~~ Trigger Status Information ~~~~~~~~~~\n";
    const std::string strRule = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(Shown(GetText(1633, 3, "00 01 02")),
              GetOpening("1633") + strBanner +
                  "Trigger Status for Serving BS \t : TRIGGER_STATUS_FAILED\n"
                  "Trigger Status for IntraFA Group : TRIGGER_STATUS_PASSED\n"
                  "Trigger Status for InterFA Group : TRIGGER_STATUS_NO_MEASUREMENTS\n" +
                  strRule);
    EXPECT_EQ(Shown(GetText(1633, 3, "03 04 ff")),
              GetOpening("1633") + strBanner +
                  "Trigger Status for Serving BS \t : TRIGGER_STATUS_NOT_DEFINED\n"
                  "Trigger Status for IntraFA Group : TRIGGER_STATUS_NOT_DEFINED\n"
                  "Trigger Status for InterFA Group : TRIGGER_STATUS_NOT_DEFINED\n" +
                  strRule);
}

TEST_F(MIBIndicationTest, FourCounters) {
    const std::string strValue = "10:4 11:4 12:4 -13:4";
    EXPECT_EQ(Shown(GetText(1634, 16, strValue)), GetOpening("1634") +
                                                      "\nDlPerRxBurstErrorRateUpper[0]\t:\t10\n"
                                                      "\nDlPerRxBurstErrorRateUpper[1]\t:\t11\n"
                                                      "\nDlPerRxBurstErrorRateUpper[2]\t:\t12\n"
                                                      "\nDlPerRxBurstErrorRateUpper[3]\t:\t-13\n");
    EXPECT_EQ(Shown(GetText(1448, 16, strValue)), GetOpening("1448") +
                                                      "\nPerAttemptRcvSuccess[0]\t:\t10\n"
                                                      "\nPerAttemptRcvSuccess[1]\t:\t11\n"
                                                      "\nPerAttemptRcvSuccess[2]\t:\t12\n"
                                                      "\nPerAttemptRcvSuccess[3]\t:\t-13\n");
    EXPECT_EQ(Shown(GetText(1482, 16, strValue)), GetOpening("1482") +
                                                      "\nSubmap Errors[0]\t:\t10\n"
                                                      "\nSubmap Errors[1]\t:\t11\n"
                                                      "\nSubmap Errors[2]\t:\t12\n"
                                                      "\nSubmap Errors[3]\t:\t-13\n");
    EXPECT_EQ(Shown(GetText(1479, 16, strValue)), GetOpening("1479") +
                                                      "\nPerAttemptrcvTranscompleted[0]\t:\t10\n"
                                                      "\nPerAttemptrcvTranscompleted[1]\t:\t11\n"
                                                      "\nPerAttemptrcvTranscompleted[2]\t:\t12\n"
                                                      "\nPerAttemptrcvTranscompleted[3]\t:\t-13\n");
    EXPECT_EQ(Shown(GetText(1649, 16, strValue)), GetOpening("1649") +
                                                      "\nTxAAsoundingtype[0]\t:\t10\n"
                                                      "\nTxAAsoundingtype[1]\t:\t11\n"
                                                      "\nTxAAsoundingtype[2]\t:\t12\n"
                                                      "\nTxAAsoundingtype[3]\t:\t-13\n");
}

TEST_F(MIBIndicationTest, ControlMessagesDropped) {
    EXPECT_EQ(Shown(GetText(1654, 32, "-1:4 -2:4 -3:4 -4:4 -5:4 -6:4 -7:4 -8:4")),
              GetOpening("1654") +
                  "\n\n~~~~~~~~~~ Control Messages Dropped By Application ~~~~~~~~~~\n"
                  "cm_responses                            : -1\n"
                  "cm_control_newdsx_multiclassifier_resp  : -2\n"
                  "link_control_resp                       : -3\n"
                  "status_rsp                              : -4\n"
                  "stats_pointer_resp                      : -5\n"
                  "idle_mode_status                        : -6\n"
                  "auth_ss_host_msg                        : -7\n"
                  "low_priority_message                    : -8\n"
                  "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

// The per-zone reports are built from values that say where they lie: the word
// at offset n of the value is 100000 + n.
std::string WordsThatSayWhere(uint32_t u32Size) {
    std::string strText;
    for (uint32_t i = 0; i < u32Size; i += 4) {
        strText += std::to_string(100000 + i) + ":4 ";
    }
    return strText;
}

std::string GroupText(const std::string &strPrefix, uint32_t u32Offset) {
    std::string strText;
    for (const char *pcName :
         {"CCQpsk12Rate1",  "CCQpsk12Rate2",  "CCQpsk12Rate4",  "CCQpsk12Rate6",  "CCQpsk34",
          "CC16Qam12",      "CC16Qam34",      "CC64Qam12",      "CC64Qam23",      "CC64Qam34",
          "CTCQpsk12Rate1", "CTCQpsk12Rate2", "CTCQpsk12Rate4", "CTCQpsk12Rate6", "CTCQpsk34",
          "CTC16Qam12",     "CTC16Qam34",     "CTC64Qam12",     "CTC64Qam23",     "CTC64Qam34",
          "CTC64Qam56"}) {
        strText += strPrefix + pcName + ": [" + std::to_string(100000 + u32Offset) + "]\n";
        u32Offset += 4;
    }
    return strText;
}

TEST_F(MIBIndicationTest, BurstsOfTenZonesTakeTenKeys) {
    // 300 bytes a zone: a zone may be longer than its counters.
    const std::string strMessage = GetText(1608, 3000, WordsThatSayWhere(3000));
    std::string strExpected = GetOpening("1608");
    for (uint32_t z = 0; z < 10; ++z) {
        strExpected += "\nZone Is: [" + std::to_string(z) + "]\n";
        strExpected += "\n\n~~~~~~~~~~MIMO MAT A ~~~~~~~~~~~\n";
        strExpected += GroupText("TvlBasebandBurstRcv", 300 * z);
        strExpected += "\n\n~~~~~~~~~~MIMO MAT B ~~~~~~~~~~~\n";
        strExpected += GroupText("TvlBasebandBurstRcv", 300 * z + 84);
        strExpected += "\n\n~~~~~~~~~~NON MIMO ~~~~~~~~~~~\n";
        strExpected += GroupText("TvlBasebandBurstRcv", 300 * z + 168);
    }
    Type("\n\nab\n\n\n\n\nc-1");
    EXPECT_EQ(Shown(strMessage), strExpected);
    EXPECT_EQ(Unread(), "-1");
}

TEST_F(MIBIndicationTest, CountersAreSigned) {
    Type("0123456789");
    EXPECT_NE(
        Shown(GetText(1608, 2520, "-1:4 00*2516")).find("TvlBasebandBurstRcvCCQpsk12Rate1: [-1]\n"),
        std::string::npos);
}

TEST_F(MIBIndicationTest, StatisticsOfThirteenZonesTakeThirteenKeys) {
    const std::string strMessage = GetText(1625, 6868, WordsThatSayWhere(6868));
    std::string strExpected = GetOpening("1625") + "Frame number for UL: [105296]\n";
    for (uint32_t z = 0; z < 10; ++z) {
        const uint32_t u32Zone = 16 + 528 * z;
        const auto Word = [&](uint32_t u32Offset) {
            return "[" + std::to_string(100000 + u32Zone + u32Offset) + "]\n";
        };
        // The word at 4 holds the three signed bytes, the lowest first.
        const uint32_t u32Rates = 100004 + u32Zone;
        const auto Rate = [&](uint32_t u32Byte) {
            return "[" + std::to_string(static_cast<int8_t>(u32Rates >> (8 * u32Byte))) + "]\n";
        };
        strExpected += "\nMajor Group indicator : [100000]\n";
        strExpected += "DL Zone [" + std::to_string(z) + "] Information :\n\n";
        strExpected += "ECINR Rate   : " + Rate(2);
        strExpected += "PCINR Rate 1 : " + Rate(0);
        strExpected += "PCINR Rate 2 : " + Rate(1);
        strExpected += "Last Frame Number ECINR : " + Word(12);
        strExpected += "Last Frame Number PCINR : " + Word(8);
        strExpected += "Zone last Frame Number : " + Word(0);
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT A Info ~~~~~~~~~~~\n" +
            GroupText("TvlBasebandPduRcv", u32Zone + 276);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT B info~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandPduRcv", u32Zone + 360);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved NON MIMO info~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandPduRcv", u32Zone + 444);
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT A Info ~~~~~~~~~~~\n" +
            GroupText("TvlBasebandBurstRcv", u32Zone + 24);
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT B info~~~~~~~~~~~\n" +
            GroupText("TvlBasebandBurstRcv", u32Zone + 108);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved NON MIMO info~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandBurstRcv", u32Zone + 192);
    }
    for (uint32_t z = 0; z < 3; ++z) {
        const uint32_t u32Zone = 5296 + 524 * z;
        strExpected += "UL Zone [" + std::to_string(z) + "] Information :\n\n";
        strExpected += "Zone last Frame Number : [" + std::to_string(100000 + u32Zone) + "]\n";
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT A Info ~~~~~~~~~~~\n" +
            GroupText("TvlBasebandPduTx", u32Zone + 272);
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT B Info ~~~~~~~~~~~\n" +
            GroupText("TvlBasebandPduTx", u32Zone + 356);
        strExpected +=
            "\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted NON CSM Info ~~~~~~~~~~~\n" +
            GroupText("TvlBasebandPduTx", u32Zone + 440);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTA Info ~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandBurstsTx", u32Zone + 20);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTB Info ~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandBurstsTx", u32Zone + 104);
        strExpected += "\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent NON CSM Info ~~~~~~~~~~~\n" +
                       GroupText("TvlBasebandBurstsTx", u32Zone + 188);
    }
    Type("\n\n\n\n\n\n\n\n\n\n\n\n\n-1");
    EXPECT_EQ(Shown(strMessage), strExpected);
    EXPECT_EQ(Unread(), "-1");
}

TEST_F(MIBIndicationTest, FrameNumbersOfZonesAreUnsignedAndRatesSigned) {
    EndInput();
    const std::string strShown = Shown(GetText(
        1625, 6868, "-5:4 00*12 ff ff ff ff 80 9c ff 00 -8:4 -9:4 00*5264 fe ff ff ff 00*1568"));
    EXPECT_NE(strShown.find("Frame number for UL: [-2]\n"), std::string::npos);
    EXPECT_NE(strShown.find("\nMajor Group indicator : [-5]\n"
                            "DL Zone [0] Information :\n\n"
                            "ECINR Rate   : [-1]\nPCINR Rate 1 : [-128]\nPCINR Rate 2 : [-100]\n"
                            "Last Frame Number ECINR : [-9]\nLast Frame Number PCINR : [-8]\n"
                            "Zone last Frame Number : [4294967295]\n"),
              std::string::npos);
    EXPECT_NE(strShown.find("UL Zone [0] Information :\n\nZone last Frame Number : [4294967294]\n"),
              std::string::npos);
}

TEST_F(MIBIndicationTest, AtTheEndOfTheInputNoZoneWaits) {
    EndInput();
    EXPECT_EQ(CountOf(Shown(GetText(1608, 4294967295, "")), "\nZone Is: ["), 10U);
}

// Random answers for each report and each subtype: nothing is read
// outside the block, everything ends, and the result is right. Fewer where only
// threads are looked at, which makes them slow.
#ifdef SANITIZE_THREAD
constexpr uint32_t u32RandomAnswers = 30;
#else
constexpr uint32_t u32RandomAnswers = 200;
#endif

TEST_F(MIBIndicationTest, RandomRecordsAreHarmless) {
    EndInput(); // zones do not wait
    const int iNowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(dup2(iNowhere, STDOUT_FILENO), STDOUT_FILENO);
    close(iNowhere);
    std::mt19937 Random(20250101);
    const auto Below = [&](size_t uLimit) { return static_cast<uint32_t>(Random() % uLimit); };
    const auto SetNumber = [](Bytes &aucMessage, size_t uOffset, uint32_t u32Width,
                              uint32_t u32Value) {
        for (uint32_t i = 0; i < u32Width && uOffset + i < aucMessage.size(); ++i) {
            aucMessage[uOffset + i] = static_cast<uint8_t>(u32Value >> (8 * i));
        }
    };
    const uint32_t au32Wild[] = {0,          1,          4,          27,         0x7FFFFFFF,
                                 0x80000000, 0xFFFFFFE5, 0xFFFFFFE6, 0xFFFFFFFF, 10240};
    struct Target {
        uint32_t u32SubType;
        uint32_t u32ID;
    };
    std::vector<Target> astTargets = {{1, 500}, {2, 500}, {3, 500}, {4, 500}, {9, 500}};
    for (const uint32_t u32ID : {1608, 1503, 1625, 1619, 1612, 1467, 1468, 1494, 1575, 1631, 1633,
                                 1634, 1448, 1482, 1479, 1649, 1654}) {
        astTargets.push_back({2, u32ID});
    }
    for (const Target &stTarget : astTargets) {
        for (uint32_t i = 0; i < u32RandomAnswers; ++i) {
            Bytes aucMessage(4 + Below(i % 10 == 0 ? 10241 : 400));
            for (uint8_t &u8Byte : aucMessage) {
                u8Byte = static_cast<uint8_t>(Below(3) == 0 ? 0 : Random());
            }
            const size_t uRecord = stTarget.u32SubType > 2 ? 6 : 4;
            SetNumber(aucMessage, 0, 2, 24);
            SetNumber(aucMessage, 2, 2, stTarget.u32SubType);
            SetNumber(aucMessage, uRecord, 4, stTarget.u32ID);
            SetNumber(aucMessage, uRecord + 21, 4,
                      Below(2) == 0 ? au32Wild[Below(std::size(au32Wild))] : Below(200));
            SetNumber(aucMessage, uRecord + 25, 1, 0);
            if (Below(2) == 0) { // the count of those that have one
                SetNumber(aucMessage, uRecord + 26, 4, au32Wild[Below(std::size(au32Wild))]);
            }
            const uint32_t u32Result = MIBIndication(RecordOf(aucMessage).get());
            const bool bWhole = aucMessage.size() >= 6; // all of the ID that is not zero
            ASSERT_EQ(u32Result, stTarget.u32ID == 500 || !bWhole ? 1U : 0U);
        }
    }
    for (std::atomic<uint32_t> &u32Slot : SFID_VALIDITY_TABLE) {
        u32Slot = 0;
    }
}

} // namespace

#include "ServiceFlows.h"

#include <algorithm>
#include <cstring>

#include "Console.h"
#include "Message.h"
#include "SFIDTable.h"
#include "TestConsole.h"

namespace {

// Stands for the decoder of the list of active flows: enters 4097 and 4098.
uint32_t ListTwoFlows(uint32_t /*u32Context*/, const WiMAXMessage * /*pstMessage*/,
                      uint32_t /*u32Length*/) {
    AddSFID(4097);
    AddSFID(4098);
    return 0;
}

class ServiceFlowsTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        Empty();
    }
    void TearDown() override {
        Empty();
        ConsoleTest::TearDown();
    }
    static void Empty() {
        giGlobalTID = 0;
        for (std::atomic<uint32_t> &u32Slot : SFID_VALIDITY_TABLE) {
            u32Slot = 0;
        }
    }
    // What the decoder prints for a message.
    static std::string ReportOf(const std::string &strMessage) {
        return Report([](const WiMAXMessage *pst) { return ServiceFlowResponse(pst, 0); },
                      strMessage);
    }
    // The next send is answered with the list of two active flows.
    static void AnswerWithTwoFlows() {
        RegisterCallback(1, ListTwoFlows, 0);
        FakeDevice::QueueAnswer(Message("24/2"));
    }
};

const std::string strQuery = "24/2 | df 05 00*25";

const std::string strQoSMenu = "\nQOS Paramset\n"
                               "\n0-Active and Admitted sets to null"
                               "\n1-Provisioned"
                               "\n2-Apply Admitted set"
                               "\n3-Apply Provisioned and Admission Sets"
                               "\n4-Apply to Active Set"
                               "\n5-Apply Provisioned and Active sets"
                               "\n6-Admitted and Active"
                               "\n7-Provisioned, Admitted and Active"
                               "\nEnter the valid QOS Param : ";

const std::string strTwoFlows = "\nValid SFIDs"
                                "\nINDEX 0,  SF ID: 4097"
                                "\nINDEX 1,  SF ID: 4098"
                                "\n";

const std::string strMatchQuestions =
    "\nWould you like to enter  IP masked source address (1-Yes and 0-No)"
    "\nWould you like to enter  IP Masked Destination Address (1-Yes and 0-No)"
    "\nWould you like to enter  Protocol Source Port Range (1-Yes and 0-No)"
    "\nWould you like to enter  Protocol Dest Port Range (1-Yes and 0-No)"
    "\nWould you like to enter  Ethernet Source MAC Address (1-Yes and 0-No)"
    "\nWould you like to enter  Ethernet Dest Mac Address (1-Yes and 0-No)";

// An add request of this TID that was answered with nothing but zeroes.
std::string PlainAdd(const std::string &strTID) {
    return Recorded("6/1 | 0b 00 " + strTID +
                    " 00 00 00 00 | 00*26 ff ff 00*45 00*34 | 00 00 02 10 | 00 31 00*3 00 ff 00 | "
                    "00*10 01 00*43 01 01 00 | 00 ff 00*658 00*1980 | 00*4");
}

constexpr const char *pcPlainAddTyped = "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n";
// The same with a TID of its own.
constexpr const char *pcAddWithTIDTyped = "0 0 0 0 1 %s 0 0 0 0 0 0 0 0 0 0 0 0 0\n";

// A change request that touches no set.
std::string PlainChange(const std::string &strTID) {
    return Recorded("6/3 | 0e 00 " + strTID + " 00*8468");
}

TEST_F(ServiceFlowsTest, DefaultsOfASetAreSixBytes) {
    uint8_t aucSet[2816];
    std::memset(aucSet, 0xA5, sizeof aucSet);
    SetSFParamDefaults({aucSet, sizeof aucSet});
    EXPECT_EQ(Bytes(aucSet, aucSet + sizeof aucSet),
              Message("a5*107 01 a5 02 a5 a5 31 a5*3 01 ff a5*11 01 a5*2686"));
}

TEST_F(ServiceFlowsTest, DefaultsOfARecordAreThoseOfItsThreeSetsAndZeroes) {
    uint8_t aucRecord[8472];
    std::memset(aucRecord, 0xA5, sizeof aucRecord);
    SetSFDefaultValues({aucRecord, sizeof aucRecord});
    const std::string strSet = "00*107 01 00 02 00 00 31 00*3 01 ff 00*11 01 00*2686 ";
    EXPECT_EQ(Bytes(aucRecord, aucRecord + sizeof aucRecord),
              Message("00*8 " + strSet + strSet + strSet + " 00*16"));
}

TEST_F(ServiceFlowsTest, DefaultsOfNothingAreNothing) {
    SetSFParamDefaults({});
    SetSFParamDefaults({nullptr, 2816});
    SetSFDefaultValues({});
    SetSFDefaultValues({nullptr, 8472});
    EXPECT_EQ(Printed(), "");
}

TEST_F(ServiceFlowsTest, RoomForSixteenAddIndicationsIsEmpty) {
    EXPECT_EQ(sizeof SFID_ADD_INDICATION, 135552U);
    EXPECT_TRUE(std::all_of(std::begin(SFID_ADD_INDICATION), std::end(SFID_ADD_INDICATION),
                            [](uint8_t u8Byte) { return u8Byte == 0; }));
}

TEST_F(ServiceFlowsTest, AMenuChoiceThatIsNoneSendsNothing) {
    for (const char *pcChoice : {"0\n", "5\n", "-1\n", "abc\n"}) {
        int32_t iResult = 1;
        EXPECT_EQ(PrintedBy([&] { iResult = ServiceFlowRequest(); }, pcChoice),
                  "\n***** SERVICE FLOW MENU *****\n"
                  "\n 1. SF ADD REQUEST"
                  "\n 2. SF CHANGE REQUEST"
                  "\n 3. SF DELETE REQUEST"
                  "\n 4. ERTPS GRANT CHANGE REQUEST"
                  "\n\n****************************\n"
                  "\nENTER OPTION : ");
        EXPECT_EQ(iResult, 0);
    }
    EXPECT_TRUE(FakeDevice::Calls().empty());
}

TEST_F(ServiceFlowsTest, RequestsReturnTheSendResult) {
    FakeDevice::SetSendResult(-9);
    const auto Chosen = [](const std::string &strTyped) {
        int32_t iResult = 0;
        PrintedBy([&] { iResult = ServiceFlowRequest(); }, strTyped);
        return iResult;
    };
    EXPECT_EQ(Chosen(std::string("1 ") + pcPlainAddTyped), -9);
    EXPECT_EQ(Chosen("4 0 0 0\n"), -9);
    RegisterCallback(1, ListTwoFlows, 0);
    FakeDevice::QueueAnswer(Message("24/2"));
    EXPECT_EQ(Chosen("2 0 0 0 0 0 0 0 0 0 0 0\n"), -9);
    FakeDevice::QueueAnswer(Message("24/2"));
    EXPECT_EQ(Chosen("3 1\n"), -9);
}

TEST_F(ServiceFlowsTest, AnAddRequestIsTheFirstPartOfARecord) {
    EXPECT_EQ(
        PrintedBy(SendDSARequest, "7 1 3 5 1 70000 1 20 1 256000 128000 40 6 9 11 1 0 0 0 0 0 0\n"),
        strQoSMenu +
            "\nDirection  [0-Downlink , 1-Uplink] : "
            "\nTraffic Priority : "
            "\nCS Specification: "
            "\nWould you like to enter Transaction ID (1-Yes and 0-No)"
            "\nPlz enter Transaction ID (u16TID) : "
            "\nWould you like to enter the Retransmission policy (1-Yes and 0-No)"
            "\nPlz enter the Retransmission policy (0-255) : "
            "\nService Flow scheduling type [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, "
            "4-UGS] : "
            "\nMAX Sustained Traffic Rate : "
            "\nMin Reserved Traffic Rate : "
            "\nMaximum Latency : "
            "\nTraffic Priority: "
            "\nClassifier Rule priority (0-255): "
            "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , "
            "Mobile Ipv6 - 0x87) : "
            "\nPaging Preference (0 - 1): " +
            strMatchQuestions);
    EXPECT_EQ(FakeDevice::Sent(),
              std::vector<std::string>{
                  Recorded("6/1 | 0b 01 70 11 00 00 00 00 | 00*4 256000:4 00*4 128000:4 00*4 40:4 "
                           "00 00 ff ff 00*45 00*34 | 07 06 04 14 | 00 31 00*3 05 ff 01 | "
                           "00*10 01 00*43 01 01 00 | 00 ff 00*8 09 00*4 11 00*644 00*1980 | "
                           "00*4")});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 2832}}));
}

TEST_F(ServiceFlowsTest, TheDefaultsOfAnAddRequestStandWhenNothingElseIsTyped) {
    PrintedBy(SendDSARequest, pcPlainAddTyped);
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{PlainAdd("00 00")});
}

TEST_F(ServiceFlowsTest, AnswersAreLetThroughOnceTheAddRequestIsBuilt) {
    gbInsideSubMenu = 1;
    PrintedBy(SendDSARequest, pcPlainAddTyped);
    EXPECT_EQ(gbInsideSubMenu, 0);
}

TEST_F(ServiceFlowsTest, AnswersAreDroppedWhileTheAddRequestIsTyped) {
    gbInsideSubMenu = 1;
    Type("0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    EndInput();
    EXPECT_THROW(SendDSARequest(), ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 1);
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(ServiceFlowsTest, TIDsAreCountedOverAllRequests) {
    RegisterCallback(1, ListTwoFlows, 0);
    PrintedBy(SendDSARequest, pcPlainAddTyped);
    FakeDevice::QueueAnswer(Message("24/2"));
    PrintedBy(SendDSCRequest, "0 0 0 0 0 0 0 0 0 0 0\n");
    FakeDevice::QueueAnswer(Message("24/2"));
    PrintedBy(SendDSDRequest, "0\n");
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{PlainAdd("00 00"), strQuery, PlainChange("01 00"), strQuery,
                                        "6/2 | 11 00 02 00 01 10 00 00"}));
    EXPECT_EQ(giGlobalTID, 3);
}

TEST_F(ServiceFlowsTest, ATIDThatWasTypedLeavesTheCounterAlone) {
    giGlobalTID = 5;
    char acTyped[100];
    snprintf(acTyped, sizeof acTyped, pcAddWithTIDTyped, "-2");
    PrintedBy(SendDSARequest, acTyped);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{PlainAdd("fe ff")});
    EXPECT_EQ(giGlobalTID, 5);
}

TEST_F(ServiceFlowsTest, TheCounterBeginsAnewBehind32766) {
    giGlobalTID = 32766;
    PrintedBy(SendDSARequest, pcPlainAddTyped);
    EXPECT_EQ(giGlobalTID, 32767);
    PrintedBy(SendDSARequest, pcPlainAddTyped);
    EXPECT_EQ(giGlobalTID, 1);
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{PlainAdd("fe 7f"), PlainAdd("00 00")}));
}

TEST_F(ServiceFlowsTest, ChangeAndDeleteRequestsBeginTheCounterAnewToo) {
    AnswerWithTwoFlows();
    giGlobalTID = 32767;
    PrintedBy(SendDSCRequest, "0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(giGlobalTID, 1);
    FakeDevice::QueueAnswer(Message("24/2"));
    giGlobalTID = 32767;
    PrintedBy(SendDSDRequest, "0\n");
    EXPECT_EQ(giGlobalTID, 1);
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{strQuery, PlainChange("00 00"), strQuery,
                                        "6/2 | 11 00 00 00 01 10 00 00"}));
}

TEST_F(ServiceFlowsTest, ATypedTIDBeginsTheCounterAnewToo) {
    giGlobalTID = 32767;
    char acTyped[100];
    snprintf(acTyped, sizeof acTyped, pcAddWithTIDTyped, "7");
    PrintedBy(SendDSARequest, acTyped);
    EXPECT_EQ(giGlobalTID, 0);
}

TEST_F(ServiceFlowsTest, AChangeThatIsRefusedHasUsedItsTID) {
    AnswerWithTwoFlows();
    int32_t iResult = 0;
    PrintedBy([&] { iResult = SendDSCRequest(); }, "0 0 0 0 0 0 0 0 0 0 1 4\n");
    EXPECT_EQ(iResult, -1);
    EXPECT_EQ(giGlobalTID, 1);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{strQuery});
}

TEST_F(ServiceFlowsTest, NumbersThatAreNoneLeaveTheDefaultsOfAnAddRequest) {
    // What a number cannot be read from stays, and is what the next question
    // reads: as no direction but 0, as no to a question, as priority 0.
    PrintedBy(SendDSARequest, "xx 3 zz 0 0 0 yy 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(FakeDevice::Sent(),
              std::vector<std::string>{Recorded(
                  "6/1 | 0b 00 00 00 00 00 00 00 | 00*26 ff ff 00*45 00*34 | 01 03 02 10 | 00 31 "
                  "00*3 01 ff 00 | 00*10 01 00*43 01 01 00 | 00 ff 00*658 00*1980 | 00*4")});
}

TEST_F(ServiceFlowsTest, AChangeRequestFillsTheSelectedSets) {
    AnswerWithTwoFlows();
    EXPECT_EQ(PrintedBy(SendDSCRequest, "1 5 1 66000 1 258 1 262 1 102 1 257 1 4 40 256000 3 1 257 "
                                        "1 0 1 9 1 6 1 2 0a 1ff 0 0 0 0 0\n"),
              strTwoFlows + "\nEnter SFID INDEX [0-15] : " + strQoSMenu +
                  "\nEnter direction of service flow (0 - DL, 1 - UL) : "
                  "\nEnter u16CID assigned by BS during SF Addition : "
                  "\nWould you like to enter Transaction ID (1-Yes and 0-No)"
                  "\nPlz enter Transaction ID (u16TID) : "
                  "\nWould you like to enter Traffic Priority (1-Yes and 0-No)"
                  "\nTraffic Priority : "
                  "\nWould you like to change CS Specification (1-Yes and 0-No)"
                  "\nCS Specification: "
                  "\nWould you like to enter the Retransmission policy (1-Yes and 0-No)"
                  "\nPlz enter the Retransmission policy (0-255) : "
                  "\nWould you like to change Service Class Name (1-Yes and 0-No)"
                  "\nService Class Name [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, 4-UGS] : "
                  "\nMaximum Latency : "
                  "\nMAX Sustained Traffic Rate : "
                  "\nTolerated Jitter : "
                  "\nWould you like to enter Paging Preference (1-Yes and 0-No)"
                  "\nPaging Preference (0 - 1): "
                  "\nWould you like to enter Classifier Rule  (1-Yes and 0-No)"
                  "\nPlease Enter classfier action(0 - Add 1 - Replace and 2- Delete)"
                  "\nWould you like to change Classifier Rule priority (1-Yes and 0-No)"
                  "\nClassifier Rule priority (0-255): "
                  "\nWould you like to change Protocol (1-Yes and 0-No)"
                  "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile Ipv6 - "
                  "0x87) : "
                  "\nWould you like to enter  IP masked source address (1-Yes and 0-No)"
                  "\nPlz enter length of IP masked source address <32 that you would like to enter"
                  "\nPlz enter the 1 element of the IP Masked source address"
                  "\nPlz enter the 2 element of the IP Masked source address"
                  "\nWould you like to enter  IP Masked Destination Address (1-Yes and 0-No)"
                  "\nWould you like to enter  Protocol Source Port Range (1-Yes and 0-No)"
                  "\nWould you like to enter  Protocol Dest Port Range (1-Yes and 0-No)"
                  "\nWould you like to enter  Ethernet Source MAC Address (1-Yes and 0-No)"
                  "\nWould you like to enter  Ethernet Dest Mac Address (1-Yes and 0-No)");
    const std::string strSet =
        "4098:4 256000:4 00*8 3:4 40:4 d0 01 00*47 | 04 \"UGS\" 00*30 | 05 06 06 01 | 00*5 02 00 "
        "01 00*54 00 01 00 | 00*10 09 00*4 06 02 0a ff 00*641 00*1980 | ";
    EXPECT_EQ(
        FakeDevice::Sent(),
        (std::vector<std::string>{strQuery, Recorded("6/3 | 0e 01 02 01 d0 01 00 00 | " + strSet +
                                                     "00*2816 | " + strSet + "00*16")}));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 31}, {1, 8476}}));
}

TEST_F(ServiceFlowsTest, AChangeRequestTakesAnyQoSNumber) {
    const auto Sent = [](const std::string &strQoS) {
        Empty();
        AnswerWithTwoFlows();
        PrintedBy(SendDSCRequest, "0 " + strQoS + " 0 5 0 0 0 0 0 0 0\n");
        return FakeDevice::Sent().back();
    };
    const auto Set = [](const std::string &strQoS) {
        return "4097:4 00*20 05 00 00*81 " + strQoS + " 00*66 01 00*2641 | ";
    };
    const std::string strHeader = "6/3 | 0e 00 00 00 05 00 00 00 | ";
    const std::string strNoSet = "00*2816 | ";
    EXPECT_EQ(Sent("0"), Recorded(strHeader + "00*8464"));
    EXPECT_EQ(Sent("1"), Recorded(strHeader + Set("01") + strNoSet + strNoSet + "00*16"));
    EXPECT_EQ(Sent("2"), Recorded(strHeader + strNoSet + Set("02") + strNoSet + "00*16"));
    EXPECT_EQ(Sent("4"), Recorded(strHeader + strNoSet + strNoSet + Set("04") + "00*16"));
    EXPECT_EQ(Sent("7"), Recorded(strHeader + Set("07") + Set("07") + Set("07") + "00*16"));
    EXPECT_EQ(Sent("9"), Recorded(strHeader + Set("09") + strNoSet + strNoSet + "00*16"));
    EXPECT_EQ(Sent("-3"), Recorded(strHeader + Set("fd") + strNoSet + Set("fd") + "00*16"));
    EXPECT_EQ(Sent("256"), Recorded(strHeader + "00*8464"));
}

TEST_F(ServiceFlowsTest, AnAddRequestTakesAnyQoSNumber) {
    const auto SentSetType = [](const std::string &strQoS) {
        PrintedBy(SendDSARequest, strQoS + " 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
        return Message(FakeDevice::Sent().back()).at(4 + 8 + 107);
    };
    EXPECT_EQ(SentSetType("9"), 0x09);
    EXPECT_EQ(SentSetType("-3"), 0xFD);
}

TEST_F(ServiceFlowsTest, TheServiceClassNameOfAChangeHasItsTerminatingZero) {
    const auto SentClass = [](const std::string &strTyped) {
        Empty();
        AnswerWithTwoFlows();
        PrintedBy(SendDSCRequest, "0 1 0 0 0 0 0 0 1 " + strTyped + " 0 0\n");
        const Bytes aucSent = Message(FakeDevice::Sent().back());
        const auto itSet = aucSent.begin() + 4 + 8;
        // Length and name, then the scheduling type.
        Bytes aucClass(itSet + 73, itSet + 73 + 8);
        aucClass.push_back(itSet[109]);
        return aucClass;
    };
    EXPECT_EQ(SentClass("0 1 2"), Message("03 \"BE\" 00*5 02"));
    EXPECT_EQ(SentClass("1 1 2 3 4"), Message("05 \"RTPS\" 00*3 04"));
    EXPECT_EQ(SentClass("2 1 2 3"), Message("06 \"NRTPS\" 00*2 03"));
    EXPECT_EQ(SentClass("3 1 2 3 4"), Message("06 \"ERTPS\" 00*2 05"));
    EXPECT_EQ(SentClass("4 1 2 3"), Message("04 \"UGS\" 00*4 06"));
}

TEST_F(ServiceFlowsTest, EverySchedulingTypeFillsTheFieldsItAsksFor) {
    const auto SentSet = [](const std::string &strTyped) {
        PrintedBy(SendDSARequest, "0 0 0 0 0 0 " + strTyped + " 0 0 0 0 0 0 0 0 0\n");
        const Bytes aucSent = Message(FakeDevice::Sent().back());
        const auto itSet = aucSent.begin() + 4 + 8;
        // The rates, jitter and latency, then priority and type.
        Bytes aucSet(itSet + 4, itSet + 24);
        aucSet.insert(aucSet.end(), itSet + 108, itSet + 110);
        return aucSet;
    };
    EXPECT_EQ(SentSet("0 1001 2"), Message("1001:4 0:4 0:4 0:4 0:4 02 02"));
    EXPECT_EQ(SentSet("1 1001 1002 1003 4"), Message("1001:4 0:4 1002:4 0:4 1003:4 04 04"));
    EXPECT_EQ(SentSet("2 1001 1002 259"), Message("1001:4 0:4 1002:4 0:4 0:4 03 03"));
    EXPECT_EQ(SentSet("3 1001 1002 1003 1004"), Message("1001:4 0:4 1002:4 1004:4 1003:4 00 05"));
    EXPECT_EQ(SentSet("4 1001 -2 1003"), Message("-2:4 0:4 0:4 1003:4 1001:4 00 06"));
}

TEST_F(ServiceFlowsTest, DirectionAndTypeAreAskedForAgain) {
    const std::string strPrinted =
        PrintedBy(SendDSARequest, "0 2 -1 256 1 0 0 0 0 5 -1 zz 0 0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_NE(strPrinted.find("\nDirection  [0-Downlink , 1-Uplink] : "
                              "\nERROR : Invalid input"
                              "\nDirection  [0-Downlink , 1-Uplink] : "
                              "\nERROR : Invalid input"
                              "\nDirection  [0-Downlink , 1-Uplink] : "
                              "\nERROR : Invalid input"
                              "\nDirection  [0-Downlink , 1-Uplink] : "
                              "\nTraffic Priority : "),
              std::string::npos);
    EXPECT_NE(strPrinted.find("\nService Flow scheduling type [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, "
                              "4-UGS] : "
                              "\nERROR : Invalid input"
                              "\nService Flow scheduling type [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, "
                              "4-UGS] : "
                              "\nERROR : Invalid input"
                              "\nService Flow scheduling type [0-BE , 1-RTPS, 2-NRTPS, 3-ERTPS, "
                              "4-UGS] : "
                              "\nMAX Sustained Traffic Rate : "
                              "\nTraffic Priority: "
                              "\nClassifier Rule priority (0-255): "),
              std::string::npos);
    EXPECT_EQ(Message(FakeDevice::Sent().back()).at(4 + 1), 1);
}

TEST_F(ServiceFlowsTest, WithoutAnActiveFlowNothingIsChangedOrDeleted) {
    AddSFID(4097); // of a list before, cleared by the request
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy([&] { iResult = SendDSCRequest(); }),
              "\nERROR : No valid SFIDs to be changed..");
    EXPECT_EQ(iResult, 1);
    AddSFID(4097);
    EXPECT_EQ(PrintedBy([&] { iResult = SendDSDRequest(); }),
              "\nERROR : No valid SFIDs to be deleted..");
    EXPECT_EQ(iResult, 1);
    EXPECT_EQ(giGlobalTID, 0);
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{strQuery, strQuery}));
}

TEST_F(ServiceFlowsTest, AFlowInAHiddenSlotCannotBePicked) {
    SFID_VALIDITY_TABLE[16] = 4113;
    EXPECT_EQ(PrintedBy(SendDSDRequest), "\nERROR : No valid SFIDs to be deleted..");
    AnswerWithTwoFlows();
    EXPECT_EQ(PrintedBy(SendDSDRequest, "16 0\n"),
              strTwoFlows + "\nEnter SFID INDEX [0-15] : "
                            "\nERROR : Invalid SFID, should be within 0 to 15"
                            "\nEnter SFID INDEX [0-15] : "
                            "\nSending SF ID :4097....");
    EXPECT_EQ(SFID_VALIDITY_TABLE[16], 4113U);
}

TEST_F(ServiceFlowsTest, ADeleteRequestAsksForTheFlowOnly) {
    AnswerWithTwoFlows();
    giGlobalTID = 258;
    EXPECT_EQ(PrintedBy(SendDSDRequest, "-1 16 15 2 1\n"),
              strTwoFlows + "\nEnter SFID INDEX [0-15] : "
                            "\nERROR : Invalid SFID, should be within 0 to 15"
                            "\nEnter SFID INDEX [0-15] : "
                            "\nERROR : Invalid SFID, should be within 0 to 15"
                            "\nEnter SFID INDEX [0-15] : "
                            "\nERROR : 15 is not an active SFID"
                            "\nEnter SFID INDEX [0-15] : "
                            "\nERROR : 2 is not an active SFID"
                            "\nEnter SFID INDEX [0-15] : "
                            "\nSending SF ID :4098....");
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{strQuery, "6/2 | 11 00 02 01 02 10 00 00"}));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 31}, {1, 12}}));
    // It stays in the table until the modem says that it is gone.
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 4098U);
}

TEST_F(ServiceFlowsTest, AGrantChangeIsTwelveBytes) {
    EXPECT_EQ(PrintedBy(SendeRTPSChangeRequest, "70000 -1 -100 1000 -5 3\n"),
              "\nEnter VCID : "
              "\nEnter Number of Payload Bytes Per Unsolicited Grant Interval :"
              "\nRe-Enter Number of Payload Bytes Per Unsolicited Grant Interval :"
              "\nRe-Enter Number of Payload Bytes Per Unsolicited Grant Interval :"
              "\nEnter Number of SDUs Per Unsolicited Grant Interval :"
              "\nRe-Enter Number of SDUs Per Unsolicited Grant Interval :");
    EXPECT_EQ(FakeDevice::Sent(),
              std::vector<std::string>{"6/4 | 00 00 70 11 e8 03 00 00 03 00 00 00"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 16}}));
    EXPECT_EQ(giGlobalTID, 0);
}

TEST_F(ServiceFlowsTest, AGrantChangeTakesZeroes) {
    PrintedBy(SendeRTPSChangeRequest, "zz 0 0\n");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"6/4 | 00*12"});
}

// Indications. A set is its SFID and CID, and whether it is present.
std::string SetOf(const std::string &strSFID, const std::string &strCID,
                  const std::string &strPresent) {
    return strSFID + ":4 00*20 " + strCID + ":2 00*148 " + strPresent + " 00*2641 | ";
}

const std::string strNoSet = "00*2816 | ";
const std::string strServiceFlowsBanner = "\n~~~~~~ SERVICE FLOW RESPONSE MESSAGE ~~~~~~\n";
const std::string strServiceFlowsClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

std::string Indication(const std::string &strSubType, const std::string &strDirection,
                       const std::string &strSets, const std::string &strCode) {
    return "6/" + strSubType + " | 00 " + strDirection + " 00*6 | " + strSets + "00*12 " + strCode +
           " 00*3";
}

TEST_F(ServiceFlowsTest, AnAddedFlowIsThatOfItsActiveSet) {
    EXPECT_EQ(ReportOf(Indication("1", "01",
                                  SetOf("4097", "513", "01") + SetOf("4098", "514", "01") +
                                      SetOf("4099", "515", "01"),
                                  "00")),
              strServiceFlowsBanner +
                  "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
                  "\nService flow added with confirmation code : 0\n"
                  "\nService flow Identifier(u32SFID)          : 4099\n"
                  "\nConnection Identifier(u16CID)             : 515\n"
                  "\nDirection of Service Flow                 : 1\n" +
                  strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, AnAddedFlowWithoutAnActiveSetIsThatOfItsAdmittedSet) {
    EXPECT_EQ(ReportOf(Indication("1", "00",
                                  SetOf("4097", "513", "01") + SetOf("-2", "65535", "ff") +
                                      SetOf("4099", "515", "00"),
                                  "00")),
              strServiceFlowsBanner +
                  "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
                  "\nService flow added with confirmation code : 0\n"
                  "\nService flow Identifier(u32SFID)          : -2\n"
                  "\nConnection Identifier(u16CID)             : 65535\n"
                  "\nDirection of Service Flow                 : 0\n" +
                  strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, AnAddedFlowMayHaveItsProvisionedSetOnly) {
    EXPECT_EQ(
        ReportOf(Indication("1", "ff", SetOf("4097", "513", "01") + strNoSet + strNoSet, "00")),
        strServiceFlowsBanner +
            "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
            "\nService flow added with confirmation code : 0\n"
            "\nService flow Identifier(u32SFID)          : 4097\n"
            "\nConnection Identifier(u16CID)             : 513\n"
            "\nDirection of Service Flow                 : 255\n" +
            strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, AnAddedFlowWithoutASetIsItsDirection) {
    EXPECT_EQ(ReportOf(Indication("1", "01",
                                  SetOf("4097", "513", "00") + SetOf("4098", "514", "00") +
                                      SetOf("4099", "515", "00"),
                                  "00")),
              strServiceFlowsBanner +
                  "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
                  "\nService flow added with confirmation code : 0\n"
                  "\nDirection of Service Flow                 : 1\n" +
                  strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, AnAddedFlowIsNotEnteredInTheTable) {
    ReportOf(Indication("1", "01", strNoSet + strNoSet + SetOf("4099", "515", "01"), "00"));
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 0U);
}

TEST_F(ServiceFlowsTest, ARefusedAddIsItsConfirmationCode) {
    EXPECT_EQ(
        ReportOf(Indication("1", "01", strNoSet + strNoSet + SetOf("4099", "515", "01"), "03")),
        strServiceFlowsBanner +
            "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
            "\nConfirmation code received as non-zero\n"
            "\nConfirmation code received : 3 \n" +
            strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, AChangedFlowIsItsConfirmationCode) {
    EXPECT_EQ(
        ReportOf(Indication("3", "01", strNoSet + strNoSet + SetOf("4099", "515", "01"), "00")),
        strServiceFlowsBanner +
            "\nSF CHANGE INDICATION RESPONSE MESSAGE RECEIVED."
            "\nService flow changed with confirmation code 0" +
            strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, ARefusedChangeIsItsConfirmationCode) {
    EXPECT_EQ(ReportOf(Indication("3", "00", "00*8448 ", "ff")),
              strServiceFlowsBanner +
                  "\nSF CHANGE INDICATION RESPONSE MESSAGE RECEIVED."
                  "\nConfirmation code received as non-zero\n"
                  "\nConfirmation code received : 255 \n" +
                  strServiceFlowsClosing);
}

TEST_F(ServiceFlowsTest, ADeletedFlowLeavesTheTable) {
    AddSFID(4097);
    AddSFID(4098);
    AddSFID(4097);
    // A delete indication has no confirmation code to look at.
    EXPECT_EQ(ReportOf(Indication("2", "00", SetOf("4097", "0", "00") + strNoSet + strNoSet, "03")),
              strServiceFlowsBanner + "\nSF DELETE INDICATION RESPONSE MESSAGE RECEIVED." +
                  strServiceFlowsClosing);
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 0U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 4098U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[2], 4097U);
}

TEST_F(ServiceFlowsTest, ADeletedFlowThatNobodyKnowsLeavesTheTableAsItIs) {
    AddSFID(4097);
    EXPECT_EQ(ReportOf("6/2 | 00*8 4098:4"),
              strServiceFlowsBanner + "\nSF DELETE INDICATION RESPONSE MESSAGE RECEIVED." +
                  strServiceFlowsClosing);
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 4097U);
}

TEST_F(ServiceFlowsTest, OtherIndicationsAreInvalid) {
    for (const char *pcSubType : {"0", "4", "257", "65535"}) {
        EXPECT_EQ(ReportOf(std::string("6/") + pcSubType + " | 00*8468 03 00*3"),
                  strServiceFlowsBanner + "\nINVALID SF RESPONSE MESSAGE RECEIVED!!");
    }
}

TEST_F(ServiceFlowsTest, ResultsOfTheDecoder) {
    EXPECT_EQ(FakeDevice::Deliver(Message("6/1 | 00*8472")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("6/2 | 00*8472")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("6/3 | 00*8472")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("6/4 | 00*8472")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("6/1 | 00*8468 01 00*3")), 0U);
    EXPECT_EQ(FakeDevice::Deliver(Message("6/3 | 00*8468 01 00*3")), 0U);
    Printed();
    EXPECT_EQ(ServiceFlowResponse(nullptr, 0), 0U);
    EXPECT_EQ(Printed(), "");
}

} // namespace

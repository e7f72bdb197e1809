#include "MIBRequests.h"

#include "Console.h"
#include "Input.h"
#include "MIBTable.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

const std::string strMIBRequestsMenu = "\n\n*********** MIB Request ***********\n"
                                       "\n 1. MIB GET REQUEST"
                                       "\n 2. MIB SET REQUEST"
                                       "\n 3. Multiple MIB GET REQUEST"
                                       "\n 4. Multiple MIB SET REQUEST"
                                       "\n-1. GO TO MAIN MENU"
                                       "\n\n******************************\n"
                                       "\nENTER OPTION : ";
const std::string strInvalid = "\nSORRY! INVALID OPTION SELECTED!";
const std::string strNoMIBs = "\n BINARY DOES NOT SUPPORT MIBS";

const std::string strGetPrompt = "\nEnter the MIB ID "
                                 "\n["
                                 "\n  Proprietary Std MIBs 0 - 499"
                                 "\n  Proprietary Config MIBs 500 - 799"
                                 "\n  Standard Stats MIBs 800 - 1399"
                                 "\n  Proprietary Stats MIBs 1400 - 1699"
                                 "\n]";
const std::string strKeyPrompt = "\n Enter the key value: ";
const std::string strSecondKeyPrompt = "\n Enter the 2nd key value: ";

const std::string strMIBRequestsSetPrompt = "\nStd Config MIBs : 0 - 499"
                                            "\nConfig MIBs : 500 - 799"
                                            "\n999 : Automated Test"
                                            "\nEnter the MIB ID : ";
const std::string strMultipleSetPrompt = "\nStd Config MIBs : 0 - 499"
                                         "\nConfig MIBs : 500 - 799"
                                         "\nEnter the MIB ID : ";
const std::string strMIBRequestsLengthPrompt = "\nEnter the number of data bytes : ";
const std::string strMIBRequestsDataPrompt = "\nEnter the data : ";
const std::string strAddressPrompt = "\nEnter the data (xx-xx-xx-xx-xx-xx): ";
const std::string strValuePrompt = "\n Enter the value : ";
const std::string strMultipleGet = "\nEnter the number of MIB Objects for Get Request ";
const std::string strMultipleSet = "Enter the number of MIB Objects to SET : ";
const std::string strReenter =
    "\nError Invalid MIB Input .. Please re-enter in the range as specified: ";

class MIBRequestsTest : public ConsoleTest {
  protected:
    static std::vector<std::string> Sent() { return FakeDevice::Sent(); }
    static std::vector<std::string> Just(const std::string &strMessage) {
        return {Recorded(strMessage)};
    }
    static uint32_t LengthOf(size_t uSend) {
        return FakeDevice::SendArgumentsOfAll().at(uSend).u32Length;
    }
    // What the dialogue alone sends when the text is typed.
    static std::vector<std::string> SentBy(int32_t (*pfnDialogue)(), const std::string &strTyped) {
        FakeDevice::Reset();
        PrintedBy(pfnDialogue, strTyped);
        return Sent();
    }
};

TEST_F(MIBRequestsTest, TheMenuComesBackUntilItIsLeft) {
    int32_t iResult = 7;
    EXPECT_EQ(PrintedBy([&] { iResult = MIBRequest(); }, "0 6 x -1\n"),
              strMIBRequestsMenu + strInvalid + strMIBRequestsMenu + strInvalid +
                  strMIBRequestsMenu + strInvalid + strMIBRequestsMenu);
    EXPECT_EQ(iResult, 0);
    EXPECT_TRUE(Sent().empty());
}

TEST_F(MIBRequestsTest, EveryListedChoiceHasItsDialogue) {
    EXPECT_EQ(PrintedBy(MIBRequest, "1 5 2 900 3 0 4 1 600 1 -1\n"),
              strMIBRequestsMenu + strGetPrompt + strMIBRequestsMenu + strMIBRequestsSetPrompt +
                  "\n MIB entered is out of range\n" + strMIBRequestsMenu + strMultipleGet +
                  strMIBRequestsMenu + strMultipleSet + "\nEntering 1 out of 1.\n" +
                  strMultipleSetPrompt + strValuePrompt + strMIBRequestsMenu);
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(MIBRequestsTest, AResultIsReportedUntilTheNextDialogue) {
    FakeDevice::QueueSendResult(-27);
    EXPECT_EQ(PrintedBy(MIBRequest, "2 507 9 2 507 9 -1\n"),
              strMIBRequestsMenu + strMIBRequestsSetPrompt + "\n MRU Reset is NOT SUCCESSFUL\n" +
                  "\n Error : -27" + strNoMIBs + strMIBRequestsMenu + strInvalid +
                  "\n Error : -27" + strNoMIBs + strMIBRequestsMenu + strMIBRequestsSetPrompt +
                  "\n MRU Reset is SUCCESSFUL\n" + strMIBRequestsMenu + strInvalid +
                  strMIBRequestsMenu);
    FakeDevice::QueueSendResult(3);
    EXPECT_EQ(PrintedBy(MIBRequest, "2 600 1 0 -1\n"),
              strMIBRequestsMenu + strMIBRequestsSetPrompt + strValuePrompt + "\n Error : 3" +
                  strMIBRequestsMenu + strInvalid + "\n Error : 3" + strMIBRequestsMenu);
}

TEST_F(MIBRequestsTest, TheHiddenChoiceReadsAHundredAttributes) {
    FakeDevice::QueueSendResult(-5);
    EXPECT_EQ(PrintedBy(MIBRequest, "5 -1\n"), strMIBRequestsMenu + "Error Code Returned : [-5]\n" +
                                                   strInvalid + strMIBRequestsMenu);
    ASSERT_EQ(Sent().size(), 100U);
    EXPECT_EQ(Sent()[0], Recorded("24/2 | 00*27"));
    EXPECT_EQ(Sent()[1], Recorded("24/2 | 01 00*26"));
    EXPECT_EQ(Sent()[99], Recorded("24/2 | 63 00*26"));
}

TEST_F(MIBRequestsTest, AGetHasTheIDAndItsKeys) {
    EXPECT_EQ(PrintedBy(MIBGetRequest, "1142\n-2 70000\n"),
              strGetPrompt + strKeyPrompt + strSecondKeyPrompt);
    EXPECT_EQ(Sent(), Just("24/2 | 1142:4 02 -2:4 70000:4 00*8 0:4 00 00"));
    EXPECT_EQ(LengthOf(0), 31U);
}

TEST_F(MIBRequestsTest, AGetTakesAnyID) {
    EXPECT_EQ(SentBy(MIBGetRequest, "-1 "), Just("24/2 | -1:4 00*23"));
    EXPECT_EQ(SentBy(MIBGetRequest, "2147483647 "), Just("24/2 | 2147483647:4 00*23"));
    EXPECT_EQ(SentBy(MIBGetRequest, "word "), Just("24/2 | 0:4 00*23"));
}

TEST_F(MIBRequestsTest, KeysOfASingleGet) {
    for (const int32_t iID : {0, 22, 26, 892, 933, 1099, 1143, 1614, 1617, 1699, -25}) {
        EXPECT_EQ(PrintedBy(MIBGetRequest, std::to_string(iID) + " "), strGetPrompt) << iID;
    }
    for (const int32_t iID : {23, 25, 893, 932, 1100, 1122, 1140, 1141, 1615, 1616}) {
        FakeDevice::Reset();
        EXPECT_EQ(PrintedBy(MIBGetRequest, std::to_string(iID) + " 9 "),
                  strGetPrompt + strKeyPrompt)
            << iID;
        EXPECT_EQ(Sent(), Just("24/2 | " + std::to_string(iID) + ":4 01 9:4 00*18"));
    }
    for (const int32_t iID : {1123, 1139, 1142}) {
        EXPECT_EQ(PrintedBy(MIBGetRequest, std::to_string(iID) + " 1 2 "),
                  strGetPrompt + strKeyPrompt + strSecondKeyPrompt)
            << iID;
    }
}

TEST_F(MIBRequestsTest, KeysOfAMultipleGet) {
    const std::string strStart = strMultipleGet + "\nEntering 1 out of 1.\n" + strGetPrompt;
    for (const int32_t iID : {22, 26, 892, 933, 1099, 1143, 1614, 1615, -1}) {
        EXPECT_EQ(PrintedBy(MultipleMIBGetRequest, "1 " + std::to_string(iID) + " "), strStart)
            << iID;
    }
    for (const int32_t iID :
         {23, 25, 893, 932, 1100, 1122, 1140, 1141, 1616, 1617, 1700, 2147483647}) {
        EXPECT_EQ(PrintedBy(MultipleMIBGetRequest, "1 " + std::to_string(iID) + " 9 "),
                  strStart + strKeyPrompt)
            << iID;
    }
    for (const int32_t iID : {1123, 1139, 1142}) {
        EXPECT_EQ(PrintedBy(MultipleMIBGetRequest, "1 " + std::to_string(iID) + " 1 2 "),
                  strStart + strKeyPrompt + strSecondKeyPrompt)
            << iID;
    }
}

TEST_F(MIBRequestsTest, AGetThatIsRefused) {
    FakeDevice::SetSendResult(-76);
    EXPECT_EQ(PrintedBy(MIBGetRequest, "1612\n"), strGetPrompt + "MRU TABLE is EMPTY");
    EXPECT_EQ(PrintedBy(MIBGetRequest, "1611\n"), strGetPrompt + "Error Code Returned : [-76]\n");
    FakeDevice::SetSendResult(-27);
    EXPECT_EQ(PrintedBy(MIBRequest, "1 1612 -1\n"), strMIBRequestsMenu + strGetPrompt +
                                                        "Error Code Returned : [-27]\n" +
                                                        strMIBRequestsMenu);
    FakeDevice::SetSendResult(4);
    EXPECT_EQ(PrintedBy(MIBGetRequest, "1612\n"), strGetPrompt);
}

TEST_F(MIBRequestsTest, ASetOfFourBytes) {
    EXPECT_EQ(PrintedBy(MIBSetRequest, "15\n4\n-2\n"),
              strMIBRequestsSetPrompt + strMIBRequestsLengthPrompt + strMIBRequestsDataPrompt);
    EXPECT_EQ(Sent(), Just("24/1 | 15:4 00 00*16 4:4 00 fe ff ff ff 00"));
    EXPECT_EQ(LengthOf(0), 35U);
}

TEST_F(MIBRequestsTest, ASetOfTwoBytes) {
    EXPECT_EQ(SentBy(MIBSetRequest, "0\n2\n65735\n"), Just("24/1 | 0:4 00 00*16 2:4 00 c7 00 00"));
    EXPECT_EQ(LengthOf(0), 33U);
}

TEST_F(MIBRequestsTest, ASetOfSixBytesDoesNotStateTheirNumber) {
    EXPECT_EQ(PrintedBy(MIBSetRequest, "499\n6\n00-1a-2B-3c-4d-ff\n"),
              strMIBRequestsSetPrompt + strMIBRequestsLengthPrompt + strAddressPrompt);
    EXPECT_EQ(Sent(), Just("24/1 | 499:4 00 00*16 0:4 00 00 1a 2b 3c 4d ff 00"));
    EXPECT_EQ(LengthOf(0), 37U);
}

TEST_F(MIBRequestsTest, SixBytesAreReadAsFarAsTheyGo) {
    const std::string strHead = "24/1 | 1:4 00 00*16 0:4 00 ";
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 1-2:3-4 "), Just(strHead + "01 02 00 00 00 00 00"));
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 0x11-122-xx "), Just(strHead + "11 22 00 00 00 00 00"));
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 zz "), Just(strHead + "00*7"));
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 1-2-3-4-5-6-7-8 "),
              Just(strHead + "01 02 03 04 05 06 00"));
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 1--1-3 "), Just(strHead + "01 ff 03 00 00 00 00"));
    EXPECT_EQ(SentBy(MIBSetRequest, "1 6 " + std::string(100000, '0') + "7-8 "),
              Just(strHead + "07 08 00 00 00 00 00"));
}

TEST_F(MIBRequestsTest, ASetOfAnotherSizeTakesOneNumber) {
    EXPECT_EQ(SentBy(MIBSetRequest, "14\n1\n15\n"), Just("24/1 | 14:4 00 00*16 1:4 00 0f 00"));
    EXPECT_EQ(SentBy(MIBSetRequest, "14\n3\n-2\n"),
              Just("24/1 | 14:4 00 00*16 3:4 00 fe ff ff ff"));
    EXPECT_EQ(SentBy(MIBSetRequest, "14\n8\n-2\n"),
              Just("24/1 | 14:4 00 00*16 8:4 00 fe ff ff ff 00*5"));
    EXPECT_EQ(SentBy(MIBSetRequest, "14\n0\n5\n"), Just("24/1 | 14:4 00 00*16 0:4 00 05"));
}

TEST_F(MIBRequestsTest, LengthsThatMakeNoSense) {
    EXPECT_EQ(SentBy(MIBSetRequest, "14 -3 1 "), Just("24/1 | 14:4 00 00*16 fd ff ff"));
    EXPECT_EQ(SentBy(MIBSetRequest, "14 65536 1 "), Just("24/1 | 14:4 00 00*16 65536:4 00 01"));
    SentBy(MIBSetRequest, "14 -28 1 ");
    EXPECT_EQ(LengthOf(0), 10244U);
    EXPECT_EQ(SentBy(MIBSetRequest, "14 x "), Just("24/1 | 14:4 00 00*16 0:4 00 00"));
    EXPECT_EQ(Unread(), "x ");
}

TEST_F(MIBRequestsTest, KeysOfASet) {
    for (const int32_t iID : {23, 24, 25}) {
        FakeDevice::Reset();
        EXPECT_EQ(PrintedBy(MIBSetRequest, std::to_string(iID) + " 1 77 5 "),
                  strMIBRequestsSetPrompt + strMIBRequestsLengthPrompt + strKeyPrompt +
                      strMIBRequestsDataPrompt);
        EXPECT_EQ(Sent(), Just("24/1 | " + std::to_string(iID) + ":4 01 77:4 00*12 1:4 00 05 00"));
    }
    for (const int32_t iID : {20, 22, 26, 499}) {
        EXPECT_EQ(PrintedBy(MIBSetRequest, std::to_string(iID) + " 1 5 "),
                  strMIBRequestsSetPrompt + strMIBRequestsLengthPrompt + strMIBRequestsDataPrompt);
    }
}

TEST_F(MIBRequestsTest, NegativeIDsAreBelowFiveHundred) {
    EXPECT_EQ(PrintedBy(MIBSetRequest, "-7\n2\n1\n"),
              strMIBRequestsSetPrompt + strMIBRequestsLengthPrompt + strMIBRequestsDataPrompt);
    EXPECT_EQ(Sent(), Just("24/1 | -7:4 00 00*16 2:4 00 01 00 00"));
}

TEST_F(MIBRequestsTest, ASetListensFromTheMomentItsLengthIsKnown) {
    gbInsideSubMenu = 1;
    EXPECT_THROW(PrintedBy(
                     [] {
                         EndInput();
                         MIBSetRequest();
                     },
                     "15\n4\n"),
                 ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_TRUE(Sent().empty());
}

TEST_F(MIBRequestsTest, AConfigurationIDTakesFourBytesInAShortMessage) {
    for (const int32_t iID : {500, 799, 804}) {
        FakeDevice::Reset();
        EXPECT_EQ(PrintedBy(MIBSetRequest, std::to_string(iID) + "\n305419896\n"),
                  strMIBRequestsSetPrompt + strValuePrompt);
        EXPECT_EQ(Sent(), Just("24/1 | " + std::to_string(iID) + ":4 00 00*16 4:4 00 78"));
        EXPECT_EQ(LengthOf(0), 31U);
    }
}

TEST_F(MIBRequestsTest, ACenterFrequencyAndABandwidth) {
    EXPECT_EQ(PrintedBy(MIBSetRequest, "509\n2600000\n70000\n"),
              strMIBRequestsSetPrompt + "\n Enter Center Frequency : \n Enter bandwidth        : ");
    EXPECT_EQ(Sent(), Just("24/1 | 509:4 00 00*16 16:4 00 2600000:4 70000:4 00*8 00"));
    EXPECT_EQ(LengthOf(0), 47U);
}

TEST_F(MIBRequestsTest, TheMRUTableIsReset) {
    int32_t iResult = 7;
    EXPECT_EQ(PrintedBy([&] { iResult = MIBSetRequest(); }, "507\n"),
              strMIBRequestsSetPrompt + "\n MRU Reset is SUCCESSFUL\n");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Sent(), Just("24/1 | 507:4 00*23"));
    FakeDevice::SetSendResult(2);
    EXPECT_EQ(PrintedBy([&] { iResult = MIBSetRequest(); }, "507\n"),
              strMIBRequestsSetPrompt + "\n MRU Reset is NOT SUCCESSFUL\n");
    EXPECT_EQ(iResult, 2);
}

TEST_F(MIBRequestsTest, OtherIDsAreNotSet) {
    for (const int32_t iID : {800, 803, 805, 998, 1000, 1612, 2147483647}) {
        gbInsideSubMenu = 1;
        EXPECT_EQ(PrintedBy(MIBSetRequest, std::to_string(iID) + " "),
                  strMIBRequestsSetPrompt + "\n MIB entered is out of range\n");
        EXPECT_EQ(gbInsideSubMenu, 1);
    }
    EXPECT_TRUE(Sent().empty());
}

TEST_F(MIBRequestsTest, TheAutomatedWrites) {
    FakeDevice::SetSendResult(-1); // no write depends on another
    int32_t iResult = 7;
    EXPECT_EQ(PrintedBy([&] { iResult = MIBSetRequest(); }, "999\n"), strMIBRequestsSetPrompt);
    EXPECT_EQ(iResult, 0);
    // ID, no keys counted, key 1, twelve zeroes, length, status, value, one more.
    const char *const apcExpected[] = {
        "24/1 | 0:4 00 0:4 00*12 2:4 00 c7 00 00",  "24/1 | 1:4 00 0:4 00*12 2:4 00 8f 01 00",
        "24/1 | 2:4 00 0:4 00*12 2:4 00 0f 00 00",  "24/1 | 3:4 00 0:4 00*12 2:4 00 0f 00 00",
        "24/1 | 4:4 00 0:4 00*12 2:4 00 02 00 00",  "24/1 | 5:4 00 0:4 00*12 2:4 00 1f 4e 00",
        "24/1 | 6:4 00 0:4 00*12 2:4 00 c7 00 00",  "24/1 | 7:4 00 0:4 00*12 2:4 00 27 00 00",
        "24/1 | 8:4 00 0:4 00*12 2:4 00 c7 00 00",  "24/1 | 9:4 00 0:4 00*12 2:4 00 1f 4e 00",
        "24/1 | 10:4 00 0:4 00*12 2:4 00 c7 00 00", "24/1 | 11:4 00 0:4 00*12 2:4 00 1d 00 00",
        "24/1 | 12:4 00 0:4 00*12 2:4 00 1f 4e 00", "24/1 | 13:4 00 0:4 00*12 2:4 00 cf 07 00",
        "24/1 | 14:4 00 0:4 00*12 1:4 00 0f 00",    "24/1 | 15:4 00 0:4 00*12 4:4 00 02 00*4",
        "24/1 | 16:4 00 0:4 00*12 4:4 00 02 00*4",  "24/1 | 17:4 00 0:4 00*12 2:4 00 e7 03 00",
        "24/1 | 18:4 00 0:4 00*12 2:4 00 63 00 00", "24/1 | 19:4 00 0:4 00*12 2:4 00 63 00 00",
        "24/1 | 20:4 00 0:4 00*12 1:4 00 00 00",    "24/1 | 21:4 00 0:4 00*12 1:4 00 01 00",
        "24/1 | 22:4 00 0:4 00*12 1:4 00 02 00",    "24/1 | 20:4 00 1:4 00*12 1:4 00 00 00",
        "24/1 | 21:4 00 1:4 00*12 1:4 00 01 00",    "24/1 | 22:4 00 1:4 00*12 1:4 00 02 00",
        "24/1 | 20:4 00 2:4 00*12 1:4 00 00 00",    "24/1 | 21:4 00 2:4 00*12 1:4 00 01 00",
        "24/1 | 22:4 00 2:4 00*12 1:4 00 02 00",    "24/1 | 20:4 00 3:4 00*12 1:4 00 00 00",
        "24/1 | 21:4 00 3:4 00*12 1:4 00 01 00",    "24/1 | 22:4 00 3:4 00*12 1:4 00 02 00",
    };
    ASSERT_EQ(Sent().size(), 32U);
    for (size_t i = 0; i < 32; ++i) {
        EXPECT_EQ(Sent()[i], Recorded(apcExpected[i])) << i;
    }
}

TEST_F(MIBRequestsTest, IDsThatMayBeWritten) {
    for (const int32_t iID : {0, 499, 500, 799, 804}) {
        EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(validateuiID(iID), iID); }), "");
    }
    for (const int32_t iID : {-1, 800, 803, 805, 999, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(validateuiID(iID), 804); }, "804 "), strReenter);
    }
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(validateuiID(800), 0); }, "900 -1 word "),
              strReenter + strReenter + strReenter);
}

TEST_F(MIBRequestsTest, AMultipleGetPacksItsRecords) {
    gbInsideSubMenu = 1;
    int32_t iResult = 7;
    EXPECT_EQ(PrintedBy([&] { iResult = MultipleMIBGetRequest(); }, "3\n5\n1142\n7\n8\n1617\n9\n"),
              strMultipleGet + "\nEntering 1 out of 3.\n" + strGetPrompt +
                  "\nEntering 2 out of 3.\n" + strGetPrompt + strKeyPrompt + strSecondKeyPrompt +
                  "\nEntering 3 out of 3.\n" + strGetPrompt + strKeyPrompt);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_EQ(Sent(), Just("24/4 | 3:2 5:4 00*23 1142:4 02 7:4 8:4 00*14 1617:4 01 9:4 00*18"));
    EXPECT_EQ(LengthOf(0), 2U + 81U + 4U);
}

TEST_F(MIBRequestsTest, AMultipleGetOfNothingSendsNothing) {
    gbInsideSubMenu = 1;
    EXPECT_EQ(PrintedBy(MultipleMIBGetRequest, "0 "), strMultipleGet);
    EXPECT_EQ(PrintedBy(MultipleMIBGetRequest, "-4 "), strMultipleGet);
    EXPECT_TRUE(Sent().empty());
    EXPECT_EQ(gbInsideSubMenu, 1);
}

// A count and so many IDs, none of which takes a key.
std::string IDs(int32_t iCount) {
    std::string strTyped = std::to_string(iCount) + " ";
    for (int32_t i = 0; i < iCount; ++i) {
        strTyped += std::to_string(400 + i % 90) + " "; // without keys
    }
    return strTyped;
}

std::string GetRecords(int32_t iFirst, int32_t iCount) {
    std::string strRecords = std::to_string(iCount) + ":2 ";
    for (int32_t i = iFirst; i < iFirst + iCount; ++i) {
        strRecords += std::to_string(400 + i % 90) + ":4 00*23 ";
    }
    return "24/4 | " + strRecords;
}

TEST_F(MIBRequestsTest, ThreeHundredAndEightyIDsTakeTwoMessages) {
    PrintedBy(MultipleMIBGetRequest, IDs(380));
    const std::vector<std::string> Expected = {Recorded(GetRecords(0, 379)),
                                               Recorded(GetRecords(379, 1))};
    EXPECT_EQ(Sent(), Expected);
    EXPECT_EQ(LengthOf(0), 2U + 27U * 379U + 4U);
    EXPECT_EQ(LengthOf(1), 33U);
    FakeDevice::Reset();
    PrintedBy(MultipleMIBGetRequest, IDs(379));
    EXPECT_EQ(Sent(), Just(GetRecords(0, 379)));
}

TEST_F(MIBRequestsTest, FiveMessagesAreSentBeforeASixthIsOpened) {
    const std::string strShown = PrintedBy(MultipleMIBGetRequest, IDs(1896));
    EXPECT_NE(strShown.find("\nEntering 1896 out of 1896.\n"), std::string::npos);
    const std::vector<std::string> Expected = {
        Recorded(GetRecords(0, 379)),    Recorded(GetRecords(379, 379)),
        Recorded(GetRecords(758, 379)),  Recorded(GetRecords(1137, 379)),
        Recorded(GetRecords(1516, 379)), Recorded(GetRecords(1895, 1))};
    EXPECT_EQ(Sent(), Expected);
}

TEST_F(MIBRequestsTest, FiveMessagesAreKept) {
    // 1895 records fill five messages; the next one needs a sixth.
    Type(std::string("1897 ") + IDs(1895).substr(5));
    EndInput();
    EXPECT_THROW(MultipleMIBGetRequest(), ClientEnd);
    EXPECT_TRUE(Sent().empty());
}

TEST_F(MIBRequestsTest, FiveMessagesAreSentBeforeTheQuestionBehindTheSixth) {
    Type(std::string("1897 ") + IDs(1896).substr(5));
    EndInput();
    EXPECT_THROW(MultipleMIBGetRequest(), ClientEnd);
    ASSERT_EQ(Sent().size(), 5U);
    EXPECT_EQ(Sent()[4], Recorded(GetRecords(1516, 379)));
}

TEST_F(MIBRequestsTest, AMultipleGetStopsWithoutMIBSupport) {
    FakeDevice::QueueSendResult(-3); // is not looked at
    FakeDevice::QueueSendResult(-27);
    int32_t iResult = 7;
    const std::string strShown =
        PrintedBy([&] { iResult = MultipleMIBGetRequest(); }, IDs(3 * 379));
    EXPECT_EQ(iResult, -27);
    EXPECT_EQ(Sent().size(), 2U);
    EXPECT_EQ(strShown.substr(strShown.size() - strNoMIBs.size()), strNoMIBs);
    EXPECT_EQ(strShown.find("Error"), std::string::npos);

    FakeDevice::SetSendResult(-27);
    EXPECT_EQ(PrintedBy(MIBRequest, "3 1 5 -1\n"),
              strMIBRequestsMenu + strMultipleGet + "\nEntering 1 out of 1.\n" + strGetPrompt +
                  strNoMIBs + "\n Error : -27" + strNoMIBs + strMIBRequestsMenu);
}

TEST_F(MIBRequestsTest, AMultipleGetStopsWithoutMIBSupportInTheMiddle) {
    // The first five messages are sent when the 1896th record has its ID.
    FakeDevice::QueueSendResult(0);
    FakeDevice::QueueSendResult(-27);
    int32_t iResult = 7;
    const std::string strShown = PrintedBy([&] { iResult = MultipleMIBGetRequest(); }, IDs(1900));
    EXPECT_EQ(iResult, -27);
    const std::vector<std::string> Expected = {Recorded(GetRecords(0, 379)),
                                               Recorded(GetRecords(379, 379))};
    EXPECT_EQ(Sent(), Expected);
    const std::string strEnd = "\nEntering 1896 out of 1900.\n" + strGetPrompt + strNoMIBs;
    ASSERT_GE(strShown.size(), strEnd.size());
    EXPECT_EQ(strShown.substr(strShown.size() - strEnd.size()), strEnd);
}

TEST_F(MIBRequestsTest, AMultipleSetPacksItsRecords) {
    gbInsideSubMenu = 1;
    int32_t iResult = 7;
    EXPECT_EQ(PrintedBy([&] { iResult = MultipleMIBSetRequest(); },
                        "6\n15 4 -2\n0 2 199\n25 1 77 255\n1 6 1-2-3-4-5-6\n900 804 5\n507 6\n"),
              strMultipleSet + "\nEntering 1 out of 6.\n" + strMultipleSetPrompt +
                  strMIBRequestsLengthPrompt + strMIBRequestsDataPrompt +
                  "\nEntering 2 out of 6.\n" + strMultipleSetPrompt + strMIBRequestsLengthPrompt +
                  strMIBRequestsDataPrompt + "\nEntering 3 out of 6.\n" + strMultipleSetPrompt +
                  strMIBRequestsLengthPrompt + strKeyPrompt + strMIBRequestsDataPrompt +
                  "\nEntering 4 out of 6.\n" + strMultipleSetPrompt + strMIBRequestsLengthPrompt +
                  strAddressPrompt + "\nEntering 5 out of 6.\n" + strMultipleSetPrompt +
                  strReenter + strValuePrompt + "\nEntering 6 out of 6.\n" + strMultipleSetPrompt +
                  strValuePrompt);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_EQ(Sent(), Just("24/3 | 6:2 "
                           "15:4 00 00*16 4:4 00 fe ff ff ff "
                           "0:4 00 00*16 2:4 00 c7 00 "
                           "25:4 01 77:4 00*12 1:4 00 ff "
                           "1:4 00 00*16 6:4 00 01 02 03 04 05 06 "
                           "804:4 00 00*16 4:4 00 5:4 "
                           "507:4 00 00*16 4:4 00 6:4"));
    EXPECT_EQ(LengthOf(0), 2U + 30U + 28U + 27U + 32U + 30U + 30U + 4U);
}

TEST_F(MIBRequestsTest, AMultipleSetOfNothingHasNoBuffer) {
    for (const char *pcCount : {"0 ", "-1 "}) {
        FakeDevice::Reset();
        gbInsideSubMenu = 1;
        EXPECT_EQ(PrintedBy(MultipleMIBSetRequest, pcCount), strMultipleSet);
        EXPECT_EQ(Sent(), std::vector<std::string>{"null"});
        EXPECT_EQ(LengthOf(0), 4U);
        EXPECT_EQ(gbInsideSubMenu, 0);
    }
}

TEST_F(MIBRequestsTest, AMultipleSetLooksAtNoResult) {
    FakeDevice::SetSendResult(-27);
    std::string strTyped = "342 ";
    std::string strFirst = "24/3 | 341:2 ";
    for (int32_t i = 0; i < 342; ++i) {
        strTyped += "600 " + std::to_string(i) + " ";
        if (i < 341) {
            strFirst += "600:4 00 00*16 4:4 00 " + std::to_string(i) + ":4 ";
        }
    }
    int32_t iResult = 7;
    const std::string strShown = PrintedBy([&] { iResult = MultipleMIBSetRequest(); }, strTyped);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(strShown.find("BINARY"), std::string::npos);
    const std::vector<std::string> Expected = {Recorded(strFirst),
                                               Recorded("24/3 | 1:2 600:4 00 00*16 4:4 00 341:4")};
    EXPECT_EQ(Sent(), Expected);
}

TEST_F(MIBRequestsTest, LongRecordsOfAMultipleSetStayWithinTheirMessage) {
    // 10212 bytes fill a message; one more is cut; 8000 and 4000 need two.
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "1 5 10212 -1 "),
              Just("24/3 | 1:2 5:4 00 00*16 10212:4 00 ff*4 00*10208"));
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "1 5 2147483647 -1 "),
              Just("24/3 | 1:2 5:4 00 00*16 2147483647:4 00 ff*4 00*10208"));
    const std::vector<std::string> Expected = {
        Recorded("24/3 | 1:2 5:4 00 00*16 8000:4 00 01 00*7999"),
        Recorded("24/3 | 2:2 6:4 00 00*16 4000:4 00 02 00*3999 7:4 00 00*16 1:4 00 03")};
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "3 5 8000 1 6 4000 2 7 1 3 "), Expected);
}

TEST_F(MIBRequestsTest, AMessageOfAMultipleSetIsClosedWhenTwentySevenBytesDoNotFit) {
    // 10213 bytes are used: 27 more fill the message.
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "2 5 10185 1 6 1 2 "),
              Just("24/3 | 2:2 5:4 00 00*16 10185:4 00 01 00*10184 6:4 00 00*16 1:4 00 02"));
    EXPECT_EQ(LengthOf(0), 10244U);
    // 10214 bytes are used: closed, though the 26 bytes that follow would fit.
    const std::vector<std::string> Expected = {
        Recorded("24/3 | 1:2 5:4 00 00*16 10186:4 00 01 00*10185"),
        Recorded("24/3 | 1:2 6:4 00 00*16 0:4 00")};
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "2 5 10186 1 6 0 2 "), Expected);
}

TEST_F(MIBRequestsTest, RecordsOfAMultipleSetWithoutBytes) {
    EXPECT_EQ(SentBy(MultipleMIBSetRequest, "2 5 0 255 6 -9 255 "),
              Just("24/3 | 2:2 5:4 00 00*16 0:4 00 6:4 00 00*16 -9:4 00"));
}

TEST_F(MIBRequestsTest, NothingHalfEnteredIsSentAtTheEndOfTheInput) {
    Type("3 5 6 ");
    EndInput();
    EXPECT_THROW(MultipleMIBGetRequest(), ClientEnd);
    EXPECT_TRUE(Sent().empty());
}

} // namespace

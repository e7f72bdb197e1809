#include "SecurityParameters.h"

#include <random>

#include "Console.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

const std::string strSecurityParametersOpening =
    "\n~~~~~~~~~~~~~~~ Security RESPONSE RECEIVED ~~~~~~~~~~~~~~~\n";
const std::string strSecurityParametersClosing =
    "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

const std::string strIDPrompt = "\nEnter the Security Parameter ID "
                                "\n["
                                "\n  Security Parameters (0 - 10)"
                                "\n]";
const std::string strSecurityParametersSetPrompt =
    "\nSecurity Parameters : (0 - 10)\nEnter the Security Parameter ID : ";
const std::string strSecurityParametersLengthPrompt = "\nEnter the number of data bytes : ";
const std::string strSecurityParametersDataPrompt = "\nEnter the data : ";

class SecurityParametersTest : public ConsoleTest {
  protected:
    static std::string Shown(const std::string &strMessage) {
        return Report(ProcessSecResponse, strMessage);
    }
    static std::vector<std::string> Sent() { return FakeDevice::Sent(); }
    static std::vector<std::string> Just(const std::string &strMessage) {
        return {Recorded(strMessage)};
    }
};

TEST_F(SecurityParametersTest, AGetHasTheIDAndNothingElse) {
    EXPECT_EQ(PrintedBy(SecGetRequest, "10\n"), strIDPrompt);
    EXPECT_EQ(Sent(), Just("34/2 | 10:4 00*6"));
}

TEST_F(SecurityParametersTest, AGetAsksAgainAboveTen) {
    EXPECT_EQ(PrintedBy(SecGetRequest, "11 -1 99999999999 0\n"),
              strIDPrompt + "\nEnter the Security Parameter ID : "
                            "\nEnter the Security Parameter ID : "
                            "\nEnter the Security Parameter ID : ");
    EXPECT_EQ(Sent(), Just("34/2 | 0:4 00*6"));
}

TEST_F(SecurityParametersTest, AGetThatIsRefusedShowsTheResult) {
    FakeDevice::SetSendResult(-27);
    int32_t iResult = 1;
    EXPECT_EQ(PrintedBy([&] { iResult = SecGetRequest(); }, "3\n"),
              strIDPrompt + "\nError Received as: [-27]\n");
    EXPECT_EQ(iResult, 0);
    FakeDevice::SetSendResult(5);
    EXPECT_EQ(PrintedBy(SecGetRequest, "3\n"), strIDPrompt);
}

TEST_F(SecurityParametersTest, AGetSendsTenBytesOfARecord) {
    FakeDevice::SetSendResult(-3);
    const uint8_t aucRecord[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(SendSecGetRequest({aucRecord, sizeof aucRecord}), -3);
    EXPECT_EQ(Sent(), Just("34/2 | 01 02 03 04 05 06 07 08 09 0a"));
}

TEST_F(SecurityParametersTest, ASetOfFourBytesTakesOneNumber) {
    EXPECT_EQ(PrintedBy(SecSetRequest, "7\n4\n-2\n"), strSecurityParametersSetPrompt +
                                                          strSecurityParametersLengthPrompt +
                                                          strSecurityParametersDataPrompt);
    EXPECT_EQ(Sent(), Just("34/1 | 7:4 4:4 00 fe ff ff ff 00"));
}

TEST_F(SecurityParametersTest, ASetOfTwoBytesTakesOneNumber) {
    EXPECT_EQ(PrintedBy(SecSetRequest, "0\n2\n65537\n"), strSecurityParametersSetPrompt +
                                                             strSecurityParametersLengthPrompt +
                                                             strSecurityParametersDataPrompt);
    EXPECT_EQ(Sent(), Just("34/1 | 0:4 2:4 00 01 00 00"));
}

TEST_F(SecurityParametersTest, ASetOfThreeBytesTakesThreeNumbers) {
    EXPECT_EQ(PrintedBy(SecSetRequest, "5\n3\n1 258\n-1\n"), strSecurityParametersSetPrompt +
                                                                 strSecurityParametersLengthPrompt +
                                                                 strSecurityParametersDataPrompt);
    EXPECT_EQ(Sent(), Just("34/1 | 5:4 3:4 00 01 02 ff 00"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll()[0].u32Length, 13U + 4U);
}

TEST_F(SecurityParametersTest, ASetAsksAgainWithoutAWord) {
    EXPECT_EQ(PrintedBy(SecSetRequest, "11\n-1\n10\n1\n255\n"),
              strSecurityParametersSetPrompt + strSecurityParametersLengthPrompt +
                  strSecurityParametersDataPrompt);
    EXPECT_EQ(Sent(), Just("34/1 | 10:4 1:4 00 ff 00"));
}

TEST_F(SecurityParametersTest, ASetListensFromTheMomentItsLengthIsKnown) {
    gbInsideSubMenu = 1;
    EXPECT_THROW(PrintedBy(
                     [] {
                         EndInput();
                         SecSetRequest();
                     },
                     "5\n3\n1"),
                 ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_TRUE(Sent().empty());
}

TEST_F(SecurityParametersTest, ASetReturnsTheResult) {
    FakeDevice::SetSendResult(-9);
    Type("5\n1\n1\n");
    EXPECT_EQ(SecSetRequest(), -9);
    EXPECT_EQ(Printed(), strSecurityParametersSetPrompt + strSecurityParametersLengthPrompt +
                             strSecurityParametersDataPrompt);
}

TEST_F(SecurityParametersTest, NoMoreIsReadOrSentThanTheMessageHas) {
    std::string strTyped = "5\n1000000\n";
    for (int i = 0; i < 10241; ++i) {
        strTyped += "1 ";
    }
    Type(strTyped);
    SecSetRequest();
    // 1000010 in 16 bits, and the header.
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll()[0].u32Length, 10244U);
    EXPECT_EQ(Sent(), Just("34/1 | 5:4 1000000:4 00 01*10231"));
    EXPECT_EQ(Unread(), " 1 ");
}

TEST_F(SecurityParametersTest, NumbersOfBytesThatMakeNoSense) {
    EXPECT_EQ(PrintedBy(SecSetRequest, "5\n0\n"), strSecurityParametersSetPrompt +
                                                      strSecurityParametersLengthPrompt +
                                                      strSecurityParametersDataPrompt);
    PrintedBy(SecSetRequest, "5\n-3\n");
    PrintedBy(SecSetRequest, "5\n65530\nx "); // the word stays for the next reader
    const std::vector<std::string> Expected = {
        Recorded("34/1 | 5:4 0:4 00 00"), // 10 bytes
        Recorded("34/1 | 5:4 fd ff ff"),  // 7 bytes
        Recorded("34/1 | 5:4"),           // 65540 bytes, in 16 bits
    };
    EXPECT_EQ(Sent(), Expected);
    EXPECT_EQ(Unread(), "x ");
}

TEST_F(SecurityParametersTest, ASizeQueryHasTheIDAlone) {
    FakeDevice::SetSendResult(-4);
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy([&] { iResult = SecGetParamSize(); }, "12\n9\n"),
              strIDPrompt + "\nEnter the Security Parameter ID : ");
    EXPECT_EQ(iResult, -4);
    EXPECT_EQ(Sent(), Just("34/3 | 9:4"));
}

TEST_F(SecurityParametersTest, ANullMessagePrintsNothing) {
    EXPECT_EQ(PrintedBy([] { ProcessSecResponse(nullptr); }), "");
}

TEST_F(SecurityParametersTest, ASetIsReportedByItsStatus) {
    EXPECT_EQ(Shown("34/1 | 5:4 0:4 00 00"),
              strSecurityParametersOpening +
                  "\nGet Response received\nSecurity Parmater Set is Successful !!!" +
                  strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/1 | 5:4 0:4 ff 00"),
              strSecurityParametersOpening +
                  "\nGet Response received Error Code while Security Parameter Set: (-1) "
                  "\n" +
                  strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/1 | 5:4 0:4 05 00"),
              strSecurityParametersOpening +
                  "\nGet Response received Error Code while Security Parameter Set: (5) \n" +
                  strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, AGetShowsItsBytes) {
    EXPECT_EQ(Shown("34/2 | 5:4 3:4 00 01 a2 ff"),
              strSecurityParametersOpening +
                  "\nGet Response received\n Security OID - 5 :  0x01 0xa2 0xff\n" +
                  strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/2 | 5:4 4:4 00 -2:4"),
              strSecurityParametersOpening +
                  "\nGet Response received\n Security OID - 5 :  0xfe 0xff 0xff 0xff UINT "
                  "eq : -2\n" +
                  strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, AGetWithANegativeStatusHasNoClosingLine) {
    EXPECT_EQ(Shown("34/2 | 5:4 4:4 ff 01 02 03 04"),
              strSecurityParametersOpening +
                  "\nGet Response received\n Security OID - 5 :  ERROR RECEIVED : [-1]");
}

TEST_F(SecurityParametersTest, AGetWithAPositiveStatusShowsItsValue) {
    EXPECT_EQ(Shown("34/2 | 5:4 2:4 05 01 02"),
              strSecurityParametersOpening +
                  "\nGet Response received\n Security OID - 5 :  0x01 0x02\n" +
                  strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, ASizeIsTheDataLength) {
    EXPECT_EQ(Shown("34/3 | 7:4 128:4 00 00"), strSecurityParametersOpening +
                                                   "\n Security Param ID - [7], Size : [128]\n" +
                                                   strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/3 | -7:4 -128:4 00 00"),
              strSecurityParametersOpening + "\n Security Param ID - [-7], Size : [-128]\n" +
                  strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, OtherSubtypesAreFramedOnly) {
    EXPECT_EQ(Shown("34/4 | 01*28"), strSecurityParametersOpening + strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/0"), strSecurityParametersOpening + strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, ValuesEndWithThePayload) {
    EXPECT_EQ(Shown("34/2 | 5:4 4294967295:4 00 01 02 00*10228 03"),
              strSecurityParametersOpening +
                  "\nGet Response received\n Security OID - 5 :  0x01 0x02" +
                  Times(" 0x00", 10228) + " 0x03\n" + strSecurityParametersClosing);
    EXPECT_EQ(Shown("34/2"), strSecurityParametersOpening +
                                 "\nGet Response received\n Security OID - 0 : \n" +
                                 strSecurityParametersClosing);
}

TEST_F(SecurityParametersTest, RandomAnswersAreHarmless) {
    std::mt19937 Random(20250102);
    for (uint32_t u32SubType = 0; u32SubType < 5; ++u32SubType) {
        for (int i = 0; i < 1000; ++i) {
            Bytes aucMessage(4 + Random() % 64);
            for (uint8_t &u8Byte : aucMessage) {
                u8Byte = static_cast<uint8_t>(Random());
            }
            aucMessage[0] = 34;
            aucMessage[1] = 0;
            aucMessage[2] = static_cast<uint8_t>(u32SubType);
            aucMessage[3] = 0;
            const std::string strShown =
                Report(ProcessSecResponse, FormatMessage(aucMessage.data(), aucMessage.size()));
            ASSERT_EQ(strShown.substr(0, strSecurityParametersOpening.size()),
                      strSecurityParametersOpening);
            ASSERT_LE(strShown.size(), 52000U);
        }
    }
}

} // namespace

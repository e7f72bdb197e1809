#include "Authentication.h"

#include "Console.h"
#include "Input.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

constexpr const char *pcEAPMenu = "\n********* EAP REQ MENU *********\n"
                                  "\n 1. AUTH EAP TRANSFER REQUEST"
                                  "\n 2. AUTH EAP COMPLETE REQUEST"
                                  "\n 3. Test Encrypt Message digest"
                                  "\n\n******************************\n"
                                  "\nENTER OPTION : ";

constexpr const char *pcAuthMenu = "\n****** AUTHENTICATION REQ MENU ******\n"
                                   "\n 1. AUTH STATUS REQUEST"
                                   "\n 2. AUTH EAP-AKA READ REQ MESSAGE"
                                   "\n 3. AUTH EAP_AKA WRITE REQ MESSAGE"
                                   "\n 4. AUTH EAP_SIM READ REQ MESSAGE"
                                   "\n 5. AUTH EAP_SIM WRITE REQ MESSAGE"
                                   "\n\n******************************************\n"
                                   "\nENTER OPTION : ";

constexpr const char *pcEAPBanner = "\n~~~~~~ EAP RESPONSE MESSAGE ~~~~~~\n";
constexpr const char *pcAuthBanner = "\n~~~~~~ AUTHENTICATION RESPONSE MESSAGE ~~~~~~\n";
constexpr const char *pcAuthenticationClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
constexpr const char *pcDumpEnd = "\n================================================\n";

class AuthenticationTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        const Bytes aucPseudonym = Message("ee*23");
        const Bytes aucSQNMS = Message("dd*192");
        gaucRespSEC_SNYMID_ID.Store({aucPseudonym.data(), 23});
        gaucRespSEC_SQNMS_ID.Store({aucSQNMS.data(), 192});
    }

    static std::string Pseudonym() {
        return FormatBytes(gaucRespSEC_SNYMID_ID.Load().aucBytes, 23);
    }
    static std::string SQNMS() { return FormatBytes(gaucRespSEC_SQNMS_ID.Load().aucBytes, 192); }

    // What the menu returns for what is typed.
    static uint32_t ResultOf(uint32_t (*pfnMenu)(), std::string_view strTyped) {
        Type(strTyped);
        return pfnMenu();
    }

    // The two frames around what the EAP part and the authentication part print.
    static std::string Framed(const std::string &strEAP, const std::string &strAuth) {
        return pcEAPBanner + strEAP + pcAuthBanner + strAuth + pcAuthenticationClosing +
               pcAuthenticationClosing;
    }
};

std::vector<std::string> OneRequest(const std::string &strMessage) {
    return {Recorded(strMessage)};
}

TEST_F(AuthenticationTest, AnEmptyTransferIsSent) {
    EXPECT_EQ(PrintedBy(EAPRequests, "1\n"), pcEAPMenu);
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/7 | 00 00"));
}

TEST_F(AuthenticationTest, TheKeyMaterialIsSentButForItsEnd) {
    Record<64> stKey;
    EXPECT_EQ(GetCompleteRequestData(stKey.Span()), 64U);
    EXPECT_EQ(PrintedBy(EAPRequests, "2\n"), pcEAPMenu);
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/8 | 00 40 00 "
                                             "51 07 c4 9a 2e f8 63 bd 10 d5 7f 48 a1 36 ec 0b "
                                             "94 6a 23 df 58 81 1c e7 3d b2 75 0e c9 46 fa 67 "
                                             "18 ad d0 5b 82 39 f4 6f 05 ce 91 2a 7c b7 e3 40 "
                                             "9d 16 54 cb 68 f1 3a 87 de 02 79 a5 4c"));
    EXPECT_EQ(FormatBytes(stKey.aucBytes + 48, 16),
              "9d 16 54 cb 68 f1 3a 87 de 02 79 a5 4c e0 1f b6");
}

TEST_F(AuthenticationTest, TheKeyMaterialLiesWholeInTheRecord) {
    std::string strTail;
    FakeDevice::OnSend(
        [&](size_t, auto aucRecord) { strTail = FormatBytes(aucRecord.data() + 68, 5); });
    PrintedBy(EAPRequests, "2\n");
    EXPECT_EQ(strTail, "e0 1f b6 00 00");
}

TEST_F(AuthenticationTest, AnEncryptionIsAskedForAndSentWithItsFirstByte) {
    EXPECT_EQ(PrintedBy(EAPRequests, "3 1 3 1 255 513 2 65 66\n"),
              std::string(pcEAPMenu) + "\nPadding algorithm to be used:"
                                       "\n0 - Indicates no padding. "
                                       "\n1 - Indicates padding based on PKCS1. "
                                       "\nEnter 0 or 1:"
                                       "\nNumber of AES symmetric keys you want to enter (0-32) : "
                                       "\nEnter array elements of symmetric key"
                                       "\nEnter array elements of symmetric key u8AESkey[0] : "
                                       "\nEnter array elements of symmetric key u8AESkey[1] : "
                                       "\nEnter array elements of symmetric key u8AESkey[2] : "
                                       "\nEnter Data length to be encrypted : "
                                       "\nEnter data to be encrypted u8Data[1] : "
                                       "\nEnter data to be encrypted u8Data[2] : ");
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/9 | 2:4 1:4 01 ff 01 00*29 41"));
}

TEST_F(AuthenticationTest, AnEncryptionWithoutKeyAndDataIsSentToo) {
    EXPECT_EQ(PrintedBy(EAPRequests, "3 0 0 0\n"),
              std::string(pcEAPMenu) + "\nPadding algorithm to be used:"
                                       "\n0 - Indicates no padding. "
                                       "\n1 - Indicates padding based on PKCS1. "
                                       "\nEnter 0 or 1:"
                                       "\nNumber of AES symmetric keys you want to enter (0-32) : "
                                       "\nEnter array elements of symmetric key"
                                       "\nEnter Data length to be encrypted : ");
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/9 | 00*41"));
}

TEST_F(AuthenticationTest, PaddingAndKeySizeAreAskedAgainUntilTheyFit) {
    EXPECT_EQ(PrintedBy(EAPRequests, "3 2 -1 0 33 -1 0 0\n"),
              std::string(pcEAPMenu) + "\nPadding algorithm to be used:"
                                       "\n0 - Indicates no padding. "
                                       "\n1 - Indicates padding based on PKCS1. "
                                       "\nEnter 0 or 1:"
                                       "\nEnter either 0 or 1"
                                       "\nEnter either 0 or 1"
                                       "\nNumber of AES symmetric keys you want to enter (0-32) : "
                                       "\nRange of number is 0 to 32"
                                       "\nRange of number is 0 to 32"
                                       "\nEnter array elements of symmetric key"
                                       "\nEnter Data length to be encrypted : ");
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/9 | 00*41"));
}

TEST_F(AuthenticationTest, ThirtyTwoKeyBytesFillTheKey) {
    std::string strTyped = "3 0 32";
    for (int i = 1; i <= 32; ++i) {
        strTyped += " 7";
    }
    PrintedBy(EAPRequests, strTyped + " 0\n");
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/9 | 00*8 07*32 00"));
}

TEST_F(AuthenticationTest, DataStopsWhereThePayloadStops) {
    for (const char *pcLength : {"10201", "-1", "2147483647"}) {
        FakeDevice::Reset();
        std::string strEnd;
        FakeDevice::OnSend(
            [&](size_t, auto aucRecord) { strEnd = FormatBytes(aucRecord.data() + 10240, 4); });
        std::string strTyped = std::string("3 0 0 ") + pcLength;
        for (int i = 0; i < 10200; ++i) {
            strTyped += " 9";
        }
        PrintedBy(EAPRequests, strTyped + "\nrest");
        EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/9 | 10200:4 00*36 09"));
        EXPECT_EQ(strEnd, "09*4");
        Type("\n");
        EXPECT_EQ(ReadOption(), 0); // what was not read as data
    }
}

TEST_F(AuthenticationTest, AnswersComeThroughDuringTheEncryptionDialogue) {
    gbInsideSubMenu = 1;
    Type("3 0 0\n");
    EndInput();
    EXPECT_THROW(EAPRequests(), ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(AuthenticationTest, AnEAPChoiceThatIsNone) {
    EXPECT_EQ(PrintedBy(EAPRequests, "4\n"), std::string(pcEAPMenu) + "\n Invalid choice");
    EXPECT_EQ(ResultOf(EAPRequests, "0\n"), 0U);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(AuthenticationTest, TheMenusReturnTheLowByteOfTheSendResult) {
    FakeDevice::SetSendResult(-27);
    EXPECT_EQ(ResultOf(EAPRequests, "1\n"), 0xE5U);
    EXPECT_EQ(ResultOf(EAPRequests, "2\n"), 0xE5U);
    EXPECT_EQ(ResultOf(EAPRequests, "3 0 0 0\n"), 0xE5U);
    FakeDevice::SetSendResult(0x1234);
    EXPECT_EQ(ResultOf(AuthRequest, "1\n"), 0x34U);
    EXPECT_EQ(ResultOf(AuthRequest, "2\n"), 0x34U);
    EXPECT_EQ(ResultOf(AuthRequest, "3\n"), 0x34U);
    EXPECT_EQ(ResultOf(AuthRequest, "4\n"), 0x34U);
    EXPECT_EQ(ResultOf(AuthRequest, "5\n"), 1U);
    EXPECT_EQ(ResultOf(AuthRequest, "6\n"), 1U);
}

TEST_F(AuthenticationTest, TheStatusIsAskedFor) {
    EXPECT_EQ(PrintedBy(AuthRequest, "1\n"), pcAuthMenu);
    EXPECT_EQ(FakeDevice::Sent(), OneRequest("4/1"));
}

TEST_F(AuthenticationTest, ParametersAreReadByMethod) {
    EXPECT_EQ(PrintedBy(AuthRequest, "2\n"), pcAuthMenu);
    EXPECT_EQ(PrintedBy(AuthRequest, "4\n"), pcAuthMenu);
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"4/3 | 00", "4/3 | 01"}));
}

TEST_F(AuthenticationTest, TheTestPatternIsWritten) {
    EXPECT_EQ(PrintedBy(AuthRequest, "3\n"), pcAuthMenu);
    EXPECT_EQ(FakeDevice::Sent(),
              OneRequest("4/4 | 00 d7 00"
                         " 000102030405060708090a0b0c0d0e0f 101112131415161718191a1b1c1d1e1f"
                         " 202122232425262728292a2b2c2d2e2f 303132333435363738393a3b3c3d3e3f"
                         " 404142434445464748494a4b4c4d4e4f 505152535455565758595a5b5c5d5e5f"
                         " 606162636465666768696a6b6c6d6e6f 707172737475767778797a7b7c7d7e7f"
                         " 808182838485868788898a8b8c8d8e8f 909192939495969798999a9b9c9d9e9f"
                         " a0a1a2a3a4a5a6a7a8a9aaabacadaeaf b0b1b2b3b4b5b6b7b8b9babbbcbdbebf"
                         " c0c1c2c3c4c5c6c7c8c9cacbcccdcecf d0d1d2d3d4d5d6 00 00"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 224}}));
}

TEST_F(AuthenticationTest, EAPSIMWritingIsNotOffered) {
    EXPECT_EQ(PrintedBy(AuthRequest, "5\n"),
              std::string(pcAuthMenu) + "\nSorry!!Currently service is UNAVAILABLE!!\n");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(AuthenticationTest, AnAuthenticationChoiceThatIsNone) {
    EXPECT_EQ(PrintedBy(AuthRequest, "6\n"), pcAuthMenu);
    EXPECT_EQ(PrintedBy(AuthRequest, "-1\n"), pcAuthMenu);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(AuthenticationTest, ATransferIndicationIsDumped) {
    EXPECT_EQ(Report(EAPResponse, "4/6 | 9:2 01 02 03 04 05 06 07 08 09 ff"),
              Framed("\nAUTH EAP TRANSFER INDICATION RECEIVED."
                     "\n================= AUTH TRANSFER INDICATION BUFFER =================\n"
                     "\n 00000000 : 01 02 03 04 05 06 07 08 "
                     "\n 00000008 : 09 "
                     "\n================================================\n",
                     ""));
}

TEST_F(AuthenticationTest, ATransferIndicationStopsWhereTheDataAreaStops) {
    std::string strLines;
    for (uint32_t u32Offset = 0; u32Offset < 10232; u32Offset += 8) {
        char acLine[64];
        snprintf(acLine, sizeof acLine, "\n %08x : 00 00 00 00 00 00 00 00 ", u32Offset);
        strLines += acLine;
    }
    EXPECT_EQ(Report(EAPResponse, "4/6 | 65535:2 00*10232 01 02 03 04 05 06"),
              Framed("\nAUTH EAP TRANSFER INDICATION RECEIVED."
                     "\n================= AUTH TRANSFER INDICATION BUFFER =================\n" +
                         strLines +
                         "\n 000027f8 : 01 02 03 04 05 06 "
                         "\n================================================\n",
                     ""));
    EXPECT_EQ(Report(EAPResponse, "4/6 | 0:2 01 02"),
              Framed("\nAUTH EAP TRANSFER INDICATION RECEIVED.", ""));
}

TEST_F(AuthenticationTest, AnEncryptionResultShowsTheByteBehindTheData) {
    EXPECT_EQ(Report(EAPResponse, "4/10 | 3:4 -2:4 00*32 11 12 13 14 15"),
              Framed("\nEAP ENCRYPT PRIVATE RESPONSE RECEIVED"
                     "\nPadding algorithm used u32Padding = -2 "
                     "\nEncrypted data \n"
                     "20 \t",
                     ""));
}

TEST_F(AuthenticationTest, AByteThatWasNotReceivedIsShownAsZero) {
    const std::string strZero = Framed("\nEAP ENCRYPT PRIVATE RESPONSE RECEIVED"
                                       "\nPadding algorithm used u32Padding = 0 "
                                       "\nEncrypted data \n"
                                       "0 \t",
                                       "");
    EXPECT_EQ(Report(EAPResponse, "4/10 | 2:4 0:4 ff*34"), strZero);
    EXPECT_EQ(Report(EAPResponse, "4/10 | -1:4 0:4 ff*34"), strZero);
    EXPECT_EQ(Report(EAPResponse, "4/10 | -30:4 0:4 ff*34"), strZero);
    EXPECT_EQ(Report(EAPResponse, "4/10"), strZero);
}

TEST_F(AuthenticationTest, AStatusStandsBetweenBothFrames) {
    EXPECT_EQ(Report(EAPResponse, "4/2 | 00"),
              Framed("", "\nAUTH STATUS RESPONSE MESSAGE RECEIVED."));
}

TEST_F(AuthenticationTest, OtherSubtypesPrintTheFrames) {
    for (const char *pcMessage :
         {"4/0", "4/1", "4/3 | 01", "4/4", "4/7", "4/11 | 00*40", "4/65535"}) {
        EXPECT_EQ(Report(EAPResponse, pcMessage), Framed("", ""));
    }
}

TEST_F(AuthenticationTest, NullPrintsNothing) {
    EXPECT_EQ(PrintedBy([] {
                  EAPResponse(nullptr);
                  AuthenticationResponse(nullptr);
              }),
              "");
}

TEST_F(AuthenticationTest, EAPAKAParametersAreDumpedAndKept) {
    EXPECT_EQ(
        Report(EAPResponse,
               "4/5 | 00 07 01 aa bb 10*16 20*16 30*16 40*16 50*16 60*100 70*22 71 80*191 81 99*8"),
        Framed("", std::string("\nAUTH PARAM INDICATION MESSAGE RECEIVED."
                               "\n================= AUTH REQUEST TYPE =================\n"
                               "\n 00000000 : 07 ") +
                       pcDumpEnd +
                       "\n================= AUTH ACK/NAK =================\n"
                       "\n 00000000 : 01 " +
                       pcDumpEnd +
                       "\nAUTH METHOD TYPE : AUTH_METHOD_EAP_AKA\n"
                       "\n================= WNID =================\n"
                       "\n 00000000 : 10 10 10 10 10 10 10 10 "
                       "\n 00000008 : 10 10 10 10 10 10 10 10 " +
                       pcDumpEnd +
                       "\n================= K ID =================\n"
                       "\n 00000000 : 20 20 20 20 20 20 20 20 "
                       "\n 00000008 : 20 20 20 20 20 20 20 20 " +
                       pcDumpEnd +
                       "\n================= OPc =================\n"
                       "\n 00000000 : 30 30 30 30 30 30 30 30 "
                       "\n 00000008 : 30 30 30 30 30 30 30 30 " +
                       pcDumpEnd +
                       "\n================= NonK =================\n"
                       "\n 00000000 : 40 40 40 40 40 40 40 40 "
                       "\n 00000008 : 40 40 40 40 40 40 40 40 " +
                       pcDumpEnd +
                       "\n================= NonOPc =================\n"
                       "\n 00000000 : 50 50 50 50 50 50 50 50 "
                       "\n 00000008 : 50 50 50 50 50 50 50 50 " +
                       pcDumpEnd +
                       "\n================= C1_5_R1_5 =================\n"
                       "\n 00000000 : 60 60 60 60 60 60 60 60 "
                       "\n 00000008 : 60 60 60 60 60 60 60 60 "
                       "\n 00000010 : 60 60 60 60 60 60 60 60 "
                       "\n 00000018 : 60 60 60 60 60 60 60 60 "
                       "\n 00000020 : 60 60 60 60 60 60 60 60 "
                       "\n 00000028 : 60 60 60 60 60 60 60 60 "
                       "\n 00000030 : 60 60 60 60 60 60 60 60 "
                       "\n 00000038 : 60 60 60 60 60 60 60 60 "
                       "\n 00000040 : 60 60 60 60 60 60 60 60 "
                       "\n 00000048 : 60 60 60 60 60 60 60 60 "
                       "\n 00000050 : 60 60 60 60 60 60 60 60 "
                       "\n 00000058 : 60 60 60 60 60 60 60 60 "
                       "\n 00000060 : 60 60 60 60 " +
                       pcDumpEnd +
                       "\n================= PseudonymID =================\n"
                       "\n 00000000 : 70 70 70 70 70 70 70 70 "
                       "\n 00000008 : 70 70 70 70 70 70 70 70 "
                       "\n 00000010 : 70 70 70 70 70 70 71 " +
                       pcDumpEnd +
                       "\n================= SQNMS =================\n"
                       "\n 00000000 : 80 80 80 80 80 80 80 80 "
                       "\n 00000008 : 80 80 80 80 80 80 80 80 "
                       "\n 00000010 : 80 80 80 80 80 80 80 80 "
                       "\n 00000018 : 80 80 80 80 80 80 80 80 "
                       "\n 00000020 : 80 80 80 80 80 80 80 80 "
                       "\n 00000028 : 80 80 80 80 80 80 80 80 "
                       "\n 00000030 : 80 80 80 80 80 80 80 80 "
                       "\n 00000038 : 80 80 80 80 80 80 80 80 "
                       "\n 00000040 : 80 80 80 80 80 80 80 80 "
                       "\n 00000048 : 80 80 80 80 80 80 80 80 "
                       "\n 00000050 : 80 80 80 80 80 80 80 80 "
                       "\n 00000058 : 80 80 80 80 80 80 80 80 "
                       "\n 00000060 : 80 80 80 80 80 80 80 80 "
                       "\n 00000068 : 80 80 80 80 80 80 80 80 "
                       "\n 00000070 : 80 80 80 80 80 80 80 80 "
                       "\n 00000078 : 80 80 80 80 80 80 80 80 "
                       "\n 00000080 : 80 80 80 80 80 80 80 80 "
                       "\n 00000088 : 80 80 80 80 80 80 80 80 "
                       "\n 00000090 : 80 80 80 80 80 80 80 80 "
                       "\n 00000098 : 80 80 80 80 80 80 80 80 "
                       "\n 000000a0 : 80 80 80 80 80 80 80 80 "
                       "\n 000000a8 : 80 80 80 80 80 80 80 80 "
                       "\n 000000b0 : 80 80 80 80 80 80 80 80 "
                       "\n 000000b8 : 80 80 80 80 80 80 80 81 " +
                       pcDumpEnd + "\n"));
    EXPECT_EQ(Pseudonym(), "70*22 71");
    EXPECT_EQ(SQNMS(), "80*191 81");
}

TEST_F(AuthenticationTest, EAPSIMParametersAreTheIMEIAndKeepNothing) {
    EXPECT_EQ(Report(EAPResponse, "4/5 | 01 02 00 00 00 49 01 54 20 32 3a 51 f8 99*400"),
              Framed("", std::string("\nAUTH PARAM INDICATION MESSAGE RECEIVED."
                                     "\n================= AUTH REQUEST TYPE =================\n"
                                     "\n 00000000 : 02 ") +
                             pcDumpEnd +
                             "\n================= AUTH ACK/NAK =================\n"
                             "\n 00000000 : 00 " +
                             pcDumpEnd +
                             "\nAUTH METHOD TYPE : AUTH_METHOD_EAP_SIM\n"
                             "\n================= AUTH_INFO_IMEI =================\n"
                             "\n 00000000 : 49 01 54 20 32 3a 51 f8 " +
                             pcDumpEnd));
    EXPECT_EQ(Pseudonym(), "ee*23");
    EXPECT_EQ(SQNMS(), "dd*192");
}

TEST_F(AuthenticationTest, ParametersOfAnotherMethodAreTheHeadOnly) {
    EXPECT_EQ(Report(EAPResponse, "4/5 | 02 03 01 99*397"),
              Framed("", std::string("\nAUTH PARAM INDICATION MESSAGE RECEIVED."
                                     "\n================= AUTH REQUEST TYPE =================\n"
                                     "\n 00000000 : 03 ") +
                             pcDumpEnd +
                             "\n================= AUTH ACK/NAK =================\n"
                             "\n 00000000 : 01 " +
                             pcDumpEnd));
    EXPECT_EQ(Pseudonym(), "ee*23");
    EXPECT_EQ(SQNMS(), "dd*192");
}

TEST_F(AuthenticationTest, ParametersComeThroughTheCallback) {
    FakeDevice::Deliver(Message("4/5 | 00*185 01*23 02*192"));
    EXPECT_EQ(Pseudonym(), "01*23");
    EXPECT_EQ(SQNMS(), "02*192");
}

} // namespace

#include "OMADM.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "TestConsole.h"

namespace {

// An answer to one send: what is written into the record (nothing when empty),
// and the result.
struct Answer {
    std::string strRecord;
    int32_t iResult = 0;
};

constexpr const char *pcSizeError = "\nError in getting the param size !!!";

class OMADMTest : public ConsoleTest {
  protected:
    // Answers the sends in order; those behind them succeed without an answer.
    static void AnswerSends(const std::vector<Answer> &astAnswers) {
        for (const Answer &stAnswer : astAnswers) {
            FakeDevice::QueueSendResult(stAnswer.iResult);
        }
        FakeDevice::OnSend([astAnswers](size_t uSend, auto aucRecord) {
            if (uSend <= astAnswers.size()) {
                const Bytes aucAnswer = Message(astAnswers[uSend - 1].strRecord);
                std::copy(aucAnswer.begin(), aucAnswer.end(), aucRecord.begin());
            }
        });
    }

    static std::string SizeAnswer(int32_t iSize) {
        return "33/4 | 00*85 " + std::to_string(iSize) + ":4";
    }

    static std::vector<std::string> RecordedAll(const std::vector<const char *> &apcMessages) {
        std::vector<std::string> strAll;
        for (const char *pcMessage : apcMessages) {
            strAll.push_back(Recorded(pcMessage));
        }
        return strAll;
    }
};

// A directory of its own to write files in.
class OMADMFileTest : public OMADMTest {
  protected:
    void SetUp() override {
        OMADMTest::SetUp();
        ASSERT_NE(getcwd(acBefore.data(), acBefore.size()), nullptr);
        ASSERT_NE(mkdtemp(acDirectory), nullptr);
        ASSERT_EQ(chdir(acDirectory), 0);
    }
    void TearDown() override {
        unlink("OMADMTreeData.bin");
        rmdir("OMADMTreeData.bin");
        ASSERT_EQ(chdir(acBefore.data()), 0);
        rmdir(acDirectory);
        OMADMTest::TearDown();
    }

    std::array<char, 4096> acBefore{};
    char acDirectory[32] = "/tmp/OMADMTest.XXXXXX";
};

TEST_F(OMADMTest, TheSizeIsAskedByPath) {
    AnswerSends({{"33/4 | 00*85 04 00 00 00"}});
    constexpr OMADMNode astPath[] = {{8, 1, 0}, {1, 38, 0x01020304}};
    uint32_t u32Size = 0;
    EXPECT_EQ(PrintedBy([&] { u32Size = GetOMADMParameterSize(astPath); }),
              "\n Parameter size get returned [4]\n");
    EXPECT_EQ(u32Size, 4U);
    EXPECT_EQ(FakeDevice::Sent(),
              RecordedAll({"33/4 | 08 01 00*6 01 26 00 00 04 03 02 01 00*64 2:4 00 00*4"}));
}

TEST_F(OMADMTest, ARefusedSizeQueryGivesTheSendResult) {
    FakeDevice::SetSendResult(-9);
    constexpr OMADMNode astPath[] = {{3, 1, 0}};
    uint32_t u32Size = 0;
    EXPECT_EQ(PrintedBy([&] { u32Size = GetOMADMParameterSize(astPath); }),
              "\nError Code Returned: [-9]\n");
    EXPECT_EQ(u32Size, 0xFFFFFFF7U);
}

TEST_F(OMADMTest, TenElementsAreAllOfAPath) {
    std::vector<OMADMNode> astPath(12, {1, 2, 3});
    GetOMADMParameterSize(astPath);
    std::string strExpected = "33/4 |";
    for (int i = 0; i < 10; ++i) {
        strExpected += " 01 02 00 00 03 00 00 00";
    }
    strExpected += " 0a 00 00 00 00 00 00 00 00";
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{Recorded(strExpected)});
}

TEST_F(OMADMTest, ANodeThatSaysItIsEmptyEndsEachTestWithItsSizeErrorLine) {
    struct Case {
        void (*pfnTest)();
        const char *pcError;
        int iQueries;
    };
    const Case astCases[] = {
        {OMADMGetSetNonArrayValueTest, pcSizeError, 1},
        {OMADMSetGetNonArrayValueWithArrayValueInpath, pcSizeError, 1},
        {OMADMGetNetworkParameterNode, pcSizeError, 1},
        {OMADMGetNetworkParameterNode2, pcSizeError, 5},
        {OMADMGetMACAddress, pcSizeError, 1},
        {OMADMReadOverflowProtectionTest, pcSizeError, 1},
        {OMADMWriteOverflowProtectionTest, "\nError in getting the param size", 1},
        {OMADMOutOfBoundArrayAccessTest, pcSizeError, 1},
    };
    for (const Case &stCase : astCases) {
        FakeDevice::Reset();
        std::string strExpected;
        for (int i = 0; i < stCase.iQueries; ++i) {
            strExpected += std::string("\n Parameter size get returned [0]\n") + stCase.pcError;
        }
        EXPECT_EQ(PrintedBy(stCase.pfnTest), strExpected);
        EXPECT_EQ(FakeDevice::Sent().size(), static_cast<size_t>(stCase.iQueries));
    }
}

TEST_F(OMADMTest, ASizeThatNoMessageHoldsIsAFailure) {
    for (const int32_t iSize : {10151, 0x7FFFFFFF, -1}) {
        FakeDevice::Reset();
        AnswerSends({{SizeAnswer(iSize)}});
        EXPECT_EQ(PrintedBy(OMADMGetMACAddress),
                  "\n Parameter size get returned [" + std::to_string(iSize) + "]\n" + pcSizeError);
        EXPECT_EQ(FakeDevice::Sent().size(), 1U);
    }
}

TEST_F(OMADMTest, TheLargestValueFillsAMessage) {
    AnswerSends({{SizeAnswer(10150)}});
    PrintedBy(OMADMGetMACAddress);
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 93}, {1, 10244}}));
}

TEST_F(OMADMTest, ARefusedSizeQueryIsAFailureWhenItsCodeIsNoSize) {
    FakeDevice::SetSendResult(-27);
    EXPECT_EQ(PrintedBy(OMADMReadOverflowProtectionTest),
              std::string("\nError Code Returned: [-27]\n") + pcSizeError);
    EXPECT_EQ(FakeDevice::Sent().size(), 1U);
}

TEST_F(OMADMTest, ASmallPositiveCodeIsTakenForASize) {
    AnswerSends({{"", 6}});
    EXPECT_EQ(PrintedBy(OMADMGetMACAddress),
              "\nError Code Returned: [6]\n\nSUCCESSFULLY received MAC address Parameters");
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 93}, {1, 100}}));
}

TEST_F(OMADMTest, AValueIsWrittenAndReadBack) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {""}, {"33/3 | 00*89 05 00 00 00"}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest), "\n Parameter size get returned [4]\n"
                                                       "\nSetting the parameter Successful "
                                                       "\nValues are same"
                                                       "\n :  0x05 0x00 0x00 0x00");
    const char *pcPath = " 08 01 00*6 01 26 00*6 01 27 00*6 00*56 3:4 ";
    const std::string strQuery = std::string("33/4 |") + pcPath + "00 00*4";
    const std::string strSet = std::string("33/2 | 4:4 00") + pcPath + "05 00 00 00 00";
    const std::string strGet = std::string("33/3 | 4:4 00") + pcPath + "00*4 00";
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({strQuery.c_str(), strSet.c_str(), strGet.c_str()}));
}

TEST_F(OMADMTest, OnlyTheNodesSizeOfTheValueIsWrittenAndCompared) {
    AnswerSends({{"33/4 | 00*85 1:4"}, {""}, {"33/3 | ff*4 00*85 05 ff ff ff"}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest), "\n Parameter size get returned [1]\n"
                                                       "\nSetting the parameter Successful "
                                                       "\nValues are same"
                                                       "\n :  0x05");
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 93}, {1, 95}, {1, 95}}));
}

TEST_F(OMADMTest, ALongValueIsFilledUpAndDumpedInLinesOfEight) {
    AnswerSends({{"33/4 | 00*85 17:4"}, {""}, {"33/3 | 00*89 05 00*15 01"}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest),
              "\n Parameter size get returned [17]\n"
              "\nSetting the parameter Successful "
              "\nValues are different. Check now!!"
              "\n :  0x05 0x00 0x00 0x00 0x00 0x00 0x00 0x00"
              "\n :  0x00 0x00 0x00 0x00 0x00 0x00 0x00 0x00"
              "\n :  0x01");
    EXPECT_EQ(FakeDevice::Sent()[1],
              Recorded("33/2 | 17:4 00 08 01 00*6 01 26 00*6 01 27 00*6 00*56 3:4 05 00*17"));
}

TEST_F(OMADMTest, ARefusedSetEndsTheTest) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", -3}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest),
              "\n Parameter size get returned [4]\n"
              "\nSetting the parameter size was NOT successful. Return Value  -3");
    EXPECT_EQ(FakeDevice::Sent().size(), 2U);
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", 3}});
    EXPECT_EQ(PrintedBy(OMADMSetGetNonArrayValueWithArrayValueInpath),
              "\n Parameter size get returned [4]\n"
              "\nSetting the parameter size was NOT successful. Return Value  3");
    EXPECT_EQ(FakeDevice::Sent().size(), 2U);
}

TEST_F(OMADMTest, ARefusedGetIsComparedAllTheSame) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {""}, {"", -4}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest), "\n Parameter size get returned [4]\n"
                                                       "\nSetting the parameter Successful "
                                                       "\nError Received as: [-4]\n"
                                                       "\nValues are different. Check now!!"
                                                       "\n :  0x00 0x00 0x00 0x00");
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}, {""}, {"33/3 | 00*89 05 00*3", 4}});
    EXPECT_EQ(PrintedBy(OMADMGetSetNonArrayValueTest), "\n Parameter size get returned [4]\n"
                                                       "\nSetting the parameter Successful "
                                                       "\nValues are same"
                                                       "\n :  0x05 0x00 0x00 0x00");
}

TEST_F(OMADMTest, AValueBehindAnArrayIsWrittenAndReadBack) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {""}, {"33/3 | 00*89 a5 a5 5a 5a"}});
    EXPECT_EQ(PrintedBy(OMADMSetGetNonArrayValueWithArrayValueInpath),
              "\n Parameter size get returned [4]\n"
              "\nSetting the parameter Successful "
              "\nValues read back successfully "
              "\n :  0xa5 0xa5 0x5a 0x5a");
    const char *pcPath = " 07 01 00*6 01 12 00*6 01 13 00*6 02 14 00*6 01 16 00*6"
                         " 03 17 00 00 04 00 00 00 01 18 00*6 00*24 7:4 ";
    const std::string strQuery = std::string("33/4 |") + pcPath + "00 00*4";
    const std::string strSet = std::string("33/2 | 4:4 00") + pcPath + "a5 a5 5a 5a 00";
    const std::string strGet = std::string("33/3 | 4:4 00") + pcPath + "00*4 00";
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({strQuery.c_str(), strSet.c_str(), strGet.c_str()}));
}

TEST_F(OMADMTest, AnotherValueBehindAnArrayIsOnlyDumped) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {""}, {"33/3 | 00*89 a5 a5 5a 5b"}});
    EXPECT_EQ(PrintedBy(OMADMSetGetNonArrayValueWithArrayValueInpath),
              "\n Parameter size get returned [4]\n"
              "\nSetting the parameter Successful "
              "\n :  0xa5 0xa5 0x5a 0x5b");
}

TEST_F(OMADMTest, TheNetworkParametersAreRead) {
    AnswerSends({{"33/4 | 00*85 2:4"}});
    EXPECT_EQ(PrintedBy(OMADMGetNetworkParameterNode),
              "\n Parameter size get returned [2]\n"
              "\nSUCCESSFULLY received Network Parameters");
    EXPECT_EQ(FakeDevice::Sent(),
              RecordedAll({"33/4 | 07 01 00*6 01 12 00*6 01 13 00*6 00*56 3:4 00*5",
                           "33/3 | 2:4 00 07 01 00*6 01 12 00*6 01 13 00*6 00*56 3:4 00*3"}));
}

TEST_F(OMADMTest, TheMACAddressIsRead) {
    AnswerSends({{"33/4 | 00*85 6:4"}});
    EXPECT_EQ(PrintedBy(OMADMGetMACAddress), "\n Parameter size get returned [6]\n"
                                             "\nSUCCESSFULLY received MAC address Parameters");
    EXPECT_EQ(FakeDevice::Sent(),
              RecordedAll({"33/4 | 06 01 00*6 01 0a 00*6 06 0b 00*6 00*56 3:4 00*5",
                           "33/3 | 6:4 00 06 01 00*6 01 0a 00*6 06 0b 00*6 00*56 3:4 00*7"}));
}

TEST_F(OMADMTest, ARefusedReadSaysBoth) {
    AnswerSends({{"33/4 | 00*85 2:4"}, {"", -8}});
    EXPECT_EQ(PrintedBy(OMADMGetNetworkParameterNode),
              "\n Parameter size get returned [2]\n"
              "\nError Received as: [-8]\n"
              "\nSUCCESSFULLY received Network Parameters");
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 2:4"}, {"", -8}});
    EXPECT_EQ(PrintedBy(OMADMGetMACAddress), "\n Parameter size get returned [2]\n"
                                             "\nError Received as: [-8]\n"
                                             "\nSUCCESSFULLY received MAC address Parameters");
}

// Behind a get only a negative result is an error.
TEST_F(OMADMTest, APositiveResultOfAReadIsNoError) {
    AnswerSends({{"33/4 | 00*85 2:4"}, {"", 8}});
    EXPECT_EQ(PrintedBy(OMADMGetMACAddress), "\n Parameter size get returned [2]\n"
                                             "\nSUCCESSFULLY received MAC address Parameters");
}

TEST_F(OMADMTest, AllFiveNetworkParametersAreReadWhateverHappens) {
    AnswerSends({{"33/4 | 00*85 1:4"},
                 {""},
                 {"", -2},
                 {"33/4 | 00*85 0:4"},
                 {"33/4 | 00*85 2:4"},
                 {"", -7},
                 {"33/4 | 00*85 3:4"},
                 {""}});
    EXPECT_EQ(PrintedBy(OMADMGetNetworkParameterNode2),
              "\n Parameter size get returned [1]\n"
              "\nError Code Returned: [-2]\n"
              "\nError in getting the param size !!!"
              "\n Parameter size get returned [0]\n"
              "\nError in getting the param size !!!"
              "\n Parameter size get returned [2]\n"
              "\nGetting the parameter is NOT successful. Return Value : [-7]\n"
              "\n Parameter size get returned [3]\n");
    const std::string strOperator = " 07 01 00*6 01 12 00*6 01 1d 00*6 03 1e 00*6 00*48 4:4 ";
    const std::string strFirst = " 04 01 00*6 08 03 00*6 00*64 2:4 ";
    const std::string strSecond = " 04 01 00*6 08 03 00 00 01 00*3 00*64 2:4 ";
    const std::string strNetwork = " 07 01 00*6 01 12 00*6 01 13 00*6 00*56 3:4 ";
    const std::string strQuery = "33/4 |";
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{
                                      Recorded(strQuery + strOperator + "00*5"),
                                      Recorded("33/3 | 1:4 00" + strOperator + "00*2"),
                                      Recorded(strQuery + strOperator + "00*5"),
                                      Recorded(strQuery + strFirst + "00*5"),
                                      Recorded(strQuery + strSecond + "00*5"),
                                      Recorded("33/3 | 2:4 00" + strSecond + "00*3"),
                                      Recorded(strQuery + strNetwork + "00*5"),
                                      Recorded("33/3 | 3:4 00" + strNetwork + "00*4"),
                                  }));
}

TEST_F(OMADMTest, AReadParameterIsHandedBackAsItsRecord) {
    // The size that the answer claims is not the one that counts.
    AnswerSends({{"33/4 | 00*85 3:4"}, {"33/3 | ff*4 00*85 01 02 03 04"}});
    constexpr OMADMNode astPath[] = {{3, 1, 0}};
    std::vector<uint8_t> aucResult;
    int32_t iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = GetOmaParam(astPath, &aucResult); }),
              "\n Parameter size get returned [3]\n");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(FormatBytes(aucResult.data(), aucResult.size()), "ff*4 00*85 01 02 03 00*13");
    EXPECT_EQ(aucResult.size(), 105U);
}

TEST_F(OMADMTest, AParameterThatIsNotReadHandsNothingBack) {
    AnswerSends({{"33/4 | 00*85 3:4"}, {"", 2}});
    constexpr OMADMNode astPath[] = {{3, 1, 0}};
    std::vector<uint8_t> aucResult;
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy([&] { iResult = GetOmaParam(astPath, &aucResult); }),
              "\n Parameter size get returned [3]\n"
              "\nGetting the parameter is NOT successful. Return Value : [2]\n");
    EXPECT_EQ(iResult, 2);
    EXPECT_TRUE(aucResult.empty());
    FakeDevice::Reset();
    PrintedBy([&] { iResult = GetOmaParam(astPath, &aucResult); });
    EXPECT_EQ(iResult, 0);
    EXPECT_TRUE(aucResult.empty());
}

TEST_F(OMADMTest, ACallersRecordIsSet) {
    const Bytes aucRecord = Message("2:4 ee 03 01 00*6 00*72 1:4 11 22 33 44");
    int32_t iResult = -1;
    EXPECT_EQ(
        PrintedBy([&] {
            iResult = SetOmaParam({aucRecord.data(), static_cast<uint32_t>(aucRecord.size())});
        }),
        "");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/2 | 2:4 00 03 01 00*6 00*72 1:4 11 22 00"}));
}

TEST_F(OMADMTest, ARefusedSetOfACallersRecordHasTheLineOfAGet) {
    FakeDevice::SetSendResult(-6);
    const Bytes aucRecord = Message("1:4 00*86");
    EXPECT_EQ(
        PrintedBy([&] {
            EXPECT_EQ(SetOmaParam({aucRecord.data(), static_cast<uint32_t>(aucRecord.size())}), -6);
        }),
        "\nGetting the parameter is NOT successful. Return Value : [-6]\n");
}

TEST_F(OMADMTest, ACallersRecordThatNoMessageHoldsIsCut) {
    const Bytes aucRecord = Message("-1:4 00*81 1:4 77*20000");
    SetOmaParam({aucRecord.data(), static_cast<uint32_t>(aucRecord.size())});
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/2 | 10150:4 00*81 1:4 77*10150 00"}));
}

TEST_F(OMADMTest, ACallersRecordHasTenElements) {
    const Bytes aucRecord = Message("1:4 ee 11*8 22*64 33*8 10:4 44");
    SetOmaParam({aucRecord.data(), static_cast<uint32_t>(aucRecord.size())});
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/2 | 1:4 00 11*8 22*64 33*8 10:4 44 00"}));
}

TEST_F(OMADMTest, ACallersGetRequestIsItsFirstNinetyBytes) {
    const Bytes aucRecord = Message("5:4 00*81 1:4 01 02 03 04 05");
    FakeDevice::SetSendResult(-1);
    EXPECT_EQ(SendOMADMGetRequest({aucRecord.data(), static_cast<uint32_t>(aucRecord.size())}), -1);
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/3 | 5:4 00*81 1:4 01"}));
}

TEST_F(OMADMTest, AReadPastTheValueOughtToFail) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", -5}});
    EXPECT_EQ(PrintedBy(OMADMReadOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nGetting the parameter is NOT successful. Return Value : [-5]\n");
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/4 | 03 01 00*6 00*72 1:4 00*5",
                                               "33/3 | 16:4 00 03 01 00*6 00*72 1:4 00*5"}));
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}});
    EXPECT_EQ(PrintedBy(OMADMReadOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nOut of bound array read is not checked !!!");
}

TEST_F(OMADMTest, AWritePastTheValueOughtToFail) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", -5}});
    EXPECT_EQ(PrintedBy(OMADMWriteOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nGetting the parameter size was NOT successful. Return Value  -5");
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/4 | 03 01 00*6 00*72 1:4 00*5",
                                               "33/2 | 16:4 00 03 01 00*6 00*72 1:4 00*5"}));
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}});
    EXPECT_EQ(PrintedBy(OMADMWriteOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nOut of bound array read is not checked");
}

TEST_F(OMADMTest, AReadPastTheArrayOughtToFail) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", -5}});
    EXPECT_EQ(PrintedBy(OMADMOutOfBoundArrayAccessTest), "\n Parameter size get returned [4]\n");
    EXPECT_EQ(FakeDevice::Sent(),
              RecordedAll({"33/4 | 04 01 00 00 05 00*3 03 03 00*6 00*64 2:4 00*5",
                           "33/3 | 4:4 00 04 01 00 00 05 00*3 03 03 00*6 00*64 2:4 00*5"}));
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}});
    EXPECT_EQ(PrintedBy(OMADMOutOfBoundArrayAccessTest),
              "\n Parameter size get returned [4]\n"
              "\nOut of bound array read is not checked !!!");
}

TEST_F(OMADMTest, APositiveResultIsARefusalToo) {
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", 5}});
    EXPECT_EQ(PrintedBy(OMADMReadOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nGetting the parameter is NOT successful. Return Value : [5]\n");
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", 5}});
    EXPECT_EQ(PrintedBy(OMADMWriteOverflowProtectionTest),
              "\n Parameter size get returned [4]\n"
              "\nGetting the parameter size was NOT successful. Return Value  5");
    FakeDevice::Reset();
    AnswerSends({{"33/4 | 00*85 4:4"}, {"", 5}});
    EXPECT_EQ(PrintedBy(OMADMOutOfBoundArrayAccessTest), "\n Parameter size get returned [4]\n");
    FakeDevice::Reset();
    FakeDevice::SetSendResult(5);
    EXPECT_EQ(PrintedBy([] { SetOmaParam({}); }),
              "\nGetting the parameter is NOT successful. Return Value : [5]\n");
    EXPECT_EQ(PrintedBy(GetIMEIData), "\n--------------IMEI data Read---------------------- "
                                      "IMEI Read request returned 5\n"
                                      "IMEI Read FAILED");
    EXPECT_EQ(PrintedBy(OMADMGetVersion),
              "\n Application is using Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
              "\n Library is compatible with Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
              "OMA-DM APIs are NOT compatible with the version library and Application");
}

TEST_F(OMADMTest, TheVersionFits) {
    EXPECT_EQ(PrintedBy(OMADMGetVersion),
              "\n Application is using Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
              "Version compatibility check Successful!!");
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/1 | 3:4 0:4"}));
}

TEST_F(OMADMTest, TheVersionDoesNotFit) {
    AnswerSends({{"33/1 | 4:4 17:4", -30}});
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy([&] { iResult = OMADMGetVersion(); }),
              "\n Application is using Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
              "\n Library is compatible with Major Ver 4 and Minor Ver 17 of OMA-DM API\n"
              "OMA-DM APIs are NOT compatible with the version library and Application");
    EXPECT_EQ(iResult, -30);
}

TEST_F(OMADMTest, TheIMEIBlockIsThreeLinesOfEight) {
    AnswerSends({{"34/4 | 99*4 01 02 03 04 05 06 07 08 11 12 13 14 15 16 17 18"
                  " f1 f2 f3 f4 f5 f6 f7 f8 99*40"}});
    EXPECT_EQ(PrintedBy(GetIMEIData), "\n--------------IMEI data Read---------------------- "
                                      "IMEI Read SUCCESS"
                                      "\n--------------IMEI data START---------------------- "
                                      "\n  :  0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08"
                                      "\n  :  0x11 0x12 0x13 0x14 0x15 0x16 0x17 0x18"
                                      "\n  :  0xf1 0xf2 0xf3 0xf4 0xf5 0xf6 0xf7 0xf8"
                                      "\n--------------IMEI data END---------------------- ");
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"34/4 | 00*28"}));
}

TEST_F(OMADMTest, TheIMEIBlockIsRefused) {
    FakeDevice::SetSendResult(-11);
    EXPECT_EQ(PrintedBy(GetIMEIData), "\n--------------IMEI data Read---------------------- "
                                      "IMEI Read request returned -11\n"
                                      "IMEI Read FAILED");
}

TEST_F(OMADMFileTest, TheTreeImageIsWrittenAndNamed) {
    std::ofstream("OMADMTreeData.bin") << std::string(20000, 'x');
    EXPECT_EQ(PrintedBy(UpdateOMADMTree), "\nOMADM tree update is successful!!");
    EXPECT_EQ(FakeDevice::Sent(), RecordedAll({"33/5 | \"./OMADMTreeData.bin\" 00*109"}));
    std::ifstream File("OMADMTreeData.bin", std::ios::binary);
    const Bytes aucImage(std::istreambuf_iterator<char>(File), {});
    EXPECT_EQ(aucImage.size(), 13544U);
    EXPECT_EQ(FormatBytes(aucImage.data(), aucImage.size()), "01 00 00 00 e8 34 00*13538");
}

TEST_F(OMADMFileTest, ARefusedTreeUpdateIsPrinted) {
    FakeDevice::SetSendResult(-13);
    EXPECT_EQ(PrintedBy(UpdateOMADMTree), "\nError code returned is -13");
    FakeDevice::SetSendResult(13);
    EXPECT_EQ(PrintedBy(UpdateOMADMTree), "\nError code returned is 13");
}

TEST_F(OMADMFileTest, ATreeImageThatCannotBeCreatedIsNotSent) {
    ASSERT_EQ(mkdir("OMADMTreeData.bin", 0700), 0);
    EXPECT_EQ(PrintedBy(UpdateOMADMTree), "\nCould not creat file");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(OMADMFileTest, ATreeImageThatCannotBeWrittenIsNotSent) {
    ASSERT_EQ(symlink("/dev/full", "OMADMTreeData.bin"), 0);
    EXPECT_EQ(PrintedBy(UpdateOMADMTree), "\nCould not write to file");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

// What is left in the stream's buffer has to reach the file too.
TEST_F(OMADMFileTest, ATreeImageWhoseEndDoesNotFitIsNotSent) {
    rlimit stBefore{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &stBefore), 0);
    const auto pfnBefore = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit stSmall{13543, stBefore.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &stSmall), 0);
    const std::string strPrinted = PrintedBy(UpdateOMADMTree);
    setrlimit(RLIMIT_FSIZE, &stBefore);
    std::signal(SIGXFSZ, pfnBefore);
    EXPECT_EQ(strPrinted, "\nCould not write to file");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

constexpr const char *pcOMADMMenu = "\n\n*********** OMA DM/Security Request ***********\n"
                                    "\n 1. OMA DM Get Version info"
                                    "\n 2. OMA DM Few Tests Menu"
                                    "\n 3. Security Parameter GET REQUEST"
                                    "\n 4. Security Parameter SET REQUEST"
                                    "\n 5. Security Parameter Size REQUEST"
                                    "\n 6. IMEI Read request"
                                    "\n 7. OMADM tree update API test"
                                    "\n-1. GO TO MAIN MENU"
                                    "\n\n******************************\n"
                                    "\nENTER OPTION : ";

constexpr const char *pcTestMenu = "\n******** OMA-DM Testing Menu ********\n"
                                   "\n 1. Run Non Array Value Test "
                                   "\n 2. Run Non Array Value with Array value in the path Test"
                                   "\n 3. Run Get Network parameters "
                                   "\n 4. Run Write Overflow protection Test"
                                   "\n 5. Run read overflow protection Test"
                                   "\n 6. Run MAC address read test"
                                   "\n-1. Return to previous menu"
                                   "\nENTER OPTION : ";

TEST_F(OMADMTest, OtherChoicesAreRefusedAndTheMenuComesAgain) {
    const std::string strMenu = pcOMADMMenu;
    const std::string strRefused = "\nSORRY! INVALID OPTION SELECTED!";
    EXPECT_EQ(PrintedBy(OMADMRequest, "0 8 abc -1\n"),
              strMenu + strRefused + strMenu + strRefused + strMenu + strRefused + strMenu);
}

TEST_F(OMADMTest, AnErrorIsPrintedAgainBehindEveryChoice) {
    FakeDevice::QueueSendResult(-30);
    FakeDevice::QueueSendResult(-11);
    const std::string strMenu = pcOMADMMenu;
    EXPECT_EQ(PrintedBy(OMADMRequest, "1 6 9 2 -1 -1\n"),
              strMenu +
                  "\n Application is using Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
                  "\n Library is compatible with Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
                  "OMA-DM APIs are NOT compatible with the version library and Application"
                  "\n Error : -30" +
                  strMenu +
                  "\n--------------IMEI data Read---------------------- "
                  "IMEI Read request returned -11\n"
                  "IMEI Read FAILED"
                  "\n Error : -30" +
                  strMenu + "\nSORRY! INVALID OPTION SELECTED!\n Error : -30" + strMenu +
                  pcTestMenu + "\n Error : -30" + strMenu);
}

TEST_F(OMADMFileTest, AnErrorIsPrintedAgainBehindTheTreeUpdate) {
    FakeDevice::QueueSendResult(-30);
    const std::string strMenu = pcOMADMMenu;
    EXPECT_EQ(PrintedBy(OMADMRequest, "1 7 -1\n"),
              strMenu +
                  "\n Application is using Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
                  "\n Library is compatible with Major Ver 3 and Minor Ver 0 of OMA-DM API\n"
                  "OMA-DM APIs are NOT compatible with the version library and Application"
                  "\n Error : -30" +
                  strMenu + "\nOMADM tree update is successful!!\n Error : -30" + strMenu);
}

TEST_F(OMADMTest, TheSecurityRequestsHaveTheirChoicesAndResults) {
    const std::string strMenu = pcOMADMMenu;
    const std::string strAskID = "\nEnter the Security Parameter ID "
                                 "\n["
                                 "\n  Security Parameters (0 - 10)"
                                 "\n]";
    for (const int32_t iResult : {-6, 7, -27}) {
        FakeDevice::QueueSendResult(iResult);
    }
    EXPECT_EQ(PrintedBy(OMADMRequest, "4 3 1 9 5 3 3 3 2 -1 -1\n"),
              strMenu +
                  "\nSecurity Parameters : (0 - 10)\nEnter the Security Parameter ID : "
                  "\nEnter the number of data bytes : "
                  "\nEnter the data : "
                  "\n Error : -6" +
                  strMenu + strAskID + "\n Error : 7" + strMenu + strAskID +
                  "\nError Received as: [-27]\n" + strMenu + pcTestMenu + strMenu);
    std::vector<std::string> strCodes;
    for (const std::string &strMessage : FakeDevice::Sent()) {
        strCodes.push_back(strMessage.substr(0, 4));
    }
    EXPECT_EQ(strCodes, (std::vector<std::string>{"34/1", "34/3", "34/2"}));
}

TEST_F(OMADMTest, ASuccessForgetsTheError) {
    FakeDevice::QueueSendResult(-30);
    const std::string strPrinted = PrintedBy(OMADMRequest, "1 1 2 -1 -1\n");
    EXPECT_EQ(strPrinted.find("\n Error : -30"), strPrinted.rfind("\n Error :"));
}

TEST_F(OMADMTest, TheTestMenuRunsItsTestsAndIgnoresOtherChoices) {
    const std::string strMenu = pcTestMenu;
    const std::string strZero = "\n Parameter size get returned [0]\n";
    const std::string strNoSize = strZero + pcSizeError;
    EXPECT_EQ(PrintedBy(OMADM_TestMenu, "0 7 x 1 2 3 4 5 6 -1\n"),
              strMenu + strMenu + strMenu + strMenu + strNoSize + strMenu + strNoSize + strMenu +
                  strNoSize + strNoSize + strNoSize + strNoSize + strNoSize + strNoSize + strMenu +
                  strZero + "\nError in getting the param size" + strMenu + strNoSize + strMenu +
                  strNoSize + strMenu);
    // The first node of each path tells most of the tests apart.
    std::vector<std::string> strFirstElements;
    for (const std::string &strMessage : FakeDevice::Sent()) {
        strFirstElements.push_back(strMessage.substr(0, 12));
    }
    EXPECT_EQ(strFirstElements, (std::vector<std::string>{
                                    "33/4 | 08 01", "33/4 | 07 01", "33/4 | 07 01", "33/4 | 07 01",
                                    "33/4 | 07 01", "33/4 | 04 01", "33/4 | 04 01", "33/4 | 07 01",
                                    "33/4 | 03 01", "33/4 | 03 01", "33/4 | 06 01"}));
}

} // namespace

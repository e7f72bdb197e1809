// Faults and requests that are refused. The answers are the set-all answers to
// option requests: quick, and told apart by what was asked.
#include <gtest/gtest.h>

#include <set>

#include "ModemBench.h"

namespace {

// Sets the paging cycle; the answer repeats it.
int32_t AskValue(ModemBench &stBench, int iValue) {
    char acPayload[64];
    (void)std::snprintf(acPayload, sizeof acPayload, "00*4 20 00*3 00*20 %02X 00*3 00*8", iValue);
    return stBench.Send(29, 2, acPayload);
}

std::string AnswerTo(int iValue) {
    char acAnswer[64];
    (void)std::snprintf(acAnswer, sizeof acAnswer, "29/2: 00*4 20 00*3 00*20 %02X 00*3 00*8",
                        iValue);
    return Told({acAnswer})[0];
}

// What comes out when eight requests are made, one every ten seconds.
std::vector<std::string> EightAnswers(const std::string &strFault) {
    ModemBench stBench(strFault);
    for (int i = 0; i < 8; ++i) {
        stBench.RunUntil(10 * i);
        EXPECT_EQ(AskValue(stBench, i), 0);
    }
    stBench.RunUntil(1000);
    return stBench.TimedMessages();
}

TEST(Faults, NoneByDefault) {
    EXPECT_EQ(EightAnswers(""),
              Told({"0.00 " + AnswerTo(0), "10.00 " + AnswerTo(1), "20.00 " + AnswerTo(2),
                    "30.00 " + AnswerTo(3), "40.00 " + AnswerTo(4), "50.00 " + AnswerTo(5),
                    "60.00 " + AnswerTo(6), "70.00 " + AnswerTo(7)}));
}

TEST(Faults, AnswersAreDropped) {
    EXPECT_EQ(EightAnswers("[[fault]]\nkind = \"drop\"\n"), Told({}));
}

TEST(Faults, SomeGoByBeforeAFaultAndItHitsSoManyTimes) {
    EXPECT_EQ(EightAnswers("[[fault]]\nkind = \"drop\"\ntype = 29\nsubtype = 2\n"
                           "skip = 1\ncount = 5\n"),
              Told({"0.00 " + AnswerTo(0), "60.00 " + AnswerTo(6), "70.00 " + AnswerTo(7)}));
}

TEST(Faults, OnlyTheirTypeAndSubtypeAreHit) {
    EXPECT_EQ(EightAnswers("[[fault]]\nkind = \"drop\"\ntype = 28\n"
                           "[[fault]]\nkind = \"drop\"\ntype = 29\nsubtype = 3\n")
                  .size(),
              8U);
}

TEST(Faults, ProbabilityHitsSomeAndAlwaysTheSameOnes) {
    const std::string strFault = "[[fault]]\nkind = \"drop\"\nprobability = 0.5\n";
    std::set<std::vector<std::string>> astOutcomes;
    for (int iSeed = 0; iSeed < 20; ++iSeed) {
        const std::string strScenario = "seed = " + std::to_string(iSeed) + "\n" + strFault;
        const std::vector<std::string> astrTexts = EightAnswers(strScenario);
        EXPECT_EQ(astrTexts, EightAnswers(strScenario));
        astOutcomes.insert(astrTexts);
    }
    EXPECT_GT(astOutcomes.size(), 10U);
}

TEST(Faults, AnswersAreDelayed) {
    EXPECT_EQ(EightAnswers("[[fault]]\nkind = \"delay\"\nseconds = 15\nskip = 6\ncount = 1\n")[7],
              "75.00 " + AnswerTo(6));
}

TEST(Faults, AnswersAreRepeated) {
    const std::vector<std::string> astrTexts =
        EightAnswers("[[fault]]\nkind = \"repeat\"\ntimes = 2\ncount = 1\n");
    ASSERT_EQ(astrTexts.size(), 10U);
    EXPECT_EQ(astrTexts[2], "0.00 " + AnswerTo(0));
    EXPECT_EQ(astrTexts[3], "10.00 " + AnswerTo(1));
}

TEST(Faults, AReorderedAnswerIsOvertakenByTheNextMessage) {
    ModemBench stBench("[[fault]]\nkind = \"reorder\"\ncount = 1\n");
    AskValue(stBench, 1);
    stBench.RunUntil(1);
    AskValue(stBench, 2);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 " + AnswerTo(2), "1.00 " + AnswerTo(1)}));
}

TEST(Faults, AReorderedAnswerDoesNotWaitForEver) {
    ModemBench stBench("[[fault]]\nkind = \"reorder\"\n");
    AskValue(stBench, 1);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"2.00 " + AnswerTo(1)}));
}

TEST(Faults, AnswersAreCutShort) {
    ModemBench stBench("[[fault]]\nkind = \"truncate\"\nlength = 6\n");
    AskValue(stBench, 1);
    EXPECT_EQ(stBench.Messages(), Told({"29/2: 00*4 20 00"}));
}

TEST(Faults, AnswersAreCutShortAnywhere) {
    std::set<size_t> auLengths;
    for (const std::string &strText : EightAnswers("[[fault]]\nkind = \"truncate\"\n")) {
        const size_t uLength = BytesOfHex(strText.substr(strText.find(':') + 1)).size();
        EXPECT_LT(uLength, 40U);
        auLengths.insert(uLength);
    }
    EXPECT_GT(auLengths.size(), 3U);
}

TEST(Faults, AnswersAreDamagedAsGiven) {
    ModemBench stBench("[[fault]]\nkind = \"corrupt\"\noffset = 38\nbytes = \"AA BB CC DD\"\n");
    AskValue(stBench, 1);
    EXPECT_EQ(stBench.Messages(), Told({"29/2: 00*4 20 00*3 00*20 01 00*3 00*6 AA BB"}));
}

TEST(Faults, AnswersAreDamagedAnywhereAndKeepTheirHeaderAndLength) {
    const std::vector<std::string> astrTexts = EightAnswers("[[fault]]\nkind = \"corrupt\"\n");
    ASSERT_EQ(astrTexts.size(), 8U);
    for (int i = 0; i < 8; ++i) {
        EXPECT_NE(astrTexts[i].substr(astrTexts[i].find(' ') + 1), AnswerTo(i));
        EXPECT_NE(astrTexts[i].find(" 29/2:"), std::string::npos);
        EXPECT_EQ(BytesOfHex(astrTexts[i].substr(astrTexts[i].find(':') + 1)).size(), 40U);
    }
}

TEST(Faults, AWildCountStandsWhereItIsWanted) {
    ModemBench stBench("[[fault]]\nkind = \"corrupt\"\noffset = 8\n");
    AskValue(stBench, 1);
    const std::string strText = stBench.Messages().at(0);
    EXPECT_NE(strText, AnswerTo(1));
    std::vector<uint8_t> aucBytes = BytesOfHex(strText.substr(strText.find(':') + 1));
    std::fill_n(aucBytes.begin() + 8, 4, uint8_t{0});
    EXPECT_EQ("29/2: " + HexOf(aucBytes), AnswerTo(1));
}

TEST(Faults, AMessageWithoutAPayloadSurvivesEveryFault) {
    ModemBench stBench("[[fault]]\nkind = \"corrupt\"\n[[fault]]\nkind = \"truncate\"\n"
                       "[[fault]]\nkind = \"corrupt\"\nbytes = \"01\"\n");
    EXPECT_EQ(stBench.Send(36, 1), 0);
    EXPECT_EQ(stBench.Messages(), Told({"36/2:"}));
}

TEST(Faults, AMessageGoesThroughAllFaultsInTheirOrder) {
    ModemBench stBench("[[fault]]\nkind = \"truncate\"\nlength = 6\n"
                       "[[fault]]\nkind = \"delay\"\nseconds = 3\n"
                       "[[fault]]\nkind = \"repeat\"\n");
    AskValue(stBench, 1);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"3.00 29/2: 00*4 20 00", "3.00 29/2: 00*4 20 00"}));
}

TEST(Faults, SendsFailWithTheirCodeAndDoNothing) {
    ModemBench stBench("[[fault]]\nkind = \"fail\"\ntype = 29\ncode = -76\ncount = 1\n");
    EXPECT_EQ(stBench.Send(36, 1), 0);
    EXPECT_EQ(AskValue(stBench, 1), -76);
    EXPECT_EQ(AskValue(stBench, 2), 0);
    EXPECT_EQ(stBench.Messages(), Told({"36/2:", AnswerTo(2)}));
}

// Requests that the library itself refuses.

TEST(Requests, UnknownTypesAndSubtypesAreRefused) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(0, 0), -5);
    EXPECT_EQ(stBench.Send(5, 1), -5);
    EXPECT_EQ(stBench.Send(2, 9), -5);
    EXPECT_EQ(stBench.Send(65535, 65535), -5);
}

TEST(Requests, WrongLengthsAreRefused) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(2, 2, "00*3"), -4);
    EXPECT_EQ(stBench.Send(2, 2, "00*5"), -4);
    EXPECT_EQ(stBench.Send(2, 2), -4);
    EXPECT_EQ(stBench.Send(1, 1, "00*143"), -4);
    EXPECT_EQ(stBench.Send(30, 1, "00"), -4);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Requests, NoMessageAndImpossibleLengthsAreRefused) {
    ModemBench stBench("");
    uint8_t aucMessage[4] = {36, 0, 1, 0};
    EXPECT_EQ(stBench.TheModem().Send(nullptr, 4), -3);
    EXPECT_EQ(stBench.TheModem().Send(aucMessage, 3), -4);
    EXPECT_EQ(stBench.TheModem().Send(aucMessage, 0), -4);
    EXPECT_EQ(stBench.TheModem().Send(aucMessage, 10245), -4);
    EXPECT_EQ(stBench.TheModem().Send(aucMessage, 0xFFFFFFFF), -4);
    EXPECT_EQ(stBench.TheModem().Send(aucMessage, 4), 0);
}

TEST(Requests, ARequestThatIsAnsweredAtOnceHasItsAnswerInTheSendersBuffer) {
    ModemBench stBench("");
    stBench.TheModem().OnAnsweredAtOnce(35, 1, [](const Request &stRequest) {
        stRequest.stReply.Set(2, static_cast<uint8_t>(stRequest.stPayload.At(0) + 1));
        return stRequest.stReply.u32Length == 10240 ? 0 : -1;
    });
    WiMAXMessage stMessage{};
    BytesOf(stMessage).Set(0, 35);
    BytesOf(stMessage).Set(2, 1);
    stMessage.aucData[0] = 7;
    EXPECT_EQ(stBench.TheModem().Send(BytesOf(stMessage).pucData, 5), 0);
    EXPECT_EQ(stMessage.aucData[2], 8);
}

// Messages by event.

TEST(Events, AnyMessageCanBeSent) {
    ModemBench stBench(
        "[[event]]\nat = 2\nkind = \"message\"\nbytes = \"FF010203 AA-BB:CC\"\n"
        "[[event]]\nat = 1\nkind = \"message\"\nbytes = \"\"\"\n15 00\n05 00\"\"\"\n");
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 21/5:", "2.00 511/770: AA BB CC"}));
}

TEST(Events, IPFilterStatusIsReported) {
    ModemBench stBench("[[event]]\nat = 1\nkind = \"ip-filter-status\"\nstatus = 4\n");
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({"13/6: 04 00 00 00"}));
}

TEST(Events, NothingGetsThroughAfterTheDeviceIsUnloaded) {
    ModemBench stBench("[[event]]\nat = 1\nkind = \"device-unload\"\n"
                       "[[event]]\nat = 2\nkind = \"ip-filter-status\"\n");
    stBench.RunUntil(0.5);
    EXPECT_FALSE(stBench.TheModem().Unloaded());
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({"12/2:"}));
    EXPECT_TRUE(stBench.TheModem().Unloaded());
    EXPECT_EQ(stBench.Send(36, 1), -1);
}

TEST(Events, AnswersTakeTheirTimeAndKeepTheirOrder) {
    ModemBench stBench("[device]\nanswer-delay = 0.25\n");
    stBench.Send(36, 1);
    AskValue(stBench, 3);
    stBench.RunUntil(0.24);
    EXPECT_EQ(stBench.Messages(), Told({}));
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.25 36/2:", "0.25 " + AnswerTo(3)}));
}

TEST(Restart, BringsBackTheStateAtStart) {
    ModemBench stBench("");
    AskValue(stBench, 9);
    stBench.TheModem().Restart();
    stBench.Send(29, 3, "00*40");
    EXPECT_EQ(stBench.Messages(), Told({AnswerTo(9), "29/3: 00*4 3B 00*3 00*20 01 00*3 00*8"}));
}

} // namespace

#include "ClassifierRules.h"

#include "ServiceFlows.h"
#include "TestConsole.h"

namespace {

// The dialogue of one rule, on a record of which nothing else is filled in.
class ClassifierRulesTest : public ConsoleTest {
  protected:
    Record<8472> stRecord;

    Bytes Filled() const { return {stRecord.aucBytes, stRecord.aucBytes + sizeof stRecord}; }

    std::string EnterRule(uint32_t u32RuleIndex, uint32_t u32QoSBits, bool bAskAll,
                          std::string_view strTyped) {
        return PrintedBy(
            [&] { EnterClassifierRuleParams(stRecord.Span(), u32RuleIndex, u32QoSBits, bAskAll); },
            strTyped);
    }
};

constexpr const char *pcPriority = "\nWould you like to change Classifier Rule priority (1-Yes and "
                                   "0-No)";
constexpr const char *pcProtocol = "\nWould you like to change Protocol (1-Yes and 0-No)";
constexpr const char *pcMatchQuestions =
    "\nWould you like to enter  IP masked source address (1-Yes and 0-No)"
    "\nWould you like to enter  IP Masked Destination Address (1-Yes and 0-No)"
    "\nWould you like to enter  Protocol Source Port Range (1-Yes and 0-No)"
    "\nWould you like to enter  Protocol Dest Port Range (1-Yes and 0-No)"
    "\nWould you like to enter  Ethernet Source MAC Address (1-Yes and 0-No)"
    "\nWould you like to enter  Ethernet Dest Mac Address (1-Yes and 0-No)";

// Every group with the bytes of its rule, and the rule's last 542 bytes.
constexpr const char *pcFullRule = "00*10 07 00*4 11 | 02 0a 01 00*30 | 02 c0 a8 00*30 | "
                                   "02 13 c4 00*2 | 01 50 00*3 | 04 dd ee ff 01 00*8 | "
                                   "03 aa bb cc 00*9 | 00*542 ";

TEST_F(ClassifierRulesTest, EveryGroupIsAskedForAndStored) {
    EXPECT_EQ(EnterRule(1, 1, false,
                        "1 7 1 11 1 2 0a 1 1 2 c0 a8 1 2 13 c4 1 1 50 1 3 aa bb cc "
                        "1 4 dd ee ff 1\n"),
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
              "\nPlz enter length of IP Masked Destination Address <32 that you would like to enter"
              "Plz enter the 1 element of the Masked Destination Address \n"
              "Plz enter the 2 element of the Masked Destination Address \n"
              "\nWould you like to enter  Protocol Source Port Range (1-Yes and 0-No)"
              "\nPlz enter length of Protocol Source Port Range <4 that you would like to enter"
              "\nPlz enter the 1 element of the Protocol Source Port Range"
              "\nPlz enter the 2 element of the Protocol Source Port Range"
              "\nWould you like to enter  Protocol Dest Port Range (1-Yes and 0-No)"
              "\nPlz enter length of Protocol Dest Port Range <4 that you would like to enter"
              "\nPlz enter the 1 element of the Protocol Dest Port Range"
              "\nWould you like to enter  Ethernet Source MAC Address (1-Yes and 0-No)"
              "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter"
              "\nPlz enter the 1 element of the Ethernet Source MAC Address"
              "\nPlz enter the 2 element of the Ethernet Source MAC Address"
              "\nPlz enter the 3 element of the Ethernet Source MAC Address"
              "\nWould you like to enter  Ethernet Dest Mac Address (1-Yes and 0-No)"
              "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter"
              "\nPlz enter the 1 element of the Ethernet Dest Mac Address"
              "\nPlz enter the 2 element of the Ethernet Dest Mac Address"
              "\nPlz enter the 3 element of the Ethernet Dest Mac Address"
              "\nPlz enter the 4 element of the Ethernet Dest Mac Address");
    EXPECT_EQ(Filled(), Message(std::string("00*8 | 00*176 00*660 | ") + pcFullRule +
                                "| 00*1320 | 00*2816 00*2816 00*16"));
}

TEST_F(ClassifierRulesTest, WithoutQuestionsEveryGroupIsPrompted) {
    EXPECT_EQ(EnterRule(3, 1, true, "9 6 0 0 0 0 0 0\n"),
              "\nClassifier Rule priority (0-255): "
              "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile Ipv6 - "
              "0x87) : "
              "\nPlz enter length of IP masked source address <32 that you would like to enter"
              "\nPlz enter length of IP Masked Destination Address <32 that you would like to enter"
              "\nPlz enter length of Protocol Source Port Range <4 that you would like to enter"
              "\nPlz enter length of Protocol Dest Port Range <4 that you would like to enter"
              "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter"
              "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter");
    EXPECT_EQ(Filled(), Message("00*8 | 00*176 00*1980 | 00*10 09 00*4 06 00*644 | 00*5648"));
}

TEST_F(ClassifierRulesTest, NoToEveryQuestionStoresNothing) {
    EXPECT_EQ(EnterRule(0, 7, false, "0 0 0 0 0 0 0 0\n"),
              std::string(pcPriority) + pcProtocol + pcMatchQuestions);
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, SetsFourAndOneAreFilledAndTwoIsNot) {
    EnterRule(0, 5, false, "1 9 1 6 1 1 1ff 0 0 0 0 0\n");
    const std::string strRule = "00*10 09 00*4 06 | 01 ff 00*31 | 00*611";
    EXPECT_EQ(Filled(), Message("00*8 | 00*176 " + strRule + " 00*1980 | 00*2816 | 00*176 " +
                                strRule + " 00*1980 | 00*16"));
}

TEST_F(ClassifierRulesTest, SetTwoAloneIsTheMiddleOne) {
    EnterRule(0, 2, false, "1 9 0 0 0 0 0 0 0\n");
    EXPECT_EQ(Filled(), Message("00*8 00*2816 | 00*176 00*10 09 00*2629 | 00*2816 00*16"));
}

TEST_F(ClassifierRulesTest, WithoutASetThePromptsRunAndNothingIsStored) {
    EXPECT_EQ(EnterRule(0, 0, false, "1 9 0 0 0 0 0 0 0\n"),
              std::string(pcPriority) + "\nClassifier Rule priority (0-255): " + pcProtocol +
                  pcMatchQuestions);
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, AnyNumberButZeroMeansYes) {
    EnterRule(0, 1, false, "-5 9 0 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[8 + 176 + 10], 9);
}

TEST_F(ClassifierRulesTest, ThePriorityIsStoredAsItsLowByte) {
    EnterRule(0, 1, false, "1 515 0 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[8 + 176 + 10], 3);
}

TEST_F(ClassifierRulesTest, AProtocolThatIsNoNumberStoresTheAnswerBeforeIt) {
    constexpr uint32_t u32Protocol = 8 + 176 + 15;
    EnterRule(0, 1, false, "0 1 zz 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[u32Protocol], 1);
    EnterRule(0, 1, false, "1 9 261 zz 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[u32Protocol], 5);
    EnterRule(0, 1, true, "77 zz 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[u32Protocol], 77);
}

TEST_F(ClassifierRulesTest, AProtocolIsStoredAsItsLowByte) {
    EnterRule(0, 1, false, "0 1 0x13a 0 0 0 0 0 0\n");
    EXPECT_EQ(stRecord.aucBytes[8 + 176 + 15], 0x3A);
}

TEST_F(ClassifierRulesTest, AnAddressTakesThirtyTwoBytes) {
    EnterRule(0, 1, true,
              "0 0 32 1 2 3 4 5 6 7 8 9 a b c d e f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e "
              "1f 20 32 20 1f 1e 1d 1c 1b 1a 19 18 17 16 15 14 13 12 11 10 f e d c b a 9 8 7 6 5 "
              "4 3 2 1 0 0 0 0\n");
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(Filled(),
              Message("00*8 00*176 00*16 | 20 0102030405060708090a0b0c0d0e0f10"
                      "1112131415161718191a1b1c1d1e1f20 | "
                      "20 201f1e1d1c1b1a191817161514131211100f0e0d0c0b0a090807060504030201 | "
                      "00*578 00*1980 | 00*5648"));
}

TEST_F(ClassifierRulesTest, ThirtyThreeBytesOfAnAddressAreOutOfRange) {
    EXPECT_EQ(EnterRule(0, 1, true, "0 0 33 33 0 0 0 0\n"),
              "\nClassifier Rule priority (0-255): "
              "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile Ipv6 - "
              "0x87) : "
              "\nPlz enter length of IP masked source address <32 that you would like to enter"
              "Value entered is out of range\n"
              "\nPlz enter length of IP Masked Destination Address <32 that you would like to enter"
              "Value entered is out of range\n"
              "\nPlz enter length of Protocol Source Port Range <4 that you would like to enter"
              "\nPlz enter length of Protocol Dest Port Range <4 that you would like to enter"
              "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter"
              "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter");
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, PortsAndMacAddressesTakeFourBytes) {
    EnterRule(0, 1, true, "0 0 0 0 4 1 2 3 4 4 5 6 7 8 4 9 a b c 4 d e f 10\n");
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(Filled(), Message("00*8 00*176 00*82 | 04 01020304 | 04 05060708 | "
                                "04 0d0e0f10 00*8 | 04 090a0b0c 00*8 | 00*542 00*1980 00*5648"));
}

TEST_F(ClassifierRulesTest, FiveBytesOfPortsAndAWholeMacAddressAreOutOfRange) {
    EXPECT_EQ(EnterRule(0, 1, true, "0 0 0 0 5 5 6 12\n"),
              "\nClassifier Rule priority (0-255): "
              "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile Ipv6 - "
              "0x87) : "
              "\nPlz enter length of IP masked source address <32 that you would like to enter"
              "\nPlz enter length of IP Masked Destination Address <32 that you would like to enter"
              "\nPlz enter length of Protocol Source Port Range <4 that you would like to enter"
              "Value entered is out of range\n"
              "\nPlz enter length of Protocol Dest Port Range <4 that you would like to enter"
              "Value entered is out of range\n"
              "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter"
              "Value entered is out of range\n"
              "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter"
              "Value entered is out of range\n");
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, FiveBytesOfAMacAddressAreOutOfRangeAlready) {
    const std::string strPrinted = EnterRule(0, 1, true, "0 0 0 0 0 0 5 5 1 1 1 1 1 1\n");
    EXPECT_NE(
        strPrinted.find(
            "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter"
            "Value entered is out of range\n"
            "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter"
            "Value entered is out of range\n"),
        std::string::npos);
    EXPECT_EQ(Unread(), " 1 1 1 1 1 1\n");
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, ALengthOfZeroReplacesTheOldOneAndAsksNothing) {
    stRecord.aucBytes[8 + 176 + 16] = 7;
    EnterRule(0, 1, false, "0 0 1 0 0 0 0 0 0\n");
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierRulesTest, ANegativeLengthIsStoredAndAsksNothing) {
    EnterRule(0, 1, false, "0 0 1 -2 0 0 0 0 0\n");
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(Filled(), Message("00*8 00*176 00*16 fe 00*643 00*1980 00*5648"));
}

TEST_F(ClassifierRulesTest, AnElementThatIsNoNumberRepeatsTheOneBefore) {
    // The word stays, so that it also is what the next question reads.
    EnterRule(0, 1, false, "0 0 1 3 a1 zz 0 0 0 0\n");
    EXPECT_EQ(Unread(), "\n");
    EXPECT_EQ(Filled(), Message("00*8 00*176 00*16 03 a1*3 00*640 00*1980 00*5648"));
}

TEST_F(ClassifierRulesTest, AFirstElementThatIsNoNumberIsZero) {
    stRecord.aucBytes[8 + 176 + 17] = 0x77;
    EnterRule(0, 1, false, "0 0 1 1 zz 0 0 0 0\n");
    EXPECT_EQ(Filled(), Message("00*8 00*176 00*16 01 00*643 00*1980 00*5648"));
}

TEST_F(ClassifierRulesTest, TheRuleOfAnAddRequestAsksForThePagingPreferenceInBetween) {
    EXPECT_EQ(PrintedBy(
                  [&] {
                      EnterAddedClassifierRule({stRecord.Span(), 1}, 0);
                  },
                  "300 zz 257 0 0 0 0 0 0\n"),
              std::string("\nClassifier Rule priority (0-255): "
                          "\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile "
                          "Ipv6 - 0x87) : "
                          "\nPaging Preference (0 - 1): ") +
                  pcMatchQuestions);
    EXPECT_EQ(Filled(), Message("00*8 | 00*118 01 00*57 | 00*10 2c 00*649 | 00*1980 00*5648"));
}

// What a change request does with its rules. The active set says how many there
// are.
class ClassifierActionTest : public ClassifierRulesTest {
  protected:
    int32_t iResult = 0;

    std::string Act(uint8_t u8Rules, std::string_view strTyped) {
        stRecord.aucBytes[5640 + 173] = u8Rules;
        return PrintedBy([&] { iResult = EnterClassifierAction(stRecord.Span(), 3); }, strTyped);
    }
    // The provisioned and the admitted set with these rules, and the count.
    static Bytes RulesOfBoth(const std::string &strRules, const std::string &strCount) {
        return Message("00*8 | 00*176 " + strRules + " | 00*176 " + strRules + " | 00*173 " +
                       strCount + " 00*2642 00*16");
    }
};

constexpr const char *pcRuleQuestion =
    "\nWould you like to enter Classifier Rule  (1-Yes and 0-No)";
constexpr const char *pcActionQuestion =
    "\nPlease Enter classfier action(0 - Add 1 - Replace and 2- Delete)";
constexpr const char *pcReplaceQuestion =
    "\n Please Enter classifer rule Number to be changed(1~3):";
constexpr const char *pcDeleteQuestion = "\n Please Enter classifer rule Number to be changed";

TEST_F(ClassifierActionTest, NoRuleLeavesARecordWithoutRulesAlone) {
    EXPECT_EQ(Act(0, "0\n"), pcRuleQuestion);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), Message("00*8472"));
}

TEST_F(ClassifierActionTest, NoRuleMarksThoseThatAreThereAsReplaced) {
    EXPECT_EQ(Act(2, "0\n"), pcRuleQuestion);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("01 00*659 01 00*659 00*1320", "02"));
}

TEST_F(ClassifierActionTest, NoRuleStaysInsideTheSetWhateverTheCount) {
    Act(255, "0\n");
    EXPECT_EQ(Filled(), RulesOfBoth("01 00*659 01 00*659 01 00*659 01 00*659", "ff"));
}

TEST_F(ClassifierActionTest, AddingTakesTheRuleBehindTheLast) {
    EXPECT_EQ(Act(3, "1 0 1 9 0 0 0 0 0 0 0\n"),
              std::string(pcRuleQuestion) + pcActionQuestion + pcPriority +
                  "\nClassifier Rule priority (0-255): " + pcProtocol + pcMatchQuestions);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("00*1980 00*10 09 00*649", "03"));
}

TEST_F(ClassifierActionTest, AFifthRuleIsRefused) {
    EXPECT_EQ(Act(4, "1 0\n"), std::string(pcRuleQuestion) + pcActionQuestion +
                                   "Limit of num of classifier rules are reached\n");
    EXPECT_EQ(iResult, -1);
}

TEST_F(ClassifierActionTest, ReplacingAsksForTheRuleOfThatNumber) {
    EXPECT_EQ(Act(2, "1 1 2 1 9 0 0 0 0 0 0 0\n"),
              std::string(pcRuleQuestion) + pcActionQuestion + pcReplaceQuestion + pcPriority +
                  "\nClassifier Rule priority (0-255): " + pcProtocol + pcMatchQuestions);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("00*660 01 00*9 09 00*649 00*1320", "02"));
}

TEST_F(ClassifierActionTest, DeletingAsksForNothingMore) {
    EXPECT_EQ(Act(2, "1 2 2\n"), std::string(pcRuleQuestion) + pcActionQuestion + pcDeleteQuestion);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("00*660 02 00*659 00*1320", "02"));
}

TEST_F(ClassifierActionTest, TheFirstRuleIsNumberOne) {
    Act(1, "1 1 1 1 9 0 0 0 0 0 0 0\n");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("01 00*9 09 00*649 00*1980", "01"));
    Act(1, "1 2 1\n");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(Filled(), RulesOfBoth("02 00*9 09 00*649 00*1980", "01"));
}

TEST_F(ClassifierActionTest, TheBitsOfTheActionDecide) {
    for (const char *pcAction : {"3", "5", "-1"}) {
        EXPECT_EQ(Act(0, std::string("1 ") + pcAction + " 1\n"),
                  std::string(pcRuleQuestion) + pcActionQuestion + pcReplaceQuestion +
                      "\nwrong Option");
        EXPECT_EQ(iResult, -1);
    }
    for (const char *pcAction : {"2", "6", "-2"}) {
        EXPECT_EQ(Act(0, std::string("1 ") + pcAction + " 1\n"),
                  std::string(pcRuleQuestion) + pcActionQuestion + pcDeleteQuestion +
                      "\nwrong Option");
        EXPECT_EQ(iResult, -1);
    }
    for (const char *pcAction : {"4", "8", "-4"}) {
        EXPECT_EQ(Act(0, std::string("1 ") + pcAction + "\n"),
                  std::string(pcRuleQuestion) + pcActionQuestion + "Invalid Option\n");
        EXPECT_EQ(iResult, -1);
    }
}

TEST_F(ClassifierActionTest, RuleNumbersThatAreNoneAreRefused) {
    for (const char *pcNumber : {"3", "0", "-1", "-2147483648", "2147483647"}) {
        for (const char *pcAction : {"1", "2"}) {
            const std::string strPrinted =
                Act(2, std::string("1 ") + pcAction + " " + pcNumber + "\n");
            EXPECT_EQ(strPrinted.substr(strPrinted.rfind('\n')), "\nwrong Option");
            EXPECT_EQ(iResult, -1);
            EXPECT_EQ(Filled(), RulesOfBoth("00*2640", "02"));
        }
    }
}

} // namespace

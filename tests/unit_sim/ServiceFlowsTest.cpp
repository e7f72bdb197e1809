// Service flows: adding, changing and deleting them, what is refused, and the list
// of flows.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

constexpr int iBE = 2;
constexpr int iNRTPS = 3;
constexpr int iRTPS = 4;
constexpr int iERTPS = 5;
constexpr int iUGS = 6;

// Answers from the station at once.
const std::string strFlows = strLinkUp + "[service-flows]\ntransaction-time = 0\n";

std::string Number(uint32_t u32Value, int iWidth) {
    std::string strHex;
    for (int i = 0; i < iWidth; ++i) {
        char acByte[8];
        (void)std::snprintf(acByte, sizeof acByte, " %02X", u32Value >> (8 * i) & 0xFF);
        strHex += acByte;
    }
    return strHex;
}

// One set as an add request has it, with one empty rule.
struct Parameters {
    int iType = iBE;
    uint32_t u32Max = 0;
    uint32_t u32Min = 0;
    uint32_t u32Jitter = 0;
    uint32_t u32Latency = 0;
    int iSets = 7;
    int iPriority = 0;
    int iCS = 1;
    int iPaging = 0;
    std::string strRule = "00 FF 00*658"; // 660 bytes
};

std::string AddRequest(int iDirection, const Parameters &stFlow) {
    return "0B" + Number(static_cast<uint32_t>(iDirection), 1) + " 05 00 00*4 00*4" +
           Number(stFlow.u32Max, 4) + " 00*4" + Number(stFlow.u32Min, 4) +
           Number(stFlow.u32Jitter, 4) + Number(stFlow.u32Latency, 4) + " 00 00 FF FF 00*79" +
           Number(static_cast<uint32_t>(stFlow.iSets), 1) +
           Number(static_cast<uint32_t>(stFlow.iPriority), 1) +
           Number(static_cast<uint32_t>(stFlow.iType), 1) + " 10 00 31 00 00 00" +
           Number(static_cast<uint32_t>(stFlow.iCS), 1) + " FF" +
           Number(static_cast<uint32_t>(stFlow.iPaging), 1) + " 00*10 01 00*43 01 01 00 " +
           stFlow.strRule + " 00*1980 00*4";
}

// A change of the active set alone; the text is its bytes from 107 on, where nothing
// else is said, and its first rule.
std::string ChangeRequest(uint32_t u32SFID, uint32_t u32CID, int iDirection,
                          const std::string &strRates = "00*20",
                          const std::string &strFrom107 = "04 00 00 00 00*63",
                          const std::string &strRule = "00*660") {
    return "0E" + Number(static_cast<uint32_t>(iDirection), 1) + " 09 00" + Number(u32CID, 2) +
           " 00 00 00*2816 00*2816" + Number(u32SFID, 4) + " " + strRates + Number(u32CID, 2) +
           " 00*81 " + strFrom107 + " 01 00 " + strRule + " 00*1980 00*16";
}

std::string DeleteRequest(uint32_t u32SFID) { return "11 00 07 00" + Number(u32SFID, 4); }

// The only message since the last call, as bytes behind "TYPE/SUBTYPE:".
struct Answer {
    std::string strKind;
    std::vector<uint8_t> aucBytes;

    uint32_t At(size_t uOffset, int iWidth) const {
        uint32_t u32Value = 0;
        for (int i = iWidth - 1; i >= 0; --i) {
            u32Value = u32Value << 8 | aucBytes.at(uOffset + static_cast<size_t>(i));
        }
        return u32Value;
    }
    uint32_t Code() const { return At(8468, 1); }
};

Answer AnswerOf(ModemBench *pstBench) {
    pstBench->Pass();
    const std::vector<std::string> astrTexts = pstBench->Messages();
    EXPECT_EQ(astrTexts.size(), 1U);
    if (astrTexts.empty()) {
        return {"", std::vector<uint8_t>(8472)};
    }
    const size_t uColon = astrTexts[0].find(':');
    return {astrTexts[0].substr(0, uColon), BytesOfHex(astrTexts[0].substr(uColon + 1))};
}

uint32_t CodeOfAdd(ModemBench *pstBench, int iDirection, const Parameters &stFlow) {
    EXPECT_EQ(pstBench->Send(6, 1, AddRequest(iDirection, stFlow)), 0);
    const Answer stAnswer = AnswerOf(pstBench);
    EXPECT_EQ(stAnswer.strKind, "6/1");
    return stAnswer.Code();
}

uint32_t CodeOfChange(ModemBench *pstBench, const std::string &strRequest) {
    EXPECT_EQ(pstBench->Send(6, 3, strRequest), 0);
    const Answer stAnswer = AnswerOf(pstBench);
    EXPECT_EQ(stAnswer.strKind, "6/3");
    return stAnswer.Code();
}

std::vector<uint32_t> ListedSFIDs(ModemBench *pstBench) {
    EXPECT_EQ(pstBench->Send(24, 2, "DF 05 00*25"), 0);
    const Answer stAnswer = AnswerOf(pstBench);
    std::vector<uint32_t> au32SFIDs;
    for (uint32_t i = 0; i < stAnswer.At(26, 4); ++i) {
        au32SFIDs.push_back(stAnswer.At(30 + size_t{136} * i, 4));
    }
    EXPECT_EQ(stAnswer.At(21, 4), 4 + 136 * au32SFIDs.size());
    return au32SFIDs;
}

TEST(ServiceFlows, AnAddedFlowGetsAnSFIDAndACIDInEachOfItsSets) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(stBench.Send(6, 1,
                           AddRequest(1, {.iType = iUGS,
                                          .u32Max = 0x12345,
                                          .u32Jitter = 3,
                                          .u32Latency = 0x20,
                                          .iSets = 6})),
              0);
    const std::string strSet = " 01 00 00 00 45 23 01 00 00*8 03 00 00 00 20 00 00 00 00 10 FF FF"
                               " 00*79 06 00 06 10 00 31 00 00 00 01 FF 00*11 01 00*43 01 01 00"
                               " 00 FF 00*658 00*1980";
    stBench.Pass();
    EXPECT_EQ(stBench.Messages(),
              Told({"6/1: 0B 01 05 00 00 10 00 00 00*2816" + strSet + strSet + " 00*16"}));
}

TEST(ServiceFlows, EachDirectionHasItsConnections) {
    ModemBench stBench(strFlows);
    const std::pair<int, uint32_t> aiExpected[] = {
        {0, 0x2000}, {1, 0x1000}, {0, 0x2001}, {1, 0x1001}};
    uint32_t u32SFID = 0;
    for (const auto &[iDirection, u32CID] : aiExpected) {
        EXPECT_EQ(stBench.Send(6, 1, AddRequest(iDirection, {.iSets = 1})), 0);
        const Answer stAnswer = AnswerOf(&stBench);
        EXPECT_EQ(stAnswer.Code(), 0U);
        EXPECT_EQ(stAnswer.At(1, 1), static_cast<uint32_t>(iDirection));
        EXPECT_EQ(stAnswer.At(8, 4), ++u32SFID);
        EXPECT_EQ(stAnswer.At(8 + 24, 2), u32CID);
        // Only the provisioned set is there.
        EXPECT_EQ(stAnswer.At(8 + 174, 1), 1U);
        EXPECT_EQ(stAnswer.At(2824 + 174, 1), 0U);
        EXPECT_EQ(stAnswer.At(5640 + 174, 1), 0U);
    }
    EXPECT_EQ(ListedSFIDs(&stBench), (std::vector<uint32_t>{1, 2, 3, 4}));
}

TEST(ServiceFlows, EverySchedulingTypeIsTaken) {
    ModemBench stBench(strFlows);
    for (const int iType : {iBE, iNRTPS, iRTPS, iERTPS, iUGS}) {
        EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iType, .u32Max = 64000}), 0U) << iType;
    }
    EXPECT_EQ(ListedSFIDs(&stBench).size(), 5U);
}

TEST(ServiceFlows, WithoutALinkNothingIsAdded) {
    for (const char *pcScenario :
         {"", "[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n",
          "[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n"}) {
        ModemBench stBench(std::string(pcFourStations) + pcScenario);
        EXPECT_EQ(CodeOfAdd(&stBench, 0, {}), 12U);
        EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(1, 0, 0)), 1U);
        EXPECT_EQ(ListedSFIDs(&stBench), std::vector<uint32_t>{});
    }
}

TEST(ServiceFlows, TheStationTakesItsTime) {
    ModemBench stBench(strLinkUp + "[service-flows]\ntransaction-time = 0.4\n");
    EXPECT_EQ(stBench.Send(6, 1, AddRequest(0, {})), 0);
    stBench.RunUntil(0.39);
    EXPECT_EQ(stBench.Messages(), std::vector<std::string>{});
    stBench.RunUntil(0.41);
    EXPECT_EQ(AnswerOf(&stBench).Code(), 0U);
    // The link goes before the answer comes.
    EXPECT_EQ(stBench.Send(6, 1, AddRequest(0, {})), 0);
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.Pass();
    EXPECT_EQ(stBench.Messages().size(), 1U);
    stBench.RunUntil(2);
    EXPECT_EQ(AnswerOf(&stBench).Code(), 12U);
}

TEST(ServiceFlows, ParametersThatContradictEachOtherAreRefused) {
    struct Case {
        const char *pcWhat;
        Parameters stFlow;
        uint32_t u32Code;
    };
    const Case astCases[] = {
        {"least rate above the most", {.iType = iRTPS, .u32Max = 99, .u32Min = 100}, 2},
        {"least rate at the most", {.iType = iRTPS, .u32Max = 100, .u32Min = 100}, 0},
        {"least rate, no most", {.iType = iRTPS, .u32Min = 100}, 0},
        {"jitter above the latency", {.iType = iERTPS, .u32Jitter = 11, .u32Latency = 10}, 2},
        {"UGS without a rate", {.iType = iUGS}, 8},
        {"type 1", {.iType = 1}, 17},
        {"type 7", {.iType = 7}, 17},
        {"no set", {.iSets = 0}, 8},
        {"sets 9", {.iSets = 9}, 17},
        {"priority 8", {.iPriority = 8}, 17},
        {"priority 7", {.iPriority = 7}, 0},
        {"paging preference 2", {.iPaging = 2}, 17},
        {"CS 16", {.iCS = 16}, 17},
        // The source port range, 0x1000 down to 0x0FFF, and the same upwards.
        {"ports backwards", {.strRule = "00 FF 00*80 04 10 00 0F FF 00*573"}, 17},
        {"ports", {.strRule = "00 FF 00*80 04 0F FF 10 00 00*573"}, 0},
        {"address of 33 bytes", {.strRule = "00 FF 00*14 21 00*643"}, 17},
    };
    ModemBench stBench(strFlows);
    for (const Case &stCase : astCases) {
        EXPECT_EQ(CodeOfAdd(&stBench, 0, stCase.stFlow), stCase.u32Code) << stCase.pcWhat;
    }
    EXPECT_EQ(CodeOfAdd(&stBench, 2, {}), 17U);
}

TEST(ServiceFlows, CapacityIsReservedByDirectionAndGivenBack) {
    ModemBench stBench(strFlows + "downlink-capacity = 1000\nuplink-capacity = 500\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iUGS, .u32Max = 700}), 0U); // SFID 1
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iRTPS, .u32Max = 900, .u32Min = 301}), 3U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Max = 900, .u32Min = 301}), 0U); // 2
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iRTPS, .u32Max = 900, .u32Min = 300}), 0U); // 3
    // Best effort and what is only provisioned take nothing.
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.u32Max = 9999}), 0U);                            // 4
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iUGS, .u32Max = 9999, .iSets = 1}), 0U); // 5
    EXPECT_EQ(stBench.Send(6, 2, DeleteRequest(1)), 0);
    EXPECT_EQ(AnswerOf(&stBench).Code(), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iNRTPS, .u32Max = 900, .u32Min = 700}), 0U);
    EXPECT_EQ(ListedSFIDs(&stBench), (std::vector<uint32_t>{2, 3, 4, 5, 6}));
    // The most rate of an active flow grows beyond what there is.
    EXPECT_EQ(
        CodeOfChange(&stBench, ChangeRequest(2, 0x1000, 1, "F4 01 00 00 00*4 F5 01 00 00 00*8",
                                             "04 00 04 00 00*63")),
        2U);
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(2, 0x1000, 1, "00*8 F5 01 00 00 00*8",
                                                   "04 00 04 00 00*63")),
              3U);
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(2, 0x1000, 1, "00*8 F4 01 00 00 00*8",
                                                   "04 00 04 00 00*63")),
              0U);
}

TEST(ServiceFlows, ThereIsAMostOfFlows) {
    ModemBench stBench(strFlows + "most-flows = 2\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {}), 13U);
}

TEST(ServiceFlows, AChangeKeepsWhatItDoesNotState) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(
        CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Max = 900, .u32Min = 300, .iPriority = 4}), 0U);
    // A retransmission policy of 3.
    EXPECT_EQ(stBench.Send(6, 3, ChangeRequest(1, 0x1000, 1, "00*20", "04 00 00 03 00*63")), 0);
    Answer stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(0, 4), 0x0009010EU);
    EXPECT_EQ(stAnswer.At(5640 + 4, 4), 900U);
    EXPECT_EQ(stAnswer.At(5640 + 12, 4), 300U);
    EXPECT_EQ(stAnswer.At(5640 + 108, 1), 4U);
    EXPECT_EQ(stAnswer.At(5640 + 109, 1), 4U);
    EXPECT_EQ(stAnswer.At(5640 + 110, 1), 3U);
    EXPECT_EQ(stAnswer.At(2824 + 110, 1), 16U); // the admitted set as it was
    // A scheduling type brings its rates.
    EXPECT_EQ(stBench.Send(6, 3, ChangeRequest(1, 0, 1, "58 02 00 00 00*16", "04 00 02 00 00*63")),
              0);
    stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 4, 4), 600U);
    EXPECT_EQ(stAnswer.At(5640 + 12, 4), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 109, 1), 2U);
}

TEST(ServiceFlows, AChangeOfAnUnknownOrAnotherFlowIsRefused) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {}), 0U);
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(2, 0, 1)), 6U);
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(1, 0, 0)), 2U);      // other direction
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(1, 0x1001, 1)), 2U); // other connection
    EXPECT_EQ(CodeOfChange(&stBench, ChangeRequest(1, 0x1000, 1)), 0U);
}

TEST(ServiceFlows, AChangeWithoutSetsLeavesOnlyWhatIsProvisioned) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iSets = 7}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iSets = 6}), 0U);
    EXPECT_EQ(stBench.Send(6, 3, "0E 01 09 00 00 10 00 00 00*8464"), 0);
    const Answer stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(8 + 174, 1), 1U);
    EXPECT_EQ(stAnswer.At(2824 + 174, 1), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 174, 1), 0U);
    EXPECT_EQ(CodeOfChange(&stBench, "0E 01 09 00 01 10 00 00 00*8464"), 8U);
    EXPECT_EQ(CodeOfChange(&stBench, "0E 01 09 00 02 10 00 00 00*8464"), 6U);
}

TEST(ServiceFlows, ClassifierRulesAreAddedReplacedAndDeleted) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {}), 0U);
    const auto Change = [&](const std::string &strRule) {
        EXPECT_EQ(
            stBench.Send(6, 3, ChangeRequest(1, 0x2000, 0, "00*20", "04 00 00 00 00*63", strRule)),
            0);
        return AnswerOf(&stBench);
    };
    // The flow has one rule already. A priority of 7, then protocol 0x11.
    Answer stAnswer = Change("00*10 07 00*4 11 00*644");
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 173, 1), 2U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 660 + 10, 1), 7U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 660 + 15, 1), 0x11U);
    EXPECT_EQ(Change("00*10 08 00*649").At(5640 + 173, 1), 3U);
    EXPECT_EQ(Change("00*10 09 00*649").At(5640 + 173, 1), 4U);
    EXPECT_EQ(Change("00*10 0A 00*649").Code(), 13U);
    // Replace the first.
    stAnswer = Change("01 00*9 0B 00*649");
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 176, 1), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 10, 1), 0x0BU);
    EXPECT_EQ(stAnswer.At(5640 + 173, 1), 4U);
    // Delete the first: the others move up.
    stAnswer = Change("02 00*659");
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(stAnswer.At(5640 + 173, 1), 3U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 10, 1), 7U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 2 * 660 + 10, 1), 9U);
    EXPECT_EQ(stAnswer.At(5640 + 176 + 3 * 660 + 10, 1), 0U);
    Change("02 00*659");
    Change("02 00*659");
    EXPECT_EQ(Change("02 00*659").At(5640 + 173, 1), 0U);
    EXPECT_EQ(Change("02 00*659").Code(), 2U);
}

TEST(ServiceFlows, ADeleteAnswersWithTheFlowAndARefusalWithItsSFID) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iSets = 4}), 0U);
    EXPECT_EQ(stBench.Send(6, 2, DeleteRequest(1)), 0);
    Answer stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.strKind, "6/2");
    EXPECT_EQ(stAnswer.At(0, 4), 0x00070111U);
    EXPECT_EQ(stAnswer.At(8, 4), 1U);
    EXPECT_EQ(stAnswer.Code(), 0U);
    EXPECT_EQ(ListedSFIDs(&stBench), std::vector<uint32_t>{});
    EXPECT_EQ(stBench.Send(6, 2, DeleteRequest(1)), 0);
    stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.At(8, 4), 1U);
    EXPECT_EQ(stAnswer.Code(), 6U);
}

TEST(ServiceFlows, ProvisionedFlowsComeWithTheLinkAndGoWithIt) {
    ModemBench stBench(std::string(pcFourStations) + R"(
[service-flows]
provisioning-time = 0.5
[[service-flow]]
direction = "downlink"
type = "BE"
[[service-flow]]
direction = "uplink"
type = "UGS"
max-rate = 64000
sets = 3
)");
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stBench.RunUntil(0.5);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(1.9); // the link is up at 1.55
    stBench.Messages();
    EXPECT_EQ(ListedSFIDs(&stBench), std::vector<uint32_t>{});
    stBench.RunUntil(2.1);
    EXPECT_EQ(stBench.Messages(), std::vector<std::string>{});
    EXPECT_EQ(ListedSFIDs(&stBench), (std::vector<uint32_t>{1, 2}));
    EXPECT_EQ(stBench.Send(19, 1), 0);
    stBench.RunUntil(3);
    stBench.Messages();
    EXPECT_EQ(ListedSFIDs(&stBench).size(), 2U); // in idle mode too
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.Messages();
    EXPECT_EQ(ListedSFIDs(&stBench), std::vector<uint32_t>{});
}

TEST(ServiceFlows, TheNetworkCanDeleteOne) {
    ModemBench stBench(strFlows + "[[event]]\nat = 1\nkind = \"flow-deleted\"\nsfid = 1\n"
                                  "[[event]]\nat = 2\nkind = \"flow-deleted\"\nsfid = 1\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {}), 0U);
    stBench.RunUntil(3);
    const Answer stAnswer = AnswerOf(&stBench);
    EXPECT_EQ(stAnswer.strKind, "6/2");
    EXPECT_EQ(stAnswer.At(8, 4), 1U);
    EXPECT_EQ(stAnswer.Code(), 0U);
}

TEST(ServiceFlows, AGrantChangeNeedsAnUplinkFlowOfThatType) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iERTPS}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {.iType = iERTPS}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS}), 0U);
    EXPECT_EQ(stBench.Send(6, 4, "00 00 00 10 64 00 00 00 02 00 00 00"), 0);
    EXPECT_EQ(stBench.Send(6, 4, "00 00 00 20 64 00 00 00 02 00 00 00"), -6);
    EXPECT_EQ(stBench.Send(6, 4, "00 00 01 10 64 00 00 00 02 00 00 00"), -6);
    EXPECT_EQ(stBench.Send(6, 4, "00 00 02 10 64 00 00 00 02 00 00 00"), -6);
    EXPECT_EQ(stBench.Messages(), std::vector<std::string>{});
}

std::string GrantChange(uint32_t u32Connection, uint32_t u32Bytes, uint32_t u32SDUs) {
    return "00 00" + Number(u32Connection, 2) + Number(u32Bytes, 4) + Number(u32SDUs, 4);
}

TEST(ServiceFlows, AGrantThatWasChangedTakesItsCapacity) {
    ModemBench stBench(strLinkUp + "[service-flows]\ntransaction-time = 0\n"
                                   "uplink-capacity = 100000\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iERTPS, .u32Max = 80000}), 0U);
    // 200 bytes fifty times a second are 80000 bits a second: the flow's most.
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 201, 1)), -6);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 0xFFFFFFFF, 1)), -6);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 100, 0)), -6);   // bytes of no packet
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 100, 101)), -6); // packets of no byte
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Min = 30000}), 0U);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 176, 2)), -6); // 70400 besides 30000
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 175, 2)), 0);  // all that is left
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Min = 1}), 3U);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 0, 0)), 0);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Min = 70000}), 0U);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 10, 1)), -6);
}

TEST(ServiceFlows, AGrantEndsWithTheSetThatTakesIt) {
    ModemBench stBench(strLinkUp + "[service-flows]\ntransaction-time = 0\n"
                                   "uplink-capacity = 80000\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iERTPS}), 0U);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 200, 2)), 0);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Min = 1}), 3U);
    // Without a set in the request only the provisioned one stays.
    EXPECT_EQ(CodeOfChange(&stBench, "0E 01 09 00 00 10 00 00 00*8464"), 0U);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4096, 10, 1)), -6);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS, .u32Min = 80000}), 0U);
}

TEST(ServiceFlows, AGrantChangeKnowsTheModemsOwnNumberOfTheConnection) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iRTPS}), 0U);
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iERTPS}), 0U);
    // 1 and 2 are the basic and the primary connection.
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(1, 100, 1)), -6);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(3, 100, 1)), -6);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(4, 100, 1)), 0);
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(5, 100, 1)), -6);
}

TEST(ServiceFlows, PacketsGoOutInTheGrant) {
    ModemBench stBench(strFlows + "[traffic]\nuplink-rate = 6000\npacket-size = 600\n");
    EXPECT_EQ(CodeOfAdd(&stBench, 1, {.iType = iERTPS}), 0U);
    // 200 bytes and two headers of 10 bytes are 19 slots of 12 bytes: the packet that comes 0.1
    // s after the flow goes out in three such grants of 228, 20 ms from each other.
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(3, 200, 2)), 0);
    EXPECT_EQ(stBench.Send(8, 4), 0);
    stBench.RunUntil(0.17);
    EXPECT_EQ(stBench.Send(9, 4), 0);
    // Length, allocation, VCID, CID, bytes that wait, nothing asked for, type, frame; and 18 bytes
    // of padding behind each.
    EXPECT_EQ(stBench.Messages(), Told({"8/4: 60 00 D2 00 E4 00 03 00 00 10 90 01 00 05 18 00 00 00"
                                        " 12 00 E4 00 DD CC BB AA 00 00 00 00 18 00 00 00"
                                        " D2 00 E4 00 03 00 00 10 C8 00 00 05 1C 00 00 00"
                                        " 12 00 E4 00 DD CC BB AA 00 00 00 00 1C 00 00 00"
                                        " D2 00 E4 00 03 00 00 10 00 00 00 05 20 00 00 00"
                                        " 12 00 E4 00 DD CC BB AA 00 00 00 00 20 00 00 00"}));
    // Packets as they come, again, but every 20 ms.
    EXPECT_EQ(stBench.Send(6, 4, GrantChange(3, 0, 0)), 0);
    EXPECT_EQ(stBench.Send(8, 4), 0);
    stBench.RunUntil(0.25);
    EXPECT_EQ(stBench.Send(9, 4), 0);
    EXPECT_EQ(stBench.Messages(), Told({"8/4: 20 00 62 02 64 02 03 00 00 10 00 00 00 05 2C 00 00 00"
                                        " 02 00 64 02 DD CC BB AA 00 00 00 00 2C 00 00 00"}));
}

// The last connections of the log: modem's number, CID.
std::string LoggedConnections(ModemBench &stBench) {
    EXPECT_EQ(stBench.Send(8, 7), 0);
    EXPECT_EQ(stBench.Send(9, 7), 0);
    const Answer stLog = AnswerOf(&stBench);
    std::string strConnections;
    // Behind the length and the two management connections.
    for (size_t i = 18; i < stLog.aucBytes.size(); i += 8) {
        strConnections += (i == 18 ? "" : " ") + std::to_string(stLog.At(i, 2)) + ":" +
                          std::to_string(stLog.At(i + 2, 2));
    }
    return strConnections;
}

TEST(ServiceFlows, NoTwoConnectionsHaveTheSameNumber) {
    ModemBench stBench(strFlows);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(CodeOfAdd(&stBench, 1, {}), 0U);
    }
    EXPECT_EQ(LoggedConnections(stBench), "3:4096 4:4097 5:4098");
    EXPECT_EQ(stBench.Send(6, 2, DeleteRequest(1)), 0);
    EXPECT_EQ(AnswerOf(&stBench).Code(), 0U);
    EXPECT_EQ(LoggedConnections(stBench), "4:4097 5:4098");
    EXPECT_EQ(CodeOfAdd(&stBench, 0, {}), 0U);
    EXPECT_EQ(LoggedConnections(stBench), "4:4097 5:4098 3:8192");
}

TEST(ServiceFlows, WrongLengthsAreRefused) {
    ModemBench stBench(strFlows);
    EXPECT_EQ(stBench.Send(6, 1, "00*2827"), -4);
    EXPECT_EQ(stBench.Send(6, 1, "00*8472"), -4);
    EXPECT_EQ(stBench.Send(6, 3, "00*2828"), -4);
    EXPECT_EQ(stBench.Send(6, 2, "00*7"), -4);
    EXPECT_EQ(stBench.Send(6, 4, "00*13"), -4);
    EXPECT_EQ(stBench.Send(6, 5), -5);
}

} // namespace

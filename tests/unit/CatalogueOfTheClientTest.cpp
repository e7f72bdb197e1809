// The client and the catalogue know the same messages.
#include <filesystem>
#include <fstream>
#include <set>

#include "Catalogue.h"
#include "Loggers.h"
#include "SecurityParameters.h"
#include "TestConsole.h"

namespace {

class CatalogueOfTheClient : public ConsoleTest {
  protected:
    // What the client says to a message of which nothing but its kind is known.
    static std::string ReportOf(uint32_t u32Type, uint32_t u32SubType) {
        Printed();
        FakeDevice::Deliver(
            Message(std::to_string(u32Type) + "/" + std::to_string(u32SubType) + " | 00*64"));
        return Printed();
    }
};

constexpr uint32_t u32Types = 64;
constexpr uint32_t u32SubTypes = 12;
constexpr uint32_t u32NoSubType = 60000;

// Messages that the client passes over, shows whatever their subtype is, or
// shows only when it has asked for them.
bool IsShownAsUnknown(uint32_t u32Type, uint32_t u32SubType) {
    return u32Type == TYPE_IGNORED_25 || u32Type == TYPE_MAC_LOGGING ||
           u32Type == TYPE_PHY_LOGGING ||
           (u32Type == TYPE_WIMAX_OPTIONS && u32SubType == SUBTYPE_OPTION_SET);
}

TEST_F(CatalogueOfTheClient, WhatIsDecodedIsDescribedAndTheOtherWayRound) {
    for (uint32_t u32Type = 0; u32Type < u32Types; ++u32Type) {
        const std::string strUnknown = ReportOf(u32Type, u32NoSubType);
        for (uint32_t u32SubType = 0; u32SubType < u32SubTypes; ++u32SubType) {
            const std::string strReport = ReportOf(u32Type, u32SubType);
            const bool bDecoded =
                strReport != strUnknown && strReport.find("UNKNOWN") == std::string::npos;
            EXPECT_EQ(bDecoded || IsShownAsUnknown(u32Type, u32SubType),
                      FindReceived(u32Type, u32SubType) != nullptr)
                << u32Type << "/" << u32SubType << ": " << strReport;
        }
    }
}

// Every request of the sessions that are tests of their own, as they write it.
void AddRequestsOfAllSessions(std::set<std::string> *pastrRequests) {
    for (const auto &Entry : std::filesystem::recursive_directory_iterator(SESSIONS)) {
        std::ifstream File(Entry.path());
        for (std::string strLine; std::getline(File, strLine);) {
            if (strLine.starts_with("sent ")) {
                strLine = strLine.substr(5, strLine.find(" -> ") - 5);
                pastrRequests->insert(strLine);
            }
        }
    }
}

TEST_F(CatalogueOfTheClient, WhatIsSentIsDescribedAndTheOtherWayRound) {
    for (const char *pcKind : {"1\n", "2\n", "3\n", "4\n", "5\n", "6\n", "7\n", "8\n"}) {
        PrintedBy(StartLoggerRequest, pcKind);
        PrintedBy(StopLoggerRequest, pcKind);
    }
    PrintedBy(SecGetRequest, "3\n");
    PrintedBy(SecSetRequest, "3\n4\n77\n");
    const std::vector<std::string> astrSent = FakeDevice::Sent();
    std::set<std::string> astrRequests(astrSent.begin(), astrSent.end());
    AddRequestsOfAllSessions(&astrRequests);
    std::set<const MessageRow *> apstSent;
    for (const std::string &strRequest : astrRequests) {
        const Bytes aucRequest = Message(strRequest);
        const std::unique_ptr<WiMAXMessage> pstRecord = RecordOf(aucRequest);
        const Received stRequest = View(pstRecord.get());
        const MessageRow *pstMessage = FindSent(stRequest.u32Type, stRequest.u32SubType);
        ASSERT_NE(pstMessage, nullptr) << strRequest;
        apstSent.insert(pstMessage);
        const ByteView stPayload{pstRecord->aucData,
                                 static_cast<uint32_t>(aucRequest.size()) - WIMAX_HEADER_SIZE};
        EXPECT_TRUE(HasRightSize(*pstMessage, stPayload)) << strRequest;
    }
    for (const MessageRow &stMessage : Messages()) {
        EXPECT_EQ(stMessage.eDirection == Direction::Request, apstSent.contains(&stMessage))
            << stMessage.stName.pcOwn;
    }
}

} // namespace

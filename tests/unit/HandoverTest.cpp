#include "Handover.h"

#include "TestConsole.h"

namespace {

class HandoverTest : public ConsoleTest {};

constexpr const char *pcHandoverBanner = "\n~~~~~~ HANDOVER RESPONSE MESSAGE ~~~~~~\n";
constexpr const char *pcHandoverClosing = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
constexpr const char *pcSuccess = "\nHANDOFF SUCCESS!!\n"
                                  "\nLast Preamble ID: 17\n"
                                  "\nCurrent Preamble ID: 103\n"
                                  "\nHand over latency: 45\n"
                                  "\nNumber of Ranging Failures: 2\n"
                                  "\nCurrent BSID: 00 1a 2b 3c 4d 5e"
                                  "\nLast BSID: 00 1a 2b 3c 4d ff";

// A handover that succeeded, up to the length of its vendor data.
std::string Succeeded(const std::string &strIPRefresh, const std::string &strVendorData) {
    return "23/1 | 01 " + strIPRefresh +
           " 00 1a 2b 3c 4d 5e 00 1a 2b 3c 4d ff 2:4 45:4 103:4 17:4 " + strVendorData;
}

TEST_F(HandoverTest, ASuccessIsReportedInFull) {
    EXPECT_EQ(Report(HandOverResponse, Succeeded("01", "3:4 0a 0b ff")),
              std::string(pcHandoverBanner) + pcSuccess +
                  "\nIP Refresh needs to be done\n"
                  "\nVENDOR SPECIFIC DATA LENGTH : 3\n"
                  "\nVENDOR SPECIFIC DATA\n"
                  "0x0a 0x0b 0xff \n" +
                  pcHandoverClosing);
}

TEST_F(HandoverTest, AnyByteButZeroSaysYes) {
    for (const char *pcYes : {"02", "80", "ff"}) {
        EXPECT_EQ(
            Report(HandOverResponse, std::string("23/1 | ") + pcYes + " " + pcYes + " 00*28 0:4"),
            std::string(pcHandoverBanner) +
                "\nHANDOFF SUCCESS!!\n"
                "\nLast Preamble ID: 0\n"
                "\nCurrent Preamble ID: 0\n"
                "\nHand over latency: 0\n"
                "\nNumber of Ranging Failures: 0\n"
                "\nCurrent BSID: 00 00 00 00 00 00"
                "\nLast BSID: 00 00 00 00 00 00"
                "\nIP Refresh needs to be done\n"
                "\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS 0\n" +
                pcHandoverClosing);
    }
}

TEST_F(HandoverTest, NumbersAreSigned) {
    EXPECT_EQ(
        Report(HandOverResponse,
               "23/1 | 01 00 ff fe fd fc fb fa f9 f8 f7 f6 f5 f4 -2:4 -45:4 -103:4 -17:4 0:4"),
        std::string(pcHandoverBanner) +
            "\nHANDOFF SUCCESS!!\n"
            "\nLast Preamble ID: -17\n"
            "\nCurrent Preamble ID: -103\n"
            "\nHand over latency: -45\n"
            "\nNumber of Ranging Failures: -2\n"
            "\nCurrent BSID: ff fe fd fc fb fa"
            "\nLast BSID: f9 f8 f7 f6 f5 f4"
            "\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS 0\n" +
            pcHandoverClosing);
}

TEST_F(HandoverTest, WithoutVendorDataItsLengthIsInvalid) {
    EXPECT_EQ(Report(HandOverResponse, Succeeded("00", "0:4")),
              std::string(pcHandoverBanner) + pcSuccess +
                  "\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS 0\n" +
                  pcHandoverClosing);
}

TEST_F(HandoverTest, TheLastValidLengthOfVendorDataIs255) {
    const std::string strReport = Report(HandOverResponse, Succeeded("00", "255:4 5a*255"));
    EXPECT_NE(strReport.find("\nVENDOR SPECIFIC DATA LENGTH : 255\n"), std::string::npos);
    EXPECT_EQ(strReport.size(), std::string(pcHandoverBanner).size() +
                                    std::string(pcSuccess).size() +
                                    std::string("\nVENDOR SPECIFIC DATA LENGTH : 255\n").size() +
                                    std::string("\nVENDOR SPECIFIC DATA\n").size() +
                                    size_t{255} * 5 + 1 + std::string(pcHandoverClosing).size());
    EXPECT_EQ(Report(HandOverResponse, Succeeded("00", "256:4 5a*256")),
              std::string(pcHandoverBanner) + pcSuccess +
                  "\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS 256\n" +
                  pcHandoverClosing);
}

TEST_F(HandoverTest, ANegativeLengthOfVendorDataIsInvalid) {
    EXPECT_EQ(Report(HandOverResponse, Succeeded("00", "-1:4")),
              std::string(pcHandoverBanner) + pcSuccess +
                  "\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS -1\n" +
                  pcHandoverClosing);
}

TEST_F(HandoverTest, AFailureSaysNothingElse) {
    EXPECT_EQ(Report(HandOverResponse, "23/1 | 00 01 ff*36"),
              std::string(pcHandoverBanner) + "\nHANDOFF FALIED!!\n" + pcHandoverClosing);
    EXPECT_EQ(Report(HandOverResponse, "23/1"),
              std::string(pcHandoverBanner) + "\nHANDOFF FALIED!!\n" + pcHandoverClosing);
}

TEST_F(HandoverTest, OtherMessagesAreRefused) {
    EXPECT_EQ(Report(HandOverResponse, "23/2 | 01 00*40"), "\nUNKNOWN HANDOFF INDICATION TYPE!!");
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(HandOverResponse(nullptr), 0U); }),
              "\nINVALID WIMAX MESSAGE!!");
    EXPECT_EQ(FakeDevice::Deliver(Message("23/1 | 00*38")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("23/0")), 0U);
}

TEST_F(HandoverTest, NetworkLayerControlMessagesHaveOneLine) {
    EXPECT_EQ(Report(ProcessNetworkLayerControlMessage, "0/1"), "\nDHCP REFRESH MESSAGE\n");
    EXPECT_EQ(Report(ProcessNetworkLayerControlMessage, "0/2"),
              "\nMessage with unknown SUBTYPE received for TYPE_NETWORK_LAYER_CONTROL\n");
    EXPECT_EQ(PrintedBy([] { ProcessNetworkLayerControlMessage(nullptr); }),
              "\nINVALID WIMAX MESSAGE!!\n");
}

} // namespace

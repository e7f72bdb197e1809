#include "StationInformation.h"

#include "TestConsole.h"

namespace {

class StationInformationTest : public ConsoleTest {
  protected:
    static std::string ReportOf(std::string_view strMessage) {
        return Report(SSInfoResponse, strMessage);
    }
    // The calibration lines of a status byte.
    static std::string CalibrationOf(const std::string &strStatus) {
        const std::string strReport = ReportOf("7/1 | 00*176 " + strStatus);
        const size_t uStart = strReport.find("\nCalibration Status");
        return strReport.substr(uStart, strReport.find("EEPROM Version") - uStart);
    }
};

constexpr const char *pcStationInformationMenu = "\n******** SS INFO MENU ********\n"
                                                 "\n 1. SS INFO REQUEST"
                                                 "\n 2. SS EEPROM INFO REQUEST"
                                                 "\n 3. SS EEPROM DETAILED INFO REQUEST"
                                                 "\n\n**************************************\n"
                                                 "\nENTER OPTION : ";

TEST_F(StationInformationTest, EachMenuLineAsksForItsReport) {
    for (const char *pcTyped : {"1\n", "2\n", "3\n"}) {
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetSSInfoRequest(), 0U); }, pcTyped),
                  pcStationInformationMenu);
    }
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"7/1", "7/2", "7/3"}));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll().at(2).u32Length, 4U);
}

TEST_F(StationInformationTest, OtherChoicesAskForSubtypeZero) {
    for (const char *pcTyped : {"9\n", "0\n", "4\n", "-1\n"}) {
        EXPECT_EQ(PrintedBy([] { GetSSInfoRequest(); }, pcTyped), pcStationInformationMenu);
    }
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"7/0", "7/0", "7/0", "7/0"}));
}

TEST_F(StationInformationTest, TheLowByteOfTheSendResultIsReturned) {
    FakeDevice::SetSendResult(-2);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetSSInfoRequest(), 254U); }, "1\n"),
              pcStationInformationMenu);
}

TEST_F(StationInformationTest, TheInformationInFull) {
    EXPECT_EQ(ReportOf("7/1 | 4:4 12:4 -1:4 \"drv 2.1 beta\" 00*116 1:4 2:4 345:4"
                       " 48879:4 2748:4 18:4 171:4 00 1a 2b 3c 4d 5e ff ff 0e"),
              "\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nFirmware Version : 4.12.-1"
              "\nDriver Version : drv 2.1 beta"
              "\nLibrary Version : 01.02.345"
              "\nBaseband Chip Version : beef"
              "\nRF Chip Version : abc"
              "\nMAC ADDRESS : 00-1a-2b-3c-4d-5e"
              "\nCalibration Status: CALIBRATED"
              "\nCalibrated Band Information: Band 0 & Band 1 & Band 2\n"
              "EEPROM Version : 12.ab\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StationInformationTest, VersionsAreSignedInDecimal) {
    EXPECT_EQ(ReportOf("7/1 | -4:4 -12:4 -7:4 \"d\" 00*127 -1:4 -2:4 -345:4"
                       " -1:4 -2:4 -3:4 -4:4 ff fe fd fc fb fa ff ff 0e"),
              "\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nFirmware Version : -4.-12.-7"
              "\nDriver Version : d"
              "\nLibrary Version : -1.-2.-345"
              "\nBaseband Chip Version : ffffffff"
              "\nRF Chip Version : fffffffe"
              "\nMAC ADDRESS : ff-fe-fd-fc-fb-fa"
              "\nCalibration Status: CALIBRATED"
              "\nCalibrated Band Information: Band 0 & Band 1 & Band 2\n"
              "EEPROM Version : fffffffd.fffffffc\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(ReportOf("7/3 | -1:4 -2:4 -3:4 -4:4 -5:4 -6:4 -7:4 -8:4 -9:4 00*16 10:4"),
              "\n~~~~~~~~~~~~~~~ SS EEPROM DETAILED INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nRF SECTION VERSION        :   -1"
              "\nPHY SECTION VERSION       :   -2"
              "\nMAC SECTION VERSION       :   -3"
              "\nCAL SECTION VERSION       :   -4"
              "\nHW SECTION VERSION        :   -5"
              "\nMIB SECTION VERSION       :   -6"
              "\nSECURITY SECTION VERSION  :   -7"
              "\nOMADM SECTION VERSION     :   -8"
              "\nMRU SECTION VERSION       :   -9"
              "\nVSA SECTION VERSION       :   10\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StationInformationTest, CalibrationAndBandsOfEachStatus) {
    const std::string strBands = "\nCalibrated Band Information: ";
    const std::string strCalibrated = "\nCalibration Status: CALIBRATED";
    EXPECT_EQ(CalibrationOf("00"),
              "\nCalibration Status: NOT CALIBRATED" + strBands + "Band UnKnown\n");
    EXPECT_EQ(CalibrationOf("fe"), "\nCalibration Status: CALIBRATION STATUS NOT KNOWN" + strBands +
                                       "Band 0 & Band 1 & Band 2\n");
    EXPECT_EQ(CalibrationOf("01"), strCalibrated + strBands + "Band UnKnown\n");
    EXPECT_EQ(CalibrationOf("02"), strCalibrated + strBands + "Band 0\n");
    EXPECT_EQ(CalibrationOf("04"), strCalibrated + strBands + "Band 1\n");
    EXPECT_EQ(CalibrationOf("06"), strCalibrated + strBands + "Band 0\n");
    EXPECT_EQ(CalibrationOf("08"), strCalibrated + strBands + "Band 2\n");
    EXPECT_EQ(CalibrationOf("0a"), strCalibrated + strBands + "Band 0\n");
    EXPECT_EQ(CalibrationOf("0c"), strCalibrated + strBands + "Band 1 & Band 2\n");
    EXPECT_EQ(CalibrationOf("0e"), strCalibrated + strBands + "Band 0 & Band 1 & Band 2\n");
    EXPECT_EQ(CalibrationOf("f0"), strCalibrated + strBands + "Band UnKnown\n");
    EXPECT_EQ(CalibrationOf("ff"), strCalibrated + strBands + "Band 0 & Band 1 & Band 2\n");
}

TEST_F(StationInformationTest, TheDriverVersionEndsWithItsPlaceOrAtAZeroByte) {
    const std::string strWhole = ReportOf("7/1 | 00*12 78*128 1:4 00*33");
    EXPECT_NE(strWhole.find("\nDriver Version : " + std::string(128, 'x') + "\nLibrary Version"),
              std::string::npos);
    const std::string strCut = ReportOf("7/1 | 00*12 \"abc\"");
    EXPECT_NE(strCut.find("\nDriver Version : abc\nLibrary Version : 00.00.00"), std::string::npos);
}

TEST_F(StationInformationTest, TheEEPROMSummaryInFull) {
    EXPECT_EQ(ReportOf("7/2 | ff 0f 00 20"),
              "\n~~~~~~~~~~~~~~~ EEPROM SS INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nEEPROM Size\t\t: 32 KB\n"
              "\nEEPROM Valid Info : 0xfff\n"
              "\nBit - 0\t\t\t: [1]"
              "\nCompatibility\t\t: [1]"
              "\nRF\t\t\t: [1]"
              "\nPHY\t\t\t: [1]"
              "\nMAC\t\t\t: [1]"
              "\nCALIBRATION\t\t: [1]"
              "\nHARDWARE\t\t: [1]"
              "\nMIB\t\t\t: [1]"
              "\nSECURITY\t\t: [1]"
              "\nOMA-DM\t\t\t: [1]"
              "\nMRU\t\t\t: [1]\n\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StationInformationTest, EachBitOfTheSummaryHasItsLine) {
    EXPECT_EQ(ReportOf("7/2 | 52 fd aa ff"),
              "\n~~~~~~~~~~~~~~~ EEPROM SS INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nEEPROM Size\t\t: 255 KB\n"
              "\nEEPROM Valid Info : 0xfd52\n"
              "\nBit - 0\t\t\t: [0]"
              "\nCompatibility\t\t: [1]"
              "\nRF\t\t\t: [0]"
              "\nPHY\t\t\t: [0]"
              "\nMAC\t\t\t: [1]"
              "\nCALIBRATION\t\t: [0]"
              "\nHARDWARE\t\t: [1]"
              "\nMIB\t\t\t: [0]"
              "\nSECURITY\t\t: [1]"
              "\nOMA-DM\t\t\t: [0]"
              "\nMRU\t\t\t: [1]\n\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(ReportOf("7/2"), ReportOf("7/2 | 0:4"));
}

TEST_F(StationInformationTest, TheSectionVersionsInFull) {
    EXPECT_EQ(ReportOf("7/3 | 1:4 2:4 3:4 4:4 5:4 6:4 7:4 8:4 9:4 ff*16 -10:4"),
              "\n~~~~~~~~~~~~~~~ SS EEPROM DETAILED INFO RESPONSE ~~~~~~~~~~~~~~\n"
              "\nRF SECTION VERSION        :   1"
              "\nPHY SECTION VERSION       :   2"
              "\nMAC SECTION VERSION       :   3"
              "\nCAL SECTION VERSION       :   4"
              "\nHW SECTION VERSION        :   5"
              "\nMIB SECTION VERSION       :   6"
              "\nSECURITY SECTION VERSION  :   7"
              "\nOMADM SECTION VERSION     :   8"
              "\nMRU SECTION VERSION       :   9"
              "\nVSA SECTION VERSION       :   -10\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(ReportOf("7/3 | 00*35"), ReportOf("7/3 | 00*56"));
}

TEST_F(StationInformationTest, OtherMessagesPrintNothing) {
    EXPECT_EQ(ReportOf("7/0 | 00*177"), "");
    EXPECT_EQ(ReportOf("7/4 | 00*177"), "");
    EXPECT_EQ(ReportOf("8/1 | 00*177"), "");
    EXPECT_EQ(PrintedBy([] { SSInfoResponse(nullptr); }), "");
}

} // namespace

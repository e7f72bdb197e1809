#include "DeviceConfiguration.h"

#include "TestConsole.h"

namespace {

class DeviceConfigurationTest : public ConsoleTest {
  protected:
    static std::string AddressTyped(std::string_view strTyped) {
        return PrintedBy([] { SetMACAddress(); }, strTyped);
    }
};

constexpr const char *pcDeviceConfigurationMenu =
    "\n*********** DEVICE CONFIGURATION REQUESTS ***********\n"
    "\n 1. STATISTICS RESET CONTROL REQUEST"
    "\n 2. SET CINR AND RSSI FOR NETWORK SEARCH"
    "\n\n*****************************************************\n"
    "\nENTER OPTION : ";
constexpr const char *pcAddress = "\n******** MAC ADDRESS ********\n"
                                  "\n Enter the MAC Address (xx-xx-xx-xx-xx-xx) : ";
constexpr const char *pcAddressRefused = "\n******** MAC ADDRESS ********\n"
                                         "\n Enter the MAC Address (xx-xx-xx-xx-xx-xx) : "
                                         "\n Error : Please enter a valid MAC Address.";

TEST_F(DeviceConfigurationTest, TheFirstLineLeadsToTheStatisticsResetPolicy) {
    FakeDevice::SetSendResult(-3);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(DeviceConfigRequest(), UINT32_MAX - 2); }, "1\n2\n"),
              std::string(pcDeviceConfigurationMenu) +
                  "\n*********** STATISTICS RESET CONTROL REQUEST ***********\n"
                  "\n 1. DISABLE STATISTICS RESET ON RE-SYNCH"
                  "\n 2. ENABLE STATISTICS RESET ON RE-SYCH"
                  "\n\n******************************************************\n"
                  "\nENTER OPTION : ");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"17/2 | 01 00 00 00"});
}

TEST_F(DeviceConfigurationTest, TheSecondLineLeadsToTheSearchThresholds) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(DeviceConfigRequest(), 0U); }, "2\n5\n-90\n"),
              std::string(pcDeviceConfigurationMenu) +
                  "\n Enter CINR value you want to set for network search : "
                  "\n Enter RSSI value you want to set for network search : ");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{Recorded("13/5 | -90:4 5:4")});
}

TEST_F(DeviceConfigurationTest, OtherChoicesAreRefused) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(DeviceConfigRequest(), UINT32_MAX); }, "3\n"),
              std::string(pcDeviceConfigurationMenu) + "\nSORRY!! INVALID OPTION SELECTED!!");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(DeviceConfigurationTest, AMACAddressIsSent) {
    EXPECT_EQ(AddressTyped("00-1a-2b-3c-4d-5e\n"), pcAddress);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"11/1 | 00 1a 2b 3c 4d 5e"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 10}}));
}

TEST_F(DeviceConfigurationTest, UpperCaseAndSingleDigitsAreAnAddressToo) {
    AddressTyped("AB-CD-EF-0-1-f\n");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"11/1 | ab cd ef 00 01 0f"});
}

TEST_F(DeviceConfigurationTest, WhatIsNoAddressIsRefused) {
    for (const char *pcTyped :
         {"00:1a:2b:3c:4d:5e\n", "100-00-00-00-00-00\n", "00-100-00-00-00-00\n",
          "00-00-100-00-00-00\n", "00-00-00-100-00-00\n", "00-00-00-00-100-00\n",
          "00-1a-2b-3c-4d\n", "00-1a-2b-3c-4d-\n", "zz-00-00-00-00-00\n", "00-00-00-00-00-g0\n",
          "-\n"}) {
        EXPECT_EQ(AddressTyped(pcTyped), pcAddressRefused) << pcTyped;
    }
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(DeviceConfigurationTest, AnOctetWithAMinusSignIsSentAsItsLowByte) {
    EXPECT_EQ(AddressTyped("-1-00-00--f-00-+2\n"), pcAddress);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"11/1 | ff 00 00 f1 00 02"});
}

TEST_F(DeviceConfigurationTest, ALongWordIsReadAsFarAsAnAddressGoes) {
    EXPECT_EQ(AddressTyped("00-1a-2b-3c-4d-5e" + std::string(100000, 'f') + " 7\n"), pcAddress);
    EXPECT_EQ(AddressTyped(std::string(100000, '0') + "\n"), pcAddressRefused);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"11/1 | 00 1a 2b 3c 4d 5e"});
}

TEST_F(DeviceConfigurationTest, TheLowByteOfTheSendResultIsReturned) {
    FakeDevice::SetSendResult(-1);
    Type("00-1a-2b-3c-4d-5e\n00\n");
    EXPECT_EQ(SetMACAddress(), 255U);
    EXPECT_EQ(SetMACAddress(), 0U);
}

TEST_F(DeviceConfigurationTest, TheAnswerToAMACAddressIsReported) {
    EXPECT_EQ(Report(MACSetResponse, "11/1 | 0:4"),
              "\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"
              "\nSTATUS :  SUCCESS"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(MACSetResponse, "11/1 | 7:4"),
              "\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"
              "\nSTATUS : "
              "\nFAILURE, ERROR CODE : 7"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(MACSetResponse, "11/1 | 1:4"),
              "\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"
              "\nSTATUS : "
              "\nFAILURE, ERROR CODE : 1"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(MACSetResponse, "11/1 | ff"),
              "\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"
              "\nSTATUS : "
              "\nFAILURE, ERROR CODE : 255"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(MACSetResponse, "11/2 | 7:4"), "");
    EXPECT_EQ(PrintedBy([] { MACSetResponse(nullptr); }), "");
}

TEST_F(DeviceConfigurationTest, TheIPFilterStatusIsReported) {
    EXPECT_EQ(Report(DeviceConfigResp, "13/6 | 1:4"),
              "\nIP Filtering Status received as : IP_FILTER_STATUS_SUCCESS(1)");
    EXPECT_EQ(Report(DeviceConfigResp, "13/6 | 4:4"),
              "\nIP Filtering Status received as : IP_FILTER_STATUS_NOT_SUPPORTED(4)");
    EXPECT_EQ(Report(DeviceConfigResp, "13/6 | 0:4"),
              "\nIP Filtering Status received as : IP_FILTER_STATUS_INVALID(0)");
    EXPECT_EQ(Report(DeviceConfigResp, "13/6 | 2:4"), "\nIP Filtering Status received as 2");
    EXPECT_EQ(Report(DeviceConfigResp, "13/6 | -1:4"), "\nIP Filtering Status received as -1");
}

TEST_F(DeviceConfigurationTest, TheSearchThresholdsAreReported) {
    EXPECT_EQ(Report(DeviceConfigResp, "13/5 | -90:4 5:4"),
              "\n~~~~~~ SET CINR RSSI RESPONSE RECEIVED ~~~~~~\n"
              "CINR Value Set : 5\n"
              "RSSI Value Set : -90\n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(DeviceConfigurationTest, OtherDeviceConfigurationsPrintNothing) {
    EXPECT_EQ(Report(DeviceConfigResp, "13/7 | 1:4"), "");
    EXPECT_EQ(PrintedBy([] { DeviceConfigResp(nullptr); }), "");
    EXPECT_EQ(FakeDevice::Deliver(Message("13/7")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("13/5 | 00*8")), 1U);
}

TEST_F(DeviceConfigurationTest, AnUnloadedDeviceIsReported) {
    EXPECT_EQ(Report(DeviceUnloadIndication, "12/2"),
              "\n~~~~~~ DEVICE RESET_UNLOAD MESSAGE RECEIVED ~~~~~~\n"
              "\nDEVICE IS UNLOADED\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(DeviceUnloadIndication, "12/1 | 00*8"),
              "\n~~~~~~ DEVICE RESET_UNLOAD MESSAGE RECEIVED ~~~~~~\n"
              "\nUNKNOWN SUB-TYPE MESSAGE!\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(FakeDevice::Deliver(Message("12/1")), 1U);
}

TEST_F(DeviceConfigurationTest, AnotherTypeIsNoUnloadIndication) {
    EXPECT_EQ(Report(DeviceUnloadIndication, "13/2"), "\nINVALID MESSAGE TYPE!\n");
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(DeviceUnloadIndication(nullptr), 0U); }), "");
}

} // namespace

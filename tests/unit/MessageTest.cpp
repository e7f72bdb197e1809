#include "Message.h"

#include <cstring>

#include "TestConsole.h"

namespace {

class MessageTest : public ConsoleTest {};

TEST_F(MessageTest, FillWritesTheHeaderAndZeroesTheRest) {
    WiMAXMessage stMessage;
    std::memset(&stMessage, 0xA5, sizeof stMessage);
    EXPECT_EQ(FillWiMAXMsg(&stMessage, 19, 3, 4), 8U);
    const Bytes aucExpected = Message("13 00 03 00 00*10240");
    EXPECT_EQ(std::memcmp(&stMessage, aucExpected.data(), 10244), 0);
    EXPECT_EQ(sizeof stMessage, 10244U);
}

TEST_F(MessageTest, FillKeepsTheLowSixteenBitsOfThePayloadLength) {
    WiMAXMessage stMessage;
    EXPECT_EQ(FillWiMAXMsg(&stMessage, 19, 3, 65540), 8U);
    EXPECT_EQ(FillWiMAXMsg(&stMessage, 19, 3, 65535), 65539U);
    EXPECT_EQ(FillWiMAXMsg(&stMessage, 19, 3, 0), 4U);
}

TEST_F(MessageTest, FillKeepsTheLowSixteenBitsOfTheCodes) {
    WiMAXMessage stMessage;
    FillWiMAXMsg(&stMessage, 0x12345, 0x67890, 0);
    const uint8_t aucHeader[] = {0x45, 0x23, 0x90, 0x78};
    EXPECT_EQ(std::memcmp(&stMessage, aucHeader, 4), 0);
}

TEST_F(MessageTest, FillRefusesANullBufferAndTouchesNothing) {
    gbInsideSubMenu = 1;
    EXPECT_EQ(FillWiMAXMsg(nullptr, 19, 3, 4), 0xFFFFFFFFU);
    EXPECT_EQ(gbInsideSubMenu, 1);
}

TEST_F(MessageTest, FillLetsAnswersThroughAgain) {
    WiMAXMessage stMessage;
    gbInsideSubMenu = 1;
    FillWiMAXMsg(&stMessage, 19, 3, 4);
    EXPECT_EQ(gbInsideSubMenu, 0);
}

TEST_F(MessageTest, ARequestWithoutPayloadGoesOutWithLengthFour) {
    g_hDevice = 7;
    EXPECT_EQ(SendRequest(3, 1), 0);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"3/1"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{7, 4}}));
}

TEST_F(MessageTest, ARequestCarriesItsPayload) {
    const uint8_t aucPayload[] = {1, 2, 3};
    EXPECT_EQ(SendRequest(19, 3, {aucPayload, 3}), 0);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"19/3 | 01 02 03"});
}

TEST_F(MessageTest, AFailedSendIsNotRepeated) {
    FakeDevice::SetSendResult(-27);
    EXPECT_EQ(SendRequest(19, 1), -27);
    EXPECT_EQ(FakeDevice::Sent().size(), 1U);
}

} // namespace

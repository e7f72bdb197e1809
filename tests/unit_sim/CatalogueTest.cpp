// The simulated modem takes what the catalogue describes, and says nothing else.
#include "Catalogue.h"

#include <set>

#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// The result of a request of zeroes, by a fresh modem: a reset takes no more.
int32_t Sent(uint32_t u32Type, uint32_t u32SubType, uint32_t u32Length) {
    ModemBench stBench(pcFourStations);
    WiMAXMessage stMessage{};
    Put(BytesOf(stMessage), MessageHeader::usType, u32Type);
    Put(BytesOf(stMessage), MessageHeader::usSubType, u32SubType);
    return stBench.TheModem().Send(BytesOf(stMessage).pucData, MessageHeader::Size + u32Length);
}

constexpr int32_t iBadLength = -4;
constexpr int32_t iUnknownRequest = -5;

TEST(CatalogueOfTheModem, RequestsAreTakenThatAreDescribedInTheSizesDescribed) {
    for (uint32_t u32Type = 0; u32Type < 64; ++u32Type) {
        for (uint32_t u32SubType = 0; u32SubType < 16; ++u32SubType) {
            const MessageRow *pstMessage = FindSent(u32Type, u32SubType);
            // What a client sends for a choice that its menu does not have is described, too.
            const bool bUnlisted = u32Type == TYPE_SS_INFO && u32SubType == 0;
            if (pstMessage == nullptr || bUnlisted) {
                EXPECT_EQ(Sent(u32Type, u32SubType, 0), iUnknownRequest)
                    << u32Type << "/" << u32SubType;
                continue;
            }
            const auto [u32Least, u32Most, bAsCounted] = pstMessage->stSize;
            EXPECT_NE(Sent(u32Type, u32SubType, u32Least), iBadLength) << pstMessage->stName.pcOwn;
            EXPECT_NE(Sent(u32Type, u32SubType, u32Least), iUnknownRequest)
                << pstMessage->stName.pcOwn;
            if (u32Least != 0) {
                EXPECT_EQ(Sent(u32Type, u32SubType, u32Least - 1), iBadLength)
                    << pstMessage->stName.pcOwn;
            }
            if (u32Most != WIMAX_DATA_SIZE) {
                EXPECT_EQ(Sent(u32Type, u32SubType, u32Most + 1), iBadLength)
                    << pstMessage->stName.pcOwn;
            }
        }
    }
}

} // namespace

// Management messages, as bytes: what stands between angle brackets is replaced, the rest is not.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AirScrub.h"

namespace {

struct Marked {
    std::vector<uint8_t> aucBytes;
    std::vector<bool> abReplaced;
};

// "00 0206 <020000200001>"
Marked Parse(const std::string &strText) {
    Marked stMarked;
    bool bReplaced = false;
    for (size_t i = 0; i < strText.size(); ++i) {
        if (strText[i] == '<' || strText[i] == '>') {
            bReplaced = strText[i] == '<';
        } else if (strText[i] != ' ') {
            stMarked.aucBytes.push_back(
                static_cast<uint8_t>(std::stoi(strText.substr(i, 2), nullptr, 16)));
            stMarked.abReplaced.push_back(bReplaced);
            ++i;
        }
    }
    return stMarked;
}

// Over many keys each byte that may change does, and no other one.
void ExpectReplaced(uint8_t u8Code, const std::string &strText) {
    const Marked stMarked = Parse(strText);
    std::vector<bool> abReplaced(stMarked.aucBytes.size());
    for (uint64_t u64Key = 0; u64Key < 40; ++u64Key) {
        // A block of its own: every byte beside it would be noticed.
        std::vector<uint8_t> aucBytes(stMarked.aucBytes);
        ScrubManagementMessage(Pseudonyms({u64Key, 1}), u8Code,
                               {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())});
        for (size_t i = 0; i < aucBytes.size(); ++i) {
            abReplaced[i] = abReplaced[i] || aucBytes[i] != stMarked.aucBytes[i];
        }
    }
    EXPECT_EQ(abReplaced, stMarked.abReplaced) << static_cast<int>(u8Code) << ": " << strText;
}

TEST(AirScrubTest, AddressesOfRangingAndRegistration) {
    ExpectReplaced(4, "00 010121 0206<020000200001> 940105");
    ExpectReplaced(5, "00 010400000005 0806<020000200001> 09020001");
    ExpectReplaced(6, "1206<020000200001> 1f0107");
    ExpectReplaced(7, "00 1206<020000200001> 1f0107");
    // A registration inside a ranging response.
    ExpectReplaced(5, "00 1e0b 1206<020000200001> 1f0107 040103");
}

TEST(AirScrubTest, KeyManagementButForWhatIsPublic) {
    ExpectReplaced(9, "1201 1c05<0102030405>");
    ExpectReplaced(10, "1802 0a0105 0c020001 0d0e 0806<010203040506> 09040000a8c0 1d02<0102>");
    ExpectReplaced(10, "1602 1707 0c020001 180100 2804<01020304>");
}

TEST(AirScrubTest, RulesOfFlowsAndTheirDigests) {
    ExpectReplaced(11, "8001 910e 650c 030a 0408<c0a80001>ffffffff 8d03<010203>");
    ExpectReplaced(12, "8001 00 920a 6508 0306 0804<0102>0304 8d03<010203>");
    ExpectReplaced(17, "8001 00000001 8d03<010203>");
}

TEST(AirScrubTest, VendorsAddWhatTheyLike) { ExpectReplaced(6, "8f08 9003 001122 0101<05>"); }

TEST(AirScrubTest, HashesOfPagedStations) {
    ExpectReplaced(61, "0001 0007 02 <112233>40 <445566>80");
    ExpectReplaced(61, "0000 00");
    ExpectReplaced(61, "ffff 00");
}

TEST(AirScrubTest, DigestsAtTheEndOfMobilityMessages) {
    ExpectReplaced(59, "000102 8d0d<0102030405060708090a0b0c0d>");
    ExpectReplaced(54, "000102 8d0c 0102030405060708090a0b0c");
    ExpectReplaced(50, "8d");
}

TEST(AirScrubTest, DescriptorsAndMapsStay) {
    ExpectReplaced(1, "0005 0d0600120a000101");
    ExpectReplaced(2, "04 000258 05 00120a000101 1d");
    ExpectReplaced(37, "0404 01021e02");
}

TEST(AirScrubTest, WhatCannotBeReadIsReplaced) {
    ExpectReplaced(4, "00 010121 <02070102030405>");
    ExpectReplaced(4, "00 <0283000006020000200001>");
    ExpectReplaced(4, "00 028106<020000200001>");
    ExpectReplaced(9, "12");
    ExpectReplaced(4, "");
}

} // namespace

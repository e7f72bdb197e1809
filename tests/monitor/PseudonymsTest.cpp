// Values in the place of others.
#include <gtest/gtest.h>

#include <string>

#include "Pseudonyms.h"

namespace {

constexpr PseudonymKey au64Key = {0x0706050403020100, 0x0F0E0D0C0B0A0908};

ByteView ViewOf(const std::string &strBytes) {
    return {reinterpret_cast<const uint8_t *>(strBytes.data()),
            static_cast<uint32_t>(strBytes.size())};
}

std::string Replaced(std::string strBytes, const PseudonymKey &au64Own = au64Key) {
    Pseudonyms(au64Own).Replace(
        {reinterpret_cast<uint8_t *>(strBytes.data()), static_cast<uint32_t>(strBytes.size())});
    return strBytes;
}

std::string ReplacedText(std::string strText) {
    Pseudonyms(au64Key).ReplaceText(
        {reinterpret_cast<uint8_t *>(strText.data()), static_cast<uint32_t>(strText.size())});
    return strText;
}

TEST(PseudonymsTest, TheHashIsTheOneOfItsAuthors) {
    std::string strBytes;
    EXPECT_EQ(KeyedHash(au64Key, ViewOf(strBytes)), 0x726FDB47DD0E0E31U);
    for (char cByte = 0; cByte < 15; ++cByte) {
        strBytes += cByte;
    }
    EXPECT_EQ(KeyedHash(au64Key, ViewOf(strBytes)), 0xA129CA6149BE45E5U);
}

TEST(PseudonymsTest, EqualValuesBecomeEqualAndOthersBecomeOthers) {
    const std::string strKey("\x01\x02\x03\x04\x05\x06\x07\x08", 8);
    EXPECT_EQ(Replaced(strKey), Replaced(strKey));
    EXPECT_NE(Replaced(strKey), strKey);
    EXPECT_EQ(Replaced(strKey).size(), strKey.size());
    EXPECT_NE(Replaced(strKey), Replaced(std::string("\x01\x02\x03\x04\x05\x06\x07\x09", 8)));
    EXPECT_NE(Replaced(strKey), Replaced(strKey, {1, 2}));
}

TEST(PseudonymsTest, ZeroesAtTheEndStayAndDoNotCount) {
    const std::string strKey("\x01\x02\x03\x04\x05", 5);
    for (const size_t uZeroes : {2U, 3U, 11U}) {
        const std::string strZeroes(uZeroes, '\0');
        EXPECT_EQ(Replaced(strKey + strZeroes), Replaced(strKey) + strZeroes) << uZeroes;
    }
}

TEST(PseudonymsTest, ValuesThatSayNothingStay) {
    EXPECT_EQ(Replaced(""), "");
    EXPECT_EQ(Replaced(std::string(6, '\0')), std::string(6, '\0'));
    EXPECT_EQ(Replaced(std::string(6, '\xFF')), std::string(6, '\xFF'));
}

TEST(PseudonymsTest, SixBytesBecomeAnAddressOfOneStation) {
    for (char cByte = 0; cByte < 100; ++cByte) {
        // The last byte of an address may well be zero.
        const std::string strAddress =
            Replaced(std::string("\x00\x12\x0A", 3) + cByte + std::string("\x01\0", 2));
        EXPECT_EQ(strAddress[0] & 3, 2);
        EXPECT_EQ(strAddress.size(), 6U);
    }
}

TEST(PseudonymsTest, TextsBecomeTextsOfTheSameForm) {
    const std::string strText = ReplacedText("Alice-7@example.org");
    EXPECT_EQ(strText, Replaced("Alice-7@example.org"));
    EXPECT_TRUE(strText[0] >= 'A' && strText[0] <= 'Z');
    EXPECT_TRUE(strText[6] >= '0' && strText[6] <= '9');
    EXPECT_EQ(strText[5], '-');
    EXPECT_EQ(strText[7], '@');
    EXPECT_EQ(strText[15], '.');
    EXPECT_EQ(strText.find("lice"), std::string::npos);
}

TEST(PseudonymsTest, ATextOfAnyBytesHoldsNoneOfThemAfterwards) {
    for (const char cChar : ReplacedText("\x01\n\xC3\xA4=\"")) {
        EXPECT_TRUE(cChar >= 'a' && cChar <= 'z') << cChar;
    }
}

TEST(PseudonymsTest, LongValuesDoNotRepeat) {
    const std::string strLong = Replaced(std::string(4096, '\x01'));
    EXPECT_NE(strLong.substr(0, 8), strLong.substr(8, 8));
    EXPECT_NE(strLong.substr(0, 2048), strLong.substr(2048));
}

TEST(PseudonymsTest, KeysOfTheirOwnDiffer) {
    std::string strFirst("\x01\x02\x03\x04\x05\x06\x07\x08", 8);
    std::string strSecond = strFirst;
    Pseudonyms().Replace({reinterpret_cast<uint8_t *>(strFirst.data()), 8});
    Pseudonyms().Replace({reinterpret_cast<uint8_t *>(strSecond.data()), 8});
    EXPECT_NE(strFirst, strSecond);
}

} // namespace

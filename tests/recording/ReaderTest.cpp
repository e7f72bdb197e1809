// Reading recordings: whole ones, damaged ones, foreign ones, from files and pipes, and while they
// are written.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "Reader.h"

namespace {

// A file that is gone when the test has ended.
class File {
  public:
    explicit File(const std::string &strContent) {
        std::string strName = std::filesystem::temp_directory_path() / "recording.XXXXXX";
        close(mkstemp(strName.data()));
        m_strPath = strName;
        Append(strContent);
    }
    ~File() { std::remove(m_strPath.c_str()); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    void Append(const std::string &strContent) const {
        std::ofstream(m_strPath, std::ios::binary | std::ios::app) << strContent;
    }
    const std::string &Path() const { return m_strPath; }

  private:
    std::string m_strPath;
};

std::string Hex(const std::string &strDigits) {
    std::string strBytes;
    for (size_t i = 0; i + 1 < strDigits.size();) {
        if (strDigits[i] == ' ') {
            ++i;
            continue;
        }
        strBytes += static_cast<char>(std::stoi(strDigits.substr(i, 2), nullptr, 16));
        i += 2;
    }
    return strBytes;
}

// Little-endian, nanoseconds, link type 252.
const std::string strHead = Hex("0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000"
                                "01000000 20000000 fc00 0000 00000400 0900 0100 09000000 00000000"
                                "20000000");

// The data of a packet as a block, at 2023-11-14 22:13:20 and so many nanoseconds.
std::string Block(const std::string &strData, uint32_t u32Nanoseconds = 0) {
    const auto Little = [](uint64_t u64Value) {
        std::string strBytes;
        for (int i = 0; i < 4; ++i) {
            strBytes += static_cast<char>(u64Value >> (8 * i));
        }
        return strBytes;
    };
    const uint64_t u64Time = UINT64_C(1700000000000000000) + u32Nanoseconds;
    const size_t uPadding = -strData.size() & 3;
    const std::string strSize = Little(strData.size() + uPadding + 32);
    return Little(6) + strSize + Little(0) + Little(u64Time >> 32) + Little(u64Time) +
           Little(strData.size()) + Little(strData.size()) + strData + std::string(uPadding, '\0') +
           strSize;
}

// A message of five bytes, number 8, context 3, stated to be 6 bytes long.
const std::string strMessage = Hex("000c 0008 716f72303230 0000 0023 0004 00000001 0000 0000"
                                   "01 08 0000 08000000 00000000 00000000 0000000000000000"
                                   "00000000 03000000 06000000 1500030001");
// A send of type 2, subtype 1, from a callback; number 9, handle 1.
const std::string strSend = Hex("000c 0008 716f72303230 0000 0023 0004 00000000 0000 0000"
                                "01 06 0400 09000000 00000000 00000000 0000000000000000"
                                "01000000 00000000 04000000 02000100");
// Its result: -76, after 0x123456789 nanoseconds.
const std::string strResult = Hex("000c 0008 716f72303230 0000 0023 0004 00000001 0000 0000"
                                  "01 07 0000 0a000000 09000000 b4ffffff 8967452301000000"
                                  "01000000 00000000 00000000");
const std::string strManagement =
    Hex("000c 0018 776d785f6d61635f6d676d745f6d73675f6465636f646572 0023 0004 00000001 0000 0000"
        "02010203");

const std::string strWhole = strHead + Block(strMessage, 1) + Block(strManagement, 1) +
                             Block(strSend, 2) + Block(strResult, 1000000003);

struct Found {
    std::vector<uint32_t> au32Numbers;
    std::string strProblem;
    uint64_t u64Position;
};

Found ReadAll(const std::string &strPath) {
    RecordingReader stReader(strPath);
    Found stFound;
    for (Event stEvent; stReader.Next(&stEvent);) {
        stFound.au32Numbers.push_back(stEvent.u32Number);
    }
    stFound.strProblem = stReader.Problem();
    stFound.u64Position = stReader.Position();
    return stFound;
}

Found ReadBytes(const std::string &strContent) {
    const File stFile(strContent);
    return ReadAll(stFile.Path());
}

using Numbers = std::vector<uint32_t>;

std::string Text(ByteView stBytes) {
    return {reinterpret_cast<const char *>(stBytes.pucData), stBytes.u32Length};
}

} // namespace

TEST(ReaderTest, EventsAreReadWithAllTheyHave) {
    const File stFile(strWhole);
    RecordingReader stReader(stFile.Path());
    EXPECT_EQ(stReader.Size(), strWhole.size());
    Event stEvent;
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.eKind, EventKind::Message);
    EXPECT_EQ(stEvent.u32Number, 8U);
    EXPECT_EQ(stEvent.u32Word, 3U);
    EXPECT_EQ(stEvent.u32Length, 6U);
    EXPECT_EQ(stEvent.i64Time, INT64_C(1700000000000000001));
    EXPECT_EQ(Text(stEvent.stBytes), Hex("1500030001"));
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.eKind, EventKind::Send);
    EXPECT_EQ(stEvent.u16Flags, EventFlag::InCallback);
    EXPECT_EQ(stEvent.u32Handle, 1U);
    EXPECT_EQ(Text(stEvent.stBytes), Hex("02000100"));
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.eKind, EventKind::SendResult);
    EXPECT_EQ(stEvent.u32BelongsTo, 9U);
    EXPECT_EQ(stEvent.s32Result, -76);
    EXPECT_EQ(stEvent.u64Duration, UINT64_C(0x123456789));
    EXPECT_EQ(stEvent.stBytes.u32Length, 0U);
    EXPECT_EQ(stEvent.i64Time, INT64_C(1700000001000000003));
    EXPECT_FALSE(stReader.Next(&stEvent));
    EXPECT_FALSE(stReader.Next(&stEvent));
    EXPECT_EQ(stReader.Problem(), "");
    EXPECT_EQ(stReader.Position(), strWhole.size());
}

TEST(ReaderTest, AnEventIsWrittenAsItIsRead) {
    Event stEvent;
    stEvent.eKind = EventKind::Message;
    stEvent.u32Number = 8;
    stEvent.u32Word = 3;
    stEvent.u32Length = 6;
    stEvent.i64Time = INT64_C(1700000000000000001);
    const std::string strBytes = Hex("1500030001");
    stEvent.stBytes = {reinterpret_cast<const uint8_t *>(strBytes.data()), 5};
    Packet stPacket;
    WriteEvent(stEvent, &stPacket);
    EXPECT_EQ(Text({stPacket.aucHead, stPacket.u32Head}) + Text(stPacket.stBytes) +
                  Text({stPacket.aucTail, stPacket.u32Tail}),
              Block(strMessage, 1));
    EXPECT_EQ(stPacket.Size(), Block(strMessage, 1).size());
}

TEST(ReaderTest, AFileCutAnywhereGivesWhatIsWhole) {
    const size_t uFirst = strHead.size() + Block(strMessage).size();
    const size_t uSecond = uFirst + Block(strManagement).size() + Block(strSend).size();
    for (size_t uLength = 0; uLength < strWhole.size(); ++uLength) {
        const Found stFound = ReadBytes(strWhole.substr(0, uLength));
        const Numbers au32Expected = uLength < uFirst    ? Numbers{}
                                     : uLength < uSecond ? Numbers{8}
                                                         : Numbers{8, 9};
        EXPECT_EQ(stFound.au32Numbers, au32Expected) << uLength;
        const bool bBetween = uLength == uFirst || uLength == uSecond ||
                              uLength == uFirst + Block(strManagement).size();
        EXPECT_EQ(stFound.strProblem.empty(), bBetween) << uLength << stFound.strProblem;
    }
}

TEST(ReaderTest, TheByteOfACutIsThatOfThePacketThatIsCut) {
    const size_t uFirst = strHead.size() + Block(strMessage).size();
    const Found stFound = ReadBytes(strWhole.substr(0, uFirst + 50));
    EXPECT_EQ(stFound.strProblem.find("byte " + std::to_string(uFirst) + ": truncated"), 0U)
        << stFound.strProblem;
}

TEST(ReaderTest, AnyByteMayBeDamaged) {
    const auto IsTypeOfBlock = [](size_t uByte) {
        size_t uBlock = strHead.size();
        for (const std::string &strData : {strMessage, strManagement, strSend, strResult}) {
            if (uByte >= uBlock && uByte < uBlock + 4) {
                return true;
            }
            uBlock += Block(strData).size();
        }
        return false;
    };
    for (size_t i = 0; i < strWhole.size(); ++i) {
        for (const char cChange : {'\x01', '\x80', '\xFF'}) {
            std::string strDamaged = strWhole;
            strDamaged[i] = static_cast<char>(strDamaged[i] ^ cChange);
            const Found stFound = ReadBytes(strDamaged);
            EXPECT_LE(stFound.au32Numbers.size(), 3U);
            // A block of a type that nobody knows may stand in any such file.
            if (stFound.au32Numbers.size() < 3 && !IsTypeOfBlock(i)) {
                EXPECT_NE(stFound.strProblem, "") << i;
            }
        }
    }
}

TEST(ReaderTest, ADamagedEventIsLeftOut) {
    const std::string strShort = strMessage.substr(0, 24 + 35);
    std::string strKind = strMessage;
    strKind[25] = 16;
    std::string strTags = strMessage.substr(0, 20);
    for (const std::string &strDamaged : {strShort, strKind, strTags}) {
        const Found stFound = ReadBytes(strHead + Block(strDamaged) + Block(strSend));
        EXPECT_EQ(stFound.au32Numbers, Numbers{9});
        EXPECT_EQ(stFound.strProblem, "byte 60: a damaged event");
    }
}

TEST(ReaderTest, AnotherVersionIsTold) {
    std::string strNewer = strMessage;
    strNewer[24] = 2;
    const Found stFound = ReadBytes(strHead + Block(strNewer) + Block(strSend));
    EXPECT_EQ(stFound.au32Numbers, Numbers{9});
    EXPECT_EQ(stFound.strProblem,
              "byte 60: an event of another version than 1, which this program does not know");
}

TEST(ReaderTest, AnImpossibleTimeIsTold) {
    std::string strLate = Block(strMessage);
    strLate[15] = '\x7F'; // the highest byte of the time
    const Found stFound = ReadBytes(strHead + strLate + Block(strSend));
    EXPECT_LE(stFound.au32Numbers.size(), 2U);
    EXPECT_EQ(stFound.au32Numbers.back(), 9U);
    const File stPlain(Hex("4d3cb2a1 0200 0400 00000000 00000000 ffff0000 fc000000"
                           "ffffffff ffffffff 41000000 41000000") +
                       strMessage);
    RecordingReader stReader(stPlain.Path());
    Event stEvent;
    while (stReader.Next(&stEvent)) {
        EXPECT_GE(stEvent.i64Time, 0);
    }
}

TEST(ReaderTest, ForeignPacketsAreLeftOut) {
    const std::string strForeign = Hex("000c 0004 68747470 0000 0000") + "GET / HTTP/1.1";
    const Found stFound = ReadBytes(strHead + Block(strForeign) + Block(strSend));
    EXPECT_EQ(stFound.au32Numbers, Numbers{9});
    EXPECT_EQ(stFound.strProblem, "byte 60: a packet that is no part of a recorded session");
}

TEST(ReaderTest, CompressedMapsBelongToARecording) {
    // "wimax_pdu_burst_handler"
    const std::string strMaps =
        Hex("000c 0017 77696d61785f7064755f62757273745f68616e646c6572 00 0000 0000 C000");
    const Found stFound = ReadBytes(strHead + Block(strMaps) + Block(strSend));
    EXPECT_EQ(stFound.au32Numbers, Numbers{9});
    EXPECT_EQ(stFound.strProblem, "");
}

TEST(ReaderTest, AFileWithoutEventsIsNoRecording) {
    EXPECT_EQ(ReadBytes(strHead + Block(strManagement)).strProblem,
              "byte 136: no event of a session");
    EXPECT_EQ(ReadBytes(strHead).strProblem, "byte 60: no event of a session");
    EXPECT_EQ(ReadBytes("root:x:0:0:root:/root:/bin/bash\n").strProblem,
              "byte 0: unknown file format");
    EXPECT_NE(ReadBytes("").strProblem, "");
}

TEST(ReaderTest, ACaptureOfAnotherLinkTypeIsNoRecording) {
    std::string strEthernet = strHead;
    strEthernet[28 + 8] = 1;
    EXPECT_EQ(ReadBytes(strEthernet).strProblem,
              "byte 0: a capture of link type 1, not of upper-layer PDUs (252)");
}

TEST(ReaderTest, PlainPcapIsReadInBothOrdersAndResolutions) {
    struct Order {
        const char *pcHead;
        const char *pcPacket;
        int64_t i64Nanoseconds;
    };
    // 1700000000 s and 500, of nanoseconds or of microseconds; a packet of 65 bytes.
    const Order astOrders[] = {
        {"4d3cb2a1 0200 0400 00000000 00000000 ffff0000 fc000000",
         "00f15365 f4010000 41000000 41000000", 500},
        {"a1b23c4d 0002 0004 00000000 00000000 0000ffff 000000fc",
         "6553f100 000001f4 00000041 00000041", 500},
        {"d4c3b2a1 0200 0400 00000000 00000000 ffff0000 fc000000",
         "00f15365 f4010000 41000000 41000000", 500000},
    };
    ASSERT_EQ(strMessage.size(), 65U);
    for (const Order &stOrder : astOrders) {
        const File stFile(Hex(stOrder.pcHead) + Hex(stOrder.pcPacket) + strMessage);
        RecordingReader stReader(stFile.Path());
        Event stEvent;
        ASSERT_TRUE(stReader.Next(&stEvent)) << stReader.Problem();
        EXPECT_EQ(stEvent.u32Number, 8U);
        EXPECT_EQ(stEvent.i64Time, INT64_C(1700000000000000000) + stOrder.i64Nanoseconds);
        EXPECT_FALSE(stReader.Next(&stEvent));
        EXPECT_EQ(stReader.Problem(), "");
    }
}

TEST(ReaderTest, AnEventThatACaptureCutShortIsLeftOut) {
    const File stFile(Hex("4d3cb2a1 0200 0400 00000000 00000000 ffff0000 fc000000"
                          "00f15365 f4010000 40000000 41000000") +
                      strMessage.substr(0, 64));
    const Found stFound = ReadAll(stFile.Path());
    EXPECT_EQ(stFound.au32Numbers, Numbers{});
    EXPECT_EQ(stFound.strProblem, "byte 24: an event was cut when it was captured");
}

TEST(ReaderTest, AMissingFileIsAProblem) {
    EXPECT_EQ(ReadAll("/nonexistent/session").strProblem,
              "cannot be opened: No such file or directory");
    EXPECT_NE(ReadAll("/").strProblem, "");
}

TEST(ReaderTest, APipeIsReadAsItComes) {
    const std::string strPath = File(std::string()).Path() + ".pipe";
    ASSERT_EQ(mkfifo(strPath.c_str(), 0600), 0);
    std::thread stWriter([&] {
        std::ofstream stPipe(strPath, std::ios::binary);
        for (const char cByte : strWhole.substr(0, strWhole.size() - 1)) {
            stPipe.put(cByte).flush();
        }
    });
    const Found stFound = ReadAll(strPath);
    stWriter.join();
    std::remove(strPath.c_str());
    EXPECT_EQ(stFound.au32Numbers, (Numbers{8, 9}));
    EXPECT_EQ(stFound.strProblem.find("byte " +
                                      std::to_string(strWhole.size() - Block(strResult).size())),
              0U);
}

TEST(ReaderTest, AGrowingFileIsFollowed) {
    const File stFile(strHead + Block(strMessage) + Block(strSend).substr(0, 20));
    int iWaits = 0;
    ReaderOptions stOptions;
    stOptions.bFollow = true;
    stOptions.fnIdle = [&] {
        ++iWaits;
        if (iWaits == 2) {
            stFile.Append(Block(strSend).substr(20));
        }
        if (iWaits == 4) {
            stFile.Append(Block(strResult));
        }
        return iWaits < 6;
    };
    RecordingReader stReader(stFile.Path(), stOptions);
    Event stEvent;
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.u32Number, 8U);
    EXPECT_EQ(iWaits, 0); // what is there is handed out before anything is waited for
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.u32Number, 9U);
    EXPECT_EQ(iWaits, 2);
    ASSERT_TRUE(stReader.Next(&stEvent));
    EXPECT_EQ(stEvent.u32Number, 10U);
    EXPECT_FALSE(stReader.Next(&stEvent));
    EXPECT_EQ(iWaits, 6);
    EXPECT_EQ(stReader.Problem(), "");
}

TEST(ReaderTest, FollowingEndsWhenTheFileIsReplaced) {
    const File stFile(strWhole);
    ReaderOptions stOptions;
    stOptions.bFollow = true;
    stOptions.fnIdle = [&] {
        std::remove(stFile.Path().c_str());
        return true;
    };
    RecordingReader stReader(stFile.Path(), stOptions);
    Event stEvent;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(stReader.Next(&stEvent));
    }
    EXPECT_FALSE(stReader.Next(&stEvent));
    EXPECT_EQ(stReader.Problem(), "");
}

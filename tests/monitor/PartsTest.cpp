// The monitor's parts: numbers and names, times, what belongs to what.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "ClientReport.h"
#include "Fields.h"
#include "Filter.h"
#include "JSON.h"
#include "Names.h"
#include "Summary.h"
#include "Times.h"

namespace {

ByteView ViewOf(const std::string &strBytes) {
    return {reinterpret_cast<const uint8_t *>(strBytes.data()),
            static_cast<uint32_t>(strBytes.size())};
}

// What is written by the function.
template <typename Function> std::string WrittenBy(Function fnWrite) {
    std::string strName = testing::TempDir() + "monitor.XXXXXX";
    const int iFile = mkstemp(strName.data());
    Writer stWriter(iFile);
    fnWrite(stWriter);
    stWriter.Flush();
    EXPECT_EQ(stWriter.iError, 0);
    close(iFile);
    std::stringstream stContent;
    stContent << std::ifstream(strName, std::ios::binary).rdbuf();
    (void)std::remove(strName.c_str());
    return stContent.str();
}

TEST(WriterTest, FractionsHaveAllTheirDecimals) {
    const auto Fraction = [](int64_t i64Value, uint32_t u32Divisor) {
        return WrittenBy([=](Writer &stWriter) { stWriter.PutFraction(i64Value, u32Divisor); });
    };
    EXPECT_EQ(Fraction(-227, 4), "-56.75");
    EXPECT_EQ(Fraction(-1, 4), "-0.25");
    EXPECT_EQ(Fraction(0, 4), "0");
    EXPECT_EQ(Fraction(12, 1), "12");
    EXPECT_EQ(Fraction(1, 65536), "0.0000152587890625");
    EXPECT_EQ(Fraction(INT64_MIN, 1), "-9223372036854775808");
}

TEST(WriterTest, TextsLongerThanTheBufferAreWritten) {
    const std::string strLong(3 * Writer::uSize + 1, 'x');
    EXPECT_EQ(WrittenBy([&](Writer &stWriter) {
                  stWriter.Put("a");
                  stWriter.Put(strLong);
                  stWriter.PutHex(ViewOf("\x01\xFE"), ":");
              }),
              "a" + strLong + "01:fe");
}

TEST(WriterTest, AfterAFailureNothingIsWritten) {
    Writer stWriter(-1);
    stWriter.Put("a");
    stWriter.Flush();
    EXPECT_EQ(stWriter.iError, EBADF);
    stWriter.Put(std::string(3 * Writer::uSize, 'x'));
    EXPECT_EQ(stWriter.u64Bytes, 0U);
}

TEST(TimesTest, MomentsAreShownToTheNanosecond) {
    const auto Time = [](int64_t i64Time) {
        return WrittenBy([=](Writer &stWriter) { PutTime(stWriter, i64Time, 'T'); });
    };
    EXPECT_EQ(Time(0), "1970-01-01T00:00:00.000000000");
    EXPECT_EQ(Time(-1), "1969-12-31T23:59:59.999999999");
    EXPECT_EQ(Time(1700000000000000001), "2023-11-14T22:13:20.000000001");
    EXPECT_EQ(Time(INT64_MIN), "1677-09-21T00:12:43.145224192");
    EXPECT_EQ(Time(INT64_MAX), "2262-04-11T23:47:16.854775807");
}

TEST(TimesTest, SpansAreShownInMilliseconds) {
    const auto Span = [](uint64_t u64Span) {
        return WrittenBy([=](Writer &stWriter) { PutMilliseconds(stWriter, u64Span); });
    };
    EXPECT_EQ(Span(999), "0.000");
    EXPECT_EQ(Span(1'002'003), "1.002");
    EXPECT_EQ(Span(UINT64_MAX), "18446744073709.551");
}

TEST(NamesTest, CharactersAreFoundInUTF8) {
    EXPECT_EQ(CharacterLength("a"), 1U);
    EXPECT_EQ(CharacterLength("\xC3\xA4"), 2U);
    EXPECT_EQ(CharacterLength("\xE2\x82\xAC"), 3U);
    EXPECT_EQ(CharacterLength("\xF0\x9F\x98\x80"), 4U);
    EXPECT_EQ(CharacterLength("\xF4\x8F\xBF\xBF"), 4U);
}

TEST(NamesTest, WhatIsNoUTF8IsNone) {
    for (const char *pcText : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xE2\x82",
                               "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                               "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC3\x28"}) {
        EXPECT_EQ(CharacterLength(pcText), 0U) << pcText;
    }
    EXPECT_EQ(CharacterLength(""), 0U);
}

TEST(NamesTest, TextsAreQuotedOnOneLine) {
    const auto Quoted = [](const std::string &strText) {
        return WrittenBy([&](Writer &stWriter) { PutQuoted(stWriter, strText); });
    };
    EXPECT_EQ(Quoted("a \"b\" \\"), R"("a \"b\" \\")");
    EXPECT_EQ(Quoted("\n\x1b\x7f\xff"), R"("\x0a\x1b\x7f\xff")");
    EXPECT_EQ(Quoted("\xC3\xA4\xE2\x82\xAC"), "\"\xC3\xA4\xE2\x82\xAC\"");
    EXPECT_EQ(Quoted("\xC2\x9B"), R"("\xc2\x9b")"); // a control sequence in one character
}

TEST(NamesTest, TypesHaveNamesAndNumbers) {
    EXPECT_EQ(TypeOf("network_entry"), 2);
    EXPECT_EQ(TypeOf("MAC_MGMT"), 21);
    EXPECT_EQ(TypeOf("0x24"), 36);
    EXPECT_EQ(TypeOf("65535"), 65535);
    for (const char *pcText : {"", "65536", "0x", "-1", "1 ", "network", "0x1g", "99999999999"}) {
        EXPECT_FALSE(TypeOf(pcText).has_value()) << pcText;
    }
}

TEST(JSONTest, TextsOfAnyBytesAreEscaped) {
    const auto Text = [](const std::string &strText) {
        return WrittenBy([&](Writer &stWriter) { PutJSONText(stWriter, strText); });
    };
    EXPECT_EQ(Text("a\"\\/b"), R"("a\"\\/b")");
    EXPECT_EQ(Text(std::string("\0\x1f\x7f", 3)), R"("\u0000\u001f\u007f")");
    EXPECT_EQ(Text("\xC3\xA4\xFF"), "\"\xC3\xA4\xEF\xBF\xBD\"");
}

TEST(ClientReportTest, NothingOfAMessageIsLeftForTheNextOne) {
    const std::string strStatus("\x15\x00\x03\x00\x01\x00\x00\x00", 8);
    const std::string strOn(ClientReportOf(ViewOf(strStatus), 8));
    EXPECT_NE(strOn.find("IS ENABLED"), std::string::npos);
    const std::string strCut = strStatus.substr(0, 4);
    EXPECT_NE(ClientReportOf(ViewOf(strCut), 4).find("IS DISABLED"), std::string::npos);
    EXPECT_EQ(ClientReportOf(ViewOf(strStatus), 8), strOn);
}

TEST(ClientReportTest, MessagesLongerThanARecordAreCut) {
    const std::string strLong = std::string("\x15\x00\x03\x00\x01\x00\x00\x00", 8) +
                                std::string(2 * size_t{WIMAX_MESSAGE_SIZE}, 'x');
    EXPECT_NE(ClientReportOf(ViewOf(strLong), UINT32_MAX).find("IS ENABLED"), std::string::npos);
}

TEST(SummaryTest, TimesAreKeptToWithinOnePartIn64) {
    Times stTimes;
    for (uint64_t u64Time = 1; u64Time <= 1000; ++u64Time) {
        stTimes.Add(u64Time * 1'000'000);
    }
    EXPECT_EQ(stTimes.Count(), 1000U);
    EXPECT_EQ(stTimes.Least(), 1'000'000U);
    EXPECT_EQ(stTimes.Most(), 1'000'000'000U);
    EXPECT_NEAR(static_cast<double>(stTimes.Percentile(50)), 500e6, 500e6 / 64);
    EXPECT_NEAR(static_cast<double>(stTimes.Percentile(99)), 990e6, 990e6 / 64);
}

TEST(SummaryTest, FewAndExtremeTimesAreExact) {
    for (const uint64_t u64Time : {uint64_t{0}, uint64_t{63}, uint64_t{64}, uint64_t{127},
                                   uint64_t{128}, uint64_t{123456789}, UINT64_MAX}) {
        Times stTimes;
        stTimes.Add(u64Time);
        EXPECT_EQ(stTimes.Percentile(50), u64Time);
        EXPECT_EQ(stTimes.Percentile(99), u64Time);
    }
}

// A session of events that are made here.
class SessionTest : public testing::Test {
  protected:
    Entry Follow(EventKind eKind, const std::string &strBytes, int64_t i64Time = 0,
                 uint32_t u32BelongsTo = 0, int32_t s32Result = 0) {
        m_strBytes = strBytes;
        m_stEvent.eKind = eKind;
        ++m_stEvent.u32Number;
        m_stEvent.i64Time = i64Time;
        m_stEvent.u32BelongsTo = u32BelongsTo;
        m_stEvent.s32Result = s32Result;
        m_stEvent.stBytes = ViewOf(m_strBytes);
        m_stEvent.u32Length = m_stEvent.stBytes.u32Length;
        return m_stSession.Follow(m_stEvent);
    }

    const std::string m_strRequest = std::string("\x07\0\1\0", 4); // station information
    Session m_stSession;
    Event m_stEvent;
    std::string m_strBytes;
};

TEST_F(SessionTest, AnAnswerIsThatToTheLastRequest) {
    Follow(EventKind::Send, m_strRequest, 100);
    Follow(EventKind::Send, m_strRequest, 200);
    Entry stEntry = Follow(EventKind::Message, m_strRequest, 250);
    EXPECT_EQ(stEntry.u32Answers, 2U);
    EXPECT_EQ(stEntry.i64Latency, 50);
    stEntry = Follow(EventKind::Message, m_strRequest, 260);
    EXPECT_EQ(stEntry.u32Answers, 1U);
    EXPECT_EQ(stEntry.i64Latency, 160);
    EXPECT_EQ(Follow(EventKind::Message, m_strRequest, 270).u32Answers, 0U);
    EXPECT_TRUE(m_stSession.UnansweredRequests().empty());
}

TEST_F(SessionTest, NothingIsAnsweredBeforeItIsAskedOrTenMinutesLater) {
    Follow(EventKind::Send, m_strRequest, 1000);
    EXPECT_EQ(Follow(EventKind::Message, m_strRequest, 999).u32Answers, 0U);
    Follow(EventKind::Send, m_strRequest, 0);
    EXPECT_EQ(Follow(EventKind::Message, m_strRequest, 600'000'000'001).u32Answers, 0U);
    Follow(EventKind::Send, m_strRequest, INT64_MIN);
    EXPECT_EQ(Follow(EventKind::Message, m_strRequest, INT64_MAX).u32Answers, 0U);
    ASSERT_EQ(m_stSession.UnansweredRequests().size(), 1U);
    EXPECT_EQ(m_stSession.UnansweredRequests()[0].u64Requests, 3U);
}

TEST_F(SessionTest, RequestsThatWaitAreBounded) {
    for (int i = 0; i < 100; ++i) {
        Follow(EventKind::Send, m_strRequest, i);
    }
    int iAnswered = 0;
    for (int i = 0; i < 100; ++i) {
        iAnswered += Follow(EventKind::Message, m_strRequest, 200).u32Answers != 0 ? 1 : 0;
    }
    EXPECT_EQ(iAnswered, 16);
    EXPECT_EQ(m_stSession.UnansweredRequests()[0].u64Requests, 84U);
}

TEST_F(SessionTest, AResultKnowsItsRequestForTheNext256Events) {
    Follow(EventKind::Send, m_strRequest);
    Entry stEntry = Follow(EventKind::SendResult, "", 0, 1);
    ASSERT_TRUE(stEntry.stCodes.has_value());
    EXPECT_EQ(stEntry.stCodes->u16Type, 7);
    for (int i = 0; i < 256; ++i) {
        Follow(EventKind::Message, m_strRequest);
    }
    EXPECT_FALSE(Follow(EventKind::SendResult, "", 0, 1).stCodes.has_value());
    EXPECT_FALSE(Follow(EventKind::SendResult, "", 0, 999).stCodes.has_value());
}

TEST_F(SessionTest, WhatFailedIsToldByTheResultOfEachCall) {
    const auto Fails = [&](EventKind eKind, int32_t s32Result) {
        Follow(eKind, "", 0, 1, s32Result);
        return HasFailed(m_stEvent);
    };
    EXPECT_FALSE(Fails(EventKind::OpenResult, 1));
    EXPECT_FALSE(Fails(EventKind::OpenResult, 0));
    EXPECT_TRUE(Fails(EventKind::OpenResult, -1));
    EXPECT_FALSE(Fails(EventKind::SendResult, 0));
    EXPECT_TRUE(Fails(EventKind::SendResult, 1));
    EXPECT_FALSE(Fails(EventKind::MessageDone, 1));
}

TEST(OptionsTest, TheLastWordsAreTheFileAndItsOptions) {
    Options stOptions;
    EXPECT_EQ(ReadOptions({"--json", "-", "--raw"}, &stOptions), "");
    EXPECT_EQ(stOptions.strFile, "-");
    EXPECT_EQ(stOptions.eForm, OutputForm::JSON);
    EXPECT_TRUE(stOptions.bRaw);
    EXPECT_EQ(ReadOptions({}, &(stOptions = {})), "which file?");
    EXPECT_EQ(ReadOptions({"--type"}, &(stOptions = {})), "--type needs a value");
    EXPECT_EQ(ReadOptions({"--scrub", ""}, &(stOptions = {})), "--scrub does not go with ");
}

TEST(OptionsTest, MomentsAreDatesOrSecondsSinceTheStart) {
    Options stOptions;
    EXPECT_EQ(
        ReadOptions({"--from", "2023-11-14T22:13:20.000000001", "--to", "1.5", "x"}, &stOptions),
        "");
    EXPECT_EQ(stOptions.stFilter.stFrom->i64Nanoseconds, 1700000000000000001);
    EXPECT_FALSE(stOptions.stFilter.stFrom->bSinceStart);
    EXPECT_EQ(stOptions.stFilter.stTo->i64Nanoseconds, 1'500'000'000);
    EXPECT_TRUE(stOptions.stFilter.stTo->bSinceStart);
}

} // namespace

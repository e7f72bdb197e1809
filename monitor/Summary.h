// A session in figures: messages and rates by type, answer times, failed calls, unanswered
// requests.
#ifndef MONITOR_SUMMARY_H
#define MONITOR_SUMMARY_H

#include <map>
#include <tuple>

#include "Session.h"
#include "Writer.h"

// How often times occurred. Of any number of them the least and the most are kept, and all others
// to within one part in 64.
class Times {
  public:
    void Add(uint64_t u64Time);
    uint64_t Count() const { return m_u64Count; }
    uint64_t Least() const { return m_u64Least; }
    uint64_t Most() const { return m_u64Most; }
    // The time that this part of 100 does not exceed.
    uint64_t Percentile(uint32_t u32Percent) const;

  private:
    uint64_t m_u64Count = 0;
    uint64_t m_u64Least = UINT64_MAX;
    uint64_t m_u64Most = 0;
    std::vector<uint64_t> m_au64Counts;
};

class Summary {
  public:
    void Add(const Entry &stEntry);
    void Put(Writer &stWriter, const Session &stSession) const;

  private:
    struct Traffic {
        uint64_t u64Messages = 0;
        uint64_t u64Bytes = 0;
    };
    struct Calls {
        uint64_t u64Failed = 0;
        Times stTimes;
    };
    using TrafficKey = std::tuple<bool, uint16_t, uint16_t>;               // sent, type, subtype
    using FailureKey = std::tuple<EventKind, uint16_t, uint16_t, int32_t>; // with the result

    void PutMessages(Writer &stWriter) const;
    void PutAnswerTimes(Writer &stWriter) const;
    void PutCalls(Writer &stWriter) const;

    uint64_t m_u64Events = 0;
    int64_t m_i64First = 0;
    int64_t m_i64Last = 0;
    std::map<TrafficKey, Traffic> m_stTraffic;
    Traffic m_stOtherTraffic; // of kinds for which there was no more room
    std::map<std::pair<uint16_t, uint16_t>, Times> m_stAnswers;
    std::map<EventKind, Calls> m_stCalls;
    std::map<FailureKey, uint64_t> m_stFailures;
    uint64_t m_u64OtherFailures = 0;
};

#endif

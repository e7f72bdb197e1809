#include "Filter.h"

bool Filter::IsInTime(int64_t i64Time) const {
    // Times of a damaged file may be any.
    const auto Since = [&](const Moment &stMoment) {
        const int64_t i64Start = stMoment.bSinceStart ? *m_i64Start : 0;
        return static_cast<int64_t>(static_cast<uint64_t>(i64Start) +
                                    static_cast<uint64_t>(stMoment.i64Nanoseconds));
    };
    return (!m_stOptions.stFrom || i64Time >= Since(*m_stOptions.stFrom)) &&
           (!m_stOptions.stTo || i64Time <= Since(*m_stOptions.stTo));
}

bool Filter::HasCodes(const Entry &stEntry) const {
    if (!m_stOptions.u16Type && !m_stOptions.u16SubType && m_stOptions.pstMessage == nullptr) {
        return true;
    }
    return stEntry.stCodes &&
           (!m_stOptions.u16Type || *m_stOptions.u16Type == stEntry.stCodes->u16Type) &&
           (!m_stOptions.u16SubType || *m_stOptions.u16SubType == stEntry.stCodes->u16SubType) &&
           (m_stOptions.pstMessage == nullptr || m_stOptions.pstMessage == stEntry.pstSubject ||
            m_stOptions.pstMessage == stEntry.pstMessage);
}

bool Filter::HasResult(const Event &stEvent) const {
    switch (m_stOptions.eResult) {
    case ResultFilter::Any:
        return true;
    case ResultFilter::Ok:
        return IsResult(stEvent.eKind) && !HasFailed(stEvent);
    case ResultFilter::Failed:
        return HasFailed(stEvent);
    case ResultFilter::Value:
        return IsResult(stEvent.eKind) && stEvent.s32Result == m_stOptions.s32Result;
    }
    return false;
}

bool Filter::Shows(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    if (!m_i64Start) {
        m_i64Start = stEvent.i64Time;
    }
    return IsInTime(stEvent.i64Time) && HasCodes(stEntry) && HasResult(stEvent) &&
           (!m_stOptions.bSent || *m_stOptions.bSent == IsSent(stEvent));
}

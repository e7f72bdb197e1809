// Which entries of a session are shown.
#ifndef MONITOR_FILTER_H
#define MONITOR_FILTER_H

#include "Options.h"

class Filter {
  public:
    explicit Filter(const FilterOptions &stOptions) : m_stOptions(stOptions) {}

    // Whether the next entry of the session is shown.
    bool Shows(const Entry &stEntry);

  private:
    bool IsInTime(int64_t i64Time) const;
    bool HasCodes(const Entry &stEntry) const;
    bool HasResult(const Event &stEvent) const;

    FilterOptions m_stOptions;
    std::optional<int64_t> m_i64Start;
};

#endif

// A session as one page for a browser, which needs nothing else: charts, a ladder and a table.
#ifndef MONITOR_PAGE_H
#define MONITOR_PAGE_H

#include <array>
#include <map>
#include <string>

#include "Curve.h"
#include "Session.h"
#include "Writer.h"

class Page {
  public:
    void Add(const Entry &stEntry);
    void Put(Writer &stWriter, std::string_view strTitle) const;

  private:
    // One line of the table, and the object that --json prints for it.
    struct Row {
        size_t uKind = 0;
        uint64_t u64Place = 0; // among those of its kind
        uint32_t u32Number = 0;
        int64_t i64Time = 0;
        std::string_view strName; // of the catalogue
        uint32_t u32Flags = 0;
        uint32_t u32BelongsTo = 0; // the request that it answers or the call that it ends
        int64_t i64Took = 0;
        std::string strObject;
    };
    // Entries that are much the same. When there are too many, every second one goes, and so on.
    struct Kind {
        uint64_t u64Entries = 0;
        uint64_t u64Step = 1;
        size_t uBytes = 0;
    };
    struct Change {
        int64_t i64Time = 0;
        uint32_t u32State = 0;
        std::string_view strState; // its name, if it has one
        uint32_t u32Number = 0;
    };
    struct Counted {
        int64_t i64Time = 0;
        uint64_t u64Value = 0;
    };
    using CurveName = std::pair<uint32_t, std::string>; // the chart, and the name in it

    void AddRow(const Entry &stEntry);
    void AddMeasurements(const Entry &stEntry);
    void AddPoint(uint32_t u32Chart, const std::string &strCurve, const Point &stPoint);
    void AddSums(const Entry &stEntry);
    void AddRate(uint32_t u32Chart, std::string_view strName, uint64_t u64Value,
                 const Event &stEvent);
    void AddChange(const Change &stChange);
    void Thin();
    void PutRows(Writer &stWriter) const;
    void PutCharts(Writer &stWriter) const;

    uint64_t m_u64Events = 0;
    uint64_t m_u64Rows = 0; // with those that went
    int64_t m_i64Start = 0;
    size_t m_uBytes = 0;
    std::vector<Row> m_astRows;
    std::map<std::pair<EventKind, const MessageRow *>, size_t> m_auKinds;
    std::vector<Kind> m_astKinds;
    std::map<CurveName, Curve> m_stCurves;
    std::map<std::string_view, Counted> m_stCounters;
    std::array<Frequency, 2> m_astFrequencies; // sent, received
    std::vector<Change> m_astChanges;
    std::string m_strText; // of the object at hand
    Writer m_stText{&m_strText};
};

#endif

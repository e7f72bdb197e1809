// The files that the simulated modem finds in a run: one in memory, whatever its name. What it
// writes goes nowhere.
#ifndef FUZZ_ONE_FILE_H
#define FUZZ_ONE_FILE_H

#include <string>
#include <utility>

#include "scenario/Files.h"

class OneFile : public Files {
  public:
    // Without bytes there is no file.
    explicit OneFile(std::string strBytes = "") { Put(std::move(strBytes)); }

    void Put(std::string strBytes) { m_strBytes = std::move(strBytes); }
    std::optional<std::string> Read(const std::string & /*strPath*/) override {
        return m_strBytes.empty() ? std::nullopt : std::optional(m_strBytes);
    }
    std::optional<uint64_t> SizeOf(const std::string & /*strPath*/) override {
        return m_strBytes.empty() ? std::nullopt : std::optional<uint64_t>(m_strBytes.size());
    }
    bool Replace(const std::string & /*strPath*/, const std::string & /*strText*/) override {
        return true;
    }

  private:
    std::string m_strBytes;
};

#endif

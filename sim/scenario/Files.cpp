#include "scenario/Files.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "scenario/TextFile.h"

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

std::optional<std::string> Files::Read(const std::string &strPath) { return ReadTextFile(strPath); }

std::optional<uint64_t> Files::SizeOf(const std::string &strPath) {
    std::error_code stError;
    const bool bRegular = std::filesystem::is_regular_file(strPath, stError);
    const File pstFile(bRegular ? std::fopen(strPath.c_str(), "rb") : nullptr, &std::fclose);
    if (pstFile == nullptr) {
        return std::nullopt;
    }
    const uint64_t u64Size = std::filesystem::file_size(strPath, stError);
    return stError ? std::nullopt : std::optional(u64Size);
}

bool Files::Replace(const std::string &strPath, const std::string &strText) {
    const std::string strNew = strPath + ".new";
    File pstFile(std::fopen(strNew.c_str(), "wb"), &std::fclose);
    if (pstFile == nullptr) {
        return false;
    }
    const bool bWritten =
        std::fwrite(strText.data(), 1, strText.size(), pstFile.get()) == strText.size();
    const bool bClosed = std::fclose(pstFile.release()) == 0;
    return bWritten && bClosed && std::rename(strNew.c_str(), strPath.c_str()) == 0;
}

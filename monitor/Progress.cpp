#include "Progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

void Progress::Update(uint64_t u64Position, uint64_t u64Size) {
    constexpr uint64_t u64Width = 50;
    constexpr int64_t i64Pause = 100;
    const int64_t i64Now = std::chrono::duration_cast<std::chrono::milliseconds>(
                               std::chrono::steady_clock::now().time_since_epoch())
                               .count();
    if (i64Now - m_i64Last < i64Pause || u64Size == 0) {
        return;
    }
    m_i64Last = i64Now;
    m_bOnScreen = true;
    // The file may have grown.
    const uint64_t u64Done = std::min(u64Position, u64Size);
    const auto u64Marks = static_cast<size_t>(u64Done / ((u64Size + u64Width - 1) / u64Width));
    std::string strBar(u64Marks, '#');
    strBar.resize(u64Width, ' ');
    (void)std::fprintf(stderr, "\r[%s] %3u %%", strBar.c_str(),
                       static_cast<unsigned>(u64Done / ((u64Size + 99) / 100)));
}

void Progress::Clear() {
    if (m_bOnScreen) {
        (void)std::fputs("\r\x1b[K", stderr);
        m_bOnScreen = false;
    }
}

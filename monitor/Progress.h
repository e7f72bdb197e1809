// How much of a long file has been read, as a line on a terminal.
#ifndef MONITOR_PROGRESS_H
#define MONITOR_PROGRESS_H

#include <cstdint>

class Progress {
  public:
    explicit Progress(bool bShown) : m_bShown(bShown) {}
    ~Progress() { Clear(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    // Call it often: it looks at the clock now and then.
    void Show(uint64_t u64Position, uint64_t u64Size) {
        if (m_bShown && ++m_u32Calls % 256 == 0) {
            Update(u64Position, u64Size);
        }
    }
    // Takes the line away.
    void Clear();

  private:
    void Update(uint64_t u64Position, uint64_t u64Size);

    bool m_bShown;
    bool m_bOnScreen = false;
    uint32_t m_u32Calls = 0;
    int64_t m_i64Last = 0;
};

// Files from this size on are long.
inline constexpr uint64_t u64LongFile = uint64_t{16} * 1024 * 1024;

#endif

// Where user packets come from: one source makes packets of one kind, at moments that follow a
// pattern.
#ifndef PACKET_SOURCE_H
#define PACKET_SOURCE_H

#include <functional>
#include <string>
#include <vector>

#include "air/Classifier.h"
#include "scenario/Scenario.h"
#include "time/ModemTime.h"
#include "time/Random.h"

class PacketSource {
  public:
    // Packets of one size, one after the other, at fRate bytes a second.
    PacketSource(bool bUplink, double fRate, uint32_t u32PacketSize);
    // Reads a [[generator]].
    PacketSource(const Section &stSection, Random &stRandom);

    bool Uplink() const { return m_bUplink; }
    // The flow that it feeds, whatever the rules say; 0: as they say.
    uint32_t SFID() const { return m_u32SFID; }
    const PacketHeader &Header() const { return m_stHeader; }

    // Begins at this moment.
    void Start(ModemTime iNow);
    // Its next packet comes then; never without one.
    std::optional<ModemTime> Next() const;
    // Hands over the packets that come until iNow, in their order; once pfnTake has returned
    // false, the rest is only counted. Returns how many were not handed over.
    uint64_t Take(ModemTime iNow, const std::function<bool(ModemTime, uint32_t)> &pfnTake);

  private:
    enum class Pattern : uint8_t { Constant, Poisson, OnOff, File };
    struct Listed {
        ModemTime iAt;
        uint32_t u32Size;
    };

    void ReadFile(const Section &stSection);
    // When the packet of this number comes, counted from the start and from 1 on.
    ModemTime TimeOf(uint64_t u64Number) const;
    // How many of them there are in so much time.
    uint64_t NumberWithin(ModemTime iTime) const;
    void Advance();

    bool m_bUplink;
    uint32_t m_u32SFID = 0;
    PacketHeader m_stHeader{};
    Pattern m_ePattern = Pattern::Constant;
    double m_fInterval = 0; // between two packets, microseconds; 0: there are none
    uint32_t m_u32PacketSize;
    ModemTime m_iOn = 0;
    ModemTime m_iOff = 0;
    std::vector<Listed> m_astListed;
    Random *m_pstRandom = nullptr; // of Poisson

    ModemTime m_iStart = 0;
    uint64_t m_u64Done = 0;
    ModemTime m_iNext = 0; // of Poisson, from the start
};

#endif

// What goes wrong between the modem and the client, as the scenario has it:
// sends that fail, and messages from the modem that are lost, late, repeated,
// out of order, cut short or damaged.
#ifndef FAULTS_H
#define FAULTS_H

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "modem/Modem.h"
#include "scenario/Scenario.h"
#include "time/Random.h"
#include "time/Scheduler.h"

// A fault as whoever steers the modem sees it.
struct FaultReport {
    uint32_t u32Number; // counted from 1, the scenario's first
    const char *pcKind;
    bool bOn;
    uint64_t u64Hits;
};

class Faults {
  public:
    using Deliver = std::function<void(MessageBytes)>;

    enum Kind : uint32_t { Fail, Drop, Delay, Repeat, Reorder, Truncate, Corrupt };
    static const std::array<ScenarioWord, 7> astKinds; // in their order

    struct Fault {
        uint32_t u32Kind;
        std::optional<uint32_t> u32Type; // any, when not given
        std::optional<uint32_t> u32SubType;
        uint32_t u32Skip;    // so many matching messages go by first
        uint32_t u32Left;    // then so many are hit
        double fProbability; // each of them with this probability
        int32_t iCode;
        ModemTime iDelay;
        uint32_t u32Times;
        std::optional<uint32_t> u32Length; // payload bytes left, any when not given
        std::optional<uint32_t> u32Offset; // of the damage, anywhere when not given
        std::vector<uint8_t> aucBytes;     // the damage, wild numbers when not given
        uint64_t u64Seed;
        // For each kind of message: others that come in between change nothing.
        std::map<std::pair<uint32_t, uint32_t>, Random> astRandoms;
        bool bOn = true; // one that is off counts no messages
        uint64_t u64Hits = 0;

        bool Hits(uint32_t u32OfType, uint32_t u32OfSubType);
        Random &RandomFor(uint32_t u32OfType, uint32_t u32OfSubType);
    };

    // Reads [[fault]]. What gets through is handed to pfnDeliver, what is lost to pfnLose.
    Faults(const Section &stRoot, uint64_t u64Seed, Scheduler &stScheduler, Deliver pfnDeliver,
           Deliver pfnLose);

    // The code that a send of this request has to fail with.
    std::optional<int32_t> SendFailure(uint32_t u32Type, uint32_t u32SubType);
    // Throws ScenarioError.
    Fault Read(const Section &stSection) const;
    // One more, behind all others; returns its number.
    uint32_t Add(Fault stFault);
    // False when there is none with this number.
    bool Switch(uint32_t u32Number, bool bOn);
    void SwitchAll(bool bOn);
    // From now on all faults follow another seed.
    void SetSeed(uint64_t u64Seed);
    std::vector<FaultReport> Reports() const;
    // Sends a message of the modem through all the faults.
    void Pass(MessageBytes aucMessage);

  private:
    uint64_t SeedOfFault(size_t uIndex) const;
    // Lets the message go through the faults from uFirst on.
    void PassFrom(size_t uFirst, MessageBytes aucMessage);
    static void DamageMessage(Fault &stFault, MessageBytes *paucMessage);
    void LetOut(MessageBytes aucMessage);

    uint64_t m_u64Seed;
    Scheduler &m_stScheduler;
    Deliver m_pfnDeliver;
    Deliver m_pfnLose;
    std::vector<Fault> m_astFaults;
    // Reordered messages wait here for the next one to overtake them.
    std::vector<MessageBytes> m_astHeldBack;
    Timer m_stHoldLimit;
};

#endif

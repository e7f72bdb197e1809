// What goes wrong between the modem and the client, as the scenario has it:
// sends that fail, and messages from the modem that are lost, late, repeated,
// out of order, cut short or damaged.
#ifndef FAULTS_H
#define FAULTS_H

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "modem/Modem.h"
#include "scenario/Scenario.h"
#include "time/Random.h"
#include "time/Scheduler.h"

class Faults {
  public:
    using Deliver = std::function<void(MessageBytes)>;

    // Reads [[fault]]. What gets through is handed to pfnDeliver, what is lost to pfnLose.
    Faults(const Section &stRoot, uint64_t u64Seed, Scheduler &stScheduler, Deliver pfnDeliver,
           Deliver pfnLose);

    // The code that a send of this request has to fail with.
    std::optional<int32_t> SendFailure(uint32_t u32Type, uint32_t u32SubType);
    // Sends a message of the modem through all the faults.
    void Pass(MessageBytes aucMessage);

  private:
    enum Kind : uint32_t { Fail, Drop, Delay, Repeat, Reorder, Truncate, Corrupt };

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

        bool Hits(uint32_t u32OfType, uint32_t u32OfSubType);
        Random &RandomFor(uint32_t u32OfType, uint32_t u32OfSubType);
    };

    static Fault Read(const Section &stSection, uint64_t u64Seed, size_t uIndex);
    // Lets the message go through the faults from uFirst on.
    void PassFrom(size_t uFirst, MessageBytes aucMessage);
    static void DamageMessage(Fault &stFault, MessageBytes *paucMessage);
    void LetOut(MessageBytes aucMessage);

    Scheduler &m_stScheduler;
    Deliver m_pfnDeliver;
    Deliver m_pfnLose;
    std::vector<Fault> m_astFaults;
    // Reordered messages wait here for the next one to overtake them.
    std::vector<MessageBytes> m_astHeldBack;
    Timer m_stHoldLimit;
};

#endif

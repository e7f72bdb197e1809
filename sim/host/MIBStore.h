// The MIB attributes 0 to 1699: which there are, their sizes and keys, which of
// them can be written, and their values. Parts of the modem whose attributes are
// live say how they are read.
#ifndef MIB_STORE_H
#define MIB_STORE_H

#include <array>
#include <functional>
#include <map>
#include <vector>

#include "MIBRecord.h"
#include "modem/Modem.h"

// Statuses of the records in answers.
namespace MIBStatus {
inline constexpr int32_t Success = 0;
inline constexpr int32_t UnknownAttribute = -1;
inline constexpr int32_t WrongKey = -2;
inline constexpr int32_t WrongSize = -3;
inline constexpr int32_t ReadOnly = -4;
inline constexpr int32_t NotKept = -5; // the state file cannot be written
} // namespace MIBStatus

class MIBStore : public Subsystem {
  public:
    using Bytes = std::vector<uint8_t>;
    using Reader = std::function<Bytes()>;
    using Writer = std::function<void(ByteView stValue)>;

    // Reads [mib] and [[attribute]].
    explicit MIBStore(Modem &stModem);
    void Start() override;

    // From now on the attribute's value is what pfnRead returns, whenever it is
    // asked for. The last one to say so counts.
    void Provide(uint32_t u32AttributeID, Reader pfnRead);
    // The value of an attribute without keys.
    Bytes ValueOf(uint32_t u32AttributeID) const;
    // From now on a write of the attribute is handed to pfnWrite instead of being
    // stored, when the attribute can be written.
    void OnWrite(uint32_t u32AttributeID, Writer pfnWrite);

  private:
    static constexpr const char *pcStateSection = "mib";

    using Place = std::array<uint32_t, 3>; // attribute ID, first key, second key

    struct Outcome {
        int32_t iStatus;
        Bytes aucValue;
    };

    int32_t GetOne(const Request &stRequest);
    int32_t SetOne(const Request &stRequest);
    int32_t GetSeveral(const Request &stRequest);
    int32_t SetSeveral(const Request &stRequest);
    Outcome Read(ByteView stRecord) const;
    Bytes ValueAt(const Place &u32Place, uint32_t u32Size) const;
    int32_t Write(ByteView stRecord, ByteView stValue);
    bool Writable(uint32_t u32AttributeID) const;
    static Bytes AnswerTo(ByteView stRecord, const Outcome &stOutcome);
    void TellList(uint32_t u32SubType, const std::vector<Bytes> &aaucRecords);

    Modem &m_stModem;
    bool m_bSupported;
    std::map<Place, Bytes> m_astFromScenario;
    std::map<Place, Bytes> m_astValues;
    std::map<uint32_t, Reader> m_apfnReaders;
    std::map<uint32_t, Writer> m_apfnWriters;
};

#endif

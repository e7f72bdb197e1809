// Requests that set and get the WiMAX options.
#include <algorithm>

#include "host/HostSubsystems.h"
#include "modem/Modem.h"

namespace {

// Results of a single option, status of a set-all answer.
constexpr uint32_t u32Success = 0;
constexpr uint32_t u32UnknownOption = 1;
constexpr uint32_t u32ValueOutOfRange = 2;

constexpr uint32_t MaskOf(Options::Bit eBit) { return uint32_t{1} << eBit; }

constexpr uint32_t u32AllInUse = [] {
    uint32_t u32Mask = 0;
    for (const Options::Row &stRow : Options::astRows) {
        u32Mask |= MaskOf(stRow.eBit);
    }
    return u32Mask;
}();

// The row of the one option that the specifier names, or null.
const Options::Row *RowOf(uint32_t u32Specifier) {
    const auto *pstRow =
        std::find_if(Options::astRows.begin(), Options::astRows.end(),
                     [&](const Options::Row &stRow) { return MaskOf(stRow.eBit) == u32Specifier; });
    return pstRow != Options::astRows.end() ? pstRow : nullptr;
}

uint32_t Judge(uint32_t u32Specifier, uint32_t u32Value) {
    const Options::Row *pstRow = RowOf(u32Specifier);
    if (pstRow == nullptr) {
        return u32UnknownOption;
    }
    return u32Value <= pstRow->u32Most ? u32Success : u32ValueOutOfRange;
}

class OptionRequests : public Subsystem {
  public:
    explicit OptionRequests(Modem &stModem);

  private:
    int32_t Set(const Request &stRequest);
    int32_t SetAll(const Request &stRequest);
    int32_t GetAll(const Request &stRequest);
    void Answer(uint32_t u32SubType, uint32_t u32Status, uint32_t u32Specifier);

    Modem &m_stModem;
    Options &m_stOptions;
};

OptionRequests::OptionRequests(Modem &stModem)
    : m_stModem(stModem), m_stOptions(stModem.TheOptions()) {
    stModem.On(TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_SET,
               [this](const Request &stRequest) { return Set(stRequest); });
    stModem.On(TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_SET_ALL,
               [this](const Request &stRequest) { return SetAll(stRequest); });
    stModem.On(TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_GET_ALL,
               [this](const Request &stRequest) { return GetAll(stRequest); });
}

int32_t OptionRequests::Set(const Request &stRequest) {
    const uint32_t u32Specifier = Get(stRequest.stPayload, WiMAXOption::u8Specifier);
    const uint32_t u32Value = Get(stRequest.stPayload, WiMAXOption::u32Value);
    const uint32_t u32Result = Judge(u32Specifier, u32Value);
    if (u32Result == u32Success) {
        Options::Values au32New = m_stOptions.All();
        au32New[RowOf(u32Specifier)->eBit] = u32Value;
        m_stOptions.Set(au32New);
    }
    Record<WiMAXOption::Size> stAnswer;
    Put(stAnswer.Span(), WiMAXOption::u8Specifier, u32Specifier);
    Put(stAnswer.Span(), WiMAXOption::u32Value, u32Result);
    m_stModem.Tell(TYPE_WIMAX_OPTIONS, SUBTYPE_OPTION_SET, stAnswer.View());
    return 0;
}

int32_t OptionRequests::SetAll(const Request &stRequest) {
    const uint32_t u32Specifier = Get(stRequest.stPayload, WiMAXOptions::u8Specifier);
    Options::Values au32New = m_stOptions.All();
    uint32_t u32Status = u32Success;
    for (uint32_t u32Bit = 0; u32Bit < WiMAXOptions::Count; ++u32Bit) {
        const uint32_t u32Mask = uint32_t{1} << u32Bit;
        if ((u32Specifier & u32Mask) != 0 && u32Status == u32Success) {
            au32New[u32Bit] = Get(stRequest.stPayload, WiMAXOptions::au32Values, 4 * u32Bit);
            u32Status = Judge(u32Mask, au32New[u32Bit]);
        }
    }
    // All or nothing.
    if (u32Status == u32Success) {
        m_stOptions.Set(au32New);
    }
    Answer(SUBTYPE_OPTION_SET_ALL, u32Status, u32Specifier);
    return 0;
}

int32_t OptionRequests::GetAll(const Request & /*stRequest*/) {
    Answer(SUBTYPE_OPTION_GET_ALL, u32Success, u32AllInUse);
    return 0;
}

void OptionRequests::Answer(uint32_t u32SubType, uint32_t u32Status, uint32_t u32Specifier) {
    Record<WiMAXOptions::Size> stAnswer;
    Put(stAnswer.Span(), WiMAXOptions::u32Status, u32Status);
    Put(stAnswer.Span(), WiMAXOptions::u8Specifier, u32Specifier);
    for (uint32_t u32Bit = 0; u32Bit < WiMAXOptions::Count; ++u32Bit) {
        Put(stAnswer.Span(), WiMAXOptions::au32Values, m_stOptions.All()[u32Bit], 4 * u32Bit);
    }
    m_stModem.Tell(TYPE_WIMAX_OPTIONS, u32SubType, stAnswer.View());
}

} // namespace

std::unique_ptr<Subsystem> MakeOptionRequests(Modem &stModem) {
    return std::make_unique<OptionRequests>(stModem);
}

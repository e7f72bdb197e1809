// Sleep mode: power saving classes (PSC) are defined in any state of the link and
// activated while it is up. The modem sleeps as long as one of them is active.
#include <algorithm>
#include <array>
#include <deque>
#include <vector>

#include "MobilityRecords.h"
#include "air/Signalling.h"
#include "link/Link.h"
#include "link/LinkSubsystems.h"

namespace {

// Power saving classes of type 1 sleep in windows that grow, those of type 2 in
// windows of one length, those of type 3 once.
enum Kind : uint32_t { Growing = 1, Constant = 2, Once = 3 };

// The largest value of each field.
struct Limit {
    Field stField;
    uint32_t u32Most;
};
constexpr std::array astLimits{
    Limit{PSCDefinition::u8PSCType, Once},
    Limit{PSCDefinition::u8Direction, 2},
    Limit{PSCDefinition::u8FinalSleepWindowExp, 7},
    Limit{PSCDefinition::u16FinalSleepWindowBase, 1023},
    Limit{PSCDefinition::u8TTWF, 1},
    Limit{PSCDefinition::u8TIR, 1},
};

using Definition = Record<PSCDefinition::Size>;

struct ActiveClass {
    Definition stDefinition;
    ModemTime iSince;
};

uint64_t FinalWindow(ByteView stClass) { // frames
    return uint64_t{Get(stClass, PSCDefinition::u16FinalSleepWindowBase)}
           << Get(stClass, PSCDefinition::u8FinalSleepWindowExp);
}

bool MakesSense(ByteView stClass) {
    const bool bWithin = std::all_of(astLimits.begin(), astLimits.end(), [&](const Limit &stLimit) {
        return Get(stClass, stLimit.stField) <= stLimit.u32Most;
    });
    if (!bWithin || Get(stClass, PSCDefinition::u8PSCType) == 0) {
        return false;
    }
    return Get(stClass, PSCDefinition::u8PSCType) == Once
               ? FinalWindow(stClass) != 0
               : Get(stClass, PSCDefinition::u8InitialSleepWindow) != 0 &&
                     Get(stClass, PSCDefinition::u8ListenWindow) != 0;
}

// The first moment at or after iPast, both counted from the activation, when the
// modem listens.
ModemTime NextListening(ByteView stClass, ModemTime iPast) {
    const auto u64Past = static_cast<uint64_t>(iPast / i64Frame);
    const uint64_t u64Listen = Get(stClass, PSCDefinition::u8ListenWindow);
    uint64_t u64Window = Get(stClass, PSCDefinition::u8InitialSleepWindow);
    const uint64_t u64Last = Get(stClass, PSCDefinition::u8PSCType) == Constant
                                 ? u64Window
                                 : std::max(u64Window, FinalWindow(stClass));
    uint64_t u64Start = 0; // of a sleep window
    while (u64Window < u64Last && u64Past >= u64Start + u64Window + u64Listen) {
        u64Start += u64Window + u64Listen;
        u64Window = std::min(2 * u64Window, u64Last);
    }
    if (u64Past > u64Start) {
        u64Start += (u64Past - u64Start) / (u64Window + u64Listen) * (u64Window + u64Listen);
    }
    return std::max(iPast, static_cast<ModemTime>(u64Start + u64Window) * i64Frame);
}

// Whether the modem sleeps in a frame: it listens while any of its classes does.
bool AsleepIn(const std::vector<ActiveClass> &astClasses, uint64_t u64Frame) {
    return std::all_of(astClasses.begin(), astClasses.end(), [&](const ActiveClass &stClass) {
        const ByteView stDefinition = stClass.stDefinition.View();
        const ModemTime iPast = static_cast<ModemTime>(u64Frame) * i64Frame - stClass.iSince;
        return iPast >= 0 && (Get(stDefinition, PSCDefinition::u8PSCType) == Once ||
                              NextListening(stDefinition, iPast) > iPast);
    });
}

class SleepClasses : public Subsystem {
  public:
    explicit SleepClasses(Modem &stModem);
    void Start() override;

  private:
    struct Class {
        explicit Class(Scheduler &stScheduler) : stEnd(stScheduler) {}
        bool bDefined = false;
        bool bActive = false;
        ModemTime iActiveSince = 0;
        Definition stDefinition;
        Timer stEnd; // when it ends by itself or for traffic that waits
    };

    int32_t Handle(ByteView stRequest);
    // Does what the definition asks for, as far as it can. Null when nothing of it.
    Class *Apply(ByteView stAsked);
    Class *Define(ByteView stAsked);
    Class *ClassOf(uint32_t u32PSCID);
    void Activate(Class &stClass);
    static void Deactivate(Class &stClass);
    // Ends a class, or all of them, without having been asked to.
    void End(Class &stClass);
    void EndAll();
    void TrafficWaits();
    void FollowClasses();
    void TellClasses(const std::vector<Class *> &apstClasses);

    Modem &m_stModem;
    Link &m_stLink;
    bool m_bDefaultClass;
    std::deque<Class> m_astClasses; // the PSC ID is the place
};

SleepClasses::SleepClasses(Modem &stModem) : m_stModem(stModem), m_stLink(stModem.TheLink()) {
    m_bDefaultClass = stModem.Settings("sleep").Flag("default-psc", false);
    for (uint32_t i = 0; i < SleepMode::MaxDefinitions; ++i) {
        m_astClasses.emplace_back(stModem.Clock());
    }
    stModem.On(TYPE_SLEEP_MODE, SUBTYPE_SLEEP_PSC_DEFINITION,
               [this](const Request &stRequest) { return Handle(stRequest.stPayload); });
    stModem.OnEvent("traffic-waits",
                    [this](const Section &) { return [this] { TrafficWaits(); }; });
    m_stLink.Observe([this](const LinkChange &stChange) {
        if (stChange.eBefore == LinkState::LinkUp && stChange.eAfter != LinkState::LinkUp) {
            for (Class &stClass : m_astClasses) {
                Deactivate(stClass);
            }
            FollowClasses();
        }
    });
    m_stLink.OnMove([this] { EndAll(); });
}

void SleepClasses::Start() {
    for (Class &stClass : m_astClasses) {
        Deactivate(stClass);
        stClass.bDefined = false;
    }
    FollowClasses();
    if (m_bDefaultClass) {
        using namespace PSCDefinition;
        Class &stDefault = m_astClasses.front();
        const ByteSpan stTo = stDefault.stDefinition.Span();
        stDefault.stDefinition = {};
        Put(stTo, u8PSCType, Growing);
        Put(stTo, u8InitialSleepWindow, 8);
        Put(stTo, u8ListenWindow, 32);
        Put(stTo, u16FinalSleepWindowBase, 4);
        Put(stTo, u8FinalSleepWindowExp, 5);
        Put(stTo, u8TTWF, 1);
        Put(stTo, u8TIR, 1);
        stDefault.bDefined = true;
    }
}

int32_t SleepClasses::Handle(ByteView stRequest) {
    const uint32_t u32Count = Get(stRequest, SleepMode::numOfDefinitions);
    if (u32Count > SleepMode::MaxDefinitions) {
        return LibraryError::BadValue;
    }
    std::vector<ByteView> astAsked;
    for (uint32_t i = 0; i < u32Count; ++i) {
        astAsked.push_back(stRequest.From(SleepMode::astPSCDefinition + i * PSCDefinition::Size,
                                          PSCDefinition::Size));
        if (Get(astAsked.back(), PSCDefinition::u32NumOfCIDs) > PSCDefinition::MaxCIDs) {
            return LibraryError::BadValue;
        }
    }
    std::vector<Class *> apstDone;
    for (const ByteView stAsked : astAsked) {
        if (Class *pstClass = Apply(stAsked)) {
            apstDone.push_back(pstClass);
            if (m_stLink.State() == LinkState::LinkUp) {
                m_stModem.TheSignalling().SleepAgreed(pstClass->stDefinition.View());
            }
        }
    }
    TellClasses(apstDone);
    m_stModem.TheSignalling().OnceSaid([this] { FollowClasses(); });
    return 0;
}

SleepClasses::Class *SleepClasses::Apply(ByteView stAsked) {
    using namespace PSCDefinition;
    const uint32_t u32Activity = Get(stAsked, u8Activity);
    const bool bDefine =
        u32Activity == ActivityDefinition || u32Activity == ActivityDefinitionAndActivation;
    const bool bActivate =
        (u32Activity == ActivityActivation || u32Activity == ActivityDefinitionAndActivation) &&
        m_stLink.State() == LinkState::LinkUp;
    const bool bDeactivate = u32Activity == ActivityDeactivation;
    Class *pstClass = bDefine ? Define(stAsked) : ClassOf(Get(stAsked, u8PSCID));
    if (pstClass == nullptr || (bDeactivate && !pstClass->bActive) ||
        !(bDefine || bActivate || bDeactivate)) {
        return nullptr;
    }
    if (bActivate) {
        Activate(*pstClass);
    } else if (bDeactivate) {
        Deactivate(*pstClass);
    }
    // What has become of it.
    uint32_t u32Done = bDeactivate ? ActivityDeactivation : ActivityActivation;
    if (bDefine) {
        u32Done = bActivate ? ActivityDefinitionAndActivation : ActivityDefinition;
    }
    Put(pstClass->stDefinition.Span(), u8Activity, u32Done);
    return pstClass;
}

SleepClasses::Class *SleepClasses::ClassOf(uint32_t u32PSCID) {
    return u32PSCID < m_astClasses.size() && m_astClasses[u32PSCID].bDefined
               ? &m_astClasses[u32PSCID]
               : nullptr;
}

SleepClasses::Class *SleepClasses::Define(ByteView stAsked) {
    const uint32_t u32PSCID = Get(stAsked, PSCDefinition::u8PSCID);
    Class *pstClass = ClassOf(u32PSCID);
    if (u32PSCID == PSCDefinition::NewPSCID) {
        const auto pstFree = std::find_if(m_astClasses.begin(), m_astClasses.end(),
                                          [](const Class &stClass) { return !stClass.bDefined; });
        pstClass = pstFree != m_astClasses.end() ? &*pstFree : nullptr;
    }
    if (pstClass == nullptr || pstClass->bActive || !MakesSense(stAsked)) {
        return nullptr;
    }
    const auto u32Place = static_cast<uint32_t>(
        std::find_if(m_astClasses.begin(), m_astClasses.end(),
                     [&](const Class &stClass) { return &stClass == pstClass; }) -
        m_astClasses.begin());
    PutBytes(pstClass->stDefinition.Span(), 0, stAsked);
    Put(pstClass->stDefinition.Span(), PSCDefinition::u8PSCID, u32Place);
    pstClass->bDefined = true;
    return pstClass;
}

void SleepClasses::Activate(Class &stClass) {
    const ByteView stDefinition = stClass.stDefinition.View();
    stClass.bActive = true;
    stClass.iActiveSince = m_stModem.Now();
    stClass.stEnd.Stop();
    if (Get(stDefinition, PSCDefinition::u8PSCType) == Once) {
        stClass.stEnd.Start(static_cast<ModemTime>(FinalWindow(stDefinition)) * i64Frame,
                            [this, &stClass] { End(stClass); });
    } else if (Get(stDefinition, PSCDefinition::u8TTWF) != 0 &&
               m_stModem.UserTraffic().KeepsAwake()) {
        stClass.stEnd.Start(NextListening(stDefinition, 0), [this, &stClass] { End(stClass); });
    }
}

void SleepClasses::Deactivate(Class &stClass) {
    stClass.bActive = false;
    stClass.stEnd.Stop();
}

void SleepClasses::End(Class &stClass) {
    Deactivate(stClass);
    Put(stClass.stDefinition.Span(), PSCDefinition::u8Activity,
        PSCDefinition::ActivityDeactivation);
    FollowClasses();
    TellClasses({&stClass});
}

void SleepClasses::EndAll() {
    for (Class &stClass : m_astClasses) {
        if (stClass.bActive) {
            End(stClass);
        }
    }
}

// The station announces traffic: heard when the modem listens next.
void SleepClasses::TrafficWaits() {
    for (Class &stClass : m_astClasses) {
        const ByteView stDefinition = stClass.stDefinition.View();
        const bool bWakes = stClass.bActive && Get(stDefinition, PSCDefinition::u8TTWF) != 0 &&
                            Get(stDefinition, PSCDefinition::u8PSCType) != Once;
        if (bWakes) {
            const ModemTime iPast = m_stModem.Now() - stClass.iActiveSince;
            stClass.stEnd.Start(NextListening(stDefinition, iPast) - iPast, [this, &stClass] {
                m_stModem.TheSignalling().TrafficIndicated(
                    Get(stClass.stDefinition.View(), PSCDefinition::u8PSCID));
                End(stClass);
            });
        }
    }
}

void SleepClasses::FollowClasses() {
    std::vector<ActiveClass> astActive;
    for (const Class &stClass : m_astClasses) {
        if (stClass.bActive) {
            astActive.push_back({stClass.stDefinition, stClass.iActiveSince});
        }
    }
    const bool bSleeps = !astActive.empty();
    m_stLink.SetSleeping(bSleeps);
    m_stModem.ThePresence().Leave(
        Absence::Sleep,
        bSleeps ? [astActive](uint64_t u64Frame) { return AsleepIn(astActive, u64Frame); }
                : Presence::Test());
}

void SleepClasses::TellClasses(const std::vector<Class *> &apstClasses) {
    Record<SleepMode::Size> stIndication;
    Put(stIndication.Span(), SleepMode::numOfDefinitions,
        static_cast<uint32_t>(apstClasses.size()));
    uint32_t u32Offset = SleepMode::astPSCDefinition;
    for (const Class *pstClass : apstClasses) {
        PutBytes(stIndication.Span(), u32Offset, pstClass->stDefinition.View());
        u32Offset += PSCDefinition::Size;
    }
    m_stModem.TellOnceSaid(TYPE_SLEEP_MODE, SUBTYPE_SLEEP_MODE_IND, stIndication.View());
}

} // namespace

std::unique_ptr<Subsystem> MakeSleepMode(Modem &stModem) {
    return std::make_unique<SleepClasses>(stModem);
}

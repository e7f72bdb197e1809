#include "modem/Events.h"

#include <algorithm>
#include <charconv>

#include "modem/LinkStateNames.h"

namespace {

constexpr double fMostTime = 1e9; // seconds
// What repeats itself lets some time pass, so that time goes on.
constexpr double fLeastPause = 0.001;

std::optional<Events::Condition> ConditionOf(std::string_view strText) {
    constexpr std::string_view strMessage = "message ";
    if (strText.starts_with(strMessage)) {
        const std::optional<MessageKind> stKind =
            MessageKind::FromText(strText.substr(strMessage.size()));
        return stKind ? std::optional<Events::Condition>(*stKind) : std::nullopt;
    }
    const auto *const pstName = std::find(apcLinkStates.begin(), apcLinkStates.end(), strText);
    if (pstName == apcLinkStates.end()) {
        return std::nullopt;
    }
    return static_cast<LinkState>(pstName - apcLinkStates.begin());
}

} // namespace

std::optional<MessageKind> MessageKind::FromText(std::string_view strText) {
    const size_t uSlash = std::min(strText.find('/'), strText.size());
    const auto Number = [](std::string_view strDigits) -> std::optional<uint32_t> {
        uint16_t u16Value = 0;
        const char *pcEnd = strDigits.data() + strDigits.size();
        const auto Read = std::from_chars(strDigits.data(), pcEnd, u16Value);
        return Read.ec == std::errc() && Read.ptr == pcEnd ? std::optional<uint32_t>(u16Value)
                                                           : std::nullopt;
    };
    const std::optional<uint32_t> u32Type = Number(strText.substr(0, uSlash));
    const std::optional<uint32_t> u32SubType =
        Number(strText.substr(std::min(uSlash + 1, strText.size())));
    if (!u32Type || !u32SubType) {
        return std::nullopt;
    }
    return MessageKind{*u32Type, *u32SubType};
}

void Events::Know(const char *pcKind, Reader pfnRead) {
    m_astKinds.push_back({pcKind, std::move(pfnRead)});
}

bool Events::Knows(std::string_view strKind) const {
    return std::any_of(m_astKinds.begin(), m_astKinds.end(),
                       [&](const Kind &stKind) { return stKind.strName == strKind; });
}

std::vector<std::string> Events::Kinds() const {
    std::vector<std::string> astrKinds;
    std::transform(m_astKinds.begin(), m_astKinds.end(), std::back_inserter(astrKinds),
                   [](const Kind &stKind) { return stKind.strName; });
    return astrKinds;
}

Events::Planned Events::Read(const Section &stSection, Unsaid eUnsaid) const {
    std::vector<ScenarioWord> astKinds;
    for (const Kind &stKind : m_astKinds) {
        astKinds.push_back(
            {stKind.strName.c_str(), static_cast<uint32_t>(&stKind - m_astKinds.data())});
    }
    const Kind &stKind = m_astKinds[stSection.Choice("kind", astKinds)];
    Planned stPlanned{};
    ReadTime(stSection, eUnsaid, &stPlanned);
    stPlanned.pfnHappens = stKind.pfnRead(stSection);
    return stPlanned;
}

void Events::ReadTime(const Section &stSection, Unsaid eUnsaid, Planned *pstPlanned) const {
    const bool bRepeats = stSection.Has("every");
    if (bRepeats) {
        pstPlanned->iEvery = stSection.Seconds("every", fLeastPause, fMostTime);
    }
    if (stSection.Has("when")) {
        pstPlanned->stWhen = ConditionOf(stSection.Text("when"));
        if (!pstPlanned->stWhen) {
            stSection.Refuse("when", "must be a state of the link or a message, \"message 2/2\"");
        }
        if (stSection.Has("at")) {
            stSection.Refuse("at", "has no meaning beside \"when\"");
        }
    }
    if (bRepeats || pstPlanned->stWhen) {
        pstPlanned->u32Times =
            static_cast<uint32_t>(stSection.Integer("times", 0, UINT32_MAX, bRepeats ? 0 : 1));
    } else {
        pstPlanned->u32Times = 1;
    }
    if (pstPlanned->stWhen) {
        const double fLeast = pstPlanned->u32Times == 1 ? 0 : fLeastPause;
        pstPlanned->iAt = stSection.Seconds("after", fLeast, fMostTime, fLeast);
    } else if (eUnsaid == Unsaid::Refused || stSection.Has("at")) {
        pstPlanned->iAt = stSection.Seconds("at", 0, fMostTime);
        if (pstPlanned->iAt < m_stScheduler.Now()) {
            stSection.Refuse("at", "is over already");
        }
    } else {
        pstPlanned->iAt = m_stScheduler.Now();
    }
}

void Events::Plan(Planned stPlanned) {
    if (stPlanned.stWhen) {
        m_astWaiting.push_back(std::move(stPlanned));
    } else {
        const ModemTime iDelay = stPlanned.iAt - m_stScheduler.Now();
        Happen(std::move(stPlanned), iDelay);
    }
}

void Events::Reached(const Condition &stCondition) {
    std::erase_if(m_astWaiting, [&](Planned &stWaiting) {
        if (stWaiting.stWhen != stCondition) {
            return false;
        }
        if (stWaiting.iEvery != 0) {
            const ModemTime iAfter = stWaiting.iAt;
            Happen(std::move(stWaiting), iAfter);
            return true;
        }
        m_stScheduler.AfterByItself(stWaiting.iAt, stWaiting.pfnHappens);
        return stWaiting.u32Times != 0 && --stWaiting.u32Times == 0;
    });
}

void Events::Happen(Planned stPlanned, ModemTime iDelay) {
    m_stScheduler.AfterByItself(iDelay, [this, stNow = std::move(stPlanned)]() mutable {
        stNow.pfnHappens();
        const bool bLast = stNow.u32Times != 0 && --stNow.u32Times == 0;
        if (stNow.iEvery != 0 && !bLast) {
            const ModemTime iEvery = stNow.iEvery;
            Happen(std::move(stNow), iEvery);
        }
    });
}

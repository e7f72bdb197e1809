#include "scenario/Warnings.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <set>
#include <tuple>

namespace {

// A frequency or a bandwidth below was meant in MHz; one above, in Hz.
constexpr int64_t iLeastFrequency = 100000;                                          // kHz
constexpr int64_t iMostFrequency = 100000000;                                        // kHz
constexpr std::array<int64_t, 6> aiBandwidths{3500, 5000, 7000, 8750, 10000, 20000}; // kHz

using Name = std::vector<uint8_t>;

class Checker {
  public:
    explicit Checker(const Section &stRoot) : m_stRoot(stRoot) {}

    std::vector<std::string> All() {
        CheckStations();
        CheckPlaces();
        CheckStart();
        CheckAttributes();
        CheckCapacity();
        CheckStateFile();
        CheckEvents();
        return std::move(m_astrWarnings);
    }

  private:
    void Warn(const Section &stSection, const char *pcKey, const std::string &strReason) {
        m_astrWarnings.emplace_back(stSection.ErrorAbout(pcKey, strReason).what());
    }
    static Name NameIn(const Section &stSection, const char *pcKey) {
        return stSection.Bytes(pcKey, 6);
    }
    static int64_t Whole(const Section &stSection, const char *pcKey, int64_t iDefault) {
        return stSection.Integer(pcKey, INT64_MIN, INT64_MAX, iDefault);
    }

    void CheckStations() {
        for (const Section &stStation : m_stRoot.Tables("station")) {
            const int64_t iFrequency = Whole(stStation, "frequency", 0);
            if (iFrequency < iLeastFrequency || iFrequency > iMostFrequency) {
                Warn(stStation, "frequency",
                     "is " + std::to_string(iFrequency) + " kHz: is that the unit that is meant?");
            }
            const int64_t iBandwidth = Whole(stStation, "bandwidth", 0);
            if (std::find(aiBandwidths.begin(), aiBandwidths.end(), iBandwidth) ==
                aiBandwidths.end()) {
                Warn(stStation, "bandwidth",
                     "is " + std::to_string(iBandwidth) + " kHz, which no profile has");
            }
        }
    }

    // What only says something of stations that have a place.
    void CheckPlaces() {
        const std::vector<Section> astStations = m_stRoot.Tables("station");
        if (std::any_of(astStations.begin(), astStations.end(),
                        [](const Section &stStation) { return stStation.Has("x"); })) {
            return;
        }
        const Section stRadio = m_stRoot.Table("radio");
        for (const char *pcKey : {"shadowing", "fading"}) {
            if (stRadio.Has(pcKey)) {
                Warn(stRadio, pcKey, "says nothing: no station has a place");
            }
        }
        if (const Section stRoute = m_stRoot.Table("route"); stRoute.Has("file")) {
            Warn(stRoute, "file", "leads nowhere: no station has a place");
        }
        for (const Section &stWayPoint : m_stRoot.Tables("way-point")) {
            Warn(stWayPoint, "at", "leads nowhere: no station has a place");
            return;
        }
    }

    void CheckStart() {
        const Section stStart = m_stRoot.Table("start");
        if (!stStart.Has("station")) {
            return;
        }
        for (const Section &stStation : m_stRoot.Tables("station")) {
            if (NameIn(stStation, "bsid") == NameIn(stStart, "station") &&
                !stStation.Flag("on-air", true)) {
                Warn(stStart, "station", "is not on the air");
            }
        }
    }

    void CheckAttributes() {
        std::set<std::tuple<int64_t, int64_t, int64_t>> astSeen;
        for (const Section &stAttribute : m_stRoot.Tables("attribute")) {
            if (!astSeen
                     .emplace(Whole(stAttribute, "id", 0), Whole(stAttribute, "key", 0),
                              Whole(stAttribute, "second-key", 0))
                     .second) {
                Warn(stAttribute, "id", "has its value from another [[attribute]] already");
            }
        }
    }

    // UGS flows take their greatest rate, all others their least.
    void CheckCapacity() {
        const Section stSettings = m_stRoot.Table("service-flows");
        std::map<std::string, double> afLeft{
            {"downlink", static_cast<double>(Whole(stSettings, "downlink-capacity", 20000000))},
            {"uplink", static_cast<double>(Whole(stSettings, "uplink-capacity", 5000000))}};
        for (const Section &stFlow : m_stRoot.Tables("service-flow")) {
            if (Whole(stFlow, "sets", 7) == 1) {
                continue;
            }
            const bool bConstant = stFlow.Text("type", "BE") == "UGS";
            double &fLeft = afLeft[stFlow.Text("direction", "downlink")];
            fLeft -= static_cast<double>(Whole(stFlow, bConstant ? "max-rate" : "min-rate", 0));
            if (fLeft < 0) {
                Warn(stFlow, "direction", "has no capacity left for this flow");
            }
        }
    }

    void CheckStateFile() {
        const Section stState = m_stRoot.Table("state");
        const std::filesystem::path stPath(stState.Text("file", ""));
        std::error_code stError;
        if (!stPath.parent_path().empty() &&
            !std::filesystem::is_directory(stPath.parent_path(), stError)) {
            Warn(stState, "file", "is in a directory that is not there");
        }
    }

    // In the order in which they happen; those that wait for something stand apart.
    std::vector<Section> EventsInTime() const {
        std::vector<Section> astEvents;
        for (const Section &stEvent : m_stRoot.Tables("event")) {
            if (stEvent.Has("at")) {
                astEvents.push_back(stEvent);
            }
        }
        std::stable_sort(astEvents.begin(), astEvents.end(),
                         [](const Section &stOne, const Section &stOther) {
                             return stOne.Number("at", 0, 1e9) < stOther.Number("at", 0, 1e9);
                         });
        return astEvents;
    }

    void CheckEvents() {
        const std::vector<Section> astEvents = m_stRoot.Tables("event");
        const auto Added =
            std::count_if(astEvents.begin(), astEvents.end(), [](const Section &stEvent) {
                return stEvent.Text("kind") == "flow-added";
            });
        const auto iFlows = static_cast<int64_t>(m_stRoot.Tables("service-flow").size()) + Added;
        for (const Section &stEvent : astEvents) {
            const int64_t iFlow = Whole(stEvent, "sfid", 1);
            const std::string strKind = stEvent.Text("kind");
            if ((strKind == "flow-deleted" || strKind == "flow-changed") && iFlow > iFlows) {
                Warn(stEvent, "sfid",
                     "is " + std::to_string(iFlow) + ", and the network sets up " +
                         (iFlows == 0 ? "no flow" : "flows 1 to " + std::to_string(iFlows)));
            }
        }
        const Section stStart = m_stRoot.Table("start");
        Name aucServing = NameIn(stStart, "station");
        for (const Section &stEvent : EventsInTime()) {
            if (stEvent.Text("kind") != "handover") {
                continue;
            }
            const Name aucTarget = NameIn(stEvent, "station");
            if (aucTarget == aucServing) {
                Warn(stEvent, "station", "serves the modem already");
            }
            if (!stEvent.Flag("fails", false)) {
                aucServing = aucTarget;
            }
        }
    }

    Section m_stRoot;
    std::vector<std::string> m_astrWarnings;
};

} // namespace

std::vector<std::string> WarningsAbout(const Scenario &stScenario) {
    return Checker(stScenario.Root()).All();
}

// Environments that the tests share. Nothing in them varies with time.
#ifndef TEST_SCENARIOS_H
#define TEST_SCENARIOS_H

#include <string>

// A strong station, a weaker one on the same channel, one on another frequency with
// a narrower channel, and one that is heard but too weak to enter.
inline constexpr const char *pcFourStations = R"(
[[nsp]]
id = 7
name = "Seven"
[[nsp]]
id = 300
name = "Three Hundred"
[[station]]
bsid = "00 12 0A 01 02 03"
frequency = 2587500
bandwidth = 10000
preamble = 3
rssi = -58
cinr = 28
dcd-change-count = 5
nsp-change-count = 2
cell-id = 9
compressed-map = true
nsps = [7, 300]
vendor-data = "A1 B2 C3"
[[station]]
bsid = "00 12 0A 01 02 04"
frequency = 2587500
bandwidth = 10000
preamble = 35
rssi = -71.25
cinr = 16
variation = 0
nsps = [300]
[[station]]
bsid = "00 2B 37 00 00 01"
frequency = 2600000
bandwidth = 5000
preamble = 64
rssi = -66
cinr = 22
dcd-change-count = 12
nsp-change-count = 3
nsp-support = false
[[station]]
bsid = "00 2B 37 00 00 02"
frequency = 2650000
bandwidth = 10000
preamble = 17
rssi = -93
cinr = -1
)";

// The same, with the modem's link up on the first one, entering and leaving states
// at once.
inline constexpr const char *pcLinkUp = R"(
[start]
state = "link-up"
station = "00 12 0A 01 02 03"
)";

// A best effort flow in each direction, which carries all of [traffic] there: SFID 1, CID 8192, and
// SFID 2, CID 4096.
inline constexpr const char *pcTwoFlows = R"(
[[service-flow]]
direction = "downlink"
type = "BE"
[[service-flow]]
direction = "uplink"
type = "BE"
)";

inline const std::string strStations = pcFourStations;
inline const std::string strLinkUp = strStations + pcLinkUp;

// The same scenario where the first station has a DL-MAP and an UL-MAP in each frame.
inline std::string WithOrdinaryMaps(std::string strScenario) {
    const std::string strCompressed = "compressed-map = true\n";
    return strScenario.erase(strScenario.find(strCompressed), strCompressed.size());
}

#endif

// The scenario of the simulated modem's benchmarks.
#ifndef MAPS_IN_EVERY_FRAME_H
#define MAPS_IN_EVERY_FRAME_H

// A link, traced; nothing varies. What is put behind it belongs to the station.
inline constexpr const char *pcMapsInEveryFrame = R"(
[device]
answer-delay = 0
[start]
state = "link-up"
station = "00 12 0A 00 01 01"
[trace]
on = true
[signalling]
map-period = 0.005
[[station]]
bsid = "00 12 0A 00 01 01"
frequency = 2587500
bandwidth = 10000
preamble = 3
rssi = -58
cinr = 28
)";

#endif

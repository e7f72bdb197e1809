// The layouts that the table of messages names, each in the file of its subsystem.
#ifndef LAYOUTS_H
#define LAYOUTS_H

#include "Catalogue.h"

extern const Layout stStatusWord;

// LinkCatalogue.cpp
extern const Layout stSearchRequest;
extern const Layout stStationList;
extern const Layout stNSPSearchRequest;
extern const Layout stNSPDiscovery;
extern const Layout stLowPowerScanRequest;
extern const Layout stLowPowerScanAnswer;
extern const Layout stSyncUpRequest;
extern const Layout stSyncStatus;
extern const Layout stNetworkEntryRequest;
extern const Layout stNSPNetworkEntryRequest;
extern const Layout stNetworkEntryStatus;
extern const Layout stCinrRssiThreshold;
extern const Layout stIdleStatus;
extern const Layout stIdleTimer;
extern const Layout stIdleIndication;
extern const Layout stWiMAXOption;
extern const Layout stWiMAXOptions;
extern const Layout stShutdownStatus;
extern const Layout stWakeUpStations;

// DiagnosticCatalogue.cpp
extern const Layout stTraceRecord;

// MIBCatalogue.cpp
extern const Layout stMIBAnswer;

#endif

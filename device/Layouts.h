// The layouts that the table of messages names, each in the file of its subsystem.
#ifndef LAYOUTS_H
#define LAYOUTS_H

#include "Catalogue.h"

// AntennaCatalogue.cpp
extern const Layout stAntennaConfig;
extern const Layout stAntennaScanRequest;
extern const Layout stAntennaScan;
extern const Layout stAntennaSelection;
extern const Layout stAntennaSelectionStatus;

// AuthenticationCatalogue.cpp
extern const Layout stAuthStatus;
extern const Layout stAuthParamRead;
extern const Layout stAuthParamWrite;
extern const Layout stAuthParamIndication;
extern const Layout stEAPTransfer;
extern const Layout stEAPComplete;
extern const Layout stEncryptionTest;

// DeviceCatalogue.cpp
extern const Layout stIPFilterStatus;

// DiagnosticCatalogue.cpp
extern const Layout stTraceRecord;
extern const Layout stTraceState;
extern const Layout stRangingLog;
extern const Layout stBandwidthLog;
extern const Layout stPowerLog;
extern const Layout stCIDLog;
extern const Layout stCQICHLog;
extern const Layout stMACLogData;
extern const Layout stPHYLogData;
extern const Layout stGPIOBit;
extern const Layout stLEDBehaviour;
extern const Layout stLEDState;

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

// MIBCatalogue.cpp
extern const Layout stMIBGetRecord;
extern const Layout stMIBSetRecord;
extern const Layout stMIBRecord;
extern const Layout stMIBGetList;
extern const Layout stMIBSetList;
extern const Layout stMIBList;

// MobilityCatalogue.cpp
extern const Layout stSleepMode;
extern const Layout stHandover;

// OMADMCatalogue.cpp
extern const Layout stOMADMParameter;
extern const Layout stOMADMSizeQuery;
extern const Layout stOMADMVersion;
extern const Layout stOMADMTreeUpdate;
extern const Layout stIMEIRequest;
extern const Layout stIMEIBlock;

// SecurityCatalogue.cpp
extern const Layout stSecurityRecord;
extern const Layout stSecurityGetRequest;
extern const Layout stSecuritySize;
extern const Layout stSecuritySizeRequest;

// ServiceFlowCatalogue.cpp
extern const Layout stShortServiceFlow;
extern const Layout stServiceFlow;
extern const Layout stDeleteFlowRequest;
extern const Layout stGrantChangeRequest;

// StationCatalogue.cpp
extern const Layout stSSInformation;
extern const Layout stEEPROMSummary;
extern const Layout stEEPROMVersions;
extern const Layout stStatisticsInterval;
extern const Layout stStatistics;
extern const Layout stStatisticsReset;
extern const Layout stStatisticsResetStatus;
extern const Layout stDownloadRequest;
extern const Layout stDownloadStatus;
extern const Layout stModemStatusRequest;
extern const Layout stModemStatus;
extern const Layout stMACAddress;
extern const Layout stMACAddressStatus;

// VendorCatalogue.cpp
extern const Layout stVendorParameter;
extern const Layout stVendorRegionSize;

#endif

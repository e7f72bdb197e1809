-- Shows recorded sessions of the modem in Wireshark and tshark: docs/wireshark.md.
-- Written by tools/WriteDissector.cpp from the catalogue of messages, interface.lua and
-- management.lua: change those, and build the target `dissector`.

local CODES = {}
CODES[1] = {[1] = "report_by_list", [2] = "report_consolidated"}
CODES[2] = {[0] = "search_in_progress", [1] = "search_complete", [2] = "search_timed_out"}
CODES[3] = {[0] = "success", [1] = "not_needed", [2] = "not_supported", [3] = "search_failure", [4] = "aborted", [5] = "scan_duration_timeout"}
CODES[4] = {[0] = "link_up_achieved", [1] = "phy_sync_error", [2] = "mac_sync_error", [3] = "host_initiated_sync_down", [4] = "ranging_failure", [5] = "sbc_failure", [6] = "pkm_failure", [7] = "registration_failure", [8] = "dreg_received", [9] = "reset_received", [10] = "in_idle_mode", [11] = "in_sleep_mode", [12] = "network_entry_in_progress", [13] = "wait_for_network_entry_command", [14] = "wait_for_phy_sync_command", [15] = "shutdown_received_command", [16] = "satek_failure", [17] = "link_status_normal", [19] = "link_down_host_initiated", [20] = "mac_version_switch", [21] = "shutdown_resync_received", [22] = "idle_mode_failure_code_received", [23] = "location_update_with_power_down_success", [24] = "bs_out_of_reach", [25] = "ip_retention_timer_expired", [255] = "invalid_reason_code"}
CODES[5] = {[0] = "eapaka", [1] = "eapsim"}
CODES[6] = {[0] = "no_padding", [1] = "padding_pkcs1"}
CODES[7] = {[11] = "add_request", [14] = "change_request", [17] = "delete_request"}
CODES[8] = {[0] = "downlink", [1] = "uplink"}
CODES[9] = {[2] = "be", [3] = "nrtps", [4] = "rtps", [5] = "ertps", [6] = "ugs"}
CODES[10] = {[0] = "add_rule", [1] = "replace_rule", [2] = "delete_rule"}
CODES[11] = {[0] = "not_calibrated", [254] = "calibration_not_known"}
CODES[12] = {[0] = "invalid", [1] = "success", [4] = "not_supported"}
CODES[13] = {[0] = "configuration", [1] = "firmware"}
CODES[14] = {[0] = "active", [1] = "crashed", [2] = "in_shutdown_mode", [3] = "in_idle_mode", [4] = "download_in_progress"}
CODES[15] = {[0] = "disable", [1] = "enable"}
CODES[16] = {[0] = "failed", [1] = "applied"}
CODES[17] = {[0] = "bs_to_ms", [1] = "ms_to_bs"}
CODES[18] = {[1] = "enabled"}
CODES[19] = {[0] = "failed", [1] = "passed", [2] = "no_measurements", [3] = "not_defined"}
CODES[20] = {[0] = "activity_definition", [1] = "activity_activation", [2] = "activity_deactivation", [3] = "activity_definition_and_activation"}
CODES[21] = {[0] = "read", [1] = "write"}
CODES[22] = {[0] = "abort", [1] = "scan", [2147483649] = "infinite_scan"}

local LAYOUTS = {}
LAYOUTS.SearchRequest = {
    name = "search_request", label = "Search Request", meaning = "", size = 144,
    {at = 0, kind = "U32", name = "duration", label = "Duration", meaning = "duration, 0 and more", unit = "s"},
    {at = 4, kind = "U32", name = "report_type", label = "Report Type", meaning = "report type: 1 station by station, 2 consolidated; sent as typed", codes = CODES[1]},
    {at = 8, kind = "U32", name = "num_bandwidths", label = "Num Bandwidths", meaning = "number of bandwidths, 0 to 4"},
    {at = 12, kind = "U32", name = "bandwidths", label = "Bandwidths", meaning = "bandwidths", count = 4, list = true, counter = {at = 8, kind = "U32"}, unit = "kHz"},
    {at = 28, kind = "U32", name = "frequency_start", label = "Frequency Start", meaning = "start of a frequency range", unit = "kHz"},
    {at = 32, kind = "U32", name = "frequency_step", label = "Frequency Step", meaning = "its step", unit = "kHz"},
    {at = 36, kind = "U32", name = "frequency_end", label = "Frequency End", meaning = "its end", unit = "kHz"},
    {at = 40, kind = "U32", name = "num_frequencies", label = "Num Frequencies", meaning = "number of discrete frequencies, 0 to 25"},
    {at = 44, kind = "U32", name = "frequencies", label = "Frequencies", meaning = "discrete frequencies", count = 25, list = true, counter = {at = 40, kind = "U32"}, unit = "kHz"},
}
LAYOUTS.Empty = {
    name = "empty", label = "Empty", meaning = "", size = 0,
}
LAYOUTS.StationEntry = {
    name = "station_entry", label = "Station Entry", meaning = "", size = 16,
    {at = 0, kind = "U32", name = "cf", label = "CF", meaning = "centre frequency", unit = "kHz"},
    {at = 4, kind = "U32", name = "bw", label = "BW", meaning = "bandwidth", unit = "kHz"},
    {at = 8, kind = "U32", name = "pid", label = "Pid", meaning = "preamble index"},
    {at = 12, kind = "U32", name = "dcd_change_count", label = "DCD Change Count", meaning = "DCD change count"},
}
LAYOUTS.NSPSearchRequest = {
    name = "nsp_search_request", label = "NSP Search Request", meaning = "", size = 340,
    {at = 0, kind = "U32", name = "duration", label = "Duration", meaning = "duration, 0 without end", unit = "s"},
    {at = 4, kind = "U32", name = "napid", label = "NAPID", meaning = "NAP ID", hexadecimal = true},
    {at = 8, kind = "U32", name = "num_stations", label = "Num Stations", meaning = "number of stations, 0 to 20"},
    {at = 12, kind = "U32", name = "nsp_change_count", label = "NSP Change Count", meaning = "NSP change count"},
    {at = 20, kind = "record", name = "phy_info", label = "Phy Info", meaning = "stations", count = 20, list = true, counter = {at = 8, kind = "U32"}, record = LAYOUTS.StationEntry},
}
LAYOUTS.LowPowerScanRequest = {
    name = "low_power_scan_request", label = "Low Power Scan Request", meaning = "", size = 13,
    {at = 0, kind = "U8", name = "mode", label = "Mode", meaning = "100, 101 without MIMO on antenna 1, 2; 102, 103 with MIMO; 104 the default"},
}
LAYOUTS.BaseStation = {
    name = "base_station", label = "Base Station", meaning = "", size = 36,
    {at = 0, kind = "U8", name = "compressed_map", label = "Compressed Map", meaning = "0 normal map, else compressed map"},
    {at = 1, kind = "U8", name = "wake_up_bsid", label = "Wake Up BSID", meaning = "reserved; the report of a wake-up shows it in front of the BS ID", hexadecimal = true},
    {at = 2, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID; its first three bytes, the highest first, are the NAP ID", count = 6},
    {at = 8, kind = "U32", name = "preamble_index", label = "Preamble Index", meaning = "preamble index"},
    {at = 12, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency", unit = "kHz"},
    {at = 16, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "kHz"},
    {at = 20, kind = "I32", name = "signal_strength", label = "Signal Strength", meaning = "signal strength", unit = "dBm"},
    {at = 24, kind = "I32", name = "cinr", label = "CINR", meaning = "CINR", unit = "dB"},
    {at = 28, kind = "U32", name = "dcd_change_count", label = "DCD Change Count", meaning = "DCD change count"},
    {at = 32, kind = "U32", name = "nsp_change_count", label = "NSP Change Count", meaning = "NSP change count"},
}
LAYOUTS.StationList = {
    name = "station_list", label = "Station List", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "num_stations", label = "Num Stations", meaning = "number of stations"},
    {at = 4, kind = "U32", name = "search_status", label = "Search Status", meaning = "0 in progress, 1 complete, anything else timed out", codes = CODES[2]},
    {at = 8, kind = "record", name = "stations", label = "Stations", meaning = "station records", count = 0, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.BaseStation},
}
LAYOUTS.NSPEntry = {
    name = "nsp_entry", label = "NSP Entry", meaning = "", size = 136,
    {at = 0, kind = "U32", name = "id", label = "ID", meaning = "ID"},
    {at = 4, kind = "U32", name = "name_length", label = "Name Length", meaning = "length of its name"},
    {at = 8, kind = "text", name = "name", label = "Name", meaning = "name, not terminated", count = 128, counter = {at = 4, kind = "U32"}},
}
LAYOUTS.NSPDiscovery = {
    name = "nsp_discovery", label = "NSP Discovery", meaning = "", size = 1405,
    {at = 0, kind = "U8", name = "status", label = "Status", meaning = "0 success, 1 not needed, 2 not supported, 3 failed, 4 aborted, 5 timed out", codes = CODES[3]},
    {at = 1, kind = "U32", name = "complete", label = "Complete", meaning = "discovery complete"},
    {at = 7, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 13, kind = "U32", name = "dcd_change_count", label = "DCD Change Count", meaning = "DCD change count"},
    {at = 17, kind = "U32", name = "nsp_change_count", label = "NSP Change Count", meaning = "NSP change count"},
    {at = 21, kind = "I32", name = "num_nsps", label = "Num NSPs", meaning = "number of NSPs, up to 10"},
    {at = 25, kind = "record", name = "nsps", label = "NSPs", meaning = "NSPs", count = 10, list = true, counter = {at = 21, kind = "I32"}, record = LAYOUTS.NSPEntry},
    {at = 1385, kind = "U32", name = "pid", label = "PID", meaning = "preamble index"},
    {at = 1389, kind = "U32", name = "cf", label = "CF", meaning = "centre frequency", unit = "kHz"},
    {at = 1393, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "kHz"},
    {at = 1397, kind = "I32", name = "rssi", label = "RSSI", meaning = "RSSI"},
    {at = 1401, kind = "I32", name = "cinr", label = "CINR", meaning = "CINR"},
}
LAYOUTS.LowPowerScanAnswer = {
    name = "low_power_scan_answer", label = "Low Power Scan Answer", meaning = "", size = 17,
    {at = 0, kind = "U32", name = "result", label = "Result", meaning = "1 the mode was set"},
    {at = 4, kind = "U8", name = "mode", label = "Mode", meaning = "mode"},
    {at = 5, kind = "U32", name = "rsvd1", label = "Rsvd1", meaning = "reserved", hexadecimal = true},
    {at = 9, kind = "U32", name = "rsvd2", label = "Rsvd2", meaning = "reserved", hexadecimal = true},
    {at = 13, kind = "U32", name = "rsvd3", label = "Rsvd3", meaning = "reserved", hexadecimal = true},
}
LAYOUTS.SyncUpRequest = {
    name = "sync_up_request", label = "Sync Up Request", meaning = "", size = 64,
    {at = 0, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency", unit = "kHz"},
    {at = 4, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "kHz"},
    {at = 8, kind = "U32", name = "preamble_id", label = "Preamble ID", meaning = "preamble, 255 any"},
}
LAYOUTS.NetworkEntryRequest = {
    name = "network_entry_request", label = "Network Entry Request", meaning = "", size = 4,
}
LAYOUTS.NSPNetworkEntryRequest = {
    name = "nsp_network_entry_request", label = "NSP Network Entry Request", meaning = "", size = 268,
    {at = 0, kind = "U32", name = "nspid_present", label = "NSPID Present", meaning = "1 an NSP ID is given"},
    {at = 4, kind = "U32", name = "nspid", label = "NSPID", meaning = "NSP ID"},
}
LAYOUTS.SyncStatus = {
    name = "sync_status", label = "Sync Status", meaning = "", size = 48,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "link reason; 0 means synchronised here", codes = CODES[4]},
    {at = 4, kind = "U8", name = "compressed_map", label = "Compressed Map", meaning = "0 normal map, else compressed map"},
    {at = 6, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 12, kind = "U32", name = "preamble_id", label = "Preamble ID", meaning = "preamble"},
    {at = 16, kind = "I32", name = "cinr_mean", label = "CINR Mean", meaning = "CINR mean", unit = "dB"},
    {at = 20, kind = "I32", name = "cinr_deviation", label = "CINR Deviation", meaning = "CINR deviation", unit = "dB"},
    {at = 24, kind = "I32", name = "rssi_mean", label = "RSSI Mean", meaning = "RSSI mean", unit = "dBm"},
    {at = 28, kind = "I32", name = "rssi_deviation", label = "RSSI Deviation", meaning = "RSSI deviation", unit = "dBm"},
    {at = 32, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency", unit = "kHz"},
    {at = 36, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "kHz"},
    {at = 40, kind = "U32", name = "dcd_change_count", label = "DCD Change Count", meaning = "DCD change count"},
    {at = 44, kind = "U32", name = "nsp_change_count", label = "NSP Change Count", meaning = "NSP change count"},
}
LAYOUTS.BaseInformation = {
    name = "base_information", label = "Base Information", meaning = "", size = 32,
    {at = 0, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 6, kind = "U8", name = "ul_cell_id", label = "UL Cell ID", meaning = "uplink cell ID"},
    {at = 7, kind = "U8", name = "preamble_index", label = "Preamble Index", meaning = "preamble index"},
    {at = 8, kind = "I16", name = "cinr_mean", label = "CINR Mean", meaning = "CINR mean", unit = "dB"},
    {at = 10, kind = "I16", name = "cinr_deviation", label = "CINR Deviation", meaning = "CINR deviation", unit = "dB"},
    {at = 12, kind = "U32", name = "duration", label = "Duration", meaning = "duration"},
    {at = 16, kind = "I32", name = "mean_rssi", label = "Mean RSSI", meaning = "mean RSSI"},
    {at = 20, kind = "U32", name = "rssi_deviation", label = "RSSI Deviation", meaning = "RSSI deviation"},
    {at = 24, kind = "U32", name = "ul_center_frequency", label = "UL Center Frequency", meaning = "uplink centre frequency", unit = "MHz"},
    {at = 28, kind = "U32", name = "dl_center_frequency", label = "DL Center Frequency", meaning = "downlink centre frequency", unit = "MHz"},
}
LAYOUTS.NetworkEntryStatus = {
    name = "network_entry_status", label = "Network Entry Status", meaning = "", size = 45,
    {at = 0, kind = "U8", name = "status", label = "Status", meaning = "link reason", codes = CODES[4]},
    {at = 1, kind = "U32", name = "base_information_present", label = "Base Information Present", meaning = "not 0: base information is present"},
    {at = 5, kind = "record", name = "base_information", label = "Base Information", meaning = "base information", record = LAYOUTS.BaseInformation},
    {at = 37, kind = "U32", name = "dreg_action_code", label = "DREG Action Code", meaning = "action code of a deregistration (reason 8)"},
    {at = 41, kind = "I32", name = "vendor_data_length", label = "Vendor Data Length", meaning = "length of the vendor-specific data: shown when 1 to 255"},
    {at = 45, kind = "bytes", name = "vendor_data", label = "Vendor Data", meaning = "vendor-specific data", count = 0, counter = {at = 41, kind = "I32"}},
}
LAYOUTS.AuthParamRead = {
    name = "auth_param_read", label = "Auth Param Read", meaning = "", size = 1,
    {at = 0, kind = "U8", name = "method", label = "Method", meaning = "method: 0 EAP-AKA, 1 EAP-SIM", codes = CODES[5]},
}
LAYOUTS.AuthParamWrite = {
    name = "auth_param_write", label = "Auth Param Write", meaning = "", size = 220,
    {at = 0, kind = "U8", name = "method", label = "Method", meaning = "method: 0 EAP-AKA", codes = CODES[5]},
    {at = 1, kind = "U8", name = "data_length", label = "Data Length", meaning = "length of the two that follow: 215"},
    {at = 3, kind = "bytes", name = "pseudonym", label = "Pseudonym", meaning = "pseudonym identifier", count = 23},
    {at = 26, kind = "bytes", name = "sqnms", label = "SQNMS", meaning = "SQN-MS block", count = 192},
}
LAYOUTS.EAPTransfer = {
    name = "eap_transfer", label = "EAP Transfer", meaning = "", size = 2,
    {at = 0, kind = "U16", name = "length", label = "Length", meaning = "length of the data; 0 in the client's requests"},
    {at = 2, kind = "bytes", name = "data", label = "Data", meaning = "EAP data", count = 0, counter = {at = 0, kind = "U16"}},
}
LAYOUTS.EAPComplete = {
    name = "eap_complete", label = "EAP Complete", meaning = "", size = 64,
    {at = 1, kind = "U16", name = "key_length", label = "Key Length", meaning = "length of the key material: 64"},
    {at = 3, kind = "bytes", name = "key", label = "Key", meaning = "key material without its last three bytes", count = 61},
}
LAYOUTS.EncryptionTest = {
    name = "encryption_test", label = "Encryption Test", meaning = "", size = 40,
    {at = 0, kind = "U32", name = "data_length", label = "Data Length", meaning = "length of the data"},
    {at = 4, kind = "U32", name = "padding", label = "Padding", meaning = "padding: 0 none, 1 PKCS#1", codes = CODES[6]},
    {at = 8, kind = "bytes", name = "aes_key", label = "AES Key", meaning = "AES key, zeroes behind the bytes typed (test only)", count = 32},
    {at = 40, kind = "bytes", name = "data", label = "Data", meaning = "the data", count = 0, counter = {at = 0, kind = "U32"}},
}
LAYOUTS.AuthStatus = {
    name = "auth_status", label = "Auth Status", meaning = "", size = 0,
    {at = 0, kind = "value", name = "status", label = "Status", meaning = "status, not read", count = 0},
}
LAYOUTS.EAPAKA = {
    name = "eapaka", label = "EAPAKA", meaning = "", size = 395,
    {at = 0, kind = "bytes", name = "wnid", label = "WNID", meaning = "WNID", count = 16},
    {at = 16, kind = "bytes", name = "kid", label = "KID", meaning = "K ID", count = 16},
    {at = 32, kind = "bytes", name = "opc", label = "OPc", meaning = "OPc", count = 16},
    {at = 48, kind = "bytes", name = "non_k", label = "Non K", meaning = "NonK", count = 16},
    {at = 64, kind = "bytes", name = "non_opc", label = "Non OPc", meaning = "NonOPc", count = 16},
    {at = 80, kind = "bytes", name = "constants", label = "Constants", meaning = "C1 to C5 and R1 to R5", count = 100},
    {at = 180, kind = "bytes", name = "pseudonym", label = "Pseudonym", meaning = "pseudonym identifier", count = 23},
    {at = 203, kind = "bytes", name = "sqnms", label = "SQNMS", meaning = "SQN-MS", count = 192},
}
LAYOUTS.EAPSIM = {
    name = "eapsim", label = "EAPSIM", meaning = "", size = 8,
    {at = 0, kind = "bytes", name = "imei", label = "IMEI", meaning = "IMEI", count = 8},
}
LAYOUTS.AuthParamIndication = {
    name = "auth_param_indication", label = "Auth Param Indication", meaning = "", size = 5,
    {at = 0, kind = "U8", name = "method", label = "Method", meaning = "method: 0 EAP-AKA, 1 EAP-SIM; of any other only the next two bytes are shown", codes = CODES[5]},
    {at = 1, kind = "U8", name = "request_type", label = "Request Type", meaning = "request type"},
    {at = 2, kind = "U8", name = "acknowledgement", label = "Acknowledgement", meaning = "acknowledgement"},
    {at = 5, kind = "bytes", name = "parameters", label = "Parameters", meaning = "parameters of the method", count = 0, cases = {[0] = LAYOUTS.EAPAKA, [1] = LAYOUTS.EAPSIM}, selector = {at = 0, kind = "U8"}},
}
LAYOUTS.ClassifierRule = {
    name = "classifier_rule", label = "Classifier Rule", meaning = "", size = 660,
    {at = 0, kind = "U8", name = "classifier_action", label = "Classifier Action", meaning = "action: 0 add, 1 replace, 2 delete", codes = CODES[10]},
    {at = 1, kind = "U8", name = "param1", label = "Param1", meaning = "FF in the rule of an add request", hexadecimal = true},
    {at = 10, kind = "U8", name = "priority", label = "Priority", meaning = "priority"},
    {at = 15, kind = "U8", name = "protocol", label = "Protocol", meaning = "IP protocol"},
    {at = 16, kind = "U8", name = "ip_masked_src_addr_length", label = "IP Masked Src Addr Length", meaning = "length of the masked source address"},
    {at = 17, kind = "bytes", name = "ip_masked_src_addr", label = "IP Masked Src Addr", meaning = "masked source address", count = 32, counter = {at = 16, kind = "U8"}},
    {at = 49, kind = "U8", name = "ip_masked_dest_addr_length", label = "IP Masked Dest Addr Length", meaning = "length of the masked destination address"},
    {at = 50, kind = "bytes", name = "ip_masked_dest_addr", label = "IP Masked Dest Addr", meaning = "masked destination address", count = 32, counter = {at = 49, kind = "U8"}},
    {at = 82, kind = "U8", name = "src_port_range_length", label = "Src Port Range Length", meaning = "length of the source port range"},
    {at = 83, kind = "bytes", name = "src_port_range", label = "Src Port Range", meaning = "source port range", count = 4, counter = {at = 82, kind = "U8"}},
    {at = 87, kind = "U8", name = "dest_port_range_length", label = "Dest Port Range Length", meaning = "length of the destination port range"},
    {at = 88, kind = "bytes", name = "dest_port_range", label = "Dest Port Range", meaning = "destination port range", count = 4, counter = {at = 87, kind = "U8"}},
    {at = 92, kind = "U8", name = "eth_dest_mac_length", label = "Eth Dest Mac Length", meaning = "length of the Ethernet destination address"},
    {at = 93, kind = "bytes", name = "eth_dest_mac", label = "Eth Dest Mac", meaning = "Ethernet destination address", count = 12, counter = {at = 92, kind = "U8"}},
    {at = 105, kind = "U8", name = "eth_src_mac_length", label = "Eth Src Mac Length", meaning = "length of the Ethernet source address"},
    {at = 106, kind = "bytes", name = "eth_src_mac", label = "Eth Src Mac", meaning = "Ethernet source address", count = 12, counter = {at = 105, kind = "U8"}},
}
LAYOUTS.SFParamSet = {
    name = "sf_param_set", label = "SF Param Set", meaning = "", size = 2816,
    {at = 0, kind = "U32", name = "sfid", label = "SFID", meaning = "SFID, the service flow's identifier"},
    {at = 4, kind = "U32", name = "max_sustained_traffic_rate", label = "Max Sustained Traffic Rate", meaning = "maximum sustained traffic rate"},
    {at = 12, kind = "U32", name = "min_reserved_traffic_rate", label = "Min Reserved Traffic Rate", meaning = "minimum reserved traffic rate"},
    {at = 16, kind = "U32", name = "tolerated_jitter", label = "Tolerated Jitter", meaning = "tolerated jitter"},
    {at = 20, kind = "U32", name = "maximum_latency", label = "Maximum Latency", meaning = "maximum latency"},
    {at = 24, kind = "U16", name = "cid", label = "CID", meaning = "connection ID", hexadecimal = true},
    {at = 26, kind = "U16", name = "reserved26", label = "Reserved26", meaning = "FF FF in add requests", hexadecimal = true},
    {at = 73, kind = "U8", name = "service_class_name_length", label = "Service Class Name Length", meaning = "length of the service class name, its zero included"},
    {at = 74, kind = "text", name = "service_class_name", label = "Service Class Name", meaning = "service class name", count = 33, counter = {at = 73, kind = "U8"}},
    {at = 107, kind = "U8", name = "qo_sparam_set_type", label = "Qo SParam Set Type", meaning = "QoS parameter set type: 1 provisioned + 2 admitted + 4 active", hexadecimal = true},
    {at = 108, kind = "U8", name = "traffic_priority", label = "Traffic Priority", meaning = "traffic priority"},
    {at = 109, kind = "U8", name = "scheduling_type", label = "Scheduling Type", meaning = "scheduling type", codes = CODES[9]},
    {at = 110, kind = "U8", name = "retransmission_policy", label = "Retransmission Policy", meaning = "retransmission policy"},
    {at = 112, kind = "U8", name = "param112", label = "Param112", meaning = "31 in add requests"},
    {at = 116, kind = "U8", name = "cs_specification", label = "CS Specification", meaning = "convergence sublayer specification"},
    {at = 117, kind = "U8", name = "param117", label = "Param117", meaning = "FF in add requests", hexadecimal = true},
    {at = 118, kind = "U8", name = "paging_preference", label = "Paging Preference", meaning = "paging preference"},
    {at = 129, kind = "U8", name = "param129", label = "Param129", meaning = "01 in add requests"},
    {at = 173, kind = "U8", name = "num_classifier_rules", label = "Num Classifier Rules", meaning = "number of classifier rules: 1 in add requests, 0 in change requests"},
    {at = 174, kind = "U8", name = "set_present", label = "Set Present", meaning = "1: the set is present; 0: it is ignored"},
    {at = 176, kind = "record", name = "classifier_rule", label = "Classifier Rule", meaning = "classifier rules", count = 4, list = true, record = LAYOUTS.ClassifierRule},
}
LAYOUTS.ShortServiceFlowRecord = {
    name = "short_service_flow_record", label = "Short Service Flow Record", meaning = "", size = 2828,
    {at = 0, kind = "U8", name = "msg_code", label = "Msg Code", meaning = "message code: 11 add, 14 change", codes = CODES[7]},
    {at = 1, kind = "U8", name = "direction", label = "Direction", meaning = "direction: 0 downlink, 1 uplink", codes = CODES[8]},
    {at = 2, kind = "U16", name = "tid", label = "TID", meaning = "transaction ID"},
    {at = 4, kind = "U16", name = "cid", label = "CID", meaning = "connection ID, in change requests", hexadecimal = true},
    {at = 8, kind = "record", name = "provisioned_set", label = "Provisioned Set", meaning = "provisioned set", record = LAYOUTS.SFParamSet},
}
LAYOUTS.DeleteFlowRequest = {
    name = "delete_flow_request", label = "Delete Flow Request", meaning = "", size = 8,
    {at = 0, kind = "U8", name = "msg_code", label = "Msg Code", meaning = "message code 17", codes = CODES[7]},
    {at = 2, kind = "U16", name = "tid", label = "TID", meaning = "transaction ID"},
    {at = 4, kind = "U32", name = "sfid", label = "SFID", meaning = "SFID"},
}
LAYOUTS.ServiceFlowRecord = {
    name = "service_flow_record", label = "Service Flow Record", meaning = "", size = 8472,
    {at = 0, kind = "U8", name = "msg_code", label = "Msg Code", meaning = "message code: 11 add, 14 change", codes = CODES[7]},
    {at = 1, kind = "U8", name = "direction", label = "Direction", meaning = "direction: 0 downlink, 1 uplink", codes = CODES[8]},
    {at = 2, kind = "U16", name = "tid", label = "TID", meaning = "transaction ID"},
    {at = 4, kind = "U16", name = "cid", label = "CID", meaning = "connection ID, in change requests", hexadecimal = true},
    {at = 8, kind = "record", name = "provisioned_set", label = "Provisioned Set", meaning = "provisioned set", record = LAYOUTS.SFParamSet},
    {at = 2824, kind = "record", name = "admitted_set", label = "Admitted Set", meaning = "admitted set", record = LAYOUTS.SFParamSet},
    {at = 5640, kind = "record", name = "active_set", label = "Active Set", meaning = "active set", record = LAYOUTS.SFParamSet},
    {at = 8468, kind = "U8", name = "confirmation_code", label = "Confirmation Code", meaning = "confirmation code, in indications: 0 is success"},
}
LAYOUTS.GrantChangeRequest = {
    name = "grant_change_request", label = "Grant Change Request", meaning = "", size = 12,
    {at = 2, kind = "U16", name = "vcid", label = "VCID", meaning = "VCID", hexadecimal = true},
    {at = 4, kind = "U32", name = "payload_bytes_per_ugi", label = "Payload Bytes Per UGI", meaning = "payload bytes per unsolicited grant interval"},
    {at = 8, kind = "U32", name = "sdus_per_ugi", label = "SDUs Per UGI", meaning = "SDUs per unsolicited grant interval"},
}
LAYOUTS.SSInformation = {
    name = "ss_information", label = "SS Information", meaning = "", size = 177,
    {at = 0, kind = "U32", name = "firmware_version", label = "Firmware Version", meaning = "firmware version: major, minor, build", count = 3, list = true},
    {at = 12, kind = "text", name = "driver_version", label = "Driver Version", meaning = "driver version, text that ends at its first zero byte, or with its place", count = 128},
    {at = 140, kind = "U32", name = "library_version", label = "Library Version", meaning = "library version: major, minor, build", count = 3, list = true},
    {at = 152, kind = "U32", name = "baseband_chip_version", label = "Baseband Chip Version", meaning = "baseband chip version", hexadecimal = true},
    {at = 156, kind = "U32", name = "rf_chip_version", label = "RF Chip Version", meaning = "RF chip version", hexadecimal = true},
    {at = 160, kind = "U32", name = "eeprom_version", label = "EEPROM Version", meaning = "EEPROM version: major, minor", count = 2, list = true},
    {at = 168, kind = "address", name = "mac_address", label = "MAC Address", meaning = "MAC address", count = 6},
    {at = 176, kind = "U8", name = "calibration", label = "Calibration", meaning = "calibration", codes = CODES[11]},
}
LAYOUTS.EEPROMSummary = {
    name = "eeprom_summary", label = "EEPROM Summary", meaning = "", size = 4,
    {at = 0, kind = "U16", name = "valid_mask", label = "Valid Mask", meaning = "mask of the valid sections", hexadecimal = true},
    {at = 3, kind = "U8", name = "size_in_kb", label = "Size In KB", meaning = "size", unit = "kB"},
}
LAYOUTS.EEPROMVersions = {
    name = "eeprom_versions", label = "EEPROM Versions", meaning = "", size = 56,
    {at = 0, kind = "U32", name = "rf", label = "RF", meaning = "RF"},
    {at = 4, kind = "U32", name = "phy", label = "PHY", meaning = "PHY"},
    {at = 8, kind = "U32", name = "mac", label = "MAC", meaning = "MAC"},
    {at = 12, kind = "U32", name = "cal", label = "CAL", meaning = "calibration"},
    {at = 16, kind = "U32", name = "hw", label = "HW", meaning = "hardware"},
    {at = 20, kind = "U32", name = "mib", label = "MIB", meaning = "MIB"},
    {at = 24, kind = "U32", name = "security", label = "Security", meaning = "security"},
    {at = 28, kind = "U32", name = "omadm", label = "OMADM", meaning = "OMA-DM"},
    {at = 32, kind = "U32", name = "mru", label = "MRU", meaning = "MRU"},
    {at = 52, kind = "U32", name = "vsa", label = "VSA", meaning = "VSA"},
}
LAYOUTS.RangingLogEntry = {
    name = "ranging_log_entry", label = "Ranging Log Entry", meaning = "", size = 16,
    {at = 0, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "frame number"},
    {at = 4, kind = "U32", name = "code", label = "Code", meaning = "code", hexadecimal = true},
    {at = 8, kind = "U32", name = "sub_channel", label = "Sub Channel", meaning = "sub-channel", hexadecimal = true},
    {at = 12, kind = "U32", name = "symbol", label = "Symbol", meaning = "OFDMA symbol", hexadecimal = true},
}
LAYOUTS.RangingLog = {
    name = "ranging_log", label = "Ranging Log", meaning = "", size = 2,
    {at = 0, kind = "I16", name = "length", label = "Length", meaning = "length of the log in bytes; a negative one stands for no entries"},
    {at = 2, kind = "record", name = "entries", label = "Entries", meaning = "entries", count = 0, list = true, counter = {at = 0, kind = "I16"}, counts_bytes = true, record = LAYOUTS.RangingLogEntry},
}
LAYOUTS.BandwidthLogEntry = {
    name = "bandwidth_log_entry", label = "Bandwidth Log Entry", meaning = "", size = 16,
    {at = 0, kind = "U16", name = "pdu_length", label = "PDU Length", meaning = "PDU length"},
    {at = 2, kind = "U16", name = "allocation_received", label = "Allocation Received", meaning = "allocation received"},
    {at = 4, kind = "U16", name = "vcid", label = "VCID", meaning = "VCID; 0xCCDD with the CID 0xAABB: a padding packet", hexadecimal = true},
    {at = 6, kind = "U16", name = "cid", label = "CID", meaning = "CID", hexadecimal = true},
    {at = 8, kind = "U16", name = "queue_depth", label = "Queue Depth", meaning = "queue depth"},
    {at = 10, kind = "U8", name = "bandwidth_request", label = "Bandwidth Request", meaning = "bandwidth request"},
    {at = 11, kind = "U8", name = "scheduling_type", label = "Scheduling Type", meaning = "scheduling type"},
    {at = 12, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "frame number"},
}
LAYOUTS.BandwidthLog = {
    name = "bandwidth_log", label = "Bandwidth Log", meaning = "", size = 2,
    {at = 0, kind = "I16", name = "length", label = "Length", meaning = "length of the log in bytes; a negative one stands for no entries"},
    {at = 2, kind = "record", name = "entries", label = "Entries", meaning = "entries", count = 0, list = true, counter = {at = 0, kind = "I16"}, counts_bytes = true, record = LAYOUTS.BandwidthLogEntry},
}
LAYOUTS.PowerLogEntry = {
    name = "power_log_entry", label = "Power Log Entry", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "adjustment", label = "Adjustment", meaning = "adjustment", unit = "dB", divisor = 4},
    {at = 4, kind = "U32", name = "frame_offset", label = "Frame Offset", meaning = "frame offset"},
    {at = 8, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "frame number"},
    {at = 12, kind = "U32", name = "power", label = "Power", meaning = "power"},
}
LAYOUTS.PowerLog = {
    name = "power_log", label = "Power Log", meaning = "", size = 2,
    {at = 0, kind = "I16", name = "length", label = "Length", meaning = "length of the log in bytes; a negative one stands for no entries"},
    {at = 2, kind = "record", name = "entries", label = "Entries", meaning = "entries", count = 0, list = true, counter = {at = 0, kind = "I16"}, counts_bytes = true, record = LAYOUTS.PowerLogEntry},
}
LAYOUTS.CIDLogEntry = {
    name = "cid_log_entry", label = "CID Log Entry", meaning = "", size = 8,
    {at = 0, kind = "U16", name = "vcid", label = "VCID", meaning = "VCID", hexadecimal = true},
    {at = 2, kind = "U16", name = "cid", label = "CID", meaning = "CID", hexadecimal = true},
    {at = 4, kind = "U16", name = "arq", label = "ARQ", meaning = "ARQ"},
    {at = 6, kind = "U16", name = "direction", label = "Direction", meaning = "direction"},
}
LAYOUTS.CIDLog = {
    name = "cid_log", label = "CID Log", meaning = "", size = 2,
    {at = 0, kind = "I16", name = "length", label = "Length", meaning = "length of the log in bytes; a negative one stands for no entries"},
    {at = 2, kind = "record", name = "entries", label = "Entries", meaning = "entries", count = 0, list = true, counter = {at = 0, kind = "I16"}, counts_bytes = true, record = LAYOUTS.CIDLogEntry},
}
LAYOUTS.CQICHLogEntry = {
    name = "cqich_log_entry", label = "CQICH Log Entry", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "value", label = "Value", meaning = "value"},
}
LAYOUTS.CQICHLog = {
    name = "cqich_log", label = "CQICH Log", meaning = "", size = 2,
    {at = 0, kind = "I16", name = "length", label = "Length", meaning = "length of the log in bytes; a negative one stands for no entries"},
    {at = 2, kind = "record", name = "entries", label = "Entries", meaning = "entries", count = 0, list = true, counter = {at = 0, kind = "I16"}, counts_bytes = true, record = LAYOUTS.CQICHLogEntry},
}
LAYOUTS.VendorParameter = {
    name = "vendor_parameter", label = "Vendor Parameter", meaning = "", size = 4,
    {at = 0, kind = "U16", name = "offset", label = "Offset", meaning = "offset into the region"},
    {at = 2, kind = "U16", name = "data_size", label = "Data Size", meaning = "n, the number of data bytes"},
    {at = 4, kind = "bytes", name = "data", label = "Data", meaning = "data", count = 0, counter = {at = 2, kind = "U16"}},
}
LAYOUTS.VendorRegionSize = {
    name = "vendor_region_size", label = "Vendor Region Size", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "bytes", label = "Bytes", meaning = "size of the region", unit = "bytes"},
}
LAYOUTS.MACAddressRecord = {
    name = "mac_address_record", label = "MAC Address Record", meaning = "", size = 6,
    {at = 0, kind = "address", name = "octets", label = "Octets", meaning = "MAC address", count = 6},
}
LAYOUTS.MACAddressStatus = {
    name = "mac_address_status", label = "MAC Address Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "0 = set, else an error code"},
}
LAYOUTS.CinrRssiThreshold = {
    name = "cinr_rssi_threshold", label = "Cinr Rssi Threshold", meaning = "", size = 8,
    {at = 0, kind = "I32", name = "rssi", label = "RSSI", meaning = "RSSI"},
    {at = 4, kind = "I32", name = "cinr", label = "CINR", meaning = "CINR"},
}
LAYOUTS.IPFilterStatus = {
    name = "ip_filter_status", label = "IP Filter Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "IP filtering status: 0 invalid, 1 success, 4 not supported", codes = CODES[12]},
}
LAYOUTS.DownloadRequest = {
    name = "download_request", label = "Download Request", meaning = "", size = 132,
    {at = 0, kind = "U32", name = "file_type", label = "File Type", meaning = "file type: 0 configuration, 1 firmware", codes = CODES[13]},
    {at = 4, kind = "text", name = "path", label = "Path", meaning = "path on the host, ends at a zero byte", count = 128},
}
LAYOUTS.ModemStatusRequest = {
    name = "modem_status_request", label = "Modem Status Request", meaning = "", size = 1,
}
LAYOUTS.ModemStatus = {
    name = "modem_status", label = "Modem Status", meaning = "", size = 1,
    {at = 0, kind = "U8", name = "state", label = "State", meaning = "0 active, 1 crashed or hanging, 2 in shutdown mode, 3 in idle mode, 4 firmware download in progress", codes = CODES[14]},
}
LAYOUTS.DownloadStatus = {
    name = "download_status", label = "Download Status", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "0 = downloaded, else a code"},
    {at = 4, kind = "U32", name = "file_type", label = "File Type", meaning = "file type", codes = CODES[13]},
    {at = 8, kind = "text", name = "path", label = "Path", meaning = "path, to a zero byte or the end of the payload", count = 0},
}
LAYOUTS.StatisticsInterval = {
    name = "statistics_interval", label = "Statistics Interval", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "interval", label = "Interval", meaning = "interval of the reports; 0 stops them and gets one", unit = "ms"},
}
LAYOUTS.StatisticsReset = {
    name = "statistics_reset", label = "Statistics Reset", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "policy", label = "Policy", meaning = "1 clear the statistics when the modem synchronises again, 0 keep them", codes = CODES[15]},
}
LAYOUTS.Statistics = {
    name = "statistics", label = "Statistics", meaning = "", size = 952,
    {at = 0, kind = "U32", name = "record_size", label = "Record Size", meaning = "size of the record"},
    {at = 4, kind = "U32", name = "frames_received", label = "Frames Received", meaning = "frames received"},
    {at = 8, kind = "U32", name = "frames_in_error", label = "Frames In Error", meaning = "frames in error"},
    {at = 12, kind = "U32", name = "crc_errors", label = "CRC Errors", meaning = "CRC errors"},
    {at = 16, kind = "U32", name = "hcs_errors", label = "HCS Errors", meaning = "header check sequence errors"},
    {at = 20, kind = "U32", name = "cqich_transmitted", label = "CQICH Transmitted", meaning = "CQICH reports sent"},
    {at = 24, kind = "I32", name = "rssi", label = "RSSI", meaning = "RSSI"},
    {at = 28, kind = "I32", name = "cinr", label = "CINR", meaning = "CINR"},
    {at = 56, kind = "U32", name = "bandwidth_requests", label = "Bandwidth Requests", meaning = "bandwidth request headers"},
    {at = 60, kind = "I32", name = "num_connections", label = "Num Connections", meaning = "number of transport connections"},
    {at = 64, kind = "U32", name = "transport_cids", label = "Transport CIDs", meaning = "their connection IDs", count = 42, list = true, counter = {at = 60, kind = "I32"}, hexadecimal = true},
    {at = 234, kind = "I8", name = "tx_power", label = "Tx Power", meaning = "transmit power", unit = "dBm"},
    {at = 244, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 529, kind = "U8", name = "burst_fec", label = "Burst FEC", meaning = "FEC code of the downlink bursts"},
    {at = 948, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency", unit = "kHz"},
}
LAYOUTS.StatisticsResetStatus = {
    name = "statistics_reset_status", label = "Statistics Reset Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "1 applied, 0 failed", codes = CODES[16]},
}
LAYOUTS.IdleTimer = {
    name = "idle_timer", label = "Idle Timer", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "inactivity_timer", label = "Inactivity Timer", meaning = "inactivity timer", unit = "s"},
}
LAYOUTS.IdleIndication = {
    name = "idle_indication", label = "Idle Indication", meaning = "", size = 26,
    {at = 0, kind = "U32", name = "state", label = "State", meaning = "planned timeout when the modem goes idle; 0 when it came back"},
    {at = 4, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 10, kind = "I32", name = "rssi_mean", label = "RSSI Mean", meaning = "RSSI mean; shown divided by 4, towards zero", unit = "dBm", divisor = 4},
    {at = 14, kind = "I32", name = "cinr_mean", label = "CINR Mean", meaning = "CINR mean", unit = "dB"},
    {at = 18, kind = "U32", name = "preamble_id", label = "Preamble ID", meaning = "preamble"},
    {at = 22, kind = "I32", name = "vendor_data_length", label = "Vendor Data Length", meaning = "length of the vendor-specific data: shown when 1 to 255"},
    {at = 26, kind = "bytes", name = "vendor_data", label = "Vendor Data", meaning = "vendor-specific data", count = 0, counter = {at = 22, kind = "I32"}},
}
LAYOUTS.IdleStatus = {
    name = "idle_status", label = "Idle Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "status"},
}
LAYOUTS.TraceRecord = {
    name = "trace_record", label = "Trace Record", meaning = "", size = 18,
    {at = 0, kind = "U8", name = "direction", label = "Direction", meaning = "0 base station to mobile station, 1 the other way, else not shown", codes = CODES[17]},
    {at = 1, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "frame number"},
    {at = 5, kind = "U32", name = "code", label = "Code", meaning = "the IEEE 802.16 management message type"},
    {at = 9, kind = "I32", name = "body_length", label = "Body Length", meaning = "length of the body"},
    {at = 13, kind = "U32", name = "cid", label = "CID", meaning = "connection identifier", hexadecimal = true},
    {at = 17, kind = "U8", name = "cmac_result", label = "CMAC Result", meaning = "result of the CMAC check"},
    {at = 18, kind = "bytes", name = "body", label = "Body", meaning = "body", count = 0, counter = {at = 9, kind = "I32"}},
}
LAYOUTS.TraceState = {
    name = "trace_state", label = "Trace State", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "state", label = "State", meaning = "1 on, anything else off", codes = CODES[18]},
}
LAYOUTS.GPIOBit = {
    name = "gpio_bit", label = "GPIO Bit", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "position", label = "Position", meaning = "bit, 0 to 16"},
    {at = 4, kind = "U32", name = "value", label = "Value", meaning = "22/1: 1 set, 0 clear. Request 22/2: 0xFF. Answer 22/2: the state, anything but 0 is set"},
}
LAYOUTS.LEDEntry = {
    name = "led_entry", label = "LED Entry", meaning = "", size = 3,
    {at = 0, kind = "U8", name = "led_type", label = "Led Type", meaning = "LED: 1 red, 2 blue, 3 yellow, 4 green; 0x80 added for reverse polarity (0 is on)", hexadecimal = true},
    {at = 1, kind = "U8", name = "led_on_state", label = "Led On State", meaning = "mask of the driver states in which it is on", hexadecimal = true},
    {at = 2, kind = "U8", name = "led_blink_state", label = "Led Blink State", meaning = "mask of the driver states in which it blinks", hexadecimal = true},
}
LAYOUTS.LEDBehaviour = {
    name = "led_behaviour", label = "LED Behaviour", meaning = "", size = 16,
    {at = 0, kind = "U32", name = "save", label = "Save", meaning = "1 to save to the device's configuration file too, else 0"},
    {at = 4, kind = "record", name = "entries", label = "Entries", meaning = "entries of the red, blue, yellow and green LED", count = 4, list = true, record = LAYOUTS.LEDEntry},
}
LAYOUTS.LEDState = {
    name = "led_state", label = "LED State", meaning = "", size = 12,
    {at = 0, kind = "record", name = "entries", label = "Entries", meaning = "entries of the red, blue, yellow and green LED", count = 4, list = true, record = LAYOUTS.LEDEntry},
}
LAYOUTS.Handover = {
    name = "handover", label = "Handover", meaning = "", size = 34,
    {at = 0, kind = "U8", name = "ho_success", label = "HO Success", meaning = "not 0: the handover succeeded"},
    {at = 1, kind = "U8", name = "ip_refresh_needed", label = "IP Refresh Needed", meaning = "not 0: the host has to refresh its IP configuration"},
    {at = 2, kind = "address", name = "current_bsid", label = "Current BSID", meaning = "current BS ID", count = 6},
    {at = 8, kind = "address", name = "last_bsid", label = "Last BSID", meaning = "last BS ID", count = 6},
    {at = 14, kind = "U32", name = "num_ranging_failures", label = "Num Ranging Failures", meaning = "ranging failures"},
    {at = 18, kind = "U32", name = "ho_latency", label = "HO Latency", meaning = "latency"},
    {at = 22, kind = "U32", name = "current_preamble_id", label = "Current Preamble ID", meaning = "current preamble ID"},
    {at = 26, kind = "U32", name = "last_preamble_id", label = "Last Preamble ID", meaning = "last preamble ID"},
    {at = 30, kind = "U32", name = "vendor_specific_data_length", label = "Vendor Specific Data Length", meaning = "n, the number of vendor-specific bytes (1 to 255)"},
    {at = 34, kind = "bytes", name = "vendor_specific_data", label = "Vendor Specific Data", meaning = "vendor-specific data", count = 0, counter = {at = 30, kind = "U32"}},
}
LAYOUTS.CenterFrequencyAndBandwidth = {
    name = "center_frequency_and_bandwidth", label = "Center Frequency And Bandwidth", meaning = "", size = 16,
    {at = 0, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency"},
    {at = 4, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth"},
}
LAYOUTS.MIBSetRecord = {
    name = "mib_set_record", label = "MIB Set Record", meaning = "", size = 26,
    {at = 0, kind = "U32", name = "attribute_id", label = "Attribute ID", meaning = "attribute ID"},
    {at = 4, kind = "U8", name = "key_count", label = "Key Count", meaning = "how many keys count: 0, 1 or 2"},
    {at = 5, kind = "U32", name = "key1", label = "Key1", meaning = "first key"},
    {at = 9, kind = "U32", name = "key2", label = "Key2", meaning = "second key"},
    {at = 21, kind = "U32", name = "data_length", label = "Data Length", meaning = "n, the number of value bytes"},
    {at = 25, kind = "I8", name = "status", label = "Status", meaning = "status: 0 in requests and on success"},
    {at = 26, kind = "value", name = "value", label = "Value", meaning = "value", count = 0, counter = {at = 21, kind = "U32"}, cases = {[509] = LAYOUTS.CenterFrequencyAndBandwidth}, selector = {at = 0, kind = "U32"}},
}
LAYOUTS.MIBGetRecord = {
    name = "mib_get_record", label = "MIB Get Record", meaning = "", size = 27,
    {at = 0, kind = "U32", name = "attribute_id", label = "Attribute ID", meaning = "attribute ID"},
    {at = 4, kind = "U8", name = "key_count", label = "Key Count", meaning = "how many keys count: 0, 1 or 2"},
    {at = 5, kind = "U32", name = "key1", label = "Key1", meaning = "first key"},
    {at = 9, kind = "U32", name = "key2", label = "Key2", meaning = "second key"},
    {at = 21, kind = "U32", name = "data_length", label = "Data Length", meaning = "n, the number of value bytes"},
    {at = 25, kind = "I8", name = "status", label = "Status", meaning = "status: 0 in requests and on success"},
}
LAYOUTS.MIBSetList = {
    name = "mib_set_list", label = "MIB Set List", meaning = "", size = 2,
    {at = 0, kind = "U16", name = "count", label = "Count", meaning = "number of records"},
    {at = 2, kind = "record", name = "records", label = "Records", meaning = "records", count = 0, list = true, counter = {at = 0, kind = "U16"}, record = LAYOUTS.MIBSetRecord},
}
LAYOUTS.MIBGetList = {
    name = "mib_get_list", label = "MIB Get List", meaning = "", size = 2,
    {at = 0, kind = "U16", name = "count", label = "Count", meaning = "number of records"},
    {at = 2, kind = "record", name = "records", label = "Records", meaning = "records", count = 0, list = true, counter = {at = 0, kind = "U16"}, record = LAYOUTS.MIBGetRecord},
}
LAYOUTS.PerAttemptReceived = {
    name = "per_attempt_received", label = "Per Attempt Received", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "counters", count = 4, list = true},
}
LAYOUTS.Negated1467 = {
    name = "negated1467", label = "Negated1467", meaning = "", size = 4,
    {at = 0, kind = "I32", name = "value", label = "Value", meaning = "one number, shown behind a minus sign"},
}
LAYOUTS.Negated1468 = {
    name = "negated1468", label = "Negated1468", meaning = "", size = 4,
    {at = 0, kind = "I32", name = "value", label = "Value", meaning = "one number, shown behind a minus sign"},
}
LAYOUTS.PerAttemptCompleted = {
    name = "per_attempt_completed", label = "Per Attempt Completed", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "counters", count = 4, list = true},
}
LAYOUTS.SubmapErrors = {
    name = "submap_errors", label = "Submap Errors", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "counters", count = 4, list = true},
}
LAYOUTS.Neighbour = {
    name = "neighbour", label = "Neighbour", meaning = "", size = 28,
    {at = 0, kind = "U32", name = "preamble", label = "Preamble", meaning = "preamble"},
    {at = 4, kind = "U32", name = "channel_bandwidth", label = "Channel Bandwidth", meaning = "bandwidth", unit = "Hz"},
    {at = 8, kind = "U32", name = "center_frequency", label = "Center Frequency", meaning = "centre frequency", unit = "MHz", divisor = 8},
    {at = 12, kind = "bytes", name = "bsid", label = "BSID", meaning = "BS ID, the last byte first", count = 6},
    {at = 20, kind = "I32", name = "rssi", label = "RSSI", meaning = "RSSI", unit = "dBm", divisor = 4},
    {at = 24, kind = "I32", name = "cinr", label = "CINR", meaning = "CINR", unit = "dB"},
}
LAYOUTS.Neighbours = {
    name = "neighbours", label = "Neighbours", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "count", label = "Count", meaning = "number of neighbours"},
    {at = 4, kind = "record", name = "entries", label = "Entries", meaning = "neighbours, from 0", count = 0, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.Neighbour},
}
LAYOUTS.ActiveSFID = {
    name = "active_sfid", label = "Active SFID", meaning = "", size = 136,
    {at = 0, kind = "U32", name = "sfid", label = "SFID", meaning = "SFID"},
}
LAYOUTS.ActiveSFIDs = {
    name = "active_sfids", label = "Active SFIDs", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "count", label = "Count", meaning = "number of service flows"},
    {at = 4, kind = "record", name = "entries", label = "Entries", meaning = "service flows", count = 0, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.ActiveSFID},
}
LAYOUTS.MeasuredNeighbour = {
    name = "measured_neighbour", label = "Measured Neighbour", meaning = "", size = 52,
    {at = 4, kind = "U32", name = "preamble_id", label = "Preamble ID", meaning = "preamble"},
    {at = 8, kind = "U32", name = "frequency", label = "Frequency", meaning = "frequency", unit = "MHz", divisor = 8},
    {at = 12, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "Hz"},
    {at = 16, kind = "address", name = "bsid", label = "BSID", meaning = "BS ID", count = 6},
    {at = 24, kind = "U32", name = "r1_cinr", label = "R1 CINR", meaning = "R1 CINR", divisor = 65536},
    {at = 28, kind = "U32", name = "r3_cinr", label = "R3 CINR", meaning = "R3 CINR", divisor = 65536},
    {at = 32, kind = "U32", name = "rssi", label = "RSSI", meaning = "RSSI, shown unsigned", unit = "dBm", divisor = 65536},
    {at = 36, kind = "U32", name = "to_f", label = "To F", meaning = "time of flight", divisor = 16},
    {at = 40, kind = "U32", name = "rtd", label = "RTD", meaning = "RTD"},
    {at = 44, kind = "U32", name = "meas_dur", label = "Meas Dur", meaning = "duration of the measurement"},
    {at = 48, kind = "U32", name = "flags", label = "Flags", meaning = "flags", hexadecimal = true},
}
LAYOUTS.MeasuredNeighbours = {
    name = "measured_neighbours", label = "Measured Neighbours", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "count", label = "Count", meaning = "number of neighbours"},
    {at = 4, kind = "record", name = "entries", label = "Entries", meaning = "neighbours, from 0", count = 0, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.MeasuredNeighbour},
}
LAYOUTS.CounterGroup = {
    name = "counter_group", label = "Counter Group", meaning = "", size = 84,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "one counter for each modulation and coding scheme", count = 21, list = true},
}
LAYOUTS.BurstZone = {
    name = "burst_zone", label = "Burst Zone", meaning = "", size = 252,
    {at = 0, kind = "record", name = "matrix_a", label = "Matrix A", meaning = "matrix A", record = LAYOUTS.CounterGroup},
    {at = 84, kind = "record", name = "matrix_b", label = "Matrix B", meaning = "matrix B", record = LAYOUTS.CounterGroup},
    {at = 168, kind = "record", name = "non_mimo", label = "Non MIMO", meaning = "without MIMO", record = LAYOUTS.CounterGroup},
}
LAYOUTS.ZoneBursts = {
    name = "zone_bursts", label = "Zone Bursts", meaning = "", size = 2520,
    {at = 0, kind = "record", name = "zones", label = "Zones", meaning = "zones, each a tenth of the value long", count = 10, list = true, record = LAYOUTS.BurstZone},
}
LAYOUTS.MRUEntry = {
    name = "mru_entry", label = "MRU Entry", meaning = "", size = 20,
    {at = 0, kind = "U32", name = "index", label = "Index", meaning = "index"},
    {at = 4, kind = "U32", name = "frequencies", label = "Frequencies", meaning = "frequencies", count = 3, list = true},
    {at = 16, kind = "U32", name = "bandwidth", label = "Bandwidth", meaning = "bandwidth", unit = "MHz"},
}
LAYOUTS.MRUTable = {
    name = "mru_table", label = "MRU Table", meaning = "", size = 0,
    {at = 0, kind = "record", name = "entries", label = "Entries", meaning = "entries to the end of the value", count = 0, list = true, record = LAYOUTS.MRUEntry},
}
LAYOUTS.NetworkEntryTiming = {
    name = "network_entry_timing", label = "Network Entry Timing", meaning = "", size = 36,
    {at = 0, kind = "U32", name = "nw_search_time", label = "Nw Search Time", meaning = "search"},
    {at = 4, kind = "U32", name = "phy_sync_time", label = "Phy Sync Time", meaning = "PHY synchronisation"},
    {at = 8, kind = "U32", name = "mac_sync_time", label = "Mac Sync Time", meaning = "MAC synchronisation"},
    {at = 12, kind = "U32", name = "ranging_time", label = "Ranging Time", meaning = "ranging"},
    {at = 16, kind = "U32", name = "sbc_time", label = "Sbc Time", meaning = "capabilities"},
    {at = 20, kind = "U32", name = "auth_phase_time", label = "Auth Phase Time", meaning = "authentication"},
    {at = 24, kind = "U32", name = "reg_neg_time", label = "Reg Neg Time", meaning = "registration"},
    {at = 28, kind = "U32", name = "prov_sf_time", label = "Prov Sf Time", meaning = "provisioned flows"},
    {at = 32, kind = "U32", name = "nw_entry_time", label = "Nw Entry Time", meaning = "whole entry"},
}
LAYOUTS.DLZone = {
    name = "dl_zone", label = "DL Zone", meaning = "", size = 528,
    {at = 0, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "last frame number"},
    {at = 4, kind = "I8", name = "pcinr_rate1", label = "PCINR Rate1", meaning = "PCINR rate 1"},
    {at = 5, kind = "I8", name = "pcinr_rate2", label = "PCINR Rate2", meaning = "PCINR rate 2"},
    {at = 6, kind = "I8", name = "ecinr_rate", label = "ECINR Rate", meaning = "ECINR rate"},
    {at = 8, kind = "I32", name = "pcinr_frame", label = "PCINR Frame", meaning = "last frame of PCINR"},
    {at = 12, kind = "I32", name = "ecinr_frame", label = "ECINR Frame", meaning = "last frame of ECINR"},
    {at = 24, kind = "record", name = "bursts_matrix_a", label = "Bursts Matrix A", meaning = "bursts, matrix A", record = LAYOUTS.CounterGroup},
    {at = 108, kind = "record", name = "bursts_matrix_b", label = "Bursts Matrix B", meaning = "bursts, matrix B", record = LAYOUTS.CounterGroup},
    {at = 192, kind = "record", name = "bursts_non_mimo", label = "Bursts Non MIMO", meaning = "bursts without MIMO", record = LAYOUTS.CounterGroup},
    {at = 276, kind = "record", name = "pdus_matrix_a", label = "Pdus Matrix A", meaning = "PDUs, matrix A", record = LAYOUTS.CounterGroup},
    {at = 360, kind = "record", name = "pdus_matrix_b", label = "Pdus Matrix B", meaning = "PDUs, matrix B", record = LAYOUTS.CounterGroup},
    {at = 444, kind = "record", name = "pdus_non_mimo", label = "Pdus Non MIMO", meaning = "PDUs without MIMO", record = LAYOUTS.CounterGroup},
}
LAYOUTS.ULZone = {
    name = "ul_zone", label = "UL Zone", meaning = "", size = 524,
    {at = 0, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "last frame number"},
    {at = 20, kind = "record", name = "bursts_pilot_a", label = "Bursts Pilot A", meaning = "bursts, pilot A", record = LAYOUTS.CounterGroup},
    {at = 104, kind = "record", name = "bursts_pilot_b", label = "Bursts Pilot B", meaning = "bursts, pilot B", record = LAYOUTS.CounterGroup},
    {at = 188, kind = "record", name = "bursts_non_csm", label = "Bursts Non CSM", meaning = "bursts without CSM", record = LAYOUTS.CounterGroup},
    {at = 272, kind = "record", name = "pdus_pilot_a", label = "Pdus Pilot A", meaning = "PDUs, pilot A", record = LAYOUTS.CounterGroup},
    {at = 356, kind = "record", name = "pdus_pilot_b", label = "Pdus Pilot B", meaning = "PDUs, pilot B", record = LAYOUTS.CounterGroup},
    {at = 440, kind = "record", name = "pdus_non_csm", label = "Pdus Non CSM", meaning = "PDUs without CSM", record = LAYOUTS.CounterGroup},
}
LAYOUTS.ZoneStatistics = {
    name = "zone_statistics", label = "Zone Statistics", meaning = "", size = 6868,
    {at = 0, kind = "U32", name = "major_group", label = "Major Group", meaning = "major group indicator"},
    {at = 16, kind = "record", name = "dl_zones", label = "DL Zones", meaning = "downlink zones", count = 10, list = true, record = LAYOUTS.DLZone},
    {at = 5296, kind = "record", name = "ul_zones", label = "UL Zones", meaning = "uplink zones", count = 3, list = true, record = LAYOUTS.ULZone},
}
LAYOUTS.AntennaSwitch = {
    name = "antenna_switch", label = "Antenna Switch", meaning = "", size = 32,
    {at = 0, kind = "U32", name = "filtering1", label = "Filtering1", meaning = "filtering coefficient of antenna 1", divisor = 512},
    {at = 4, kind = "U32", name = "filtering2", label = "Filtering2", meaning = "filtering coefficient of antenna 2", divisor = 512},
    {at = 8, kind = "U32", name = "margin1", label = "Margin1", meaning = "switching margin of antenna 1"},
    {at = 12, kind = "U32", name = "margin2", label = "Margin2", meaning = "switching margin of antenna 2"},
    {at = 16, kind = "I32", name = "smooth_rssi1", label = "Smooth RSSI1", meaning = "smooth RSSI of antenna 1", divisor = 16},
    {at = 20, kind = "I32", name = "smooth_rssi2", label = "Smooth RSSI2", meaning = "smooth RSSI of antenna 2", divisor = 16},
    {at = 24, kind = "U32", name = "selection_mode", label = "Selection Mode", meaning = "selection mode"},
    {at = 28, kind = "U32", name = "current_antenna", label = "Current Antenna", meaning = "current antenna"},
}
LAYOUTS.TriggerStatus = {
    name = "trigger_status", label = "Trigger Status", meaning = "", size = 3,
    {at = 0, kind = "U8", name = "serving_bs", label = "Serving BS", meaning = "serving BS: 0 failed, 1 passed, 2 no measurements, 3 and above not defined", codes = CODES[19]},
    {at = 1, kind = "U8", name = "intra_fa", label = "Intra FA", meaning = "intra-FA group", codes = CODES[19]},
    {at = 2, kind = "U8", name = "inter_fa", label = "Inter FA", meaning = "inter-FA group", codes = CODES[19]},
}
LAYOUTS.BurstErrorRate = {
    name = "burst_error_rate", label = "Burst Error Rate", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "counters", count = 4, list = true},
}
LAYOUTS.SoundingType = {
    name = "sounding_type", label = "Sounding Type", meaning = "", size = 16,
    {at = 0, kind = "I32", name = "counters", label = "Counters", meaning = "counters", count = 4, list = true},
}
LAYOUTS.ControlMessagesDropped = {
    name = "control_messages_dropped", label = "Control Messages Dropped", meaning = "", size = 32,
    {at = 0, kind = "I32", name = "cm_responses", label = "Cm Responses", meaning = "cm_responses"},
    {at = 4, kind = "I32", name = "cm_control_new_dsx_multiclassifier_resp", label = "Cm Control New Dsx Multiclassifier Resp", meaning = "cm_control_newdsx_multiclassifier_resp"},
    {at = 8, kind = "I32", name = "link_control_resp", label = "Link Control Resp", meaning = "link_control_resp"},
    {at = 12, kind = "I32", name = "status_rsp", label = "Status Rsp", meaning = "status_rsp"},
    {at = 16, kind = "I32", name = "stats_pointer_resp", label = "Stats Pointer Resp", meaning = "stats_pointer_resp"},
    {at = 20, kind = "I32", name = "idle_mode_status", label = "Idle Mode Status", meaning = "idle_mode_status"},
    {at = 24, kind = "I32", name = "auth_ss_host_msg", label = "Auth Ss Host Msg", meaning = "auth_ss_host_msg"},
    {at = 28, kind = "I32", name = "low_priority_message", label = "Low Priority Message", meaning = "low_priority_message"},
}
LAYOUTS.MIBRecord = {
    name = "mib_record", label = "MIB Record", meaning = "", size = 27,
    {at = 0, kind = "U32", name = "attribute_id", label = "Attribute ID", meaning = "attribute ID"},
    {at = 4, kind = "U8", name = "key_count", label = "Key Count", meaning = "how many keys count: 0, 1 or 2"},
    {at = 5, kind = "U32", name = "key1", label = "Key1", meaning = "first key"},
    {at = 9, kind = "U32", name = "key2", label = "Key2", meaning = "second key"},
    {at = 21, kind = "U32", name = "data_length", label = "Data Length", meaning = "n, the number of value bytes"},
    {at = 25, kind = "I8", name = "status", label = "Status", meaning = "status: 0 in requests and on success"},
    {at = 26, kind = "value", name = "value", label = "Value", meaning = "value", count = 0, counter = {at = 21, kind = "U32"}, cases = {[509] = LAYOUTS.CenterFrequencyAndBandwidth, [1448] = LAYOUTS.PerAttemptReceived, [1467] = LAYOUTS.Negated1467, [1468] = LAYOUTS.Negated1468, [1479] = LAYOUTS.PerAttemptCompleted, [1482] = LAYOUTS.SubmapErrors, [1494] = LAYOUTS.Neighbours, [1503] = LAYOUTS.ActiveSFIDs, [1575] = LAYOUTS.MeasuredNeighbours, [1608] = LAYOUTS.ZoneBursts, [1612] = LAYOUTS.MRUTable, [1619] = LAYOUTS.NetworkEntryTiming, [1625] = LAYOUTS.ZoneStatistics, [1631] = LAYOUTS.AntennaSwitch, [1633] = LAYOUTS.TriggerStatus, [1634] = LAYOUTS.BurstErrorRate, [1649] = LAYOUTS.SoundingType, [1654] = LAYOUTS.ControlMessagesDropped}, selector = {at = 0, kind = "U32"}},
}
LAYOUTS.MIBRecordList = {
    name = "mib_record_list", label = "MIB Record List", meaning = "", size = 2,
    {at = 0, kind = "U16", name = "count", label = "Count", meaning = "number of records"},
    {at = 2, kind = "record", name = "records", label = "Records", meaning = "records", count = 0, list = true, counter = {at = 0, kind = "U16"}, record = LAYOUTS.MIBRecord},
}
LAYOUTS.PSCDefinition = {
    name = "psc_definition", label = "PSC Definition", meaning = "", size = 49,
    {at = 0, kind = "U8", name = "pscid", label = "PSCID", meaning = "class ID, 255 asks for a new one"},
    {at = 1, kind = "U8", name = "psc_type", label = "PSC Type", meaning = "class type"},
    {at = 2, kind = "U8", name = "direction", label = "Direction", meaning = "direction: 0 not specified, 1 downlink, 2 uplink"},
    {at = 3, kind = "U8", name = "initial_sleep_window", label = "Initial Sleep Window", meaning = "initial sleep window"},
    {at = 4, kind = "U8", name = "final_sleep_window_exp", label = "Final Sleep Window Exp", meaning = "exponent of the final sleep window (3 bits)"},
    {at = 5, kind = "U8", name = "listen_window", label = "Listen Window", meaning = "listen window"},
    {at = 6, kind = "U16", name = "final_sleep_window_base", label = "Final Sleep Window Base", meaning = "base of the final sleep window (10 bits)"},
    {at = 8, kind = "U8", name = "ttwf", label = "TTWF", meaning = "traffic triggered wakening flag"},
    {at = 9, kind = "U8", name = "tir", label = "TIR", meaning = "TIR flag"},
    {at = 12, kind = "U16", name = "cid", label = "CID", meaning = "connection IDs", count = 16, list = true, counter = {at = 45, kind = "U32"}, hexadecimal = true},
    {at = 44, kind = "U8", name = "activity", label = "Activity", meaning = "activity: 0 define, 1 activate, 2 deactivate, 3 define and activate", codes = CODES[20]},
    {at = 45, kind = "U32", name = "num_of_cids", label = "Num Of CIDs", meaning = "number of connection IDs"},
}
LAYOUTS.SleepMode = {
    name = "sleep_mode", label = "Sleep Mode", meaning = "", size = 200,
    {at = 0, kind = "U32", name = "num_of_definitions", label = "Num Of Definitions", meaning = "number of definitions, 1 to 3"},
    {at = 4, kind = "record", name = "psc_definition", label = "PSC Definition", meaning = "definitions", count = 3, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.PSCDefinition},
}
LAYOUTS.MACLogData = {
    name = "mac_log_data", label = "MAC Log Data", meaning = "", size = 1500,
    {at = 0, kind = "bytes", name = "log_data", label = "Log Data", meaning = "log data", count = 1500},
}
LAYOUTS.AntennaConfig = {
    name = "antenna_config", label = "Antenna Config", meaning = "", size = 36,
    {at = 0, kind = "U32", name = "num_rx_gpios", label = "Num Rx GPIOs", meaning = "number of receive pins (0 to 4)"},
    {at = 4, kind = "U32", name = "num_tx_gpios", label = "Num Tx GPIOs", meaning = "number of transmit pins (0 or 1)"},
    {at = 8, kind = "U32", name = "rx_gpio", label = "Rx GPIO", meaning = "receive pins, all ones where unused", count = 4, list = true, hexadecimal = true},
    {at = 24, kind = "U32", name = "tx_gpio", label = "Tx GPIO", meaning = "transmit pin, all ones when unused", hexadecimal = true},
    {at = 28, kind = "U32", name = "set_config", label = "Set Config", meaning = "0 read the configuration, 1 write it", codes = CODES[21]},
    {at = 32, kind = "U32", name = "status", label = "Status", meaning = "in the answer: 0 = done, else an error code"},
}
LAYOUTS.AntennaScanRequest = {
    name = "antenna_scan_request", label = "Antenna Scan Request", meaning = "", size = 44,
    {at = 0, kind = "U32", name = "scan_choice", label = "Scan Choice", meaning = "0 abort the scan that is going on, 1 scan, 0x80000001 scan without end", codes = CODES[22]},
    {at = 4, kind = "U32", name = "iterations", label = "Iterations", meaning = "iterations"},
    {at = 8, kind = "U32", name = "num_gpio_patterns", label = "Num GPIO Patterns", meaning = "number of GPIO patterns"},
    {at = 12, kind = "U32", name = "gpio_pattern", label = "GPIO Pattern", meaning = "patterns, of which the dialogue asks for three", count = 4, list = true, hexadecimal = true},
    {at = 28, kind = "U32", name = "scan_interleave_interval", label = "Scan Interleave Interval", meaning = "interleaving interval"},
}
LAYOUTS.AntennaSelection = {
    name = "antenna_selection", label = "Antenna Selection", meaning = "", size = 48,
    {at = 0, kind = "U32", name = "rx_selection_valid", label = "Rx Selection Valid", meaning = "1 = the receive settings count"},
    {at = 4, kind = "U32", name = "tx_selection_valid", label = "Tx Selection Valid", meaning = "1 = the transmit settings count"},
    {at = 8, kind = "U32", name = "rx_antenna_setting", label = "Rx Antenna Setting", meaning = "receive antenna settings", count = 3, list = true},
    {at = 24, kind = "U32", name = "tx_auto_selection", label = "Tx Auto Selection", meaning = "1 = the modem selects the transmit antenna"},
    {at = 28, kind = "U32", name = "tx_antenna_setting", label = "Tx Antenna Setting", meaning = "transmit antenna setting"},
    {at = 32, kind = "U32", name = "iir_avg_ant1", label = "IIR Avg Ant1", meaning = "averaging parameter of antenna 1"},
    {at = 36, kind = "U32", name = "iir_avg_ant2", label = "IIR Avg Ant2", meaning = "averaging parameter of antenna 2"},
    {at = 40, kind = "I32", name = "hys_thresh_ant1", label = "Hys Thresh Ant1", meaning = "switching threshold of antenna 1", unit = "dB"},
    {at = 44, kind = "I32", name = "hys_thresh_ant2", label = "Hys Thresh Ant2", meaning = "switching threshold of antenna 2", unit = "dB"},
}
LAYOUTS.AntennaScan = {
    name = "antenna_scan", label = "Antenna Scan", meaning = "", size = 700,
    {at = 0, kind = "U32", name = "scan_status", label = "Scan Status", meaning = "0 = aborted"},
    {at = 4, kind = "U32", name = "frames_scanned", label = "Frames Scanned", meaning = "number of frames scanned"},
    {at = 8, kind = "U32", name = "rx_gpio_pattern", label = "Rx GPIO Pattern", meaning = "receive patterns, of which three are shown", count = 4, list = true, hexadecimal = true},
    {at = 24, kind = "I32", name = "rssi_ant1", label = "RSSI Ant1", meaning = "RSSI of antenna 1, frame by frame", count = 32, list = true, counter = {at = 4, kind = "U32"}},
    {at = 152, kind = "I32", name = "cinr_ant1", label = "CINR Ant1", meaning = "CINR of antenna 1, frame by frame", count = 32, list = true, counter = {at = 4, kind = "U32"}},
    {at = 280, kind = "I32", name = "rssi_ant2", label = "RSSI Ant2", meaning = "RSSI of antenna 2, frame by frame", count = 32, list = true, counter = {at = 4, kind = "U32"}},
    {at = 408, kind = "I32", name = "cinr_ant2", label = "CINR Ant2", meaning = "CINR of antenna 2, frame by frame", count = 32, list = true, counter = {at = 4, kind = "U32"}},
    {at = 536, kind = "U32", name = "frame_number", label = "Frame Number", meaning = "frame numbers", count = 32, list = true, counter = {at = 4, kind = "U32"}},
    {at = 664, kind = "U32", name = "current_gpio_pattern", label = "Current GPIO Pattern", meaning = "current pattern", count = 4, list = true, hexadecimal = true},
    {at = 680, kind = "I32", name = "current_rssi_ant1", label = "Current RSSI Ant1", meaning = "current RSSI of antenna 1"},
    {at = 684, kind = "I32", name = "current_cinr_ant1", label = "Current CINR Ant1", meaning = "current CINR of antenna 1"},
    {at = 688, kind = "I32", name = "current_rssi_ant2", label = "Current RSSI Ant2", meaning = "current RSSI of antenna 2"},
    {at = 692, kind = "I32", name = "current_cinr_ant2", label = "Current CINR Ant2", meaning = "current CINR of antenna 2"},
    {at = 696, kind = "U32", name = "scan_error", label = "Scan Error", meaning = "0 = the results are valid, else an error code"},
}
LAYOUTS.AntennaSelectionStatus = {
    name = "antenna_selection_status", label = "Antenna Selection Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "0 = selected"},
}
LAYOUTS.WiMAXOption = {
    name = "wi_max_option", label = "Wi MAX Option", meaning = "", size = 5,
    {at = 0, kind = "U8", name = "specifier", label = "Specifier", meaning = "specifier: one bit, or 0", hexadecimal = true},
    {at = 1, kind = "U32", name = "value", label = "Value", meaning = "value; in an answer the result"},
}
LAYOUTS.WiMAXOptions = {
    name = "wi_max_options", label = "Wi MAX Options", meaning = "", size = 40,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "status: 0 in requests; anything else in an answer means failure"},
    {at = 4, kind = "U8", name = "specifier", label = "Specifier", meaning = "specifier: the options present", hexadecimal = true},
    {at = 8, kind = "U32", name = "values", label = "Values", meaning = "value of option b, 0 to 7", count = 8, list = true},
}
LAYOUTS.ShutdownStatus = {
    name = "shutdown_status", label = "Shutdown Status", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "status", label = "Status", meaning = "0 the modem is shut down"},
}
LAYOUTS.WakeUpStations = {
    name = "wake_up_stations", label = "Wake Up Stations", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "num_stations", label = "Num Stations", meaning = "number of stations"},
    {at = 8, kind = "record", name = "stations", label = "Stations", meaning = "station records", count = 0, list = true, counter = {at = 0, kind = "U32"}, record = LAYOUTS.BaseStation},
}
LAYOUTS.PHYLogData = {
    name = "phy_log_data", label = "PHY Log Data", meaning = "", size = 200,
    {at = 0, kind = "bytes", name = "log_data", label = "Log Data", meaning = "log data", count = 200},
}
LAYOUTS.OMADMVersion = {
    name = "omadm_version", label = "OMADM Version", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "major", label = "Major", meaning = "major, 3 for this client; the library's own in the answer of a refusal"},
    {at = 4, kind = "U32", name = "minor", label = "Minor", meaning = "minor, 0"},
}
LAYOUTS.OMADMElement = {
    name = "omadm_element", label = "OMADM Element", meaning = "", size = 8,
    {at = 0, kind = "U8", name = "class", label = "Class", meaning = "class of the node"},
    {at = 1, kind = "U8", name = "number", label = "Number", meaning = "number of the node"},
    {at = 4, kind = "U32", name = "index", label = "Index", meaning = "array index, 0 for a node that is no array"},
}
LAYOUTS.OMADMParameter = {
    name = "omadm_parameter", label = "OMADM Parameter", meaning = "", size = 90,
    {at = 0, kind = "U32", name = "value_size", label = "Value Size", meaning = "n, the size of the value"},
    {at = 5, kind = "record", name = "path", label = "Path", meaning = "path", count = 10, list = true, counter = {at = 85, kind = "U32"}, record = LAYOUTS.OMADMElement},
    {at = 85, kind = "U32", name = "num_elements", label = "Num Elements", meaning = "number of steps"},
    {at = 89, kind = "bytes", name = "value", label = "Value", meaning = "value, and one byte more", count = 0, counter = {at = 0, kind = "U32"}},
}
LAYOUTS.OMADMSizeQuery = {
    name = "omadm_size_query", label = "OMADM Size Query", meaning = "", size = 89,
    {at = 0, kind = "record", name = "path", label = "Path", meaning = "path", count = 10, list = true, counter = {at = 80, kind = "U32"}, record = LAYOUTS.OMADMElement},
    {at = 80, kind = "U32", name = "num_elements", label = "Num Elements", meaning = "number of steps"},
    {at = 85, kind = "U32", name = "node_size", label = "Node Size", meaning = "size; filled in by the answer"},
}
LAYOUTS.OMADMTreeUpdate = {
    name = "omadm_tree_update", label = "OMADM Tree Update", meaning = "", size = 128,
    {at = 0, kind = "text", name = "file_name", label = "File Name", meaning = "file name, padded with zeroes", count = 128},
}
LAYOUTS.SecurityRecord = {
    name = "security_record", label = "Security Record", meaning = "", size = 9,
    {at = 0, kind = "U32", name = "parameter_id", label = "Parameter ID", meaning = "parameter ID"},
    {at = 4, kind = "U32", name = "data_length", label = "Data Length", meaning = "n, the number of value bytes"},
    {at = 8, kind = "I8", name = "status", label = "Status", meaning = "status: 0 in requests and on success"},
    {at = 9, kind = "value", name = "value", label = "Value", meaning = "value", count = 0, counter = {at = 4, kind = "U32"}},
}
LAYOUTS.SecurityGetRequest = {
    name = "security_get_request", label = "Security Get Request", meaning = "", size = 10,
    {at = 0, kind = "U32", name = "parameter_id", label = "Parameter ID", meaning = "parameter ID"},
}
LAYOUTS.SecuritySizeRequest = {
    name = "security_size_request", label = "Security Size Request", meaning = "", size = 4,
    {at = 0, kind = "U32", name = "parameter_id", label = "Parameter ID", meaning = "parameter ID"},
}
LAYOUTS.IMEIRequest = {
    name = "imei_request", label = "IMEI Request", meaning = "", size = 28,
}
LAYOUTS.IMEIBlock = {
    name = "imei_block", label = "IMEI Block", meaning = "", size = 28,
    {at = 4, kind = "bytes", name = "data", label = "Data", meaning = "IMEI block", count = 24},
}
LAYOUTS.SecuritySize = {
    name = "security_size", label = "Security Size", meaning = "", size = 9,
    {at = 0, kind = "U32", name = "parameter_id", label = "Parameter ID", meaning = "parameter ID"},
    {at = 4, kind = "U32", name = "data_length", label = "Data Length", meaning = "size of the value"},
    {at = 8, kind = "I8", name = "status", label = "Status", meaning = "status: 0 on success"},
}
LAYOUTS.RegisterCall = {
    name = "register_call", label = "Register Call", meaning = "", size = 8,
    {at = 0, kind = "U32", name = "address", label = "Address", meaning = "address", hexadecimal = true},
    {at = 4, kind = "U32", name = "count", label = "Count", meaning = "number of bytes"},
    {at = 8, kind = "value", name = "value", label = "Value", meaning = "bytes that were read or written", count = 0, counter = {at = 4, kind = "U32"}},
}

local MESSAGES = {
    {type = 1, subtype = 1, way = "sent", name = "network_search_request", label = "Network Search Request", meaning = "network search", layout = LAYOUTS.SearchRequest, least = 144, most = 144, answer = 1},
    {type = 1, subtype = 2, way = "sent", name = "network_search_abort", label = "Network Search Abort", meaning = "search abort", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 1, subtype = 3, way = "sent", name = "network_search_query", label = "Network Search Query", meaning = "query of search results", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 1},
    {type = 1, subtype = 4, way = "sent", name = "nsp_search_request", label = "NSP Search Request", meaning = "NSP search", layout = LAYOUTS.NSPSearchRequest, least = 340, most = 340, answer = 4},
    {type = 1, subtype = 6, way = "sent", name = "low_power_scan_request", label = "Low Power Scan Request", meaning = "low power scan mode", layout = LAYOUTS.LowPowerScanRequest, least = 13, most = 13, answer = 6},
    {type = 1, subtype = 1, way = "received", name = "network_search_result", label = "Network Search Result", meaning = "search results", layout = LAYOUTS.StationList, least = 8, most = 10240, as_counted = true},
    {type = 1, subtype = 4, way = "received", name = "nsp_discovery", label = "NSP Discovery", meaning = "NSP discovery", layout = LAYOUTS.NSPDiscovery, least = 1405, most = 1405},
    {type = 1, subtype = 6, way = "received", name = "low_power_scan_answer", label = "Low Power Scan Answer", meaning = "low power scan mode", layout = LAYOUTS.LowPowerScanAnswer, least = 17, most = 17},
    {type = 2, subtype = 1, way = "sent", name = "sync_up", label = "Sync Up", meaning = "sync up", layout = LAYOUTS.SyncUpRequest, least = 64, most = 64, answer = 1},
    {type = 2, subtype = 2, way = "sent", name = "network_entry_request", label = "Network Entry Request", meaning = "network entry", layout = LAYOUTS.NetworkEntryRequest, least = 4, most = 4, answer = 2},
    {type = 2, subtype = 3, way = "sent", name = "network_entry_status_request", label = "Network Entry Status Request", meaning = "network entry status", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 2},
    {type = 2, subtype = 4, way = "sent", name = "nsp_network_entry_request", label = "NSP Network Entry Request", meaning = "network entry by NSP", layout = LAYOUTS.NSPNetworkEntryRequest, least = 268, most = 268, answer = 2},
    {type = 2, subtype = 1, way = "received", name = "sync_status", label = "Sync Status", meaning = "sync status", layout = LAYOUTS.SyncStatus, least = 48, most = 48},
    {type = 2, subtype = 2, way = "received", name = "network_entry_status", label = "Network Entry Status", meaning = "network entry status", layout = LAYOUTS.NetworkEntryStatus, least = 45, most = 10240},
    {type = 3, subtype = 1, way = "sent", name = "sync_down_request", label = "Sync Down Request", meaning = "sync down, also the shutdown that the mobile station begins", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 3, subtype = 2, way = "sent", name = "deregistration_request", label = "Deregistration Request", meaning = "deregistration", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 4, subtype = 1, way = "sent", name = "auth_status_request", label = "Auth Status Request", meaning = "authentication status", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 2},
    {type = 4, subtype = 3, way = "sent", name = "auth_param_read", label = "Auth Param Read", meaning = "read authentication parameters", layout = LAYOUTS.AuthParamRead, least = 1, most = 1, answer = 5},
    {type = 4, subtype = 4, way = "sent", name = "auth_param_write", label = "Auth Param Write", meaning = "write EAP-AKA parameters", layout = LAYOUTS.AuthParamWrite, least = 220, most = 220},
    {type = 4, subtype = 7, way = "sent", name = "eap_transfer_request", label = "EAP Transfer Request", meaning = "EAP transfer", layout = LAYOUTS.EAPTransfer, least = 2, most = 10240, as_counted = true, answer = 6},
    {type = 4, subtype = 8, way = "sent", name = "eap_complete", label = "EAP Complete", meaning = "EAP complete", layout = LAYOUTS.EAPComplete, least = 64, most = 64},
    {type = 4, subtype = 9, way = "sent", name = "encryption_test", label = "Encryption Test", meaning = "encryption test", layout = LAYOUTS.EncryptionTest, least = 41, most = 10240, answer = 10},
    {type = 4, subtype = 2, way = "received", name = "auth_status", label = "Auth Status", meaning = "authentication status", layout = LAYOUTS.AuthStatus, least = 0, most = 10240},
    {type = 4, subtype = 5, way = "received", name = "auth_param_indication", label = "Auth Param Indication", meaning = "authentication parameters", layout = LAYOUTS.AuthParamIndication, least = 5, most = 10240},
    {type = 4, subtype = 6, way = "received", name = "eap_transfer", label = "EAP Transfer", meaning = "EAP transfer", layout = LAYOUTS.EAPTransfer, least = 2, most = 10240, as_counted = true},
    {type = 4, subtype = 10, way = "received", name = "encryption_result", label = "Encryption Result", meaning = "encryption result", layout = LAYOUTS.EncryptionTest, least = 40, most = 10240},
    {type = 6, subtype = 1, way = "sent", name = "add_service_flow_request", label = "Add Service Flow Request", meaning = "add a service flow (DSA)", layout = LAYOUTS.ShortServiceFlowRecord, least = 2828, most = 2828, answer = 1},
    {type = 6, subtype = 2, way = "sent", name = "delete_service_flow_request", label = "Delete Service Flow Request", meaning = "delete a service flow (DSD)", layout = LAYOUTS.DeleteFlowRequest, least = 8, most = 8, answer = 2},
    {type = 6, subtype = 3, way = "sent", name = "change_service_flow_request", label = "Change Service Flow Request", meaning = "change a service flow (DSC)", layout = LAYOUTS.ServiceFlowRecord, least = 8472, most = 8472, answer = 3},
    {type = 6, subtype = 4, way = "sent", name = "grant_change_request", label = "Grant Change Request", meaning = "eRTPS grant change", layout = LAYOUTS.GrantChangeRequest, least = 12, most = 12},
    {type = 6, subtype = 1, way = "received", name = "service_flow_added", label = "Service Flow Added", meaning = "a service flow was added, or not", layout = LAYOUTS.ServiceFlowRecord, least = 8472, most = 8472},
    {type = 6, subtype = 2, way = "received", name = "service_flow_deleted", label = "Service Flow Deleted", meaning = "a service flow was deleted", layout = LAYOUTS.ServiceFlowRecord, least = 8472, most = 8472},
    {type = 6, subtype = 3, way = "received", name = "service_flow_changed", label = "Service Flow Changed", meaning = "a service flow was changed, or not", layout = LAYOUTS.ServiceFlowRecord, least = 8472, most = 8472},
    {type = 7, subtype = 0, way = "sent", name = "ss_info_unlisted", label = "SS Info Unlisted", meaning = "a menu choice that is not listed", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 7, subtype = 1, way = "sent", name = "ss_information_request", label = "SS Information Request", meaning = "identity and versions", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 1},
    {type = 7, subtype = 2, way = "sent", name = "eeprom_summary_request", label = "EEPROM Summary Request", meaning = "EEPROM summary", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 2},
    {type = 7, subtype = 3, way = "sent", name = "eeprom_versions_request", label = "EEPROM Versions Request", meaning = "EEPROM section versions", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 3},
    {type = 7, subtype = 1, way = "received", name = "ss_information", label = "SS Information", meaning = "identity and versions", layout = LAYOUTS.SSInformation, least = 177, most = 177},
    {type = 7, subtype = 2, way = "received", name = "eeprom_summary", label = "EEPROM Summary", meaning = "EEPROM summary", layout = LAYOUTS.EEPROMSummary, least = 4, most = 4},
    {type = 7, subtype = 3, way = "received", name = "eeprom_versions", label = "EEPROM Versions", meaning = "EEPROM section versions", layout = LAYOUTS.EEPROMVersions, least = 56, most = 56},
    {type = 8, subtype = 1, way = "sent", name = "start_initial_ranging_logger", label = "Start Initial Ranging Logger", meaning = "start the initial ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 2, way = "sent", name = "start_bandwidth_ranging_logger", label = "Start Bandwidth Ranging Logger", meaning = "start the bandwidth request ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 3, way = "sent", name = "start_periodic_ranging_logger", label = "Start Periodic Ranging Logger", meaning = "start the periodic ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 4, way = "sent", name = "start_bandwidth_logger", label = "Start Bandwidth Logger", meaning = "start the bandwidth logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 5, way = "sent", name = "start_closed_loop_power_logger", label = "Start Closed Loop Power Logger", meaning = "start the closed-loop power adjustment logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 6, way = "sent", name = "start_open_loop_power_logger", label = "Start Open Loop Power Logger", meaning = "start the open-loop power adjustment logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 7, way = "sent", name = "start_cid_logger", label = "Start CID Logger", meaning = "start the connection logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 8, way = "sent", name = "start_cqich_logger", label = "Start CQICH Logger", meaning = "start the CQICH logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 8, subtype = 1, way = "received", name = "initial_ranging_log", label = "Initial Ranging Log", meaning = "initial ranging log", layout = LAYOUTS.RangingLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 2, way = "received", name = "bandwidth_ranging_log", label = "Bandwidth Ranging Log", meaning = "bandwidth request ranging log", layout = LAYOUTS.RangingLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 3, way = "received", name = "periodic_ranging_log", label = "Periodic Ranging Log", meaning = "periodic ranging log", layout = LAYOUTS.RangingLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 4, way = "received", name = "bandwidth_log", label = "Bandwidth Log", meaning = "bandwidth log", layout = LAYOUTS.BandwidthLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 5, way = "received", name = "closed_loop_power_log", label = "Closed Loop Power Log", meaning = "closed-loop power adjustment log", layout = LAYOUTS.PowerLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 6, way = "received", name = "open_loop_power_log", label = "Open Loop Power Log", meaning = "open-loop power adjustment log", layout = LAYOUTS.PowerLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 7, way = "received", name = "cid_log", label = "CID Log", meaning = "connection log", layout = LAYOUTS.CIDLog, least = 2, most = 10240, as_counted = true},
    {type = 8, subtype = 8, way = "received", name = "cqich_log", label = "CQICH Log", meaning = "CQICH log", layout = LAYOUTS.CQICHLog, least = 2, most = 10240, as_counted = true},
    {type = 9, subtype = 1, way = "sent", name = "stop_initial_ranging_logger", label = "Stop Initial Ranging Logger", meaning = "stop the initial ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 2, way = "sent", name = "stop_bandwidth_ranging_logger", label = "Stop Bandwidth Ranging Logger", meaning = "stop the bandwidth request ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 3, way = "sent", name = "stop_periodic_ranging_logger", label = "Stop Periodic Ranging Logger", meaning = "stop the periodic ranging logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 4, way = "sent", name = "stop_bandwidth_logger", label = "Stop Bandwidth Logger", meaning = "stop the bandwidth logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 5, way = "sent", name = "stop_closed_loop_power_logger", label = "Stop Closed Loop Power Logger", meaning = "stop the closed-loop power adjustment logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 6, way = "sent", name = "stop_open_loop_power_logger", label = "Stop Open Loop Power Logger", meaning = "stop the open-loop power adjustment logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 7, way = "sent", name = "stop_cid_logger", label = "Stop CID Logger", meaning = "stop the connection logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 9, subtype = 8, way = "sent", name = "stop_cqich_logger", label = "Stop CQICH Logger", meaning = "stop the CQICH logger", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 10, subtype = 1, way = "sent", name = "vendor_read_request", label = "Vendor Read Request", meaning = "read vendor-specific parameters", layout = LAYOUTS.VendorParameter, least = 5, most = 10240, answer = 1},
    {type = 10, subtype = 3, way = "sent", name = "vendor_write_request", label = "Vendor Write Request", meaning = "write vendor-specific parameters", layout = LAYOUTS.VendorParameter, least = 5, most = 10240, answer = 3},
    {type = 10, subtype = 4, way = "sent", name = "vendor_size_request", label = "Vendor Size Request", meaning = "size of the vendor-specific region", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 4},
    {type = 10, subtype = 1, way = "received", name = "vendor_read", label = "Vendor Read", meaning = "vendor-specific parameters", layout = LAYOUTS.VendorParameter, least = 4, most = 10240},
    {type = 10, subtype = 3, way = "received", name = "vendor_write", label = "Vendor Write", meaning = "vendor-specific parameters were written", layout = LAYOUTS.VendorParameter, least = 4, most = 10240},
    {type = 10, subtype = 4, way = "received", name = "vendor_size", label = "Vendor Size", meaning = "size of the vendor-specific region", layout = LAYOUTS.VendorRegionSize, least = 4, most = 4},
    {type = 11, subtype = 1, way = "sent", name = "set_mac_address_request", label = "Set MAC Address Request", meaning = "set the MAC address", layout = LAYOUTS.MACAddressRecord, least = 6, most = 6, answer = 1},
    {type = 11, subtype = 1, way = "received", name = "set_mac_address", label = "Set MAC Address", meaning = "the MAC address was set, or not", layout = LAYOUTS.MACAddressStatus, least = 4, most = 4},
    {type = 12, subtype = 2, way = "received", name = "device_unloaded", label = "Device Unloaded", meaning = "the device was unloaded", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 13, subtype = 5, way = "sent", name = "search_threshold_request", label = "Search Threshold Request", meaning = "thresholds of the network search", layout = LAYOUTS.CinrRssiThreshold, least = 8, most = 8, answer = 5},
    {type = 13, subtype = 5, way = "received", name = "search_threshold", label = "Search Threshold", meaning = "thresholds of the network search, as set", layout = LAYOUTS.CinrRssiThreshold, least = 8, most = 8},
    {type = 13, subtype = 6, way = "received", name = "ip_filter_status", label = "IP Filter Status", meaning = "IP filtering status", layout = LAYOUTS.IPFilterStatus, least = 4, most = 4},
    {type = 16, subtype = 1, way = "sent", name = "chipset_reset_request", label = "Chipset Reset Request", meaning = "reset", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 1},
    {type = 16, subtype = 2, way = "sent", name = "download_request", label = "Download Request", meaning = "download of one file", layout = LAYOUTS.DownloadRequest, least = 132, most = 132, answer = 2},
    {type = 16, subtype = 3, way = "sent", name = "modem_status_request", label = "Modem Status Request", meaning = "modem status", layout = LAYOUTS.ModemStatusRequest, least = 1, most = 1},
    {type = 16, subtype = 3, way = "written_back", name = "modem_status", label = "Modem Status", meaning = "modem status", layout = LAYOUTS.ModemStatus, least = 1, most = 1},
    {type = 16, subtype = 1, way = "received", name = "chipset_reset", label = "Chipset Reset", meaning = "the modem was reset", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 16, subtype = 2, way = "received", name = "download_status", label = "Download Status", meaning = "download status", layout = LAYOUTS.DownloadStatus, least = 8, most = 10240},
    {type = 17, subtype = 1, way = "sent", name = "statistics_request", label = "Statistics Request", meaning = "baseband statistics", layout = LAYOUTS.StatisticsInterval, least = 4, most = 4, answer = 1},
    {type = 17, subtype = 2, way = "sent", name = "statistics_reset_request", label = "Statistics Reset Request", meaning = "statistics reset control", layout = LAYOUTS.StatisticsReset, least = 4, most = 4, answer = 2},
    {type = 17, subtype = 1, way = "received", name = "statistics", label = "Statistics", meaning = "baseband statistics", layout = LAYOUTS.Statistics, least = 952, most = 10240},
    {type = 17, subtype = 2, way = "received", name = "statistics_reset_status", label = "Statistics Reset Status", meaning = "statistics reset control", layout = LAYOUTS.StatisticsResetStatus, least = 4, most = 4},
    {type = 19, subtype = 1, way = "sent", name = "idle_mode_request", label = "Idle Mode Request", meaning = "enter idle mode", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 1},
    {type = 19, subtype = 2, way = "sent", name = "idle_mode_status_request", label = "Idle Mode Status Request", meaning = "idle mode status", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 2},
    {type = 19, subtype = 3, way = "sent", name = "idle_mode_timer_request", label = "Idle Mode Timer Request", meaning = "change the inactivity timer", layout = LAYOUTS.IdleTimer, least = 4, most = 4, answer = 3},
    {type = 19, subtype = 4, way = "sent", name = "idle_mode_wake_up_request", label = "Idle Mode Wake Up Request", meaning = "wake up", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 4},
    {type = 19, subtype = 1, way = "received", name = "idle_indication", label = "Idle Indication", meaning = "the modem goes idle or comes back", layout = LAYOUTS.IdleIndication, least = 26, most = 10240},
    {type = 19, subtype = 2, way = "received", name = "idle_mode_status", label = "Idle Mode Status", meaning = "idle mode status", layout = LAYOUTS.IdleStatus, least = 4, most = 4},
    {type = 19, subtype = 3, way = "received", name = "idle_mode_timer", label = "Idle Mode Timer", meaning = "inactivity timer", layout = LAYOUTS.IdleStatus, least = 4, most = 4},
    {type = 19, subtype = 4, way = "received", name = "idle_mode_wake_up", label = "Idle Mode Wake Up", meaning = "wake up, 0 failed", layout = LAYOUTS.IdleStatus, least = 4, most = 4},
    {type = 21, subtype = 1, way = "sent", name = "trace_enable", label = "Trace Enable", meaning = "switch the trace on", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 21, subtype = 2, way = "sent", name = "trace_disable", label = "Trace Disable", meaning = "switch the trace off", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 21, subtype = 3, way = "sent", name = "trace_state_request", label = "Trace State Request", meaning = "ask for the trace's state", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 3},
    {type = 21, subtype = 1, way = "received", name = "traced_message", label = "Traced Message", meaning = "one traced message", layout = LAYOUTS.TraceRecord, least = 18, most = 10240, as_counted = true},
    {type = 21, subtype = 3, way = "received", name = "trace_state", label = "Trace State", meaning = "the trace's state", layout = LAYOUTS.TraceState, least = 4, most = 4},
    {type = 22, subtype = 1, way = "sent", name = "gpio_set", label = "GPIO Set", meaning = "set or clear a GPIO bit", layout = LAYOUTS.GPIOBit, least = 8, most = 8},
    {type = 22, subtype = 2, way = "sent", name = "gpio_status_request", label = "GPIO Status Request", meaning = "ask for a GPIO bit", layout = LAYOUTS.GPIOBit, least = 8, most = 8, answer = 2},
    {type = 22, subtype = 3, way = "sent", name = "set_led_state", label = "Set LED State", meaning = "set the LEDs' behaviour", layout = LAYOUTS.LEDBehaviour, least = 16, most = 16, answer = 3},
    {type = 22, subtype = 4, way = "sent", name = "led_state_request", label = "LED State Request", meaning = "ask for the LEDs' behaviour", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 4},
    {type = 22, subtype = 2, way = "received", name = "gpio_status", label = "GPIO Status", meaning = "state of a GPIO bit", layout = LAYOUTS.GPIOBit, least = 8, most = 8},
    {type = 22, subtype = 3, way = "received", name = "led_state_set", label = "LED State Set", meaning = "the LEDs' behaviour was set", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 22, subtype = 4, way = "received", name = "led_state", label = "LED State", meaning = "the LEDs' behaviour", layout = LAYOUTS.LEDState, least = 12, most = 12},
    {type = 23, subtype = 1, way = "received", name = "handover", label = "Handover", meaning = "result of a handover attempt", layout = LAYOUTS.Handover, least = 34, most = 10240, as_counted = true},
    {type = 24, subtype = 1, way = "sent", name = "mib_set_request", label = "MIB Set Request", meaning = "set an attribute", layout = LAYOUTS.MIBSetRecord, least = 27, most = 10240, answer = 1},
    {type = 24, subtype = 2, way = "sent", name = "mib_get_request", label = "MIB Get Request", meaning = "get an attribute", layout = LAYOUTS.MIBGetRecord, least = 27, most = 27, answer = 2},
    {type = 24, subtype = 3, way = "sent", name = "multiple_mib_set_request", label = "Multiple MIB Set Request", meaning = "set several attributes", layout = LAYOUTS.MIBSetList, least = 2, most = 10240, answer = 3},
    {type = 24, subtype = 4, way = "sent", name = "multiple_mib_get_request", label = "Multiple MIB Get Request", meaning = "get several attributes", layout = LAYOUTS.MIBGetList, least = 2, most = 10240, answer = 4},
    {type = 24, subtype = 1, way = "received", name = "mib_set", label = "MIB Set", meaning = "an attribute was set, or not", layout = LAYOUTS.MIBRecord, least = 27, most = 10240},
    {type = 24, subtype = 2, way = "received", name = "mib_get", label = "MIB Get", meaning = "the value of an attribute", layout = LAYOUTS.MIBRecord, least = 27, most = 10240},
    {type = 24, subtype = 3, way = "received", name = "multiple_mib_set", label = "Multiple MIB Set", meaning = "several attributes were set, or not", layout = LAYOUTS.MIBRecordList, least = 2, most = 10240},
    {type = 24, subtype = 4, way = "received", name = "multiple_mib_get", label = "Multiple MIB Get", meaning = "the values of several attributes", layout = LAYOUTS.MIBRecordList, least = 2, most = 10240},
    {type = 25, way = "received", name = "ignored25", label = "Ignored25", meaning = "passed over by the client", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 26, subtype = 1, way = "sent", name = "sleep_mode_request", label = "Sleep Mode Request", meaning = "power saving classes", layout = LAYOUTS.SleepMode, least = 200, most = 200, answer = 2},
    {type = 26, subtype = 2, way = "received", name = "sleep_mode", label = "Sleep Mode", meaning = "power saving classes", layout = LAYOUTS.SleepMode, least = 200, most = 200},
    {type = 27, subtype = 2, way = "sent", name = "mac_logging_enable", label = "MAC Logging Enable", meaning = "MAC logging on", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 27, subtype = 3, way = "sent", name = "mac_logging_disable", label = "MAC Logging Disable", meaning = "MAC logging off", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 27, way = "received", name = "mac_log_data", label = "MAC Log Data", meaning = "MAC log data", layout = LAYOUTS.MACLogData, least = 1500, most = 1500},
    {type = 28, subtype = 1, way = "sent", name = "antenna_config_request", label = "Antenna Config Request", meaning = "antenna configuration", layout = LAYOUTS.AntennaConfig, least = 36, most = 36, answer = 1},
    {type = 28, subtype = 2, way = "sent", name = "antenna_scan_request", label = "Antenna Scan Request", meaning = "antenna scan", layout = LAYOUTS.AntennaScanRequest, least = 44, most = 44, answer = 2},
    {type = 28, subtype = 5, way = "sent", name = "antenna_selection_request", label = "Antenna Selection Request", meaning = "antenna selection", layout = LAYOUTS.AntennaSelection, least = 48, most = 48, answer = 5},
    {type = 28, subtype = 1, way = "received", name = "antenna_config", label = "Antenna Config", meaning = "antenna configuration with its status", layout = LAYOUTS.AntennaConfig, least = 36, most = 36},
    {type = 28, subtype = 2, way = "received", name = "antenna_scan", label = "Antenna Scan", meaning = "scan results", layout = LAYOUTS.AntennaScan, least = 700, most = 700},
    {type = 28, subtype = 5, way = "received", name = "antenna_selection", label = "Antenna Selection", meaning = "status of the antenna selection", layout = LAYOUTS.AntennaSelectionStatus, least = 4, most = 4},
    {type = 29, subtype = 1, way = "sent", name = "wi_max_option_set_request", label = "Wi MAX Option Set Request", meaning = "set one option", layout = LAYOUTS.WiMAXOption, least = 5, most = 5, answer = 1},
    {type = 29, subtype = 2, way = "sent", name = "wi_max_options_set_request", label = "Wi MAX Options Set Request", meaning = "set several options", layout = LAYOUTS.WiMAXOptions, least = 40, most = 40, answer = 2},
    {type = 29, subtype = 3, way = "sent", name = "wi_max_options_get_request", label = "Wi MAX Options Get Request", meaning = "get all options", layout = LAYOUTS.WiMAXOptions, least = 40, most = 40, answer = 3},
    {type = 29, subtype = 1, way = "received", name = "wi_max_option_set", label = "Wi MAX Option Set", meaning = "set one option", layout = LAYOUTS.WiMAXOption, least = 5, most = 5},
    {type = 29, subtype = 2, way = "received", name = "wi_max_options_set", label = "Wi MAX Options Set", meaning = "set several options", layout = LAYOUTS.WiMAXOptions, least = 40, most = 40},
    {type = 29, subtype = 3, way = "received", name = "wi_max_options_get", label = "Wi MAX Options Get", meaning = "get all options", layout = LAYOUTS.WiMAXOptions, least = 40, most = 40},
    {type = 30, subtype = 1, way = "sent", name = "shutdown_request", label = "Shutdown Request", meaning = "shutdown", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 1},
    {type = 30, subtype = 5, way = "sent", name = "shutdown_status_request", label = "Shutdown Status Request", meaning = "shutdown mode status", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 5},
    {type = 30, subtype = 1, way = "received", name = "shutdown", label = "Shutdown", meaning = "shutdown", layout = LAYOUTS.ShutdownStatus, least = 4, most = 4},
    {type = 30, subtype = 2, way = "received", name = "shutdown_from_firmware", label = "Shutdown From Firmware", meaning = "the firmware asks for a shutdown", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 30, subtype = 3, way = "received", name = "periodic_wake_up", label = "Periodic Wake Up", meaning = "periodic wake-up", layout = LAYOUTS.WakeUpStations, least = 8, most = 10240, as_counted = true},
    {type = 30, subtype = 4, way = "received", name = "complete_wake_up", label = "Complete Wake Up", meaning = "complete wake-up", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 30, subtype = 5, way = "received", name = "shutdown_status", label = "Shutdown Status", meaning = "shutdown mode status", layout = LAYOUTS.ShutdownStatus, least = 4, most = 4},
    {type = 31, subtype = 2, way = "sent", name = "phy_logging_enable", label = "PHY Logging Enable", meaning = "PHY logging on", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 31, subtype = 3, way = "sent", name = "phy_logging_disable", label = "PHY Logging Disable", meaning = "PHY logging off", layout = LAYOUTS.Empty, least = 0, most = 0},
    {type = 31, way = "received", name = "phy_log_data", label = "PHY Log Data", meaning = "PHY log data", layout = LAYOUTS.PHYLogData, least = 200, most = 200},
    {type = 33, subtype = 1, way = "sent", name = "omadm_version_request", label = "OMADM Version Request", meaning = "interface version", layout = LAYOUTS.OMADMVersion, least = 8, most = 8},
    {type = 33, subtype = 2, way = "sent", name = "omadm_set_request", label = "OMADM Set Request", meaning = "set a node's value", layout = LAYOUTS.OMADMParameter, least = 90, most = 10240},
    {type = 33, subtype = 3, way = "sent", name = "omadm_get_request", label = "OMADM Get Request", meaning = "get a node's value", layout = LAYOUTS.OMADMParameter, least = 90, most = 10240},
    {type = 33, subtype = 4, way = "sent", name = "omadm_size_request", label = "OMADM Size Request", meaning = "size of a node's value", layout = LAYOUTS.OMADMSizeQuery, least = 89, most = 89},
    {type = 33, subtype = 5, way = "sent", name = "omadm_tree_update_request", label = "OMADM Tree Update Request", meaning = "load a tree image", layout = LAYOUTS.OMADMTreeUpdate, least = 128, most = 128},
    {type = 33, subtype = 1, way = "written_back", name = "omadm_version", label = "OMADM Version", meaning = "interface version", layout = LAYOUTS.OMADMVersion, least = 8, most = 8},
    {type = 33, subtype = 3, way = "written_back", name = "omadm_get", label = "OMADM Get", meaning = "get a node's value", layout = LAYOUTS.OMADMParameter, least = 90, most = 10240},
    {type = 33, subtype = 4, way = "written_back", name = "omadm_size", label = "OMADM Size", meaning = "size of a node's value", layout = LAYOUTS.OMADMSizeQuery, least = 89, most = 89},
    {type = 34, subtype = 1, way = "sent", name = "security_set_request", label = "Security Set Request", meaning = "set a security parameter", layout = LAYOUTS.SecurityRecord, least = 10, most = 10240, answer = 1},
    {type = 34, subtype = 2, way = "sent", name = "security_get_request", label = "Security Get Request", meaning = "get a security parameter", layout = LAYOUTS.SecurityGetRequest, least = 10, most = 10, answer = 2},
    {type = 34, subtype = 3, way = "sent", name = "security_size_request", label = "Security Size Request", meaning = "size of a security parameter", layout = LAYOUTS.SecuritySizeRequest, least = 4, most = 4, answer = 3},
    {type = 34, subtype = 4, way = "sent", name = "imei_request", label = "IMEI Request", meaning = "IMEI block", layout = LAYOUTS.IMEIRequest, least = 28, most = 28},
    {type = 34, subtype = 4, way = "written_back", name = "imei", label = "IMEI", meaning = "IMEI block", layout = LAYOUTS.IMEIBlock, least = 28, most = 28},
    {type = 34, subtype = 1, way = "received", name = "security_set", label = "Security Set", meaning = "a security parameter was set, or not", layout = LAYOUTS.SecurityRecord, least = 9, most = 10240},
    {type = 34, subtype = 2, way = "received", name = "security_get", label = "Security Get", meaning = "the value of a security parameter", layout = LAYOUTS.SecurityRecord, least = 9, most = 10240},
    {type = 34, subtype = 3, way = "received", name = "security_size", label = "Security Size", meaning = "the size of a security parameter", layout = LAYOUTS.SecuritySize, least = 9, most = 10240},
    {type = 36, subtype = 1, way = "sent", name = "half_mini_card_status_request", label = "Half Mini Card Status Request", meaning = "half mini card status", layout = LAYOUTS.Empty, least = 0, most = 0, answer = 2},
    {type = 36, subtype = 2, way = "received", name = "half_mini_card", label = "Half Mini Card", meaning = "half mini card response", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 36, subtype = 3, way = "received", name = "half_mini_card_wake_up", label = "Half Mini Card Wake Up", meaning = "half mini card wake-up", layout = LAYOUTS.Empty, least = 0, most = 10240},
    {type = 0, subtype = 0, way = "read", name = "register_read", label = "Register Read", meaning = "call of rdm", layout = LAYOUTS.RegisterCall, least = 8, most = 4294967295},
    {type = 0, subtype = 0, way = "write", name = "register_write", label = "Register Write", meaning = "call of wrm", layout = LAYOUTS.RegisterCall, least = 8, most = 4294967295},
}

-- ---- What every part uses ----

-- Numbers come as floats in some versions of Lua: %d shows them alike in all.
local function decimal(number)
    return string.format("%d", number)
end

-- A number of bits of a number.
local function bits_of(number, first, count)
    return math.floor(number / 2 ^ first) % 2 ^ count
end

-- NSTime from seconds or nanoseconds that are not negative.
local function time_of(whole, part)
    return NSTime.new(whole, math.max(0, math.min(part, 999999999)))
end

-- Calls a dissector that is not ours; what it finds malformed it has marked itself.
local function call(dissector, tvb, pinfo, tree)
    pcall(dissector.call, dissector, tvb, pinfo, tree)
end

-- ---- Fields ----

local qor020 = Proto("qor020", "WiMAX modem interface")
local registered = {} -- all ProtoFields of it

local function field(name, label, kind, meaning, values, base)
    local made = ProtoField.new(label, "qor020." .. name, kind, values, base, nil, meaning)
    registered[#registered + 1] = made
    return made
end

local KINDS = {
    U8 = {width = 1, type = ftypes.UINT8},
    I8 = {width = 1, type = ftypes.INT8, signed = true},
    U16 = {width = 2, type = ftypes.UINT16},
    I16 = {width = 2, type = ftypes.INT16, signed = true},
    U32 = {width = 4, type = ftypes.UINT32},
    I32 = {width = 4, type = ftypes.INT32, signed = true},
}

local ADDRESS_SIZE = 6

local function field_of(row, name)
    local number = KINDS[row.kind]
    if row.kind == "record" then
        return field(name, row.label, ftypes.NONE, row.meaning)
    elseif row.kind == "text" then
        return field(name, row.label, ftypes.STRING, row.meaning)
    elseif row.kind == "address" and row.count == ADDRESS_SIZE then
        return field(name, row.label, ftypes.ETHER, row.meaning)
    elseif not number then
        return field(name, row.label, ftypes.BYTES, row.meaning)
    elseif row.divisor then
        return field(name, row.label, ftypes.DOUBLE, row.meaning)
    elseif row.codes or row.hexadecimal then
        return field(name, row.label, number.type, row.meaning, row.codes,
                     row.hexadecimal and base.HEX or base.DEC)
    elseif row.unit then
        return field(name, row.label, number.type, row.meaning, {" " .. row.unit}, base.UNIT_STRING)
    end
    return field(name, row.label, number.type, row.meaning, nil, base.DEC)
end

-- The rows of a layout with a field of its own for every place where it can stand.
local function nodes_of(layout, path)
    local nodes = {layout = layout}
    for _, row in ipairs(layout) do
        local name = path .. "." .. row.name
        local node = {row = row, field = field_of(row, name)}
        if row.record then
            node.nodes = nodes_of(row.record, name)
        end
        if row.cases then
            node.cases = {}
            for code, inner in pairs(row.cases) do
                local inner_name = path .. "." .. inner.name
                node.cases[code] = {
                    field = field(inner_name, inner.label, ftypes.NONE, row.meaning),
                    nodes = nodes_of(inner, inner_name),
                }
            end
        end
        nodes[#nodes + 1] = node
    end
    return nodes
end

-- What stands in every message alike.
local PARTS = {
    list = field("list", "List", ftypes.NONE, "numbers, one behind the other"),
    cut = field("cut", "Cut off", ftypes.BYTES, "what is there of an address"),
    rest = field("rest", "Rest", ftypes.BYTES, "what no field describes"),
}

-- ---- Bytes of a record, of which there may be fewer than it should have ----

local function view_of(tvb, from, length)
    return {tvb = tvb, from = from, length = length}
end

-- The bytes from a place on, at most so many.
local function part_of(view, at, most)
    local left = math.max(0, view.length - at)
    return view_of(view.tvb, view.from + math.min(at, view.length), math.min(left, most or left))
end

local function range_of(view)
    return view.tvb:range(view.from, view.length)
end

-- A little-endian number; bytes that are not there are zero.
local function number_at(view, place)
    local kind = KINDS[place.kind]
    local there = part_of(view, place.at, kind.width)
    local number = there.length > 0 and range_of(there):le_uint() or 0
    if kind.signed and number >= 2 ^ (8 * kind.width - 1) then
        return number - 2 ^ (8 * kind.width)
    end
    return number
end

-- ---- Sizes and counts ----

local size_of

local function is_run(row)
    return not KINDS[row.kind] and row.kind ~= "record"
end

local function element_size(row)
    if row.record then
        return row.record.size
    end
    return is_run(row) and 1 or KINDS[row.kind].width
end

-- The elements that there should be, as the counter says or the room.
local function announced_of(row, view)
    if row.counter then
        local count = math.max(0, number_at(view, row.counter))
        return row.counts_bytes and math.floor(count / element_size(row)) or count
    end
    local room = row.count or 1
    if room ~= 0 then
        return room
    end
    return math.ceil(part_of(view, row.at).length / element_size(row))
end

-- The elements to look for: never more than there is room for.
local function to_visit(row, view)
    local announced = announced_of(row, view)
    local room = row.count or 1
    return room == 0 and announced or math.min(announced, room)
end

-- How many bytes a record takes, as its own counts say.
function size_of(layout, view)
    local last = layout[#layout]
    if not last or last.count ~= 0 then
        return layout.size
    end
    local size = last.at
    local left = announced_of(last, view)
    while last.record and left > 0 and size < view.length do
        size = size + size_of(last.record, part_of(view, size))
        left = left - 1
    end
    return math.max(layout.size, size + left * element_size(last))
end

local function has_right_size(message, view)
    return view.length >= message.least and view.length <= message.most and
               (not message.as_counted or view.length == size_of(message.layout, view))
end

-- ---- Expert notes ----

local function expert_note(name, text, group, severity)
    return ProtoExpert.new("qor020." .. name, text, expert.group[group], expert.severity[severity])
end

local NOTES = {
    failed = expert_note("failed", "The call failed", "RESPONSE_CODE", "WARN"),
    length = expert_note("wrong_length", "Not the size of this message", "PROTOCOL", "WARN"),
    unknown = expert_note("unknown_message", "No such message", "UNDECODED", "NOTE"),
    behind = expert_note("behind", "More than its layout says", "PROTOCOL", "WARN"),
    missing = expert_note("missing", "Less than was announced", "PROTOCOL", "WARN"),
    damaged = expert_note("damaged", "No event of a recording", "PROTOCOL", "WARN"),
}

-- ---- Going through what a message holds ----

local show_nodes

local function note_missing(item, present, announced)
    if present < announced then
        item:append_text(" (of " .. decimal(announced) .. ")")
        item:add_proto_expert_info(NOTES.missing)
    end
end

local function show_number(tree, node, view)
    local row = node.row
    local number = number_at(view, {at = 0, kind = row.kind})
    if row.divisor then
        local item = tree:add(node.field, range_of(view), number / row.divisor)
        if row.unit then
            item:append_text(" " .. row.unit)
        end
        return item
    end
    return tree:add(node.field, range_of(view), number)
end

-- Numbers are shown beside short values.
local VALUE_KINDS = {[1] = "U8", [2] = "U16", [4] = "U32"}

local function show_run(tree, node, record)
    local row = node.row
    local announced = announced_of(row, record)
    local view = part_of(record, row.at, to_visit(row, record))
    if view.length == 0 then
        return
    end
    local case = node.cases and node.cases[number_at(record, row.selector)]
    local item
    if case then
        item = tree:add(case.field, range_of(view))
        show_nodes(item, case.nodes, view)
    elseif row.kind == "text" then
        item = tree:add(node.field, range_of(view), range_of(view):string(ENC_UTF_8))
    elseif row.kind == "address" and row.count == ADDRESS_SIZE and view.length < ADDRESS_SIZE then
        item = tree:add(PARTS.cut, range_of(view))
        item:prepend_text(row.label .. ", ")
    else
        item = tree:add(node.field, range_of(view))
        local kind = row.kind == "value" and VALUE_KINDS[view.length]
        if kind then
            item:append_text(" (" .. decimal(number_at(view, {at = 0, kind = kind})) .. ")")
        end
    end
    note_missing(item, view.length, announced)
end

local function show_element(tree, node, view)
    if node.nodes then
        local item = tree:add(node.field, range_of(view))
        show_nodes(item, node.nodes, view)
        return item
    end
    return show_number(tree, node, view)
end

-- Element by element; answers how many there are.
local function show_elements(tree, node, room, most, numbered)
    local count = 0
    while count < most and room.length > 0 do
        local size = node.nodes and size_of(node.row.record, room) or element_size(node.row)
        local view = part_of(room, 0, size)
        local item = show_element(tree, node, view)
        if numbered then
            item:append_text(" [" .. decimal(count) .. "]")
        end
        if not node.nodes and view.length < size then
            item:append_text(" (cut off)")
        end
        room = part_of(room, size)
        count = count + 1
    end
    return count
end

-- Numbers of a list stand in a line of their own, records do not.
local function show_list(tree, node, record)
    local row = node.row
    local room = part_of(record, row.at)
    local most = to_visit(row, record)
    if most == 0 then
        return
    end
    local list = tree
    if not node.nodes or room.length == 0 then
        local width = node.nodes and 0 or most * element_size(row)
        list = tree:add(PARTS.list, range_of(part_of(room, 0, width)))
        list:set_text(row.label)
    end
    local count = show_elements(list, node, room, most, true)
    if list ~= tree then
        list:append_text(": " .. decimal(count))
    end
    note_missing(list, count, announced_of(row, record))
end

function show_nodes(tree, nodes, view)
    for _, node in ipairs(nodes) do
        if is_run(node.row) then
            show_run(tree, node, view)
        elseif node.row.list then
            show_list(tree, node, view)
        else
            show_elements(tree, node, part_of(view, node.row.at), 1, false)
        end
    end
end

-- ---- Messages by what identifies them ----

-- Memory comes in pieces: the bytes that an event has are all that it should have.
for _, row in ipairs(LAYOUTS.RegisterCall) do
    row.counter = nil
end

local messages = {}

local function key_of(way, type, subtype)
    return way .. " " .. decimal(type) .. " " .. (subtype and decimal(subtype) or "any")
end

for _, message in ipairs(MESSAGES) do
    message.field = field(message.name, message.label, ftypes.NONE, message.meaning)
    message.nodes = nodes_of(message.layout, message.name)
    messages[key_of(message.way, message.type, message.subtype)] = message
end

local function find_message(way, type, subtype)
    return messages[key_of(way, type, subtype)] or messages[key_of(way, type)]
end

-- ---- Events ----

local EVENTS = {
    [1] = "session",
    [2] = "open",
    [3] = "open_result",
    [4] = "register",
    [5] = "register_result",
    [6] = "send",
    [7] = "send_result",
    [8] = "message",
    [9] = "message_done",
    [10] = "read_memory",
    [11] = "read_memory_result",
    [12] = "write_memory",
    [13] = "write_memory_result",
    [14] = "close",
    [15] = "close_result",
}
-- By the name of an event, what its bytes are.
local WAYS = {send = "sent", send_result = "written_back", message = "received"}
local MEMORY = {
    read_memory = "read",
    read_memory_result = "read",
    write_memory = "write",
}

local HEAD_SIZE = 36
local HEADER_SIZE = 4
local NO_DEVICE = -1

-- What stands in front of the bytes of every event, as the rows of a layout.
local HEAD = {
    {at = 0, kind = "U8", name = "version", label = "Version", meaning = "of the recording"},
    {at = 1, kind = "U8", name = "kind", label = "Kind", meaning = "what happened", codes = EVENTS},
    {at = 4, kind = "U32", name = "number", label = "Number", meaning = "of this event"},
    {at = 8, kind = "U32", name = "belongs_to", label = "Belongs to", of_ends = true,
     meaning = "number of the call or message that this ends"},
    {at = 12, kind = "I32", name = "result", label = "Result", of_ends = true,
     meaning = "of the call or the callback; of an open, the handle"},
    {at = 24, kind = "U32", name = "handle", label = "Handle", meaning = "of the device"},
    {at = 28, kind = "U32", name = "word", label = "Word", hexadecimal = true,
     meaning = "the address of memory, the context word of a callback"},
    {at = 32, kind = "U32", name = "length", label = "Length",
     meaning = "of the message, or how much memory"},
}
-- Of events that end a call or a message, and of all others.
local head_nodes = {[true] = {}, [false] = {}}
local head_places = {}
for _, row in ipairs(HEAD) do
    local node = {row = row, field = field_of(row, row.name)}
    table.insert(head_nodes[true], node)
    if not row.of_ends then
        table.insert(head_nodes[false], node)
    end
    head_places[row.name] = row
end
local DURATION_LOW = {at = 16, kind = "U32"}
local DURATION_HIGH = {at = 20, kind = "U32"}

local FLAGS = {
    {bit = 0, name = "null", label = "Null pointer", meaning = "a null pointer was handed over"},
    {bit = 1, name = "more", label = "More", meaning = "the bytes go on in the next event"},
    {bit = 2, name = "in_callback", label = "In a callback", meaning = "called inside a callback"},
}
local FLAGS_PLACE = {at = 2, kind = "U16"}
for _, flag in ipairs(FLAGS) do
    flag.field = ProtoField.bool("qor020.flags." .. flag.name, flag.label, 16, nil, 2 ^ flag.bit,
                                 flag.meaning)
    registered[#registered + 1] = flag.field
end

local OWN = {
    flags = field("flags", "Flags", ftypes.UINT16, "what holds of the call", nil, base.HEX),
    duration = field("duration", "Duration", ftypes.RELATIVE_TIME, "of the call or the callback"),
    line = field("origin", "Origin", ftypes.STRING, "where the recording comes from"),
    type = field("type", "Type", ftypes.UINT16, "of the message", nil, base.DEC),
    subtype = field("subtype", "Subtype", ftypes.UINT16, "of the message", nil, base.DEC),
    payload = field("payload", "Payload", ftypes.BYTES, "of a message that is not known"),
    time = field("time", "Time since the request", ftypes.RELATIVE_TIME,
                 "from the request to this answer"),
}

local function frame_field(name, label, meaning, kind)
    local made = ProtoField.framenum("qor020." .. name, label, base.NONE, kind, nil, meaning)
    registered[#registered + 1] = made
    return made
end

-- Links between frames, by their name in what is kept of a frame.
local LINKS = {
    {"call_in", frame_field("call_in", "Call in", "the call or message that this ends", frametype.REQUEST)},
    {"result_in", frame_field("result_in", "Result in", "where this ends", frametype.RESPONSE)},
    {"request_in", frame_field("request_in", "Request in", "the request that this answers",
                               frametype.REQUEST)},
    {"answer_in", frame_field("answer_in", "Answer in", "the answer to this", frametype.RESPONSE)},
}

-- ---- What frames have to do with each other ----

local MOST_WAITING = 16
local LONGEST_WAIT = 600 -- seconds

local links -- by frame
local calls -- by number of the event
local waiting -- requests without an answer, by that answer

function qor020.init()
    links, calls, waiting = {}, {}, {}
end

local function links_of(frame)
    links[frame] = links[frame] or {}
    return links[frame]
end

local function waiting_for(message)
    local key = message and message.answer and key_of("received", message.type, message.answer)
    if key then
        waiting[key] = waiting[key] or {}
    end
    return waiting[key]
end

local function follow_request(event)
    local requests = waiting_for(event.message)
    if requests then
        if #requests == MOST_WAITING then
            table.remove(requests, 1)
        end
        requests[#requests + 1] = {frame = event.frame, time = event.time}
    end
end

-- A person who asks again has given up the question before: the last one is answered first.
local function follow_answer(event)
    local key = event.type and key_of("received", event.type, event.subtype)
    local requests = waiting[key]
    if not requests or #requests == 0 then
        return
    end
    local request = table.remove(requests)
    local waited = event.time - request.time
    if waited < 0 or waited > LONGEST_WAIT then
        waiting[key] = {}
        return
    end
    local own = links_of(event.frame)
    own.request_in, own.waited = request.frame, waited
    links_of(request.frame).answer_in = event.frame
end

-- What was not accepted will not be answered.
local function follow_failure(call)
    local requests = waiting_for(call.message)
    if requests and #requests > 0 and requests[#requests].frame == call.frame then
        table.remove(requests)
    end
end

local function follow(event)
    if event.belongs_to == 0 then
        -- Of a long session, no more than others ask for.
        calls[event.number] = {
            frame = event.frame,
            message = event.message,
            type = event.type,
            subtype = event.subtype,
        }
    else
        local call = calls[event.belongs_to]
        if call then
            local own = links_of(event.frame)
            own.call_in = call.frame
            own.of = call
            links_of(call.frame).result_in = event.frame
            if event.name == "send_result" and event.result ~= 0 then
                follow_failure(call)
            end
        end
    end
    if event.name == "send" then
        follow_request(event)
    elseif event.name == "message" then
        follow_answer(event)
    end
end

local function show_links(tree, event)
    local own = links[event.frame] or {}
    for _, link in ipairs(LINKS) do
        if own[link[1]] then
            tree:add(link[2], own[link[1]]):set_generated()
        end
    end
    if own.waited then
        local seconds = math.floor(own.waited)
        local part = math.floor((own.waited - seconds) * 1e9 + 0.5)
        tree:add(OWN.time, time_of(seconds, part)):set_generated()
    end
end

-- ---- An event ----

-- Hands the management message in a traced message to its own dissector.
local management = Dissector.get("wmx_mac_mgmt_msg_decoder")
local burst = Dissector.get("wimax_pdu_burst_handler")
local TRACE
do
    local trace = LAYOUTS.TraceRecord
    TRACE = {layout = trace}
    for _, row in ipairs(trace) do
        TRACE[row.name] = row
    end
end

local function show_management(event, pinfo, root)
    local payload = event.payload
    local code = number_at(payload, TRACE.code)
    local length = number_at(payload, TRACE.body_length)
    if payload.length < TRACE.body.at or code > 255 or length < 0 then
        return
    end
    local body = part_of(payload, TRACE.body.at, length)
    -- Compressed maps are traced as a DL-MAP and have no type.
    local first = body.length > 0 and range_of(part_of(body, 0, 1)):uint() or 0
    if code == 2 and number_at(payload, TRACE.direction) == 0 and first >= 0xC0 and first < 0xE0 then
        call(burst, range_of(body):bytes():tvb("Compressed maps"), pinfo, root)
        return
    end
    local message = ByteArray.new(string.format("%02x", code))
    if body.length > 0 then
        message:append(range_of(body):bytes())
    end
    call(management, message:tvb("Management message"), pinfo, root)
end

local function show_payload(tree, event)
    local message, payload = event.message, event.payload
    if not message then
        if payload.length > 0 then
            tree:add(OWN.payload, range_of(payload))
        end
        tree:add_proto_expert_info(NOTES.unknown)
        return
    end
    local item = tree:add(message.field, range_of(payload))
    show_nodes(item, message.nodes, payload)
    local behind = part_of(payload, size_of(message.layout, payload))
    if behind.length > 0 and #message.layout > 0 then
        item:add(PARTS.rest, range_of(behind))
    end
    if event.name ~= "send_result" and not has_right_size(message, payload) then
        item:add_proto_expert_info(NOTES.length, "Not the size of this message: " ..
                                       decimal(payload.length) .. " bytes")
    end
end

local function show_session(tree, view)
    if view.length > 0 then
        for line in range_of(view):string(ENC_UTF_8):gmatch("[^\n]+") do
            tree:add(OWN.line, range_of(view), line)
        end
    end
end

local function has_failed(event)
    if event.name == "open_result" then
        return event.result == NO_DEVICE
    end
    return event.name:find("_result", 1, true) and event.result ~= 0
end

-- Takes the event apart as far as other events need it.
local function read_event(tvb, pinfo)
    local view = view_of(tvb, 0, tvb:len())
    local event = {
        view = view,
        frame = pinfo.number,
        time = pinfo.rel_ts,
        name = EVENTS[number_at(view, head_places.kind)],
        number = number_at(view, head_places.number),
        belongs_to = number_at(view, head_places.belongs_to),
        result = number_at(view, head_places.result),
        length = number_at(view, head_places.length),
        bytes = part_of(view, HEAD_SIZE),
    }
    local way = WAYS[event.name]
    if way then
        local record = event.bytes
        if way ~= "written_back" then
            record = part_of(record, 0, event.length)
        end
        event.payload = record
        if record.length >= HEADER_SIZE then
            event.payload = part_of(record, HEADER_SIZE)
            event.type = number_at(record, {at = 0, kind = "U16"})
            event.subtype = number_at(record, {at = 2, kind = "U16"})
            event.message = find_message(way, event.type, event.subtype)
        end
    elseif MEMORY[event.name] then
        -- Address and count stand in front of the bytes, as in the description of a call.
        event.payload = part_of(view, head_places.word.at)
        event.message = find_message(MEMORY[event.name], 0, 0)
    end
    return event
end

local function info_of(event)
    local call = links[event.frame] and links[event.frame].of
    local of = event.type and event or call or event
    local info = "#" .. decimal(event.number) .. " " .. event.name
    if of.type then
        info = info .. " " .. (of.message and of.message.name or "unknown_message") .. " " ..
                   decimal(of.type) .. "/" .. decimal(of.subtype)
    end
    if event.name == "send" or event.name == "message" then
        info = info .. ", " .. decimal(event.length) .. " bytes"
    elseif event.name:find("_result", 1, true) then
        info = info .. ", " .. (event.name == "open_result" and "handle " or "result ") ..
                   decimal(event.result)
    end
    return info
end

local CLIENT, MODEM = "client", "modem"

local function show_columns(event, pinfo)
    local received = event.name == "message" or event.name:find("_result", 1, true)
    pinfo.cols.protocol = "QOR020"
    pinfo.cols.src = received and MODEM or CLIENT
    pinfo.cols.dst = received and CLIENT or MODEM
    pinfo.cols.info = info_of(event)
end

local function show_head(tree, event)
    local tvb = event.view.tvb
    local ends = event.belongs_to ~= 0
    show_nodes(tree, head_nodes[ends], part_of(event.view, 0, HEAD_SIZE))
    local flags_range = tvb:range(FLAGS_PLACE.at, 2)
    local flags = tree:add_le(OWN.flags, flags_range)
    for _, flag in ipairs(FLAGS) do
        flags:add_le(flag.field, flags_range)
    end
    if ends then
        local duration = number_at(event.view, DURATION_LOW) +
                             number_at(event.view, DURATION_HIGH) * 2 ^ 32
        local seconds = math.floor(duration / 1e9)
        tree:add(OWN.duration, tvb:range(DURATION_LOW.at, 8),
                 time_of(seconds, duration - seconds * 1e9))
    end
end

function qor020.dissector(tvb, pinfo, root)
    local tree = root:add(qor020, tvb())
    local version = tvb:len() > 0 and tvb:range(0, 1):uint()
    if tvb:len() < HEAD_SIZE or version ~= 1 or not EVENTS[tvb:range(1, 1):uint()] then
        tree:add_proto_expert_info(NOTES.damaged)
        pinfo.cols.protocol = "QOR020"
        pinfo.cols.info = "no event of a recording, or of a newer one"
        return tvb:len()
    end
    local event = read_event(tvb, pinfo)
    if not pinfo.visited then
        follow(event)
    end
    tree:append_text(", " .. event.name)
    show_head(tree, event)
    show_links(tree, event)
    if has_failed(event) then
        tree:add_proto_expert_info(NOTES.failed, "The call failed: " .. decimal(event.result))
    end
    if event.type then
        tree:add(OWN.type, event.bytes.tvb:range(HEAD_SIZE, 2), event.type)
        tree:add(OWN.subtype, event.bytes.tvb:range(HEAD_SIZE + 2, 2), event.subtype)
    end
    if event.name == "session" then
        show_session(tree, event.bytes)
    elseif event.payload and (event.type or event.payload.length > 0) then
        show_payload(tree, event)
    end
    if event.message and event.message.layout == TRACE.layout then
        show_management(event, pinfo, root)
    end
    show_columns(event, pinfo)
    return tvb:len()
end

qor020.fields = registered
for _, note in pairs(NOTES) do
    qor020.experts[#qor020.experts + 1] = note
end

-- ---- Management messages that have no decoder yet ----

-- A message is a list of items, as it goes over the air: most significant bit first, and no byte
-- begins where an item happens to begin. What is read from them is kept by name, for the items that
-- depend on it.
do
    -- ---- Items ----

    -- A number. Options: codes, hexadecimal, signed, unit, and step and base of a scale.
    local function number(width, name, label, options)
        return {kind = "number", width = width, name = name, label = label, options = options or {}}
    end
    local function flag(name, label)
        return number(1, name, label)
    end
    local function reserved(width)
        return {kind = "reserved", width = width}
    end
    -- Six bytes, wherever they begin.
    local function address(name, label)
        return {kind = "address", width = 48, name = name, label = label}
    end
    -- All bytes that are left.
    local function rest(name, label)
        return {kind = "rest", name = name, label = label}
    end
    -- Items below a line of their own, as often as count says: a name or a function.
    local function each(count, name, label, items)
        return {kind = "each", count = count, name = name, label = label, items = items}
    end
    local function group(name, label, items)
        return {kind = "group", name = name, label = label, items = items}
    end
    -- Items in the next bytes, as many as an item before says.
    local function within(length, items)
        return {kind = "within", length = length, items = items}
    end
    local function when(condition, items)
        return {kind = "when", condition = condition, items = items}
    end
    -- What is left from the next byte on: values with tag and length. A row is the item for a
    -- value's bytes; of the tags that have none nothing is shown when others know them.
    local function tagged(rows, known_to_others)
        return {kind = "tagged", rows = rows, name = "other_tag", label = "Value of another tag",
                known_to_others = known_to_others}
    end

    -- Conditions, on what was read.
    local function always()
        return true
    end
    local function is_set(name)
        return function(values)
            return values[name] ~= 0
        end
    end
    local function is(name, wanted)
        return function(values)
            return values[name] == wanted
        end
    end
    local function has_bit(name, bit)
        return function(values)
            return bits_of(values[name], bit, 1) == 1
        end
    end
    local function both(first, second)
        return function(values)
            return first(values) and second(values)
        end
    end

    -- ---- What many messages have ----

    local CINR = {signed = true, step = 0.5, base = 0, unit = "dB"}
    local RSSI = {step = 0.25, base = -103.75, unit = "dBm"}
    local SAMPLES = {signed = true, unit = "samples"}
    local RTD = {unit = "samples"}
    local FRAMES = {unit = "frames"}
    local HEXADECIMAL = {hexadecimal = true}

    local CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT = 0, 1, 2, 3

    -- What was measured of a station, as the report metric says.
    local function measured(...)
        local items = {
            [CINR_BIT] = number(8, "cinr", "CINR", CINR),
            [RSSI_BIT] = number(8, "rssi", "RSSI", RSSI),
            [DELAY_BIT] = number(8, "delay", "Relative delay", SAMPLES),
            [RTD_BIT] = number(8, "rtd", "Round trip delay", RTD),
        }
        local chosen = {}
        for _, bit in ipairs({...}) do
            chosen[#chosen + 1] = when(has_bit("metric", bit), {items[bit]})
        end
        return when(always, chosen)
    end

    local metric = number(8, "metric", "Report metric", HEXADECIMAL)
    local n_index = number(8, "n_index", "Stations by index")
    local change_count = when(is_set("n_index"), {number(8, "change_count", "Change count of NBR-ADV")})
    local index = number(8, "index", "Index in NBR-ADV")
    local n_full = number(8, "n_full", "Stations by BS ID")
    local bsid = address("bsid", "BS ID")
    local preamble = number(8, "preamble", "Preamble index")

    local CMAC = group("cmac_tuple", "CMAC tuple", {
        reserved(4),
        number(4, "key_sequence", "AK sequence number"),
        number(32, "packet_number", "Packet number"),
        rest("value", "Value"),
    })
    local HMAC = group("hmac_tuple", "HMAC tuple", {
        reserved(4),
        number(4, "key_sequence", "AK sequence number"),
        rest("digest", "Digest"),
    })
    -- At the end of most messages.
    local function signed(rows)
        rows[141], rows[149] = CMAC, HMAC
        return tagged(rows)
    end

    local PAGING = group("paging", "Paging information", {
        number(16, "cycle", "Paging cycle", FRAMES),
        number(8, "offset", "Paging offset", FRAMES),
        number(16, "group", "Paging group"),
    })
    local CONTROLLER = address("paging_controller", "Paging controller")
    local HASH_THRESHOLD = number(16, "mac_hash_skip_threshold", "MAC hash skip threshold")

    local CLASS_TYPES = {[0] = "type I", [1] = "type II", [2] = "type III"}
    local CLASS_DIRECTIONS = {
        [0] = "unspecified", [1] = "downlink", [2] = "uplink", [3] = "management",
    }
    local class_type = number(2, "type", "Class type", {codes = CLASS_TYPES})
    local class_direction = number(2, "direction", "Direction", {codes = CLASS_DIRECTIONS})
    local initial_window = number(8, "initial_window", "Initial sleep window", FRAMES)
    local listening_window = number(8, "listening_window", "Listening window", FRAMES)
    local window_base = number(10, "window_base", "Final sleep window base", FRAMES)
    local window_exponent = number(3, "window_exponent", "Final sleep window exponent")
    local start_frame = number(6, "start_frame", "Start frame (low bits)")
    local cids = each("n_cids", "connection", "Connection", {number(16, "cid", "CID", HEXADECIMAL)})

    local SCAN_TYPES = {
        [0] = "without association", [1] = "association level 0", [2] = "association level 1",
        [3] = "association level 2",
    }
    local scan_type = number(3, "type", "Scanning type", {codes = SCAN_TYPES})
    -- Of an association with coordination.
    local function is_coordinated(values)
        return values.type >= 2 and values.type <= 3
    end
    local rendezvous = when(is_coordinated, {
        number(8, "rendezvous_time", "Rendezvous time", FRAMES),
        number(8, "cdma_code", "CDMA code"),
        number(8, "opportunity", "Transmission opportunity offset"),
    })

    local SERVICE_LEVELS = {[0] = "none", [1] = "some", [2] = "all", [3] = "unknown"}

    local TRIGGER = group("trigger", "Trigger", {
        tagged({
            [1] = group("kind", "Kind", {
                number(2, "metric_kind", "Metric",
                       {codes = {[0] = "CINR", [1] = "RSSI", [2] = "round trip delay"}}),
                number(3, "function", "Function"),
                number(3, "action", "Action",
                       {codes = {[1] = "MOB_SCN-REP", [2] = "MOB_MSHO-REQ", [3] = "MOB_SCN-REQ"}}),
            }),
            [2] = number(8, "value", "Value"),
            [3] = number(8, "averaging", "Averaging", FRAMES),
        }),
    })

    -- ---- The messages ----

    local SLP_REQ = {
        number(8, "n_classes", "Number of classes"),
        each("n_classes", "class", "Power saving class", {
            flag("definition", "Definition"),
            number(1, "operation", "Operation", {codes = {[0] = "deactivate", [1] = "activate"}}),
            number(6, "id", "Class ID"),
            when(is_set("operation"), {start_frame, reserved(2)}),
            when(is_set("definition"), {
                class_type,
                class_direction,
                flag("wakening", "Traffic triggered wakening"),
                reserved(3),
                initial_window,
                listening_window,
                window_base,
                window_exponent,
                number(3, "n_cids", "Number of CIDs"),
                cids,
            }),
        }),
        signed({}),
    }

    local SLP_RSP = {
        number(8, "n_classes", "Number of classes"),
        each("n_classes", "class", "Power saving class", {
            number(7, "length", "Length of data"),
            flag("approved", "Sleep approved"),
            flag("definition", "Definition"),
            number(1, "operation", "Operation", {codes = {[0] = "deactivate", [1] = "activate"}}),
            number(6, "id", "Class ID"),
            when(both(is_set("approved"), is_set("operation")), {
                start_frame,
                flag("stop_cqi", "Stop CQI"),
                reserved(1),
            }),
            when(both(is_set("approved"), is_set("definition")), {
                class_type,
                class_direction,
                initial_window,
                listening_window,
                window_base,
                window_exponent,
                flag("trf_ind_required", "TRF-IND required"),
                flag("wakening", "Traffic triggered wakening"),
                reserved(1),
                when(is_set("trf_ind_required"), {number(10, "slpid", "SLPID"), reserved(2)}),
                number(4, "n_cids", "Number of CIDs"),
                cids,
            }),
            when(is("approved", 0), {number(8, "req_duration", "REQ duration", FRAMES)}),
        }),
        signed({}),
    }

    local function set_groups(values)
        local count = 0
        for bit = 0, 31 do
            count = count + bits_of(values.group_map, bit, 1)
        end
        return count
    end

    local TRF_IND = {
        number(1, "format", "Format", {codes = {[0] = "bit maps", [1] = "list"}}),
        when(is("format", 0), {
            reserved(7),
            number(32, "group_map", "SLPID group map", HEXADECIMAL),
            each(set_groups, "group", "Group", {
                number(32, "traffic_map", "Traffic map", HEXADECIMAL),
            }),
        }),
        when(is("format", 1), {
            number(7, "n_slpids", "Number of SLPIDs"),
            each("n_slpids", "station", "Station", {number(10, "slpid", "SLPID")}),
        }),
        tagged({[1] = rest("slpid_update", "SLPID update")}),
    }

    local SKIP_OPERATOR, SKIP_BSID, SKIP_OPTIMISATION, SKIP_QOS = 0, 1, 2, 3
    local function not_skipped(bit)
        return function(values)
            return bits_of(values.skip_map, bit, 1) == 0
        end
    end

    local NBR_ADV = {
        number(8, "skip_map", "Skip map", HEXADECIMAL),
        when(not_skipped(SKIP_OPERATOR), {number(24, "operator", "Operator ID", HEXADECIMAL)}),
        number(8, "change_count", "Change count"),
        number(4, "fragment", "Fragment index"),
        number(4, "fragments", "Total fragments"),
        number(8, "n_neighbours", "Number of neighbours"),
        each("n_neighbours", "neighbour", "Neighbour", {
            number(8, "length", "Length"),
            within("length", {
                group("phy_profile", "PHY profile", {
                    flag("co_located", "Co-located FA"),
                    flag("fa_configuration", "FA configuration"),
                    number(2, "synchronised", "Time and frequency synchronisation"),
                    flag("eirp_present", "EIRP present"),
                    flag("reference", "DCD and UCD reference"),
                    flag("fa_index_present", "FA index present"),
                    flag("trigger_reference", "Trigger reference"),
                }),
                when(is_set("fa_index_present"), {number(8, "fa_index", "FA index")}),
                when(is_set("eirp_present"), {
                    number(8, "eirp", "EIRP", {signed = true, unit = "dBm"}),
                }),
                when(not_skipped(SKIP_BSID), {
                    number(24, "bsid", "BS ID (low half)", HEXADECIMAL),
                }),
                preamble,
                when(not_skipped(SKIP_OPTIMISATION), {
                    number(8, "ho_optimisation", "HO process optimisation", HEXADECIMAL),
                }),
                when(not_skipped(SKIP_QOS), {
                    number(8, "services", "Scheduling services", HEXADECIMAL),
                }),
                number(4, "dcd_count", "DCD change count (low bits)"),
                number(4, "ucd_count", "UCD change count (low bits)"),
                tagged({
                    [1] = group("dcd", "DCD settings", {
                        tagged({
                            [2] = number(16, "bs_eirp", "BS EIRP", {signed = true, unit = "dBm"}),
                            [9] = number(16, "eirxp", "EIRxP", {signed = true, unit = "dBm"}),
                            [12] = number(32, "frequency", "Centre frequency", {unit = "kHz"}),
                            [13] = address("full_bsid", "BS ID"),
                            [54] = TRIGGER,
                            [148] = number(8, "mac_version", "MAC version"),
                        }),
                    }),
                    [2] = group("ucd", "UCD settings", {
                        tagged({[5] = number(32, "frequency", "Frequency", {unit = "kHz"})}),
                    }),
                    [3] = number(16, "phy_mode", "PHY mode ID", HEXADECIMAL),
                    [4] = TRIGGER,
                }),
            }),
        }),
        tagged({}),
    }

    local SCN_REQ = {
        number(8, "duration", "Scan duration", FRAMES),
        number(8, "interleaving", "Interleaving interval", FRAMES),
        number(8, "iterations", "Iterations"),
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {index, scan_type}),
        n_full,
        each("n_full", "full", "Station", {bsid, scan_type}),
        signed({}),
    }

    local SCN_RSP = {
        number(8, "duration", "Scan duration", FRAMES),
        number(2, "report_mode", "Report mode", {
            codes = {[0] = "none", [1] = "periodic", [2] = "event", [3] = "one time"},
        }),
        reserved(6),
        number(8, "report_period", "Report period", FRAMES),
        metric,
        when(is_set("duration"), {
            number(4, "start", "Start", FRAMES),
            reserved(1),
            number(8, "interleaving", "Interleaving interval", FRAMES),
            number(8, "iterations", "Iterations"),
            reserved(3),
            n_index,
            change_count,
            each("n_index", "indexed", "Station", {index, scan_type, rendezvous}),
            n_full,
            each("n_full", "full", "Station", {bsid, scan_type, rendezvous}),
        }),
        signed({}),
    }

    local SCN_REP = {
        number(1, "mode", "Report mode", {codes = {[0] = "event", [1] = "periodic"}}),
        flag("short_bsids", "Short BS IDs"),
        number(3, "n_current", "Serving stations"),
        reserved(3),
        metric,
        each("n_current", "current", "Serving station", {
            number(4, "temporary_id", "Temporary ID"),
            reserved(4),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT),
        }),
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {index, measured(CINR_BIT, RSSI_BIT, DELAY_BIT)}),
        n_full,
        each("n_full", "full", "Station", {
            when(is_set("short_bsids"), {
                number(24, "short_bsid", "BS ID (low half)", HEXADECIMAL),
            }),
            when(is("short_bsids", 0), {bsid}),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
        }),
        signed({}),
    }

    local arrival = when(always, {
        flag("arrival_indicator", "Arrival difference indicator"),
        when(is_set("arrival_indicator"), {number(4, "arrival", "Arrival difference")}),
    })
    local MSHO_REQ = {
        metric,
        n_index,
        change_count,
        each("n_index", "indexed", "Station", {
            index, preamble, measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
            arrival,
        }),
        n_full,
        each("n_full", "full", "Station", {
            bsid, preamble, measured(CINR_BIT, RSSI_BIT, DELAY_BIT),
            arrival,
        }),
        number(4, "n_current", "Serving stations"),
        each("n_current", "current", "Serving station", {
            number(4, "temporary_id", "Temporary ID"),
            measured(CINR_BIT, RSSI_BIT, DELAY_BIT, RTD_BIT),
        }),
        signed({}),
    }

    local HO_MODES = {
        [0] = "handover", [1] = "MDHO or FBSS", [2] = "MDHO or FBSS", [3] = "MDHO or FBSS",
        [4] = "MDHO or FBSS", [5] = "MDHO or FBSS", [6] = "request rejected",
    }
    local ho_mode = number(3, "mode", "Mode", {codes = HO_MODES})
    local recommendation = when(is("mode", 0), {
        number(1, "operation", "Operation mode", {codes = {[0] = "recommended", [1] = "mandatory"}}),
        flag("resource_retain", "Resource retain"),
        reserved(6),
        number(8, "n_recommended", "Recommended stations"),
        each("n_recommended", "recommended", "Recommended station", {
            bsid,
            preamble,
            number(8, "service_level", "Service level prediction", {codes = SERVICE_LEVELS}),
            number(8, "ho_optimisation", "HO process optimisation", HEXADECIMAL),
            flag("network_assisted", "Network assisted"),
            flag("ho_id_included", "HO ID included"),
            flag("policy_included", "Authorisation policy included"),
            reserved(5),
            when(is_set("ho_id_included"), {number(8, "ho_id", "HO ID")}),
            when(is_set("policy_included"), {
                number(8, "policy", "Authorisation policy", HEXADECIMAL),
            }),
        }),
        number(8, "action_time", "Action time", FRAMES),
    })
    local BSHO_REQ = {
        flag("network_assisted", "Network assisted"), ho_mode, reserved(4), recommendation, signed({}),
    }
    local BSHO_RSP = {ho_mode, reserved(5), recommendation, signed({})}

    local HO_IND = {
        reserved(6),
        number(2, "mode", "Mode", {codes = {[0] = "handover"}}),
        number(2, "type", "Type", {
            codes = {[0] = "leave the serving BS", [1] = "cancel", [2] = "reject"},
        }),
        number(2, "ranging", "Ranging parameters", {
            codes = {[0] = "none", [1] = "invalid", [2] = "valid"},
        }),
        reserved(4),
        when(is("type", 0), {address("target_bsid", "Target BS ID")}),
        preamble,
        signed({}),
    }

    local PAG_ADV = {
        number(16, "n_groups", "Paging groups"),
        each("n_groups", "paging_group", "Paging group", {number(16, "group", "Group")}),
        number(8, "n_macs", "Stations"),
        each("n_macs", "station", "Station", {
            number(24, "mac_hash", "MAC hash", HEXADECIMAL),
            number(2, "action", "Action", {
                codes = {[0] = "none", [1] = "location update", [2] = "enter the network"},
            }),
            reserved(6),
        }),
        tagged({}),
    }

    local dereg_rows = {
        [1] = PAGING,
        [2] = number(8, "req_duration", "REQ duration", FRAMES),
        [3] = CONTROLLER,
        [4] = group("retain", "Idle mode retain information", {
            reserved(3),
            flag("full", "Full state"),
            flag("address", "Address"),
            flag("reg", "REG"),
            flag("pkm", "PKM"),
            flag("sbc", "SBC"),
        }),
        [5] = HASH_THRESHOLD,
        [52] = number(16, "cycle_request", "Paging cycle request", FRAMES),
    }
    local DREG_CMD = {
        number(8, "action", "Action", {codes = {
            [0] = "leave and try another BS",
            [1] = "listen only",
            [2] = "basic and primary connections only",
            [3] = "normal operation",
            [4] = "end normal operation",
            [5] = "start idle mode",
            [6] = "ask again after the REQ duration",
            [7] = "do not ask again",
        }}),
        signed(dereg_rows),
    }
    local DREG_REQ = {
        number(8, "action", "Action", {codes = {
            [0] = "leave BS and network",
            [1] = "start idle mode",
            [2] = "accept idle mode",
            [3] = "reject idle mode",
        }}),
        signed(dereg_rows),
    }

    -- Only what its own decoder shows in hexadecimal or without its sign.
    local RNG_RSP = {
        reserved(8),
        tagged({
            [1] = number(32, "timing", "Timing adjustment", SAMPLES),
            [2] = number(8, "power", "Power adjustment",
                         {signed = true, step = 0.25, base = 0, unit = "dB"}),
            [25] = CONTROLLER,
            [26] = number(16, "next_ranging", "Next periodic ranging (frame)"),
            [28] = HASH_THRESHOLD,
            [141] = CMAC,
        }, true),
    }

    local MANAGEMENT = {
        {code = 5, name = "rng_rsp", title = "RNG-RSP", items = RNG_RSP},
        {code = 29, name = "dreg_cmd", title = "DREG-CMD", items = DREG_CMD},
        {code = 49, name = "dreg_req", title = "DREG-REQ", items = DREG_REQ},
        {code = 50, name = "mob_slp_req", title = "MOB_SLP-REQ", items = SLP_REQ},
        {code = 51, name = "mob_slp_rsp", title = "MOB_SLP-RSP", items = SLP_RSP},
        {code = 52, name = "mob_trf_ind", title = "MOB_TRF-IND", items = TRF_IND},
        {code = 53, name = "mob_nbr_adv", title = "MOB_NBR-ADV", items = NBR_ADV},
        {code = 54, name = "mob_scn_req", title = "MOB_SCN-REQ", items = SCN_REQ},
        {code = 55, name = "mob_scn_rsp", title = "MOB_SCN-RSP", items = SCN_RSP},
        {code = 56, name = "mob_bsho_req", title = "MOB_BSHO-REQ", items = BSHO_REQ},
        {code = 57, name = "mob_msho_req", title = "MOB_MSHO-REQ", items = MSHO_REQ},
        {code = 58, name = "mob_bsho_rsp", title = "MOB_BSHO-RSP", items = BSHO_RSP},
        {code = 59, name = "mob_ho_ind", title = "MOB_HO-IND", items = HO_IND},
        {code = 60, name = "mob_scn_rep", title = "MOB_SCN-REP", items = SCN_REP},
        {code = 61, name = "mob_pag_adv", title = "MOB_PAG-ADV", items = PAG_ADV},
    }

    -- ---- Fields ----

    local UNSIGNED = {ftypes.UINT8, ftypes.UINT16, ftypes.UINT24, ftypes.UINT32}
    local SIGNED = {ftypes.INT8, ftypes.INT16, ftypes.INT24, ftypes.INT32}

    local function field_of_item(item, name)
        if item.kind ~= "number" then
            return ProtoField.new(item.label, name, item.kind == "address" and ftypes.ETHER or
                                      item.items and ftypes.NONE or ftypes.BYTES)
        end
        local options = item.options
        if options.step then
            return ProtoField.new(item.label, name, ftypes.DOUBLE)
        end
        local bytes = math.ceil(item.width / 8)
        return ProtoField.new(item.label, name, (options.signed and SIGNED or UNSIGNED)[bytes],
                              options.codes, options.hexadecimal and base.HEX or base.DEC)
    end

    -- The items with a field of their own for every place where they can stand; where the same name
    -- stands twice, one of them comes.
    local nodes_of_items

    local function node_of(item, path, fields)
        local node = {item = item}
        local inner = path
        if item.name then
            local name = path .. "." .. item.name
            inner = (item.kind == "group" or item.kind == "each") and name or path
            fields[name] = fields[name] or field_of_item(item, name)
            node.field = fields[name]
        end
        if item.items then
            node.nodes = nodes_of_items(item.items, inner, fields)
        end
        if item.rows then
            node.rows = {}
            for tag, row in pairs(item.rows) do
                node.rows[tag] = node_of(row, path, fields)
            end
        end
        return node
    end

    function nodes_of_items(items, path, fields)
        local nodes = {}
        for i, item in ipairs(items) do
            nodes[i] = node_of(item, path, fields)
        end
        return nodes
    end

    -- ---- Reading ----

    local CUT = {} -- raised where the bytes end too early

    local function take(cursor, width)
        local bit = cursor.bit
        if bit + width > cursor.last then
            error(CUT, 0)
        end
        cursor.bit = bit + width
        return bit
    end

    -- The bytes that hold these bits.
    local function range_around(cursor, bit, width)
        local first = math.floor(bit / 8)
        return cursor.tvb:range(first, math.ceil((bit + width) / 8) - first)
    end

    local function read_number(cursor, width)
        local bit = take(cursor, width)
        local range = range_around(cursor, bit, width)
        return range:bitfield(bit % 8, width), range
    end

    local function align(cursor)
        cursor.bit = math.min(cursor.last, math.ceil(cursor.bit / 8) * 8)
    end

    -- Calls read with as much as is there; a value that breaks off ends there and nowhere else.
    local function read_inside(cursor, tree, bits, read)
        local last = math.min(cursor.last, cursor.bit + bits)
        local inner = {tvb = cursor.tvb, bit = cursor.bit, last = last}
        local done, problem = pcall(read, inner)
        if not done and problem ~= CUT then
            error(problem, 0)
        end
        if not done or cursor.bit + bits > last then
            tree:add_proto_expert_info(NOTES.missing)
        elseif last - inner.bit >= 8 then
            tree:add_proto_expert_info(NOTES.behind)
        end
        cursor.bit = last
    end

    local read_nodes

    local READ = {}

    function READ.number(cursor, tree, node, values)
        local item, options = node.item, node.item.options
        local value, range = read_number(cursor, item.width)
        values[item.name] = value
        if options.signed and value >= 2 ^ (item.width - 1) then
            value = value - 2 ^ item.width
        end
        if options.step then
            value = options.base + options.step * value
        end
        local shown = tree:add(node.field, range, value)
        if options.unit then
            shown:append_text(" " .. options.unit)
        end
    end

    function READ.reserved(cursor, _, node)
        take(cursor, node.item.width)
    end

    function READ.address(cursor, tree, node)
        local bit = take(cursor, node.item.width)
        local range = range_around(cursor, bit, node.item.width)
        local bytes = {}
        for i = 0, 5 do
            bytes[i + 1] = string.format("%02x", range:bitfield(bit % 8 + 8 * i, 8))
        end
        tree:add(node.field, range, Address.ether(table.concat(bytes, ":")))
    end

    function READ.rest(cursor, tree, node)
        align(cursor)
        if cursor.bit < cursor.last then
            tree:add(node.field, range_around(cursor, cursor.bit, cursor.last - cursor.bit))
        end
        cursor.bit = cursor.last
    end

    function READ.group(cursor, tree, node, values)
        local bit = cursor.bit
        if bit >= cursor.last then
            error(CUT, 0)
        end
        local item = tree:add(node.field, range_around(cursor, bit, cursor.last - bit))
        read_nodes(cursor, item, node.nodes, values)
        item:set_len(range_around(cursor, bit, cursor.bit - bit):len())
    end

    function READ.each(cursor, tree, node, values)
        local count = node.item.count
        count = type(count) == "function" and count(values) or values[count]
        for _ = 1, count do
            READ.group(cursor, tree, node, setmetatable({}, {__index = values}))
        end
    end

    READ["when"] = function(cursor, tree, node, values)
        if node.item.condition(values) then
            read_nodes(cursor, tree, node.nodes, values)
        end
    end

    function READ.within(cursor, tree, node, values)
        read_inside(cursor, tree, 8 * values[node.item.length], function(inner)
            read_nodes(inner, tree, node.nodes, values)
        end)
    end

    local function read_length(cursor)
        local length = read_number(cursor, 8)
        if length < 0x80 then
            return length
        end
        local width = length - 0x80
        if width < 1 or width > 4 then
            error(CUT, 0)
        end
        return (read_number(cursor, 8 * width))
    end

    local function read_other_tag(inner, tree, node, tag)
        if node.item.known_to_others then
            inner.bit = inner.last
            return
        end
        if inner.bit < inner.last then
            local range = range_around(inner, inner.bit, inner.last - inner.bit)
            tree:add(node.field, range):append_text(" (tag " .. decimal(tag) .. ")")
        end
        inner.bit = inner.last
    end

    function READ.tagged(cursor, tree, node, values)
        align(cursor)
        while cursor.bit < cursor.last do
            local tag = read_number(cursor, 8)
            local row = node.rows[tag]
            read_inside(cursor, tree, 8 * read_length(cursor), function(inner)
                if row then
                    READ[row.item.kind](inner, tree, row, values)
                else
                    read_other_tag(inner, tree, node, tag)
                end
            end)
        end
    end

    function read_nodes(cursor, tree, nodes, values)
        for _, node in ipairs(nodes) do
            READ[node.item.kind](cursor, tree, node, values)
        end
    end

    -- ---- The dissectors ----

    local table_of_messages = DissectorTable.get("wmx.mgmtmsg")

    for _, message in ipairs(MANAGEMENT) do
        local proto = Proto("qor020." .. message.name, message.title)
        local fields = {}
        local nodes = nodes_of_items(message.items, "qor020." .. message.name, fields)
        for _, made in pairs(fields) do
            proto.fields[#proto.fields + 1] = made
        end
        local stock = table_of_messages:get_dissector(message.code)

        function proto.dissector(tvb, pinfo, root)
            local tree = root:add(proto, tvb())
            local cursor = {tvb = tvb, bit = 0, last = 8 * tvb:len()}
            read_inside(cursor, tree, cursor.last, function(inner)
                read_nodes(inner, tree, nodes, {})
            end)
            if stock then
                call(stock, tvb, pinfo, root)
            end
            return tvb:len()
        end

        table_of_messages:add(message.code, proto)
    end
end

/* The modem's device library: its functions, its one message record and the
 * codes of every message. A C program can include this header too. */
#ifndef WIMAX_DEVICE_H
#define WIMAX_DEVICE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Handle that stands for "no device". */
#define WIMAX_NO_DEVICE UINT32_C(0xFFFFFFFF)

/* Sizes in bytes: header (type and subtype), data area, whole record. */
#define WIMAX_HEADER_SIZE 4
#define WIMAX_DATA_SIZE 10240
#define WIMAX_MESSAGE_SIZE (WIMAX_HEADER_SIZE + WIMAX_DATA_SIZE)

/* One request, answer or indication. All numbers in it are little-endian on
 * every host, the two header fields included: read and write them with the
 * accessors of Wire.h, never as plain integers. */
typedef struct WiMAXMessage {
    uint16_t usType;
    uint16_t usSubType;
    uint8_t aucData[WIMAX_DATA_SIZE];
} WiMAXMessage;

/* Called by the library, on its own thread, with the context word given at
 * registration, the message and its length in bytes (header included). The
 * message is a whole record, however short its length: what the modem has not
 * filled of it can be read. */
typedef uint32_t (*WiMAXCallback)(uint32_t u32Context, const WiMAXMessage *pstMessage,
                                  uint32_t u32Length);

/* Opens the modem. Returns its handle, or WIMAX_NO_DEVICE. */
uint32_t OpenWiMAXDevice(void);

/* Makes the library call pfnCallback with everything the modem sends.
 * Returns 0, or a negative library error. */
int32_t RegisterCallback(uint32_t hDevice, WiMAXCallback pfnCallback, uint32_t u32Context);

/* Sends u32Length bytes (header included) of the record at pvMessage.
 * Returns 0 when the modem accepted it, else a negative library error (-27: no
 * MIB support in the firmware, -76: the MRU table is empty). Requests that are
 * answered at once have their answer written back into the record, which must
 * therefore be a whole WiMAXMessage. */
int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length);

/* Closes the modem. Returns 0, or a negative library error. */
int32_t CloseWiMAXDevice(void);

/* Read and write u32Count bytes of device memory. Return 0 on success. */
int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count);
int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count);

/* Message types. A request is answered, if at all, by a message of its type. */
enum WiMAXType {
    TYPE_NETWORK_SEARCH = 1,
    TYPE_NETWORK_ENTRY = 2,
    TYPE_NETWORK_EXIT = 3,
    TYPE_AUTHENTICATION = 4,
    TYPE_SERVICE_FLOW = 6,
    TYPE_SS_INFO = 7,
    TYPE_START_LOGGER = 8,
    TYPE_STOP_LOGGER = 9,
    TYPE_VENDOR_SPECIFIC = 10,
    TYPE_MAC_ADDRESS = 11,
    TYPE_DEVICE_UNLOAD = 12,
    TYPE_DEVICE_CONFIG = 13,
    TYPE_CHIPSET = 16,
    TYPE_STATISTICS = 17,
    TYPE_IDLE_MODE = 19,
    TYPE_MAC_MGMT = 21,
    TYPE_GPIO = 22,
    TYPE_HANDOVER = 23,
    TYPE_MIB = 24,
    TYPE_IGNORED_25 = 25,
    TYPE_SLEEP_MODE = 26,
    TYPE_MAC_LOGGING = 27,
    TYPE_ANTENNA = 28,
    TYPE_WIMAX_OPTIONS = 29,
    TYPE_SHUTDOWN = 30,
    TYPE_PHY_LOGGING = 31,
    TYPE_OMADM = 33,
    TYPE_SECURITY = 34,
    TYPE_HALF_MINI_CARD = 36
};

/* Subtypes, by type. Where request and answer share a number, they share the
 * name; an answer or indication of its own number ends in RESP or IND. */
enum WiMAXSubType {
    /* TYPE_NETWORK_SEARCH */
    SUBTYPE_NETWORK_SEARCH = 1,
    SUBTYPE_NETWORK_SEARCH_ABORT = 2,
    SUBTYPE_NETWORK_SEARCH_QUERY = 3,
    SUBTYPE_NSP_SEARCH = 4,
    SUBTYPE_NETWORK_DISCOVERY_RESP = 4,
    SUBTYPE_LOW_POWER_SCAN = 6,
    /* TYPE_NETWORK_ENTRY */
    SUBTYPE_SYNC_UP = 1,
    SUBTYPE_SYNC_STATUS_RESP = 1,
    SUBTYPE_NETWORK_ENTRY = 2,
    SUBTYPE_NETWORK_ENTRY_STATUS_RESP = 2,
    SUBTYPE_NETWORK_ENTRY_STATUS = 3,
    SUBTYPE_NSP_NETWORK_ENTRY = 4,
    /* TYPE_NETWORK_EXIT */
    SUBTYPE_SYNC_DOWN = 1,
    SUBTYPE_SYNC_DEREG = 2,
    /* TYPE_AUTHENTICATION */
    SUBTYPE_AUTH_STATUS = 1,
    SUBTYPE_AUTH_STATUS_RESP = 2,
    SUBTYPE_AUTH_PARAM_READ = 3,
    SUBTYPE_AUTH_PARAM_WRITE = 4,
    SUBTYPE_AUTH_PARAM_IND = 5,
    SUBTYPE_EAP_TRANSFER_IND = 6,
    SUBTYPE_EAP_TRANSFER = 7,
    SUBTYPE_EAP_COMPLETE = 8,
    SUBTYPE_ENCRYPTION_TEST = 9,
    SUBTYPE_ENCRYPTION_RESULT_RESP = 10,
    /* TYPE_SERVICE_FLOW */
    SUBTYPE_DSA = 1,
    SUBTYPE_DSD = 2,
    SUBTYPE_DSC = 3,
    SUBTYPE_ERTPS_CHANGE = 4,
    /* TYPE_SS_INFO */
    SUBTYPE_SS_INFO = 1,
    SUBTYPE_SS_EEPROM_INFO = 2,
    SUBTYPE_SS_EEPROM_DETAILED_INFO = 3,
    /* TYPE_START_LOGGER and TYPE_STOP_LOGGER: the log kind */
    SUBTYPE_LOG_INITIAL_RANGING = 1,
    SUBTYPE_LOG_BW_RANGING = 2,
    SUBTYPE_LOG_PERIODIC_RANGING = 3,
    SUBTYPE_LOG_BANDWIDTH = 4,
    SUBTYPE_LOG_CLOSED_LOOP_POWER = 5,
    SUBTYPE_LOG_OPEN_LOOP_POWER = 6,
    SUBTYPE_LOG_CID = 7,
    SUBTYPE_LOG_CQICH = 8,
    /* TYPE_VENDOR_SPECIFIC */
    SUBTYPE_VSA_READ = 1,
    SUBTYPE_VSA_WRITE = 3,
    SUBTYPE_VSA_SIZE = 4,
    /* TYPE_MAC_ADDRESS */
    SUBTYPE_SET_MAC_ADDRESS = 1,
    /* TYPE_DEVICE_UNLOAD */
    SUBTYPE_DEVICE_UNLOADED_IND = 2,
    /* TYPE_DEVICE_CONFIG */
    SUBTYPE_CINR_RSSI_THRESHOLD = 5,
    SUBTYPE_IP_FILTER_STATUS_IND = 6,
    /* TYPE_CHIPSET */
    SUBTYPE_CHIPSET_RESET = 1,
    SUBTYPE_FIRMWARE_DOWNLOAD = 2,
    SUBTYPE_MODEM_STATUS = 3,
    /* TYPE_STATISTICS */
    SUBTYPE_STATISTICS = 1,
    SUBTYPE_STATISTICS_RESET_CONTROL = 2,
    /* TYPE_IDLE_MODE */
    SUBTYPE_IDLE_MODE = 1,
    SUBTYPE_IDLE_MODE_STATUS = 2,
    SUBTYPE_IDLE_MODE_INACTIVITY_TIMER = 3,
    SUBTYPE_IDLE_MODE_WAKE_UP = 4,
    /* TYPE_MAC_MGMT */
    SUBTYPE_MAC_MGMT_ENABLE = 1,
    SUBTYPE_MAC_MGMT_TRACE_IND = 1,
    SUBTYPE_MAC_MGMT_DISABLE = 2,
    SUBTYPE_MAC_MGMT_STATUS = 3,
    /* TYPE_GPIO */
    SUBTYPE_GPIO_SET = 1,
    SUBTYPE_GPIO_STATUS = 2,
    SUBTYPE_SET_LED_STATE = 3,
    SUBTYPE_GET_LED_STATE = 4,
    /* TYPE_HANDOVER */
    SUBTYPE_HANDOVER_IND = 1,
    /* TYPE_MIB */
    SUBTYPE_MIB_SET = 1,
    SUBTYPE_MIB_GET = 2,
    SUBTYPE_MULTIPLE_MIB_SET = 3,
    SUBTYPE_MULTIPLE_MIB_GET = 4,
    /* TYPE_SLEEP_MODE */
    SUBTYPE_SLEEP_PSC_DEFINITION = 1,
    SUBTYPE_SLEEP_MODE_IND = 2,
    /* TYPE_MAC_LOGGING and TYPE_PHY_LOGGING */
    SUBTYPE_LOGGING_ENABLE = 2,
    SUBTYPE_LOGGING_DISABLE = 3,
    /* TYPE_ANTENNA */
    SUBTYPE_ANTENNA_CONFIG = 1,
    SUBTYPE_ANTENNA_SCANNING = 2,
    SUBTYPE_ANTENNA_SELECTION = 5,
    /* TYPE_WIMAX_OPTIONS */
    SUBTYPE_OPTION_SET = 1,
    SUBTYPE_OPTION_SET_ALL = 2,
    SUBTYPE_OPTION_GET_ALL = 3,
    /* TYPE_SHUTDOWN */
    SUBTYPE_SHUTDOWN = 1,
    SUBTYPE_SHUTDOWN_FROM_FIRMWARE_IND = 2,
    SUBTYPE_SHUTDOWN_PERIODIC_WAKE_UP_IND = 3,
    SUBTYPE_SHUTDOWN_COMPLETE_WAKE_UP_IND = 4,
    SUBTYPE_SHUTDOWN_MODE_STATUS = 5,
    /* TYPE_OMADM */
    SUBTYPE_OMADM_VERSION = 1,
    SUBTYPE_OMADM_SET = 2,
    SUBTYPE_OMADM_GET = 3,
    SUBTYPE_OMADM_SIZE = 4,
    SUBTYPE_OMADM_TREE_UPDATE = 5,
    /* TYPE_SECURITY */
    SUBTYPE_SECURITY_SET = 1,
    SUBTYPE_SECURITY_GET = 2,
    SUBTYPE_SECURITY_SIZE = 3,
    SUBTYPE_IMEI_DATA = 4,
    /* TYPE_HALF_MINI_CARD */
    SUBTYPE_HALF_MINI_CARD_STATUS = 1,
    SUBTYPE_HALF_MINI_CARD_RESP = 2,
    SUBTYPE_HALF_MINI_CARD_WAKE_UP_IND = 3
};

#ifdef __cplusplus
}
static_assert(sizeof(WiMAXMessage) == WIMAX_MESSAGE_SIZE, "the record is packed");
#endif

#endif

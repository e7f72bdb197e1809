// The endurance test of the modem's EEPROM, and its log.
#ifndef EEPROM_TEST_H
#define EEPROM_TEST_H

#include <cstdint>
#include <cstdio>

// The open log; null when there is none.
extern FILE *gpEEPROMLogFile;

// Writes random authentication data and a random ATR lock, has them read back
// and compares, round after round until a key waits on the input. It waits for
// no answer: what it compares with is what the modem reported last. The rounds
// are logged to "EEPROMTestLog.txt". Returns 0.
int32_t EEPROMTest();

// Opens the log for appending; without a path does nothing.
void Init_EEPROMTestLog(const char *pcPath);
void Close_EEPROMTestLog();
// Writes to the log (up to 2047 characters) and then to the console; nothing
// when no log is open. What was logged is in the file when this returns.
[[gnu::format(printf, 1, 2)]] void EEPROMTestLog(const char *pcFormat, ...);
// Writes a titled hexadecimal dump to the log, not to the console; nothing for
// null data or a length (bytes) of 0 or less. Returns 0.
int32_t EEPROMTestLog_Dump(const char *pcTitle, const uint8_t *pucData, int32_t iLength);

#endif

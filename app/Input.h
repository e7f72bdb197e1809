// What the menus read from the input, with the C library's formats. Every
// reader first shows what has been printed, and throws ClientEnd when the
// input ends before there is anything to read.
#ifndef INPUT_H
#define INPUT_H

#include <cstdint>
#include <span>

#include "Wire.h"

// One word ("%s") as a decimal number: 0 when it does not begin with one.
int32_t ReadOption();
// One word as a hexadecimal number. Returns 1 when it was one, else 0 with
// *pu32Value as it was.
uint32_t ReadHexNum(uint32_t *pu32Value);
// One word, of which the first u32Size - 1 characters are kept.
void ReadWord(char *pcWord, uint32_t u32Size);
// One word of hexadecimal numbers between dashes: the low byte of each, at most
// u32Count of them. Returns how many there were before something else came; the
// other bytes stay as they were.
uint32_t ReadHexBytes(uint8_t *pucBytes, uint32_t u32Count);

// "%d", "%x" and "%f": what they cannot convert stays in the input for the next
// reader, as does all that follows a number. Return false, with the value as it
// was, when nothing was converted.
bool ReadInteger(int32_t *piValue);
bool ReadHexInteger(uint32_t *pu32Value);
bool ReadFloat(float *pfValue);

// For questions that are asked again until the answer fits: "%d", but a word
// that cannot be converted is dropped.
bool ReadIntegerOrDropWord(int32_t *piValue);

// The prompt and its answer.
int32_t AskOption(const char *pcPrompt);
// The same for a field of a request, which takes the low bits that it has room for.
uint32_t AskUnsigned(const char *pcPrompt);
// Prompts whose answers are fields of one record, asked for in their order.
struct Question {
    const char *pcPrompt;
    Field stField;
};
void AskFields(ByteSpan stRecord, std::span<const Question> astQuestions);
// A field of a request that "%d" fills: stays as it was before when the answer
// is no number.
uint32_t AskInteger(const char *pcPrompt, uint32_t u32Before = 0);
// A frequency typed in MHz, in kHz: multiplied in single precision and
// truncated; 0 when it is no number or no 32-bit number of kHz holds it.
uint32_t AskFrequency(const char *pcPrompt);

#endif

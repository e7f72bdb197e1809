// What the mutator knows of the modem's messages and of what people type: where
// it pays to change something.
#ifndef FUZZ_CATALOGUE_H
#define FUZZ_CATALOGUE_H

#include <cstdint>
#include <span>

#include "Wire.h"

// A message of the modem: its codes, how long its payload usually is, and the
// fields that decide how the others are read.
struct MessageForm {
    uint16_t u16Type;
    uint16_t u16SubType;
    uint16_t u16Size;
    Field astDeciding[6]; // those without a type are none
};

std::span<const MessageForm> MessageForms();
// Attributes with decoders or keys of their own, and neighbours of the ranges.
std::span<const uint32_t> Attributes();
// Numbers at which counts, lengths and codes change their meaning.
std::span<const uint32_t> Numbers();
// What is typed: choices, answers in every form that is asked for.
std::span<const char *const> Words();

#endif

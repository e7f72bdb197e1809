// What the mutators know of what people type and of numbers. What they know of
// messages stands in the catalogue.
#ifndef FUZZ_VOCABULARY_H
#define FUZZ_VOCABULARY_H

#include <cstdint>
#include <span>

// Attributes with keys of their own, and neighbours of the ranges.
std::span<const uint32_t> Attributes();
// Numbers at which counts, lengths and codes change their meaning.
std::span<const uint32_t> Numbers();
// What is typed: choices, answers in every form that is asked for.
std::span<const char *const> Words();

#endif

// What a run of a target goes through, as its input says it: steps, one behind
// the other. Each is its kind in one byte, the length of its data in two,
// little-endian, and the data. Any bytes are steps: what is cut off counts as
// far as it is there.
#ifndef FUZZ_STEPS_H
#define FUZZ_STEPS_H

#include <cstdint>
#include <vector>

#include "Wire.h"

enum class StepKind : uint8_t {
    // What happens beside the client, in this order:
    Type,    // bytes are typed
    Message, // the library's thread gets a message: see MessageStep
    Signal,  // u8, an index of aiSignals in Stage.cpp; u8 delay as that of a message
    Pause,   // u8 looks (a few) at the input find nothing; who waits, waits it out
    Output,  // u8 OutputState, u8 how many looks or writes it lasts
    Error,   // the next call of a kind fails: u8 SystemCall, u8 error
    Turns,   // at the next places where threads can change, they do so where a bit is set
    // What the calls of the library do, each kind a queue of its own:
    Send,     // i32 result, then what is written into the sender's record
    Answer,   // a message inside the send planned before it
    Open,     // u32 handle
    Register, // i32 result
    Close,    // i32 result, u8: 1 = does not wait for the callback
    Read,     // i32 result, then what is read, over and over
    Write,    // i32 result
    // Anywhere:
    Streams,  // u8 StreamKind of the input, u8 of the output
    Extended, // the client runs its extended menu
    Silent,   // for the callback target: the menus silence it, or no more
    Aside,    // for the callback target: a function that no menu leads to, u8, and its bytes
    Count
};

struct Step {
    StepKind eKind = StepKind::Type;
    ByteView stData;
};

namespace StepHeader {
inline constexpr Field u8Kind{0, FieldType::U8};
inline constexpr Field u16Length{1, FieldType::U16};
inline constexpr uint32_t Size = 3;
} // namespace StepHeader

// The data of a message: at how many places where threads can change it waits,
// the length that the library states, the message. Without a whole header it is
// a null pointer.
namespace MessageStep {
inline constexpr Field u8Delay{0, FieldType::U8};
inline constexpr Field u32StatedLength{1, FieldType::U32};
inline constexpr uint32_t Message = 5;
} // namespace MessageStep

// Takes the first step off the bytes; false when there is none.
bool TakeStep(ByteView *pstRest, Step *pstStep);
void AppendStep(std::vector<uint8_t> *paucBytes, StepKind eKind, ByteView stData);

#endif

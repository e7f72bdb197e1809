// Where a run takes place: the operating system, the person at the console and
// the library's thread, all in memory and all as the run's steps say. Of two
// threads one moves at a time; they change places only inside calls that the
// client makes, so that a run is the same each time.
#ifndef FUZZ_STAGE_H
#define FUZZ_STAGE_H

#include "Steps.h"

enum class StreamKind : uint8_t { Pipe, File, Terminal, Master, Socket, Count };
enum class OutputState : uint8_t { Ready, Gone, Blocked, Short, Count };
enum class SystemCall : uint8_t { Read, Write, Poll, OpenFile, WriteFile, Descriptor, Count };

namespace Stage {

// Begins a run of these steps: the client's own data are as they were when the
// program started, time and descriptors are new.
void Begin(ByteView stSteps);

// Runs the client from its start to its end, and the library's thread until it
// has nothing left to do. Complains when the client ends for no reason.
void RunClientWith(void (*pfnMenus)());
// Runs something else on the client's console.
void Play(void (*pfnScene)());
// For it: the callback with a message, as on the library's thread.
void CallBack(ByteView stMessageStep);

// The steps in their order.
const std::vector<Step> &Steps();
// The next step of a kind that is a queue; null when none is left.
const Step *Next(StepKind eKind);

// For the calls of the library: a place where the threads can change.
void SwitchPoint();
void SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context);
void DeliverAnswers(const Step *pstSend);
void WaitForCallback();
// Every byte is there to be read and, as memory knows no difference, written.
void CheckBytes(const void *pvBytes, size_t uCount);

// A finding: says so and aborts.
[[noreturn]] void Complain(const char *pcText);

} // namespace Stage

#endif

// The device library of the unit tests, inside the test program: records what
// is sent, answers as told, and calls the callback from a thread of its own.
#ifndef FAKE_DEVICE_H
#define FAKE_DEVICE_H

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "WiMAXDevice.h"

namespace FakeDevice {

// Forgets everything: no calls, every call succeeds, the handle is 1.
void Reset();

// Everything that was sent, each as "2/1 | f8 92", or "null" for a null pointer;
// compare it with Recorded().
std::vector<std::string> Sent();
// The handle and the length, header included, of every send.
struct SendArguments {
    uint32_t hDevice;
    uint32_t u32Length;
    bool operator==(const SendArguments &) const = default;
};
std::vector<SendArguments> SendArgumentsOfAll();
// The names of all calls in order, such as "OpenWiMAXDevice".
std::vector<std::string> Calls();
// Addresses and counts of rdm and wrm, each as "rdm 0x00001000 4".
std::vector<std::string> MemoryCalls();
// The bytes of the last wrm.
Bytes LastWritten();

// Results of the calls from now on.
void SetOpenResult(uint32_t u32Handle);
void SetSendResult(int32_t iResult);
// The result of the next send only; may be called several times.
void QueueSendResult(int32_t iResult);
void SetMemoryResult(int32_t iResult);
// The result of the next rdm or wrm only; may be called several times.
void QueueMemoryResult(int32_t iResult);
// What rdm reads, repeated as often as it takes; zeroes by default. Whole words
// are read, the last one with bytes that were not asked for.
void SetMemory(const Bytes &aucMemory);
// Written into the buffer of the next send, header included.
void QueueReply(const Bytes &aucMessage);
// Delivered on another thread during the next send, before it returns.
void QueueAnswer(const Bytes &aucMessage);

// Called during every send, with its number (from 1) and the whole record: it
// can write an answer into it, plan messages, type. An empty one is none.
using SendHook =
    std::function<void(size_t uSend, std::span<uint8_t, WIMAX_MESSAGE_SIZE> aucRecord)>;
void OnSend(SendHook Hook);

// Calls the registered callback (the client's own when none is registered) on
// another thread with the message in a record of its own, and waits until it
// has returned. Returns its result. The length is the message's own, or stated.
uint32_t Deliver(const Bytes &aucMessage);
uint32_t Deliver(const Bytes &aucMessage, uint32_t u32StatedLength);
uint32_t DeliverNull();

} // namespace FakeDevice

// A message from its text, such as Message("2/1 | 3576500:4 00*60").
Bytes Message(std::string_view strText);
// The same text as Sent() would write it.
std::string Recorded(std::string_view strText);

#endif

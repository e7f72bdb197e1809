// The console's descriptors: no read and no write of them blocks, whatever they
// are, so that nothing but a poll ever waits.
#ifndef DESCRIPTORS_H
#define DESCRIPTORS_H

#include <cstddef>
#include <string_view>

#include <sys/types.h>

// Makes sure that the three standard descriptors are open, and makes the first
// two ready. Called again, it begins anew.
void OpenDescriptors();
// Leaves them to other programs as they were. Signal handlers may call it.
void RestoreDescriptors();

// As read and write; EAGAIN when nothing can be read or written now.
ssize_t ReadInput(void *pvBytes, size_t uCount);
ssize_t WriteOutput(const void *pvBytes, size_t uCount);
// The output's descriptor, to be polled for room.
int OutputDescriptor();

// One line about the client itself on standard error.
void Complain(std::string_view strText);

// A descriptor that wakes a poll: a new one instead of *piEvent, or -1; makes it
// readable; empties it.
void ReplaceEvent(int *piEvent);
void RaiseEvent(int iEvent);
void ClearEvent(int iEvent);

#endif

// Reads a recorded session, event by event: pcapng or pcap, from a file, a pipe, or a file that
// still grows. Memory does not grow with the file. What is damaged or foreign ends or leaves out
// what it must and nothing else; Problem() tells it when Next() has said false.
#ifndef RECORDING_READER_H
#define RECORDING_READER_H

#include <functional>
#include <memory>
#include <string>

#include "Format.h"

struct ReaderOptions {
    // The end of the file is not the end: waits for more, until the file is removed or replaced,
    // or fnIdle says so.
    bool bFollow = false;
    // Called before each wait for more to read, and every tenth of a second while following: the
    // moment to write out what was held back. False: no more is waited for.
    std::function<bool()> fnIdle;
};

class RecordingReader {
  public:
    // "-" is standard input. Never fails: what cannot be opened is a problem, and has no events.
    explicit RecordingReader(const std::string &strPath, ReaderOptions stOptions = {});
    ~RecordingReader();
    RecordingReader(const RecordingReader &) = delete;
    RecordingReader &operator=(const RecordingReader &) = delete;

    // The next event. Its bytes are good until the next call. False: there are no more.
    bool Next(Event *pstEvent);

    // Empty, or what is wrong and at which byte: one line without the file's name. Of several
    // things that are wrong the first one.
    const std::string &Problem() const;
    // How much of the file has been used, in bytes; how long it is, or 0 when that is not known
    // (a pipe).
    uint64_t Position() const;
    uint64_t Size() const;

  private:
    struct State;
    std::unique_ptr<State> m_pstState;
};

#endif

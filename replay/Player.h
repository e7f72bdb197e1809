// Plays a recording: a modem that says what it said then.
//
// A cursor goes through the recorded steps. At a call it stops until the client makes it; messages
// and results come when they are due, which is as long after the last call as they came then. Two
// threads do it: one moves the cursor, one hands the messages to the client, so that a callback may
// last, and may make calls itself, while the cursor goes on.
#ifndef REPLAY_PLAYER_H
#define REPLAY_PLAYER_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "Recording.h"

struct PlayerOptions {
    // How much faster than recorded. 0: nothing waits but for the client, and a call lasts until
    // everything up to the next call has come and been heard: the same input then makes the same
    // output.
    double fSpeed = 1;
    bool bStrict = false; // the first difference ends the process
};

class Player {
  public:
    // Never destroyed: its threads live as long as the process.
    static Player *Start(Recording stRecording, PlayerOptions stOptions);

    uint32_t Open();
    int32_t Register(uint32_t hDevice, WiMAXCallback pfnCallback, uint32_t u32Context);
    int32_t Send(uint32_t hDevice, uint8_t *pucMessage, uint32_t u32Length);
    int32_t Close();
    int32_t Read(uint32_t u32Address, uint8_t *pucBuffer, uint32_t u32Count);
    int32_t Write(uint32_t u32Address, const uint8_t *pucBuffer, uint32_t u32Count);

  private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    Player(Recording stRecording, PlayerOptions stOptions);

    // What a call comes to: its result, and what is written into the client's bytes.
    struct Answer {
        int32_t s32Result;
        ByteView stBytes;
    };

    Answer Make(Lock &stLock, const Event &stCall, ByteView stBytes, int32_t s32Otherwise);
    Answer AnswerUnexpected(const Event &stCall, ByteView stBytes, int32_t s32Otherwise) const;
    Answer AnswerOf(size_t uCall, int32_t s32Otherwise) const;
    size_t FindCall(const Event &stCall, ByteView stBytes) const;
    size_t FindSimilar(const Event &stCall, ByteView stBytes) const;
    bool IsMeant(size_t uStep, const Event &stCall, ByteView stBytes) const;
    void WaitForTurn(Lock &stLock);
    void MoveTo(size_t uStep);
    void ReportDifference(size_t uStep, const std::string &strWhat,
                          const std::string &strNow) const;
    void ReportLeftOut(size_t uCall) const;

    void RunCursor();
    bool TakeStep(Lock &stLock);
    void RunDelivery();
    void Deliver(Lock &stLock, size_t uMessage);

    bool AtCall() const;
    bool AtCallbacksCall() const;
    bool Hurries() const { return m_stOptions.fSpeed == 0 || m_uWaiting > 0; }
    Clock::time_point DueTime(const Step &stStep) const;
    bool OnDeliveryThread() const;

    const Recording m_stRecording;
    const PlayerOptions m_stOptions;

    std::mutex m_stMutex;
    std::condition_variable m_stChanged;
    size_t m_uNext = 0;                 // the step that the cursor is at
    std::vector<bool> m_abPassed;       // messages that were heard, results that may be given,
                                        // calls that a callback made before their turn
    size_t m_uLastCall = uNoStep;       // that the client made
    Clock::time_point m_stLastCallTime; // when it did
    uint32_t m_uWaiting = 0;            // calls that wait for the cursor
    bool m_bCallbackWaits = false;      // one of them is a callback's
    uint32_t m_uUnderWay = 0;           // calls that wait for their result
    WiMAXCallback m_pfnCallback = nullptr;
    uint32_t m_u32Context = 0;
    std::deque<size_t> m_stMessages; // that are due
    bool m_bDelivering = false;
    std::thread::id m_stDeliveryThread;
};

#endif

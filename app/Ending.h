// How the client ends: it is told to, by a signal, by an output that nobody
// reads any more or by a lack of memory, or it leaves by choice. Whoever waits
// for anything waits for that as well.
#ifndef ENDING_H
#define ENDING_H

#include <cstdint>

// Thrown on the main thread when the client has to end, or its input has.
struct ClientEnd {
    int iExitStatus;
};

// How long, in milliseconds, a report under way may still be written once the
// client ends: with the close of the device it makes less than half a second.
inline constexpr int iLastReportTime = 300;

// Catches the signals that end the client, but for those that were ignored
// before. Called again, it begins anew.
void PrepareEnding();

// Tells the client to end with this exit status; the first one counts. Returns
// whether it was this one. May be called by signal handlers.
bool EndClient(int iExitStatus);
// The same when memory has run out, with a line on standard error.
void EndWithoutMemory();
// The status that the client was told to end with, or 0.
int EndStatus();
// Throws ClientEnd with that status when there is one.
void EndIfTold();

// Releases decoders that wait for a key. Call it before the device is closed
// for good.
void BeginLeaving();
// True once the client has been told to end or is leaving.
bool IsEnding();
// A descriptor that is readable from then on, for polls that last IdleLimit()
// milliseconds at most: without the descriptor they have to look again.
int EndEvent();
int IdleLimit();
inline constexpr int iLookAgain = 50;

// From the moment the client is told to end, reports have iLastReportTime
// left; at a leave by choice, from this call on.
void LimitLastReport();
// Ends that time now.
void EndLastReport();
// What is left of it in milliseconds: -1 while there is no limit, 0 when
// nothing may be written any more.
int TimeLeft();

#endif

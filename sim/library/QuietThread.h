// A thread of the library's own.
#ifndef QUIET_THREAD_H
#define QUIET_THREAD_H

#include <csignal>
#include <thread>

// Signals are the business of the program's own threads.
template <typename Body> std::thread StartQuietThread(Body pfnBody) {
    sigset_t stAll;
    sigset_t stBefore;
    sigfillset(&stAll);
    pthread_sigmask(SIG_SETMASK, &stAll, &stBefore);
    std::thread stThread(std::move(pfnBody));
    pthread_sigmask(SIG_SETMASK, &stBefore, nullptr);
    return stThread;
}

#endif

#pragma once

#include <atomic>
#include <csignal>
#include <thread>

#include <pthread.h>

/** While it lives, SIGUSR1 interrupts a call that waits, and does not end the process. */
class Interruption
{
public:
    Interruption()
    {
        struct sigaction action = {};
        action.sa_handler = [](int /*signal*/) { ++s_count; }; // and no SA_RESTART
        sigaction(SIGUSR1, &action, &m_before);
    }
    ~Interruption() { sigaction(SIGUSR1, &m_before, nullptr); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /** Returns when the thread has taken the signal. */
    static void interrupt(pthread_t thread)
    {
        const int before = s_count;
        pthread_kill(thread, SIGUSR1);
        while (s_count == before) {
            std::this_thread::yield();
        }
    }

private:
    static inline std::atomic<int> s_count{0};

    struct sigaction m_before = {};
};

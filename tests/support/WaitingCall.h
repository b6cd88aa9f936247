#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>

#include <atomic>
#include <chrono>
#include <thread>

#include <unistd.h>

/** A call on a thread of its own, of which a test can tell that it waits for something. */
class WaitingCall
{
public:
    template <typename Call>
    explicit WaitingCall(Call call)
        : m_thread([this, call] {
              m_id = gettid();
              call();
          })
    {
    }
    ~WaitingCall() { end(); }
    WaitingCall(const WaitingCall&) = delete;
    WaitingCall& operator=(const WaitingCall&) = delete;

    /** Waits until the call sleeps. @return false when it does not within a minute. */
    bool waitUntilAsleep() const
    {
        const QDeadlineTimer deadline(std::chrono::minutes(1));
        while (!isAsleep() && !deadline.hasExpired()) {
            std::this_thread::yield();
        }
        return isAsleep();
    }

    /** Waits for the call to return. */
    void end()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

private:
    bool isAsleep() const
    {
        QFile state(QStringLiteral("/proc/self/task/%1/stat").arg(m_id));
        // "12345 (name of the thread) S ..."
        return m_id != 0 && state.open(QIODevice::ReadOnly) && state.readAll().contains(") S ");
    }

    std::atomic<pid_t> m_id{0}; // set before the call begins
    std::thread m_thread;
};

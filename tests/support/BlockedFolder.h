#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <unistd.h>

/**
 * A folder that holds up whoever lists it, as one on a server that does not answer does.
 *
 * One at a time, in a program that BlockedFolder.cpp is a part of.
 */
class BlockedFolder
{
public:
    explicit BlockedFolder(const QString& path) : m_path(QFile::encodeName(path))
    {
        m_current = this;
    }
    ~BlockedFolder()
    {
        release();
        m_current = nullptr;
    }
    BlockedFolder(const BlockedFolder&) = delete;
    BlockedFolder& operator=(const BlockedFolder&) = delete;

    /** Waits until so many threads came to the folder. */
    bool waitUntilReached(std::size_t threads = 1)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::minutes(1),
                                  [&] { return m_threads.size() >= threads; });
    }

    /** Lets the threads go on and sees them end. */
    void release()
    {
        std::unique_lock lock(m_mutex);
        m_isBlocked = false;
        m_changed.notify_all();
        const std::vector<pid_t> threads = m_threads;
        lock.unlock();
        while (std::any_of(threads.begin(), threads.end(), isRunning)) {
            std::this_thread::yield();
        }
    }

    /** How many of the threads were asked to stop while they were here. */
    int threadsAskedToStop()
    {
        const std::lock_guard guard(m_mutex);
        return m_threadsAskedToStop;
    }

    /** What opendir() does before it opens the folder. */
    static void visit(const char* path)
    {
        BlockedFolder* const current = m_current;
        if (current != nullptr && current->m_path == path) {
            current->holdUp();
        }
    }

private:
    static bool isRunning(pid_t thread)
    {
        return QFile::exists(QStringLiteral("/proc/self/task/%1").arg(thread));
    }

    void holdUp()
    {
        std::unique_lock lock(m_mutex);
        m_threads.push_back(gettid());
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_isBlocked; });
        m_threadsAskedToStop += QThread::currentThread()->isInterruptionRequested() ? 1 : 0;
    }

    static inline std::atomic<BlockedFolder*> m_current = nullptr;

    const QByteArray m_path;
    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    std::vector<pid_t> m_threads;
    bool m_isBlocked = true;
    int m_threadsAskedToStop = 0;
};

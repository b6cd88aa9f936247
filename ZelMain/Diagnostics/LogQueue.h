#pragma once

#include "ZelMain/Diagnostics/LocalClock.h"
#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"

#include <QSemaphore>
#include <QString>

#include <atomic>
#include <vector>

class QThread;

namespace PkLogger {

/** One queued message. */
struct LogEntry
{
    QString message;
    LocalMoment time; ///< when it was accepted
    int handle = 0;
    LoggerDataLogInterface::LOGLEVEL level = LoggerDataLogInterface::LOG_DEBUG;
    QThread* thread = nullptr; ///< a number only, never followed
    bool isFromMainThread = false;
};

/**
 * The ring between the threads that log, one at a time, and the writer thread.
 *
 * One slot always stays free, so 9999 messages wait at most.
 */
class LogQueue
{
public:
    /** Makes the slots; before that the queue counts as full. */
    void allocate() { m_ring.resize(SLOTS); }

    // For whoever logs, under the service lock.

    bool isFull() const;
    /** The slot to fill before push(); only while the queue is not full. */
    LogEntry& freeSlot();
    /** Hands the filled slot to the writer. */
    void push();
    /** Lets waitForEntry() return false once the queue is empty. Nothing is pushed after it. */
    void stop();

    // For the writer.

    bool isEmpty() const;
    /** Whether nothing is pushed any more; what was may still wait. */
    bool isStopped() const { return m_isStopped.load(std::memory_order_relaxed); }
    /** Sleeps until there is an entry. @return false after stop(), when nothing is left. */
    bool waitForEntry();
    LogEntry& front();
    /** Gives the front's slot back. */
    void pop();

private:
    static constexpr int SLOTS = 10000;

    int next(int index) const;
    void wakeWriter();

    // Only threads under the service lock move the write index, only the writer moves the other.
    // They stand on cache lines of their own, which the two sides would take from each other.
    alignas(64) std::atomic<int> m_writeIndex{0};
    alignas(64) std::atomic<int> m_readIndex{0};
    // The indices count the entries; the semaphore is for a writer that sleeps, and for it alone.
    // Released for each entry, it would call the kernel for each until a woken writer gets its
    // processor: 150 ns a message.
    alignas(64) std::atomic<bool> m_isWriterAsleep{false};
    std::atomic<bool> m_isStopped{false};
    QSemaphore m_wakeUp{0};
    std::vector<LogEntry> m_ring;
};

} // namespace PkLogger

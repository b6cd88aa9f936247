#include "ZelMain/Diagnostics/LogQueue.h"

namespace PkLogger {

int LogQueue::next(int index) const
{
    return index + 1 < static_cast<int>(m_ring.size()) ? index + 1 : 0;
}

bool LogQueue::isFull() const
{
    // relaxed: the lock under which it moves orders the write index. acquire: the slot may be
    // filled only after the writer is done with it.
    return next(m_writeIndex.load(std::memory_order_relaxed)) ==
           m_readIndex.load(std::memory_order_acquire);
}

LogEntry& LogQueue::freeSlot()
{
    return m_ring[static_cast<std::size_t>(m_writeIndex.load(std::memory_order_relaxed))];
}

void LogQueue::push()
{
    // At least release: the writer that sees the new index sees what the slot was filled with.
    // Sequentially consistent together with the flag: either this thread sees that the writer
    // sleeps, or the writer sees the entry before it does.
    m_writeIndex.store(next(m_writeIndex.load(std::memory_order_relaxed)));
    wakeWriter();
}

void LogQueue::stop()
{
    m_isStopped.store(true); // in the same order with the flag as an entry
    wakeWriter();
}

void LogQueue::wakeWriter()
{
    if (m_isWriterAsleep.load() && m_isWriterAsleep.exchange(false)) {
        m_wakeUp.release();
    }
}

bool LogQueue::isEmpty() const
{
    // relaxed: only this thread moves the read index. The other order pairs with push().
    return m_readIndex.load(std::memory_order_relaxed) == m_writeIndex.load();
}

bool LogQueue::waitForEntry()
{
    while (isEmpty()) {
        m_isWriterAsleep.store(true);
        const bool isStopped = m_isStopped.load();
        if (!isEmpty()) {
            break;
        }
        if (isStopped) {
            return false;
        }
        m_wakeUp.acquire(); // a resource may be left from an entry that was seen before sleep
    }
    m_isWriterAsleep.store(false, std::memory_order_relaxed);
    return true;
}

LogEntry& LogQueue::front()
{
    return m_ring[static_cast<std::size_t>(m_readIndex.load(std::memory_order_relaxed))];
}

void LogQueue::pop()
{
    // Freed here rather than by the thread that fills the slot again, which has less time.
    front().message = QString();
    // release: pairs with isFull(), which lets the slot be filled again.
    m_readIndex.store(next(m_readIndex.load(std::memory_order_relaxed)), std::memory_order_release);
}

} // namespace PkLogger

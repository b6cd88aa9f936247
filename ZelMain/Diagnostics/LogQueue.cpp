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
    // release: the writer that sees the new index sees what the slot was filled with.
    m_writeIndex.store(next(m_writeIndex.load(std::memory_order_relaxed)),
                       std::memory_order_release);
    m_queued.release();
}

bool LogQueue::isEmpty() const
{
    // relaxed: only this thread moves the read index. acquire: pairs with push().
    return m_readIndex.load(std::memory_order_relaxed) ==
           m_writeIndex.load(std::memory_order_acquire);
}

bool LogQueue::tryWaitForEntry()
{
    return !isEmpty() && m_queued.tryAcquire();
}

bool LogQueue::waitForEntry()
{
    m_queued.acquire();
    return !isEmpty();
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

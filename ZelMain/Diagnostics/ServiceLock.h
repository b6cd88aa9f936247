#pragma once

#include "ZelMain/Diagnostics/ThreadSanitizer.h"

#include <QRecursiveMutex>

namespace PkLogger {

/** The lock that serialises those who log; recursive, for use with std::lock_guard. */
class ServiceLock
{
public:
    void lock()
    {
        m_mutex.lock();
        tellSanitizerOfAcquire(this);
    }

    void unlock()
    {
        tellSanitizerOfRelease(this);
        m_mutex.unlock();
    }

private:
    QRecursiveMutex m_mutex;
};

} // namespace PkLogger

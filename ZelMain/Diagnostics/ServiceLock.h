#pragma once

#include <QRecursiveMutex>

#if defined(__SANITIZE_THREAD__)
#define ZEL_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZEL_THREAD_SANITIZER
#endif
#endif

#ifdef ZEL_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace PkLogger {

/**
 * The lock that serialises those who log; recursive, for use with std::lock_guard.
 *
 * Qt is not built for ThreadSanitizer, which therefore does not see what a Qt mutex orders; it is
 * told here.
 */
class ServiceLock
{
public:
    void lock()
    {
        m_mutex.lock();
#ifdef ZEL_THREAD_SANITIZER
        __tsan_acquire(this);
#endif
    }

    void unlock()
    {
#ifdef ZEL_THREAD_SANITIZER
        __tsan_release(this);
#endif
        m_mutex.unlock();
    }

private:
    QRecursiveMutex m_mutex;
};

} // namespace PkLogger

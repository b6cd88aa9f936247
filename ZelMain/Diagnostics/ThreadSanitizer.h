#pragma once

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

// Qt is not built for ThreadSanitizer, which therefore does not see what Qt's mutexes and the end
// of a QThread order. It is told here: what happened before a release of some address happened
// before what comes after an acquire of it. Without the sanitizer neither does anything.

inline void tellSanitizerOfRelease([[maybe_unused]] void* address)
{
#ifdef ZEL_THREAD_SANITIZER
    __tsan_release(address);
#endif
}

inline void tellSanitizerOfAcquire([[maybe_unused]] void* address)
{
#ifdef ZEL_THREAD_SANITIZER
    __tsan_acquire(address);
#endif
}

} // namespace PkLogger

#include "ZelMain/Diagnostics/ApplicationThread.h"

#include <QCoreApplication>

#include <atomic>

namespace PkLogger {

namespace {

// relaxed: only compared, nothing is read through it.
std::atomic<const QThread*> applicationThread{nullptr};

void forgetApplicationThread()
{
    applicationThread.store(nullptr, std::memory_order_relaxed);
}

// Called by every application object that comes up, or at once if there is one.
void noteApplicationThread()
{
    applicationThread.store(QCoreApplication::instance()->thread(), std::memory_order_relaxed);
    qAddPostRoutine(forgetApplicationThread); // Qt forgets these with each application object
}

} // namespace

void watchApplicationThread()
{
    qAddPreRoutine(noteApplicationThread);
}

bool isApplicationThread(const QThread* thread)
{
    return thread == applicationThread.load(std::memory_order_relaxed);
}

} // namespace PkLogger

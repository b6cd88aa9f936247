#include "ZelMain/Diagnostics/LoggerWriterThread.h"

#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"
#include "ZelMain/Diagnostics/ThreadSanitizer.h"

namespace PkLogger {

LoggerWriterThread::LoggerWriterThread(LoggerDataAccessInterface* source) : m_source(source) {}

void LoggerWriterThread::run()
{
    // A thread that is terminated where nothing may throw takes the process with it. So this one
    // can be torn from a device only; see where lines are written.
    setTerminationEnabled(false);
    while (m_source->writeData()) {
    }
    tellSanitizerOfRelease(this);
}

} // namespace PkLogger

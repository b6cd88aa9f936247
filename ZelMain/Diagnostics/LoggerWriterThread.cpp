#include "ZelMain/Diagnostics/LoggerWriterThread.h"

#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"
#include "ZelMain/Diagnostics/ThreadSanitizer.h"

namespace PkLogger {

LoggerWriterThread::LoggerWriterThread(LoggerDataAccessInterface* source) : m_source(source) {}

void LoggerWriterThread::run()
{
    while (m_source->writeData()) {
    }
    tellSanitizerOfRelease(this);
}

} // namespace PkLogger

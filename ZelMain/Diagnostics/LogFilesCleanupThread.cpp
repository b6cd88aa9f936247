#include "ZelMain/Diagnostics/LogFilesCleanupThread.h"

#include "ZelMain/Diagnostics/FileOutDevConfig.h"
#include "ZelMain/Diagnostics/LogFilesCleanup.h"
#include "ZelMain/Diagnostics/ThreadSanitizer.h"

namespace PkLogger {

LogFilesCleanupThread::LogFilesCleanupThread(unsigned int months, QObject* parent)
    : QThread(parent), m_months(months)
{
    const FileOutDevConfig config{QString()};
    m_folder = config.getFolderName();
    m_baseFileName = config.getBaseFileName();
}

LogFilesCleanupThread::LogFilesCleanupThread(QObject* parent) : QThread(parent) {}

void LogFilesCleanupThread::run()
{
    // Listing and removing files may not be broken off: terminated inside a destructor that closes
    // a folder, the thread would take the process with it.
    setTerminationEnabled(false);
    removeLogFiles(m_folder, m_baseFileName, cleanupCutOff(QDateTime::currentDateTime(), m_months));
    tellSanitizerOfRelease(this);
}

} // namespace PkLogger

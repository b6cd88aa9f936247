#include "ZelMain/Diagnostics/LogFilesCleanup.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <limits>

namespace PkLogger {

QDateTime cleanupCutOff(const QDateTime& now, unsigned int months)
{
    // More months than Qt can count are more than any file is old, as the most it can count are.
    const unsigned int counted = std::min(months, unsigned{std::numeric_limits<int>::max()});
    return now.addMonths(-static_cast<int>(counted));
}

QDateTime creationTime(const QFileInfo& file)
{
    const QDateTime birth = file.birthTime();
    return birth.isValid() ? birth : file.metadataChangeTime();
}

void removeLogFiles(const QString& folder, const QString& baseFileName, const QDateTime& cutOff)
{
    if (folder.isEmpty()) {
        return; // QDir would take it for the current folder
    }
    // As a list, since QDir splits a filter text at its blanks and semicolons.
    const QStringList nameFilter(QStringLiteral("*%1*.txt").arg(baseFileName));
    QDir dir(folder);
    const QFileInfoList entries =
        dir.entryInfoList(nameFilter, QDir::AllEntries, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& entry : entries) {
        if (QThread::currentThread()->isInterruptionRequested()) {
            return;
        }
        if (creationTime(entry) < cutOff) {
            dir.remove(entry.fileName());
        }
    }
}

} // namespace PkLogger

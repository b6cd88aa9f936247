#pragma once

// The steps of LogFilesCleanupThread, which take the time from their caller: no file can be made
// older than it is. Not for users of the library.

#include <QDateTime>
#include <QString>

class QFileInfo;

namespace PkLogger {

/**
 * The time before which a log file is too old: @p months calendar months before @p now, invalid
 * when that lies before all that a QDateTime can hold.
 */
QDateTime cleanupCutOff(const QDateTime& now, unsigned int months);

/** The birth of the file where the file system keeps it, else the last change of its status. */
QDateTime creationTime(const QFileInfo& file);

/**
 * Removes the log files of @p folder that were created before @p cutOff, or those that it comes to
 * until the thread is asked for an interruption.
 */
void removeLogFiles(const QString& folder, const QString& baseFileName, const QDateTime& cutOff);

} // namespace PkLogger

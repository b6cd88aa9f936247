#pragma once

#include <QString>
#include <QThread>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

/**
 * Deletes the log files that have come of age, in one pass; start() it and it ends by itself.
 *
 * Deleted is what lies in the log folder itself, has the extension "txt" and the base file name
 * anywhere in its name, case ignored, and was created before the age limit. A file counts from its
 * birth where the file system keeps that, else from the last change of its status. Files that
 * cannot be removed stay, and nothing is reported.
 *
 * Folder and base name are taken from FileOutDevConfig when the object is made, on that thread; the
 * pass uses these copies only. As with every QThread, wait() for a pass under way before the object
 * goes. requestInterruption() ends the pass before its next file; terminate() has no effect on it.
 */
class LogFilesCleanupThread : public QThread
{
    Q_OBJECT

public:
    /** @param months  the age limit in calendar months before the moment of the pass. */
    LogFilesCleanupThread(unsigned int months, QObject* parent);
    /** A thread without a folder, whose pass deletes nothing. */
    explicit LogFilesCleanupThread(QObject* parent);

protected:
    void run() override;

private:
    QString m_folder; // empty stands for no folder at all, not for the current one
    QString m_baseFileName;
    unsigned int m_months = 0;
};

} // namespace PkLogger

#pragma GCC visibility pop

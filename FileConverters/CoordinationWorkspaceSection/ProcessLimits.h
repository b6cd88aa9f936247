#pragma once

#include <QDeadlineTimer>

/** What one document may take. */
struct ProcessLimits
{
    qint64 memoryBytes = 0;  ///< of address space; 0 for no limit
    qint64 milliseconds = 0; ///< of wall time, counted by who starts the process; 0 for no limit

    /**
     * Puts the limit on memory on the calling process, and on what it starts, in place of one that
     * was put there before.
     *
     * The process leaves no core file, and ends when the one that started it ends. Only plain
     * system calls are made, so that it may be called between fork and exec (POSIX.1-2017, fork).
     * @return whether the limits stand.
     */
    bool applyToThisProcess() const;

    /** When the time is up that begins now. */
    QDeadlineTimer deadline() const;
};

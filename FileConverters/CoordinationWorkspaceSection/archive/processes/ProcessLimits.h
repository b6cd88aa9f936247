#pragma once

#include <QDeadlineTimer>

#include <sys/types.h>

/** What one document may take. */
struct ProcessLimits
{
    qint64 memoryBytes = 0;  ///< of address space; 0 for no limit
    qint64 milliseconds = 0; ///< of wall time, counted by who starts the process; 0 for no limit

    /**
     * Puts the limit on memory on the calling process, and on what it starts, in place of one that
     * was put there before.
     *
     * The process leaves no core file, and ends when the one that started it ends.
     * @return whether the limits stand.
     */
    bool applyToThisProcess() const;

    /**
     * Puts the limits on a process: a child, or the calling one, which is to become another
     * program. Neither allocates nor throws.
     *
     * Should the one that counts its time be killed, it ends when it has taken as much of the
     * processor's (POSIX.1-2017, RLIMIT_CPU).
     * @return whether the limits stand.
     */
    bool applyTo(pid_t process) const;

    /** When the time is up that begins now. */
    QDeadlineTimer deadline() const;
};

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"

#include <QString>

/**
 * Keeps two runs out of the same target.
 *
 * A run holds one file by itself. Each job holds another one together with the other jobs: after a
 * run is killed, the next one is kept out until the last of its jobs has ended.
 *
 * The locks are POSIX record locks (fcntl, F_SETLK): they belong to the process and go with it.
 * What a killed process leaves behind must not hold them: Parallel has processes of its own that
 * sleep on for hours, and a child that is forked but not yet released to exec waits for ever.
 */
class ArchiveLock
{
public:
    enum Kind { ALONE, TOGETHER };
    enum State { HELD, BUSY, FAILED };

    /**
     * Does not wait. FAILED, with errno set, is a file that cannot be made, opened or locked.
     *
     * @param file  made when there is none, to be read and written by whom the user's mask lets,
     *              and left behind.
     */
    ArchiveLock(const QString& file, Kind kind);
    ArchiveLock(const ArchiveLock&) = delete;
    ArchiveLock& operator=(const ArchiveLock&) = delete;

    State state() const { return m_state; }

private:
    Descriptor m_file;
    State m_state = FAILED;
};

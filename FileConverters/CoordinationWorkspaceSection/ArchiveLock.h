#pragma once

#include <QString>

/**
 * Keeps two runs out of the same target.
 *
 * A run holds one file by itself. Each job holds another one together with the other jobs: after a
 * run is killed, the next one is kept out until the last of its jobs has ended. They cannot simply
 * inherit the run's lock, since what Parallel starts on its own account would inherit it too, and
 * when Parallel is killed some of that sleeps on for hours.
 */
class ArchiveLock
{
public:
    enum Kind { ALONE, TOGETHER };
    enum State { HELD, BUSY, FAILED };

    /** Does not wait. @param file  made when there is none, and left behind. */
    ArchiveLock(const QString& file, Kind kind);
    ~ArchiveLock();
    ArchiveLock(const ArchiveLock&) = delete;
    ArchiveLock& operator=(const ArchiveLock&) = delete;

    State state() const { return m_state; }

private:
    int m_descriptor;
    State m_state = FAILED;
};

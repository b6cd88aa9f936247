#pragma once

#include <QString>

/**
 * Keeps two runs out of the same target.
 *
 * The processes that a run starts hold the lock as well (flock(2) belongs to the open file, which
 * they inherit): after a run is killed, the next one is kept out until the last job has ended.
 */
class ArchiveLock
{
public:
    enum State { HELD, BUSY, FAILED };

    /** @param file  made when there is none, and left behind. */
    explicit ArchiveLock(const QString& file);
    ~ArchiveLock();
    ArchiveLock(const ArchiveLock&) = delete;
    ArchiveLock& operator=(const ArchiveLock&) = delete;

    State state() const { return m_state; }

private:
    int m_descriptor;
    State m_state = FAILED;
};

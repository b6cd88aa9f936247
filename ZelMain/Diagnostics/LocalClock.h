#pragma once

#include <QByteArray>
#include <QDateTime>

namespace PkLogger {

/** A moment in local time: a few milliseconds after another in the same second. */
struct LocalMoment
{
    QDateTime base; ///< local time as Qt tells it
    int extraMs = 0;
};

/**
 * Tells the local time that QDateTime::currentDateTime() tells, at a fraction of its price.
 *
 * Qt looks up the time zone for each answer, and while TZ is not set that costs system calls:
 * 1.7 µs, more than all the rest of queueing a message. Offsets from UTC change at whole seconds
 * only, so one answer of Qt serves all moments of the same hundredth of a second, as long as TZ
 * reads the same. A changed TZ is thus followed at once, a replaced zone file after 10 ms at most.
 *
 * Not thread-safe; the service asks under its lock.
 */
class LocalClock
{
public:
    /** The local time @p msSinceEpoch milliseconds after the start of 1970, UTC. */
    LocalMoment at(qint64 msSinceEpoch);

    /** The same without the sharing: the base is the moment itself. */
    static LocalMoment exactlyAt(qint64 msSinceEpoch);

private:
    qint64 m_sliceStart = -1; // no slice starts here, so the first question goes to Qt
    QByteArray m_zone;        // TZ, null when it is not set
    QDateTime m_base;
};

} // namespace PkLogger

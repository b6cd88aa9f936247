#include "ZelMain/Diagnostics/LocalClock.h"

#include <QtGlobal>

namespace PkLogger {

namespace {

constexpr qint64 SLICE_MS = 10;

qint64 sliceStart(qint64 msSinceEpoch)
{
    const qint64 intoSlice = msSinceEpoch % SLICE_MS;
    return msSinceEpoch - (intoSlice < 0 ? intoSlice + SLICE_MS : intoSlice);
}

// An empty TZ means UTC, an unset one the system's zone file.
bool isSameZone(const QByteArray& left, const QByteArray& right)
{
    return left.isNull() == right.isNull() && left == right;
}

} // namespace

LocalMoment LocalClock::at(qint64 msSinceEpoch)
{
    const qint64 start = sliceStart(msSinceEpoch);
    // qgetenv() shares Qt's lock with qputenv(), which plain getenv() does not.
    const QByteArray zone = qgetenv("TZ");
    if (start != m_sliceStart || !isSameZone(zone, m_zone)) {
        m_base = QDateTime::fromMSecsSinceEpoch(start);
        m_sliceStart = start;
        m_zone = zone;
    }
    return {m_base, static_cast<int>(msSinceEpoch - start)};
}

LocalMoment LocalClock::exactlyAt(qint64 msSinceEpoch)
{
    return {QDateTime::fromMSecsSinceEpoch(msSinceEpoch), 0};
}

} // namespace PkLogger

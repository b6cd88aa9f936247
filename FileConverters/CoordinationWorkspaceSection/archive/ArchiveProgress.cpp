#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveProgress.h"

#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace {

constexpr qint64 TERMINAL_INTERVAL_MS = 200;
constexpr qint64 LINE_INTERVAL_MS = 10000;
constexpr qint64 MILLISECONDS_PER_SECOND = 1000;
constexpr qint64 SECONDS_PER_MINUTE = 60;
constexpr qint64 MINUTES_PER_HOUR = 60;
const QString CLEAR_LINE = QStringLiteral("\r\x1b[K"); // ECMA-48: erase to the end of the line

QString durationText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / MILLISECONDS_PER_SECOND;
    if (seconds < SECONDS_PER_MINUTE) {
        return QStringLiteral("%1 s").arg(seconds);
    }
    const qint64 minutes = seconds / SECONDS_PER_MINUTE;
    return minutes < MINUTES_PER_HOUR ? QStringLiteral("%1 min").arg(minutes)
                                      : QStringLiteral("%1 h %2 min")
                                            .arg(minutes / MINUTES_PER_HOUR)
                                            .arg(minutes % MINUTES_PER_HOUR);
}

} // namespace

ArchiveProgress::ArchiveProgress(QString what, int count, qint64 bytes, bool isTerminal)
    : m_what(std::move(what)), m_count(count), m_bytes(bytes), m_isTerminal(isTerminal),
      m_nextShow(isTerminal ? 0 : LINE_INTERVAL_MS)
{
    m_timer.start();
}

bool ArchiveProgress::isAtTerminal()
{
    return ProcessSetup::isOutputTerminal() && ProcessSetup::isErrorTerminal();
}

void ArchiveProgress::advance(qint64 bytes)
{
    ++m_countDone;
    m_bytesDone += bytes;
}

QString ArchiveProgress::textAfter(qint64 milliseconds) const
{
    QString text = QStringLiteral("%1 of %2 %3")
                       .arg(QString::number(m_countDone), QString::number(m_count), m_what);
    if (m_bytesDone > 0) {
        // Documents may have grown since they were counted.
        const auto left = static_cast<double>(std::max<qint64>(0, m_bytes - m_bytesDone));
        const double pace = static_cast<double>(milliseconds) / static_cast<double>(m_bytesDone);
        text += QStringLiteral(", %1 left").arg(durationText(static_cast<qint64>(left * pace)));
    }
    return text;
}

void ArchiveProgress::show()
{
    const qint64 now = m_timer.elapsed();
    if (now < m_nextShow) {
        return;
    }
    m_nextShow = now + (m_isTerminal ? TERMINAL_INTERVAL_MS : LINE_INTERVAL_MS);
    const QString text = textAfter(now);
    writeUtf8(m_isTerminal ? CLEAR_LINE + text : text + QLatin1Char('\n'), std::cerr);
}

void ArchiveProgress::clear() const
{
    if (m_isTerminal) {
        writeUtf8(CLEAR_LINE, std::cerr);
    }
}

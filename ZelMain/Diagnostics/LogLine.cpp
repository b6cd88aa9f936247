#include "ZelMain/Diagnostics/LogLine.h"

#include "ZelMain/Diagnostics/UserEntry.h"

#include <QDebug>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace PkLogger {

namespace {

// Of one width, so that lines align.
constexpr int LEVEL_WORD_SIZE = 9;
constexpr const char* LEVEL_WORDS[] = {" DEBUG   ", " INFO    ", " WARNING ", " ERROR   "};

constexpr char16_t LAST_LATIN1 = 0xff;

constexpr char TRUNCATION_MARK[] = " < TRANCATED >"; // spelt so; readers of the files know it so
constexpr int TRUNCATION_MARK_SIZE = sizeof TRUNCATION_MARK - 1;

char marker(const LogEntry& entry)
{
    return entry.isFromMainThread ? '*' : ' ';
}

quint64 threadNumber(const LogEntry& entry)
{
    return reinterpret_cast<quintptr>(entry.thread);
}

// A name may hold place markers; the arguments after it then land in the name. Users who call
// themselves so get the line that they always got.
QString lineWithPlaceMarkersInName(const QString& time, const QString& userName,
                                   const LogEntry& entry)
{
    return QStringLiteral("%1 %2 %3 %4%5  %6\n")
        .arg(time)
        .arg(userName)
        .arg(QLatin1String(LEVEL_WORDS[entry.level]))
        .arg(threadNumber(entry))
        .arg(QLatin1Char(marker(entry)))
        .arg(entry.message);
}

} // namespace

LogLine::Text LogLine::getFormattedString(const LogEntry& entry, UserEntry& user,
                                          LogService::LogOptions options)
{
    m_size = 0;
    if (user.device) {
        formatForOwnDevice(entry, user, options);
    } else {
        formatForCommonDevices(entry, user.name);
    }
    limitSize();
    return {m_buffer.data(), m_size};
}

void LogLine::formatForCommonDevices(const LogEntry& entry, const QString& userName)
{
    const QString& time = m_commonTime.textOf(entry.time);
    if (userName.contains(QLatin1Char('%'))) {
        append(lineWithPlaceMarkersInName(time, userName, entry));
        return;
    }
    append(time);
    append(" ", 1);
    append(userName);
    append(" ", 1);
    append(LEVEL_WORDS[entry.level], LEVEL_WORD_SIZE);
    append(" ", 1);
    appendThread(entry);
    append("  ", 2);
    append(entry.message);
    append("\n", 1);
}

void LogLine::formatForOwnDevice(const LogEntry& entry, UserEntry& user,
                                 LogService::LogOptions options)
{
    append(user.timeText.textOf(entry.time));
    append(" ", 1);
    if (user.options.testFlag(LogService::OutUserName)) {
        append(user.name);
        append(" ", 1);
    }
    if (options.testFlag(LogService::LogLevel)) {
        append(LEVEL_WORDS[entry.level], LEVEL_WORD_SIZE);
    }
    // Either option brings the thread: a line that shows its level shows its thread too.
    if (options & (LogService::LogThread | LogService::LogLevel)) {
        appendThread(entry);
    }
    append(entry.message);
    append("\n", 1);
}

void LogLine::append(QStringView text)
{
    const qint64 fitting = std::min<qint64>(text.size(), room());
    for (qint64 i = 0; i < fitting; ++i) {
        const char16_t unit = text.utf16()[i];
        m_buffer[static_cast<std::size_t>(m_size + i)] =
            unit > LAST_LATIN1 ? '?' : static_cast<char>(unit);
    }
    m_size += text.size();
}

void LogLine::append(const char* text, qint64 size)
{
    const qint64 fitting = std::min(size, room());
    if (fitting > 0) {
        std::memcpy(m_buffer.data() + m_size, text, static_cast<std::size_t>(fitting));
    }
    m_size += size;
}

qint64 LogLine::room() const
{
    return std::max<qint64>(0, MAX_LOG_MSG_SIZE - m_size);
}

void LogLine::appendThread(const LogEntry& entry)
{
    std::array<char, 24> text; // 20 digits at most, and the marker
    char* const end =
        std::to_chars(text.data(), text.data() + text.size() - 1, threadNumber(entry)).ptr;
    *end = marker(entry);
    append(text.data(), end - text.data() + 1);
}

void LogLine::limitSize()
{
    if (m_size <= MAX_LOG_MSG_SIZE) {
        return;
    }
    m_size = MAX_LOG_MSG_SIZE - 1;
    std::memcpy(m_buffer.data() + m_size, TRUNCATION_MARK, TRUNCATION_MARK_SIZE);
    m_size += TRUNCATION_MARK_SIZE;
    // The size is the one after cutting.
    qDebug() << "ATTENTION!ATTENTION!ATTENTION!   Log String size is bigger MAX_LOG_MSG_SIZE = "
             << m_size;
}

} // namespace PkLogger

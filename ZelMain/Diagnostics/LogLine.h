#pragma once

#include "ZelMain/Diagnostics/LogQueue.h"
#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/TimeText.h"

#include <QStringView>

#include <array>

namespace PkLogger {

struct UserEntry;

/**
 * Turns queued messages into lines of Latin-1 text. Lives on the writer thread.
 *
 * Characters outside Latin-1 become question marks. A line of more than MAX_LOG_MSG_SIZE characters
 * is cut short, marked and loses its line feed, and the debug channel is told.
 */
class LogLine
{
public:
    static constexpr int MAX_LOG_MSG_SIZE = 2048;

    /** Text in a buffer of the line's own, so it lives until the next call. */
    struct Text
    {
        const char* data;
        qint64 size;
    };

    /** @param user  whose entry it is; one with a private device has a layout of its own. */
    Text getFormattedString(const LogEntry& entry, UserEntry& user, LogService::LogOptions options);

private:
    void formatForCommonDevices(const LogEntry& entry, const QString& userName);
    void formatForOwnDevice(const LogEntry& entry, UserEntry& user, LogService::LogOptions options);
    void append(QStringView text);
    void append(const char* text, qint64 size);
    void appendThread(const LogEntry& entry);
    qint64 room() const;
    void limitSize();

    TimeText m_commonTime;
    qint64 m_size = 0; // of the whole line, of which only what fits is kept
    std::array<char, MAX_LOG_MSG_SIZE + 16> m_buffer{}; // with room for the mark of a cut line
};

} // namespace PkLogger

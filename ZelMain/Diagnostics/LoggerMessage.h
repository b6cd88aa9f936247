#pragma once

#include <QSharedPointer>

#pragma GCC visibility push(default) // what a shared library shows

class QString;

namespace PkLogger {

class Logger;

/**
 * Messages of a named log user in one call, for code that keeps no logger of its own.
 *
 * All operations may be called from any thread. None fails: what the service does not let through
 * is dropped in silence.
 */
class LoggerMessage
{
public:
    /** The kind of a message. Callers store the numbers; they are not those of the log levels. */
    enum LogType : int {
        LogError = 0,
        LogWarning = 1,
        LogDebug = 2,
        LogInfo = 3,
    };

    LoggerMessage() = delete;

    /**
     * Writes "<first>, <second>" to the console while console logging is on, else into the log.
     *
     * Nothing happens unless both the logger and @p user are enabled, nor for a @p type that is
     * none. The first call of a process makes the service, which makes the log folder and looks up
     * the log-file settings; it does not start it.
     */
    static void LogMessage(LogType type, const QString& user, const QString& first,
                           const QString& second);

    /**
     * Writes @p text and an end of line to Qt's debug messages if the service lets the level of
     * @p type through. All types go to the debug channel.
     */
    static void logCosole(LogType type, const QString& text);

    /**
     * Logs @p text as @p user, who is made, disabled, when new. The service's own rules decide
     * whether it is written.
     */
    static void logFile(LogType type, const QString& user, const QString& text);

    /** The logger of @p user, made when new; null when the service refuses it. */
    static QSharedPointer<Logger> GetLoggerHandle(const QString& user);
};

} // namespace PkLogger

#pragma GCC visibility pop

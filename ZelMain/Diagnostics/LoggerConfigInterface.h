#pragma once

#include <QString>
#include <QVector>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

/**
 * What an application tells the log service about its switches, all in one object.
 *
 * The application implements it over its settings dialog or settings file and hands it to
 * LogService::configureLogService, which only reads it, on the caller's thread and during the call;
 * the service keeps no pointer to it. The order of the operations is fixed.
 */
class LoggerConfigInterface
{
public:
    /** Whether one log user's messages are wanted. */
    struct UserState
    {
        QString name; ///< exactly as the user logs, padding blanks included; empty is skipped
        bool enabled = false;
    };

    /** The switch of the logger as a whole. */
    virtual bool isLoggerEnabled() const = 0;
    /** Whether direct messages go to the console; while they do, the common devices are closed. */
    virtual bool isConsoleLogEnabled() const = 0;
    virtual bool isDebugOutputEnabled() const = 0;
    virtual bool isInfoOutputEnabled() const = 0;
    virtual bool isWarningOutputEnabled() const = 0;
    virtual bool isErrorOutputEnabled() const = 0;
    /** States that are applied after those of getUserStates, so for a name in both they win. */
    virtual QVector<UserState> getAdditionalUserStates() const = 0;
    /** States that are applied first, in list order; users that are new are created. */
    virtual QVector<UserState> getUserStates() const = 0;

    virtual ~LoggerConfigInterface() = default;

protected:
    LoggerConfigInterface() = default;
    LoggerConfigInterface(const LoggerConfigInterface&) = default;
    LoggerConfigInterface& operator=(const LoggerConfigInterface&) = default;
};

} // namespace PkLogger

#pragma GCC visibility pop

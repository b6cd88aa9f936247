#pragma once

#include <QFlags>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#pragma GCC visibility push(default) // what a shared library shows

class CID;
class DCID;
class QIODevice;

namespace PkLogger {

class LoggerConfigInterface;
class LoggerImpl;

/**
 * The process-wide diagnostics log.
 *
 * Whoever logs is a log user, known by a name and switched on and off by it. A user's messages go
 * to the common devices, or to a private device that it was created with. A message is queued by
 * the thread that logs and written by the service's own thread, so logging never waits for a
 * device.
 *
 * A program starts the service, adds devices, and switches users and levels on:
 *
 *     auto service = PkLogger::LogService::GetLogService();
 *     service->initLogService({});
 *     service->registerOutputDevice(QSharedPointer<QFile>::create("log.txt"));
 *     service->enableErrorOutput(true);
 *     service->enableLogger(true);
 *     auto logger = service->getLoggerObject("DATABASE");
 *     service->enableUserOutput("DATABASE", true);
 *     logger->logError("%d rows lost", rows);
 *
 * Devices. The service opens, closes and writes its devices, one thread at a time; nobody else does
 * while it has them. A device that fails costs its own lines only. One that blocks holds up the
 * writer and the calls that open or close devices, never those that log. When the writer has
 * nothing more to write it flushes what is a QFileDevice, so the lines of an idle service stand in
 * its files; what was written before a crash stands there in whole lines. An idle service wakes up
 * no thread.
 *
 * The end of the process. What is queued when main returns or exit() is called is still written.
 * Exit handlers and destructors of statics that were made after the start may still log; those made
 * before it, and threads that run on, are refused. After a fork the child has a service that is not
 * started and knows no device: what it logs is refused and nothing of the parent's is written
 * twice. It may start the service for itself.
 *
 * Every operation may be called from any thread, before the start and after a close too. None
 * throws and none reports: what cannot be done returns false or a null pointer.
 */
class LogService
{
public:
    /** What a line of a user with a private device says beside time and message. */
    enum LogOption {
        LogThread = 1, ///< the thread's number and the mark of the main thread
        LogLevel = 2,  ///< the level, and the thread with it
    };
    Q_DECLARE_FLAGS(LogOptions, LogOption)

    /** What one user with a private device adds to its lines. */
    enum OutFormatOption {
        OutUserName = 1, ///< the user's name after the time
    };
    Q_DECLARE_FLAGS(OutFormatOptions, OutFormatOption)

    /**
     * The one service of the process, made by the first call; never null, not yet started.
     *
     * Not to be asked for before main() begins: the library's own constants are made by then only.
     */
    static QSharedPointer<LogService> GetLogService();

    /**
     * Starts the service: makes the queue and the service's own user, starts the writer thread,
     * and lets old log files be deleted once, on a thread of its own.
     *
     * A started service only takes the new @p options.
     */
    virtual void initLogService(LogOptions options) = 0;

    /**
     * Applies levels, users, console and logger switch of @p config, in this order. Nothing
     * happens for null or before the start. The object is read during the call only.
     */
    virtual void configureLogService(LoggerConfigInterface* config) = 0;

    /**
     * The logger of the user @p name, made disabled when it is new; the same object every time.
     * Names that differ in case or blanks are different users. Keep the object rather than asking
     * for each message.
     *
     * @return null before the start, and for every name once there are 64 users, the service's own
     *         among them.
     */
    virtual QSharedPointer<LoggerImpl> getLoggerObject(const QString& name) = 0;

    /**
     * The same for a user with a private @p device. Its lines go there alone, whatever the logger
     * switch, the console switch and the levels say; only the user's own switch counts. (The printf
     * form of Logger does not come that far when its level is off.)
     *
     * @param device      opened when the user is enabled (write only, text), closed when it is
     *                    disabled; shared with the service until the service is closed.
     * @param timeFormat  a QDateTime::toString() pattern; empty for "dd MMM yyyy hh:mm:ss.zzz".
     * @param options     what the lines show beside that.
     * @return a user that exists already is returned as it is, its device is not replaced.
     */
    virtual QSharedPointer<LoggerImpl> getLoggerObject(const QString& name,
                                                       QSharedPointer<QIODevice> device,
                                                       QString timeFormat,
                                                       OutFormatOptions options) = 0;

    /**
     * Switches the users without a private device on or off and opens or closes the common
     * devices with them; while console logging is on, the devices stay closed.
     *
     * @return false before the start.
     */
    virtual bool enableLogger(bool on) = 0;

    /**
     * Sends the one-call messages of LoggerMessage to the console instead of the log. Console and
     * common devices exclude each other: while this is on, the common devices are closed.
     *
     * @return false before the start.
     */
    virtual bool enableConsoleLog(bool on) = 0;

    virtual bool isLoggerEnabled() const = 0;
    virtual bool isConsoleLogEnabled() const = 0;

    /**
     * Adds a device that every user without a private one writes to. While the logger is enabled
     * it is opened (write only, text) if it is not open. Works before the start too; a close
     * forgets the devices.
     *
     * @return false when there are five already. Null takes a place and gets nothing.
     */
    virtual bool registerOutputDevice(QSharedPointer<QIODevice> device) = 0;

    // Each level's switch, off at the start and ignored before it.
    virtual void enableDebugOutput(bool on) = 0;
    virtual void enableInfoOutput(bool on) = 0;
    virtual void enableWarningOutput(bool on) = 0;
    virtual void enableErrorOutput(bool on) = 0;
    virtual bool isDebugOutputEnabled() const = 0;
    virtual bool isInfoOutputEnabled() const = 0;
    virtual bool isWarningOutputEnabled() const = 0;
    virtual bool isErrorOutputEnabled() const = 0;

    /**
     * Switches one user, and opens or closes its private device. Unknown names and the service's
     * own user are left alone.
     */
    virtual void enableUserOutput(const QString& name, bool enable) = 0;

    /** Whether the user is switched on; false for the service's own user and unknown names. */
    virtual bool isUserEnabled(const QString& name) = 0;

    /** Whether there is such a user; true for the service's own too. */
    virtual bool isUserExists(const QString& name) = 0;

    /** The users that write to the common devices, oldest first, without the service's own. */
    virtual QStringList getUserList() const = 0;

    /** Those of getUserList() that are switched on. */
    virtual QStringList getEnabledUserList() const = 0;

    virtual ~LogService();
};

Q_DECLARE_OPERATORS_FOR_FLAGS(LogService::LogOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(LogService::OutFormatOptions)

/**
 * What one user logs through.
 *
 * Kept and used from any thread as long as the caller likes; while the service is closed it
 * refuses everything. The log operations return true when the message was queued; a queued
 * message is written unless its devices are closed before its turn comes.
 */
class Logger
{
public:
    // A message in the form of QString::asprintf(). It asks the query of its level first, and when
    // level or user is off it costs next to nothing: the text is not built then. Formats and texts
    // are UTF-8.
    virtual bool logDebug(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3) = 0;
    virtual bool logInfo(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3) = 0;
    virtual bool logWarning(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3) = 0;
    virtual bool logError(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3) = 0;

    // A message about a connection and a device. An identifier that is not the default one is
    // named in front of the text. The query is not asked: the service decides alone.
    virtual bool logDebug(const QString& text, const CID& cid, const DCID& dcid) = 0;
    virtual bool logInfo(const QString& text, const CID& cid, const DCID& dcid) = 0;
    virtual bool logWarning(const QString& text, const CID& cid, const DCID& dcid) = 0;
    virtual bool logError(const QString& text, const CID& cid, const DCID& dcid) = 0;

    // Whether both the level and the user are switched on.
    virtual bool isDebugOutputEnabled() const = 0;
    virtual bool isInfoOutputEnabled() const = 0;
    virtual bool isWarningOutputEnabled() const = 0;
    virtual bool isErrorOutputEnabled() const = 0;

    virtual ~Logger();
};

} // namespace PkLogger

#pragma GCC visibility pop

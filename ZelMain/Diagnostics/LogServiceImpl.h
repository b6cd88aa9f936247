#pragma once

#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/LoggerConfigInterface.h"
#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"

#include <QObject>
#include <QVector>

#include <atomic>
#include <chrono>
#include <memory>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

struct UserEntry;

/**
 * The log service: a table of users, a ring of 10 000 messages, and a thread that empties it.
 *
 * QObject is the last base, so there is no meta-object of its own.
 */
class LogServiceImpl : public LogService,
                       public LoggerDataAccessInterface,
                       public LoggerDataLogInterface,
                       public QObject
{
public:
    /** The name of the service's own user, which has number 0 and never logs. */
    static const QString LOGGER_USER_ID;
    /** How lines show the time: "21 Nov 2026 10:21:45.123". */
    static const QString DEFAULT_TIME_FORMAT;

    /** The object behind LogService::GetLogService(). */
    static QSharedPointer<LogServiceImpl> getLogServicePointer();

    /**
     * Closes the service. A derived class closes in its own destructor already, since the writer
     * calls a virtual operation.
     */
    ~LogServiceImpl() override;

    LogServiceImpl(const LogServiceImpl&) = delete;
    LogServiceImpl& operator=(const LogServiceImpl&) = delete;

    void initLogService(LogOptions options) override;
    void configureLogService(LoggerConfigInterface* config) override;
    QSharedPointer<LoggerImpl> getLoggerObject(const QString& name) override;
    QSharedPointer<LoggerImpl> getLoggerObject(const QString& name,
                                               QSharedPointer<QIODevice> device, QString timeFormat,
                                               OutFormatOptions options) override;
    bool enableLogger(bool on) override;
    bool enableConsoleLog(bool on) override;
    bool isLoggerEnabled() const override;
    bool isConsoleLogEnabled() const override;
    bool registerOutputDevice(QSharedPointer<QIODevice> device) override;
    void enableDebugOutput(bool on) override;
    void enableInfoOutput(bool on) override;
    void enableWarningOutput(bool on) override;
    void enableErrorOutput(bool on) override;
    bool isDebugOutputEnabled() const override;
    bool isInfoOutputEnabled() const override;
    bool isWarningOutputEnabled() const override;
    bool isErrorOutputEnabled() const override;
    void enableUserOutput(const QString& name, bool enable) override;
    bool isUserEnabled(const QString& name) override;
    bool isUserExists(const QString& name) override;
    QStringList getUserList() const override;
    QStringList getEnabledUserList() const override;

    bool logString(int handle, LOGLEVEL level, const QString& text) override;
    bool logString(int handle, LOGLEVEL level, const char* text) override;

    /** For the writer thread; from any other thread it does nothing and returns false. */
    bool writeData() override;

    /** Switches one level on or off; ignored before the start. */
    void setLevelMask(LOGLEVEL level, bool on);

    /** Whether @p handle is the number of a user that is switched on; false for the service's. */
    bool isHandleEnabled(int handle) const;

    /**
     * Writes what is queued, stops the threads, closes the devices, and forgets users and devices.
     *
     * Waits up to 30 seconds for the writer and as long for the cleanup. A writer that has not
     * finished then is terminated, a cleanup is asked to stop before its next file; either gets 3
     * seconds more and is left to itself after them. A service that is not started stays as it is,
     * the devices registered so far included.
     */
    void closeLogger();

    /**
     * Whether messages of @p level are wanted. Needs no service, so a logger learns for the price
     * of one load that a message is not wanted; the levels are off while the service is closed.
     */
    static bool isLevelEnabled(LOGLEVEL level)
    {
        // relaxed: a switch of its own, nothing else hangs on it.
        return (m_levelMask.load(std::memory_order_relaxed) & (1U << level)) != 0;
    }

protected:
    /**
     * @param patience  how long closeLogger() waits for a thread to end.
     * @param patienceAfterTermination  how long it waits for one that it had to stop.
     */
    explicit LogServiceImpl(
        std::chrono::milliseconds patience = std::chrono::seconds(30),
        std::chrono::milliseconds patienceAfterTermination = std::chrono::seconds(3));

private:
    class DeviceCall;
    struct State;

    // Under the lock:
    int indexOf(const QString& name) const;
    const UserEntry* switchableUser(const QString& name) const;
    bool isEnabled(const UserEntry* user) const;
    void setEnabled(const UserEntry* user, bool enable);
    bool isAcceptable(int handle, LOGLEVEL level) const;

    template <typename Condition>
    QStringList userNames(Condition condition) const;
    void applyUserStates(const QVector<LoggerConfigInterface::UserState>& states);
    bool flip(std::atomic<bool>& flag, bool on);

    bool prepareSession();
    bool beginClosing();
    const QIODevice* stopWriter();
    void stopCleanup();
    void endSession(const QIODevice* busy);
    void forgetSession();

    static void beforeFork();
    static void afterForkInParent();
    static void afterForkInChild();

    static std::atomic<quint32> m_levelMask; // bit n: level n is written

    const std::unique_ptr<State> m_state;
};

} // namespace PkLogger

#pragma GCC visibility pop

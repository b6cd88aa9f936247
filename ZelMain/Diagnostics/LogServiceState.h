#pragma once

#include "ZelMain/Diagnostics/LocalClock.h"
#include "ZelMain/Diagnostics/LogFilesCleanupThread.h"
#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/LogSession.h"
#include "ZelMain/Diagnostics/LoggerWriterThread.h"
#include "ZelMain/Diagnostics/ServiceLock.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

namespace PkLogger {

/** What LogServiceImpl keeps to itself. */
struct LogServiceImpl::State
{
    bool isRunning() const { return isInitialised && !isClosing; }
    std::shared_ptr<LogSession> currentSession();

    std::chrono::milliseconds patience;
    std::chrono::milliseconds patienceAfterTermination;

    // Held for moments only, and never while a device or a thread is waited for: whoever logs
    // waits for it.
    mutable ServiceLock lock;

    // Guarded by the lock.
    bool isInitialised = false;
    bool isClosing = false;
    std::shared_ptr<LogSession> session = std::make_shared<LogSession>();
    LocalClock clock;

    // Changed under the lock, read without: switches that nothing else hangs on, so relaxed loads
    // and stores do.
    std::atomic<bool> isLoggerEnabled{false};
    std::atomic<bool> isConsoleLogEnabled{false};
    std::atomic<int> options{0};
    std::atomic<quint64> enabledUsers{0}; // bit n: user n is enabled; bit 0 never

    // Held for the whole of a start or a close, and taken before the lock.
    std::recursive_mutex startStop;

    std::unique_ptr<LoggerWriterThread> writer;     // changed under both, read under either
    std::unique_ptr<LogFilesCleanupThread> cleanup; // guarded by startStop
};

/** A call of a thread that opens or closes devices: it has the devices to itself. */
class LogServiceImpl::DeviceCall
{
public:
    explicit DeviceCall(State& state);
    ~DeviceCall();
    DeviceCall(const DeviceCall&) = delete;
    DeviceCall& operator=(const DeviceCall&) = delete;

    LogSession& session() const { return *m_session; }

private:
    std::shared_ptr<LogSession> m_session;
};

} // namespace PkLogger

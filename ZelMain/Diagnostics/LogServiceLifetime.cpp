// The service's start and close, and what becomes of it when the process ends or forks.

#include "ZelMain/Diagnostics/ApplicationThread.h"
#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/LogServiceState.h"

#include <QDateTime>
#include <QDir>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#include <pthread.h>

namespace PkLogger {

namespace {

constexpr auto RELAXED = std::memory_order_relaxed;

constexpr unsigned int CLEANUP_MONTHS = 1;

using Guard = std::lock_guard<ServiceLock>;

bool waitFor(QThread& thread, std::chrono::milliseconds time)
{
    const bool isOver = thread.wait(static_cast<unsigned long>(time.count()));
    tellSanitizerOfAcquire(&thread);
    return isOver;
}

// The session that the running writer thread was started for. A thread that was given up finds its
// own session here as long as it lives, never a later one.
thread_local LogSession* writersSession = nullptr;

std::atomic<bool> isExitHandlerPending{false};

void closeAtExit()
{
    isExitHandlerPending.store(false, RELAXED);
    LogServiceImpl::getLogServicePointer()->closeLogger();
}

// Has Qt make the tables that dates, file names and name filters need.
void makeQtsTables()
{
    QDateTime::currentDateTime().toString(LogServiceImpl::DEFAULT_TIME_FORMAT);
    QDir::root().entryList({QStringLiteral("*log*.txt")}); // a filter of "*" would match unseen
}

// What is queued when the program ends is still written. Exit handlers and destructors of statics
// run last made first, so the tables that the service's threads use are made before the handler.
void closeWhenProgramEnds()
{
    if (isExitHandlerPending.exchange(true, RELAXED)) {
        return;
    }
    makeQtsTables();
    std::atexit(closeAtExit);
}

// Threads that could not be stopped, and what they may still touch when they come back.
struct Remains
{
    std::unique_ptr<QThread> thread;
    std::shared_ptr<LogSession> session;
    Remains* next;
};
Remains* remains = nullptr; // changed during starts, closes and forks only

void keepForGood(std::unique_ptr<QThread> thread, std::shared_ptr<LogSession> session)
{
    remains = new Remains{std::move(thread), std::move(session), remains};
}

} // namespace

QSharedPointer<LogServiceImpl> LogServiceImpl::getLogServicePointer()
{
    // Never destroyed: static destructors and threads that outlive main may still ask for it.
    static const auto* const service = [] {
        pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
        return new QSharedPointer<LogServiceImpl>(new LogServiceImpl);
    }();
    return *service;
}

LogServiceImpl::LogServiceImpl(std::chrono::milliseconds patience,
                               std::chrono::milliseconds patienceAfterTermination)
    : m_state(std::make_unique<State>())
{
    m_state->patience = patience;
    m_state->patienceAfterTermination = patienceAfterTermination;
    m_state->cleanup = std::make_unique<LogFilesCleanupThread>(CLEANUP_MONTHS, nullptr);
    watchApplicationThread();
}

LogServiceImpl::~LogServiceImpl()
{
    closeLogger();
}

// --- Start -----------------------------------------------------------------------------------

void LogServiceImpl::initLogService(LogOptions options)
{
    m_state->options.store(static_cast<int>(options), RELAXED);
    {
        // A started service is not held up by a close under way.
        const Guard guard(m_state->lock);
        if (m_state->isInitialised) {
            return;
        }
    }
    const std::lock_guard startStop(m_state->startStop);
    if (!prepareSession()) {
        return;
    }
    closeWhenProgramEnds();
    m_state->writer->start(QThread::LowestPriority);
    m_state->cleanup->start(QThread::LowestPriority);
}

bool LogServiceImpl::prepareSession()
{
    const Guard guard(m_state->lock);
    if (m_state->isInitialised) {
        return false;
    }
    m_state->session->queue.allocate();
    m_state->isInitialised = true;
    getLoggerObject(LOGGER_USER_ID);        // becomes user 0
    enableUserOutput(LOGGER_USER_ID, true); // which cannot be switched, so it stays off
    if (!m_state->writer) {
        m_state->writer = std::make_unique<LoggerWriterThread>(this);
    }
    if (!m_state->cleanup) {
        m_state->cleanup = std::make_unique<LogFilesCleanupThread>(CLEANUP_MONTHS, nullptr);
    }
    return true;
}

bool LogServiceImpl::writeData()
{
    if (writersSession == nullptr) {
        const Guard guard(m_state->lock);
        if (QThread::currentThread() != m_state->writer.get()) {
            return false;
        }
        writersSession = m_state->session.get();
    }
    return writersSession->writeNext(m_state->options);
}

// --- Close -----------------------------------------------------------------------------------

void LogServiceImpl::closeLogger()
{
    if (writersSession != nullptr) {
        return; // a device that closes the service while it is written to would wait for itself
    }
    const std::lock_guard startStop(m_state->startStop);
    if (!beginClosing()) {
        return;
    }
    const QIODevice* const busy = stopWriter();
    stopCleanup();
    endSession(busy);
}

bool LogServiceImpl::beginClosing()
{
    const Guard guard(m_state->lock);
    if (!m_state->isRunning()) {
        return false;
    }
    logString(0, LOG_INFO, "Logger is about to exit..."); // refused: user 0 is off
    m_state->isLoggerEnabled.store(false, RELAXED);
    m_state->enabledUsers.store(0, RELAXED);
    m_state->isClosing = true;
    return true;
}

/** @return the device that the writer had to be torn from, null when it ended by itself. */
const QIODevice* LogServiceImpl::stopWriter()
{
    LoggerWriterThread& writer = *m_state->writer;
    if (writer.isRunning()) {
        writer.setPriority(QThread::HighPriority);
    }
    m_state->session->queue.stop();
    if (waitFor(writer, m_state->patience)) {
        return nullptr;
    }
    const QIODevice* const busy = m_state->session->gate.close();
    writer.terminate();
    waitFor(writer, m_state->patienceAfterTermination);
    const Guard guard(m_state->lock);
    keepForGood(std::move(m_state->writer), m_state->session);
    return busy;
}

void LogServiceImpl::stopCleanup()
{
    LogFilesCleanupThread& cleanup = *m_state->cleanup;
    if (!waitFor(cleanup, m_state->patience)) {
        cleanup.requestInterruption(); // it does not let itself be terminated
    }
    if (!waitFor(cleanup, m_state->patienceAfterTermination)) { // at once when it is over
        keepForGood(std::move(m_state->cleanup), nullptr);
    }
}

void LogServiceImpl::endSession(const QIODevice* busy)
{
    const std::shared_ptr<LogSession> session = m_state->session;
    const bool isInside = session->gate.enterWithin(m_state->patience);
    const QIODevice* const heldByCall = session->gate.close();
    {
        const Guard guard(m_state->lock);
        forgetSession();
    }
    // A device that somebody is stuck in stays as it is: closing it would get stuck as well.
    session->closeAllDevices(busy != nullptr ? busy : heldByCall);
    if (isInside) {
        session->gate.leave();
    } else {
        keepForGood(nullptr, session);
    }
}

void LogServiceImpl::forgetSession()
{
    m_state->session = std::make_shared<LogSession>();
    m_state->isInitialised = false;
    m_state->isClosing = false;
    m_state->isLoggerEnabled.store(false, RELAXED);
    m_state->enabledUsers.store(0, RELAXED);
    m_levelMask.store(0, RELAXED);
}

// --- Fork ------------------------------------------------------------------------------------

// The lock is taken over the fork, so that the child finds the state whole.
void LogServiceImpl::beforeFork()
{
    getLogServicePointer()->m_state->lock.lock();
}

void LogServiceImpl::afterForkInParent()
{
    getLogServicePointer()->m_state->lock.unlock();
}

// The child has neither the threads nor a right to the lines in the devices' buffers, which the
// parent writes. What belongs to the parent is kept untouched, and the child may start anew.
void LogServiceImpl::afterForkInChild()
{
    State& state = *getLogServicePointer()->m_state;
    new (&state.startStop) std::recursive_mutex; // perhaps held by a thread that is not here
    keepForGood(std::move(state.writer), state.session);
    keepForGood(std::move(state.cleanup), nullptr);
    getLogServicePointer()->forgetSession();
    state.lock.unlock();
}

} // namespace PkLogger

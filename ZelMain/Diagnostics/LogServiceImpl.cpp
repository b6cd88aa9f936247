#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include "ZelMain/Diagnostics/ApplicationThread.h"
#include "ZelMain/Diagnostics/LogServiceState.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "ZelMain/Diagnostics/TimeText.h"

#include <QDateTime>
#include <QThread>

#include <algorithm>
#include <mutex>
#include <utility>

namespace PkLogger {

namespace {

constexpr auto RELAXED = std::memory_order_relaxed;

using Guard = std::lock_guard<ServiceLock>;

bool isLevel(LoggerDataLogInterface::LOGLEVEL level)
{
    return static_cast<unsigned>(level) <= LoggerDataLogInterface::LOG_ERROR;
}

} // namespace

const QString LogServiceImpl::LOGGER_USER_ID = QStringLiteral("LOGGER");
const QString LogServiceImpl::DEFAULT_TIME_FORMAT = TimeText::defaultFormat();
std::atomic<quint32> LogServiceImpl::m_levelMask{0};

std::shared_ptr<LogSession> LogServiceImpl::State::currentSession()
{
    const Guard guard(lock);
    return session;
}

LogServiceImpl::DeviceCall::DeviceCall(State& state) : m_session(state.currentSession())
{
    while (!m_session->gate.enter(DeviceGate::Call)) {
        // The session was closed meanwhile: what the call is about is decided in the next one.
        const std::lock_guard closed(state.startStop);
        m_session = state.currentSession();
    }
}

LogServiceImpl::DeviceCall::~DeviceCall()
{
    m_session->gate.leave();
}

// --- Users -----------------------------------------------------------------------------------

QSharedPointer<LoggerImpl> LogServiceImpl::getLoggerObject(const QString& name)
{
    return getLoggerObject(name, {}, {}, {});
}

QSharedPointer<LoggerImpl> LogServiceImpl::getLoggerObject(const QString& name,
                                                           QSharedPointer<QIODevice> device,
                                                           QString timeFormat,
                                                           OutFormatOptions options)
{
    const Guard guard(m_state->lock);
    std::vector<UserEntry>& users = m_state->session->users;
    // A full table answers null for the names in it, too.
    if (!m_state->isRunning() || users.size() >= LogSession::MAX_USERS) {
        return {};
    }
    const int index = indexOf(name);
    if (index >= 0) {
        return users[static_cast<std::size_t>(index)].logger;
    }

    UserEntry user;
    user.name = name;
    user.logger = QSharedPointer<LoggerImpl>::create(getLogServicePointer().toWeakRef(),
                                                     static_cast<int>(users.size()));
    user.device = std::move(device);
    user.options = options;
    user.timeText = TimeText(timeFormat);
    user.needsExactTime = user.device && user.timeText.needsExactMoments();
    users.push_back(std::move(user));
    return users.back().logger;
}

int LogServiceImpl::indexOf(const QString& name) const
{
    const std::vector<UserEntry>& users = m_state->session->users;
    const auto found = std::find_if(users.begin(), users.end(),
                                    [&name](const UserEntry& user) { return user.name == name; });
    return found == users.end() ? -1 : static_cast<int>(found - users.begin());
}

const UserEntry* LogServiceImpl::switchableUser(const QString& name) const
{
    const int index = m_state->isRunning() ? indexOf(name) : -1;
    // The service's own user, number 0, cannot be switched and does not count as enabled.
    return index > 0 ? &m_state->session->users[static_cast<std::size_t>(index)] : nullptr;
}

bool LogServiceImpl::isEnabled(const UserEntry* user) const
{
    return user != nullptr &&
           isHandleEnabled(static_cast<int>(user - m_state->session->users.data()));
}

void LogServiceImpl::setEnabled(const UserEntry* user, bool enable)
{
    const quint64 bit = quint64(1) << (user - m_state->session->users.data());
    const quint64 users = m_state->enabledUsers.load(RELAXED);
    m_state->enabledUsers.store(enable ? users | bit : users & ~bit, RELAXED);
}

void LogServiceImpl::enableUserOutput(const QString& name, bool enable)
{
    {
        const Guard guard(m_state->lock);
        const UserEntry* const user = switchableUser(name);
        if (user == nullptr) {
            return;
        }
        if (!user->device) {
            setEnabled(user, enable);
            return;
        }
    }
    const DeviceCall call(*m_state);
    QIODevice* device = nullptr;
    {
        const Guard guard(m_state->lock);
        const UserEntry* const user = switchableUser(name);
        if (user == nullptr) {
            return;
        }
        setEnabled(user, enable);
        device = user->device.data();
    }
    if (device == nullptr) {
        return; // another user of this name, of a later start
    }
    if (!enable) {
        call.session().close(device);
    } else if (!device->isOpen()) {
        call.session().open(device);
    }
}

bool LogServiceImpl::isUserEnabled(const QString& name)
{
    const Guard guard(m_state->lock);
    return isEnabled(switchableUser(name));
}

bool LogServiceImpl::isUserExists(const QString& name)
{
    const Guard guard(m_state->lock);
    return indexOf(name) >= 0;
}

bool LogServiceImpl::isHandleEnabled(int handle) const
{
    // Without the lock, since every printf-form message asks this before it takes the lock anyway.
    return handle > 0 && handle < static_cast<int>(LogSession::MAX_USERS) &&
           (m_state->enabledUsers.load(RELAXED) >> handle & 1U) != 0;
}

QStringList LogServiceImpl::getUserList() const
{
    return userNames([](const UserEntry& /*user*/) { return true; });
}

QStringList LogServiceImpl::getEnabledUserList() const
{
    return userNames([this](const UserEntry& user) { return isEnabled(&user); });
}

template <typename Condition>
QStringList LogServiceImpl::userNames(Condition condition) const
{
    const Guard guard(m_state->lock);
    QStringList names;
    for (const UserEntry& user : m_state->session->users) {
        if (user.name != LOGGER_USER_ID && !user.device && condition(user)) {
            names.append(user.name);
        }
    }
    return names;
}

// --- Switches and devices --------------------------------------------------------------------

void LogServiceImpl::configureLogService(LoggerConfigInterface* config)
{
    if (config == nullptr) {
        return;
    }
    const DeviceCall call(*m_state); // all of the configuration is one call
    {
        const Guard guard(m_state->lock);
        if (!m_state->isRunning()) {
            return;
        }
    }
    enableDebugOutput(config->isDebugOutputEnabled());
    enableInfoOutput(config->isInfoOutputEnabled());
    enableWarningOutput(config->isWarningOutputEnabled());
    enableErrorOutput(config->isErrorOutputEnabled());
    applyUserStates(config->getUserStates());
    applyUserStates(config->getAdditionalUserStates());
    enableConsoleLog(config->isConsoleLogEnabled());
    enableLogger(config->isLoggerEnabled());
}

void LogServiceImpl::applyUserStates(const QVector<LoggerConfigInterface::UserState>& states)
{
    for (const LoggerConfigInterface::UserState& state : states) {
        if (state.name.isEmpty()) {
            continue;
        }
        getLoggerObject(state.name);
        enableUserOutput(state.name, state.enabled);
    }
}

bool LogServiceImpl::enableLogger(bool on)
{
    return flip(m_state->isLoggerEnabled, on);
}

bool LogServiceImpl::enableConsoleLog(bool on)
{
    return flip(m_state->isConsoleLogEnabled, on);
}

bool LogServiceImpl::flip(std::atomic<bool>& flag, bool on)
{
    const DeviceCall call(*m_state);
    bool devicesAreWanted = false;
    {
        const Guard guard(m_state->lock);
        if (!m_state->isRunning()) {
            return false;
        }
        if (flag.exchange(on, RELAXED) == on) {
            return true;
        }
        devicesAreWanted = isLoggerEnabled() && !isConsoleLogEnabled();
    }
    if (devicesAreWanted) {
        call.session().openCommonDevices();
    } else {
        call.session().closeCommonDevices();
    }
    return true;
}

bool LogServiceImpl::isLoggerEnabled() const
{
    return m_state->isLoggerEnabled.load(RELAXED);
}

bool LogServiceImpl::isConsoleLogEnabled() const
{
    return m_state->isConsoleLogEnabled.load(RELAXED);
}

bool LogServiceImpl::registerOutputDevice(QSharedPointer<QIODevice> device)
{
    const DeviceCall call(*m_state);
    std::vector<QSharedPointer<QIODevice>>& devices = call.session().devices;
    if (devices.size() >= LogSession::MAX_COMMON_DEVICES) {
        return false;
    }
    // Opened whether or not the console is on; the next change of a switch puts it right.
    if (isLoggerEnabled() && device && !device->isOpen()) {
        call.session().open(device.data());
    }
    devices.push_back(std::move(device));
    return true;
}

void LogServiceImpl::setLevelMask(LOGLEVEL level, bool on)
{
    const Guard guard(m_state->lock);
    if (!m_state->isRunning() || !isLevel(level)) {
        return;
    }
    const quint32 bit = 1U << level;
    const quint32 mask = m_levelMask.load(RELAXED);
    m_levelMask.store(on ? mask | bit : mask & ~bit, RELAXED);
}

void LogServiceImpl::enableDebugOutput(bool on)
{
    setLevelMask(LOG_DEBUG, on);
}

void LogServiceImpl::enableInfoOutput(bool on)
{
    setLevelMask(LOG_INFO, on);
}

void LogServiceImpl::enableWarningOutput(bool on)
{
    setLevelMask(LOG_WARNING, on);
}

void LogServiceImpl::enableErrorOutput(bool on)
{
    setLevelMask(LOG_ERROR, on);
}

bool LogServiceImpl::isDebugOutputEnabled() const
{
    return isLevelEnabled(LOG_DEBUG);
}

bool LogServiceImpl::isInfoOutputEnabled() const
{
    return isLevelEnabled(LOG_INFO);
}

bool LogServiceImpl::isWarningOutputEnabled() const
{
    return isLevelEnabled(LOG_WARNING);
}

bool LogServiceImpl::isErrorOutputEnabled() const
{
    return isLevelEnabled(LOG_ERROR);
}

// --- Messages --------------------------------------------------------------------------------

bool LogServiceImpl::logString(int handle, LOGLEVEL level, const QString& text)
{
    const Guard guard(m_state->lock);
    if (!isAcceptable(handle, level)) {
        return false;
    }
    LogSession& session = *m_state->session;
    const UserEntry& user = session.users[static_cast<std::size_t>(handle)];
    const qint64 now = QDateTime::currentMSecsSinceEpoch();

    LogEntry& entry = session.queue.freeSlot();
    entry.message = text;
    entry.time = user.needsExactTime ? LocalClock::exactlyAt(now) : m_state->clock.at(now);
    entry.handle = handle;
    entry.level = level;
    entry.thread = QThread::currentThread();
    entry.isFromMainThread = isApplicationThread(entry.thread);
    session.queue.push();
    return true;
}

bool LogServiceImpl::isAcceptable(int handle, LOGLEVEL level) const
{
    const LogSession& session = *m_state->session;
    if (session.queue.isFull() || !isHandleEnabled(handle) || !isLevel(level)) {
        return false;
    }
    // A private device gets every message of its user, whatever logger switch and levels say.
    return session.users[static_cast<std::size_t>(handle)].device ||
           (isLoggerEnabled() && isLevelEnabled(level));
}

bool LogServiceImpl::logString(int handle, LOGLEVEL level, const char* text)
{
    const Guard guard(m_state->lock);
    return logString(handle, level, QString::fromUtf8(text));
}

} // namespace PkLogger

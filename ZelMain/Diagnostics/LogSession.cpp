#include "ZelMain/Diagnostics/LogSession.h"

#include <QFileDevice>
#include <QThread>

#include <algorithm>

namespace PkLogger {

namespace {

constexpr QIODevice::OpenMode OPEN_MODE = QIODevice::WriteOnly | QIODevice::Text;

// Waking a sleeping thread costs the one that logs several microseconds, so the writer looks out
// for the next message some 50 µs before it sleeps.
constexpr int LOOKS_BEFORE_SLEEP = 100;

/** Opens to this file what Qt keeps for a thread's own code, which the writer's is. */
struct OwnThread : QThread
{
    using QThread::setTerminationEnabled;
};

/** While it lives, the writer may be terminated: it is inside a device, which may never return. */
class TerminationPoint
{
public:
    TerminationPoint() { OwnThread::setTerminationEnabled(true); }
    ~TerminationPoint() { OwnThread::setTerminationEnabled(false); }
    TerminationPoint(const TerminationPoint&) = delete;
    TerminationPoint& operator=(const TerminationPoint&) = delete;
};

} // namespace

LogSession::LogSession()
{
    users.reserve(MAX_USERS);
    devices.reserve(MAX_COMMON_DEVICES);
}

bool LogSession::writeNext(const std::atomic<int>& options)
{
    // A device or message handler that asks for the next line now would get this one again.
    if (m_isWriting || !waitForEntry()) {
        return false;
    }
    m_isWriting = true;
    LogEntry& entry = queue.front();
    UserEntry& user = users[static_cast<std::size_t>(entry.handle)];
    // relaxed: the options are a number of their own, nothing else hangs on them.
    const LogService::LogOptions lineOptions(QFlag(options.load(std::memory_order_relaxed)));
    const LogLine::Text text = m_line.getFormattedString(entry, user, lineOptions);
    const bool mayGoOn = write(text, user.device.data());
    queue.pop();
    m_isWriting = false;
    return mayGoOn;
}

bool LogSession::waitForEntry()
{
    for (int look = 0; look < LOOKS_BEFORE_SLEEP; ++look) {
        if (!queue.isEmpty()) {
            return true;
        }
        if (queue.isStopped()) {
            break; // a close waits, and on a busy machine the looks take many times as long
        }
        QThread::yieldCurrentThread();
    }
    return flushDevices() && queue.waitForEntry();
}

bool LogSession::write(const LogLine::Text& text, QIODevice* ownDevice)
{
    const GateVisit visit(gate, DeviceGate::Writer);
    if (!visit.isInside()) {
        return false;
    }
    if (ownDevice != nullptr) {
        return writeTo(ownDevice, text);
    }
    // A device may register another one meanwhile: there is room, so nothing moves.
    return std::all_of(devices.begin(), devices.end(),
                       [&](const QSharedPointer<QIODevice>& device) {
                           return !device || !device->isOpen() || writeTo(device.data(), text);
                       });
}

bool LogSession::writeTo(QIODevice* device, const LogLine::Text& text)
{
    if (!gate.use(device)) {
        return false;
    }
    {
        const TerminationPoint point;
        device->write(text.data, text.size); // what fails is lost, silently
    }
    if (std::find(m_unflushed.begin(), m_unflushed.end(), device) == m_unflushed.end()) {
        m_unflushed.push_back(device);
    }
    return true;
}

bool LogSession::flushDevices()
{
    if (m_unflushed.empty()) {
        return true;
    }
    const GateVisit visit(gate, DeviceGate::Writer);
    if (!visit.isInside()) {
        return false;
    }
    for (QIODevice* const device : m_unflushed) {
        auto* const file = qobject_cast<QFileDevice*>(device);
        if (file == nullptr || !file->isOpen()) {
            continue;
        }
        if (!gate.use(file)) {
            return false;
        }
        const TerminationPoint point;
        file->flush();
    }
    m_unflushed.clear();
    return true;
}

void LogSession::openCommonDevices()
{
    for (const QSharedPointer<QIODevice>& device : devices) {
        open(device.data());
    }
}

void LogSession::closeCommonDevices()
{
    for (const QSharedPointer<QIODevice>& device : devices) {
        close(device.data());
    }
}

void LogSession::open(QIODevice* device)
{
    if (device != nullptr && gate.use(device)) {
        device->open(OPEN_MODE);
    }
}

void LogSession::close(QIODevice* device)
{
    if (device != nullptr && gate.use(device)) {
        device->close();
    }
}

void LogSession::closeAllDevices(const QIODevice* busy)
{
    const auto closeUnlessBusy = [busy](const QSharedPointer<QIODevice>& device) {
        if (device && device != busy) {
            device->close();
        }
    };
    std::for_each(devices.begin(), devices.end(), closeUnlessBusy);
    for (const UserEntry& user : users) {
        closeUnlessBusy(user.device);
    }
}

} // namespace PkLogger

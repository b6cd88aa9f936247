// Hunts orders of starting, closing, switching, registering and logging after which a line is
// missing, stands twice, on a wrong device or out of order, or the service answers otherwise than a
// model of it; with devices that fail to open, fail to write, or are closed by their owner.
//
// The input is a program: a letter says what is done, the byte after it with what. Other bytes in
// the place of a letter mean nothing.
//
//     s start     c close       l logger switch    k console switch   v a level's switch
//     r register  u a user      p a user with a device of its own     e a user's switch
//     f many users              o the owner closes a device
//     m log       i log with identifiers           h log by number    g one-call message
//     w the next message is logged by another thread                  b many log by two threads

#include "fuzz/FuzzTarget.h"

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"
#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "ZelMain/Diagnostics/LoggerMessage.h"

#include <QIODevice>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

using FuzzTarget::require;
using PkLogger::LoggerDataLogInterface;
using PkLogger::LoggerImpl;
using PkLogger::LoggerMessage;
using PkLogger::LogService;
using PkLogger::LogServiceImpl;

namespace {

constexpr int MAX_STEPS = 200;
constexpr int LEVELS = 4;
constexpr int NAMES = 5;
constexpr int DEVICES = 6;
constexpr std::size_t MAX_USERS = 64;
constexpr std::size_t MAX_COMMON_DEVICES = 5;
constexpr int LINES_OF_A_BURST = 4; // of each thread

std::atomic<int> consoleLines{0};

void countConsoleLines(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type == QtDebugMsg && text.contains(QLatin1Char('<'))) {
        ++consoleLines;
    }
}

// --- Devices ---------------------------------------------------------------------------------

class Device : public QIODevice
{
public:
    enum Kind { SOUND, FAILS_TO_OPEN, FAILS_TO_WRITE };

    explicit Device(Kind kind) : m_kind(kind) {}

    bool open(OpenMode mode) override
    {
        return m_kind != FAILS_TO_OPEN && QIODevice::open(mode | Unbuffered);
    }

    bool isSequential() const override { return true; }

    /** The numbers of the messages that were written. */
    std::vector<int> messages() const
    {
        const std::lock_guard guard(m_mutex);
        return m_messages;
    }

    void waitFor(int message)
    {
        std::unique_lock lock(m_mutex);
        const bool hasCome = m_changed.wait_for(lock, std::chrono::seconds(60), [&] {
            return !m_messages.empty() && m_messages.back() == message;
        });
        require(hasCome, "what is queued is written");
    }

protected:
    qint64 readData(char* /*data*/, qint64 /*maxSize*/) override { return -1; }

    qint64 writeData(const char* data, qint64 size) override
    {
        if (m_kind == FAILS_TO_WRITE) {
            return -1;
        }
        // A name with place markers moves the message away from the end of its line.
        const QByteArray line(data, static_cast<int>(size));
        require(line.endsWith('\n') && line.count('\n') == 1 && line.count('<') == 1,
                "one line comes at a time, and whole");
        const int start = line.indexOf('<') + 1;
        const int message = line.mid(start, line.indexOf('>') - start).toInt();
        const std::lock_guard guard(m_mutex);
        m_messages.push_back(message);
        m_changed.notify_all();
        return size;
    }

private:
    const Kind m_kind;
    mutable std::mutex m_mutex; // guards the messages
    std::condition_variable m_changed;
    std::vector<int> m_messages;
};

/** A device, and what the model knows of it. */
struct ModelDevice
{
    explicit ModelDevice(Device::Kind itsKind) : real(new Device(itsKind)), kind(itsKind) {}

    void open() { isOpen = isOpen || kind != Device::FAILS_TO_OPEN; }

    QSharedPointer<Device> real;
    Device::Kind kind;
    bool isOpen = false;
    std::vector<std::vector<int>>
        expected; // each element in any order that keeps each thread's own
};

/** Where a message of a burst stands in its thread's own order: numbers of a thread are alike. */
bool isOfFirstThread(int message)
{
    return message % 2 == 0;
}

bool isMixOf(std::vector<int> actual, std::vector<int> expected)
{
    // What the two threads logged, one after the other.
    std::stable_partition(actual.begin(), actual.end(), isOfFirstThread);
    std::stable_partition(expected.begin(), expected.end(), isOfFirstThread);
    return actual == expected;
}

void checkLines(const ModelDevice& device)
{
    const std::vector<int> actual = device.real->messages();
    auto next = actual.begin();
    for (const std::vector<int>& group : device.expected) {
        require(actual.end() - next >= static_cast<std::ptrdiff_t>(group.size()),
                "no line is missing");
        const auto end = next + static_cast<std::ptrdiff_t>(group.size());
        require(isMixOf({next, end}, group), "lines stand in the order in which they were logged");
        next = end;
    }
    require(next == actual.end(), "no line is there that should not be");
}

// --- The model -------------------------------------------------------------------------------

struct ModelUser
{
    QString name;
    QSharedPointer<LoggerImpl> logger;
    ModelDevice* device = nullptr;
    bool isEnabled = false;
};

/** A logger that somebody keeps, perhaps longer than its user lives. */
struct KeptLogger
{
    QSharedPointer<LoggerImpl> logger;
    std::size_t handle;
};

/** The service and its model, which do the same and must stay alike. */
class Machine
{
public:
    Machine();
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void run(FuzzTarget::Input input);

private:
    using Level = LoggerDataLogInterface::LOGLEVEL;

    void step(char what, int with);
    void check();

    void start(int options);
    void close();
    void switchLogger(bool on);
    void switchConsole(bool on);
    void commonDevicesFollow();
    void switchLevel(int level, bool on);
    void registerDevice(int index);
    void addUser(const QString& name);
    void addUserWithDevice(const QString& name, int index, int options);
    void addUser(const QString& name, const QSharedPointer<LoggerImpl>& logger,
                 ModelDevice* device);
    void addManyUsers(int count);
    void switchUser(const QString& name, bool on);
    void closeByOwner(int index);
    void logByLogger(int with, bool hasIdentifiers);
    void logByHandle(int handle, int level);
    void logInOneCall(int type, const QString& name);
    void logBurst(int with);

    ModelDevice* deviceAt(int index);
    ModelUser* userNamed(const QString& name);
    bool isAccepted(std::size_t handle, int level) const;
    void expectLines(std::size_t handle, const std::vector<int>& messages);
    void waitUntilWritten();
    template <typename Log>
    bool byChosenThread(Log log);
    QString nextMessage();

    const QSharedPointer<LogServiceImpl> m_service = LogServiceImpl::getLogServicePointer();

    bool m_isStarted = false;
    bool m_isLoggerOn = false;
    bool m_isConsoleOn = false;
    int m_levels = 0;
    std::vector<ModelUser> m_users;
    std::vector<ModelDevice*> m_common; // null is a device too

    std::vector<KeptLogger> m_kept;
    std::vector<std::unique_ptr<ModelDevice>> m_devices;
    // Its user is always on, so when its line stands, all lines before it do.
    ModelDevice m_probe{Device::SOUND};
    QSharedPointer<LoggerImpl> m_probeLogger;
    bool m_hasUnwritten = false;
    bool m_usesOtherThread = false;
    int m_lastMessage = 0;
    int m_consoleLines = 0;
};

QString nameAt(int number)
{
    // The last one is the service's own, which cannot be switched.
    static const std::array<QString, NAMES> NAME = {
        QStringLiteral("DATABASE       "), QStringLiteral("DATABASE"), QStringLiteral("ALERTS"),
        QStringLiteral("%1"), QStringLiteral("LOGGER")};
    return NAME[static_cast<std::size_t>(number % NAMES)];
}

Machine::Machine()
{
    const std::array<Device::Kind, DEVICES - 1> kinds = {
        Device::SOUND, Device::SOUND, Device::FAILS_TO_OPEN, Device::FAILS_TO_WRITE, Device::SOUND};
    for (const Device::Kind kind : kinds) {
        m_devices.push_back(std::make_unique<ModelDevice>(kind));
    }
    m_devices.push_back(nullptr);
    // One that its owner has opened already.
    m_devices[4]->real->open(QIODevice::WriteOnly);
    m_devices[4]->open();
    consoleLines = 0;
}

// Leaves the service as the next one expects it. The console switch outlives a close, and so do
// devices that were registered without a start.
Machine::~Machine()
{
    if (m_isConsoleOn || !m_common.empty()) {
        start(0);
        switchConsole(false);
    }
    close();
}

void Machine::run(FuzzTarget::Input input)
{
    for (int steps = 0; steps < MAX_STEPS && !input.isEmpty(); ++steps) {
        const char what = static_cast<char>(input.takeByte());
        step(what, input.takeByte());
        check();
    }
}

void Machine::step(char what, int with)
{
    const bool on = (with & 1) != 0;
    switch (what) {
    case 's':
        return start(with & 3);
    case 'c':
        return close();
    case 'l':
        return switchLogger(on);
    case 'k':
        return switchConsole(on);
    case 'v':
        return switchLevel(with / 2 % LEVELS, on);
    case 'r':
        return registerDevice(with % DEVICES);
    case 'u':
        return addUser(nameAt(with));
    case 'p':
        return addUserWithDevice(nameAt(with), with / NAMES % DEVICES, with & 1);
    case 'e':
        return switchUser(nameAt(with / 2), on);
    case 'f':
        return addManyUsers(with % 70);
    case 'o':
        return closeByOwner(with % DEVICES);
    case 'm':
        return logByLogger(with, false);
    case 'i':
        return logByLogger(with, true);
    case 'h':
        return logByHandle(with / LEVELS - 1, with % LEVELS);
    case 'g':
        return logInOneCall(with % LEVELS, nameAt(with / LEVELS));
    case 'w':
        m_usesOtherThread = on;
        return;
    case 'b':
        return logBurst(with);
    default:
        return;
    }
}

// What can be asked agrees at every moment.
void Machine::check()
{
    require(m_service->isLoggerEnabled() == m_isLoggerOn, "the logger switch is told");
    require(m_service->isConsoleLogEnabled() == m_isConsoleOn, "the console switch is told");
    const int levels =
        int(m_service->isDebugOutputEnabled()) | int(m_service->isInfoOutputEnabled()) << 1 |
        int(m_service->isWarningOutputEnabled()) << 2 | int(m_service->isErrorOutputEnabled()) << 3;
    require(levels == m_levels, "the levels' switches are told");
    QStringList names;
    QStringList enabledNames;
    for (std::size_t i = 1; i < m_users.size(); ++i) {
        const ModelUser& user = m_users[i];
        require(m_service->isHandleEnabled(static_cast<int>(i)) == user.isEnabled,
                "the users' switches are told");
        if (user.device == nullptr) {
            names += user.name;
            enabledNames += user.isEnabled ? QStringList(user.name) : QStringList();
        }
    }
    require(m_service->getUserList() == names, "users without a device are listed");
    require(m_service->getEnabledUserList() == enabledNames, "those that are on are listed");
    require(m_service->isUserExists(QStringLiteral("LOGGER")) == m_isStarted,
            "a started service has its own user");
    for (const auto& device : m_devices) {
        require(!device || device->real->isOpen() == device->isOpen,
                "devices are open when they are wanted");
    }
    require(consoleLines == m_consoleLines, "the console gets its lines");
}

void Machine::start(int options)
{
    m_service->initLogService(LogService::LogOptions(QFlag(options)));
    if (m_isStarted) {
        return;
    }
    m_isStarted = true;
    m_users.push_back({QStringLiteral("LOGGER"), {}, nullptr, false});
    const QString probe = QStringLiteral("the probe");
    m_probeLogger = m_service->getLoggerObject(probe, m_probe.real, {}, {});
    m_users.push_back({probe, m_probeLogger, &m_probe, false});
    switchUser(probe, true);
}

void Machine::close()
{
    m_service->closeLogger(); // writes what is queued
    if (!m_isStarted) {
        return;
    }
    for (ModelDevice* const device : m_common) {
        if (device != nullptr) {
            device->isOpen = false;
        }
    }
    for (const ModelUser& user : m_users) {
        if (user.device != nullptr) {
            user.device->isOpen = false;
        }
    }
    m_isStarted = m_isLoggerOn = m_hasUnwritten = false;
    m_levels = 0;
    m_users.clear();
    m_common.clear();
    for (const auto& device : m_devices) {
        if (device) {
            checkLines(*device);
        }
    }
}

void Machine::switchLogger(bool on)
{
    if (m_isLoggerOn != on) {
        waitUntilWritten();
    }
    require(m_service->enableLogger(on) == m_isStarted, "a started service is switched");
    if (m_isStarted && m_isLoggerOn != on) {
        m_isLoggerOn = on;
        commonDevicesFollow();
    }
}

void Machine::switchConsole(bool on)
{
    if (m_isConsoleOn != on) {
        waitUntilWritten();
    }
    require(m_service->enableConsoleLog(on) == m_isStarted, "a started service is switched");
    if (m_isStarted && m_isConsoleOn != on) {
        m_isConsoleOn = on;
        commonDevicesFollow();
    }
}

void Machine::commonDevicesFollow()
{
    for (ModelDevice* const device : m_common) {
        if (device != nullptr && m_isLoggerOn && !m_isConsoleOn) {
            device->open();
        } else if (device != nullptr) {
            device->isOpen = false;
        }
    }
}

void Machine::switchLevel(int level, bool on)
{
    m_service->setLevelMask(static_cast<Level>(level), on);
    if (m_isStarted) {
        m_levels = on ? m_levels | 1 << level : m_levels & ~(1 << level);
    }
}

void Machine::registerDevice(int index)
{
    waitUntilWritten();
    ModelDevice* const device = deviceAt(index);
    const bool isTaken = m_common.size() < MAX_COMMON_DEVICES;
    const QSharedPointer<QIODevice> real = device == nullptr ? nullptr : device->real;
    require(m_service->registerOutputDevice(real) == isTaken, "five common devices are taken");
    if (!isTaken) {
        return;
    }
    m_common.push_back(device);
    if (device != nullptr && m_isLoggerOn) {
        device->open();
    }
}

void Machine::addUser(const QString& name)
{
    addUser(name, m_service->getLoggerObject(name), nullptr);
}

void Machine::addUserWithDevice(const QString& name, int index, int options)
{
    ModelDevice* const device = deviceAt(index);
    const QSharedPointer<QIODevice> real = device == nullptr ? nullptr : device->real;
    addUser(name,
            m_service->getLoggerObject(name, real, QStringLiteral("hh:mm"),
                                       LogService::OutFormatOptions(QFlag(options))),
            device);
}

void Machine::addUser(const QString& name, const QSharedPointer<LoggerImpl>& logger,
                      ModelDevice* device)
{
    if (!m_isStarted || m_users.size() >= MAX_USERS) {
        require(logger.isNull(), "without a start or a place there is no user");
        return;
    }
    require(!logger.isNull(), "a user has a logger");
    ModelUser* const user = userNamed(name);
    if (user == nullptr) {
        m_users.push_back({name, logger, device, false});
    } else if (user->logger.isNull()) {
        user->logger = logger; // the service's own
    } else {
        require(user->logger == logger, "a user keeps its logger");
    }
    m_kept.push_back({logger, static_cast<std::size_t>(userNamed(name) - m_users.data())});
}

void Machine::addManyUsers(int count)
{
    for (int i = 0; i < count; ++i) {
        addUser(QString::number(i));
    }
}

void Machine::switchUser(const QString& name, bool on)
{
    ModelUser* const user = userNamed(name);
    if (user != nullptr && user->device != nullptr) {
        waitUntilWritten();
    }
    m_service->enableUserOutput(name, on);
    if (user == nullptr || user == m_users.data()) {
        return;
    }
    user->isEnabled = on;
    if (user->device != nullptr && on) {
        user->device->open();
    } else if (user->device != nullptr) {
        user->device->isOpen = false;
    }
}

void Machine::closeByOwner(int index)
{
    ModelDevice* const device = deviceAt(index);
    if (device != nullptr && device->isOpen) {
        waitUntilWritten();
        device->real->close();
        device->isOpen = false;
    }
}

void Machine::logByLogger(int with, bool hasIdentifiers)
{
    if (m_kept.empty()) {
        return;
    }
    const int level = with % LEVELS;
    const KeptLogger& kept = m_kept[static_cast<std::size_t>(with / LEVELS) % m_kept.size()];
    const QString text = nextMessage();
    const QByteArray utf8 = text.toUtf8();
    const bool isTaken = byChosenThread([&] {
        LoggerImpl& logger = *kept.logger;
        switch (level) {
        case 0:
            return hasIdentifiers ? logger.logDebug(text, CID(), DCID())
                                  : logger.logDebug("%s", utf8.constData());
        case 1:
            return hasIdentifiers ? logger.logInfo(text, CID(), DCID())
                                  : logger.logInfo("%s", utf8.constData());
        case 2:
            return hasIdentifiers ? logger.logWarning(text, CID(), DCID())
                                  : logger.logWarning("%s", utf8.constData());
        default:
            return hasIdentifiers ? logger.logError(text, CID(), DCID())
                                  : logger.logError("%s", utf8.constData());
        }
    });
    // The printf form asks for the level first, also for a user with a device of its own.
    const bool isWanted = hasIdentifiers || (m_levels >> level & 1) != 0;
    require(isTaken == (isWanted && isAccepted(kept.handle, level)),
            "a logger tells what is queued");
    if (isTaken) {
        expectLines(kept.handle, {m_lastMessage});
    }
}

void Machine::logByHandle(int handle, int level)
{
    const QString text = nextMessage();
    const bool isTaken = byChosenThread(
        [&] { return m_service->logString(handle, static_cast<Level>(level), text); });
    const bool isAcceptable = handle >= 0 && isAccepted(static_cast<std::size_t>(handle), level);
    require(isTaken == isAcceptable, "the service tells what is queued");
    if (isTaken) {
        expectLines(static_cast<std::size_t>(handle), {m_lastMessage});
    }
}

void Machine::logInOneCall(int type, const QString& name)
{
    constexpr std::array<int, LEVELS> LEVEL = {3, 2, 0, 1};
    const int level = LEVEL[static_cast<std::size_t>(type)];
    const QString text = nextMessage();
    byChosenThread([&] {
        LoggerMessage::LogMessage(static_cast<LoggerMessage::LogType>(type), name,
                                  QStringLiteral("first"), text);
        return true;
    });
    const ModelUser* const user = userNamed(name);
    if (!m_isLoggerOn || user == nullptr || !user->isEnabled) {
        return;
    }
    const auto handle = static_cast<std::size_t>(user - m_users.data());
    if (m_isConsoleOn) {
        m_consoleLines += m_levels >> level & 1;
    } else if (m_users.size() < MAX_USERS && isAccepted(handle, level)) {
        expectLines(handle, {m_lastMessage}); // a full table has no logger for anybody
    }
}

void Machine::logBurst(int with)
{
    const int handle = with / LEVELS;
    const auto level = static_cast<Level>(with % LEVELS);
    const bool isTaken = isAccepted(static_cast<std::size_t>(handle), level);
    m_lastMessage += m_lastMessage % 2; // so that a message's number tells its thread
    const int first = m_lastMessage + 2;
    const auto log = [&](int start) {
        for (int message = start; message < first + 2 * LINES_OF_A_BURST; message += 2) {
            require(m_service->logString(handle, level, QStringLiteral("<%1>").arg(message)) ==
                        isTaken,
                    "the service tells what is queued");
        }
    };
    std::thread other(log, first + 1);
    log(first);
    other.join();
    m_lastMessage = first + 2 * LINES_OF_A_BURST;
    if (isTaken) {
        std::vector<int> messages;
        for (int message = first; message < m_lastMessage; ++message) {
            messages.push_back(message);
        }
        expectLines(static_cast<std::size_t>(handle), messages);
    }
}

ModelDevice* Machine::deviceAt(int index)
{
    return m_devices[static_cast<std::size_t>(index)].get();
}

ModelUser* Machine::userNamed(const QString& name)
{
    const auto found = std::find_if(m_users.begin(), m_users.end(),
                                    [&name](const ModelUser& user) { return user.name == name; });
    return found == m_users.end() ? nullptr : &*found;
}

bool Machine::isAccepted(std::size_t handle, int level) const
{
    if (handle >= m_users.size() || !m_users[handle].isEnabled) {
        return false;
    }
    return m_users[handle].device != nullptr || (m_isLoggerOn && (m_levels >> level & 1) != 0);
}

void Machine::expectLines(std::size_t handle, const std::vector<int>& messages)
{
    ModelDevice* const own = m_users[handle].device;
    const std::vector<ModelDevice*> targets = own != nullptr ? std::vector{own} : m_common;
    for (const auto& device : m_devices) {
        const auto times = std::count(targets.begin(), targets.end(), device.get());
        if (times == 0 || !device || !device->isOpen || device->kind != Device::SOUND) {
            continue;
        }
        std::vector<int> lines;
        for (const int message : messages) {
            lines.insert(lines.end(), static_cast<std::size_t>(times), message);
        }
        device->expected.push_back(lines);
    }
    m_hasUnwritten = true;
}

// What is queued goes to the devices as they are when its turn comes, so before they change the
// model waits.
void Machine::waitUntilWritten()
{
    if (!m_hasUnwritten) {
        return;
    }
    require(m_probeLogger->logError(nextMessage(), CID(), DCID()), "the probe is always taken");
    m_probe.real->waitFor(m_lastMessage);
    m_hasUnwritten = false;
}

template <typename Log>
bool Machine::byChosenThread(Log log)
{
    if (!std::exchange(m_usesOtherThread, false)) {
        return log();
    }
    bool result = false;
    std::thread other([&] { result = log(); });
    other.join();
    return result;
}

QString Machine::nextMessage()
{
    return QStringLiteral("<%1>").arg(++m_lastMessage);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const QtMessageHandler before = qInstallMessageHandler(countConsoleLines);
    Machine().run(FuzzTarget::Input(data, size));
    qInstallMessageHandler(before);
    return 0;
}

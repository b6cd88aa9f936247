#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include "ZelMain/Diagnostics/LoggerConfigInterface.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using PkLogger::LogServiceImpl;
using Level = PkLogger::LoggerDataLogInterface::LOGLEVEL;

namespace {

constexpr int THREADS = 8;

/** ZEL_STRESS=long asks for the whole; the short form belongs to the tests of every change. */
bool isLong()
{
    return qgetenv("ZEL_STRESS") == "long";
}

int messagesOfAThread()
{
    return isLong() ? 20000 : 1000;
}

int restarts()
{
    return isLong() ? 200 : 20;
}

/** What one thread offered, and what became of it. */
struct Offered
{
    std::vector<char> wasAccepted; // by the message's number
    int accepted = 0;
    int refused = 0;
};

/** Logs "THREAD NUMBER" messages, as fast as it can. */
void offer(int thread, Offered& offered, const std::function<bool(const QString&)>& log)
{
    const int count = messagesOfAThread();
    offered.wasAccepted.resize(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number) {
        const bool isAccepted = log(QStringLiteral("%1 %2").arg(thread).arg(number));
        offered.wasAccepted[static_cast<std::size_t>(number)] = isAccepted ? 1 : 0;
        ++(isAccepted ? offered.accepted : offered.refused);
        if (!isAccepted) {
            std::this_thread::yield(); // so that there is something to refuse and to accept
        }
    }
}

/** The messages of each thread as they stand in the files, read one after the other. */
using Found = std::vector<std::vector<int>>;

bool readInto(Found& found, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray content = file.readAll();
    if (!content.isEmpty() && !content.endsWith('\n')) {
        return false;
    }
    QList<QByteArray> lines = content.split('\n');
    lines.removeLast();
    for (const QByteArray& line : qAsConst(lines)) {
        const QList<QByteArray> words = line.split(' ');
        bool isNumber = false;
        const int number = words.last().toInt(&isNumber);
        const int thread = words.at(words.size() - 2).toInt();
        if (!isNumber || thread < 0 || thread >= THREADS) {
            return false;
        }
        found[static_cast<std::size_t>(thread)].push_back(number);
    }
    return true;
}

/** Runs its call over and over on a thread of its own until it goes. */
class Disturber
{
public:
    explicit Disturber(std::function<void(int)> disturb)
        : m_thread([this, disturb = std::move(disturb)] {
              for (int round = 0; !m_isOver; ++round) {
                  disturb(round);
              }
          })
    {
    }
    ~Disturber()
    {
        m_isOver = true;
        m_thread.join();
    }
    Disturber(const Disturber&) = delete;
    Disturber& operator=(const Disturber&) = delete;

private:
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

class SwitchingConfig : public PkLogger::LoggerConfigInterface
{
public:
    bool isLoggerEnabled() const override { return true; }
    bool isConsoleLogEnabled() const override { return false; }
    bool isDebugOutputEnabled() const override { return true; }
    bool isInfoOutputEnabled() const override { return true; }
    bool isWarningOutputEnabled() const override { return false; }
    bool isErrorOutputEnabled() const override { return true; }
    QVector<UserState> getAdditionalUserStates() const override { return {{"ADDITIONAL", true}}; }
    QVector<UserState> getUserStates() const override { return {{"SWITCHED", true}}; }
};

} // namespace

/** Many threads log while everything that can be switched is switched. */
class LogServiceStressTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void acceptedMessagesStandWhileUsersAndLevelsAreSwitched();
    void acceptedMessagesStandBesideDevicesThatComeAndGo();
    void acceptedMessagesStandOverRestarts();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QSharedPointer<QFile> newFile(const QString& name) const
    {
        return QSharedPointer<QFile>::create(path(name));
    }
    void logFromAllThreads(const std::function<bool(int, const QString&)>& log);
    void expectExactly(const QStringList& files);
    void expectInOrder(const QString& file);

    const QSharedPointer<LogServiceImpl> m_service = LogServiceImpl::getLogServicePointer();
    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<Offered> m_offered;
};

void LogServiceStressTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_offered.assign(THREADS, {});
    m_service->initLogService({});
}

void LogServiceStressTest::cleanup()
{
    m_service->enableConsoleLog(false);
    m_service->closeLogger();
}

void LogServiceStressTest::logFromAllThreads(const std::function<bool(int, const QString&)>& log)
{
    std::vector<std::thread> threads;
    threads.reserve(THREADS);
    for (int thread = 0; thread < THREADS; ++thread) {
        threads.emplace_back([this, thread, &log] {
            offer(thread, m_offered[static_cast<std::size_t>(thread)],
                  [thread, &log](const QString& text) { return log(thread, text); });
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/** Every accepted message stands in the files once, in its thread's order, and nothing else. */
void LogServiceStressTest::expectExactly(const QStringList& files)
{
    Found found(THREADS);
    for (const QString& file : files) {
        QVERIFY2(readInto(found, path(file)), qPrintable(file));
    }
    int total = 0;
    for (const Offered& offered : m_offered) {
        total += offered.accepted;
    }
    QVERIFY(total > 0);
    qInfo("%d of %d messages were accepted", total, THREADS * messagesOfAThread());
    for (std::size_t thread = 0; thread < THREADS; ++thread) {
        const Offered& offered = m_offered[thread];
        QCOMPARE(offered.accepted + offered.refused, messagesOfAThread());
        std::vector<int> accepted;
        for (int number = 0; number < messagesOfAThread(); ++number) {
            if (offered.wasAccepted[static_cast<std::size_t>(number)] != 0) {
                accepted.push_back(number);
            }
        }
        QCOMPARE(static_cast<int>(accepted.size()), offered.accepted);
        QVERIFY(found[thread] == accepted);
    }
}

/** A path that is opened and closed loses lines; those it has are accepted ones in their order. */
void LogServiceStressTest::expectInOrder(const QString& file)
{
    Found found(THREADS);
    QVERIFY(readInto(found, path(file)));
    for (std::size_t thread = 0; thread < THREADS; ++thread) {
        int last = -1;
        for (const int number : found[thread]) {
            QVERIFY(number > last && number < messagesOfAThread());
            QVERIFY(m_offered[thread].wasAccepted[static_cast<std::size_t>(number)] != 0);
            last = number;
        }
    }
}

void LogServiceStressTest::acceptedMessagesStandWhileUsersAndLevelsAreSwitched()
{
    m_service->registerOutputDevice(newFile("common"));
    m_service->enableLogger(true);
    m_service->enableErrorOutput(true);
    const auto steady = m_service->getLoggerObject("STEADY");
    const auto switched = m_service->getLoggerObject("SWITCHED");
    m_service->enableUserOutput("STEADY", true);

    SwitchingConfig config;
    {
        const Disturber users([&](int round) {
            m_service->enableUserOutput("SWITCHED", round % 2 == 0);
            m_service->getLoggerObject(QString::number(round % 100));
        });
        const Disturber levels([&](int round) {
            m_service->enableInfoOutput(round % 2 == 0);
            m_service->enableDebugOutput(round % 3 == 0);
            m_service->getEnabledUserList();
            m_service->isUserEnabled("SWITCHED");
        });
        const Disturber configuration([&](int /*round*/) {
            m_service->configureLogService(&config);
            m_service->enableLogger(true);
        });
        logFromAllThreads([&](int thread, const QString& text) {
            const auto narrow = text.toUtf8();
            switch (thread % 4) {
            case 0:
                return steady->logError("%s", narrow.constData());
            case 1:
                return switched->logInfo("%s", narrow.constData());
            case 2:
                return m_service->logString(2, Level::LOG_DEBUG, text);
            default:
                return m_service->logString(1, Level::LOG_INFO, narrow.constData());
            }
        });
    }
    m_service->closeLogger();
    expectExactly({"common"});
    QVERIFY(m_offered[0].accepted > 0);
}

void LogServiceStressTest::acceptedMessagesStandBesideDevicesThatComeAndGo()
{
    // Half of the threads log to a private file that stays open, half to devices that are switched.
    m_service->getLoggerObject("PRIVATE", newFile("private"), QStringLiteral("'T'"), {});
    m_service->enableUserOutput("PRIVATE", true);
    m_service->getLoggerObject("SWITCHED", newFile("switched"), QString(), {});
    m_service->getLoggerObject("COMMON");
    m_service->enableUserOutput("COMMON", true);
    m_service->registerOutputDevice(newFile("common"));
    m_service->enableErrorOutput(true);
    {
        const Disturber logger([&](int round) { m_service->enableLogger(round % 2 == 0); });
        const Disturber console([&](int round) { m_service->enableConsoleLog(round % 3 == 0); });
        const Disturber devices([&](int round) {
            m_service->enableUserOutput("SWITCHED", round % 2 == 0);
            m_service->registerOutputDevice(newFile(QStringLiteral("extra%1").arg(round)));
        });
        logFromAllThreads([&](int thread, const QString& text) {
            const int handle = thread < THREADS / 2 ? 1 : 3;
            return m_service->logString(handle, Level::LOG_ERROR, text);
        });
    }
    m_service->closeLogger();
    expectInOrder("common");
    for (std::size_t thread = THREADS / 2; thread < THREADS; ++thread) {
        m_offered[thread] = {std::vector<char>(static_cast<std::size_t>(messagesOfAThread())), 0,
                             messagesOfAThread()};
    }
    expectExactly({"private"});
}

void LogServiceStressTest::acceptedMessagesStandOverRestarts()
{
    const auto kept = m_service->getLoggerObject("KEPT");
    m_service->closeLogger();
    QStringList files;
    std::atomic<bool> isOver{false};
    std::atomic<bool> hasStarted{false};
    std::atomic<int> offeredMessages{0};
    // One message of each thread may be under way already when the service opens.
    const auto waitForAMessage = [&] {
        const int enough = offeredMessages + static_cast<int>(THREADS) + 1;
        while (!isOver && offeredMessages < enough) {
            std::this_thread::yield();
        }
    };
    std::thread restarter([&] {
        for (int round = 0; !isOver || round < restarts(); ++round) {
            m_service->initLogService({});
            m_service->enableErrorOutput(true);
            const QString name = QStringLiteral("round%1").arg(round);
            files << name;
            m_service->getLoggerObject(name, newFile(name), QStringLiteral("'T'"), {});
            m_service->enableUserOutput(name, true);
            hasStarted = true;
            if (round % 2 == 0) {
                waitForAMessage();
            }
            m_service->closeLogger();
        }
    });
    {
        const Disturber closer([&](int round) {
            if (round % 100 == 0) {
                m_service->enableConsoleLog(false);
            }
            std::this_thread::yield();
        });
        while (!hasStarted) {
            std::this_thread::yield();
        }
        logFromAllThreads([&](int thread, const QString& text) {
            ++offeredMessages;
            if (thread % 2 == 0) {
                return kept->logError("%s", text.toUtf8().constData());
            }
            return m_service->logString(1, Level::LOG_INFO, text);
        });
        isOver = true;
        restarter.join();
    }
    for (const QString& file : qAsConst(files)) {
        if (!QFile::exists(path(file))) { // closed before it was opened
            newFile(file)->open(QIODevice::WriteOnly);
        }
    }
    expectExactly(files);
}

QTEST_GUILESS_MAIN(LogServiceStressTest)
#include "LogServiceStressTest.moc"

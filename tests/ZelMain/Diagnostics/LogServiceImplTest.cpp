#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "tests/ZelMain/Diagnostics/RecordingDevice.h"

#include <QtTest>

#include <climits>

using PkLogger::LoggerDataLogInterface;
using PkLogger::LoggerImpl;
using PkLogger::LogService;
using PkLogger::LogServiceImpl;
using Level = LoggerDataLogInterface::LOGLEVEL;

Q_DECLARE_METATYPE(LoggerDataLogInterface::LOGLEVEL)

namespace {

const QString USER = QStringLiteral("DATABASE");

QSharedPointer<RecordingDevice> newDevice(const QString& name = QString())
{
    return QSharedPointer<RecordingDevice>::create(name);
}

QStringList messages(const RecordingDevice& device)
{
    QStringList texts;
    for (const QByteArray& line : device.lines()) {
        texts << QString::fromLatin1(line.mid(line.lastIndexOf("  ") + 2)).trimmed();
    }
    return texts;
}

} // namespace

class LogServiceImplTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theSameServiceIsGivenOutEveryTime();
    void beforeTheStartEverythingIsRefused();
    void closingBeforeTheStartKeepsTheDevices();
    void startOfAStartedServiceChangesNothingButTheOptions();

    void firstUserIsTheServicesOwn();
    void servicesOwnUserCannotBeSwitched();
    void callersFirstUserHasNumberOne();
    void oneNameHasOneLogger();
    void newUserIsDisabled();
    void sixtyFourUsersAreTheLimit();
    void placesAreFreeAgainAfterAClose();
    void handleThatWasNotGivenOutIsRefused_data();
    void handleThatWasNotGivenOutIsRefused();
    void userListsAreInTableOrder();

    void levelHasItsBit_data();
    void levelHasItsBit();
    void unknownLevelIsRefused();
    void ordinaryUserNeedsLoggerUserAndLevel_data();
    void ordinaryUserNeedsLoggerUserAndLevel();
    void userWithPrivateDeviceNeedsOnlyItsOwnSwitch();
    void narrowTextIsUtf8();

    void privateDeviceFollowsItsUser();
    void openPrivateDeviceIsNotOpenedAgain();
    void existingUserKeepsItsDevice();
    void privateDeviceIsWrittenWithoutAskingWhetherItIsOpen();
    void lineGoesToThePrivateDeviceAlone();
    void millisecondsInFrontAreExact();

    void commonDevicesFollowLoggerAndConsole_data();
    void commonDevicesFollowLoggerAndConsole();
    void switchThatDoesNotChangeLeavesTheDevicesAlone();
    void openIsAskedOfDevicesThatAreOpen();
    void deviceRegisteredWhileTheLoggerIsOnIsOpened();
    void openDeviceIsRegisteredAsItIs();
    void fiveDevicesAreTheLimit();
    void nullDeviceTakesAPlace();
    void lineGoesToEveryOpenDeviceInOrder();
    void closedDeviceGetsNothing();

    void fullQueueRefuses();
    void writingIsForTheWriterOnly();

    void closeWritesWhatIsQueued();
    void closeForgetsEverythingButTheConsoleSwitch();
    void closeClosesCommonDevicesFirst();
    void closeSaysGoodbyeThroughTheVirtualCall();
    void destructorCloses();
    void keptLoggerSpeaksForWhoeverHasItsNumber();

private:
    QSharedPointer<LoggerImpl> enabledUser(const QString& name);
    void switchOn(const QSharedPointer<RecordingDevice>& device);

    const QSharedPointer<LogServiceImpl> m_service = LogServiceImpl::getLogServicePointer();
};

void LogServiceImplTest::init()
{
    m_service->initLogService({});
    RecordingDevice::journal().clear();
}

void LogServiceImplTest::cleanup()
{
    m_service->initLogService({}); // a close forgets the devices of a started service only
    m_service->enableConsoleLog(false);
    m_service->closeLogger();
}

QSharedPointer<LoggerImpl> LogServiceImplTest::enabledUser(const QString& name)
{
    QSharedPointer<LoggerImpl> logger = m_service->getLoggerObject(name);
    m_service->enableUserOutput(name, true);
    return logger;
}

/** One ordinary user, number 1, all levels, and this device. */
void LogServiceImplTest::switchOn(const QSharedPointer<RecordingDevice>& device)
{
    enabledUser(USER);
    for (const Level level :
         {Level::LOG_DEBUG, Level::LOG_INFO, Level::LOG_WARNING, Level::LOG_ERROR}) {
        m_service->setLevelMask(level, true);
    }
    m_service->registerOutputDevice(device);
    m_service->enableLogger(true);
}

void LogServiceImplTest::theSameServiceIsGivenOutEveryTime()
{
    QVERIFY(!m_service.isNull());
    QCOMPARE(LogServiceImpl::getLogServicePointer(), m_service);
    const QSharedPointer<LogService> service = LogService::GetLogService();
    QCOMPARE(service.data(), static_cast<LogService*>(m_service.data()));
}

void LogServiceImplTest::beforeTheStartEverythingIsRefused()
{
    m_service->closeLogger();
    QVERIFY(m_service->getLoggerObject(USER).isNull());
    QVERIFY(m_service->getLoggerObject(USER, newDevice(), QString(), {}).isNull());
    QVERIFY(!m_service->enableLogger(true));
    QVERIFY(!m_service->enableConsoleLog(true));
    QVERIFY(!m_service->isLoggerEnabled());
    QVERIFY(!m_service->isConsoleLogEnabled());
    m_service->enableErrorOutput(true);
    QVERIFY(!m_service->isErrorOutputEnabled());
    m_service->enableUserOutput(USER, true);
    QVERIFY(!m_service->isUserEnabled(USER));
    QVERIFY(!m_service->isUserExists(LogServiceImpl::LOGGER_USER_ID));
    QVERIFY(m_service->getUserList().isEmpty());
    QVERIFY(m_service->getEnabledUserList().isEmpty());
    QVERIFY(!m_service->isHandleEnabled(1));
    QVERIFY(!m_service->logString(0, Level::LOG_ERROR, "text"));
    QVERIFY(!m_service->logString(1, Level::LOG_ERROR, QStringLiteral("text")));
    QVERIFY(!m_service->writeData());
}

void LogServiceImplTest::closingBeforeTheStartKeepsTheDevices()
{
    m_service->closeLogger();
    const auto device = newDevice();
    QVERIFY(m_service->registerOutputDevice(device));
    m_service->closeLogger();
    QCOMPARE(device->closeCount(), 0);

    m_service->initLogService({});
    QCOMPARE(device->openCount(), 0);
    QVERIFY(m_service->enableLogger(true));
    QCOMPARE(device->openCount(), 1);
}

void LogServiceImplTest::startOfAStartedServiceChangesNothingButTheOptions()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QStringLiteral("'T'"), {});
    m_service->enableUserOutput(USER, true);
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "before"));
    QVERIFY(device->waitForLines(1)); // the options count when a line is written
    m_service->initLogService(LogService::LogLevel);
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "after"));
    QVERIFY(device->waitForLines(2));
    QCOMPARE(device->lines().at(0), QByteArray("T before\n"));
    QVERIFY(device->lines().at(1).startsWith("T  INFO    "));
}

void LogServiceImplTest::firstUserIsTheServicesOwn()
{
    QCOMPARE(LogServiceImpl::LOGGER_USER_ID, QStringLiteral("LOGGER"));
    QVERIFY(m_service->isUserExists("LOGGER"));
    QVERIFY(!m_service->isUserEnabled("LOGGER"));
    QVERIFY(m_service->getUserList().isEmpty());
    QVERIFY(!m_service->isHandleEnabled(0));
}

void LogServiceImplTest::servicesOwnUserCannotBeSwitched()
{
    m_service->enableUserOutput("LOGGER", true);
    QVERIFY(!m_service->isUserEnabled("LOGGER"));
    QVERIFY(!m_service->isHandleEnabled(0));
    QVERIFY(m_service->getEnabledUserList().isEmpty());
    switchOn(newDevice());
    QVERIFY(!m_service->logString(0, Level::LOG_ERROR, "text"));
    const auto logger = m_service->getLoggerObject("LOGGER");
    QVERIFY(!logger.isNull());
    QCOMPARE(m_service->getLoggerObject("LOGGER"), logger);
}

void LogServiceImplTest::callersFirstUserHasNumberOne()
{
    enabledUser(USER);
    QVERIFY(m_service->isHandleEnabled(1));
    QVERIFY(!m_service->isHandleEnabled(2));
    m_service->enableUserOutput(USER, false);
    QVERIFY(!m_service->isHandleEnabled(1));
}

void LogServiceImplTest::oneNameHasOneLogger()
{
    const auto logger = m_service->getLoggerObject(USER);
    QVERIFY(!logger.isNull());
    QCOMPARE(m_service->getLoggerObject(USER), logger);
    QCOMPARE(m_service->getLoggerObject(USER, newDevice(), QString(), {}), logger);
    QVERIFY(m_service->getLoggerObject("database") != logger);
    QVERIFY(m_service->getLoggerObject("DATABASE ") != logger);
    QCOMPARE(m_service->getUserList(), (QStringList{"DATABASE", "database", "DATABASE "}));
}

void LogServiceImplTest::newUserIsDisabled()
{
    m_service->getLoggerObject(USER);
    QVERIFY(m_service->isUserExists(USER));
    QVERIFY(!m_service->isUserEnabled(USER));
    QVERIFY(!m_service->isUserExists("OTHER"));
    QVERIFY(!m_service->isUserEnabled("OTHER"));
}

void LogServiceImplTest::sixtyFourUsersAreTheLimit()
{
    for (int i = 1; i < 64; ++i) {
        QVERIFY(!m_service->getLoggerObject(QString::number(i)).isNull());
    }
    QVERIFY(m_service->getLoggerObject("64").isNull());
    QVERIFY(m_service->getLoggerObject("64", newDevice(), QString(), {}).isNull());
    QVERIFY(!m_service->isUserExists("64"));
    QCOMPARE(m_service->getUserList().size(), 63);
    // Once the table is full it answers null for the names in it as well.
    QVERIFY(m_service->getLoggerObject("1").isNull());

    m_service->enableUserOutput("63", true);
    QVERIFY(m_service->isHandleEnabled(63));
    m_service->enableUserOutput("64", true);
    QVERIFY(!m_service->isHandleEnabled(64));
}

void LogServiceImplTest::placesAreFreeAgainAfterAClose()
{
    sixtyFourUsersAreTheLimit();
    m_service->closeLogger();
    m_service->initLogService({});
    sixtyFourUsersAreTheLimit();
}

void LogServiceImplTest::handleThatWasNotGivenOutIsRefused_data()
{
    QTest::addColumn<int>("handle");
    QTest::newRow("next") << 2;
    QTest::newRow("last place") << 63;
    QTest::newRow("beyond the table") << 64;
    QTest::newRow("far beyond") << INT_MAX;
    QTest::newRow("negative") << -1;
    QTest::newRow("far negative") << INT_MIN;
}

void LogServiceImplTest::handleThatWasNotGivenOutIsRefused()
{
    QFETCH(int, handle);
    switchOn(newDevice());
    QVERIFY(!m_service->isHandleEnabled(handle));
    QVERIFY(!m_service->logString(handle, Level::LOG_ERROR, "text"));
    QVERIFY(m_service->logString(1, Level::LOG_ERROR, "text"));
}

void LogServiceImplTest::userListsAreInTableOrder()
{
    enabledUser("C");
    m_service->getLoggerObject("A");
    m_service->getLoggerObject("PRIVATE", newDevice(), QString(), {});
    m_service->enableUserOutput("PRIVATE", true);
    enabledUser("B");
    QCOMPARE(m_service->getUserList(), (QStringList{"C", "A", "B"}));
    QCOMPARE(m_service->getEnabledUserList(), (QStringList{"C", "B"}));
}

void LogServiceImplTest::levelHasItsBit_data()
{
    QTest::addColumn<Level>("level");
    QTest::newRow("debug") << Level::LOG_DEBUG;
    QTest::newRow("info") << Level::LOG_INFO;
    QTest::newRow("warning") << Level::LOG_WARNING;
    QTest::newRow("error") << Level::LOG_ERROR;
}

void LogServiceImplTest::levelHasItsBit()
{
    QFETCH(Level, level);
    const auto answers = [this] {
        return QVector<bool>{m_service->isDebugOutputEnabled(), m_service->isInfoOutputEnabled(),
                             m_service->isWarningOutputEnabled(),
                             m_service->isErrorOutputEnabled()};
    };
    const auto enable = [this, level](bool on) {
        switch (level) {
        case Level::LOG_DEBUG:
            return m_service->enableDebugOutput(on);
        case Level::LOG_INFO:
            return m_service->enableInfoOutput(on);
        case Level::LOG_WARNING:
            return m_service->enableWarningOutput(on);
        case Level::LOG_ERROR:
            return m_service->enableErrorOutput(on);
        }
    };
    const QVector<bool> allOff(4, false);
    QVector<bool> oneOn = allOff;
    oneOn[static_cast<int>(level)] = true;

    QCOMPARE(answers(), allOff);
    m_service->setLevelMask(level, true);
    QCOMPARE(answers(), oneOn);
    m_service->setLevelMask(level, false);
    QCOMPARE(answers(), allOff);
    enable(true);
    QCOMPARE(answers(), oneOn);
    enable(false);
    QCOMPARE(answers(), allOff);
}

void LogServiceImplTest::unknownLevelIsRefused()
{
    switchOn(newDevice());
    for (const int number : {-1, 4, 31, 32, INT_MAX, INT_MIN}) {
        const auto level = static_cast<Level>(number);
        m_service->setLevelMask(level, false);
        QVERIFY(!m_service->logString(1, level, "text"));
    }
    QVERIFY(m_service->isDebugOutputEnabled());
    QVERIFY(m_service->isErrorOutputEnabled());
}

void LogServiceImplTest::ordinaryUserNeedsLoggerUserAndLevel_data()
{
    QTest::addColumn<bool>("loggerOn");
    QTest::addColumn<bool>("userOn");
    QTest::addColumn<bool>("levelOn");
    for (int bits = 0; bits < 8; ++bits) {
        const bool logger = (bits & 4) != 0;
        const bool user = (bits & 2) != 0;
        const bool level = (bits & 1) != 0;
        QTest::addRow("logger %d, user %d, level %d", logger, user, level)
            << logger << user << level;
    }
}

void LogServiceImplTest::ordinaryUserNeedsLoggerUserAndLevel()
{
    QFETCH(bool, loggerOn);
    QFETCH(bool, userOn);
    QFETCH(bool, levelOn);
    m_service->getLoggerObject(USER);
    m_service->enableUserOutput(USER, userOn);
    m_service->enableLogger(loggerOn);
    m_service->setLevelMask(Level::LOG_WARNING, levelOn);
    QCOMPARE(m_service->logString(1, Level::LOG_WARNING, "text"), loggerOn && userOn && levelOn);
    QVERIFY(!m_service->logString(1, Level::LOG_ERROR, "text"));
}

void LogServiceImplTest::userWithPrivateDeviceNeedsOnlyItsOwnSwitch()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QString(), {});
    QVERIFY(!m_service->logString(1, Level::LOG_ERROR, "refused"));
    m_service->enableUserOutput(USER, true);
    QVERIFY(!m_service->isLoggerEnabled());
    QVERIFY(m_service->logString(1, Level::LOG_DEBUG, "accepted"));
    m_service->closeLogger();
    QCOMPARE(device->lines().size(), 1);
    QVERIFY(device->text().endsWith(" accepted\n"));
}

void LogServiceImplTest::narrowTextIsUtf8()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QStringLiteral("'T'"), {});
    m_service->enableUserOutput(USER, true);
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "gr\xc3\xbc\xc3\x9f"));
    QVERIFY(m_service->logString(1, Level::LOG_INFO, static_cast<const char*>(nullptr)));
    m_service->closeLogger();
    QCOMPARE(device->lines(), (QList<QByteArray>{"T gr\xfc\xdf\n", "T \n"}));
}

void LogServiceImplTest::privateDeviceFollowsItsUser()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QString(), {});
    QCOMPARE(device->openCount(), 0);
    m_service->enableUserOutput(USER, false);
    QCOMPARE(device->closeCount(), 1);
    m_service->enableUserOutput(USER, true);
    QVERIFY(device->isOpen());
    QCOMPARE(device->lastOpenMode(), QIODevice::WriteOnly | QIODevice::Text);
    m_service->enableUserOutput(USER, false);
    QVERIFY(!device->isOpen());
    m_service->enableUserOutput(USER, true);
    m_service->closeLogger();
    QVERIFY(!device->isOpen());
}

void LogServiceImplTest::openPrivateDeviceIsNotOpenedAgain()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QString(), {});
    m_service->enableUserOutput(USER, true);
    m_service->enableUserOutput(USER, true);
    QCOMPARE(device->openCount(), 1);
    QVERIFY(m_service->isUserEnabled(USER));
}

void LogServiceImplTest::existingUserKeepsItsDevice()
{
    const auto first = newDevice();
    const auto second = newDevice();
    m_service->getLoggerObject(USER, first, QStringLiteral("'T'"), {});
    m_service->getLoggerObject(USER, second, QStringLiteral("'U'"), LogService::OutUserName);
    m_service->enableUserOutput(USER, true);
    m_service->logString(1, Level::LOG_INFO, "text");
    m_service->closeLogger();
    QCOMPARE(first->text(), QByteArray("T text\n"));
    QCOMPARE(second->openCount(), 0);
}

void LogServiceImplTest::privateDeviceIsWrittenWithoutAskingWhetherItIsOpen()
{
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, QString(), {});
    m_service->enableUserOutput(USER, true);
    device->close();
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::write (QIODevice): device not open");
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "text"));
    m_service->closeLogger();
    QVERIFY(device->lines().isEmpty());
}

void LogServiceImplTest::lineGoesToThePrivateDeviceAlone()
{
    const auto common = newDevice();
    const auto own = newDevice();
    switchOn(common);
    m_service->getLoggerObject("PRIVATE", own, QString(), {});
    m_service->enableUserOutput("PRIVATE", true);
    m_service->logString(1, Level::LOG_INFO, "common");
    m_service->logString(2, Level::LOG_INFO, "own");
    m_service->closeLogger();
    QCOMPARE(messages(*common), QStringList{"common"});
    QCOMPARE(own->lines().size(), 1);
    QVERIFY(own->text().endsWith(" own\n"));
}

// Moments are shared within a hundredth of a second, but not where that could be seen.
void LogServiceImplTest::millisecondsInFrontAreExact()
{
    constexpr int LINES = 30;
    const QString format = QStringLiteral("zzz dd.MM.yyyy hh:mm:ss");
    const auto device = newDevice();
    m_service->getLoggerObject(USER, device, format, {});
    m_service->enableUserOutput(USER, true);
    std::vector<std::pair<QDateTime, QDateTime>> bounds;
    for (int line = 0; line < LINES; ++line) {
        const QDateTime before = QDateTime::currentDateTime();
        while (QDateTime::currentDateTime() == before) {
            // until the next millisecond
        }
        const QDateTime start = QDateTime::currentDateTime();
        QVERIFY(m_service->logString(1, Level::LOG_INFO, QStringLiteral("x")));
        bounds.emplace_back(start, QDateTime::currentDateTime());
    }
    m_service->closeLogger();
    const QList<QByteArray> lines = device->text().split('\n');
    QCOMPARE(lines.size(), LINES + 1);
    auto line = lines.begin();
    for (const auto& [earliest, latest] : bounds) {
        const QString text = QString::fromUtf8(*line++).section(QStringLiteral(" x"), 0, 0);
        const QDateTime time = QDateTime::fromString(text, format);
        QVERIFY2(earliest <= time && time <= latest, qPrintable(text));
    }
}

void LogServiceImplTest::commonDevicesFollowLoggerAndConsole_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("logger on") << QStringList{"logger on"} << true;
    QTest::newRow("logger off again") << QStringList{"logger on", "logger off"} << false;
    QTest::newRow("console on") << QStringList{"console on"} << false;
    QTest::newRow("logger on while the console is on")
        << QStringList{"console on", "logger on"} << false;
    QTest::newRow("console on while the logger is on")
        << QStringList{"logger on", "console on"} << false;
    QTest::newRow("console off, logger on")
        << QStringList{"logger on", "console on", "console off"} << true;
    QTest::newRow("console off, logger off")
        << QStringList{"logger on", "console on", "logger off", "console off"} << false;
    QTest::newRow("logger on after the console")
        << QStringList{"console on", "console off", "logger on"} << true;
}

void LogServiceImplTest::commonDevicesFollowLoggerAndConsole()
{
    QFETCH(QStringList, steps);
    const auto device = newDevice();
    QVERIFY(m_service->registerOutputDevice(device));
    for (const QString& step : qAsConst(steps)) {
        const bool on = step.endsWith(" on");
        if (step.startsWith("logger")) {
            QVERIFY(m_service->enableLogger(on));
            QCOMPARE(m_service->isLoggerEnabled(), on);
        } else {
            QVERIFY(m_service->enableConsoleLog(on));
            QCOMPARE(m_service->isConsoleLogEnabled(), on);
        }
    }
    QTEST(device->isOpen(), "isOpen");
    if (device->isOpen()) {
        QCOMPARE(device->lastOpenMode(), QIODevice::WriteOnly | QIODevice::Text);
    }
}

void LogServiceImplTest::switchThatDoesNotChangeLeavesTheDevicesAlone()
{
    const auto device = newDevice("d");
    m_service->registerOutputDevice(device);
    QVERIFY(m_service->enableLogger(false));
    QVERIFY(m_service->enableConsoleLog(false));
    QVERIFY(RecordingDevice::journal().isEmpty());
    m_service->enableLogger(true);
    QVERIFY(m_service->enableLogger(true));
    QCOMPARE(RecordingDevice::journal(), QStringList{"open d"});
}

void LogServiceImplTest::openIsAskedOfDevicesThatAreOpen()
{
    const auto device = newDevice("d");
    device->open(QIODevice::WriteOnly);
    m_service->registerOutputDevice(device);
    m_service->enableLogger(true);
    QCOMPARE(device->openCount(), 2);
}

void LogServiceImplTest::deviceRegisteredWhileTheLoggerIsOnIsOpened()
{
    const auto off = newDevice();
    const auto on = newDevice();
    const auto console = newDevice();
    m_service->registerOutputDevice(off);
    QVERIFY(!off->isOpen());
    m_service->enableLogger(true);
    m_service->registerOutputDevice(on);
    QCOMPARE(on->openCount(), 1);
    QCOMPARE(on->lastOpenMode(), QIODevice::WriteOnly | QIODevice::Text);
    m_service->enableConsoleLog(true);
    m_service->registerOutputDevice(console);
    QVERIFY(console->isOpen()); // the console is not asked here
}

void LogServiceImplTest::openDeviceIsRegisteredAsItIs()
{
    const auto device = newDevice();
    device->open(QIODevice::WriteOnly);
    m_service->enableLogger(true);
    m_service->registerOutputDevice(device);
    QCOMPARE(device->openCount(), 1);
}

void LogServiceImplTest::fiveDevicesAreTheLimit()
{
    for (int i = 0; i < 5; ++i) {
        QVERIFY(m_service->registerOutputDevice(newDevice()));
    }
    m_service->enableLogger(true);
    const auto sixth = newDevice();
    QVERIFY(!m_service->registerOutputDevice(sixth));
    QCOMPARE(sixth->openCount(), 0);
    m_service->closeLogger();
    QVERIFY(m_service->registerOutputDevice(sixth));
}

void LogServiceImplTest::nullDeviceTakesAPlace()
{
    m_service->enableLogger(true);
    for (int i = 0; i < 4; ++i) {
        QVERIFY(m_service->registerOutputDevice({}));
    }
    const auto device = newDevice();
    switchOn(device);
    QVERIFY(!m_service->registerOutputDevice(newDevice()));
    m_service->enableLogger(false);
    m_service->enableLogger(true);
    QVERIFY(device->isOpen());
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "text"));
    m_service->closeLogger();
    QCOMPARE(messages(*device), QStringList{"text"});
}

void LogServiceImplTest::lineGoesToEveryOpenDeviceInOrder()
{
    const auto first = newDevice();
    const auto second = newDevice();
    second->blockWrites();
    switchOn(first);
    m_service->registerOutputDevice(second);
    m_service->logString(1, Level::LOG_INFO, "one");
    m_service->logString(1, Level::LOG_INFO, "two");
    QVERIFY(second->waitUntilBlocked());
    QCOMPARE(messages(*first), QStringList{"one"}); // it came first, and only this line
    second->unblockWrites();
    m_service->closeLogger();
    QCOMPARE(messages(*first), (QStringList{"one", "two"}));
    QCOMPARE(second->lines(), first->lines());
}

void LogServiceImplTest::closedDeviceGetsNothing()
{
    const auto open = newDevice();
    const auto closed = newDevice();
    switchOn(open);
    m_service->registerOutputDevice(closed);
    closed->close();
    m_service->logString(1, Level::LOG_INFO, "text");
    m_service->closeLogger();
    QCOMPARE(messages(*open), QStringList{"text"});
    QVERIFY(closed->lines().isEmpty());
}

void LogServiceImplTest::fullQueueRefuses()
{
    const auto device = newDevice();
    device->blockWrites();
    switchOn(device);
    for (int i = 0; i < 9999; ++i) {
        QVERIFY(m_service->logString(1, Level::LOG_INFO, QString::number(i)));
    }
    QVERIFY(!m_service->logString(1, Level::LOG_INFO, "refused"));
    QVERIFY(device->waitUntilBlocked());
    QVERIFY(!m_service->logString(1, Level::LOG_INFO, "refused"));

    device->unblockWrites();
    QVERIFY(device->waitForLines(9999));
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "9999"));
    m_service->closeLogger();
    const QStringList texts = messages(*device);
    QCOMPARE(texts.size(), 10000);
    for (int i = 0; i < texts.size(); ++i) {
        QCOMPARE(texts.at(i), QString::number(i));
    }
}

void LogServiceImplTest::writingIsForTheWriterOnly()
{
    const auto device = newDevice();
    device->blockWrites();
    switchOn(device);
    m_service->logString(1, Level::LOG_INFO, "one");
    m_service->logString(1, Level::LOG_INFO, "two");
    QVERIFY(!m_service->writeData());
    device->unblockWrites();
    m_service->closeLogger();
    QCOMPARE(messages(*device), (QStringList{"one", "two"}));
}

void LogServiceImplTest::closeWritesWhatIsQueued()
{
    const auto device = newDevice();
    device->blockWrites();
    switchOn(device);
    for (int i = 0; i < 100; ++i) {
        m_service->logString(1, Level::LOG_INFO, QString::number(i));
    }
    device->unblockWrites();
    m_service->closeLogger();
    QCOMPARE(device->lines().size(), 100);
    QVERIFY(!device->isOpen());
}

void LogServiceImplTest::closeForgetsEverythingButTheConsoleSwitch()
{
    const auto device = newDevice();
    switchOn(device);
    m_service->enableConsoleLog(true);
    m_service->closeLogger();
    QVERIFY(!m_service->isLoggerEnabled());
    QVERIFY(m_service->isConsoleLogEnabled());
    QVERIFY(!m_service->isErrorOutputEnabled());
    QVERIFY(!m_service->isUserExists("LOGGER"));
    QVERIFY(m_service->getUserList().isEmpty());
    m_service->closeLogger(); // once more does nothing

    m_service->initLogService({});
    QVERIFY(m_service->isConsoleLogEnabled());
    QVERIFY(!m_service->isErrorOutputEnabled());
    QVERIFY(m_service->isUserExists("LOGGER"));
    m_service->enableConsoleLog(false);
    const int opened = device->openCount();
    m_service->enableLogger(true);
    QCOMPARE(device->openCount(), opened); // no longer one of the devices

    const auto next = newDevice();
    switchOn(next);
    QVERIFY(m_service->logString(1, Level::LOG_INFO, "text"));
    m_service->closeLogger();
    QCOMPARE(messages(*next), QStringList{"text"});
}

void LogServiceImplTest::closeClosesCommonDevicesFirst()
{
    m_service->getLoggerObject("ONE", newDevice("one"), QString(), {});
    m_service->getLoggerObject("TWO", newDevice("two"), QString(), {});
    m_service->registerOutputDevice(newDevice("first"));
    m_service->registerOutputDevice(newDevice("second"));
    RecordingDevice::journal().clear();
    m_service->closeLogger();
    QCOMPARE(RecordingDevice::journal(),
             (QStringList{"close first", "close second", "close one", "close two"}));
}

namespace {

class OverheardService : public LogServiceImpl
{
public:
    using LogServiceImpl::logString;

    bool logString(int handle, LOGLEVEL level, const char* text) override
    {
        const bool isAccepted = LogServiceImpl::logString(handle, level, text);
        heard << QStringLiteral("%1 %2 %3 %4").arg(handle).arg(level).arg(text).arg(isAccepted);
        return isAccepted;
    }

    QStringList heard;
};

} // namespace

void LogServiceImplTest::closeSaysGoodbyeThroughTheVirtualCall()
{
    OverheardService service;
    service.initLogService({});
    QVERIFY(service.heard.isEmpty());
    service.closeLogger();
    QCOMPARE(service.heard, QStringList{"0 1 Logger is about to exit... 0"}); // and is refused
    service.closeLogger();
    QCOMPARE(service.heard.size(), 1);
}

void LogServiceImplTest::destructorCloses()
{
    const auto device = newDevice();
    {
        OverheardService service;
        service.initLogService({});
        service.getLoggerObject(USER, device, QStringLiteral("'T'"), {});
        service.enableUserOutput(USER, true);
        QVERIFY(service.logString(1, Level::LOG_INFO, QStringLiteral("text")));
    }
    QCOMPARE(device->text(), QByteArray("T text\n"));
    QVERIFY(!device->isOpen());
}

void LogServiceImplTest::keptLoggerSpeaksForWhoeverHasItsNumber()
{
    switchOn(newDevice());
    const auto kept = m_service->getLoggerObject(USER);
    QVERIFY(kept->logError("%s", "accepted"));
    m_service->closeLogger();
    QVERIFY(!kept->logError("%s", "refused"));
    QVERIFY(!kept->isErrorOutputEnabled());

    m_service->initLogService({});
    QVERIFY(!kept->logError("%s", "refused"));
    const auto device = newDevice();
    m_service->registerOutputDevice(device);
    m_service->enableLogger(true);
    m_service->enableErrorOutput(true);
    enabledUser("SUCCESSOR");
    QVERIFY(kept->isErrorOutputEnabled());
    QVERIFY(kept->logError("%s", "spoken"));
    m_service->closeLogger();
    QVERIFY(device->text().contains(" SUCCESSOR "));
    QCOMPARE(messages(*device), QStringList{"spoken"});
}

QTEST_GUILESS_MAIN(LogServiceImplTest)
#include "LogServiceImplTest.moc"

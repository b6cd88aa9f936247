#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include "ZelMain/Diagnostics/LogServiceUsers.h"
#include "ZelMain/Diagnostics/LoggerConfigInterface.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "tests/ZelMain/Diagnostics/RecordingDevice.h"

#include <QtTest>

using PkLogger::LoggerConfigInterface;
using PkLogger::LogServiceImpl;

namespace {

class TestConfig : public LoggerConfigInterface
{
public:
    bool isLoggerEnabled() const override { return logger; }
    bool isConsoleLogEnabled() const override { return console; }
    bool isDebugOutputEnabled() const override { return (levels & 1) != 0; }
    bool isInfoOutputEnabled() const override { return (levels & 2) != 0; }
    bool isWarningOutputEnabled() const override { return (levels & 4) != 0; }
    bool isErrorOutputEnabled() const override { return (levels & 8) != 0; }
    QVector<UserState> getAdditionalUserStates() const override { return additionalStates; }
    QVector<UserState> getUserStates() const override { return states; }

    bool logger = false;
    bool console = false;
    int levels = 0;
    QVector<UserState> states;
    QVector<UserState> additionalStates;
};

} // namespace

/** Configuration of the whole service in one call. */
class LogServiceConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void levelsAreApplied_data();
    void levelsAreApplied();
    void switchesDecideOverTheDevices_data();
    void switchesDecideOverTheDevices();
    void consoleComesBeforeTheLogger();
    void usersAreMadeInOrderOfTheirLists();
    void laterStateOfANameWins();
    void namesAreTakenToTheBlank();
    void servicesOwnUserStaysOff();
    void usersBeyondTheLimitAreNotMade();
    void privateDeviceIsOpenedWithItsUser();
    void nullDoesNothing();
    void nothingHappensBeforeTheStart();

private:
    const QSharedPointer<LogServiceImpl> m_service = LogServiceImpl::getLogServicePointer();
    TestConfig m_config;
};

void LogServiceConfigTest::init()
{
    m_service->initLogService({});
    m_config = TestConfig();
    RecordingDevice::journal().clear();
}

void LogServiceConfigTest::cleanup()
{
    m_service->initLogService({});
    m_service->enableConsoleLog(false);
    m_service->closeLogger();
}

void LogServiceConfigTest::levelsAreApplied_data()
{
    QTest::addColumn<int>("levels");
    for (int levels = 0; levels < 16; ++levels) {
        QTest::addRow("mask %d", levels) << levels;
    }
}

void LogServiceConfigTest::levelsAreApplied()
{
    QFETCH(int, levels);
    m_service->enableDebugOutput((levels & 1) == 0); // the opposite
    m_service->enableErrorOutput((levels & 8) == 0);
    m_config.levels = levels;
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->isDebugOutputEnabled(), (levels & 1) != 0);
    QCOMPARE(m_service->isInfoOutputEnabled(), (levels & 2) != 0);
    QCOMPARE(m_service->isWarningOutputEnabled(), (levels & 4) != 0);
    QCOMPARE(m_service->isErrorOutputEnabled(), (levels & 8) != 0);
}

void LogServiceConfigTest::switchesDecideOverTheDevices_data()
{
    QTest::addColumn<bool>("logger");
    QTest::addColumn<bool>("console");
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("both off") << false << false << false;
    QTest::newRow("logger") << true << false << true;
    QTest::newRow("console") << false << true << false;
    QTest::newRow("both on") << true << true << false;
}

void LogServiceConfigTest::switchesDecideOverTheDevices()
{
    QFETCH(bool, logger);
    QFETCH(bool, console);
    const auto device = QSharedPointer<RecordingDevice>::create();
    m_service->registerOutputDevice(device);
    m_config.logger = logger;
    m_config.console = console;
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->isLoggerEnabled(), logger);
    QCOMPARE(m_service->isConsoleLogEnabled(), console);
    QTEST(device->isOpen(), "isOpen");
}

void LogServiceConfigTest::consoleComesBeforeTheLogger()
{
    const auto device = QSharedPointer<RecordingDevice>::create("d");
    m_service->registerOutputDevice(device);
    m_service->enableConsoleLog(true);
    RecordingDevice::journal().clear();
    m_config.logger = true;
    m_service->configureLogService(&m_config);
    // The console goes off while the logger is off yet, which closes; then the logger opens.
    QCOMPARE(RecordingDevice::journal(), (QStringList{"close d", "open d"}));
}

void LogServiceConfigTest::usersAreMadeInOrderOfTheirLists()
{
    m_config.additionalStates = {{"THIRD", true}, {"", true}, {"FOURTH", false}};
    m_config.states = {{"FIRST", false}, {"SECOND", true}, {QString(), true}};
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->getUserList(), (QStringList{"FIRST", "SECOND", "THIRD", "FOURTH"}));
    QCOMPARE(m_service->getEnabledUserList(), (QStringList{"SECOND", "THIRD"}));
    QVERIFY(!m_service->isUserExists(""));
}

void LogServiceConfigTest::laterStateOfANameWins()
{
    m_config.states = {{"A", true}, {"B", false}, {"C", true}, {"C", false}};
    m_config.additionalStates = {{"A", false}, {"B", true}};
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->getUserList(), (QStringList{"A", "B", "C"}));
    QCOMPARE(m_service->getEnabledUserList(), QStringList{"B"});
}

void LogServiceConfigTest::namesAreTakenToTheBlank()
{
    m_config.states = {{PkLogger::LoggerUsers::LOGUSER_DATABASE, true}, {"DATABASE", false}};
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->getUserList(), (QStringList{"DATABASE       ", "DATABASE"}));
    QVERIFY(m_service->isUserEnabled("DATABASE       "));
    QVERIFY(!m_service->isUserEnabled("DATABASE"));
}

void LogServiceConfigTest::servicesOwnUserStaysOff()
{
    m_config.states = {{"LOGGER", true}};
    m_service->configureLogService(&m_config);
    QVERIFY(m_service->isUserExists("LOGGER"));
    QVERIFY(!m_service->isUserEnabled("LOGGER"));
    QVERIFY(m_service->getUserList().isEmpty());
}

void LogServiceConfigTest::usersBeyondTheLimitAreNotMade()
{
    for (int i = 1; i <= 70; ++i) {
        m_config.states.append({QString::number(i), true});
    }
    m_service->configureLogService(&m_config);
    QCOMPARE(m_service->getEnabledUserList().size(), 63);
    QVERIFY(m_service->isUserEnabled("63"));
    QVERIFY(!m_service->isUserExists("64"));
}

void LogServiceConfigTest::privateDeviceIsOpenedWithItsUser()
{
    const auto device = QSharedPointer<RecordingDevice>::create();
    m_service->getLoggerObject("ALERTS", device, QString(), {});
    m_config.states = {{"ALERTS", true}};
    m_service->configureLogService(&m_config);
    QVERIFY(device->isOpen());
    m_config.states = {{"ALERTS", false}};
    m_service->configureLogService(&m_config);
    QVERIFY(!device->isOpen());
}

void LogServiceConfigTest::nullDoesNothing()
{
    m_service->enableLogger(true);
    m_service->configureLogService(nullptr);
    QVERIFY(m_service->isLoggerEnabled());
}

void LogServiceConfigTest::nothingHappensBeforeTheStart()
{
    m_service->closeLogger();
    m_config.logger = true;
    m_config.console = true;
    m_config.levels = 15;
    m_config.states = {{"A", true}};
    m_service->configureLogService(&m_config);
    QVERIFY(!m_service->isLoggerEnabled());
    QVERIFY(!m_service->isConsoleLogEnabled());
    QVERIFY(!m_service->isErrorOutputEnabled());
    m_service->initLogService({});
    QVERIFY(!m_service->isUserExists("A"));
}

QTEST_GUILESS_MAIN(LogServiceConfigTest)
#include "LogServiceConfigTest.moc"

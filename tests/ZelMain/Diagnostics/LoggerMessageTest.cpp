#include "ZelMain/Diagnostics/LoggerMessage.h"

#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "tests/support/MessageRecorder.h"
#include "tests/support/RunningLogService.h"

#include <QThread>
#include <QtTest>

#include <memory>

using PkLogger::LoggerMessage;
using PkLogger::LogService;

class LoggerMessageTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingHappensBeforeTheStart();
    void typesAreNumbered();

    void consoleAsksTheLevelOfTheType_data();
    void consoleAsksTheLevelOfTheType();
    void consoleTextIsWrittenAsItIs_data();
    void consoleTextIsWrittenAsItIs();
    void logTakesTheLevelOfTheType_data();
    void logTakesTheLevelOfTheType();

    void messageGoesToTheConsoleAlone();
    void messageGoesToTheLogAlone();
    void messageOfADisabledUserIsDropped_data();
    void messageOfADisabledUserIsDropped();
    void messageIsDroppedWhileTheLoggerIsOff_data();
    void messageIsDroppedWhileTheLoggerIsOff();
    void messageOfTheServicesOwnUserIsDropped();
    void messageOfAPrivateUserGoesToItsDevice();
    void messageMayComeFromAnyThread();

    void numberThatIsNoTypeDoesNothing_data();
    void numberThatIsNoTypeDoesNothing();

    void logFileMakesItsUser();
    void logFilePrefixesNothing();
    void handleIsTheUsersLogger();
    void handleIsRefusedWhenTheTableIsFull();
};

namespace {

constexpr auto TYPES = {LoggerMessage::LogError, LoggerMessage::LogWarning, LoggerMessage::LogDebug,
                        LoggerMessage::LogInfo};

void enableLevel(const RunningLogService& service, LoggerMessage::LogType type, bool on)
{
    switch (type) {
    case LoggerMessage::LogError:
        return service->enableErrorOutput(on);
    case LoggerMessage::LogWarning:
        return service->enableWarningOutput(on);
    case LoggerMessage::LogDebug:
        return service->enableDebugOutput(on);
    case LoggerMessage::LogInfo:
        return service->enableInfoOutput(on);
    }
}

void enableAllButOne(const RunningLogService& service, LoggerMessage::LogType one)
{
    for (const auto type : TYPES) {
        enableLevel(service, type, type != one);
    }
}

void enableOne(const RunningLogService& service, LoggerMessage::LogType one)
{
    for (const auto type : TYPES) {
        enableLevel(service, type, type == one);
    }
}

QVector<RecordedMessage> debugMessage(const QString& text)
{
    return {{QtDebugMsg, "default", text}};
}

/** What a line of the log says after its time. */
QString afterTime(const QString& line)
{
    return line.mid(QStringLiteral("01 Jan 2000 00:00:00.000").size());
}

void typeRows()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("level");
    QTest::newRow("error") << 0 << " ERROR   ";
    QTest::newRow("warning") << 1 << " WARNING ";
    QTest::newRow("debug") << 2 << " DEBUG   ";
    QTest::newRow("info") << 3 << " INFO    ";
}

void consoleRows()
{
    QTest::addColumn<bool>("console");
    QTest::newRow("console") << true;
    QTest::newRow("log") << false;
}

} // namespace

void LoggerMessageTest::nothingHappensBeforeTheStart()
{
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogError, "USER", "a", "b");
    LoggerMessage::logCosole(LoggerMessage::LogError, "a");
    LoggerMessage::logFile(LoggerMessage::LogError, "USER", "a");
    QVERIFY(LoggerMessage::GetLoggerHandle("USER").isNull());
    QVERIFY(!LogService::GetLogService()->isUserExists("USER"));
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::typesAreNumbered()
{
    QCOMPARE(int(LoggerMessage::LogError), 0);
    QCOMPARE(int(LoggerMessage::LogWarning), 1);
    QCOMPARE(int(LoggerMessage::LogDebug), 2);
    QCOMPARE(int(LoggerMessage::LogInfo), 3);
}

void LoggerMessageTest::consoleAsksTheLevelOfTheType_data()
{
    typeRows();
}

void LoggerMessageTest::consoleAsksTheLevelOfTheType()
{
    QFETCH(int, type);
    const auto logType = static_cast<LoggerMessage::LogType>(type);
    RunningLogService service;
    service.addUser("USER");
    service->enableConsoleLog(true);
    {
        const MessageRecorder recorder;
        enableAllButOne(service, logType);
        LoggerMessage::LogMessage(logType, "USER", "a", "b");
        LoggerMessage::logCosole(logType, "direct");
        QVERIFY(recorder.messages().isEmpty());
    }
    enableOne(service, logType);
    {
        const MessageRecorder recorder;
        LoggerMessage::LogMessage(logType, "USER", "a", "b");
        QCOMPARE(recorder.messages(), debugMessage("a, b\n"));
    }
    const MessageRecorder recorder;
    LoggerMessage::logCosole(logType, "direct");
    QCOMPARE(recorder.messages(), debugMessage("direct\n"));
}

void LoggerMessageTest::consoleTextIsWrittenAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("quotes") << R"(say "x")";
    QTest::newRow("backslash and control characters") << "C:\\temp\tx\ny";
    QTest::newRow("placeholders of both kinds") << "%1 %s";
    QTest::newRow("outside Latin-1") << QString::fromUtf8("\xC3\xA9 \xD0\xB6");
    QTest::newRow("blanks around") << "  x  ";
}

void LoggerMessageTest::consoleTextIsWrittenAsItIs()
{
    QFETCH(QString, text);
    const RunningLogService service;
    const MessageRecorder recorder;
    LoggerMessage::logCosole(LoggerMessage::LogDebug, text);
    QCOMPARE(recorder.messages(), debugMessage(text + '\n'));
}

void LoggerMessageTest::logTakesTheLevelOfTheType_data()
{
    typeRows();
}

void LoggerMessageTest::logTakesTheLevelOfTheType()
{
    QFETCH(int, type);
    QFETCH(QString, level);
    const auto logType = static_cast<LoggerMessage::LogType>(type);
    RunningLogService service;
    service.addUser("USER");
    enableAllButOne(service, logType);
    LoggerMessage::LogMessage(logType, "USER", "not", "wanted");
    enableOne(service, logType);
    LoggerMessage::LogMessage(logType, "USER", "a", "b");
    LoggerMessage::logFile(logType, "USER", "direct");

    const QStringList lines = service.closeAndTakeLines();
    QCOMPARE(lines.size(), 2);
    QVERIFY(afterTime(lines[0]).startsWith(" USER " + level + ' '));
    QVERIFY(lines[0].endsWith("*  a, b"));
    QVERIFY(afterTime(lines[1]).startsWith(" USER " + level + ' '));
    QVERIFY(lines[1].endsWith("*  direct"));
}

void LoggerMessageTest::messageGoesToTheConsoleAlone()
{
    RunningLogService service;
    const auto device = QSharedPointer<QBuffer>::create();
    service->getLoggerObject("PRIVATE", device, QString(), {});
    service->enableUserOutput("PRIVATE", true);
    service->enableConsoleLog(true);
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogInfo, "PRIVATE", "a", "b");
    QCOMPARE(recorder.messages(), debugMessage("a, b\n"));
    QVERIFY(service.closeAndTakeLines().isEmpty());
    QVERIFY(device->data().isEmpty());
}

void LoggerMessageTest::messageGoesToTheLogAlone()
{
    RunningLogService service;
    service.addUser("USER");
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogInfo, "USER", "a", "b");
    QCOMPARE(service.closeAndTakeLines().size(), 1);
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::messageOfADisabledUserIsDropped_data()
{
    consoleRows();
}

void LoggerMessageTest::messageOfADisabledUserIsDropped()
{
    QFETCH(bool, console);
    RunningLogService service;
    service->getLoggerObject("USER");
    service->enableConsoleLog(console);
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogError, "USER", "a", "b");
    LoggerMessage::LogMessage(LoggerMessage::LogError, "UNKNOWN", "a", "b");
    QVERIFY(!service->isUserExists("UNKNOWN"));
    QVERIFY(service.closeAndTakeLines().isEmpty());
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::messageIsDroppedWhileTheLoggerIsOff_data()
{
    consoleRows();
}

void LoggerMessageTest::messageIsDroppedWhileTheLoggerIsOff()
{
    QFETCH(bool, console);
    RunningLogService service;
    service.addUser("USER");
    service->enableConsoleLog(console);
    service->enableLogger(false);
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogError, "USER", "a", "b");
    QVERIFY(service.closeAndTakeLines().isEmpty());
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::messageOfTheServicesOwnUserIsDropped()
{
    RunningLogService service;
    service->enableUserOutput("LOGGER", true);
    service->enableConsoleLog(true);
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(LoggerMessage::LogError, "LOGGER", "a", "b");
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::messageOfAPrivateUserGoesToItsDevice()
{
    RunningLogService service;
    const auto device = QSharedPointer<QBuffer>::create();
    service->getLoggerObject("PRIVATE", device, QString(), {});
    service->enableUserOutput("PRIVATE", true);
    LoggerMessage::LogMessage(LoggerMessage::LogInfo, "PRIVATE", "a", "b");
    // A device of its own bypasses the logger switch, this call does not.
    service->enableLogger(false);
    LoggerMessage::LogMessage(LoggerMessage::LogInfo, "PRIVATE", "not", "wanted");
    QVERIFY(service.closeAndTakeLines().isEmpty());
    const QStringList lines = RunningLogService::linesOf(*device);
    QCOMPARE(lines.size(), 1);
    QCOMPARE(afterTime(lines[0]), QStringLiteral(" a, b"));
}

void LoggerMessageTest::messageMayComeFromAnyThread()
{
    RunningLogService service;
    service.addUser("USER");
    const std::unique_ptr<QThread> thread(QThread::create(
        [] { LoggerMessage::LogMessage(LoggerMessage::LogInfo, "USER", "a", "b"); }));
    thread->start();
    QVERIFY(thread->wait());
    const QStringList lines = service.closeAndTakeLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines[0].endsWith("   a, b")); // no mark of the main thread
}

void LoggerMessageTest::numberThatIsNoTypeDoesNothing_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("first past the last") << 4;
    QTest::newRow("far past the last") << 1000000;
    QTest::newRow("negative") << -1;
}

void LoggerMessageTest::numberThatIsNoTypeDoesNothing()
{
    QFETCH(int, type);
    const auto logType = static_cast<LoggerMessage::LogType>(type);
    RunningLogService service;
    service.addUser("USER");
    const MessageRecorder recorder;
    LoggerMessage::LogMessage(logType, "USER", "a", "b");
    LoggerMessage::logFile(logType, "USER", "a");
    LoggerMessage::logFile(logType, "UNKNOWN", "a");
    service->enableConsoleLog(true);
    LoggerMessage::LogMessage(logType, "USER", "a", "b");
    LoggerMessage::logCosole(logType, "a");
    QVERIFY(!service->isUserExists("UNKNOWN"));
    QVERIFY(service.closeAndTakeLines().isEmpty());
    QVERIFY(recorder.messages().isEmpty());
}

void LoggerMessageTest::logFileMakesItsUser()
{
    RunningLogService service;
    LoggerMessage::logFile(LoggerMessage::LogError, "NEW", "not wanted");
    QVERIFY(service->isUserExists("NEW"));
    QVERIFY(!service->isUserEnabled("NEW"));
    QVERIFY(service.closeAndTakeLines().isEmpty());
}

void LoggerMessageTest::logFilePrefixesNothing()
{
    RunningLogService service;
    service.addUser("USER");
    LoggerMessage::logFile(LoggerMessage::LogError, "USER", "%s %d 100%");
    QVERIFY(service.closeAndTakeLines().value(0).endsWith("*  %s %d 100%"));
}

void LoggerMessageTest::handleIsTheUsersLogger()
{
    const RunningLogService service;
    const auto logger = LoggerMessage::GetLoggerHandle("USER");
    QVERIFY(!logger.isNull());
    QVERIFY(service->isUserExists("USER"));
    QCOMPARE(logger.data(),
             static_cast<PkLogger::Logger*>(service->getLoggerObject("USER").data()));
    QCOMPARE(LoggerMessage::GetLoggerHandle("USER"), logger);
}

void LoggerMessageTest::handleIsRefusedWhenTheTableIsFull()
{
    RunningLogService service;
    for (int user = 1; user < 64; ++user) { // beside the service's own
        QVERIFY(!LoggerMessage::GetLoggerHandle(QString::number(user)).isNull());
    }
    QVERIFY(LoggerMessage::GetLoggerHandle("64").isNull());
    LoggerMessage::logFile(LoggerMessage::LogError, "64", "not wanted");
    QVERIFY(service.closeAndTakeLines().isEmpty());
}

QTEST_GUILESS_MAIN(LoggerMessageTest)
#include "LoggerMessageTest.moc"

#include "ZelMain/Diagnostics/LogLine.h"

#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/UserEntry.h"
#include "tests/ZelMain/Diagnostics/RecordingDevice.h"

#include <QtTest>

#include <thread>

using PkLogger::LogEntry;
using PkLogger::LoggerDataLogInterface;
using PkLogger::LogLine;
using PkLogger::LogService;
using PkLogger::LogServiceImpl;
using PkLogger::TimeText;
using PkLogger::UserEntry;

namespace {

constexpr quintptr THREAD_NUMBER = 140737353758592;
const QString TIME = QStringLiteral("02 Mar 2026 03:04:05.006");

LogEntry newEntry(const QString& message,
                  LoggerDataLogInterface::LOGLEVEL level = LoggerDataLogInterface::LOG_INFO)
{
    LogEntry entry;
    entry.message = message;
    entry.time = {QDateTime(QDate(2026, 3, 2), QTime(3, 4, 5, 6)), 0};
    entry.level = level;
    entry.thread = reinterpret_cast<QThread*>(THREAD_NUMBER); // a number only
    return entry;
}

UserEntry commonUser(const QString& name = QStringLiteral("DATABASE       "))
{
    UserEntry user;
    user.name = name;
    return user;
}

UserEntry privateUser(const QString& timeFormat, LogService::OutFormatOptions options)
{
    UserEntry user = commonUser(QStringLiteral("ALERTS"));
    user.device = QSharedPointer<RecordingDevice>::create();
    user.timeText = TimeText(timeFormat);
    user.options = options;
    return user;
}

QByteArray lineOf(const LogEntry& entry, UserEntry user, LogService::LogOptions options = {})
{
    LogLine line;
    const LogLine::Text text = line.getFormattedString(entry, user, options);
    return QByteArray(text.data, static_cast<int>(text.size));
}

/** The line by the book: one argument after the other. */
QByteArray lineByTemplate(const LogEntry& entry, const QString& userName)
{
    static const QStringList words{" DEBUG   ", " INFO    ", " WARNING ", " ERROR   "};
    return QStringLiteral("%1 %2 %3 %4%5  %6\n")
        .arg(TIME)
        .arg(userName)
        .arg(words.at(entry.level))
        .arg(static_cast<quint64>(THREAD_NUMBER))
        .arg(entry.isFromMainThread ? QChar('*') : QChar(' '))
        .arg(entry.message)
        .toLatin1();
}

// What stands before the message in the line of newEntry() and commonUser().
constexpr int COMMON_PREFIX_SIZE = 24 + 1 + 15 + 1 + 9 + 1 + 15 + 1 + 2;
constexpr char TOO_LONG[] = "ATTENTION!ATTENTION!ATTENTION!   Log String size is bigger "
                            "MAX_LOG_MSG_SIZE =  2061";

} // namespace

class LogLineTest : public QObject
{
    Q_OBJECT

private slots:
    void commonLayoutHasItsColumns_data();
    void commonLayoutHasItsColumns();
    void commonLayoutIgnoresTheOptions();
    void mainThreadIsMarked();
    void placeMarkersInTheNameTakeTheNextArguments_data();
    void placeMarkersInTheNameTakeTheNextArguments();
    void messageIsNeverAPattern_data();
    void messageIsNeverAPattern();
    void lineIsLatin1_data();
    void lineIsLatin1();

    void privateLayoutFollowsTheOptions_data();
    void privateLayoutFollowsTheOptions();
    void privateTimeFormat_data();
    void privateTimeFormat();

    void longLineIsCutMarkedAndReported_data();
    void longLineIsCutMarkedAndReported();
    void lineOfTheLimitIsLeftAlone();
    void longLineOnAPrivateDeviceIsCutToo();
    void veryLongNameIsCut();
    void longPatternLineIsCut();
    void lineAfterALongOneIsWhole();

    void loggedLineHasCallersTimeAndThread();
    void reportOfALongLineComesFromTheWriter();
};

void LogLineTest::commonLayoutHasItsColumns_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QByteArray>("line");
    const QByteArray before = "02 Mar 2026 03:04:05.006 DATABASE        ";
    const QByteArray after = " 140737353758592   a message\n";
    QTest::newRow("debug") << 0 << before + " DEBUG   " + after;
    QTest::newRow("info") << 1 << before + " INFO    " + after;
    QTest::newRow("warning") << 2 << before + " WARNING " + after;
    QTest::newRow("error") << 3 << before + " ERROR   " + after;
}

void LogLineTest::commonLayoutHasItsColumns()
{
    QFETCH(int, level);
    const LogEntry entry =
        newEntry("a message", static_cast<LoggerDataLogInterface::LOGLEVEL>(level));
    QTEST(lineOf(entry, commonUser()), "line");
}

void LogLineTest::commonLayoutIgnoresTheOptions()
{
    UserEntry user = commonUser();
    user.options = LogService::OutUserName;
    user.timeText = TimeText(QStringLiteral("yyyy"));
    const LogEntry entry = newEntry("a message");
    QCOMPARE(lineOf(entry, user, LogService::LogThread | LogService::LogLevel),
             lineOf(entry, commonUser()));
}

void LogLineTest::mainThreadIsMarked()
{
    LogEntry entry = newEntry("a message");
    QVERIFY(lineOf(entry, commonUser()).endsWith(" 140737353758592   a message\n"));
    entry.isFromMainThread = true;
    QVERIFY(lineOf(entry, commonUser()).endsWith(" 140737353758592*  a message\n"));
    QVERIFY(lineOf(entry, privateUser(QString(), {}), LogService::LogThread)
                .endsWith(" 140737353758592*a message\n"));
}

void LogLineTest::placeMarkersInTheNameTakeTheNextArguments_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("rest"); // of the line, after the time
    // Level, thread, marker and message take the lowest numbered markers that are left.
    QTest::newRow("its own number goes to the level, twice")
        << "%3" << QByteArray(" INFO      INFO     140737353758592   message\n");
    QTest::newRow("lower number moves all on")
        << "%1" << QByteArray(" INFO     140737353758592  message  %6\n");
    QTest::newRow("message in the name")
        << "%6" << QByteArray("message  INFO     140737353758592   message\n");
    QTest::newRow("number beyond")
        << "%7" << QByteArray("%7  INFO     140737353758592   message\n");
    QTest::newRow("no number") << "100%"
                               << QByteArray("100%  INFO     140737353758592   message\n");
    QTest::newRow("localised") << "%L3"
                               << QByteArray(" INFO      INFO     140737353758592   message\n");
}

void LogLineTest::placeMarkersInTheNameTakeTheNextArguments()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, rest);
    const LogEntry entry = newEntry("message");
    QCOMPARE(lineOf(entry, commonUser(name)), TIME.toLatin1() + ' ' + rest);
    QCOMPARE(lineOf(entry, commonUser(name)), lineByTemplate(entry, name));
}

void LogLineTest::messageIsNeverAPattern_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    QTest::newRow("lowest number") << "NAME"
                                   << "%1";
    QTest::newRow("all numbers") << "NAME"
                                 << "%1%2%3%4%5%6%7%L1%99";
    QTest::newRow("beside a name with a marker") << "%3"
                                                 << "%1 %2";
    QTest::newRow("line break") << "NAME"
                                << "one\ntwo\r\n";
    QTest::newRow("empty") << "NAME"
                           << "";
    QTest::newRow("null") << "NAME" << QString();
    QTest::newRow("empty name") << ""
                                << "message";
}

void LogLineTest::messageIsNeverAPattern()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    const LogEntry entry = newEntry(message);
    const QByteArray line = lineOf(entry, commonUser(name));
    QCOMPARE(line, lineByTemplate(entry, name));
    QVERIFY(line.endsWith("  " + message.toLatin1() + "\n"));
}

void LogLineTest::lineIsLatin1_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("latin1");
    QTest::newRow("last of Latin-1") << QString(QChar(0xff)) << QByteArray("\xff");
    QTest::newRow("first beyond") << QString(QChar(0x100)) << QByteArray("?");
    QTest::newRow("euro") << QString(QChar(0x20ac)) << QByteArray("?");
    QTest::newRow("a character of two units")
        << QString::fromUtf8("\xf0\x9f\x8e\xa4") << QByteArray("??");
    QTest::newRow("zero") << QString(QChar(0)) << QByteArray("\0", 1);
    QTest::newRow("low byte alone would be a line feed")
        << QString(QChar(0x10a)) << QByteArray("?");
}

void LogLineTest::lineIsLatin1()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, latin1);
    const LogEntry entry = newEntry("a" + text + "z");
    const UserEntry user = commonUser("n" + text);
    const QByteArray line = lineOf(entry, user);
    QVERIFY(line.contains(" n" + latin1 + " "));
    QVERIFY(line.endsWith("  a" + latin1 + "z\n"));
    QCOMPARE(line, lineByTemplate(entry, user.name));
}

void LogLineTest::privateLayoutFollowsTheOptions_data()
{
    QTest::addColumn<int>("userOptions");
    QTest::addColumn<int>("serviceOptions");
    QTest::addColumn<QByteArray>("line");
    const QByteArray time = TIME.toLatin1() + ' ';
    QTest::newRow("nothing") << 0 << 0 << time + "text\n";
    QTest::newRow("name") << 1 << 0 << time + "ALERTS text\n";
    QTest::newRow("other bits of the user's options") << 6 << 0 << time + "text\n";
    QTest::newRow("thread") << 0 << 1 << time + "140737353758592 text\n";
    QTest::newRow("level, which brings the thread")
        << 0 << 2 << time + " WARNING 140737353758592 text\n";
    QTest::newRow("thread and level") << 0 << 3 << time + " WARNING 140737353758592 text\n";
    QTest::newRow("other bits of the service's options") << 0 << 12 << time + "text\n";
    QTest::newRow("all") << 1 << 3 << time + "ALERTS  WARNING 140737353758592 text\n";
}

void LogLineTest::privateLayoutFollowsTheOptions()
{
    QFETCH(int, userOptions);
    QFETCH(int, serviceOptions);
    const UserEntry user = privateUser(QString(), LogService::OutFormatOptions(QFlag(userOptions)));
    QTEST(lineOf(newEntry("text", LoggerDataLogInterface::LOG_WARNING), user,
                 LogService::LogOptions(QFlag(serviceOptions))),
          "line");
}

void LogLineTest::privateTimeFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("none: with milliseconds") << "" << QByteArray("02 Mar 2026 03:04:05.006 x\n");
    QTest::newRow("seconds") << "dd MMM yyyy hh:mm:ss" << QByteArray("02 Mar 2026 03:04:05 x\n");
    QTest::newRow("milliseconds in front") << "zzz ss" << QByteArray("006 05 x\n");
    QTest::newRow("short milliseconds") << "ss.z" << QByteArray("05.006 x\n");
    QTest::newRow("text only") << "'%1 at'" << QByteArray("%1 at x\n");
}

void LogLineTest::privateTimeFormat()
{
    QFETCH(QString, format);
    QTEST(lineOf(newEntry("x"), privateUser(format, {})), "line");
}

void LogLineTest::longLineIsCutMarkedAndReported_data()
{
    QTest::addColumn<int>("messageSize");
    QTest::newRow("2000 characters") << 2000;
    QTest::newRow("one too many") << 2048 - COMMON_PREFIX_SIZE;
    QTest::newRow("a million") << 1000000;
}

void LogLineTest::longLineIsCutMarkedAndReported()
{
    QFETCH(int, messageSize);
    QTest::ignoreMessage(QtDebugMsg, TOO_LONG);
    const LogEntry entry = newEntry(QString(messageSize, 'x'));
    const QByteArray line = lineOf(entry, commonUser());
    QCOMPARE(line.size(), 2061);
    QCOMPARE(line, lineByTemplate(entry, commonUser().name).left(2047) + " < TRANCATED >");
}

void LogLineTest::lineOfTheLimitIsLeftAlone()
{
    const LogEntry entry = newEntry(QString(2048 - COMMON_PREFIX_SIZE - 1, 'x'));
    const QByteArray line = lineOf(entry, commonUser());
    QCOMPARE(line.size(), 2048);
    QCOMPARE(line, lineByTemplate(entry, commonUser().name));
}

void LogLineTest::longLineOnAPrivateDeviceIsCutToo()
{
    const UserEntry user = privateUser(QStringLiteral("'T'"), {});
    QCOMPARE(lineOf(newEntry(QString(2045, 'x')), user), "T " + QByteArray(2045, 'x') + "\n");
    QTest::ignoreMessage(QtDebugMsg, TOO_LONG);
    QCOMPARE(lineOf(newEntry(QString(2046, 'x')), user),
             "T " + QByteArray(2045, 'x') + " < TRANCATED >");
}

void LogLineTest::veryLongNameIsCut()
{
    QTest::ignoreMessage(QtDebugMsg, TOO_LONG);
    const QString name(5000, 'n');
    QCOMPARE(lineOf(newEntry("message"), commonUser(name)),
             lineByTemplate(newEntry("message"), name).left(2047) + " < TRANCATED >");
}

void LogLineTest::longPatternLineIsCut()
{
    QTest::ignoreMessage(QtDebugMsg, TOO_LONG);
    const LogEntry entry = newEntry(QString(3000, 'x'));
    QCOMPARE(lineOf(entry, commonUser("%6")),
             lineByTemplate(entry, "%6").left(2047) + " < TRANCATED >");
}

void LogLineTest::lineAfterALongOneIsWhole()
{
    LogLine line;
    UserEntry user = commonUser();
    QTest::ignoreMessage(QtDebugMsg, TOO_LONG);
    line.getFormattedString(newEntry(QString(3000, 'x')), user, {});
    const LogEntry entry = newEntry("message");
    const LogLine::Text text = line.getFormattedString(entry, user, {});
    QCOMPARE(QByteArray(text.data, static_cast<int>(text.size)), lineByTemplate(entry, user.name));
}

void LogLineTest::loggedLineHasCallersTimeAndThread()
{
    const auto service = LogServiceImpl::getLogServicePointer();
    const auto device = QSharedPointer<RecordingDevice>::create();
    service->initLogService({});
    service->registerOutputDevice(device);
    service->enableLogger(true);
    service->enableErrorOutput(true);
    service->getLoggerObject("NAME");
    service->enableUserOutput("NAME", true);

    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(service->logString(1, LoggerDataLogInterface::LOG_ERROR, "main"));
    quint64 otherThread = 0;
    std::thread other([&] {
        otherThread = reinterpret_cast<quintptr>(QThread::currentThread());
        QVERIFY(service->logString(1, LoggerDataLogInterface::LOG_ERROR, "other"));
    });
    other.join();
    const QDateTime after = QDateTime::currentDateTime();
    service->closeLogger();

    const QList<QByteArray> lines = device->lines();
    QCOMPARE(lines.size(), 2);
    for (const QByteArray& line : lines) {
        const QDateTime time = QDateTime::fromString(QString::fromLatin1(line.left(24)),
                                                     LogServiceImpl::DEFAULT_TIME_FORMAT);
        QVERIFY2(time >= before && time <= after, line.constData());
    }
    const auto mainThread = reinterpret_cast<quintptr>(QThread::currentThread());
    QCOMPARE(lines.at(0).mid(24),
             " NAME  ERROR    " + QByteArray::number(quint64(mainThread)) + "*  main\n");
    QCOMPARE(lines.at(1).mid(24),
             " NAME  ERROR    " + QByteArray::number(otherThread) + "   other\n");
}

namespace {

std::atomic<QThread*> reporter{nullptr};

void noteReporter(QtMsgType /*type*/, const QMessageLogContext& context, const QString& message)
{
    if (message == TOO_LONG && qstrcmp(context.category, "default") == 0) {
        reporter = QThread::currentThread();
    }
}

} // namespace

void LogLineTest::reportOfALongLineComesFromTheWriter()
{
    const auto service = LogServiceImpl::getLogServicePointer();
    const auto device = QSharedPointer<RecordingDevice>::create();
    service->initLogService({});
    service->getLoggerObject("PRIVATE", device, QString(), {});
    service->enableUserOutput("PRIVATE", true);
    const QtMessageHandler handler = qInstallMessageHandler(noteReporter);
    service->logString(1, LoggerDataLogInterface::LOG_INFO, QString(3000, 'x'));
    service->closeLogger();
    qInstallMessageHandler(handler);
    QVERIFY(reporter != nullptr);
    QVERIFY(reporter != QThread::currentThread());
    QVERIFY(device->text().endsWith(" < TRANCATED >"));
}

QTEST_GUILESS_MAIN(LogLineTest)
#include "LogLineTest.moc"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/** What becomes of the lines when the process that logs them ends, forks or crashes. */
class LogServiceProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everyQueuedLineIsWrittenAtTheEnd_data();
    void everyQueuedLineIsWrittenAtTheEnd();
    void cleanupUnderWayAtTheEndDoesNoHarm();
    void threadThatStillRunsAtTheEndDoesNoHarm();
    void forkedChildWritesNothingTwice_data();
    void forkedChildWritesNothingTwice();
    void crashLeavesWholeLines_data();
    void crashLeavesWholeLines();
    void idleServiceWakesUpNoThread();

private:
    QString path(const QString& suffix = QString()) const
    {
        return m_folder->filePath("log.txt") + suffix;
    }
    void run(const QString& way);
    QList<QByteArray> wholeLines(const QString& file);
    void expectNumberedLines(const QList<QByteArray>& lines, int count);

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_output;
    bool m_hasCrashed = false;
    int m_status = -1;
};

void LogServiceProcessTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void LogServiceProcessTest::run(const QString& way)
{
    QProcess process;
#ifdef __SANITIZE_ADDRESS__
    if (way.startsWith("fork-")) {
        // In a child the leak search waits for threads of the parent and misses what they hold.
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
        process.setProcessEnvironment(environment);
    }
#endif
    process.start(QStringLiteral(LOG_PROCESS), {way, path()});
    QVERIFY2(process.waitForFinished(120000), qPrintable(way + " does not end"));
    m_output = process.readAllStandardOutput();
    m_hasCrashed = process.exitStatus() == QProcess::CrashExit;
    m_status = process.exitCode();
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

QList<QByteArray> LogServiceProcessTest::wholeLines(const QString& file)
{
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly)) {
        return {};
    }
    QList<QByteArray> lines = log.readAll().split('\n');
    lines.removeLast(); // what follows the last line feed
    return lines;
}

/** Lines 0 to count - 1, each with a time and the main thread's mark where it was logged there. */
void LogServiceProcessTest::expectNumberedLines(const QList<QByteArray>& lines, int count)
{
    QVERIFY2(lines.size() >= count, QByteArray::number(lines.size()));
    for (int number = 0; number < count; ++number) {
        const QString line = QString::fromLatin1(lines.at(number));
        QVERIFY2(QDateTime::fromString(line.left(24), "dd MMM yyyy hh:mm:ss.zzz").isValid(),
                 qPrintable(line));
        QVERIFY2(line.endsWith(QStringLiteral("  line %1").arg(number)), qPrintable(line));
    }
}

void LogServiceProcessTest::everyQueuedLineIsWrittenAtTheEnd_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<bool>("hasLastWords");
    QTest::newRow("service is not closed") << "end-without-closing" << QByteArray() << false;
    QTest::newRow("static made before the start comes too late")
        << "end-with-an-earlier-static" << QByteArray("refused\n") << false;
    QTest::newRow("static made after the start is heard")
        << "end-with-a-later-static" << QByteArray("accepted\n") << true;
    QTest::newRow("exit handler from before the start comes too late")
        << "end-with-an-earlier-handler" << QByteArray("refused\n") << false;
    QTest::newRow("exit handler from after the start is heard")
        << "end-with-a-later-handler" << QByteArray("accepted\n") << true;
    QTest::newRow("service is started while the process ends")
        << "start-from-an-exit-handler" << QByteArray() << false;
}

void LogServiceProcessTest::everyQueuedLineIsWrittenAtTheEnd()
{
    QFETCH(QString, way);
    QFETCH(bool, hasLastWords);
    run(way);
    QVERIFY(!m_hasCrashed);
    QCOMPARE(m_status, 0);
    QTEST(m_output, "output");
    const QList<QByteArray> lines = wholeLines(path());
    QCOMPARE(lines.size(), hasLastWords ? 1001 : 1000);
    expectNumberedLines(lines, 1000);
    if (hasLastWords) {
        QVERIFY(lines.last().endsWith("  last words"));
    }
    if (way != "start-from-an-exit-handler") { // the application is gone by then
        QVERIFY(lines.at(999).contains("*  line "));
    }
}

void LogServiceProcessTest::cleanupUnderWayAtTheEndDoesNoHarm()
{
    const QString logFolder = QDir::homePath() + "/Documents/Velto/LogFiles";
    QVERIFY(QDir().mkpath(logFolder));
    for (int number = 0; number < 500; ++number) { // each is looked at
        QFile other(logFolder + QStringLiteral("/%1.txt").arg(number));
        QVERIFY(other.open(QIODevice::WriteOnly));
    }
    for (int round = 0; round < 10; ++round) {
        run("end-at-once");
        QVERIFY(!m_hasCrashed);
        QCOMPARE(m_status, 0);
        QCOMPARE(wholeLines(path()).size(), 1);
    }
}

void LogServiceProcessTest::threadThatStillRunsAtTheEndDoesNoHarm()
{
    run("end-with-a-running-thread");
    QVERIFY(!m_hasCrashed);
    QCOMPARE(m_status, 0);
    expectNumberedLines(wholeLines(path()), 1000);
}

void LogServiceProcessTest::forkedChildWritesNothingTwice_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("when all is written") << "fork-when-idle";
#ifndef __SANITIZE_ADDRESS__
    // A child of the address sanitizer waits for ever for the locks of its allocator that another
    // thread held at the fork; the C library's own allocator is whole in a child.
    QTest::newRow("while lines are written") << "fork-under-load";
#endif
}

void LogServiceProcessTest::forkedChildWritesNothingTwice()
{
    QFETCH(QString, way);
    run(way);
    QVERIFY(!m_hasCrashed);
    QCOMPARE(m_status, 0);
    const QList<QByteArray> lines = wholeLines(path());
    QCOMPARE(m_output, QByteArray::number(lines.size()) + " lines, 0 failures\n");
    expectNumberedLines(lines, lines.size());
    for (int child = 0; child < 20; child += 2) { // those started the service anew
        const QList<QByteArray> own = wholeLines(path(".child" + QString::number(child)));
        QCOMPARE(own.size(), 1000);
        expectNumberedLines(own, 1000);
    }
}

void LogServiceProcessTest::crashLeavesWholeLines_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<int>("leastLines");
    QTest::newRow("idle: all lines") << "crash-when-idle" << 10;
    QTest::newRow("under load: those flushed so far") << "crash-under-load" << 1000;
}

void LogServiceProcessTest::crashLeavesWholeLines()
{
    QFETCH(QString, way);
    QFETCH(int, leastLines);
    run(way);
    QVERIFY(m_hasCrashed);
    const QList<QByteArray> lines = wholeLines(path());
    QVERIFY(lines.size() >= leastLines);
    expectNumberedLines(lines, lines.size());
}

void LogServiceProcessTest::idleServiceWakesUpNoThread()
{
    run("idle");
    QCOMPARE(m_status, 0);
}

QTEST_GUILESS_MAIN(LogServiceProcessTest)
#include "LogServiceProcessTest.moc"

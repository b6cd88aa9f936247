#include "ZelMain/Diagnostics/LogFilesCleanupThread.h"

#include "ZelMain/Diagnostics/FileOutDevConfig.h"
#include "tests/support/BlockedFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <memory>

using PkLogger::FileOutDevConfig;
using PkLogger::LogFilesCleanupThread;

class LogFilesCleanupThreadTest : public QObject
{
    Q_OBJECT

    QString makeFile(const QString& folder, const QString& name) const;
    QString home() const { return m_home->path(); }
    QString logFolder() const { return home() + "/Documents/Velto/LogFiles"; }

    std::unique_ptr<QTemporaryDir> m_home;

private slots:
    void init();

    void filesBeforeTheAgeLimitGo();
    void filesWithinTheAgeLimitStay_data();
    void filesWithinTheAgeLimitStay();
    void folderAndNameAreThoseOfTheMaking();
    void makingItFindsTheLogFolder();
    void threadWithoutAFolderRemovesNothing();
    void passEndsByItselfAndMayBeRepeated();
    void passIsNotBrokenOff();
    void passThatIsAskedToStopRemovesNoMore();
    void threadBelongsToItsParent();
};

namespace {

void runOnce(LogFilesCleanupThread& thread)
{
    thread.start();
    QVERIFY(thread.wait());
}

} // namespace

/** Each test starts in the fresh account of a new user. */
void LogFilesCleanupThreadTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("HOME", QFile::encodeName(home()));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home() + "/.config");
}

/** Makes a file and sees the clock leave the moment of its creation. */
QString LogFilesCleanupThreadTest::makeFile(const QString& folder, const QString& name) const
{
    QDir().mkpath(folder);
    QFile file(folder + '/' + name);
    if (!file.open(QIODevice::WriteOnly)) {
        return {};
    }
    const QFileInfo made(file.fileName());
    while (QDateTime::currentDateTime() <= made.metadataChangeTime()) {
        QThread::yieldCurrentThread();
    }
    return file.fileName();
}

void LogFilesCleanupThreadTest::filesBeforeTheAgeLimitGo()
{
    const QString old = makeFile(logFolder(), "1 ZelLogFile 2.txt");
    const QString other = makeFile(logFolder(), "1 ZelLogFile 2.log");
    const QString strangers = makeFile(logFolder(), "Notes.txt");
    LogFilesCleanupThread thread(0, nullptr);
    QVERIFY(QFile::exists(old));
    runOnce(thread);
    QVERIFY(!QFile::exists(old));
    QVERIFY(QFile::exists(other));
    QVERIFY(QFile::exists(strangers));
}

void LogFilesCleanupThreadTest::filesWithinTheAgeLimitStay_data()
{
    QTest::addColumn<unsigned int>("months");
    QTest::newRow("one month") << 1U;
    QTest::newRow("more months than time has") << std::numeric_limits<unsigned int>::max();
}

void LogFilesCleanupThreadTest::filesWithinTheAgeLimitStay()
{
    QFETCH(unsigned int, months);
    const QString young = makeFile(logFolder(), "ZelLogFile.txt");
    LogFilesCleanupThread thread(months, nullptr);
    runOnce(thread);
    QVERIFY(QFile::exists(young));
}

void LogFilesCleanupThreadTest::folderAndNameAreThoseOfTheMaking()
{
    const QString mine = makeFile(home() + "/before", "My Log.txt");
    const QString others = makeFile(home() + "/after", "Other.txt");
    const QString othersBefore = makeFile(home() + "/before", "Other.txt");
    FileOutDevConfig config("banner");
    config.rememberFolderName(home() + "/before");
    config.rememberBaseFileName("My Log");
    LogFilesCleanupThread thread(0, nullptr);
    config.rememberFolderName(home() + "/after");
    config.rememberBaseFileName("Other");
    runOnce(thread);
    QVERIFY(!QFile::exists(mine));
    QVERIFY(QFile::exists(others));
    QVERIFY(QFile::exists(othersBefore));
}

void LogFilesCleanupThreadTest::makingItFindsTheLogFolder()
{
    const LogFilesCleanupThread thread(1, nullptr);
    QVERIFY(QDir(logFolder()).exists());
    QCOMPARE(QSettings("Velto", "Zel6").value("Recently Opened Directories/LogFiles").toString(),
             logFolder());
    QVERIFY(!thread.isRunning());
}

void LogFilesCleanupThreadTest::threadWithoutAFolderRemovesNothing()
{
    const QString before = QDir::currentPath();
    const QString here = makeFile(home() + "/here", "ZelLogFile.txt");
    QVERIFY(QDir::setCurrent(home() + "/here"));
    LogFilesCleanupThread thread(nullptr);
    runOnce(thread);
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(QFile::exists(here));
    QVERIFY(!QDir(logFolder()).exists());
}

void LogFilesCleanupThreadTest::passEndsByItselfAndMayBeRepeated()
{
    LogFilesCleanupThread thread(0, nullptr);
    runOnce(thread);
    QVERIFY(thread.isFinished());
    const QString old = makeFile(logFolder(), "ZelLogFile.txt");
    runOnce(thread);
    QVERIFY(!QFile::exists(old));
}

void LogFilesCleanupThreadTest::passIsNotBrokenOff()
{
    const QString old = makeFile(logFolder(), "ZelLogFile.txt");
    LogFilesCleanupThread thread(0, nullptr);
    BlockedFolder folder(logFolder());
    thread.start();
    QVERIFY(folder.waitUntilReached());
    thread.terminate();
    folder.release();
    QVERIFY(thread.wait());
    QVERIFY(!QFile::exists(old));
}

void LogFilesCleanupThreadTest::passThatIsAskedToStopRemovesNoMore()
{
    const QString old = makeFile(logFolder(), "ZelLogFile.txt");
    LogFilesCleanupThread thread(0, nullptr);
    {
        BlockedFolder folder(logFolder());
        thread.start();
        QVERIFY(folder.waitUntilReached());
        thread.requestInterruption();
    }
    QVERIFY(thread.wait());
    QVERIFY(QFile::exists(old));
    runOnce(thread);
    QVERIFY(!QFile::exists(old)); // the next pass was not asked
}

void LogFilesCleanupThreadTest::threadBelongsToItsParent()
{
    QObject parent;
    const auto* first = new LogFilesCleanupThread(1, &parent);
    const auto* second = new LogFilesCleanupThread(&parent);
    QCOMPARE(first->parent(), &parent);
    QCOMPARE(second->parent(), &parent);
}

QTEST_GUILESS_MAIN(LogFilesCleanupThreadTest)
#include "LogFilesCleanupThreadTest.moc"

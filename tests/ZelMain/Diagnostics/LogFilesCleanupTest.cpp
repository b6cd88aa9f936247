#include "ZelMain/Diagnostics/LogFilesCleanup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <memory>
#include <sys/stat.h>

class LogFilesCleanupTest : public QObject
{
    Q_OBJECT

    QString path(const QString& name) const { return m_folder->filePath(name); }
    void makeFile(const QString& name) const;
    QStringList namesLeft() const;

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init();

    void cutOffGoesBackByCalendarMonths_data();
    void cutOffGoesBackByCalendarMonths();
    void noFileIsOlderThanCountlessMonths_data();
    void noFileIsOlderThanCountlessMonths();
    void fileOfFortyDaysIsOlderThanAMonth_data();
    void fileOfFortyDaysIsOlderThanAMonth();
    void ageDecidesOnRemoval_data();
    void ageDecidesOnRemoval();
    void birthIsTheTimeOfCreation();
    void statusChangeStandsInForAMissingBirth();

    void nameDecidesOnRemoval_data();
    void nameDecidesOnRemoval();
    void otherExtensionStaysWhateverItsAge();
    void hiddenFileStays();
    void pipeStays();
    void folderStays();
    void fileInASubfolderStays();
    void fileThatCannotBeRemovedDoesNotEndThePass();
    void linkGoesAndItsFileStays();
    void filesFromTheFutureOfAClockSetBackStay();
    void tenThousandFilesGoFromBetweenOthers();

    void emptyFolderNameIsNoFolder();
    void missingFolderIsNoFailure();
};

namespace {

/** A cut-off that every file of this run lies before. */
QDateTime tomorrow()
{
    return QDateTime::currentDateTime().addDays(1);
}

} // namespace

void LogFilesCleanupTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void LogFilesCleanupTest::makeFile(const QString& name) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QStringList LogFilesCleanupTest::namesLeft() const
{
    return QDir(m_folder->path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void LogFilesCleanupTest::cutOffGoesBackByCalendarMonths_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<unsigned int>("months");
    QTest::addColumn<QDateTime>("cutOff");
    const QTime time(12, 34, 56, 789);
    QTest::newRow("one") << QDateTime({2024, 6, 15}, time) << 1U << QDateTime({2024, 5, 15}, time);
    QTest::newRow("none") << QDateTime({2024, 6, 15}, time) << 0U << QDateTime({2024, 6, 15}, time);
    QTest::newRow("over the turn of the year")
        << QDateTime({2024, 1, 15}, time) << 14U << QDateTime({2022, 11, 15}, time);
    QTest::newRow("shorter month ends earlier")
        << QDateTime({2023, 3, 31}, time) << 1U << QDateTime({2023, 2, 28}, time);
    QTest::newRow("from the leap day to a month that has it")
        << QDateTime({2024, 2, 29}, time) << 1U << QDateTime({2024, 1, 29}, time);
    QTest::newRow("from the leap day to a year without one")
        << QDateTime({2024, 2, 29}, time) << 12U << QDateTime({2023, 2, 28}, time);
    QTest::newRow("leap year") << QDateTime({2024, 3, 30}, time) << 1U
                               << QDateTime({2024, 2, 29}, time);
}

void LogFilesCleanupTest::cutOffGoesBackByCalendarMonths()
{
    QFETCH(QDateTime, now);
    QFETCH(unsigned int, months);
    QTEST(PkLogger::cleanupCutOff(now, months), "cutOff");
}

void LogFilesCleanupTest::noFileIsOlderThanCountlessMonths_data()
{
    QTest::addColumn<unsigned int>("months");
    QTest::newRow("all that Qt counts") << unsigned{std::numeric_limits<int>::max()};
    QTest::newRow("one more") << unsigned{std::numeric_limits<int>::max()} + 1U;
    QTest::newRow("all that fit") << std::numeric_limits<unsigned int>::max();
}

void LogFilesCleanupTest::noFileIsOlderThanCountlessMonths()
{
    QFETCH(unsigned int, months);
    const QDateTime now({2024, 6, 15}, QTime(12, 0));
    const QDateTime cutOff = PkLogger::cleanupCutOff(now, months);
    QVERIFY(cutOff.isValid());
    QVERIFY(cutOff < QDateTime({1, 1, 1}, QTime(0, 0)));
}

void LogFilesCleanupTest::fileOfFortyDaysIsOlderThanAMonth_data()
{
    QTest::addColumn<int>("daysLater");
    QTest::addColumn<bool>("stays");
    QTest::newRow("20 days") << 20 << true;
    QTest::newRow("40 days") << 40 << false;
}

void LogFilesCleanupTest::fileOfFortyDaysIsOlderThanAMonth()
{
    QFETCH(int, daysLater);
    QFETCH(bool, stays);
    makeFile("ZelLogFile.txt");
    const QDateTime later = QDateTime::currentDateTime().addDays(daysLater);
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", PkLogger::cleanupCutOff(later, 1));
    QCOMPARE(QFile::exists(path("ZelLogFile.txt")), stays);
}

void LogFilesCleanupTest::ageDecidesOnRemoval_data()
{
    QTest::addColumn<int>("msecsOld"); // at the cut-off
    QTest::addColumn<bool>("stays");
    QTest::newRow("earlier") << 1 << false;
    QTest::newRow("at the cut-off") << 0 << true;
    QTest::newRow("later") << -1 << true;
}

void LogFilesCleanupTest::ageDecidesOnRemoval()
{
    QFETCH(int, msecsOld);
    QFETCH(bool, stays);
    makeFile("ZelLogFile.txt");
    const QFileInfo file(path("ZelLogFile.txt"));
    const QDateTime cutOff = PkLogger::creationTime(file).addMSecs(msecsOld);
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", cutOff);
    QCOMPARE(QFile::exists(file.filePath()), stays);
}

void LogFilesCleanupTest::birthIsTheTimeOfCreation()
{
    makeFile("ZelLogFile.txt");
    const QDateTime birth = QFileInfo(path("ZelLogFile.txt")).birthTime();
    QVERIFY2(birth.isValid(), "The temporary folder is on a file system without birth times.");
    // A change of the content's time, as by a log writer, and of the status, as by a copying tool.
    QTRY_VERIFY(QDateTime::currentDateTime() > birth.addMSecs(20));
    QFile file(path("ZelLogFile.txt"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(birth.addYears(-1), QFileDevice::FileModificationTime));
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    file.close();
    const QFileInfo changed(file.fileName());
    QVERIFY(changed.metadataChangeTime() > birth);
    QVERIFY(changed.lastModified() < birth);
    QCOMPARE(PkLogger::creationTime(changed), birth);
}

void LogFilesCleanupTest::statusChangeStandsInForAMissingBirth()
{
    const QFileInfo file("/proc/self/status"); // processes' files have no birth time
    QVERIFY(file.exists());
    QVERIFY(!file.birthTime().isValid());
    QVERIFY(file.metadataChangeTime().isValid());
    QCOMPARE(PkLogger::creationTime(file), file.metadataChangeTime());
}

void LogFilesCleanupTest::nameDecidesOnRemoval_data()
{
    QTest::addColumn<QString>("baseName");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("stays");
    QTest::newRow("base name alone") << "ZelLogFile"
                                     << "ZelLogFile.txt" << false;
    QTest::newRow("in the middle") << "ZelLogFile"
                                   << "old ZelLogFile 7.txt" << false;
    QTest::newRow("case is ignored") << "ZelLogFile"
                                     << "zellogfile.TXT" << false;
    QTest::newRow("another name") << "ZelLogFile"
                                  << "ZelLogFil.txt" << true;
    QTest::newRow("another extension") << "ZelLogFile"
                                       << "ZelLogFile.log" << true;
    QTest::newRow("longer extension") << "ZelLogFile"
                                      << "ZelLogFile.txt.gz" << true;
    QTest::newRow("no extension") << "ZelLogFile"
                                  << "ZelLogFile" << true;
    QTest::newRow("extension without its dot") << "ZelLogFile"
                                               << "ZelLogFiletxt" << true;
    QTest::newRow("blank in the base name") << "My Log"
                                            << "1 My Log 2.txt" << false;
    QTest::newRow("blank splits nothing: first half") << "My Log"
                                                      << "My.txt" << true;
    QTest::newRow("blank splits nothing: first half as a pattern") << "x.txt Log"
                                                                   << "x.txt" << true;
    QTest::newRow("blank splits nothing: second half") << "My Log"
                                                       << "Log.txt" << true;
    QTest::newRow("semicolon in the base name") << "My;Log"
                                                << "1My;Log2.txt" << false;
    QTest::newRow("semicolon splits nothing: first half") << "x.txt;Log"
                                                          << "x.txt" << true;
    QTest::newRow("semicolon splits nothing: second half") << "My;Log"
                                                           << "Log.txt" << true;
    QTest::newRow("placeholder in the base name") << "100%1"
                                                  << "100%1.txt" << false;
    QTest::newRow("base name is part of the pattern") << "Zel*[LM]og"
                                                      << "1 ZelOldLog 2.txt" << false;
    QTest::newRow("base name is part of the pattern, which does not fit")
        << "Zel*[LM]og"
        << "1 ZelOldDog 2.txt" << true;
    QTest::newRow("empty base name") << ""
                                     << "anything.txt" << false;
}

void LogFilesCleanupTest::nameDecidesOnRemoval()
{
    QFETCH(QString, baseName);
    QFETCH(QString, fileName);
    QFETCH(bool, stays);
    makeFile(fileName);
    PkLogger::removeLogFiles(m_folder->path(), baseName, tomorrow());
    QCOMPARE(namesLeft(), stays ? QStringList(fileName) : QStringList());
}

void LogFilesCleanupTest::otherExtensionStaysWhateverItsAge()
{
    makeFile("ZelLogFile.xml");
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow().addYears(100));
    QCOMPARE(namesLeft(), QStringList("ZelLogFile.xml"));
}

void LogFilesCleanupTest::hiddenFileStays()
{
    makeFile(".ZelLogFile.txt");
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QCOMPARE(namesLeft(), QStringList(".ZelLogFile.txt"));
}

void LogFilesCleanupTest::pipeStays()
{
    QCOMPARE(mkfifo(QFile::encodeName(path("ZelLogFile.txt")).constData(), 0600), 0);
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QCOMPARE(namesLeft(), QStringList("ZelLogFile.txt"));
}

void LogFilesCleanupTest::folderStays()
{
    QVERIFY(QDir(m_folder->path()).mkdir("ZelLogFile.txt"));
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QCOMPARE(namesLeft(), QStringList("ZelLogFile.txt"));
}

void LogFilesCleanupTest::fileInASubfolderStays()
{
    QVERIFY(QDir(m_folder->path()).mkdir("below"));
    makeFile("below/ZelLogFile.txt");
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QVERIFY(QFile::exists(path("below/ZelLogFile.txt")));
}

void LogFilesCleanupTest::fileThatCannotBeRemovedDoesNotEndThePass()
{
    // A folder is listed among the files and refuses to go like any file that is held.
    QVERIFY(QDir(m_folder->path()).mkdir("1 ZelLogFile.txt"));
    makeFile("0 ZelLogFile.txt");
    makeFile("2 ZelLogFile.txt");
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QCOMPARE(namesLeft(), QStringList("1 ZelLogFile.txt"));
}

void LogFilesCleanupTest::linkGoesAndItsFileStays()
{
    makeFile("elsewhere");
    QVERIFY(QFile::link(path("elsewhere"), path("ZelLogFile.txt")));
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    QCOMPARE(namesLeft(), QStringList("elsewhere"));
}

void LogFilesCleanupTest::filesFromTheFutureOfAClockSetBackStay()
{
    makeFile("ZelLogFile.txt");
    // The clock says a year ago: the file is younger than anything can be.
    const QDateTime now = QDateTime::currentDateTime().addYears(-1);
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", PkLogger::cleanupCutOff(now, 1));
    QCOMPARE(namesLeft(), QStringList("ZelLogFile.txt"));
    // Set right again, it goes when its month is over.
    const QDateTime later = QDateTime::currentDateTime().addDays(40);
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", PkLogger::cleanupCutOff(later, 1));
    QCOMPARE(namesLeft(), QStringList());
}

void LogFilesCleanupTest::tenThousandFilesGoFromBetweenOthers()
{
    constexpr int COUNT = 10000;
    QStringList others;
    for (int i = 0; i < COUNT; ++i) {
        makeFile(QStringLiteral("%1 ZelLogFile.txt").arg(i));
        if (i % 100 == 0) {
            others << QStringLiteral("%1 notes.txt").arg(i);
            makeFile(others.last());
        }
    }
    PkLogger::removeLogFiles(m_folder->path(), "ZelLogFile", tomorrow());
    others.sort();
    QStringList left = namesLeft();
    left.sort();
    QCOMPARE(left, others);
}

void LogFilesCleanupTest::emptyFolderNameIsNoFolder()
{
    makeFile("ZelLogFile.txt");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    PkLogger::removeLogFiles("", "ZelLogFile", tomorrow());
    PkLogger::removeLogFiles(QString(), QString(), tomorrow());
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(namesLeft(), QStringList("ZelLogFile.txt"));
}

void LogFilesCleanupTest::missingFolderIsNoFailure()
{
    PkLogger::removeLogFiles(path("gone"), "ZelLogFile", tomorrow());
    QVERIFY(!QFile::exists(path("gone")));
}

QTEST_GUILESS_MAIN(LogFilesCleanupTest)
#include "LogFilesCleanupTest.moc"

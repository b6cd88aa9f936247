#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveHistory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <memory>

class ArchiveHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void whatStandsUntoldIsToldNow();
    void whatIsToldAlreadyIsNotToldAgain();
    void whatDoesNotStandIsNotTold();
    void whatSomebodyHasPutInItsPlaceDoesNotStand();
    void aReportThatCannotBeReadIsAFailure_data();
    void aReportThatCannotBeReadIsAFailure();
    void aTrialKnowsWhatStandsAndTellsNothing();
    void whatCannotBeToldIsAFailure();

private:
    /** A document that was converted; the target stands as it tells. */
    DocumentRecord standing(const QString& path) const;
    QByteArray report() const;
    bool isPending() const { return QFile::exists(m_settings.pendingReport()); }

    std::unique_ptr<QTemporaryDir> m_folder;
    ArchiveSettings m_settings;
};

void ArchiveHistoryTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = ArchiveSettings();
    m_settings.target = m_folder->path();
    m_settings.report = m_settings.usualReport();
    QVERIFY(QDir().mkpath(m_settings.folder()));
}

DocumentRecord ArchiveHistoryTest::standing(const QString& path) const
{
    QFile target(m_settings.targetOf(path));
    target.open(QIODevice::WriteOnly);
    target.write("converted");
    target.close();
    DocumentRecord record;
    record.path = path;
    record.outcome = DocumentRecord::CONVERTED;
    record.target = FileIdentity::of(target.fileName());
    record.seconds = 1;
    return record;
}

QByteArray ArchiveHistoryTest::report() const
{
    QFile file(m_settings.report);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void ArchiveHistoryTest::whatStandsUntoldIsToldNow()
{
    const DocumentRecord record = standing(QStringLiteral("a.xml"));
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {record}));
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(history.reportUntold());
    QVERIFY(history.find(record.path)->tellsTheSameAs(record));
    QCOMPARE(history.standingTarget(record.path), record.target);
    QCOMPARE(report(), record.toLine());
    QVERIFY(!isPending());
}

void ArchiveHistoryTest::whatIsToldAlreadyIsNotToldAgain()
{
    DocumentRecord record = standing(QStringLiteral("a.xml"));
    QVERIFY(ArchiveReport::append(m_settings.report, {record}));
    const QByteArray before = report();
    record.seconds = 2; // how long it took makes no other record of it
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {record}));
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(history.reportUntold());
    QCOMPARE(history.records().size(), 1);
    QCOMPARE(report(), before);
    QVERIFY(!isPending());
}

void ArchiveHistoryTest::whatDoesNotStandIsNotTold()
{
    const DocumentRecord gone = standing(QStringLiteral("gone.xml"));
    QVERIFY(QFile::remove(m_settings.targetOf(gone.path)));
    DocumentRecord other = standing(QStringLiteral("other.xml"));
    other.target->sha256 = QString(64, QLatin1Char('0'));
    const DocumentRecord whole = standing(QStringLiteral("whole.xml"));
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {gone, other, whole}));
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(history.reportUntold());
    QVERIFY(history.find(gone.path) == nullptr);
    QVERIFY(history.find(other.path) == nullptr);
    QCOMPARE(report(), whole.toLine());
    QVERIFY(!isPending());
}

void ArchiveHistoryTest::whatSomebodyHasPutInItsPlaceDoesNotStand()
{
    const DocumentRecord told = standing(QStringLiteral("told.xml"));
    const DocumentRecord untold = standing(QStringLiteral("untold.xml"));
    QVERIFY(ArchiveReport::append(m_settings.report, {told}));
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {untold}));
    for (const QString& path : {told.path, untold.path}) {
        // The same bytes, moved away, with a link to them.
        const QString target = m_settings.targetOf(path);
        QVERIFY(QFile::rename(target, target + ".mine") && QFile::link(target + ".mine", target));
    }
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(!history.standingTarget(told.path));
    QVERIFY(history.find(untold.path) == nullptr);
}

void ArchiveHistoryTest::aReportThatCannotBeReadIsAFailure_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("what was reported") << "report.jsonl";
    QTest::newRow("what is pending") << "pending.jsonl";
}

void ArchiveHistoryTest::aReportThatCannotBeReadIsAFailure()
{
    QFETCH(QString, name);
    // Each read of it fails, as on a broken disk.
    QVERIFY(QFile::link("/proc/self/mem", m_settings.folder() + '/' + name));
    ArchiveHistory history(m_settings);
    QVERIFY(!history.read());
    QCOMPARE(errno, EIO);
}

void ArchiveHistoryTest::aTrialKnowsWhatStandsAndTellsNothing()
{
    const DocumentRecord record = standing(QStringLiteral("a.xml"));
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {record}));
    m_settings.staging = QStringLiteral("/nowhere");
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(history.reportUntold());
    QCOMPARE(history.standingTarget(record.path), record.target);
    QVERIFY(!QFile::exists(m_settings.report));
    QVERIFY(isPending());
}

void ArchiveHistoryTest::whatCannotBeToldIsAFailure()
{
    const DocumentRecord record = standing(QStringLiteral("a.xml"));
    QVERIFY(ArchiveReport::append(m_settings.pendingReport(), {record}));
    QVERIFY(QDir().mkpath(m_settings.report)); // a folder, which takes no lines
    ArchiveHistory history(m_settings);
    QVERIFY(history.read());
    QVERIFY(!history.reportUntold());
    QCOMPARE(errno, EISDIR);
    QVERIFY(isPending()); // for the next run
}

QTEST_GUILESS_MAIN(ArchiveHistoryTest)

#include "ArchiveHistoryTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const qint64 LARGEST = 9007199254740991; // the largest whole number that JSON is sure to hold

ArchiveSettings settingsFor(const QString& source)
{
    ArchiveSettings settings;
    settings.source = source;
    settings.target = "/the target";
    settings.report = "/the report";
    return settings;
}

const std::vector<std::vector<PlannedDocument>> JOBS = {
    {{"a b/\"c\".xml", 1, false, false, {}}, {"line\nfeed\t.xml", 0, true, false, {}}},
    {},
    {{QString::fromUtf8("sch\u00f6n\u2028.xml"), LARGEST, false, true, FileIdentity{7, "00ff"}}},
};

} // namespace

class ArchivePlanTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everyJobIsReadOnItsOwn();
    void settingsComeWithEachJob();
    void placesAreToldFromThePlansFolder();
    void absolutePlacesAndEmptyOnesStay();
    void aPlanIsWrittenAnew();
    void aPlanThatCannotBeWrittenHasNoJobs_data();
    void aPlanThatCannotBeWrittenHasNoJobs();
    void aPlanThatIsGoneHasNoDocuments();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_plan;
};

void ArchivePlanTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_plan = m_folder->filePath("plan");
}

void ArchivePlanTest::everyJobIsReadOnItsOwn()
{
    const std::vector<PlannedJob> planned = ArchivePlan::write(m_plan, settingsFor("/s"), JOBS);
    QCOMPARE(planned.size(), JOBS.size());
    for (std::size_t i = JOBS.size(); i-- > 0;) {
        ArchiveSettings settings;
        const auto documents = ArchivePlan::read(m_plan, planned[i], settings);
        QCOMPARE(documents.size(), JOBS[i].size());
        for (std::size_t j = 0; j < documents.size(); ++j) {
            QCOMPARE(documents[j].path, JOBS[i][j].path);
            QCOMPARE(documents[j].size, JOBS[i][j].size);
            QCOMPARE(documents[j].mayReplace, JOBS[i][j].mayReplace);
            QCOMPARE(documents[j].isBlocked, JOBS[i][j].isBlocked);
            QCOMPARE(documents[j].earlier, JOBS[i][j].earlier);
        }
    }
}

void ArchivePlanTest::settingsComeWithEachJob()
{
    ArchiveSettings written = settingsFor("/s");
    written.milliseconds = 0;
    written.verifies = true;
    const std::vector<PlannedJob> planned = ArchivePlan::write(m_plan, written, JOBS);
    ArchiveSettings settings;
    QVERIFY(!ArchivePlan::read(m_plan, planned.back(), settings).empty());
    QCOMPARE(settings.toLine(), written.toLine());
}

void ArchivePlanTest::placesAreToldFromThePlansFolder()
{
    ArchiveSettings written = settingsFor("in");
    written.target = "deep/out";
    written.report = "report";
    written.staging = ".";
    const std::vector<PlannedJob> planned = ArchivePlan::write(m_plan, written, JOBS);
    ArchiveSettings settings;
    QVERIFY(!ArchivePlan::read(m_plan, planned[0], settings).empty());
    QCOMPARE(settings.source, m_folder->filePath("in"));
    QCOMPARE(settings.target, m_folder->filePath("deep/out"));
    QCOMPARE(settings.report, m_folder->filePath("report"));
    QCOMPARE(QDir::cleanPath(settings.staging), m_folder->path());
}

void ArchivePlanTest::absolutePlacesAndEmptyOnesStay()
{
    const std::vector<PlannedJob> planned = ArchivePlan::write(m_plan, settingsFor("/s"), JOBS);
    ArchiveSettings settings;
    QVERIFY(!ArchivePlan::read(m_plan, planned[0], settings).empty());
    QCOMPARE(settings.source, QString("/s"));
    QCOMPARE(settings.target, QString("/the target"));
    QCOMPARE(settings.report, QString("/the report"));
    QVERIFY(settings.staging.isEmpty());
}

void ArchivePlanTest::aPlanIsWrittenAnew()
{
    QVERIFY(!ArchivePlan::write(m_plan, settingsFor("/" + QString(1000, 's')), JOBS).empty());
    const qint64 size = QFileInfo(m_plan).size();
    QVERIFY(!ArchivePlan::write(m_plan, settingsFor("/s"), JOBS).empty());
    QCOMPARE(QFileInfo(m_plan).size(), size - 999);
}

void ArchivePlanTest::aPlanThatCannotBeWrittenHasNoJobs_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("no folder") << "/no/folder/plan";
    QTest::newRow("no room") << "/dev/full";
}

void ArchivePlanTest::aPlanThatCannotBeWrittenHasNoJobs()
{
    QFETCH(QString, file);
    QVERIFY(ArchivePlan::write(file, settingsFor("/s"), JOBS).empty());
}

void ArchivePlanTest::aPlanThatIsGoneHasNoDocuments()
{
    ArchiveSettings settings = settingsFor("/s");
    QVERIFY(ArchivePlan::read("/no/folder/plan", {0, 1}, settings).empty());
    QCOMPARE(settings.source, QString("/s"));
}

QTEST_GUILESS_MAIN(ArchivePlanTest)

#include "ArchivePlanTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/report/RunRecords.h"

#include "tests/support/CapturedStream.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <iostream>

namespace {

DocumentRecord recordOf(const char* path, DocumentRecord::Outcome outcome, double seconds = 0)
{
    DocumentRecord record;
    record.path = path;
    record.outcome = outcome;
    record.seconds = seconds;
    return record;
}

} // namespace

class RunRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void whatIsTakenIsToldAndCounted();
    void whatIsToldAgainStaysAsItWas();
    void whatIsGoneIsToldApart();
    void whatNothingIsToldOfIsLeft();
    void aTrialPrintsEachRecordAtOnce();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    ArchiveSettings m_settings;
};

void RunRecordsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings.target = m_folder->path();
    m_settings.report = m_settings.usualReport();
    QVERIFY(QDir().mkpath(m_settings.folder()));
    QVERIFY(ArchiveReport::append(m_settings.report,
                                  {recordOf("known", DocumentRecord::CONVERTED, 1)}));
}

void RunRecordsTest::whatIsTakenIsToldAndCounted()
{
    const ArchiveHistory before(m_settings);
    RunRecords records(before, false);
    records.take(recordOf("b", DocumentRecord::LOSSY));
    records.takeDoneBefore(recordOf("a", DocumentRecord::CURRENT));
    QCOMPARE(records.all().keys(), QStringList({"a", "b"}));
    QCOMPARE(records.all()["b"].outcome, DocumentRecord::LOSSY);
    QVERIFY(records.summary().text().startsWith("2 documents: 0 converted, 1 current, 1 lossy,"));
    QVERIFY(records.summary().text().endsWith("; 1 done by an earlier run"));
    QVERIFY(records.gone().isEmpty());
}

void RunRecordsTest::whatIsToldAgainStaysAsItWas()
{
    ArchiveHistory before(m_settings);
    QVERIFY(before.read());
    RunRecords same(before, false);
    same.take(recordOf("known", DocumentRecord::CONVERTED, 2));
    QCOMPARE(same.all()["known"].seconds, 1.0);
    RunRecords other(before, false);
    other.take(recordOf("known", DocumentRecord::LOSSY, 2));
    QCOMPARE(other.all()["known"].outcome, DocumentRecord::LOSSY);
    QCOMPARE(other.all()["known"].seconds, 2.0);
    for (const RunRecords* const records : {&same, &other}) {
        QVERIFY(records->summary().text().startsWith("1 documents: "));
    }
}

void RunRecordsTest::whatIsGoneIsToldApart()
{
    const ArchiveHistory before(m_settings);
    RunRecords records(before, false);
    records.takeGone(recordOf("gone", DocumentRecord::CONVERTED));
    QCOMPARE(records.gone(), QSet<QString>({"gone"}));
    QVERIFY(records.all().contains("gone")); // what was written for it stands
    QVERIFY(records.summary().text().startsWith("0 documents: "));
    QVERIFY(records.summary().text().endsWith("; 1 gone since, their targets kept"));
}

void RunRecordsTest::whatNothingIsToldOfIsLeft()
{
    const ArchiveHistory before(m_settings);
    RunRecords records(before, false);
    const std::vector<PlannedDocument> documents = {
        {"c", 1, false, false, {}}, {"a", 2, false, false, {}}, {"b", 3, false, false, {}}};
    QCOMPARE(records.untoldAmong(documents).size(), std::size_t(3));
    records.take(recordOf("a", DocumentRecord::FAILED));
    const std::vector<PlannedDocument> untold = records.untoldAmong(documents);
    QCOMPARE(untold.size(), std::size_t(2));
    QCOMPARE(untold[0].path, QString("c"));
    QCOMPARE(untold[1].path, QString("b"));
}

void RunRecordsTest::aTrialPrintsEachRecordAtOnce()
{
    const ArchiveHistory before(m_settings);
    const DocumentRecord record = recordOf("a", DocumentRecord::CONVERTED);
    RunRecords printed(before, true);
    RunRecords silent(before, false);
    const CapturedStream output(std::cout);
    silent.take(record);
    QCOMPARE(output.bytes(), QByteArray());
    printed.take(record);
    QCOMPARE(output.bytes(), record.toLine());
    printed.takeDoneBefore(record);
    printed.takeGone(record);
    QCOMPARE(output.bytes(), record.toLine()); // an earlier run has told these
}

QTEST_GUILESS_MAIN(RunRecordsTest)

#include "RunRecordsTest.moc"

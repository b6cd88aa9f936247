#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveSummary.h"

#include <QtTest>

namespace {

DocumentRecord recordOf(DocumentRecord::Outcome outcome, const char* reason = "")
{
    DocumentRecord record;
    record.outcome = outcome;
    record.reason = QString(reason);
    return record;
}

const DocumentRecord STRANGER = recordOf(DocumentRecord::REFUSED, "no-workspace");

} // namespace

class ArchiveSummaryTest : public QObject
{
    Q_OBJECT

private slots:
    void everyOutcomeIsCounted();
    void filesThatAreNoDocumentsAreCountedApart();
    void whatWasDoneBeforeCountsTwice();
    void whatIsGoneIsTold();
    void theHighestStatusCounts();
    void lossesCountOnlyWhereTheyAreToFail();
    void filesThatAreNoDocumentsDoNotCount();
};

void ArchiveSummaryTest::everyOutcomeIsCounted()
{
    ArchiveSummary summary;
    QCOMPARE(summary.text(), QString("0 documents: 0 converted, 0 current, 0 lossy, 0 refused, "
                                     "0 limit, 0 failed"));
    for (int outcome = DocumentRecord::CONVERTED; outcome <= DocumentRecord::FAILED; ++outcome) {
        for (int i = 0; i <= outcome; ++i) {
            summary.add(recordOf(static_cast<DocumentRecord::Outcome>(outcome)));
        }
    }
    QCOMPARE(summary.text(), QString("21 documents: 1 converted, 2 current, 3 lossy, 4 refused, "
                                     "5 limit, 6 failed"));
}

void ArchiveSummaryTest::filesThatAreNoDocumentsAreCountedApart()
{
    ArchiveSummary summary;
    summary.add(STRANGER);
    QVERIFY(summary.text().startsWith("0 documents: "));
    QVERIFY(summary.text().endsWith(" failed; 1 file is no workspace document"));
    summary.add(STRANGER);
    QVERIFY(summary.text().endsWith(" failed; 2 files are no workspace documents"));
    summary.add(recordOf(DocumentRecord::REFUSED, "too-new"));
    QVERIFY(summary.text().startsWith("1 documents: "));
    QVERIFY(summary.text().contains(" 1 refused,"));
}

void ArchiveSummaryTest::whatWasDoneBeforeCountsTwice()
{
    ArchiveSummary summary;
    summary.add(recordOf(DocumentRecord::CONVERTED));
    summary.addDoneBefore(recordOf(DocumentRecord::CURRENT));
    QVERIFY(summary.text().startsWith("2 documents: 1 converted, 1 current,"));
    QVERIFY(summary.text().endsWith(" failed; 1 done by an earlier run"));
    summary.addDoneBefore(STRANGER);
    QVERIFY(summary.text().endsWith("; 1 file is no workspace document; 2 done by an earlier run"));
}

void ArchiveSummaryTest::whatIsGoneIsTold()
{
    ArchiveSummary summary;
    summary.addDoneBefore(recordOf(DocumentRecord::LOSSY));
    summary.addGone();
    summary.addGone();
    QVERIFY(summary.text().startsWith("1 documents: "));
    QVERIFY(
        summary.text().endsWith("; 1 done by an earlier run; 2 gone since, their targets kept"));
    QCOMPARE(summary.status(false), ARCHIVE_DONE);
}

void ArchiveSummaryTest::theHighestStatusCounts()
{
    ArchiveSummary summary;
    QCOMPARE(summary.status(true), ARCHIVE_DONE);
    const QList<QPair<DocumentRecord::Outcome, ArchiveStatus>> rising = {
        {DocumentRecord::CONVERTED, ARCHIVE_DONE}, {DocumentRecord::CURRENT, ARCHIVE_DONE},
        {DocumentRecord::LOSSY, ARCHIVE_LOSSY},    {DocumentRecord::REFUSED, ARCHIVE_REFUSED},
        {DocumentRecord::LIMIT, ARCHIVE_LIMIT},    {DocumentRecord::FAILED, ARCHIVE_FAILED},
    };
    for (const auto& [outcome, status] : rising) {
        summary.add(recordOf(outcome));
        QCOMPARE(summary.status(true), status);
    }
    summary.add(recordOf(DocumentRecord::CONVERTED));
    QCOMPARE(summary.status(true), ARCHIVE_FAILED);
}

void ArchiveSummaryTest::lossesCountOnlyWhereTheyAreToFail()
{
    ArchiveSummary summary;
    summary.addDoneBefore(recordOf(DocumentRecord::LOSSY));
    QCOMPARE(summary.status(false), ARCHIVE_DONE);
    QCOMPARE(summary.status(true), ARCHIVE_LOSSY);
}

void ArchiveSummaryTest::filesThatAreNoDocumentsDoNotCount()
{
    ArchiveSummary summary;
    summary.add(STRANGER);
    QCOMPARE(summary.status(true), ARCHIVE_DONE);
}

QTEST_GUILESS_MAIN(ArchiveSummaryTest)

#include "ArchiveSummaryTest.moc"

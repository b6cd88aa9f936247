#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveProgress.h"

#include <QtTest>

class ArchiveProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void theTimeLeftGoesByTheBytes_data();
    void theTimeLeftGoesByTheBytes();
    void beforeTheFirstDocumentNothingIsKnown();
};

void ArchiveProgressTest::theTimeLeftGoesByTheBytes_data()
{
    QTest::addColumn<qint64>("bytesDone");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("half") << qint64(500) << qint64(7000) << "1 of 4 documents, 7 s left";
    QTest::newRow("a tenth") << qint64(100) << qint64(20000) << "1 of 4 documents, 3 min left";
    QTest::newRow("hours") << qint64(1) << qint64(5000) << "1 of 4 documents, 1 h 23 min left";
    // Of 1000 bytes 500 are left, so the rest takes as long as what is done.
    QTest::newRow("almost a minute")
        << qint64(500) << qint64(59999) << "1 of 4 documents, 59 s left";
    QTest::newRow("a minute") << qint64(500) << qint64(60000) << "1 of 4 documents, 1 min left";
    QTest::newRow("almost an hour")
        << qint64(500) << qint64(3599999) << "1 of 4 documents, 59 min left";
    QTest::newRow("an hour") << qint64(500) << qint64(3600000)
                             << "1 of 4 documents, 1 h 0 min left";
    QTest::newRow("more than there was")
        << qint64(2000) << qint64(9000) << "1 of 4 documents, 0 s left";
    QTest::newRow("all") << qint64(1000) << qint64(5000) << "1 of 4 documents, 0 s left";
}

void ArchiveProgressTest::theTimeLeftGoesByTheBytes()
{
    QFETCH(qint64, bytesDone);
    QFETCH(qint64, milliseconds);
    ArchiveProgress progress("documents", 4, 1000, false);
    progress.advance(bytesDone);
    QTEST(progress.textAfter(milliseconds), "text");
}

void ArchiveProgressTest::beforeTheFirstDocumentNothingIsKnown()
{
    QCOMPARE(ArchiveProgress("documents", 4, 1000, false).textAfter(5000),
             QString("0 of 4 documents"));
}

QTEST_GUILESS_MAIN(ArchiveProgressTest)

#include "ArchiveProgressTest.moc"

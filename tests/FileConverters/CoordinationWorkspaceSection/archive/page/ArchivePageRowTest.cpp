#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePageRow.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"

#include <QtTest>

#include <limits>

Q_DECLARE_METATYPE(DocumentRecord)

namespace {

DocumentRecord recordOf(DocumentRecord::Outcome outcome, const char* reason = "")
{
    DocumentRecord record;
    record.path = "a & b.xml";
    record.outcome = outcome;
    record.reason = QString(reason);
    return record;
}

DocumentRecord recordWithSystems(int count)
{
    DocumentRecord record = recordOf(DocumentRecord::CONVERTED);
    ChangedSystem system;
    system.spacings[0] = {300, 0};
    record.systems = QVector<ChangedSystem>(count, system);
    return record;
}

} // namespace

/** What rows tell; how they stand in the page, the page's own test looks at. */
class ArchivePageRowTest : public QObject
{
    Q_OBJECT

private slots:
    void kindsHaveNames_data();
    void kindsHaveNames();
    void lossesAreCounted();
    void digitsStandInGroups_data();
    void digitsStandInGroups();
    void systemsAreCountedDown_data();
    void systemsAreCountedDown();
    void aRowTellsTheScript();
};

void ArchivePageRowTest::kindsHaveNames_data()
{
    QTest::addColumn<DocumentRecord>("record");
    QTest::addColumn<bool>("isGone");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("token");
    const auto row = [](const char* name, const DocumentRecord& record, bool isGone,
                        const char* token) {
        QTest::newRow(name) << record << isGone << QByteArray(name) << QByteArray(token);
    };
    row("converted", recordOf(DocumentRecord::CONVERTED), false, "converted");
    row("current", recordOf(DocumentRecord::CURRENT), false, "current");
    row("lossy", recordOf(DocumentRecord::LOSSY, "not-clean"), false, "lossy");
    row("refused", recordOf(DocumentRecord::REFUSED, "too-new"), false, "refused");
    row("limit", recordOf(DocumentRecord::LIMIT, "memory"), false, "limit");
    row("failed", recordOf(DocumentRecord::FAILED, "not-well-formed"), false, "failed");
    row("no document", recordOf(DocumentRecord::REFUSED, "no-workspace"), false, "no-document");
    row("gone", recordOf(DocumentRecord::REFUSED, "no-workspace"), true, "gone");
}

void ArchivePageRowTest::kindsHaveNames()
{
    QFETCH(DocumentRecord, record);
    QFETCH(bool, isGone);
    const int kind = ArchivePageRow(record, isGone).kind();
    QVERIFY(kind >= 0 && kind < ArchivePageRow::KIND_COUNT);
    QTEST(ArchivePageRow::nameOf(kind), "name");
    QTEST(ArchivePageRow::tokenOf(kind), "token");
}

void ArchivePageRowTest::lossesAreCounted()
{
    DocumentRecord record = recordOf(DocumentRecord::LOSSY);
    QCOMPARE(ArchivePageRow(record, false).lossCount(), 0);
    record.losses = {{"unread-text", 1, 1, {}, {}}, {"line-break", 41, 1, {}, {}}};
    QCOMPARE(ArchivePageRow(record, false).lossCount(), 42);
}

void ArchivePageRowTest::digitsStandInGroups_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("none") << qint64(0) << QByteArray("0");
    QTest::newRow("three digits") << qint64(999) << QByteArray("999");
    QTest::newRow("four digits") << qint64(1000) << QByteArray("1\u202f000");
    QTest::newRow("six digits") << qint64(123456) << QByteArray("123\u202f456");
    QTest::newRow("the most") << std::numeric_limits<qint64>::max()
                              << QByteArray("9\u202f223\u202f372\u202f036\u202f854\u202f775"
                                            "\u202f807");
}

void ArchivePageRowTest::digitsStandInGroups()
{
    QFETCH(qint64, number);
    QTEST(ArchivePageRow::number(number), "shown");
}

void ArchivePageRowTest::systemsAreCountedDown_data()
{
    QTest::addColumn<int>("systems");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("shown");
    const int most = ArchivePage::MOST_SYSTEMS_A_DOCUMENT;
    QTest::newRow("all") << 3 << 1000 << 3;
    QTest::newRow("as many as are left") << 3 << 3 << 3;
    QTest::newRow("fewer than there are") << 3 << 2 << 2;
    QTest::newRow("none left") << 3 << 0 << 0;
    QTest::newRow("none there") << 0 << 1000 << 0;
    QTest::newRow("the most of one document") << most << 1000 << most;
    QTest::newRow("more than that") << most + 1 << 1000 << most;
}

void ArchivePageRowTest::systemsAreCountedDown()
{
    QFETCH(int, systems);
    QFETCH(int, left);
    QFETCH(int, shown);
    const DocumentRecord record = recordWithSystems(systems);
    int stillLeft = left;
    const QByteArray html = ArchivePageRow(record, false).html(stillLeft);
    QCOMPARE(stillLeft, left - shown);
    QCOMPARE(html.count("300 → 0"), shown);
    QCOMPARE(html.contains("more are in the report"), shown > 0 && shown < systems);
    QCOMPARE(html.contains("this page shows no more systems"), shown == 0 && systems > 0);
}

// The script of the page sorts and filters by what rows tell it.
void ArchivePageRowTest::aRowTellsTheScript()
{
    DocumentRecord record = recordOf(DocumentRecord::REFUSED, "no-workspace");
    record.losses = {{"line-break", 7, 1, {}, {}}};
    int left = 0;
    const QByteArray html = ArchivePageRow(record, false).html(left);
    QVERIFY(html.startsWith("<tbody data-outcome=\"no-document\">"));
    QVERIFY(html.contains("<td data-losses=\"7\">"));
    QVERIFY(html.contains("<bdi>a &amp; b.xml</bdi>"));
    QVERIFY(html.endsWith("</tbody>\n"));
}

QTEST_GUILESS_MAIN(ArchivePageRowTest)

#include "ArchivePageRowTest.moc"

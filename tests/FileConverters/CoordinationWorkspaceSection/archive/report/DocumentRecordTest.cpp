#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class DocumentRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void systemsGoThroughALineAndBack();
    void linesFromBeforeTheSystemsAreRead();
    void noSystemsIsNotTheSameAsNotToldOf();
    void lineWithoutEndIsNoRecord();
    void anyNumberOfSecondsMakesALine_data();
    void anyNumberOfSecondsMakesALine();
    void filesGoThroughALineAndBack();
    void howLongItTookMakesNoOtherRecord();
};

namespace {

InspectedSystem systemOf(const char* series, int before2t3o, int after2t3o)
{
    InspectedSystem system;
    system.key = CompatSystemUniqueKey("Zone", series, "G1", "Mode", "2");
    system.oldName = QStringLiteral("median");
    system.after.name = "Standard";
    system.before.chCh = system.after.chCh = 300;
    system.before.imd2t3o = before2t3o;
    system.after.imd2t3o = after2t3o;
    return system;
}

DocumentRecord convertedRecord()
{
    DocumentRecord record;
    record.path = QStringLiteral("a.xml");
    record.outcome = DocumentRecord::CONVERTED;
    return record;
}

} // namespace

void DocumentRecordTest::systemsGoThroughALineAndBack()
{
    DocumentRecord record = convertedRecord();
    record.systems =
        ChangedSystem::among({systemOf("S", 150, 0), systemOf("\u202e\u202c\"", -1, 7)});
    const auto read = DocumentRecord::fromLine(record.toLine());
    QVERIFY(read);
    QVERIFY(read->tellsTheSameAs(record));
    QCOMPARE(read->toLine(), record.toLine());
    QCOMPARE(read->systems->size(), 2);
    QCOMPARE(read->systems->at(1).spacings[1].before, -1);
    QCOMPARE(read->systems->at(1).series, QStringLiteral("\u202e\u202c\""));
}

void DocumentRecordTest::linesFromBeforeTheSystemsAreRead()
{
    const auto read = DocumentRecord::fromLine(
        R"({"format":1,"losses":[],"outcome":"converted","path":"a.xml","seconds":0.034,)"
        R"("source":{"sha256":"0f","size":6580},"target":{"sha256":"b8","size":5587},)"
        R"("verified":true})");
    QVERIFY(read);
    QVERIFY(!read->systems);
    QVERIFY(read->isVerified);
    QVERIFY(!read->toLine().contains("systems"));
}

void DocumentRecordTest::noSystemsIsNotTheSameAsNotToldOf()
{
    DocumentRecord told = convertedRecord();
    told.systems = QVector<ChangedSystem>();
    const auto read = DocumentRecord::fromLine(told.toLine());
    QVERIFY(read->systems && read->systems->isEmpty());
    QVERIFY(!told.tellsTheSameAs(convertedRecord()));
}

// Another machine may print anything.
void DocumentRecordTest::lineWithoutEndIsNoRecord()
{
    QVERIFY(!DocumentRecord::fromLine(QByteArray(10'000'000, '[')));
    QVERIFY(!DocumentRecord::fromLine(R"({"format":1,"outcome":"failed","path":"a.xml","losses":)" +
                                      QByteArray(1'000'000, '[') + QByteArray(1'000'000, ']') +
                                      "}"));
}

void DocumentRecordTest::anyNumberOfSecondsMakesALine_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<double>("seconds");
    QTest::newRow("none") << QByteArray("0") << 0.0;
    QTest::newRow("milliseconds") << QByteArray("0.034") << 0.034;
    QTest::newRow("less than that") << QByteArray("0.0344") << 0.034;
    QTest::newRow("an hour") << QByteArray("3600") << 3600.0;
    QTest::newRow("more than can be multiplied") << QByteArray("1e308") << 1e9;
    QTest::newRow("less than nothing") << QByteArray("-1e308") << 0.0;
    QTest::newRow("no number") << QByteArray("\"1\"") << 0.0;
}

void DocumentRecordTest::anyNumberOfSecondsMakesALine()
{
    QFETCH(QByteArray, told);
    QFETCH(double, seconds);
    const auto read = DocumentRecord::fromLine(
        R"({"format":1,"outcome":"failed","path":"a.xml","seconds":)" + told + "}");
    QVERIFY(read);
    const QJsonObject object = QJsonDocument::fromJson(read->toLine()).object();
    QCOMPARE(object["path"].toString(), QStringLiteral("a.xml"));
    QCOMPARE(object["seconds"], QJsonValue(seconds));
}

void DocumentRecordTest::filesGoThroughALineAndBack()
{
    DocumentRecord record = convertedRecord();
    record.source = FileIdentity{1, QStringLiteral("01")};
    record.target = FileIdentity{2, QStringLiteral("02")};
    record.earlier = FileIdentity{3, QStringLiteral("03")};
    const auto read = DocumentRecord::fromLine(record.toLine());
    QVERIFY(read);
    QVERIFY(read->source == record.source);
    QVERIFY(read->target == record.target);
    QVERIFY(read->earlier == record.earlier);
}

void DocumentRecordTest::howLongItTookMakesNoOtherRecord()
{
    const DocumentRecord record = convertedRecord();
    DocumentRecord slow = record;
    slow.seconds = 9;
    QVERIFY(record.tellsTheSameAs(slow));
    slow.outcome = DocumentRecord::LOSSY;
    QVERIFY(!record.tellsTheSameAs(slow));
}

QTEST_GUILESS_MAIN(DocumentRecordTest)

#include "DocumentRecordTest.moc"

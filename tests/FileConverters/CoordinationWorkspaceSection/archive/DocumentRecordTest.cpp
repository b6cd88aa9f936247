#include "FileConverters/CoordinationWorkspaceSection/archive/DocumentRecord.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class DocumentRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void onlySystemsWhoseSpacingsChangeAreTold();
    void onlySpacingsThatChangeAreWritten();
    void systemsGoThroughALineAndBack();
    void linesFromBeforeTheSystemsAreRead();
    void noSystemsIsNotTheSameAsNotToldOf();
    void sizeIsOneThatAFileMayHave_data();
    void sizeIsOneThatAFileMayHave();
    void lineWithoutEndIsNoRecord();
    void anyNumberOfSecondsMakesALine_data();
    void anyNumberOfSecondsMakesALine();
    void identityIsSizeAndHash_data();
    void identityIsSizeAndHash();
    void whatCannotBeReadHasNoIdentity_data();
    void whatCannotBeReadHasNoIdentity();
    void identitiesDifferBySizeOrHash();
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

void DocumentRecordTest::onlySystemsWhoseSpacingsChangeAreTold()
{
    const auto changed = ChangedSystem::among(
        {systemOf("first", 150, 0), systemOf("same", 150, 150), systemOf("last", 0, 150)});
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed[0].key(), QStringList({"Zone", "first", "G1", "Mode", "2"}));
    QCOMPARE(changed[1].series, QStringLiteral("last"));
    QCOMPARE(changed[0].nameBefore, QStringLiteral("median"));
    QCOMPARE(changed[0].nameAfter, QStringLiteral("Standard"));
    QVERIFY(!changed[0].spacings[0].isThere());
    QCOMPARE(changed[0].spacings[1].before, 150);
    QCOMPARE(changed[0].spacings[1].after, 0);
    QCOMPARE(ChangedSystem::headingOf(1), QStringLiteral("2T3O"));
}

void DocumentRecordTest::onlySpacingsThatChangeAreWritten()
{
    DocumentRecord record = convertedRecord();
    record.systems = ChangedSystem::among({systemOf("S", 150, 0)});
    const QJsonArray systems =
        QJsonDocument::fromJson(record.toLine()).object().value("systems").toArray();
    QCOMPARE(systems.size(), 1);
    const QJsonObject system = systems[0].toObject();
    QCOMPARE(system, QJsonObject({
                         {"zone", "Zone"},
                         {"series", "S"},
                         {"band", "G1"},
                         {"tx_profile", "Mode"},
                         {"incl_group", "2"},
                         {"name", QJsonObject{{"before", "median"}, {"after", "Standard"}}},
                         {"spacings",
                          QJsonObject{{"imd_2t3o", QJsonObject{{"before", 150}, {"after", 0}}}}},
                     }));
}

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

void DocumentRecordTest::sizeIsOneThatAFileMayHave_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<qint64>("size");
    QTest::newRow("none") << QByteArray("0") << qint64(0);
    QTest::newRow("beyond 32 bits") << QByteArray("4294967296") << qint64(4294967296);
    QTest::newRow("less than nothing") << QByteArray("-1") << qint64(0);
    QTest::newRow("beyond any file") << QByteArray("1e300") << qint64(9007199254740992);
    QTest::newRow("no number") << QByteArray("\"1\"") << qint64(0);
}

void DocumentRecordTest::sizeIsOneThatAFileMayHave()
{
    QFETCH(QByteArray, told);
    const auto read = DocumentRecord::fromLine(
        R"({"format":1,"outcome":"failed","path":"a.xml","source":{"sha256":"0f","size":)" + told +
        "}}");
    QVERIFY(read && read->source);
    QTEST(read->source->size, "size");
    QCOMPARE(read->source->sha256, QStringLiteral("0f"));
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

void DocumentRecordTest::identityIsSizeAndHash_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("sha256"); // FIPS 180-4 and its examples
    QTest::newRow("empty") << QByteArray()
                           << "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
    QTest::newRow("a few") << QByteArray("abc")
                           << "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    QTest::newRow("a million")
        << QByteArray(1000000, 'a')
        << "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0";
}

void DocumentRecordTest::identityIsSizeAndHash()
{
    QFETCH(QByteArray, bytes);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    file.close();
    const auto identity = FileIdentity::of(file.fileName());
    QVERIFY(identity);
    QCOMPARE(identity->size, qint64(bytes.size()));
    QTEST(identity->sha256, "sha256");
}

void DocumentRecordTest::whatCannotBeReadHasNoIdentity_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("not there") << "/nowhere";
    QTest::newRow("a folder") << "/";
    QTest::newRow("fails at its first byte") << "/proc/self/mem"; // no process has that address
}

void DocumentRecordTest::whatCannotBeReadHasNoIdentity()
{
    QFETCH(QString, path);
    QVERIFY(!FileIdentity::of(path));
}

void DocumentRecordTest::identitiesDifferBySizeOrHash()
{
    const FileIdentity one{1, QStringLiteral("0f")};
    QVERIFY(one == (FileIdentity{1, QStringLiteral("0f")}));
    QVERIFY(one != (FileIdentity{2, QStringLiteral("0f")}));
    QVERIFY(one != (FileIdentity{1, QStringLiteral("1f")}));
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

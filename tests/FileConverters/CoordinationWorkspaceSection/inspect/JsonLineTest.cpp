#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <limits>

/** Lines are read by another reader than what writes them. */
class JsonLineTest : public QObject
{
    Q_OBJECT

private slots:
    void emptyObjectIsALine();
    void keysStandInTheOrderOfTheCalls();
    void valuesAreOfTheirKinds();
    void objectsAndArraysStandInEachOther();
    void textComesBackAsItWas_data();
    void textComesBackAsItWas();
    void wholeNumbersKeepEveryDigit_data();
    void wholeNumbersKeepEveryDigit();
};

namespace {

QJsonObject read(const QByteArray& line)
{
    return QJsonDocument::fromJson(line).object();
}

} // namespace

void JsonLineTest::emptyObjectIsALine()
{
    QCOMPARE(JsonLine().take(), QByteArray("{}\n"));
}

void JsonLineTest::keysStandInTheOrderOfTheCalls()
{
    JsonLine line;
    line.add("b", 1);
    line.add("a", 2);
    QCOMPARE(line.take(), QByteArray("{\"b\":1,\"a\":2}\n"));
}

void JsonLineTest::valuesAreOfTheirKinds()
{
    JsonLine line;
    line.add("literal", "text");
    line.add("string", QStringLiteral("text"));
    line.add("truth", true);
    line.add("untruth", false);
    line.add("fraction", 0.034);
    line.addNull("nothing");
    const QJsonObject object = read(line.take());
    QCOMPARE(object.size(), 6);
    QCOMPARE(object["literal"], QJsonValue("text"));
    QCOMPARE(object["string"], QJsonValue("text"));
    QCOMPARE(object["truth"], QJsonValue(true));
    QCOMPARE(object["untruth"], QJsonValue(false));
    QCOMPARE(object["fraction"], QJsonValue(0.034));
    QVERIFY(object["nothing"].isNull());
}

void JsonLineTest::objectsAndArraysStandInEachOther()
{
    JsonLine line;
    line.beginArray("list");
    line.beginObject();
    line.add("number", 1);
    line.endObject();
    line.beginObject();
    line.beginObject("inner");
    line.add("number", 2);
    line.endObject();
    line.endObject();
    line.endArray();
    line.add("last", 3);
    const QJsonObject object = read(line.take());
    QCOMPARE(object["list"].toArray().size(), 2);
    QCOMPARE(object["list"][0]["number"].toInt(), 1);
    QCOMPARE(object["list"][1]["inner"]["number"].toInt(), 2);
    QCOMPARE(object["last"].toInt(), 3);
}

void JsonLineTest::textComesBackAsItWas_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("quotation marks and backslashes") << R"("C:\shows\")";
    QTest::newRow("line breaks") << "one\r\ntwo\n";
    QTest::newRow("control characters") << QString::fromLatin1("\x01\x1f\x7f\x80", 4);
    QTest::newRow("a zero") << QString::fromLatin1("a\0b", 3);
    QTest::newRow("two bytes a character") << QStringLiteral("Café");
    QTest::newRow("beyond 16 bits") << QStringLiteral("\U0001F3A4");
    QTest::newRow("line separators of Unicode") << QStringLiteral("\u2028\u2029");
}

void JsonLineTest::textComesBackAsItWas()
{
    QFETCH(QString, text);
    JsonLine line;
    line.add("text", text);
    const QByteArray written = line.take();
    QCOMPARE(written.count('\n'), 1);
    QCOMPARE(read(written)["text"].toString(), text);
}

void JsonLineTest::wholeNumbersKeepEveryDigit_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QByteArray>("digits");
    QTest::newRow("zero") << qint64(0) << QByteArray("0");
    QTest::newRow("negative") << qint64(-1) << QByteArray("-1");
    QTest::newRow("beyond 32 bits") << qint64(4294967296) << QByteArray("4294967296");
    // A double would round it.
    QTest::newRow("beyond 53 bits") << qint64(9007199254740993) << QByteArray("9007199254740993");
    QTest::newRow("largest") << std::numeric_limits<qint64>::max()
                             << QByteArray("9223372036854775807");
}

void JsonLineTest::wholeNumbersKeepEveryDigit()
{
    QFETCH(qint64, number);
    QFETCH(QByteArray, digits);
    JsonLine line;
    line.add("number", number);
    QCOMPARE(line.take(), QByteArray("{\"number\":" + digits + "}\n"));
}

QTEST_GUILESS_MAIN(JsonLineTest)

#include "JsonLineTest.moc"

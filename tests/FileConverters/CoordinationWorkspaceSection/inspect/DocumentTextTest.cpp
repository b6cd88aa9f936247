#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include <QtTest>

#include <sstream>

class DocumentTextTest : public QObject
{
    Q_OBJECT

private slots:
    void linesAreTheAuthors_data();
    void linesAreTheAuthors();
    void lineFeedsCanBePutBack_data();
    void lineFeedsCanBePutBack();
    void parserPlacesLeadIntoTheText();
    void fileThatCannotBeReadGivesNothing();
    void outputIsUtf8WhateverItDeclares();
};

namespace {

// A file whose first line is one character long is taken for UTF-16.
const QString FIRST_CHARACTERS = QStringLiteral("--");

DocumentText fromStream(const QString& text)
{
    std::istringstream stream(text.toStdString());
    return DocumentText::ofStream(stream).value();
}

DocumentText fromFile(const QByteArray& bytes)
{
    QTemporaryFile file;
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush()) {
        qFatal("no temporary file");
    }
    return DocumentText::ofFile(file.fileName()).value();
}

} // namespace

// "x" marks the place that is asked for.
void DocumentTextTest::linesAreTheAuthors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    QTest::newRow("first") << "x" << 1;
    QTest::newRow("end of the first") << "aax\nb" << 1;
    QTest::newRow("behind a line feed") << "a\nx" << 2;
    QTest::newRow("behind empty lines") << "a\n\n\nx" << 4;
    QTest::newRow("behind empty lines at the start") << "\n\nx" << 3;
    QTest::newRow("behind both characters") << "a\r\nbx\r\n" << 2;
    QTest::newRow("behind a carriage return") << "a\rx" << 2;
    QTest::newRow("behind two carriage returns and both") << "a\r\rb\r\nx" << 4;
}

void DocumentTextTest::linesAreTheAuthors()
{
    QFETCH(QString, text);
    QFETCH(int, line);

    text.prepend(FIRST_CHARACTERS);
    const DocumentText file = fromFile(text.toUtf8());
    QCOMPARE(file.text(), text);
    QVERIFY(!file.isJoined());
    QCOMPARE(file.lineOf(file.text().indexOf(QLatin1Char('x'))), line);

    const DocumentText stream = fromStream(text);
    QCOMPARE(stream.text(), QString(text).remove(QLatin1Char('\n')));
    QVERIFY(stream.isJoined());
    QCOMPARE(stream.lineOf(stream.text().indexOf(QLatin1Char('x'))), line);
}

void DocumentTextTest::lineFeedsCanBePutBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << "a";
    QTest::newRow("one") << "a\nb";
    QTest::newRow("at both ends") << "\na\n";
    QTest::newRow("many in a row") << "a\n\n\r\n\nb";
    QTest::newRow("nothing") << "";
}

void DocumentTextTest::lineFeedsCanBePutBack()
{
    QFETCH(QString, text);
    text.prepend(FIRST_CHARACTERS);
    QCOMPARE(fromStream(text).withLineFeeds(), text);
    QCOMPARE(fromFile(text.toUtf8()).withLineFeeds(), text);
}

void DocumentTextTest::parserPlacesLeadIntoTheText()
{
    const DocumentText text = fromFile("ab\ncd\r\nef\rgh");
    QCOMPARE(text.positionOf(1, 1), 0);
    QCOMPARE(text.positionOf(2, 2), 4);
    QCOMPARE(text.positionOf(4, 1), 10);
    QCOMPARE(text.positionOf(0, 0), 0);
    QCOMPARE(text.positionOf(99, 99), 12);
}

void DocumentTextTest::fileThatCannotBeReadGivesNothing()
{
    const QTemporaryDir folder;
    QVERIFY(!DocumentText::ofFile(folder.filePath("none.xml")).has_value());
    QVERIFY(!DocumentText::ofFile(folder.path()).has_value());
    QVERIFY(!DocumentText::ofFileAsStream(folder.filePath("none.xml")).has_value());
    QVERIFY(!DocumentText::ofFileAsStream(folder.path()).has_value());
    QVERIFY(DocumentText::ofFile("/dev/null").has_value());
}

void DocumentTextTest::outputIsUtf8WhateverItDeclares()
{
    const auto read = [](const QByteArray& bytes) {
        QTemporaryFile file;
        if (!file.open() || file.write(bytes) != bytes.size() || !file.seek(0)) {
            qFatal("no temporary file");
        }
        return DocumentText::ofOutput(file);
    };
    const QByteArray declared = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>é</a>";
    QCOMPARE(read(declared).value().text(), QString::fromUtf8(declared));
    QVERIFY(!read("<a>\xe9</a>").has_value());
    QVERIFY(!read("<a/>\xc3").has_value());
}

QTEST_GUILESS_MAIN(DocumentTextTest)
#include "DocumentTextTest.moc"

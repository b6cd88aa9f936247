#include "FileConverters/CoordinationWorkspaceSection/TextLayout.h"

#include <QtTest>

class TextLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void columnsAreTheTerminals_data();
    void columnsAreTheTerminals();
    void columnsOfATableStandUnderEachOther();
    void whatSteersATerminalIsReplaced();
};

void TextLayoutTest::columnsAreTheTerminals_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::newRow("none") << "" << 0;
    QTest::newRow("narrow") << "Bühne" << 5;
    QTest::newRow("wide") << "森のステージ" << 12;
    QTest::newRow("combining") << QString::fromUtf8("u\u0308") << 1;
    QTest::newRow("beyond 16 bits") << "🎤" << 2;
    QTest::newRow("half wide") << "ｱ" << 1;
    QTest::newRow("joined by nothing") << QString::fromUtf8("a\u200bb") << 2;
}

void TextLayoutTest::columnsAreTheTerminals()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QCOMPARE(TextLayout::columnsOf(text), columns);
}

void TextLayoutTest::columnsOfATableStandUnderEachOther()
{
    const QStringList lines = TextLayout::table(
        {{"Zone", "kHz", "Group"}, {"森", "5", ""}, {QString::fromUtf8("u\u0308"), "1000", "x"}},
        {TextLayout::LEFT, TextLayout::RIGHT, TextLayout::LEFT});
    QCOMPARE(lines, QStringList({"Zone   kHz  Group", "森       5",
                                 QString::fromUtf8("u\u0308     1000  x")}));
}

void TextLayoutTest::whatSteersATerminalIsReplaced()
{
    QCOMPARE(TextLayout::printable(QString::fromUtf8("a\x1b[1m\n\u0085\u202e\u2067é")),
             QString::fromUtf8("a\ufffd[1m\ufffd\ufffd\ufffd\ufffdé"));
}

QTEST_GUILESS_MAIN(TextLayoutTest)
#include "TextLayoutTest.moc"

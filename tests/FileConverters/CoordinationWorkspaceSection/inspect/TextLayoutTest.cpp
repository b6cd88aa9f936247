#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QtTest>

namespace {

const QString MICROPHONE = QString::fromUtf8("🎤"); // two code units

QString letters(int count)
{
    return QString(count, QLatin1Char('x'));
}

} // namespace

class TextLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void columnsAreTheTerminals_data();
    void columnsAreTheTerminals();
    void columnsOfATableStandUnderEachOther();
    void whatSteersATerminalIsReplaced();
    void otherCharactersStay();
    void valuesAreQuotedAndCut_data();
    void valuesAreQuotedAndCut();
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
    for (const int code : {0x00, 0x0A, 0x1B, 0x7F, 0x85, 0x202A, 0x202E, 0x2066, 0x2069}) {
        QCOMPARE(TextLayout::printable(QStringLiteral("a%1é").arg(QChar(code))),
                 QString::fromUtf8("a\ufffdé"));
    }
}

void TextLayoutTest::otherCharactersStay()
{
    const QString text = QStringLiteral("Große Bühne 森 →");
    QCOMPARE(TextLayout::printable(text), text);
    // Neighbours of what is replaced, and the marks that right-to-left writing cannot do without.
    for (const int code :
         {0x20, 0x7E, 0xA0, 0x061C, 0x200E, 0x200F, 0x2029, 0x202F, 0x2065, 0x206A}) {
        const QString neighbour = QStringLiteral("a%1é").arg(QChar(code));
        QCOMPARE(TextLayout::printable(neighbour), neighbour);
    }
}

void TextLayoutTest::valuesAreQuotedAndCut_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nothing") << QString() << "\"\"";
    QTest::newRow("short") << "Große Bühne"
                           << "\"Große Bühne\"";
    QTest::newRow("forty characters") << letters(40) << "\"" + letters(40) + "\"";
    QTest::newRow("one more") << letters(41) << "\"" + letters(40) + "...\"";
    QTest::newRow("no half character at the cut")
        << letters(39) + MICROPHONE << "\"" + letters(39) + "...\"";
    QTest::newRow("a whole one in front of it") << letters(38) + MICROPHONE + "y"
                                                << "\"" + letters(38) + MICROPHONE + "...\"";
    QTest::newRow("control characters become blanks") << "a\nb\tc\x7F"
                                                      << "\"a b c \"";
}

void TextLayoutTest::valuesAreQuotedAndCut()
{
    QFETCH(QString, value);
    QTEST(TextLayout::quoted(value), "shown");
}

QTEST_GUILESS_MAIN(TextLayoutTest)
#include "TextLayoutTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/page/HtmlText.h"

#include <QXmlStreamReader>
#include <QtTest>

class HtmlTextTest : public QObject
{
    Q_OBJECT

private slots:
    void foreignTextIsText_data();
    void foreignTextIsText();
    void everyCodeUnitGivesWellFormedText();
    void textsThatAreDifferentLookDifferent();
    void aLongTextIsCut_data();
    void aLongTextIsCut();
};

void HtmlTextTest::foreignTextIsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("html");
    const auto unit = [](ushort code) { return QString(QChar(code)); };
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("plain") << "Vocal 1 é 演"
                           << "Vocal 1 é 演";
    QTest::newRow("a tag") << "</script><img src=x onerror=alert(1)>"
                           << "&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;";
    QTest::newRow("both quotes") << "\"'"
                                 << "&quot;&#39;";
    QTest::newRow("an entity") << "&lt;&#60;"
                               << "&amp;lt;&amp;#60;";
    QTest::newRow("the end of a section") << "]]>"
                                          << "]]&gt;";
    QTest::newRow("beyond the first plane") << "🎤"
                                            << "🎤";
    QTest::newRow("joined emoji") << "👩‍🎤"
                                  << "👩‍🎤";
    QTest::newRow("zero") << unit(0) << "⟨U+0000⟩";
    QTest::newRow("line feed") << "a\nb"
                               << "a⟨U+000A⟩b";
    QTest::newRow("escape") << "\x1b[2J"
                            << "⟨U+001B⟩[2J";
    QTest::newRow("delete") << unit(0x7F) << "⟨U+007F⟩";
    QTest::newRow("a control of Latin-1") << unit(0x85) << "⟨U+0085⟩";
    QTest::newRow("right-to-left override") << "a\u202Elmx.b\u202C"
                                            << "a⟨U+202E⟩lmx.b⟨U+202C⟩";
    QTest::newRow("isolate") << "\u2066\u2069"
                             << "⟨U+2066⟩⟨U+2069⟩";
    QTest::newRow("right-to-left mark") << "\u200F"
                                        << "⟨U+200F⟩";
    QTest::newRow("zero-width space") << "\u200B"
                                      << "⟨U+200B⟩";
    QTest::newRow("byte-order mark") << unit(0xFEFF) << "⟨U+FEFF⟩";
    QTest::newRow("line separator") << "\u2028\u2029"
                                    << "⟨U+2028⟩⟨U+2029⟩";
    QTest::newRow("high surrogate at the end") << "a" + unit(0xD83C) << "a⟨U+D83C⟩";
    QTest::newRow("high surrogate before a letter") << unit(0xD83C) + "a"
                                                    << "⟨U+D83C⟩a";
    QTest::newRow("low surrogate") << unit(0xDFA4) + "<"
                                   << "⟨U+DFA4⟩&lt;";
    QTest::newRow("surrogates in the wrong order")
        << unit(0xDFA4) + unit(0xD83C) << "⟨U+DFA4⟩⟨U+D83C⟩";
    QTest::newRow("what looks like a number") << "⟨U+202E⟩"
                                              << "⟨U+27E8⟩U+202E⟩";
    QTest::newRow("no character") << unit(0xFFFF) + unit(0xFDD0) << "⟨U+FFFF⟩⟨U+FDD0⟩";
    QTest::newRow("no character of the last plane")
        << QString::fromUcs4(U"\U0010FFFE", 1) << "⟨U+10FFFE⟩";
    QTest::newRow("a tag of the fourteenth plane")
        << QString::fromUcs4(U"\U000E0041", 1) << "⟨U+E0041⟩";
}

void HtmlTextTest::foreignTextIsText()
{
    QFETCH(QString, text);
    QTEST(QString::fromUtf8(HtmlText::escaped(text)), "html");
}

void HtmlTextTest::everyCodeUnitGivesWellFormedText()
{
    for (int code = 0; code <= 0xFFFF; ++code) {
        const QByteArray html =
            HtmlText::escaped(QStringLiteral("-") + QChar(code) + QStringLiteral("-"));
        QVERIFY2(html.startsWith('-') && html.endsWith('-'), QByteArray::number(code));
        QXmlStreamReader reader("<p a=\"" + html + "\">" + html + "</p>");
        QVERIFY(reader.readNextStartElement());
        const QString attribute = reader.attributes().value(QStringLiteral("a")).toString();
        const QString text = reader.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        QVERIFY2(!reader.hasError(), QByteArray::number(code));
        QCOMPARE(attribute, text);
    }
}

void HtmlTextTest::textsThatAreDifferentLookDifferent()
{
    QSet<QByteArray> seen;
    for (int code = 0; code <= 0xFFFF; ++code) {
        seen.insert(HtmlText::escaped(QString(QChar(code))));
    }
    QCOMPARE(seen.size(), 0x10000);
}

void HtmlTextTest::aLongTextIsCut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("html");
    QTest::newRow("as long as may be") << "abc" << 3 << "abc";
    QTest::newRow("one more") << "abcd" << 3 << "abc…";
    QTest::newRow("before what grows") << "<<<<" << 2 << "&lt;&lt;…";
    QTest::newRow("not within a character") << "a🎤b" << 2 << "a…";
    QTest::newRow("after a character") << "a🎤b" << 3 << "a🎤…";
}

void HtmlTextTest::aLongTextIsCut()
{
    QFETCH(QString, text);
    QFETCH(int, most);
    QTEST(QString::fromUtf8(HtmlText::escaped(text, most)), "html");
}

QTEST_GUILESS_MAIN(HtmlTextTest)

#include "HtmlTextTest.moc"

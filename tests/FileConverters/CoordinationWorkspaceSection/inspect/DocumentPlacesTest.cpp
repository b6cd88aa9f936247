#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentPlaces.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include <QDomDocument>
#include <QtTest>

#include <sstream>

class DocumentPlacesTest : public QObject
{
    Q_OBJECT

private slots:
    void placeIsWhereTheElementBegins_data();
    void placeIsWhereTheElementBegins();
    void longPathsAreCutInTheMiddle();
    void placeOfNoElementIsTheStart();
    void elementsOutsideAreTold();
};

namespace {

/** A document with the places of its elements. */
struct Placed
{
    explicit Placed(const QString& content)
        : text([&] {
              std::istringstream stream(content.toStdString());
              return DocumentText::ofStream(stream).value();
          }()),
          document([&] {
              QDomDocument parsed;
              if (!parsed.setContent(text.text())) {
                  qFatal("not well-formed");
              }
              return parsed;
          }()),
          places(document, text)
    {
    }

    QDomElement first(const QString& name) const
    {
        return document.elementsByTagName(name).at(0).toElement();
    }

    DocumentText text;
    QDomDocument document;
    DocumentPlaces places;
};

} // namespace

// The place of the first "x".
void DocumentPlacesTest::placeIsWhereTheElementBegins_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("path");
    QTest::newRow("of an entity, behind an element")
        << "<!DOCTYPE a [<!ENTITY e \"<x/>\">]>\n<a><b>text</b>\n&e;</a>" << 3 << "/a/x";
    QTest::newRow("outermost") << "\n<x/>" << 2 << "/x";
    QTest::newRow("alone") << "<a>\n<x/></a>" << 2 << "/a/x";
    QTest::newRow("alone of its name") << "<a><b/>\n<x/>\n<b/></a>" << 2 << "/a/x";
    QTest::newRow("first of two") << "<a>\n<x/><x/></a>" << 2 << "/a/x[1]";
    QTest::newRow("in the second of two") << "<a><b/>\n<b><x/></b></a>" << 2 << "/a/b[2]/x";
    QTest::newRow("tag over several lines") << "<a>\n<x \nb='1' \n c='>'\n></x></a>" << 2 << "/a/x";
    QTest::newRow("behind wide characters") << "<a>🎤🎤\n<b/>🎤\n<x/></a>" << 3 << "/a/x";
    QTest::newRow("behind what looks like a tag")
        << "<a><!-- <x> -->\n<![CDATA[<x>]]>\n<x/></a>" << 3 << "/a/x";
    QTest::newRow("from an entity")
        << "<!DOCTYPE a [<!ENTITY e '<x/>'>]>\n<a>\n\n&e;</a>" << 4 << "/a/x";
}

void DocumentPlacesTest::placeIsWhereTheElementBegins()
{
    QFETCH(QString, content);
    QFETCH(int, line);
    QFETCH(QString, path);

    const Placed placed(content);
    const Place place = placed.places.of(placed.first("x"));
    QCOMPARE(place.line, line);
    QCOMPARE(place.path, path);
    const Place attribute = placed.places.ofAttribute(placed.first("x"), "b");
    QCOMPARE(attribute.line, line);
    QCOMPARE(attribute.path, path + "/@b");
}

void DocumentPlacesTest::longPathsAreCutInTheMiddle()
{
    const auto nested = [](int depth) {
        QString path;
        QString content = "<x/>";
        for (int i = depth - 1; i > 0; --i) {
            content = QStringLiteral("<a%1>%2</a%1>").arg(QString::number(i), content);
            path.prepend(QStringLiteral("/a%1").arg(i));
        }
        const Placed placed(content);
        return placed.places.of(placed.first("x")).path;
    };
    QCOMPARE(nested(16), QStringLiteral("/a1/a2/a3/a4/a5/a6/a7/a8/a9/a10/a11/a12/a13/a14/a15/x"));
    QCOMPARE(nested(17),
             QStringLiteral("/a1/a2/a3/a4/a5/a6/a7/a8/.../a10/a11/a12/a13/a14/a15/a16/x"));
}

void DocumentPlacesTest::placeOfNoElementIsTheStart()
{
    const Placed placed("<a/>");
    QCOMPARE(placed.places.of(QDomElement()).line, 1);
    QCOMPARE(placed.places.of(QDomElement()).path, QStringLiteral("/"));
}

void DocumentPlacesTest::elementsOutsideAreTold()
{
    const Placed placed("<a><h><x1/><b><x2/></b></h><x3/><h/></a>");
    const std::vector<QDomElement> elements = {placed.first("x1"), placed.first("x2"),
                                               placed.first("x3"), placed.first("h")};
    const std::vector<QDomElement> outside = placed.places.outside(elements, {placed.first("h")});
    QCOMPARE(outside.size(), std::size_t(1));
    QCOMPARE(outside[0].tagName(), QStringLiteral("x3"));
    QCOMPARE(placed.places.outside(elements, {}).size(), elements.size());
}

QTEST_GUILESS_MAIN(DocumentPlacesTest)
#include "DocumentPlacesTest.moc"

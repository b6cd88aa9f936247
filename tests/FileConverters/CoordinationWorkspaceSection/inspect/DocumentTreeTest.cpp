#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentTree.h"

#include <QDomDocument>
#include <QtTest>

class DocumentTreeTest : public QObject
{
    Q_OBJECT

private slots:
    void equalContentsHaveOneNumber_data();
    void equalContentsHaveOneNumber();
    void nodesAreDescribed_data();
    void nodesAreDescribed();
    void settingsCountThemselvesIn();
    void kindIsTypeAndName_data();
    void kindIsTypeAndName();

private:
    static QDomDocument parsed(const QString& content);
};

QDomDocument DocumentTreeTest::parsed(const QString& content)
{
    QDomDocument document;
    QString error;
    if (!document.setContent(content, &error)) {
        qFatal("not well-formed: %s", qPrintable(error));
    }
    return document;
}

void DocumentTreeTest::equalContentsHaveOneNumber_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("isEqual");
    const QString simple = R"(<a x="1" y="2"><b/>text</a>)";
    QTest::newRow("the same") << simple << simple << true;
    QTest::newRow("another order of attributes")
        << simple << R"(<a y="2" x="1"><b/>text</a>)" << true;
    QTest::newRow("another order of children")
        << simple << R"(<a x="1" y="2">text<b/></a>)" << false;
    QTest::newRow("another value") << simple << R"(<a x="1" y="3"><b/>text</a>)" << false;
    QTest::newRow("another attribute") << simple << R"(<a x="1" z="2"><b/>text</a>)" << false;
    QTest::newRow("another name") << simple << R"(<a x="1" y="2"><c/>text</a>)" << false;
    QTest::newRow("another text") << simple << R"(<a x="1" y="2"><b/>texts</a>)" << false;
    QTest::newRow("a comment for a text") << "<a>b</a>"
                                          << "<a><!--b--></a>" << false;
    QTest::newRow("one child more") << "<a><b/></a>"
                                    << "<a><b/><b/></a>" << false;
    QTest::newRow("a child one level up") << "<a><b/><b/></a>"
                                          << "<a><b><b/></b></a>" << false;
    QTest::newRow("another declaration in the document type")
        << R"(<!DOCTYPE a [<!ENTITY e SYSTEM "1">]><a/>)"
        << R"(<!DOCTYPE a [<!ENTITY e SYSTEM "2">]><a/>)" << false;
    QTest::newRow("a document type more") << "<a/>"
                                          << "<!DOCTYPE a><a/>" << false;
}

void DocumentTreeTest::equalContentsHaveOneNumber()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    DocumentTree::Contents contents;
    const DocumentTree first(parsed(one), contents);
    const DocumentTree second(parsed(other), contents);
    const int top = DocumentTree::TOP;
    QTEST(first.node(top).content == second.node(top).content, "isEqual");
}

void DocumentTreeTest::nodesAreDescribed_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("description"); // of the element's child
    QTest::newRow("element") << "<a><b>text</b></a>"
                             << R"(The element "b")";
    QTest::newRow("text") << "<a>some text</a>"
                          << R"(The text "some text")";
    QTest::newRow("text in a section") << "<a><![CDATA[a < b]]></a>"
                                       << R"(The text "a < b")";
    QTest::newRow("comment") << "<a><!-- old --></a>"
                             << R"(The comment " old ")";
    QTest::newRow("instruction") << "<a><?print twice?></a>"
                                 << R"(The declaration "twice")";
}

void DocumentTreeTest::nodesAreDescribed()
{
    QFETCH(QString, content);
    DocumentTree::Contents contents;
    const DocumentTree tree(parsed(content), contents);
    const int element = tree.node(DocumentTree::TOP).children.front();
    QTEST(tree.describe(tree.node(element).children.front()), "description");
}

void DocumentTreeTest::settingsCountThemselvesIn()
{
    DocumentTree::Contents contents;
    const DocumentTree tree(
        parsed("<a><compatibility_profile_settings><b/></compatibility_profile_settings><c/></a>"),
        contents);
    const auto& children = tree.node(tree.node(DocumentTree::TOP).children.front()).children;
    const int settings = children[0];
    QVERIFY(tree.node(settings).isInSettings);
    QVERIFY(tree.node(tree.node(settings).children.front()).isInSettings);
    QVERIFY(!tree.node(children[1]).isInSettings);
    QVERIFY(!tree.node(DocumentTree::TOP).isInSettings);
}

void DocumentTreeTest::kindIsTypeAndName_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("isSame");
    QTest::newRow("elements of a name") << R"(<b x="1"/>)"
                                        << "<b>text</b>" << true;
    QTest::newRow("elements of two names") << "<b/>"
                                           << "<c/>" << false;
    QTest::newRow("texts") << "one"
                           << "other" << true;
    QTest::newRow("text and comment") << "one"
                                      << "<!--one-->" << false;
}

void DocumentTreeTest::kindIsTypeAndName()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    DocumentTree::Contents contents;
    const DocumentTree first(parsed("<a>" + one + "</a>"), contents);
    const DocumentTree second(parsed("<a>" + other + "</a>"), contents);
    const auto child = [](const DocumentTree& tree) {
        return tree.node(tree.node(DocumentTree::TOP).children.front()).children.front();
    };
    QTEST(first.isOfSameKind(child(first), second, child(second)), "isSame");
}

QTEST_GUILESS_MAIN(DocumentTreeTest)
#include "DocumentTreeTest.moc"

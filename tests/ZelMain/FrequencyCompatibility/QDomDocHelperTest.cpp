#include "ZelMain/FrequencyCompatibility/QDomDocHelper.h"

#include <QDomDocument>
#include <QtTest>

class QDomDocHelperTest : public QObject
{
    Q_OBJECT

private slots:
    void childIsAppendedLastWithItsText();
    void emptyTextIsATextNodeToo();
};

void QDomDocHelperTest::childIsAppendedLastWithItsText()
{
    QDomDocument document;
    document.setContent(QStringLiteral("<parent><first/></parent>"));
    QDomElement parent = document.documentElement();
    QDomDocHelper::CreateChildNode(document, QStringLiteral("child"), QStringLiteral("<a>&"),
                                   parent);
    const QDomElement child = parent.lastChild().toElement();
    QCOMPARE(child.tagName(), QStringLiteral("child"));
    QCOMPARE(child.childNodes().size(), 1);
    QCOMPARE(child.firstChild().toText().data(), QStringLiteral("<a>&"));
    QCOMPARE(child.ownerDocument(), document);
}

void QDomDocHelperTest::emptyTextIsATextNodeToo()
{
    QDomDocument document;
    document.setContent(QStringLiteral("<parent/>"));
    QDomElement parent = document.documentElement();
    QDomDocHelper::CreateChildNode(document, QStringLiteral("child"), QString(), parent);
    QVERIFY(parent.firstChild().firstChild().isText());
    QCOMPARE(document.toString(-1), QStringLiteral("<parent><child></child></parent>"));
}

QTEST_APPLESS_MAIN(QDomDocHelperTest)
#include "QDomDocHelperTest.moc"

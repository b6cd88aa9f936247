#include "ZelMain/FrequencyCompatibility/shared/XmlUtil.h"

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <QtTest>

#include <tinyxml2.h>

#include <limits>
#include <locale>

namespace {

// Groups every digit, so that a grouped number cannot be missed.
class GroupingDigits : public std::numpunct<char>
{
protected:
    char do_thousands_sep() const override { return '\''; }
    std::string do_grouping() const override { return "\1"; }
};

} // namespace

class XmlUtilTest : public QObject
{
    Q_OBJECT

private slots:
    void childIsAppendedLast();
    void emptyTextGivesNoTextNode();
    void markupInTextIsText();
    void integersAreWrittenInDecimal_data();
    void integersAreWrittenInDecimal();
    void integersDoNotFollowTheGlobalLocale();
};

void XmlUtilTest::childIsAppendedLast()
{
    tinyxml2::XMLDocument document;
    document.Parse("<parent><first/></parent>");
    tinyxml2::XMLElement* const parent = document.RootElement();
    tinyxml2::XMLElement* const child = xmlutil::CreateChildNode("child", "text", document, parent);
    QCOMPARE(parent->LastChild(), child);
    QCOMPARE(child->Name(), "child");
    QCOMPARE(child->GetText(), "text");
    QCOMPARE(child->Parent(), parent);
}

void XmlUtilTest::emptyTextGivesNoTextNode()
{
    tinyxml2::XMLDocument document;
    document.Parse("<parent/>");
    QVERIFY(xmlutil::CreateChildNode("child", "", document, document.RootElement())->NoChildren());
}

void XmlUtilTest::markupInTextIsText()
{
    tinyxml2::XMLDocument document;
    document.Parse("<parent/>");
    xmlutil::CreateChildNode("child", "<a>&", document, document.RootElement());
    tinyxml2::XMLPrinter printer(nullptr, true);
    document.Print(&printer);
    QCOMPARE(printer.CStr(), "<parent><child>&lt;a&gt;&amp;</child></parent>");
}

void XmlUtilTest::integersAreWrittenInDecimal_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0 << "0";
    QTest::newRow("negative") << -1 << "-1";
    QTest::newRow("thousands") << 470000 << "470000";
    QTest::newRow("greatest") << std::numeric_limits<int>::max() << "2147483647";
    QTest::newRow("least") << std::numeric_limits<int>::min() << "-2147483648";
}

void XmlUtilTest::integersAreWrittenInDecimal()
{
    QFETCH(int, value);
    QTEST(QString::fromStdString(xmlutil::ToStr(value)), "text");
    QTEST(QString::fromStdString(xmlutil::ToStr(static_cast<EBFType>(value))), "text");
}

void XmlUtilTest::integersDoNotFollowTheGlobalLocale()
{
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new GroupingDigits));
    const std::string text = xmlutil::ToStr(470000);
    std::locale::global(before);
    QCOMPARE(text, std::string("470000"));
}

QTEST_APPLESS_MAIN(XmlUtilTest)
#include "XmlUtilTest.moc"

#include "ZelMain/ImportExport/XmlVersions.h"

#include "tests/ZelMain/ImportExport/SectionElement.h"
#include "tests/support/MessageRecorder.h"

#include <QDir>
#include <QDomElement>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

Q_DECLARE_METATYPE(XmlVersions::XmlValidState)

class XmlVersionsTest : public QObject
{
    Q_OBJECT

private slots:
    void constantHasItsValue_data();
    void constantHasItsValue();
    void versionIsWrittenWithOneDecimal_data();
    void versionIsWrittenWithOneDecimal();
    void numberBetweenTwoTextsGetsOneOfThem();
    void textDoesNotFollowTheUsersLocale();

    // These two stand before whatever makes the first object.
    void nothingIsKnownBeforeTheFirstObject_data();
    void nothingIsKnownBeforeTheFirstObject();

    void objectBelongsToItsParent();
    void verdictsAreNumbered();
    void oldestConvertedVersionHasItsValue_data();
    void oldestConvertedVersionHasItsValue();
    void sectionHasItsVersionText_data();
    void sectionHasItsVersionText();
    void unknownSectionHasNoVersionText_data();
    void unknownSectionHasNoVersionText();
    void verdictFollowsTheVersion_data();
    void verdictFollowsTheVersion();
    void versionIsReadInTheFormOfTheCLocale_data();
    void versionIsReadInTheFormOfTheCLocale();
    void unknownSectionIsInvalid_data();
    void unknownSectionIsInvalid();
    void verdictIsSilent();
    void anotherObjectChangesNothing();
};

namespace {

/** One row of the table of sections. */
struct Section
{
    QString element;
    double current;
    double oldest; // NaN for a section without a conversion
};

const double NONE = std::numeric_limits<double>::quiet_NaN();

const QVector<Section> SECTIONS = {
    {"show", 1.0, NONE},
    {"show_properties", 1.0, NONE},
    {"inventory", 2.1, 1.5},
    {"racks", 1.0, NONE},
    {"zones", 1.1, NONE},
    {"coordination_plot", 1.2, NONE},
    {"channel_management", 1.0, NONE},
    {"scan_data", 1.3, 1.2},
    {"channel_exclusions", 1.1, 1.0},
    {"global_exclusions", 1.1, 1.0},
    {"band_planning", 1.0, NONE},
    {"quilla_plot", 1.1, 1.0},
    {"CFLs", 1.0, NONE},
    {"monitoring_info", 2.2, 1.1},
    {"custom_groups", 1.0, NONE},
    {"custom_groups_solution", 1.0, NONE},
    {"presets", 1.1, NONE},
    {"band_plan_group_list", 1.0, 0.0},
    {"coordinated_data_root", 0.3, 0.1},
};

/** The text that reads back as exactly this number. */
QString exactText(double number)
{
    return QString::number(number, 'g', 17);
}

QString justAbove(double number)
{
    return exactText(number + 1e-15);
}

QString justBelow(double number)
{
    return exactText(number - 1e-15);
}

} // namespace

void XmlVersionsTest::nothingIsKnownBeforeTheFirstObject_data()
{
    QTest::addColumn<QString>("element");
    for (const Section& section : SECTIONS) {
        QTest::newRow(qPrintable(section.element)) << section.element;
    }
}

void XmlVersionsTest::nothingIsKnownBeforeTheFirstObject()
{
    QFETCH(QString, element);
    QCOMPARE(XmlVersions::GetXmlVersionString(element), QString());
    QCOMPARE(XmlVersions::Verdict(sectionOf(element, "1.0")), XmlVersions::XmlInvalid);
}

void XmlVersionsTest::constantHasItsValue_data()
{
    QTest::addColumn<double>("constant");
    QTest::addColumn<double>("version");
    QTest::newRow("show") << XmlVersions::XML_VERSION_SHOW << 1.0;
    QTest::newRow("show properties") << XmlVersions::XML_VERSION_SHOW_PROPERTIES << 1.0;
    QTest::newRow("inventory") << XmlVersions::XML_VERSION_INVENTORY << 2.1;
    QTest::newRow("linking") << XmlVersions::XML_VERSION_LINKING << 1.0;
    QTest::newRow("zones") << XmlVersions::XML_VERSION_ZONES << 1.1;
    QTest::newRow("coordination plot") << XmlVersions::XML_VERSION_COORDINATION_PLOT << 1.2;
    QTest::newRow("channel state") << XmlVersions::XML_VERSION_CHANNEL_STATE << 1.0;
    QTest::newRow("scan data") << XmlVersions::XML_VERSION_SCAN_DATA << 1.3;
    QTest::newRow("channel exclusion") << XmlVersions::XML_VERSION_CHANNEL_EXCLUSION << 1.1;
    QTest::newRow("frequency exclusion") << XmlVersions::XML_VERSION_FREQUENCY_EXCLUSION << 1.1;
    QTest::newRow("band planning") << XmlVersions::XML_VERSION_BAND_PLANNING << 1.0;
    QTest::newRow("quilla plot") << XmlVersions::XML_VERSION_QUILLA_PLOT << 1.1;
    QTest::newRow("compat level") << XmlVersions::XML_VERSION_COMPAT_LEVEL << 1.1;
    QTest::newRow("compat config") << XmlVersions::XML_VERSION_COMPAT_CONFIG << 1.1;
    QTest::newRow("compat profiles") << XmlVersions::XML_VERSION_COMPAT_PROFILES << 1.0;
    QTest::newRow("coord order") << XmlVersions::XML_VERSION_COORD_ORDER << 1.1;
    QTest::newRow("cfls") << XmlVersions::XML_VERSION_CFLS << 1.0;
    QTest::newRow("strip settings") << XmlVersions::XML_VERSION_STRIP_SETTINGS << 1.1;
    QTest::newRow("channel strips") << XmlVersions::XML_VERSION_CHANNEL_STRIPS << 2.2;
    QTest::newRow("custom groups") << XmlVersions::XML_VERSION_CUSTOM_GROUPS << 1.0;
    QTest::newRow("groups solution") << XmlVersions::XML_VERSION_CUSTOM_GROUPS_SOLUTION << 1.0;
    QTest::newRow("cugl") << XmlVersions::XML_VERSION_CUGL << 1.0;
    QTest::newRow("cug") << XmlVersions::XML_VERSION_CUG << 1.0;
    QTest::newRow("presets") << XmlVersions::XML_VERSION_PRESETS << 1.1;
    QTest::newRow("bandplan gp") << XmlVersions::XML_VERSION_BANDPLAN_GP << 1.0;
    QTest::newRow("coord workspace") << XmlVersions::XML_VERSION_COORD_WORKSPACE << 0.3;
}

void XmlVersionsTest::constantHasItsValue()
{
    QFETCH(double, constant);
    QFETCH(double, version);
    QVERIFY(constant == version); // QCOMPARE would take nearly equal numbers
}

void XmlVersionsTest::versionIsWrittenWithOneDecimal_data()
{
    QTest::addColumn<double>("version");
    QTest::addColumn<QString>("text");
    QTest::newRow("workspace") << 0.3 << "0.3";
    QTest::newRow("whole") << 1.0 << "1.0";
    QTest::newRow("greater whole") << 2.0 << "2.0";
    QTest::newRow("rounds up") << 1.26 << "1.3";
    QTest::newRow("rounds down") << 1.24 << "1.2";
    QTest::newRow("two digits before the point") << 12.5 << "12.5";
    QTest::newRow("thousands are not grouped") << 1234567.0 << "1234567.0";
    QTest::newRow("negative") << -2.0 << "-2.0";
    QTest::newRow("negative that rounds to nothing") << -0.04 << "-0.0";
    QTest::newRow("profiles") << XmlVersions::XML_VERSION_COMPAT_PROFILES << "1.0";
}

void XmlVersionsTest::versionIsWrittenWithOneDecimal()
{
    QFETCH(double, version);
    QTEST(XmlVersions::GetXmlVersionString(version), "text");
}

void XmlVersionsTest::numberBetweenTwoTextsGetsOneOfThem()
{
    const QString text = XmlVersions::GetXmlVersionString(1.25);
    QVERIFY2(text == "1.2" || text == "1.3", qPrintable(text));
}

void XmlVersionsTest::textDoesNotFollowTheUsersLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const QString text = XmlVersions::GetXmlVersionString(0.3);
    QLocale::setDefault(before);
    QCOMPARE(text, QStringLiteral("0.3"));
}

void XmlVersionsTest::objectBelongsToItsParent()
{
    QObject parent;
    const auto* versions = new XmlVersions(&parent);
    QCOMPARE(versions->parent(), &parent);
    QCOMPARE(versions->metaObject()->className(), "XmlVersions");
}

void XmlVersionsTest::verdictsAreNumbered()
{
    QCOMPARE(int(XmlVersions::XmlInvalid), 0);
    QCOMPARE(int(XmlVersions::XmlCurrent), 1);
    QCOMPARE(int(XmlVersions::XmlConvertible), 2);
    QCOMPARE(int(XmlVersions::XmlNoConversion), 3);
    QCOMPARE(int(XmlVersions::XmlTooNew), 4);
}

void XmlVersionsTest::oldestConvertedVersionHasItsValue_data()
{
    QTest::addColumn<double>("constant");
    QTest::addColumn<double>("version");
    QTest::newRow("scan data") << XmlVersions::XML_MIN_CONVERTED_VERSION_SCAN_DATA << 1.2;
    QTest::newRow("quilla plot") << XmlVersions::XML_MIN_CONVERTED_VERSION_QUILLA_PLOT << 1.0;
    QTest::newRow("global exclusions") << XmlVersions::XML_MIN_CONVERTED_VERSION_GLOBAL_EXCL << 1.0;
    QTest::newRow("inventory") << XmlVersions::XML_MIN_CONVERTED_VERSION_INVENTORY << 1.5;
    QTest::newRow("channel exclusions")
        << XmlVersions::XML_MIN_CONVERTED_VERSION_TV_CHANN_EXCL << 1.0;
    QTest::newRow("channel strips") << XmlVersions::XML_MIN_CONVERTED_VERSION_CHANNEL_STRIPS << 1.1;
    QTest::newRow("bandplan gp") << XmlVersions::XML_MIN_CONVERTED_VERSION_BANDPLAN_GP << 0.0;
    QTest::newRow("workspace") << XmlVersions::XML_MIN_CONVERTED_VERSION_COORD_WORKSPACE << 0.1;
}

void XmlVersionsTest::oldestConvertedVersionHasItsValue()
{
    constantHasItsValue();
}

void XmlVersionsTest::sectionHasItsVersionText_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("text");
    for (const Section& section : SECTIONS) {
        QTest::newRow(qPrintable(section.element))
            << section.element << QString::number(section.current, 'f', 1);
    }
}

void XmlVersionsTest::sectionHasItsVersionText()
{
    QFETCH(QString, element);
    const XmlVersions versions;
    QTEST(XmlVersions::GetXmlVersionString(element), "text");
}

void XmlVersionsTest::unknownSectionHasNoVersionText_data()
{
    QTest::addColumn<QString>("element");
    QTest::newRow("unknown") << "unknown";
    QTest::newRow("empty") << "";
    QTest::newRow("null") << QString();
    QTest::newRow("another case") << "cfls";
    QTest::newRow("name shown to people") << "Scan data";
    QTest::newRow("blank beside it") << "show ";
    QTest::newRow("element with a version of its own") << "compatibility_profile_settings";
}

void XmlVersionsTest::unknownSectionHasNoVersionText()
{
    QFETCH(QString, element);
    const XmlVersions versions;
    QVERIFY(XmlVersions::GetXmlVersionString(element).isEmpty());
}

void XmlVersionsTest::verdictFollowsTheVersion_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<XmlVersions::XmlValidState>("verdict");
    for (const Section& section : SECTIONS) {
        const auto row = [&](const char* what, const QString& version,
                             XmlVersions::XmlValidState verdict) {
            QTest::addRow("%s, %s", qPrintable(section.element), what)
                << section.element << version << verdict;
        };
        const bool isConverted = !std::isnan(section.oldest);
        const auto older = isConverted ? XmlVersions::XmlConvertible : XmlVersions::XmlNoConversion;
        const auto tooOld = isConverted ? XmlVersions::XmlInvalid : XmlVersions::XmlNoConversion;
        const auto zero =
            isConverted && section.oldest == 0.0 ? XmlVersions::XmlConvertible : tooOld;

        row("current", QString::number(section.current, 'f', 1), XmlVersions::XmlCurrent);
        row("just below current", justBelow(section.current), older);
        row("just above current", justAbove(section.current), XmlVersions::XmlTooNew);
        if (isConverted) {
            row("oldest", QString::number(section.oldest, 'f', 1), XmlVersions::XmlConvertible);
            row("just above oldest", justAbove(section.oldest), XmlVersions::XmlConvertible);
            row("just below oldest", justBelow(section.oldest), XmlVersions::XmlInvalid);
        }
        row("no attribute", QString(), zero);
        row("empty attribute", "", zero);
        row("no number", "new", zero);
        row("negative", "-1.0", tooOld);
        row("NaN", "nan", XmlVersions::XmlInvalid);
        row("infinity", "inf", XmlVersions::XmlTooNew);
        row("negative infinity", "-inf", tooOld);
    }
}

void XmlVersionsTest::verdictFollowsTheVersion()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    const XmlVersions versions;
    QTEST(XmlVersions::Verdict(sectionOf(element, version)), "verdict");
}

void XmlVersionsTest::versionIsReadInTheFormOfTheCLocale_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<XmlVersions::XmlValidState>("verdict");
    QTest::newRow("more digits") << "1.30000" << XmlVersions::XmlCurrent;
    QTest::newRow("exponent") << "13e-1" << XmlVersions::XmlCurrent;
    QTest::newRow("sign") << "+1.3" << XmlVersions::XmlCurrent;
    QTest::newRow("blanks around") << "  1.3 " << XmlVersions::XmlCurrent;
    QTest::newRow("decimal comma is no number") << "1,3" << XmlVersions::XmlInvalid;
    QTest::newRow("word after the number") << "1.3 beta" << XmlVersions::XmlInvalid;
    QTest::newRow("two points") << "1.3.0" << XmlVersions::XmlInvalid;
}

void XmlVersionsTest::versionIsReadInTheFormOfTheCLocale()
{
    QFETCH(QString, version);
    const XmlVersions versions;
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const auto verdict = XmlVersions::Verdict(sectionOf("scan_data", version));
    QLocale::setDefault(before);
    QTEST(verdict, "verdict");
}

void XmlVersionsTest::unknownSectionIsInvalid_data()
{
    QTest::addColumn<QString>("element");
    QTest::newRow("unknown") << "unknown";
    QTest::newRow("another case") << "Show";
    QTest::newRow("with a prefix") << "x:show";
}

void XmlVersionsTest::unknownSectionIsInvalid()
{
    QFETCH(QString, element);
    const XmlVersions versions;
    QCOMPARE(XmlVersions::Verdict(sectionOf(element, "1.0")), XmlVersions::XmlInvalid);
    QCOMPARE(XmlVersions::Verdict(QDomElement()), XmlVersions::XmlInvalid);
}

void XmlVersionsTest::verdictIsSilent()
{
    const QTemporaryDir home;
    QVERIFY(home.isValid());
    qputenv("HOME", QFile::encodeName(home.path()));
    const XmlVersions versions;
    const MessageRecorder recorder;
    XmlVersions::Verdict(sectionOf("unknown", "1.0"));
    XmlVersions::Verdict(sectionOf("scan_data", "9.9"));
    XmlVersions::Verdict(sectionOf("scan_data", "0.1"));
    QVERIFY(recorder.messages().isEmpty());
    // The log service would have made its folder and settings by now.
    QVERIFY(QDir(home.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void XmlVersionsTest::anotherObjectChangesNothing()
{
    const XmlVersions first;
    {
        const XmlVersions second;
    }
    QCOMPARE(XmlVersions::GetXmlVersionString(QStringLiteral("scan_data")), QStringLiteral("1.3"));
    QCOMPARE(XmlVersions::Verdict(sectionOf("scan_data", "1.2")), XmlVersions::XmlConvertible);
}

QTEST_GUILESS_MAIN(XmlVersionsTest)
#include "XmlVersionsTest.moc"

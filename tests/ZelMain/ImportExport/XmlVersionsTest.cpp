#include "ZelMain/ImportExport/XmlVersions.h"

#include <QLocale>
#include <QtTest>

class XmlVersionsTest : public QObject
{
    Q_OBJECT

private slots:
    void constantHasItsValue_data();
    void constantHasItsValue();
    void versionIsWrittenWithOneDecimal_data();
    void versionIsWrittenWithOneDecimal();
    void textDoesNotFollowTheUsersLocale();
    void objectBelongsToItsParent();
};

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
    QTest::newRow("profiles") << XmlVersions::XML_VERSION_COMPAT_PROFILES << "1.0";
}

void XmlVersionsTest::versionIsWrittenWithOneDecimal()
{
    QFETCH(double, version);
    QTEST(XmlVersions::GetXmlVersionString(version), "text");
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

QTEST_GUILESS_MAIN(XmlVersionsTest)
#include "XmlVersionsTest.moc"

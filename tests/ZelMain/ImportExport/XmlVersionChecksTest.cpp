#include "ZelMain/ImportExport/XmlVersions.h"

#include "tests/ZelMain/ImportExport/SectionElement.h"
#include "tests/support/MessageRecorder.h"
#include "tests/support/RunningLogService.h"

#include <QDomDocument>
#include <QDomElement>
#include <QtTest>

using Messages = QVector<RecordedMessage>;

Q_DECLARE_METATYPE(Messages)
Q_DECLARE_METATYPE(XmlVersions::Conflicts)
Q_DECLARE_METATYPE(XmlVersions::XmlValidState)

/** The checks that talk: to the log service, and on Qt's message channels. */
class XmlVersionChecksTest : public QObject
{
    Q_OBJECT

private slots:
    void everySectionIsUnknownBeforeTheFirstObject();
    void firstObjectMakesSectionsKnown();

    void checkGivesTheVerdict_data();
    void checkGivesTheVerdict();
    void tooNewSectionIsWarnedOf_data();
    void tooNewSectionIsWarnedOf();
    void unknownSectionIsWarnedOf_data();
    void unknownSectionIsWarnedOf();

    void findingIsLogged_data();
    void findingIsLogged();
    void findingGoesToTheConsole_data();
    void findingGoesToTheConsole();
    void nothingIsLoggedOfAnOldOrCurrentSection_data();
    void nothingIsLoggedOfAnOldOrCurrentSection();
    void nothingIsLoggedThatIsNotWanted();

    void olderSectionIsAConflict_data();
    void olderSectionIsAConflict();
    void conflictReplacesTheOneBefore();
    void otherSectionIsNoConflict_data();
    void otherSectionIsNoConflict();

    void scanFindsConflicts_data();
    void scanFindsConflicts();
    void scanReportsWhatItExaminesInKeyOrder();
    void scanStartsWithNoConflicts();
};

namespace {

const QString IMPORT_EXPORT = QStringLiteral("IMPORT_EXPORT  ");

RecordedMessage warning(const QString& text)
{
    return {QtWarningMsg, "default", text};
}

RecordedMessage debug(const QString& text)
{
    return {QtDebugMsg, "default", text};
}

/** Without Qt's own warnings of an argument that a text has no place for. */
Messages withoutMissingArguments(const Messages& messages)
{
    Messages rest;
    for (const RecordedMessage& message : messages) {
        if (!message.text.startsWith("QString::arg: Argument missing:")) {
            rest.append(message);
        }
    }
    return rest;
}

} // namespace

void XmlVersionChecksTest::everySectionIsUnknownBeforeTheFirstObject()
{
    const MessageRecorder recorder;
    const QDomElement section = sectionOf("scan_data", "1.2");
    QCOMPARE(XmlVersions::IsValidXmlVersion(section), XmlVersions::XmlInvalid);
    XmlVersions::Conflicts conflicts;
    XmlVersions::CheckSectionVersion(section, conflicts);
    QVERIFY(conflicts.isEmpty());
    auto state = XmlVersions::XmlCurrent;
    QVERIFY(XmlVersions::GetSectionVersionConflicts(section, state).isEmpty());
    QCOMPARE(state, XmlVersions::XmlInvalid);
}

void XmlVersionChecksTest::firstObjectMakesSectionsKnown()
{
    {
        const XmlVersions versions;
    }
    QCOMPARE(XmlVersions::IsValidXmlVersion(sectionOf("scan_data", "1.3")),
             XmlVersions::XmlCurrent);
}

void XmlVersionChecksTest::checkGivesTheVerdict_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<XmlVersions::XmlValidState>("verdict");
    QTest::addColumn<bool>("silent");
    QTest::newRow("current") << "scan_data"
                             << "1.3" << XmlVersions::XmlCurrent << true;
    QTest::newRow("convertible") << "scan_data"
                                 << "1.2" << XmlVersions::XmlConvertible << true;
    QTest::newRow("too old") << "scan_data"
                             << "1.1" << XmlVersions::XmlInvalid << true;
    QTest::newRow("too new") << "scan_data"
                             << "1.4" << XmlVersions::XmlTooNew << false;
    QTest::newRow("no conversion") << "zones"
                                   << "1.0" << XmlVersions::XmlNoConversion << true;
    QTest::newRow("no version, no conversion")
        << "zones" << QString() << XmlVersions::XmlNoConversion << true;
    QTest::newRow("no version, converted from the first")
        << "band_plan_group_list" << QString() << XmlVersions::XmlConvertible << true;
    QTest::newRow("no version, too old")
        << "inventory" << QString() << XmlVersions::XmlInvalid << true;
    QTest::newRow("NaN") << "scan_data"
                         << "nan" << XmlVersions::XmlInvalid << true;
    QTest::newRow("NaN, no conversion") << "zones"
                                        << "nan" << XmlVersions::XmlInvalid << true;
    QTest::newRow("unknown") << "unknown"
                             << "1.0" << XmlVersions::XmlInvalid << false;
}

void XmlVersionChecksTest::checkGivesTheVerdict()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    QFETCH(XmlVersions::XmlValidState, verdict);
    QFETCH(bool, silent);
    const MessageRecorder recorder;
    const QDomElement section = sectionOf(element, version);
    QCOMPARE(XmlVersions::IsValidXmlVersion(section), verdict);
    QCOMPARE(XmlVersions::Verdict(section), verdict);
    QCOMPARE(recorder.messages().isEmpty(), silent);
}

void XmlVersionChecksTest::tooNewSectionIsWarnedOf_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("text");
    QTest::newRow("scan data") << "scan_data"
                               << "1.4"
                               << R"("Scan data"  XML version invalid. Expected:  1.3  Got:  1.4)";
    QTest::newRow("whole numbers") << "CFLs"
                                   << "2.0"
                                   << R"("Compatible frequency list"  XML version invalid. )"
                                      R"(Expected:  1  Got:  2)";
    QTest::newRow("more digits than a version has")
        << "monitoring_info"
        << "2.25"
        << R"("Monitoring Info"  XML version invalid. Expected:  2.2  Got:  2.25)";
    QTest::newRow("infinity")
        << "coordinated_data_root"
        << "inf"
        << R"("Coord WorkSpace"  XML version invalid. Expected:  0.3  Got:  inf)";
    const auto shown = [](const char* element, const char* name, const char* current) {
        QTest::addRow("name of %s", element)
            << element << "9.5"
            << QStringLiteral("\"%1\"  XML version invalid. Expected:  %2  Got:  9.5")
                   .arg(name, current);
    };
    shown("show", "Show", "1");
    shown("show_properties", "Show properties", "1");
    shown("inventory", "Inventory", "2.1");
    shown("racks", "Linking", "1");
    shown("zones", "Zones", "1.1");
    shown("coordination_plot", "Coordination plot", "1.2");
    shown("channel_management", "Channel state", "1");
    shown("scan_data", "Scan data", "1.3");
    shown("channel_exclusions", "Channel exclusion", "1.1");
    shown("global_exclusions", "Frequency exclusion", "1.1");
    shown("band_planning", "Band planning", "1");
    shown("quilla_plot", "Quilla plot", "1.1");
    shown("CFLs", "Compatible frequency list", "1");
    shown("monitoring_info", "Monitoring Info", "2.2");
    shown("custom_groups", "Custom groups", "1");
    shown("custom_groups_solution", "Custom groups solution", "1");
    shown("presets", "Presets", "1.1");
    shown("band_plan_group_list", "Band Plan Gp", "1");
    shown("coordinated_data_root", "Coord WorkSpace", "0.3");
}

void XmlVersionChecksTest::tooNewSectionIsWarnedOf()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    QFETCH(QString, text);
    const MessageRecorder recorder;
    QCOMPARE(XmlVersions::IsValidXmlVersion(sectionOf(element, version)), XmlVersions::XmlTooNew);
    QCOMPARE(recorder.messages(), Messages{warning(text)});
}

void XmlVersionChecksTest::unknownSectionIsWarnedOf_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("text");
    QTest::newRow("unknown") << "mic_channels"
                             << R"(XML section  "mic_channels"  not yet supported.)";
    QTest::newRow("another case") << "Scan_Data"
                                  << R"(XML section  "Scan_Data"  not yet supported.)";
}

void XmlVersionChecksTest::unknownSectionIsWarnedOf()
{
    QFETCH(QString, element);
    QFETCH(QString, text);
    const MessageRecorder recorder;
    QCOMPARE(XmlVersions::IsValidXmlVersion(sectionOf(element, "1.0")), XmlVersions::XmlInvalid);
    const Messages messages = recorder.messages();
    QCOMPARE(messages.size(), 2);
    // The log's text has no place for the version, and Qt says so.
    QCOMPARE(messages[0].type, QtWarningMsg);
    QVERIFY(messages[0].text.startsWith("QString::arg: Argument missing:"));
    QCOMPARE(messages[1], warning(text));
}

void XmlVersionChecksTest::findingIsLogged_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("text");
    QTest::newRow("too new") << "scan_data"
                             << "1.4"
                             << " XML version invalid. Expected: 1.3 Got: 1.4, IsValidXmlVersion";
    QTest::newRow("whole numbers") << "CFLs"
                                   << "2"
                                   << " XML version invalid. Expected: 1.0 Got: 2.0, "
                                      "IsValidXmlVersion";
    QTest::newRow("rounded to a tenth")
        << "zones"
        << "1.16"
        << " XML version invalid. Expected: 1.1 Got: 1.2, IsValidXmlVersion";
    QTest::newRow("unknown") << "mic_channels"
                             << "1.0"
                             << " XML section mic_channels  not yet supported., IsValidXmlVersion";
    QTest::newRow("unknown without a version")
        << "mic_channels" << QString()
        << " XML section mic_channels  not yet supported., IsValidXmlVersion";
}

void XmlVersionChecksTest::findingIsLogged()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    QFETCH(QString, text);
    RunningLogService service;
    service.addUser(IMPORT_EXPORT);
    const MessageRecorder recorder; // takes the warnings, which are tested above
    XmlVersions::IsValidXmlVersion(sectionOf(element, version));
    const QStringList lines = service.closeAndTakeLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].contains(" IMPORT_EXPORT    ERROR    "), qPrintable(lines[0]));
    QVERIFY2(lines[0].endsWith("*  " + text), qPrintable(lines[0]));
}

void XmlVersionChecksTest::findingGoesToTheConsole_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<Messages>("messages");
    QTest::newRow("too new")
        << "scan_data"
        << "1.4"
        << Messages{debug(" XML version invalid. Expected: 1.3 Got: 1.4, IsValidXmlVersion\n"),
                    warning(R"("Scan data"  XML version invalid. Expected:  1.3  Got:  1.4)")};
    QTest::newRow("unknown")
        << "racks2"
        << "1.0"
        << Messages{debug(" XML section racks2  not yet supported., IsValidXmlVersion\n"),
                    warning(R"(XML section  "racks2"  not yet supported.)")};
}

void XmlVersionChecksTest::findingGoesToTheConsole()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    RunningLogService service;
    service.addUser(IMPORT_EXPORT);
    service->enableConsoleLog(true);
    const MessageRecorder recorder;
    XmlVersions::IsValidXmlVersion(sectionOf(element, version));
    QTEST(withoutMissingArguments(recorder.messages()), "messages");
}

void XmlVersionChecksTest::nothingIsLoggedOfAnOldOrCurrentSection_data()
{
    QTest::addColumn<QString>("version");
    QTest::newRow("current") << "1.3";
    QTest::newRow("convertible") << "1.2";
    QTest::newRow("too old") << "1.1";
    QTest::newRow("no version") << QString();
    QTest::newRow("NaN") << "nan";
}

void XmlVersionChecksTest::nothingIsLoggedOfAnOldOrCurrentSection()
{
    QFETCH(QString, version);
    RunningLogService service;
    service.addUser(IMPORT_EXPORT);
    XmlVersions::IsValidXmlVersion(sectionOf("scan_data", version));
    QVERIFY(service.closeAndTakeLines().isEmpty());
}

void XmlVersionChecksTest::nothingIsLoggedThatIsNotWanted()
{
    RunningLogService service;
    const MessageRecorder recorder; // takes the warnings, which are tested above
    const QDomElement tooNew = sectionOf("scan_data", "1.4");
    service.addUser("IMPORT_EXPORT"); // another user, for the blanks belong to the name
    XmlVersions::IsValidXmlVersion(tooNew);
    service.addUser(IMPORT_EXPORT);
    service->enableErrorOutput(false);
    XmlVersions::IsValidXmlVersion(tooNew);
    QVERIFY(service.closeAndTakeLines().isEmpty());
}

void XmlVersionChecksTest::olderSectionIsAConflict_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::addColumn<double>("found");
    QTest::addColumn<double>("current");
    QTest::addColumn<QString>("text");
    QTest::newRow("convertible")
        << "scan_data"
        << "1.2" << 1.2 << 1.3
        << "Scan data version mismatch - Current version 1.2. Expected version 1.3.";
    QTest::newRow("too old") << "scan_data"
                             << "1" << 1.0 << 1.3
                             << "Scan data version mismatch - Current version 1.0. "
                                "Expected version 1.3.";
    QTest::newRow("no conversion")
        << "zones"
        << "1.0" << 1.0 << 1.1
        << "Zones version mismatch - Current version 1.0. Expected version 1.1.";
    QTest::newRow("no version") << "CFLs" << QString() << 0.0 << 1.0
                                << "Compatible frequency list version mismatch - Current version "
                                   "0.0. Expected version 1.0.";
    QTest::newRow("no number")
        << "presets"
        << "new" << 0.0 << 1.1
        << "Presets version mismatch - Current version 0.0. Expected version 1.1.";
    QTest::newRow("older by less than a tenth")
        << "inventory"
        << "2.09" << 2.09 << 2.1
        << "Inventory version mismatch - Current version 2.1. Expected version 2.1.";
    QTest::newRow("negative")
        << "show"
        << "-2" << -2.0 << 1.0
        << "Show version mismatch - Current version -2.0. Expected version 1.0.";
}

void XmlVersionChecksTest::olderSectionIsAConflict()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    QFETCH(double, found);
    QFETCH(double, current);
    QFETCH(QString, text);
    const MessageRecorder recorder;
    XmlVersions::Conflicts conflicts;
    XmlVersions::CheckSectionVersion(sectionOf(element, version), conflicts);
    QCOMPARE(conflicts, (XmlVersions::Conflicts{{element, {found, current}}}));
    QCOMPARE(recorder.messages(), Messages{debug(text)});
}

void XmlVersionChecksTest::conflictReplacesTheOneBefore()
{
    const MessageRecorder recorder;
    XmlVersions::Conflicts conflicts{{"other", {1.0, 2.0}}};
    XmlVersions::CheckSectionVersion(sectionOf("scan_data", "1.2"), conflicts);
    XmlVersions::CheckSectionVersion(sectionOf("scan_data", "1.0"), conflicts);
    QCOMPARE(conflicts, (XmlVersions::Conflicts{{"other", {1.0, 2.0}}, {"scan_data", {1.0, 1.3}}}));
    QCOMPARE(recorder.messages().size(), 2);
}

void XmlVersionChecksTest::otherSectionIsNoConflict_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("version");
    QTest::newRow("current") << "scan_data"
                             << "1.3";
    QTest::newRow("newer") << "scan_data"
                           << "1.4";
    QTest::newRow("NaN") << "scan_data"
                         << "nan";
    QTest::newRow("infinity") << "scan_data"
                              << "inf";
    QTest::newRow("unknown") << "unknown"
                             << "0.1";
}

void XmlVersionChecksTest::otherSectionIsNoConflict()
{
    QFETCH(QString, element);
    QFETCH(QString, version);
    const MessageRecorder recorder;
    const XmlVersions::Conflicts before{{"scan_data", {1.0, 1.3}}, {"unknown", {1.0, 2.0}}};
    XmlVersions::Conflicts conflicts = before;
    XmlVersions::CheckSectionVersion(sectionOf(element, version), conflicts);
    QCOMPARE(conflicts, before);
    QVERIFY(recorder.messages().isEmpty());
}

void XmlVersionChecksTest::scanFindsConflicts_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<XmlVersions::XmlValidState>("state");
    QTest::addColumn<XmlVersions::Conflicts>("conflicts");
    using Conflicts = XmlVersions::Conflicts;
    const auto row = [](const char* what, const QString& document, XmlVersions::XmlValidState state,
                        const Conflicts& conflicts) {
        QTest::newRow(what) << document << state << conflicts;
    };
    const auto root = [](const char* version, const char* sections) {
        return QStringLiteral("<coordinated_data_root version='%1'>%2</coordinated_data_root>")
            .arg(version, sections);
    };

    row("current, no section", root("0.3", ""), XmlVersions::XmlCurrent, {});
    row("convertible, no section", root("0.2", ""), XmlVersions::XmlConvertible,
        {{"coordinated_data_root", {0.2, 0.3}}});
    row("one older section", root("0.3", "<scan_data version='1.2'/>"), XmlVersions::XmlConvertible,
        {{"scan_data", {1.2, 1.3}}});
    row("last section in key order decides",
        root("0.2", "<zones version='1.1'/><scan_data version='1.2'/>"), XmlVersions::XmlCurrent,
        {{"coordinated_data_root", {0.2, 0.3}}, {"scan_data", {1.2, 1.3}}});
    row("unknown sections are passed over", root("0.3", "<mic_channels version='9'/>"),
        XmlVersions::XmlCurrent, {});
    row("another case is unknown", root("0.3", "<Scan_data version='9'/>"), XmlVersions::XmlCurrent,
        {});

    row("second of a kind is not examined",
        root("0.3", "<scan_data version='1.3'/><scan_data version='9'/>"), XmlVersions::XmlCurrent,
        {});
    row("second of a kind further down is not examined",
        root("0.3", "<scan_data version='1.2'/><a><scan_data version='1.0'/></a>"),
        XmlVersions::XmlConvertible, {{"scan_data", {1.2, 1.3}}});
    row("first of a kind may stand deep",
        root("0.3", "<a><b><scan_data version='1.2'/></b></a><scan_data version='9'/>"),
        XmlVersions::XmlConvertible, {{"scan_data", {1.2, 1.3}}});
    row("section within a section",
        root("0.3", "<inventory version='2.0'><scan_data version='1.2'/></inventory>"),
        XmlVersions::XmlConvertible, {{"inventory", {2.0, 2.1}}, {"scan_data", {1.2, 1.3}}});
    row("root's kind below the root", root("0.2", "<coordinated_data_root version='0.1'/>"),
        XmlVersions::XmlConvertible, {{"coordinated_data_root", {0.1, 0.3}}});

    row("too new section ends the scan",
        root("0.3", "<inventory version='2.0'/><quilla_plot version='1.2'/>"
                    "<scan_data version='1.2'/>"),
        XmlVersions::XmlTooNew, {{"inventory", {2.0, 2.1}}});
    row("section without a conversion ends the scan",
        root("0.3", "<presets version='1.0'/><scan_data version='1.2'/>"),
        XmlVersions::XmlNoConversion, {});
    row("too old section ends the scan",
        root("0.3", "<global_exclusions version='0.9'/><scan_data version='1.2'/>"),
        XmlVersions::XmlInvalid, {});
    row("capitals come first in key order",
        root("0.3", "<band_plan_group_list version='0.1'/><CFLs version='1.1'/>"),
        XmlVersions::XmlTooNew, {});
    row("section without a version", root("0.3", "<band_plan_group_list/>"),
        XmlVersions::XmlConvertible, {{"band_plan_group_list", {0.0, 1.0}}});

    row("too new root", root("0.4", "<scan_data version='1.2'/>"), XmlVersions::XmlTooNew, {});
    row("too old root", root("0.0", "<scan_data version='1.2'/>"), XmlVersions::XmlInvalid, {});
    row("unknown root", "<workspace><scan_data version='1.2'/></workspace>",
        XmlVersions::XmlInvalid, {});
    row("root without a conversion", "<zones version='1.0'><scan_data version='1.2'/></zones>",
        XmlVersions::XmlNoConversion, {});
    row("any section may be the root", "<scan_data version='1.2'><show version='1.0'/></scan_data>",
        XmlVersions::XmlCurrent, {{"scan_data", {1.2, 1.3}}});
}

void XmlVersionChecksTest::scanFindsConflicts()
{
    QFETCH(QString, document);
    QFETCH(XmlVersions::XmlValidState, state);
    QFETCH(XmlVersions::Conflicts, conflicts);
    const MessageRecorder recorder;
    QDomDocument parsed;
    QVERIFY(parsed.setContent(document));
    for (const auto before : {XmlVersions::XmlInvalid, XmlVersions::XmlTooNew}) {
        XmlVersions::XmlValidState found = before;
        QCOMPARE(XmlVersions::GetSectionVersionConflicts(parsed.documentElement(), found),
                 conflicts);
        QCOMPARE(found, state);
    }
}

void XmlVersionChecksTest::scanReportsWhatItExaminesInKeyOrder()
{
    QDomDocument document;
    QVERIFY(document.setContent(QStringLiteral("<coordinated_data_root version='0.2'>"
                                               "<zones version='1.2'/><scan_data version='1.2'/>"
                                               "<inventory version='2.0'/>"
                                               "</coordinated_data_root>")));
    const MessageRecorder recorder;
    auto state = XmlVersions::XmlInvalid;
    XmlVersions::GetSectionVersionConflicts(document.documentElement(), state);
    QCOMPARE(recorder.messages(),
             (Messages{
                 debug("Coord WorkSpace version mismatch - Current version 0.2. "
                       "Expected version 0.3."),
                 debug("Inventory version mismatch - Current version 2.0. Expected version 2.1."),
                 debug("Scan data version mismatch - Current version 1.2. Expected version 1.3."),
                 warning(R"("Zones"  XML version invalid. Expected:  1.1  Got:  1.2)"),
             }));
}

void XmlVersionChecksTest::scanStartsWithNoConflicts()
{
    const MessageRecorder recorder;
    auto state = XmlVersions::XmlInvalid;
    XmlVersions::GetSectionVersionConflicts(sectionOf("scan_data", "1.2"), state);
    QVERIFY(
        XmlVersions::GetSectionVersionConflicts(sectionOf("scan_data", "1.3"), state).isEmpty());
}

QTEST_GUILESS_MAIN(XmlVersionChecksTest)
#include "XmlVersionChecksTest.moc"

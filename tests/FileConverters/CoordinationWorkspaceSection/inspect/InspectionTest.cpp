#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include <QSet>
#include <QtTest>

#include <algorithm>
#include <sstream>

using Edits = QVector<QPair<QString, QString>>;
Q_DECLARE_METATYPE(Edits)
Q_DECLARE_METATYPE(Inspection::Advice)

namespace {

const QString ID1 = QStringLiteral("00000000-0000-4000-8000-00000000000a");
const QString ID2 = QStringLiteral("00000000-0000-4000-8000-00000000000b");

// Nothing of this document is lost. Rows edit it.
const QString SOUND = QStringLiteral(R"(<coordinated_data_root version="0.2">
 <mic_channels>
  <c><compat_key><zone>Z</zone><series>S</series></compat_key><compat_prof_id>ID1</compat_prof_id></c>
  <c><compat_key><series>T</series></compat_key><compat_prof_id>ID2</compat_prof_id></c>
 </mic_channels>
 <compat_configs>
  <compat_config><profile><zone>Z</zone><series>S</series></profile><compat_flags><imd_2t5o>0</imd_2t5o></compat_flags></compat_config>
  <compat_config><profile><series>T</series></profile></compat_config>
 </compat_configs>
 <compat_profiles>
  <compat_profile id="ID1" name="robust"><spacing freq_units="KHz"><ch_ch>350</ch_ch><imd_2t5o>50</imd_2t5o></spacing></compat_profile>
  <compat_profile id="ID2" name="median"><filter type="2">
   <filter_center_list count="1"><freq>470000</freq></filter_center_list></filter></compat_profile>
 </compat_profiles>
 <compatibility_levels><level>1</level></compatibility_levels>
</coordinated_data_root>
)");

const QString CHANNELS = QStringLiteral("/coordinated_data_root/mic_channels");
const QString CONFIGS = QStringLiteral("/coordinated_data_root/compat_configs");
const QString PROFILES = QStringLiteral("/coordinated_data_root/compat_profiles");

QString edited(const Edits& edits)
{
    QString text = SOUND;
    for (const auto& [from, to] : edits) {
        if (!text.contains(from)) {
            qFatal("nothing to edit: %s", qPrintable(from));
        }
        text.replace(text.indexOf(from), from.size(), to);
    }
    text.replace(QStringLiteral("ID1"), ID1);
    text.replace(QStringLiteral("ID2"), ID2);
    return text;
}

std::optional<DocumentText> fromFile(const QString& text)
{
    QTemporaryFile file;
    if (!file.open() || file.write(text.toUtf8()) < 0 || !file.flush()) {
        return std::nullopt;
    }
    return DocumentText::ofFile(file.fileName());
}

std::optional<DocumentText> fromStream(const QString& text)
{
    std::istringstream stream(text.toStdString());
    return DocumentText::ofStream(stream);
}

QString shown(const Finding& finding)
{
    return QStringLiteral("%1 %2 %3")
        .arg(Finding::nameOf(finding.kind), QString::number(finding.place.line),
             finding.place.path);
}

// The containers go from every document; rows tell of all else.
QStringList shown(const Findings& findings)
{
    QStringList lines;
    for (const Finding& finding : findings) {
        if (finding.kind != Finding::CONTAINER_REMOVED) {
            lines.append(shown(finding));
        }
    }
    return lines;
}

Inspection inspected(const std::optional<DocumentText>& text,
                     FindingList::Wanted wanted = FindingList::LOSSES_AND_NOTES)
{
    ReadError error;
    std::optional<Inspection> inspection;
    if (text) {
        inspection = inspectDocument(*text, error, wanted);
    }
    if (!inspection) {
        qFatal("not read: %s", qPrintable(error.text));
    }
    return *inspection;
}

} // namespace

class InspectionTest : public QObject
{
    Q_OBJECT

private slots:
    void everythingThatIsLostIsFound_data();
    void everythingThatIsLostIsFound();
    void notesAreNotLookedForWhereNobodyWantsThem_data();
    void notesAreNotLookedForWhereNobodyWantsThem();
    void standardInputLosesLineBreaks_data();
    void standardInputLosesLineBreaks();
    void containersGoByDesign();
    void systemsAreForetold();
    void systemsAreNamedByTheirFields_data();
    void systemsAreNamedByTheirFields();
    void switchedOffSpacingsAreNoLoss();
    void countsAreTheDocuments();
    void versionDecides_data();
    void versionDecides();
    void documentThatIsNotWellFormedHasNoResult_data();
    void documentThatIsNotWellFormedHasNoResult();
    void everyKindHasItsRow();

private:
    QSet<QString> m_seenKinds;
};

void InspectionTest::everythingThatIsLostIsFound_data()
{
    QTest::addColumn<Edits>("edits");
    QTest::addColumn<QStringList>("losses");
    QTest::addColumn<QStringList>("notes");
    QTest::addColumn<Inspection::Advice>("advice");
    const auto row = [](const char* name, const Edits& edits, const QStringList& losses,
                        const QStringList& notes = {},
                        Inspection::Advice advice = Inspection::REVIEW) {
        QTest::newRow(name) << edits << losses << notes << advice;
    };
    const QString channel1 = CHANNELS + "/c[1]";
    const QString channel2 = CHANNELS + "/c[2]";
    const QString config1 = CONFIGS + "/compat_config[1]";
    const QString config2 = CONFIGS + "/compat_config[2]";
    const QString profile1 = PROFILES + "/compat_profile[1]";
    const QString profile2 = PROFILES + "/compat_profile[2]";
    const QString filter = profile2 + "/filter";
    const QString systemKey1 = "<compat_key><zone>Z</zone><series>S</series></compat_key>";

    row("nothing", {}, {}, {}, Inspection::CONVERT);

    // Versions.
    row("current already", {{"version=\"0.2\"", "version=\"0.3\""}},
        {"already-current 1 /coordinated_data_root/@version"}, {}, Inspection::CURRENT);
    row("older than convertible", {{"version=\"0.2\"", "version=\"0.0\""}},
        {"too-old 1 /coordinated_data_root"}, {}, Inspection::TOO_OLD);
    row("newer than known", {{"version=\"0.2\"", "version=\"0.4\""}},
        {"too-new 1 /coordinated_data_root/@version"}, {}, Inspection::TOO_NEW);

    // Sections.
    row("no section",
        {{"<coordinated_data_root version", "<data version"},
         {"</coordinated_data_root>", "</data>"}},
        {"no-section 1 /data"}, {}, Inspection::IMPOSSIBLE);
    row("a section in the section",
        {{"<compatibility_levels>", "<coordinated_data_root/>\n<compatibility_levels>"}},
        {"several-sections 15 /coordinated_data_root/coordinated_data_root"}, {},
        Inspection::IMPOSSIBLE);

    // Containers.
    row("channels below something else",
        {{"<mic_channels>", "<group>\n<mic_channels>"},
         {"</mic_channels>", "</mic_channels></group>"}},
        {"container-misplaced 3 /coordinated_data_root/group/mic_channels"});
    row("configurations below something else",
        {{"<compat_configs>", "<group><compat_configs>"},
         {"</compat_configs>", "</compat_configs></group>"}},
        {"container-misplaced 6 /coordinated_data_root/group/compat_configs"},
        {"stays-behind 7 /coordinated_data_root/group/compat_configs/compat_config[1]",
         "stays-behind 8 /coordinated_data_root/group/compat_configs/compat_config[2]"});
    row("profiles below something else",
        {{"<compat_profiles>", "<group><compat_profiles>"},
         {"</compat_profiles>", "</compat_profiles></group>"}},
        {"container-misplaced 10 /coordinated_data_root/group/compat_profiles"},
        {"stays-behind 11 /coordinated_data_root/group/compat_profiles/compat_profile[1]",
         "stays-behind 12 /coordinated_data_root/group/compat_profiles/compat_profile[2]"});
    row("levels below something else",
        {{"<compatibility_levels>", "<group><compatibility_levels>"},
         {"</compatibility_levels>", "</compatibility_levels></group>"}},
        {"container-misplaced 15 /coordinated_data_root/group/compatibility_levels"});
    row("second channels",
        {{"</mic_channels>", "</mic_channels>\n<mic_channels><c/></mic_channels>"}},
        {"container-repeated 6 /coordinated_data_root/mic_channels[2]"});
    row("second configurations", {{"</compat_configs>", "</compat_configs>\n<compat_configs/>"}},
        {"container-repeated 10 /coordinated_data_root/compat_configs[2]"});
    row("second profiles", {{"</compat_profiles>", "</compat_profiles>\n<compat_profiles/>"}},
        {"container-repeated 15 /coordinated_data_root/compat_profiles[2]"});
    row("second levels",
        {{"</compatibility_levels>", "</compatibility_levels>\n<compatibility_levels/>"}},
        {"container-repeated 16 /coordinated_data_root/compatibility_levels[2]"});
    row("settings already",
        {{"</mic_channels>", "</mic_channels>\n<compatibility_profile_settings/>"}},
        {"settings-present 6 /coordinated_data_root/compatibility_profile_settings"});

    // Joins.
    row("more profiles than ids",
        {{"<compat_prof_id>ID2</compat_prof_id></c>", "<compat_prof_id>ID1</compat_prof_id></c>"},
         {"<series>T</series></compat_key>", "<zone>Z</zone><series>S</series></compat_key>"}},
        {"profile-count-differs 2 " + CHANNELS, "configuration-without-profile 8 " + config2,
         "profile-without-channel 12 " + profile2});
    row("more ids than profiles",
        {{" </mic_channels>",
          "<c>" + systemKey1 + "<compat_prof_id>other</compat_prof_id></c>\n</mic_channels>"}},
        {"profile-count-differs 2 " + CHANNELS, "profile-replaced 3 " + channel1,
         "id-without-profile 5 " + CHANNELS + "/c[3]"});
    row("profiles and no channels at all", {{"<mic_channels>", "<x>"}, {"</mic_channels>", "</x>"}},
        {"profile-count-differs 1 /coordinated_data_root",
         "configuration-without-profile 7 " + config1, "configuration-without-profile 8 " + config2,
         "profile-without-channel 11 " + profile1, "profile-without-channel 12 " + profile2});
    row("fewer configurations than systems",
        {{"<compat_config><profile><series>T</series></profile></compat_config>", ""}},
        {"system-without-configuration 4 " + channel2, "configuration-count-differs 6 " + CONFIGS});
    row("no configurations at all",
        {{"<compat_configs>", "<x>"},
         {"</compat_configs>", "</x>"},
         {"<compat_config>", "<y>"},
         {"</compat_config>", "</y>"},
         {"<compat_config>", "<y>"},
         {"</compat_config>", "</y>"}},
        {"configuration-count-differs 1 /coordinated_data_root",
         "system-without-configuration 3 " + channel1,
         "system-without-configuration 4 " + channel2});
    row("channel without a profile id",
        {{"</mic_channels>", "<c><compat_key><series>U</series></compat_key></c></mic_channels>"}},
        {"profile-count-differs 2 " + CHANNELS, "channel-without-id 5 " + CHANNELS + "/c[3]",
         "system-without-configuration 5 " + CHANNELS + "/c[3]"});
    row("channel with an empty profile id",
        {{"<compat_prof_id>ID2</compat_prof_id>", "<compat_prof_id/>"}},
        {"channel-without-id 4 " + channel2, "profile-without-channel 12 " + profile2});
    row("channels of one system share an id",
        {{" </mic_channels>",
          "<c>" + systemKey1 + "<compat_prof_id>ID1</compat_prof_id></c></mic_channels>"}},
        {}, {}, Inspection::CONVERT);
    row("channels of two systems share an id",
        {{"<mic_channels>", "<mic_channels><c><compat_key><series>U</series></"
                            "compat_key><compat_prof_id>ID1</compat_prof_id></c>"}},
        {"channel-replaced 2 " + channel1});
    row("an id that no profile has",
        {{"<compat_prof_id>ID2</compat_prof_id>", "<compat_prof_id>7</compat_prof_id>"}},
        {"id-without-profile 4 " + channel2, "profile-without-channel 12 " + profile2});
    row("two ids of equal systems", {{"<compat_key><series>T</series></compat_key>", systemKey1}},
        {"profile-replaced 3 " + channel1, "configuration-count-differs 6 " + CONFIGS,
         "configuration-without-profile 8 " + config2});
    row("two ids of systems that are not told apart",
        {{"<compat_key><series>T</series></compat_key>",
          "<compat_key><series>ZS</series></compat_key>"}},
        {"profile-replaced 3 " + channel1, "configuration-count-differs 6 " + CONFIGS,
         "system-mistaken 7 " + config1, "configuration-without-profile 8 " + config2});
    row("a configuration of another system",
        {{"<profile><series>T</series></profile>", "<profile><series>U</series></profile>"}},
        {"system-without-configuration 4 " + channel2,
         "configuration-without-profile 8 " + config2});
    row("two configurations of one system",
        {{"</compat_configs>",
          "<compat_config><profile><series>T</series></profile></compat_config></compat_configs>"}},
        {"configuration-replaced 8 " + config2});
    row("two configurations that are not told apart",
        {{"</compat_configs>", "<compat_config><profile><series>ZS</series></profile></"
                               "compat_config></compat_configs>"}},
        {"configuration-replaced 7 " + config1,
         "system-mistaken 9 " + CONFIGS + "/compat_config[3]"});
    row("a configuration gets the profile of another system",
        {{"<profile><zone>Z</zone><series>S</series></profile>",
          "<profile><series>ZS</series></profile>"}},
        {"system-mistaken 7 " + config1});
    row("two profiles with one id",
        {{"</compat_profiles>",
          "\n<compat_profile id=\"ID2\" name=\"median\"/></compat_profiles>"}},
        {"duplicate-profile-id 12 " + profile2});
    row("an id that is no UUID", {{"id=\"ID2\"", "id=\"7\""}},
        {"id-without-profile 4 " + channel2, "invalid-profile-id 12 " + profile2,
         "profile-without-channel 12 " + profile2},
        {}, Inspection::IMPOSSIBLE);
    row("a profile without an id", {{"id=\"ID2\" ", ""}},
        {"id-without-profile 4 " + channel2, "invalid-profile-id 12 " + profile2,
         "profile-without-channel 12 " + profile2},
        {}, Inspection::IMPOSSIBLE);
    row("a UUID in another spelling on both sides",
        {{"<compat_prof_id>ID2", "<compat_prof_id>{ID2}"}, {"id=\"ID2\"", "id=\"{ID2}\""}}, {},
        {"profile-id-respelled 12 " + profile2 + "/@id"}, Inspection::CONVERT);
    row("a name that is not known", {{"name=\"median\"", "name=\"Median\""}},
        {"profile-name-emptied 12 " + profile2 + "/@name"});
    row("a name that is converted already", {{"name=\"median\"", "name=\"Standard\""}},
        {"profile-name-emptied 12 " + profile2 + "/@name"});
    row("no name", {{" name=\"median\"", ""}}, {}, {}, Inspection::CONVERT);
    row("an empty name", {{"name=\"median\"", "name=\"\""}}, {}, {}, Inspection::CONVERT);

    // Contents that no rule reads.
    row("element in a profile", {{"<filter type", "<extra><deep/></extra><filter type"}},
        {"unread-element 12 " + profile2 + "/extra"});
    row("element in a spacing", {{"<ch_ch>", "<ch__ch>"}, {"</ch_ch>", "</ch__ch>"}},
        {"unread-element 11 " + profile1 + "/spacing/ch__ch"});
    row("second spacing", {{"</spacing>", "</spacing><spacing/>"}},
        {"unread-element 11 " + profile1 + "/spacing[2]"});
    row("second filter", {{"</filter>", "</filter>\n<filter type=\"1\"/>"}},
        {"unread-element 14 " + profile2 + "/filter[2]"});
    row("element in a filter", {{"<filter_center_list", "<width/><filter_center_list"}},
        {"unread-element 13 " + filter + "/width"});
    row("element in a number", {{"<ch_ch>350", "<ch_ch>35<b>0</b>"}},
        {"unread-element 11 " + profile1 + "/spacing/ch_ch/b"});
    row("element in a configuration", {{"<compat_flags>", "<note/><compat_flags>"}},
        {"unread-element 7 " + config1 + "/note"});
    row("element in a configuration's key",
        {{"<profile><zone>Z</zone>", "<profile><Zone/><zone>Z</zone>"}},
        {"unread-element 7 " + config1 + "/profile/Zone"});
    row("flag that no document can clear", {{"<compat_flags>", "<compat_flags><ch_ch>0</ch_ch>"}},
        {"unread-element 7 " + config1 + "/compat_flags/ch_ch"});
    row("nothing in what no rule reads is looked at",
        {{"<compat_flags>", "<compat_flags><ch_ch x=\"y\">off<z/></ch_ch>"}},
        {"unread-element 7 " + config1 + "/compat_flags/ch_ch"});
    row("element beside the configurations", {{"<compat_configs>", "<compat_configs><note/>"}},
        {"unread-element 6 " + CONFIGS + "/note"});
    row("element beside the profiles", {{"<compat_profiles>", "<compat_profiles><note/>"}},
        {"unread-element 10 " + PROFILES + "/note"});
    row("element in a channel stays", {{"<compat_prof_id>", "<frequency/><compat_prof_id>"}}, {},
        {}, Inspection::CONVERT);
    row("attribute of a profile", {{R"(name="median")", R"(name="median" colour="red")"}},
        {"unread-attribute 12 " + profile2 + "/@colour"});
    row("another unit", {{"freq_units=\"KHz\"", "freq_units=\"MHz\""}},
        {"unread-attribute 11 " + profile1 + "/spacing/@freq_units"});
    row("attribute of a spacing", {{"<spacing ", "<spacing x=\"\" "}},
        {"unread-attribute 11 " + profile1 + "/spacing/@x"});
    row("attribute of a number", {{"<ch_ch>", "<ch_ch unit=\"kHz\">"}},
        {"unread-attribute 11 " + profile1 + "/spacing/ch_ch/@unit"});
    row("attribute of a filter", {{"<filter type", "<filter kind=\"x\" type"}},
        {"unread-attribute 12 " + filter + "/@kind"});
    row("attribute of a list of centres", {{"list count", "list x=\"y\" count"}},
        {"unread-attribute 13 " + filter + "/filter_center_list/@x"});
    row("attribute of a configuration", {{"<compat_config>", "<compat_config id=\"4\">"}},
        {"unread-attribute 7 " + config1 + "/@id"});
    row("attribute of a configuration's key", {{"<profile>", "<profile id=\"4\">"}},
        {"unread-attribute 7 " + config1 + "/profile/@id"});
    row("attribute of the flags", {{"<compat_flags>", "<compat_flags all=\"0\">"}},
        {"unread-attribute 7 " + config1 + "/compat_flags/@all"});
    row("text in a profile", {{"<spacing ", "wide<spacing "}}, {"unread-text 11 " + profile1});
    row("text in a spacing", {{"<ch_ch>", "wide<ch_ch>"}},
        {"unread-text 11 " + profile1 + "/spacing"});
    row("text in a filter", {{"<filter_center_list", "wide<filter_center_list"}},
        {"unread-text 12 " + filter});
    row("text in a list of centres", {{"<freq>", "all<freq>"}},
        {"unread-text 13 " + filter + "/filter_center_list"});
    row("text in a configuration's key", {{"<profile><zone>", "<profile>main<zone>"}},
        {"unread-text 7 " + config1 + "/profile"});
    row("text in the flags", {{"<compat_flags>", "<compat_flags>off"}},
        {"unread-text 7 " + config1 + "/compat_flags"});
    row("text in a configuration", {{"<compat_flags>", "<![CDATA[off]]><compat_flags>"}},
        {"unread-text 7 " + config1});
    row("text beside the profiles", {{"<compat_profiles>", "<compat_profiles>none"}},
        {"unread-text 10 " + PROFILES});

    // Values that give way.
    row("two profile ids in a channel",
        {{"<compat_prof_id>ID1", "<compat_prof_id>7</compat_prof_id><compat_prof_id>ID1"}},
        {"value-replaced 3 " + channel1 + "/compat_prof_id[1]"});
    row("mode and transmitter profile in a key",
        {{"<profile><series>T</series>",
          "<profile><mode>A</mode><tx_profile></tx_profile><series>T</series>"}},
        {"value-replaced 8 " + config2 + "/profile/mode"});
    row("two zones in a channel's key", {{"<zone>Z<", "<zone>Y</zone><zone>Z<"}},
        {"value-replaced 3 " + channel1 + "/compat_key/zone[1]"});
    row("a zone in each of a channel's two keys",
        {{"<compat_key>", "<compat_key><zone>Y</zone></compat_key><compat_key>"}},
        {"value-replaced 3 " + channel1 + "/compat_key[1]/zone"});
    row("fields of two keys add up",
        {{"<compat_key><zone>Z</zone><series>S</series></compat_key>",
          "<compat_key><zone>Z</zone></compat_key><compat_key><series>S</series></compat_key>"}},
        {}, {}, Inspection::CONVERT);
    row("the same value twice", {{"<ch_ch>350</ch_ch>", "<ch_ch>350</ch_ch><ch_ch>350</ch_ch>"}},
        {}, {}, Inspection::CONVERT);
    row("two values of a spacing", {{"<ch_ch>350</ch_ch>", "<ch_ch>1</ch_ch><ch_ch>350</ch_ch>"}},
        {"value-replaced 11 " + profile1 + "/spacing/ch_ch[1]"});
    row("a flag on in two ways",
        {{"<imd_2t5o>0</imd_2t5o>", "<imd_2t5o>1</imd_2t5o><imd_2t5o>-2</imd_2t5o>"}}, {}, {},
        Inspection::CONVERT);
    row("a flag off and on",
        {{"<imd_2t5o>0</imd_2t5o>", "<imd_2t5o>1</imd_2t5o><imd_2t5o>0</imd_2t5o>"}},
        {"value-replaced 7 " + config1 + "/compat_flags/imd_2t5o[1]"});
    row("another version of the profile",
        {{R"(name="median")", R"(name="median" version="0.0.0.2")"}},
        {"value-replaced 12 " + profile2 + "/@version"});
    row("the one version of the profile",
        {{R"(name="median")", R"(name="median" version="0.0.0.1")"}}, {}, {}, Inspection::CONVERT);
    row("a truth of 2", {{R"(name="median")", R"(name="median" imd_source="2")"}},
        {"value-replaced 12 " + profile2 + "/@imd_source"});
    row("a wrong count", {{"count=\"1\"", "count=\"3\""}},
        {"value-replaced 13 " + filter + "/filter_center_list/@count"});

    // Numbers.
    row("a flag that is no number", {{"<imd_2t5o>0<", "<imd_2t5o>no<"}},
        {"number-unreadable 7 " + config1 + "/compat_flags/imd_2t5o"});
    row("an empty flag", {{"<imd_2t5o>0<", "<imd_2t5o><"}},
        {"number-unreadable 7 " + config1 + "/compat_flags/imd_2t5o"});
    row("a spacing with a fraction", {{"350", "350.5"}},
        {"number-unreadable 11 " + profile1 + "/spacing/ch_ch"});
    row("a spacing beyond 32 bits", {{"350", "2147483648"}},
        {"number-unreadable 11 " + profile1 + "/spacing/ch_ch"});
    row("a spacing with blanks and a sign", {{"350", " +350 "}}, {}, {}, Inspection::CONVERT);
    row("a truth that is no number",
        {{R"(name="median")", R"(name="median" synthesizable="true")"}},
        {"number-unreadable 12 " + profile2 + "/@synthesizable"});
    row("a filter type that is no number", {{"type=\"2\"", "type=\"list\""}},
        {"number-unreadable 12 " + filter + "/@type",
         "centre-list-dropped 13 " + filter + "/filter_center_list"});
    row("a filter without a type", {{" type=\"2\"", ""}},
        {"number-unreadable 12 " + filter,
         "centre-list-dropped 13 " + filter + "/filter_center_list"});
    row("a filter edge that is no number",
        {{"<filter_center_list", "<filter_start>x</filter_start><filter_center_list"}},
        {"number-unreadable 13 " + filter + "/filter_start"});
    row("a centre that is no number", {{"470000", "470 MHz"}},
        {"number-unreadable 13 " + filter + "/filter_center_list/freq"});
    row("a list of centres with a filter of another type", {{"type=\"2\"", "type=\"1\""}},
        {"centre-list-dropped 13 " + filter + "/filter_center_list"});
    row("an empty list of centres with a filter of another type",
        {{"type=\"2\"", "type=\"1\""}, {"<freq>470000</freq>", ""}}, {}, {}, Inspection::CONVERT);
    row("lists of centres are joined",
        {{"count=\"1\"", "count=\"2\""},
         {"</filter_center_list>",
          "</filter_center_list><filter_center_list count=\"2\"><f>1</f></filter_center_list>"}},
        {}, {}, Inspection::CONVERT);

    row("a character that no document may hold", {{"<level>1", "<level>&#1;"}},
        {"invalid-character 15 /coordinated_data_root/compatibility_levels/level"});
    row("an attribute that no document may hold",
        {{R"(version="0.2")", R"(version="0.2" x="&#2;")"}},
        {"invalid-character 1 /coordinated_data_root/@x"});
    row("a character that stands in the document itself", {{"<level>1", "<level>\x01"}},
        {"invalid-character 15 /coordinated_data_root/compatibility_levels/level"});
    row("a character of an entity",
        {{"<coordinated_data_root version",
          R"(<!DOCTYPE a [<!ENTITY e "&#1;">]><coordinated_data_root version)"},
         {"<level>1", "<level>&e;"}},
        {"invalid-character 15 /coordinated_data_root/compatibility_levels/level"});
    row("an entity that spells a reference out is text",
        {{"<coordinated_data_root version",
          R"(<!DOCTYPE a [<!ENTITY e "&amp;#1;">]><coordinated_data_root version)"},
         {"<level>1", "<level>&e;"}},
        {}, {}, Inspection::CONVERT);

    // By design.
    row("a comment in a container", {{"<compat_profiles>", "<compat_profiles><!-- old -->"}}, {},
        {"comment-removed 10 " + PROFILES}, Inspection::CONVERT);
    row("a comment in a profile", {{"<spacing ", "<!-- old --><spacing "}}, {},
        {"comment-removed 11 " + profile1}, Inspection::CONVERT);
    row("a comment behind the profiles", {{"</compat_profiles>", "<!-- end --></compat_profiles>"}},
        {}, {"comment-removed 10 " + PROFILES}, Inspection::CONVERT);
    row("a comment behind a spacing", {{"</spacing>", "</spacing><!-- end -->"}}, {},
        {"comment-removed 11 " + profile1}, Inspection::CONVERT);
    row("a comment elsewhere stays", {{"<mic_channels>", "<mic_channels><!-- new -->"}}, {}, {},
        Inspection::CONVERT);
    row("a profile outside of the container",
        {{"</compat_profiles>", "</compat_profiles>\n<x><compat_profile id=\"ID2\"/></x>"}},
        {"duplicate-profile-id 12 " + profile2},
        {"stays-behind 15 /coordinated_data_root/x/compat_profile"});
}

void InspectionTest::everythingThatIsLostIsFound()
{
    QFETCH(Edits, edits);
    QFETCH(QStringList, losses);
    QFETCH(QStringList, notes);
    QFETCH(Inspection::Advice, advice);

    const Inspection inspection = inspected(fromFile(edited(edits)));

    QCOMPARE(shown(inspection.losses), losses);
    QCOMPARE(shown(inspection.notes), notes);
    QCOMPARE(inspection.advice, advice);
    for (const Findings& findings : {inspection.losses, inspection.notes}) {
        for (const Finding& finding : findings) {
            m_seenKinds.insert(Finding::nameOf(finding.kind));
            QVERIFY(!finding.text.isEmpty());
        }
    }
}

void InspectionTest::notesAreNotLookedForWhereNobodyWantsThem_data()
{
    everythingThatIsLostIsFound_data();
}

void InspectionTest::notesAreNotLookedForWhereNobodyWantsThem()
{
    QFETCH(Edits, edits);
    QFETCH(QStringList, losses);
    QFETCH(Inspection::Advice, advice);

    const Inspection inspection = inspected(fromFile(edited(edits)), FindingList::LOSSES);

    QCOMPARE(shown(inspection.losses), losses);
    QVERIFY(inspection.notes.empty());
    QCOMPARE(inspection.advice, advice);
}

void InspectionTest::standardInputLosesLineBreaks_data()
{
    QTest::addColumn<Edits>("edits");
    QTest::addColumn<QStringList>("losses");
    QTest::newRow("between elements only") << Edits{} << QStringList{};
    QTest::newRow("in a text") << Edits{{"<level>1", "<level>one\ntwo"}}
                               << QStringList{"line-break 15 /coordinated_data_root/"
                                              "compatibility_levels/level"};
    QTest::newRow("behind a text") << Edits{{"<level>1", "<level>one\n"}}
                                   << QStringList{"line-break 15 /coordinated_data_root/"
                                                  "compatibility_levels/level"};
    QTest::newRow("in a CDATA section")
        << Edits{{"<level>1", "<level><![CDATA[a\nb]]>"}}
        << QStringList{"line-break 15 /coordinated_data_root/compatibility_levels/level"};
    QTest::newRow("that is all of a CDATA section")
        << Edits{{"<level>1", "<level><![CDATA[\n]]>"}}
        << QStringList{"line-break 15 /coordinated_data_root/compatibility_levels/level"};
    QTest::newRow("in an attribute, with a loss behind it")
        << Edits{{"version=\"0.2\"", "version=\"0.2\" show=\"A\nB\""},
                 {"name=\"median\"", "name=\"Median\""}}
        << QStringList{"line-break 1 /coordinated_data_root/@show",
                       "profile-name-emptied 13 " + PROFILES + "/compat_profile[2]/@name"};
    QTest::newRow("in a tag beside a blank")
        << Edits{{"version=\"0.2\"", "version=\"0.2\"\n show=\"A\""},
                 {"name=\"median\"", "name=\"Median\""}}
        << QStringList{"profile-name-emptied 13 " + PROFILES + "/compat_profile[2]/@name"};
    QTest::newRow("in a comment") << Edits{{"<level>1", "<!-- a\nb --><level>1"}} << QStringList{};
    QTest::newRow("of two characters")
        << Edits{{"<level>1", "<level>one\r\ntwo"}, {" <compat_configs>", "\r\n <compat_configs>"}}
        << QStringList{"line-break 16 /coordinated_data_root/compatibility_levels/level"};
    // Without the line break the instruction ends earlier, and what was its data is content.
    QTest::newRow("that kept an instruction open in front of a text")
        << Edits{{"<level>1", "<level><?keep ?\n><b/>?>1"}}
        << QStringList{"line-break 15 /coordinated_data_root/compatibility_levels/level"};
    QTest::newRow("that kept an instruction open in front of an element")
        << Edits{{"<level>1", "<level><?keep ?\n><b/>?><c/>1"}}
        << QStringList{"line-break 15 /coordinated_data_root/compatibility_levels/level"};
    QTest::newRow("that kept an instruction open where nothing follows")
        << Edits{{"<level>1", "<level><x><?keep ?\n><b/>?></x>1"}}
        << QStringList{"line-break 15 /coordinated_data_root/compatibility_levels/level/x"};
    // Without the line break the instruction ends, and what followed it is a comment.
    QTest::newRow("that hid the outermost element")
        << Edits{{"<coordinated_data_root version", "<?keep ?\n><coordinated_data_root version"},
                 {"</coordinated_data_root>",
                  "</coordinated_data_root><!-- ?><b/><?and --><?and ?>"}}
        << QStringList{"line-break 2 /coordinated_data_root"};
    QTest::newRow("that made a comment of what is none")
        << Edits{{"<level>1", "<!\n-- --><level>1"}}
        << QStringList{"line-break 1 /coordinated_data_root"};
}

void InspectionTest::standardInputLosesLineBreaks()
{
    QFETCH(Edits, edits);
    QFETCH(QStringList, losses);

    const Inspection inspection = inspected(fromStream(edited(edits)));

    QCOMPARE(shown(inspection.losses), losses);
    for (const Finding& finding : inspection.losses) {
        m_seenKinds.insert(Finding::nameOf(finding.kind));
    }
}

void InspectionTest::containersGoByDesign()
{
    const Inspection inspection = inspected(fromFile(edited({})));
    QStringList notes;
    for (const Finding& finding : inspection.notes) {
        notes.append(shown(finding));
        m_seenKinds.insert(Finding::nameOf(finding.kind));
    }
    QCOMPARE(notes,
             QStringList({"container-removed 6 " + CONFIGS, "container-removed 10 " + PROFILES,
                          "container-removed 15 /coordinated_data_root/"
                          "compatibility_levels"}));
}

void InspectionTest::systemsAreForetold()
{
    const Inspection inspection = inspected(fromFile(edited({})));

    QCOMPARE(inspection.systems.size(), std::size_t(2));
    // In the order of the joined texts: T before ZS.
    const InspectedSystem& first = inspection.systems[0];
    QCOMPARE(QString::fromStdString(first.key.series), QStringLiteral("T"));
    QCOMPARE(first.oldName, QStringLiteral("median"));
    QCOMPARE(QString::fromStdString(first.after.name), QStringLiteral("Standard"));
    const InspectedSystem& second = inspection.systems[1];
    QCOMPARE(QString::fromStdString(second.key.zone), QStringLiteral("Z"));
    QCOMPARE(second.oldName, QStringLiteral("robust"));
    QCOMPARE(QString::fromStdString(second.after.name), QStringLiteral("Robust"));
}

void InspectionTest::systemsAreNamedByTheirFields_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::newRow("one field") << "<band>G1</band>"
                               << "\"G1\"";
    QTest::newRow("all fields, in the order of the key")
        << "<incl_group>2</incl_group><tx_profile>High</tx_profile><band>G1</band>"
           "<series>T</series><zone>Z</zone>"
        << "\"Z / T / G1 / High / 2\"";
    QTest::newRow("an empty field between") << "<zone>Z</zone><series/><band>G1</band>"
                                            << "\"Z / G1\"";
    QTest::newRow("none") << ""
                          << "without a name";
}

void InspectionTest::systemsAreNamedByTheirFields()
{
    QFETCH(QString, key);
    QFETCH(QString, name);
    const Edits edits = {
        {"<compat_key><series>T</series></compat_key>", "<compat_key>" + key + "</compat_key>"},
        {"<compat_config><profile><series>T</series></profile></compat_config>", ""}};
    const Findings losses = inspected(fromFile(edited(edits))).losses;
    const auto loss = std::find_if(losses.begin(), losses.end(), [](const Finding& finding) {
        return finding.kind == Finding::SYSTEM_WITHOUT_CONFIGURATION;
    });
    QVERIFY(loss != losses.end());
    QCOMPARE(loss->text, QStringLiteral("The system %1 has no configuration: it does not reach the"
                                        " new element.")
                             .arg(name));
}

void InspectionTest::switchedOffSpacingsAreNoLoss()
{
    const InspectedSystem system = inspected(fromFile(edited({}))).systems[1];
    QCOMPARE(system.before.imd2t5o, 50);
    QCOMPARE(system.after.imd2t5o, 0);
    QCOMPARE(system.before.chCh, 350);
    QCOMPARE(system.after.chCh, 350);
}

void InspectionTest::countsAreTheDocuments()
{
    const Inspection inspection = inspected(fromFile(
        edited({{"</mic_channels>", "<x/></mic_channels>"},
                {"</compat_profiles>", "<compat_profile id=\"ID2\"/></compat_profiles>"}})));
    QCOMPARE(inspection.channels, 3);
    QCOMPARE(inspection.configurations, 2);
    QCOMPARE(inspection.profiles, 3);
}

void InspectionTest::versionDecides_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<int>("verdict");
    QTest::addColumn<Inspection::Advice>("advice");
    QTest::newRow("0.1 is the oldest")
        << "version=\"0.1\"" << int(XmlVersions::XmlConvertible) << Inspection::CONVERT;
    QTest::newRow("older") << "version=\"0.09\"" << int(XmlVersions::XmlInvalid)
                           << Inspection::TOO_OLD;
    QTest::newRow("none") << "" << int(XmlVersions::XmlInvalid) << Inspection::TOO_OLD;
    QTest::newRow("no number") << "version=\"two\"" << int(XmlVersions::XmlInvalid)
                               << Inspection::TOO_OLD;
    QTest::newRow("not comparable")
        << "version=\"nan\"" << int(XmlVersions::XmlInvalid) << Inspection::TOO_OLD;
    QTest::newRow("current, written otherwise")
        << "version=\"0.30\"" << int(XmlVersions::XmlCurrent) << Inspection::CURRENT;
    QTest::newRow("newer") << "version=\"1\"" << int(XmlVersions::XmlTooNew) << Inspection::TOO_NEW;
}

void InspectionTest::versionDecides()
{
    QFETCH(QString, attribute);
    QFETCH(int, verdict);
    QFETCH(Inspection::Advice, advice);

    const Inspection inspection = inspected(fromFile(edited({{"version=\"0.2\"", attribute}})));

    QCOMPARE(int(inspection.verdict.value()), verdict);
    QCOMPARE(inspection.advice, advice);
    QCOMPARE(inspection.version.isNull(), attribute.isEmpty());
}

void InspectionTest::documentThatIsNotWellFormedHasNoResult_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isStream");
    QTest::addColumn<int>("line");
    QTest::newRow("empty") << "" << false << 1;
    QTest::newRow("wrong end tag") << "<a>\n<b>\n</c>\n</a>" << false << 3;
    QTest::newRow("wrong end tag on standard input") << "<a>\n<b>\n</c>\n</a>" << true << 3;
    QTest::newRow("words joined by standard input") << "<a\nb=\"1\"/>" << true << 2;
}

void InspectionTest::documentThatIsNotWellFormedHasNoResult()
{
    QFETCH(QString, text);
    QFETCH(bool, isStream);
    QFETCH(int, line);

    const std::optional<DocumentText> document = isStream ? fromStream(text) : fromFile(text);
    ReadError error;
    QVERIFY(document.has_value());
    QVERIFY(!inspectDocument(*document, error).has_value());
    QCOMPARE(error.kind, QStringLiteral("not-well-formed"));
    QCOMPARE(error.line, line);
    QVERIFY(!error.text.isEmpty());
}

// Runs last: a kind without a row would be a promise that nobody holds.
void InspectionTest::everyKindHasItsRow()
{
    for (int kind = 0; kind < Finding::KIND_COUNT; ++kind) {
        const QString name = Finding::nameOf(static_cast<Finding::Kind>(kind));
        QVERIFY2(m_seenKinds.contains(name), qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(InspectionTest)
#include "InspectionTest.moc"

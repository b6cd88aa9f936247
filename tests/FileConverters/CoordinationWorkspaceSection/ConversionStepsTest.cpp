#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"

#include <QDomDocument>
#include <QtTest>

#include <boost/uuid/uuid_io.hpp>

#include <array>
#include <random>
#include <stdexcept>

using namespace ConversionSteps;

Q_DECLARE_METATYPE(CompatSystemUniqueKey)
Q_DECLARE_METATYPE(PkCompatProfile)
Q_DECLARE_METATYPE(CompatConfigFlags)

namespace {

const QString ID_1 = QStringLiteral("11111111-1111-4111-8111-111111111111");
const QString ID_2 = QStringLiteral("22222222-2222-4222-8222-222222222222");

QDomDocument parsed(const QString& text)
{
    QDomDocument document;
    if (!document.setContent(text)) {
        qFatal("This test's own document is not well-formed: %s", qUtf8Printable(text));
    }
    return document;
}

std::vector<QDomElement> elementsOf(const QDomDocument& document, const QString& name)
{
    const QDomNodeList nodes = document.elementsByTagName(name);
    std::vector<QDomElement> elements;
    elements.reserve(static_cast<std::size_t>(nodes.size()));
    for (int i = 0; i < nodes.size(); ++i) {
        elements.push_back(nodes.at(i).toElement());
    }
    return elements;
}

// The documents of these tests give an element that counts a "mark" to be told by.
QString mark(const QDomElement& element)
{
    return element.attribute(QStringLiteral("mark"));
}

QString marks(const std::vector<QDomElement>& elements)
{
    QStringList all;
    for (const QDomElement& element : elements) {
        all += mark(element);
    }
    return all.join(QLatin1Char(' '));
}

CompatSystemUniqueKey keyOfSeries(const std::string& series)
{
    return {"", series, "", "", ""};
}

PkCompatProfile profileNamed(const std::string& name)
{
    PkCompatProfile profile;
    profile.name = name;
    profile.chCh = 350;
    profile.imd2t3o = 103;
    profile.imd2t5o = 105;
    profile.imd2t7o = 107;
    profile.imd2t9o = 109;
    profile.imd3t3o = 33;
    return profile;
}

QString spacings(const PkCompatProfile& profile)
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6")
        .arg(profile.chCh)
        .arg(profile.imd2t3o)
        .arg(profile.imd2t5o)
        .arg(profile.imd2t7o)
        .arg(profile.imd2t9o)
        .arg(profile.imd3t3o);
}

QStringList textOf(const KeysByProfileId& keys)
{
    QStringList entries;
    for (auto entry = keys.begin(); entry != keys.end(); ++entry) {
        entries +=
            entry.key() + QStringLiteral(" -> ") + QString::fromStdString(entry.value().ToString());
    }
    return entries;
}

QStringList textOf(const FlagsByKey& flags)
{
    QStringList entries;
    for (auto entry = flags.begin(); entry != flags.end(); ++entry) {
        entries += QString::fromStdString(entry.key().ToString()) + QStringLiteral(" -> ") +
                   QString::number(static_cast<int>(entry.value()));
    }
    return entries;
}

QStringList textOf(const ProfilesByKey& profiles)
{
    QStringList entries;
    for (auto entry = profiles.begin(); entry != profiles.end(); ++entry) {
        entries += QString::fromStdString(entry.key().ToString()) + QStringLiteral(" -> ") +
                   QString::fromStdString(entry.value().name) + QLatin1Char(' ') +
                   spacings(entry.value());
    }
    return entries;
}

QString compatProfile(const QString& attributes, const QString& children = QString())
{
    return QStringLiteral("<compat_profile %1>%2</compat_profile>").arg(attributes, children);
}

} // namespace

class ConversionStepsTest : public QObject
{
    Q_OBJECT

private slots:
    void thereIsOneSectionOrNone_data();
    void thereIsOneSectionOrNone();
    void placesAreFoundBelowTheRoot_data();
    void placesAreFoundBelowTheRoot();
    void placesAreThoseOfASearchByName();
    void absentPlacesAreNull();

    void flagsHaveTheirBits();
    void channelsNameKeysByProfileId_data();
    void channelsNameKeysByProfileId();
    void absentChannelsNameNothing();

    void configurationSwitchesProductsOff_data();
    void configurationSwitchesProductsOff();
    void configurationsAreKeptByKey_data();
    void configurationsAreKeptByKey();

    void profileNameIsConverted_data();
    void profileNameIsConverted();
    void profileIsReadWhole();
    void profilesAreKeptByTheTextOfTheirId();
    void lastProfileOfAnIdCounts();
    void profileIdMustBeAUuid_data();
    void profileIdMustBeAUuid();

    void idsAndProfilesAreJoined_data();
    void idsAndProfilesAreJoined();
    void flagsAreApplied_data();
    void flagsAreApplied();
    void stepsLeaveTheDocumentAlone();
};

void ConversionStepsTest::thereIsOneSectionOrNone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("root");
    QTest::newRow("the document element") << "<coordinated_data_root mark='r'/>"
                                          << "r";
    QTest::newRow("below another element")
        << "<show><a/><b><coordinated_data_root mark='r'/></b><c/></show>"
        << "r";
    QTest::newRow("no section") << "<show/>"
                                << "";
    QTest::newRow("a name in other letter case") << "<Coordinated_Data_Root/>"
                                                 << "";
    QTest::newRow("a longer name") << "<coordinated_data_root2/>"
                                   << "";
    QTest::newRow("a name with a prefix") << "<a:coordinated_data_root/>"
                                          << "";
    QTest::newRow("two sections side by side")
        << "<show><coordinated_data_root/><coordinated_data_root/></show>"
        << "";
    QTest::newRow("two sections far apart")
        << "<show><a><coordinated_data_root/></a><b><c><coordinated_data_root/></c></b></show>"
        << "";
    QTest::newRow("one section in another")
        << "<coordinated_data_root><a><coordinated_data_root/></a></coordinated_data_root>"
        << "";
    QTest::newRow("only named in a comment and in text")
        << "<show><!-- <coordinated_data_root/> --><![CDATA[<coordinated_data_root/>]]></show>"
        << "";
    QTest::newRow("behind a declaration and comments")
        << "<?xml version='1.0'?><!-- c --><coordinated_data_root mark='r'/><!-- d -->"
        << "r";
}

void ConversionStepsTest::thereIsOneSectionOrNone()
{
    QFETCH(QString, text);
    QFETCH(QString, root);
    const QDomDocument document = parsed(text);
    const std::optional<OldSection> section = findOldSection(document);
    QCOMPARE(section.has_value(), !root.isEmpty());
    if (section) {
        QCOMPARE(mark(section->root), root);
    }
    QVERIFY(!findOldSection(QDomDocument()).has_value());
}

void ConversionStepsTest::placesAreFoundBelowTheRoot_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("containers"); // mic_channels, profiles, levels, configs
    QTest::addColumn<QString>("configurations");
    QTest::addColumn<QString>("profiles");
    QTest::newRow("children of the root")
        << "<coordinated_data_root>"
           "<mic_channels mark='m'/><compat_profiles mark='p'/>"
           "<compatibility_levels mark='l'/><compat_configs mark='c'/></coordinated_data_root>"
        << "m,p,l,c"
        << ""
        << "";
    QTest::newRow("any order and any depth")
        << "<coordinated_data_root><a><b><compat_configs mark='c'/></b></a><d>"
           "<compatibility_levels mark='l'/></d><e><f><g><compat_profiles mark='p'/></g></f></e>"
           "<h><mic_channels mark='m'/></h></coordinated_data_root>"
        << "m,p,l,c"
        << ""
        << "";
    QTest::newRow("the first in document order, not the least deep")
        << "<coordinated_data_root><a><b><mic_channels mark='m1'/></b></a><mic_channels mark='m2'/>"
           "<a><compat_profiles mark='p1'/></a><compat_profiles mark='p2'/>"
           "<compatibility_levels mark='l1'/><a><compatibility_levels mark='l2'/></a>"
           "<compat_configs mark='c1'/><compat_configs mark='c2'/></coordinated_data_root>"
        << "m1,p1,l1,c1"
        << ""
        << "";
    QTest::newRow("one nested in its like: the outer one comes first")
        << "<coordinated_data_root><mic_channels mark='m1'><mic_channels mark='m2'/>"
           "</mic_channels></coordinated_data_root>"
        << "m1,,,"
        << ""
        << "";
    QTest::newRow("all configurations and profiles, wherever they stand")
        << "<coordinated_data_root><compat_config mark='1'/><compat_configs mark='c'>"
           "<compat_config mark='2'/><x><compat_config mark='3'/></x></compat_configs>"
           "<compat_profile mark='a'/><compat_profiles mark='p'><compat_profile mark='b'/>"
           "</compat_profiles><mic_channels mark='m'><ch><compat_profile mark='d'/>"
           "<compat_config mark='4'/></ch></mic_channels></coordinated_data_root>"
        << "m,p,,c"
        << "1 2 3 4"
        << "a b d";
    QTest::newRow("a configuration in a configuration, a profile in a profile")
        << "<coordinated_data_root><compat_config mark='1'><compat_config mark='2'/>"
           "</compat_config><compat_config mark='3'/><compat_profile mark='a'><y>"
           "<compat_profile mark='b'/></y></compat_profile></coordinated_data_root>"
        << ",,,"
        << "1 2 3"
        << "a b";
    QTest::newRow("outside of the root nothing counts")
        << "<show><mic_channels mark='1'/><compat_profile mark='1'/><compat_config mark='1'/>"
           "<a><coordinated_data_root><compat_profile mark='2'/></coordinated_data_root>"
           "<compat_profile mark='3'/><compat_configs mark='3'/></a><compat_profiles mark='4'/>"
           "<compatibility_levels mark='4'/><compat_config mark='4'/><mic_channels "
           "mark='4'/></show>"
        << ",,,"
        << ""
        << "2";
    QTest::newRow("an empty root: what follows it is outside")
        << "<show><coordinated_data_root/><mic_channels mark='1'/><compat_config mark='1'/></show>"
        << ",,,"
        << ""
        << "";
    QTest::newRow("names in other letter case and with a prefix do not count")
        << "<coordinated_data_root><Mic_Channels mark='1'/><x:compat_profiles mark='2'/>"
           "<compat_Config mark='3'/><COMPAT_PROFILE mark='4'/></coordinated_data_root>"
        << ",,,"
        << ""
        << "";
}

void ConversionStepsTest::placesAreFoundBelowTheRoot()
{
    QFETCH(QString, text);
    const QDomDocument document = parsed(text);
    const std::optional<OldSection> section = findOldSection(document);
    QVERIFY(section.has_value());
    const QStringList containers = {mark(section->micChannels), mark(section->compatProfiles),
                                    mark(section->compatLevels), mark(section->compatConfigs)};
    QTEST(containers.join(QLatin1Char(',')), "containers");
    QTEST(marks(section->configurations), "configurations");
    QTEST(marks(section->profiles), "profiles");
}

// The places are defined as what the DOM's own search by name finds.
void ConversionStepsTest::placesAreThoseOfASearchByName()
{
    const QStringList names = {"a",
                               "compat_config",
                               "compat_configs",
                               "compat_profile",
                               "compat_profiles",
                               "compatibility_levels",
                               "mic_channels"};
    constexpr int DOCUMENTS = 200;
    constexpr int ELEMENTS = 40;
    std::mt19937 random(3);
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned int>(end));
    };
    for (int i = 0; i < DOCUMENTS; ++i) {
        QDomDocument document = parsed(QStringLiteral("<show/>"));
        std::vector<QDomElement> elements = {document.documentElement()};
        const int rootPlace = below(ELEMENTS);
        for (int n = 0; n < ELEMENTS; ++n) {
            QDomElement element = document.createElement(
                n == rootPlace ? QStringLiteral("coordinated_data_root")
                               : names[below(static_cast<int>(names.size()))]);
            element.setAttribute(QStringLiteral("mark"), n);
            QDomElement& parent =
                elements[static_cast<std::size_t>(below(static_cast<int>(elements.size())))];
            if (below(2) == 0) {
                parent.appendChild(document.createComment(QStringLiteral("c")));
            }
            parent.insertBefore(element, below(2) == 0 ? parent.firstChild() : QDomNode());
            elements.push_back(element);
        }
        const QDomElement root =
            document.elementsByTagName(QStringLiteral("coordinated_data_root")).at(0).toElement();
        const auto first = [&root](const char* name) {
            return mark(root.elementsByTagName(QLatin1String(name)).at(0).toElement());
        };
        const auto all = [&root](const char* name) {
            QStringList found;
            const QDomNodeList nodes = root.elementsByTagName(QLatin1String(name));
            for (int n = 0; n < nodes.size(); ++n) {
                found += mark(nodes.at(n).toElement());
            }
            return found.join(QLatin1Char(' '));
        };
        const std::optional<OldSection> section = findOldSection(document);
        QVERIFY2(section.has_value(), qUtf8Printable(document.toString()));
        QCOMPARE(mark(section->root), mark(root));
        QCOMPARE(mark(section->micChannels), first("mic_channels"));
        QCOMPARE(mark(section->compatProfiles), first("compat_profiles"));
        QCOMPARE(mark(section->compatLevels), first("compatibility_levels"));
        QCOMPARE(mark(section->compatConfigs), first("compat_configs"));
        QCOMPARE(marks(section->configurations), all("compat_config"));
        QCOMPARE(marks(section->profiles), all("compat_profile"));
    }
}

void ConversionStepsTest::absentPlacesAreNull()
{
    const QDomDocument document = parsed(QStringLiteral("<coordinated_data_root/>"));
    const std::optional<OldSection> section = findOldSection(document);
    QVERIFY(section.has_value());
    QVERIFY(section->micChannels.isNull());
    QVERIFY(section->compatProfiles.isNull());
    QVERIFY(section->compatLevels.isNull());
    QVERIFY(section->compatConfigs.isNull());
    QVERIFY(section->configurations.empty());
    QVERIFY(section->profiles.empty());
}

void ConversionStepsTest::flagsHaveTheirBits()
{
    QCOMPARE(static_cast<int>(KEEP_CH_CH), 2);
    QCOMPARE(static_cast<int>(KEEP_IMD_2T3O), 4);
    QCOMPARE(static_cast<int>(KEEP_IMD_2T5O), 8);
    QCOMPARE(static_cast<int>(KEEP_IMD_2T7O), 16);
    QCOMPARE(static_cast<int>(KEEP_IMD_2T9O), 32);
    QCOMPARE(static_cast<int>(KEEP_IMD_3T3O), 64);
}

void ConversionStepsTest::channelsNameKeysByProfileId_data()
{
    const QString key = QStringLiteral("<compat_key><series>%1</series></compat_key>");
    const QString id = QStringLiteral("<compat_prof_id>%1</compat_prof_id>");
    const QString channel = QStringLiteral("<channel>%1</channel>");
    QTest::addColumn<QString>("channels");
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("no channel") << "" << QStringList();
    QTest::newRow("a channel") << channel.arg(key.arg("S") + id.arg("7"))
                               << QStringList("7 -> |S|||");
    QTest::newRow("the id before the key")
        << channel.arg(id.arg("7") + key.arg("S")) << QStringList("7 -> |S|||");
    QTest::newRow("channels of any tag")
        << "<a>" + key.arg("S") + id.arg("1") + "</a><b>" + key.arg("T") + id.arg("2") + "</b>"
        << QStringList({"1 -> |S|||", "2 -> |T|||"});
    QTest::newRow("all five fields")
        << channel.arg("<compat_key><zone>Z</zone><series>S</series><band>B</band>"
                       "<tx_profile>T</tx_profile><incl_group>G</incl_group></compat_key>" +
                       id.arg("7"))
        << QStringList("7 -> Z|S|B|T|G");
    QTest::newRow("ids in ascending order")
        << channel.arg(key.arg("B") + id.arg("b")) + channel.arg(key.arg("A") + id.arg("a"))
        << QStringList({"a -> |A|||", "b -> |B|||"});
    QTest::newRow("without id") << channel.arg(key.arg("S")) << QStringList(" -> |S|||");
    QTest::newRow("without key") << channel.arg(id.arg("7")) << QStringList("7 -> ||||");
    QTest::newRow("without anything") << channel.arg("") << QStringList(" -> ||||");
    QTest::newRow("an empty id is no id")
        << channel.arg(key.arg("S")) + channel.arg(key.arg("T") + id.arg(""))
        << QStringList(" -> |T|||");
    QTest::newRow("of equal ids the last channel counts")
        << channel.arg(key.arg("S") + id.arg("7")) + channel.arg(key.arg("T") + id.arg("7"))
        << QStringList("7 -> |T|||");
    QTest::newRow("a channel does not inherit from the one before")
        << channel.arg("<compat_key><zone>Z</zone></compat_key>" + id.arg("1")) +
               channel.arg(key.arg("T"))
        << QStringList({" -> |T|||", "1 -> Z||||"});
    QTest::newRow("several keys of a channel add up")
        << channel.arg(key.arg("S") + "<compat_key><zone>Z</zone></compat_key>" + id.arg("7"))
        << QStringList("7 -> Z|S|||");
    QTest::newRow("of several keys with one field the last counts")
        << channel.arg(key.arg("S") + key.arg("T") + id.arg("7")) << QStringList("7 -> |T|||");
    QTest::newRow("of several ids of a channel the last counts")
        << channel.arg(id.arg("7") + key.arg("S") + id.arg("8")) << QStringList("8 -> |S|||");
    QTest::newRow("the last id counts also when it is empty")
        << channel.arg(id.arg("7") + key.arg("S") + id.arg("")) << QStringList(" -> |S|||");
    QTest::newRow("other children are ignored")
        << channel.arg("<name>n</name><profile><series>X</series></profile>" + key.arg("S") +
                       id.arg("7"))
        << QStringList("7 -> |S|||");
    QTest::newRow("only children of the channel count")
        << channel.arg("<x>" + key.arg("S") + id.arg("7") + "</x>") << QStringList(" -> ||||");
    QTest::newRow("names in other letter case are ignored")
        << channel.arg("<Compat_Key><series>S</series></Compat_Key>"
                       "<COMPAT_PROF_ID>7</COMPAT_PROF_ID>")
        << QStringList(" -> ||||");
    QTest::newRow("an id is not trimmed")
        << channel.arg(key.arg("S") + id.arg(" 7 ")) << QStringList(" 7  -> |S|||");
    QTest::newRow("an id is all the text below its element")
        << channel.arg(key.arg("S") + id.arg("7<b>8</b><![CDATA[9]]>"))
        << QStringList("789 -> |S|||");
    QTest::newRow("comments and text between the channels are ignored")
        << "<!-- c -->text" + channel.arg(key.arg("S") + id.arg("7")) + "text"
        << QStringList("7 -> |S|||");
}

void ConversionStepsTest::channelsNameKeysByProfileId()
{
    QFETCH(QString, channels);
    const QDomDocument document =
        parsed(QStringLiteral("<mic_channels>%1</mic_channels>").arg(channels));
    QTEST(textOf(readChannels(document.documentElement())), "keys");
}

void ConversionStepsTest::absentChannelsNameNothing()
{
    QVERIFY(readChannels(QDomElement()).isEmpty());
}

void ConversionStepsTest::configurationSwitchesProductsOff_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<int>("flags");
    const auto off = [](const char* name) {
        return QStringLiteral("<compat_flags><%1>0</%1></compat_flags>").arg(name);
    };
    QTest::newRow("nothing said keeps all six") << "" << 126;
    QTest::newRow("no flag keeps all six") << "<compat_flags/>" << 126;
    QTest::newRow("2t3o is bit 4") << off("imd_2t3o") << 122;
    QTest::newRow("2t5o is bit 8") << off("imd_2t5o") << 118;
    QTest::newRow("2t7o is bit 16") << off("imd_2t7o") << 110;
    QTest::newRow("2t9o is bit 32") << off("imd_2t9o") << 94;
    QTest::newRow("3t3o is bit 64") << off("imd_3t3o") << 62;
    QTest::newRow("channel spacing cannot be switched off") << off("ch_ch") << 126;
    QTest::newRow("unknown product") << off("imd_2t11o") << 126;
    QTest::newRow("letter case of a product counts") << off("IMD_2T3O") << 126;
    QTest::newRow("all products off leave the channel spacing")
        << "<compat_flags><imd_2t3o>0</imd_2t3o><imd_2t5o>0</imd_2t5o><imd_2t7o>0</imd_2t7o>"
           "<imd_2t9o>0</imd_2t9o><imd_3t3o>0</imd_3t3o></compat_flags>"
        << 2;
    QTest::newRow("several groups of flags add up")
        << off("imd_2t3o") + "<x/>" + off("imd_3t3o") << 58;
    QTest::newRow("0 twice switches off once")
        << "<compat_flags><imd_2t5o>0</imd_2t5o><imd_2t5o>0</imd_2t5o></compat_flags>" << 118;
    QTest::newRow("a later 1 does not switch on again")
        << "<compat_flags><imd_2t5o>0</imd_2t5o><imd_2t5o>1</imd_2t5o></compat_flags>" << 118;
    QTest::newRow("a later 0 switches off")
        << "<compat_flags><imd_2t5o>1</imd_2t5o><imd_2t5o>0</imd_2t5o></compat_flags>" << 118;
    QTest::newRow("flags outside of their group are ignored") << "<imd_2t5o>0</imd_2t5o>" << 126;
    QTest::newRow("flags deeper in their group are ignored")
        << "<compat_flags><x><imd_2t5o>0</imd_2t5o></x></compat_flags>" << 126;
    QTest::newRow("letter case of the group counts")
        << "<Compat_Flags><imd_2t5o>0</imd_2t5o></Compat_Flags>" << 126;

    const auto value = [](const char* text) {
        return QStringLiteral("<compat_flags><imd_2t5o>%1</imd_2t5o></compat_flags>").arg(text);
    };
    constexpr int ON = 126;
    constexpr int OFF = 118;
    QTest::newRow("1") << value("1") << ON;
    QTest::newRow("2") << value("2") << ON;
    QTest::newRow("minus 1") << value("-1") << ON;
    QTest::newRow("plus 1") << value("+1") << ON;
    QTest::newRow("blanks around 1") << value(" 1 ") << ON;
    QTest::newRow("leading zeros") << value("007") << ON;
    QTest::newRow("greatest integer") << value("2147483647") << ON;
    QTest::newRow("least integer") << value("-2147483648") << ON;
    QTest::newRow("empty text") << value("") << OFF;
    QTest::newRow("no number") << value("no") << OFF;
    QTest::newRow("yes is no number either") << value("yes") << OFF;
    QTest::newRow("blanks around 0") << value(" 0 ") << OFF;
    QTest::newRow("two zeros") << value("00") << OFF;
    QTest::newRow("minus 0") << value("-0") << OFF;
    QTest::newRow("plus 0") << value("+0") << OFF;
    QTest::newRow("a fraction is no integer") << value("1.0") << OFF;
    QTest::newRow("hexadecimal is not base 10") << value("0x1") << OFF;
    QTest::newRow("an exponent is no integer") << value("1e1") << OFF;
    QTest::newRow("trailing letters") << value("1st") << OFF;
    QTest::newRow("two numbers") << value("1 1") << OFF;
    QTest::newRow("above the greatest integer") << value("2147483648") << OFF;
    QTest::newRow("far above the greatest integer") << value("99999999999999999999") << OFF;
    QTest::newRow("below the least integer") << value("-2147483649") << OFF;
    QTest::newRow("digits in a CDATA section") << value("<![CDATA[1]]>") << ON;
    QTest::newRow("digits in an element below") << value("<v>1</v>") << ON;
    QTest::newRow("digits in a comment do not count") << value("<!--1-->") << OFF;
}

void ConversionStepsTest::configurationSwitchesProductsOff()
{
    QFETCH(QString, children);
    QFETCH(int, flags);
    const QDomDocument document =
        parsed(QStringLiteral("<compat_config>%1</compat_config>").arg(children));
    const FlagsByKey read = readConfigurations({document.documentElement()});
    QCOMPARE(textOf(read), QStringList(QStringLiteral("|||| -> %1").arg(flags)));
}

void ConversionStepsTest::configurationsAreKeptByKey_data()
{
    const QString configuration = QStringLiteral("<compat_config>%1</compat_config>");
    const QString series = QStringLiteral("<profile><series>%1</series></profile>");
    const QString off = QStringLiteral("<compat_flags><imd_2t5o>0</imd_2t5o></compat_flags>");
    QTest::addColumn<QString>("configurations");
    QTest::addColumn<QStringList>("flags");
    QTest::newRow("none") << "" << QStringList();
    QTest::newRow("the key is read from the profile")
        << configuration.arg("<profile><zone>Z</zone><series>S</series><band>B</band><mode>T</mode>"
                             "<incl_group>G</incl_group></profile>")
        << QStringList("Z|S|B|T|G -> 126");
    QTest::newRow("flags may stand before the key")
        << configuration.arg(off + series.arg("S")) << QStringList("|S||| -> 118");
    QTest::newRow("several profiles add up")
        << configuration.arg(series.arg("S") + "<profile><zone>Z</zone></profile>")
        << QStringList("Z|S||| -> 126");
    QTest::newRow("without a profile the key is empty")
        << configuration.arg(off) << QStringList("|||| -> 118");
    QTest::newRow("a compat_key is no profile here")
        << configuration.arg("<compat_key><series>S</series></compat_key>")
        << QStringList("|||| -> 126");
    QTest::newRow("in the order of keys")
        << configuration.arg(series.arg("b") + off) + configuration.arg(series.arg("B")) +
               configuration.arg(series.arg("a"))
        << QStringList({"|B||| -> 126", "|a||| -> 126", "|b||| -> 118"});
    QTest::newRow("of equal keys the last configuration counts")
        << configuration.arg(series.arg("S") + off) + configuration.arg(series.arg("S"))
        << QStringList("|S||| -> 126");
    QTest::newRow("the flags of equal keys do not add up")
        << configuration.arg(series.arg("S")) + configuration.arg(series.arg("S") + off)
        << QStringList("|S||| -> 118");
    // The order of keys joins the fields, so (ab, c) and (a, bc) are one key to a map. A map keeps
    // the key that it has and replaces the value.
    QTest::newRow("keys of the same rank: the first key with the last flags")
        << configuration.arg("<profile><series>ab</series><band>c</band></profile>") +
               configuration.arg("<profile><series>a</series><band>bc</band></profile>" + off)
        << QStringList("|ab|c|| -> 118");
}

void ConversionStepsTest::configurationsAreKeptByKey()
{
    QFETCH(QString, configurations);
    const QDomDocument document = parsed(QStringLiteral("<r>%1</r>").arg(configurations));
    QTEST(textOf(readConfigurations(elementsOf(document, QStringLiteral("compat_config")))),
          "flags");
}

void ConversionStepsTest::profileNameIsConverted_data()
{
    QTest::addColumn<QString>("oldName");
    QTest::addColumn<QString>("newName");
    QTest::newRow("robust") << "robust"
                            << "Robust";
    QTest::newRow("median") << "median"
                            << "Standard";
    QTest::newRow("quantity") << "quantity"
                              << "More Frequencies";
    QTest::newRow("no name") << ""
                             << "";
    QTest::newRow("letter case counts") << "Median"
                                        << "";
    QTest::newRow("capitals") << "ROBUST"
                              << "";
    QTest::newRow("already converted, Robust") << "Robust"
                                               << "";
    QTest::newRow("already converted, Standard") << "Standard"
                                                 << "";
    QTest::newRow("already converted, More Frequencies") << "More Frequencies"
                                                         << "";
    QTest::newRow("a name of the user's own") << "club"
                                              << "";
    QTest::newRow("blanks count") << " robust"
                                  << "";
    QTest::newRow("a blank behind counts") << "robust "
                                           << "";
}

void ConversionStepsTest::profileNameIsConverted()
{
    QFETCH(QString, oldName);
    QFETCH(QString, newName);
    QCOMPARE(newProfileName(oldName), newName);
    QCOMPARE(newProfileName(oldName), newName); // asking does not add the name

    const QDomDocument document =
        parsed(compatProfile(QStringLiteral("id='%1' name='%2'").arg(ID_1, oldName)));
    const ProfilesById profiles = readProfiles({document.documentElement()});
    QCOMPARE(QString::fromStdString(profiles.value(ID_1).name), newName);
}

void ConversionStepsTest::profileIsReadWhole()
{
    const QDomDocument document = parsed(compatProfile(
        QStringLiteral("id='%1' imd_source='0' synthesizable='0'").arg(ID_1),
        "<spacing><ch_ch>350</ch_ch><imd_2t3o>103</imd_2t3o><imd_2t5o>105</imd_2t5o>"
        "<imd_2t7o>107</imd_2t7o><imd_2t9o>109</imd_2t9o><imd_3t3o>33</imd_3t3o></spacing>"
        "<filter type='2'><filter_start>1</filter_start><filter_end>2</filter_end>"
        "<filter_center>3</filter_center>"
        "<filter_center_list><freq>4</freq><freq>5</freq></filter_center_list></filter>"));
    const ProfilesById profiles = readProfiles({document.documentElement()});
    QCOMPARE(profiles.keys(), QList<QString>({ID_1}));
    const PkCompatProfile profile = profiles.value(ID_1);
    QCOMPARE(profile.name, std::string()); // a missing name is an unknown one
    QCOMPARE(boost::uuids::to_string(profile.id), ID_1.toStdString());
    QCOMPARE(spacings(profile), QStringLiteral("350 103 105 107 109 33"));
    QCOMPARE(profile.filterType, EBF_CENTER_LIST);
    QCOMPARE(profile.filterStart, 1);
    QCOMPARE(profile.filterEnd, 2);
    QCOMPARE(profile.filterCenter, 3);
    QCOMPARE(profile.filterCenterList, std::vector<int>({4, 5}));
    QVERIFY(!profile.imdSource);
    QVERIFY(!profile.synthesizable);
}

// Channels name a profile by the text of its id, so two spellings of a UUID are two ids.
void ConversionStepsTest::profilesAreKeptByTheTextOfTheirId()
{
    const QString upper = QStringLiteral("{AAAAAAAA-1111-4111-8111-111111111111}");
    const QString bare = QStringLiteral("aaaaaaaa111141118111111111111111");
    const QDomDocument document =
        parsed(QStringLiteral("<r>%1%2</r>")
                   .arg(compatProfile(QStringLiteral("id='%1' name='robust'").arg(upper)),
                        compatProfile(QStringLiteral("id='%1' name='median'").arg(bare))));
    const ProfilesById profiles =
        readProfiles(elementsOf(document, QStringLiteral("compat_profile")));
    QCOMPARE(profiles.keys(), QList<QString>({bare, upper}));
    QCOMPARE(profiles.value(upper).name, std::string("Robust"));
    QCOMPARE(profiles.value(bare).name, std::string("Standard"));
    QVERIFY(profiles.value(upper).id == profiles.value(bare).id);
}

void ConversionStepsTest::lastProfileOfAnIdCounts()
{
    const QDomDocument document =
        parsed(QStringLiteral("<r>%1%2%3</r>")
                   .arg(compatProfile(QStringLiteral("id='%1' name='robust'").arg(ID_1),
                                      "<spacing><ch_ch>350</ch_ch></spacing>"),
                        compatProfile(QStringLiteral("id='%1' name='quantity'").arg(ID_2)),
                        compatProfile(QStringLiteral("id='%1' name='median'").arg(ID_1))));
    const ProfilesById profiles =
        readProfiles(elementsOf(document, QStringLiteral("compat_profile")));
    QCOMPARE(profiles.keys(), QList<QString>({ID_1, ID_2}));
    QCOMPARE(profiles.value(ID_1).name, std::string("Standard"));
    QCOMPARE(profiles.value(ID_1).chCh, 0); // nothing of the first one is left
    QCOMPARE(profiles.value(ID_2).name, std::string("More Frequencies"));
}

void ConversionStepsTest::profileIdMustBeAUuid_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::newRow("no id") << "name='robust'";
    QTest::newRow("empty id") << "id=''";
    QTest::newRow("a number") << "id='7'";
    QTest::newRow("a digit short") << "id='1111111-1111-4111-8111-111111111111'";
    QTest::newRow("a letter that is no digit") << "id='g1111111-1111-4111-8111-111111111111'";
    QTest::newRow("blanks around it") << "id=' 11111111-1111-4111-8111-111111111111 '";
    QTest::newRow("a dash missing") << "id='111111111111-4111-8111-111111111111'";
    QTest::newRow("the name of the attribute in capitals")
        << "ID='11111111-1111-4111-8111-111111111111'";
}

void ConversionStepsTest::profileIdMustBeAUuid()
{
    QFETCH(QString, attributes);
    const QDomDocument document = parsed(
        QStringLiteral("<r>%1%2</r>")
            .arg(compatProfile(QStringLiteral("id='%1'").arg(ID_1)), compatProfile(attributes)));
    std::string message;
    try {
        readProfiles(elementsOf(document, QStringLiteral("compat_profile")));
    } catch (const std::runtime_error& error) {
        message = error.what();
    }
    QCOMPARE(message, std::string("invalid uuid string"));
}

void ConversionStepsTest::idsAndProfilesAreJoined_data()
{
    const PkCompatProfile robust = profileNamed("Robust");
    const PkCompatProfile standard = profileNamed("Standard");
    QTest::addColumn<KeysByProfileId>("keys");
    QTest::addColumn<ProfilesById>("profiles");
    QTest::addColumn<QStringList>("joined");
    QTest::newRow("nothing") << KeysByProfileId() << ProfilesById() << QStringList();
    QTest::newRow("a system") << KeysByProfileId({{"1", keyOfSeries("S")}})
                              << ProfilesById({{"1", robust}})
                              << QStringList("|S||| -> Robust 350 103 105 107 109 33");
    QTest::newRow("in the order of keys")
        << KeysByProfileId({{"1", keyOfSeries("T")}, {"2", keyOfSeries("S")}})
        << ProfilesById({{"1", robust}, {"2", standard}})
        << QStringList({"|S||| -> Standard 350 103 105 107 109 33",
                        "|T||| -> Robust 350 103 105 107 109 33"});
    QTest::newRow("more ids than profiles")
        << KeysByProfileId({{"1", keyOfSeries("S")}, {"2", keyOfSeries("T")}})
        << ProfilesById({{"1", robust}}) << QStringList();
    QTest::newRow("more profiles than ids")
        << KeysByProfileId({{"1", keyOfSeries("S")}})
        << ProfilesById({{"1", robust}, {"2", standard}}) << QStringList();
    QTest::newRow("ids without any profile")
        << KeysByProfileId({{"1", keyOfSeries("S")}}) << ProfilesById() << QStringList();
    QTest::newRow("profiles without any id")
        << KeysByProfileId() << ProfilesById({{"1", robust}}) << QStringList();
    QTest::newRow("an id without its profile gets a default one")
        << KeysByProfileId({{"1", keyOfSeries("S")}}) << ProfilesById({{"2", robust}})
        << QStringList("|S||| ->  0 0 0 0 0 0");
    QTest::newRow("of ids with equal keys the greatest counts")
        << KeysByProfileId({{"2", keyOfSeries("S")}, {"1", keyOfSeries("S")}})
        << ProfilesById({{"1", robust}, {"2", standard}})
        << QStringList("|S||| -> Standard 350 103 105 107 109 33");
    QTest::newRow("ids are ordered as texts")
        << KeysByProfileId({{"10", keyOfSeries("S")}, {"9", keyOfSeries("S")}})
        << ProfilesById({{"10", robust}, {"9", standard}})
        << QStringList("|S||| -> Standard 350 103 105 107 109 33");
    QTest::newRow("the greatest id without profile leaves a default one")
        << KeysByProfileId({{"1", keyOfSeries("S")}, {"2", keyOfSeries("S")}})
        << ProfilesById({{"1", robust}, {"0", standard}}) << QStringList("|S||| ->  0 0 0 0 0 0");
}

void ConversionStepsTest::idsAndProfilesAreJoined()
{
    QFETCH(KeysByProfileId, keys);
    QFETCH(ProfilesById, profiles);
    QTEST(textOf(joinByProfileId(keys, profiles)), "joined");
}

void ConversionStepsTest::flagsAreApplied_data()
{
    const CompatConfigFlags all(126);
    const PkCompatProfile robust = profileNamed("Robust");
    const ProfilesByKey oneProfile = {{keyOfSeries("S"), robust}};
    QTest::addColumn<FlagsByKey>("flags");
    QTest::addColumn<ProfilesByKey>("profiles");
    QTest::addColumn<QStringList>("applied");
    QTest::newRow("nothing") << FlagsByKey() << ProfilesByKey() << QStringList();

    struct Row
    {
        const char* name;
        int flags;
        const char* spacings;
    };
    const std::array<Row, 9> rows = {{
        {"all six bits keep all six spacings", 126, "350 103 105 107 109 33"},
        {"no bit keeps no spacing", 0, "0 0 0 0 0 0"},
        {"bit 1 keeps nothing", 1, "0 0 0 0 0 0"},
        {"bit 2 keeps the channel spacing", 2, "350 0 0 0 0 0"},
        {"bit 4 keeps 2t3o", 4, "0 103 0 0 0 0"},
        {"bit 8 keeps 2t5o", 8, "0 0 105 0 0 0"},
        {"bit 16 keeps 2t7o", 16, "0 0 0 107 0 0"},
        {"bit 32 keeps 2t9o", 32, "0 0 0 0 109 0"},
        {"bit 64 keeps 3t3o", 64, "0 0 0 0 0 33"},
    }};
    for (const Row& row : rows) {
        QTest::newRow(row.name) << FlagsByKey({{keyOfSeries("S"), CompatConfigFlags(row.flags)}})
                                << oneProfile
                                << QStringList(
                                       QStringLiteral("|S||| -> Robust %1").arg(row.spacings));
    }

    QTest::newRow("more configurations than profiles")
        << FlagsByKey({{keyOfSeries("S"), all}, {keyOfSeries("T"), all}}) << oneProfile
        << QStringList();
    QTest::newRow("more profiles than configurations")
        << FlagsByKey({{keyOfSeries("S"), all}})
        << ProfilesByKey({{keyOfSeries("S"), robust}, {keyOfSeries("T"), robust}}) << QStringList();
    QTest::newRow("no configuration") << FlagsByKey() << oneProfile << QStringList();
    QTest::newRow("a configuration without profile gets a default one, the profile is left out")
        << FlagsByKey({{keyOfSeries("T"), CompatConfigFlags(118)}}) << oneProfile
        << QStringList("|T||| ->  0 0 0 0 0 0");
    QTest::newRow("each system by its own flags")
        << FlagsByKey({{keyOfSeries("T"), CompatConfigFlags(118)}, {keyOfSeries("S"), all}})
        << ProfilesByKey({{keyOfSeries("S"), robust}, {keyOfSeries("T"), profileNamed("Standard")}})
        << QStringList({"|S||| -> Robust 350 103 105 107 109 33",
                        "|T||| -> Standard 350 103 0 107 109 33"});
    QTest::newRow("the key is the configuration's where two have the same rank")
        << FlagsByKey({{CompatSystemUniqueKey("", "a", "bc", "", ""), all}})
        << ProfilesByKey({{CompatSystemUniqueKey("", "ab", "c", "", ""), robust}})
        << QStringList("|a|bc|| -> Robust 350 103 105 107 109 33");
}

void ConversionStepsTest::flagsAreApplied()
{
    QFETCH(FlagsByKey, flags);
    QFETCH(ProfilesByKey, profiles);
    QTEST(textOf(applyFlags(flags, profiles)), "applied");
}

void ConversionStepsTest::stepsLeaveTheDocumentAlone()
{
    const QDomDocument document =
        parsed("<coordinated_data_root version='0.2'><mic_channels><c><compat_key><zone>Z</zone>"
               "</compat_key><compat_prof_id>" +
               ID_1 +
               "</compat_prof_id></c></mic_channels><compat_configs><compat_config><profile><zone>Z"
               "</zone></profile></compat_config></compat_configs><compat_profiles>" +
               compatProfile("id='" + ID_1 + "' name='robust'") +
               "</compat_profiles></coordinated_data_root>");
    const QString before = document.toString();
    const std::optional<OldSection> section = findOldSection(document);
    QVERIFY(section.has_value());
    const ProfilesByKey profiles =
        joinByProfileId(readChannels(section->micChannels), readProfiles(section->profiles));
    QCOMPARE(applyFlags(readConfigurations(section->configurations), profiles).size(), 1);
    QCOMPARE(document.toString(), before);
}

QTEST_GUILESS_MAIN(ConversionStepsTest)
#include "ConversionStepsTest.moc"

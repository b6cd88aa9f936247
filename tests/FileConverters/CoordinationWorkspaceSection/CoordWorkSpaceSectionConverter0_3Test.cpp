#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"

#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"
#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

#include <array>
#include <stdexcept>

using Converter = CoordWorkSpaceSectionConverter0_3;
using Settings = QMap<CompatSystemUniqueKey, PkCompatProfile>;

namespace {

const QString ID_1 = QStringLiteral("11111111-1111-4111-8111-111111111111");
const QString ID_2 = QStringLiteral("22222222-2222-4222-8222-222222222222");
const QString NIL_ID = QStringLiteral("00000000-0000-0000-0000-000000000000");

QDomDocument parsed(const QString& text)
{
    QDomDocument document;
    if (!document.setContent(text)) {
        qFatal("This test's own document is not well-formed: %s", qUtf8Printable(text));
    }
    return document;
}

// A node's text with attributes in the order of their names, so that equal documents compare equal.
QString canonical(const QDomNode& node)
{
    if (!node.isElement() && !node.isDocument()) {
        QString text;
        QTextStream stream(&text);
        node.save(stream, -1);
        return text;
    }
    QString inside;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        inside += canonical(child);
    }
    if (node.isDocument()) {
        return inside;
    }
    QStringList attributes;
    for (int i = 0; i < node.attributes().size(); ++i) {
        const QDomAttr attribute = node.attributes().item(i).toAttr();
        attributes += QStringLiteral(" %1='%2'").arg(attribute.name(), attribute.value());
    }
    attributes.sort();
    return QStringLiteral("<%1%2>%3</%1>").arg(node.nodeName(), attributes.join(QString()), inside);
}

// Parts of documents before the conversion.

QString channel(const QString& series, const QString& id)
{
    return QStringLiteral("<channel><compat_key><series>%1</series></compat_key>"
                          "<compat_prof_id>%2</compat_prof_id></channel>")
        .arg(series, id);
}

QString micChannels(const QString& channels)
{
    return QStringLiteral("<mic_channels>%1</mic_channels>").arg(channels);
}

QString configuration(const QString& series, const QString& flags = QString())
{
    return QStringLiteral("<compat_config><profile><series>%1</series></profile>"
                          "<compat_flags>%2</compat_flags></compat_config>")
        .arg(series, flags);
}

QString configurations(const QString& all)
{
    return QStringLiteral("<compat_configs>%1</compat_configs>").arg(all);
}

QString oldProfile(const QString& id, const QString& name)
{
    return QStringLiteral("<compat_profile id='%1' name='%2'><spacing><ch_ch>350</ch_ch>"
                          "<imd_2t3o>103</imd_2t3o><imd_2t5o>105</imd_2t5o>"
                          "<imd_2t7o>107</imd_2t7o><imd_2t9o>109</imd_2t9o>"
                          "<imd_3t3o>33</imd_3t3o></spacing></compat_profile>")
        .arg(id, name);
}

QString profiles(const QString& all)
{
    return QStringLiteral("<compat_profiles>%1</compat_profiles>").arg(all);
}

QString oldRoot(const QString& children)
{
    return QStringLiteral("<coordinated_data_root version='0.2'>%1</coordinated_data_root>")
        .arg(children);
}

// Parts of documents after it.

QString newRoot(const QString& children)
{
    return QStringLiteral("<coordinated_data_root version='0.3'>%1</coordinated_data_root>")
        .arg(children);
}

QString settings(int count, const QString& systems = QString())
{
    return QStringLiteral("<compatibility_profile_settings version='1.0' count='%1'>%2"
                          "</compatibility_profile_settings>")
        .arg(count)
        .arg(systems);
}

// Spacings in the order of writing: ch_ch, 2t3o, 2t5o, 2t7o, 2t9o, 3t3o.
QString newProfile(const QString& id, const QString& name, const QStringList& spacings)
{
    return QStringLiteral("<compat_profile version='0.0.0.1' id='%1' name='%2' imd_source='1' "
                          "synthesizable='1'><spacing freq_units='KHz'>"
                          "<ch_ch>%3</ch_ch><imd_2t3o>%4</imd_2t3o><imd_2t5o>%5</imd_2t5o>"
                          "<imd_2t7o>%6</imd_2t7o><imd_2t9o>%7</imd_2t9o><imd_3t3o>%8</imd_3t3o>"
                          "</spacing><filter type='-1'><filter_start>0</filter_start>"
                          "<filter_end>0</filter_end><filter_center>0</filter_center></filter>"
                          "</compat_profile>")
        .arg(id, name, spacings[0], spacings[1], spacings[2], spacings[3], spacings[4],
             spacings[5]);
}

const QStringList ALL_SPACINGS = {"350", "103", "105", "107", "109", "33"};
const QStringList NO_SPACINGS = {"0", "0", "0", "0", "0", "0"};

QString system(const QString& series, const QString& profile)
{
    return QStringLiteral("<profile><band></band><series>%1</series><tx_profile></tx_profile>"
                          "<zone></zone><incl_group></incl_group>%2</profile>")
        .arg(series, profile);
}

} // namespace

class CoordWorkSpaceSectionConverter0_3Test : public QObject
{
    Q_OBJECT

private slots:
    void fileIsDecoded_data();
    void fileIsDecoded();
    void longFileIsReadWhole_data();
    void longFileIsReadWhole();
    void fileThatCannotBeOpenedLeavesTheText_data();
    void fileThatCannotBeOpenedLeavesTheText();
    void unreadableFileLeavesTheText();

    void keyIsParsed_data();
    void keyIsParsed();

    void noSettingsGiveAnEmptyElement();
    void settingsAreWrittenInOrder();
    void settingsElementIsNotInserted();
    void emptyKeyFieldsAreWritten();
    void keyFieldIsWritten_data();
    void keyFieldIsWritten();
    void profileIsWrittenWhole();

    void documentIsConverted_data();
    void documentIsConverted();
    void documentIsRefusedUnchanged_data();
    void documentIsRefusedUnchanged();
    void documentWithABadIdIsUnchanged_data();
    void documentWithABadIdIsUnchanged();
    void renamedProfileHasItsNameSetAnew();
    void conversionsDoNotInfluenceEachOther();
};

void CoordWorkSpaceSectionConverter0_3Test::fileIsDecoded_data()
{
    const auto utf16 = [](const QString& text, bool bigEndian) {
        QByteArray bytes;
        for (const QChar character : text) {
            const char low = static_cast<char>(character.cell());
            const char high = static_cast<char>(character.row());
            bytes += bigEndian ? high : low;
            bytes += bigEndian ? low : high;
        }
        return bytes;
    };
    const QString document = QStringLiteral("<a>\u00e4\n\u0416\u20ac\U0001F3A4</a>\n");
    const QString oneCharacterLine = QStringLiteral("<\na b='\u00e4'/>");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("UTF-8") << document.toUtf8() << document;
    QTest::newRow("carriage returns are kept")
        << QByteArray("<a>\r\n</a>\r\n") << QStringLiteral("<a>\r\n</a>\r\n");
    QTest::newRow("empty file replaces the text too") << QByteArray() << QString();
    QTest::newRow("UTF-8 with byte-order mark") << "\xEF\xBB\xBF" + document.toUtf8() << document;
    QTest::newRow("UTF-16 LE with byte-order mark")
        << "\xFF\xFE" + utf16(document, false) << document;
    QTest::newRow("UTF-16 BE with byte-order mark")
        << "\xFE\xFF" + utf16(document, true) << document;
    QTest::newRow("UTF-16 LE without byte-order mark") << utf16(document, false) << document;
    QTest::newRow("UTF-16 LE without byte-order mark, first character a letter")
        << utf16("x\ny", false) << "x\ny";
    QTest::newRow("UTF-16 LE without byte-order mark, first line of one character")
        << utf16(oneCharacterLine, false) << oneCharacterLine;

    // What the test for UTF-16 cannot tell apart.
    QTest::newRow("UTF-16 BE without byte-order mark is not recognised")
        << utf16("<a/>", true) << QString::fromLatin1("\0<\0a\0/\0>", 8);
    QTest::newRow("UTF-16 LE without byte-order mark whose first line is empty is not recognised")
        << utf16("\n<", false) << QString::fromLatin1("\n\0<\0", 4);
    QTest::newRow("one-character first line is taken for UTF-16")
        << QByteArray("<\na/>\n") << QString(QStringLiteral("\u0A3C\u2F61\u0A3E"));
    QTest::newRow("one-character first line that ends in a carriage return is taken for UTF-16")
        << QByteArray("<\r\na/>") << QString(QStringLiteral("\u0D3C\u610A\u3E2F"));
    QTest::newRow("a character and a zero byte are taken for UTF-16")
        << QByteArray("<\0ab", 4) << QString(QStringLiteral("\u003C\u6261"));
    QTest::newRow("one-character first line behind a UTF-8 byte-order mark")
        << QByteArray("\xEF\xBB\xBF<\na/>") << QString(QStringLiteral("\uBBEF\u3CBF\u610A\u3E2F"));
    QTest::newRow("one-character first line in UTF-16 LE with byte-order mark")
        << "\xFF\xFE" + utf16(oneCharacterLine, false) << oneCharacterLine;
    QTest::newRow("one-character first line in UTF-16 BE with byte-order mark")
        << "\xFE\xFF" + utf16(oneCharacterLine, true) << oneCharacterLine;

    QTest::newRow("empty first line")
        << QByteArray("\n<a>\xC3\xA4</a>") << QString(QStringLiteral("\n<a>\u00e4</a>"));
    QTest::newRow("empty first line that ends in a carriage return")
        << QByteArray("\r\n<a/>") << "\r\n<a/>";
    QTest::newRow("first line of two characters") << QByteArray("<a\n/>") << "<a\n/>";
    QTest::newRow("first line of one character of two bytes")
        << QByteArray("\xC3\xA4\nb") << QString(QStringLiteral("\u00e4\nb"));
    QTest::newRow("zero bytes are kept")
        << QByteArray("<a>\0</a>", 8) << QString::fromLatin1("<a>\0</a>", 8);
}

void CoordWorkSpaceSectionConverter0_3Test::fileIsDecoded()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("document.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
    file.close();
    QString text = QStringLiteral("before");
    Converter::ReadInputFile(file.fileName(), text);
    QTEST(text, "text");
}

void CoordWorkSpaceSectionConverter0_3Test::longFileIsReadWhole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one long line") << "<a>" + QString(200000, QChar(0x00E4)) + "</a>";
    QTest::newRow("many lines") << QStringLiteral("<a>\u20ac\U0001F3A4 \n").repeated(30000) +
                                       "</a>";
}

void CoordWorkSpaceSectionConverter0_3Test::longFileIsReadWhole()
{
    QFETCH(QString, text);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("document.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
    file.close();
    QString read;
    Converter::ReadInputFile(file.fileName(), read);
    QVERIFY(read == text); // QCOMPARE would print a megabyte
}

void CoordWorkSpaceSectionConverter0_3Test::fileThatCannotBeOpenedLeavesTheText_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing file") << "missing/document.xml";
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("empty path") << "";
    QTest::newRow("null path") << QString();
}

void CoordWorkSpaceSectionConverter0_3Test::fileThatCannotBeOpenedLeavesTheText()
{
    QFETCH(QString, path);
    QString text = QStringLiteral("before");
    Converter::ReadInputFile(path, text);
    QCOMPARE(text, QStringLiteral("before"));
    QString nullText;
    Converter::ReadInputFile(path, nullText);
    QVERIFY(nullText.isNull());
}

void CoordWorkSpaceSectionConverter0_3Test::unreadableFileLeavesTheText()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("document.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<a/>");
    file.close();
    QVERIFY(file.setPermissions(QFileDevice::Permissions()));
    if (file.open(QIODevice::ReadOnly)) {
        QSKIP("This user may read every file.");
    }
    QString text = QStringLiteral("before");
    Converter::ReadInputFile(file.fileName(), text);
    QCOMPARE(text, QStringLiteral("before"));
}

void CoordWorkSpaceSectionConverter0_3Test::keyIsParsed_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<QString>("key"); // of one that was z|s|b|t|g before
    QTest::newRow("nothing") << ""
                             << "z|s|b|t|g";
    QTest::newRow("zone") << "<zone>1</zone>"
                          << "1|s|b|t|g";
    QTest::newRow("series") << "<series>1</series>"
                            << "z|1|b|t|g";
    QTest::newRow("band") << "<band>1</band>"
                          << "z|s|1|t|g";
    QTest::newRow("tx_profile") << "<tx_profile>1</tx_profile>"
                                << "z|s|b|1|g";
    QTest::newRow("mode") << "<mode>1</mode>"
                          << "z|s|b|1|g";
    QTest::newRow("incl_group") << "<incl_group>1</incl_group>"
                                << "z|s|b|t|1";
    QTest::newRow("all, in any order")
        << "<incl_group>5</incl_group><mode>4</mode><band>3</band><series>2</series><zone>1</zone>"
        << "1|2|3|4|5";
    QTest::newRow("a later mode wins over tx_profile") << "<tx_profile>A</tx_profile><mode>B</mode>"
                                                       << "z|s|b|B|g";
    QTest::newRow("a later tx_profile wins over mode") << "<mode>B</mode><tx_profile>A</tx_profile>"
                                                       << "z|s|b|A|g";
    QTest::newRow("the last of a name wins")
        << "<zone>1</zone><zone>2</zone><band>3</band><zone>4</zone>"
        << "4|s|3|t|g";
    QTest::newRow("an empty element empties the field") << "<zone/><mode></mode>"
                                                        << "|s|b||g";
    QTest::newRow("letter case counts") << "<Zone>1</Zone><BAND>2</BAND>"
                                        << "z|s|b|t|g";
    QTest::newRow("a prefix counts") << "<x:zone>1</x:zone>"
                                     << "z|s|b|t|g";
    QTest::newRow("the field's name in another form counts not")
        << "<txProfile>1</txProfile><inclGroup>2</inclGroup>"
        << "z|s|b|t|g";
    QTest::newRow("unknown children are skipped") << "<x>1</x><zone>2</zone>"
                                                  << "2|s|b|t|g";
    QTest::newRow("only children count") << "<x><zone>1</zone></x>"
                                         << "z|s|b|t|g";
    QTest::newRow("comments and text between are skipped") << "<!-- c -->text<zone>1</zone>text"
                                                           << "1|s|b|t|g";
    QTest::newRow("nothing is trimmed") << "<zone> 1 \n</zone>"
                                        << " 1 \n|s|b|t|g";
    QTest::newRow("all the text below counts") << "<zone>1<x>2<y>3</y></x><![CDATA[<4>]]></zone>"
                                               << "123<4>|s|b|t|g";
    QTest::newRow("references are resolved")
        << "<zone>a&amp;b&#x20AC;</zone>" << QStringLiteral("a&b\u20ac|s|b|t|g");
    QTest::newRow("text beyond ASCII") << QStringLiteral("<zone>S\u00fcd \U0001F3A4</zone>")
                                       << QStringLiteral("S\u00fcd \U0001F3A4|s|b|t|g");
}

void CoordWorkSpaceSectionConverter0_3Test::keyIsParsed()
{
    QFETCH(QString, children);
    QFETCH(QString, key);
    for (const char* name : {"compat_key", "profile"}) {
        const QDomDocument document = parsed(QStringLiteral("<%1>%2</%1>").arg(name, children));
        CompatSystemUniqueKey read("z", "s", "b", "t", "g");
        Converter::CompatKeyParser(document.documentElement(), read);
        QCOMPARE(read.ToString(), key.toStdString()); // bytes: fields are UTF-8
    }
}

void CoordWorkSpaceSectionConverter0_3Test::noSettingsGiveAnEmptyElement()
{
    QDomDocument document;
    const QDomElement element = Converter::CreateCompatProfileSettingsElem(document, Settings());
    QCOMPARE(element.tagName(), QStringLiteral("compatibility_profile_settings"));
    QCOMPARE(element.attribute(QStringLiteral("version")), QStringLiteral("1.0"));
    QCOMPARE(element.attribute(QStringLiteral("count")), QStringLiteral("0"));
    QCOMPARE(element.attributes().size(), 2);
    QVERIFY(!element.hasChildNodes());
}

void CoordWorkSpaceSectionConverter0_3Test::settingsAreWrittenInOrder()
{
    Settings map;
    // The first letters of zone, series, band, transmitter profile and group decide in this order.
    const std::array<CompatSystemUniqueKey, 4> keys = {{
        {"b", "", "", "", ""},
        {"a", "2", "", "", ""},
        {"", "Z", "b", "t", "g"},
        {"", "\xC3\xA4", "", "", ""},
    }};
    for (const CompatSystemUniqueKey& key : keys) {
        PkCompatProfile profile;
        profile.name = key.ToString();
        map.insert(key, profile);
    }
    QDomDocument document;
    const QDomElement element = Converter::CreateCompatProfileSettingsElem(document, map);
    QCOMPARE(element.attribute(QStringLiteral("count")), QStringLiteral("4"));
    QStringList written;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        QCOMPARE(child.tagName(), QStringLiteral("profile"));
        QVERIFY(!child.hasAttributes());
        QStringList names;
        for (QDomElement field = child.firstChildElement(); !field.isNull();
             field = field.nextSiblingElement()) {
            names += field.tagName();
        }
        QCOMPARE(names, QStringList({"band", "series", "tx_profile", "zone", "incl_group",
                                     "compat_profile"}));
        CompatSystemUniqueKey key;
        Converter::CompatKeyParser(child, key);
        written += QString::fromStdString(key.ToString());
        // Each key comes with its own profile.
        QCOMPARE(child.lastChildElement().attribute(QStringLiteral("name")), written.last());
    }
    QCOMPARE(written, QStringList({"|Z|b|t|g", "a|2|||", "b||||", QStringLiteral("|\u00e4|||")}));
}

void CoordWorkSpaceSectionConverter0_3Test::settingsElementIsNotInserted()
{
    QDomDocument document = parsed(QStringLiteral("<root/>"));
    const QDomElement element =
        Converter::CreateCompatProfileSettingsElem(document, {{{}, PkCompatProfile()}});
    QVERIFY(element.parentNode().isNull());
    QVERIFY(element.ownerDocument() == document);
    QCOMPARE(document.toString(-1), QStringLiteral("<root/>"));
    // All of it belongs to the document, so it can be placed and written.
    document.documentElement().appendChild(element);
    QVERIFY(document.toString().contains(QStringLiteral("<compat_profile ")));
}

void CoordWorkSpaceSectionConverter0_3Test::emptyKeyFieldsAreWritten()
{
    QDomDocument document;
    const QDomElement element =
        Converter::CreateCompatProfileSettingsElem(document, {{{}, PkCompatProfile()}});
    QCOMPARE(canonical(element),
             canonical(parsed(settings(1, system("", newProfile(NIL_ID, "", NO_SPACINGS))))));
    for (const char* name : {"band", "series", "tx_profile", "zone", "incl_group"}) {
        const QDomElement field =
            element.firstChildElement().firstChildElement(QLatin1String(name));
        QCOMPARE(field.childNodes().size(), 1);
        QVERIFY(field.firstChild().isText());
        QString text;
        QTextStream stream(&text);
        field.save(stream, 4);
        QCOMPARE(text.trimmed(), QStringLiteral("<%1></%1>").arg(name));
    }
}

void CoordWorkSpaceSectionConverter0_3Test::keyFieldIsWritten_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QByteArray("North") << "North";
    QTest::newRow("markup") << QByteArray("<a>&'\"") << "<a>&'\"";
    QTest::newRow("UTF-8") << QByteArray("S\xC3\xBC\x64") << QStringLiteral("S\u00fcd");
    QTest::newRow("four bytes") << QByteArray("\xF0\x9F\x8E\xA4") << QStringLiteral("\U0001F3A4");
    QTest::newRow("cut at the first zero byte") << QByteArray("ab\0cd", 5) << "ab";
    QTest::newRow("zero byte first") << QByteArray("\0cd", 3) << "";
    QTest::newRow("blanks stay") << QByteArray(" a ") << " a ";
    QTest::newRow("separators stay") << QByteArray("a|b") << "a|b";
}

void CoordWorkSpaceSectionConverter0_3Test::keyFieldIsWritten()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const std::string value = bytes.toStdString();
    const std::array<std::pair<const char*, CompatSystemUniqueKey>, 5> fields = {{
        {"zone", {value, "", "", "", ""}},
        {"series", {"", value, "", "", ""}},
        {"band", {"", "", value, "", ""}},
        {"tx_profile", {"", "", "", value, ""}},
        {"incl_group", {"", "", "", "", value}},
    }};
    for (const auto& [name, key] : fields) {
        QDomDocument document;
        const QDomElement profile =
            Converter::CreateCompatProfileSettingsElem(document, {{key, PkCompatProfile()}})
                .firstChildElement();
        for (QDomElement field = profile.firstChildElement(); field.tagName() != "compat_profile";
             field = field.nextSiblingElement()) {
            QCOMPARE(field.text(), field.tagName() == QLatin1String(name) ? text : QString());
        }
    }
}

void CoordWorkSpaceSectionConverter0_3Test::profileIsWrittenWhole()
{
    PkCompatProfile profile;
    profile.name = "S\xC3\xBC\x64";
    profile.id = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0,
                  0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    profile.chCh = 350;
    profile.imd2t3o = -1;
    profile.imd2t5o = 2147483647;
    profile.imd2t7o = 4;
    profile.imd2t9o = 5;
    profile.imd3t3o = 6;
    profile.filterType = EBF_CENTER_LIST;
    profile.filterStart = 470000;
    profile.filterEnd = 694000;
    profile.filterCenter = 582000;
    profile.filterCenterList = {470000, 500000};
    profile.imdSource = false;
    profile.synthesizable = false;
    QDomDocument document;
    const QDomElement element = Converter::CreateCompatProfileSettingsElem(
        document, {{{"Z", "S", "B", "T", "G"}, profile}});
    QCOMPARE(
        canonical(element),
        canonical(parsed(settings(
            1, QStringLiteral(
                   "<profile><band>B</band><series>S</series><tx_profile>T</tx_profile>"
                   "<zone>Z</zone><incl_group>G</incl_group><compat_profile version='0.0.0.1' "
                   "id='12345678-9abc-def0-1122-334455667788' name='S\u00fcd' imd_source='0' "
                   "synthesizable='0'><spacing freq_units='KHz'><ch_ch>350</ch_ch>"
                   "<imd_2t3o>-1</imd_2t3o><imd_2t5o>2147483647</imd_2t5o><imd_2t7o>4</imd_2t7o>"
                   "<imd_2t9o>5</imd_2t9o><imd_3t3o>6</imd_3t3o></spacing><filter type='2'>"
                   "<filter_start>470000</filter_start><filter_end>694000</filter_end>"
                   "<filter_center>582000</filter_center><filter_center_list count='2'>"
                   "<freq>470000</freq><freq>500000</freq></filter_center_list></filter>"
                   "</compat_profile></profile>")))));
}

void CoordWorkSpaceSectionConverter0_3Test::documentIsConverted_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const QString levels = QStringLiteral("<compatibility_levels><x/></compatibility_levels>");
    const QString oneChannel = micChannels(channel("S", ID_1));
    const QString oneConfiguration = configurations(configuration("S"));
    const QString oneProfile = profiles(oldProfile(ID_1, "robust"));
    const QString oneSystem = system("S", newProfile(ID_1, "Robust", ALL_SPACINGS));

    const QString workedKey = QStringLiteral("<series>S1</series><band>B1</band>");
    const QString workedChannels =
        micChannels("<mic><compat_key>" + workedKey +
                    "<tx_profile>T1</tx_profile></compat_key><compat_prof_id>" + ID_1 +
                    "</compat_prof_id></mic>");
    QTest::newRow("a system whose 2t5o is switched off")
        << oldRoot(
               workedChannels +
               configurations("<compat_config><profile>" + workedKey +
                              "<mode>T1</mode></profile><compat_flags><imd_2t3o>1</imd_2t3o>"
                              "<imd_2t5o>0</imd_2t5o><imd_2t7o>1</imd_2t7o><imd_2t9o>1</imd_2t9o>"
                              "<imd_3t3o>1</imd_3t3o></compat_flags></compat_config>") +
               oneProfile + levels)
        << newRoot(
               workedChannels +
               settings(1, "<profile><band>B1</band><series>S1</series><tx_profile>T1"
                           "</tx_profile><zone></zone><incl_group></incl_group>" +
                               newProfile(ID_1, "Robust", {"350", "103", "0", "107", "109", "33"}) +
                               "</profile>"));

    QTest::newRow("an empty root") << oldRoot("") << newRoot(settings(0));
    QTest::newRow("a root without version") << "<coordinated_data_root/>" << newRoot(settings(0));
    QTest::newRow("without channels the settings come last")
        << oldRoot("<a/>text<b/><!-- c -->") << newRoot("<a/>text<b/><!-- c -->" + settings(0));
    QTest::newRow("without channels the settings come last, old containers gone")
        << oldRoot("<a/>" + oneConfiguration + "<b/>" + oneProfile)
        << newRoot("<a/><b/>" + settings(0));
    QTest::newRow("the settings stand directly behind the channels")
        << oldRoot("<a/>" + oneChannel + "<!-- c -->" + levels + "<b/>" + oneConfiguration +
                   oneProfile + "<d/>")
        << newRoot("<a/>" + oneChannel + settings(1, oneSystem) + "<!-- c --><b/><d/>");
    QTest::newRow("the old containers in front of the channels")
        << oldRoot(oneProfile + levels + oneConfiguration + "<a/>" + oneChannel)
        << newRoot("<a/>" + oneChannel + settings(1, oneSystem));
    QTest::newRow("the settings stand behind the first channels")
        << oldRoot(oneChannel + "<a/>" + micChannels(channel("X", ID_2)) + oneConfiguration +
                   oneProfile)
        << newRoot(oneChannel + settings(1, oneSystem) + "<a/>" + micChannels(channel("X", ID_2)));
    QTest::newRow("channels that are no child of the root: no settings anywhere")
        << oldRoot("<a>" + oneChannel + "</a>" + levels + oneConfiguration + oneProfile + "<b/>")
        << newRoot("<a>" + oneChannel + "</a><b/>");
    QTest::newRow("first channels nested, second a child of the root: no settings anywhere")
        << oldRoot("<a>" + oneChannel + "</a>" + oneChannel + oneConfiguration + oneProfile)
        << newRoot("<a>" + oneChannel + "</a>" + oneChannel);

    QTest::newRow("old containers that are no children of the root stay")
        << oldRoot(oneChannel + "<a>" + levels + oneConfiguration + oneProfile + "</a>")
        << newRoot(oneChannel + settings(1, oneSystem) + "<a>" + levels + oneConfiguration +
                   profiles(oldProfile(ID_1, "Robust")) + "</a>");
    QTest::newRow("the second of each container stays")
        << oldRoot(oneChannel + levels + "<compatibility_levels/>" + oneConfiguration +
                   "<compat_configs/>" + oneProfile + "<compat_profiles/>")
        << newRoot(oneChannel + settings(1, oneSystem) +
                   "<compatibility_levels/><compat_configs/><compat_profiles/>");
    QTest::newRow("the first container nested, the second a child of the root: both stay")
        << oldRoot("<a><compatibility_levels/></a>" + levels)
        << newRoot("<a><compatibility_levels/></a>" + levels + settings(0));
    QTest::newRow("configurations and profiles count outside of their containers")
        << oldRoot(oneChannel + configuration("S") + oldProfile(ID_1, "robust"))
        << newRoot(oneChannel + settings(1, oneSystem) + configuration("S") +
                   oldProfile(ID_1, "Robust"));
    QTest::newRow("profiles outside of their container stay renamed")
        << oldRoot(oldProfile(ID_1, "median") + "<a>" + oldProfile(ID_2, "Median") +
                   "</a><compat_profile id='" + ID_1 + "'/>")
        << newRoot(oldProfile(ID_1, "Standard") + "<a>" + oldProfile(ID_2, "") +
                   "</a><compat_profile id='" + ID_1 + "' name=''/>" + settings(0));
    QTest::newRow("the rest of a profile outside of its container stays")
        << oldRoot("<compat_profile version='9' name='quantity' x='y' id='" + ID_1 +
                   "'><z/>text</compat_profile>")
        << newRoot("<compat_profile version='9' name='More Frequencies' x='y' id='" + ID_1 +
                   "'><z/>text</compat_profile>" + settings(0));

    QTest::newRow("more ids than profiles: empty settings, the old containers are gone")
        << oldRoot(micChannels(channel("S", ID_1) + channel("T", ID_2)) + levels +
                   configurations(configuration("S") + configuration("T")) + oneProfile)
        << newRoot(micChannels(channel("S", ID_1) + channel("T", ID_2)) + settings(0));
    QTest::newRow("more profiles than ids: empty settings")
        << oldRoot(oneChannel + oneConfiguration +
                   profiles(oldProfile(ID_1, "robust") + oldProfile(ID_2, "median")))
        << newRoot(oneChannel + settings(0));
    QTest::newRow("more configurations than systems: empty settings")
        << oldRoot(oneChannel + configurations(configuration("S") + configuration("T")) +
                   oneProfile)
        << newRoot(oneChannel + settings(0));
    QTest::newRow("no configuration: empty settings")
        << oldRoot(oneChannel + oneProfile) << newRoot(oneChannel + settings(0));
    QTest::newRow("channels without id count as one id")
        << oldRoot(micChannels("<a/>" + channel("S", ID_1)) + configurations(configuration("S")) +
                   oneProfile)
        << newRoot(micChannels("<a/>" + channel("S", ID_1)) + settings(0));

    QTest::newRow("systems come out in the order of keys")
        << oldRoot(micChannels(channel("T", ID_1) + channel("S", ID_2)) +
                   configurations(configuration("T", "<imd_3t3o>no</imd_3t3o>") +
                                  configuration("S", "<ch_ch>0</ch_ch><imd_2t3o/>")) +
                   profiles(oldProfile(ID_2, "median") + oldProfile(ID_1, "quantity")))
        << newRoot(
               micChannels(channel("T", ID_1) + channel("S", ID_2)) +
               settings(2, system("S", newProfile(ID_2, "Standard",
                                                  {"350", "0", "105", "107", "109", "33"})) +
                               system("T", newProfile(ID_1, "More Frequencies",
                                                      {"350", "103", "105", "107", "109", "0"}))));
    QTest::newRow("a system without configuration is left out for one without profile")
        << oldRoot(micChannels(channel("S", ID_1) + channel("T", ID_2)) +
                   configurations(configuration("S") + configuration("U")) +
                   profiles(oldProfile(ID_1, "robust") + oldProfile(ID_2, "median")))
        << newRoot(micChannels(channel("S", ID_1) + channel("T", ID_2)) +
                   settings(2, oneSystem + system("U", newProfile(NIL_ID, "", NO_SPACINGS))));
    QTest::newRow("ids are compared as text")
        << oldRoot(oneChannel + oneConfiguration + profiles(oldProfile("{" + ID_1 + "}", "robust")))
        << newRoot(oneChannel + settings(1, system("S", newProfile(NIL_ID, "", NO_SPACINGS))));
    QTest::newRow("channels of equal id: the last one's system counts")
        << oldRoot(micChannels(channel("T", ID_1) + channel("S", ID_1)) + oneConfiguration +
                   oneProfile)
        << newRoot(micChannels(channel("T", ID_1) + channel("S", ID_1)) + settings(1, oneSystem));
    QTest::newRow("ids of equal key: the greatest one's profile counts")
        << oldRoot(micChannels(channel("S", ID_2) + channel("S", ID_1)) + oneConfiguration +
                   profiles(oldProfile(ID_2, "median") + oldProfile(ID_1, "robust")))
        << newRoot(micChannels(channel("S", ID_2) + channel("S", ID_1)) +
                   settings(1, system("S", newProfile(ID_2, "Standard", ALL_SPACINGS))));
    QTest::newRow("an id in capitals and braces is written in the one form")
        << oldRoot(micChannels(channel("S", "{ABCDEF00-1111-4111-8111-111111111111}")) +
                   oneConfiguration +
                   profiles(oldProfile("{ABCDEF00-1111-4111-8111-111111111111}", "robust")))
        << newRoot(micChannels(channel("S", "{ABCDEF00-1111-4111-8111-111111111111}")) +
                   settings(1, system("S", newProfile("abcdef00-1111-4111-8111-111111111111",
                                                      "Robust", ALL_SPACINGS))));

    QTest::newRow("attributes of the root and all else stay")
        << "<?xml version='1.0'?><!-- a --><show version='7'><mic_channels/>"
           "<coordinated_data_root name='n' version='0.1' id='i'><zones version='1.1'>"
           "<zone>Z</zone></zones><![CDATA[<x>]]><?target data?></coordinated_data_root>"
           "<compat_configs/></show>"
        << "<?xml version='1.0'?><!-- a --><show version='7'><mic_channels/>"
           "<coordinated_data_root name='n' version='0.3' id='i'><zones version='1.1'>"
           "<zone>Z</zone></zones><![CDATA[<x>]]><?target data?>" +
               settings(0) + "</coordinated_data_root><compat_configs/></show>";
    // The profile of the settings that are there counts, and its name is no old one.
    QTest::newRow("a converted document again")
        << newRoot(oneChannel + settings(1, oneSystem))
        << newRoot(oneChannel + settings(0) +
                   settings(1, system("S", newProfile(ID_1, "", ALL_SPACINGS))));
}

void CoordWorkSpaceSectionConverter0_3Test::documentIsConverted()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QDomDocument document = parsed(before);
    QVERIFY(Converter::Convert(document));
    QCOMPARE(canonical(document), canonical(parsed(after)));
}

void CoordWorkSpaceSectionConverter0_3Test::documentIsRefusedUnchanged_data()
{
    QTest::addColumn<QString>("text");
    const QString root =
        oldRoot(micChannels(channel("S", ID_1)) + configurations(configuration("S")) +
                profiles(oldProfile(ID_1, "robust")));
    QTest::newRow("no root") << "<show><mic_channels/><compat_profiles/></show>";
    QTest::newRow("the root's name in capitals") << "<COORDINATED_DATA_ROOT/>";
    QTest::newRow("two roots") << "<show>" + root + root + "</show>";
    QTest::newRow("a root in the root") << oldRoot(root);
    QTest::newRow("two roots, even when an id is bad")
        << "<show>" + oldRoot("<compat_profile/>") + root + "</show>";
}

void CoordWorkSpaceSectionConverter0_3Test::documentIsRefusedUnchanged()
{
    QFETCH(QString, text);
    QDomDocument document = parsed(text);
    QVERIFY(!Converter::Convert(document));
    QCOMPARE(canonical(document), canonical(parsed(text)));
    QDomDocument nullDocument;
    QVERIFY(!Converter::Convert(nullDocument));
    QVERIFY(nullDocument.isNull());
}

void CoordWorkSpaceSectionConverter0_3Test::documentWithABadIdIsUnchanged_data()
{
    QTest::addColumn<QString>("badProfile");
    QTest::newRow("id missing") << "<compat_profile name='robust'/>";
    QTest::newRow("id empty") << oldProfile("", "robust");
    QTest::newRow("id no UUID") << oldProfile("7", "robust");
}

void CoordWorkSpaceSectionConverter0_3Test::documentWithABadIdIsUnchanged()
{
    QFETCH(QString, badProfile);
    // The bad profile is the last, so that the good one was read before.
    const QString text =
        oldRoot(micChannels(channel("S", ID_1)) + configurations(configuration("S")) +
                profiles(oldProfile(ID_1, "robust")) + "<a>" + badProfile + "</a>");
    QDomDocument document = parsed(text);
    std::string message;
    try {
        Converter::Convert(document);
    } catch (const std::runtime_error& error) {
        message = error.what();
    }
    QCOMPARE(message, std::string("invalid uuid string"));
    QCOMPARE(canonical(document), canonical(parsed(text)));
}

// Of attributes whose names have one hash, the one that was set last is written first.
void CoordWorkSpaceSectionConverter0_3Test::renamedProfileHasItsNameSetAnew()
{
    const auto written = [](const QDomElement& element) {
        QString text;
        QTextStream stream(&text);
        element.save(stream, 0);
        return text;
    };
    int changedOrders = 0;
    for (int i = 0; i < 500; ++i) {
        const QString text =
            oldRoot(QStringLiteral("<elsewhere><compat_profile name='robust' a%1='' id='%2'/>"
                                   "</elsewhere>")
                        .arg(QString::number(i), ID_1));
        QDomDocument converted = parsed(text);
        QVERIFY(Converter::Convert(converted));
        QDomDocument document = parsed(text);
        QDomElement profile =
            document.elementsByTagName(QStringLiteral("compat_profile")).at(0).toElement();
        profile.setAttribute(QStringLiteral("name"), QStringLiteral("Robust"));
        const QString inPlace = written(profile);
        profile.removeAttribute(QStringLiteral("name"));
        profile.setAttribute(QStringLiteral("name"), QStringLiteral("Robust"));
        const QString anew = written(profile);
        changedOrders += anew == inPlace ? 0 : 1;
        QCOMPARE(
            written(
                converted.elementsByTagName(QStringLiteral("compat_profile")).at(0).toElement()),
            anew);
    }
    QVERIFY(changedOrders > 0);
}

void CoordWorkSpaceSectionConverter0_3Test::conversionsDoNotInfluenceEachOther()
{
    const QString text =
        oldRoot(micChannels(channel("S", ID_1)) + configurations(configuration("S")) +
                profiles(oldProfile(ID_1, "unknown")));
    QString first;
    for (int i = 0; i < 3; ++i) {
        QDomDocument document = parsed(text);
        QVERIFY(Converter::Convert(document));
        if (i == 0) {
            first = canonical(document);
        }
        QCOMPARE(canonical(document), first);
    }
    QVERIFY(first.contains(QStringLiteral(" name=''")));
}

QTEST_GUILESS_MAIN(CoordWorkSpaceSectionConverter0_3Test)
#include "CoordWorkSpaceSectionConverter0_3Test.moc"

#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/MessageRecorder.h"
#include "tests/support/VirtualSlot.h"

#include <QBuffer>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace {

const QString ID_TEXT = QStringLiteral("01234567-89ab-cdef-0123-456789abcdef");

PkCompatProfile filledProfile()
{
    PkCompatProfile profile;
    profile.name = "B\xC3\xBChne <1>";
    profile.id = boost::uuids::string_generator()(ID_TEXT.toStdString());
    profile.chCh = 350;
    profile.imd2t3o = 100;
    profile.imd2t5o = -50;
    profile.imd2t7o = 25;
    profile.imd2t9o = 10;
    profile.imd3t3o = 51;
    profile.filterType = EBF_CENTER_LIST;
    profile.filterStart = 470000;
    profile.filterEnd = 500000;
    profile.filterCenter = 485000;
    profile.filterCenterList = {470000, 500000};
    profile.synthesizable = false;
    return profile;
}

bool recordsAreEqual(PkCompatProfile const& left, PkCompatProfile const& right)
{
    return left.name == right.name && left.id == right.id && left.chCh == right.chCh &&
           left.imd2t3o == right.imd2t3o && left.imd2t5o == right.imd2t5o &&
           left.imd2t7o == right.imd2t7o && left.imd2t9o == right.imd2t9o &&
           left.imd3t3o == right.imd3t3o && left.filterType == right.filterType &&
           left.filterStart == right.filterStart && left.filterEnd == right.filterEnd &&
           left.filterCenter == right.filterCenter &&
           left.filterCenterList == right.filterCenterList && left.imdSource == right.imdSource &&
           left.synthesizable == right.synthesizable;
}

// The element in C14N-like form: attributes by name, no white space between elements.
QString described(QDomNode const& node)
{
    if (node.isText()) {
        return node.nodeValue();
    }
    QMap<QString, QString> attributes;
    for (int i = 0; i < node.attributes().size(); ++i) {
        const QDomAttr attribute = node.attributes().item(i).toAttr();
        attributes.insert(attribute.name(), attribute.value());
    }
    QString text = "<" + node.nodeName();
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        text += " " + attribute.key() + "='" + attribute.value() + "'";
    }
    text += ">";
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        text += described(child);
    }
    return text + "</" + node.nodeName() + ">";
}

QString describedFilledElement()
{
    return QString::fromUtf8("<compat_profile id='01234567-89ab-cdef-0123-456789abcdef'"
                             " imd_source='1' name='B\xC3\xBChne <1>' synthesizable='0'"
                             " version='0.0.0.1'>"
                             "<spacing freq_units='KHz'><ch_ch>350</ch_ch>"
                             "<imd_2t3o>100</imd_2t3o><imd_2t5o>-50</imd_2t5o>"
                             "<imd_2t7o>25</imd_2t7o><imd_2t9o>10</imd_2t9o>"
                             "<imd_3t3o>51</imd_3t3o></spacing>"
                             "<filter type='2'><filter_start>470000</filter_start>"
                             "<filter_end>500000</filter_end><filter_center>485000</filter_center>"
                             "<filter_center_list count='2'><freq>470000</freq><freq>500000</freq>"
                             "</filter_center_list></filter></compat_profile>");
}

QDomDocument parsed(QString const& text)
{
    QDomDocument document;
    if (!document.setContent(text)) {
        qFatal("The test's own XML is not well-formed");
    }
    return document;
}

// A profile element with the given attributes beside the id and the given content.
QDomElement profileElement(QString const& attributes, QString const& content)
{
    return parsed("<compat_profile id='" + ID_TEXT + "' " + attributes + ">" + content +
                  "</compat_profile>")
        .documentElement();
}

QByteArray contentOf(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

// Leaves its mark on the element it makes, and knows whether it was given a node to read.
class MarkedProfile : public QtPkCompatProfile
{
public:
    using QtPkCompatProfile::Export;
    using QtPkCompatProfile::Import;
    QDomElement Export() override
    {
        QDomElement element = QtPkCompatProfile::Export();
        element.setAttribute(QStringLiteral("mark"), QStringLiteral("here"));
        return element;
    }
    bool Import(QDomNode const& node) override
    {
        readNode = node.nodeName();
        return QtPkCompatProfile::Import(node);
    }

    QString readNode;
};

bool writeContent(QString const& path, QByteArray const& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Takes a number of bytes, then no more.
class FullDevice : public QIODevice
{
public:
    explicit FullDevice(qint64 room) : m_room(room) { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(char const* /*data*/, qint64 size) override
    {
        const qint64 taken = qMin(size, m_room);
        m_room -= taken;
        return taken == 0 && size > 0 ? -1 : taken;
    }

private:
    qint64 m_room;
};

} // namespace

class QtPkCompatProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void newProfileHasTheDefaults();
    void profileTakesARecord();
    void copiesDoNotShareTheDocument();
    void assignmentLeavesTheTargetItsDocument();
    void operationsStandInTheirSlots();

    void elementHasItsLayout();
    void defaultProfileIsWritten();
    void emptyCentreListIsWrittenWithItsCount();
    void centreListIsWrittenForItsFilterTypeOnly_data();
    void centreListIsWrittenForItsFilterTypeOnly();
    void elementIsAppendedToTheParent();
    void elementIsAppendedToADocument();
    void nullParentIsLeftAlone();
    void elementOfADocumentIsNotAttached();

    void exportedProfileReadsBack();
    void nodeOfAnotherNameIsRefused_data();
    void nodeOfAnotherNameIsRefused();
    void idIsReadInEveryUuidForm_data();
    void idIsReadInEveryUuidForm();
    void idThatIsNoUuidThrows_data();
    void idThatIsNoUuidThrows();
    void instructionOfThatNameHasNoId();
    void nameIsAlwaysOverwritten();
    void flagsAreReadWhenPresent_data();
    void flagsAreReadWhenPresent();
    void spacingsAreRead();
    void textThatIsNoIntegerIsZero_data();
    void textThatIsNoIntegerIsZero();
    void missingPartsLeaveTheRecordAlone();
    void onlyTheFirstSpacingAndFilterCount();
    void filterIsRead();
    void filterWithoutTypeIsOfTypeZero();
    void centreListTakesEveryChildWhateverItsName();
    void centreListGrowsByWhatIsRead();
    void centreListOfAnotherFilterTypeIsIgnored();

    void deviceGetsTheDocument_data();
    void deviceGetsTheDocument();
    void secondStoreWritesTwoElements();
    void storingAsksForTheElementVirtually();
    void deviceThatIsNotWritableIsRefused();
    void deviceThatIsFullIsReported_data();
    void deviceThatIsFullIsReported();

    void fileIsWrittenAndReadBack();
    void nameComesBackFromAFile_data();
    void nameComesBackFromAFile();
    void fileIsReadThroughItsNodeVirtually();
    void fileIsReadAsFarAsItIsWellFormed_data();
    void fileIsReadAsFarAsItIsWellFormed();
    void constProfileWritesTheLightForm();
    void fileThatCannotBeWrittenIsReported_data();
    void fileThatCannotBeWrittenIsReported();
    void diskThatFillsUpIsReported();
    void fileThatDoesNotStartWithTheElementIsRefused_data();
    void fileThatDoesNotStartWithTheElementIsRefused();
    void pathWithoutANameIsRefused();
    void fileWithABadIdThrows();
};

void QtPkCompatProfileTest::newProfileHasTheDefaults()
{
    QVERIFY(recordsAreEqual(QtPkCompatProfile(), PkCompatProfile()));
    QVERIFY(QtPkCompatProfile().id.is_nil());
}

void QtPkCompatProfileTest::profileTakesARecord()
{
    QVERIFY(recordsAreEqual(QtPkCompatProfile(filledProfile()), filledProfile()));
}

void QtPkCompatProfileTest::copiesDoNotShareTheDocument()
{
    QtPkCompatProfile original(filledProfile());
    QBuffer first;
    first.open(QIODevice::WriteOnly);
    QVERIFY(original.StoreInXml(first, true));

    QtPkCompatProfile copy(original);
    QVERIFY(recordsAreEqual(copy, original));
    QBuffer second;
    second.open(QIODevice::WriteOnly);
    QVERIFY(copy.StoreInXml(second, true));
    QCOMPARE(second.data().count("<compat_profile "), 1);
}

void QtPkCompatProfileTest::assignmentLeavesTheTargetItsDocument()
{
    QtPkCompatProfile target;
    QBuffer first;
    first.open(QIODevice::WriteOnly);
    QVERIFY(target.StoreInXml(first, true));

    const QtPkCompatProfile source(filledProfile());
    target = source;
    QVERIFY(recordsAreEqual(target, filledProfile()));
    QBuffer second;
    second.open(QIODevice::WriteOnly);
    QVERIFY(target.StoreInXml(second, true));
    QCOMPARE(second.data().count("<compat_profile "), 2);
}

void QtPkCompatProfileTest::operationsStandInTheirSlots()
{
    using Profile = QtPkCompatProfile;
    using ToFile = bool (Profile::*)(std::string const&, bool);
    using ToFileLight = bool (PkCompatProfile::*)(std::string const&, bool) const;
    using ToElement = QDomElement (Profile::*)();
    using ToDocument = QDomElement (Profile::*)(QDomDocument&);
    using ToParent = void (Profile::*)(QDomNode&);
    using FromFile = bool (Profile::*)(std::string const&);
    using FromNode = bool (Profile::*)(QDomNode const&);
    QCOMPARE(virtualSlot(ToFileLight(&Profile::Export)), 2);
    QCOMPARE(virtualSlot(FromFile(&Profile::Import)), 4);
    QCOMPARE(virtualSlot(FromNode(&Profile::Import)), 7);
    QCOMPARE(virtualSlot(ToElement(&Profile::Export)), 8);
    QCOMPARE(virtualSlot(ToFile(&Profile::Export)), 9);
    QCOMPARE(virtualSlot(ToDocument(&Profile::Export)), -1);
    QCOMPARE(virtualSlot(ToParent(&Profile::Export)), -1);
    QCOMPARE(virtualSlot(&Profile::StoreInXml), -1);
}

void QtPkCompatProfileTest::elementHasItsLayout()
{
    QDomDocument document;
    QCOMPARE(described(QtPkCompatProfile(filledProfile()).Export(document)),
             describedFilledElement());
    QCOMPARE(described(QtPkCompatProfile(filledProfile()).Export()), describedFilledElement());
}

void QtPkCompatProfileTest::defaultProfileIsWritten()
{
    QCOMPARE(described(QtPkCompatProfile().Export()),
             QStringLiteral("<compat_profile id='00000000-0000-0000-0000-000000000000'"
                            " imd_source='1' name='' synthesizable='1' version='0.0.0.1'>"
                            "<spacing freq_units='KHz'><ch_ch>0</ch_ch><imd_2t3o>0</imd_2t3o>"
                            "<imd_2t5o>0</imd_2t5o><imd_2t7o>0</imd_2t7o><imd_2t9o>0</imd_2t9o>"
                            "<imd_3t3o>0</imd_3t3o></spacing><filter type='-1'>"
                            "<filter_start>0</filter_start><filter_end>0</filter_end>"
                            "<filter_center>0</filter_center></filter></compat_profile>"));
}

void QtPkCompatProfileTest::emptyCentreListIsWrittenWithItsCount()
{
    QtPkCompatProfile profile;
    profile.filterType = EBF_CENTER_LIST;
    const QDomElement filter = profile.Export().firstChildElement(QStringLiteral("filter"));
    QCOMPARE(described(filter.lastChild()),
             QStringLiteral("<filter_center_list count='0'></filter_center_list>"));
}

void QtPkCompatProfileTest::centreListIsWrittenForItsFilterTypeOnly_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("written");
    QTest::newRow("not set") << -1 << false;
    QTest::newRow("zero") << 0 << false;
    QTest::newRow("one") << 1 << false;
    QTest::newRow("centre list") << 2 << true;
    QTest::newRow("three") << 3 << false;
    QTest::newRow("far off") << 1000000 << false;
}

void QtPkCompatProfileTest::centreListIsWrittenForItsFilterTypeOnly()
{
    QFETCH(int, type);
    QtPkCompatProfile profile(filledProfile());
    profile.filterType = static_cast<EBFType>(type);
    const QDomElement element = profile.Export();
    const QDomElement filter = element.firstChildElement(QStringLiteral("filter"));
    QCOMPARE(filter.attribute(QStringLiteral("type")), QString::number(type));
    QTEST(!filter.firstChildElement(QStringLiteral("filter_center_list")).isNull(), "written");

    QtPkCompatProfile back;
    QVERIFY(back.Import(element));
    QCOMPARE(static_cast<int>(back.filterType), type);
    QTEST(!back.filterCenterList.empty(), "written");
}

void QtPkCompatProfileTest::elementIsAppendedToTheParent()
{
    QDomDocument document = parsed(QStringLiteral("<parent><first/></parent>"));
    QDomElement parent = document.documentElement();
    QtPkCompatProfile profile(filledProfile());
    profile.Export(parent);
    QCOMPARE(parent.childNodes().size(), 2);
    QCOMPARE(described(parent.lastChild()), describedFilledElement());
    QCOMPARE(parent.lastChild().ownerDocument(), document);
}

void QtPkCompatProfileTest::elementIsAppendedToADocument()
{
    QDomDocument document;
    document.appendChild(document.createComment(QStringLiteral("first")));
    QDomNode parent = document;
    QtPkCompatProfile(filledProfile()).Export(parent);
    QCOMPARE(document.childNodes().size(), 2);
    QCOMPARE(described(document.lastChild()), describedFilledElement());
}

void QtPkCompatProfileTest::nullParentIsLeftAlone()
{
    QDomNode parent;
    const MessageRecorder recorder;
    QtPkCompatProfile(filledProfile()).Export(parent);
    QVERIFY(parent.isNull());
    QVERIFY(recorder.messages().isEmpty()); // Qt's nodes would warn
}

void QtPkCompatProfileTest::elementOfADocumentIsNotAttached()
{
    QDomDocument document = parsed(QStringLiteral("<root/>"));
    const QDomElement element = QtPkCompatProfile(filledProfile()).Export(document);
    QVERIFY(element.parentNode().isNull());
    QCOMPARE(element.ownerDocument(), document);
    QCOMPARE(document.documentElement().childNodes().size(), 0);
}

void QtPkCompatProfileTest::exportedProfileReadsBack()
{
    QtPkCompatProfile profile(filledProfile());
    QtPkCompatProfile back;
    QVERIFY(back.Import(profile.Export()));
    QVERIFY(recordsAreEqual(back, profile));
}

void QtPkCompatProfileTest::nodeOfAnotherNameIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("capital letter") << "Compat_profile";
    QTest::newRow("capital letters") << "COMPAT_PROFILE";
    QTest::newRow("the list's name") << "compat_profiles";
    QTest::newRow("with a prefix") << "x:compat_profile";
}

void QtPkCompatProfileTest::nodeOfAnotherNameIsRefused()
{
    QFETCH(QString, name);
    QDomElement element = profileElement(QStringLiteral("name='other'"), QString());
    element.setTagName(name);
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(!profile.Import(element));
    QVERIFY(!profile.Import(QDomNode()));
    QVERIFY(recordsAreEqual(profile, filledProfile()));
}

void QtPkCompatProfileTest::idIsReadInEveryUuidForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("lower case") << "01234567-89ab-cdef-0123-456789abcdef";
    QTest::newRow("upper case") << "01234567-89AB-CDEF-0123-456789ABCDEF";
    QTest::newRow("mixed case") << "01234567-89aB-CdEf-0123-456789AbCdEf";
    QTest::newRow("without dashes") << "0123456789abcdef0123456789abcdef";
    QTest::newRow("in braces") << "{01234567-89ab-cdef-0123-456789abcdef}";
    QTest::newRow("in braces without dashes") << "{0123456789abcdef0123456789abcdef}";
}

void QtPkCompatProfileTest::idIsReadInEveryUuidForm()
{
    QFETCH(QString, text);
    QDomElement element = profileElement(QString(), QString());
    element.setAttribute(QStringLiteral("id"), text);
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(element));
    QCOMPARE(QString::fromStdString(boost::uuids::to_string(profile.id)), ID_TEXT);
}

void QtPkCompatProfileTest::idThatIsNoUuidThrows_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("a number") << "7";
    QTest::newRow("a digit too few") << "01234567-89ab-cdef-0123-456789abcde";
    QTest::newRow("a digit too many") << "01234567-89ab-cdef-0123-456789abcdef0";
    QTest::newRow("a letter that is no digit") << "g1234567-89ab-cdef-0123-456789abcdef";
    QTest::newRow("one dash left out") << "0123456789ab-cdef-0123-456789abcdef";
    QTest::newRow("dash at another place") << "0123456-789ab-cdef-0123-456789abcdef";
    QTest::newRow("brace that does not close") << "{01234567-89ab-cdef-0123-456789abcdef";
    QTest::newRow("blank in front") << " 01234567-89ab-cdef-0123-456789abcdef";
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("\xE2\x82\xAC");
}

void QtPkCompatProfileTest::idThatIsNoUuidThrows()
{
    QFETCH(QString, text);
    QDomElement element =
        profileElement(QStringLiteral("name='other' imd_source='0'"),
                       QStringLiteral("<spacing><ch_ch>1</ch_ch></spacing><filter type='1'/>"));
    element.setAttribute(QStringLiteral("id"), text);
    QtPkCompatProfile profile(filledProfile());
    try {
        profile.Import(element);
        QFAIL("nothing was thrown");
    } catch (std::runtime_error const& error) {
        QCOMPARE(error.what(), "invalid uuid string");
    }
    QVERIFY(recordsAreEqual(profile, filledProfile()));

    element.removeAttribute(QStringLiteral("id"));
    QVERIFY_EXCEPTION_THROWN(profile.Import(element), std::runtime_error);
    QVERIFY(recordsAreEqual(profile, filledProfile()));
}

void QtPkCompatProfileTest::instructionOfThatNameHasNoId()
{
    const QDomDocument document = parsed(QStringLiteral("<?compat_profile x?><root/>"));
    QtPkCompatProfile profile(filledProfile());
    QVERIFY_EXCEPTION_THROWN(profile.Import(document.firstChild()), std::runtime_error);
    QVERIFY(recordsAreEqual(profile, filledProfile()));
}

void QtPkCompatProfileTest::nameIsAlwaysOverwritten()
{
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(QString::fromUtf8("name='Gro\xC3\x9F'"), QString())));
    QCOMPARE(profile.name, std::string("Gro\xC3\x9F"));
    QVERIFY(profile.Import(profileElement(QString(), QString())));
    QCOMPARE(profile.name, std::string());
}

void QtPkCompatProfileTest::flagsAreReadWhenPresent_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<bool>("imdSource");
    QTest::addColumn<bool>("synthesizable");
    QTest::newRow("absent flags stay") << "" << true << false;
    QTest::newRow("zero and one") << "imd_source='0' synthesizable='1'" << false << true;
    QTest::newRow("one and zero") << "imd_source='1' synthesizable='0'" << true << false;
    QTest::newRow("any other number is true")
        << "imd_source='-2' synthesizable='7'" << true << true;
    QTest::newRow("words are false") << "imd_source='true' synthesizable='yes'" << false << false;
    QTest::newRow("empty is false") << "imd_source='' synthesizable=''" << false << false;
    QTest::newRow("hexadecimal is no number")
        << "imd_source='0x1' synthesizable='1'" << false << true;
}

void QtPkCompatProfileTest::flagsAreReadWhenPresent()
{
    QFETCH(QString, attributes);
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(attributes, QString())));
    QTEST(profile.imdSource, "imdSource");
    QTEST(profile.synthesizable, "synthesizable");
}

void QtPkCompatProfileTest::spacingsAreRead()
{
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(
        QString(), QStringLiteral("<spacing freq_units='MHz'><imd_3t3o>6</imd_3t3o>"
                                  "<imd_2t9o>5</imd_2t9o><other>99</other><imd_2t7o>4</imd_2t7o>"
                                  "<imd_2t5o>-3</imd_2t5o><Imd_2t3o>98</Imd_2t3o>"
                                  "<imd_2t3o>97</imd_2t3o><imd_2t3o>2</imd_2t3o>"
                                  "<ch_ch>1</ch_ch></spacing>"))));
    QCOMPARE(profile.chCh, 1);
    QCOMPARE(profile.imd2t3o, 2);
    QCOMPARE(profile.imd2t5o, -3);
    QCOMPARE(profile.imd2t7o, 4);
    QCOMPARE(profile.imd2t9o, 5);
    QCOMPARE(profile.imd3t3o, 6);
}

void QtPkCompatProfileTest::textThatIsNoIntegerIsZero_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a word") << "wide";
    QTest::newRow("nothing") << "";
    QTest::newRow("a fraction") << "350.0";
    QTest::newRow("a unit behind") << "350 kHz";
    QTest::newRow("beyond 32 bits") << "2147483648";
}

void QtPkCompatProfileTest::textThatIsNoIntegerIsZero()
{
    QFETCH(QString, text);
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(
        QString(), "<spacing><ch_ch>" + text + "</ch_ch></spacing><filter type='" + text +
                       "'><filter_start>" + text + "</filter_start></filter>")));
    QCOMPARE(profile.chCh, 0);
    QCOMPARE(static_cast<int>(profile.filterType), 0);
    QCOMPARE(profile.filterStart, 0);
}

void QtPkCompatProfileTest::missingPartsLeaveTheRecordAlone()
{
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(QStringLiteral("name='other'"), QString())));
    PkCompatProfile expected = filledProfile();
    expected.name = "other";
    QVERIFY(recordsAreEqual(profile, expected));
}

void QtPkCompatProfileTest::onlyTheFirstSpacingAndFilterCount()
{
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(profileElement(
        QString(), QStringLiteral("<deep><spacing><ch_ch>9</ch_ch></spacing></deep>"
                                  "<spacing><ch_ch>1</ch_ch></spacing>"
                                  "<spacing><ch_ch>2</ch_ch><imd_2t3o>2</imd_2t3o></spacing>"
                                  "<filter type='3'/><filter type='4'>"
                                  "<filter_end>4</filter_end></filter>"))));
    QCOMPARE(profile.chCh, 1);
    QCOMPARE(profile.imd2t3o, 0);
    QCOMPARE(static_cast<int>(profile.filterType), 3);
    QCOMPARE(profile.filterEnd, 0);
}

void QtPkCompatProfileTest::filterIsRead()
{
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(profileElement(
        QString(), QStringLiteral("<filter type='-7'><filter_center>3</filter_center>"
                                  "<filter_end>9</filter_end><filter_end>2</filter_end>"
                                  "<filter_start>1</filter_start><else>8</else></filter>"))));
    QCOMPARE(static_cast<int>(profile.filterType), -7);
    QCOMPARE(profile.filterStart, 1);
    QCOMPARE(profile.filterEnd, 2);
    QCOMPARE(profile.filterCenter, 3);
}

void QtPkCompatProfileTest::filterWithoutTypeIsOfTypeZero()
{
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Import(profileElement(QString(), QStringLiteral("<filter/>"))));
    QCOMPARE(static_cast<int>(profile.filterType), 0);
    QCOMPARE(profile.filterStart, 470000);
}

void QtPkCompatProfileTest::centreListTakesEveryChildWhateverItsName()
{
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(profileElement(
        QString(), QStringLiteral("<filter type='2'><filter_center_list count='1'>"
                                  "<freq>1</freq><center>2</center><a>three</a><freq>4</freq>"
                                  "</filter_center_list></filter>"))));
    QCOMPARE(profile.filterCenterList, (std::vector<int>{1, 2, 0, 4}));
}

void QtPkCompatProfileTest::centreListGrowsByWhatIsRead()
{
    QtPkCompatProfile profile(filledProfile());
    const QDomElement element = profileElement(
        QString(), QStringLiteral("<filter type='2'><filter_center_list><freq>1</freq>"
                                  "</filter_center_list><filter_center_list><freq>2</freq>"
                                  "</filter_center_list></filter>"));
    QVERIFY(profile.Import(element));
    QCOMPARE(profile.filterCenterList, (std::vector<int>{470000, 500000, 1, 2}));
}

void QtPkCompatProfileTest::centreListOfAnotherFilterTypeIsIgnored()
{
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(profileElement(
        QString(), QStringLiteral("<filter type='1'><filter_center_list><freq>1</freq>"
                                  "</filter_center_list></filter>"))));
    QVERIFY(profile.filterCenterList.empty());
}

void QtPkCompatProfileTest::deviceGetsTheDocument_data()
{
    QTest::addColumn<bool>("compact");
    QTest::addColumn<QByteArray>("secondLine");
    QTest::newRow("compact indents by one") << true << QByteArray(" <spacing freq_units=\"KHz\">");
    QTest::newRow("plain indents by four")
        << false << QByteArray("    <spacing freq_units=\"KHz\">");
}

void QtPkCompatProfileTest::deviceGetsTheDocument()
{
    QFETCH(bool, compact);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.StoreInXml(buffer, compact));
    QVERIFY(buffer.isOpen());
    QVERIFY(buffer.data().startsWith("<compat_profile "));
    QVERIFY(buffer.data().contains("name=\"B\xC3\xBChne &lt;1>\""));
    QTEST(buffer.data().split('\n').at(1), "secondLine");
    QCOMPARE(described(parsed(QString::fromUtf8(buffer.data())).documentElement()),
             describedFilledElement());
}

void QtPkCompatProfileTest::secondStoreWritesTwoElements()
{
    QtPkCompatProfile profile;
    QBuffer first;
    first.open(QIODevice::WriteOnly);
    QVERIFY(profile.StoreInXml(first, false));
    profile.chCh = 350;
    QBuffer second;
    second.open(QIODevice::WriteOnly);
    QVERIFY(profile.StoreInXml(second, false));
    QCOMPARE(first.data().count("<compat_profile "), 1);
    QCOMPARE(second.data().count("<compat_profile "), 2);
    QVERIFY(second.data().startsWith(first.data()));
    QCOMPARE(second.data().count("<ch_ch>350</ch_ch>"), 1);
}

void QtPkCompatProfileTest::storingAsksForTheElementVirtually()
{
    MarkedProfile profile;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(profile.StoreInXml(buffer, true));
    QVERIFY(buffer.data().contains(" mark=\"here\""));
}

void QtPkCompatProfileTest::deviceThatIsNotWritableIsRefused()
{
    QtPkCompatProfile profile;
    QBuffer buffer;
    QTest::ignoreMessage(QtDebugMsg, "Unopened output device can not be used");
    QVERIFY(!profile.StoreInXml(buffer, false));

    buffer.open(QIODevice::ReadOnly);
    QTest::ignoreMessage(QtDebugMsg, "The output device is not opened for writing");
    QVERIFY(!profile.StoreInXml(buffer, false));
    buffer.close();
    QVERIFY(buffer.data().isEmpty());

    // The refused calls have not made the document longer.
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(profile.StoreInXml(buffer, false));
    QCOMPARE(buffer.data().count("<compat_profile "), 1);
}

void QtPkCompatProfileTest::deviceThatIsFullIsReported_data()
{
    QTest::addColumn<int>("room");
    QTest::newRow("from the start") << 0;
    QTest::newRow("in the middle") << 100;
}

void QtPkCompatProfileTest::deviceThatIsFullIsReported()
{
    QFETCH(int, room);
    FullDevice device(room);
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(!profile.StoreInXml(device, false));
}

void QtPkCompatProfileTest::fileIsWrittenAndReadBack()
{
    const QTemporaryDir folder;
    const std::string path =
        folder.filePath(QString::fromUtf8("B\xC3\xBChne profile.xml")).toStdString();
    QFile old(QString::fromStdString(path));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();

    QtPkCompatProfile profile(filledProfile());
    QVERIFY(profile.Export(path, false));
    QtPkCompatProfile back;
    QVERIFY(back.Import(path));
    QVERIFY(recordsAreEqual(back, filledProfile()));
    PkCompatProfile& asRecord = back;
    QVERIFY(asRecord.Import(path));
    QCOMPARE(back.filterCenterList.size(), std::size_t(4));
}

void QtPkCompatProfileTest::nameComesBackFromAFile_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("markup") << QByteArray("<a b='c' d=\"e\">&amp;");
    QTest::newRow("white space") << QByteArray(" a\tb\nc ");
    QTest::newRow("two bytes a character") << QByteArray("B\xC3\xBChne");
    QTest::newRow("four bytes a character") << QByteArray("\xF0\x9D\x84\x9E");
}

void QtPkCompatProfileTest::nameComesBackFromAFile()
{
    QFETCH(QByteArray, name);
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("profile.xml")).toStdString();
    QtPkCompatProfile profile;
    profile.name = name.toStdString();
    QVERIFY(profile.Export(path, false));
    QtPkCompatProfile back;
    QVERIFY(back.Import(path));
    QCOMPARE(QByteArray::fromStdString(back.name), name);
}

void QtPkCompatProfileTest::fileIsReadThroughItsNodeVirtually()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("profile.xml"));
    QVERIFY(writeContent(path, "<compat_profile id='" + ID_TEXT.toLatin1() + "'/>"));
    MarkedProfile profile;
    QVERIFY(profile.Import(path.toStdString()));
    QCOMPARE(profile.readNode, QStringLiteral("compat_profile"));
}

void QtPkCompatProfileTest::fileIsReadAsFarAsItIsWellFormed_data()
{
    QTest::addColumn<QByteArray>("behind");
    QTest::newRow("cut short") << QByteArray();
    QTest::newRow("cut short within the next") << QByteArray("<filter type='3'><filter_st");
    QTest::newRow("wrong end tag") << QByteArray("</other>");
    QTest::newRow("second root") << QByteArray("</compat_profile><compat_profile/>");
    QTest::newRow("text behind the root") << QByteArray("</compat_profile>text");
}

void QtPkCompatProfileTest::fileIsReadAsFarAsItIsWellFormed()
{
    QFETCH(QByteArray, behind);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("profile.xml"));
    QVERIFY(writeContent(path, "<compat_profile id='" + ID_TEXT.toLatin1() +
                                   "' name='half'><spacing><ch_ch>7</ch_ch></spacing>" + behind));
    QtPkCompatProfile profile;
    QVERIFY(profile.Import(path.toStdString()));
    QCOMPARE(profile.name, std::string("half"));
    QCOMPARE(profile.chCh, 7);
}

void QtPkCompatProfileTest::constProfileWritesTheLightForm()
{
    const QTemporaryDir folder;
    const QString domPath = folder.filePath(QStringLiteral("dom.xml"));
    const QString lightPath = folder.filePath(QStringLiteral("light.xml"));
    const QString basePath = folder.filePath(QStringLiteral("base.xml"));
    QtPkCompatProfile profile(filledProfile());
    const QtPkCompatProfile& constProfile = profile;
    PkCompatProfile& base = profile;
    QVERIFY(profile.Export(domPath.toStdString(), true));
    QVERIFY(constProfile.Export(lightPath.toStdString(), true));
    QVERIFY(base.Export(basePath.toStdString(), true));
    QVERIFY(contentOf(domPath).contains("<filter_center_list count=\"2\">"));
    QVERIFY(!contentOf(lightPath).contains("filter_center_list"));
    QCOMPARE(contentOf(basePath), contentOf(lightPath));
}

void QtPkCompatProfileTest::fileThatCannotBeWrittenIsReported_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("a folder") << QDir::tempPath();
    QTest::newRow("in no folder") << QDir::tempPath() + "/no such folder/profile.xml";
    QTest::newRow("full disk") << QStringLiteral("/dev/full");
    QTest::newRow("no name") << QString();
}

void QtPkCompatProfileTest::fileThatCannotBeWrittenIsReported()
{
    QFETCH(QString, path);
    const MessageRecorder recorder;
    QtPkCompatProfile profile;
    QVERIFY(!profile.Export(path.toStdString(), false));
    QVERIFY(recorder.messages().isEmpty());
}

void QtPkCompatProfileTest::diskThatFillsUpIsReported()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("profile.xml")).toStdString();
    QtPkCompatProfile profile;
    profile.filterType = EBF_CENTER_LIST;
    profile.filterCenterList.assign(10000, 470000); // more than the buffers on the way hold
    {
        const FileSizeLimit limit(20000);
        QVERIFY(!profile.Export(path, true));
    }
    {
        const FileSizeLimit limit(100); // less than they hold
        QVERIFY(!QtPkCompatProfile().Export(path, true));
    }
    QVERIFY(QtPkCompatProfile().Export(path, true));
    QVERIFY(QtPkCompatProfile().Import(path));
}

void QtPkCompatProfileTest::fileThatDoesNotStartWithTheElementIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray element = "<compat_profile id='" + ID_TEXT.toLatin1() + "'/>";
    QTest::newRow("declaration") << "<?xml version='1.0' encoding='UTF-8'?>" + element;
    QTest::newRow("processing instruction") << "<?go on?>" + element;
    QTest::newRow("comment") << "<!-- one -->" + element;
    QTest::newRow("another element") << QByteArray("<profile/>");
    QTest::newRow("not well-formed") << QByteArray("<");
    QTest::newRow("empty") << QByteArray();
}

void QtPkCompatProfileTest::fileThatDoesNotStartWithTheElementIsRefused()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("profile.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(!profile.Import(file.fileName().toStdString()));
    QVERIFY(!profile.Import(folder.filePath(QStringLiteral("missing.xml")).toStdString()));
    QVERIFY(recordsAreEqual(profile, filledProfile()));
}

void QtPkCompatProfileTest::pathWithoutANameIsRefused()
{
    const MessageRecorder recorder;
    QtPkCompatProfile profile(filledProfile());
    QVERIFY(!profile.Import(std::string()));
    QVERIFY(recordsAreEqual(profile, filledProfile()));
    QVERIFY(recorder.messages().isEmpty());
}

void QtPkCompatProfileTest::fileWithABadIdThrows()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("profile.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<compat_profile id='7'/>");
    file.close();
    QtPkCompatProfile profile;
    QVERIFY_EXCEPTION_THROWN(profile.Import(file.fileName().toStdString()), std::runtime_error);
}

QTEST_APPLESS_MAIN(QtPkCompatProfileTest)
#include "QtPkCompatProfileTest.moc"

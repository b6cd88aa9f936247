#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/VirtualSlot.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <boost/uuid/string_generator.hpp>
#include <tinyxml2.h>

#include <type_traits>
#include <utility>

namespace {

constexpr char const* ID_TEXT = "01234567-89ab-cdef-0123-456789abcdef";

PkCompatProfile filledProfile()
{
    PkCompatProfile profile;
    profile.name = "B\xC3\xBChne <1> & \"2\"";
    profile.id = boost::uuids::string_generator()(ID_TEXT);
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
    profile.imdSource = false;
    return profile;
}

// Leaves its mark on the element.
class MarkedProfile : public PkCompatProfile
{
public:
    using PkCompatProfile::Export;
    tinyxml2::XMLElement* Export(tinyxml2::XMLDocument& doc,
                                 tinyxml2::XMLElement* parent) const override
    {
        tinyxml2::XMLElement* const element = PkCompatProfile::Export(doc, parent);
        element->SetAttribute("mark", "here");
        return element;
    }
};

QByteArray compactText(tinyxml2::XMLDocument const& document)
{
    tinyxml2::XMLPrinter printer(nullptr, true);
    document.Print(&printer);
    return printer.CStr();
}

QByteArray contentOf(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

} // namespace

class PkCompatProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void newProfileHasItsDefaults();
    void copiesAndMovesAreMemberwise();
    void operationsStandInTheirSlots();
    void elementHasItsLayout();
    void defaultProfileIsWritten();
    void centreListIsNeverWritten();
    void elementGoesBelowTheParent();
    void elementWithoutParentIsTheDocumentsOnlyNode();
    void fileIsIndentedWhateverCompactSays();
    void fileAsksForTheElementVirtually();
    void fileThatCannotBeWrittenIsReported_data();
    void fileThatCannotBeWrittenIsReported();
    void diskThatFillsUpIsReported_data();
    void diskThatFillsUpIsReported();
    void recordCannotReadItselfNorBeBinary();
};

void PkCompatProfileTest::newProfileHasItsDefaults()
{
    const PkCompatProfile profile;
    QCOMPARE(profile.name, std::string());
    QVERIFY(profile.id.is_nil());
    for (const int spacing : {profile.chCh, profile.imd2t3o, profile.imd2t5o, profile.imd2t7o,
                              profile.imd2t9o, profile.imd3t3o}) {
        QCOMPARE(spacing, 0);
    }
    QCOMPARE(static_cast<int>(profile.filterType), -1);
    QCOMPARE(profile.filterStart, 0);
    QCOMPARE(profile.filterEnd, 0);
    QCOMPARE(profile.filterCenter, 0);
    QVERIFY(profile.filterCenterList.empty());
    QVERIFY(profile.imdSource);
    QVERIFY(profile.synthesizable);
    QVERIFY((std::is_same_v<std::underlying_type_t<EBFType>, int>));
    QCOMPARE(static_cast<int>(EBF_CENTER_LIST), 2);
}

void PkCompatProfileTest::copiesAndMovesAreMemberwise()
{
    const PkCompatProfile original = filledProfile();
    const PkCompatProfile copy = original;
    PkCompatProfile assigned;
    assigned = original;
    PkCompatProfile source = original;
    const PkCompatProfile moved = std::move(source);
    PkCompatProfile moveAssigned;
    moveAssigned = PkCompatProfile(original);
    for (PkCompatProfile const& profile : {copy, assigned, moved, moveAssigned}) {
        QCOMPARE(profile.name, original.name);
        QVERIFY(profile.id == original.id);
        QCOMPARE(profile.chCh, 350);
        QCOMPARE(profile.imd2t3o, 100);
        QCOMPARE(profile.imd2t5o, -50);
        QCOMPARE(profile.imd2t7o, 25);
        QCOMPARE(profile.imd2t9o, 10);
        QCOMPARE(profile.imd3t3o, 51);
        QCOMPARE(profile.filterType, EBF_CENTER_LIST);
        QCOMPARE(profile.filterStart, 470000);
        QCOMPARE(profile.filterEnd, 500000);
        QCOMPARE(profile.filterCenter, 485000);
        QCOMPARE(profile.filterCenterList, (std::vector<int>{470000, 500000}));
        QVERIFY(!profile.imdSource);
        QVERIFY(profile.synthesizable);
    }
}

void PkCompatProfileTest::operationsStandInTheirSlots()
{
    using ToFile = bool (PkCompatProfile::*)(std::string const&, bool) const;
    using ToDocument = tinyxml2::XMLElement* (PkCompatProfile::*)(tinyxml2::XMLDocument&,
                                                                  tinyxml2::XMLElement*) const;
    // The destructor stands in front of them.
    QCOMPARE(virtualSlot(ToFile(&PkCompatProfile::Export)), 2);
    QCOMPARE(virtualSlot(ToDocument(&PkCompatProfile::Export)), 3);
    QCOMPARE(virtualSlot(&PkCompatProfile::Import), 4);
    QCOMPARE(virtualSlot(&PkCompatProfile::Serialize), 5);
    QCOMPARE(virtualSlot(&PkCompatProfile::Deserialize), 6);
    QVERIFY(std::has_virtual_destructor_v<PkCompatProfile>);
}

void PkCompatProfileTest::elementHasItsLayout()
{
    tinyxml2::XMLDocument document;
    filledProfile().Export(document, nullptr);
    QCOMPARE(compactText(document),
             QByteArray("<compat_profile version=\"0.0.0.1\""
                        " id=\"01234567-89ab-cdef-0123-456789abcdef\""
                        " name=\"B\xC3\xBChne &lt;1&gt; &amp; &quot;2&quot;\""
                        " imd_source=\"0\" synthesizable=\"1\">"
                        "<spacing freq_units=\"KHz\">"
                        "<ch_ch>350</ch_ch><imd_2t3o>100</imd_2t3o><imd_2t5o>-50</imd_2t5o>"
                        "<imd_2t7o>25</imd_2t7o><imd_2t9o>10</imd_2t9o><imd_3t3o>51</imd_3t3o>"
                        "</spacing>"
                        "<filter type=\"2\">"
                        "<filter_start>470000</filter_start><filter_end>500000</filter_end>"
                        "<filter_center>485000</filter_center>"
                        "</filter></compat_profile>"));
}

void PkCompatProfileTest::defaultProfileIsWritten()
{
    tinyxml2::XMLDocument document;
    PkCompatProfile().Export(document, nullptr);
    QCOMPARE(compactText(document),
             QByteArray("<compat_profile version=\"0.0.0.1\""
                        " id=\"00000000-0000-0000-0000-000000000000\""
                        " name=\"\" imd_source=\"1\" synthesizable=\"1\">"
                        "<spacing freq_units=\"KHz\">"
                        "<ch_ch>0</ch_ch><imd_2t3o>0</imd_2t3o><imd_2t5o>0</imd_2t5o>"
                        "<imd_2t7o>0</imd_2t7o><imd_2t9o>0</imd_2t9o><imd_3t3o>0</imd_3t3o>"
                        "</spacing>"
                        "<filter type=\"-1\">"
                        "<filter_start>0</filter_start><filter_end>0</filter_end>"
                        "<filter_center>0</filter_center>"
                        "</filter></compat_profile>"));
}

void PkCompatProfileTest::centreListIsNeverWritten()
{
    tinyxml2::XMLDocument document;
    tinyxml2::XMLElement const* const element = filledProfile().Export(document, nullptr);
    int children = 0;
    for (auto const* child = element->FirstChildElement("filter")->FirstChild(); child != nullptr;
         child = child->NextSibling()) {
        ++children;
    }
    QCOMPARE(children, 3);
}

void PkCompatProfileTest::elementGoesBelowTheParent()
{
    tinyxml2::XMLDocument document;
    document.Parse("<parent><first/></parent>");
    tinyxml2::XMLElement* const parent = document.RootElement();
    tinyxml2::XMLElement const* const element = PkCompatProfile().Export(document, parent);
    QCOMPARE(parent->LastChild(), element);
    QCOMPARE(parent->NextSibling(), nullptr);
}

void PkCompatProfileTest::elementWithoutParentIsTheDocumentsOnlyNode()
{
    tinyxml2::XMLDocument document;
    tinyxml2::XMLElement const* const element = PkCompatProfile().Export(document, nullptr);
    QCOMPARE(document.FirstChild(), element);
    QCOMPARE(document.LastChild(), element);
    QCOMPARE(element->Name(), "compat_profile");
}

void PkCompatProfileTest::fileIsIndentedWhateverCompactSays()
{
    const QTemporaryDir folder;
    const QString plain = folder.filePath(QStringLiteral("plain.xml"));
    const QString compact = folder.filePath(QStringLiteral("compact.xml"));
    const PkCompatProfile profile = filledProfile();
    QVERIFY(profile.Export(plain.toStdString(), false));
    QVERIFY(profile.Export(compact.toStdString(), true));
    QCOMPARE(contentOf(compact), contentOf(plain));
    QVERIFY(contentOf(plain).startsWith("<compat_profile "));
    QVERIFY(contentOf(plain).contains("\n    <spacing freq_units=\"KHz\">\n        <ch_ch>350"));

    tinyxml2::XMLDocument read;
    QCOMPARE(read.LoadFile(plain.toLocal8Bit().constData()), tinyxml2::XML_SUCCESS);
    QCOMPARE(QByteArray(read.RootElement()->Attribute("name")),
             QByteArray("B\xC3\xBChne <1> & \"2\""));
}

void PkCompatProfileTest::fileAsksForTheElementVirtually()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("marked.xml"));
    QVERIFY(MarkedProfile().Export(path.toStdString(), false));
    QVERIFY(contentOf(path).contains(" mark=\"here\""));
}

void PkCompatProfileTest::fileThatCannotBeWrittenIsReported_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("a folder") << QDir::tempPath();
    QTest::newRow("in no folder") << QDir::tempPath() + "/no such folder/profile.xml";
    QTest::newRow("no name") << QString();
    QTest::newRow("full disk") << QStringLiteral("/dev/full");
}

void PkCompatProfileTest::fileThatCannotBeWrittenIsReported()
{
    QFETCH(QString, path);
    QVERIFY(!PkCompatProfile().Export(path.toStdString(), false));
}

void PkCompatProfileTest::diskThatFillsUpIsReported_data()
{
    QTest::addColumn<int>("nameSize");
    QTest::newRow("within the buffers on the way") << 10;
    QTest::newRow("beyond them") << 100000;
}

void PkCompatProfileTest::diskThatFillsUpIsReported()
{
    QFETCH(int, nameSize);
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("profile.xml")).toStdString();
    PkCompatProfile profile;
    profile.name = std::string(static_cast<std::size_t>(nameSize), 'n');
    {
        const FileSizeLimit limit(100);
        QVERIFY(!profile.Export(path, false));
    }
    QVERIFY(profile.Export(path, false));
}

void PkCompatProfileTest::recordCannotReadItselfNorBeBinary()
{
    PkCompatProfile profile = filledProfile();
    QVERIFY(!profile.Import("anything"));
    void* data = &profile;
    int size = 42;
    PkCompatProfile::Version version{};
    QVERIFY(!profile.Serialize(version, data, size));
    QCOMPARE(data, static_cast<void*>(&profile));
    QCOMPARE(size, 42);
    QVERIFY(!profile.Deserialize("bytes", size, version));
    QCOMPARE(size, 42);
    QCOMPARE(profile.chCh, 350);
}

QTEST_APPLESS_MAIN(PkCompatProfileTest)
#include "PkCompatProfileTest.moc"

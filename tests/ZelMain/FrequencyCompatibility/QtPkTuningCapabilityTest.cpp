#include "ZelMain/FrequencyCompatibility/QtPkTuningCapability.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/MessageRecorder.h"
#include "tests/support/VirtualSlot.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace {

const QString ID = QStringLiteral("01234567-89ab-cdef-0123-456789abcdef");
const QString NIL_ID = QStringLiteral("00000000-0000-0000-0000-000000000000");

constexpr int UNFIT = -2147483647 - 1;

QVector<RecordedMessage> debugMessage(const char* text)
{
    return {{QtDebugMsg, QStringLiteral("default"), QLatin1String(text)}};
}

boost::uuids::uuid uuid(const QString& text)
{
    return boost::uuids::string_generator()(text.toStdString());
}

QString idOf(const TuningCapability& capability)
{
    return QString::fromStdString(to_string(capability.id));
}

QString outlineOfNode(const QDomNode& node);

/** An element in one line, its attributes in the order of their names. */
QString outline(const QDomElement& element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        attributes << map.item(i).nodeName() + QLatin1Char('=') + map.item(i).nodeValue();
    }
    attributes.sort();
    attributes.prepend(element.tagName());
    QStringList children;
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        children << outlineOfNode(node);
    }
    return attributes.join(QLatin1Char(' ')) + QLatin1Char('{') +
           children.join(QStringLiteral("; ")) + QLatin1Char('}');
}

QString outlineOfNode(const QDomNode& node)
{
    return node.isElement() ? outline(node.toElement()) : node.nodeValue();
}

QString elementWith(const QString& children)
{
    return QStringLiteral("tuning_capability id=%1 version=0.0.0.1{%2}").arg(ID, children);
}

QDomDocument parsed(const QString& xml)
{
    QDomDocument document;
    QString error;
    if (!document.setContent(xml, &error)) {
        qFatal("test data are no XML: %s", qPrintable(error));
    }
    return document;
}

QDomDocument parsedWith(const QString& children)
{
    return parsed(
        QStringLiteral("<tuning_capability id=\"%1\">%2</tuning_capability>").arg(ID, children));
}

QtPkTuningCapability rastered()
{
    QtPkTuningCapability capability(uuid(ID));
    capability.rangeStart = 470000;
    capability.rangeEnd = 480000;
    capability.step = 25;
    return capability;
}

QtPkTuningCapability listed()
{
    QtPkTuningCapability capability(uuid(ID));
    capability.freqList = {470000, 470025};
    return capability;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** A device that takes nothing when it comes to it. */
class FullDevice : public QIODevice
{
protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }
};

} // namespace

Q_DECLARE_METATYPE(std::vector<int>)
using Pairs = std::vector<std::pair<int, int>>;
Q_DECLARE_METATYPE(Pairs)

class QtPkTuningCapabilityTest : public QObject
{
    Q_OBJECT

private slots:
    void rasterOrListIsWritten_data();
    void rasterOrListIsWritten();
    void idIsWrittenInLowerCase();
    void defaultCapabilityHasOnlyItsAttributes();
    void recordIsCopied();
    void copyHasItsOwnDocument();
    void operationsStandInTheirSlots();
    void exportToAParentAppends();
    void exportToADocumentAsParentAppends();
    void exportToANullParentDoesNothing();
    void exportMakesTheElementInTheOwnDocument();
    void childNodeIsMadeInTheOwnDocument();

    void otherNamesAreRefused_data();
    void otherNamesAreRefused();
    void idIsRead_data();
    void idIsRead();
    void instructionOfThatNameHasNoId();
    void numberIsRead_data();
    void numberIsRead();
    void rangeIsRead_data();
    void rangeIsRead();
    void listIsRead_data();
    void listIsRead();
    void subRangesAreRead_data();
    void subRangesAreRead();
    void listsGrow();
    void whatIsMissingStays();
    void decimalPointIsTheUsersButNotInTheList();
    void pathIsNeverImported();

    void exportedElementComesBack_data();
    void exportedElementComesBack();

    void storedTextIsIndented_data();
    void storedTextIsIndented();
    void storingAgainWritesBoth();
    void storingAsksForTheElementVirtually();
    void unfitDeviceIsToldAndLeftAlone();
    void failedWriteIsNoSuccess();
    void fileIsWrittenWhole();
    void fileThatCannotBeWrittenIsNoSuccess();
    void diskThatFillsUpIsNoSuccess();
    void constExportWritesNothing();
    void filesAreWellFormed_data();
    void filesAreWellFormed();
};

void QtPkTuningCapabilityTest::rasterOrListIsWritten_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<std::vector<int>>("freqList");
    QTest::addColumn<Pairs>("subRanges");
    QTest::addColumn<QString>("children");
    const QString range = QStringLiteral("range freq_units=KHz{start{470000}; end{480000}; "
                                         "step{%1}}");
    const QString list = QStringLiteral("freq_list freq_units=KHz{freq{470025}; freq{470000}}");
    const QString subRanges = QStringLiteral("sub_range_list freq_units=KHz{"
                                             "sub_range{start{470000}; end{471000}}; "
                                             "sub_range{start{-5}; end{0}}}");
    const std::vector<int> none;
    const std::vector<int> two = {470025, 470000};
    const Pairs pairs = {{470000, 471000}, {-5, 0}};
    QTest::newRow("neither") << 0 << none << Pairs() << QString();
    QTest::newRow("raster") << 25 << none << Pairs() << range.arg(25);
    QTest::newRow("finest raster") << 1 << none << Pairs() << range.arg(1);
    QTest::newRow("raster hides the list") << 25 << two << Pairs() << range.arg(25);
    QTest::newRow("list") << 0 << two << Pairs() << list;
    QTest::newRow("negative step is no raster") << -1 << two << Pairs() << list;
    QTest::newRow("negative step without a list") << -25 << none << Pairs() << QString();
    QTest::newRow("sub ranges alone") << 0 << none << pairs << subRanges;
    QTest::newRow("raster and sub ranges")
        << 25 << two << pairs << range.arg(25) + "; " + subRanges;
    QTest::newRow("list and sub ranges") << 0 << two << pairs << list + "; " + subRanges;
    QTest::newRow("lowest and highest")
        << 0 << std::vector<int>{UNFIT, 2147483647} << Pairs()
        << QStringLiteral("freq_list freq_units=KHz{freq{-2147483648}; freq{2147483647}}");
}

void QtPkTuningCapabilityTest::rasterOrListIsWritten()
{
    QFETCH(int, step);
    QFETCH(std::vector<int>, freqList);
    QFETCH(Pairs, subRanges);
    QFETCH(QString, children);
    QtPkTuningCapability capability = rastered();
    capability.step = step;
    capability.freqList = freqList;
    capability.subRanges = subRanges;
    QCOMPARE(outline(capability.Export()), elementWith(children));
}

void QtPkTuningCapabilityTest::idIsWrittenInLowerCase()
{
    const QtPkTuningCapability capability(uuid(ID.toUpper()));
    QtPkTuningCapability copy(capability);
    QCOMPARE(copy.Export().attribute(QStringLiteral("id")), ID);
}

void QtPkTuningCapabilityTest::defaultCapabilityHasOnlyItsAttributes()
{
    QtPkTuningCapability capability;
    QVERIFY(!capability.id.is_nil());
    const QString expected =
        QStringLiteral("tuning_capability id=%1 version=0.0.0.1{}").arg(idOf(capability));
    QCOMPARE(outline(capability.Export()), expected);
}

void QtPkTuningCapabilityTest::recordIsCopied()
{
    TuningCapability record(uuid(ID));
    record.rangeStart = 1;
    record.rangeEnd = 2;
    record.step = 3;
    record.freqList = {4};
    record.subRanges = {{5, 6}};
    const QtPkTuningCapability capability(record);
    QCOMPARE(idOf(capability), ID);
    QCOMPARE(capability.rangeStart, 1);
    QCOMPARE(capability.rangeEnd, 2);
    QCOMPARE(capability.step, 3);
    QVERIFY(capability.freqList == record.freqList);
    QVERIFY(capability.subRanges == record.subRanges);
}

void QtPkTuningCapabilityTest::copyHasItsOwnDocument()
{
    QtPkTuningCapability original = rastered();
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QVERIFY(original.StoreInXml(sink, true));

    QtPkTuningCapability copy(original);
    QtPkTuningCapability assigned;
    QBuffer assignedFirst;
    assignedFirst.open(QIODevice::WriteOnly);
    QVERIFY(assigned.StoreInXml(assignedFirst, true));
    assigned = original;
    QCOMPARE(idOf(assigned), ID);

    QBuffer copied;
    copied.open(QIODevice::WriteOnly);
    QVERIFY(copy.StoreInXml(copied, true));
    QCOMPARE(copied.data().count("<tuning_capability"), 1);
    QBuffer assignedSecond;
    assignedSecond.open(QIODevice::WriteOnly);
    QVERIFY(assigned.StoreInXml(assignedSecond, true));
    QCOMPARE(assignedSecond.data().count("<tuning_capability"), 2); // kept its own
    QCOMPARE(assignedSecond.data().count("<range"), 1);
    QVERIFY(copy.Export().ownerDocument() != original.Export().ownerDocument());
}

void QtPkTuningCapabilityTest::operationsStandInTheirSlots()
{
    using Capability = QtPkTuningCapability;
    using ToFile = bool (Capability::*)(std::string const&, bool);
    using ToFileOfRecord = bool (TuningCapability::*)(std::string const&, bool) const;
    using ToElement = QDomElement (Capability::*)();
    using ToDocument = QDomElement (Capability::*)(QDomDocument&);
    using ToParent = void (Capability::*)(QDomNode&);
    using FromFile = bool (Capability::*)(std::string const&);
    using FromNode = bool (Capability::*)(QDomNode const&);
    QCOMPARE(virtualSlot(ToFileOfRecord(&Capability::Export)), 0);
    QCOMPARE(virtualSlot(FromFile(&Capability::Import)), 1);
    // The destructor stands between them.
    QCOMPARE(virtualSlot(FromNode(&Capability::Import)), 4);
    QCOMPARE(virtualSlot(ToElement(&Capability::Export)), 5);
    QCOMPARE(virtualSlot(ToFile(&Capability::Export)), 6);
    QCOMPARE(virtualSlot(ToDocument(&Capability::Export)), -1);
    QCOMPARE(virtualSlot(ToParent(&Capability::Export)), -1);
    QCOMPARE(virtualSlot(&Capability::StoreInXml), -1);
    QCOMPARE(virtualSlot(&Capability::CreateChildNode), -1);
}

void QtPkTuningCapabilityTest::exportToAParentAppends()
{
    QDomDocument document = parsed(QStringLiteral("<root><first/></root>"));
    QDomElement root = document.documentElement();
    QtPkTuningCapability capability = listed();
    capability.Export(root);
    QCOMPARE(outline(root), QStringLiteral("root{first{}; %1}")
                                .arg(elementWith(QStringLiteral(
                                    "freq_list freq_units=KHz{freq{470000}; freq{470025}}"))));
    QVERIFY(root.lastChild().ownerDocument() == document);
}

void QtPkTuningCapabilityTest::exportToADocumentAsParentAppends()
{
    QDomDocument document;
    document.appendChild(document.createComment(QStringLiteral("first")));
    QDomNode parent = document;
    listed().Export(parent);
    QCOMPARE(document.childNodes().size(), 2);
    QVERIFY(document.lastChild().ownerDocument() == document);
}

void QtPkTuningCapabilityTest::exportToANullParentDoesNothing()
{
    QtPkTuningCapability capability = listed();
    QDomNode null;
    const MessageRecorder recorder;
    capability.Export(null);
    QVERIFY(null.isNull());
    QVERIFY(recorder.messages().isEmpty()); // Qt's nodes would warn
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QVERIFY(capability.StoreInXml(sink, true));
    QCOMPARE(sink.data().count("<tuning_capability"), 1);
}

void QtPkTuningCapabilityTest::exportMakesTheElementInTheOwnDocument()
{
    QtPkTuningCapability capability = listed();
    QDomDocument given = parsed(QStringLiteral("<root/>"));
    const QDomElement fromDocument = capability.Export(given);
    const QDomElement plain = capability.Export();
    QCOMPARE(outline(fromDocument), outline(plain));
    QVERIFY(fromDocument.parentNode().isNull());
    QVERIFY(plain.parentNode().isNull());
    QVERIFY(fromDocument.ownerDocument() != given);
    QVERIFY(fromDocument.ownerDocument() == plain.ownerDocument());
    QCOMPARE(given.toString(-1), QStringLiteral("<root/>"));
}

void QtPkTuningCapabilityTest::childNodeIsMadeInTheOwnDocument()
{
    QtPkTuningCapability capability = listed();
    QDomElement parent = capability.Export();
    capability.CreateChildNode(QStringLiteral("note"), QStringLiteral("a < b"), parent);
    QCOMPARE(outline(parent.lastChildElement()), QStringLiteral("note{a < b}"));
    QVERIFY(parent.lastChild().ownerDocument() == parent.ownerDocument());

    capability.CreateChildNode(QStringLiteral("empty"), QString(), parent);
    QVERIFY(parent.lastChildElement().firstChild().isText());

    QDomDocument other = parsed(QStringLiteral("<root/>"));
    QDomElement root = other.documentElement();
    capability.CreateChildNode(QStringLiteral("stranger"), QStringLiteral("x"), root);
    QCOMPARE(outline(root), QStringLiteral("root{stranger{x}}"));
}

void QtPkTuningCapabilityTest::otherNamesAreRefused_data()
{
    QTest::addColumn<QString>("xml");
    QTest::newRow("letter case") << "<Tuning_capability/>";
    QTest::newRow("profile") << "<compat_profile/>";
    QTest::newRow("inside") << "<root><tuning_capability/></root>";
    QTest::newRow("prefix") << "<tuning_capability_list/>";
}

void QtPkTuningCapabilityTest::otherNamesAreRefused()
{
    QFETCH(QString, xml);
    QtPkTuningCapability capability = rastered();
    capability.freqList = {7};
    const QDomDocument document = parsed(xml);
    QVERIFY(!capability.Import(document.documentElement()));
    QVERIFY(!capability.Import(document));
    QVERIFY(!capability.Import(QDomNode()));
    QCOMPARE(idOf(capability), ID);
    QCOMPARE(capability.step, 25);
    QVERIFY(capability.freqList == std::vector<int>{7});
}

void QtPkTuningCapabilityTest::idIsRead_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("id");
    QTest::newRow("dashes") << "id='01234567-89ab-cdef-0123-456789abcdef'" << ID;
    QTest::newRow("upper case") << "id='01234567-89AB-CDEF-0123-456789ABCDEF'" << ID;
    QTest::newRow("no dashes") << "id='0123456789abcdef0123456789abcdef'" << ID;
    QTest::newRow("braces") << "id='{01234567-89ab-cdef-0123-456789abcdef}'" << ID;
    QTest::newRow("missing") << "" << NIL_ID;
    QTest::newRow("empty") << "id=''" << NIL_ID;
    QTest::newRow("no UUID") << "id='seven'" << NIL_ID;
    QTest::newRow("some dashes") << "id='01234567-89abcdef-0123-456789abcdef'" << NIL_ID;
    QTest::newRow("one digit too few") << "id='01234567-89ab-cdef-0123-456789abcde'" << NIL_ID;
    QTest::newRow("more behind") << "id='01234567-89ab-cdef-0123-456789abcdef0'" << NIL_ID;
    QTest::newRow("beyond Latin-1")
        << QStringLiteral(u"id='\u06610234567-89ab-cdef-0123-456789abcdef'") << NIL_ID;
}

void QtPkTuningCapabilityTest::idIsRead()
{
    QFETCH(QString, attribute);
    const QDomDocument document =
        parsed(QStringLiteral("<tuning_capability %1><range><step>5</step></range>"
                              "</tuning_capability>")
                   .arg(attribute));
    QtPkTuningCapability capability(uuid(QStringLiteral("ffffffffffffffffffffffffffffffff")));
    QVERIFY(capability.Import(document.documentElement()));
    QTEST(idOf(capability), "id");
    QCOMPARE(capability.step, 5); // the rest is read in any case
}

void QtPkTuningCapabilityTest::instructionOfThatNameHasNoId()
{
    const QDomDocument document = parsed(QStringLiteral("<?tuning_capability x?><root/>"));
    QtPkTuningCapability capability = rastered();
    QVERIFY(capability.Import(document.firstChild()));
    QCOMPARE(idOf(capability), NIL_ID);
    QCOMPARE(capability.step, 25);
}

void QtPkTuningCapabilityTest::numberIsRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("khz");     // as a frequency
    QTest::addColumn<int>("freqKhz"); // in the list
    const auto addRow = [](const char* name, const char* text, int khz) {
        QTest::newRow(name) << text << khz << khz;
    };
    addRow("whole", "470025", 470025);
    addRow("cut off, not rounded", "470.0125", 470);
    addRow("cut off just below", "470.9999", 470);
    addRow("negative, toward zero", "-470.9", -470);
    addRow("less than one", "-0.9", 0);
    addRow("exponent", "4.7e5", 470000);
    addRow("blanks around", " 470 ", 470);
    addRow("empty", "", 0);
    addRow("no number", "abc", 0);
    addRow("unit", "470 kHz", 0);
    addRow("group separator", "470,000", 0);
    addRow("markup inside", "47<b>0</b>", 470);
    addRow("highest", "2147483647", 2147483647);
    addRow("highest and a fraction", "2147483647.9", 2147483647);
    addRow("above the highest", "2147483648", UNFIT);
    addRow("highest but one", "2147483646", 2147483646);
    addRow("lowest but one", "-2147483647", -2147483647);
    addRow("lowest", "-2147483648", UNFIT);
    addRow("lowest and a fraction", "-2147483648.9", UNFIT);
    addRow("below the lowest", "-2147483649", UNFIT);
    addRow("infinite", "inf", UNFIT);
    addRow("not a number", "nan", UNFIT);
    // No frequency holds it, while the plain number is an infinity.
    QTest::newRow("too large for a double") << "1e999" << 0 << UNFIT;
}

void QtPkTuningCapabilityTest::numberIsRead()
{
    QFETCH(QString, text);
    QFETCH(int, khz);
    QFETCH(int, freqKhz);
    const QDomDocument document = parsedWith(
        QStringLiteral("<range><start>%1</start><end>%1</end><step>%1</step></range>"
                       "<freq_list><freq>%1</freq></freq_list>"
                       "<sub_range_list><sub_range><start>%1</start><end>%1</end></sub_range>"
                       "</sub_range_list>")
            .arg(text));
    QtPkTuningCapability capability;
    QVERIFY(capability.Import(document.documentElement()));
    QCOMPARE(capability.rangeStart, khz);
    QCOMPARE(capability.rangeEnd, khz);
    QCOMPARE(capability.step, khz);
    QVERIFY(capability.subRanges == (Pairs{{khz, khz}}));
    QCOMPARE(capability.freqList.size(), std::size_t(1));
    QCOMPARE(capability.freqList.front(), freqKhz);
}

void QtPkTuningCapabilityTest::rangeIsRead_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("step");
    QTest::newRow("all") << "<range><start>1</start><end>2</end><step>3</step></range>" << 1 << 2
                         << 3;
    QTest::newRow("any order") << "<range><step>3</step><end>2</end><start>1</start></range>" << 1
                               << 2 << 3;
    QTest::newRow("units are not read")
        << "<range freq_units='MHz'><start>1</start><end>2</end><step>3</step></range>" << 1 << 2
        << 3;
    QTest::newRow("others are ignored")
        << "<range>x<!-- y --><Start>9</Start><other><step>9</step></other><step>3</step></range>"
        << -1 << -1 << 3;
    QTest::newRow("last one wins")
        << "<range><start>1</start><start>2</start></range>" << 2 << -1 << -1;
    QTest::newRow("two ranges") << "<range><start>1</start></range><range><end>2</end></range>" << 1
                                << 2 << -1;
    QTest::newRow("outside a range")
        << "<start>1</start><end>2</end><step>3</step>" << -1 << -1 << -1;
    QTest::newRow("in another element")
        << "<other><range><start>1</start></range></other>" << -1 << -1 << -1;
    QTest::newRow("after a comment")
        << "<!-- x --><range><start>1</start></range>" << 1 << -1 << -1;
}

void QtPkTuningCapabilityTest::rangeIsRead()
{
    QFETCH(QString, children);
    QtPkTuningCapability capability;
    capability.rangeStart = capability.rangeEnd = capability.step = -1;
    QVERIFY(capability.Import(parsedWith(children).documentElement()));
    QTEST(capability.rangeStart, "start");
    QTEST(capability.rangeEnd, "end");
    QTEST(capability.step, "step");
}

void QtPkTuningCapabilityTest::listIsRead_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<std::vector<int>>("freqList");
    using List = std::vector<int>;
    QTest::newRow("in order") << "<freq_list><freq>2</freq><freq>1</freq><freq>2</freq></freq_list>"
                              << List{2, 1, 2};
    QTest::newRow("empty") << "<freq_list/>" << List{};
    QTest::newRow("other names are ignored")
        << "<freq_list><frequency>1</frequency>5<Freq>2</Freq><freq>3</freq></freq_list>"
        << List{3};
    QTest::newRow("two lists")
        << "<freq_list><freq>1</freq></freq_list><freq_list><freq>2</freq></freq_list>"
        << List{1, 2};
    QTest::newRow("a raster does not keep it from being read")
        << "<range><step>25</step></range><freq_list><freq>1</freq></freq_list>" << List{1};
    QTest::newRow("outside a list") << "<freq>1</freq>" << List{};
}

void QtPkTuningCapabilityTest::listIsRead()
{
    QFETCH(QString, children);
    QFETCH(std::vector<int>, freqList);
    QtPkTuningCapability capability;
    QVERIFY(capability.Import(parsedWith(children).documentElement()));
    QVERIFY(capability.freqList == freqList);
}

void QtPkTuningCapabilityTest::subRangesAreRead_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<Pairs>("subRanges");
    const QString first = QStringLiteral("<sub_range><start>1</start><end>2</end></sub_range>");
    QTest::newRow("one") << first << Pairs{{1, 2}};
    QTest::newRow("in order") << first + "<sub_range><end>0</end><start>9</start></sub_range>"
                              << Pairs{{1, 2}, {9, 0}};
    QTest::newRow("empty one") << "<sub_range/>" << Pairs{{0, 0}};
    QTest::newRow("start alone") << "<sub_range><start>5</start></sub_range>" << Pairs{{5, 0}};
    QTest::newRow("others inside")
        << "<sub_range><x>5</x>7<end>6</end></sub_range>" << Pairs{{0, 6}};
    QTest::newRow("last one wins")
        << "<sub_range><end>5</end><end>6</end></sub_range>" << Pairs{{0, 6}};
    QTest::newRow("any name after the first")
        << first + "<other><start>3</start><end>4</end></other><nothing/>"
        << Pairs{{1, 2}, {3, 4}, {0, 0}};
    QTest::newRow("comment and text after the first")
        << first + "<!-- x -->text" + first << Pairs{{1, 2}, {1, 2}};
    QTest::newRow("other name first") << "<other/>" + first << Pairs{};
    QTest::newRow("letter case of the first") << "<Sub_range/>" + first << Pairs{};
    QTest::newRow("comment first") << "<!-- x -->" + first << Pairs{};
    QTest::newRow("text first") << "text" + first << Pairs{};
    QTest::newRow("instruction of that name first") << "<?sub_range x?>" + first << Pairs{};
    QTest::newRow("nothing") << "" << Pairs{};
}

void QtPkTuningCapabilityTest::subRangesAreRead()
{
    QFETCH(QString, list);
    QFETCH(Pairs, subRanges);
    const QDomDocument document =
        parsedWith(QStringLiteral("<sub_range_list>%1</sub_range_list>").arg(list));
    QtPkTuningCapability capability;
    QVERIFY(capability.Import(document.documentElement()));
    QVERIFY(capability.subRanges == subRanges);
}

void QtPkTuningCapabilityTest::listsGrow()
{
    const QDomDocument document = parsedWith(QStringLiteral(
        "<freq_list><freq>1</freq></freq_list>"
        "<sub_range_list><sub_range><start>2</start><end>3</end></sub_range></sub_range_list>"));
    QtPkTuningCapability capability;
    QVERIFY(capability.Import(document.documentElement()));
    QVERIFY(capability.Import(document.documentElement()));
    QVERIFY(capability.freqList == (std::vector<int>{1, 1}));
    QVERIFY(capability.subRanges == (Pairs{{2, 3}, {2, 3}}));
}

void QtPkTuningCapabilityTest::whatIsMissingStays()
{
    QtPkTuningCapability capability = rastered();
    capability.freqList = {7};
    capability.subRanges = {{8, 9}};
    const QDomDocument document =
        parsed(QStringLiteral("<tuning_capability version='9.9'><x/></tuning_capability>"));
    QVERIFY(capability.Import(document.documentElement()));
    QCOMPARE(idOf(capability), NIL_ID); // but for the id
    QCOMPARE(capability.rangeStart, 470000);
    QCOMPARE(capability.rangeEnd, 480000);
    QCOMPARE(capability.step, 25);
    QVERIFY(capability.freqList == std::vector<int>{7});
    QVERIFY(capability.subRanges == (Pairs{{8, 9}}));
}

void QtPkTuningCapabilityTest::decimalPointIsTheUsersButNotInTheList()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    QtPkTuningCapability capability;
    const QDomDocument document =
        parsedWith(QStringLiteral("<range><start>470,9</start><end>480.9</end></range>"
                                  "<freq_list><freq>470,9</freq><freq>480.9</freq></freq_list>"));
    const bool imported = capability.Import(document.documentElement());
    QLocale::setDefault(before);
    QVERIFY(imported);
    QCOMPARE(capability.rangeStart, 470);
    QCOMPARE(capability.rangeEnd, 480);
    QVERIFY(capability.freqList == (std::vector<int>{0, 480}));
}

void QtPkTuningCapabilityTest::pathIsNeverImported()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("capability.xml")).toStdString();
    QtPkTuningCapability written = rastered();
    QVERIFY(written.Export(path, false));

    QtPkTuningCapability capability = listed();
    QVERIFY(!capability.Import(path));
    QVERIFY(!static_cast<TuningCapability&>(capability).Import(path));
    QVERIFY(!capability.Import(std::string()));
    QCOMPARE(capability.step, 0);
    QVERIFY(capability.freqList == (std::vector<int>{470000, 470025}));
}

void QtPkTuningCapabilityTest::exportedElementComesBack_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<std::vector<int>>("freqList");
    QTest::addColumn<Pairs>("subRanges");
    QTest::newRow("nothing") << 0 << std::vector<int>{} << Pairs{};
    QTest::newRow("raster") << 25 << std::vector<int>{} << Pairs{{470000, 471000}};
    QTest::newRow("list") << 0 << std::vector<int>{470000, -1, 2147483647} << Pairs{};
    QTest::newRow("limits") << 2147483647 << std::vector<int>{}
                            << Pairs{{UNFIT, 2147483647}, {0, 0}};
}

void QtPkTuningCapabilityTest::exportedElementComesBack()
{
    QFETCH(int, step);
    QFETCH(std::vector<int>, freqList);
    QFETCH(Pairs, subRanges);
    QtPkTuningCapability original(uuid(ID));
    original.step = step;
    original.rangeStart = step > 0 ? UNFIT : 0;
    original.rangeEnd = step > 0 ? 2147483647 : 0;
    original.freqList = freqList;
    original.subRanges = subRanges;

    QtPkTuningCapability read;
    QVERIFY(read.Import(original.Export()));
    QCOMPARE(idOf(read), ID);
    QCOMPARE(read.rangeStart, original.rangeStart);
    QCOMPARE(read.rangeEnd, original.rangeEnd);
    QCOMPARE(read.step, step);
    QVERIFY(read.freqList == freqList);
    QVERIFY(read.subRanges == subRanges);
}

void QtPkTuningCapabilityTest::storedTextIsIndented_data()
{
    QTest::addColumn<bool>("compact");
    QTest::addColumn<QByteArray>("children");
    QTest::newRow("compact") << true
                             << QByteArray(" <freq_list freq_units=\"KHz\">\n"
                                           "  <freq>470000</freq>\n"
                                           "  <freq>470025</freq>\n"
                                           " </freq_list>\n");
    QTest::newRow("wide") << false
                          << QByteArray("    <freq_list freq_units=\"KHz\">\n"
                                        "        <freq>470000</freq>\n"
                                        "        <freq>470025</freq>\n"
                                        "    </freq_list>\n");
}

void QtPkTuningCapabilityTest::storedTextIsIndented()
{
    QFETCH(bool, compact);
    QFETCH(QByteArray, children);
    QtPkTuningCapability capability = listed();
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QVERIFY(capability.StoreInXml(sink, compact));
    QVERIFY(sink.isOpen());
    // Qt orders attributes as it likes.
    const QByteArray id = "id=\"" + ID.toLatin1() + '"';
    const QByteArray version = "version=\"0.0.0.1\"";
    const QByteArray tail = ">\n" + children + "</tuning_capability>\n";
    const QByteArray idFirst = "<tuning_capability " + id + ' ' + version + tail;
    const QByteArray versionFirst = "<tuning_capability " + version + ' ' + id + tail;
    QVERIFY2(sink.data() == idFirst || sink.data() == versionFirst, sink.data().constData());
}

void QtPkTuningCapabilityTest::storingAgainWritesBoth()
{
    QtPkTuningCapability capability = listed();
    QBuffer first;
    first.open(QIODevice::WriteOnly);
    QVERIFY(capability.StoreInXml(first, true));
    QBuffer second;
    second.open(QIODevice::WriteOnly);
    QVERIFY(capability.StoreInXml(second, true));
    QCOMPARE(second.data().count("<tuning_capability "), 2);
    QCOMPARE(second.data().count("</tuning_capability>"), 2);
}

void QtPkTuningCapabilityTest::storingAsksForTheElementVirtually()
{
    class Marked : public QtPkTuningCapability
    {
    public:
        using QtPkTuningCapability::Export;
        QDomElement Export() override
        {
            QDomElement element = QtPkTuningCapability::Export();
            element.setAttribute(QStringLiteral("mark"), QStringLiteral("here"));
            return element;
        }
    };
    Marked capability;
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QVERIFY(capability.StoreInXml(sink, true));
    QVERIFY(sink.data().contains("mark=\"here\""));
}

void QtPkTuningCapabilityTest::unfitDeviceIsToldAndLeftAlone()
{
    QtPkTuningCapability capability = listed();
    QBuffer device;
    {
        const MessageRecorder recorder;
        QVERIFY(!capability.StoreInXml(device, true));
        QCOMPARE(recorder.messages(), debugMessage("Unopened output device can not be used"));
    }
    device.open(QIODevice::ReadOnly);
    {
        const MessageRecorder recorder;
        QVERIFY(!capability.StoreInXml(device, true));
        QCOMPARE(recorder.messages(), debugMessage("The output device is not opened for writing"));
    }
    QVERIFY(device.data().isEmpty());

    device.close();
    device.open(QIODevice::WriteOnly);
    const MessageRecorder recorder;
    QVERIFY(capability.StoreInXml(device, true));
    QCOMPARE(device.data().count("<tuning_capability "), 1); // the refused ones left nothing
    QVERIFY(recorder.messages().isEmpty());
}

void QtPkTuningCapabilityTest::failedWriteIsNoSuccess()
{
    QtPkTuningCapability capability = listed();
    FullDevice device;
    device.open(QIODevice::WriteOnly);
    QVERIFY(!capability.StoreInXml(device, true));
}

void QtPkTuningCapabilityTest::fileIsWrittenWhole()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral(u"capability \u00e9\u4e2d.xml"));
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();

    QtPkTuningCapability capability = listed();
    QVERIFY(capability.Export(path.toStdString(), true));
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QtPkTuningCapability same = listed();
    QVERIFY(same.StoreInXml(sink, true));
    QCOMPARE(readFile(path).size(), sink.data().size());
    QVERIFY(readFile(path).contains("\n  <freq>470000</freq>\n"));

    QVERIFY(capability.Export(path.toStdString(), false));
    QCOMPARE(readFile(path).count("<tuning_capability "), 2);
    QVERIFY(readFile(path).contains("\n        <freq>470000</freq>\n"));
}

void QtPkTuningCapabilityTest::fileThatCannotBeWrittenIsNoSuccess()
{
    const QTemporaryDir folder;
    QtPkTuningCapability capability = listed();
    const MessageRecorder recorder;
    QVERIFY(!capability.Export(folder.path().toStdString(), true));
    QVERIFY(!capability.Export(folder.filePath(QStringLiteral("no/such")).toStdString(), true));
    QVERIFY(!capability.Export(std::string(), true));
    QVERIFY(!capability.Export(std::string("/dev/full"), true));
    QVERIFY(recorder.messages().isEmpty());
}

void QtPkTuningCapabilityTest::diskThatFillsUpIsNoSuccess()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("capability.xml")).toStdString();
    QtPkTuningCapability capability = listed();
    {
        const FileSizeLimit limit(100); // less than the buffers on the way hold
        QVERIFY(!QtPkTuningCapability(capability).Export(path, true));
    }
    capability.freqList.assign(10000, 470000); // more than they hold
    {
        const FileSizeLimit limit(20000);
        QVERIFY(!QtPkTuningCapability(capability).Export(path, true));
    }
    QVERIFY(capability.Export(path, true));
}

void QtPkTuningCapabilityTest::constExportWritesNothing()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("capability.xml")).toStdString();
    const QtPkTuningCapability capability = listed();
    QVERIFY(!capability.Export(path, true));
    QtPkTuningCapability changeable = listed();
    QVERIFY(!static_cast<TuningCapability&>(changeable).Export(path, true));
    QVERIFY(QDir(folder.path()).isEmpty());
    QVERIFY(changeable.Export(path, true));
}

void QtPkTuningCapabilityTest::filesAreWellFormed_data()
{
    QTest::addColumn<bool>("compact");
    QTest::newRow("compact") << true;
    QTest::newRow("wide") << false;
}

void QtPkTuningCapabilityTest::filesAreWellFormed()
{
    QFETCH(bool, compact);
    const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
    QVERIFY2(!xmllint.isEmpty(), "xmllint of libxml2 is needed");
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("capability.xml"));
    QtPkTuningCapability capability = listed();
    capability.subRanges = {{470000, 471000}, {472000, 473000}};
    QVERIFY(capability.Export(path.toStdString(), compact));

    QProcess lint;
    lint.start(xmllint, {QStringLiteral("--xpath"),
                         QStringLiteral("concat(/tuning_capability/@id, ' ', "
                                        "sum(/tuning_capability/freq_list/freq), ' ', "
                                        "count(//sub_range[start < end]))"),
                         path});
    QVERIFY(lint.waitForFinished());
    QCOMPARE(lint.readAllStandardError(), QByteArray());
    QCOMPARE(lint.exitCode(), 0);
    QCOMPARE(QString::fromLatin1(lint.readAllStandardOutput()).trimmed(),
             ID + QStringLiteral(" 940025 2"));
}

QTEST_GUILESS_MAIN(QtPkTuningCapabilityTest)
#include "QtPkTuningCapabilityTest.moc"

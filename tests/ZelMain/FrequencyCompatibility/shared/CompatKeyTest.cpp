#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"

#include "tests/support/VirtualSlot.h"

#include <QtTest>

#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <sstream>
#include <type_traits>

using Basic = BasicCompatSystemUniqueKey;
using Compat = CompatSystemUniqueKey;
using Agility = AgilityOrderedCompatSystemUniqueKey;

static_assert(!std::has_virtual_destructor_v<Basic>);
static_assert(!std::has_virtual_destructor_v<Agility>);

namespace {

bool hasNoMemory = false;

} // namespace

void* operator new[](std::size_t size)
{
    void* const memory = hasNoMemory ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace {

const std::string NUL(1, '\0');

QByteArray fieldsOf(Basic const& key)
{
    return QByteArray::fromStdString("[" + key.series + "][" + key.band + "][" + key.txProfile +
                                     "]");
}

QByteArray fieldsOf(Compat const& key)
{
    return QByteArray::fromStdString("[" + key.zone + "]") +
           fieldsOf(static_cast<Basic const&>(key)) +
           QByteArray::fromStdString("[" + key.inclGroup + "]");
}

template <typename KEY>
QByteArray printed(KEY const& key)
{
    std::ostringstream stream;
    stream << key;
    return QByteArray::fromStdString(stream.str());
}

// The five operations, the same slots in every class.
template <typename KEY>
std::vector<int> slotsOf()
{
    return {virtualSlot(&KEY::Reset), virtualSlot(&KEY::ToString), virtualSlot(&KEY::FromString),
            virtualSlot(&KEY::Serialize), virtualSlot(&KEY::Deserialize)};
}

// Keys have no virtual destructor, so neither has one that derives from them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Counts how often it was reset.
class CountingKey : public Basic
{
public:
    void Reset() override
    {
        ++resets;
        Basic::Reset();
    }

    int resets = 0;
};

#pragma GCC diagnostic pop

// The order as it is written down: joined texts, compared as unsigned bytes.
bool joinedIsLess(std::string const& left, std::string const& right)
{
    return std::lexicographical_compare(
        left.begin(), left.end(), right.begin(), right.end(), [](char l, char r) {
            return static_cast<unsigned char>(l) < static_cast<unsigned char>(r);
        });
}

std::vector<std::string> someTexts()
{
    return {"", "a", "b", "ab", "ba", "aa", "\xC3\xA4", NUL, NUL + "a", "a" + NUL};
}

} // namespace

class CompatKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void newKeyIsEmpty();
    void constructorsFillTheFields();
    void keysConvertToTheirShorterForms();
    void resetEmptiesEveryField();
    void slotOrderIsTheSameInEveryClass();
    void operationsAreReachedThroughTheBase();
    void readingResetsVirtually();
    void validityFollowsTheFilledFields_data();
    void validityFollowsTheFilledFields();
    void basicTextIsRead_data();
    void basicTextIsRead();
    void basicTextIsWritten_data();
    void basicTextIsWritten();
    void compatTextIsRead_data();
    void compatTextIsRead();
    void compatTextIsWritten_data();
    void compatTextIsWritten();
    void textReadsBackWhereNoFieldHoldsASeparator();
    void streamPrintsTheFormOfTheRealKey();
    void basicKeySerializes_data();
    void basicKeySerializes();
    void withoutMemoryNothingIsSerialized();
    void bytesDeserialize_data();
    void bytesDeserialize();
    void nullDataIsRefused();
    void extendedKeysHaveNoBinaryForm();
    void orderComparesJoinedFields();
    void joinedFieldsAreNeitherLessNorEqual();
    void equalityComparesEveryField();
    void agilityOrderComesBeforeTheText();
    void agilityKeysIgnoreTheZone();
};

void CompatKeyTest::newKeyIsEmpty()
{
    QCOMPARE(fieldsOf(Basic()), QByteArray("[][][]"));
    QCOMPARE(fieldsOf(Compat()), QByteArray("[][][][][]"));
    QCOMPARE(fieldsOf(Agility()), QByteArray("[][][][][]"));
    QCOMPARE(Agility().agilityOrder, 268435455U);
    QVERIFY(Basic().IsNull());
    QVERIFY(Compat().IsNull());
    QVERIFY(Agility().IsNull());
}

void CompatKeyTest::constructorsFillTheFields()
{
    QCOMPARE(fieldsOf(Basic("S", "B", "T")), QByteArray("[S][B][T]"));
    QCOMPARE(fieldsOf(Compat("Z", "S", "B", "T", "G")), QByteArray("[Z][S][B][T][G]"));
    QCOMPARE(fieldsOf(Compat(Basic("S", "B", "T"), "Z", "G")), QByteArray("[Z][S][B][T][G]"));

    const Agility fromFields("Z", "S", "B", "T", "G", 7);
    QCOMPARE(fieldsOf(fromFields), QByteArray("[Z][S][B][T][G]"));
    QCOMPARE(fromFields.agilityOrder, 7U);

    const Agility fromKey(Compat("Z", "S", "B", "T", "G"), 8);
    QCOMPARE(fieldsOf(fromKey), QByteArray("[Z][S][B][T][G]"));
    QCOMPARE(fromKey.agilityOrder, 8U);
}

void CompatKeyTest::keysConvertToTheirShorterForms()
{
    QCOMPARE(fieldsOf(Compat("Z", "S", "B", "T", "G").ToBasicCompatSystemUniqueKey()),
             QByteArray("[S][B][T]"));
    Agility agility("Z", "S", "B", "T", "G", 7);
    const Compat compat = agility.ToCompatSystemUniqueKey();
    QCOMPARE(fieldsOf(compat), QByteArray("[Z][S][B][T][G]"));
}

void CompatKeyTest::resetEmptiesEveryField()
{
    Basic basic("S", "B", "T");
    basic.Reset();
    QCOMPARE(fieldsOf(basic), QByteArray("[][][]"));

    Compat compat("Z", "S", "B", "T", "G");
    static_cast<Basic&>(compat).Reset();
    QCOMPARE(fieldsOf(compat), QByteArray("[][][][][]"));

    Agility agility("Z", "S", "B", "T", "G", 7);
    static_cast<Basic&>(agility).Reset();
    QCOMPARE(fieldsOf(agility), QByteArray("[][][][][]"));
    QCOMPARE(agility.agilityOrder, 0x0FFFFFFFU);
}

void CompatKeyTest::slotOrderIsTheSameInEveryClass()
{
    const std::vector<int> inOrder = {0, 1, 2, 3, 4};
    QCOMPARE(slotsOf<Basic>(), inOrder);
    QCOMPARE(slotsOf<Compat>(), inOrder);
    QCOMPARE(slotsOf<Agility>(), inOrder);
    QCOMPARE(virtualSlot(&Basic::IsNull), -1);
    QCOMPARE(virtualSlot(&Basic::IsValid), -1);
    QCOMPARE(virtualSlot(&Compat::IsNull), -1);
    QCOMPARE(virtualSlot(&Compat::IsValid), -1);
}

void CompatKeyTest::readingResetsVirtually()
{
    CountingKey key;
    QVERIFY(key.FromString("S|B"));
    QCOMPARE(key.resets, 1);
    QVERIFY(!key.FromString(""));
    QCOMPARE(key.resets, 2);
    QVERIFY(!key.FromString("S|"));
    QCOMPARE(key.resets, 4); // before and after the reading
    QVERIFY(key.Deserialize("S\0B\0T", 5));
    QCOMPARE(key.resets, 5);
    QVERIFY(!key.Deserialize(nullptr, 0));
    QCOMPARE(key.resets, 6);
}

void CompatKeyTest::operationsAreReachedThroughTheBase()
{
    Compat compat("Z", "S", "B", "T", "G");
    Basic& asBasic = compat;
    QCOMPARE(asBasic.ToString(), std::string("Z|S|B|T|G"));
    QVERIFY(asBasic.FromString("Y|S|B|T|G"));
    QCOMPARE(compat.zone, std::string("Y"));
    void* data = &compat;
    int size = 1;
    QVERIFY(!asBasic.Serialize(data, size));
    QVERIFY(!asBasic.Deserialize("S\0B\0T", 5));
}

void CompatKeyTest::validityFollowsTheFilledFields_data()
{
    QTest::addColumn<QString>("filled"); // letters of the filled fields, of z s b t g
    QTest::addColumn<bool>("basicIsValid");
    QTest::addColumn<bool>("compatIsValid");
    QTest::newRow("nothing") << "" << false << false;
    QTest::newRow("zone") << "z" << false << true;
    QTest::newRow("series") << "s" << false << true;
    QTest::newRow("band") << "b" << false << true;
    QTest::newRow("transmitter profile") << "t" << false << true;
    QTest::newRow("inclusion group") << "g" << false << false;
    QTest::newRow("series and band") << "sb" << true << true;
    QTest::newRow("series and transmitter profile") << "st" << false << true;
    QTest::newRow("band and transmitter profile") << "bt" << false << true;
    QTest::newRow("everything") << "zsbtg" << true << true;
}

void CompatKeyTest::validityFollowsTheFilledFields()
{
    QFETCH(QString, filled);
    const auto field = [&filled](char letter) {
        return filled.contains(QLatin1Char(letter)) ? std::string(1, letter) : std::string();
    };
    const Compat compat(field('z'), field('s'), field('b'), field('t'), field('g'));
    const Basic basic = compat.ToBasicCompatSystemUniqueKey();
    QTEST(basic.IsValid(), "basicIsValid");
    QTEST(compat.IsValid(), "compatIsValid");
    QTEST(Agility(compat, 1).IsValid(), "compatIsValid");
    QCOMPARE(basic.IsNull(),
             !filled.contains('s') && !filled.contains('b') && !filled.contains('t'));
    QCOMPARE(compat.IsNull(), filled.isEmpty());
    QCOMPARE(Agility(compat, 1).IsNull(), filled.isEmpty());
}

void CompatKeyTest::basicTextIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<QByteArray>("fields");
    QTest::newRow("two fields") << QByteArray("S|B") << true << QByteArray("[S][B][]");
    QTest::newRow("three fields") << QByteArray("S|B|T") << true << QByteArray("[S][B][T]");
    QTest::newRow("separators after the second stay")
        << QByteArray("S|B|T|U") << true << QByteArray("[S][B][T|U]");
    QTest::newRow("empty last field") << QByteArray("S|B|") << true << QByteArray("[S][B][]");
    QTest::newRow("no separator fills series and band")
        << QByteArray("ABC") << true << QByteArray("[ABC][ABC][]");
    QTest::newRow("blanks stay") << QByteArray(" S | B ") << true << QByteArray("[ S ][ B ][]");
    QTest::newRow("empty text") << QByteArray() << false << QByteArray("[][][]");
    QTest::newRow("empty series") << QByteArray("|B") << false << QByteArray("[][][]");
    QTest::newRow("empty series before three")
        << QByteArray("|B|T") << false << QByteArray("[][][]");
    QTest::newRow("empty band") << QByteArray("S|") << false << QByteArray("[][][]");
    QTest::newRow("empty band before a third")
        << QByteArray("S||T") << false << QByteArray("[][][]");
    QTest::newRow("one separator") << QByteArray("|") << false << QByteArray("[][][]");
    QTest::newRow("two separators") << QByteArray("||") << false << QByteArray("[][][]");
    QTest::newRow("NUL is a character")
        << QByteArray("S\0S|B", 5) << true << QByteArray("[S\0S][B][]", 10);
}

void CompatKeyTest::basicTextIsRead()
{
    QFETCH(QByteArray, text);
    Basic key("x", "y", "z");
    QTEST(key.FromString(text.toStdString()), "understood");
    QTEST(fieldsOf(key), "fields");
}

void CompatKeyTest::basicTextIsWritten_data()
{
    QTest::addColumn<QString>("series");
    QTest::addColumn<QString>("band");
    QTest::addColumn<QString>("txProfile");
    QTest::addColumn<QString>("text");
    QTest::newRow("all") << "S"
                         << "B"
                         << "T"
                         << "S|B|T";
    QTest::newRow("no transmitter profile") << "S"
                                            << "B"
                                            << ""
                                            << "S|B";
    QTest::newRow("nothing") << ""
                             << ""
                             << ""
                             << "|";
    QTest::newRow("only the transmitter profile") << ""
                                                  << ""
                                                  << "T"
                                                  << "||T";
    QTest::newRow("a separator is not escaped") << "S|S"
                                                << "B"
                                                << "T"
                                                << "S|S|B|T";
}

void CompatKeyTest::basicTextIsWritten()
{
    QFETCH(QString, series);
    QFETCH(QString, band);
    QFETCH(QString, txProfile);
    const Basic key(series.toStdString(), band.toStdString(), txProfile.toStdString());
    QTEST(QString::fromStdString(key.ToString()), "text");
}

void CompatKeyTest::compatTextIsRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<QByteArray>("fields");
    QTest::newRow("five fields") << "Z|S|B|T|G" << true << QByteArray("[Z][S][B][T][G]");
    QTest::newRow("no transmitter profile") << "Z|S|B||G" << true << QByteArray("[Z][S][B][][G]");
    QTest::newRow("separators after the fourth stay")
        << "Z|S|B|T|G|H|" << true << QByteArray("[Z][S][B][T][G|H|]");
    QTest::newRow("no inclusion group") << "Z|S|B|T|" << false << QByteArray("[][][][][]");
    QTest::newRow("no zone") << "|S|B|T|G" << false << QByteArray("[][][][][]");
    QTest::newRow("no series") << "Z||B|T|G" << false << QByteArray("[][][][][]");
    QTest::newRow("no band") << "Z|S||T|G" << false << QByteArray("[][][][][]");
    QTest::newRow("empty text") << "" << false << QByteArray("[][][][][]");
    QTest::newRow("only separators") << "||||" << false << QByteArray("[][][][][]");
    // One separator is at 1. Series runs from 2 to the end, then the search starts again: band is
    // what stands before the separator, the profile what stands after it, and the search is at the
    // beginning once more.
    QTest::newRow("one separator wraps") << "a|b" << true << QByteArray("[a][b][a][b][a|b]");
    // No separator: every search starts at the beginning and takes the whole text.
    QTest::newRow("no separator wraps") << "a" << true << QByteArray("[a][a][a][a][a]");
    // Two: zone a, series b, band c; then again from the beginning, profile a, and the inclusion
    // group is what follows the first separator.
    QTest::newRow("two separators wrap") << "a|b|c" << true << QByteArray("[a][b][c][a][b|c]");
    // Three: the profile ends at the end of the text, so the inclusion group is all of it.
    QTest::newRow("three separators wrap")
        << "a|b|c|d" << true << QByteArray("[a][b][c][d][a|b|c|d]");
    QTest::newRow("one separator at the end") << "a|" << false << QByteArray("[][][][][]");
}

void CompatKeyTest::compatTextIsRead()
{
    QFETCH(QString, text);
    Compat compat("v", "w", "x", "y", "z");
    QTEST(compat.FromString(text.toStdString()), "understood");
    QTEST(fieldsOf(compat), "fields");

    Agility agility("v", "w", "x", "y", "z", 7);
    QTEST(agility.FromString(text.toStdString()), "understood");
    QTEST(fieldsOf(agility), "fields");
    QCOMPARE(agility.agilityOrder, 268435455U);
}

void CompatKeyTest::compatTextIsWritten_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("all") << QByteArray("Z,S,B,T,G") << QByteArray("Z|S|B|T|G");
    QTest::newRow("no transmitter profile") << QByteArray("Z,S,B,,G") << QByteArray("Z|S|B||G");
    QTest::newRow("nothing") << QByteArray(",,,,") << QByteArray("||||");
    QTest::newRow("a separator is not escaped")
        << QByteArray("Z|,S,B,T,G") << QByteArray("Z||S|B|T|G");
}

void CompatKeyTest::compatTextIsWritten()
{
    QFETCH(QByteArray, key);
    const QList<QByteArray> fields = key.split(',');
    const Compat compat(fields[0].toStdString(), fields[1].toStdString(), fields[2].toStdString(),
                        fields[3].toStdString(), fields[4].toStdString());
    QTEST(QByteArray::fromStdString(compat.ToString()), "text");
    QTEST(QByteArray::fromStdString(Agility(compat, 7).ToString()), "text");
}

void CompatKeyTest::textReadsBackWhereNoFieldHoldsASeparator()
{
    const std::vector<std::string> texts = {"a", "b c", "\xC3\xA4", NUL};
    for (std::string const& one : texts) {
        for (std::string const& other : texts) {
            Basic basic;
            QVERIFY(basic.FromString(Basic(one, other, one).ToString()));
            QVERIFY(basic == Basic(one, other, one));
            Compat compat;
            QVERIFY(compat.FromString(Compat(one, other, one, "", other).ToString()));
            QVERIFY(compat == Compat(one, other, one, "", other));
        }
    }
}

void CompatKeyTest::streamPrintsTheFormOfTheRealKey()
{
    const Compat compat("Z", "S", "B", "T", "G");
    QCOMPARE(printed(Basic("S", "B", "T")), QByteArray("S|B|T"));
    QCOMPARE(printed(compat), QByteArray("Z|S|B|T|G"));
    QCOMPARE(printed(Agility(compat, 7)), QByteArray("Z|S|B|T|G"));
    QCOMPARE(printed<Basic>(compat), QByteArray("Z|S|B|T|G"));

    std::ostringstream stream;
    QCOMPARE(&(stream << compat), &stream);
    stream << '!' << compat;
    QCOMPARE(stream.str(), std::string("Z|S|B|T|G!Z|S|B|T|G"));
}

void CompatKeyTest::basicKeySerializes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("three fields") << QByteArray("S|B|T") << QByteArray::fromHex("5300420054");
    QTest::newRow("two fields") << QByteArray("S|B") << QByteArray::fromHex("53004200");
    QTest::newRow("no field") << QByteArray() << QByteArray::fromHex("0000");
    QTest::newRow("bytes beyond ASCII")
        << QByteArray("\xC3\xA4|\xFF") << QByteArray::fromHex("C3A400FF00");
}

void CompatKeyTest::basicKeySerializes()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, bytes);
    Basic key;
    key.FromString(text.toStdString());
    void* data = nullptr;
    int size = -1;
    QVERIFY(key.Serialize(data, size));
    const std::unique_ptr<char[]> owned(static_cast<char*>(data));
    QCOMPARE(QByteArray(owned.get(), size), bytes);

    Basic back("x", "y", "z");
    QVERIFY(back.Deserialize(owned.get(), size));
    QVERIFY(back == key);
}

void CompatKeyTest::withoutMemoryNothingIsSerialized()
{
    Basic key("S", "B", "T");
    void* data = &key;
    int size = -1;
    bool isThrown = false;

    hasNoMemory = true;
    try {
        key.Serialize(data, size);
    } catch (const std::bad_alloc&) {
        isThrown = true;
    }
    hasNoMemory = false;

    QVERIFY(isThrown);
    QCOMPARE(data, nullptr);
    QCOMPARE(size, 0);
}

void CompatKeyTest::bytesDeserialize_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<QByteArray>("fields");
    QTest::newRow("three fields") << QByteArray::fromHex("5300420054") << true
                                  << QByteArray("[S][B][T]");
    QTest::newRow("second zero is last")
        << QByteArray::fromHex("53004200") << true << QByteArray("[S][B][]");
    QTest::newRow("two zeros make an empty key")
        << QByteArray::fromHex("0000") << true << QByteArray("[][][]");
    QTest::newRow("further zeros stay in the last field")
        << QByteArray::fromHex("53004200540055") << true << QByteArray("[S][B][T\0U]", 11);
    QTest::newRow("empty series") << QByteArray::fromHex("00420054") << true
                                  << QByteArray("[][B][T]");
    QTest::newRow("one zero") << QByteArray::fromHex("530042") << false << QByteArray("[][][]");
    QTest::newRow("one zero alone") << QByteArray::fromHex("00") << false << QByteArray("[][][]");
    QTest::newRow("no zero") << QByteArray("SBT") << false << QByteArray("[][][]");
    QTest::newRow("nothing") << QByteArray() << false << QByteArray("[][][]");
}

void CompatKeyTest::bytesDeserialize()
{
    QFETCH(QByteArray, bytes);
    Basic key("x", "y", "z");
    QTEST(key.Deserialize(bytes.constData(), bytes.size()), "understood");
    QTEST(fieldsOf(key), "fields");
}

void CompatKeyTest::nullDataIsRefused()
{
    Basic key("x", "y", "z");
    QVERIFY(!key.Deserialize(nullptr, 5));
    QVERIFY(key.IsNull());
    key.series = "x";
    QVERIFY(!key.Deserialize("S\0B\0T", -1));
    QVERIFY(key.IsNull());
}

void CompatKeyTest::extendedKeysHaveNoBinaryForm()
{
    Compat compat("Z", "S", "B", "T", "G");
    Agility agility(compat, 7);
    for (Basic* key : {static_cast<Basic*>(&compat), static_cast<Basic*>(&agility)}) {
        int anything = 0;
        void* data = &anything;
        int size = 42;
        QVERIFY(!key->Serialize(data, size));
        QCOMPARE(data, nullptr);
        QCOMPARE(size, 0);
        QVERIFY(!key->Deserialize("s\0b\0t", 5));
    }
    QCOMPARE(fieldsOf(compat), QByteArray("[Z][S][B][T][G]"));
    QCOMPARE(fieldsOf(agility), QByteArray("[Z][S][B][T][G]"));
    QCOMPARE(agility.agilityOrder, 7U);
}

void CompatKeyTest::orderComparesJoinedFields()
{
    const std::vector<std::string> texts = someTexts();
    for (std::string const& a : texts) {
        for (std::string const& b : texts) {
            for (std::string const& c : texts) {
                for (std::string const& d : texts) {
                    QCOMPARE(Basic(a, b, "") < Basic(c, "", d), joinedIsLess(a + b, c + d));
                    QCOMPARE(Basic("", a, b) < Basic(c, d, "x"), joinedIsLess(a + b, c + d + "x"));
                    QCOMPARE(Compat(a, "", b, "", "") < Compat("", c, "", "", d),
                             joinedIsLess(a + b, c + d));
                    QCOMPARE(Compat("", "", a, b, "") < Compat(c, "", "", d, ""),
                             joinedIsLess(a + b, c + d));
                    QCOMPARE(Agility("zone", a, "", b, "", 1) < Agility("", "", c, "", d, 1),
                             joinedIsLess(a + b, c + d));
                }
            }
        }
    }
}

void CompatKeyTest::joinedFieldsAreNeitherLessNorEqual()
{
    const Basic left("ab", "c", "");
    const Basic right("a", "bc", "");
    QVERIFY(!(left < right));
    QVERIFY(!(right < left));
    QVERIFY(!(left == right));

    // A map takes them for one key, and keeps the first.
    std::map<Basic, int> map = {{left, 1}};
    map[right] = 2;
    QCOMPARE(map.size(), std::size_t(1));
    QCOMPARE(map.begin()->first.series, std::string("ab"));
    QCOMPARE(map.begin()->second, 2);
}

void CompatKeyTest::equalityComparesEveryField()
{
    QVERIFY(Basic("S", "B", "T") == Basic("S", "B", "T"));
    QVERIFY(!(Basic("S", "B", "T") == Basic("s", "B", "T")));
    QVERIFY(!(Basic("S", "B", "T") == Basic("S", "b", "T")));
    QVERIFY(!(Basic("S", "B", "T") == Basic("S", "B", "t")));
    QVERIFY(!(Basic("S", "B", "T") == Basic("S", "B", "T" + NUL)));

    const Compat key("Z", "S", "B", "T", "G");
    QVERIFY(key == Compat("Z", "S", "B", "T", "G"));
    QVERIFY(!(key == Compat("z", "S", "B", "T", "G")));
    QVERIFY(!(key == Compat("Z", "s", "B", "T", "G")));
    QVERIFY(!(key == Compat("Z", "S", "b", "T", "G")));
    QVERIFY(!(key == Compat("Z", "S", "B", "t", "G")));
    QVERIFY(!(key == Compat("Z", "S", "B", "T", "g")));

    const Agility agility(key, 1);
    QVERIFY(agility == Agility(key, 1));
    QVERIFY(!(agility == Agility(key, 2)));
    QVERIFY(!(agility == Agility("Z", "s", "B", "T", "G", 1)));
    QVERIFY(!(agility == Agility("Z", "S", "b", "T", "G", 1)));
    QVERIFY(!(agility == Agility("Z", "S", "B", "t", "G", 1)));
    QVERIFY(!(agility == Agility("Z", "S", "B", "T", "g", 1)));
}

void CompatKeyTest::agilityOrderComesBeforeTheText()
{
    QVERIFY(Agility("", "z", "z", "z", "z", 1) < Agility("", "a", "a", "a", "a", 2));
    QVERIFY(!(Agility("", "a", "a", "a", "a", 2) < Agility("", "z", "z", "z", "z", 1)));
    QVERIFY(Agility("", "a", "a", "a", "a", 1) < Agility("", "z", "z", "z", "z", 1));
    // Orders are unsigned: a negative number would come first.
    QVERIFY(Agility("", "z", "", "", "", 1) < Agility("", "a", "", "", "", 0x80000000U));
    QVERIFY(Agility("", "z", "", "", "", 1) < Agility());
}

void CompatKeyTest::agilityKeysIgnoreTheZone()
{
    const Agility left("X", "S", "B", "T", "G", 1);
    const Agility right("Y", "S", "B", "T", "G", 1);
    QVERIFY(left == right);
    QVERIFY(!(left < right));
    QVERIFY(!(right < left));
}

QTEST_APPLESS_MAIN(CompatKeyTest)
#include "CompatKeyTest.moc"

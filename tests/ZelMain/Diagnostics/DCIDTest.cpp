#include "ZelMain/Diagnostics/DCID.h"

#include <QByteArray>
#include <QtTest>

#include <type_traits>

static_assert(std::is_constructible_v<DCID, const unsigned char*>);
static_assert(!std::is_convertible_v<const unsigned char*, DCID>);

class DCIDTest : public QObject
{
    Q_OBJECT

private slots:
    void defaultIsAllZeros();
    void textIsReadAndPrinted_data();
    void textIsReadAndPrinted();
    void nullTextReadsAsEmpty();
    void bytesAreTakenAndPackedInOrder();
    void unpackReplacesTheValue();
    void copiesAreEqual();
    void orderIsThatOfTheBytes();
    void fileNameIsTheTextAndItsExtension();
    void hasAVirtualDestructor();
};

namespace {

QByteArray textOf(const DCID& id)
{
    char text[37];
    DCID::DCIDIntoString(id, text);
    return text;
}

} // namespace

void DCIDTest::defaultIsAllZeros()
{
    QCOMPARE(textOf(DCID()), QByteArray("00000000-0000-0000-0000-000000000000"));
}

void DCIDTest::textIsReadAndPrinted_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("printed");
    const QByteArray all = "01234567-89AB-CDEF-0123-456789ABCDEF";
    QTest::newRow("braces and mixed case")
        << QByteArray("{01234567-89ab-CDEF-0123-456789ABCDEF}") << all;
    QTest::newRow("digits only") << QByteArray("0123456789ABCDEF0123456789ABCDEF") << all;
    QTest::newRow("one digit is a high nibble")
        << QByteArray("1") << QByteArray("10000000-0000-0000-0000-000000000000");
    QTest::newRow("empty") << QByteArray() << QByteArray("00000000-0000-0000-0000-000000000000");
}

void DCIDTest::textIsReadAndPrinted()
{
    QFETCH(QByteArray, text);
    QTEST(textOf(DCID::StringToDCID(text.constData())), "printed");
}

void DCIDTest::nullTextReadsAsEmpty()
{
    QVERIFY(DCID::StringToDCID(nullptr) == DCID());
}

void DCIDTest::bytesAreTakenAndPackedInOrder()
{
    unsigned char bytes[16];
    for (int index = 0; index < 16; ++index) {
        bytes[index] = static_cast<unsigned char>(0xF0 + index);
    }
    const DCID id(bytes);
    QCOMPARE(textOf(id), QByteArray("F0F1F2F3-F4F5-F6F7-F8F9-FAFBFCFDFEFF"));
    unsigned char packed[16] = {};
    id.Pack(packed);
    QVERIFY(std::equal(std::begin(bytes), std::end(bytes), std::begin(packed)));
}

void DCIDTest::unpackReplacesTheValue()
{
    const unsigned char bytes[16] = {1};
    DCID id = DCID::StringToDCID("FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF");
    id.Unpack(bytes);
    QCOMPARE(textOf(id), QByteArray("01000000-0000-0000-0000-000000000000"));
}

void DCIDTest::copiesAreEqual()
{
    const DCID id = DCID::StringToDCID("01234567");
    const DCID copy(id); // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
    DCID assigned;
    QVERIFY(assigned != id);
    assigned = id;
    QVERIFY(copy == id);
    QVERIFY(assigned == id);
    QVERIFY(!(assigned != id));
}

void DCIDTest::orderIsThatOfTheBytes()
{
    const DCID small = DCID::StringToDCID("7FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF");
    const DCID large = DCID::StringToDCID("80");
    QVERIFY(small < large);
    QVERIFY(!(large < small));
    QVERIFY(!(small < small));
}

void DCIDTest::fileNameIsTheTextAndItsExtension()
{
    QByteArray buffer(43, '#');
    QCOMPARE(DCID::DCIDIntoFileName(DCID(), buffer.data()), 36);
    QCOMPARE(buffer, QByteArray("00000000-0000-0000-0000-000000000000.ddl") + '\0' + "##");
    const DCID id = DCID::StringToDCID("0123456789ABCDEF0123456789ABCDEF");
    QCOMPARE(DCID::DCIDIntoFileName(id, buffer.data()), 36);
    QCOMPARE(QByteArray(buffer.constData()),
             QByteArray("01234567-89AB-CDEF-0123-456789ABCDEF.ddl"));
}

void DCIDTest::hasAVirtualDestructor()
{
    QVERIFY(std::has_virtual_destructor<DCID>::value);
}

QTEST_GUILESS_MAIN(DCIDTest)
#include "DCIDTest.moc"

#include "ZelMain/Diagnostics/CID.h"

#include <QByteArray>
#include <QtTest>

#include <algorithm>
#include <iterator>
#include <new>
#include <type_traits>

static_assert(std::is_constructible_v<CID, const unsigned char*>);
static_assert(!std::is_convertible_v<const unsigned char*, CID>);

class CIDTest : public QObject
{
    Q_OBJECT

private slots:
    void defaultIsSixteenZeroBytes();
    void textIsReadByItsDigits_data();
    void textIsReadByItsDigits();
    void surplusDigitsTouchNothingElse();
    void nullTextReadsAsEmpty();
    void everyByteIsPrinted();
    void printingEndsWithinTheBuffer();
    void bytesArePackedInOrder();
    void bytesAreTakenInOrder();
    void unpackReplacesTheValue();
    void copiesAreEqual();
    void orderIsThatOfTheFirstByteThatDiffers_data();
    void orderIsThatOfTheFirstByteThatDiffers();
    void hasAVirtualDestructor();
};

namespace {

constexpr char ALL_ZEROS[] = "00000000-0000-0000-0000-000000000000";

QByteArray textOf(const CID& id)
{
    char text[37];
    CID::CIDIntoString(id, text);
    return text;
}

} // namespace

void CIDTest::defaultIsSixteenZeroBytes()
{
    unsigned char bytes[16];
    std::fill(std::begin(bytes), std::end(bytes), static_cast<unsigned char>(0xFF));
    CID().Pack(bytes);
    for (const unsigned char byte : bytes) {
        QCOMPARE(int(byte), 0);
    }
    QCOMPARE(textOf(CID()), QByteArray(ALL_ZEROS));
}

void CIDTest::textIsReadByItsDigits_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("printed");
    const QByteArray all = "01234567-89AB-CDEF-0123-456789ABCDEF";
    QTest::newRow("as printed") << all << all;
    QTest::newRow("braces and mixed case")
        << QByteArray("{01234567-89ab-CDEF-0123-456789ABCDEF}") << all;
    QTest::newRow("digits only") << QByteArray("0123456789ABCDEF0123456789ABCDEF") << all;
    QTest::newRow("lower case") << QByteArray("0123456789abcdef0123456789abcdef") << all;
    QTest::newRow("skipped characters within a byte")
        << QByteArray("0-1 2\t3{4}5x6y7z89ab cdef 0123 45-67-89-AB-CD-EF") << all;
    QTest::newRow("bytes outside ASCII are skipped") << QByteArray("\xC3\xA9"
                                                                   "01\xFF"
                                                                   "23456789ABCDEF0123456789ABCDEF")
                                                     << all;
    QTest::newRow("neighbours of the digits are skipped")
        << QByteArray("/:@G`g0123456789ABCDEF0123456789ABCDEF") << all;
    QTest::newRow("surplus digits are ignored")
        << QByteArray("0123456789ABCDEF0123456789ABCDEFFFFF") << all;
    QTest::newRow("empty") << QByteArray("") << QByteArray(ALL_ZEROS);
    QTest::newRow("no digit") << QByteArray("{----} xyz") << QByteArray(ALL_ZEROS);
    QTest::newRow("one digit is a high nibble")
        << QByteArray("1") << QByteArray("10000000-0000-0000-0000-000000000000");
    QTest::newRow("ends after a high nibble")
        << QByteArray("ABC") << QByteArray("ABC00000-0000-0000-0000-000000000000");
    QTest::newRow("last nibble missing") << QByteArray("0123456789ABCDEF0123456789ABCDE")
                                         << QByteArray("01234567-89AB-CDEF-0123-456789ABCDE0");
}

void CIDTest::textIsReadByItsDigits()
{
    QFETCH(QByteArray, text);
    QTEST(textOf(CID::StringToCID(text.constData())), "printed");
}

void CIDTest::surplusDigitsTouchNothingElse()
{
    alignas(CID) char memory[2 * sizeof(CID)];
    std::fill(std::begin(memory), std::end(memory), '#');
    const CID* const id = new (memory) CID(CID::StringToCID(QByteArray(100, 'F').constData()));
    QCOMPARE(textOf(*id), QByteArray("FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"));
    QCOMPARE(QByteArray(memory + sizeof(CID), sizeof(CID)), QByteArray(sizeof(CID), '#'));
}

void CIDTest::nullTextReadsAsEmpty()
{
    QVERIFY(CID::StringToCID(nullptr) == CID());
}

void CIDTest::everyByteIsPrinted()
{
    for (int value = 0; value < 256; ++value) {
        unsigned char bytes[16] = {};
        bytes[3] = static_cast<unsigned char>(value);
        bytes[15] = static_cast<unsigned char>(255 - value);
        const QByteArray expected = QString::asprintf("000000%02X-0000-0000-0000-0000000000%02X",
                                                      unsigned(value), unsigned(255 - value))
                                        .toLatin1();
        QCOMPARE(textOf(CID(bytes)), expected);
        QVERIFY(CID::StringToCID(expected.constData()) == CID(bytes));
    }
}

void CIDTest::printingEndsWithinTheBuffer()
{
    QByteArray buffer(40, '#');
    QCOMPARE(CID::CIDIntoString(CID(), buffer.data()), 36);
    QCOMPARE(buffer, QByteArray(ALL_ZEROS) + '\0' + "###");
}

void CIDTest::bytesArePackedInOrder()
{
    unsigned char bytes[18] = {};
    bytes[0] = bytes[17] = 0xEE;
    CID::StringToCID("000102030405060708090A0B0C0D0E0F").Pack(bytes + 1);
    for (int index = 0; index < 16; ++index) {
        QCOMPARE(int(bytes[index + 1]), index);
    }
    QCOMPARE(int(bytes[0]), 0xEE);
    QCOMPARE(int(bytes[17]), 0xEE);
}

void CIDTest::bytesAreTakenInOrder()
{
    const unsigned char bytes[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                     0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
    QCOMPARE(textOf(CID(bytes)), QByteArray("01234567-89AB-CDEF-FEDC-BA9876543210"));
}

void CIDTest::unpackReplacesTheValue()
{
    const unsigned char bytes[16] = {1};
    CID id = CID::StringToCID("FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF");
    id.Unpack(bytes);
    QCOMPARE(textOf(id), QByteArray("01000000-0000-0000-0000-000000000000"));
}

void CIDTest::copiesAreEqual()
{
    const CID id = CID::StringToCID("01234567");
    const CID copy(id); // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
    CID assigned;
    QVERIFY(assigned != id);
    assigned = id;
    QVERIFY(copy == id);
    QVERIFY(assigned == id);
    QVERIFY(!(assigned != id));
}

void CIDTest::orderIsThatOfTheFirstByteThatDiffers_data()
{
    QTest::addColumn<QByteArray>("less");
    QTest::addColumn<QByteArray>("greater");
    QTest::newRow("first byte, whatever follows")
        << QByteArray("01FFFFFFFFFFFFFFFFFFFFFFFFFFFFFF") << QByteArray("02");
    QTest::newRow("bytes are unsigned") << QByteArray("7F") << QByteArray("80");
    QTest::newRow("last byte") << QByteArray("00000000000000000000000000000001")
                               << QByteArray("00000000000000000000000000000002");
}

void CIDTest::orderIsThatOfTheFirstByteThatDiffers()
{
    QFETCH(QByteArray, less);
    QFETCH(QByteArray, greater);
    const CID small = CID::StringToCID(less.constData());
    const CID large = CID::StringToCID(greater.constData());
    QVERIFY(small < large);
    QVERIFY(!(large < small));
    QVERIFY(!(small < small));
    QVERIFY(small != large);
    QVERIFY(!(small == large));
}

void CIDTest::hasAVirtualDestructor()
{
    QVERIFY(std::has_virtual_destructor<CID>::value);
}

QTEST_GUILESS_MAIN(CIDTest)
#include "CIDTest.moc"

#include "ZelMain/Frequency.h"

#include "tests/ZelMain/FrequencyTestSupport.h"

#include <QDataStream>
#include <QHash>
#include <QVariant>
#include <QtTest>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

static_assert(std::has_virtual_destructor_v<Frequency>);
static_assert(std::is_same_v<decltype(std::declval<const Frequency&>().inHz()), quint64>);
static_assert(std::is_same_v<decltype(qHash(std::declval<Frequency>())), uint>);

namespace {

constexpr int INT_LOWEST = std::numeric_limits<int>::min();
constexpr int INT_HIGHEST = std::numeric_limits<int>::max();
const double INFINITE = std::numeric_limits<double>::infinity();
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/** Bytes of a value in a stream, written by hand: suffix " (A)", flags as given. */
QByteArray streamedBytes(double khz, bool findBestWhenZero, bool keepTrailingZeros)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << khz << quint8(findBestWhenZero ? 1 : 0) << QStringLiteral(" (A)")
           << quint8(keepTrailingZeros ? 1 : 0);
    return bytes;
}

Frequency fromBytes(const QByteArray& bytes)
{
    Frequency frequency;
    QDataStream stream(bytes);
    stream >> frequency;
    return frequency;
}

QByteArray toBytes(const Frequency& frequency)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << frequency;
    return bytes;
}

/** A value that differs from a fresh one in its suffix and both flags. */
Frequency withEverything(double khz)
{
    return fromBytes(streamedBytes(khz, false, false));
}

bool isFresh(const Frequency& frequency)
{
    return toBytes(frequency) == toBytes(Frequency(frequency.inKhz(), true));
}

/** Nearest whole number, halves upward, in the 64 bits of a long double's mantissa. */
int modelRound(double value)
{
    const long double rounded = std::floor(static_cast<long double>(value) + 0.5L);
    if (rounded >= INT_HIGHEST) {
        return INT_HIGHEST;
    }
    return rounded <= INT_LOWEST ? INT_LOWEST : static_cast<int>(rounded);
}

bool isInRangeOfQRound(double value)
{
    return value > INT_LOWEST + 1.0 && value < INT_HIGHEST - 1.0;
}

/** Rounds through the one operation that shows the rounding of its operand itself. */
double rounded(double value)
{
    return (Frequency::fromKhz(value) * 1.0F).inKhz();
}

} // namespace

class FrequencyTest : public QObject
{
    Q_OBJECT

private slots:
    void metaTypeIsRegisteredOnFirstUse(); // stands before whatever else uses it

    void newValueIsNullAndFindsBest();
    void zeroMayReadAsANumber();
    void copyKeepsEverything();
    void assignmentKeepsEverything();
    void moveKeepsEverything();
    void factoryKeepsItsGrain_data();
    void factoryKeepsItsGrain();
    void factoryMakesAFreshValue();
    void allowedRange();
    void readingIsNotRounded();
    void hertzAreTruncated_data();
    void hertzAreTruncated();
    void onlyExactZeroIsNull_data();
    void onlyExactZeroIsNull();
    void suffixIsReplaced();
    void unitNumbersAreFixed();
    void unitHasItsText_data();
    void unitHasItsText();
    void unitIsFoundByItsWholeText_data();
    void unitIsFoundByItsWholeText();
    void plainNumbersAreConverted();
    void roundingHitsTheNearest_data();
    void roundingHitsTheNearest();
    void roundingAgreesWithTheModel_data();
    void roundingAgreesWithTheModel();
    void factoriesAgreeWithTheModel();
    void multipleOfAStep_data();
    void multipleOfAStep();
    void orderIsExactButEqualityIsInHertz_data();
    void orderIsExactButEqualityIsInHertz();
    void notANumberIsNeitherBeforeNorAfter();
    void sumAndDifferenceAreNotRounded();
    void productIsRoundedToAKilohertz_data();
    void productIsRoundedToAKilohertz();
    void quotientIsNotRounded();
    void divisionByZeroLeavesTheOperand_data();
    void divisionByZeroLeavesTheOperand();
    void ratioIsTakenInMegahertz_data();
    void ratioIsTakenInMegahertz();
    void resultsAreFreshValues();
    void compoundResultsAreFreshValues();
    void compoundAssignmentGivesItsLeftOperand();
    void operandMayStandOnBothSides();
    void hashIsTheWholeKilohertz_data();
    void hashIsTheWholeKilohertz();
    void keyOfAHash();
    void streamHoldsTheFourFields();
    void streamedValueComesBack_data();
    void streamedValueComesBack();
    void failedStreamIsReadAsItComes();
    void variantHoldsACopy();
    void metaTypeHasItsName();
    void metaTypeConstructs();
};

void FrequencyTest::metaTypeIsRegisteredOnFirstUse()
{
    QCOMPARE(QMetaType::type("Frequency"), int(QMetaType::UnknownType));
    const int id = QVariant(Frequency()).userType();
    QCOMPARE(QMetaType::type("Frequency"), id);
}

void FrequencyTest::newValueIsNullAndFindsBest()
{
    const Frequency frequency;
    QCOMPARE(exactly(frequency.inKhz()), QByteArray("0"));
    QVERIFY(frequency.isNull());
    QCOMPARE(frequency.suffix(), QString());
    QCOMPARE(frequency.toString(), QStringLiteral("Find Best"));
    QCOMPARE(Frequency::fromKhz(0.0).toString(), QStringLiteral("Find Best"));
}

void FrequencyTest::zeroMayReadAsANumber()
{
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency(0.0, false);
    QVERIFY(frequency.isNull());
    QCOMPARE(frequency.toString(), QStringLiteral("0.000 kHz"));
    QCOMPARE(Frequency(0.0, true).toString(), QStringLiteral("Find Best"));
    QCOMPARE(exactly(Frequency(470.123456789, false).inKhz()), exactly(470.123456789));
}

void FrequencyTest::copyKeepsEverything()
{
    const Frequency original = withEverything(470125.25);
    const Frequency copy(original); // NOLINT(performance-unnecessary-copy-initialization): tested
    QCOMPARE(toBytes(copy), streamedBytes(470125.25, false, false));
}

void FrequencyTest::assignmentKeepsEverything()
{
    Frequency frequency;
    frequency = withEverything(470125.25);
    QCOMPARE(toBytes(frequency), streamedBytes(470125.25, false, false));

    const Frequency& itself = frequency;
    frequency = itself;
    QCOMPARE(toBytes(frequency), streamedBytes(470125.25, false, false));
}

void FrequencyTest::moveKeepsEverything()
{
    Frequency first = withEverything(470125.25);
    Frequency second(std::move(first));
    QCOMPARE(toBytes(second), streamedBytes(470125.25, false, false));
    Frequency third;
    third = std::move(second);
    QCOMPARE(toBytes(third), streamedBytes(470125.25, false, false));
}

void FrequencyTest::factoryKeepsItsGrain_data()
{
    QTest::addColumn<Frequency>("made");
    QTest::addColumn<double>("khz");
    QTest::newRow("kHz as given") << Frequency::fromKhz(470125.123456) << 470125.123456;
    QTest::newRow("kHz below zero") << Frequency::fromKhz(-0.25) << -0.25;
    QTest::newRow("Hz") << Frequency::fromHz(1500) << 1.5;
    QTest::newRow("Hz are not rounded") << Frequency::fromHz(1) << 0.001;
    QTest::newRow("Hz below zero") << Frequency::fromHz(-1500) << -1.5;
    QTest::newRow("most Hz") << Frequency::fromHz(INT_HIGHEST) << 2147483.647;
    QTest::newRow("MHz to 0.1 kHz") << Frequency::fromMhz(470.12345) << 470123.5;
    QTest::newRow("MHz, the 10 Hz of a text are lost") << Frequency::fromMhz(470.12342) << 470123.4;
    QTest::newRow("MHz below zero") << Frequency::fromMhz(-470.12344) << -470123.4;
    QTest::newRow("MHz, negative half goes up") << Frequency::fromMhz(-0.00005) << 0.0;
    QTest::newRow("GHz to 0.1 kHz") << Frequency::fromGhz(1.23456789) << 1234567.9;
    QTest::newRow("GHz, whole") << Frequency::fromGhz(2.0) << 2000000.0;
    QTest::newRow("MHz beyond 32 bits") << Frequency::fromMhz(214749.0) << 214748364.7;
    QTest::newRow("MHz beyond 32 bits, negative") << Frequency::fromMhz(-214749.0) << -214748364.8;
    QTest::newRow("GHz beyond 32 bits") << Frequency::fromGhz(1e300) << 214748364.7;
    QTest::newRow("infinite MHz") << Frequency::fromMhz(-INFINITE) << -214748364.8;
    QTest::newRow("MHz not a number") << Frequency::fromMhz(NOT_A_NUMBER) << 0.0;
    QTest::newRow("GHz not a number") << Frequency::fromGhz(NOT_A_NUMBER) << 0.0;
}

void FrequencyTest::factoryKeepsItsGrain()
{
    QFETCH(Frequency, made);
    QFETCH(double, khz);
    QCOMPARE(exactly(made.inKhz()), exactly(khz));
}

void FrequencyTest::factoryMakesAFreshValue()
{
    QVERIFY(isFresh(Frequency::fromKhz(470125.0)));
    QVERIFY(isFresh(Frequency::fromHz(470125)));
    QVERIFY(isFresh(Frequency::fromMhz(470.125)));
    QVERIFY(isFresh(Frequency::fromGhz(0.47)));
    QCOMPARE(Frequency::fromHz(0).toString(), QStringLiteral("Find Best"));
    QCOMPARE(Frequency::fromMhz(0.0).toString(), QStringLiteral("Find Best"));
    QCOMPARE(Frequency::fromGhz(0.0).toString(), QStringLiteral("Find Best"));
}

void FrequencyTest::allowedRange()
{
    QCOMPARE(exactly(Frequency::getMinAllowedFrequency().inKhz()), exactly(30000.0));
    QCOMPARE(exactly(Frequency::getMaxAllowedFrequency().inKhz()), exactly(2000000.0));
    QVERIFY(isFresh(Frequency::getMinAllowedFrequency()));
    QVERIFY(isFresh(Frequency::getMaxAllowedFrequency()));
    QCOMPARE(exactly(Frequency::fromMhz(2500.0).inKhz()), exactly(2500000.0)); // not clamped
}

void FrequencyTest::readingIsNotRounded()
{
    const Frequency frequency = Frequency::fromKhz(470125.123456);
    QCOMPARE(exactly(frequency.inKhz()), exactly(470125.123456));
    QCOMPARE(exactly(frequency.inMhz()), exactly(470125.123456 / 1000.0));
    QCOMPARE(exactly(frequency.inGhz()), exactly(470125.123456 / 1000000.0));
}

void FrequencyTest::hertzAreTruncated_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<quint64>("hz");
    QTest::newRow("zero") << 0.0 << quint64(0);
    QTest::newRow("whole") << 470125.0 << quint64(470125000);
    QTest::newRow("not rounded") << 0.0019 << quint64(1);
    QTest::newRow("beyond 32 bits") << 8000000000.0 << quint64(8000000000000);
    QTest::newRow("negative, less than a hertz") << -0.0009 << quint64(0);
    QTest::newRow("negative") << -1.5 << quint64(18446744073709550116U);
    QTest::newRow("beyond a signed 64-bit integer") << 1e16 << quint64(10000000000000000000U);
    QTest::newRow("2 to the 63rd Hz") << 9223372036854775.808 << quint64(9223372036854775808U);
    QTest::newRow("2 to the 64th Hz") << 18446744073709551.616 << quint64(18446744073709551615U);
    QTest::newRow("beyond 64 bits") << 1e17 << quint64(18446744073709551615U);
    QTest::newRow("negative beyond 64 bits") << -1e17 << quint64(9223372036854775808U);
    QTest::newRow("infinite") << INFINITE << quint64(18446744073709551615U);
    QTest::newRow("negative infinite") << -INFINITE << quint64(9223372036854775808U);
    QTest::newRow("product is infinite") << 1e308 << quint64(18446744073709551615U);
    QTest::newRow("not a number") << NOT_A_NUMBER << quint64(0);
}

void FrequencyTest::hertzAreTruncated()
{
    QFETCH(double, khz);
    QTEST(Frequency::fromKhz(khz).inHz(), "hz");
}

void FrequencyTest::onlyExactZeroIsNull_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<bool>("isNull");
    QTest::newRow("zero") << 0.0 << true;
    QTest::newRow("negative zero") << -0.0 << true;
    QTest::newRow("smallest") << std::numeric_limits<double>::denorm_min() << false;
    QTest::newRow("less than a hertz") << -0.0001 << false;
    QTest::newRow("not a number") << NOT_A_NUMBER << false;
}

void FrequencyTest::onlyExactZeroIsNull()
{
    QFETCH(double, khz);
    QTEST(Frequency::fromKhz(khz).isNull(), "isNull");
}

void FrequencyTest::suffixIsReplaced()
{
    Frequency frequency = Frequency::fromKhz(470125.0);
    frequency.setSuffix(QStringLiteral(" (A)"));
    frequency.setSuffix(QStringLiteral(" (B)"));
    QCOMPARE(frequency.suffix(), QStringLiteral(" (B)"));
}

void FrequencyTest::unitNumbersAreFixed()
{
    QCOMPARE(int(Frequency::NoUnits), 0);
    QCOMPARE(int(Frequency::GHz), 1);
    QCOMPARE(int(Frequency::MHz), 2);
    QCOMPARE(int(Frequency::kHz), 3);
    QCOMPARE(int(Frequency::Hz), 4);
}

void FrequencyTest::unitHasItsText_data()
{
    QTest::addColumn<int>("units");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << "";
    QTest::newRow("GHz") << 1 << "GHz";
    QTest::newRow("MHz") << 2 << "MHz";
    QTest::newRow("kHz") << 3 << "kHz";
    QTest::newRow("Hz") << 4 << "Hz";
    QTest::newRow("above the last") << 5 << "";
    QTest::newRow("far above the last") << 700 << "";
    QTest::newRow("below the first") << -1 << "";
}

void FrequencyTest::unitHasItsText()
{
    QFETCH(int, units);
    QTEST(Frequency::stringFromUnits(static_cast<Frequency::FreqUnits>(units)), "text");
}

void FrequencyTest::unitIsFoundByItsWholeText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("units");
    QTest::newRow("GHz") << "GHz" << 1;
    QTest::newRow("MHz") << "MHz" << 2;
    QTest::newRow("kHz") << "kHz" << 3;
    QTest::newRow("Hz") << "Hz" << 4;
    QTest::newRow("lower case") << "mhz" << 2;
    QTest::newRow("upper case") << "KHZ" << 3;
    QTest::newRow("blank in front") << " MHz" << 0;
    QTest::newRow("blank behind") << "MHz " << 0;
    QTest::newRow("trailing character") << "MHz." << 0;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("null") << QString() << 0;
    QTest::newRow("unknown") << "THz" << 0;
}

void FrequencyTest::unitIsFoundByItsWholeText()
{
    QFETCH(QString, text);
    QTEST(int(Frequency::UnitsFromString(text)), "units");
}

void FrequencyTest::plainNumbersAreConverted()
{
    QCOMPARE(exactly(Frequency::khzToMhz(470125.123456)), exactly(470125.123456 / 1000.0));
    QCOMPARE(exactly(Frequency::mhzToKhz(470.123456789)), exactly(470.123456789 * 1000.0));
    QCOMPARE(exactly(Frequency::ghzToKhz(0.470123456789)), exactly(0.470123456789 * 1000000.0));
}

void FrequencyTest::roundingHitsTheNearest_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("nearest");
    QTest::newRow("half") << 0.5 << 1.0;
    QTest::newRow("half, odd") << 1.5 << 2.0;
    QTest::newRow("half, even") << 2.5 << 3.0;
    QTest::newRow("negative half") << -0.5 << 0.0;
    QTest::newRow("negative half, odd") << -1.5 << -1.0;
    QTest::newRow("negative half, even") << -2.5 << -2.0;
    QTest::newRow("below a negative half") << -2.5000001 << -3.0;
    QTest::newRow("highest") << 2147483647.0 << 2147483647.0;
    QTest::newRow("half below the highest") << 2147483646.5 << 2147483647.0;
    QTest::newRow("less than half below the highest") << 2147483646.4 << 2147483646.0;
    QTest::newRow("less than half above the highest") << 2147483647.4 << 2147483647.0;
    QTest::newRow("half above the highest") << 2147483647.5 << 2147483647.0;
    QTest::newRow("lowest") << -2147483648.0 << -2147483648.0;
    QTest::newRow("half above the lowest") << -2147483647.5 << -2147483647.0;
    QTest::newRow("just above the lowest") << std::nextafter(-2147483648.0, 0.0) << -2147483648.0;
    QTest::newRow("half below the lowest") << -2147483648.5 << -2147483648.0;
    QTest::newRow("far above") << 1e300 << 2147483647.0;
    QTest::newRow("far below") << -1e300 << -2147483648.0;
    QTest::newRow("infinite") << INFINITE << 2147483647.0;
    QTest::newRow("negative infinite") << -INFINITE << -2147483648.0;
    QTest::newRow("not a number") << NOT_A_NUMBER << 0.0;
    // The sum of this and a half is 1 in doubles; the rounding is the one of that sum.
    QTest::newRow("greatest below a half goes up") << std::nextafter(0.5, 0.0) << 1.0;
}

void FrequencyTest::roundingHitsTheNearest()
{
    QFETCH(double, value);
    QFETCH(double, nearest);
    QCOMPARE(exactly(rounded(value)), exactly(nearest));
}

void FrequencyTest::roundingAgreesWithTheModel_data()
{
    QTest::addColumn<double>("middle");
    QTest::newRow("around zero") << 0.0;
    QTest::newRow("around a thousand") << 1000.0;
    QTest::newRow("around minus a thousand") << -1000.0;
    QTest::newRow("around 2 to the 30th") << 1073741824.0;
    QTest::newRow("around the highest") << double(INT_HIGHEST);
    QTest::newRow("around the lowest") << double(INT_LOWEST);
}

void FrequencyTest::roundingAgreesWithTheModel()
{
    QFETCH(double, middle);
    for (int quarters = -4000; quarters <= 4000; ++quarters) {
        const double value = middle + quarters / 4.0;
        // The neighbour of 0.5 rounds as a sum of doubles does; see the row of its own.
        const double below = value == 0.5 ? value : std::nextafter(value, -INFINITE);
        for (const double each : {below, value, std::nextafter(value, INFINITE)}) {
            QCOMPARE(exactly(rounded(each)), exactly(modelRound(each)));
            if (isInRangeOfQRound(each)) {
                QCOMPARE(exactly(rounded(each)), exactly(qRound(each)));
            }
        }
    }
}

void FrequencyTest::factoriesAgreeWithTheModel()
{
    for (int step = -40000; step <= 40000; ++step) {
        const double mhz = 500.0 + step / 80000.0;
        QCOMPARE(exactly(Frequency::fromMhz(mhz).inKhz()), exactly(modelRound(mhz * 1e4) / 10.0));
        const double ghz = mhz / 1000.0;
        QCOMPARE(exactly(Frequency::fromGhz(ghz).inKhz()), exactly(modelRound(ghz * 1e7) / 10.0));
    }
}

void FrequencyTest::multipleOfAStep_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<double>("stepKhz");
    QTest::addColumn<double>("multipleKhz");
    QTest::newRow("down") << 470137.0 << 25.0 << 470125.0;
    QTest::newRow("up") << 470138.0 << 25.0 << 470150.0;
    QTest::newRow("half goes up") << 470137.5 << 25.0 << 470150.0;
    QTest::newRow("negative half goes up") << -12.5 << 25.0 << 0.0;
    QTest::newRow("step of a fraction") << 1.3 << 0.5 << 1.5;
    QTest::newRow("nearer to none") << 10.0 << 25.0 << 0.0;
    QTest::newRow("null") << 0.0 << 25.0 << 0.0;
    QTest::newRow("negative step, half goes toward zero") << 12.5 << -25.0 << 0.0;
    QTest::newRow("null step") << 470125.0 << 0.0 << 0.0;
    QTest::newRow("null of null") << 0.0 << 0.0 << 0.0;
    QTest::newRow("too many steps") << 1e12 << 1.0 << 2147483647.0;
}

void FrequencyTest::multipleOfAStep()
{
    QFETCH(double, khz);
    QFETCH(double, stepKhz);
    QFETCH(double, multipleKhz);
    Frequency step = withEverything(stepKhz);
    const Frequency multiple = withEverything(khz).roundedToMultipleOf(step);
    QVERIFY(multiple.inKhz() == multipleKhz); // either zero will do
    QVERIFY(isFresh(multiple));
}

void FrequencyTest::orderIsExactButEqualityIsInHertz_data()
{
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    QTest::addColumn<bool>("isLess");
    QTest::addColumn<bool>("isGreater");
    QTest::addColumn<bool>("isEqual");
    QTest::newRow("same") << 100.0 << 100.0 << false << false << true;
    QTest::newRow("less within the hertz") << 100.0 << 100.0004 << true << false << true;
    QTest::newRow("greater within the hertz") << 100.0004 << 100.0 << false << true << true;
    QTest::newRow("close, across a hertz") << 100.0009 << 100.0011 << true << false << false;
    QTest::newRow("less") << 100.0 << 200.0 << true << false << false;
    QTest::newRow("greater") << 200.0 << 100.0 << false << true << false;
    QTest::newRow("around zero") << -0.0004 << 0.0004 << true << false << true;
    QTest::newRow("negative") << -2.0 << -1.0 << true << false << false;
    QTest::newRow("both beyond 64 bits") << 1e17 << 1e18 << true << false << true;
}

void FrequencyTest::orderIsExactButEqualityIsInHertz()
{
    QFETCH(double, left);
    QFETCH(double, right);
    QFETCH(bool, isLess);
    QFETCH(bool, isGreater);
    // The suffix and the flags have no part in it.
    const Frequency a = withEverything(left);
    const Frequency b = Frequency::fromKhz(right);
    QCOMPARE(a < b, isLess);
    QCOMPARE(a <= b, !isGreater);
    QCOMPARE(a > b, isGreater);
    QCOMPARE(a >= b, !isLess);
    QTEST(a == b, "isEqual");
    QCOMPARE(a != b, !(a == b));
}

void FrequencyTest::notANumberIsNeitherBeforeNorAfter()
{
    const Frequency none = Frequency::fromKhz(NOT_A_NUMBER);
    for (const Frequency& other : {none, Frequency(), Frequency::fromKhz(470125.0)}) {
        QVERIFY(!(none < other));
        QVERIFY(!(none <= other));
        QVERIFY(!(none > other));
        QVERIFY(!(none >= other));
        QVERIFY(!(other < none));
        QVERIFY(!(other >= none));
    }
}

void FrequencyTest::sumAndDifferenceAreNotRounded()
{
    const Frequency a = Frequency::fromKhz(470125.123);
    const Frequency b = Frequency::fromKhz(500000.0456);
    QCOMPARE(exactly((a + b).inKhz()), exactly(470125.123 + 500000.0456));
    QCOMPARE(exactly((a - b).inKhz()), exactly(470125.123 - 500000.0456));
    QVERIFY((a - b).inKhz() < 0.0);
    Frequency sum = a;
    sum += b;
    QCOMPARE(exactly(sum.inKhz()), exactly(470125.123 + 500000.0456));
    Frequency difference = a;
    difference -= b;
    QCOMPARE(exactly(difference.inKhz()), exactly(470125.123 - 500000.0456));
}

void FrequencyTest::productIsRoundedToAKilohertz_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<float>("factor");
    QTest::addColumn<double>("product");
    QTest::newRow("fraction is lost") << 1000.6 << 1.0F << 1001.0;
    QTest::newRow("half goes up") << 1001.0 << 0.5F << 501.0;
    QTest::newRow("negative half goes up") << 1001.0 << -0.5F << -500.0;
    QTest::newRow("factor is a float") << 1e7 << 0.1F << 1000000.0;
    QTest::newRow("float's own error shows") << 1e9 << 0.1F << 100000001.0;
    QTest::newRow("by zero") << 470125.0 << 0.0F << 0.0;
    QTest::newRow("beyond 32 bits") << 2e9 << 2.0F << 2147483647.0;
    QTest::newRow("not a number") << 0.0 << std::numeric_limits<float>::infinity() << 0.0;
}

void FrequencyTest::productIsRoundedToAKilohertz()
{
    QFETCH(double, khz);
    QFETCH(float, factor);
    QFETCH(double, product);
    QCOMPARE(exactly((Frequency::fromKhz(khz) * factor).inKhz()), exactly(product));
    Frequency frequency = Frequency::fromKhz(khz);
    frequency *= factor;
    QCOMPARE(exactly(frequency.inKhz()), exactly(product));
}

void FrequencyTest::quotientIsNotRounded()
{
    const Frequency frequency = Frequency::fromKhz(1000.0);
    QCOMPARE(exactly((frequency / 3.0F).inKhz()), exactly(1000.0 / 3.0));
    Frequency compound = frequency;
    compound /= 3.0F;
    QCOMPARE(exactly(compound.inKhz()), exactly(1000.0 / 3.0));
}

void FrequencyTest::divisionByZeroLeavesTheOperand_data()
{
    QTest::addColumn<float>("zero");
    QTest::newRow("zero") << 0.0F;
    QTest::newRow("negative zero") << -0.0F;
}

void FrequencyTest::divisionByZeroLeavesTheOperand()
{
    QFETCH(float, zero);
    const Frequency left = withEverything(500.0);
    QCOMPARE(toBytes(left / zero), streamedBytes(500.0, false, false));
    Frequency compound = left;
    QCOMPARE(&(compound /= zero), &compound);
    QCOMPARE(toBytes(compound), streamedBytes(500.0, false, false));
}

void FrequencyTest::ratioIsTakenInMegahertz_data()
{
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    QTest::addColumn<double>("ratio");
    QTest::newRow("half") << 5.0 << 10.0 << 0.5;
    QTest::newRow("differs from that in kilohertz")
        << 1.0 << 9.0 << (1.0 / 1000.0) / (9.0 / 1000.0);
    QTest::newRow("by zero") << 5.0 << 0.0 << 0.0;
    QTest::newRow("zero by zero") << 0.0 << 0.0 << 0.0;
    QTest::newRow("by negative zero") << 5.0 << -0.0 << 0.0;
    QTest::newRow("by what no megahertz can hold")
        << 5.0 << std::numeric_limits<double>::denorm_min() << 0.0;
}

void FrequencyTest::ratioIsTakenInMegahertz()
{
    QFETCH(double, left);
    QFETCH(double, right);
    QFETCH(double, ratio);
    const double result = Frequency::fromKhz(left) / Frequency::fromKhz(right);
    QCOMPARE(exactly(result), exactly(ratio));
}

void FrequencyTest::resultsAreFreshValues()
{
    const Frequency left = withEverything(470125.0);
    const Frequency right = withEverything(25.0);
    QVERIFY(!isFresh(left));
    QVERIFY(isFresh(left + right));
    QVERIFY(isFresh(left - right));
    QVERIFY(isFresh(left * 2.0F));
    QVERIFY(isFresh(left / 2.0F));
    QCOMPARE((left - left).toString(), QStringLiteral("Find Best"));
}

void FrequencyTest::compoundResultsAreFreshValues()
{
    const Frequency right = withEverything(25.0);
    Frequency sum = withEverything(470125.0);
    sum += right;
    QVERIFY(isFresh(sum));
    Frequency difference = withEverything(470125.0);
    difference -= right;
    QVERIFY(isFresh(difference));
    Frequency product = withEverything(470125.0);
    product *= 2.0F;
    QVERIFY(isFresh(product));
    Frequency quotient = withEverything(470125.0);
    quotient /= 2.0F;
    QVERIFY(isFresh(quotient));
}

void FrequencyTest::compoundAssignmentGivesItsLeftOperand()
{
    Frequency left = Frequency::fromKhz(100.0);
    const Frequency right = Frequency::fromKhz(50.0);
    QCOMPARE(&(left += right), &left);
    QCOMPARE(&(left -= right), &left);
    QCOMPARE(&(left *= 2.0F), &left);
    QCOMPARE(&(left /= 2.0F), &left);
}

void FrequencyTest::operandMayStandOnBothSides()
{
    Frequency frequency = Frequency::fromKhz(100.25);
    const Frequency& itself = frequency;
    frequency += itself;
    QCOMPARE(exactly(frequency.inKhz()), exactly(200.5));
    frequency -= itself;
    QVERIFY(frequency.isNull());
}

void FrequencyTest::hashIsTheWholeKilohertz_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<uint>("hash");
    QTest::newRow("zero") << 0.0 << 0U;
    QTest::newRow("fraction is lost") << 470.9 << 470U;
    QTest::newRow("fraction is lost too") << 470.1 << 470U;
    QTest::newRow("just below a whole kilohertz") << 469.9999999 << 469U;
    QTest::newRow("beyond 32 bits") << 4294967297.0 << 1U;
    QTest::newRow("negative") << -1.5 << 4294967295U;
    QTest::newRow("negative, toward zero") << -0.9 << 0U;
    QTest::newRow("2 to the 63rd") << 9223372036854775808.0 << 4294967295U;
    QTest::newRow("beyond 64 bits") << 1e30 << 4294967295U;
    QTest::newRow("negative beyond 64 bits") << -1e30 << 0U;
    QTest::newRow("not a number") << NOT_A_NUMBER << 0U;
}

void FrequencyTest::hashIsTheWholeKilohertz()
{
    QFETCH(double, khz);
    QTEST(qHash(Frequency::fromKhz(khz)), "hash");
}

void FrequencyTest::keyOfAHash()
{
    QHash<Frequency, int> channels;
    channels.insert(Frequency::fromKhz(470125.0), 1);
    channels.insert(withEverything(470125.0), 2);
    channels.insert(Frequency::fromKhz(470150.0), 3);
    QCOMPARE(channels.size(), 2);
    QCOMPARE(channels.value(Frequency::fromMhz(470.125)), 2);
}

void FrequencyTest::streamHoldsTheFourFields()
{
    Frequency frequency(470125.0, false);
    frequency.setSuffix(QStringLiteral(" (A)"));
    const QByteArray expected = QByteArray::fromHex("411cb1b400000000" // 470125, big endian
                                                    "00"
                                                    "00000008" // bytes of the suffix
                                                    "0020002800410029"
                                                    "01");
    QCOMPARE(toBytes(frequency).toHex(), expected.toHex());
}

void FrequencyTest::streamedValueComesBack_data()
{
    QTest::addColumn<bool>("findBestWhenZero");
    QTest::addColumn<bool>("keepTrailingZeros");
    QTest::newRow("no flag") << false << false;
    QTest::newRow("finds best") << true << false;
    QTest::newRow("keeps zeros") << false << true;
    QTest::newRow("both flags") << true << true;
}

void FrequencyTest::streamedValueComesBack()
{
    QFETCH(bool, findBestWhenZero);
    QFETCH(bool, keepTrailingZeros);
    const QByteArray bytes = streamedBytes(470100.0, findBestWhenZero, keepTrailingZeros);
    const Frequency frequency = fromBytes(bytes);
    QVERIFY(frequency == Frequency::fromKhz(470100.0));
    QCOMPARE(frequency.suffix(), QStringLiteral(" (A)"));
    QCOMPARE(toBytes(frequency), bytes);

    const DefaultLocale locale(QStringLiteral("C"));
    QCOMPARE(frequency.toString(false),
             keepTrailingZeros ? QStringLiteral("470.100 MHz") : QStringLiteral("470.1 MHz"));
    const Frequency zero = fromBytes(streamedBytes(0.0, findBestWhenZero, keepTrailingZeros));
    QCOMPARE(zero.toString(false) == QStringLiteral("Find Best"), findBestWhenZero);
}

void FrequencyTest::failedStreamIsReadAsItComes()
{
    Frequency frequency = withEverything(470125.0);
    QDataStream stream(QByteArray(3, '\1'));
    stream >> frequency;
    QCOMPARE(stream.status(), QDataStream::ReadPastEnd);
    QCOMPARE(exactly(frequency.inKhz()), exactly(0.0));
    QCOMPARE(frequency.suffix(), QString());
}

void FrequencyTest::variantHoldsACopy()
{
    Frequency frequency = withEverything(470125.25);
    const QVariant variant = frequency;
    frequency.setSuffix(QString());
    QCOMPARE(variant.typeName(), "Frequency");
    QVERIFY(variant.canConvert<Frequency>());
    QCOMPARE(toBytes(variant.value<Frequency>()), streamedBytes(470125.25, false, false));
}

void FrequencyTest::metaTypeHasItsName()
{
    const int id = qMetaTypeId<Frequency>();
    QVERIFY(id >= QMetaType::User);
    QCOMPARE(QMetaType::type("Frequency"), id);
    QCOMPARE(qMetaTypeId<Frequency>(), id);
    QCOMPARE(QVariant(Frequency()).userType(), id);
}

void FrequencyTest::metaTypeConstructs()
{
    const QMetaType type(qMetaTypeId<Frequency>());
    void* fresh = type.create();
    QCOMPARE(toBytes(*static_cast<Frequency*>(fresh)), toBytes(Frequency()));
    type.destroy(fresh);

    const Frequency frequency = withEverything(470125.25);
    void* copy = type.create(&frequency);
    QCOMPARE(toBytes(*static_cast<Frequency*>(copy)), streamedBytes(470125.25, false, false));
    type.destroy(copy);
}

QTEST_GUILESS_MAIN(FrequencyTest)
#include "FrequencyTest.moc"

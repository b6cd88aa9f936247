#include "ZelMain/Frequency.h"

#include "tests/ZelMain/FrequencyTestSupport.h"

#include <QtTest>

#include <cmath>
#include <vector>

namespace {

constexpr int FULL_MHZ_DECIMALS = 5; // 10 Hz, the grain of a text
constexpr int FULL_GHZ_DECIMALS = 8;

/** Frequencies of the grain of a text, over all sizes that it can hold. */
const std::vector<int>& tensOfHertz()
{
    static const std::vector<int> VALUES = [] {
        std::vector<int> values = {-47012512, -99999,   -1,       1,         9,
                                   10,        99,       100,      99999,     100000,
                                   100001,    47012500, 47012512, 99999999,  100000000,
                                   150000,    2000000,  21474836, 214748364, 2147483646};
        for (int value = 7; value < 1600000000; value += value / 3 + 11) {
            values.push_back(value);
        }
        return values;
    }();
    return VALUES;
}

void addLocales()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<bool>("isReadable"); // whether the parser knows the locale's digits
    QTest::addColumn<bool>("hasGroups");
    QTest::newRow("C") << "C" << true << false;
    QTest::newRow("English") << "en_US" << true << true;
    QTest::newRow("German") << "de_DE" << true << true;
    QTest::newRow("French, whose groups no one types") << "fr_FR" << true << true;
    QTest::newRow("Arabic digits") << "ar_EG" << false << true;
    QTest::newRow("Persian digits") << "fa_IR" << false << true;
}

} // namespace

class FrequencyRoundTripTest : public QObject
{
    Q_OBJECT

private slots:
    void megahertzComeBack_data() { addLocales(); }
    void megahertzComeBack();
    void roundedMegahertzStay_data() { addLocales(); }
    void roundedMegahertzStay();
    void kilohertzComeBackWithoutGroups_data() { addLocales(); }
    void kilohertzComeBackWithoutGroups();
    void gigahertzComeBack_data() { addLocales(); }
    void gigahertzComeBack();
    void wholeKilohertzComeBackFromToString_data() { addLocales(); }
    void wholeKilohertzComeBackFromToString();
};

/** A number that is read back gives itself; one that is not understood gives null and says so. */
#define COMPARE_PARSED(call, ok, readable, khz)                                                    \
    do {                                                                                           \
        (ok) = !(readable);                                                                        \
        QCOMPARE(exactly((call).inKhz()), exactly((readable) ? (khz) : 0.0));                      \
        QCOMPARE(ok, readable);                                                                    \
    } while (false)

void FrequencyRoundTripTest::megahertzComeBack()
{
    QFETCH(QString, locale);
    QFETCH(bool, isReadable);
    const DefaultLocale scope(locale);
    bool ok = false;
    for (const int value : tensOfHertz()) {
        const double khz = value / 100.0;
        const Frequency frequency = Frequency::fromKhz(khz);
        for (int precision = FULL_MHZ_DECIMALS; precision <= FULL_MHZ_DECIMALS + 3; ++precision) {
            const QString text = frequency.asMhzString(true, precision);
            COMPARE_PARSED(Frequency::fromString(text, &ok, Frequency::NoUnits), ok, isReadable,
                           khz);
            const QString number = frequency.asMhzString(false, precision);
            COMPARE_PARSED(Frequency::fromString(number, &ok, Frequency::MHz), ok, isReadable, khz);
            COMPARE_PARSED(Frequency::fromMhzString(number, &ok), ok, isReadable, khz);
        }
    }
}

void FrequencyRoundTripTest::roundedMegahertzStay()
{
    QFETCH(QString, locale);
    QFETCH(bool, isReadable);
    const DefaultLocale scope(locale);
    for (const int value : tensOfHertz()) {
        const Frequency frequency = Frequency::fromKhz(value / 100.0);
        for (int precision = 0; precision < FULL_MHZ_DECIMALS; ++precision) {
            bool ok = false;
            const QString text = frequency.asMhzString(true, precision);
            const Frequency parsed = Frequency::fromString(text, &ok, Frequency::NoUnits);
            QCOMPARE(ok, isReadable);
            if (isReadable) {
                const double halfStepKhz = 500.0 / std::pow(10.0, precision);
                QVERIFY(std::abs(parsed.inKhz() - frequency.inKhz()) < halfStepKhz + 0.001);
                // What rounds to nothing loses its sign, and null reads "Find Best".
                QVERIFY(parsed.isNull() || parsed.asMhzString(true, precision) == text);
            }
        }
    }
}

void FrequencyRoundTripTest::kilohertzComeBackWithoutGroups()
{
    QFETCH(QString, locale);
    QFETCH(bool, isReadable);
    QFETCH(bool, hasGroups);
    const DefaultLocale scope(locale);
    bool ok = false;
    for (const int value : tensOfHertz()) {
        const double khz = value / 100.0;
        const bool readable = isReadable && (std::abs(khz) < 1000.0 || !hasGroups);
        const Frequency frequency = Frequency::fromKhz(khz);
        for (int precision = 2; precision <= 5; ++precision) {
            const QString text = frequency.asKhzString(true, precision, false);
            COMPARE_PARSED(Frequency::fromString(text, &ok, Frequency::NoUnits), ok, readable, khz);
            // The blank that stays without units is in nobody's way.
            const QString number = frequency.asKhzString(false, precision, false);
            COMPARE_PARSED(Frequency::fromString(number, &ok, Frequency::kHz), ok, readable, khz);
            COMPARE_PARSED(Frequency::fromKhzString(number, &ok), ok, readable, khz);
        }
    }
}

void FrequencyRoundTripTest::gigahertzComeBack()
{
    QFETCH(QString, locale);
    QFETCH(bool, isReadable);
    const DefaultLocale scope(locale);
    bool ok = false;
    for (const int value : tensOfHertz()) {
        const double khz = value / 100.0; // never so many GHz that they are grouped
        const Frequency frequency = Frequency::fromKhz(khz);
        for (int precision = FULL_GHZ_DECIMALS; precision <= FULL_GHZ_DECIMALS + 2; ++precision) {
            const QString text = frequency.asGhzString(true, precision);
            COMPARE_PARSED(Frequency::fromString(text, &ok, Frequency::NoUnits), ok, isReadable,
                           khz);
            const QString number = frequency.asGhzString(false, precision);
            COMPARE_PARSED(Frequency::fromGhzString(number, &ok), ok, isReadable, khz);
        }
    }
}

void FrequencyRoundTripTest::wholeKilohertzComeBackFromToString()
{
    QFETCH(QString, locale);
    QFETCH(bool, isReadable);
    QFETCH(bool, hasGroups);
    const DefaultLocale scope(locale);
    bool ok = false;
    for (const int value : tensOfHertz()) {
        const double khz = std::trunc(value / 100.0);
        if (khz == 0.0) {
            continue; // reads "Find Best"
        }
        // A negative value is written in kilohertz, which are grouped.
        const bool readable = isReadable && (khz > -1000.0 || !hasGroups);
        const Frequency frequency = Frequency::fromKhz(khz);
        COMPARE_PARSED(Frequency::fromString(frequency.toString(), &ok, Frequency::NoUnits), ok,
                       readable, khz);
        // Trimmed, a single German group separator would be taken for the decimal point.
        if (khz > 0.0) {
            const QString trimmed = frequency.toString(true, false);
            COMPARE_PARSED(Frequency::fromString(trimmed, &ok, Frequency::NoUnits), ok, isReadable,
                           khz);
        }
    }
}

QTEST_GUILESS_MAIN(FrequencyRoundTripTest)
#include "FrequencyRoundTripTest.moc"

#include "ZelMain/Frequency.h"

#include "tests/ZelMain/FrequencyTestSupport.h"

#include <QDataStream>
#include <QDebug>
#include <QtTest>

#include <limits>

namespace {

const QString FIND_BEST = QStringLiteral("Find Best");
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

Frequency withSuffix(double khz, const QString& suffix)
{
    Frequency frequency = Frequency::fromKhz(khz);
    frequency.setSuffix(suffix);
    return frequency;
}

/** A value without the "keep trailing zeros" flag, which only comes out of a stream. */
Frequency trimmed(double khz, bool findBestWhenZero, const QString& suffix)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << khz << findBestWhenZero << suffix << false;
    QDataStream in(bytes);
    Frequency frequency;
    in >> frequency;
    return frequency;
}

} // namespace

class FrequencyFormattingTest : public QObject
{
    Q_OBJECT

private slots:
    void nullValueReadsFindBest();
    void nullValueMayReadAsANumber();
    void kilohertz_data();
    void kilohertz();
    void megahertz_data();
    void megahertz();
    void gigahertz_data();
    void gigahertz();
    void unitFitsTheSize_data();
    void unitFitsTheSize();
    void flagTrimsTheOneArgumentForm();
    void argumentTrimsTheTwoArgumentForm();
    void suffixIsAppendedAsItStands();
    void suffixIsTakenOut_data();
    void suffixIsTakenOut();
    void threeArgumentFormIgnoresItsNumbers();
    void groupOptionOfTheUserIsKeptButInMegahertz();
    void localisedTextIsNotLocalisedAgain();
    void trailingZerosAreAdjusted_data();
    void trailingZerosAreAdjusted();
    void otherTextsAreLeftAlone_data();
    void otherTextsAreLeftAlone();
    void debugTextEndsOpen_data();
    void debugTextEndsOpen();
};

void FrequencyFormattingTest::nullValueReadsFindBest()
{
    const DefaultLocale locale(QStringLiteral("de_DE"));
    for (const double zero : {0.0, -0.0}) {
        const Frequency frequency = withSuffix(zero, QStringLiteral("Best"));
        QCOMPARE(frequency.asKhzString(true, 3, true), FIND_BEST);
        QCOMPARE(frequency.asKhzString(false, 3, false), FIND_BEST);
        QCOMPARE(frequency.asMhzString(true, 3), FIND_BEST);
        QCOMPARE(frequency.asMhzString(false, 0), FIND_BEST);
        QCOMPARE(frequency.asGhzString(true, 3), FIND_BEST);
        QCOMPARE(frequency.toString(), FIND_BEST);
        QCOMPARE(frequency.toString(true), FIND_BEST);
        QCOMPARE(frequency.toString(true, true), FIND_BEST);
        QCOMPARE(frequency.toString(true, false), FIND_BEST); // the suffix is not taken out
        QCOMPARE(frequency.toString(0, 0, true), FIND_BEST);
    }
    QCOMPARE(trimmed(0.0, true, QStringLiteral("x")).toString(true), FIND_BEST);
}

void FrequencyFormattingTest::nullValueMayReadAsANumber()
{
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency(0.0, false);
    QCOMPARE(frequency.toString(), QStringLiteral("0.000 kHz"));
    QCOMPARE(frequency.toString(true, false), QStringLiteral("0 kHz"));
    QCOMPARE(frequency.toString(0, 0, true), QStringLiteral("0.000 kHz"));
    QCOMPARE(frequency.asKhzString(false, 0, true), QStringLiteral(" "));
    QCOMPARE(frequency.asMhzString(true, 3), QStringLiteral("0.000 MHz"));
    QCOMPARE(frequency.asGhzString(false, 1), QStringLiteral("0.0"));
    // Less than the digits show is not null.
    QCOMPARE(Frequency::fromKhz(0.0001).toString(), QStringLiteral("0.000 kHz"));
    QCOMPARE(trimmed(0.0, false, QStringLiteral(" x")).toString(true), QStringLiteral("0 kHz x"));
}

void FrequencyFormattingTest::kilohertz_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("khz");
    QTest::addColumn<bool>("withUnits");
    QTest::addColumn<int>("precision");
    QTest::addColumn<bool>("dropOneZero");
    QTest::addColumn<QString>("text");
    QTest::newRow("C") << "C" << 1500.0 << true << 3 << false << "1500.000 kHz";
    QTest::newRow("English groups") << "en_US" << 1500.0 << true << 3 << false << "1,500.000 kHz";
    QTest::newRow("German groups")
        << "de_DE" << 1470125.5 << true << 1 << false << "1.470.125,5 kHz";
    QTest::newRow("French groups") << "fr_FR" << 1470125.5 << true << 1 << false
                                   << QStringLiteral(u"1\u202f470\u202f125,5 kHz");
    QTest::newRow("Arabic digits") << "ar_EG" << 1500.5 << true << 1 << false
                                   << QStringLiteral(u"\u0661\u066c\u0665\u0660\u0660\u066b\u0665"
                                                     u" kHz");
    QTest::newRow("rounded") << "C" << 470.12345 << true << 3 << false << "470.123 kHz";
    QTest::newRow("rounded up") << "C" << 999.9999 << true << 3 << false << "1000.000 kHz";
    QTest::newRow("no decimals") << "C" << 470.0 << true << 0 << false << "470 kHz";
    QTest::newRow("many decimals")
        << "C" << 470.5 << true << 20 << false << "470.50000000000000000000 kHz";
    QTest::newRow("negative") << "C" << -470.5 << true << 3 << false << "-470.500 kHz";
    QTest::newRow("blank stays without units") << "C" << 470.5 << false << 3 << false << "470.500 ";
    QTest::newRow("one zero goes") << "C" << 470.5 << true << 3 << true << "470.50 kHz";
    QTest::newRow("only one zero goes") << "C" << 470.0 << true << 3 << true << "470.00 kHz";
    QTest::newRow("zero goes without units") << "C" << 470.5 << false << 3 << true << "470.50 ";
    QTest::newRow("no zero to drop") << "C" << 470.125 << true << 3 << true << "470.125 kHz";
    QTest::newRow("inner zero stays") << "C" << 470.505 << true << 3 << true << "470.505 kHz";
    QTest::newRow("zero of the whole number goes") << "C" << 470.0 << true << 0 << true << "47 kHz";
    QTest::newRow("German zero goes") << "de_DE" << 470.5 << true << 3 << true << "470,50 kHz";
    QTest::newRow("Arabic zero stays")
        << "ar_EG" << 470.5 << true << 2 << true
        << QStringLiteral(u"\u0664\u0667\u0660\u066b\u0665\u0660 kHz");
    QTest::newRow("not a number") << "C" << NOT_A_NUMBER << true << 3 << true << "nan kHz";
}

void FrequencyFormattingTest::kilohertz()
{
    QFETCH(QString, locale);
    QFETCH(double, khz);
    QFETCH(bool, withUnits);
    QFETCH(int, precision);
    QFETCH(bool, dropOneZero);
    const DefaultLocale scope(locale);
    // The suffix has no part in it.
    const Frequency frequency = withSuffix(khz, QStringLiteral(" (A)"));
    QTEST(frequency.asKhzString(withUnits, precision, dropOneZero), "text");
}

void FrequencyFormattingTest::megahertz_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("khz");
    QTest::addColumn<bool>("withUnits");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");
    QTest::newRow("C") << "C" << 470125.0 << true << 3 << "470.125 MHz";
    QTest::newRow("no blank without units") << "C" << 470125.0 << false << 3 << "470.125";
    QTest::newRow("English, no groups") << "en_US" << 1500000.0 << true << 3 << "1500.000 MHz";
    QTest::newRow("German, no groups") << "de_DE" << 1470125.0 << true << 3 << "1470,125 MHz";
    QTest::newRow("French, no groups") << "fr_FR" << 1470125.0 << false << 3 << "1470,125";
    QTest::newRow("Persian digits, no groups")
        << "fa_IR" << 1470500.0 << true << 1
        << QStringLiteral(u"\u06f1\u06f4\u06f7\u06f0\u066b\u06f5 MHz");
    QTest::newRow("rounded") << "C" << 470125.678 << true << 5 << "470.12568 MHz";
    QTest::newRow("no decimals") << "C" << 470125.0 << true << 0 << "470 MHz";
    QTest::newRow("below one") << "C" << 0.5 << true << 4 << "0.0005 MHz";
    QTest::newRow("negative") << "C" << -470125.0 << true << 3 << "-470.125 MHz";
    QTest::newRow("Swedish minus sign")
        << "sv_SE" << -470125.0 << false << 3 << QStringLiteral(u"\u2212470,125");
    QTest::newRow("not a number") << "C" << NOT_A_NUMBER << true << 3 << "nan MHz";
}

void FrequencyFormattingTest::megahertz()
{
    QFETCH(QString, locale);
    QFETCH(double, khz);
    QFETCH(bool, withUnits);
    QFETCH(int, precision);
    const DefaultLocale scope(locale);
    QTEST(withSuffix(khz, QStringLiteral(" (A)")).asMhzString(withUnits, precision), "text");
}

void FrequencyFormattingTest::gigahertz_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("khz");
    QTest::addColumn<bool>("withUnits");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("text");
    QTest::newRow("C") << "C" << 1470125.0 << true << 6 << "1.470125 GHz";
    QTest::newRow("no blank without units") << "C" << 1470125.0 << false << 3 << "1.470";
    QTest::newRow("C, no groups") << "C" << 1.5e9 << true << 3 << "1500.000 GHz";
    QTest::newRow("English groups") << "en_US" << 1.5e9 << true << 3 << "1,500.000 GHz";
    QTest::newRow("German groups") << "de_DE" << 1.5e9 << false << 3 << "1.500,000";
    QTest::newRow("French groups")
        << "fr_FR" << 1.5e9 << true << 0 << QStringLiteral(u"1\u202f500 GHz");
    QTest::newRow("Arabic groups")
        << "ar_EG" << 1.5e9 << true << 0 << QStringLiteral(u"\u0661\u066c\u0665\u0660\u0660 GHz");
    QTest::newRow("no decimals") << "C" << 1470125.0 << true << 0 << "1 GHz";
    QTest::newRow("negative") << "C" << -1500000.0 << true << 3 << "-1.500 GHz";
    QTest::newRow("infinite") << "C" << std::numeric_limits<double>::infinity() << true << 3
                              << "inf GHz";
}

void FrequencyFormattingTest::gigahertz()
{
    QFETCH(QString, locale);
    QFETCH(double, khz);
    QFETCH(bool, withUnits);
    QFETCH(int, precision);
    const DefaultLocale scope(locale);
    QTEST(withSuffix(khz, QStringLiteral(" (A)")).asGhzString(withUnits, precision), "text");
}

void FrequencyFormattingTest::unitFitsTheSize_data()
{
    QTest::addColumn<double>("khz");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmedText");
    QTest::addColumn<QString>("threeUnitsText");
    QTest::newRow("kHz") << 470.5 << "470.500 kHz"
                         << "470.5 kHz"
                         << "470.500 kHz";
    QTest::newRow("below 1 MHz") << 999.5 << "999.500 kHz"
                                 << "999.5 kHz"
                                 << "999.500 kHz";
    QTest::newRow("reads like 1 MHz") << 999.9999 << "1000.000 kHz"
                                      << "1000 kHz"
                                      << "1000.000 kHz";
    QTest::newRow("1 MHz") << 1000.0 << "1.000 MHz"
                           << "1 MHz"
                           << "1.000 MHz";
    QTest::newRow("MHz") << 470125.0 << "470.125 MHz"
                         << "470.125 MHz"
                         << "470.125 MHz";
    QTest::newRow("one zero") << 470120.0 << "470.120 MHz"
                              << "470.12 MHz"
                              << "470.120 MHz";
    QTest::newRow("two zeros") << 470100.0 << "470.100 MHz"
                               << "470.1 MHz"
                               << "470.100 MHz";
    QTest::newRow("three zeros") << 470000.0 << "470.000 MHz"
                                 << "470 MHz"
                                 << "470.000 MHz";
    QTest::newRow("inner zero") << 470001.0 << "470.001 MHz"
                                << "470.001 MHz"
                                << "470.001 MHz";
    QTest::newRow("below 1 GHz") << 999999.0 << "999.999 MHz"
                                 << "999.999 MHz"
                                 << "999.999 MHz";
    QTest::newRow("1 GHz") << 1000000.0 << "1000.000 MHz"
                           << "1000 MHz"
                           << "1.000 GHz";
    QTest::newRow("GHz") << 1500000.0 << "1500.000 MHz"
                         << "1500 MHz"
                         << "1.500 GHz";
    QTest::newRow("negative is below 1 MHz") << -470125.0 << "-470125.000 kHz"
                                             << "-470125 kHz"
                                             << "-470125.000 kHz";
    QTest::newRow("not a number is below nothing") << NOT_A_NUMBER << "nan MHz"
                                                   << "nan MHz"
                                                   << "nan GHz";
}

void FrequencyFormattingTest::unitFitsTheSize()
{
    QFETCH(double, khz);
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency = Frequency::fromKhz(khz);
    QTEST(frequency.toString(), "text");
    QTEST(frequency.toString(false), "text");
    QTEST(frequency.toString(true), "text");
    QTEST(frequency.toString(false, false), "text");
    QTEST(frequency.toString(true, false), "trimmedText");
    QTEST(frequency.toString(0, 0, false), "threeUnitsText");
}

void FrequencyFormattingTest::flagTrimsTheOneArgumentForm()
{
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency = trimmed(470100.0, true, QStringLiteral(".000"));
    QCOMPARE(frequency.toString(), QStringLiteral("470.1 MHz.000"));
    QCOMPARE(frequency.toString(true), QStringLiteral("470.1 MHz.000"));
    QCOMPARE(frequency.toString(false), QStringLiteral("470.1 MHz"));
    // The others do not ask the flag.
    QCOMPARE(frequency.toString(false, true), QStringLiteral("470.100 MHz.000"));
    QCOMPARE(frequency.toString(0, 0, false), QStringLiteral("470.100 MHz"));
}

void FrequencyFormattingTest::argumentTrimsTheTwoArgumentForm()
{
    const Frequency frequency = Frequency::fromKhz(470100.0);
    {
        const DefaultLocale locale(QStringLiteral("de_DE"));
        QCOMPARE(frequency.toString(true, false), QStringLiteral("470,1 MHz"));
        QCOMPARE(frequency.toString(false, false), QStringLiteral("470,100 MHz"));
        QCOMPARE(Frequency::fromKhz(-1500.0).toString(true, false), QStringLiteral("-1.500 kHz"));
    }
    // Zeros of another script stay.
    const DefaultLocale locale(QStringLiteral("ar_EG"));
    QCOMPARE(frequency.toString(true, false),
             QStringLiteral(u"\u0664\u0667\u0660\u066b\u0661\u0660\u0660 MHz"));
}

void FrequencyFormattingTest::suffixIsAppendedAsItStands()
{
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency = withSuffix(470125.0, QStringLiteral(" (A)"));
    QCOMPARE(frequency.toString(), QStringLiteral("470.125 MHz (A)"));
    QCOMPARE(frequency.toString(true), QStringLiteral("470.125 MHz (A)"));
    QCOMPARE(frequency.toString(false), QStringLiteral("470.125 MHz"));
    QCOMPARE(frequency.toString(false, true), QStringLiteral("470.125 MHz (A)"));
    QCOMPARE(frequency.toString(false, false), QStringLiteral("470.125 MHz"));
    QCOMPARE(frequency.toString(0, 0, true), QStringLiteral("470.125 MHz (A)"));
    QCOMPARE(frequency.toString(0, 0, false), QStringLiteral("470.125 MHz"));

    QCOMPARE(withSuffix(470125.0, QStringLiteral("x")).toString(),
             QStringLiteral("470.125 MHzx")); // no separator
    QCOMPARE(withSuffix(470125.0, QStringLiteral("%1")).toString(),
             QStringLiteral("470.125 MHz%1"));
    QCOMPARE(withSuffix(470000.0, QStringLiteral(" 1.000")).toString(true, true),
             QStringLiteral("470 MHz 1.000")); // the suffix is not trimmed
}

void FrequencyFormattingTest::suffixIsTakenOut_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("trimZeros");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "" << false << "470.100 MHz";
    QTest::newRow("not in the text") << " (A)" << false << "470.100 MHz";
    QTest::newRow("unit") << " MHz" << false << "470.100";
    QTest::newRow("digit, everywhere") << "0" << false << "47.1 MHz";
    QTest::newRow("digit, after trimming") << "0" << true << "47.1 MHz";
    QTest::newRow("zeros that are trimmed first") << "100" << true << "470.1 MHz";
    QTest::newRow("case counts") << " mhz" << false << "470.100 MHz";
}

void FrequencyFormattingTest::suffixIsTakenOut()
{
    QFETCH(QString, suffix);
    QFETCH(bool, trimZeros);
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency = withSuffix(470100.0, suffix);
    QTEST(frequency.toString(trimZeros, false), "text");
    // Only the form with two arguments takes it out.
    QCOMPARE(frequency.toString(false), QStringLiteral("470.100 MHz"));
    QCOMPARE(frequency.toString(0, 0, false), QStringLiteral("470.100 MHz"));
}

void FrequencyFormattingTest::threeArgumentFormIgnoresItsNumbers()
{
    const DefaultLocale locale(QStringLiteral("C"));
    const Frequency frequency = trimmed(1500000.0, true, QStringLiteral(" (A)"));
    QCOMPARE(frequency.toString(1, 7, true), QStringLiteral("1.500 GHz (A)"));
    QCOMPARE(frequency.toString(-1, 1000, true), QStringLiteral("1.500 GHz (A)"));
}

void FrequencyFormattingTest::groupOptionOfTheUserIsKeptButInMegahertz()
{
    QLocale plain(QStringLiteral("en_US"));
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    const DefaultLocale scope(QStringLiteral("C"));
    QLocale::setDefault(plain);
    QCOMPARE(Frequency::fromKhz(1500.0).asKhzString(true, 0, false), QStringLiteral("1500 kHz"));

    QLocale grouped = QLocale::c();
    grouped.setNumberOptions(QLocale::DefaultNumberOptions);
    QLocale::setDefault(grouped);
    QCOMPARE(Frequency::fromKhz(1500.0).asKhzString(true, 0, false), QStringLiteral("1,500 kHz"));
    QCOMPARE(Frequency::fromKhz(1500000.0).asMhzString(true, 0), QStringLiteral("1500 MHz"));
    QCOMPARE(QLocale().numberOptions(), QLocale::NumberOptions()); // the default is not touched
}

/** The pattern of a localised argument gives a text back as it is; only numbers it formats. */
void FrequencyFormattingTest::localisedTextIsNotLocalisedAgain()
{
    for (const char* const name : {"C", "en_US", "de_DE", "fr_FR", "ar_EG", "fa_IR"}) {
        const DefaultLocale scope{QString::fromLatin1(name)};
        for (const double khz : {0.5, 999.5, 1000.0, 470125.0, 1470125.25, -1234567.0, 1.5e9}) {
            const Frequency frequency = Frequency::fromKhz(khz);
            const QString pattern = QStringLiteral("%L1");
            QLocale plain;
            plain.setNumberOptions(QLocale::OmitGroupSeparator);
            QCOMPARE(frequency.asKhzString(true, 3, false),
                     pattern.arg(QLocale().toString(khz, 'f', 3), 0, QLatin1Char(' ')) +
                         QStringLiteral(" kHz"));
            QCOMPARE(frequency.asMhzString(false, 5),
                     pattern.arg(plain.toString(khz / 1000.0, 'f', 5), 0, QLatin1Char(' ')));
            QCOMPARE(frequency.asGhzString(false, 7),
                     pattern.arg(QLocale().toString(khz / 1e6, 'f', 7), 0, QLatin1Char(' ')));
        }
    }
}

void FrequencyFormattingTest::trailingZerosAreAdjusted_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("minDecimals");
    QTest::addColumn<int>("maxDecimals");
    QTest::addColumn<QString>("after");
    QTest::newRow("zeros go") << "C"
                              << "12.300" << 1 << 3 << "12.3";
    QTest::newRow("point goes with all decimals") << "C"
                                                  << "12.000" << 0 << 3 << "12";
    QTest::newRow("one decimal stays") << "C"
                                       << "12.000" << 1 << 3 << "12.0";
    QTest::newRow("all stay") << "C"
                              << "12.000" << 3 << 3 << "12.000";
    QTest::newRow("minimum above maximum") << "C"
                                           << "12.000" << 5 << 3 << "12.000";
    QTest::newRow("no zero") << "C"
                             << "12.345" << 0 << 3 << "12.345";
    QTest::newRow("inner zeros stay") << "C"
                                      << "12.005" << 0 << 3 << "12.005";
    QTest::newRow("whole zeros stay") << "C"
                                      << "100.0" << 0 << 1 << "100";
    QTest::newRow("unit stays") << "C"
                                << "470.100 MHz" << 0 << 3 << "470.1 MHz";
    QTest::newRow("unit without decimals") << "C"
                                           << "470.000 MHz" << 0 << 3 << "470 MHz";
    QTest::newRow("only the first point") << "C"
                                          << "1.00.00" << 0 << 2 << "1.00";
    QTest::newRow("no decimals, point goes") << "C"
                                             << "12." << 0 << 0 << "12";
    QTest::newRow("maximum is where it starts") << "C"
                                                << "12.3000" << 0 << 2 << "12.300";
    QTest::newRow("no point") << "C"
                              << "12" << 0 << 3 << "12";
    QTest::newRow("German comma") << "de_DE"
                                  << "1.200,500" << 0 << 3 << "1.200,5";
    QTest::newRow("point is no German decimal point") << "de_DE"
                                                      << "12.300" << 0 << 3 << "12.300";
    QTest::newRow("Arabic zeros stay") << "ar_EG" << QStringLiteral(u"\u0661\u066b\u0660\u0660")
                                       << 0 << 2 << QStringLiteral(u"\u0661\u066b\u0660\u0660");
    QTest::newRow("zeros after an Arabic point")
        << "ar_EG" << QStringLiteral(u"1\u066b500") << 0 << 3 << QStringLiteral(u"1\u066b5");
}

void FrequencyFormattingTest::trailingZerosAreAdjusted()
{
    QFETCH(QString, locale);
    QFETCH(QString, before);
    QFETCH(int, minDecimals);
    QFETCH(int, maxDecimals);
    const DefaultLocale scope(locale);
    QString text = before;
    Frequency::AdjustTrailingZeros(text, minDecimals, maxDecimals);
    QTEST(text, "after");
}

void FrequencyFormattingTest::otherTextsAreLeftAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("minDecimals");
    QTest::addColumn<int>("maxDecimals");
    const int highest = std::numeric_limits<int>::max();
    const int lowest = std::numeric_limits<int>::min();
    QTest::newRow("null") << QString() << 0 << 3;
    QTest::newRow("empty") << "" << 0 << 3;
    QTest::newRow("point alone") << "." << 0 << 3;
    QTest::newRow("no decimals") << "12." << 0 << 1;
    QTest::newRow("one decimal too few") << "12.00" << 0 << 3;
    QTest::newRow("far too few decimals") << "12.00" << 0 << highest;
    QTest::newRow("negative maximum") << "100.00" << -3 << -1;
    QTest::newRow("lowest maximum") << "100.00" << 0 << lowest;
    QTest::newRow("lowest of both") << "100.00" << lowest << lowest;
    QTest::newRow("highest of both") << "100.00" << highest << highest;
    QTest::newRow("highest minimum") << "100.00" << highest << 2;
}

void FrequencyFormattingTest::otherTextsAreLeftAlone()
{
    QFETCH(QString, text);
    QFETCH(int, minDecimals);
    QFETCH(int, maxDecimals);
    const DefaultLocale scope(QStringLiteral("C"));
    QString copy = text;
    Frequency::AdjustTrailingZeros(copy, minDecimals, maxDecimals);
    QCOMPARE(copy, text);
}

void FrequencyFormattingTest::debugTextEndsOpen_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("khz");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("text");
    QTest::newRow("number") << "C" << 470125.0 << ""
                            << "[Frequency: 470.125 MHz] -  next";
    QTest::newRow("suffix") << "C" << 470125.0 << " (A)"
                            << "[Frequency: 470.125 MHz (A)] -  next";
    QTest::newRow("null") << "C" << 0.0 << " (A)"
                          << "[Frequency: Find Best] -  next";
    QTest::newRow("locale") << "de_DE" << 470125.0 << ""
                            << "[Frequency: 470,125 MHz] -  next";
    QTest::newRow("beyond ASCII") << "C" << 470125.0 << QStringLiteral(u" \u00e9\u2212")
                                  << QStringLiteral(u"[Frequency: 470.125 MHz \u00e9\u2212] -  "
                                                    u"next");
    QTest::newRow("8-bit text ends at a null") << "C" << 470125.0 << QString(QChar('\0')) + "x"
                                               << "[Frequency: 470.125 MHz next";
}

void FrequencyFormattingTest::debugTextEndsOpen()
{
    QFETCH(QString, locale);
    QFETCH(double, khz);
    QFETCH(QString, suffix);
    const DefaultLocale scope(locale);
    QString text;
    QDebug(&text) << withSuffix(khz, suffix) << "next";
    QTEST(text.trimmed(), "text");
}

QTEST_GUILESS_MAIN(FrequencyFormattingTest)
#include "FrequencyFormattingTest.moc"

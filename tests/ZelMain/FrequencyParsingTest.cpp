#include "ZelMain/Frequency.h"

#include "tests/ZelMain/FrequencyTestSupport.h"
#include "tests/support/MessageRecorder.h"

#include <QDataStream>
#include <QtTest>

#include <limits>

namespace {

const double INFINITE = std::numeric_limits<double>::infinity();

QByteArray toBytes(const Frequency& frequency)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << frequency;
    return bytes;
}

} // namespace

class FrequencyParsingTest : public QObject
{
    Q_OBJECT

private slots:
    void textIsReadInItsUnit_data();
    void textIsReadInItsUnit();
    void textIsReadInDefaultUnits_data();
    void textIsReadInDefaultUnits();
    void unsupportedDefaultUnitsAreTold_data();
    void unsupportedDefaultUnitsAreTold();
    void nothingElseIsTold();
    void numberIsReadInKilohertz_data();
    void numberIsReadInKilohertz();
    void numberIsReadInMegahertz_data();
    void numberIsReadInMegahertz();
    void numberIsReadInGigahertz_data();
    void numberIsReadInGigahertz();
    void numberTextHasTheFormOfTheCLocale_data();
    void numberTextHasTheFormOfTheCLocale();
    void decimalPointIsTheUsers_data();
    void decimalPointIsTheUsers();
    void successMayGoUntold();
    void parsedValueIsFresh();
    void failedParseReadsFindBest();
    void inputIsNotChanged();
    void megahertzOrWholeKilohertz_data();
    void megahertzOrWholeKilohertz();
    void unitIsScrubbed_data();
    void unitIsScrubbed();
};

void FrequencyParsingTest::textIsReadInItsUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<double>("khz");
    QTest::newRow("megahertz") << "470.125 MHz" << true << 470125.0;
    QTest::newRow("unit in lower case") << "470.125 mhz" << true << 470125.0;
    QTest::newRow("unit in upper case") << "470.125 MHZ" << true << 470125.0;
    QTest::newRow("gigahertz") << "0.5 GHz" << true << 500000.0;
    QTest::newRow("kilohertz") << "470125.5 kHz" << true << 470125.5;
    QTest::newRow("kilohertz are kept as read") << "470125.123456 KHz" << true << 470125.123456;
    QTest::newRow("megahertz keep 10 Hz") << "470.1234567 MHz" << true << 470123.46;
    QTest::newRow("gigahertz keep 10 Hz") << "0.4701234567 ghz" << true << 470123.46;
    QTest::newRow("blanks around both words") << "  470.125    MHz " << true << 470125.0;
    QTest::newRow("zero") << "0 MHz" << true << 0.0;
    QTest::newRow("negative") << "-1.5 MHz" << true << -1500.0;
    QTest::newRow("tab joins") << "470.125\tMHz" << false << 0.0;
    QTest::newRow("tab at the number") << "\t470.125 MHz" << true << 470125.0;
    QTest::newRow("tab at the unit") << "470.125 MHz\t" << false << 0.0;
    QTest::newRow("no blank") << "470.125MHz" << false << 0.0;
    QTest::newRow("hertz") << "470125 Hz" << false << 0.0;
    QTest::newRow("trailing dot") << "470.125 MHz." << false << 0.0;
    QTest::newRow("trailing comma") << "470.125 MHz," << false << 0.0;
    QTest::newRow("unknown unit") << "470.125 THz" << false << 0.0;
    QTest::newRow("three words") << "470.125 MHz extra" << false << 0.0;
    QTest::newRow("two units") << "470.125 MHz MHz" << false << 0.0;
    QTest::newRow("unit first") << "MHz 470.125" << false << 0.0;
    QTest::newRow("no number") << "abc MHz" << false << 0.0;
    QTest::newRow("number alone") << "470.125" << false << 0.0;
    QTest::newRow("unit alone") << "MHz" << false << 0.0;
    QTest::newRow("empty") << "" << false << 0.0;
    QTest::newRow("null") << QString() << false << 0.0;
    QTest::newRow("blanks") << "   " << false << 0.0;
    QTest::newRow("Find Best") << "Find Best" << false << 0.0;
}

void FrequencyParsingTest::textIsReadInItsUnit()
{
    QFETCH(QString, text);
    QFETCH(double, khz);
    for (const bool before : {false, true}) {
        bool ok = before;
        const Frequency frequency = Frequency::fromString(text, &ok, Frequency::NoUnits);
        QCOMPARE(exactly(frequency.inKhz()), exactly(khz));
        QTEST(ok, "understood");
    }
}

void FrequencyParsingTest::textIsReadInDefaultUnits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("units");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<double>("khz");
    QTest::newRow("megahertz") << "470.125" << int(Frequency::MHz) << true << 470125.0;
    QTest::newRow("gigahertz") << "0.5" << int(Frequency::GHz) << true << 500000.0;
    QTest::newRow("kilohertz") << "470125.5" << int(Frequency::kHz) << true << 470125.5;
    QTest::newRow("none") << "470.125" << int(Frequency::NoUnits) << false << 0.0;
    QTest::newRow("blanks around") << "  470.125  " << int(Frequency::MHz) << true << 470125.0;
    QTest::newRow("unit of the text wins") << "470 kHz" << int(Frequency::GHz) << true << 470.0;
    QTest::newRow("hertz in the text") << "470 Hz" << int(Frequency::MHz) << false << 0.0;
    QTest::newRow("no number") << "abc" << int(Frequency::MHz) << false << 0.0;
    QTest::newRow("empty") << "" << int(Frequency::MHz) << false << 0.0;
    QTest::newRow("empty, hertz") << "" << int(Frequency::Hz) << false << 0.0;
    QTest::newRow("three words") << "1 MHz 2" << int(Frequency::MHz) << false << 0.0;
}

void FrequencyParsingTest::textIsReadInDefaultUnits()
{
    QFETCH(QString, text);
    QFETCH(int, units);
    QFETCH(double, khz);
    for (const bool before : {false, true}) {
        bool ok = before;
        const Frequency frequency =
            Frequency::fromString(text, &ok, static_cast<Frequency::FreqUnits>(units));
        QCOMPARE(exactly(frequency.inKhz()), exactly(khz));
        QTEST(ok, "understood");
    }
}

void FrequencyParsingTest::unsupportedDefaultUnitsAreTold_data()
{
    QTest::addColumn<int>("units");
    QTest::newRow("hertz") << int(Frequency::Hz);
    QTest::newRow("above the last") << 5;
    QTest::newRow("far above the last") << 700;
    QTest::newRow("below the first") << -1;
}

void FrequencyParsingTest::unsupportedDefaultUnitsAreTold()
{
    QFETCH(int, units);
    const MessageRecorder recorder;
    bool ok = true;
    const Frequency frequency = Frequency::fromString(QStringLiteral("470125"), &ok,
                                                      static_cast<Frequency::FreqUnits>(units));
    QVERIFY(frequency.isNull());
    QVERIFY(!ok);
    QCOMPARE(recorder.messages(), QVector<RecordedMessage>({{QtDebugMsg, "default",
                                                             "Unsupported frequency units. \n"}}));
}

void FrequencyParsingTest::nothingElseIsTold()
{
    const MessageRecorder recorder;
    Frequency::fromString(QStringLiteral("470125 Hz"), nullptr, Frequency::NoUnits);
    Frequency::fromString(QStringLiteral("470125 Hz"), nullptr, Frequency::Hz);
    Frequency::fromString(QStringLiteral("470125"), nullptr, Frequency::NoUnits);
    Frequency::fromString(QString(), nullptr, Frequency::Hz);
    Frequency::fromString(QStringLiteral("abc"), nullptr, Frequency::MHz);
    Frequency::fromKhzString(QStringLiteral("abc"), nullptr);
    Frequency::ScrubFreqString(QStringLiteral("abc"), nullptr);
    Frequency::StringToMhz(QStringLiteral("abc"), QLocale::c());
    QVERIFY(recorder.messages().isEmpty());
}

void FrequencyParsingTest::numberIsReadInKilohertz_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<double>("khz");
    QTest::newRow("as read") << "470125.123456789" << true << 470125.123456789;
    QTest::newRow("no number") << "abc" << false << 0.0;
    QTest::newRow("with a unit") << "470125 kHz" << false << 0.0;
    QTest::newRow("beyond 32 bits") << "1e15" << true << 1e15;
    QTest::newRow("infinite") << "inf" << true << INFINITE;
    QTest::newRow("too large for a double") << "1e999" << false << 0.0;
}

void FrequencyParsingTest::numberIsReadInKilohertz()
{
    QFETCH(QString, text);
    QFETCH(double, khz);
    bool ok = false;
    QCOMPARE(exactly(Frequency::fromKhzString(text, &ok).inKhz()), exactly(khz));
    QTEST(ok, "understood");
}

void FrequencyParsingTest::numberIsReadInMegahertz_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<double>("khz");
    QTest::newRow("rounds to 10 Hz") << "470.1234567" << true << 470123.46;
    QTest::newRow("finer than a number of megahertz") << "470.12342" << true << 470123.42;
    QTest::newRow("half goes up") << "0.0000050" << true << 0.01;
    QTest::newRow("negative half goes up") << "-0.0000050" << true << 0.0;
    QTest::newRow("no number") << "abc" << false << 0.0;
    QTest::newRow("most steps of 10 Hz") << "21474.83647" << true << 21474836.47;
    QTest::newRow("beyond 32 bits") << "21474.83648" << true << 21474836.47;
    QTest::newRow("negative beyond 32 bits") << "-1e12" << true << -21474836.48;
    QTest::newRow("infinite") << "-inf" << true << -21474836.48;
    QTest::newRow("not a number, which the parser knows") << "nan" << true << 0.0;
    QTest::newRow("too large for a double") << "1e999" << false << 0.0;
}

void FrequencyParsingTest::numberIsReadInMegahertz()
{
    QFETCH(QString, text);
    QFETCH(double, khz);
    bool ok = false;
    QCOMPARE(exactly(Frequency::fromMhzString(text, &ok).inKhz()), exactly(khz));
    QTEST(ok, "understood");
}

void FrequencyParsingTest::numberIsReadInGigahertz_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::addColumn<double>("khz");
    QTest::newRow("half") << "0.5" << true << 500000.0;
    QTest::newRow("rounds to 10 Hz") << "0.4701234567" << true << 470123.46;
    QTest::newRow("finer than a number of gigahertz") << "0.47012342" << true << 470123.42;
    QTest::newRow("no number") << "abc" << false << 0.0;
    QTest::newRow("beyond 32 bits") << "22" << true << 21474836.47;
    QTest::newRow("too large for a double") << "-1e999" << false << 0.0;
}

void FrequencyParsingTest::numberIsReadInGigahertz()
{
    QFETCH(QString, text);
    QFETCH(double, khz);
    bool ok = false;
    QCOMPARE(exactly(Frequency::fromGhzString(text, &ok).inKhz()), exactly(khz));
    QTEST(ok, "understood");
}

void FrequencyParsingTest::numberTextHasTheFormOfTheCLocale_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("understood");
    QTest::newRow("exponent") << "4.7e2" << true;
    QTest::newRow("plus") << "+470" << true;
    QTest::newRow("no digit before the point") << ".5" << true;
    QTest::newRow("no digit after the point") << "5." << true;
    QTest::newRow("blanks around") << " 470 " << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("group separator") << "1,000.5" << false;
    QTest::newRow("two points") << "1.000.5" << false;
    QTest::newRow("blank inside") << "470 125" << false;
    QTest::newRow("hexadecimal") << "0x10" << false;
    QTest::newRow("Arabic digits") << QStringLiteral(u"\u0664\u0667\u0660") << false;
    QTest::newRow("null character") << QString(QChar('\0')) << false;
}

void FrequencyParsingTest::numberTextHasTheFormOfTheCLocale()
{
    QFETCH(QString, text);
    const DefaultLocale locale(QStringLiteral("en_US"));
    bool ok = false;
    Frequency::fromKhzString(text, &ok);
    QTEST(ok, "understood");
    Frequency::fromMhzString(text, &ok);
    QTEST(ok, "understood");
    Frequency::fromGhzString(text, &ok);
    QTEST(ok, "understood");
}

void FrequencyParsingTest::decimalPointIsTheUsers_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("understood");
    QTest::newRow("C, point") << "C"
                              << "470.125" << true;
    QTest::newRow("C, comma") << "C"
                              << "470,125" << false;
    QTest::newRow("English, point") << "en_US"
                                    << "470.125" << true;
    QTest::newRow("English, comma") << "en_US"
                                    << "470,125" << false;
    QTest::newRow("German, comma") << "de_DE"
                                   << "470,125" << true;
    QTest::newRow("German, point, which the parser reads") << "de_DE"
                                                           << "470.125" << true;
    QTest::newRow("German, group separator") << "de_DE"
                                             << "4.700,125" << false;
    QTest::newRow("German, two commas") << "de_DE"
                                        << "470,12,5" << false;
    QTest::newRow("French, comma") << "fr_FR"
                                   << "470,125" << true;
    QTest::newRow("French, group separator")
        << "fr_FR" << QStringLiteral(u"4\u202f700,125") << false;
    QTest::newRow("Persian, decimal point between Latin digits")
        << "fa_IR" << QStringLiteral(u"470\u066b125") << true;
    QTest::newRow("Persian digits")
        << "fa_IR" << QStringLiteral(u"\u06f4\u06f7\u06f0\u066b\u06f1\u06f2\u06f5") << false;
}

void FrequencyParsingTest::decimalPointIsTheUsers()
{
    QFETCH(QString, locale);
    QFETCH(QString, number);
    QFETCH(bool, understood);
    const DefaultLocale scope(locale);
    const QByteArray khz = exactly(understood ? 470125.0 : 0.0);
    bool ok = false;

    QCOMPARE(exactly(Frequency::fromMhzString(number, &ok).inKhz()), khz);
    QCOMPARE(ok, understood);
    QCOMPARE(exactly(Frequency::fromString(number, &ok, Frequency::MHz).inKhz()), khz);
    QCOMPARE(ok, understood);
    const QString withUnit = number + QStringLiteral(" MHz");
    QCOMPARE(exactly(Frequency::fromString(withUnit, &ok, Frequency::NoUnits).inKhz()), khz);
    QCOMPARE(ok, understood);

    const QByteArray thousandth = exactly(understood ? 470.125 : 0.0);
    QCOMPARE(exactly(Frequency::fromKhzString(number, &ok).inKhz()), thousandth);
    QCOMPARE(ok, understood);
}

void FrequencyParsingTest::successMayGoUntold()
{
    const QString text = QStringLiteral("0.5 GHz");
    QCOMPARE(Frequency::fromString(text, nullptr, Frequency::NoUnits).inKhz(), 500000.0);
    QCOMPARE(Frequency::fromString(text).inKhz(), 500000.0);
    QCOMPARE(Frequency::fromGhzString(QStringLiteral("0.5")).inKhz(), 500000.0);
    QCOMPARE(Frequency::fromMhzString(QStringLiteral("0.5")).inKhz(), 500.0);
    QCOMPARE(Frequency::fromKhzString(QStringLiteral("0.5")).inKhz(), 0.5);
    QVERIFY(Frequency::fromString(QStringLiteral("1 2 3"), nullptr, Frequency::MHz).isNull());
    QVERIFY(Frequency::fromKhzString(QStringLiteral("abc"), nullptr).isNull());
}

void FrequencyParsingTest::parsedValueIsFresh()
{
    const QByteArray fresh = toBytes(Frequency::fromKhz(470125.0));
    QCOMPARE(toBytes(Frequency::fromString(QStringLiteral("470.125 MHz"))), fresh);
    QCOMPARE(toBytes(Frequency::fromKhzString(QStringLiteral("470125"))), fresh);
    QCOMPARE(toBytes(Frequency::fromMhzString(QStringLiteral("470.125"))), fresh);
    QCOMPARE(toBytes(Frequency::fromGhzString(QStringLiteral("0.470125"))), fresh);
}

void FrequencyParsingTest::failedParseReadsFindBest()
{
    const QByteArray null = toBytes(Frequency());
    const QString text = QStringLiteral("abc");
    QCOMPARE(toBytes(Frequency::fromString(text)), null);
    QCOMPARE(toBytes(Frequency::fromKhzString(text)), null);
    QCOMPARE(toBytes(Frequency::fromMhzString(text)), null);
    QCOMPARE(toBytes(Frequency::fromGhzString(text)), null);
    QCOMPARE(Frequency::fromString(text).toString(), QStringLiteral("Find Best"));
}

void FrequencyParsingTest::inputIsNotChanged()
{
    const DefaultLocale locale(QStringLiteral("de_DE"));
    const QString number = QStringLiteral("470,125");
    const QString text = QStringLiteral(" 470,125  MHz, ");
    Frequency::fromMhzString(number);
    Frequency::fromString(text);
    bool ok = false;
    Frequency::ScrubFreqString(text, &ok);
    QCOMPARE(number, QStringLiteral("470,125"));
    QCOMPARE(text, QStringLiteral(" 470,125  MHz, "));
}

void FrequencyParsingTest::megahertzOrWholeKilohertz_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("mhz");
    QTest::newRow("kilohertz") << "C"
                               << "470125" << 470.125;
    QTest::newRow("megahertz") << "C"
                               << "470.125" << 470.125;
    QTest::newRow("megahertz are not rounded") << "C"
                                               << "470.123456789" << 470.123456789;
    QTest::newRow("kilohertz of the locale") << "de_DE"
                                             << "470.125" << 470.125;
    QTest::newRow("megahertz of the locale") << "de_DE"
                                             << "470,125" << 470.125;
    QTest::newRow("grouped megahertz") << "de_DE"
                                       << "1.470,5" << 1470.5;
    QTest::newRow("comma is no decimal point") << "en_US"
                                               << "470,125" << 470.125;
    QTest::newRow("Persian digits")
        << "fa_IR" << QStringLiteral(u"\u06f4\u06f7\u06f0\u066b\u06f5") << 470.5;
    QTest::newRow("negative kilohertz") << "C"
                                        << "-470125" << -470.125;
    QTest::newRow("kilohertz beyond 32 bits") << "C"
                                              << "2147483648" << 0.0;
    QTest::newRow("no whole number") << "C"
                                     << "4e5" << 0.0;
    QTest::newRow("no number") << "C"
                               << "abc" << 0.0;
    QTest::newRow("no number with a point") << "C"
                                            << "a.b" << 0.0;
    QTest::newRow("with a unit") << "C"
                                 << "470.125 MHz" << 0.0;
    QTest::newRow("only a point") << "C"
                                  << "." << 0.0;
    QTest::newRow("empty") << "C"
                           << "" << 0.0;
    QTest::newRow("null") << "C" << QString() << 0.0;
}

void FrequencyParsingTest::megahertzOrWholeKilohertz()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(double, mhz);
    // The default locale has no part in it.
    for (const char* const other : {"C", "de_DE"}) {
        const DefaultLocale scope{QString::fromLatin1(other)};
        QCOMPARE(exactly(Frequency::StringToMhz(text, QLocale(locale))), exactly(mhz));
    }
}

void FrequencyParsingTest::unitIsScrubbed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("scrubbed");
    QTest::addColumn<QString>("result");
    QTest::newRow("comma behind") << "470.125 MHz," << true << "470.125 MHz";
    QTest::newRow("more behind") << "470.125 MHz(A),x" << true << "470.125 MHz";
    QTest::newRow("kilohertz") << "470125 kHz;" << true << "470125 kHz";
    QTest::newRow("case is kept") << "470.125 mHZ." << true << "470.125 mHZ";
    QTest::newRow("blanks around") << "  470.125   MHz, " << true << "470.125 MHz";
    QTest::newRow("number is not looked at") << "abc MHz," << true << "abc MHz";
    QTest::newRow("something in front stays") << "470.125 (MHz)" << true << "470.125 (MHz";
    QTest::newRow("in front makes four characters") << "470.125 ~MHz" << true << "470.125 ~MHz";
    QTest::newRow("first z is before the unit") << "470.125 zMHz" << true << "470.125 z";
    QTest::newRow("both units") << "470.125 kHzMHz" << true << "470.125 kHz";
    QTest::newRow("bare MHz") << "470.125 MHz" << false << "";
    QTest::newRow("bare kHz") << "470125 kHz" << false << "";
    QTest::newRow("GHz") << "0.470 GHz," << false << "";
    QTest::newRow("Hz") << "470125 Hz,,,," << false << "";
    QTest::newRow("no unit") << "470.125 extra" << false << "";
    QTest::newRow("one word") << "470.125MHz," << false << "";
    QTest::newRow("three words") << "470.125 MHz, x" << false << "";
    QTest::newRow("tab does not separate") << "470.125\tMHz," << false << "";
    QTest::newRow("empty") << "" << false << "";
    QTest::newRow("null") << QString() << false << "";
}

void FrequencyParsingTest::unitIsScrubbed()
{
    QFETCH(QString, text);
    for (const bool before : {false, true}) {
        bool ok = before;
        QTEST(Frequency::ScrubFreqString(text, &ok), "result");
        QTEST(ok, "scrubbed");
    }
    QTEST(Frequency::ScrubFreqString(text, nullptr), "result");
}

QTEST_GUILESS_MAIN(FrequencyParsingTest)
#include "FrequencyParsingTest.moc"

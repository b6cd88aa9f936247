// Hunts texts that frequencies are read from otherwise than the rules say, in several locales, and
// text forms that differ from their rules step by step or do not lead back to the frequency.
//
// The input is a byte for the locale, one for the units, one for the number of decimals, a line
// with the suffix, and the text to read.

#include "fuzz/FuzzTarget.h"

#include "ZelMain/Frequency.h"

#include <QDataStream>
#include <QLocale>
#include <QStringList>

#include <array>
#include <cmath>
#include <limits>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

// Points and commas, group separators of several sorts, digits of other scripts, and a minus sign
// that is no hyphen.
constexpr std::array<const char*, 10> LOCALES = {"C",     "en_US", "de_DE", "fr_FR", "de_CH",
                                                 "ar_EG", "fa_IR", "hi_IN", "sv_SE", "pt_PT"};
constexpr int UNIT_COUNT = 6; // one more than there are
constexpr int MAX_DECIMALS = 20;

// --- The rules of reading --------------------------------------------------------------------

struct Reading
{
    bool isRead = false;
    double khz = 0.0;
};

int rounded(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    if (value <= std::numeric_limits<int>::min()) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(std::floor(value + 0.5)); // halves upward
}

Reading readKhz(QString number, double stepsPerUnit)
{
    bool ok = false;
    number.replace(QLocale().decimalPoint(), QLatin1Char('.'));
    const double value = number.toDouble(&ok);
    if (!ok) {
        return {};
    }
    return {true, stepsPerUnit == 0.0 ? value : rounded(value * stepsPerUnit) / 100.0};
}

Reading readIn(const QString& number, int units)
{
    switch (units) {
    case Frequency::GHz:
        return readKhz(number, 100000000.0);
    case Frequency::MHz:
        return readKhz(number, 100000.0);
    case Frequency::kHz:
        return readKhz(number, 0.0);
    default:
        return {};
    }
}

Reading read(const QString& text, int defaultUnits)
{
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.size() == 1) {
        return readIn(parts[0], defaultUnits);
    }
    if (parts.size() != 2) {
        return {};
    }
    const QStringList words = {QString(), QStringLiteral("ghz"), QStringLiteral("mhz"),
                               QStringLiteral("khz")};
    for (int units = Frequency::GHz; units <= Frequency::kHz; ++units) {
        if (parts[1].compare(words[units], Qt::CaseInsensitive) == 0) {
            return readIn(parts[0], units);
        }
    }
    return {};
}

bool isSame(double one, double other)
{
    return one == other || (std::isnan(one) && std::isnan(other));
}

void requireReading(const Frequency& frequency, bool ok, const Reading& expected,
                    const char* promise)
{
    require(ok == expected.isRead && isSame(frequency.inKhz(), expected.khz), promise);
    require(frequency.suffix().isEmpty(), "a text gives no suffix");
}

void checkReading(const QString& text, int defaultUnits)
{
    const auto units = static_cast<Frequency::FreqUnits>(defaultUnits);
    bool ok = !read(text, defaultUnits).isRead;
    const Frequency frequency = Frequency::fromString(text, &ok, units);
    requireReading(frequency, ok, read(text, defaultUnits), "a text is read by its unit");
    require(isSame(Frequency::fromString(text, nullptr, units).inKhz(), frequency.inKhz()),
            "who does not ask gets the same");

    const Frequency khz = Frequency::fromKhzString(text, &ok);
    requireReading(khz, ok, readIn(text, Frequency::kHz), "kilohertz are kept as read");
    const Frequency mhz = Frequency::fromMhzString(text, &ok);
    requireReading(mhz, ok, readIn(text, Frequency::MHz), "megahertz are rounded to 10 Hz");
    const Frequency ghz = Frequency::fromGhzString(text, &ok);
    requireReading(ghz, ok, readIn(text, Frequency::GHz), "gigahertz are rounded to 10 Hz");

    const QLocale locale;
    const double expectedMhz = text.contains(locale.decimalPoint())
                                   ? locale.toDouble(text)
                                   : double(locale.toInt(text)) / 1000.0;
    require(isSame(Frequency::StringToMhz(text, locale), expectedMhz),
            "a decimal point makes a number one of megahertz");
}

void checkUnits(const QString& text)
{
    const QStringList names = {QStringLiteral("ghz"), QStringLiteral("mhz"), QStringLiteral("khz"),
                               QStringLiteral("hz")};
    int expected = Frequency::NoUnits;
    for (int i = 0; i < names.size(); ++i) {
        if (text.compare(names[i], Qt::CaseInsensitive) == 0) {
            expected = i + 1;
        }
    }
    const Frequency::FreqUnits units = Frequency::UnitsFromString(text);
    require(units == expected, "units are named by the whole text");
    require(units == Frequency::NoUnits ||
                Frequency::UnitsFromString(Frequency::stringFromUnits(units)) == units,
            "the text of units leads back to them");
}

void checkScrubbing(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QString expected;
    if (parts.size() == 2 && parts[1].size() >= 4 &&
        (parts[1].contains(QStringLiteral("MHz"), Qt::CaseInsensitive) ||
         parts[1].contains(QStringLiteral("kHz"), Qt::CaseInsensitive))) {
        const int letter = parts[1].indexOf(QLatin1Char('z'), 0, Qt::CaseInsensitive);
        expected = parts[0] + QLatin1Char(' ') + parts[1].left(letter + 1);
    }
    bool ok = expected.isEmpty();
    requireEqual(Frequency::ScrubFreqString(text, &ok), expected, "the unit is freed of its trail");
    require(ok != expected.isEmpty(), "scrubbing tells whether there was a unit");
}

// --- The rules of writing --------------------------------------------------------------------

QString localised(const QLocale& locale, double value, int decimals)
{
    return QStringLiteral("%L1").arg(locale.toString(value, 'f', decimals));
}

QString khzText(double khz, bool withUnits, int decimals, bool dropOneZero)
{
    QString text = localised(QLocale(), khz, decimals) + QStringLiteral(" kHz");
    if (dropOneZero) {
        text.replace(QStringLiteral("0 kHz"), QStringLiteral(" kHz"));
    }
    return withUnits ? text : text.remove(QStringLiteral("kHz"));
}

QString mhzText(double khz, bool withUnits, int decimals)
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return localised(locale, khz / 1000.0, decimals) +
           (withUnits ? QStringLiteral(" MHz") : QString());
}

QString ghzText(double khz, bool withUnits, int decimals)
{
    return localised(QLocale(), khz / 1000000.0, decimals) +
           (withUnits ? QStringLiteral(" GHz") : QString());
}

QString fittingText(double khz)
{
    return khz < 1000.0 ? khzText(khz, true, 3, false) : mhzText(khz, true, 3);
}

QString withoutZeros(QString text, int minDecimals, int maxDecimals)
{
    const int point = text.indexOf(QLocale().decimalPoint());
    if (point < 0 || point + maxDecimals >= text.size()) {
        return text;
    }
    int last = point + maxDecimals;
    while (last > point + minDecimals && text[last] == QLatin1Char('0')) {
        text.remove(last--, 1);
    }
    return last == point ? text.remove(point, 1) : text;
}

void checkWriting(const Frequency& frequency, int decimals)
{
    const double khz = frequency.inKhz();
    const QString suffix = frequency.suffix();
    for (const bool flag : {false, true}) {
        requireEqual(frequency.asKhzString(flag, decimals, false),
                     khzText(khz, flag, decimals, false), "kilohertz are written by their rules");
        requireEqual(frequency.asKhzString(flag, decimals, true),
                     khzText(khz, flag, decimals, true), "one zero goes");
        requireEqual(frequency.asMhzString(flag, decimals), mhzText(khz, flag, decimals),
                     "megahertz are written by their rules");
        requireEqual(frequency.asGhzString(flag, decimals), ghzText(khz, flag, decimals),
                     "gigahertz are written by their rules");
        QString fitting = fittingText(khz);
        requireEqual(frequency.toString(flag), flag ? fitting + suffix : fitting,
                     "the unit fits the number");
        fitting = withoutZeros(fitting, 0, 3);
        requireEqual(frequency.toString(true, flag),
                     flag               ? fitting + suffix
                     : suffix.isEmpty() ? fitting
                                        : fitting.remove(suffix),
                     "zeros at the end go");
    }
    requireEqual(frequency.toString(1, 2, true),
                 (khz < 1000000.0 ? fittingText(khz) : ghzText(khz, true, 3)) + suffix,
                 "large numbers are in gigahertz");
}

// Users type what they read: only for numbers that they can, in digits that are read.
void checkRoundTrip(const Frequency& frequency)
{
    constexpr double HIGHEST = 21474836.0; // what an int counts in steps of 10 Hz
    const double khz = frequency.inKhz();
    if (!(khz >= 1000.0 && khz <= HIGHEST) || QLocale().zeroDigit() != QLatin1Char('0')) {
        return;
    }
    const QString text = frequency.asMhzString(true, 3);
    bool ok = false;
    const Frequency back = Frequency::fromString(text, &ok, Frequency::NoUnits);
    require(ok && std::abs(back.inKhz() - khz) <= 0.5001, "what is written in megahertz is read");
    requireEqual(back.asMhzString(true, 3), text, "what is read is written the same");
}

void checkNull()
{
    const QString findBest = QStringLiteral("Find Best");
    Frequency null;
    null.setSuffix(QStringLiteral("!"));
    requireEqual(null.asKhzString(true, 3, true), findBest, "no frequency reads \"Find Best\"");
    requireEqual(null.asMhzString(true, 3), findBest, "no frequency reads \"Find Best\"");
    requireEqual(null.asGhzString(true, 3), findBest, "no frequency reads \"Find Best\"");
    requireEqual(null.toString(true, true), findBest, "no frequency reads \"Find Best\"");
    requireEqual(null.toString(0, 0, true), findBest, "no frequency reads \"Find Best\"");
}

QByteArray streamed(const Frequency& frequency)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << frequency;
    return bytes;
}

Frequency unstreamed(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    Frequency frequency;
    stream >> frequency;
    return frequency;
}

void checkStream(const Frequency& frequency, const QByteArray& foreign)
{
    const QByteArray bytes = streamed(frequency);
    requireEqual(streamed(unstreamed(bytes)), bytes, "a stream leads back to the frequency");
    // Whatever foreign bytes give is a frequency, with a text and a way through a stream.
    const Frequency read = unstreamed(foreign);
    requireEqual(unstreamed(streamed(read)).toString(true), read.toString(true),
                 "a stream leads back to the frequency");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    FuzzTarget::Input input(data, size);
    QLocale::setDefault(QLocale(QLatin1String(
        LOCALES[static_cast<std::size_t>(input.takeNumber(static_cast<int>(LOCALES.size())))])));
    const int units = input.takeNumber(UNIT_COUNT);
    const int decimals = input.takeNumber(MAX_DECIMALS);
    const QString suffix = FuzzTarget::textOf(input.takeLine());
    const QByteArray rest = input.takeRest();
    const QString text = FuzzTarget::textOf(rest);

    checkReading(text, units);
    checkUnits(text);
    checkScrubbing(text);
    checkNull();
    QString trimmed = text;
    Frequency::AdjustTrailingZeros(trimmed, units, decimals);
    requireEqual(trimmed, withoutZeros(text, units, decimals), "decimals \"0\" go from the end");

    Frequency frequency(Frequency::fromKhzString(text, nullptr).inKhz(), false);
    frequency.setSuffix(suffix);
    checkWriting(frequency, decimals);
    checkRoundTrip(frequency);
    checkStream(frequency, rest);
    return 0;
}

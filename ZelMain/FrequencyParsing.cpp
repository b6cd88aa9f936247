#include "ZelMain/Frequency.h"

#include "ZelMain/FrequencyRounding.h"

#include <QLocale>
#include <QStringRef>
#include <QtDebug>

namespace {

// Texts keep steps of 10 Hz, finer than the 0.1 kHz that numbers keep: whoever types a digit means
// it, while the last digits of a computed number are noise.
constexpr double STEPS_PER_KHZ = 100.0;
constexpr double STEPS_PER_MHZ = 100000.0;
constexpr double STEPS_PER_GHZ = 100000000.0;

// A bare unit word has three characters; what is to be scrubbed has at least one more.
constexpr int MIN_SCRUBBED_LENGTH = 4;

/** The words of a text, which blanks separate: the first two, and how many there are. */
struct Words
{
    int count = 0;
    QStringRef first;
    QStringRef second;
};

// By hand, since the list that QString's own split makes costs as much as reading the number.
Words wordsOf(const QString& text)
{
    Words words;
    for (int begin = 0; begin < text.size();) {
        const int blank = text.indexOf(QLatin1Char(' '), begin);
        const int end = blank < 0 ? text.size() : blank;
        if (begin < end) {
            ++words.count;
            if (words.count <= 2) {
                (words.count == 1 ? words.first : words.second) = text.midRef(begin, end - begin);
            }
        }
        begin = end + 1;
    }
    return words;
}

Frequency::FreqUnits unitsNamed(const QStringRef& word)
{
    for (const auto units : {Frequency::GHz, Frequency::MHz, Frequency::kHz, Frequency::Hz}) {
        if (word.compare(Frequency::stringFromUnits(units), Qt::CaseInsensitive) == 0) {
            return units;
        }
    }
    return Frequency::NoUnits;
}

double readNumber(const QStringRef& text, bool* ok)
{
    // toDouble() knows only ".", while people type the decimal point of their own locale.
    const QChar decimalPoint = QLocale().decimalPoint();
    QString copy;
    QStringRef number = text;
    if (decimalPoint != QLatin1Char('.') && text.contains(decimalPoint)) {
        copy = text.toString().replace(decimalPoint, QLatin1Char('.'));
        number = QStringRef(&copy);
    }
    bool isNumber = false;
    const double value = number.toDouble(&isNumber);
    if (ok != nullptr) {
        *ok = isNumber;
    }
    // A number too large for a double comes as an infinity that was not understood.
    return isNumber ? value : 0.0;
}

Frequency readKhz(const QStringRef& text, bool* ok)
{
    return Frequency::fromKhz(readNumber(text, ok));
}

Frequency readMhz(const QStringRef& text, bool* ok)
{
    const double steps = readNumber(text, ok) * STEPS_PER_MHZ;
    return Frequency::fromKhz(FrequencyRounding::toInt(steps) / STEPS_PER_KHZ);
}

Frequency readGhz(const QStringRef& text, bool* ok)
{
    const double steps = readNumber(text, ok) * STEPS_PER_GHZ;
    return Frequency::fromKhz(FrequencyRounding::toInt(steps) / STEPS_PER_KHZ);
}

// A number in a unit that users type frequencies in; hertz is none of them.
Frequency readInUnits(const QStringRef& text, Frequency::FreqUnits units, bool* ok)
{
    switch (units) {
    case Frequency::GHz:
        return readGhz(text, ok);
    case Frequency::MHz:
        return readMhz(text, ok);
    case Frequency::kHz:
        return readKhz(text, ok);
    default:
        return Frequency();
    }
}

// Whether scrubbing has something to cut off: a bare unit word has nothing. Gigahertz is not cut.
bool isUnitWithTrail(const QStringRef& word)
{
    return word.size() >= MIN_SCRUBBED_LENGTH &&
           (word.contains(Frequency::stringFromUnits(Frequency::MHz), Qt::CaseInsensitive) ||
            word.contains(Frequency::stringFromUnits(Frequency::kHz), Qt::CaseInsensitive));
}

} // namespace

Frequency Frequency::fromKhzString(const QString& text, bool* ok)
{
    return readKhz(QStringRef(&text), ok);
}

Frequency Frequency::fromMhzString(const QString& text, bool* ok)
{
    return readMhz(QStringRef(&text), ok);
}

Frequency Frequency::fromGhzString(const QString& text, bool* ok)
{
    return readGhz(QStringRef(&text), ok);
}

Frequency Frequency::fromString(const QString& text, bool* ok, FreqUnits defaultUnits)
{
    if (ok != nullptr) {
        *ok = false;
    }
    const Words words = wordsOf(text);
    if (words.count == 2) {
        return readInUnits(words.first, unitsNamed(words.second), ok);
    }
    if (words.count != 1 || defaultUnits == NoUnits) {
        return Frequency();
    }
    if (defaultUnits != GHz && defaultUnits != MHz && defaultUnits != kHz) {
        qDebug("Unsupported frequency units. \n");
        return Frequency();
    }
    return readInUnits(words.first, defaultUnits, ok);
}

double Frequency::StringToMhz(const QString& text, const QLocale& locale)
{
    // Nobody types a decimal point for kilohertz, or leaves it out for megahertz.
    if (text.contains(locale.decimalPoint())) {
        return locale.toDouble(text);
    }
    return khzToMhz(locale.toInt(text));
}

QString Frequency::ScrubFreqString(const QString& text, bool* ok)
{
    if (ok != nullptr) {
        *ok = false;
    }
    const Words words = wordsOf(text);
    if (words.count != 2 || !isUnitWithTrail(words.second)) {
        return QString();
    }
    if (ok != nullptr) {
        *ok = true;
    }
    const QStringRef& unit = words.second;
    const int length = unit.indexOf(QLatin1Char('z'), 0, Qt::CaseInsensitive) + 1;
    return words.first.toString() + QLatin1Char(' ') + unit.left(length);
}

Frequency::FreqUnits Frequency::UnitsFromString(const QString& text)
{
    return unitsNamed(QStringRef(&text));
}

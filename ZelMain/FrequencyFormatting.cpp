#include "ZelMain/Frequency.h"

#include <QByteArray>
#include <QDebug>
#include <QLocale>

namespace {

// What users read most: down to the kilohertz in megahertz, to the hertz in kilohertz.
constexpr int DECIMALS = 3;

constexpr char FIXED_POINT = 'f';

QString findBest()
{
    return QStringLiteral("Find Best");
}

void appendUnits(QString& number, Frequency::FreqUnits units)
{
    number.append(QLatin1Char(' ')).append(Frequency::stringFromUnits(units));
}

} // namespace

QString Frequency::asKhzString(bool withUnits, int precision, bool dropOneZero) const
{
    if (readsFindBest()) {
        return findBest();
    }
    QString text = QLocale().toString(m_valueKhz, FIXED_POINT, precision);
    // Exactly one zero goes, even a whole one (470 kHz without decimals reads "47 kHz"), and only
    // "0" itself, no zero of another script.
    if (dropOneZero && text.endsWith(QLatin1Char('0'))) {
        text.chop(1);
    }
    // The blank stays without its units: callers put their own word straight behind it.
    text.append(QLatin1Char(' '));
    if (withUnits) {
        text.append(stringFromUnits(kHz));
    }
    return text;
}

QString Frequency::asMhzString(bool withUnits, int precision) const
{
    if (readsFindBest()) {
        return findBest();
    }
    // Users type megahertz back in, and typed text may not hold group separators. Only megahertz:
    // the other two are read, not typed.
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = locale.toString(inMhz(), FIXED_POINT, precision);
    if (withUnits) {
        appendUnits(text, MHz);
    }
    return text;
}

QString Frequency::asGhzString(bool withUnits, int precision) const
{
    if (readsFindBest()) {
        return findBest();
    }
    QString text = QLocale().toString(inGhz(), FIXED_POINT, precision);
    if (withUnits) {
        appendUnits(text, GHz);
    }
    return text;
}

QString Frequency::inFittingUnits() const
{
    return m_valueKhz < mhzToKhz(1.0) ? asKhzString(true, DECIMALS, false)
                                      : asMhzString(true, DECIMALS);
}

QString Frequency::toString() const
{
    return toString(true);
}

QString Frequency::toString(bool withSuffix) const
{
    if (readsFindBest()) {
        return findBest();
    }
    QString text = inFittingUnits();
    if (!m_keepTrailingZeros) {
        AdjustTrailingZeros(text, 0, DECIMALS);
    }
    if (withSuffix) {
        text.append(m_suffix);
    }
    return text;
}

QString Frequency::toString(bool trimZeros, bool withSuffix) const
{
    if (readsFindBest()) {
        return findBest();
    }
    QString text = inFittingUnits();
    if (trimZeros) {
        AdjustTrailingZeros(text, 0, DECIMALS);
    }
    if (withSuffix) {
        text.append(m_suffix);
    } else if (!m_suffix.isEmpty()) {
        // Who asks for a text free of the suffix gets none of it, even where the number happens to
        // read like it.
        text.remove(m_suffix);
    }
    return text;
}

QString Frequency::toString(int, int, bool withSuffix) const
{
    if (readsFindBest()) {
        return findBest();
    }
    QString text = m_valueKhz < ghzToKhz(1.0) ? inFittingUnits() : asGhzString(true, DECIMALS);
    if (withSuffix) {
        text.append(m_suffix);
    }
    return text;
}

void Frequency::AdjustTrailingZeros(QString& text, int minDecimals, int maxDecimals)
{
    const int point = text.indexOf(QLocale().decimalPoint());
    const bool hasAllDecimals = point >= 0 && maxDecimals >= 0 && maxDecimals < text.size() - point;
    if (!hasAllDecimals) {
        return;
    }
    int decimals = maxDecimals;
    while (decimals > qMax(minDecimals, 0) && text.at(point + decimals) == QLatin1Char('0')) {
        --decimals;
    }
    const int kept = decimals == 0 ? 0 : decimals + 1;
    text.remove(point + kept, maxDecimals + 1 - kept);
}

QString Frequency::stringFromUnits(FreqUnits units)
{
    switch (units) {
    case GHz:
        return QStringLiteral("GHz");
    case MHz:
        return QStringLiteral("MHz");
    case kHz:
        return QStringLiteral("kHz");
    case Hz:
        return QStringLiteral("Hz");
    default:
        return QString();
    }
}

QDebug operator<<(QDebug debug, const Frequency& frequency)
{
    QString text =
        QStringLiteral("[Frequency: ") + frequency.toString(true) + QStringLiteral("] - ");
    return debug << text.toLocal8Bit().constData();
}

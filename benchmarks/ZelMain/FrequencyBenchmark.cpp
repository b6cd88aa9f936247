// What the text forms of a frequency cost beside the library call that does their work:
// QString::toDouble() for reading, QLocale::toString() for writing. Each form has its plain call in
// the row before it.

#include "ZelMain/Frequency.h"

#include <QLocale>

#include <benchmark/benchmark.h>

namespace {

constexpr double KHZ = 470125.0;

/** The default locale of its scope. */
class DefaultLocale
{
public:
    explicit DefaultLocale(const char* name)
    {
        QLocale::setDefault(QLocale(QString::fromLatin1(name)));
    }
    ~DefaultLocale() { QLocale::setDefault(QLocale::c()); }
    Q_DISABLE_COPY_MOVE(DefaultLocale)
};

void plainRead(benchmark::State& state, const QString& text)
{
    while (state.KeepRunning()) {
        bool ok = false;
        benchmark::DoNotOptimize(text.toDouble(&ok));
    }
}

void readString(benchmark::State& state, const char* locale, const QString& text)
{
    const DefaultLocale scope(locale);
    while (state.KeepRunning()) {
        bool ok = false;
        benchmark::DoNotOptimize(Frequency::fromString(text, &ok, Frequency::MHz));
    }
}

using Parser = Frequency (*)(const QString&, bool*);

void read(benchmark::State& state, Parser parse, const QString& text)
{
    const DefaultLocale scope("C");
    while (state.KeepRunning()) {
        bool ok = false;
        benchmark::DoNotOptimize(parse(text, &ok));
    }
}

void plainWrite(benchmark::State& state, const char* locale, double number)
{
    const QLocale plain{QString::fromLatin1(locale)};
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(plain.toString(number, 'f', 3));
    }
}

template <typename WRITER>
void write(benchmark::State& state, const char* locale, const WRITER& format)
{
    const DefaultLocale scope(locale);
    const Frequency frequency = Frequency::fromKhz(KHZ);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(format(frequency));
    }
}

const auto TO_STRING = [](const Frequency& frequency) { return frequency.toString(); };
const auto TO_TRIMMED_STRING = [](const Frequency& frequency) {
    return frequency.toString(true, false);
};
const auto TO_STRING_IN_THREE_UNITS = [](const Frequency& frequency) {
    return frequency.toString(0, 0, false);
};
const auto AS_KHZ = [](const Frequency& frequency) {
    return frequency.asKhzString(true, 3, false);
};
const auto AS_MHZ = [](const Frequency& frequency) { return frequency.asMhzString(true, 3); };
const auto AS_GHZ = [](const Frequency& frequency) { return frequency.asGhzString(true, 3); };

const QString MHZ_TEXT = QStringLiteral("470.125");
const QString KHZ_TEXT = QStringLiteral("470125.25");
const QString GHZ_TEXT = QStringLiteral("0.470125");

BENCHMARK_CAPTURE(plainRead, mhz, MHZ_TEXT);
BENCHMARK_CAPTURE(readString, with_unit, "C", QStringLiteral("470.125 MHz"));
BENCHMARK_CAPTURE(readString, default_unit, "C", MHZ_TEXT);
BENCHMARK_CAPTURE(readString, decimal_comma, "de_DE", QStringLiteral("470,125 MHz"));
BENCHMARK_CAPTURE(read, mhz, &Frequency::fromMhzString, MHZ_TEXT);
BENCHMARK_CAPTURE(plainRead, khz, KHZ_TEXT);
BENCHMARK_CAPTURE(read, khz, &Frequency::fromKhzString, KHZ_TEXT);
BENCHMARK_CAPTURE(plainRead, ghz, GHZ_TEXT);
BENCHMARK_CAPTURE(read, ghz, &Frequency::fromGhzString, GHZ_TEXT);

BENCHMARK_CAPTURE(plainWrite, mhz, "C", KHZ / 1000.0);
BENCHMARK_CAPTURE(write, to_string, "C", TO_STRING);
BENCHMARK_CAPTURE(write, to_string_trimmed, "C", TO_TRIMMED_STRING);
BENCHMARK_CAPTURE(write, to_string_in_three_units, "C", TO_STRING_IN_THREE_UNITS);
BENCHMARK_CAPTURE(write, as_mhz, "C", AS_MHZ);
BENCHMARK_CAPTURE(plainWrite, ghz, "C", KHZ / 1000000.0);
BENCHMARK_CAPTURE(write, as_ghz, "C", AS_GHZ);
BENCHMARK_CAPTURE(plainWrite, khz, "C", KHZ);
BENCHMARK_CAPTURE(write, as_khz, "C", AS_KHZ);
BENCHMARK_CAPTURE(plainWrite, mhz_german, "de_DE", KHZ / 1000.0);
BENCHMARK_CAPTURE(write, to_string_german, "de_DE", TO_STRING);
BENCHMARK_CAPTURE(plainWrite, khz_german, "de_DE", KHZ);
BENCHMARK_CAPTURE(write, as_khz_german, "de_DE", AS_KHZ);
BENCHMARK_CAPTURE(plainWrite, mhz_arabic, "ar_EG", KHZ / 1000.0);
BENCHMARK_CAPTURE(write, to_string_arabic, "ar_EG", TO_STRING);

} // namespace

#include "ZelMain/Frequency.h"

#include "ZelMain/FrequencyRounding.h"

#include <QDataStream>

#include <cmath>
#include <limits>

namespace {

constexpr double KHZ_PER_MHZ = 1000.0;
constexpr double KHZ_PER_GHZ = 1000000.0;
constexpr double HZ_PER_KHZ = 1000.0;

// Numbers keep steps of 0.1 kHz.
constexpr double STEPS_PER_KHZ = 10.0;
constexpr double STEPS_PER_MHZ = 10000.0;
constexpr double STEPS_PER_GHZ = 10000000.0;

constexpr double MIN_ALLOWED_KHZ = 30000.0;
constexpr double MAX_ALLOWED_KHZ = 2000000.0;

constexpr double TWO_TO_63 = 9223372036854775808.0;
constexpr double TWO_TO_64 = 2.0 * TWO_TO_63;

qint64 truncateToInt64(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= TWO_TO_63) {
        return std::numeric_limits<qint64>::max();
    }
    if (value < -TWO_TO_63) {
        return std::numeric_limits<qint64>::min();
    }
    return static_cast<qint64>(value);
}

} // namespace

Frequency::Frequency() = default;

Frequency::Frequency(double khz, bool findBestWhenZero)
    : m_valueKhz(khz), m_findBestWhenZero(findBestWhenZero)
{
}

Frequency::Frequency(const Frequency& other) = default;
Frequency::Frequency(Frequency&& other) noexcept = default;
Frequency& Frequency::operator=(const Frequency& other) = default;
Frequency& Frequency::operator=(Frequency&& other) noexcept = default;
Frequency::~Frequency() = default;

Frequency Frequency::fromKhz(double khz)
{
    return Frequency(khz, true);
}

Frequency Frequency::fromHz(int hz)
{
    return fromKhz(hz / HZ_PER_KHZ);
}

Frequency Frequency::fromMhz(double mhz)
{
    return fromKhz(FrequencyRounding::toInt(mhz * STEPS_PER_MHZ) / STEPS_PER_KHZ);
}

Frequency Frequency::fromGhz(double ghz)
{
    return fromKhz(FrequencyRounding::toInt(ghz * STEPS_PER_GHZ) / STEPS_PER_KHZ);
}

Frequency Frequency::getMinAllowedFrequency()
{
    return fromKhz(MIN_ALLOWED_KHZ);
}

Frequency Frequency::getMaxAllowedFrequency()
{
    return fromKhz(MAX_ALLOWED_KHZ);
}

double Frequency::inMhz() const
{
    return m_valueKhz / KHZ_PER_MHZ;
}

double Frequency::inGhz() const
{
    return m_valueKhz / KHZ_PER_GHZ;
}

quint64 Frequency::inHz() const
{
    const double hz = m_valueKhz * HZ_PER_KHZ;
    if (hz >= TWO_TO_64) {
        return std::numeric_limits<quint64>::max();
    }
    if (hz >= TWO_TO_63) {
        return static_cast<quint64>(hz);
    }
    return static_cast<quint64>(truncateToInt64(hz));
}

Frequency Frequency::roundedToMultipleOf(const Frequency& step) const
{
    return fromKhz(step.m_valueKhz * FrequencyRounding::toInt(m_valueKhz / step.m_valueKhz));
}

double Frequency::khzToMhz(double khz)
{
    return khz / KHZ_PER_MHZ;
}

double Frequency::mhzToKhz(double mhz)
{
    return mhz * KHZ_PER_MHZ;
}

double Frequency::ghzToKhz(double ghz)
{
    return ghz * KHZ_PER_GHZ;
}

Frequency::operator QVariant() const
{
    return QVariant::fromValue(*this);
}

bool operator<(const Frequency& left, const Frequency& right)
{
    return left.inKhz() < right.inKhz();
}

bool operator<=(const Frequency& left, const Frequency& right)
{
    return left.inKhz() <= right.inKhz();
}

bool operator>(const Frequency& left, const Frequency& right)
{
    return left.inKhz() > right.inKhz();
}

bool operator>=(const Frequency& left, const Frequency& right)
{
    return left.inKhz() >= right.inKhz();
}

bool operator==(const Frequency& left, const Frequency& right)
{
    return left.inHz() == right.inHz();
}

bool operator!=(const Frequency& left, const Frequency& right)
{
    return !(left == right);
}

Frequency operator+(const Frequency& left, const Frequency& right)
{
    return Frequency::fromKhz(left.inKhz() + right.inKhz());
}

Frequency& operator+=(Frequency& left, const Frequency& right)
{
    return left = left + right;
}

Frequency operator-(const Frequency& left, const Frequency& right)
{
    return Frequency::fromKhz(left.inKhz() - right.inKhz());
}

Frequency& operator-=(Frequency& left, const Frequency& right)
{
    return left = left - right;
}

Frequency operator*(const Frequency& left, float factor)
{
    // Spacings are planned in whole kilohertz, so a scaled one does not keep fromMhz()'s 0.1 kHz.
    return Frequency::fromKhz(FrequencyRounding::toInt(double(factor) * left.inKhz()));
}

Frequency& operator*=(Frequency& left, float factor)
{
    return left = left * factor;
}

Frequency operator/(const Frequency& left, float divisor)
{
    return divisor == 0.0F ? left : Frequency::fromKhz(left.inKhz() / double(divisor));
}

Frequency& operator/=(Frequency& left, float divisor)
{
    return left = left / divisor;
}

double operator/(const Frequency& left, const Frequency& right)
{
    const double divisorMhz = right.inMhz();
    return divisorMhz == 0.0 ? 0.0 : left.inMhz() / divisorMhz;
}

uint qHash(const Frequency& frequency)
{
    return static_cast<uint>(truncateToInt64(frequency.inKhz()));
}

QDataStream& operator<<(QDataStream& stream, const Frequency& frequency)
{
    return stream << frequency.m_valueKhz << frequency.m_findBestWhenZero << frequency.m_suffix
                  << frequency.m_keepTrailingZeros;
}

QDataStream& operator>>(QDataStream& stream, Frequency& frequency)
{
    return stream >> frequency.m_valueKhz >> frequency.m_findBestWhenZero >> frequency.m_suffix >>
           frequency.m_keepTrailingZeros;
}

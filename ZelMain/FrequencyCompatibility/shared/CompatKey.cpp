#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ostream>
#include <string_view>
#include <utility>

namespace {

constexpr char SEPARATOR = '|';
constexpr auto NONE = std::string::npos;

// The character after a separator. After "none" it is the beginning of the text: the position is
// unsigned and wraps, so a search for one separator too many starts again. Texts that are stored
// without all separators are read that way.
std::size_t after(std::size_t position)
{
    return position + 1;
}

// Text from begin up to, not including, end; up to the end of the text for no end.
std::string between(std::string const& text, std::size_t begin, std::size_t end)
{
    return text.substr(begin, end == NONE ? NONE : end - begin);
}

// Compares the joined parts as std::string compares texts, without joining them: the order is
// asked a great many times while maps are filled.
template <std::size_t COUNT>
int compareJoined(std::array<std::string_view, COUNT> left,
                  std::array<std::string_view, COUNT> right)
{
    std::size_t l = 0;
    std::size_t r = 0;
    while (true) {
        while (l < COUNT && left[l].empty()) {
            ++l;
        }
        while (r < COUNT && right[r].empty()) {
            ++r;
        }
        if (l == COUNT || r == COUNT) {
            // What is left over makes the longer text the greater one.
            return static_cast<int>(r == COUNT) - static_cast<int>(l == COUNT);
        }
        const std::size_t shared = std::min(left[l].size(), right[r].size());
        if (const int order = std::memcmp(left[l].data(), right[r].data(), shared)) {
            return order;
        }
        left[l].remove_prefix(shared);
        right[r].remove_prefix(shared);
    }
}

} // namespace

BasicCompatSystemUniqueKey::BasicCompatSystemUniqueKey(std::string const& seriesName,
                                                       std::string const& bandName,
                                                       std::string const& txProfileName)
    : series(seriesName), band(bandName), txProfile(txProfileName)
{
}

void BasicCompatSystemUniqueKey::Reset()
{
    series.clear();
    band.clear();
    txProfile.clear();
}

std::string BasicCompatSystemUniqueKey::ToString() const
{
    std::string text = series + SEPARATOR + band;
    if (!txProfile.empty()) {
        text += SEPARATOR + txProfile;
    }
    return text;
}

bool BasicCompatSystemUniqueKey::FromString(std::string const& text)
{
    Reset();
    const std::size_t first = text.find(SEPARATOR);
    if (text.empty() || first == 0) {
        return false;
    }
    const std::size_t second = text.find(SEPARATOR, after(first));
    series = between(text, 0, first);
    band = between(text, after(first), second);
    if (second != NONE) {
        txProfile = text.substr(after(second));
    }
    if (band.empty()) {
        Reset();
        return false;
    }
    return true;
}

bool BasicCompatSystemUniqueKey::Serialize(void*& data, int& size)
{
    data = nullptr;
    size = 0;
    const std::size_t length = series.size() + band.size() + txProfile.size() + 2;
    char* const bytes = new char[length];
    char* end = std::copy(series.begin(), series.end(), bytes);
    *end++ = '\0';
    end = std::copy(band.begin(), band.end(), end);
    *end++ = '\0';
    std::copy(txProfile.begin(), txProfile.end(), end);
    data = bytes;
    size = static_cast<int>(length);
    return true;
}

bool BasicCompatSystemUniqueKey::Deserialize(void const* data, int size)
{
    Reset();
    if (size < 1 || data == nullptr) {
        return false;
    }
    const std::string_view bytes(static_cast<char const*>(data), static_cast<std::size_t>(size));
    const std::size_t first = bytes.find('\0');
    const std::size_t second = first == NONE ? NONE : bytes.find('\0', after(first));
    if (second == NONE) {
        return false;
    }
    series = bytes.substr(0, first);
    band = bytes.substr(after(first), second - after(first));
    txProfile = bytes.substr(after(second));
    return true;
}

bool BasicCompatSystemUniqueKey::IsNull() const
{
    return series.empty() && band.empty() && txProfile.empty();
}

bool BasicCompatSystemUniqueKey::IsValid() const
{
    return !series.empty() && !band.empty();
}

CompatSystemUniqueKey::CompatSystemUniqueKey(std::string const& zoneName,
                                             std::string const& seriesName,
                                             std::string const& bandName,
                                             std::string const& txProfileName,
                                             std::string const& inclGroupName)
    : BasicCompatSystemUniqueKey(seriesName, bandName, txProfileName), zone(zoneName),
      inclGroup(inclGroupName)
{
}

CompatSystemUniqueKey::CompatSystemUniqueKey(BasicCompatSystemUniqueKey const& basic,
                                             std::string const& zoneName,
                                             std::string const& inclGroupName)
    : BasicCompatSystemUniqueKey(basic), zone(zoneName), inclGroup(inclGroupName)
{
}

void CompatSystemUniqueKey::Reset()
{
    BasicCompatSystemUniqueKey::Reset();
    zone.clear();
    inclGroup.clear();
}

std::string CompatSystemUniqueKey::ToString() const
{
    return zone + SEPARATOR + series + SEPARATOR + band + SEPARATOR + txProfile + SEPARATOR +
           inclGroup;
}

bool CompatSystemUniqueKey::FromString(std::string const& text)
{
    Reset();
    if (text.empty()) {
        return false;
    }
    const std::size_t first = text.find(SEPARATOR);
    const std::size_t second = text.find(SEPARATOR, after(first));
    const std::size_t third = text.find(SEPARATOR, after(second));
    const std::size_t fourth = text.find(SEPARATOR, after(third));
    zone = between(text, 0, first);
    series = between(text, after(first), second);
    band = between(text, after(second), third);
    txProfile = between(text, after(third), fourth);
    inclGroup = text.substr(after(fourth));
    if (zone.empty() || series.empty() || band.empty() || inclGroup.empty()) {
        Reset();
        return false;
    }
    return true;
}

bool CompatSystemUniqueKey::Serialize(void*& data, int& size)
{
    data = nullptr;
    size = 0;
    return false;
}

bool CompatSystemUniqueKey::Deserialize(void const* /*data*/, int /*size*/)
{
    return false;
}

bool CompatSystemUniqueKey::IsNull() const
{
    return BasicCompatSystemUniqueKey::IsNull() && zone.empty() && inclGroup.empty();
}

bool CompatSystemUniqueKey::IsValid() const
{
    return !(zone.empty() && series.empty() && band.empty() && txProfile.empty());
}

BasicCompatSystemUniqueKey CompatSystemUniqueKey::ToBasicCompatSystemUniqueKey() const
{
    return {series, band, txProfile};
}

AgilityOrderedCompatSystemUniqueKey::AgilityOrderedCompatSystemUniqueKey(
    std::string zoneName, std::string const& seriesName, std::string const& bandName,
    std::string const& txProfileName, std::string const& inclGroupName, unsigned int order)
    : agilityOrder(order)
{
    zone = std::move(zoneName);
    series = seriesName;
    band = bandName;
    txProfile = txProfileName;
    inclGroup = inclGroupName;
}

AgilityOrderedCompatSystemUniqueKey::AgilityOrderedCompatSystemUniqueKey(
    CompatSystemUniqueKey const& key, unsigned int order)
    : CompatSystemUniqueKey(key), agilityOrder(order)
{
}

void AgilityOrderedCompatSystemUniqueKey::Reset()
{
    CompatSystemUniqueKey::Reset();
    agilityOrder = UNSET_AGILITY_ORDER;
}

bool AgilityOrderedCompatSystemUniqueKey::Serialize(void*& data, int& size)
{
    return CompatSystemUniqueKey::Serialize(data, size);
}

bool AgilityOrderedCompatSystemUniqueKey::Deserialize(void const* data, int size)
{
    return CompatSystemUniqueKey::Deserialize(data, size);
}

CompatSystemUniqueKey AgilityOrderedCompatSystemUniqueKey::ToCompatSystemUniqueKey()
{
    return {zone, series, band, txProfile, inclGroup};
}

bool operator==(BasicCompatSystemUniqueKey const& left, BasicCompatSystemUniqueKey const& right)
{
    return left.series == right.series && left.band == right.band &&
           left.txProfile == right.txProfile;
}

bool operator==(CompatSystemUniqueKey const& left, CompatSystemUniqueKey const& right)
{
    return left.zone == right.zone && left.series == right.series && left.band == right.band &&
           left.txProfile == right.txProfile && left.inclGroup == right.inclGroup;
}

bool operator==(AgilityOrderedCompatSystemUniqueKey const& left,
                AgilityOrderedCompatSystemUniqueKey const& right)
{
    // The zone is left out: systems of one kind rank alike in every zone.
    return left.series == right.series && left.band == right.band &&
           left.txProfile == right.txProfile && left.inclGroup == right.inclGroup &&
           left.agilityOrder == right.agilityOrder;
}

bool operator<(BasicCompatSystemUniqueKey const& left, BasicCompatSystemUniqueKey const& right)
{
    using Fields = std::array<std::string_view, 3>;
    return compareJoined(Fields{left.series, left.band, left.txProfile},
                         Fields{right.series, right.band, right.txProfile}) < 0;
}

bool operator<(CompatSystemUniqueKey const& left, CompatSystemUniqueKey const& right)
{
    using Fields = std::array<std::string_view, 5>;
    return compareJoined(
               Fields{left.zone, left.series, left.band, left.txProfile, left.inclGroup},
               Fields{right.zone, right.series, right.band, right.txProfile, right.inclGroup}) < 0;
}

bool operator<(AgilityOrderedCompatSystemUniqueKey const& left,
               AgilityOrderedCompatSystemUniqueKey const& right)
{
    if (left.agilityOrder != right.agilityOrder) {
        return left.agilityOrder < right.agilityOrder;
    }
    using Fields = std::array<std::string_view, 4>;
    return compareJoined(Fields{left.series, left.band, left.txProfile, left.inclGroup},
                         Fields{right.series, right.band, right.txProfile, right.inclGroup}) < 0;
}

std::ostream& operator<<(std::ostream& stream, BasicCompatSystemUniqueKey const& key)
{
    return stream << key.ToString();
}

std::ostream& operator<<(std::ostream& stream, CompatSystemUniqueKey const& key)
{
    return stream << key.ToString();
}

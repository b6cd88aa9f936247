// Hunts texts and bytes from which a system key is read otherwise than its rules say, forms that do
// not lead back to their key, and keys for which a sorted container would lose its way.
//
// The input is a text form and a binary form at once; for the order its lines are keys' fields.

#include "fuzz/FuzzTarget.h"

#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

using FuzzTarget::require;

namespace {

using Fields = std::vector<std::string>;

constexpr unsigned int NO_ORDER = 268435455;

std::vector<std::string> pieces(const std::string& text)
{
    std::vector<std::string> found(1);
    for (const char character : text) {
        if (character == '|') {
            found.emplace_back();
        } else {
            found.back() += character;
        }
    }
    return found;
}

std::string joinedFrom(const std::vector<std::string>& all, std::size_t first)
{
    std::string joined;
    for (std::size_t i = first; i < all.size(); ++i) {
        joined += (i == first ? "" : "|") + all[i];
    }
    return joined;
}

// Series, band, and all the rest as the transmitter profile; a lone piece is series and band.
std::optional<Fields> readBasic(const std::string& text)
{
    const std::vector<std::string> all = pieces(text);
    const std::string& band = all.size() == 1 ? all[0] : all[1];
    if (all[0].empty() || band.empty()) {
        return std::nullopt;
    }
    return Fields{all[0], band, joinedFrom(all, std::min<std::size_t>(2, all.size()))};
}

// Zone, series, band, transmitter profile, and all the rest as the inclusion group. A text that has
// run out of pieces is read from its beginning again, so they are taken in a circle.
std::optional<Fields> readFull(const std::string& text)
{
    const std::vector<std::string> all = pieces(text);
    Fields fields;
    for (std::size_t i = 0; i < 4; ++i) {
        fields.push_back(all[i % all.size()]);
    }
    fields.push_back(joinedFrom(all, all.size() > 4 ? 4 : 4 % all.size()));
    const bool isWhole =
        !fields[0].empty() && !fields[1].empty() && !fields[2].empty() && !fields[4].empty();
    return isWhole ? std::optional(fields) : std::nullopt;
}

Fields fieldsOf(const BasicCompatSystemUniqueKey& key)
{
    return {key.series, key.band, key.txProfile};
}

Fields fieldsOf(const CompatSystemUniqueKey& key)
{
    return {key.zone, key.series, key.band, key.txProfile, key.inclGroup};
}

template <typename Key>
Key fullOfOtherText()
{
    Key key;
    key.FromString("other|other|other|other|other");
    return key;
}

template <typename Key>
void checkText(const std::string& text, const std::optional<Fields>& expected)
{
    auto key = fullOfOtherText<Key>();
    const bool isRead = key.FromString(text);
    require(isRead == expected.has_value(),
            "a text is read when the fields that must be filled are");
    if (!isRead) {
        require(key.IsNull(), "a key that was not read is reset");
        return;
    }
    require(fieldsOf(key) == *expected, "the fields are the pieces between the separators");

    Key again;
    require(again.FromString(key.ToString()), "a text form can be read");
    require(fieldsOf(again) == fieldsOf(key), "a text form leads back to its key");
    std::ostringstream stream;
    stream << key;
    require(stream.str() == key.ToString(), "a stream gets the text form");
}

void checkBinary(const std::string& bytes)
{
    const std::size_t first = bytes.find('\0');
    const std::size_t second = first == std::string::npos ? first : bytes.find('\0', first + 1);
    auto key = fullOfOtherText<BasicCompatSystemUniqueKey>();
    const bool isRead = key.Deserialize(bytes.data(), static_cast<int>(bytes.size()));
    require(isRead == (second != std::string::npos), "bytes with two zeros are a key");
    if (!isRead) {
        require(key.IsNull(), "a key that was not read is reset");
        return;
    }
    require(key.series == bytes.substr(0, first), "the series ends at the first zero");
    require(key.band == bytes.substr(first + 1, second - first - 1), "the band ends at the second");
    require(key.txProfile == bytes.substr(second + 1), "the rest is the transmitter profile");

    void* data = nullptr;
    int size = 0;
    require(key.Serialize(data, size), "a basic key has a binary form");
    const std::unique_ptr<char[]> owner(static_cast<char*>(data));
    require(std::string(owner.get(), static_cast<std::size_t>(size)) == bytes,
            "a binary form leads back to its bytes");
}

template <typename Key>
void checkNoBinary(const std::string& bytes)
{
    auto key = fullOfOtherText<Key>();
    const Fields before = fieldsOf(key);
    require(!key.Deserialize(bytes.data(), static_cast<int>(bytes.size())) &&
                fieldsOf(key) == before,
            "a key without a binary form refuses bytes and keeps its fields");
    void* data = &key;
    int size = 1;
    require(!key.Serialize(data, size) && data == nullptr && size == 0,
            "a key without a binary form gives none");
}

// All fields as one text, compared as unsigned bytes.
int compare(const Fields& left, const Fields& right)
{
    const auto joined = [](const Fields& fields) {
        std::vector<unsigned char> bytes;
        for (const std::string& field : fields) {
            bytes.insert(bytes.end(), field.begin(), field.end());
        }
        return bytes;
    };
    const std::vector<unsigned char> one = joined(left);
    const std::vector<unsigned char> other = joined(right);
    return one < other ? -1 : static_cast<int>(other < one);
}

template <typename Key>
void checkOrder(const Key& left, const Key& right, int order, bool areEqual)
{
    require((left < right) == (order < 0) && (right < left) == (order > 0),
            "keys are ordered by the text of their fields");
    require((left == right) == areEqual, "keys are equal when their fields are");
    require(!(left < left) && left == left, "a key is equal to itself");
}

/** A key of each class from the next five lines and the byte after them. */
struct Keys
{
    explicit Keys(FuzzTarget::Input& input)
    {
        for (std::string* const field :
             {&full.zone, &full.series, &full.band, &full.txProfile, &full.inclGroup}) {
            *field = input.takeLine().toStdString();
        }
        basic = full.ToBasicCompatSystemUniqueKey();
        ranked = AgilityOrderedCompatSystemUniqueKey(
            full, static_cast<unsigned int>(input.takeNumber(3)));
    }

    BasicCompatSystemUniqueKey basic;
    CompatSystemUniqueKey full;
    AgilityOrderedCompatSystemUniqueKey ranked;
};

void checkOrders(FuzzTarget::Input input)
{
    const Keys one(input);
    const Keys other(input);
    const Fields left = fieldsOf(one.full);
    const Fields right = fieldsOf(other.full);
    checkOrder(one.full, other.full, compare(left, right), left == right);
    checkOrder(one.basic, other.basic, compare(fieldsOf(one.basic), fieldsOf(other.basic)),
               fieldsOf(one.basic) == fieldsOf(other.basic));

    // The zone has no say, and the rank speaks first.
    const Fields leftWithout(left.begin() + 1, left.end());
    const Fields rightWithout(right.begin() + 1, right.end());
    const int byRank =
        static_cast<int>(one.ranked.agilityOrder) - static_cast<int>(other.ranked.agilityOrder);
    checkOrder(one.ranked, other.ranked, byRank != 0 ? byRank : compare(leftWithout, rightWithout),
               byRank == 0 && leftWithout == rightWithout);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const std::string bytes(data, data + size);
    checkText<BasicCompatSystemUniqueKey>(bytes, readBasic(bytes));
    checkText<CompatSystemUniqueKey>(bytes, readFull(bytes));
    checkText<AgilityOrderedCompatSystemUniqueKey>(bytes, readFull(bytes));

    AgilityOrderedCompatSystemUniqueKey ranked({}, 1);
    ranked.FromString(bytes);
    require(ranked.agilityOrder == NO_ORDER, "a text says no rank");

    checkBinary(bytes);
    checkNoBinary<CompatSystemUniqueKey>(bytes);
    checkNoBinary<AgilityOrderedCompatSystemUniqueKey>(bytes);
    checkOrders(FuzzTarget::Input(data, size));
    return 0;
}

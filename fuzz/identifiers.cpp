// Hunts texts that identifiers of connections and devices are read from wrongly, and text forms
// that do not lead back to their identifier or overrun the caller's buffer.
//
// The input is the text, up to its first zero byte.

#include "fuzz/FuzzTarget.h"

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

constexpr std::size_t BYTES = 16;
constexpr std::size_t TEXT_SIZE = 36;
constexpr std::size_t NAME_SIZE = TEXT_SIZE + 4;

using Bytes = std::array<unsigned char, BYTES>;

// The rules of reading, on the digits alone: whatever is none is left out, missing ones are zeros,
// and the thirty-third and later ones are not looked at.
std::string digitsOf(const std::string& text)
{
    std::string digits;
    for (const char character : text) {
        if (std::string("0123456789abcdefABCDEF").find(character) != std::string::npos) {
            digits += static_cast<char>(std::toupper(character));
        }
    }
    digits.resize(2 * BYTES, '0');
    return digits;
}

Bytes bytesOf(const std::string& digits)
{
    Bytes bytes{};
    for (std::size_t i = 0; i < BYTES; ++i) {
        bytes[i] = static_cast<unsigned char>(std::stoi(digits.substr(2 * i, 2), nullptr, 16));
    }
    return bytes;
}

QByteArray textOf(std::string digits)
{
    for (const std::size_t hyphen : {8U, 13U, 18U, 23U}) {
        digits.insert(hyphen, 1, '-');
    }
    return QByteArray::fromStdString(digits);
}

template <typename Identifier>
Bytes packed(const Identifier& identifier)
{
    Bytes bytes{};
    identifier.Pack(bytes.data());
    return bytes;
}

template <typename Identifier>
void checkOrder(const Identifier& one, const Identifier& other)
{
    const int order = std::memcmp(packed(one).data(), packed(other).data(), BYTES);
    require((one == other) == (order == 0), "identifiers are equal when their bytes are");
    require((one != other) == (order != 0), "identifiers differ when their bytes do");
    require((one < other) == (order < 0), "identifiers are ordered by their bytes");
    require((other < one) == (order > 0), "identifiers are ordered by their bytes");
}

template <typename Identifier>
void check(const std::string& text, Identifier (*read)(const char*),
           int (*print)(const Identifier&, char*))
{
    const std::string digits = digitsOf(text);
    const Identifier identifier = read(text.c_str());
    require(packed(identifier) == bytesOf(digits), "the digits of a text are its identifier");

    std::array<char, TEXT_SIZE + 1> printed{};
    require(print(identifier, printed.data()) == int{TEXT_SIZE}, "a text form has 36 characters");
    requireEqual(QByteArray(printed.data()), textOf(digits), "a text form shows the bytes");
    require(read(printed.data()) == identifier, "a text form leads back to its identifier");

    Identifier unpacked;
    unpacked.Unpack(packed(identifier).data());
    require(unpacked == identifier, "packed bytes lead back to their identifier");
    checkOrder(identifier, read(std::string(text.rbegin(), text.rend()).c_str()));
}

void checkFileName(const std::string& text)
{
    std::array<char, NAME_SIZE + 1> name{};
    const int size = DCID::DCIDIntoFileName(DCID::StringToDCID(text.c_str()), name.data());
    require(size == int{TEXT_SIZE}, "a file name's length is told without its extension");
    requireEqual(QByteArray(name.data()), textOf(digitsOf(text)) + ".ddl",
                 "a file name is the text form with its extension");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const std::uint8_t* const end = std::find(data, data + size, 0);
    const std::string text(data, end);
    check<CID>(text, CID::StringToCID, CID::CIDIntoString);
    check<DCID>(text, DCID::StringToDCID, DCID::DCIDIntoString);
    checkFileName(text);
    return 0;
}

#include "ZelMain/Diagnostics/CID.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr char HEX_DIGITS[] = "0123456789ABCDEF";

/** The value of a hexadecimal digit, -1 for any other character; the locale has no say. */
int digitValue(char character)
{
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    return -1;
}

/** Groups of 4, 2, 2, 2 and 6 bytes are joined by hyphens. */
bool startsGroup(std::size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

} // namespace

CID::CID(const unsigned char* bytes)
{
    Unpack(bytes);
}

void CID::Pack(unsigned char* out) const
{
    std::copy(m_bytes.begin(), m_bytes.end(), out);
}

void CID::Unpack(const unsigned char* in)
{
    std::copy_n(in, m_bytes.size(), m_bytes.begin());
}

CID CID::StringToCID(const char* text)
{
    CID id;
    if (text == nullptr) {
        return id;
    }
    const std::size_t digits = 2 * id.m_bytes.size();
    for (std::size_t read = 0; *text != '\0' && read < digits; ++text) {
        const int value = digitValue(*text);
        if (value < 0) {
            continue;
        }
        const bool isHighNibble = read % 2 == 0;
        id.m_bytes[read / 2] |= static_cast<unsigned char>(isHighNibble ? value * 16 : value);
        ++read;
    }
    return id;
}

int CID::CIDIntoString(const CID& id, char* out)
{
    char* end = out;
    for (std::size_t byte = 0; byte < id.m_bytes.size(); ++byte) {
        if (startsGroup(byte)) {
            *end++ = '-';
        }
        *end++ = HEX_DIGITS[id.m_bytes[byte] / 16];
        *end++ = HEX_DIGITS[id.m_bytes[byte] % 16];
    }
    *end = '\0';
    return static_cast<int>(end - out);
}

#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QString>

#include <algorithm>
#include <array>
#include <ostream>

namespace {

constexpr std::size_t SLICE_BYTES = 65536;
constexpr std::ptrdiff_t BLOCK = 16; // code units, which a vector unit takes at one go
constexpr std::ptrdiff_t MAX_BLOCK_BYTES = 4 * BLOCK;
constexpr uint MAX_ASCII = 0x7F;
constexpr uint MAX_TWO_BYTES = 0x7FF;
constexpr uint MAX_THREE_BYTES = 0xFFFF;

uint takeCharacter(const QChar*& next, const QChar* end)
{
    const QChar first = *next++;
    if (!first.isSurrogate()) {
        return first.unicode();
    }
    if (first.isHighSurrogate() && next != end && next->isLowSurrogate()) {
        return QChar::surrogateToUcs4(first, *next++);
    }
    return '?';
}

char* append(uint byte, char* out)
{
    *out = static_cast<char>(byte);
    return out + 1;
}

// The byte that carries six bits of a character, from the given bit on.
char* appendTrailing(uint character, unsigned int shift, char* out)
{
    return append(0x80U | ((character >> shift) & 0x3FU), out);
}

char* encode(uint character, char* out)
{
    if (character <= MAX_ASCII) {
        return append(character, out);
    }
    if (character <= MAX_TWO_BYTES) {
        out = append(0xC0U | (character >> 6U), out);
        return appendTrailing(character, 0, out);
    }
    if (character <= MAX_THREE_BYTES) {
        out = append(0xE0U | (character >> 12U), out);
    } else {
        out = append(0xF0U | (character >> 18U), out);
        out = appendTrailing(character, 12, out);
    }
    out = appendTrailing(character, 6, out);
    return appendTrailing(character, 0, out);
}

// Nearly all of a document is ASCII, which taken by blocks is a fifth of the work.
bool takeAsciiBlock(const QChar*& next, char*& out)
{
    uint allBits = 0;
    for (std::ptrdiff_t i = 0; i < BLOCK; ++i) {
        allBits |= next[i].unicode();
    }
    if (allBits > MAX_ASCII) {
        return false;
    }
    for (std::ptrdiff_t i = 0; i < BLOCK; ++i) {
        out[i] = static_cast<char>(next[i].unicode());
    }
    next += BLOCK;
    out += BLOCK;
    return true;
}

void takeBlock(const QChar*& next, const QChar* end, char*& out)
{
    if (end - next >= BLOCK && takeAsciiBlock(next, out)) {
        return;
    }
    const QChar* const blockEnd = next + std::min(BLOCK, end - next);
    while (next < blockEnd) {
        out = encode(takeCharacter(next, end), out);
    }
}

} // namespace

bool writeUtf8(const QString& text, std::ostream& stream)
{
    std::array<char, SLICE_BYTES> slice;
    const char* const lastRoom = slice.data() + slice.size() - MAX_BLOCK_BYTES;
    const QChar* next = text.constBegin();
    const QChar* const end = text.constEnd();
    while (next != end && stream) {
        char* out = slice.data();
        while (next != end && out <= lastRoom) {
            takeBlock(next, end, out);
        }
        stream.write(slice.data(), out - slice.data());
    }
    stream.flush();
    return stream.good();
}

#pragma once

#include <array>

#pragma GCC visibility push(default) // what a shared library shows

/**
 * The identifier of a connection: 16 bytes, kept in the order in which they are written and
 * printed.
 *
 * A plain value; the default one is all zeros and stands for "no connection". Its text form has the
 * shape of a UUID in upper case, "01234567-89AB-CDEF-0123-456789ABCDEF". No operation fails or
 * throws.
 */
class CID
{
public:
    CID() = default;
    /**
     * Takes the 16 bytes that start at @p bytes, as Unpack does.
     *
     * Never by itself: the zeros of logDebug("%d %d", 0, 0) would pass for identifiers, too.
     */
    explicit CID(const unsigned char* bytes);
    CID(const CID& other) = default;
    CID& operator=(const CID& other) = default;
    virtual ~CID() = default;

    /** Writes the 16 bytes to @p out. */
    void Pack(unsigned char* out) const;
    /** Replaces the value by the 16 bytes that start at @p in. */
    void Unpack(const unsigned char* in);

    bool operator==(const CID& other) const { return m_bytes == other.m_bytes; }
    bool operator!=(const CID& other) const { return m_bytes != other.m_bytes; }
    /** Orders by the first byte that differs, taken as a number from 0 to 255. */
    bool operator<(const CID& other) const { return m_bytes < other.m_bytes; }

    /**
     * Reads an identifier from the hexadecimal digits of @p text, in either case and two to a byte.
     *
     * Every other character is skipped wherever it stands, so hyphens, braces and blanks are
     * welcome. Missing digits count as zeros, those after the thirty-second are ignored.
     * @param text  zero-terminated; null reads as the empty text.
     */
    static CID StringToCID(const char* text);

    /**
     * Writes the text form of @p id and a terminating zero.
     *
     * @param out  has room for at least 37 bytes.
     * @return the number of characters written before the terminating zero: always 36.
     */
    static int CIDIntoString(const CID& id, char* out);

private:
    std::array<unsigned char, 16> m_bytes{};
};

#pragma GCC visibility pop

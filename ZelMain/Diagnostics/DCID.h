#pragma once

#include "ZelMain/Diagnostics/CID.h"

#pragma GCC visibility push(default) // what a shared library shows

/**
 * The identifier of a device: 16 bytes with the text form of a CID, and a type of its own so that
 * connections and devices cannot be taken for each other.
 *
 * A plain value; the default one is all zeros and stands for "no device". No operation fails or
 * throws.
 */
class DCID
{
public:
    DCID() = default;
    /** Takes the 16 bytes that start at @p bytes, as Unpack does. */
    explicit DCID(const unsigned char* bytes);
    DCID(const DCID& other) = default;
    DCID& operator=(const DCID& other) = default;
    virtual ~DCID() = default;

    /** Writes the 16 bytes to @p out. */
    void Pack(unsigned char* out) const { m_cid.Pack(out); }
    /** Replaces the value by the 16 bytes that start at @p in. */
    void Unpack(const unsigned char* in) { m_cid.Unpack(in); }

    bool operator==(const DCID& other) const { return m_cid == other.m_cid; }
    bool operator!=(const DCID& other) const { return m_cid != other.m_cid; }
    /** Orders by the first byte that differs, taken as a number from 0 to 255. */
    bool operator<(const DCID& other) const { return m_cid < other.m_cid; }

    /** Reads @p text by the rules of CID::StringToCID. */
    static DCID StringToDCID(const char* text);

    /**
     * Writes the text form of @p id and a terminating zero.
     *
     * @param out  has room for at least 37 bytes.
     * @return the number of characters written before the terminating zero: always 36.
     */
    static int DCIDIntoString(const DCID& id, char* out);

    /**
     * Writes the name of the device's description file: the text form, ".ddl" and a terminating
     * zero.
     *
     * @param out  has room for at least 41 bytes.
     * @return 36, the length of the name without its extension.
     */
    static int DCIDIntoFileName(const DCID& id, char* out);

private:
    CID m_cid;
};

#pragma GCC visibility pop

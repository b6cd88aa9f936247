#include "ZelMain/Diagnostics/DCID.h"

#include <algorithm>

namespace {

constexpr char FILE_EXTENSION[] = ".ddl"; // its terminating zero ends the whole name

} // namespace

DCID::DCID(const unsigned char* bytes) : m_cid(bytes) {}

DCID DCID::StringToDCID(const char* text)
{
    DCID id;
    id.m_cid = CID::StringToCID(text);
    return id;
}

int DCID::DCIDIntoString(const DCID& id, char* out)
{
    return CID::CIDIntoString(id.m_cid, out);
}

int DCID::DCIDIntoFileName(const DCID& id, char* out)
{
    const int length = DCIDIntoString(id, out);
    std::copy(std::begin(FILE_EXTENSION), std::end(FILE_EXTENSION), out + length);
    return length; // callers count on the length without the extension
}

#pragma once

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <array>

/** How reports show one spacing of a profile. */
struct Spacing
{
    const char* element; ///< its name in documents and in JSON
    const char* heading; ///< its name in tables for people
    int PkCompatProfile::*field;
};

/** All of them in the order of documents. */
constexpr std::array<Spacing, 6> SPACINGS_OF_SYSTEM = {{
    {"ch_ch", "Ch-Ch", &PkCompatProfile::chCh},
    {"imd_2t3o", "2T3O", &PkCompatProfile::imd2t3o},
    {"imd_2t5o", "2T5O", &PkCompatProfile::imd2t5o},
    {"imd_2t7o", "2T7O", &PkCompatProfile::imd2t7o},
    {"imd_2t9o", "2T9O", &PkCompatProfile::imd2t9o},
    {"imd_3t3o", "3T3O", &PkCompatProfile::imd3t3o},
}};

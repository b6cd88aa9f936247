#pragma once

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <array>

/**
 * What the writers and the reader of "compat_profile" elements must agree on.
 *
 * Internal to this project.
 */
namespace CompatProfileFormat {

constexpr char const* ELEMENT = "compat_profile";
constexpr char const* NAME_ATTRIBUTE = "name";
constexpr char const* IMD_SOURCE_ATTRIBUTE = "imd_source";
constexpr char const* SYNTHESIZABLE_ATTRIBUTE = "synthesizable";

constexpr char const* SPACING_ELEMENT = "spacing";

constexpr char const* FILTER_ELEMENT = "filter";
constexpr char const* FILTER_TYPE_ATTRIBUTE = "type";
constexpr char const* CENTER_LIST_ELEMENT = "filter_center_list";
constexpr char const* CENTER_COUNT_ATTRIBUTE = "count";
constexpr char const* CENTER_ELEMENT = "freq";

/** An element whose text is one of the record's integers. */
struct IntegerElement
{
    char const* name;
    int PkCompatProfile::*field;
};

/** The children of the spacing element, in the order of writing. */
constexpr std::array<IntegerElement, 6> SPACINGS = {{
    {"ch_ch", &PkCompatProfile::chCh},
    {"imd_2t3o", &PkCompatProfile::imd2t3o},
    {"imd_2t5o", &PkCompatProfile::imd2t5o},
    {"imd_2t7o", &PkCompatProfile::imd2t7o},
    {"imd_2t9o", &PkCompatProfile::imd2t9o},
    {"imd_3t3o", &PkCompatProfile::imd3t3o},
}};

/** The integer children of the filter element, in the order of writing. */
constexpr std::array<IntegerElement, 3> FILTER_VALUES = {{
    {"filter_start", &PkCompatProfile::filterStart},
    {"filter_end", &PkCompatProfile::filterEnd},
    {"filter_center", &PkCompatProfile::filterCenter},
}};

} // namespace CompatProfileFormat

#pragma once

/**
 * What the elements of all records have in common, whichever library writes them.
 *
 * Internal to this project.
 */
namespace RecordFormat {

constexpr char const* VERSION_ATTRIBUTE = "version";
constexpr char const* VERSION = "0.0.0.1";
constexpr char const* ID_ATTRIBUTE = "id";

constexpr char const* UNITS_ATTRIBUTE = "freq_units";
constexpr char const* UNITS = "KHz";

} // namespace RecordFormat

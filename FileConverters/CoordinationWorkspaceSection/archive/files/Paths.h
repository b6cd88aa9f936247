#pragma once

#include <QString>

#include <filesystem>
#include <optional>

/** Paths as the system has them and as texts, and the links on their way. */
namespace Paths {

/** As the system has it: in UTF-8. */
std::filesystem::path native(const QString& path);

/** Whether its name is UTF-8, and none that begins with a byte-order mark, which Qt would drop. */
bool isUtf8(const std::filesystem::path& path);

/** For people: a byte that is no UTF-8 shows as U+FFFD and two hex digits. */
QString textOf(const std::filesystem::path& path);

/** The absolute path without links on the way, as far as it exists; none when it is not UTF-8. */
std::optional<QString> real(const QString& path);

/** Whether the folders are the same, or one stands inside the other. They need not exist. */
bool overlap(const QString& one, const QString& other);

/**
 * Whether a file can be given that path below the folder: what stands on the way to it are folders,
 * no links, and in its own place stands nothing or, at most, something that is no folder.
 */
bool hasPlaceFor(const QString& folder, const QString& path);

} // namespace Paths

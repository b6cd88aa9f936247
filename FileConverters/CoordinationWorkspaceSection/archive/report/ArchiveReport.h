#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <QMap>

#include <optional>
#include <vector>

/**
 * The file of what became of an archive's documents, one record a line.
 *
 * Lines are only added while a run goes on; the last one of a document counts. A line that a killed
 * process left unfinished counts for nothing.
 */
namespace ArchiveReport {

using Records = QMap<QString, DocumentRecord>; // by path

/** The records of a file, or of none; nothing, with errno set, when it cannot be read. */
std::optional<Records> read(const QString& file);

/** Whether the file is a report, empty, or absent. */
bool mayStandIn(const QString& file);

/**
 * Adds records, and syncs the file.
 *
 * May be called by several processes at the same time.
 * @return false, with errno set, when it failed.
 */
bool append(const QString& file, const std::vector<DocumentRecord>& records);

/**
 * Replaces the file by one that has one line a document, by path. A file that is so already stays
 * as it is. May be called by one process at a time.
 *
 * @return false, with errno set, when it failed.
 */
bool replace(const QString& file, const Records& records);

} // namespace ArchiveReport

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <optional>
#include <vector>

/** A document that another machine has done. */
struct ReturnedDocument
{
    PlannedDocument document;
    DocumentRecord told; ///< by that machine
    QString output;      ///< the file that came back; empty when there is none
};

/**
 * Converts the documents of one job of an archive, and reports them.
 *
 * All outputs are written and synced first, then told as pending, then renamed, then their folders
 * synced, then reported: whenever the process is killed, a target is the old one, absent or whole,
 * and what stands without a report is known as pending.
 *
 * @return what became of them; empty when that could not be reported, with errno set.
 * @throws std::system_error when the system makes no process or pipe; nothing stands then that did
 * not stand before.
 */
std::vector<DocumentRecord> convertBatch(const ArchiveSettings& settings,
                                         const std::vector<PlannedDocument>& documents);

/**
 * Does the same with documents that another machine has done: what came back is checked and moved
 * instead of converted.
 *
 * @return what became of those that are what was told; none, with errno set, when that could not be
 * reported. The others still are to be converted.
 */
std::optional<std::vector<DocumentRecord>>
acceptBatch(const ArchiveSettings& settings, const std::vector<ReturnedDocument>& documents);

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/DocumentRecord.h"

#include <vector>

/**
 * Converts the documents of one job of an archive, and reports them.
 *
 * All outputs are written and synced first, then told as pending, then renamed, then their folders
 * synced, then reported: whenever the process is killed, a target is the old one, absent or whole,
 * and what stands without a report is known as pending.
 *
 * @return what became of them; empty when that could not be reported, with errno set.
 */
std::vector<DocumentRecord> convertBatch(const ArchiveSettings& settings,
                                         const std::vector<PlannedDocument>& documents);

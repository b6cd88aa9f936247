#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

/** What another machine tells of a document. */
namespace MachineRecord {

/**
 * Whether it is an answer to what was asked, and one for which the document alone is to blame. A
 * machine that has too little memory, time, room or rights says nothing about the document; neither
 * does one that tells what cannot be. Whether the bytes are what is told is still to be looked at.
 */
bool isAnswer(const DocumentRecord& told, const PlannedDocument& document,
              const ArchiveSettings& settings);

} // namespace MachineRecord

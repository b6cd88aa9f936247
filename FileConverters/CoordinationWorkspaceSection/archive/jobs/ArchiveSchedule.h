#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"

#include <vector>

/** Which documents go into which job, and how many jobs may be at work at the same time. */
namespace ArchiveSchedule {

using Job = std::vector<PlannedDocument>;

/** Jobs that may be at work beside each other. */
struct Round
{
    int jobsAtATime = 1;
    std::vector<Job> jobs;
};

/**
 * Spreads documents over jobs: several small ones share a job, a large one has its own. Documents
 * so large that fewer of them fit into the memory come in later rounds.
 *
 * @param mostAtATime      for the rounds.
 * @param availableMemory  in bytes.
 */
std::vector<Round> roundsOf(const std::vector<PlannedDocument>& documents, int mostAtATime,
                            qint64 availableMemory);

/** One document after the other, each in a job of its own. */
Round oneByOne(const std::vector<PlannedDocument>& documents);

/** Whether a document is so large that it is better converted here than copied to and fro. */
bool isForHere(const PlannedDocument& document);

/** Spreads documents over jobs for so many other machines. None of them is for here. */
std::vector<Job> parcelsOf(const std::vector<PlannedDocument>& documents, int machines);

/** In bytes, what the machine could give to processes now; 0 when it does not tell. */
qint64 availableMemory();

/** The same, as the text of /proc/meminfo (proc(5)) tells it. */
qint64 availableMemoryIn(const QByteArray& account);

} // namespace ArchiveSchedule

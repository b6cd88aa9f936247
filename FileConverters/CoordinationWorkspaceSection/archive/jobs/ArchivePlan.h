#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/FileIdentity.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"

#include <QByteArray>
#include <QString>

#include <vector>

/** A document that is to be converted. */
struct PlannedDocument
{
    QString path;                        ///< below the archive's folder
    qint64 size = 0;                     ///< in bytes
    bool mayReplace = false;             ///< what stands in its place
    bool isBlocked = false;              ///< something stands in its place that is kept
    std::optional<FileIdentity> earlier; ///< what an earlier run wrote there
};

/** Where the documents of a job stand in the plan's file. */
struct PlannedJob
{
    qint64 offset = 0; ///< of the first one's line, in bytes
    int count = 0;     ///< of its documents
};

/**
 * The file by which the front end tells the workers what to do.
 *
 * Names go through a file, so that no shell between the two has to quote them.
 */
namespace ArchivePlan {

/** How a line of a worker begins that tells why the run cannot go on. Its others are records. */
inline const QByteArray PROBLEM = QByteArrayLiteral("problem: ");

/**
 * Writes the plan.
 *
 * @return the jobs, as told by @p jobs; empty, with errno set, when the file cannot be written.
 */
std::vector<PlannedJob> write(const QString& file, const ArchiveSettings& settings,
                              const std::vector<std::vector<PlannedDocument>>& jobs);

/**
 * Reads one job. What the settings tell of places is told from the plan's folder, unless it is
 * absolute.
 *
 * @return its documents; empty when the file cannot be read.
 */
std::vector<PlannedDocument> read(const QString& file, const PlannedJob& job,
                                  ArchiveSettings& settings);

} // namespace ArchivePlan

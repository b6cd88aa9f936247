#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"

#include <QString>

/** Where a run may read and write. */
namespace ArchivePlaces {

/** What forbids a run, before anything is written; empty when nothing does. */
QString objection(const ArchiveCommandLine& line);

/**
 * Whether a file of that name can be written, as far as that can be told before. The folder may
 * still have to be made.
 *
 * @return false, with errno set, when it cannot.
 */
bool mayWrite(const QString& file);

} // namespace ArchivePlaces

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveSummary.h"

#include <QString>

/** What coordworkspace-convert-archive tells people on standard error. */
namespace ArchiveMessages {

/** Tells one line. What a terminal would obey in it shows as text. */
void say(const QString& text);

/** Tells that something cannot be read, for the reason that is in errno. */
ArchiveStatus sayCannotRead(const QString& what);

/** The same of something that cannot be written. */
ArchiveStatus sayCannotWrite(const QString& what);

/** Tells that the run has stopped because it was asked to. */
ArchiveStatus sayStopped();

} // namespace ArchiveMessages

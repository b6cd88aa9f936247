#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <QString>

#include <vector>

/** Something that stands in an archive's folder or below. */
struct ArchiveEntry
{
    /**
     * Below the archive's folder; no two entries have the same. A byte that is no UTF-8 shows as
     * U+FFFD and two hex digits, and where that is another one's name more U+FFFD follow.
     */
    QString path;
    qint64 size = 0; ///< in bytes; 0 where there is a reason
    QString reason;  ///< why it is no document to convert, for programs; empty when it may be one
    QString text;    ///< why, for people
    DocumentRecord::Outcome outcome = DocumentRecord::REFUSED; ///< when there is a reason
};

/**
 * The folders of an archive.
 *
 * Links to files count as the files that they lead to. Links to folders are not followed: they
 * could lead round in circles, or out of the archive. What runs themselves keep or leave behind is
 * not part of an archive. Of a file that does not begin as XML does, only the beginning is read: an
 * archive may hold recordings of any size.
 */
namespace ArchiveTree {

/**
 * All entries, by path: the folders themselves are none, unless they cannot be read. Some are left
 * out when the program is asked to stop meanwhile (StopSignals).
 */
std::vector<ArchiveEntry> find(const QString& folder);

/**
 * Removes the files that killed runs have left unfinished, as far as they can be removed. A folder
 * below that is the target of other runs is left to them.
 */
void sweep(const QString& folder);

} // namespace ArchiveTree

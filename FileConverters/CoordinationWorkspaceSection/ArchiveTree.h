#pragma once

#include <QString>

#include <vector>

/** Something that stands in an archive's folder or below and may be a document. */
struct ArchiveEntry
{
    QString path; ///< below the archive's folder; what is no UTF-8 in it is replaced
    qint64 size = 0;
    QString reason; ///< why it cannot be read as a document, for programs; empty when it can
    QString text;   ///< why, for people
};

/**
 * The folders of an archive.
 *
 * Links to files count as the files that they lead to. Links to folders are not followed: they
 * could lead round in circles, or out of the archive. What runs themselves keep or leave behind is
 * not part of an archive.
 */
namespace ArchiveTree {

/** All entries, by path: the folders themselves are none, unless they cannot be read. */
std::vector<ArchiveEntry> find(const QString& folder);

/** Removes the files that killed runs have left unfinished. */
void sweep(const QString& folder);

/** Whether the folders are the same, or one stands inside the other. They need not exist. */
bool overlap(const QString& one, const QString& other);

/**
 * Whether a file can be given that path below the folder: what stands on the way to it are folders,
 * no links, and in its own place stands nothing or, at most, something that is no folder.
 */
bool hasPlaceFor(const QString& folder, const QString& path);

} // namespace ArchiveTree

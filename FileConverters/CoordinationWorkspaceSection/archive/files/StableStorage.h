#pragma once

#include <QString>

/**
 * What outlasts a crash of the machine.
 *
 * A file's bytes are on the disk once it is synced; its name is once its folder is synced
 * (POSIX.1-2017, fsync). Every operation answers false, with errno set, when it failed.
 */
namespace StableStorage {

bool syncFile(int descriptor);

bool syncFolder(const QString& folder);

/** Syncs the folder and those above it, up to and with @p top, which is one of them. */
bool syncFolders(const QString& folder, const QString& top);

/** Makes the folder and those above it that are missing, each of them synced. */
bool makeFolders(const QString& folder);

/** Writes all the bytes, whatever interrupts. */
bool writeAll(int descriptor, const QByteArray& bytes);

} // namespace StableStorage

#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t FOLDER_MODE = 0777; // less the user's mask

} // namespace

bool StableStorage::syncFile(int descriptor)
{
    return fsync(descriptor) == 0;
}

bool StableStorage::syncFolder(const QString& folder)
{
    const Descriptor opened(
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.isOpen() && syncFile(opened.number());
}

bool StableStorage::syncFolders(const QString& folder, const QString& top)
{
    return syncFolder(folder) &&
           (folder == top || syncFolders(QFileInfo(folder).absolutePath(), top));
}

bool StableStorage::makeFolders(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.isDir()) {
        return true;
    }
    const QString parent = info.absolutePath();
    if (!makeFolders(parent)) {
        return false;
    }
    // Another worker may be making it at the same time.
    if (mkdir(QFile::encodeName(folder).constData(), FOLDER_MODE) != 0 && errno != EEXIST) {
        return false;
    }
    return syncFolder(parent);
}

bool StableStorage::writeAll(int descriptor, const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(descriptor, bytes.constData() + written,
                                    static_cast<std::size_t>(bytes.size() - written));
        if (count >= 0) {
            written += static_cast<int>(count);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

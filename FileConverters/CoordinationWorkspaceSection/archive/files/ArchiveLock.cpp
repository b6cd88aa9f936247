#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>

namespace {

constexpr mode_t NEW_FILE_MODE = 0666; // less the user's mask

} // namespace

ArchiveLock::ArchiveLock(const QString& file, Kind kind)
    : m_file(open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, NEW_FILE_MODE))
{
    if (!m_file.isOpen()) {
        return;
    }
    struct flock lock
    {
    };
    lock.l_type = kind == ALONE ? F_WRLCK : F_RDLCK;
    lock.l_whence = SEEK_SET; // and no length: the whole file
    if (fcntl(m_file.number(), F_SETLK, &lock) == 0) {
        m_state = HELD;
    } else if (errno == EACCES || errno == EAGAIN) {
        m_state = BUSY;
    }
}

#include "FileConverters/CoordinationWorkspaceSection/ArchiveLock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr mode_t NEW_FILE_MODE = 0666; // less the user's mask

} // namespace

ArchiveLock::ArchiveLock(const QString& file, Kind kind)
    : m_descriptor(
          open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, NEW_FILE_MODE))
{
    if (m_descriptor < 0) {
        return;
    }
    if (flock(m_descriptor, (kind == ALONE ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) {
        m_state = HELD;
    } else if (errno == EWOULDBLOCK) {
        m_state = BUSY;
    }
}

ArchiveLock::~ArchiveLock()
{
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
}

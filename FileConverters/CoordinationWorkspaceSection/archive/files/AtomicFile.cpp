#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString PART_BEGIN = QStringLiteral(".coordworkspace-");
const QString PART_END = QStringLiteral(".part");
constexpr mode_t PERMISSIONS = 0777; // what else a mode holds is not for a converted document
constexpr mode_t NEW_FILE_MODE = 0666;
constexpr mode_t PRIVATE_FILE_MODE = 0600; // until it is finished

mode_t userMask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

template <class Action>
bool withFile(const QString& path, const Action& action)
{
    const Descriptor file(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    return file.isOpen() && action(file.number());
}

bool renameUnlessItExists(const QByteArray& from, const QByteArray& to)
{
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // A file system that cannot tell; a link refuses an existing name as well.
    return link(from.constData(), to.constData()) == 0 && unlink(from.constData()) == 0;
}

} // namespace

AtomicFile::AtomicFile(QString folder, QString name, QString partPath)
    : m_folder(std::move(folder)), m_name(std::move(name)), m_partPath(std::move(partPath))
{
}

AtomicFile::~AtomicFile()
{
    if (!m_partPath.isEmpty()) {
        unlink(QFile::encodeName(m_partPath).constData());
    }
}

std::unique_ptr<AtomicFile> AtomicFile::begin(const QString& folder, const QString& name)
{
    // The document's name is not in it: with anything added it could be too long for a name.
    QByteArray path =
        QFile::encodeName(folder + QLatin1Char('/') + PART_BEGIN + "XXXXXX" + PART_END);
    const Descriptor file(mkostemps(path.data(), PART_END.size(), O_CLOEXEC));
    if (!file.isOpen()) {
        return nullptr;
    }
    // The constructor is private, out of std::make_unique's reach.
    return std::unique_ptr<AtomicFile>(new AtomicFile(folder, name, QFile::decodeName(path)));
}

std::unique_ptr<AtomicFile> AtomicFile::beginAlone(const QString& folder, const QString& name)
{
    const QString path = folder + QLatin1Char('/') + PART_BEGIN + name + PART_END;
    const Descriptor file(open(QFile::encodeName(path).constData(),
                               O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                               PRIVATE_FILE_MODE));
    if (!file.isOpen()) {
        return nullptr;
    }
    return std::unique_ptr<AtomicFile>(new AtomicFile(folder, name, path));
}

bool AtomicFile::finishLike(const QString& original)
{
    struct stat status
    {
    };
    if (stat(QFile::encodeName(original).constData(), &status) != 0) {
        return false;
    }
    return withFile(m_partPath, [&status](int descriptor) {
        const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, status.st_mtim};
        return fchmod(descriptor, status.st_mode & PERMISSIONS) == 0 &&
               futimens(descriptor, times.data()) == 0;
    });
}

bool AtomicFile::sync() const
{
    return withFile(m_partPath, StableStorage::syncFile);
}

bool AtomicFile::finish()
{
    const mode_t mode = NEW_FILE_MODE & ~userMask();
    return withFile(m_partPath, [mode](int descriptor) {
        return fchmod(descriptor, mode) == 0 && StableStorage::syncFile(descriptor);
    });
}

bool AtomicFile::commit(bool mayReplace)
{
    const QByteArray from = QFile::encodeName(m_partPath);
    const QByteArray to = QFile::encodeName(m_folder + QLatin1Char('/') + m_name);
    const bool isRenamed =
        mayReplace ? rename(from.constData(), to.constData()) == 0 : renameUnlessItExists(from, to);
    if (isRenamed) {
        m_partPath.clear();
    }
    return isRenamed;
}

bool AtomicFile::isPart(const QString& name)
{
    return name.startsWith(PART_BEGIN) && name.endsWith(PART_END);
}

#include "fuzz/MemoryFile.h"

#include "fuzz/FuzzTarget.h"

#include <sys/mman.h>
#include <unistd.h>

using FuzzTarget::require;

MemoryFile::MemoryFile() : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC))
{
    require(m_descriptor >= 0, "there is memory for a file");
}

MemoryFile::~MemoryFile()
{
    ::close(m_descriptor);
}

QString MemoryFile::path() const
{
    return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor);
}

QByteArray MemoryFile::content() const
{
    QByteArray bytes(static_cast<int>(::lseek(m_descriptor, 0, SEEK_END)), '\0');
    require(::pread(m_descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), 0) ==
                bytes.size(),
            "a file in memory can be read");
    return bytes;
}

void MemoryFile::setContent(const QByteArray& bytes) const
{
    require(::ftruncate(m_descriptor, 0) == 0 &&
                ::pwrite(m_descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()),
                         0) == bytes.size(),
            "a file in memory can be written");
}

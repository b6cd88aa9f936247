#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"

#include <cerrno>
#include <utility>

#include <unistd.h>

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_number, other.m_number);
    return *this;
}

void Descriptor::close()
{
    if (isOpen()) {
        const int error = errno;
        ::close(std::exchange(m_number, -1));
        errno = error;
    }
}

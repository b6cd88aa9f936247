#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

Pipe::Pipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    readEnd = Descriptor(ends[0]);
    writeEnd = Descriptor(ends[1]);
}

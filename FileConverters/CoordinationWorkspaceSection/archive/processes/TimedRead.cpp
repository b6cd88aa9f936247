#include "FileConverters/CoordinationWorkspaceSection/archive/processes/TimedRead.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

#include <poll.h>
#include <unistd.h>

namespace {

// A deadline may be farther away than poll() can count; it is asked again then.
int waitFor(const QDeadlineTimer& deadline)
{
    constexpr qint64 MOST = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(deadline.remainingTime(), MOST));
}

} // namespace

ssize_t readBefore(const QDeadlineTimer& deadline, int descriptor, char* bytes, std::size_t size)
{
    for (;;) {
        std::array<pollfd, 1> waiting = {{{descriptor, POLLIN, {}}}};
        const int ready = poll(waiting.data(), waiting.size(), waitFor(deadline));
        if (ready > 0) {
            return read(descriptor, bytes, size);
        }
        if (ready == 0 && deadline.hasExpired()) {
            errno = ETIMEDOUT;
            return -1;
        }
        if (ready < 0 && errno != EINTR) {
            return -1;
        }
    }
}

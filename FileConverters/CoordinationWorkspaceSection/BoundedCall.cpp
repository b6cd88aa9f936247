#include "FileConverters/CoordinationWorkspaceSection/BoundedCall.h"

#include "FileConverters/CoordinationWorkspaceSection/ProcessLimits.h"
#include "FileConverters/CoordinationWorkspaceSection/StableStorage.h"

#include <QDeadlineTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int DONE = 0;
constexpr int NOT_DONE = 1;

[[noreturn]] void workAndEnd(const ProcessLimits& limits, const std::function<QByteArray()>& work,
                             int output)
{
    int status = NOT_DONE;
    try {
        if (limits.applyToThisProcess() && StableStorage::writeAll(output, work())) {
            status = DONE;
        }
    } catch (...) {
        // Out of memory, mostly; the caller learns it from the status.
        status = NOT_DONE;
    }
    // The parent's streams and files are not this process's to flush.
    _exit(status);
}

// Until the other end is closed; false when the time was up before.
bool readToEnd(int input, const QDeadlineTimer& deadline, QByteArray& bytes)
{
    std::array<char, 65536> buffer{};
    for (;;) {
        pollfd waiting{input, POLLIN, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
        if (ready == 0) {
            return false;
        }
        const ssize_t count = ready < 0 ? -1 : read(input, buffer.data(), buffer.size());
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<int>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

int waitFor(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

QDeadlineTimer deadlineOf(const ProcessLimits& limits)
{
    return limits.milliseconds == 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                    : QDeadlineTimer(limits.milliseconds);
}

} // namespace

std::optional<QByteArray> callWithinLimits(const ProcessLimits& limits,
                                           const std::function<QByteArray()>& work)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        workAndEnd(limits, work, ends[1]);
    }
    const int forkError = errno;
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        throw std::system_error(forkError, std::generic_category(), "fork");
    }
    QByteArray result;
    const bool isInTime = readToEnd(ends[0], deadlineOf(limits), result);
    close(ends[0]);
    if (!isInTime) {
        kill(process, SIGKILL);
    }
    const int status = waitFor(process);
    const bool isDone = isInTime && WIFEXITED(status) && WEXITSTATUS(status) == DONE;
    return isDone ? std::optional(result) : std::nullopt;
}

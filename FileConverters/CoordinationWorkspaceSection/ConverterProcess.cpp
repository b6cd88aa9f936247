#include "FileConverters/CoordinationWorkspaceSection/ConverterProcess.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The converter has neither.
constexpr int NOT_STARTED_STATUS = 3;
constexpr int NOT_LOADED = 127; // the loader's, when the libraries do not fit into the memory

bool open(const char* path, int flags, int descriptor)
{
    const int opened = ::open(path, flags | O_CLOEXEC);
    return opened >= 0 && dup2(opened, descriptor) == descriptor;
}

pid_t start(const std::array<const char*, 3>& arguments, const QByteArray& output, int errors,
            const ProcessLimits& limits)
{
    // Shares this process's memory, which stands still until the program starts. Copying it, as
    // fork and QProcess do, took 7 % of the time of an archive of small documents. Only system
    // calls are made meanwhile. NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork)
    const pid_t process = vfork();
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "vfork");
    }
    if (process == 0) {
        if (open("/dev/null", O_RDONLY, STDIN_FILENO) &&
            open(output.constData(), O_WRONLY | O_TRUNC, STDOUT_FILENO) &&
            dup2(errors, STDERR_FILENO) == STDERR_FILENO && limits.applyToThisProcess()) {
            execv(arguments[0], const_cast<char* const*>(arguments.data()));
        }
        _exit(NOT_STARTED_STATUS);
    }
    return process;
}

// Until the other end is closed; false when the time was up before.
bool readToEnd(int descriptor, const QDeadlineTimer& deadline, QByteArray& bytes)
{
    std::array<char, 256> buffer{};
    for (;;) {
        pollfd waiting{descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
        if (ready == 0) {
            return false;
        }
        const ssize_t count = ready < 0 ? -1 : read(descriptor, buffer.data(), buffer.size());
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

ConverterProcess::Outcome outcomeOf(int status, const QByteArray& said)
{
    if (!WIFEXITED(status) || WEXITSTATUS(status) == NOT_LOADED) {
        return ConverterProcess::BROKE_OFF;
    }
    switch (WEXITSTATUS(status)) {
    case 0:
        return ConverterProcess::CONVERTED;
    case NOT_STARTED_STATUS:
        return ConverterProcess::NOT_STARTED;
    default:
        return said == "\nFAILURE" ? ConverterProcess::REFUSED : ConverterProcess::UNREADABLE;
    }
}

} // namespace

ConverterProcess::Outcome ConverterProcess::convert(const QString& converter,
                                                    const QString& document, const QString& output,
                                                    const ProcessLimits& limits)
{
    const QByteArray program = QFile::encodeName(converter);
    const QByteArray argument = QFile::encodeName(document);
    const QByteArray written = QFile::encodeName(output);
    const std::array<const char*, 3> arguments = {program.constData(), argument.constData(),
                                                  nullptr};
    std::array<int, 2> errors{};
    if (pipe2(errors.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    const pid_t process = start(arguments, written, errors[1], limits);
    close(errors[1]);
    QByteArray said;
    const bool isInTime = readToEnd(errors[0], limits.deadline(), said);
    close(errors[0]);
    if (!isInTime) {
        kill(process, SIGKILL);
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return isInTime ? outcomeOf(status, said) : OUT_OF_TIME;
}

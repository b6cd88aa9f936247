#include "FileConverters/CoordinationWorkspaceSection/ConverterProcess.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int NOT_LOADED = 127; // the loader's, when the libraries do not fit into the memory

/** Where a program's three streams lead. */
class Streams
{
public:
    Streams(const QByteArray& output, int errors)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, output.constData(),
                                         O_WRONLY | O_TRUNC, 0);
        posix_spawn_file_actions_adddup2(&m_actions, errors, STDERR_FILENO);
    }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { posix_spawn_file_actions_destroy(&m_actions); }

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

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
    if (WEXITSTATUS(status) == 0) {
        return ConverterProcess::CONVERTED;
    }
    return said == "\nFAILURE" ? ConverterProcess::REFUSED : ConverterProcess::UNREADABLE;
}

} // namespace

ConverterProcess::Outcome ConverterProcess::convert(const QString& converter,
                                                    const QString& document, const QString& output,
                                                    const ProcessLimits& limits)
{
    QByteArray program = QFile::encodeName(converter);
    QByteArray argument = QFile::encodeName(document);
    const std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
    std::array<int, 2> errors{};
    if (pipe2(errors.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    // Does not copy this process's memory, as fork and QProcess do: that took 7 % of the time of an
    // archive of small documents.
    pid_t process = 0;
    const int error = posix_spawn(&process, program.constData(),
                                  Streams(QFile::encodeName(output), errors[1]).get(), nullptr,
                                  arguments.data(), environ);
    close(errors[1]);
    if (error != 0) {
        close(errors[0]);
        return NOT_STARTED;
    }
    QByteArray said;
    const bool isLimited = limits.applyTo(process);
    const bool isInTime = isLimited && readToEnd(errors[0], limits.deadline(), said);
    close(errors[0]);
    if (!isInTime) {
        kill(process, SIGKILL);
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!isLimited) {
        return NOT_STARTED;
    }
    return isInTime ? outcomeOf(status, said) : OUT_OF_TIME;
}

#include "FileConverters/CoordinationWorkspaceSection/archive/worker/ConverterProcess.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/TimedRead.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int STACK_BYTES = 65536;
constexpr int NOT_LOADED = 127; // the loader's, when the libraries do not fit into the memory

/** What a new process needs to become the converter. */
struct Start
{
    std::array<char*, 3> arguments; ///< the program, its document, and null
    const char* output;
    int errors;
    const ProcessLimits& limits;
    int error; ///< errno when it did not become the converter
};

bool lead(int stream, int descriptor)
{
    return descriptor >= 0 && dup2(descriptor, stream) == stream;
}

// In the new process, which has this one's memory while this one waits.
int becomeConverter(void* argument)
{
    auto& start = *static_cast<Start*>(argument);
    if (start.limits.applyTo(getpid()) &&
        lead(STDIN_FILENO, open("/dev/null", O_RDONLY | O_CLOEXEC)) &&
        lead(STDOUT_FILENO, open(start.output, O_WRONLY | O_TRUNC | O_CLOEXEC)) &&
        lead(STDERR_FILENO, start.errors)) {
        execv(start.arguments[0], start.arguments.data());
    }
    start.error = errno;
    return NOT_LOADED;
}

pid_t begin(Start& start)
{
    // Not fork(), as of QProcess: to copy this process's memory took 7 % of the time of an archive
    // of small documents. Not posix_spawn(): limits that are set from here would come when the
    // converter is at work already, or is done.
    QByteArray stack(STACK_BYTES, Qt::Uninitialized);
    const pid_t process = clone(becomeConverter, stack.data() + stack.size(),
                                CLONE_VM | CLONE_VFORK | SIGCHLD, &start);
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "clone");
    }
    return process;
}

int statusOf(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

// Until the other end is closed; false when the time was up before.
bool readToEnd(int descriptor, const QDeadlineTimer& deadline, QByteArray& bytes)
{
    std::array<char, 256> buffer{};
    ssize_t count = 0;
    while ((count = readBefore(deadline, descriptor, buffer.data(), buffer.size())) > 0) {
        bytes.append(buffer.data(), static_cast<int>(count));
    }
    return count == 0;
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
    const QByteArray target = QFile::encodeName(output);
    Pipe errors;
    Start start{{program.data(), argument.data(), nullptr},
                target.constData(),
                errors.writeEnd.number(),
                limits,
                0};
    const pid_t process = begin(start);
    errors.writeEnd.close();
    QByteArray said;
    const bool isInTime =
        start.error != 0 || readToEnd(errors.readEnd.number(), limits.deadline(), said);
    errors.readEnd.close();
    if (!isInTime) {
        kill(process, SIGKILL);
    }
    const int status = statusOf(process);
    if (start.error != 0) {
        // A limit may leave no room for the program itself.
        return start.error == ENOMEM ? BROKE_OFF : NOT_STARTED;
    }
    return isInTime ? outcomeOf(status, said) : OUT_OF_TIME;
}

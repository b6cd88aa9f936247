#include "FileConverters/CoordinationWorkspaceSection/archive/processes/BoundedServer.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/TimedRead.h"

#include <QDeadlineTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include <sys/wait.h>
#include <unistd.h>

namespace {

/** What stands before the bytes of a request, and of an answer. */
struct Header
{
    qint64 memoryBytes = 0; // that the answer may take
    int size = 0;
};

bool send(int descriptor, const Header& header, const QByteArray& bytes)
{
    const QByteArray begin(reinterpret_cast<const char*>(&header), sizeof header);
    return StableStorage::writeAll(descriptor, begin + bytes);
}

// False at the end of the stream, and when the time is up.
bool receiveBytes(int descriptor, char* bytes, int size, const QDeadlineTimer& deadline)
{
    while (size > 0) {
        const ssize_t count =
            readBefore(deadline, descriptor, bytes, static_cast<std::size_t>(size));
        if (count <= 0) {
            return false;
        }
        bytes += count;
        size -= static_cast<int>(count);
    }
    return true;
}

bool receive(int descriptor, Header& header, QByteArray& bytes, const QDeadlineTimer& deadline)
{
    std::array<char, sizeof(Header)> begin{};
    if (!receiveBytes(descriptor, begin.data(), begin.size(), deadline)) {
        return false;
    }
    std::memcpy(&header, begin.data(), begin.size());
    bytes.resize(header.size);
    return receiveBytes(descriptor, bytes.data(), header.size, deadline);
}

} // namespace

std::optional<QByteArray> BoundedServer::ask(const QByteArray& request, const ProcessLimits& limits)
{
    if (m_process == 0) {
        begin();
    }
    const QDeadlineTimer deadline = limits.deadline();
    Header header{limits.memoryBytes, request.size()};
    QByteArray answer;
    if (send(m_requests.number(), header, request) &&
        receive(m_answers.number(), header, answer, deadline)) {
        return answer;
    }
    end();
    return std::nullopt;
}

void BoundedServer::begin()
{
    Pipe requests;
    Pipe answers;
    const pid_t process = fork();
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (process == 0) {
        requests.writeEnd.close();
        answers.readEnd.close();
        serve(requests.readEnd.number(), answers.writeEnd.number());
    }
    m_process = process;
    m_requests = std::move(requests.writeEnd);
    m_answers = std::move(answers.readEnd);
}

void BoundedServer::serve(int requests, int answers) const
{
    try {
        Header header;
        QByteArray request;
        while (receive(requests, header, request, QDeadlineTimer(QDeadlineTimer::Forever))) {
            if (!ProcessLimits{header.memoryBytes, 0}.applyToThisProcess()) {
                break;
            }
            const QByteArray answer = m_work(request);
            send(answers, {0, answer.size()}, answer); // whom it does not reach asks no more
        }
    } catch (...) {
        // Out of memory, mostly. No answer says it.
    }
    // The parent's streams and files are not this process's to flush.
    _exit(0);
}

void BoundedServer::end()
{
    if (m_process <= 0) { // kill() takes 0 for the own group, -1 for every process that there is
        return;
    }
    m_requests.close();
    m_answers.close();
    kill(m_process, SIGKILL);
    while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_process = 0;
}

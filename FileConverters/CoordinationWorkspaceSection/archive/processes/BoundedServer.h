#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"

#include <QByteArray>

#include <functional>
#include <optional>
#include <utility>

#include <sys/types.h>

struct ProcessLimits;

/**
 * Answers requests in a process of its own, each within limits.
 *
 * What an answer takes, breaks or changes stays in that process, which is forked from the caller
 * when it is first needed, and again when it has met a limit, thrown or crashed. Not one for each
 * request: a new process copies each page that it touches, and looks up each function of the
 * libraries that it calls, which took 7 % of the time of an archive of small documents.
 *
 * The caller must have one thread only, and ignore SIGPIPE.
 */
class BoundedServer
{
public:
    using Work = std::function<QByteArray(const QByteArray& request)>;

    explicit BoundedServer(Work work) : m_work(std::move(work)) {}
    BoundedServer(const BoundedServer&) = delete;
    BoundedServer& operator=(const BoundedServer&) = delete;
    ~BoundedServer() { end(); }

    /**
     * @return none when the work met a limit, threw or crashed.
     * @throws std::system_error when the system makes no process.
     */
    std::optional<QByteArray> ask(const QByteArray& request, const ProcessLimits& limits);

    /** Ends the process, and gives back what it holds. */
    void end();

private:
    void begin();
    [[noreturn]] void serve(int requests, int answers) const;

    const Work m_work;
    pid_t m_process = 0; // 0 when there is none
    Descriptor m_requests;
    Descriptor m_answers;
};

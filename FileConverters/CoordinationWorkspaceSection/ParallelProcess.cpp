#include "FileConverters/CoordinationWorkspaceSection/ParallelProcess.h"

#include <csignal>
#include <cstdlib>

#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <utility>

namespace {

constexpr int PATIENCE_MS = 5000;

pid_t ourselves = 0;

// QProcess has its child wait, before setupChildProcess, for a word that a killed parent never
// says.
void endWithParent()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != ourselves) {
        _exit(EXIT_FAILURE);
    }
}

} // namespace

ParallelProcess::ParallelProcess(const QString& worker, const QString& plan, QString folder)
    : m_folder(std::move(folder))
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PARALLEL_SHELL"), QStringLiteral("/bin/sh"));
    environment.insert(QStringLiteral("PARALLEL_HOME"), m_folder);
    environment.remove(QStringLiteral("PARALLEL"));
    // Perl complains of a locale that the machine does not have.
    environment.insert(QStringLiteral("PERL_BADLANG"), QStringLiteral("0"));
    environment.insert(QStringLiteral("COORDWORKSPACE_WORKER"), worker);
    environment.insert(QStringLiteral("COORDWORKSPACE_PLAN"), plan);
    setProcessEnvironment(environment);
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Ours may be gone, of which a shell complains.
    setWorkingDirectory(QStringLiteral("/"));
}

// In the child, between fork and exec.
void ParallelProcess::setupChildProcess()
{
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

bool ParallelProcess::startJobs(const std::vector<PlannedJob>& planned, int atTheSameTime)
{
    if (ourselves == 0) {
        ourselves = getpid();
        pthread_atfork(nullptr, nullptr, endWithParent);
    }
    // Names reach the worker by the environment and the plan, so that no shell has to quote them.
    start(QStringLiteral("parallel"),
          {QStringLiteral("--plain"), QStringLiteral("--will-cite"), QStringLiteral("--tmpdir"),
           m_folder, QStringLiteral("--jobs"), QString::number(atTheSameTime),
           QStringLiteral("--colsep"), QStringLiteral(" "),
           QStringLiteral("exec \"$COORDWORKSPACE_WORKER\" \"$COORDWORKSPACE_PLAN\" {1} {2}")});
    if (!waitForStarted(-1)) {
        return false;
    }
    for (const PlannedJob& job : planned) {
        write(QByteArray::number(job.offset) + ' ' + QByteArray::number(job.count) + '\n');
    }
    closeWriteChannel();
    return true;
}

bool ParallelProcess::isGnu()
{
    QProcess version;
    version.start(QStringLiteral("parallel"), {QStringLiteral("--version")}, QIODevice::ReadOnly);
    return version.waitForFinished(PATIENCE_MS) &&
           version.readAllStandardOutput().startsWith("GNU parallel");
}

void ParallelProcess::stopJobs()
{
    terminate();
    if (!waitForFinished(PATIENCE_MS)) {
        kill();
        waitForFinished(-1);
    }
}

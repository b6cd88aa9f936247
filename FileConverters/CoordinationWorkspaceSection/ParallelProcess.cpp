#include "FileConverters/CoordinationWorkspaceSection/ParallelProcess.h"

#include <csignal>

#include <sys/prctl.h>

namespace {

constexpr int PATIENCE_MS = 5000;

} // namespace

ParallelProcess::ParallelProcess(const QString& worker, const QString& plan, const QString& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PARALLEL_SHELL"), QStringLiteral("/bin/sh"));
    environment.insert(QStringLiteral("PARALLEL_HOME"), home);
    environment.remove(QStringLiteral("PARALLEL"));
    environment.insert(QStringLiteral("COORDWORKSPACE_WORKER"), worker);
    environment.insert(QStringLiteral("COORDWORKSPACE_PLAN"), plan);
    setProcessEnvironment(environment);
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

// In the child, between fork and exec.
void ParallelProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

bool ParallelProcess::startJobs(const std::vector<PlannedJob>& planned, int atTheSameTime)
{
    // Names reach the worker by the environment and the plan, so that no shell has to quote them.
    start(QStringLiteral("parallel"),
          {QStringLiteral("--plain"), QStringLiteral("--will-cite"), QStringLiteral("--jobs"),
           QString::number(atTheSameTime), QStringLiteral("--colsep"), QStringLiteral(" "),
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

void ParallelProcess::stopJobs()
{
    terminate();
    if (!waitForFinished(PATIENCE_MS)) {
        kill();
        waitForFinished(-1);
    }
}

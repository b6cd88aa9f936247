#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ParallelProcess.h"

#include <csignal>
#include <cstdlib>

#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <utility>

namespace {

constexpr int PATIENCE_MS = 5000;

// A job is tried on so many machines.
const QString TRIES = QStringLiteral("3");
// Nobody is there to be asked, and a machine that is gone must be noticed soon. What a job prints
// that is tried again, Parallel keeps to itself.
const QString SSH = QStringLiteral("ssh -o BatchMode=yes -o ConnectTimeout=10"
                                   " -o ServerAliveInterval=10 -o ServerAliveCountMax=3 -E %1");
// What links lead to; no links or devices come back; of others' eyes on a machine, none.
const QString RSYNC_OPTIONS = QStringLiteral("-rLzR --chmod=D700,F600");
// Parallel copies nothing to where it is itself, which a file of machines may name as well.
const char* const PARCEL_COMMAND = R"([ -e {1}/plan ] || cd "$COORDWORKSPACE_PARCELS" || exit;)"
                                   R"( exec "$COORDWORKSPACE_WORKER" {1}/plan {2} {3})";
const char* const JOB_COMMAND = R"(exec "$COORDWORKSPACE_WORKER" "$COORDWORKSPACE_PLAN" {1} {2})";

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

ParallelProcess::ParallelProcess(const QString& worker, QString folder)
    : m_folder(std::move(folder)), m_environment(QProcessEnvironment::systemEnvironment())
{
    m_environment.insert(QStringLiteral("PARALLEL_SHELL"), QStringLiteral("/bin/sh"));
    m_environment.insert(QStringLiteral("PARALLEL_HOME"), m_folder);
    m_environment.remove(QStringLiteral("PARALLEL"));
    // Perl complains of a locale that the machine does not have.
    m_environment.insert(QStringLiteral("PERL_BADLANG"), QStringLiteral("0"));
    m_environment.insert(QStringLiteral("COORDWORKSPACE_WORKER"), worker);
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

bool ParallelProcess::startJobs(const QString& plan, const std::vector<PlannedJob>& planned,
                                int atTheSameTime)
{
    QByteArray lines;
    for (const PlannedJob& job : planned) {
        lines += QByteArray::number(job.offset) + ' ' + QByteArray::number(job.count) + '\n';
    }
    m_environment.insert(QStringLiteral("COORDWORKSPACE_PLAN"), plan);
    return startWith({QStringLiteral("--jobs"), QString::number(atTheSameTime)}, JOB_COMMAND,
                     lines);
}

bool ParallelProcess::startParcels(const QString& parcels, const std::vector<PlannedJob>& planned,
                                   const MachineJobs& machines)
{
    QByteArray lines;
    for (std::size_t i = 0; i < planned.size(); ++i) {
        lines += QByteArray::number(static_cast<qint64>(i) + 1) + ' ' +
                 QByteArray::number(planned[i].offset) + ' ' +
                 QByteArray::number(planned[i].count) + '\n';
    }
    m_environment.insert(QStringLiteral("COORDWORKSPACE_PARCELS"), parcels);
    m_environment.insert(QStringLiteral("PARALLEL_SSH"), SSH.arg(machines.sshLog));
    m_environment.insert(QStringLiteral("PARALLEL_RSYNC_OPTS"), RSYNC_OPTIONS);
    setProcessChannelMode(QProcess::SeparateChannels);
    setWorkingDirectory(parcels);
    const QString jobs = machines.atTheSameTime > 0 ? QString::number(machines.atTheSameTime)
                                                    : QStringLiteral("100%");
    return startWith(
        {QStringLiteral("--sshloginfile"), machines.loginFile, QStringLiteral("--jobs"), jobs,
         QStringLiteral("--retries"), TRIES, QStringLiteral("--timeout"),
         QString::number(machines.seconds), QStringLiteral("--transferfile"), QStringLiteral("{1}"),
         QStringLiteral("--return"), QStringLiteral("{1}/out"), QStringLiteral("--workdir"),
         QStringLiteral("..."), QStringLiteral("--env"), QStringLiteral("COORDWORKSPACE_WORKER"),
         QStringLiteral("--tagstring"), QStringLiteral("{1}")},
        PARCEL_COMMAND, lines);
}

bool ParallelProcess::startWith(const QStringList& options, const char* command,
                                const QByteArray& lines)
{
    if (ourselves == 0) {
        ourselves = getpid();
        pthread_atfork(nullptr, nullptr, endWithParent);
    }
    setProcessEnvironment(m_environment);
    // Names reach the worker by the environment and the plan, so that no shell has to quote them.
    start(QStringLiteral("parallel"),
          QStringList{QStringLiteral("--plain"), QStringLiteral("--will-cite"),
                      QStringLiteral("--tmpdir"), m_folder, QStringLiteral("--colsep"),
                      QStringLiteral(" ")} +
              options + QStringList{QLatin1String(command)});
    if (!waitForStarted(-1)) {
        return false;
    }
    write(lines);
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

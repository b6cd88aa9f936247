#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveConversion.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ParallelProcess.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/ArchiveParcels.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachinesRound.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

#include <QDir>
#include <QThread>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace {

const QString PLAN_BEGIN = QStringLiteral("plan-");
const QString PARCELS_BEGIN = QStringLiteral("parcels-");
const QString PARALLEL_FOLDER = QStringLiteral("parallel");
// As long as the machines get on: one that was away may be there again.
constexpr int MOST_ROUNDS_OF_MACHINES = 3;
constexpr int WAIT_MS = 100;
constexpr int PARALLEL_FAILED = 255; // apart from jobs that failed

QString newName(const QString& begin)
{
    return begin + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

} // namespace

ArchiveConversion::ArchiveConversion(const ArchiveCommandLine& commandLine,
                                     const std::vector<PlannedDocument>& documents,
                                     RunRecords& records, QString worker, const QString& folder)
    : m_commandLine(commandLine), m_settings(commandLine.settings), m_documents(documents),
      m_records(records), m_worker(std::move(worker)), m_folder(folder + QLatin1Char('/')),
      m_planFile(newName(m_folder + PLAN_BEGIN)), m_parallelFolder(m_folder + PARALLEL_FOLDER),
      m_progress(QStringLiteral("documents"), documents)
{
}

ArchiveStatus ArchiveConversion::run()
{
    ArchiveStatus status = ARCHIVE_DONE;
    if (!m_commandLine.machines.isEmpty()) {
        status = convertOnMachines();
    }
    if (status == ARCHIVE_DONE) {
        status = convertHere();
    }
    m_progress.clear();
    return status;
}

ArchiveStatus ArchiveConversion::convertOnMachines()
{
    QSet<QString> forHere;
    std::vector<PlannedDocument> documents = documentsForMachines(forHere);
    for (int round = 0; round < MOST_ROUNDS_OF_MACHINES && !documents.empty(); ++round) {
        MachinesRound machines(m_settings, m_worker, newName(m_folder + PARCELS_BEGIN));
        if (!machines.pack(documents, m_commandLine.machines)) {
            return sayCannotWrite(m_folder);
        }
        if (!machines.start(m_commandLine.machines, m_commandLine.jobs)) {
            return sayCannotStart();
        }
        const auto toldBefore = m_records.all().size();
        const ArchiveStatus status = follow(machines);
        if (status != ARCHIVE_DONE) {
            return status;
        }
        forHere += machines.forHere();
        documents = documentsForMachines(forHere);
        if (m_records.all().size() == toldBefore) {
            break;
        }
    }
    if (!documents.empty()) {
        say(QStringLiteral("%1 documents came back from no machine; they are converted here")
                .arg(documents.size()));
    }
    return ARCHIVE_DONE;
}

std::vector<PlannedDocument>
ArchiveConversion::documentsForMachines(const QSet<QString>& forHere) const
{
    std::vector<PlannedDocument> documents = untold();
    const auto staysHere = [&forHere](const PlannedDocument& document) {
        return ArchiveSchedule::isForHere(document) || forHere.contains(document.path);
    };
    documents.erase(std::remove_if(documents.begin(), documents.end(), staysHere), documents.end());
    return documents;
}

// Until the machines have told all that they will, or the run cannot go on.
ArchiveStatus ArchiveConversion::follow(MachinesRound& machines)
{
    do {
        const auto records = machines.next(WAIT_MS);
        if (!records) {
            return sayCannotWrite(m_settings.report);
        }
        for (const DocumentRecord& record : *records) {
            take(record);
        }
        for (const QString& complaint : machines.takeComplaints()) {
            say(complaint);
        }
        if (StopSignals::isStopping()) {
            return sayStopped();
        }
        m_progress.show();
    } while (!machines.isOver());
    return ARCHIVE_DONE;
}

ArchiveStatus ArchiveConversion::convertHere()
{
    // One more than cores: a job that waits for its output to be synced leaves its core to another.
    const int atTheSameTime =
        m_commandLine.jobs > 0 ? m_commandLine.jobs : QThread::idealThreadCount() + 1;
    for (const ArchiveSchedule::Round& round :
         ArchiveSchedule::roundsOf(untold(), atTheSameTime, ArchiveSchedule::availableMemory())) {
        const ArchiveStatus status = convertRound(round);
        if (status != ARCHIVE_DONE) {
            return status;
        }
    }
    if (!takeWhatIsDoneUntold()) {
        return sayCannotWrite(m_settings.report);
    }
    return convertRound(ArchiveSchedule::oneByOne(untold()));
}

ArchiveStatus ArchiveConversion::convertRound(const ArchiveSchedule::Round& round)
{
    if (round.jobs.empty()) {
        return ARCHIVE_DONE;
    }
    const std::vector<PlannedJob> planned = ArchivePlan::write(m_planFile, m_settings, round.jobs);
    if (planned.empty()) {
        return sayCannotWrite(m_planFile);
    }
    if (!QDir().mkpath(m_parallelFolder)) {
        return sayCannotWrite(m_parallelFolder);
    }
    ParallelProcess parallel(m_worker, m_parallelFolder);
    if (!parallel.startJobs(m_planFile, planned, round.jobsAtATime)) {
        return sayCannotStart();
    }
    const auto toldBefore = m_records.all().size();
    const ArchiveStatus status = follow(parallel);
    QFile::remove(m_planFile);
    QDir(m_parallelFolder).removeRecursively();
    if (status == ARCHIVE_DONE && m_records.all().size() == toldBefore &&
        parallel.exitCode() != 0 && !ParallelProcess::isGnu()) {
        say(QStringLiteral("the program \"parallel\" is not GNU Parallel, or does not work"));
        return ARCHIVE_UNAVAILABLE;
    }
    return status;
}

// Until the last job has ended, or the run cannot go on.
ArchiveStatus ArchiveConversion::follow(ParallelProcess& parallel)
{
    do {
        parallel.waitForReadyRead(WAIT_MS);
        readRecords(parallel);
        if (StopSignals::isStopping()) {
            parallel.stopJobs();
            return sayStopped();
        }
        if (!m_problem.isEmpty()) {
            parallel.stopJobs();
            say(m_problem);
            return ARCHIVE_NOT_WRITTEN;
        }
        m_progress.show();
    } while (parallel.state() != QProcess::NotRunning || parallel.canReadLine());
    if (parallel.exitStatus() == QProcess::CrashExit || parallel.exitCode() == PARALLEL_FAILED) {
        // Its jobs may be at work still: nothing may be begun beside them.
        say(QStringLiteral("GNU Parallel broke off; the next run goes on from here"));
        return ARCHIVE_UNAVAILABLE;
    }
    return ARCHIVE_DONE;
}

void ArchiveConversion::readRecords(ParallelProcess& parallel)
{
    while (parallel.canReadLine()) {
        const QByteArray line = parallel.readLine();
        if (const auto record = DocumentRecord::fromLine(line)) {
            take(*record);
        } else if (line.startsWith(ArchivePlan::PROBLEM)) {
            m_problem = QString::fromUtf8(line.mid(ArchivePlan::PROBLEM.size()).trimmed());
        }
    }
}

// A job that broke off took the documents beside the guilty one along. Some of them may stand.
bool ArchiveConversion::takeWhatIsDoneUntold()
{
    const std::vector<PlannedDocument> documents = untold();
    if (documents.empty()) {
        return true;
    }
    ArchiveHistory now(m_settings);
    if (!now.read() || !now.reportUntold()) {
        return false;
    }
    if (!m_settings.isTrial()) {
        ArchiveTree::sweep(m_settings.target);
    }
    for (const PlannedDocument& document : documents) {
        // Where an earlier run's target stood nothing tells the two apart; it is written again.
        if (!document.earlier && now.standingTarget(document.path)) {
            take(*now.find(document.path));
        }
    }
    return true;
}

void ArchiveConversion::take(const DocumentRecord& record)
{
    if (m_settings.isTrial()) {
        m_progress.clear(); // the record is printed
    }
    m_records.take(record);
    m_progress.advance(record.source ? record.source->size : 0);
}

// In place of the progress.
void ArchiveConversion::say(const QString& text) const
{
    m_progress.clear();
    ArchiveMessages::say(text);
}

ArchiveStatus ArchiveConversion::sayCannotWrite(const QString& what) const
{
    m_progress.clear();
    return ArchiveMessages::sayCannotWrite(what);
}

ArchiveStatus ArchiveConversion::sayCannotStart() const
{
    say(QStringLiteral("GNU Parallel cannot be started"));
    return ARCHIVE_UNAVAILABLE;
}

ArchiveStatus ArchiveConversion::sayStopped() const
{
    m_progress.clear();
    return ArchiveMessages::sayStopped();
}

void ArchiveConversion::removeRemains(const QString& folder)
{
    const QDir left(folder);
    for (const QString& plan : left.entryList({PLAN_BEGIN + QLatin1Char('*')}, QDir::Files)) {
        QFile::remove(left.filePath(plan));
    }
    for (const QString& parcels : left.entryList({PARCELS_BEGIN + QLatin1Char('*')}, QDir::Dirs)) {
        ArchiveParcels::remove(left.filePath(parcels));
    }
    QDir(left.filePath(PARALLEL_FOLDER)).removeRecursively();
}

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveRun.h"

#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveLock.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchivePage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveParcels.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveProgress.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/MachinesRound.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ParallelProcess.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/StopSignals.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

#include <unistd.h>

namespace {

const QString PLAN_BEGIN = QStringLiteral("plan-");
const QString PARCELS_BEGIN = QStringLiteral("parcels-");
const QString PARALLEL_FOLDER = QStringLiteral("/parallel");
// As long as the machines get on: one that was away may be there again.
constexpr int MOST_ROUNDS_OF_MACHINES = 3;
constexpr int WAIT_MS = 100;
constexpr int PARALLEL_FAILED = 255; // apart from jobs that failed

void say(const QString& text)
{
    // Names of files are in it, and a name may hold what a terminal obeys.
    writeUtf8(
        QStringLiteral("coordworkspace-convert-archive: %1\n").arg(TextLayout::printable(text)),
        std::cerr);
}

ArchiveStatus sayCannotWrite(const QString& what)
{
    say(QStringLiteral("%1 cannot be written: %2")
            .arg(what, QString::fromLocal8Bit(std::strerror(errno))));
    return ARCHIVE_NOT_WRITTEN;
}

ArchiveStatus sayStopped()
{
    say(QStringLiteral("stopped; the next run goes on from here"));
    return ARCHIVE_STOPPED;
}

template <class Entry>
qint64 bytesOf(const std::vector<Entry>& entries)
{
    return std::accumulate(entries.begin(), entries.end(), qint64(0),
                           [](qint64 bytes, const Entry& entry) { return bytes + entry.size; });
}

QString newName(const QString& begin)
{
    return begin + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

bool isMissing(const char* program)
{
    return QStandardPaths::findExecutable(QLatin1String(program)).isEmpty();
}

bool isTerminal()
{
    return ProcessSetup::isOutputTerminal() && ProcessSetup::isErrorTerminal();
}

} // namespace

ArchiveRun::ArchiveRun(ArchiveCommandLine commandLine, QString worker)
    : m_commandLine(std::move(commandLine)), m_worker(std::move(worker)),
      m_settings(m_commandLine.settings), m_before(m_settings)
{
}

QString ArchiveRun::objection() const
{
    const QFileInfo source(m_settings.source);
    const QFileInfo target(m_settings.target);
    if (!source.isDir()) {
        return QStringLiteral("SOURCE is no folder: %1").arg(m_settings.source);
    }
    if (!source.isReadable() || !source.isExecutable()) {
        return QStringLiteral("SOURCE may not be read: %1").arg(m_settings.source);
    }
    if (target.exists() && !target.isDir()) {
        return QStringLiteral("TARGET is no folder: %1").arg(m_settings.target);
    }
    if (ArchiveTree::overlap(m_settings.source, m_settings.target)) {
        return QStringLiteral("SOURCE and TARGET are the same folder, or one is inside the other");
    }
    if (ArchiveTree::overlap(m_settings.source, m_settings.report)) {
        return QStringLiteral("the report is inside SOURCE, where nothing is written");
    }
    const QString toReport = objectionToReport();
    return toReport.isEmpty() && !m_commandLine.page.isEmpty() ? objectionToPage() : toReport;
}

QString ArchiveRun::objectionToReport() const
{
    if (m_settings.report == m_settings.usualReport()) {
        return {}; // in a folder that the run makes
    }
    if (ArchiveTree::overlap(m_settings.folder(), m_settings.report)) {
        return QStringLiteral("the report is among the files that a run keeps for itself: %1")
            .arg(m_settings.report);
    }
    if (!ArchiveReport::mayStandIn(m_settings.report)) {
        return QStringLiteral("the report's place holds something else, or is in no folder: %1")
            .arg(m_settings.report);
    }
    return {};
}

QString ArchiveRun::objectionToPage() const
{
    const QString& page = m_commandLine.page;
    const QString folder = QFileInfo(page).absolutePath();
    if (ArchiveTree::overlap(m_settings.source, page)) {
        return QStringLiteral("the page is inside SOURCE, where nothing is written");
    }
    if (page == m_settings.report || ArchiveTree::overlap(m_settings.folder(), page)) {
        return QStringLiteral("the page is among the files that a run keeps for itself: %1")
            .arg(page);
    }
    const bool hasFolder =
        QFileInfo(folder).isDir() || (folder == m_settings.target && !m_commandLine.isTrial);
    if (!hasFolder || !ArchivePage::mayStandIn(page)) {
        return QStringLiteral("the page's place holds something else, or is in no folder: %1")
            .arg(page);
    }
    return {};
}

// Told before the work rather than after it, as far as it can be; with errno set.
bool ArchiveRun::mayWritePage() const
{
    const QString& page = m_commandLine.page;
    const QString folder = QFileInfo(page).absolutePath();
    return page.isEmpty() || !QFileInfo::exists(folder) ||
           access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
}

ArchiveStatus ArchiveRun::run()
{
    if (isMissing("parallel")) {
        say(QStringLiteral("GNU Parallel is missing; its package is \"parallel\""));
        return ARCHIVE_UNAVAILABLE;
    }
    if (!m_commandLine.machines.isEmpty() && (isMissing("ssh") || isMissing("rsync"))) {
        say(QStringLiteral("other machines are reached by ssh and rsync, of which one is missing;"
                           " their packages are \"openssh-client\" and \"rsync\""));
        return ARCHIVE_UNAVAILABLE;
    }
    if (!mayWritePage()) {
        return sayCannotWrite(m_commandLine.page);
    }
    if (m_commandLine.isTrial) {
        const QTemporaryDir folder;
        if (!folder.isValid()) {
            return sayCannotWrite(QStringLiteral("the folder for temporary files"));
        }
        m_settings.staging = folder.path();
        return runWithFolder(folder.path());
    }
    if (!StableStorage::makeFolders(m_settings.folder()) ||
        !StableStorage::syncFolders(m_settings.folder(), m_settings.target)) {
        return sayCannotWrite(m_settings.folder());
    }
    return runAlone();
}

ArchiveStatus ArchiveRun::runAlone()
{
    const ArchiveLock lock(m_settings.runLock(), ArchiveLock::ALONE);
    if (lock.state() == ArchiveLock::FAILED) {
        return sayCannotWrite(m_settings.folder());
    }
    if (lock.state() == ArchiveLock::BUSY || !endFormerRun()) {
        say(QStringLiteral("another run, or what is left of one, is at work in %1")
                .arg(m_settings.target));
        return ARCHIVE_BUSY;
    }
    ArchiveTree::sweep(m_settings.target);
    return runWithFolder(m_settings.folder());
}

// A job that a former run has not come to start finds its plan gone.
bool ArchiveRun::endFormerRun() const
{
    const ArchiveLock jobs(m_settings.jobsLock(), ArchiveLock::ALONE);
    if (jobs.state() != ArchiveLock::HELD) {
        return false;
    }
    const QDir folder(m_settings.folder());
    for (const QString& plan : folder.entryList({PLAN_BEGIN + QLatin1Char('*')}, QDir::Files)) {
        QFile::remove(folder.filePath(plan));
    }
    for (const QString& parcels :
         folder.entryList({PARCELS_BEGIN + QLatin1Char('*')}, QDir::Dirs)) {
        ArchiveParcels::remove(folder.filePath(parcels));
    }
    QDir(m_settings.folder() + PARALLEL_FOLDER).removeRecursively();
    return true;
}

ArchiveStatus ArchiveRun::runWithFolder(const QString& folder)
{
    if (!m_before.read()) {
        return sayCannotWrite(m_settings.report);
    }
    if (!plan()) {
        return sayStopped();
    }
    tellWhatStandsInTheWay();
    if (!reportOwnRecords()) {
        return sayCannotWrite(m_settings.report);
    }
    m_folder = folder + QLatin1Char('/');
    m_planFile = newName(m_folder + PLAN_BEGIN);
    m_parallelFolder = folder + PARALLEL_FOLDER;
    const ArchiveStatus status = convertAll();
    if (status != ARCHIVE_DONE) {
        return status;
    }
    if (!finishReport()) {
        return sayCannotWrite(m_settings.report);
    }
    writeUtf8(m_summary.text() + QLatin1Char('\n'), std::cout);
    if (!m_commandLine.page.isEmpty() && !writePage()) {
        return sayCannotWrite(m_commandLine.page);
    }
    return m_summary.status(m_commandLine.failsIfLossy);
}

// False when the run is asked to stop: finding out what is done already can take a while.
bool ArchiveRun::plan()
{
    const std::vector<ArchiveEntry> entries = ArchiveTree::find(m_settings.source);
    ArchiveProgress progress(QStringLiteral("files looked at"), static_cast<int>(entries.size()),
                             bytesOf(entries), isTerminal());
    for (const ArchiveEntry& entry : entries) {
        if (StopSignals::isStopping()) {
            break;
        }
        if (entry.reason.isEmpty()) {
            planDocument(entry);
        } else {
            m_ownRecords.push_back(recordOf(entry));
        }
        progress.advance(entry.size);
        progress.show();
    }
    progress.clear();
    if (StopSignals::isStopping()) {
        return false;
    }
    countGone(entries);
    return true;
}

DocumentRecord ArchiveRun::recordOf(const ArchiveEntry& entry) const
{
    DocumentRecord record;
    record.path = entry.path;
    record.outcome = entry.outcome;
    record.reason = entry.reason;
    record.text = entry.text;
    record.earlier = m_before.standingTarget(entry.path);
    return record;
}

void ArchiveRun::planDocument(const ArchiveEntry& entry)
{
    const DocumentRecord* const known = m_before.find(entry.path);
    const std::optional<FileIdentity> earlier = m_before.standingTarget(entry.path);
    if (earlier && known->target && known->source && known->source->size == entry.size) {
        const auto identity = FileIdentity::of(m_settings.sourceOf(entry.path));
        if (identity && isDone(*known, *identity)) {
            m_now.insert(entry.path, *known);
            m_summary.addDoneBefore(*known);
            return;
        }
    }
    const QFileInfo target(m_settings.targetOf(entry.path));
    const bool hasPlace = ArchiveTree::hasPlaceFor(m_settings.target, entry.path) &&
                          target.filePath() != m_settings.report &&
                          target.filePath() != m_commandLine.page;
    const bool isTaken = target.exists() || target.isSymLink();
    const bool mayReplace = earlier || m_commandLine.forces;
    m_documents.push_back(
        {entry.path, entry.size, mayReplace, !hasPlace || (isTaken && !mayReplace), earlier});
}

bool ArchiveRun::isDone(const DocumentRecord& record, const FileIdentity& source) const
{
    const bool isVerified =
        !m_settings.verifies || record.isVerified || record.outcome == DocumentRecord::CURRENT;
    return record.source == source && isVerified;
}

void ArchiveRun::countGone(const std::vector<ArchiveEntry>& entries)
{
    std::set<QString> paths;
    for (const ArchiveEntry& entry : entries) {
        paths.insert(entry.path);
    }
    for (const DocumentRecord& record : m_before.records()) {
        if ((record.target || record.earlier) && paths.count(record.path) == 0) {
            m_now.insert(record.path, record);
            m_gone.insert(record.path);
            m_summary.addGone();
        }
    }
}

void ArchiveRun::tellWhatStandsInTheWay() const
{
    for (const PlannedDocument& document : m_documents) {
        if (document.isBlocked) {
            say(QStringLiteral("in the way, and kept: %1").arg(m_settings.targetOf(document.path)));
        }
    }
}

bool ArchiveRun::reportOwnRecords()
{
    for (const DocumentRecord& record : m_ownRecords) {
        take(record);
    }
    return m_commandLine.isTrial || m_ownRecords.empty() ||
           ArchiveReport::append(m_settings.report, m_ownRecords);
}

// What a document tells again stays as it was told first.
void ArchiveRun::take(const DocumentRecord& record)
{
    const DocumentRecord* const known = m_before.find(record.path);
    const bool isKnown = known != nullptr && known->tellsTheSameAs(record);
    m_now.insert(record.path, isKnown ? *known : record);
    m_summary.add(record);
    if (m_commandLine.isTrial) {
        std::cout << record.toLine().constData() << std::flush;
    }
}

ArchiveStatus ArchiveRun::convertAll()
{
    // One more than cores: a job that waits for its output to be synced leaves its core to another.
    const int atTheSameTime =
        m_commandLine.jobs > 0 ? m_commandLine.jobs : QThread::idealThreadCount() + 1;
    ArchiveProgress progress(QStringLiteral("documents"), static_cast<int>(m_documents.size()),
                             bytesOf(m_documents), isTerminal());
    if (!m_commandLine.machines.isEmpty()) {
        const ArchiveStatus status = convertOnMachines(progress);
        if (status != ARCHIVE_DONE) {
            return status;
        }
    }
    for (const ArchiveSchedule::Round& round : ArchiveSchedule::roundsOf(
             untoldDocuments(), atTheSameTime, ArchiveSchedule::availableMemory())) {
        const ArchiveStatus status = convertRound(round, progress);
        if (status != ARCHIVE_DONE) {
            return status;
        }
    }
    if (!takeWhatIsDoneUntold()) {
        progress.clear();
        return sayCannotWrite(m_settings.report);
    }
    const ArchiveStatus status =
        convertRound(ArchiveSchedule::oneByOne(untoldDocuments()), progress);
    progress.clear();
    return status;
}

ArchiveStatus ArchiveRun::convertOnMachines(ArchiveProgress& progress)
{
    QSet<QString> forHere;
    std::vector<PlannedDocument> documents = documentsForMachines(forHere);
    for (int round = 0; round < MOST_ROUNDS_OF_MACHINES && !documents.empty(); ++round) {
        MachinesRound machines(m_settings, m_worker, newName(m_folder + PARCELS_BEGIN));
        if (!machines.start(documents, m_commandLine.machines, m_commandLine.jobs)) {
            progress.clear();
            return sayCannotWrite(m_settings.folder());
        }
        const auto toldBefore = m_now.size();
        const ArchiveStatus status = follow(machines, progress);
        if (status != ARCHIVE_DONE) {
            return status;
        }
        forHere += machines.forHere();
        documents = documentsForMachines(forHere);
        if (m_now.size() == toldBefore) {
            break;
        }
    }
    if (!documents.empty()) {
        progress.clear();
        say(QStringLiteral("%1 documents came back from no machine; they are converted here")
                .arg(documents.size()));
    }
    return ARCHIVE_DONE;
}

std::vector<PlannedDocument> ArchiveRun::documentsForMachines(const QSet<QString>& forHere) const
{
    std::vector<PlannedDocument> documents = untoldDocuments();
    const auto staysHere = [&forHere](const PlannedDocument& document) {
        return ArchiveSchedule::isForHere(document) || forHere.contains(document.path);
    };
    documents.erase(std::remove_if(documents.begin(), documents.end(), staysHere), documents.end());
    return documents;
}

// Until the machines have told all that they will, or the run cannot go on.
ArchiveStatus ArchiveRun::follow(MachinesRound& machines, ArchiveProgress& progress)
{
    do {
        const auto records = machines.next(WAIT_MS);
        if (!records) {
            progress.clear();
            return sayCannotWrite(m_settings.report);
        }
        take(*records, progress);
        for (const QString& complaint : machines.takeComplaints()) {
            progress.clear();
            say(complaint);
        }
        if (StopSignals::isStopping()) {
            progress.clear();
            return sayStopped();
        }
        progress.show();
    } while (!machines.isOver());
    return ARCHIVE_DONE;
}

void ArchiveRun::take(const std::vector<DocumentRecord>& records, ArchiveProgress& progress)
{
    for (const DocumentRecord& record : records) {
        if (m_commandLine.isTrial) {
            progress.clear(); // the record is printed
        }
        take(record);
        progress.advance(record.source ? record.source->size : 0);
    }
}

std::vector<PlannedDocument> ArchiveRun::untoldDocuments() const
{
    std::vector<PlannedDocument> untold;
    std::copy_if(
        m_documents.begin(), m_documents.end(), std::back_inserter(untold),
        [this](const PlannedDocument& document) { return !m_now.contains(document.path); });
    return untold;
}

// A job that broke off took the documents beside the guilty one along. Some of them may stand.
bool ArchiveRun::takeWhatIsDoneUntold()
{
    const std::vector<PlannedDocument> untold = untoldDocuments();
    if (untold.empty()) {
        return true;
    }
    ArchiveHistory now(m_settings);
    if (!now.read()) {
        return false;
    }
    if (!m_commandLine.isTrial) {
        ArchiveTree::sweep(m_settings.target);
    }
    for (const PlannedDocument& document : untold) {
        // Where an earlier run's target stood nothing tells the two apart; it is written again.
        if (!document.earlier && now.standingTarget(document.path)) {
            take(*now.find(document.path));
        }
    }
    return true;
}

ArchiveStatus ArchiveRun::convertRound(const ArchiveSchedule::Round& round,
                                       ArchiveProgress& progress)
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
        say(QStringLiteral("GNU Parallel cannot be started"));
        return ARCHIVE_UNAVAILABLE;
    }
    const auto toldBefore = m_now.size();
    const ArchiveStatus status = follow(parallel, progress);
    QFile::remove(m_planFile);
    QDir(m_parallelFolder).removeRecursively();
    if (status == ARCHIVE_DONE && m_now.size() == toldBefore && parallel.exitCode() != 0 &&
        !ParallelProcess::isGnu()) {
        progress.clear();
        say(QStringLiteral("the program \"parallel\" is not GNU Parallel, or does not work"));
        return ARCHIVE_UNAVAILABLE;
    }
    return status;
}

// Until the last job has ended, or the run cannot go on.
ArchiveStatus ArchiveRun::follow(ParallelProcess& parallel, ArchiveProgress& progress)
{
    do {
        parallel.waitForReadyRead(WAIT_MS);
        readRecords(parallel, progress);
        if (StopSignals::isStopping()) {
            parallel.stopJobs();
            progress.clear();
            return sayStopped();
        }
        if (!m_problem.isEmpty()) {
            parallel.stopJobs();
            progress.clear();
            say(m_problem);
            return ARCHIVE_NOT_WRITTEN;
        }
        progress.show();
    } while (parallel.state() != QProcess::NotRunning || parallel.canReadLine());
    if (parallel.exitStatus() == QProcess::CrashExit || parallel.exitCode() == PARALLEL_FAILED) {
        // Its jobs may be at work still: nothing may be begun beside them.
        progress.clear();
        say(QStringLiteral("GNU Parallel broke off; the next run goes on from here"));
        return ARCHIVE_UNAVAILABLE;
    }
    return ARCHIVE_DONE;
}

void ArchiveRun::readRecords(ParallelProcess& parallel, ArchiveProgress& progress)
{
    while (parallel.canReadLine()) {
        const QByteArray line = parallel.readLine();
        if (const auto record = DocumentRecord::fromLine(line)) {
            take({*record}, progress);
        } else if (line.startsWith(ArchivePlan::PROBLEM)) {
            m_problem = QString::fromUtf8(line.mid(ArchivePlan::PROBLEM.size()).trimmed());
        }
    }
}

bool ArchiveRun::finishReport()
{
    for (const PlannedDocument& document : m_documents) {
        if (!m_now.contains(document.path)) {
            DocumentRecord record;
            record.path = document.path;
            record.earlier = document.earlier;
            record.reason = QStringLiteral("broke-off");
            record.text = QStringLiteral("the work on it broke off");
            take(record);
        }
    }
    if (m_commandLine.isTrial) {
        return true;
    }
    return ArchiveReport::replace(m_settings.report, m_now) &&
           (QFile::remove(m_settings.pendingReport()) ||
            !QFile::exists(m_settings.pendingReport()));
}

bool ArchiveRun::writePage() const
{
    ArchivePageContent content;
    content.source = m_settings.source;
    content.target = m_settings.target;
    content.version = QStringLiteral(ARCHIVE_VERSION);
    content.summary = m_summary.text();
    content.ended = QDateTime::currentDateTime();
    content.isTrial = m_commandLine.isTrial;
    content.records = m_now;
    content.gone = m_gone;
    return ArchivePage::replace(m_commandLine.page, content);
}

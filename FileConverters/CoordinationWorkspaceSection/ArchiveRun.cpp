#include "FileConverters/CoordinationWorkspaceSection/ArchiveRun.h"

#include "FileConverters/CoordinationWorkspaceSection/ArchiveLock.h"
#include "FileConverters/CoordinationWorkspaceSection/ArchiveProgress.h"
#include "FileConverters/CoordinationWorkspaceSection/DocumentJob.h"
#include "FileConverters/CoordinationWorkspaceSection/ParallelProcess.h"
#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/StopSignals.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <utility>

namespace {

// A job of small documents takes as long as some of the larger ones, so that what Parallel needs to
// start a job does not count, and a killed run loses little.
constexpr int MOST_DOCUMENTS_A_JOB = 64;
constexpr qint64 MOST_BYTES_A_JOB = 1000000;
constexpr int JOBS_A_CORE = 4; // at least, so that no core waits long for the last one
const QString PLAN_BEGIN = QStringLiteral("plan-");
constexpr int WAIT_MS = 100;
constexpr int PARALLEL_FAILED = 255; // apart from jobs that failed
constexpr qint64 BYTES_PER_KILOBYTE = 1024;

void say(const QString& text)
{
    writeUtf8(QStringLiteral("coordworkspace-convert-archive: %1\n").arg(text), std::cerr);
}

ArchiveStatus sayCannotWrite(const QString& what)
{
    say(QStringLiteral("%1 cannot be written: %2")
            .arg(what, QString::fromLocal8Bit(std::strerror(errno))));
    return ARCHIVE_NOT_WRITTEN;
}

qint64 availableMemory()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            const QList<QByteArray> words = line.simplified().split(' ');
            if (words[0] == "MemAvailable:" && words.size() > 1) {
                return words[1].toLongLong() * BYTES_PER_KILOBYTE;
            }
        }
    }
    return 0; // unknown: one job after the other
}

/** The documents by how many of them may be converted at the same time, most first. */
using Classes = std::map<int, std::vector<PlannedDocument>, std::greater<>>;

Classes byMemory(const std::vector<PlannedDocument>& documents, int jobs)
{
    // What a document takes at the most. Without a limit it is still what a sound one takes.
    const ArchiveSettings usual;
    const qint64 available = availableMemory();
    Classes classes;
    for (const PlannedDocument& document : documents) {
        const qint64 memory = usual.limitsFor(document.size).memoryBytes;
        const int fitting = static_cast<int>(std::clamp<qint64>(available / memory, 1, jobs));
        classes[fitting].push_back(document);
    }
    return classes;
}

std::vector<std::vector<PlannedDocument>> jobsOf(const std::vector<PlannedDocument>& documents,
                                                 int mostDocuments)
{
    std::vector<std::vector<PlannedDocument>> jobs;
    qint64 bytes = 0;
    for (const PlannedDocument& document : documents) {
        const bool fits = !jobs.empty() && bytes + document.size <= MOST_BYTES_A_JOB &&
                          static_cast<int>(jobs.back().size()) < mostDocuments;
        if (!fits) {
            jobs.emplace_back();
            bytes = 0;
        }
        jobs.back().push_back(document);
        bytes += document.size;
    }
    return jobs;
}

bool isTerminal()
{
    return ProcessSetup::isTerminal() && ProcessSetup::isErrorTerminal();
}

} // namespace

ArchiveRun::ArchiveRun(ArchiveCommandLine commandLine, QString worker)
    : m_commandLine(std::move(commandLine)), m_worker(std::move(worker)),
      m_settings(m_commandLine.settings)
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
    const bool isInTarget = m_settings.report.startsWith(m_settings.folder());
    if (!isInTarget && !ArchiveReport::mayStandIn(m_settings.report)) {
        return QStringLiteral("the report's place holds something else, or is in no folder: %1")
            .arg(m_settings.report);
    }
    return {};
}

ArchiveStatus ArchiveRun::run()
{
    if (QStandardPaths::findExecutable(QStringLiteral("parallel")).isEmpty()) {
        say(QStringLiteral("GNU Parallel is missing; its package is \"parallel\""));
        return ARCHIVE_UNAVAILABLE;
    }
    if (m_commandLine.isTrial) {
        const QTemporaryDir folder;
        m_settings.staging = folder.path();
        return runWithFolder(folder.path());
    }
    if (!StableStorage::makeFolders(m_settings.folder())) {
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
    return true;
}

ArchiveStatus ArchiveRun::runWithFolder(const QString& folder)
{
    if (!takeUp()) {
        return sayCannotWrite(m_settings.report);
    }
    plan();
    tellWhatStandsInTheWay();
    if (!reportOwnRecords()) {
        return sayCannotWrite(m_settings.report);
    }
    m_planFile =
        folder + QLatin1Char('/') + PLAN_BEGIN + QUuid::createUuid().toString(QUuid::WithoutBraces);
    const ArchiveStatus status = convertAll();
    if (status != ARCHIVE_DONE) {
        return status;
    }
    if (!finishReport()) {
        return sayCannotWrite(m_settings.report);
    }
    writeUtf8(m_summary.text() + QLatin1Char('\n'), std::cout);
    return m_summary.status(m_commandLine.failsIfLossy);
}

// Reads what earlier runs have told, and tells what a killed one did not come to tell.
bool ArchiveRun::takeUp()
{
    if (!m_commandLine.isTrial && !recoverPending()) {
        return false;
    }
    m_before = ArchiveReport::read(m_settings.report);
    return true;
}

bool ArchiveRun::recoverPending()
{
    const ArchiveReport::Records told = ArchiveReport::read(m_settings.report);
    std::vector<DocumentRecord> standing;
    for (const DocumentRecord& record : ArchiveReport::read(m_settings.pendingReport())) {
        const QString target = m_settings.target + QLatin1Char('/') + record.path;
        const auto known = told.find(record.path);
        const bool isTold = known != told.end() && known->tellsTheSameAs(record);
        if (!isTold && FileIdentity::of(target) == record.target &&
            StableStorage::syncFolder(QFileInfo(target).absolutePath())) {
            standing.push_back(record);
        }
    }
    return (standing.empty() || ArchiveReport::append(m_settings.report, standing)) &&
           (QFile::remove(m_settings.pendingReport()) ||
            !QFile::exists(m_settings.pendingReport()));
}

void ArchiveRun::plan()
{
    const std::vector<ArchiveEntry> entries = ArchiveTree::find(m_settings.source);
    for (const ArchiveEntry& entry : entries) {
        if (entry.reason.isEmpty()) {
            planDocument(entry);
            continue;
        }
        DocumentRecord record;
        record.path = entry.path;
        record.outcome = entry.reason == QLatin1String("not-readable") ? DocumentRecord::FAILED
                                                                       : DocumentRecord::REFUSED;
        record.reason = entry.reason;
        record.text = entry.text;
        record.earlier = ourTarget(entry.path);
        m_ownRecords.push_back(record);
    }
    countGone(entries);
}

void ArchiveRun::planDocument(const ArchiveEntry& entry)
{
    const QString source = m_settings.source + QLatin1Char('/') + entry.path;
    const auto known = m_before.find(entry.path);
    const std::optional<FileIdentity> earlier = ourTarget(entry.path);
    if (earlier && known->target && known->source && known->source->size == entry.size) {
        const auto identity = FileIdentity::of(source);
        if (identity && isDone(*known, *identity)) {
            m_now.insert(entry.path, *known);
            m_summary.addDoneBefore(*known);
            return;
        }
    }
    const QFileInfo target(m_settings.target + QLatin1Char('/') + entry.path);
    const bool hasPlace = ArchiveTree::hasPlaceFor(m_settings.target, entry.path);
    const bool isTaken = target.exists() || target.isSymLink();
    const bool mayReplace = earlier || m_commandLine.forces;
    m_documents.push_back(
        {entry.path, entry.size, mayReplace, !hasPlace || (isTaken && !mayReplace), earlier});
}

// What an earlier run has written, when it stands as it was.
std::optional<FileIdentity> ArchiveRun::ourTarget(const QString& path) const
{
    const auto known = m_before.find(path);
    if (known == m_before.end()) {
        return std::nullopt;
    }
    const QString target = m_settings.target + QLatin1Char('/') + path;
    const std::optional<FileIdentity> written = known->target ? known->target : known->earlier;
    const bool isIt = written && QFileInfo(target).size() == written->size &&
                      ArchiveTree::hasPlaceFor(m_settings.target, path) &&
                      FileIdentity::of(target) == written;
    return isIt ? written : std::nullopt;
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
    for (const DocumentRecord& record : qAsConst(m_before)) {
        if ((record.target || record.earlier) && paths.count(record.path) == 0) {
            m_now.insert(record.path, record);
            m_summary.addGone();
        }
    }
}

void ArchiveRun::tellWhatStandsInTheWay() const
{
    for (const PlannedDocument& document : m_documents) {
        if (document.isBlocked &&
            DocumentJob::beginsLikeXml(m_settings.source + QLatin1Char('/') + document.path)) {
            say(QStringLiteral("in the way, and kept: %1/%2")
                    .arg(m_settings.target, document.path));
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
    const auto known = m_before.find(record.path);
    const bool isKnown = known != m_before.end() && known->tellsTheSameAs(record);
    m_now.insert(record.path, isKnown ? *known : record);
    m_summary.add(record);
    if (m_commandLine.isTrial) {
        std::cout << record.toLine().constData();
    }
}

ArchiveStatus ArchiveRun::convertAll()
{
    const int cores = m_commandLine.jobs > 0 ? m_commandLine.jobs : QThread::idealThreadCount();
    qint64 bytes = 0;
    for (const PlannedDocument& document : m_documents) {
        bytes += document.size;
    }
    ArchiveProgress progress(static_cast<int>(m_documents.size()), bytes, isTerminal());
    for (const auto& [jobs, documents] : byMemory(m_documents, cores)) {
        const int share = static_cast<int>(documents.size()) / (jobs * JOBS_A_CORE);
        const int batch = std::clamp(share, 1, MOST_DOCUMENTS_A_JOB);
        const ArchiveStatus status = convertWith(documents, jobs, batch, progress);
        if (status != ARCHIVE_DONE) {
            return status;
        }
    }
    // A job that broke off took the documents beside the guilty one along.
    std::vector<PlannedDocument> left;
    std::copy_if(
        m_documents.begin(), m_documents.end(), std::back_inserter(left),
        [this](const PlannedDocument& document) { return !m_now.contains(document.path); });
    const ArchiveStatus status = convertWith(left, 1, 1, progress);
    progress.clear();
    return status;
}

ArchiveStatus ArchiveRun::convertWith(const std::vector<PlannedDocument>& documents, int jobs,
                                      int batch, ArchiveProgress& progress)
{
    if (documents.empty()) {
        return ARCHIVE_DONE;
    }
    const std::vector<PlannedJob> planned =
        ArchivePlan::write(m_planFile, m_settings, jobsOf(documents, batch));
    if (planned.empty()) {
        return sayCannotWrite(m_planFile);
    }
    const QTemporaryDir home;
    ParallelProcess parallel(m_worker, m_planFile, home.path());
    if (!parallel.startJobs(planned, jobs)) {
        say(QStringLiteral("GNU Parallel cannot be started"));
        return ARCHIVE_UNAVAILABLE;
    }
    while (parallel.state() != QProcess::NotRunning) {
        if (StopSignals::isStopping()) {
            parallel.stopJobs();
            progress.clear();
            say(QStringLiteral("stopped; the next run goes on from here"));
            return ARCHIVE_STOPPED;
        }
        parallel.waitForReadyRead(WAIT_MS);
        readRecords(parallel, progress);
        progress.show();
    }
    readRecords(parallel, progress);
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
        if (const auto record = DocumentRecord::fromLine(parallel.readLine())) {
            take(*record);
            progress.advance(record->source ? record->source->size : 0);
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
    QFile::remove(m_planFile);
    return ArchiveReport::replace(m_settings.report, m_now) &&
           (QFile::remove(m_settings.pendingReport()) ||
            !QFile::exists(m_settings.pendingReport()));
}

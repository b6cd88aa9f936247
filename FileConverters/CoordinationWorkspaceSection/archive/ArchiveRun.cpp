#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveRun.h"

#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveConversion.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchivePlaces.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSurvey.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"

#include <QStandardPaths>
#include <QTemporaryDir>

#include <iostream>
#include <utility>

namespace {

bool isMissing(const char* program)
{
    return QStandardPaths::findExecutable(QLatin1String(program)).isEmpty();
}

DocumentRecord brokenOff(const PlannedDocument& document)
{
    DocumentRecord record;
    record.path = document.path;
    record.earlier = document.earlier;
    record.reason = QStringLiteral("broke-off");
    record.text = QStringLiteral("the work on it broke off");
    return record;
}

} // namespace

ArchiveRun::ArchiveRun(ArchiveCommandLine commandLine, QString worker)
    : m_commandLine(std::move(commandLine)), m_worker(std::move(worker))
{
}

ArchiveStatus ArchiveRun::run()
{
    if (isMissing("parallel")) {
        ArchiveMessages::say(
            QStringLiteral("GNU Parallel is missing; its package is \"parallel\""));
        return ARCHIVE_UNAVAILABLE;
    }
    if (!m_commandLine.machines.isEmpty() && (isMissing("ssh") || isMissing("rsync"))) {
        ArchiveMessages::say(
            QStringLiteral("other machines are reached by ssh and rsync, of which one is missing;"
                           " their packages are \"openssh-client\" and \"rsync\""));
        return ARCHIVE_UNAVAILABLE;
    }
    // Told before the work rather than after it.
    if (!m_commandLine.page.isEmpty() && !ArchivePlaces::mayWrite(m_commandLine.page)) {
        return ArchiveMessages::sayCannotWrite(m_commandLine.page);
    }
    if (m_commandLine.isTrial) {
        const QTemporaryDir folder;
        if (!folder.isValid()) {
            return ArchiveMessages::sayCannotWrite(
                QStringLiteral("the folder for temporary files"));
        }
        m_commandLine.settings.staging = folder.path();
        return runWithFolder(folder.path());
    }
    if (!StableStorage::makeFolders(m_settings.folder()) ||
        !StableStorage::syncFolders(m_settings.folder(), m_settings.target)) {
        return ArchiveMessages::sayCannotWrite(m_settings.folder());
    }
    return runAlone();
}

ArchiveStatus ArchiveRun::runAlone()
{
    const ArchiveLock lock(m_settings.runLock(), ArchiveLock::ALONE);
    if (lock.state() == ArchiveLock::FAILED) {
        return ArchiveMessages::sayCannotWrite(m_settings.runLock());
    }
    const ArchiveLock::State former =
        lock.state() == ArchiveLock::HELD ? endFormerRun() : ArchiveLock::BUSY;
    if (former == ArchiveLock::FAILED) {
        return ArchiveMessages::sayCannotWrite(m_settings.jobsLock());
    }
    if (former == ArchiveLock::BUSY) {
        ArchiveMessages::say(QStringLiteral("another run, or what is left of one, is at work in %1")
                                 .arg(m_settings.target));
        return ARCHIVE_BUSY;
    }
    ArchiveTree::sweep(m_settings.target);
    return runWithFolder(m_settings.folder());
}

// Busy when jobs of it are at work still.
ArchiveLock::State ArchiveRun::endFormerRun() const
{
    const ArchiveLock jobs(m_settings.jobsLock(), ArchiveLock::ALONE);
    if (jobs.state() == ArchiveLock::HELD) {
        ArchiveConversion::removeRemains(m_settings.folder());
    }
    return jobs.state();
}

ArchiveStatus ArchiveRun::runWithFolder(const QString& folder)
{
    ArchiveHistory before(m_settings);
    if (!before.read()) {
        return ArchiveMessages::sayCannotRead(m_settings.report);
    }
    if (!before.reportUntold()) {
        return ArchiveMessages::sayCannotWrite(m_settings.report);
    }
    RunRecords records(before, m_settings.isTrial());
    ArchiveSurvey survey(m_commandLine, before);
    if (!survey.look(records)) {
        return ArchiveMessages::sayStopped();
    }
    tellWhatStandsInTheWay(survey.documents());
    if (!report(survey.others(), records)) {
        return ArchiveMessages::sayCannotWrite(m_settings.report);
    }
    ArchiveConversion conversion(m_commandLine, survey.documents(), records, m_worker, folder);
    const ArchiveStatus status = conversion.run();
    if (status != ARCHIVE_DONE) {
        return status;
    }
    if (!finishReport(survey.documents(), records, before)) {
        return ArchiveMessages::sayCannotWrite(m_settings.report);
    }
    writeUtf8(records.summary().text() + QLatin1Char('\n'), std::cout);
    if (!m_commandLine.page.isEmpty() && !writePage(records)) {
        return ArchiveMessages::sayCannotWrite(m_commandLine.page);
    }
    return records.summary().status(m_commandLine.failsIfLossy);
}

void ArchiveRun::tellWhatStandsInTheWay(const std::vector<PlannedDocument>& documents) const
{
    for (const PlannedDocument& document : documents) {
        if (document.isBlocked) {
            ArchiveMessages::say(
                QStringLiteral("in the way, and kept: %1").arg(m_settings.targetOf(document.path)));
        }
    }
}

bool ArchiveRun::report(const std::vector<DocumentRecord>& others, RunRecords& records) const
{
    for (const DocumentRecord& record : others) {
        records.take(record);
    }
    return m_settings.isTrial() || others.empty() ||
           ArchiveReport::append(m_settings.report, others);
}

bool ArchiveRun::finishReport(const std::vector<PlannedDocument>& documents, RunRecords& records,
                              const ArchiveHistory& before) const
{
    for (const PlannedDocument& document : records.untoldAmong(documents)) {
        records.take(brokenOff(document));
    }
    return m_settings.isTrial() ||
           (ArchiveReport::replace(m_settings.report, records.all()) && before.forgetPending());
}

bool ArchiveRun::writePage(const RunRecords& records) const
{
    ArchivePageContent content;
    content.source = m_settings.source;
    content.target = m_settings.target;
    content.version = QStringLiteral(ARCHIVE_VERSION);
    content.summary = records.summary().text();
    content.ended = QDateTime::currentDateTime();
    content.isTrial = m_settings.isTrial();
    content.records = records.all();
    content.gone = records.gone();
    return ArchivePage::replace(m_commandLine.page, content);
}

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSurvey.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveProgress.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

#include <QFileInfo>

#include <set>

bool ArchiveSurvey::look(RunRecords& records)
{
    const std::vector<ArchiveEntry> entries = ArchiveTree::find(m_settings.source);
    ArchiveProgress progress(QStringLiteral("files looked at"), entries);
    for (const ArchiveEntry& entry : entries) {
        if (StopSignals::isStopping()) {
            break;
        }
        lookAt(entry, records);
        progress.advance(entry.size);
        progress.show();
    }
    progress.clear();
    if (StopSignals::isStopping()) {
        return false;
    }
    takeGone(entries, records);
    return true;
}

void ArchiveSurvey::lookAt(const ArchiveEntry& entry, RunRecords& records)
{
    if (!entry.reason.isEmpty()) {
        m_others.push_back(leftAlone(entry));
        return;
    }
    const std::optional<FileIdentity> standing = m_before.standingTarget(entry.path);
    if (standing && isDone(entry)) {
        records.takeDoneBefore(*m_before.find(entry.path));
    } else {
        m_documents.push_back(planned(entry, standing));
    }
}

// What an earlier run has written stands; whether it is what this run would write.
bool ArchiveSurvey::isDone(const ArchiveEntry& entry) const
{
    const DocumentRecord& known = *m_before.find(entry.path);
    const bool isVerified =
        !m_settings.verifies || known.isVerified || known.outcome == DocumentRecord::CURRENT;
    return isVerified && known.target && known.source && known.source->size == entry.size &&
           FileIdentity::of(m_settings.sourceOf(entry.path)) == known.source;
}

PlannedDocument ArchiveSurvey::planned(const ArchiveEntry& entry,
                                       const std::optional<FileIdentity>& standing) const
{
    const QFileInfo target(m_settings.targetOf(entry.path));
    const bool hasPlace = Paths::hasPlaceFor(m_settings.target, entry.path) &&
                          target.filePath() != m_settings.report &&
                          target.filePath() != m_commandLine.page;
    const bool isTaken = target.exists() || target.isSymLink();
    const bool mayReplace = standing || m_commandLine.forces;
    return {entry.path, entry.size, mayReplace, !hasPlace || (isTaken && !mayReplace), standing};
}

DocumentRecord ArchiveSurvey::leftAlone(const ArchiveEntry& entry) const
{
    DocumentRecord record;
    record.path = entry.path;
    record.outcome = entry.outcome;
    record.reason = entry.reason;
    record.text = entry.text;
    record.earlier = m_before.standingTarget(entry.path);
    return record;
}

void ArchiveSurvey::takeGone(const std::vector<ArchiveEntry>& entries, RunRecords& records) const
{
    std::set<QString> paths;
    for (const ArchiveEntry& entry : entries) {
        paths.insert(entry.path);
    }
    for (const DocumentRecord& record : m_before.records()) {
        const QFileInfo target(m_settings.targetOf(record.path));
        const bool isKept = target.exists() || target.isSymLink();
        if ((record.target || record.earlier) && isKept && paths.count(record.path) == 0) {
            records.takeGone(record);
        }
    }
}

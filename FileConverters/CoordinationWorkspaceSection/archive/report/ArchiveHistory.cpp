#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveHistory.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include <QFile>
#include <QFileInfo>

bool ArchiveHistory::read()
{
    m_records = ArchiveReport::read(m_settings.report);
    const std::vector<DocumentRecord> untold = standingUntold();
    for (const DocumentRecord& record : untold) {
        m_records.insert(record.path, record);
    }
    if (m_settings.isTrial()) {
        return true;
    }
    return (untold.empty() || ArchiveReport::append(m_settings.report, untold)) &&
           (QFile::remove(m_settings.pendingReport()) ||
            !QFile::exists(m_settings.pendingReport()));
}

std::vector<DocumentRecord> ArchiveHistory::standingUntold() const
{
    std::vector<DocumentRecord> standing;
    for (const DocumentRecord& record : ArchiveReport::read(m_settings.pendingReport())) {
        const DocumentRecord* const told = find(record.path);
        if (told != nullptr && told->tellsTheSameAs(record)) {
            continue;
        }
        const QString target = m_settings.targetOf(record.path);
        const QString folder = QFileInfo(target).absolutePath();
        if (FileIdentity::of(target) == record.target &&
            (m_settings.isTrial() || StableStorage::syncFolders(folder, m_settings.target))) {
            standing.push_back(record);
        }
    }
    return standing;
}

const DocumentRecord* ArchiveHistory::find(const QString& path) const
{
    const auto known = m_records.find(path);
    return known == m_records.end() ? nullptr : &*known;
}

std::optional<FileIdentity> ArchiveHistory::standingTarget(const QString& path) const
{
    const DocumentRecord* const known = find(path);
    if (known == nullptr) {
        return std::nullopt;
    }
    const std::optional<FileIdentity> written = known->target ? known->target : known->earlier;
    const QString target = m_settings.targetOf(path);
    const bool stands = written && QFileInfo(target).size() == written->size &&
                        Paths::hasPlaceFor(m_settings.target, path) &&
                        FileIdentity::of(target) == written;
    return stands ? written : std::nullopt;
}

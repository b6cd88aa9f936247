#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveHistory.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

// A link is somebody else's, whatever it leads to.
bool isAsWritten(const QString& target, const std::optional<FileIdentity>& written)
{
    const QFileInfo standing(target);
    return written && !standing.isSymLink() && standing.size() == written->size &&
           FileIdentity::of(target) == written;
}

} // namespace

bool ArchiveHistory::read()
{
    auto reported = ArchiveReport::read(m_settings.report);
    if (!reported) {
        return false;
    }
    const auto pending = ArchiveReport::read(m_settings.pendingReport());
    if (!pending) {
        return false;
    }
    m_records = std::move(*reported);
    m_untold = standingUntold(*pending);
    for (const DocumentRecord& record : m_untold) {
        m_records.insert(record.path, record);
    }
    return true;
}

bool ArchiveHistory::reportUntold() const
{
    return m_settings.isTrial() ||
           ((m_untold.empty() || ArchiveReport::append(m_settings.report, m_untold)) &&
            forgetPending());
}

bool ArchiveHistory::forgetPending() const
{
    return QFile::remove(m_settings.pendingReport()) || !QFile::exists(m_settings.pendingReport());
}

std::vector<DocumentRecord>
ArchiveHistory::standingUntold(const ArchiveReport::Records& pending) const
{
    std::vector<DocumentRecord> standing;
    for (const DocumentRecord& record : pending) {
        const DocumentRecord* const told = find(record.path);
        if (told != nullptr && told->tellsTheSameAs(record)) {
            continue;
        }
        const QString target = m_settings.targetOf(record.path);
        const QString folder = QFileInfo(target).absolutePath();
        if (isAsWritten(target, record.target) &&
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
    const bool stands = Paths::hasPlaceFor(m_settings.target, path) &&
                        isAsWritten(m_settings.targetOf(path), written);
    return stands ? written : std::nullopt;
}

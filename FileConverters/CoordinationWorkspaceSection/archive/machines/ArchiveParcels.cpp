#include "FileConverters/CoordinationWorkspaceSection/archive/machines/ArchiveParcels.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString PLAN = QStringLiteral("plan");
const QString DOCUMENTS = QStringLiteral("in");
const QString OUTPUTS = QStringLiteral("out");
const QString STAGING = QStringLiteral("staging");
// Where GNU Parallel makes the folders of its jobs on a machine ("--workdir ...").
const QString PARALLEL_FOLDERS = QStringLiteral("/.parallel/tmp");
constexpr qint64 SECONDS_KEPT = 86400;

ArchiveSettings settingsInside(ArchiveSettings settings)
{
    const bool isTrial = settings.isTrial();
    settings.source = DOCUMENTS;
    settings.target = OUTPUTS;
    settings.report = settings.usualReport();
    settings.staging = isTrial ? STAGING : QString();
    settings.converter.clear(); // the worker's own
    settings.version = QStringLiteral(ARCHIVE_VERSION);
    return settings;
}

bool makeFolder(const QString& folder)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(folder).constData(), error);
    errno = error.value();
    return !error;
}

bool makeLink(const QString& link, const QString& file)
{
    return symlink(QFile::encodeName(file).constData(), QFile::encodeName(link).constData()) == 0;
}

bool isOld(const QFileInfo& plan)
{
    return plan.lastModified().secsTo(QDateTime::currentDateTime()) >= SECONDS_KEPT;
}

// Whether the folder of a job of Parallel's holds one of our parcels, and nobody needs it.
bool isLeftOver(const QDir& job)
{
    const QStringList folders = job.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (folders.size() != 1) {
        return false;
    }
    const QString parcel = job.filePath(folders.front());
    ArchiveSettings settings;
    settings.target = parcel + QLatin1Char('/') + OUTPUTS;
    const QFileInfo plan(parcel + QLatin1Char('/') + PLAN);
    if (!plan.isFile() || !isOld(plan) || !QFileInfo(settings.folder()).isDir()) {
        return false;
    }
    return ArchiveLock(settings.jobsLock(), ArchiveLock::ALONE).state() == ArchiveLock::HELD;
}

} // namespace

ArchiveParcels::ArchiveParcels(const ArchiveSettings& settings, QString folder)
    : m_settings(settings), m_folder(std::move(folder))
{
}

ArchiveParcels::~ArchiveParcels()
{
    remove(m_folder);
}

QString ArchiveParcels::folderOf(int parcel) const
{
    return m_folder + QLatin1Char('/') + QString::number(parcel);
}

std::optional<PlannedJob> ArchiveParcels::pack(const std::vector<PlannedDocument>& documents)
{
    ArchiveSettings settings = settingsInside(m_settings);
    const QString parcel = folderOf(++m_count) + QLatin1Char('/');
    if (!makeFolder(parcel + settings.folder())) {
        return std::nullopt;
    }
    std::vector<PlannedDocument> inside = documents;
    for (PlannedDocument& document : inside) {
        m_untold[m_count].insert(document.path, document);
        // What a cut-off worker has left there is in nobody's way.
        document.mayReplace = true;
        const QString link = parcel + settings.sourceOf(document.path);
        if (!makeFolder(link.left(link.lastIndexOf(QLatin1Char('/')))) ||
            !makeLink(link, m_settings.sourceOf(document.path))) {
            return std::nullopt;
        }
    }
    const std::vector<PlannedJob> planned = ArchivePlan::write(parcel + PLAN, settings, {inside});
    return planned.empty() ? std::nullopt : std::optional(planned.front());
}

const PlannedDocument* ArchiveParcels::find(int parcel, const QString& path) const
{
    const auto untold = m_untold.find(parcel);
    if (untold == m_untold.end()) {
        return nullptr;
    }
    const auto document = untold->second.constFind(path);
    return document == untold->second.constEnd() ? nullptr : &*document;
}

QString ArchiveParcels::output(int parcel, const QString& path) const
{
    const QString outputs = folderOf(parcel) + QLatin1Char('/') + OUTPUTS;
    const QString file = outputs + QLatin1Char('/') + path;
    struct stat status = {};
    // What came back may be anything: links on the way or in its place are not followed.
    const bool isFile = Paths::hasPlaceFor(outputs, path) &&
                        lstat(QFile::encodeName(file).constData(), &status) == 0 &&
                        S_ISREG(status.st_mode);
    return isFile ? file : QString();
}

void ArchiveParcels::finish(int parcel, const QString& path)
{
    const auto untold = m_untold.find(parcel);
    if (untold == m_untold.end()) {
        return;
    }
    untold->second.remove(path);
    if (untold->second.isEmpty()) {
        m_untold.erase(untold);
        remove(folderOf(parcel));
    }
}

// Qt's way changes the permissions of what it cannot remove, and of what a link leads to.
void ArchiveParcels::remove(const QString& folder)
{
    std::error_code ignored;
    std::filesystem::remove_all(QFile::encodeName(folder).constData(), ignored);
}

QString ArchiveParcels::objection(const ArchiveSettings& settings)
{
    const QString ours = QStringLiteral(ARCHIVE_VERSION);
    return settings.version.isEmpty() || settings.version == ours
               ? QString()
               : QStringLiteral("version %1 is installed here, and version %2 hands out the work")
                     .arg(ours, settings.version);
}

void ArchiveParcels::sweepBeside(const QString& plan)
{
    const QDir job = QFileInfo(QFileInfo(plan).absolutePath()).absoluteDir();
    QDir jobs = job;
    if (!jobs.cdUp() || !jobs.absolutePath().endsWith(PARALLEL_FOLDERS)) {
        return;
    }
    for (const QString& name : jobs.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QDir other(jobs.filePath(name));
        if (other != job && isLeftOver(other)) {
            remove(other.path());
        }
    }
}

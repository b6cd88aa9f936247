#include "FileConverters/CoordinationWorkspaceSection/archive/ArchivePlaces.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace {

// Each of these returns what is wrong, and nothing when nothing is.

QString objectionToFolders(const ArchiveSettings& settings)
{
    const QFileInfo source(settings.source);
    const QFileInfo target(settings.target);
    if (!source.isDir()) {
        return QStringLiteral("SOURCE is no folder: %1").arg(settings.source);
    }
    if (!source.isReadable() || !source.isExecutable()) {
        return QStringLiteral("SOURCE may not be read: %1").arg(settings.source);
    }
    if (target.exists() && !target.isDir()) {
        return QStringLiteral("TARGET is no folder: %1").arg(settings.target);
    }
    if (Paths::overlap(settings.source, settings.target)) {
        return QStringLiteral("SOURCE and TARGET are the same folder, or one is inside the other");
    }
    return {};
}

QString objectionToReport(const ArchiveSettings& settings)
{
    if (Paths::overlap(settings.source, settings.report)) {
        return QStringLiteral("the report is inside SOURCE, where nothing is written");
    }
    if (settings.report == settings.usualReport()) {
        return {}; // in a folder that the run makes
    }
    if (Paths::overlap(settings.folder(), settings.report)) {
        return QStringLiteral("the report is among the files that a run keeps for itself: %1")
            .arg(settings.report);
    }
    const QString folder = QFileInfo(settings.report).absolutePath();
    const bool hasFolder = QFileInfo(folder).isDir() || folder == settings.target;
    if (!hasFolder || !ArchiveReport::mayStandIn(settings.report)) {
        return QStringLiteral("the report's place holds something else, or is in no folder: %1")
            .arg(settings.report);
    }
    return {};
}

QString objectionToPage(const ArchiveCommandLine& line)
{
    if (line.page.isEmpty()) {
        return {};
    }
    const ArchiveSettings& settings = line.settings;
    const QString folder = QFileInfo(line.page).absolutePath();
    if (Paths::overlap(settings.source, line.page)) {
        return QStringLiteral("the page is inside SOURCE, where nothing is written");
    }
    if (line.page == settings.report || Paths::overlap(settings.folder(), line.page)) {
        return QStringLiteral("the page is among the files that a run keeps for itself: %1")
            .arg(line.page);
    }
    const bool hasFolder =
        QFileInfo(folder).isDir() || (folder == settings.target && !line.isTrial);
    if (!hasFolder || !ArchivePage::mayStandIn(line.page)) {
        return QStringLiteral("the page's place holds something else, or is in no folder: %1")
            .arg(line.page);
    }
    return {};
}

} // namespace

QString ArchivePlaces::objection(const ArchiveCommandLine& line)
{
    QString objection = objectionToFolders(line.settings);
    if (objection.isEmpty()) {
        objection = objectionToReport(line.settings);
    }
    return objection.isEmpty() ? objectionToPage(line) : objection;
}

bool ArchivePlaces::mayWrite(const QString& file)
{
    const QString folder = QFileInfo(file).absolutePath();
    return !QFileInfo::exists(folder) ||
           access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
}

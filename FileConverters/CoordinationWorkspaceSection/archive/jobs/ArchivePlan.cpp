#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray lineOf(const PlannedDocument& document)
{
    JsonLine line;
    line.add("path", document.path);
    line.add("size", document.size);
    line.add("mayReplace", document.mayReplace);
    line.add("isBlocked", document.isBlocked);
    if (document.earlier) {
        document.earlier->addTo(line, "earlier");
    }
    return line.take();
}

PlannedDocument documentFrom(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    return {object["path"].toString(), static_cast<qint64>(object["size"].toDouble()),
            object["mayReplace"].toBool(), object["isBlocked"].toBool(),
            FileIdentity::fromJson(object["earlier"])};
}

void resolve(QString& path, const QDir& folder)
{
    if (!path.isEmpty()) {
        path = folder.absoluteFilePath(path);
    }
}

} // namespace

std::vector<PlannedJob> ArchivePlan::write(const QString& file, const ArchiveSettings& settings,
                                           const std::vector<std::vector<PlannedDocument>>& jobs)
{
    QFile plan(file);
    if (!plan.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return {};
    }
    plan.write(settings.toLine());
    std::vector<PlannedJob> planned;
    for (const std::vector<PlannedDocument>& job : jobs) {
        planned.push_back({plan.pos(), static_cast<int>(job.size())});
        for (const PlannedDocument& document : job) {
            plan.write(lineOf(document));
        }
    }
    return plan.flush() && plan.error() == QFileDevice::NoError ? planned
                                                                : std::vector<PlannedJob>();
}

std::vector<PlannedDocument> ArchivePlan::read(const QString& file, const PlannedJob& job,
                                               ArchiveSettings& settings)
{
    QFile plan(file);
    if (!plan.open(QIODevice::ReadOnly)) {
        return {};
    }
    settings = ArchiveSettings::fromLine(plan.readLine());
    const QDir folder = QFileInfo(file).absoluteDir();
    for (QString* const path :
         {&settings.source, &settings.target, &settings.report, &settings.staging}) {
        resolve(*path, folder);
    }
    std::vector<PlannedDocument> documents;
    if (plan.seek(job.offset)) {
        for (int i = 0; i < job.count; ++i) {
            documents.push_back(documentFrom(plan.readLine()));
        }
    }
    return documents;
}

#include "FileConverters/CoordinationWorkspaceSection/ArchivePlan.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray lineOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject objectOf(const PlannedDocument& document)
{
    return {{"path", document.path},
            {"size", document.size},
            {"mayReplace", document.mayReplace},
            {"isBlocked", document.isBlocked},
            {"earlier", document.earlier ? document.earlier->toJson() : QJsonValue()}};
}

PlannedDocument documentFrom(const QJsonObject& object)
{
    return {object["path"].toString(), static_cast<qint64>(object["size"].toDouble()),
            object["mayReplace"].toBool(), object["isBlocked"].toBool(),
            FileIdentity::fromJson(object["earlier"])};
}

QJsonObject readObject(QFile& file)
{
    return QJsonDocument::fromJson(file.readLine()).object();
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
    plan.write(lineOf(settings.toJson()));
    std::vector<PlannedJob> planned;
    for (const std::vector<PlannedDocument>& job : jobs) {
        planned.push_back({plan.pos(), static_cast<int>(job.size())});
        for (const PlannedDocument& document : job) {
            plan.write(lineOf(objectOf(document)));
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
    settings = ArchiveSettings::fromJson(readObject(plan));
    const QDir folder = QFileInfo(file).absoluteDir();
    for (QString* const path :
         {&settings.source, &settings.target, &settings.report, &settings.staging}) {
        resolve(*path, folder);
    }
    std::vector<PlannedDocument> documents;
    if (plan.seek(job.offset)) {
        for (int i = 0; i < job.count; ++i) {
            documents.push_back(documentFrom(readObject(plan)));
        }
    }
    return documents;
}

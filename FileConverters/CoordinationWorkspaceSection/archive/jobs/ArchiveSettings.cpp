#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr qint64 MEGABYTE = 1000000;
constexpr qint64 BASE_MILLISECONDS = 10000;
constexpr qint64 MILLISECONDS_PER_MEGABYTE = 1000;
constexpr qint64 BASE_MEMORY = 256 * MEGABYTE;
constexpr qint64 MEMORY_PER_BYTE = 64;

void add(JsonLine& line, const char* key, const std::optional<qint64>& number)
{
    if (number) {
        line.add(key, *number);
    }
}

std::optional<qint64> numberFrom(const QJsonValue& value)
{
    return value.isDouble() ? std::optional(static_cast<qint64>(value.toDouble())) : std::nullopt;
}

} // namespace

ProcessLimits ArchiveSettings::limitsFor(qint64 size) const
{
    const qint64 usual = BASE_MILLISECONDS + MILLISECONDS_PER_MEGABYTE * size / MEGABYTE;
    return {memoryBytes.value_or(BASE_MEMORY + MEMORY_PER_BYTE * size),
            milliseconds.value_or(usual)};
}

QByteArray ArchiveSettings::toLine() const
{
    JsonLine line;
    line.add("source", source);
    line.add("target", target);
    line.add("report", report);
    line.add("converter", converter);
    line.add("staging", staging);
    line.add("version", version);
    add(line, "milliseconds", milliseconds);
    add(line, "memoryBytes", memoryBytes);
    line.add("onlyClean", onlyClean);
    line.add("verifies", verifies);
    return line.take();
}

ArchiveSettings ArchiveSettings::fromLine(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    ArchiveSettings settings;
    settings.source = object["source"].toString();
    settings.target = object["target"].toString();
    settings.report = object["report"].toString();
    settings.converter = object["converter"].toString();
    settings.staging = object["staging"].toString();
    settings.version = object["version"].toString();
    settings.milliseconds = numberFrom(object["milliseconds"]);
    settings.memoryBytes = numberFrom(object["memoryBytes"]);
    settings.onlyClean = object["onlyClean"].toBool();
    settings.verifies = object["verifies"].toBool();
    return settings;
}

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Changes only when a program that knows the number before could misread a line.
constexpr int FORMAT = 1;
constexpr double MILLISECONDS = 1000.0;
// What another machine tells may be anything.
constexpr double MOST_SECONDS = 1e9;

// In the order of the outcomes.
constexpr std::array OUTCOMES = {"converted", "current", "lossy", "refused", "limit", "failed"};

void addLosses(const std::vector<LossSummary>& losses, JsonLine& line)
{
    line.beginArray("losses");
    for (const LossSummary& loss : losses) {
        line.beginObject();
        line.add("count", loss.count);
        line.add("kind", loss.kind);
        line.add("line", loss.line);
        line.add("path", loss.path);
        line.add("text", loss.text);
        line.endObject();
    }
    line.endArray();
}

std::vector<LossSummary> lossesFrom(const QJsonArray& array)
{
    std::vector<LossSummary> losses;
    for (const QJsonValue& loss : array) {
        losses.push_back({loss["kind"].toString(), loss["count"].toInt(), loss["line"].toInt(),
                          loss["path"].toString(), loss["text"].toString()});
    }
    return losses;
}

} // namespace

QString DocumentRecord::nameOf(Outcome outcome)
{
    return QLatin1String(OUTCOMES[static_cast<std::size_t>(outcome)]);
}

// In the order of the keys' names, by which reports have always stood.
QByteArray DocumentRecord::toLine() const
{
    JsonLine line;
    if (earlier) {
        earlier->addTo(line, "earlier");
    }
    line.add("format", FORMAT);
    addLosses(losses, line);
    line.add("outcome", nameOf(outcome));
    line.add("path", path);
    if (!reason.isEmpty()) {
        line.add("reason", reason);
    }
    line.add("seconds", std::round(seconds * MILLISECONDS) / MILLISECONDS);
    if (source) {
        source->addTo(line, "source");
    }
    if (systems) {
        ChangedSystem::addTo(line, "systems", *systems);
    }
    if (target) {
        target->addTo(line, "target");
    }
    if (!reason.isEmpty()) {
        line.add("text", text);
    }
    line.add("verified", isVerified);
    return line.take();
}

std::optional<DocumentRecord> DocumentRecord::fromLine(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const auto* const outcome =
        std::find_if(OUTCOMES.begin(), OUTCOMES.end(),
                     [&](const char* name) { return object["outcome"] == QLatin1String(name); });
    if (object["format"] != FORMAT || outcome == OUTCOMES.end()) {
        return std::nullopt;
    }
    DocumentRecord record;
    record.path = object["path"].toString();
    record.outcome = static_cast<Outcome>(outcome - OUTCOMES.begin());
    record.reason = object["reason"].toString();
    record.text = object["text"].toString();
    record.source = FileIdentity::fromJson(object["source"]);
    record.target = FileIdentity::fromJson(object["target"]);
    record.earlier = FileIdentity::fromJson(object["earlier"]);
    record.losses = lossesFrom(object["losses"].toArray());
    record.systems = ChangedSystem::fromJson(object["systems"]);
    record.isVerified = object["verified"].toBool();
    record.seconds = std::clamp(object["seconds"].toDouble(), 0.0, MOST_SECONDS);
    return record;
}

bool DocumentRecord::tellsTheSameAs(const DocumentRecord& other) const
{
    DocumentRecord sameTime = other;
    sameTime.seconds = seconds;
    return toLine() == sameTime.toLine();
}

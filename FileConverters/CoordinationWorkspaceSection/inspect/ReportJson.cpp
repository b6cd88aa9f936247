#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportJson.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Report.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Spacings.h"

#include <boost/uuid/uuid_io.hpp>

#include <array>

namespace {

// Keys stand in the order of their names, as they have since the first report.

void addError(const ReadError& error, JsonLine& line)
{
    line.beginObject("error");
    line.add("kind", error.kind);
    if (error.line > 0) {
        line.add("line", error.line);
    }
    line.add("text", error.text);
    line.endObject();
}

template <typename Item>
void addItems(const char* key, const std::vector<Item>& items, JsonLine& line)
{
    line.beginArray(key);
    for (const Item& item : items) {
        line.beginObject();
        line.add("kind", Item::nameOf(item.kind));
        line.add("line", item.place.line);
        line.add("path", item.place.path);
        line.add("text", item.text);
        line.endObject();
    }
    line.endArray();
}

template <typename Value>
void addChange(const char* key, const Value& before, const Value& after, JsonLine& line)
{
    line.beginObject(key);
    line.add("after", after);
    line.add("before", before);
    line.endObject();
}

QString text(const std::string& field)
{
    return QString(field.c_str()); // fields are written up to their first NUL
}

void addSystem(const InspectedSystem& system, JsonLine& line)
{
    line.beginObject();
    line.add("band", text(system.key.band));
    line.add("incl_group", text(system.key.inclGroup));
    addChange("name", system.oldName, text(system.after.name), line);
    line.add("profile_id", text(boost::uuids::to_string(system.after.id)));
    line.add("series", text(system.key.series));
    line.beginObject("spacings");
    for (const Spacing& spacing : SPACINGS_OF_SYSTEM) {
        addChange(spacing.element, system.before.*spacing.field, system.after.*spacing.field, line);
    }
    line.endObject();
    line.add("tx_profile", text(system.key.txProfile));
    line.add("zone", text(system.key.zone));
    line.endObject();
}

void addSystems(const std::vector<InspectedSystem>& systems, JsonLine& line)
{
    line.beginArray("systems");
    for (const InspectedSystem& system : systems) {
        addSystem(system, line);
    }
    line.endArray();
}

void addSection(const Inspection& inspection, JsonLine& line)
{
    if (!inspection.verdict) {
        line.addNull("section");
        return;
    }
    // In the order of the verdicts.
    constexpr std::array VERDICTS = {"invalid", "current", "convertible", "no-conversion",
                                     "too-new"};
    line.beginObject("section");
    line.add("name", "coordinated_data_root");
    line.add("verdict", VERDICTS[static_cast<std::size_t>(*inspection.verdict)]);
    if (inspection.version.isNull()) {
        line.addNull("version");
    } else {
        line.add("version", inspection.version);
    }
    line.endObject();
}

void addCounts(const Inspection& inspection, JsonLine& line)
{
    line.beginObject("counts");
    line.add("channels", inspection.channels);
    line.add("configurations", inspection.configurations);
    line.add("profiles", inspection.profiles);
    line.add("systems", static_cast<int>(inspection.systems.size()));
    line.endObject();
}

QByteArray endWithStatus(JsonLine& line, int status)
{
    line.add("format", ReportJson::FORMAT);
    line.add("status", status);
    return line.take();
}

QByteArray lineOf(const QString& document, const Inspection& inspection, int status)
{
    // In the order of the advices.
    constexpr std::array ADVICES = {"convert", "review",  "too-old",
                                    "current", "too-new", "impossible"};
    JsonLine line;
    line.add("advice", ADVICES[static_cast<std::size_t>(inspection.advice)]);
    addCounts(inspection, line);
    line.add("document", document);
    line.add("format", ReportJson::FORMAT);
    addItems("losses", inspection.losses, line);
    addItems("notes", inspection.notes, line);
    addSection(inspection, line);
    line.add("status", status);
    addSystems(inspection.systems, line);
    return line.take();
}

} // namespace

QByteArray ReportJson::of(const DocumentReport& report)
{
    const int status = statusOf(report);
    if (const auto* inspection = std::get_if<Inspection>(&report.result)) {
        return lineOf(report.document, *inspection, status);
    }
    JsonLine line;
    line.add("document", report.document);
    addError(std::get<ReadError>(report.result), line);
    return endWithStatus(line, status);
}

QByteArray ReportJson::of(const VerificationReport& report)
{
    JsonLine line;
    line.add("after", report.after);
    line.add("before", report.before);
    if (const auto* error = std::get_if<ReadError>(&report.result)) {
        addError(*error, line);
    } else {
        addItems("differences", std::get<Verification>(report.result).differences, line);
    }
    return endWithStatus(line, statusOf(report));
}

QByteArray ReportJson::ofUsageError(const QString& text)
{
    JsonLine line;
    addError({QStringLiteral("usage"), text}, line);
    return endWithStatus(line, STATUS_USAGE);
}

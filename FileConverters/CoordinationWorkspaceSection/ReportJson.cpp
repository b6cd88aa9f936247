#include "FileConverters/CoordinationWorkspaceSection/ReportJson.h"

#include "FileConverters/CoordinationWorkspaceSection/Report.h"
#include "FileConverters/CoordinationWorkspaceSection/Spacings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <boost/uuid/uuid_io.hpp>

#include <array>

namespace {

QByteArray lineOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject reportWithStatus(int status)
{
    return {{"format", ReportJson::FORMAT}, {"status", status}};
}

QJsonObject errorObject(const ReadError& error)
{
    QJsonObject object = {{"kind", error.kind}, {"text", error.text}};
    if (error.line > 0) {
        object.insert("line", error.line);
    }
    return object;
}

template <typename Item>
QJsonArray arrayOf(const std::vector<Item>& items)
{
    QJsonArray array;
    for (const Item& item : items) {
        array.append(QJsonObject{{"kind", Item::nameOf(item.kind)},
                                 {"line", item.place.line},
                                 {"path", item.place.path},
                                 {"text", item.text}});
    }
    return array;
}

QString text(const std::string& field)
{
    return QString(field.c_str()); // fields are written up to their first NUL
}

QJsonObject systemObject(const InspectedSystem& system)
{
    QJsonObject spacings;
    for (const Spacing& spacing : SPACINGS_OF_SYSTEM) {
        spacings.insert(QLatin1String(spacing.element),
                        QJsonObject{{"before", system.before.*spacing.field},
                                    {"after", system.after.*spacing.field}});
    }
    return {{"zone", text(system.key.zone)},
            {"series", text(system.key.series)},
            {"band", text(system.key.band)},
            {"tx_profile", text(system.key.txProfile)},
            {"incl_group", text(system.key.inclGroup)},
            {"profile_id", text(boost::uuids::to_string(system.after.id))},
            {"name", QJsonObject{{"before", system.oldName}, {"after", text(system.after.name)}}},
            {"spacings", spacings}};
}

QJsonArray systemArray(const std::vector<InspectedSystem>& systems)
{
    QJsonArray array;
    for (const InspectedSystem& system : systems) {
        array.append(systemObject(system));
    }
    return array;
}

QJsonValue sectionValue(const Inspection& inspection)
{
    if (!inspection.verdict) {
        return QJsonValue::Null;
    }
    // In the order of the verdicts.
    constexpr std::array VERDICTS = {"invalid", "current", "convertible", "no-conversion",
                                     "too-new"};
    const QJsonValue version =
        inspection.version.isNull() ? QJsonValue::Null : QJsonValue(inspection.version);
    return QJsonObject{
        {"name", "coordinated_data_root"},
        {"version", version},
        {"verdict", QLatin1String(VERDICTS[static_cast<std::size_t>(*inspection.verdict)])}};
}

void insertInspection(const Inspection& inspection, QJsonObject& report)
{
    // In the order of the advices.
    constexpr std::array ADVICES = {"convert", "review",  "too-old",
                                    "current", "too-new", "impossible"};
    report.insert("advice", QLatin1String(ADVICES[static_cast<std::size_t>(inspection.advice)]));
    report.insert("section", sectionValue(inspection));
    report.insert("counts", QJsonObject{{"channels", inspection.channels},
                                        {"configurations", inspection.configurations},
                                        {"profiles", inspection.profiles},
                                        {"systems", static_cast<int>(inspection.systems.size())}});
    report.insert("systems", systemArray(inspection.systems));
    report.insert("losses", arrayOf(inspection.losses));
    report.insert("notes", arrayOf(inspection.notes));
}

} // namespace

QByteArray ReportJson::of(const DocumentReport& report)
{
    QJsonObject object = reportWithStatus(statusOf(report));
    object.insert("document", report.document);
    if (const auto* error = std::get_if<ReadError>(&report.result)) {
        object.insert("error", errorObject(*error));
    } else {
        insertInspection(std::get<Inspection>(report.result), object);
    }
    return lineOf(object);
}

QByteArray ReportJson::of(const VerificationReport& report)
{
    QJsonObject object = reportWithStatus(statusOf(report));
    object.insert("before", report.before);
    object.insert("after", report.after);
    if (const auto* error = std::get_if<ReadError>(&report.result)) {
        object.insert("error", errorObject(*error));
    } else {
        object.insert("differences", arrayOf(std::get<Verification>(report.result).differences));
    }
    return lineOf(object);
}

QByteArray ReportJson::ofUsageError(const QString& text)
{
    QJsonObject object = reportWithStatus(STATUS_USAGE);
    object.insert("error", QJsonObject{{"kind", "usage"}, {"text", text}});
    return lineOf(object);
}

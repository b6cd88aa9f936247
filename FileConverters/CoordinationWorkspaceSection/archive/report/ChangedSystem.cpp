#include "FileConverters/CoordinationWorkspaceSection/archive/report/ChangedSystem.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Spacings.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

static_assert(SPACINGS_OF_SYSTEM.size() == ChangedSystem::SPACING_COUNT);

QString text(const std::string& field)
{
    return QString(field.c_str()); // fields are written up to their first NUL
}

ChangedSystem changedFrom(const InspectedSystem& system)
{
    ChangedSystem changed;
    changed.zone = text(system.key.zone);
    changed.series = text(system.key.series);
    changed.band = text(system.key.band);
    changed.txProfile = text(system.key.txProfile);
    changed.inclGroup = text(system.key.inclGroup);
    changed.nameBefore = system.oldName;
    changed.nameAfter = text(system.after.name);
    std::transform(
        SPACINGS_OF_SYSTEM.begin(), SPACINGS_OF_SYSTEM.end(), changed.spacings.begin(),
        [&](const Spacing& spacing) {
            return ChangedSystem::Change{system.before.*spacing.field, system.after.*spacing.field};
        });
    return changed;
}

bool isChanged(const ChangedSystem& system)
{
    return std::any_of(system.spacings.begin(), system.spacings.end(),
                       [](const ChangedSystem::Change& change) { return change.isThere(); });
}

// Reports hold many systems: what does not change is left to the inspector.
void addSpacings(const ChangedSystem& system, JsonLine& line)
{
    line.beginObject("spacings");
    for (std::size_t i = 0; i < system.spacings.size(); ++i) {
        const ChangedSystem::Change& change = system.spacings[i];
        if (change.isThere()) {
            line.beginObject(SPACINGS_OF_SYSTEM[i].element);
            line.add("after", change.after);
            line.add("before", change.before);
            line.endObject();
        }
    }
    line.endObject();
}

void addSystem(const ChangedSystem& system, JsonLine& line)
{
    line.beginObject();
    line.add("band", system.band);
    line.add("incl_group", system.inclGroup);
    line.beginObject("name");
    line.add("after", system.nameAfter);
    line.add("before", system.nameBefore);
    line.endObject();
    line.add("series", system.series);
    addSpacings(system, line);
    line.add("tx_profile", system.txProfile);
    line.add("zone", system.zone);
    line.endObject();
}

// A plain literal would be made a QString at each look, a quarter of the time of reading a record.
using Key = QLatin1String;

ChangedSystem systemFrom(const QJsonValue& object)
{
    ChangedSystem system;
    system.zone = object[Key("zone")].toString();
    system.series = object[Key("series")].toString();
    system.band = object[Key("band")].toString();
    system.txProfile = object[Key("tx_profile")].toString();
    system.inclGroup = object[Key("incl_group")].toString();
    system.nameBefore = object[Key("name")][Key("before")].toString();
    system.nameAfter = object[Key("name")][Key("after")].toString();
    const QJsonValue spacings = object[Key("spacings")];
    std::transform(SPACINGS_OF_SYSTEM.begin(), SPACINGS_OF_SYSTEM.end(), system.spacings.begin(),
                   [&](const Spacing& spacing) {
                       const QJsonValue change = spacings[QLatin1String(spacing.element)];
                       return ChangedSystem::Change{change[Key("before")].toInt(),
                                                    change[Key("after")].toInt()};
                   });
    return system;
}

} // namespace

QVector<ChangedSystem> ChangedSystem::among(const std::vector<InspectedSystem>& systems)
{
    QVector<ChangedSystem> changed;
    for (const InspectedSystem& system : systems) {
        const ChangedSystem candidate = changedFrom(system);
        if (isChanged(candidate)) {
            changed.append(candidate);
        }
    }
    return changed;
}

QString ChangedSystem::headingOf(std::size_t spacing)
{
    return QLatin1String(SPACINGS_OF_SYSTEM[spacing].heading);
}

void ChangedSystem::addTo(JsonLine& line, const char* key, const QVector<ChangedSystem>& systems)
{
    line.beginArray(key);
    for (const ChangedSystem& system : systems) {
        addSystem(system, line);
    }
    line.endArray();
}

std::optional<QVector<ChangedSystem>> ChangedSystem::fromJson(const QJsonValue& array)
{
    if (!array.isArray()) {
        return std::nullopt;
    }
    const QJsonArray values = array.toArray();
    QVector<ChangedSystem> systems;
    for (const QJsonValue& system : values) {
        systems.append(systemFrom(system));
    }
    return systems;
}

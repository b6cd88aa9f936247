#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <array>
#include <optional>
#include <vector>

class JsonLine;
class QJsonValue;
struct InspectedSystem;

/** A system some of whose spacings are others after the conversion. */
struct ChangedSystem
{
    static constexpr std::size_t SPACING_COUNT = 6;

    /** In kHz. Before and after are the same, and say nothing, where it does not change. */
    struct Change
    {
        int before = 0;
        int after = 0;

        bool isThere() const { return before != after; }
    };

    // What names the system.
    QString zone;
    QString series;
    QString band;
    QString txProfile;
    QString inclGroup;

    QString nameBefore; ///< of the profile; empty when it has none
    QString nameAfter;
    std::array<Change, SPACING_COUNT> spacings; ///< in the order of documents

    /** The texts that name it, in the order of the key. */
    QStringList key() const { return {zone, series, band, txProfile, inclGroup}; }

    /** Those that change among the systems of a document, in the same order. */
    static QVector<ChangedSystem> among(const std::vector<InspectedSystem>& systems);

    /** What people call a spacing. */
    static QString headingOf(std::size_t spacing);

    static void addTo(JsonLine& line, const char* key, const QVector<ChangedSystem>& systems);

    /** @return none when the value is no array. */
    static std::optional<QVector<ChangedSystem>> fromJson(const QJsonValue& array);
};

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/FileIdentity.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ChangedSystem.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/** What a conversion loses of one kind; the kinds are the inspector's. */
struct LossSummary
{
    QString kind;
    int count = 0;
    int line = 0; ///< of the first
    QString path; ///< of the first
    QString text; ///< of the first
};

/** What became of one document of an archive. */
struct DocumentRecord
{
    enum Outcome {
        CONVERTED, ///< and nothing was lost
        CURRENT,   ///< of the current version already: copied
        LOSSY,     ///< converts with losses, or is older than what is known to convert
        REFUSED,   ///< left alone
        LIMIT,     ///< would take more than one document may
        FAILED,    ///< should convert, and does not
    };

    QString path; ///< below the archive's folder
    Outcome outcome = FAILED;
    QString reason;                     ///< why, for programs; empty where the outcome says it all
    QString text;                       ///< why, for people
    std::optional<FileIdentity> source; ///< none when it was not read
    std::optional<FileIdentity> target; ///< none when nothing was written
    std::optional<FileIdentity>
        earlier; ///< what a run wrote for a former version, and still stands
    std::vector<LossSummary> losses;
    /** Those whose spacings change; none where it was not found out, as in older reports. */
    std::optional<QVector<ChangedSystem>> systems;
    bool isVerified = false; ///< the target was compared with the source by a reading of its own
    double seconds = 0;      ///< of wall time, from its hash to its output, before that is synced

    /** One line of a report: a JSON object (RFC 8259) in UTF-8, with a line feed at its end. */
    QByteArray toLine() const;

    /** @return none when the line is no such record. */
    static std::optional<DocumentRecord> fromLine(const QByteArray& line);

    static QString nameOf(Outcome outcome);

    /** Whether both tell the same; how long it took does not matter. */
    bool tellsTheSameAs(const DocumentRecord& other) const;
};

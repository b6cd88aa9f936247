#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"

#include <QByteArray>
#include <QString>

#include <optional>

/** How the documents of an archive are converted. */
struct ArchiveSettings
{
    QString source;    ///< the archive's folder, absolute and without links
    QString target;    ///< where converted documents stand, likewise
    QString report;    ///< the report's file, absolute
    QString converter; ///< the program that converts one document; empty for the worker's own
    QString staging;   ///< where outputs are written for a trial; empty when they are to stand
    QString version;   ///< of the worker that may do the work; empty for any
    std::optional<qint64>
        milliseconds;                  ///< for each document; 0 for no limit; by default its size's
    std::optional<qint64> memoryBytes; ///< for each document; 0 for no limit; by default its size's
    bool onlyClean = false;
    bool verifies = false;

    /** Whether nothing is to be written where it would stand. */
    bool isTrial() const { return !staging.isEmpty(); }

    /** What a document of @p size bytes may take. */
    ProcessLimits limitsFor(qint64 size) const;

    /** As a JSON object (RFC 8259) on a line. */
    QByteArray toLine() const;
    static ArchiveSettings fromLine(const QByteArray& line);

    /** Where the document of a path stands, and its output will. */
    QString sourceOf(const QString& path) const { return source + QLatin1Char('/') + path; }
    QString targetOf(const QString& path) const { return target + QLatin1Char('/') + path; }

    /** The folder of a run's own files in the target. */
    QString folder() const { return target + QLatin1Char('/') + FOLDER; }

    /** Where the report stands when nothing else is asked for. */
    QString usualReport() const { return folder() + QStringLiteral("/report.jsonl"); }

    /** What a run holds alone, and what its jobs hold together. */
    QString runLock() const { return folder() + QStringLiteral("/lock"); }
    QString jobsLock() const { return folder() + QStringLiteral("/jobs"); }

    /** What will stand when the report tells it; the lines that it gets then. */
    QString pendingReport() const { return folder() + QStringLiteral("/pending.jsonl"); }

    static inline const QString FOLDER = QStringLiteral(".coordworkspace");
};

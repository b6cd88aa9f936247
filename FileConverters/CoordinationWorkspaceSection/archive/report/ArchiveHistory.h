#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"

/** What runs over an archive have told of its documents, and what of it still stands. */
class ArchiveHistory
{
public:
    /** @param settings  must outlive this. */
    explicit ArchiveHistory(const ArchiveSettings& settings) : m_settings(settings) {}

    /**
     * Reads the report, and what a killed process has written and did not come to report. No job
     * may be at work.
     *
     * @return false, with errno set, when a file of these is there and cannot be read.
     */
    bool read();

    /**
     * Reports what a killed process did not come to report, unless in a trial.
     *
     * @return false, with errno set, when that failed.
     */
    bool reportUntold() const;

    /**
     * Forgets what was told as pending, when all of it is reported.
     *
     * @return false, with errno set, when that failed.
     */
    bool forgetPending() const;

    /** What was told of a document last; null when nothing was. */
    const DocumentRecord* find(const QString& path) const;

    /** What a run has written for a document, when it stands as it was written. */
    std::optional<FileIdentity> standingTarget(const QString& path) const;

    const ArchiveReport::Records& records() const { return m_records; }

private:
    std::vector<DocumentRecord> standingUntold(const ArchiveReport::Records& pending) const;

    const ArchiveSettings& m_settings;
    ArchiveReport::Records m_records;
    std::vector<DocumentRecord> m_untold;
};

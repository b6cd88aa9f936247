#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/RunRecords.h"

#include <vector>

/**
 * One run of coordworkspace-convert-archive, from the folders to the summary.
 *
 * A run looks at the archive (ArchiveSurvey), has converted what is to be converted
 * (ArchiveConversion), and reports it.
 */
class ArchiveRun
{
public:
    /** @param worker  the program that does one job of a plan. */
    ArchiveRun(ArchiveCommandLine commandLine, QString worker);
    ArchiveRun(const ArchiveRun&) = delete;
    ArchiveRun& operator=(const ArchiveRun&) = delete;

    /**
     * Does the run, and tells of it on the standard streams. Nothing may forbid it
     * (ArchivePlaces::objection).
     */
    ArchiveStatus run();

private:
    ArchiveStatus runAlone();
    ArchiveLock::State endFormerRun() const;
    ArchiveStatus runWithFolder(const QString& folder);
    void tellWhatStandsInTheWay(const std::vector<PlannedDocument>& documents) const;
    bool report(const std::vector<DocumentRecord>& others, RunRecords& records) const;
    bool finishReport(const std::vector<PlannedDocument>& documents, RunRecords& records,
                      const ArchiveHistory& before) const;
    bool writePage(const RunRecords& records) const;

    ArchiveCommandLine m_commandLine;
    const ArchiveSettings& m_settings = m_commandLine.settings;
    const QString m_worker;
};

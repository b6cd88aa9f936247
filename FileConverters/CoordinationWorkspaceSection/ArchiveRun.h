#pragma once

#include "FileConverters/CoordinationWorkspaceSection/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/ArchiveReport.h"
#include "FileConverters/CoordinationWorkspaceSection/ArchiveSummary.h"
#include "FileConverters/CoordinationWorkspaceSection/ArchiveTree.h"

#include <vector>

class ArchiveProgress;
class ParallelProcess;

/** One run of coordworkspace-convert-archive, from the folders to the summary. */
class ArchiveRun
{
public:
    /** @param worker  the program that does one job of a plan. */
    ArchiveRun(ArchiveCommandLine commandLine, QString worker);

    /** What forbids the run before anything is written; empty when nothing does. */
    QString objection() const;

    /** Does the run, and tells of it on the standard streams. */
    ArchiveStatus run();

private:
    ArchiveStatus runAlone();
    bool endFormerRun() const;
    ArchiveStatus runWithFolder(const QString& folder);
    bool takeUp();
    bool recoverPending();
    void plan();
    void planDocument(const ArchiveEntry& entry);
    bool isDone(const DocumentRecord& record, const FileIdentity& source) const;
    std::optional<FileIdentity> ourTarget(const QString& path) const;
    void countGone(const std::vector<ArchiveEntry>& entries);
    void tellWhatStandsInTheWay() const;
    ArchiveStatus convertAll();
    ArchiveStatus convertWith(const std::vector<PlannedDocument>& documents, int jobs, int batch,
                              ArchiveProgress& progress);
    void readRecords(ParallelProcess& parallel, ArchiveProgress& progress);
    void take(const DocumentRecord& record);
    bool reportOwnRecords();
    bool finishReport();

    const ArchiveCommandLine m_commandLine;
    const QString m_worker;
    ArchiveSettings m_settings;
    QString m_planFile;
    ArchiveReport::Records m_before; // what the report told when the run began
    ArchiveReport::Records m_now;    // what this run tells
    std::vector<PlannedDocument> m_documents;
    std::vector<DocumentRecord> m_ownRecords; // of what no worker has to look at
    ArchiveSummary m_summary;
};

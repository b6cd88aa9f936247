#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveHistory.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSchedule.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSummary.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"

#include <QSet>

#include <vector>

class ArchiveProgress;
class MachinesRound;
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
    QString objectionToReport() const;
    QString objectionToPage() const;
    bool mayWritePage() const;
    bool plan();
    DocumentRecord recordOf(const ArchiveEntry& entry) const;
    void planDocument(const ArchiveEntry& entry);
    bool isDone(const DocumentRecord& record, const FileIdentity& source) const;
    void countGone(const std::vector<ArchiveEntry>& entries);
    void tellWhatStandsInTheWay() const;
    ArchiveStatus convertAll();
    ArchiveStatus convertOnMachines(ArchiveProgress& progress);
    std::vector<PlannedDocument> documentsForMachines(const QSet<QString>& forHere) const;
    ArchiveStatus follow(MachinesRound& machines, ArchiveProgress& progress);
    void take(const std::vector<DocumentRecord>& records, ArchiveProgress& progress);
    std::vector<PlannedDocument> untoldDocuments() const;
    bool takeWhatIsDoneUntold();
    ArchiveStatus convertRound(const ArchiveSchedule::Round& round, ArchiveProgress& progress);
    ArchiveStatus follow(ParallelProcess& parallel, ArchiveProgress& progress);
    void readRecords(ParallelProcess& parallel, ArchiveProgress& progress);
    void take(const DocumentRecord& record);
    bool reportOwnRecords();
    bool finishReport();
    bool writePage() const;

    const ArchiveCommandLine m_commandLine;
    const QString m_worker;
    ArchiveSettings m_settings;
    QString m_folder; // for what the run needs meanwhile
    QString m_planFile;
    QString m_parallelFolder;
    QString m_problem;            // that a worker has told, and that ends the run
    ArchiveHistory m_before;      // before the run
    ArchiveReport::Records m_now; // what this run tells
    std::vector<PlannedDocument> m_documents;
    std::vector<DocumentRecord> m_ownRecords; // of what no worker has to look at
    QSet<QString> m_gone;                     // by path, documents that are there no more
    ArchiveSummary m_summary;
};

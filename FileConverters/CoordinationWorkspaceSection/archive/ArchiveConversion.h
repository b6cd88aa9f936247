#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveProgress.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSchedule.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/RunRecords.h"

#include <QSet>

#include <vector>

class MachinesRound;
class ParallelProcess;

/**
 * Has the documents of a run converted: on other machines, where there are any, and then here.
 *
 * What broke off with a job is tried again at the end, each document in a job of its own.
 */
class ArchiveConversion
{
public:
    /**
     * @param commandLine, documents, records  must outlive this.
     * @param worker  the program that does one job of a plan.
     * @param folder  for what is needed meanwhile; must exist.
     */
    ArchiveConversion(const ArchiveCommandLine& commandLine,
                      const std::vector<PlannedDocument>& documents, RunRecords& records,
                      QString worker, const QString& folder);

    /**
     * Converts, and takes what became of documents into the records. Some may have no record
     * afterwards: the work on them broke off.
     *
     * @return ARCHIVE_DONE, or why the run cannot go on, of which people have been told.
     */
    ArchiveStatus run();

    /**
     * Removes from a folder what a killed run has left. A job that it has not come to start finds
     * its plan gone.
     */
    static void removeRemains(const QString& folder);

private:
    ArchiveStatus convertOnMachines();
    std::vector<PlannedDocument> documentsForMachines(const QSet<QString>& forHere) const;
    ArchiveStatus follow(MachinesRound& machines);
    ArchiveStatus convertHere();
    ArchiveStatus convertRound(const ArchiveSchedule::Round& round);
    ArchiveStatus follow(ParallelProcess& parallel);
    void readRecords(ParallelProcess& parallel);
    bool takeWhatIsDoneUntold();
    void take(const DocumentRecord& record);
    void say(const QString& text) const;
    ArchiveStatus sayCannotWrite(const QString& what) const;
    ArchiveStatus sayCannotStart() const;
    ArchiveStatus sayStopped() const;
    std::vector<PlannedDocument> untold() const { return m_records.untoldAmong(m_documents); }

    const ArchiveCommandLine& m_commandLine;
    const ArchiveSettings& m_settings;
    const std::vector<PlannedDocument>& m_documents;
    RunRecords& m_records;
    const QString m_worker;
    const QString m_folder;
    const QString m_planFile;
    const QString m_parallelFolder;
    ArchiveProgress m_progress;
    QString m_problem; // that a worker has told, and that ends the run
};

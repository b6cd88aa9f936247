#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ParallelProcess.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/ArchiveParcels.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentBatch.h"

#include <QSet>
#include <QStringList>

#include <map>

/**
 * One round over documents that other machines convert.
 *
 * Machines are trusted with the documents, and to convert them; nothing else is. What came back is
 * taken in only as far as it is what was told and what was asked for, and in the same steps as a
 * worker's on this machine. Of all other documents nothing is known afterwards: a machine that is
 * gone, hangs, refuses or makes a mess costs time only.
 */
class MachinesRound
{
public:
    /**
     * @param settings  of the run; must outlive this.
     * @param folder    for what is needed meanwhile; is made, and removed with this.
     */
    MachinesRound(const ArchiveSettings& settings, const QString& worker, const QString& folder);
    MachinesRound(const MachinesRound&) = delete;
    MachinesRound& operator=(const MachinesRound&) = delete;

    /** Ends the jobs at work. */
    ~MachinesRound();

    /**
     * Packs documents for the machines of a file.
     *
     * @return false, with errno set, when that failed.
     */
    bool pack(const std::vector<PlannedDocument>& documents, const QString& loginFile);

    /**
     * Hands out what was packed.
     *
     * @param jobs  on each machine at the same time; 0 for what the file or the machine tells.
     * @return false when Parallel cannot be started.
     */
    bool start(const QString& loginFile, int jobs);

    /**
     * Waits for what the machines tell, for a while at most, and takes it in.
     *
     * @return what became of documents; none, with errno set, when it could not be reported.
     */
    std::optional<std::vector<DocumentRecord>> next(int milliseconds);

    /** Whether nothing is to come any more. */
    bool isOver() const;

    /**
     * What machines, and what connects to them, complain of; each sentence once in a round, and no
     * more than a hundred.
     */
    QStringList takeComplaints();

    /** Documents of which a machine has told, and that are better converted here. */
    const QSet<QString>& forHere() const { return m_forHere; }

private:
    void readLine(const QByteArray& line);
    void readComplaints();
    void readSshLog();
    void complain(const QByteArray& line);

    const ArchiveSettings& m_settings;
    ArchiveParcels m_parcels;
    const QString m_parallelFolder;
    ParallelProcess m_parallel;
    std::vector<PlannedJob> m_packed;
    qint64 m_seconds = 0; // that the longest job may take
    // By parcel and path, not taken in yet.
    std::map<int, std::map<QString, ReturnedDocument>> m_returned;
    QSet<QString> m_forHere;
    qint64 m_sshLogRead = 0;
    QSet<QByteArray> m_known; // complaints
    QStringList m_complaints; // that nobody was told yet
};

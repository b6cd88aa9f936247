#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"

#include <QProcess>

#include <vector>

/** Other machines, and what Parallel asks of them. */
struct MachineJobs
{
    QString loginFile; ///< absolute, in Parallel's form: a machine a line
    int atTheSameTime; ///< on each machine; 0 for what the file or the machine tells
    QString sshLog;    ///< where ssh tells what goes wrong, below the parcels; no blanks in it
    qint64 seconds;    ///< that a job may take with all that is copied for it
};

/**
 * One run of GNU Parallel over jobs: of a plan on this machine, or of parcels on others.
 *
 * Nothing of the user's has a say in it: neither their configuration of Parallel nor their shell,
 * nor what they type at the terminal, whose signals are the caller's to answer. When this process
 * is killed, Parallel ends its jobs and itself. Only when Parallel is killed do its jobs go on to
 * their end.
 */
class ParallelProcess : public QProcess
{
public:
    /** @param folder  where Parallel may keep what it needs meanwhile; must exist. */
    ParallelProcess(const QString& worker, QString folder);

    /** Whether what is called "parallel" is GNU Parallel: there are others of that name. */
    static bool isGnu();

    /** @return whether Parallel was started. */
    bool startJobs(const QString& plan, const std::vector<PlannedJob>& planned, int atTheSameTime);

    /**
     * Copies the parcels of a folder to other machines, has them done there, and copies the outputs
     * back. A line that a machine prints comes, after its outputs, with the parcel's number and a
     * tab before it. A job that fails is tried on another machine, if there is one.
     *
     * @param planned  the parcels by their numbers, from 1.
     * @return whether Parallel was started.
     */
    bool startParcels(const QString& parcels, const std::vector<PlannedJob>& planned,
                      const MachineJobs& machines);

    /** Ends the jobs at work, and Parallel. */
    void stopJobs();

protected:
    void setupChildProcess() override;

private:
    bool startWith(const QStringList& options, const char* command, const QByteArray& lines);

    const QString m_folder;
    QProcessEnvironment m_environment;
};

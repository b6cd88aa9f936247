#pragma once

#include "FileConverters/CoordinationWorkspaceSection/ArchivePlan.h"

#include <QProcess>

#include <vector>

/**
 * One run of GNU Parallel over the jobs of a plan.
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
    ParallelProcess(const QString& worker, const QString& plan, QString folder);

    /** Whether what is called "parallel" is GNU Parallel: there are others of that name. */
    static bool isGnu();

    /** @return whether Parallel was started. */
    bool startJobs(const std::vector<PlannedJob>& planned, int atTheSameTime);

    /** Ends the jobs at work, and Parallel. */
    void stopJobs();

protected:
    void setupChildProcess() override;

private:
    const QString m_folder;
};

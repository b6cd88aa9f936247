#pragma once

#include "FileConverters/CoordinationWorkspaceSection/ArchivePlan.h"

#include <QProcess>

#include <vector>

/**
 * One run of GNU Parallel over the jobs of a plan.
 *
 * Nothing of the user's has a say in it: neither their configuration of Parallel nor their shell.
 * When this process is killed, Parallel ends its jobs and itself. Only when Parallel is killed do
 * its jobs go on to their end.
 */
class ParallelProcess : public QProcess
{
public:
    /** @param home  a folder for what Parallel notes about the machine; must exist. */
    ParallelProcess(const QString& worker, const QString& plan, const QString& home);

    /** @return whether Parallel was started. */
    bool startJobs(const std::vector<PlannedJob>& planned, int atTheSameTime);

    /** Ends the jobs at work, and Parallel. */
    void stopJobs();

protected:
    void setupChildProcess() override;
};

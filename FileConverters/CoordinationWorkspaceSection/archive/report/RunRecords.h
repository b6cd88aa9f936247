#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveHistory.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveSummary.h"

#include <QSet>

#include <vector>

/** What one run tells of the documents of an archive. */
class RunRecords
{
public:
    /**
     * @param before    what earlier runs have told; must outlive this.
     * @param arePrinted  each record on standard output, as in a trial, which has no report.
     */
    RunRecords(const ArchiveHistory& before, bool arePrinted)
        : m_before(before), m_arePrinted(arePrinted)
    {
    }

    /** What became of a document in this run. What earlier runs have told the same stays theirs. */
    void take(const DocumentRecord& record);

    /** What an earlier run has done already. */
    void takeDoneBefore(const DocumentRecord& record);

    /** What an earlier run has written for a document that is in the archive no more. */
    void takeGone(const DocumentRecord& record);

    /** Those of which nothing is told yet. */
    std::vector<PlannedDocument> untoldAmong(const std::vector<PlannedDocument>& documents) const;

    /** By path. */
    const ArchiveReport::Records& all() const { return m_all; }

    /** By path, those of documents that are in the archive no more. */
    const QSet<QString>& gone() const { return m_gone; }

    const ArchiveSummary& summary() const { return m_summary; }

private:
    const ArchiveHistory& m_before;
    const bool m_arePrinted;
    ArchiveReport::Records m_all;
    QSet<QString> m_gone;
    ArchiveSummary m_summary;
};

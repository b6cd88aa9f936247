#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/RunRecords.h"

#include <optional>
#include <vector>

/** A look at all that stands in an archive, to find out what is to be done. */
class ArchiveSurvey
{
public:
    /** @param commandLine, before  must outlive this. */
    ArchiveSurvey(const ArchiveCommandLine& commandLine, const ArchiveHistory& before)
        : m_commandLine(commandLine), m_settings(commandLine.settings), m_before(before)
    {
    }

    /**
     * Looks, and takes what is done already, or gone, into the records.
     *
     * @return false when the program is asked to stop meanwhile (StopSignals): to find out what is
     * done can take a while.
     */
    bool look(RunRecords& records);

    /** What is to be converted. */
    const std::vector<PlannedDocument>& documents() const { return m_documents; }

    /** What became of all else, which no worker has to look at. */
    const std::vector<DocumentRecord>& others() const { return m_others; }

private:
    void lookAt(const ArchiveEntry& entry, RunRecords& records);
    bool isDone(const ArchiveEntry& entry) const;
    PlannedDocument planned(const ArchiveEntry& entry,
                            const std::optional<FileIdentity>& standing) const;
    DocumentRecord leftAlone(const ArchiveEntry& entry) const;
    void takeGone(const std::vector<ArchiveEntry>& entries, RunRecords& records) const;

    const ArchiveCommandLine& m_commandLine;
    const ArchiveSettings& m_settings;
    const ArchiveHistory& m_before;
    std::vector<PlannedDocument> m_documents;
    std::vector<DocumentRecord> m_others;
};

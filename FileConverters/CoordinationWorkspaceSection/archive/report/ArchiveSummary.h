#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <array>

/** How coordworkspace-convert-archive ends. Of several classes the highest number counts. */
enum ArchiveStatus {
    ARCHIVE_DONE = 0,
    ARCHIVE_LOSSY = 2, ///< a document loses something, and that was to be told
    ARCHIVE_REFUSED = 3,
    ARCHIVE_LIMIT = 4,
    ARCHIVE_FAILED = 5,
    // As in sysexits.h.
    ARCHIVE_USAGE = 64,
    ARCHIVE_UNAVAILABLE = 69,
    ARCHIVE_NOT_WRITTEN = 74,
    ARCHIVE_BUSY = 75,
    ARCHIVE_STOPPED = 130, ///< as a shell tells of an interrupted program
};

/** Counts what became of documents. */
class ArchiveSummary
{
public:
    void add(const DocumentRecord& record);

    /** A document that an earlier run has done. */
    void addDoneBefore(const DocumentRecord& record);

    /** A document of the report that is in the archive no more. */
    void addGone() { ++m_gone; }

    /** One line for people, without a line feed. */
    QString text() const;

    ArchiveStatus status(bool failsIfLossy) const;

private:
    std::array<int, DocumentRecord::FAILED + 1> m_counts{}; // by outcome
    int m_strangers = 0;                                    // refused, being no documents at all
    int m_doneBefore = 0;
    int m_gone = 0;
};

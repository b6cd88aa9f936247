#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <QByteArray>

/** One record of a report in the table of a page. */
class ArchivePageRow
{
public:
    /** How the page tells outcomes apart; the first ones are those of records. */
    enum Kind {
        NO_DOCUMENT = DocumentRecord::FAILED + 1, ///< refused, being no workspace document at all
        GONE,                                     ///< in the archive no more
    };
    static constexpr int KIND_COUNT = GONE + 1;

    /** @param record  must outlive this. */
    ArchivePageRow(const DocumentRecord& record, bool isGone) : m_record(record), m_isGone(isGone)
    {
    }

    int kind() const;

    /** How many losses the record tells. */
    int lossCount() const;

    /** A "tbody". @param systemsLeft  that the page may still show; counted down. */
    QByteArray html(int& systemsLeft) const;

    /** For people. */
    static QByteArray nameOf(int kind);

    /** For style and script: without blanks. */
    static QByteArray tokenOf(int kind);

    /** The number with its digits in groups of three. */
    static QByteArray number(qint64 number);

private:
    QByteArray whatWasLost() const;
    QByteArray spacings(int& systemsLeft) const;
    QByteArray systemsTable(int count) const;

    const DocumentRecord& m_record;
    const bool m_isGone;
};

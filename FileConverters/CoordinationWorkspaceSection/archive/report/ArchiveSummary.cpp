#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveSummary.h"

#include <QStringList>

void ArchiveSummary::add(const DocumentRecord& record)
{
    if (record.reason == QLatin1String("no-workspace")) {
        ++m_strangers;
    } else {
        ++m_counts[static_cast<std::size_t>(record.outcome)];
    }
}

void ArchiveSummary::addDoneBefore(const DocumentRecord& record)
{
    add(record);
    ++m_doneBefore;
}

QString ArchiveSummary::text() const
{
    int documents = 0;
    QStringList parts;
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        const int count = m_counts[i];
        documents += count;
        parts.append(QStringLiteral("%1 %2").arg(count).arg(
            DocumentRecord::nameOf(static_cast<DocumentRecord::Outcome>(i))));
    }
    QString text =
        QStringLiteral("%1 documents: %2").arg(documents).arg(parts.join(QStringLiteral(", ")));
    if (m_strangers > 0) {
        text += m_strangers == 1
                    ? QStringLiteral("; 1 file is no workspace document")
                    : QStringLiteral("; %1 files are no workspace documents").arg(m_strangers);
    }
    if (m_doneBefore > 0) {
        text += QStringLiteral("; %1 done by an earlier run").arg(m_doneBefore);
    }
    if (m_gone > 0) {
        text += QStringLiteral("; %1 gone since, their targets kept").arg(m_gone);
    }
    return text;
}

ArchiveStatus ArchiveSummary::status(bool failsIfLossy) const
{
    if (m_counts[DocumentRecord::FAILED] > 0) {
        return ARCHIVE_FAILED;
    }
    if (m_counts[DocumentRecord::LIMIT] > 0) {
        return ARCHIVE_LIMIT;
    }
    if (m_counts[DocumentRecord::REFUSED] > 0) {
        return ARCHIVE_REFUSED;
    }
    return failsIfLossy && m_counts[DocumentRecord::LOSSY] > 0 ? ARCHIVE_LOSSY : ARCHIVE_DONE;
}

#include "FileConverters/CoordinationWorkspaceSection/archive/report/RunRecords.h"

#include <algorithm>
#include <iostream>
#include <iterator>

void RunRecords::take(const DocumentRecord& record)
{
    const DocumentRecord* const known = m_before.find(record.path);
    const bool isKnown = known != nullptr && known->tellsTheSameAs(record);
    m_all.insert(record.path, isKnown ? *known : record);
    m_summary.add(record);
    if (m_arePrinted) {
        std::cout << record.toLine().constData() << std::flush;
    }
}

void RunRecords::takeDoneBefore(const DocumentRecord& record)
{
    m_all.insert(record.path, record);
    m_summary.addDoneBefore(record);
}

void RunRecords::takeGone(const DocumentRecord& record)
{
    m_all.insert(record.path, record);
    m_gone.insert(record.path);
    m_summary.addGone();
}

std::vector<PlannedDocument>
RunRecords::untoldAmong(const std::vector<PlannedDocument>& documents) const
{
    std::vector<PlannedDocument> untold;
    std::copy_if(
        documents.begin(), documents.end(), std::back_inserter(untold),
        [this](const PlannedDocument& document) { return !m_all.contains(document.path); });
    return untold;
}

#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"

#include <algorithm>
#include <iterator>

FindingList::FindingList(const QDomDocument& document, const DocumentText& text, Wanted wanted)
    : m_document(document), m_text(text), m_wanted(wanted)
{
}

const DocumentPlaces& FindingList::places()
{
    if (!m_places) {
        m_places.emplace(m_document, m_text);
    }
    return *m_places;
}

bool FindingList::takes(Finding::Kind kind) const
{
    return takesNotes() || Finding::isLoss(kind);
}

void FindingList::add(Finding::Kind kind, const QDomElement& element, const QString& text)
{
    if (takes(kind)) {
        m_findings.push_back({kind, places().of(element), text});
    }
}

void FindingList::addAttribute(Finding::Kind kind, const QDomElement& element,
                               const QString& attribute, const QString& text)
{
    if (takes(kind)) {
        m_findings.push_back({kind, places().ofAttribute(element, attribute), text});
    }
}

Findings FindingList::losses() const
{
    return sorted(true);
}

Findings FindingList::notes() const
{
    return sorted(false);
}

Findings FindingList::sorted(bool losses) const
{
    Findings chosen;
    std::copy_if(
        m_findings.begin(), m_findings.end(), std::back_inserter(chosen),
        [losses](const Finding& finding) { return Finding::isLoss(finding.kind) == losses; });
    std::stable_sort(chosen.begin(), chosen.end(), [](const Finding& left, const Finding& right) {
        return left.place.line < right.place.line;
    });
    return chosen;
}

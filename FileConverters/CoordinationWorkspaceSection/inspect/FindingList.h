#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/Finding.h"

class QDomElement;

/** Takes findings with the places that they belong to. */
class FindingList
{
public:
    /** @param places  of the document that findings are about; must outlive this. */
    explicit FindingList(const DocumentPlaces& places) : m_places(places) {}

    void add(Finding::Kind kind, const QDomElement& element, const QString& text);
    void addAttribute(Finding::Kind kind, const QDomElement& element, const QString& attribute,
                      const QString& text);

    /** The findings that are losses or that are none, by line. */
    Findings losses() const;
    Findings notes() const;

    const DocumentPlaces& places() const { return m_places; }

    /** The value in quotation marks, cut after forty characters, control characters replaced. */
    static QString quoted(const QString& value);

private:
    Findings sorted(bool losses) const;

    const DocumentPlaces& m_places;
    Findings m_findings;
};

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/Finding.h"

#include <optional>

class DocumentText;
class QDomDocument;
class QDomElement;

/** Takes findings with the places that they belong to. */
class FindingList
{
public:
    /** Which findings are taken. */
    enum Wanted { LOSSES, LOSSES_AND_NOTES };

    /**
     * @param document, text  what findings are about; must outlive this, and stay as they are.
     */
    FindingList(const QDomDocument& document, const DocumentText& text, Wanted wanted);

    /** Whether findings that are no losses are taken; otherwise nobody has to look for them. */
    bool takesNotes() const { return m_wanted == LOSSES_AND_NOTES; }

    void add(Finding::Kind kind, const QDomElement& element, const QString& text);
    void addAttribute(Finding::Kind kind, const QDomElement& element, const QString& attribute,
                      const QString& text);

    /** The findings that are losses or that are none, by line. */
    Findings losses() const;
    Findings notes() const;

    /** The places of the document's elements; they are noted when the first one is asked for. */
    const DocumentPlaces& places();

private:
    bool takes(Finding::Kind kind) const;
    Findings sorted(bool losses) const;

    const QDomDocument& m_document;
    const DocumentText& m_text;
    const Wanted m_wanted;
    std::optional<DocumentPlaces> m_places; // most documents of an archive never need them
    Findings m_findings;
};

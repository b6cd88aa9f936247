#pragma once

#include <QDomElement>
#include <QHash>
#include <QString>

#include <vector>

class DocumentText;
class QDomDocument;

/** Where something stands in a document. */
struct Place
{
    int line = 1; ///< where its element begins, from 1

    /**
     * Its element in the manner of XPath 1.0, "/a/b[2]/@c": a step among several of its name has
     * its number. Of more than sixteen steps the first and the last eight are shown, with "/..."
     * between.
     */
    QString path;
};

/**
 * The places of a document's elements.
 *
 * One walk over the document notes them all, so that asking for many costs no more than the
 * document's size. The document must stay as it was while this is used.
 */
class DocumentPlaces
{
public:
    DocumentPlaces(const QDomDocument& document, const DocumentText& text);

    /** The place of an element; of a null element or one of another document it is the start. */
    Place of(const QDomElement& element) const;

    /** The place of an element's attribute: the line is the element's. */
    Place ofAttribute(const QDomElement& element, const QString& attribute) const;

    /**
     * Those of the elements that neither are one of @p holders nor stand below one. All have to be
     * of the document.
     */
    std::vector<QDomElement> outside(const std::vector<QDomElement>& elements,
                                     const std::vector<QDomElement>& holders) const;

private:
    struct Entry
    {
        QDomElement element;
        int line;
        int parent;     // -1 above the outermost
        int depth;      // from 1
        int head;       // the entry's ancestor, or itself, where an abbreviated path breaks off
        int number = 1; // among the siblings of its name
        bool isAlone = true; // the only one of its name
    };

    int indexOf(const QDomElement& element) const;
    QString steps(int from, int count) const;
    QString pathOf(int index) const;

    std::vector<Entry> m_entries; // in document order
    QHash<const void*, int> m_indexes;
};

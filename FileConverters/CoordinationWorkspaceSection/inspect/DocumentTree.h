#pragma once

#include <QByteArray>
#include <QDomNode>
#include <QHash>
#include <QMap>
#include <QString>

#include <vector>

class QDomDocument;
class QDomDocumentType;

/**
 * A document's nodes in an array, with a number for the content of each: nodes with all that is
 * below them are equal exactly when their numbers are.
 *
 * Whole documents are compared in time that grows with their size.
 */
class DocumentTree
{
public:
    /** Hands out the numbers; trees that are compared share one. */
    using Contents = QHash<QByteArray, int>;

    /** The document itself; its children are what stands outermost. */
    static constexpr int TOP = 0;

    struct Node
    {
        QDomNode dom;
        bool isInSettings; ///< in "compatibility_profile_settings", which counts itself
        QMap<QString, QString> attributes{};
        std::vector<int> children{};
        int content = 0;

        bool mayHaveChildren() const { return dom.isElement() || dom.isDocument(); }
    };

    DocumentTree(const QDomDocument& document, Contents& contents);

    const Node& node(int index) const { return m_nodes[static_cast<std::size_t>(index)]; }

    /** Whether one could be the other with changes: elements of one name, or two texts. */
    bool isOfSameKind(int index, const DocumentTree& other, int otherIndex) const;

    /** The node in words for people. */
    QString describe(int index) const;

private:
    void addAll(const QDomDocument& document);
    void addDocumentType(const QDomDocumentType& type);
    QByteArray keyOf(const Node& node) const;

    std::vector<Node> m_nodes; // in document order, the document type last
};

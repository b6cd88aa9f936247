#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentTree.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDataStream>
#include <QDomDocument>
#include <QIODevice>
#include <QTextStream>

using TextLayout::quoted;

namespace {

QMap<QString, QString> attributesOf(const QDomNode& node)
{
    QMap<QString, QString> attributes;
    const QDomNamedNodeMap map = node.attributes();
    for (int i = 0; i < map.size(); ++i) {
        attributes.insert(map.item(i).nodeName(), map.item(i).nodeValue());
    }
    return attributes;
}

// Qt keeps the declarations of a document type where its nodes cannot be asked for all of them.
QString valueOf(const QDomNode& node)
{
    if (!node.isDocumentType()) {
        return node.nodeValue();
    }
    QString printed;
    QTextStream stream(&printed);
    stream << node;
    return printed;
}

} // namespace

DocumentTree::DocumentTree(const QDomDocument& document, Contents& contents)
{
    addAll(document);
    // From the back, so that children have their numbers before their parents ask.
    for (auto node = m_nodes.rbegin(); node != m_nodes.rend(); ++node) {
        const QByteArray key = keyOf(*node);
        const auto known = contents.constFind(key);
        node->content = known == contents.constEnd() ? contents.size() : known.value();
        contents.insert(key, node->content);
    }
}

void DocumentTree::addAll(const QDomDocument& document)
{
    std::vector<int> parents;
    QDomNode dom = document;
    while (!dom.isNull()) {
        const int index = static_cast<int>(m_nodes.size());
        bool isInSettings = dom.nodeName() == QLatin1String("compatibility_profile_settings");
        if (!parents.empty()) {
            Node& parent = m_nodes[static_cast<std::size_t>(parents.back())];
            parent.children.push_back(index);
            isInSettings = isInSettings || parent.isInSettings;
        }
        m_nodes.push_back({dom, isInSettings, attributesOf(dom)});

        QDomNode next = m_nodes.back().mayHaveChildren() ? dom.firstChild() : QDomNode();
        parents.push_back(index);
        while (next.isNull() && !parents.empty()) {
            next = node(parents.back()).dom.nextSibling();
            parents.pop_back();
        }
        dom = next;
    }
    addDocumentType(document.doctype());
}

// To Qt it is no child of the document.
void DocumentTree::addDocumentType(const QDomDocumentType& type)
{
    if (!type.name().isEmpty()) {
        m_nodes.front().children.push_back(static_cast<int>(m_nodes.size()));
        m_nodes.push_back({type, false});
    }
}

QByteArray DocumentTree::keyOf(const Node& node) const
{
    QByteArray key;
    QDataStream stream(&key, QIODevice::WriteOnly);
    stream << static_cast<int>(node.dom.nodeType()) << node.dom.nodeName() << valueOf(node.dom)
           << node.attributes;
    for (const int child : node.children) {
        stream << this->node(child).content;
    }
    return key;
}

bool DocumentTree::isOfSameKind(int index, const DocumentTree& other, int otherIndex) const
{
    const QDomNode& dom = node(index).dom;
    const QDomNode& otherDom = other.node(otherIndex).dom;
    return dom.nodeType() == otherDom.nodeType() && dom.nodeName() == otherDom.nodeName();
}

QString DocumentTree::describe(int index) const
{
    const QDomNode& dom = node(index).dom;
    switch (dom.nodeType()) {
    case QDomNode::ElementNode:
        return QStringLiteral("The element %1").arg(quoted(dom.nodeName()));
    case QDomNode::TextNode:
    case QDomNode::CDATASectionNode:
        return QStringLiteral("The text %1").arg(quoted(dom.nodeValue()));
    case QDomNode::CommentNode:
        return QStringLiteral("The comment %1").arg(quoted(dom.nodeValue()));
    default:
        return QStringLiteral("The declaration %1").arg(quoted(valueOf(dom)));
    }
}

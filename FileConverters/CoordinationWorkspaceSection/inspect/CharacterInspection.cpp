#include "FileConverters/CoordinationWorkspaceSection/inspect/CharacterInspection.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDomDocument>

#include <algorithm>

using TextLayout::quoted;

namespace {

// The production Char of XML 1.0. Halves of characters beyond 16 bits are let pass: two of them
// make one.
bool isOfXml(QChar character)
{
    const ushort code = character.unicode();
    return code >= 0x20 ? code < 0xFFFE : code == '\t' || code == '\n' || code == '\r';
}

bool isOfXml(const QString& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return isOfXml(character); });
}

// Most texts need no look at their nodes: what is not of XML stands in them or comes from a
// reference, which the parser does not take from several entities put together.
bool mayHoldOthers(const QString& text)
{
    return text.contains(QLatin1String("&#")) || !isOfXml(text);
}

QString complaint(const QString& text)
{
    return QStringLiteral("%1 has a character that no XML document may hold.").arg(quoted(text));
}

void inspectAttributes(const QDomElement& element, FindingList& findings)
{
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomNode attribute = attributes.item(i);
        if (!isOfXml(attribute.nodeValue())) {
            findings.addAttribute(Finding::INVALID_CHARACTER, element, attribute.nodeName(),
                                  complaint(attribute.nodeValue()));
        }
    }
}

} // namespace

void inspectCharacters(const DocumentText& text, const QDomDocument& document,
                       FindingList& findings)
{
    if (!mayHoldOthers(text.text())) {
        return;
    }
    QDomNode node = document.firstChild();
    while (!node.isNull()) {
        if (node.isElement()) {
            inspectAttributes(node.toElement(), findings);
        } else if (!isOfXml(node.nodeValue())) {
            findings.add(Finding::INVALID_CHARACTER, node.parentNode().toElement(),
                         complaint(node.nodeValue()));
        }
        QDomNode next = node.firstChild();
        while (next.isNull() && !node.isNull()) {
            next = node.nextSibling();
            node = node.parentNode();
        }
        node = next;
    }
}

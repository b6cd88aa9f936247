#include "FileConverters/CoordinationWorkspaceSection/inspect/LineBreakInspection.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDomDocument>

#include <utility>
#include <vector>

using TextLayout::quoted;

namespace {

QString lostText(const QString& original, const QString& joined)
{
    return QStringLiteral("Standard input drops the line breaks: %1 becomes %2.")
        .arg(quoted(original), quoted(joined));
}

void compareAttributes(const QDomElement& original, const QDomElement& joined,
                       FindingList& findings)
{
    const QDomNamedNodeMap attributes = joined.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QString name = attributes.item(i).nodeName();
        const QString value = attributes.item(i).nodeValue();
        if (original.attribute(name) != value) {
            findings.addAttribute(Finding::LINE_BREAK, joined, name,
                                  lostText(original.attribute(name), value));
        }
    }
}

// The next child that joining can change into something else.
QDomNode skipComments(QDomNode node)
{
    while (!node.isNull() && !node.isElement() && !node.isText()) {
        node = node.nextSibling();
    }
    return node;
}

using Pair = std::pair<QDomElement, QDomElement>;

// The texts of two elements; pairs of child elements go to @p waiting.
void compareContents(const Pair& elements, std::vector<Pair>& waiting, FindingList& findings)
{
    QDomNode original = skipComments(elements.first.firstChild());
    QDomNode joined = skipComments(elements.second.firstChild());
    while (!original.isNull() || !joined.isNull()) {
        const bool isSame = original.nodeType() == joined.nodeType() &&
                            (!joined.isElement() || original.nodeName() == joined.nodeName());
        if (!isSame) {
            findings.add(Finding::LINE_BREAK, elements.second,
                         QStringLiteral("Standard input drops the line breaks, and the content"
                                        " becomes another."));
            return;
        }
        if (joined.isElement()) {
            waiting.emplace_back(original.toElement(), joined.toElement());
        } else if (original.nodeValue() != joined.nodeValue()) {
            findings.add(Finding::LINE_BREAK, elements.second,
                         lostText(original.nodeValue(), joined.nodeValue()));
        }
        original = skipComments(original.nextSibling());
        joined = skipComments(joined.nextSibling());
    }
}

} // namespace

void inspectLineBreaks(const DocumentText& text, const QDomDocument& document,
                       FindingList& findings)
{
    if (!text.isJoined()) {
        return;
    }
    QDomDocument original;
    const QDomElement root = document.documentElement();
    if (!original.setContent(text.withLineFeeds()) ||
        original.documentElement().tagName() != root.tagName()) {
        findings.add(Finding::LINE_BREAK, root,
                     QStringLiteral("Only without its line breaks, which standard input drops, is"
                                    " this such a document."));
        return;
    }
    std::vector<Pair> waiting = {{original.documentElement(), root}};
    while (!waiting.empty()) {
        const Pair elements = waiting.back();
        waiting.pop_back();
        compareAttributes(elements.first, elements.second, findings);
        compareContents(elements, waiting, findings);
    }
}

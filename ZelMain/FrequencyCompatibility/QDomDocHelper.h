#pragma once

#pragma GCC visibility push(default) // what a shared library shows

class QDomDocument;
class QDomNode;
class QString;

/** Small helpers for writing XML through the Qt DOM. */
namespace QDomDocHelper {

/**
 * Appends a new element @p name with one text node, also for an empty @p text, as the last child
 * of @p parent.
 *
 * @param doc  makes both nodes; it must be the parent's document.
 */
void CreateChildNode(QDomDocument& doc, QString const& name, QString const& text, QDomNode& parent);

} // namespace QDomDocHelper

#pragma GCC visibility pop

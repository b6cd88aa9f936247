#pragma once

#include <QByteArray>
#include <QString>

/** Foreign text on a page of HTML that is well-formed XML as well. */
namespace HtmlText {

/**
 * The text in UTF-8 as it may stand between tags and in a quoted attribute.
 *
 * Nothing in it begins a tag, an entity or the end of an attribute. What would not show, or would
 * turn the direction of writing, shows as its number, as in "⟨U+202E⟩": control and format
 * characters but the two joiners, which emoji and some scripts need; line and paragraph separators;
 * lone surrogates; what is no character; and "⟨" itself, so that different texts look different.
 */
QByteArray escaped(const QString& text);

/** The same, cut with "…" after so many UTF-16 code units. */
QByteArray escaped(const QString& text, int most);

} // namespace HtmlText

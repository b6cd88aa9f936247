#pragma once

#include <string>

#pragma GCC visibility push(default) // what a shared library shows

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
} // namespace tinyxml2

/** Small helpers for writing XML through tinyxml2. */
namespace xmlutil {

/**
 * Appends a new element @p name as the last child of @p parent.
 *
 * @param text  becomes the element's text; when empty, the element gets no text node at all.
 * @param doc  makes the element and owns it; it must be the parent's document.
 * @return the new element, owned by @p doc.
 */
tinyxml2::XMLElement* CreateChildNode(std::string const& name, std::string const& text,
                                      tinyxml2::XMLDocument& doc, tinyxml2::XMLElement* parent);

/**
 * The value as a decimal integer: "-" for negatives, no padding and no grouping, whatever the
 * global C++ locale.
 *
 * Defined for int and EBFType.
 */
template <typename T>
std::string ToStr(T const& value);

} // namespace xmlutil

#pragma GCC visibility pop

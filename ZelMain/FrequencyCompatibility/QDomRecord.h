#pragma once

#include <boost/uuid/uuid.hpp>

class QDomDocument;
class QDomElement;
class QDomNode;
class QString;

/**
 * What the elements of all records have in common, in the Qt DOM.
 *
 * Internal to the library.
 */
namespace QDomRecord {

/** A record's element with its format version and its id, attached nowhere. */
QDomElement createElement(QDomDocument& doc, QString const& name, boost::uuids::uuid const& id);

/**
 * The id of a record's element.
 *
 * @throws std::runtime_error when "id" is missing or no UUID text (RFC 4122; the dashes may be left
 *         out, and braces may stand around it).
 */
boost::uuids::uuid readId(QDomElement const& element);

/** Appends an empty element that says that its numbers are kilohertz; returns it. */
QDomElement appendKilohertz(QDomDocument& doc, QString const& name, QDomElement& parent);

/** Appends an element that holds a decimal integer. */
void appendInteger(QDomDocument& doc, QString const& name, int value, QDomNode& parent);

} // namespace QDomRecord

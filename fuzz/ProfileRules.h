#pragma once

#include <boost/uuid/uuid.hpp>

#include <QString>

#include <optional>

class QDomElement;
class PkCompatProfile;

/** The rules that records are read by, written once more and without a thought of speed. */
namespace ProfileRules {

/** The UUID (RFC 4122) that a text of an "id" attribute means; none when it means none. */
std::optional<boost::uuids::uuid> uuidOf(const QString& text);

/** What a profile is after it has read @p element, which has a good id. */
PkCompatProfile importedInto(PkCompatProfile profile, const QDomElement& element);

/** Whether all fields are equal. */
bool areEqual(const PkCompatProfile& one, const PkCompatProfile& other);

/** Whether an XML 1.0 document may hold each character of the text. */
bool isOfXml(const QString& text);

} // namespace ProfileRules

#pragma once

#include <functional>
#include <string>

class QDomDocument;
class QDomElement;
class QIODevice;

/**
 * Writing of DOM documents to devices and files, shared by the records that store themselves.
 *
 * Internal to the library.
 */
namespace QDomFile {

/**
 * Appends what @p makeElement gives to @p document, then writes the whole document to @p device as
 * UTF-8, without adding an XML declaration, and flushes.
 *
 * @param device  open for writing. If it is not, a debug message says so and nothing is appended.
 * @param compact  indents by 1 blank a level, otherwise by 4.
 * @return whether the device took every byte.
 */
bool store(QDomDocument& document, std::function<QDomElement()> const& makeElement,
           QIODevice& device, bool compact);

/**
 * Opens the file at @p path (UTF-8), emptied if it exists, and hands it to @p writer.
 *
 * @return what the writer returned; false when the file could not be opened or closed.
 */
bool writeFile(std::string const& path, std::function<bool(QIODevice&)> const& writer);

} // namespace QDomFile

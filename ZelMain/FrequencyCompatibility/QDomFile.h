#pragma once

#include <functional>
#include <string>

class QDomDocument;
class QIODevice;

/**
 * Writing of DOM documents to devices and files, shared by the records that store themselves.
 *
 * Internal to the library.
 */
namespace QDomFile {

/** Whether @p device is open for writing. If not, a debug message says what is wrong with it. */
bool isWritable(QIODevice const& device);

/**
 * Writes the whole document as UTF-8, without adding an XML declaration, and flushes.
 *
 * @param compact  indents by 1 blank a level, otherwise by 4.
 * @return whether the device took every byte.
 */
bool write(QDomDocument const& document, QIODevice& device, bool compact);

/**
 * Opens the file at @p path (UTF-8), emptied if it exists, and hands it to @p writer.
 *
 * @return what the writer returned; false when the file could not be opened or closed.
 */
bool writeFile(std::string const& path, std::function<bool(QIODevice&)> const& writer);

} // namespace QDomFile

#pragma once

#include <iosfwd>

class QString;

/**
 * Writes @p text to @p stream as UTF-8 (RFC 3629) and flushes.
 *
 * Takes no memory on the way: a run that is out of memory fails before the first byte, not between
 * two. A lone surrogate, which UTF-8 cannot hold, becomes "?".
 * @return whether the stream took every byte.
 */
bool writeUtf8(const QString& text, std::ostream& stream);

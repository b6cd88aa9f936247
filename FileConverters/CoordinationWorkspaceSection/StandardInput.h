#pragma once

#include <iosfwd>
#include <vector>

class QString;

/**
 * Reads @p stream to its end as UTF-8 and appends its lines to @p text with nothing between them.
 *
 * Lines end at line feeds; a carriage return before one stays.
 * @param lineStarts  gets, for each line, where in @p text it begins; may be null.
 * @param stream  is set to throw when its device fails, so that std::bad_alloc passes through here.
 * @return false when the stream failed before its end; @p text then holds what came before.
 */
bool readJoinedLines(std::istream& stream, QString& text, std::vector<int>* lineStarts = nullptr);

#pragma once

class DocumentText;
class FindingList;
class QDomDocument;

/**
 * Finds characters that the parser takes from character references although XML 1.0 has no place
 * for them: a converted document that holds one can be read by nobody.
 *
 * @param document  as parsed from @p text.
 */
void inspectCharacters(const DocumentText& text, const QDomDocument& document,
                       FindingList& findings);
